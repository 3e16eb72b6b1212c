#!/usr/bin/env bash
# Run a Windows program under Wine:  windows_emulator.sh PREFIX PROGRAM [ARGUMENT...]
# PREFIX is the folder of Wine's registry and C: drive; it is made at the first use.
set -euo pipefail

export WINEPREFIX=$1
shift
export WINEARCH=win64
# Wine takes its ANSI code page from the language: with this one it is 1252 for everybody, and names of files are UTF-8.
export LC_ALL=C.UTF-8
# No offer to download what the programs here don't use, no entries in the desktop's menus.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="

# Several programs may start at once; one of them starts Wine. It outlives the program by three minutes, longer than the gaps
# between tests, since its services take seconds to start. So does its desktop at first: a program that wants a window waits
# for it for some seconds only. It would also keep the output of the program that starts it open. So a program that does
# nothing starts it before each. Twice: the first one may find the desktop that another program's end is closing.
mkdir -p "$WINEPREFIX"
(
  start_desktop() { wine taskkill /im none.exe 9>&- || true; }
  flock 9
  if wineserver -p180 9>&-; then # fails where it runs already
    [ -e "$WINEPREFIX/ready" ] || wine wineboot --init 9>&-
    touch "$WINEPREFIX/ready"
    start_desktop
  fi
  start_desktop
  start_desktop
) 9>"$WINEPREFIX.lock" </dev/null >/dev/null 2>&1

export WINEDEBUG=${WINEDEBUG:--all}
exec wine "$@"

#!/usr/bin/env bash
# Run a Windows program under Wine:  windows_emulator.sh PREFIX PROGRAM [ARGUMENT...]
# PREFIX is the folder of Wine's registry and C: drive; it is made at the first use.
set -euo pipefail

export WINEPREFIX=$1
shift
export WINEARCH=win64
# No offer to download what the programs here don't use, no entries in the desktop's menus.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="

# Several programs may start at once; one of them starts Wine. It outlives the program by a minute, since its services and
# its desktop take seconds to start. Meanwhile a program that wants a window would wait for some seconds and then get none,
# so they are started by one that has nothing else to do.
mkdir -p "$WINEPREFIX"
(
  flock 9
  if wineserver -p60 9>&-; then # fails where it runs already
    [ -e "$WINEPREFIX/ready" ] || wine wineboot --init 9>&-
    for _ in 1 2 3; do wine taskkill /im none.exe 9>&- || true; done
    touch "$WINEPREFIX/ready"
  fi
) 9>"$WINEPREFIX.lock" </dev/null >/dev/null 2>&1

export WINEDEBUG=${WINEDEBUG:--all}
exec wine "$@"

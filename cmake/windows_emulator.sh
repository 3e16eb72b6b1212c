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

# A program that wants a window needs Wine's desktop. The first one starts it, waiting for some seconds only; and it closes
# one second after the last program of it has ended, also on one that starts just then. So a program that waits for a line
# holds it, which is told to end three minutes after the last start here: longer than the gaps between tests, since Wine's
# services take seconds to start.
hold_desktop() {
  exec 9>"$WINEPREFIX.lock"
  exec 7> >(exec wine cmd /c 'set /p line=' 7>&- 8>&- 9>&-)
  while sleep 5 && kill -0 $!; do
    flock 9
    if [ -z "$(find "$WINEPREFIX.used" -mmin -3)" ]; then
      exec 7>&-
      timeout 10 wineserver -w # nobody finds a desktop that is closing
      return
    fi
    flock -u 9
  done
}

has_desktop() {
  wine winedbg --command 'info wnd' 8>&- 9>&- >"$WINEPREFIX.windows"
  grep -q '#32769' "$WINEPREFIX.windows" # the class of the desktop's window
}

# Several programs may start at once; one of them starts Wine. What it starts lives on, with no output of this script open.
mkdir -p "$WINEPREFIX"
(
  flock 9
  touch "$WINEPREFIX.used"
  if flock -n 8; then # the holder has it locked as long as it lives
    [ -e "$WINEPREFIX/ready" ] || { wine wineboot --init 8>&- 9>&- && touch "$WINEPREFIX/ready"; }
    hold_desktop &
    for _ in {1..20}; do # else the desktop that is looked for below closes with what looks for it
      wine winedbg --command 'info process' 8>&- 9>&- | grep -q cmd.exe && break
    done
  fi
  for _ in {1..20}; do
    has_desktop && exit
  done
  exit 1
) 8>"$WINEPREFIX.holder" 9>"$WINEPREFIX.lock" </dev/null >/dev/null 2>&1 || {
  echo "windows_emulator.sh: Wine's desktop doesn't start" >&2
  exit 1
}

export WINEDEBUG=${WINEDEBUG:--all}
exec wine "$@"

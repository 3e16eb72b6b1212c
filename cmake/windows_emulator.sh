#!/usr/bin/env bash
# Run a Windows program under Wine:  windows_emulator.sh PREFIX PROGRAM [ARGUMENT...]
# PREFIX is the folder of Wine's registry and C: drive; it is made at the first use.
set -euo pipefail

export WINEPREFIX=$1
shift
export WINEDEBUG=${WINEDEBUG:--all}
export WINEARCH=win64
# No offer to download what the programs here don't use, no entries in the desktop's menus.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="

# Several programs may start at once; one of them makes the prefix, with no display of anybody's.
if [ ! -e "$WINEPREFIX/ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    if [ ! -e "$WINEPREFIX/ready" ]; then
      env -u DISPLAY wine wineboot --init >/dev/null 2>&1 9>&- # Wine's server must not keep the lock
      touch "$WINEPREFIX/ready"
    fi
  ) 9>"$WINEPREFIX.lock"
fi

exec wine "$@"

#!/bin/sh
# Runs a Windows program: wine.sh PROGRAM [ARGUMENT...]
# In the prefix that WINEPREFIX names, or in one of its own in the temporary folder; without a display, and without the
# offer to install what no program here needs.
: "${WINEPREFIX:=${TMPDIR:-/tmp}/kvx2800t-wine-$(id -u)}"
export WINEPREFIX
export WINEDEBUG="${WINEDEBUG--all}"
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
unset DISPLAY WAYLAND_DISPLAY

# The first program makes the prefix; others wait for it.
if [ ! -e "$WINEPREFIX/system.reg" ]; then
    mkdir -p "$WINEPREFIX"
    flock "$WINEPREFIX/.making" sh -c '[ -e "$WINEPREFIX/system.reg" ] || { wineboot --init && wineserver --wait; }' >/dev/null 2>&1
fi
exec wine "$@"

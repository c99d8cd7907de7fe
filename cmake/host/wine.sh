#!/bin/sh
# Runs a Windows program: wine.sh PROGRAM [ARGUMENT...]
# In the prefix that WINEPREFIX names, or in one of its own in the temporary folder; without a display, and without the
# offer to install what no program here needs.
: "${WINEPREFIX:=${TMPDIR:-/tmp}/kvx2800t-wine-$(id -u)}"
export WINEPREFIX
export WINEDEBUG="${WINEDEBUG--all}"
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
# File names of any script.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

# The first program makes the prefix; others wait for it.
if [ ! -e "$WINEPREFIX/.made" ]; then
    mkdir -p "$WINEPREFIX"
    flock "$WINEPREFIX/.making" \
        sh -c '[ -e "$WINEPREFIX/.made" ] || { wineboot --init && wineserver --wait && touch "$WINEPREFIX/.made"; }' >/dev/null 2>&1
fi
exec wine "$@"

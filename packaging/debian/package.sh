#!/bin/sh
# Makes the Debian packages of the release build in build/debian, and checks them with lintian.
set -eu
cd "$(dirname "$0")/../.."
. cmake/scripts.sh

install_packages build package
install_for_panel

# Programs that make packages may have come since the build was configured.
cmake --preset release >/dev/null
build release package_files
rm -rf build/debian
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cpack --config build/release/CPackConfig.cmake -B build/debian >"$log" 2>&1 || { cat "$log"; exit 1; }
rm -rf build/debian/_CPack_Packages
lintian --no-cfg --allow-root --fail-on error,warning build/debian/*.deb
ls build/debian

#!/bin/sh
# Makes the zips and the installer of the Windows builds in build/packages, and checks what is in the zips.
set -eu
cd "$(dirname "$0")/../.."

rm -rf build/packages
for config in build/windows-x64/CPackConfig.cmake build/windows-x86/CPackConfig.cmake packaging/windows/both.cmake; do
    cpack --config "$config" -B build/packages >build/cpack.log 2>&1 || { cat build/cpack.log; exit 1; }
done
rm -rf build/packages/_CPack_Packages
/usr/bin/python3 -B packaging/windows/check_packages.py build/packages
for zip in build/packages/KVX2800T-*-windows.zip; do
    packaging/windows/make_installer.py "$zip" "${zip%-windows.zip}-setup.exe"
done

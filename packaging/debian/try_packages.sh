#!/bin/sh
# Installs the packages of build/debian in a fresh Debian, one after the other, uses each and purges it. Needs a mirror of
# Debian's, and root or user namespaces; this machine's own packages stay as they are.
set -eu
cd "$(dirname "$0")/../.."

suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
# Their index, so that apt finds those that others depend on.
(cd build/debian && dpkg-scanpackages --multiversion . >Packages 2>/dev/null)
# What the packages need of Debian and what tries them is there from the beginning: only theirs comes and goes.
exec mmdebstrap --quiet --variant=apt --format=null \
    --include=gcc,libc6-dev,cmake,make,pkg-config,python3,libstdc++6,libtirpc3,libusb-1.0-0 \
    --customize-hook='mkdir "$1/try"' \
    --customize-hook='copy-in build/debian packaging/debian/in_fresh_root.sh examples/first_session.c /try' \
    --customize-hook='chroot "$1" sh /try/in_fresh_root.sh' \
    "$suite" /dev/null

#!/bin/sh
# Run by try_packages.sh in a fresh Debian: /try has the packages, their index and a program.
set -eu
cd /try
export DEBIAN_FRONTEND=noninteractive

fail() { echo "error: $*" >&2; exit 1; }
tried=
trap '[ -z "$tried" ] || echo "error: $tried" >&2' EXIT

# all_files: what is on the machine, but for what apt and dpkg keep for themselves
all_files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /try -o -path /var/cache \
        -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/log -o -name __pycache__ \) -prune -o -print | sort
}

# try_packages USE PACKAGE...: installs the packages, calls the function and purges all that has come
try_packages() {
    use=$1
    shift
    tried="$use with $*"
    echo "$tried"
    all_files >/tmp/before
    dpkg-query -W -f '${Package}\n' | sort >/tmp/packages_before
    apt-get install -qq --no-install-recommends "$@" >/tmp/apt.log 2>&1 || { cat /tmp/apt.log; fail "$* cannot be installed"; }
    # Not a part of a condition, in which the shell would go on after a failure.
    "$use"
    dpkg-query -W -f '${Package}\n' | sort | comm -13 /tmp/packages_before - >/tmp/come
    xargs apt-get purge -qq </tmp/come >/tmp/apt.log 2>&1 || { cat /tmp/apt.log; fail "$* cannot be purged"; }
    all_files | diff /tmp/before - || fail "$*: purged, but something stays"
    ! find / -xdev -path /try -prune -o -name '*kvx2800t*' -path '*__pycache__*' -print | grep . || fail "$*: bytecode stays"
    ! update-alternatives --get-selections | grep kvx2800t || fail "$*: an alternative stays"
    tried=
}

# with_instrument COMMAND...: runs the command with the resource of a virtual instrument behind it
with_instrument() {
    kvx2800t-virtual --port 0 >/tmp/instrument 2>/dev/null &
    instrument=$!
    for _ in $(seq 100); do
        port=$(sed -n 's/^listening on .*:\([0-9]*\)$/\1/p' /tmp/instrument)
        [ -n "$port" ] && break
        sleep 0.1
    done
    ended=0
    "$@" "TCPIP0::127.0.0.1::$port::SOCKET" || ended=$?
    kill "$instrument"
    wait "$instrument" || true
    return "$ended"
}

load_the_driver() {
    python3 -c 'import ctypes; ctypes.CDLL("libKVX2800T.so.1").KVX2800T_init'
    # The VISA of the whole machine does not take the place of the driver's.
    libraries=$(dirname "$(ldconfig -p | sed -n 's/.*libKVX2800T.so.1 .*=> //p')")
    cp "$libraries/kvx2800t/own/libvisa.so" "$libraries/libvisa.so"
    ldconfig
    ldd "$libraries/libKVX2800T.so.1" | grep "libvisa.so => $libraries/kvx2800t/libvisa.so "
    rm "$libraries/libvisa.so"
}

change_the_visa() {
    platform=$(dirname "$(dirname "$(kvx2800t-visa)")")
    [ "$(kvx2800t-visa)" = "$platform/own/libvisa.so" ]
    cp "$platform/own/libvisa.so" /tmp/libvendor.so
    kvx2800t-visa /tmp/libvendor.so >/dev/null
    [ "$(kvx2800t-visa)" = /tmp/libvendor.so ]
    # A new version of the package keeps the choice.
    apt-get install -qq --reinstall kvx2800t-platform >/dev/null 2>&1
    [ "$(kvx2800t-visa)" = /tmp/libvendor.so ]
    kvx2800t-visa own >/dev/null
    [ "$(kvx2800t-visa)" = "$platform/own/libvisa.so" ]
}

build_programs() {
    cc first_session.c $(pkg-config --cflags --libs kvx2800t) -o /tmp/by_pkg_config
    with_instrument /tmp/by_pkg_config
    rm -rf /tmp/source /tmp/build
    mkdir /tmp/source
    cp first_session.c /tmp/source
    cat >/tmp/source/CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.16)
project(program LANGUAGES C)
find_package(KVX2800T 1.0 REQUIRED)
add_executable(program first_session.c)
target_link_libraries(program KVX2800T::KVX2800T)
END
    cmake -S /tmp/source -B /tmp/build >/dev/null
    cmake --build /tmp/build >/dev/null
    with_instrument /tmp/build/program
}

open_a_name() {
    with_instrument python3 -m kvx2800t
    rm -f /tmp/store.xml
    export IVI_MASTER_STORE=/tmp/store.xml
    with_instrument add_and_open
}

add_and_open() {
    kvx2800t-store add Bench1 --create --logical BenchSupply --resource "$1" >/dev/null &&
        python3 -m kvx2800t BenchSupply &&
        kvx2800t doctor BenchSupply
}

look_after_a_store() {
    kvx2800t-store --store /usr/share/doc/kvx2800t/examples/IviConfigurationStore.xml check
    for program in kvx2800t kvx2800t-store kvx2800t-virtual; do
        [ -f "/usr/share/man/man1/$program.1.gz" ]
        [ -f "/usr/share/bash-completion/completions/$program" ]
    done
}

find_the_assembly() {
    # It prints a blank behind the flag.
    assembly=$(pkg-config --libs kvx2800t-cil | sed 's/^-r:\(.*[^ ]\) *$/\1/')
    [ -f "$assembly" ]
}

read_the_help() {
    grep -q '<a href="functions.html">' /usr/share/doc/kvx2800t/html/index.html
    [ -f /usr/share/doc/kvx2800t/KVX2800T.pdf ]
    [ -f /usr/share/doc/kvx2800t/examples/first_session.c ]
}

use_all() {
    build_programs
    open_a_name
}

echo 'deb [trusted=yes] copy:/try/debian ./' >/etc/apt/sources.list.d/try.list
apt-get update -qq

try_packages load_the_driver libkvx2800t1
try_packages change_the_visa kvx2800t-platform
try_packages look_after_a_store kvx2800t-tools
try_packages build_programs libkvx2800t-dev kvx2800t-tools
try_packages open_a_name python3-kvx2800t kvx2800t-tools
try_packages find_the_assembly libkvx2800t-cil
try_packages read_the_help kvx2800t-doc
try_packages use_all /try/debian/*.deb

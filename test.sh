#!/bin/sh
# Tests the project: installs what is missing, builds, and runs all native tests with ctest.
#   ./test.sh         the release build
#   ./test.sh --all   also the format, the help, the Debian packages, clang-tidy, the tests under AddressSanitizer with
#                     UndefinedBehaviorSanitizer and under ThreadSanitizer, a short run of the fuzzers, and the builds for
#                     Windows with their tests under Wine
#   ./test.sh --long  what takes too long for every change: clang-tidy over the tests, its analyzer over all sources, the
#                     driver built on a vendor's components and broken one line at a time (tests/mutants), all of the
#                     attacks of tests/torture, the builds for ARM with their tests under QEMU, a long run of the fuzzers,
#                     the Debian packages in a fresh Debian
set -eu
cd "$(dirname "$0")"
. ./cmake/scripts.sh

# Programs for Windows run in a prefix of their own, which goes with everything that runs in it.
wine_prefix=
finish() {
    if [ -n "$wine_prefix" ]; then
        wait
        WINEPREFIX=$wine_prefix wineserver --kill >/dev/null 2>&1 || true
        rm -rf "$wine_prefix"
    fi
    tell_steps
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Tests spend half of their time waiting: for time-outs, for each other's ends of a connection, for late instruments.
test_jobs=$((2 * $(nproc)))

# run_tests PRESET
run_tests() {
    build "$1"
    step "Testing ($1)"
    ended=0
    ctest --preset "$1" -j "$test_jobs" || ended=$?
    cases=$(count_cases "build/$1/Testing/Temporary/LastTest.log")
    tell_torture "build/$1/Testing/Temporary/LastTest.log"
    say "$cases"
    end_step "$cases"
    [ "$ended" = 0 ] || exit "$ended"
}

# count_cases LOG: what the test programs have said of their cases
count_cases() {
    awk '/^\[  PASSED  \] / { passed += $4 } /^\[  SKIPPED \] [0-9]+ test/ { skipped += $4 }
         /^\[  FAILED  \] [0-9]+ test/ { failed += $4 }
         END { printf "cases: %d passed, %d failed, %d skipped", passed, failed, skipped }' "$1"
}

# tell_torture LOG: the table of the attacks of tests/torture, whose columns but the first are all zero
tell_torture() {
    rows=$(sed -n 's/^torture: //p' "$1")
    [ -n "$rows" ] || return 0
    printf '%-52s%9s%9s%9s%9s%9s\n' Attack injected crashes leaks hangs wrong
    say "$rows"
}

# torture: all of the attacks, with none left out
torture() {
    build release
    step "Torture, all of it"
    ended=0
    KVX_TORTURE=whole ctest --preset release -R '^torture' -j "$test_jobs" || ended=$?
    tell_torture build/release/Testing/Temporary/LastTest.log
    [ "$ended" = 0 ] || exit "$ended"
    step "Working for an hour on a link that is dropped"
    KVX_SOAK_MINUTES=60 build/release/bin/torture_soak_test
}

# test_vendor_platform: the driver built on made-up vendors' components
test_vendor_platform() {
    step "Building on a vendor's components"
    /usr/bin/python3 -B tests/build/vendor_platform_test.py . --build
}

sources() { git ls-files '*.h' '*.hpp' '*.c' '*.cpp'; }

check_format() {
    step "Checking the format"
    [ -n "$(sources)" ] || fail "git lists no sources"
    sources | xargs /usr/bin/python3 -B cmake/check_dialect.py
    sources | xargs -P "$(nproc)" -n 50 clang-format --dry-run --Werror
}

# Where clang's analyzer follows every path in --all; in --long it does so everywhere.
driver='^(api|runtime|instrument|simulator|io|base|binding)/'
others='^(visa|platform|tools|virtual_instrument|examples)/'

# check_tidy CHECKS SOURCES: checks beside those of .clang-tidy, a pattern of cmake/translation_units.py. Several sources
# are read as one, which takes a quarter of the time; the build they are taken from builds only generated headers.
check_tidy() {
    step "Checking with clang-tidy"
    cmake --preset tidy >/dev/null
    cmake --build build/tidy --target generated_headers >/dev/null
    /usr/bin/python3 -B cmake/translation_units.py build/tidy "$2" |
        xargs -P "$(nproc)" -n 1 clang-tidy --quiet --checks="-bugprone-suspicious-include$1" \
            --extra-arg=-Wno-unknown-warning-option -p build/tidy 2>/dev/null
}

check_help() {
    step "Checking the help"
    cmake --build --preset release --target help_files
}

# fuzz INPUTS SECONDS: each fuzzer starts from its corpus, if it has one, and ends after that number of inputs or seconds.
fuzz() {
    build asan-ubsan fuzzers
    step "Fuzzing"
    rm -rf build/found
    ls build/asan-ubsan/bin/fuzz_* | xargs -P "$(nproc)" -I {} fuzz/run.sh {} "$1" "$2"
}

try_faults() {
    step "Breaking the driver line by line"
    tests/mutants/run.sh
}

# test_packages: the Debian packages and `cmake --install`, used without being installed on this machine
test_packages() {
    step "Packaging for Debian"
    packaging/debian/package.sh
    step "Using what is installed"
    /usr/bin/python3 -B tests/packaging/installed_test.py build/release build/debian
}

# try_packages: each of them installed, used and purged in a fresh Debian
try_packages() {
    step "Installing in a fresh Debian"
    packaging/debian/try_packages.sh
}

test_windows() {
    wine_prefix=$(mktemp -d)
    export WINEPREFIX="$wine_prefix"
    # The prefix takes half a minute, most of it spent waiting: it is made while the programs are built.
    cmake/host/wine.sh cmd /c exit >/dev/null 2>&1 &
    run_tests windows-x64
    # Of the 32-bit build the files are checked; its programs run where there is a 32-bit Wine.
    run_tests windows-x86
    step "Packaging for Windows"
    packaging/windows/package.sh
    step "Installing under Wine"
    /usr/bin/python3 -B tests/packaging/windows_installer_test.py build/packages
}

# test_arm: the tests in QEMU's user mode, but for those of cmake/host/not_under_qemu.txt; the virtual instrument is this
# machine's
test_arm() {
    run_tests linux-arm64
    run_tests linux-armhf
}

case "${1-}" in
'')
    install_packages build test
    install_for_panel test
    run_tests release
    ;;
--all)
    install_packages build test package check
    install_for_panel test
    check_format
    run_tests release
    check_help
    test_packages
    check_tidy '' "$driver"
    check_tidy ',-clang-analyzer-*' "$others"
    run_tests asan-ubsan
    run_tests tsan
    fuzz 50000 10
    test_windows
    ;;
--long)
    install_packages build test package check arm root
    install_for_panel
    build release
    test_packages
    try_packages
    check_tidy '' '^(visa|platform|tools|virtual_instrument|examples|tests)/'
    test_vendor_platform
    try_faults
    torture
    test_arm
    fuzz 1000000 600
    ;;
*) fail "usage: ./test.sh [--all | --long]" ;;
esac

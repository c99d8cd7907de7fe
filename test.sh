#!/bin/sh
# Tests the project: installs what is missing, builds, and runs all native tests with ctest.
#   ./test.sh         the release build
#   ./test.sh --all   also the format, the manual, clang-tidy, the tests under AddressSanitizer with
#                     UndefinedBehaviorSanitizer and under ThreadSanitizer, a short run of the fuzzers, and the builds for
#                     Windows with their tests under Wine
#   ./test.sh --tidy  clang-tidy alone, over the tests as well
set -eu
cd "$(dirname "$0")"
. ./cmake/scripts.sh

everything=no
case "${1-}" in
'') ;;
--all | --tidy) everything=yes ;;
*) fail "usage: ./test.sh [--all | --tidy]" ;;
esac

# run_tests PRESET
run_tests() {
    build "$1"
    step "Testing ($1)"
    ctest --preset "$1" -j "$(nproc)"
}

sources() { git ls-files '*.h' '*.hpp' '*.c' '*.cpp'; }

check_format() {
    step "Checking the format"
    [ -n "$(sources)" ] || fail "git lists no sources"
    sources | xargs clang-format --dry-run --Werror
}

# check_tidy FILES-LEFT-OUT: a pattern
check_tidy() {
    step "Checking with clang-tidy"
    sources | grep '\.cpp$' | grep -v -e '^fuzz/' -e '^benchmarks/' -e windows -e mingw -e "$1" | xargs -P "$(nproc)" -n 4 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option -p build/release 2>/dev/null
}

check_manual() {
    step "Checking the manual"
    cmake --build --preset release --target manual
}

# Programs for Windows run in a prefix of their own, which goes with everything that runs in it.
test_windows() {
    WINEPREFIX=$(mktemp -d)
    export WINEPREFIX
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'wineserver --kill >/dev/null 2>&1 || true; rm -rf "$WINEPREFIX"' EXIT
    run_tests windows-x64
    # Of the 32-bit build the files are checked; its programs run where there is a 32-bit Wine.
    run_tests windows-x86
    step "Packaging for Windows"
    packaging/windows/package.sh
}

install_packages build test
if [ "$everything" = no ]; then
    run_tests release
    exit
fi

install_packages check
if [ "$1" = --tidy ]; then
    build release
    check_tidy '^$'
    exit
fi
check_format
run_tests release
check_manual
check_tidy '^tests/'
run_tests asan-ubsan
run_tests tsan

# Each fuzzer starts from its corpus, if it has one, and ends after a fixed number of inputs.
build fuzz fuzzers
step "Fuzzing"
for fuzzer in build/fuzz/bin/fuzz_*; do
    name=$(basename "$fuzzer")
    say "$name"
    corpus=fuzz/corpus/${name#fuzz_}
    [ -d "$corpus" ] || corpus=
    found=build/fuzz/found/$name
    rm -rf "$found" && mkdir -p "$found"
    "$fuzzer" -runs=50000 -seed=1 -max_len=512 "$found" $corpus >build/fuzz/fuzzer.log 2>&1 || { cat build/fuzz/fuzzer.log; fail "$fuzzer"; }
done

test_windows

#!/bin/sh
# Tells how fast the fuzzers are and what they reach of the driver and its platform, with llvm-cov:
#   fuzz/coverage.sh [SECONDS]   for each fuzzer, from its corpus on; 30 unless told otherwise
set -eu
cd "$(dirname "$0")/.."
. ./cmake/scripts.sh
build fuzz-coverage fuzzers >/dev/null
end_step
folder=build/fuzz-coverage
rm -rf "$folder/profiles"
mkdir -p "$folder/profiles"

# run FUZZER: prints its name and its inputs a second.
run() {
    name=$(basename "$1")
    corpus=fuzz/corpus/${name#fuzz_}
    [ -d "$corpus" ] || corpus=
    found=$(mktemp -d)
    LLVM_PROFILE_FILE="$folder/profiles/$name-%m.profraw" "$1" -max_total_time="$2" -seed=1 -max_len=512 -print_final_stats=1 \
        "$found" $corpus >"$folder/$name.log" 2>&1 || { cat "$folder/$name.log"; exit 1; }
    rm -rf "$found"
    printf '%-28s%9s inputs a second\n' "$name" "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$folder/$name.log")"
}

objects=
for fuzzer in "$folder"/bin/fuzz_*; do
    run "$fuzzer" "${1:-30}"
    objects="$objects -object $fuzzer"
done
for library in "$folder"/lib/*.so; do
    objects="$objects -object $library"
done
llvm-profdata merge -o "$folder/all.profdata" "$folder"/profiles/*.profraw
# What is one file for each host is counted for this one.
# shellcheck disable=SC2086
llvm-cov report $objects -instr-profile="$folder/all.profdata" \
    api runtime instrument simulator io base visa platform 2>/dev/null |
    awk '$1 ~ /\.(h|cpp)$/ { split($1, path, "/"); room = path[1]; lines[room] += $8; missed[room] += $9 }
         END { for (room in lines) { printf "%-12s %5d of %5d lines, %5.1f%%\n", room, lines[room] - missed[room], lines[room],
                   100 * (lines[room] - missed[room]) / lines[room]; all += lines[room]; none += missed[room] }
               printf "%-12s %5d of %5d lines, %5.1f%%\n", "all", all - none, all, 100 * (all - none) / all }'

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

for fuzzer in "$folder"/bin/fuzz_*; do
    run "$fuzzer" "${1:-30}"
done
llvm-profdata merge -o "$folder/all.profdata" "$folder"/profiles/*.profraw

# A source counts with what is reached of it in the program that has it best.
for object in "$folder"/bin/fuzz_* "$folder"/lib/*.so; do
    llvm-cov report "$object" -instr-profile="$folder/all.profdata" 2>/dev/null
done | awk '$1 ~ /^(api|runtime|instrument|simulator|io|base|visa|platform)\/.*\.(h|cpp)$/ {
        if (!($1 in lines) || $8 - $9 > reached[$1]) { lines[$1] = $8; reached[$1] = $8 - $9 } }
    END { for (source in lines) { split(source, path, "/"); room = path[1]
            all[room] += lines[source]; all["all"] += lines[source]
            hit[room] += reached[source]; hit["all"] += reached[source] }
        for (room in all) printf "%-12s %5d of %5d lines, %5.1f%%\n", room, hit[room], all[room], 100 * hit[room] / all[room] }' | sort

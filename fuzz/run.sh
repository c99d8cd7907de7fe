#!/bin/sh
# Runs a fuzzer over a number of inputs, or for a number of seconds if those take longer, from its corpus if it has one:
#   fuzz/run.sh FUZZER INPUTS SECONDS
# Quiet unless it finds something, which build/found/<fuzzer> keeps.
set -eu
name=$(basename "$1")
found=build/found/$name
corpus=fuzz/corpus/${name#fuzz_}
[ -d "$corpus" ] || corpus=
mkdir -p "$found"
"$1" -runs="$2" -max_total_time="$3" -seed=1 -max_len=512 "$found" $corpus >"$found.log" 2>&1 || { cat "$found.log"; exit 1; }
sed -n "s/^Done \([0-9]*\) runs in \([0-9]*\) second.*/$name: \1 inputs in \2 s/p" "$found.log"

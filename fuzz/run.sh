#!/bin/sh
# Runs a fuzzer over a number of inputs, from its corpus if it has one: fuzz/run.sh FUZZER INPUTS
# Quiet unless it finds something, which build/found/<fuzzer> keeps.
set -eu
name=$(basename "$1")
found=build/found/$name
corpus=fuzz/corpus/${name#fuzz_}
[ -d "$corpus" ] || corpus=
mkdir -p "$found"
"$1" -runs="$2" -seed=1 -max_len=512 "$found" $corpus >"$found.log" 2>&1 || { cat "$found.log"; exit 1; }
echo "$name: $2 inputs"

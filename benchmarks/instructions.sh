#!/bin/sh
# Instructions of one call, by callgrind: the difference of two runs of different length, so that start-up and end cancel
# out. Unlike times these figures repeat, also on a machine that has other work.
#
#     benchmarks/instructions.sh [BUILD_FOLDER]
#
# The build folder is build/benchmark unless one is named. The instrument is simulated, and then a virtual one.
set -eu

build=${1:-"$(dirname "$0")/../build/benchmark"}
few=1000
many=3000
folder=$(mktemp -d)
instrument=

finish() {
    [ -z "$instrument" ] || kill "$instrument" 2>/dev/null || true
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 1' HUP INT TERM

if ! command -v valgrind >/dev/null; then
    echo "valgrind is missing: apt-get install valgrind" >&2
    exit 1
fi

# total CALL COUNT [RESOURCE]: all instructions of one run.
total() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$build/bin/instruction_count" "$@" 2>"$folder/log" ||
        { cat "$folder/log" >&2; exit 1; }
    sed -n 's/.*Collected : //p' "$folder/log"
}

# show TITLE CALL [RESOURCE]
show() {
    title=$1
    call=$2
    shift 2
    least=$(total "$call" "$few" "$@")
    most=$(total "$call" "$many" "$@")
    printf '%-34s %6d\n' "$title" $(((most - least) / (many - few)))
}

: >"$folder/started"
"$build/bin/kvx2800t-virtual" --port 0 >"$folder/started" 2>/dev/null </dev/null &
instrument=$!
until grep -q listening "$folder/started"; do
    kill -0 "$instrument"
    sleep 0.1
done
resource="TCPIP0::127.0.0.1::$(sed -n 's/^listening on .*://p' "$folder/started")::SOCKET"

show "lockBaseline" lockBaseline
show "configureVoltageLevel, simulated" configureVoltageLevel
show "getVoltageLevel, simulated" getVoltageLevel
show "configureVoltageLevel, loopback" configureVoltageLevel "$resource"
show "getVoltageLevel, loopback" getVoltageLevel "$resource"

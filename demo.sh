#!/bin/sh
# Builds the driver and shows a session of it: installs what is missing, builds, starts the virtual instrument and runs
# examples/first_session.c against it.
set -eu
cd "$(dirname "$0")"
. ./cmake/scripts.sh

install_packages build
build release kvx2800t-virtual first_session

step "Starting the virtual instrument"
output=$(mktemp)
build/release/bin/kvx2800t-virtual --port 0 --load CH1=10 >"$output" 2>&1 &
instrument=$!
trap 'kill "$instrument" 2>/dev/null || true; wait "$instrument" 2>/dev/null || true; rm -f "$output"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

port=
for _ in $(seq 100); do
    port=$(sed -n 's/^listening on .*:\([0-9]*\)$/\1/p' "$output")
    [ -n "$port" ] && break
    sleep 0.1
done
[ -n "$port" ] || { cat "$output"; fail "the virtual instrument did not start"; }
say "kvx2800t-virtual listens on 127.0.0.1:$port"

step "Running examples/first_session.c"
resource=TCPIP0::127.0.0.1::$port::SOCKET
say "opening $resource"
build/release/bin/first_session "$resource"

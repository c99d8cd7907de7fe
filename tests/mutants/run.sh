#!/bin/sh
# Breaks the driver one line at a time and tells which faults no test notices; README.md of this folder says more.
#   tests/mutants/run.sh [--jobs N] [PATTERN...]   the faults whose file has one of the patterns in its name, or all
#   tests/mutants/run.sh --check                   only that each fault has its one place in the sources
set -eu
cd "$(dirname "$0")/../.."
exec /usr/bin/python3 -B tests/mutants/mutants.py "$@"

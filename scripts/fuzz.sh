#!/usr/bin/env bash
# Builds the libFuzzer targets of the file readers with clang in build-fuzz
# and runs each one over its corpus in fuzz/corpus.
#   scripts/fuzz.sh          short run (20000 executions each), as CI does
#   scripts/fuzz.sh long     release run: 10 million executions each, two
#                            fuzzers at a time
#   scripts/fuzz.sh RUNS     any other count
# A finding fails the run and leaves its input in build-fuzz/fuzz/scratch_*
# (crash-*, leak-*, timeout-*, oom-*); reproduce it with
#   build-fuzz/fuzz/fuzz_stl build-fuzz/fuzz/scratch_stl/crash-...
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-20000}
[ "$runs" = long ] && runs=10000000

CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDLA_FUZZ=ON \
  -DDLA_FUZZ_RUNS="$runs" -DDLA_BUILD_GUI=OFF -DDLA_BUILD_BENCH=OFF -DDLA_BUILD_TESTS=OFF -DDLA_PYTHON=OFF >/dev/null
cmake --build build-fuzz -j2 --target fuzz_stl fuzz_seeds fuzz_readline
cd build-fuzz
ctest --output-on-failure --no-tests=error -j2 -L fuzz

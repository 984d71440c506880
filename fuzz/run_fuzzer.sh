#!/usr/bin/env bash
# run_fuzzer.sh FUZZER CORPUS SCRATCH RUNS
# Runs FUZZER for RUNS executions, starting from the inputs in CORPUS (read
# only) and keeping what it learns in SCRATCH. Any crash, leak, sanitizer
# report, timeout or memory overrun fails the run; the offending input is
# left in SCRATCH as crash-*, leak-*, timeout-* or oom-*.
set -euo pipefail
fuzzer=$1 corpus=$2 scratch=$3 runs=$4
mkdir -p "$scratch"
cd "$scratch"
exec "$fuzzer" -runs="$runs" -max_len=4096 -timeout=10 -rss_limit_mb=512 -malloc_limit_mb=64 \
  -print_final_stats=1 "$scratch" "$corpus"

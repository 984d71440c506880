#!/usr/bin/env bash
# One seed, the same cells from a core built at -O2 and one built at -O0.
set -u
fast=$1
slow=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
args=(--cells 800 --seed 4242 --bias 0.6 --rotation 1.5 --stickiness 60 --source 16 --roots 3
      --root-distribution 2 --root-range 4 --associate --no-progress)
"$fast" "${args[@]}" --csv "$dir/fast.csv" || { echo "optimised run failed"; exit 1; }
"$slow" "${args[@]}" --csv "$dir/slow.csv" || { echo "-O0 run failed"; exit 1; }
cmp "$dir/fast.csv" "$dir/slow.csv" || { echo "optimisation changes the cells"; exit 1; }
exit 0

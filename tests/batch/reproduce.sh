#!/usr/bin/env bash
# The same settings twice give byte-identical CSV files.
set -u
bin=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
"$bin" --cells 2000 --csv "$dir/a.csv" --no-progress || { echo "first run failed"; exit 1; }
"$bin" --cells 2000 --csv "$dir/b.csv" --no-progress || { echo "second run failed"; exit 1; }
cmp "$dir/a.csv" "$dir/b.csv" || { echo "runs differ"; exit 1; }
[ "$(head -1 "$dir/a.csv")" = "index,parent,x,y,z,weight" ] || { echo "bad header"; exit 1; }
[ "$(wc -l < "$dir/a.csv")" -eq 2001 ] || { echo "expected 2000 cells"; exit 1; }
[ "$(sed -n 2p "$dir/a.csv" | cut -d, -f1-5)" = "0,-1,0,0,0" ] || { echo "root not first"; exit 1; }
exit 0

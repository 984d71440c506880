#!/usr/bin/env bash
# A sweep run with GNU parallel (2 biases x 3 seeds), its summaries gathered
# into one table: the runs' settings and results in their columns, the means
# over the seeds of each bias, and the refusal of a file that is no summary.
# Usage: gather.sh DLA3D-BATCH scripts/gather_summaries.py
set -u
bin=$1 gather=$2
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_gather.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0
bad() { echo "FAIL: $*"; fail=1; }
command -v parallel >/dev/null || { echo "FAIL: GNU parallel is missing (scripts/install-deps.sh --test)"; exit 1; }

mkdir "$dir/out" "$dir/empty"
parallel --will-cite -j2 "$bin" --cells 300 --seed {2} --bias {1} --summary "$dir/out/b{1}_s{2}.json" \
  ::: 0.2 0.9 ::: 5 6 7 || bad "parallel: status $?"
"$gather" --mean "$dir/out" -o "$dir/t.csv" || bad "gather: status $?"
sed '/^$/q' "$dir/t.csv" | sed '/^$/d' >"$dir/runs.csv"
sed '1,/^$/d' "$dir/t.csv" >"$dir/mean.csv"

want=file,seed,bias,branchlength,stickiness,rotation,thickstart,thickend,nroots,rootrange,rootdistribution,rootname
want+=,associate,intersectrange,sourcetype,sourcename,stlname,nstltri,cells,steps,radius,radius_of_gyration
want+=,dimension_gyration,dimension_boxcount,wall_seconds.growth
[ "$(head -1 "$dir/runs.csv")" = "$want" ] || bad "header: $(head -1 "$dir/runs.csv")"
# Columns: 1 file, 2 seed, 3 bias, 19 cells, 20 steps, 22 radius_of_gyration, 24 dimension_boxcount.
got=$(awk -F, 'NR > 1 { print $2, $3, $19, $24 }' "$dir/runs.csv")
[ "$got" = "$(printf '5 0.2 300 \n6 0.2 300 \n7 0.2 300 \n5 0.9 300 \n6 0.9 300 \n7 0.9 300 ')" ] ||
  bad "seed, bias, cells, dimension_boxcount: $got"
# Each row holds its own file's figures (steps and Rg as numbers: the JSON has 17 digits).
while IFS=, read -r file seed bias rest; do
  [ "$file" = "$dir/out/b${bias}_s$seed.json" ] || bad "row of seed $seed, bias $bias from $file"
  json=$(tr -d '\n ' <"$file")
  steps=$(echo "$json" | sed 's/.*"steps":\([0-9]*\),.*/\1/')
  rg=$(echo "$json" | sed 's/.*"radius_of_gyration":\([0-9.e+-]*\),"gyration.*/\1/')
  echo "$rest" | awk -F, -v s="$steps" -v g="$rg" '{ exit !($17 == s && $19 == g + 0) }' ||
    bad "$file: steps $steps, Rg $rg, row: $rest"
done < <(tail -n +2 "$dir/runs.csv")

# The means: one row a bias, n = 3, worked out here from the rows above (sd over n - 1).
[ "$(head -1 "$dir/mean.csv" | cut -d, -f1-6,9-10)" = bias,n,cells.mean,cells.sd,steps.mean,steps.sd,radius_of_gyration.mean,radius_of_gyration.sd ] ||
  bad "mean header: $(head -1 "$dir/mean.csv")"
[ "$(tail -n +2 "$dir/mean.csv" | cut -d, -f1-2)" = "$(printf '0.2,3\n0.9,3')" ] || bad "groups: $(cat "$dir/mean.csv")"
awk -F, 'NR == FNR { if (FNR > 1) { n[$3]++; s[$3] += $20; ss[$3] += $20 * $20; g[$3] += $22 } next }
  FNR > 1 { b = $1; m = s[b] / n[b]; sd = sqrt((ss[b] - n[b] * m * m) / (n[b] - 1))
    if (!($3 == 300 && $4 == 0 && $5 == m && (($6 - sd) ^ 2) < 1e-12 * sd * sd && (($9 - g[b] / n[b]) ^ 2) < 1e-24)) {
      printf "FAIL: bias %s: steps mean %s sd %s, Rg mean %s; want %.17g %.17g %.17g\n", b, $5, $6, $9, m, sd, g[b] / n[b]
      bad = 1 } }
  END { exit bad }' "$dir/runs.csv" "$dir/mean.csv" || fail=1

# A file that is no summary is named, status 1; an empty directory gives the header alone.
echo '{"cells": 300}' >"$dir/out/other.json"
"$gather" "$dir/out" >/dev/null 2>"$dir/err"
[ $? = 1 ] && [ "$(cat "$dir/err")" = "gather_summaries.py: $dir/out/other.json: not a dla3d summary (no \"program\": \"dla3d\" with \"settings\")" ] ||
  bad "not a summary: $(cat "$dir/err")"
[ "$("$gather" "$dir/empty" 2>/dev/null)" = file,cells,steps,radius,radius_of_gyration,dimension_gyration,dimension_boxcount,wall_seconds.growth ] ||
  bad "empty directory"
exit $fail

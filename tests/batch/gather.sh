#!/usr/bin/env bash
# A sweep run with GNU parallel (2 biases x 3 seeds), its summaries gathered
# into one table: a row a run, its settings and results in their columns, and
# the mean and sd over the seeds of each bias, worked out here from the JSON
# files; a file that is no summary refused, an empty directory a header.
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
/usr/bin/python3 - "$dir/t.csv" "$dir/out" <<'PY' || fail=1
import csv, glob, json, statistics, sys
table = open(sys.argv[1]).read().split("\n\n")
runs, means = list(csv.DictReader(table[0].splitlines())), list(csv.DictReader(table[1].splitlines()))
bad = []
if list(runs[0])[:3] != ["file", "seed", "bias"] or list(runs[0])[-7:] != ["cells", "steps", "radius",
        "radius_of_gyration", "dimension_gyration", "dimension_boxcount", "wall_seconds.growth"]:
    bad.append("columns %s" % list(runs[0]))
for f in sorted(glob.glob(sys.argv[2] + "/*.json")):
    s, row = json.load(open(f)), [r for r in runs if r["file"] == f]
    if len(row) != 1 or [float(row[0][k]) for k in ("seed", "bias", "steps", "radius_of_gyration")] != \
            [s["settings"]["seed"], s["settings"]["bias"], s["steps"], s["radius_of_gyration"]] or row[0]["dimension_boxcount"]:
        bad.append("%s: rows %s" % (f, row))
for bias, m in zip(("0.2", "0.9"), means):
    steps = [json.load(open(f))["steps"] for f in glob.glob("%s/b%s_s*.json" % (sys.argv[2], bias))]
    if [m["bias"], m["n"]] != [bias, "3"] or abs(float(m["steps.mean"]) - statistics.mean(steps)) > 1e-9 * max(steps) or \
            abs(float(m["steps.sd"]) - statistics.stdev(steps)) > 1e-9 * max(steps):
        bad.append("bias %s: %s, steps %s" % (bias, m, steps))
for b in bad: print("FAIL:", b)
sys.exit(1 if bad or len(means) != 2 else 0)
PY
echo '{"cells": 300}' >"$dir/out/other.json"
"$gather" "$dir/out" >/dev/null 2>"$dir/err"
[ $? = 1 ] && [ "$(cat "$dir/err")" = "gather_summaries.py: $dir/out/other.json: not a dla3d summary (no \"program\": \"dla3d\" with \"settings\")" ] ||
  bad "not a summary: $(cat "$dir/err")"
[ "$("$gather" "$dir/empty" 2>/dev/null)" = file,cells,steps,radius,radius_of_gyration,dimension_gyration,dimension_boxcount,wall_seconds.growth ] ||
  bad "empty directory"
exit $fail

"""A --summary file against the CSV (and report) of its run, KEY=VALUE against its
fields or settings. Usage: /usr/bin/python3 summary_check.py SUMMARY CSV [REPORT [KEY=VALUE...]]"""
import json
import sys

import numpy as np

s = json.load(open(sys.argv[1]))
csv = np.loadtxt(sys.argv[2], delimiter=",", skiprows=1, ndmin=2)
parent, pos = csv[:, 1].astype(int), csv[:, 2:5]
fails = []


def check(what, got, want, tol=1e-12):
    if got is None or abs(got - want) > tol * max(1, abs(want)):
        fails.append("%s: %s, expected %s" % (what, got, want))


def gyration(n):  # the first N rows are the aggregate at N cells: they are appended in order
    return np.sqrt(((pos[:n] - pos[:n].mean(0)) ** 2).sum(1).mean())


def slope(x, y):
    return np.polyfit(x, y, 1)[0]


check("cells", s["cells"], len(csv), 0)
check("radius", s["radius"], max(10, np.sqrt((pos ** 2).sum(1)).max()))
check("radius_of_gyration", s["radius_of_gyration"], gyration(len(csv)))
points = s["gyration_checkpoints"]
n = [p["cells"] for p in points]
for p in points:
    check("gyration at %d cells" % p["cells"], p["radius_of_gyration"], gyration(p["cells"]))
if n[:1] != [100] or not all(1.2 < b / a < 1.33 for a, b in zip(n, n[1:])):
    fails.append("checkpoints at %s, not from 100 a tenth of a decade apart" % n)
if len(points) >= 2:
    check("dimension_gyration", s["dimension_gyration"],
          1 / slope(np.log(n), np.log([p["radius_of_gyration"] for p in points])), 1e-9)
if len(sys.argv) > 3:
    # The report's box counting lines: size, N, log(1/size), log(N).
    text = open(sys.argv[3]).read().splitlines()
    levels = np.array([l.split() for l in text[text.index("   Box counting [ size, N, log(1/size), log(N) ]") + 1:]], float)
    if [b["n"] for b in s["box_counts"]] != levels[:, 1].astype(int).tolist():
        fails.append("box counts %s, the report's %s" % (s["box_counts"], levels))
    check("dimension_boxcount", s["dimension_boxcount"], slope(levels[:, 2], levels[:, 3]), 1e-5)
    want = np.bincount(np.minimum(np.bincount(parent[parent >= 0], minlength=len(csv)), 9), minlength=10).tolist()
    if s["branch_distribution"] != want:
        fails.append("branch_distribution %s, from the CSV %s" % (s["branch_distribution"], want))
elif s["dimension_boxcount"] is not None or s["branch_distribution"] is not None:
    fails.append("statistics in a run without --stats")
for pair in sys.argv[4:]:
    key, value = pair.split("=")
    check(key, s[key] if key in s else s["settings"][key], float(value), 0)
if not 0 < s["wall_seconds"]["growth"] <= s["wall_seconds"]["total"]:
    fails.append("wall_seconds %s" % s["wall_seconds"])
for f in fails[:10]:
    print("FAIL:", f)
sys.exit(1 if fails else 0)

"""A --summary file against the CSV (and report) of its run, KEY=VALUE against its
fields or settings. Usage: /usr/bin/python3 summary_check.py SUMMARY CSV [REPORT [KEY=VALUE...]]"""
import collections
import json
import math
import sys

s = json.load(open(sys.argv[1]))
rows = [[float(v) for v in l.split(",")] for l in open(sys.argv[2]).read().splitlines()[1:]]
fails = []


def check(what, got, want, tol=1e-12):
    if got is None or abs(got - want) > tol * max(1, abs(want)):
        fails.append("%s: %s, expected %s" % (what, got, want))


def gyration(n):
    c = [sum(r[k] for r in rows[:n]) / n for k in (2, 3, 4)]
    return math.sqrt(sum((r[2] - c[0]) ** 2 + (r[3] - c[1]) ** 2 + (r[4] - c[2]) ** 2 for r in rows[:n]) / n)


def slope(x, y):
    mx, my = sum(x) / len(x), sum(y) / len(y)
    return sum((a - mx) * (b - my) for a, b in zip(x, y)) / sum((a - mx) ** 2 for a in x)


check("cells", s["cells"], len(rows), 0)
check("radius", s["radius"], max([10] + [math.sqrt(r[2] ** 2 + r[3] ** 2 + r[4] ** 2) for r in rows]))
check("radius_of_gyration", s["radius_of_gyration"], gyration(len(rows)))
# The cells are appended in order: the first N rows are the aggregate at N cells.
points = s["gyration_checkpoints"]
for k, p in enumerate(points):
    check("gyration at %d cells" % p["cells"], p["radius_of_gyration"], gyration(p["cells"]))
    if k and not 1.2 < p["cells"] / points[k - 1]["cells"] < 1.33:
        fails.append("checkpoints %d and %d are not a tenth of a decade apart" % (points[k - 1]["cells"], p["cells"]))
if points and points[0]["cells"] != 100:
    fails.append("the first checkpoint is at %d cells" % points[0]["cells"])
if len(points) >= 2:
    check("dimension_gyration", s["dimension_gyration"],
          1 / slope([math.log(p["cells"]) for p in points], [math.log(p["radius_of_gyration"]) for p in points]), 1e-9)
if len(sys.argv) > 3:
    # The report's box counting lines: size, N, log(1/size), log(N).
    text = open(sys.argv[3]).read().splitlines()
    check("version", s["version"], float(text[0].split()[1]), 0)
    levels = [l.split() for l in text[text.index("   Box counting [ size, N, log(1/size), log(N) ]") + 1:]]
    if [b["n"] for b in s["box_counts"]] != [int(l[1]) for l in levels]:
        fails.append("box counts %s, the report's %s" % (s["box_counts"], levels))
    check("dimension_boxcount", s["dimension_boxcount"],
          slope([float(l[2]) for l in levels], [float(l[3]) for l in levels]), 1e-5)
    kids = collections.Counter(int(r[1]) for r in rows)  # roots under -1
    want = [sum(1 for i in range(len(rows)) if min(kids[i], 9) == n) for n in range(10)]
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

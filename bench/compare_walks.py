#!/usr/bin/python3
"""Grows aggregates with the exact and the fast walk over several seeds and
prints their statistics side by side: the radius of gyration and its
dimension, the final radius, the branch distribution (shares of cells with
0, 1, 2, 3 and more children) and time. The fast walk agrees when each mean lies
within the exact walk's seed-to-seed spread (one standard deviation).

One table per setting: by default the program's defaults and --bias 0
(pure DLA, no drift); --setting OPTIONS (repeatable) replaces them, and the
extra options after -- go to every run. "Rg dimension" is fitted over the
whole growth, "last decade" over its last tenfold in cells.

The exact walk's cells never change (bench/README.md keeps the checksum of
its million-cell aggregate), so --keep DIR stores the exact runs' figures
there and reuses them: at a million cells they take minutes each. --walks
exact grows only those (to fill DIR ahead of time).

Usage: bench/compare_walks.py [--batch build/dla3d-batch] [--cells 100000]
                              [--seeds 10] [--first-seed 1] [--keep DIR]
                              [--walks exact|fast|both]
                              [--setting "--bias 0" ...] [-- extra options]
"""
import argparse
import json
import math
import os
import subprocess
import sys
import tempfile
import time


def read_cells(path):
    cells = []
    with open(path) as f:
        next(f)  # index,parent,x,y,z,weight
        for line in f:
            parts = line.split(",")
            cells.append((int(parts[1]), float(parts[2]), float(parts[3]), float(parts[4])))
    return cells


def gyration_radius(cells):
    """Radius of gyration of all the cells about their centre."""
    n = len(cells)
    sx = sum(c[1] for c in cells) / n
    sy = sum(c[2] for c in cells) / n
    sz = sum(c[3] for c in cells) / n
    return math.sqrt(sum((x - sx) ** 2 + (y - sy) ** 2 + (z - sz) ** 2 for _, x, y, z in cells) / n)


def gyration_dimension(cells, first=None):
    """Slope of log(n) against log(Rg(n)) over the first n cells, n from
    first (default 1000, or a hundredth) to all, twelve sizes spaced evenly
    in log n."""
    n = len(cells)
    if first is None:
        first = max(50, min(1000, n // 100))
    sizes = sorted({int(round(first * (n / first) ** (k / 11))) for k in range(12)})
    sx = sy = sz = s2 = 0.0
    points = []
    want = 0
    for i, (_, x, y, z) in enumerate(cells, 1):
        sx += x
        sy += y
        sz += z
        s2 += x * x + y * y + z * z
        if want < len(sizes) and i == sizes[want]:
            rg2 = s2 / i - (sx / i) ** 2 - (sy / i) ** 2 - (sz / i) ** 2
            points.append((math.log(math.sqrt(rg2)), math.log(i)))
            want += 1
    mx = sum(p[0] for p in points) / len(points)
    my = sum(p[1] for p in points) / len(points)
    sxy = sum((p[0] - mx) * (p[1] - my) for p in points)
    sxx = sum((p[0] - mx) ** 2 for p in points)
    return sxy / sxx


def statistics(cells):
    children = [0] * len(cells)
    for parent, _, _, _ in cells:
        if parent >= 0:
            children[parent] += 1
    shares = [0] * 5
    for c in children:
        shares[min(c, 4)] += 1
    radius = max(math.sqrt(x * x + y * y + z * z) for _, x, y, z in cells)
    out = {"Rg": gyration_radius(cells), "Rg dimension": gyration_dimension(cells),
           "last decade": gyration_dimension(cells, len(cells) // 10), "final radius": radius}
    for k in range(5):
        out["children %s" % (k if k < 4 else "4+")] = shares[k] / len(cells)
    return out


def grow(batch, walk, seed, cells, extra, csv):
    start = time.time()
    subprocess.run([batch, "--no-progress", "--walk", walk, "--seed", str(seed), "--cells", str(cells),
                    "--csv", csv] + extra, check=True)
    return time.time() - start


def mean_sd(values):
    m = sum(values) / len(values)
    sd = math.sqrt(sum((v - m) ** 2 for v in values) / (len(values) - 1)) if len(values) > 1 else 0.0
    return m, sd


def run(args, walk, seed, options, csv):
    """The figures of one run and its seconds, from --keep's store when the
    exact walk grew it before."""
    kept = None
    if args.keep and walk == "exact":
        name = "exact_%d_%d_%s.json" % (args.cells, seed, "_".join(options).replace("-", "") or "defaults")
        kept = os.path.join(args.keep, name)
        if os.path.exists(kept):
            with open(kept) as f:
                stored = json.load(f)
            return stored["figures"], stored["seconds"]
    seconds = grow(args.batch, walk, seed, args.cells, options, csv)
    figures = statistics(read_cells(csv))
    if kept:
        os.makedirs(args.keep, exist_ok=True)
        with open(kept, "w") as f:
            json.dump({"figures": figures, "seconds": seconds}, f)
    return figures, seconds


def compare(args, setting):
    """Grows both walks for every seed with the options of setting, prints
    the table; returns the number of statistics that differ."""
    options = setting + args.extra
    walks = ("exact", "fast") if args.walks == "both" else (args.walks,)
    results = {"exact": [], "fast": []}
    seconds = {"exact": [], "fast": []}
    with tempfile.TemporaryDirectory() as tmp:
        csv = os.path.join(tmp, "cells.csv")
        for seed in range(args.first_seed, args.first_seed + args.seeds):
            for walk in walks:
                figures, took = run(args, walk, seed, options, csv)
                results[walk].append(figures)
                seconds[walk].append(took)
                print("%s seed %d: %s %.1f s" % (" ".join(options) or "defaults", seed, walk, took), file=sys.stderr)
    if len(walks) < 2:
        return 0

    print("%d cells, seeds %d to %d, %s" % (args.cells, args.first_seed, args.first_seed + args.seeds - 1,
                                            ("options " + " ".join(options)) if options else "defaults"))
    print("%-14s %22s %22s %8s  %s" % ("", "exact mean +- sd", "fast mean +- sd", "diff/sd", "verdict"))
    disagree = 0
    for key in results["exact"][0]:
        em, es = mean_sd([r[key] for r in results["exact"]])
        fm, fs = mean_sd([r[key] for r in results["fast"]])
        ratio = abs(fm - em) / es if es > 0 else (0.0 if fm == em else math.inf)
        verdict = "agree" if ratio <= 1 else "DIFFER"
        disagree += verdict != "agree"
        print("%-14s %12.4f +- %7.4f %12.4f +- %7.4f %8.2f  %s" % (key, em, es, fm, fs, ratio, verdict))
    em, es = mean_sd(seconds["exact"])
    fm, fs = mean_sd(seconds["fast"])
    print("%-14s %12.1f +- %7.1f %12.1f +- %7.1f" % ("seconds", em, es, fm, fs))
    sys.stdout.flush()
    return disagree


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--batch", default="build/dla3d-batch")
    ap.add_argument("--cells", type=int, default=100000)
    ap.add_argument("--seeds", type=int, default=10)
    ap.add_argument("--first-seed", type=int, default=1)
    ap.add_argument("--keep", metavar="DIR", help="store and reuse the exact walk's figures here")
    ap.add_argument("--walks", choices=("both", "exact", "fast"), default="both")
    ap.add_argument("--setting", action="append", metavar="OPTIONS",
                    help='dla3d-batch options of one table (default: the defaults, then "--bias 0")')
    ap.add_argument("extra", nargs="*", help="further dla3d-batch options for every run, after --")
    args = ap.parse_args()

    settings = args.setting if args.setting is not None else ["", "--bias 0"]
    disagree = 0
    for k, setting in enumerate(settings):
        if k:
            print()
        disagree += compare(args, setting.split())
    return 1 if disagree else 0


if __name__ == "__main__":
    sys.exit(main())

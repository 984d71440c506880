#!/usr/bin/env python3
"""Gathers the --summary files of many dla3d-batch runs into one CSV table.

  gather_summaries.py [-o FILE] [--mean] PATH...

Each PATH is a summary file or a directory searched (with its subdirectories)
for *.json files. One row per run: the file, every setting of the run, then
the results. With --mean, an empty line and a second table follow: one row
per combination of the settings that differ between the runs apart from the
seed, with the number of runs and the mean and standard deviation (n - 1) of
each result. Standard library only, so any python3 runs it.

Exit status 0, or 1 with a message naming the file that is missing, not JSON
or not a dla3d summary.
"""

import argparse
import csv
import json
import math
import os
import re
import sys

PROGRAM = "gather_summaries.py"
# (column, path of keys in the summary); all numbers, null where not measured.
RESULTS = [
    ("cells", ("cells",)),
    ("steps", ("steps",)),
    ("radius", ("radius",)),
    ("radius_of_gyration", ("radius_of_gyration",)),
    ("dimension_gyration", ("dimension_gyration",)),
    ("dimension_boxcount", ("dimension_boxcount",)),
    ("wall_seconds.growth", ("wall_seconds", "growth")),
]


class NotSummary(Exception):
    pass


def natural_key(path):
    # out/10.json after out/9.json: a seed's digits sort as a number.
    return [(0, int(t), "") if t.isdigit() else (1, 0, t) for t in re.split(r"(\d+)", path)]


def find_files(paths):
    files = []
    for p in paths:
        if os.path.isdir(p):
            found = []
            for top, dirs, names in os.walk(p):
                found += [os.path.join(top, n) for n in names if n.endswith(".json")]
            files += sorted(found, key=natural_key)
        elif os.path.exists(p):
            files.append(p)
        else:
            raise NotSummary("%s: no such file or directory" % p)
    seen, unique = set(), []
    for f in files:
        real = os.path.realpath(f)
        if real not in seen:
            seen.add(real)
            unique.append(f)
    return unique


def is_number(v):
    return isinstance(v, (int, float)) and not isinstance(v, bool)


def read_summary(path):
    try:
        with open(path, encoding="utf-8") as f:
            data = json.load(f)
    except OSError as e:
        raise NotSummary("%s: cannot be read (%s)" % (path, e.strerror))
    except ValueError as e:  # UnicodeDecodeError too
        raise NotSummary("%s: not a dla3d summary (not JSON: %s)" % (path, e))
    if not isinstance(data, dict) or data.get("program") != "dla3d" or not isinstance(data.get("settings"), dict):
        raise NotSummary("%s: not a dla3d summary (no \"program\": \"dla3d\" with \"settings\")" % path)
    results = {}
    for column, keys in RESULTS:
        v = data
        for k in keys:
            if not isinstance(v, dict) or k not in v:
                raise NotSummary("%s: not a dla3d summary (no \"%s\")" % (path, ".".join(keys)))
            v = v[k]
        if v is not None and not is_number(v):
            raise NotSummary("%s: \"%s\" is not a number" % (path, column))
        results[column] = v
    return data["settings"], results


def text(v):
    # JSON's spelling for true, false and null (empty); every digit of a float.
    if v is None:
        return ""
    if isinstance(v, bool):
        return "true" if v else "false"
    if isinstance(v, float):
        return repr(v)
    if isinstance(v, (dict, list)):
        return json.dumps(v)
    return str(v)


def sort_value(v):
    return (0, v, "") if is_number(v) else (1, 0, text(v))


def mean_table(runs, setting_keys):
    varying = [k for k in setting_keys
               if k != "seed" and len(set(text(s.get(k)) for s, r in runs)) > 1]
    groups, values = {}, {}
    for s, r in runs:
        key = tuple(text(s.get(k)) for k in varying)
        groups.setdefault(key, []).append(r)
        values[key] = [s.get(k) for k in varying]
    header = varying + ["n"]
    for column, keys in RESULTS:
        header += [column + ".mean", column + ".sd"]
    rows = []
    for key in sorted(groups, key=lambda g: [sort_value(v) for v in values[g]]):
        group = groups[key]
        row = list(key) + [str(len(group))]
        for column, keys in RESULTS:
            # Nulls (a dimension with nothing to fit) are left out.
            xs = [r[column] for r in group if r[column] is not None]
            mean = math.fsum(xs) / len(xs) if xs else None
            sd = math.sqrt(math.fsum((x - mean) ** 2 for x in xs) / (len(xs) - 1)) if len(xs) > 1 else None
            row += [text(mean), text(sd)]
        rows.append(row)
    return header, rows


def main(argv):
    ap = argparse.ArgumentParser(prog=PROGRAM, description=__doc__.split("\n\n")[0])
    ap.add_argument("paths", nargs="+", metavar="PATH", help="summary files or directories of them")
    ap.add_argument("-o", metavar="FILE", help="write the table to FILE (standard output otherwise)")
    ap.add_argument("--mean", action="store_true",
                    help="add the mean and standard deviation over the seeds of each setting")
    args = ap.parse_args(argv)
    try:
        files = find_files(args.paths)
        runs = [read_summary(f) for f in files]
    except NotSummary as e:
        print("%s: %s" % (PROGRAM, e), file=sys.stderr)
        return 1
    if not files:
        print("%s: no summary files in %s" % (PROGRAM, " ".join(args.paths)), file=sys.stderr)

    setting_keys = []
    for s, r in runs:
        setting_keys += [k for k in s if k not in setting_keys]
    result_keys = [column for column, keys in RESULTS]
    try:
        out = open(args.o, "w", newline="", encoding="utf-8") if args.o else sys.stdout
    except OSError as e:
        print("%s: %s: %s" % (PROGRAM, args.o, e.strerror), file=sys.stderr)
        return 1
    w = csv.writer(out, lineterminator="\n")
    w.writerow(["file"] + setting_keys + result_keys)
    for f, (s, r) in zip(files, runs):
        w.writerow([f] + [text(s.get(k)) for k in setting_keys] + [text(r[k]) for k in result_keys])
    if args.mean:
        header, rows = mean_table(runs, setting_keys)
        out.write("\n")
        w.writerow(header)
        w.writerows(rows)
    if out is not sys.stdout:
        out.close()
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except BrokenPipeError:  # gather_summaries.py out | head
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)

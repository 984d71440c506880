"""Reads dla3d-batch's binary PLY with struct against the CSV of the run: the
header, each cell's position (as float), weight and root, an edge from each
cell's parent. Usage: /usr/bin/python3 ply_check.py FILE.ply FILE.csv"""
import struct
import sys

rows = [l.split(",") for l in open(sys.argv[2]).read().splitlines()[1:]]
parent = [int(r[1]) for r in rows]
root = list(range(len(rows)))
for i, q in enumerate(parent):
    root[i] = root[q] if q >= 0 else i
links = [(q, i) for i, q in enumerate(parent) if q >= 0]

head, body = open(sys.argv[1], "rb").read().split(b"end_header\n", 1)
lines = [l for l in head.decode("ascii").split("\n") if not l.startswith("comment ")]
want = ["ply", "format binary_little_endian 1.0", "element vertex %d" % len(rows), "property float x",
        "property float y", "property float z", "property double weight", "property int root",
        "element edge %d" % len(links), "property int vertex1", "property int vertex2", ""]
if lines != want:
    sys.exit("FAIL: header %s, expected %s" % (lines, want))
if len(body) != 24 * len(rows) + 8 * len(links):
    sys.exit("FAIL: %d bytes of data for %d cells and %d edges" % (len(body), len(rows), len(links)))
for i, (x, y, z, w, r) in enumerate(struct.iter_unpack("<fffdi", body[:24 * len(rows)])):
    csv = rows[i]
    as_float = struct.unpack("<3f", struct.pack("<3f", *(float(v) for v in csv[2:5])))
    if (x, y, z) != as_float or w != float(csv[5]) or r != root[i]:
        sys.exit("FAIL: cell %d: %s %s root %d; the CSV: %s, root %d" % (i, (x, y, z), w, r, csv[2:6], root[i]))
edges = sorted(struct.iter_unpack("<ii", body[24 * len(rows):]))
if edges != sorted(links):
    sys.exit("FAIL: the edges are not the parent links (%d of %d agree)" % (len(set(edges) & set(links)), len(links)))

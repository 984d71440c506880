"""Checks dla3d-batch's binary PLY against the CSV of the same run, and what
VTK's vtkPLYReader (ParaView's) and MeshLab (the PLY meshlabserver wrote
back with -m vc vq) read of it: each cell's position (as float), weight,
root, colour and quality, an edge from each cell's parent.
Usage: /usr/bin/python3 ply_check.py FILE.ply FILE.csv MESHLAB.ply root|weight
(root: the three roots' colours, red, green, blue; weight: the ramp)."""
import sys

import numpy as np
import vtk
from vtk.util.numpy_support import vtk_to_numpy

path, csvpath, meshlabpath, colouring = sys.argv[1:5]
csv = np.loadtxt(csvpath, delimiter=",", skiprows=1, ndmin=2)
parent, pos, weight = csv[:, 1].astype(int), csv[:, 2:5], csv[:, 5]
n = len(csv)
root = np.arange(n)
for i, q in enumerate(parent):
    root[i] = root[q] if q >= 0 else i
links = sorted((q, i) for i, q in enumerate(parent) if q >= 0)
errors = []


def read_ply(name):
    """A binary little-endian PLY of scalar properties (an element of lists
    only when empty): its header lines without comments, and each element as
    a numpy record array. The data must end where the last element does."""
    head, body = open(name, "rb").read().split(b"end_header\n", 1)
    lines = [l for l in head.decode("ascii").split("\n") if not l.startswith("comment ")]
    types = {"char": "i1", "uchar": "u1", "short": "<i2", "ushort": "<u2", "int": "<i4", "uint": "<u4",
             "float": "<f4", "double": "<f8"}
    elements, at = {}, 0
    for l in lines:
        w = l.split()
        if w[:1] == ["element"]:
            fields, count = [], int(w[2])
            elements[w[1]] = (fields, count)
        elif w[:2] == ["property", "list"]:
            fields.append(None)
        elif w[:1] == ["property"]:
            fields.append((w[2], types[w[1]]))
    data = {}
    for element, (fields, count) in elements.items():
        if count and None in fields:
            sys.exit("FAIL: %s: element %s has lists" % (name, element))
        dtype = np.dtype([f for f in fields if f])
        data[element] = np.frombuffer(body, dtype, count, at)
        at += dtype.itemsize * count
    if at != len(body):
        errors.append("%s: %d bytes of data, the header describes %d" % (name, len(body), at))
    return lines, data


lines, ply = read_ply(path)
want = ["ply", "format binary_little_endian 1.0", "element vertex %d" % n, "property float x", "property float y",
        "property float z", "property double weight", "property int root", "property uchar red",
        "property uchar green", "property uchar blue", "property float quality", "element edge %d" % len(links),
        "property int vertex1", "property int vertex2", ""]
if lines != want:
    sys.exit("FAIL: header %s, expected %s" % (lines, want))
v = ply["vertex"]
xyz, rgb = np.stack([v["x"], v["y"], v["z"]], 1), np.stack([v["red"], v["green"], v["blue"]], 1)
# The colours at the ends of the scales: root class i mod 3 in red, green,
# blue; by weight, blue for a tip, red from a third of the largest weight on.
children = np.bincount(parent[parent >= 0], minlength=n)
if colouring == "root":
    known, colour = np.full(n, True), 255 * np.eye(3, dtype=int)[np.arange(n) % 3]
else:
    known = (children == 0) | (weight >= weight.max() / 3)
    colour = np.where((children == 0)[:, None], [0, 0, 255], [255, 0, 0])
for what, got, expected in [("position", xyz, pos.astype(np.float32)), ("weight", v["weight"], weight),
                            ("root", v["root"], root), ("quality", v["quality"], weight.astype(np.float32)),
                            ("colour", rgb[known], colour[known])]:
    bad = np.flatnonzero((got != expected).reshape(len(got), -1).any(1))
    if len(bad):
        errors.append("%s of %d cells differ, first %s, expected %s" % (what, len(bad), got[bad[0]], expected[bad[0]]))
edges = sorted(zip(ply["edge"]["vertex1"].tolist(), ply["edge"]["vertex2"].tolist()))
if edges != links:
    errors.append("the edges are not the parent links (%d of %d agree)" % (len(set(edges) & set(links)), len(links)))

# ParaView's reader: the points and their colours.
reader = vtk.vtkPLYReader()
reader.SetFileName(path)
reader.Update()
out = reader.GetOutput()
rgbarray = out.GetPointData().GetArray("RGB")
if out.GetNumberOfPoints() != n or rgbarray is None or (vtk_to_numpy(rgbarray) != rgb).any() or \
        (vtk_to_numpy(out.GetPoints().GetData()) != xyz).any():
    errors.append("vtkPLYReader: %d points, colours %s" % (out.GetNumberOfPoints(), rgbarray))

# MeshLab wrote back only what it read.
_, meshlab = read_ply(meshlabpath)
m = meshlab.get("vertex", np.zeros(0, v.dtype))
for name in ["x", "y", "z", "red", "green", "blue", "quality"]:
    if name not in m.dtype.names or len(m) != n or (m[name] != v[name]).any():
        errors.append("MeshLab read %d vertices, %s: %s" % (len(m), name, m[name][:4] if name in m.dtype.names else "none"))
        break

for e in errors[:10]:
    print("FAIL:", e)
sys.exit(1 if errors else 0)

"""Checks a file of dla3d-batch's cells against the CSV of the same run: each
cell's position, weight and root, a link from each cell's parent.
  FILE.vtp CSV                  VTK's XML reader (ParaView's), and the growth order
  FILE.ply CSV MESHLAB.ply root|weight
                                the bytes (binary little-endian, the header as
                                written) and what MeshLab read of them (the PLY
                                meshlabserver -m vc vq wrote back); the colours at
                                the ends of their scale (root: the three roots red,
                                green and blue), the weight as quality
Usage: /usr/bin/python3 cells_check.py FILE CSV [MESHLAB.ply root|weight]"""
import sys

import numpy as np

path, csvpath = sys.argv[1:3]
csv = np.loadtxt(csvpath, delimiter=",", skiprows=1, ndmin=2)
parent, pos, weight, n = csv[:, 1].astype(int), csv[:, 2:5], csv[:, 5], len(csv)
root = np.arange(n)
for i, q in enumerate(parent):
    root[i] = root[q] if q >= 0 else i
links = sorted((q, i) for i, q in enumerate(parent) if q >= 0)
errors = []


def differ(what, got, want):
    bad = np.flatnonzero((got != want).reshape(n, -1).any(1)) if len(got) == n else [0]
    if len(bad):
        errors.append("%s of %d cells differ, first %s, expected %s" % (what, len(bad), got[bad[0]], want[bad[0]]))


def read_ply(name):
    """A binary little-endian PLY of scalar properties (an element of lists
    only when empty): its header lines without comments, and each element as
    a numpy record array. The data must end where the last element does."""
    head, body = open(name, "rb").read().split(b"end_header\n", 1)
    lines = [l for l in head.decode("ascii").split("\n") if not l.startswith("comment ")]
    types = {"uchar": "u1", "int": "<i4", "float": "<f4", "double": "<f8"}
    elements, data, at = {}, {}, 0
    for w in (l.split() for l in lines):
        if w[:1] == ["element"]:
            fields = elements[w[1]] = ([], int(w[2]))
        elif w[:1] == ["property"]:
            fields[0].append((w[2], types[w[1]]) if w[1] != "list" else None)
    for element, (fields, count) in elements.items():
        if count and None in fields:
            sys.exit("FAIL: %s: element %s has lists" % (name, element))
        dtype = np.dtype([f for f in fields if f])
        data[element] = np.frombuffer(body, dtype, count, at)
        at += dtype.itemsize * count
    if at != len(body):
        errors.append("%s: %d bytes of data, the header describes %d" % (name, len(body), at))
    return lines, data


if path.endswith(".vtp"):
    import vtk
    from vtk.util.numpy_support import vtk_to_numpy as arr

    reader = vtk.vtkXMLPolyDataReader()
    reader.AddObserver("ErrorEvent", lambda *a: errors.append("vtkXMLPolyDataReader reported an error"))
    reader.SetFileName(path)
    reader.Update()
    out = reader.GetOutput()
    differ("position", arr(out.GetPoints().GetData()), pos)
    lines = out.GetLines()
    if out.GetNumberOfCells() != len(links) or (np.diff(arr(lines.GetOffsetsArray())) != 2).any() or \
            sorted(map(tuple, arr(lines.GetConnectivityArray()).reshape(-1, 2).tolist())) != links:
        errors.append("the %d cells are not the %d parent links" % (out.GetNumberOfCells(), len(links)))
    for name, vtktype, want in [("weight", vtk.VTK_DOUBLE, weight), ("root", vtk.VTK_INT, root),
                                ("order", vtk.VTK_INT, np.arange(n))]:
        a = out.GetPointData().GetArray(name)
        if a is None or a.GetDataType() != vtktype:
            errors.append("array %s: %s" % (name, a))
        else:
            differ(name, arr(a), want)
else:
    meshlabpath, colouring = sys.argv[3:5]
    lines, ply = read_ply(path)
    want = ["ply", "format binary_little_endian 1.0", "element vertex %d" % n, "property float x", "property float y",
            "property float z", "property double weight", "property int root", "property uchar red",
            "property uchar green", "property uchar blue", "property float quality", "element edge %d" % len(links),
            "property int vertex1", "property int vertex2", ""]
    if lines != want:
        sys.exit("FAIL: header %s, expected %s" % (lines, want))
    v = ply["vertex"]
    rgb = np.stack([v["red"], v["green"], v["blue"]], 1)
    # By weight, blue for a tip, red from a third of the largest weight on.
    tip = np.bincount(parent[parent >= 0], minlength=n) == 0
    if colouring == "root":
        known, colour = np.full(n, True), 255 * np.eye(3, dtype=int)[np.arange(n) % 3]
    else:
        known, colour = tip | (weight >= weight.max() / 3), np.where(tip[:, None], [0, 0, 255], [255, 0, 0])
    differ("position", np.stack([v["x"], v["y"], v["z"]], 1), pos.astype(np.float32))
    differ("weight", v["weight"], weight)
    differ("root", v["root"], root)
    differ("quality", v["quality"], weight.astype(np.float32))
    differ("colour", np.where(known[:, None], rgb, 0), np.where(known[:, None], colour, 0))
    if sorted(zip(ply["edge"]["vertex1"].tolist(), ply["edge"]["vertex2"].tolist())) != links:
        errors.append("the edges are not the parent links")
    m = read_ply(meshlabpath)[1].get("vertex", np.zeros(0, v.dtype))
    for name in ["x", "y", "z", "red", "green", "blue", "quality"]:
        if name not in m.dtype.names or len(m) != n or (m[name] != v[name]).any():
            errors.append("MeshLab read %d vertices, %s: %s" % (len(m), name, m[name][:4] if name in m.dtype.names else "none"))
            break

for e in errors[:10]:
    print("FAIL:", e)
sys.exit(1 if errors else 0)

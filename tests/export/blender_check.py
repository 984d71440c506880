# Run inside Blender: imports a glTF file dla3d-batch wrote and checks it
# against the CSV of the same run (default --thickness 0.4 0.01).
#   blender -b --factory-startup --python blender_check.py -- FILE CSV NFACETS weight|root
import sys

import bpy
import numpy as np

np.bool = bool  # Debian's Blender 3.4 importer still uses this alias, gone from numpy 1.24

args = sys.argv[sys.argv.index("--") + 1:]
path, nfacets, colouring = args[0], int(args[2]), args[3]
csv = np.loadtxt(args[1], delimiter=",", skiprows=1, ndmin=2)
parent, pos, weight = csv[:, 1].astype(int), csv[:, 2:5], csv[:, 5]
root = np.arange(len(csv))
for i, q in enumerate(parent):
    root[i] = root[q] if q >= 0 else i
grown = np.flatnonzero(parent >= 0)
bpy.ops.wm.read_factory_settings(use_empty=True)
errors = []
norm = lambda v: np.linalg.norm(v, axis=-1)  # noqa: E731

bpy.ops.import_scene.gltf(filepath=path)
objects = {o.name: o for o in bpy.context.scene.objects if o.type == "MESH"}
trees = sorted(set(root[grown]))
names = ["root %d" % t for t in trees] if len(trees) > 1 else ["aggregate"]
if sorted(objects) != sorted(names + (["surface"] if nfacets else [])):
    errors.append("meshes %s, expected %s and a surface: %d" % (sorted(objects), names, nfacets))
radius = 0.01 + 0.39 * np.log(weight + 1) / np.log(weight.max() + 1)
children = np.bincount(parent[grown], minlength=len(csv))
even = (np.arange(20) % 2 == 0)[None, :]
for t, name in zip(trees, names):
    o, tubes = objects.get(name), grown[root[grown] == t]
    if o is None or len(o.data.vertices) != 20 * len(tubes) or len(o.data.polygons) != 20 * len(tubes):
        errors.append("%s: not %d vertices and triangles" % (name, 20 * len(tubes)))
        continue
    if len(trees) > 1 and (o.parent is None or o.parent.name != "aggregate"):
        errors.append("%s is not a child of the aggregate" % name)
    # Blender is z up: back to the file's y up.
    flip = lambda v: (v.x, v.z, -v.y)
    co = np.array([flip(o.matrix_world @ v.co) for v in o.data.vertices]).reshape(-1, 20, 3)
    a, b, q = pos[parent[tubes]][:, None], pos[tubes][:, None], parent[tubes][:, None]
    d, r, axis = co - np.where(even[..., None], a, b), np.where(even, radius[q], radius[tubes][:, None]), b - a
    chord = norm(co - np.roll(co, -2, axis=1))
    bad = (abs(norm(d) - r) > 1e-4) | (abs((d * axis).sum(-1)) > 1e-4 * norm(axis)) | \
        (abs(chord - 2 * r * np.sin(np.pi / 10)) > 1e-4)
    for k, v in np.argwhere(bad)[:3]:
        errors.append("cell %d vertex %d is off its ten-sided ring of radius %g" % (tubes[k], v, r[k, v]))
    # Each triangle winds counter-clockwise seen from outside its tube.
    normal = np.array([flip(o.matrix_world.to_3x3() @ f.normal) for f in o.data.polygons]).reshape(-1, 20, 3)
    out = np.array([co.reshape(-1, 3)[list(f.vertices)].mean(0) for f in o.data.polygons]).reshape(-1, 20, 3) - a
    out -= (out * axis).sum(-1)[..., None] / (axis * axis).sum(-1)[..., None] * axis
    for k, f in np.argwhere((out * normal).sum(-1) <= 0)[:3]:
        errors.append("cell %d: triangle %d faces inward" % (tubes[k], f))
    # Colours at the ends of the scales, the same in any colour space.
    colours = o.data.color_attributes[0].data
    for loop in o.data.loops:
        i, c = tubes[loop.vertex_index // 20], np.array(colours[loop.index].color[:3])
        want = np.eye(3)[i % 3] if colouring == "root" else (0, 0, 1) if children[i] == 0 else \
            (1, 0, 0) if weight[i] >= weight.max() / 3 else c
        if abs(c - want).max() > 0.01:
            errors.append("cell %d coloured %s, expected %s" % (i, c, want))
            break

for e in errors[:10]:
    print("FAIL:", e)
sys.exit(1 if errors else 0)

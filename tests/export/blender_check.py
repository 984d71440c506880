# Run inside Blender: imports a glTF file dla3d-batch wrote and checks it
# against the CSV of the same run (default --thickness 0.4 0.01).
#   blender -b --factory-startup --python blender_check.py -- FILE CSV NFACETS weight|root
import sys

import bpy
import numpy as np

np.bool = bool  # Debian's Blender 3.4 importer still uses this alias, gone from numpy 1.24
from io_scene_gltf2.io.imp.gltf2_io_binary import BinaryData  # noqa: E402
from io_scene_gltf2.io.imp.gltf2_io_gltf import glTFImporter  # noqa: E402

args = sys.argv[sys.argv.index("--") + 1:]
path, nfacets, colouring = args[0], int(args[2]), args[3]
csv = np.loadtxt(args[1], delimiter=",", skiprows=1, ndmin=2)
parent, pos, weight = csv[:, 1].astype(int), csv[:, 2:5], csv[:, 5]
root, heir = np.arange(len(csv)), np.full(len(csv), -1)  # heir: the heaviest child, the first of equals
for i, q in enumerate(parent):
    root[i] = root[q] if q >= 0 else i
    if q >= 0 and (heir[q] < 0 or weight[i] > weight[heir[q]]):
        heir[q] = i
radius = 0.01 + 0.39 * np.log(weight + 1) / (np.log(weight.max() + 1) or 1)
children = np.bincount(parent[parent >= 0], minlength=len(csv))
bpy.ops.wm.read_factory_settings(use_empty=True)
bpy.ops.import_scene.gltf(filepath=path)
gltf = glTFImporter(path, {"import_user_extensions": []})  # Blender 3.4 imports no custom attribute: decode them
gltf.read()
attributes = {m.name: m.primitives[0].attributes for m in gltf.data.meshes}
errors, norm = [], lambda v: np.linalg.norm(v, axis=-1)
objects = {o.name: o for o in bpy.context.scene.objects if o.type == "MESH"}
trees = sorted(set(root))
names = ["root %d" % t for t in trees] if len(trees) > 1 else ["aggregate"]
if sorted(objects) != sorted(names + (["surface"] if nfacets else [])):
    errors.append("meshes %s, expected %s and a surface: %d" % (sorted(objects), names, nfacets))
pinks = 0
for t, name in zip(trees, names):
    # Each tube's 20 vertices (even on the start ring, odd on the end ring), then each cell's 26-vertex joint.
    o, grown, tree = objects.get(name), np.flatnonzero((root == t) & (parent >= 0)), np.flatnonzero(root == t)
    if o is None or len(o.data.vertices) != 20 * len(grown) + 26 * len(tree) or \
            len(o.data.polygons) != 20 * len(grown) + 48 * len(tree):
        errors.append("%s: not %d tubes and %d joints" % (name, len(grown), len(tree)))
        continue
    if len(trees) > 1 and (o.parent is None or o.parent.name != "aggregate"):
        errors.append("%s is not a child of the aggregate" % name)
    # Every vertex lies at its radius from its ring's or joint's cell (Blender turns glTF's y up back into z up);
    # side branches start at their own radius.
    co = np.array([o.matrix_world @ v.co for v in o.data.vertices])
    even, cell = np.arange(20) % 2 == 0, np.r_[np.repeat(grown, 20), np.repeat(tree, 26)]
    centre = np.r_[np.where(even, parent[grown][:, None], grown[:, None]).ravel(), np.repeat(tree, 26)]
    start = np.where(heir[parent[grown]] == grown, radius[parent[grown]], radius[grown])
    r = np.r_[np.where(even, start[:, None], radius[grown][:, None]).ravel(), radius[np.repeat(tree, 26)]]
    d = co - pos[centre]
    for v in np.flatnonzero(abs(norm(d) - r) > 1e-4)[:3]:
        errors.append("cell %d vertex %d is %g from cell %d, not %g" % (cell[v], v, norm(d[v]), centre[v], r[v]))
    # Each triangle winds counter-clockwise seen from outside its tube or joint.
    faces = np.array([list(f.vertices) for f in o.data.polygons])
    normal = np.array([o.matrix_world.to_3x3() @ f.normal for f in o.data.polygons])
    for f in np.flatnonzero((d[faces].mean(1) * normal).sum(-1) <= 0)[:3]:
        errors.append("cell %d: triangle %d faces inward" % (cell[faces[f, 0]], f))
    # Colours at the ends of the scales, the same in any colour space.
    i = cell[[loop.vertex_index for loop in o.data.loops]]
    colours = np.array([c.color[:3] for c in o.data.color_attributes[0].data])
    if colouring == "root":  # the first three roots red, green and blue
        want = np.where((i % len(trees) < 3)[:, None], np.eye(3)[i % len(trees) % 3], colours)
    else:
        want = np.where((children[i] == 0)[:, None], (0, 0, 1), np.where(
            (weight[i] >= weight.max() / 3)[:, None], (1, 0, 0), colours))
    for k in np.flatnonzero(abs(colours - want).max(1) > 0.01)[:3]:
        errors.append("cell %d coloured %s, expected %s" % (i[k], colours[k], want[k]))
    # Root 6's pink, (1, 0.5, 0.5) in the window, is stored linear as glTF requires: 0.5 is 0.214.
    raw = BinaryData.decode_accessor(gltf, attributes[name]["COLOR_0"])[:, :3]
    raw = raw / 255 if raw.max() > 1.5 else raw
    pink = raw[cell % len(trees) == 6] if colouring == "root" else np.zeros((0, 3))
    pinks += len(pink)
    if len(pink) and abs(pink - (1, 0.214, 0.214)).max() > 0.01:
        errors.append("%s: root 6's pink stored as %s, not linear (1, 0.214, 0.214): no sRGB-to-linear" % (name, pink[0]))
    got = [BinaryData.decode_accessor(gltf, attributes[name][a]).ravel() for a in ("_WEIGHT", "_ROOT")]
    if not np.array_equal(got[0], weight[cell].astype(np.float32)) or not np.array_equal(got[1], root[cell]):
        errors.append("%s: _WEIGHT or _ROOT are not the cells' weights and roots" % name)
if colouring == "root" and len(trees) > 6 and not pinks:
    errors.append("no vertex of root 6's pink")

for e in errors[:10]:
    print("FAIL:", e)
sys.exit(1 if errors else 0)

# Run inside Blender: imports a file dla3d-batch wrote and checks it against
# the CSV of the same run (defaults --thickness 0.4 0.01).
#   blender -b --factory-startup --python blender_check.py -- gltf FILE CSV NFACETS weight|root
#   blender -b --factory-startup --python blender_check.py -- ply FILE CSV
import math
import sys

import bpy
import numpy

numpy.bool = bool  # Debian's Blender 3.4 importer still uses this alias, gone from numpy 1.24

args = sys.argv[sys.argv.index("--") + 1:]
mode, path, rows = args[0], args[1], [l.split(",") for l in open(args[2]).read().splitlines()[1:]]
parent = [int(r[1]) for r in rows]
pos = [tuple(float(v) for v in r[2:5]) for r in rows]
weight = [float(r[5]) for r in rows]
root = list(range(len(rows)))
for i, q in enumerate(parent):
    if q >= 0:
        root[i] = root[q]
bpy.ops.wm.read_factory_settings(use_empty=True)
errors = []

if mode == "ply":
    bpy.ops.import_mesh.ply(filepath=path)
    mesh = bpy.context.scene.objects[0].data
    edges = {tuple(sorted(e.vertices)) for e in mesh.edges}
    want = {tuple(sorted((q, i))) for i, q in enumerate(parent) if q >= 0}
    if len(mesh.vertices) != len(rows) or edges != want:
        errors.append("%d vertices, %d edges (%d as the CSV's links); expected %d and %d"
                      % (len(mesh.vertices), len(edges), len(edges & want), len(rows), len(want)))
else:
    nfacets, colouring = int(args[3]), args[4]
    bpy.ops.import_scene.gltf(filepath=path)
    objects = {o.name: o for o in bpy.context.scene.objects if o.type == "MESH"}
    trees = sorted({root[i] for i, q in enumerate(parent) if q >= 0})
    names = ["root %d" % t for t in trees] if len(trees) > 1 else ["aggregate"]
    if sorted(objects) != sorted(names + (["surface"] if nfacets else [])):
        errors.append("meshes %s, expected %s and a surface: %d" % (sorted(objects), names, nfacets))
    maxw = max(weight)
    radius = [0.01 + 0.39 * math.log(w + 1) / math.log(maxw + 1) for w in weight]
    children = [0] * len(rows)
    for q in parent:
        if q >= 0:
            children[q] += 1
    for t, name in zip(trees, names):
        o = objects.get(name)
        tubes = [i for i, q in enumerate(parent) if q >= 0 and root[i] == t]
        if o is None or len(o.data.vertices) != 20 * len(tubes) or len(o.data.polygons) != 20 * len(tubes):
            errors.append("%s: not %d vertices and triangles" % (name, 20 * len(tubes)))
            continue
        if len(trees) > 1 and (o.parent is None or o.parent.name != "aggregate"):
            errors.append("%s is not a child of the aggregate" % name)
        # Blender is z up: back to the file's y up.
        co = [(v.x, v.z, -v.y) for v in (o.matrix_world @ u.co for u in o.data.vertices)]
        for k, i in enumerate(tubes):
            a, b = pos[parent[i]], pos[i]
            axis = [b[j] - a[j] for j in range(3)]
            length = math.sqrt(sum(x * x for x in axis))
            for v in range(20):
                end, r = (a, radius[parent[i]]) if v % 2 == 0 else (b, radius[i])
                d = [co[20 * k + v][j] - end[j] for j in range(3)]
                side = co[20 * k + (v + 2) % 20]
                chord = math.dist(co[20 * k + v], side)
                if (abs(math.sqrt(sum(x * x for x in d)) - r) > 1e-4 or abs(sum(d[j] * axis[j] for j in range(3))) > 1e-4 * length
                        or abs(chord - 2 * r * math.sin(math.pi / 10)) > 1e-4):
                    errors.append("cell %d vertex %d is off its ten-sided ring of radius %g" % (i, v, r))
        # Each triangle winds counter-clockwise seen from outside its tube.
        for f in o.data.polygons:
            i, (x, y, z) = tubes[f.index // 20], o.matrix_world.to_3x3() @ f.normal
            a, b, centre = pos[parent[i]], pos[i], [co[v] for v in f.vertices]
            out = [sum(c[j] for c in centre) / 3 - a[j] for j in range(3)]
            axis = [b[j] - a[j] for j in range(3)]
            along = sum(u * v for u, v in zip(out, axis)) / sum(u * u for u in axis)
            if sum((out[j] - along * axis[j]) * n for j, n in enumerate((x, z, -y))) <= 0:
                errors.append("cell %d: triangle %d faces inward" % (i, f.index))
                break
        # Colours at the ends of the scales, the same whatever the colour space.
        colours = o.data.color_attributes[0]
        for loop in o.data.loops:
            i = tubes[loop.vertex_index // 20]
            c = tuple(colours.data[loop.index].color)[:3]
            want = ((1, 0, 0), (0, 1, 0), (0, 0, 1))[i % 3] if colouring == "root" else \
                (0, 0, 1) if children[i] == 0 else (1, 0, 0) if weight[i] >= maxw / 3 else None
            if want and max(abs(c[j] - want[j]) for j in range(3)) > 0.01:
                errors.append("cell %d coloured %s, expected %s" % (i, c, want))
                break
    if nfacets and "surface" in objects:
        s = objects["surface"].data
        if len(s.vertices) != 3 * nfacets or len(s.polygons) != nfacets:
            errors.append("surface: %d vertices, %d faces for %d facets" % (len(s.vertices), len(s.polygons), nfacets))

for e in errors[:10]:
    print("FAIL:", e)
print("blender: %s %s" % (path, "FAILED" if errors else "ok"))
sys.exit(1 if errors else 0)

#!/usr/bin/env bash
# Real readers of every file dla3d-batch writes (the GUI tests read the
# window dumps); a missing reader fails the check.
# Usage: readers.sh BATCH models|gltf|ply|vtp|summary: POV-Ray, VRML, DXF and
# STL readers; Khronos's validator, Blender and assimp; MeshLab and a reader
# of the bytes; VTK; the summary against the CSV and report of its run.
set -u
bin=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
status=0
fail() { echo "FAIL: $*" >&2; status=1; }
for tool in povray tovrmlx3d admesh assimp node blender meshlabserver xvfb-run /usr/bin/python3; do
  command -v "$tool" >/dev/null 2>&1 || { echo "FAIL: $tool is not installed (scripts/install-deps.sh --test)" >&2; exit 1; }
done
roots=(--roots 3 --root-distribution 2 --associate)

case "$2" in
models)
  cd "$dir" || exit 1
  # Two roots each with its texture, inside a box.
  "$bin" --no-progress --cells 300 --roots 2 --root-distribution 2 --associate --sample 11 --pov c.pov --pov-sweep d.pov \
    --vrml e.wrl --vrml-caps f.wrl --dxf-points g.dxf --stl-out h.stl || fail "batch run"
  for f in c d; do
    povray +I$f.pov +O$f.png +FN +W80 +H60 -D -V >$f.out 2>&1
    [ $? = 0 ] && [ -s $f.png ] && ! grep -q "Parse Error" $f.out || fail "povray $f.pov: $(tail -5 $f.out)"
  done
  for f in e f; do
    tovrmlx3d $f.wrl >/dev/null 2>$f.err  # exits 0 even on errors
    [ ! -s $f.err ] || fail "tovrmlx3d $f.wrl: $(head -5 $f.err)"
  done
  [ "$(admesh -e h.stl 2>&1 | sed -n 's/^Number of facets *: *\([0-9]*\).*/\1/p' | head -1)" = 16 ] || fail "admesh h.stl"
  [ "$(assimp info h.stl 2>&1 | sed -n 's/^Faces: *\([0-9]*\).*/\1/p' | head -1)" = 16 ] || fail "assimp h.stl"
  /usr/bin/python3 - <<'PY' || status=1
import re, sys, ezdxf
bad = []
# No VRML reader notices an index past the point list: 298 segments and 16 faces.
for f in ("e.wrl", "f.wrl"):
    sets = re.findall(r"point \[\n(.*?)\n   \]\n  \}\n  coordIndex \[\n(.*?)  \]\n", open(f).read(), re.S)
    for points, index in sets:
        n, idx = len(points.split("\n")), [int(v) for v in re.findall(r"-?\d+", index)]
        if not idx or idx[-1] != -1 or min(idx) < -1 or max(idx) >= n: bad.append(f"{f}: indices {idx[:8]} of {n} points")
    if len(sets) != 298 + 16: bad.append(f"{f}: {len(sets)} face sets")
if len(ezdxf.readfile("g.dxf").modelspace().query("POINT")) != 10 * 298: bad.append("g.dxf: ezdxf point count")
for b in bad: print("FAIL:", b)
sys.exit(1 if bad else 0)
PY
  ;;
gltf)
  # JSON and binary, one tree and seven, with and without the surface; three roots and no tube.
  runs=("one.gltf" "one-surface.glb --sample 21" "roots-surface.glb --sample 21 --roots 7 --root-distribution 2 --associate"
    "bare.gltf --cells 3 ${roots[*]}")
  for run in "${runs[@]}"; do
    read -r name opts <<<"$run"
    "$bin" --cells 300 --no-progress --csv "$dir/$name.csv" --info "$dir/$name.txt" --gltf "$dir/$name" $opts ||
      { fail "dla3d-batch $opts"; continue; }
    facets=$(awk '/^Faces in constraint surface: / {n = $5} END {print n + 0}' "$dir/$name.txt")
    out=$(node "$here/gltf_validate.js" "$dir/$name") || fail "gltf-validator: $out"
    [[ $opts == *associate* ]] && colouring=root || colouring=weight
    blender -b --factory-startup --python-exit-code 1 --python "$here/blender_check.py" -- "$dir/$name" "$dir/$name.csv" \
      "$facets" "$colouring" >"$dir/blender.out" 2>&1 ||
      { fail "blender on $name"; grep -E "FAIL|Error" "$dir/blender.out" | head >&2; }
    info=$(assimp info "$dir/$name" 2>&1) || fail "assimp info $name: $(tail -3 <<<"$info")"
  done
  ;;
ply)
  # Default drawing (lines): the associated roots' colours; tubes colour by weight.
  for run in "root" "weight --dla-draw 5"; do
    read -r colouring opts <<<"$run"
    "$bin" --cells 300 --no-progress "${roots[@]}" $opts --csv "$dir/$colouring.csv" --ply "$dir/$colouring.ply" ||
      { fail "dla3d-batch $opts"; continue; }
    # MeshLab needs a display even as a server; its -m vc vq keeps vertex colour and quality it read.
    xvfb-run -a -s '-screen 0 640x480x24' meshlabserver -i "$dir/$colouring.ply" -o "$dir/$colouring.meshlab.ply" -m vc vq \
      >"$dir/meshlab.out" 2>&1 || fail "meshlabserver: $(tail -3 "$dir/meshlab.out")"
    /usr/bin/python3 "$here/cells_check.py" "$dir/$colouring.ply" "$dir/$colouring.csv" "$dir/$colouring.meshlab.ply" \
      "$colouring" || status=1
  done
  ;;
vtp)
  "$bin" --cells 300 --no-progress "${roots[@]}" --csv "$dir/a.csv" --vtp "$dir/a.vtp" || fail "dla3d-batch"
  /usr/bin/python3 "$here/cells_check.py" "$dir/a.vtp" "$dir/a.csv" || status=1
  ;;
summary)
  # 100,000 cells from one root: the dimension of three-dimensional DLA.
  "$bin" --cells 100000 --no-progress --csv "$dir/big.csv" --summary "$dir/big.json" || fail "dla3d-batch"
  /usr/bin/python3 "$here/summary_check.py" "$dir/big.json" "$dir/big.csv" || status=1
  /usr/bin/python3 -c 'import json, sys; d = json.load(open(sys.argv[1]))["dimension_gyration"]
sys.exit(0 if 2.3 < d < 2.6 else "FAIL: dimension %s, not between 2.3 and 2.6" % d)' "$dir/big.json" || status=1
  # A step limit, settings of its own and the statistics.
  "$bin" --cells 100000 --steps 600000 --seed 99 --stickiness 90 --thickness 0.5 0.02 --stats --no-progress \
    --csv "$dir/s.csv" --info "$dir/s.txt" --summary "$dir/s.json" || fail "dla3d-batch --stats"
  /usr/bin/python3 "$here/summary_check.py" "$dir/s.json" "$dir/s.csv" "$dir/s.txt" steps=600000 seed=99 \
    stickiness=90 thickstart=0.5 thickend=0.02 || status=1
  ;;
*)
  fail "unknown check $2"
  ;;
esac
exit $status

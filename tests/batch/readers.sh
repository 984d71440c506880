#!/usr/bin/env bash
# Real readers open every model format: POV-Ray renders, the VRML, DXF and
# STL readers load (the window dumps are read by Pillow and ImageMagick in
# the GUI tests). A missing reader is a failure.
# Usage: readers.sh DLA3D-BATCH
set -u
bin=$(realpath "$1")
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_readers.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0
for tool in povray tovrmlx3d admesh assimp /usr/bin/python3; do
  command -v "$tool" >/dev/null || { echo "FAIL: reader $tool is not installed (scripts/install-deps.sh)"; exit 1; }
done
cd "$dir" || exit 1
# Default settings; then two roots each with its texture, inside a box.
"$bin" --no-progress --cells 400 --pov a.pov --pov-sweep b.pov || { echo "FAIL: first batch run"; fail=1; }
"$bin" --no-progress --cells 300 --roots 2 --root-distribution 2 --associate --sample 11 --pov c.pov --pov-sweep d.pov \
  --vrml e.wrl --vrml-caps f.wrl --dxf-points g.dxf --stl-out h.stl || { echo "FAIL: second batch run"; fail=1; }
for f in a b c d; do
  povray +I$f.pov +O$f.png +FN +W80 +H60 -D -V >$f.out 2>&1
  [ $? = 0 ] && [ -s $f.png ] && ! grep -q "Parse Error" $f.out || { echo "FAIL: povray $f.pov"; tail -5 $f.out; fail=1; }
done
for f in e f; do
  tovrmlx3d $f.wrl >/dev/null 2>$f.err  # exits 0 even on errors
  [ ! -s $f.err ] || { echo "FAIL: tovrmlx3d $f.wrl"; head -5 $f.err; fail=1; }
done
[ "$(admesh -e h.stl 2>&1 | sed -n 's/^Number of facets *: *\([0-9]*\).*/\1/p' | head -1)" = 16 ] || { echo "FAIL: admesh h.stl"; fail=1; }
[ "$(assimp info h.stl 2>&1 | sed -n 's/^Faces: *\([0-9]*\).*/\1/p' | head -1)" = 16 ] || { echo "FAIL: assimp h.stl"; fail=1; }
/usr/bin/python3 - <<'PY' || fail=1
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
exit $fail

#!/usr/bin/env bash
# Real readers open every format the programs write: POV-Ray renders, the
# VRML, DXF and STL readers load, Pillow and ImageMagick decode the TGA
# images pixel for pixel. A missing reader is a failure.
# Usage: readers.sh DLA3D-BATCH TGA_SAMPLE
set -u
bin=$(realpath "$1") sample=$(realpath "$2")
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_readers.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0
for tool in povray tovrmlx3d admesh assimp /usr/bin/python3 /usr/bin/convert /usr/bin/identify; do
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
"$sample" . || { echo "FAIL: tga_sample"; fail=1; }
/usr/bin/python3 - <<'PY' || fail=1
import re, subprocess, sys, ezdxf
from PIL import Image
bad = []
# No VRML reader notices an index past the point list: 298 segments and 16 faces.
for f in ("e.wrl", "f.wrl"):
    sets = re.findall(r"point \[\n(.*?)\n   \]\n  \}\n  coordIndex \[\n(.*?)  \]\n", open(f).read(), re.S)
    for points, index in sets:
        n, idx = len(points.split("\n")), [int(v) for v in re.findall(r"-?\d+", index)]
        if not idx or idx[-1] != -1 or min(idx) < -1 or max(idx) >= n: bad.append(f"{f}: indices {idx[:8]} of {n} points")
    if len(sets) != 298 + 16: bad.append(f"{f}: {len(sets)} face sets")
if len(ezdxf.readfile("g.dxf").modelspace().query("POINT")) != 10 * 298: bad.append("g.dxf: ezdxf point count")
# The sample image: a red F on blue, a strip of different pixels along the bottom.
def want(x, y, alpha):
    if y >= 112: p = (x, 4 * (y - 112), 50, 200)
    elif 20 <= x < 40 and 10 <= y < 110 or 20 <= x < 120 and 10 <= y < 30 or 20 <= x < 90 and 50 <= y < 65: p = (255, 0, 0, 255)
    else: p = (0, 0, 255, 128)
    return p if alpha else p[:3]
for name, alpha, flip in (("f1.tga", 0, 0), ("f11.tga", 1, 0), ("f12.tga", 0, 0), ("f13.tga", 1, 0), ("flipped12.tga", 0, 1), ("f.ppm", 0, 0)):
    chans = "RGBA" if alpha else "RGB"
    im = Image.open(name).convert(chans)
    raw = subprocess.run(["/usr/bin/convert", name, "-auto-orient", "-depth", "8", chans.lower() + ":-"], capture_output=True).stdout
    magick = Image.frombytes(chans, (200, 120), raw) if len(raw) == 200 * 120 * len(chans) else None
    for reader, got in (("Pillow", im), ("ImageMagick", magick)):
        if got is None or got.size != (200, 120): bad.append(f"{reader} {name}: not read"); continue
        px = got.load()
        wrong = sum(px[x, y] != want(x, 119 - y if flip else y, alpha) for y in range(120) for x in range(200))
        if wrong: bad.append(f"{reader} {name}: {wrong} pixels differ")
for b in bad: print("FAIL:", b)
sys.exit(1 if bad else 0)
PY
exit $fail

#!/usr/bin/env bash
# dla3d-batch --png. Usage:
#   test_png.sh options BATCH           --size parsing, PNG size (no X server)
#   test_png.sh window BATCH WINDOWPROG the PNG against the window dump of the
#                                       same aggregate, pixel for pixel (Xvfb)
# Pictures are read with Pillow (/usr/bin/python3); a missing Xvfb, OSMesa
# or Pillow fails the test.
set -u
mode=$1 batch=$(realpath "$2") window=${3:+$(realpath "$3")}
tmp=$(mktemp -d)
xvfb=""
cleanup() { [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null; rm -rf "$tmp"; }
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
cd "$tmp" || exit 1

# compare.py A B MINLIT MINCOLOURS: same size and RGB pixels, enough lit
# pixels and colours.
cat >compare.py <<'PY'
import sys
from PIL import Image
a, b = Image.open(sys.argv[1]).convert("RGB"), Image.open(sys.argv[2]).convert("RGB")
if a.size != b.size: sys.exit("sizes differ: %s %s" % (a.size, b.size))
pa, pb = list(a.getdata()), list(b.getdata())
diff = [i for i in range(len(pa)) if pa[i] != pb[i]]
if diff:
    i = diff[0]
    sys.exit("%d pixels differ, first at %d,%d: %s against %s" % (len(diff), i % a.size[0], i // a.size[0], pa[i], pb[i]))
lit = [p for p in pa if p != (0, 0, 0)]
if len(lit) < int(sys.argv[3]) or len(set(lit)) < int(sys.argv[4]):
    sys.exit("too little to compare: %d lit pixels, %d colours" % (len(lit), len(set(lit))))
PY

size_of() { /usr/bin/python3 -c "from PIL import Image; im = Image.open('$1'); im.load(); print('%dx%d' % im.size)"; }
lit() { /usr/bin/python3 -c "from PIL import Image; import sys; sys.exit(Image.open('$1').convert('RGB').getbbox() is None)"; }

if [ "$mode" = options ]; then
  # Refused sizes: status 2, a message naming --size, no file.
  for bad in 800 x600 800x 0x600 800x0 8193x600 800x8193 800X600 +800x600 800x600x1 -1x5 ' 800x600' 8e2x600 ''; do
    "$batch" --cells 2 --png bad.png --size "$bad" 2>err.txt
    status=$?
    [ $status = 2 ] || fail "--size '$bad': status $status"
    grep -q -- '--size' err.txt || fail "--size '$bad': no message"
    [ ! -e bad.png ] || fail "--size '$bad' wrote a picture"
  done
  "$batch" --cells 2 --size 800x600 2>err.txt && fail "--size without --png accepted"
  # Accepted sizes give pictures of that size, with something drawn.
  for size in 1x1 8192x1 123x45 800x600; do
    "$batch" --cells 300 --png "p$size.png" --size "$size" || fail "--size $size: status $?"
    [ "$(size_of "p$size.png")" = "$size" ] || fail "--size $size gave $(size_of "p$size.png")"
  done
  "$batch" --cells 300 --png p.png || fail "default size: status $?"
  /usr/bin/python3 compare.py p.png p800x600.png 1000 3 >/dev/null || fail "default picture"
  # Aggregate off and no extras: black; with the extras: something drawn.
  "$batch" --cells 300 --png off.png --dla-draw 1 --no-extras || fail "--dla-draw 1 --no-extras: status $?"
  lit off.png && fail "--dla-draw 1 --no-extras drew something"
  "$batch" --cells 300 --png extras.png --dla-draw 1 || fail "--dla-draw 1: status $?"
  lit extras.png || fail "--dla-draw 1 drew no extras"
  "$batch" --cells 300 --png /nonexistent/p.png 2>err.txt
  [ $? = 1 ] && grep -q 'cannot create' err.txt || fail "unwritable picture not reported with status 1"
  echo PASS
  exit 0
fi

[ "$mode" = window ] || fail "unknown mode $mode"
: >display
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>display >xvfb.log 2>&1 &
xvfb=$!
for i in $(seq 1 100); do
  n=$(tr -dc '0-9' <display)
  [ -n "$n" ] && break
  sleep 0.1
done
[ -n "$n" ] || fail "Xvfb did not start"
export DISPLAY=":$n"

# picture NAME MINLIT MINCOLOURS OPTIONS...: the window dump and the PNG.
picture() {
  local name=$1 minlit=$2 mincolours=$3
  shift 3
  mkdir "$name" && cd "$name" || exit 1
  "$window" "$@" --png unused.png || fail "$name: window program status $?"
  "$batch" "$@" --png batch.png || fail "$name: batch status $?"
  # The PNG's pixels as glReadPixels gives them (rows from the bottom, no
  # alpha in the window: 255), run-length coded as the dump is.
  /usr/bin/python3 - batch.png <<'PY' >size || fail "$name: cannot read the PNG"
import sys
from PIL import Image, ImageOps
im = ImageOps.flip(Image.open(sys.argv[1]).convert("RGB"))
im.putalpha(255)
open("batch.raw", "wb").write(im.tobytes())
print("%d %d" % im.size)
PY
  "$window" --encode batch.raw $(cat size) batch.tga || fail "$name: cannot encode"
  cmp -s 0000.tga batch.tga || fail "$name: the PNG is not the window dump ($(/usr/bin/python3 ../compare.py 0000.tga batch.tga 0 0 2>&1))"
  /usr/bin/python3 ../compare.py batch.tga 0000.tga "$minlit" "$mincolours" >/dev/null || fail "$name: too little drawn"
  cd ..
}
# Lines coloured by weight with the extras (release points included: the
# same growth gives the same points).
picture lines 8000 40 --cells 4000
# Points coloured by root, no extras; a size of its own.
picture points 1500 3 --cells 3000 --roots 3 --root-distribution 8 --associate --dla-draw 2 --no-extras --size 640x480
# Tubes, the camera turned and zoomed; a lit solid surface.
picture tubes 5000 20 --cells 600 --dla-draw 5 --camera-rotate 30,20,10 --aperture 45
picture solid 20000 10 --cells 300 --sample 1 --stl-draw 5 --camera-rotate 30,20,10
# A wireframe surface behind lines, no aggregate drawn over the points of a surface.
picture surface 5000 10 --cells 1500 --sample 21 --camera-rotate 0,-35,0
picture vertices 300 2 --cells 200 --sample 1 --stl-draw 4 --dla-draw 1
echo PASS

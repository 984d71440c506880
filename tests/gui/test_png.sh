#!/usr/bin/env bash
# dla3d-batch --png, pictures read through tga_probe.py (Pillow). Usage:
#   test_png.sh readers BATCH           the size asked, compression (ImageMagick), the
#                                       drawing options; --fit frames the aggregate
#                                       and the drawn surface (no X server)
#   test_png.sh window BATCH WINDOWPROG the PNG against the window dump of the
#                                       same aggregate, pixel for pixel (Xvfb)
source "$(dirname "$0")/harness.sh"
gui_init "$2"
mode=$1 batch=$GUI_PROG window=${3:+$(realpath "$3")}
cd "$W" || exit 1

if [ "$mode" = readers ]; then  # the refusals of --size: tests/batch/test_batch.cpp
  "$batch" --cells 300 --png tiny.png --size 1x1 && [ "$(probe size tiny.png)" = 1x1 ] || gui_fail "--size 1x1"
  "$batch" --cells 300 --png off.png --dla-draw 1 --no-extras && [ "$(probe lit off.png)" = 0 ] ||
    gui_fail "--dla-draw 1 --no-extras drew something"
  "$batch" --cells 300 --png extras.png --dla-draw 1 && [ "$(probe lit extras.png)" -gt 0 ] || gui_fail "--dla-draw 1: no extras"
  # Raw RGB is 3 bytes a pixel; the old stored blocks were that plus headers.
  "$batch" --cells 20000 --png readme.png --size 1024x768 --camera-rotate 0,-30,0 || gui_fail "README's picture: status $?"
  read -r format depth type size bytes < <(identify -format '%m %[depth] %[type] %wx%h %B\n' readme.png)
  [ "$format $depth $type $size" = "PNG 8 TrueColor 1024x768" ] && [ "$bytes" -lt $((1024 * 768)) ] ||
    gui_fail "README's picture: $format $depth $type $size, $bytes bytes (under 1 a pixel expected)"
  # framed NAME OPTIONS...: nothing lit on the border, the lit box at least a third wide or high.
  framed() {
    local name=$1 x0 y0 x1 y1 w h
    shift
    "$batch" --no-extras --png "$name.png" "$@" || gui_fail "$name: status $?"
    read -r x0 y0 x1 y1 w h < <(probe litbox "$name.png")
    [ "$x0" -gt 0 ] && [ "$y0" -gt 0 ] && [ "$x1" -lt $((w - 1)) ] && [ "$y1" -lt $((h - 1)) ] ||
      gui_fail "$name: lit to the border, box $x0 $y0 $x1 $y1 of ${w}x$h"
    [ $((3 * (x1 - x0 + 1))) -ge "$w" ] || [ $((3 * (y1 - y0 + 1))) -ge "$h" ] ||
      gui_fail "$name: box $x0 $y0 $x1 $y1 under a third of ${w}x$h"
  }
  framed fit20k --cells 20000 --size 1024x768 --camera-rotate 0,-30,0 --fit
  # The plane sample is far larger than the aggregate and off its centre.
  framed plane --cells 2000 --sample 31 --camera-rotate 0,-30,0 --fit
  gui_pass
fi

[ "$mode" = window ] || gui_fail "unknown mode $mode"
gui_start_xvfb
# picture NAME MINLIT MINCOLOURS OPTIONS...: the window dump and the PNG,
# coded as the dump codes its pixels (its run-length coding rewrites a few).
picture() {
  local name=$1 minlit=$2 mincolours=$3
  shift 3
  mkdir "$W/$name" && cd "$W/$name" || exit 1
  "$window" "$@" --png unused.png || gui_fail "$name: window program status $?"
  "$batch" "$@" --png batch.png || gui_fail "$name: batch status $?"
  "$window" --encode batch.raw $(probe raw "$name/batch.png" "$name/batch.raw") batch.tga || gui_fail "$name: cannot encode"
  cmp -s 0000.tga batch.tga || gui_fail "$name: the PNG is not the window dump"
  [ "$(probe lit "$name/batch.png")" -ge "$minlit" ] && [ "$(probe colours "$name/batch.png")" -ge "$mincolours" ] ||
    gui_fail "$name: too little drawn"
}
# Lines by weight with the extras (the same growth gives the same release points).
picture lines 8000 40 --cells 4000
# Points coloured by root, no extras; a size of its own.
picture points 1500 3 --cells 3000 --roots 3 --root-distribution 8 --associate --dla-draw 2 --no-extras --size 640x480
# Tubes, the camera turned and zoomed; a lit solid surface.
picture tubes 5000 20 --cells 600 --dla-draw 5 --camera-rotate 30,20,10 --aperture 45
picture solid 20000 10 --cells 300 --sample 1 --stl-draw 5 --camera-rotate 30,20,10
# A wireframe surface behind lines, no aggregate drawn over the points of a surface.
picture surface 5000 10 --cells 1500 --sample 21 --camera-rotate 0,-35,0
picture vertices 300 2 --cells 200 --sample 1 --stl-draw 4 --dla-draw 1
gui_pass

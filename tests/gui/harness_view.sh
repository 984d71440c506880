#!/usr/bin/env bash
# Drawing-mode, colour and memory helpers for the GUI tests; source after
# harness.sh, harness_dump.sh and harness_menu.sh.
#
#   view_dla_mode 2                   "DLA drawing mode" entry 2 ("Lines")
#   view_stl_mode 4                   "Constraint surface drawing mode" entry 4
#   view_colours 0000.tga             "COUNT R G B" per colour of the lit pixels
#   view_count_not 0000.tga 128,128,128 255,255,255
#                                     lit pixels of none of the given colours
#   view_greys 0000.tga               lit pixels with r = g = b, and how many
#                                     distinct grey levels they take: "N LEVELS"
#   view_extent 0000.tga 0 255 0      bounding box of a colour, rows top down:
#                                     "X0 Y0 X1 Y1 COUNT" (all 0 when absent)
#   view_centroid 0000.tga 255 0 0    mean position of a colour: "X Y COUNT"
#   view_rss                          the program's resident set, kB
#
# Entries of the sub-menus, counted from 0 as menu_choose wants them.
VIEW_DLA_OFF=0; VIEW_DLA_POINTS=1; VIEW_DLA_LINES=2; VIEW_DLA_TUBES=3
VIEW_STL_OFF=0; VIEW_STL_WIRE=1; VIEW_STL_MID=2; VIEW_STL_VERTICES=3; VIEW_STL_SOLID=4
VIEW_SAMPLE_NONE=0; VIEW_SAMPLE_CYLINDER=1; VIEW_SAMPLE_BOX=4; VIEW_SAMPLE_SPHERE=7

view_dla_mode() { menu_choose $MENU_DLA_MODE "$1"; }
view_stl_mode() { menu_choose $MENU_STL_MODE "$1"; }

# Pillow is only seen by Debian's own interpreter (see TESTING.md).
view_py() {
  (cd "$GUI_WORKDIR" && /usr/bin/python3 -c '
import sys
from PIL import Image

def lit(path):
    im = Image.open(path)
    im.load()
    return [p for p in im.convert("RGB").getdata() if p != (0, 0, 0)]

cmd, path = sys.argv[1], sys.argv[2]
pixels = lit(path)
if cmd == "colours":
    counts = {}
    for p in pixels:
        counts[p] = counts.get(p, 0) + 1
    for p, n in sorted(counts.items(), key=lambda kv: -kv[1]):
        print(n, *p)
elif cmd == "not":
    allowed = {tuple(int(v) for v in c.split(",")) for c in sys.argv[3:]}
    print(sum(1 for p in pixels if p not in allowed))
elif cmd in ("extent", "centroid"):
    colour = tuple(int(v) for v in sys.argv[3:6])
    im = Image.open(path)
    im.load()
    im = im.convert("RGB")
    px = im.load()
    pts = [(x, y) for y in range(im.height) for x in range(im.width) if px[x, y] == colour]
    if not pts:
        print("0 0 0 0 0" if cmd == "extent" else "0 0 0")
    elif cmd == "extent":
        xs, ys = [x for x, _ in pts], [y for _, y in pts]
        print(min(xs), min(ys), max(xs), max(ys), len(pts))
    else:
        print("%.1f %.1f %d" % (sum(x for x, _ in pts) / len(pts), sum(y for _, y in pts) / len(pts), len(pts)))
elif cmd == "greys":
    greys = [p[0] for p in pixels if p[0] == p[1] == p[2]]
    print(len(greys), len(set(greys)))
' "$@")
}

view_colours() { view_py colours "$1"; }
view_count_not() { view_py not "$@"; }
view_greys() { view_py greys "$1"; }
view_extent() { view_py extent "$@"; }
view_centroid() { view_py centroid "$@"; }

# view_rss [PID]: VmRSS of the program in kB.
view_rss() {
  awk '/^VmRSS:/ {print $2}' "/proc/${1:-$GUI_PID}/status"
}

# view_settle: lets a few frames pass (30 a second) after a change, so the
# next dump shows it.
view_settle() { sleep "${1:-0.4}"; }

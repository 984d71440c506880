#!/usr/bin/python3
"""Reads the window dumps of dla3d for the GUI tests (Pillow, which also
rejects run-length packets that cross a row). Rows are shown top down.

  tga_probe.py header FILE               the 18 header bytes, decimal
  tga_probe.py size FILE                 WIDTHxHEIGHT
  tga_probe.py count FILE X0 Y0 X1 Y1 R G B
                                         pixels equal to (R, G, B) in the box
                                         X0 <= x < X1, Y0 <= y < Y1
  tga_probe.py lit FILE X0 Y0 X1 Y1      pixels that are not black in the box
  tga_probe.py having R G B FILE...      how many of the files hold a pixel
                                         equal to (R, G, B)
  tga_probe.py same FILE1 FILE2          "same" or "differ"
  tga_probe.py axes FILE X0 X1           for the window slice X0 <= x < X1:
                                         pure green pixels right of the green
                                         circle and pure blue ones above it
"""
import sys

from PIL import Image


def load(path):
    im = Image.open(path)
    im.load()
    return im.convert("RGB")


def box(im, x0, y0, x1, y1):
    x1 = min(x1, im.width)
    y1 = min(y1, im.height)
    px = im.load()
    for y in range(max(y0, 0), y1):
        for x in range(max(x0, 0), x1):
            yield x, y, px[x, y]


def main(argv):
    cmd = argv[1]
    if cmd == "header":
        with open(argv[2], "rb") as f:
            print(" ".join(str(b) for b in f.read(18)))
    elif cmd == "size":
        im = load(argv[2])
        print("%dx%d" % im.size)
    elif cmd == "count":
        im = load(argv[2])
        x0, y0, x1, y1, r, g, b = (int(v) for v in argv[3:10])
        print(sum(1 for _, _, p in box(im, x0, y0, x1, y1) if p == (r, g, b)))
    elif cmd == "lit":
        im = load(argv[2])
        x0, y0, x1, y1 = (int(v) for v in argv[3:7])
        print(sum(1 for _, _, p in box(im, x0, y0, x1, y1) if p != (0, 0, 0)))
    elif cmd == "having":
        colour = tuple(int(v) for v in argv[2:5])
        print(sum(1 for path in argv[5:] if colour in load(path).getdata()))
    elif cmd == "same":
        a, b = load(argv[2]), load(argv[3])
        print("same" if a.size == b.size and a.tobytes() == b.tobytes() else "differ")
    elif cmd == "axes":
        im = load(argv[2])
        x0, x1 = int(argv[3]), int(argv[4])
        circle = [(x, y) for x, y, p in box(im, x0, 0, x1, im.height) if p == (128, 255, 128)]
        if not circle:
            print("0 0")
            return
        right = max(x for x, _ in circle)
        top = min(y for _, y in circle)
        green = sum(1 for x, _, p in box(im, right + 3, 0, x1, im.height) if p == (0, 255, 0))
        blue = sum(1 for _, y, p in box(im, x0, 0, x1, top - 3) if p == (0, 0, 255))
        print(green, blue)
    else:
        sys.exit("unknown command " + cmd)


main(sys.argv)

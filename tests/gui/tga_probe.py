#!/usr/bin/python3
"""Reads pictures with Pillow (which rejects run-length packets that cross a
row) in the directory given: a command a line from standard input, an answer
a line ("error" if it fails); rows top down, a box is X0 Y0 X1 Y1 (exclusive).
  size FILE / lit FILE [BOX] / count FILE R G B [BOX] / extent FILE R G B
  litbox FILE           the box of every lit pixel (inclusive), then width and height
  colours FILE / other FILE R,G,B...   colours lit; lit pixels of none of these
  raw FILE OUT          into OUT as glReadPixels reads (RGBA from the bottom row)
  greys FILE            lit grey pixels and their levels
  same FILE1 FILE2 / having R G B FILE... (files holding it)
  brightest BOX FILE... per file, the brightest grey in the box
"""
import os
import sys
from PIL import Image, ImageChops, ImageOps


def load(path):
    return Image.open(path).convert("RGB")


def colours(path, box=None):  # [(count, (r, g, b))]
    im = load(path).crop(tuple(box)) if box else load(path)
    return im.getcolors(im.width * im.height)


def main(cmd, a):
    black = (0, 0, 0)
    if cmd == "size":
        print("%dx%d" % load(a[0]).size)
    elif cmd == "count":
        c = tuple(map(int, a[1:4]))
        print(sum(n for n, p in colours(a[0], list(map(int, a[4:8]))) if p == c))
    elif cmd == "lit":
        print(sum(n for n, p in colours(a[0], list(map(int, a[1:5]))) if p != black))
    elif cmd == "colours":
        print(sum(p != black for n, p in colours(a[0])))
    elif cmd == "raw":
        im = ImageOps.flip(load(a[0]))
        im.putalpha(255)
        open(a[1], "wb").write(im.tobytes())
        print(*im.size)
    elif cmd == "other":
        allowed = {black} | {tuple(map(int, c.split(","))) for c in a[1:]}
        print(sum(n for n, p in colours(a[0]) if p not in allowed))
    elif cmd == "greys":
        g = [n for n, p in colours(a[0]) if p != black and p[0] == p[1] == p[2]]
        print(sum(g), len(g))
    elif cmd == "extent":
        im = load(a[0])
        diff = ImageChops.difference(im, Image.new("RGB", im.size, tuple(map(int, a[1:4]))))
        zero = [ch.point(lambda v: 255 if v == 0 else 0) for ch in diff.split()]
        box = ImageChops.darker(ImageChops.darker(zero[0], zero[1]), zero[2]).getbbox()
        print(*(box[0], box[1], box[2] - 1, box[3] - 1) if box else (0, 0, 0, 0))
    elif cmd == "litbox":
        im = load(a[0])
        box = im.getbbox() or (0, 0, 0, 0)
        print(box[0], box[1], box[2] - 1, box[3] - 1, *im.size)
    elif cmd == "same":
        print("same" if load(a[0]).tobytes() == load(a[1]).tobytes() else "differ")
    elif cmd == "having":
        c = tuple(map(int, a[0:3]))
        print(sum(any(p == c for n, p in colours(f)) for f in a[3:]))
    elif cmd == "brightest":
        box = list(map(int, a[0:4]))
        print(*(max([p[0] for n, p in colours(f, box) if p[0] == p[1] == p[2]] or [0]) for f in a[4:]))


os.chdir(sys.argv[1])
for line in sys.stdin:
    try:
        main(line.split()[0], line.split()[1:])
    except Exception:
        print("error")
    sys.stdout.flush()

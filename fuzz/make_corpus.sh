#!/usr/bin/env bash
# Rebuilds the seed corpus in fuzz/corpus: small real meshes made with
# openscad (ASCII and binary) and hand-made broken files. The files are kept
# in the repository; run this only to change them.
set -euo pipefail
cd "$(dirname "$0")/corpus"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# Real meshes, kept small with a low $fn.
echo 'sphere(r=5, $fn=5);' >"$tmp/sphere.scad"
echo 'cube([4,3,2]);' >"$tmp/cube.scad"
echo 'cylinder(h=6, r=2, $fn=6);' >"$tmp/cylinder.scad"
for m in sphere cube cylinder; do
  openscad -q -o stl/$m-ascii.stl --export-format asciistl "$tmp/$m.scad"
  openscad -q -o stl/$m-binary.stl --export-format binstl "$tmp/$m.scad"
done

/usr/bin/python3 - <<'PY'
import struct
def binary(header, count, facets, tail=b''):
    h = header.ljust(80, b' ')[:80]
    body = b''.join(struct.pack('<12fH', 0, 0, 1, *f, 0) for f in facets)
    return h + struct.pack('<I', count) + body + tail
tri = [0, 0, 0, 1, 0, 0, 0, 1, 0]
tri2 = [0, 0, 1, 2, 0, 1, 0, 3, 1]
ascii_facet = (b"facet normal 0 0 1\n  outer loop\n    vertex 0 0 0\n"
               b"    vertex 1 0 0\n    vertex 0 1 0\n  endloop\nendfacet\n")
files = {
  # binary: truncated, lying counts, headers that look like text
  'stl/truncated-binary.stl': binary(b'truncated', 3, [tri, tri2])[:-17],
  'stl/count-too-high.stl': binary(b'lying', 10000000, [tri]),
  'stl/count-over-limit.stl': binary(b'over', 10000001, [tri]),
  'stl/count-negative.stl': binary(b'negative', 0xffffffff, [tri]),
  'stl/count-zero.stl': binary(b'zero', 0, []),
  'stl/count-low.stl': binary(b'low', 1, [tri, tri2]),
  'stl/header-only.stl': b'h' * 80,
  'stl/header-82.stl': b'h' * 82,
  'stl/79-bytes.stl': b'x' * 79,
  'stl/empty.stl': b'',
  'stl/binary-nan-inf.stl': binary(b'naninf', 2, [[float('nan')] * 9, [float('inf'), 0, 0, 0, float('-inf'), 0, 0, 0, 1]]),
  'stl/binary-huge.stl': binary(b'huge', 1, [[3.4e38, 0, 0, 0, 3.4e38, 0, 0, 0, -3.4e38]]),
  'stl/binary-degenerate.stl': binary(b'degenerate', 2, [[1, 1, 1, 1, 1, 1, 2, 2, 2], tri]),
  'stl/binary-header-solid.stl': binary(b'solid but binary', 1, [tri]),
  # ASCII: the detection rule, line ends, bad vertices, odd numbers
  'stl/solid-two-blanks.stl': b'  solid x\n' + ascii_facet + b'endsolid x\n',
  'stl/crlf.stl': (b'solid x\n' + ascii_facet + b'endsolid x\n').replace(b'\n', b'\r\n'),
  'stl/no-final-newline.stl': b'solid x\n' + ascii_facet + b'endsolid x',
  'stl/outerloop.stl': b'solid x\nfacet\nouterloop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\n',
  'stl/bad-vertex.stl': b'solid x\nfacet\nouter loop\nvertex 0 0\nvertex 1 0 0\nvertex 0 1 0\n',
  'stl/vertex-words.stl': b'solid x\nouter loop\nvertex a b c\n',
  'stl/missing-vertices.stl': b'solid x\nouter loop\nvertex 0 0 0\n',
  'stl/nan-inf.stl': b'solid x\nouter loop\nvertex nan nan nan\nvertex inf 0 0\nvertex -inf 1 0\nendloop\n',
  'stl/huge-numbers.stl': b'solid x\nouter loop\nvertex 1e308 0 0\nvertex 0 1e308 0\nvertex 0 0 -1e308\nouter loop\nvertex 1e999 0 0\nvertex 0 1e-999 0\nvertex 0 0 1\n',
  'stl/long-line.stl': b'solid x\n' + b'a' * 995 + b'outer loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n',
  'stl/no-facets.stl': b'solid x\nendsolid x\n',
}
seeds = {
  'seeds/three.txt': b'0 0 0\n10 0 0\n0 -10 5.5\n',
  'seeds/short-third-line.txt': b'1 2 3\n4 5 6\n7 8\n9 9 9\n',
  'seeds/crlf.txt': b'1 2 3\r\n4 5 6\r\n',
  'seeds/no-final-newline.txt': b'1 2 3\n4 5 6',
  'seeds/nan-inf.txt': b'nan nan nan\ninf 0 0\n0 -inf 0\n',
  'seeds/huge.txt': b'1e308 1e308 1e308\n1e999 0 0\n-1e308 0 1e-400\n',
  'seeds/empty.txt': b'',
  'seeds/words.txt': b'seed one\n1 2 3\n',
  'seeds/tabs-and-blanks.txt': b'\t 1\t\t2   3 \n\n\n 4 5 6\n',
  'seeds/hex.txt': b'0x1p3 -0x.8p1 0X10\n',
}
readline = {
  'readline/crlf.bin': b'\x50\x00ab\r\ncd',
  'readline/long.bin': b'\x06\x00abcdefghij\nk',
  'readline/lmax-zero.bin': b'\x08\x00abc\ndef',
  'readline/lmax-one.bin': b'\x09\x00ab\n\r\n',
  'readline/nul-bytes.bin': b'\xe8\x03a\x00b\nc\x00',
  'readline/empty.bin': b'\x50\x00',
}
for d in (files, seeds, readline):
    for name, data in d.items():
        open(name, 'wb').write(data)
PY

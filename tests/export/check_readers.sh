#!/usr/bin/env bash
# Writes every model format with write_sample_models and has the real
# readers open the files. A missing reader fails the check.
# Usage: check_readers.sh WRITER povray|vrml|dxf|stl
set -u
writer=$1
which=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

need() {
  for tool in "$@"; do
    if ! command -v "$tool" >/dev/null 2>&1; then
      echo "FAIL: reader $tool is not installed (scripts/install-deps.sh installs it)" >&2
      exit 1
    fi
  done
}

read -r _ ncells _ nsegments _ nfacets < <("$writer" "$dir") || { echo "FAIL: writer failed" >&2; exit 1; }
[ -n "${nfacets:-}" ] || { echo "FAIL: writer printed no counts" >&2; exit 1; }
echo "cells $ncells segments $nsegments facets $nfacets"
status=0

case "$which" in
povray)
  need povray
  for f in sweep sweep-plain cyl cyl-roots; do
    (cd "$dir" && povray +I$f.pov +O$f.png +FN +W80 +H60 -D -V) >"$dir/$f.out" 2>&1
    rc=$?
    if [ $rc -ne 0 ] || grep -q "Parse Error" "$dir/$f.out" || [ ! -s "$dir/$f.png" ]; then
      echo "FAIL: povray on $f.pov (exit $rc)" >&2
      tail -20 "$dir/$f.out" >&2
      status=1
    else
      echo "ok: povray rendered $f.pov"
    fi
  done
  ;;
vrml)
  need tovrmlx3d /usr/bin/python3
  for f in cyl caps; do
    tovrmlx3d "$dir/$f.wrl" >/dev/null 2>"$dir/$f.err"
    if [ -s "$dir/$f.err" ]; then
      echo "FAIL: tovrmlx3d complained about $f.wrl" >&2
      head -20 "$dir/$f.err" >&2
      status=1
    else
      echo "ok: tovrmlx3d read $f.wrl"
    fi
    # The readers do not notice indices past the point list: check them here.
    /usr/bin/python3 - "$dir/$f.wrl" "$nsegments" "$nfacets" <<'PY' || status=1
import re, sys
text = open(sys.argv[1]).read()
shapes = re.findall(r"point \[\n(.*?)\n   \]\n  \}\n  coordIndex \[\n(.*?)  \]\n", text, re.S)
expected = int(sys.argv[2]) + int(sys.argv[3])
if len(shapes) != expected:
    sys.exit("FAIL: %d indexed face sets, expected %d" % (len(shapes), expected))
for k, (points, index) in enumerate(shapes):
    npoints = len([l for l in points.split("\n") if l.strip()])
    indices = [int(v) for v in re.findall(r"-?\d+", index)]
    bad = [i for i in indices if i < -1 or i >= npoints]
    if bad or not indices or indices[-1] != -1:
        sys.exit("FAIL: face set %d: %d points, bad indices %s" % (k, npoints, bad[:5]))
print("ok: %d face sets index inside their point lists" % len(shapes))
PY
  done
  ;;
dxf)
  need /usr/bin/python3
  /usr/bin/python3 - "$dir/points.dxf" "$nsegments" <<'PY' || status=1
import sys
try:
    import ezdxf
except ImportError:
    sys.exit("FAIL: python3-ezdxf is not installed")
doc = ezdxf.readfile(sys.argv[1])
points = doc.modelspace().query("POINT")
expected = 10 * int(sys.argv[2])
if len(points) != expected:
    sys.exit("FAIL: ezdxf found %d points, expected %d" % (len(points), expected))
print("ok: ezdxf read %d points" % len(points))
PY
  ;;
stl)
  need admesh assimp
  out=$(admesh -e "$dir/surface.stl" 2>&1)
  rc=$?
  n=$(printf '%s\n' "$out" | sed -n 's/^Number of facets *: *\([0-9]*\).*/\1/p' | head -1)
  if [ $rc -ne 0 ] || [ "$n" != "$nfacets" ]; then
    echo "FAIL: admesh (exit $rc) counted '$n' facets, expected $nfacets" >&2
    printf '%s\n' "$out" | tail -20 >&2
    status=1
  else
    echo "ok: admesh read $n facets"
  fi
  out=$(assimp info "$dir/surface.stl" 2>&1)
  rc=$?
  faces=$(printf '%s\n' "$out" | sed -n 's/^Faces: *\([0-9]*\).*/\1/p' | head -1)
  if [ $rc -ne 0 ] || [ "$faces" != "$nfacets" ]; then
    echo "FAIL: assimp info (exit $rc) counted '$faces' faces, expected $nfacets" >&2
    printf '%s\n' "$out" | tail -20 >&2
    status=1
  else
    echo "ok: assimp read $faces faces"
  fi
  ;;
*)
  echo "FAIL: unknown reader $which" >&2
  exit 1
  ;;
esac
exit $status

#!/usr/bin/env bash
# The library as another project sees it: `cmake --install` into a fresh
# prefix holds the programs, the one public header, the libraries and the
# CMake package; a project configured against that prefix alone builds and
# grows 2,000 cells into a PLY file.
# Usage: consumer.sh BUILD-DIR CONSUMER-SOURCE-DIR
set -u
build=$1 source=$2
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_consumer.XXXXXX")
trap 'rm -rf "$dir"' EXIT
p=$dir/prefix
cmake --install "$build" --prefix "$p" >"$dir/log" 2>&1 || { cat "$dir/log"; echo "FAIL: install"; exit 1; }
headers=$(cd "$p/include" && find . -type f)
[ "$headers" = ./dla3d/dla3d.h ] || { echo "FAIL: installed headers: $headers"; exit 1; }
[ -x "$p/bin/dla3d-batch" ] && [ -f "$p/lib/cmake/dla3d/dla3dConfig.cmake" ] ||
  { echo "FAIL: no bin/dla3d-batch or lib/cmake/dla3d/dla3dConfig.cmake in: $(cd "$p" && find . -type f)"; exit 1; }
cmake -S "$source" -B "$dir/build" -DCMAKE_PREFIX_PATH="$p" >"$dir/log" 2>&1 &&
  cmake --build "$dir/build" >>"$dir/log" 2>&1 || { cat "$dir/log"; echo "FAIL: the consumer does not build"; exit 1; }
out=$("$dir/build/consumer" "$dir/a.ply") || { echo "FAIL: the consumer ended with status $?: $out"; exit 1; }
[ "$out" = "0 2000 " ] || { echo "FAIL: Grow, CellCount, Write said \"$out\", expected \"0 2000 \""; exit 1; }
# The PLY header's vertex and edge counts: a cell each, a root has no edge.
header=$(awk '/^end_header/ { exit } /^element/' "$dir/a.ply")
[ "$header" = $'element vertex 2000\nelement edge 1999' ] || { echo "FAIL: PLY header: $header"; exit 1; }

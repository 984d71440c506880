#!/bin/sh
# dla3d-batch must write the same CSV, byte for byte, whether a step finds
# its cell through the index or by scanning every cell.
# Usage: search_compare.sh DLA3D-BATCH [REFERENCE-BATCH]
# With a second program, its plain scan is compared too (an older build).
set -u
batch=$1
reference=${2:-}
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_search.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0

# A plane through z = -3 facing up (two facets), and a ring of seeds.
cat > "$dir/plane.stl" <<'STL'
solid plane
facet normal 0 0 1
outer loop
vertex -40 -40 -3
vertex 40 -40 -3
vertex 40 40 -3
endloop
endfacet
facet normal 0 0 1
outer loop
vertex -40 -40 -3
vertex 40 40 -3
vertex -40 40 -3
endloop
endfacet
endsolid plane
STL
printf '0 0 0\n6 0 0\n0 -6 1\n-4.5 2 -1\n' > "$dir/seeds.txt"

n=0
least=3  # the header, a root and at least one grown cell
run() {
  n=$((n + 1))
  if ! "$batch" --no-progress --search index --csv "$dir/index.csv" "$@" ||
     ! "$batch" --no-progress --search scan --csv "$dir/scan.csv" "$@"; then
    echo "case $n ($*): dla3d-batch failed"
    fail=1
    return
  fi
  if ! cmp -s "$dir/index.csv" "$dir/scan.csv"; then
    echo "case $n ($*): index and scan differ"
    fail=1
  elif [ "$(wc -l < "$dir/index.csv")" -lt "$least" ]; then
    echo "case $n ($*): fewer than $least lines written"
    fail=1
  fi
  if [ -n "$reference" ]; then
    "$reference" --no-progress --csv "$dir/ref.csv" "$@"
    cmp -s "$dir/index.csv" "$dir/ref.csv" || { echo "case $n ($*): differs from $reference"; fail=1; }
  fi
}

run --cells 2000
run --cells 500 --seed 7 --branch-length 0.3
run --cells 700 --seed 8 --branch-length 0.7 --bias 1
run --cells 1200 --seed 9 --branch-length 2.5
run --cells 1500 --seed 10 --roots 5 --root-distribution 8 --associate
run --cells 500 --seed 11 --roots 4 --root-distribution 2 --root-range 8 --associate --branch-length 0.7
run --cells 1500 --seed 12 --rotation 2 --bias 0.5
run --cells 300 --seed 13 --stickiness 20 --branch-length 0.3
run --cells 600 --steps 2000000 --seed 14 --intersect-range 5
run --cells 1000 --seed 15 --stl "$dir/plane.stl" --source 8
run --cells 1200 --seed 16 --seed-file "$dir/seeds.txt" --associate --rotation -1.5
run --cells 1200 --seed 17 --roots 3 --root-distribution 3 --source 11
least=1  # no roots: nothing ever sticks
run --cells 300 --seed 18 --root-distribution 10 --steps 30000

[ $fail -eq 0 ] && echo "$n cases: index and scan agree"
exit $fail

#!/usr/bin/env bash
# A seed reproduces a run: the same CSV twice, from a core built at -O0 as
# at -O2, and whether a step finds its cell through the index or by
# scanning every cell, over many settings.
# Usage: determinism.sh DLA3D-BATCH DLA3D-BATCH-O0
set -u
bin=$1 slow=$2
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_determinism.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0
grow() {  # grow PROGRAM NAME ARGS...: NAME.csv
  "$1" --no-progress --csv "$dir/$2.csv" "${@:3}" || { echo "FAIL: $2 (${*:3}): status $?"; fail=1; }
}
same() { cmp -s "$dir/$1.csv" "$dir/$2.csv" || { echo "FAIL: $1 and $2 differ: $3"; fail=1; }; }

grow "$bin" a --cells 1500
grow "$bin" b --cells 1500
same a b "the same settings twice"
[ "$(head -2 "$dir/a.csv" | cut -d, -f1-5 | tr '\n' ' ')" = "index,parent,x,y,z 0,-1,0,0,0 " ] &&
  [ "$(wc -l <"$dir/a.csv")" = 1501 ] || { echo "FAIL: not a root and 1499 cells"; fail=1; }
opt=(--cells 600 --seed 4242 --bias 0.6 --rotation 1.5 --stickiness 60 --source 16 --roots 3 --root-distribution 2
  --root-range 4 --associate)
grow "$bin" fast "${opt[@]}"
grow "$slow" slow "${opt[@]}"
same fast slow "-O2 and -O0"

# A plane through z = -3 facing up, and four seeds.
printf 'solid p\nouter loop\nvertex -40 -40 -3\nvertex 40 -40 -3\nvertex 40 40 -3\nendloop\nouter loop\nvertex -40 -40 -3\nvertex 40 40 -3\nvertex -40 40 -3\nendloop\n' >"$dir/plane.stl"
printf '0 0 0\n6 0 0\n0 -6 1\n-4.5 2 -1\n' >"$dir/seeds.txt"
while read -r least args; do
  grow "$bin" index --search index $args
  grow "$bin" scan --search scan $args
  same index scan "$args"
  [ "$(wc -l <"$dir/index.csv")" -ge "$least" ] || { echo "FAIL: $args: fewer than $least lines"; fail=1; }
done <<CASES
3 --cells 800 --seed 7 --branch-length 0.3
3 --cells 500 --seed 8 --branch-length 0.7 --bias 1
3 --cells 600 --seed 9 --branch-length 2.5
3 --cells 700 --seed 10 --roots 5 --root-distribution 8 --associate
3 --cells 400 --seed 11 --roots 4 --root-distribution 2 --root-range 8 --associate --branch-length 0.7
3 --cells 700 --seed 12 --rotation 2 --bias 0.5
3 --cells 300 --seed 13 --stickiness 20 --branch-length 0.3
3 --cells 400 --steps 1000000 --seed 14 --intersect-range 5
3 --cells 600 --seed 15 --stl $dir/plane.stl --source 8
3 --cells 600 --seed 16 --seed-file $dir/seeds.txt --associate --rotation -1.5
3 --cells 600 --seed 17 --roots 3 --root-distribution 3 --source 11 --sample 21
1 --cells 300 --seed 18 --root-distribution 10 --steps 30000
CASES
exit $fail

#!/usr/bin/env bash
# dla3d-batch from the shell. A seed gives the same CSV at -O0 as at -O2,
# with the index as with a scan of every cell, over many settings. Exit
# statuses and messages, runs that never reach their count, a surface that
# holds the aggregate.
# Usage: cli.sh DLA3D-BATCH DLA3D-BATCH-O0
set -u
bin=$1 slow=$2
dir=$(mktemp -d "${TMPDIR:-/tmp}/dla_cli.XXXXXX")
trap 'rm -rf "$dir"' EXIT
fail=0
mkdir "$dir/out"
grow() {  # grow PROGRAM NAME ARGS...: NAME.csv
  "$1" --no-progress --csv "$dir/$2.csv" "${@:3}" || { echo "FAIL: $2 (${*:3}): status $?"; fail=1; }
}
same() { cmp -s "$dir/$1.csv" "$dir/$2.csv" || { echo "FAIL: $1 and $2 differ: $3"; fail=1; }; }

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
1 --cells 300 --roots 3 --root-distribution 1 --associate --steps 20000
CASES

expect() {  # expect STATUS TEXT ARGS...: the status, TEXT on standard error, and no file for a refusal
  local want=$1 text=$2
  shift 2
  rm -f "$dir/out/"*
  "$bin" --no-progress "$@" >/dev/null 2>"$dir/err"
  local got=$?
  [ "$got" = "$want" ] || { echo "FAIL: $*: status $got, expected $want"; fail=1; }
  grep -qxF -- "$text" "$dir/err" || { echo "FAIL: $*: no line \"$text\" in: $(cat "$dir/err")"; fail=1; }
  [ "$want" != 2 ] || [ -z "$(ls "$dir/out")" ] || { echo "FAIL: $*: files written"; fail=1; }
}
files=(--csv "$dir/out/c.csv" --info "$dir/out/i.txt" --pov "$dir/out/p.pov")
expect 2 "dla3d-batch: --sample: 5 is out of range (allowed: 1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100)" --sample 5 "${files[@]}"
expect 2 "dla3d-batch: unknown option \"on\" (see --help)" --stats on "${files[@]}"
# Unreachable (the table's last two runs give --steps): 3 associated roots, one placed; no root placed.
expect 2 "dla3d-batch: --associate with 3 roots but 1 placed: the next cell must join root class 1, which has no cell (give --steps N to run anyway)" \
  --roots 3 --root-distribution 1 --associate --cells 300 "${files[@]}"
expect 2 "dla3d-batch: no root is placed (--roots 1, --root-distribution 10): no cell can ever stick (give --steps N to run anyway)" \
  --root-distribution 10 --cells 300 "${files[@]}"
printf '0 0 0\n1e300 1e300 0\n' >"$dir/far.txt"  # its distance overflows
expect 2 "dla3d-batch: the roots reach beyond any distance (radius inf): no cell can ever stick (give --steps N to run anyway)" \
  --seed-file "$dir/far.txt" --cells 300 "${files[@]}"
# A model or summary that cannot be created is reported; the others are still written.
for run in "gltf x.glb" "gltf x.gltf" "ply x.ply" "vtp x.vtp" "summary x.json"; do
  read -r option name <<<"$run"
  expect 1 "dla3d-batch: --$option: cannot create \"$dir/none/$name\": No such file or directory" --cells 20 \
    --$option "$dir/none/$name" --info "$dir/out/i.txt"
  [ -s "$dir/out/i.txt" ] || { echo "FAIL: --$option: no other file written"; fail=1; }
done
expect 1 "dla3d-batch: --slice-dir: cannot write into \"$dir/none\": No such file or directory" --cells 20 --slices 2 \
  --slice-dir "$dir/none" --csv "$dir/out/c.csv"
[ ! -e "$dir/out/c.csv" ] || { echo "FAIL: a CSV made before a slice directory that cannot be written into"; fail=1; }
mkdir -p "$dir/sl/slice_001.txt"  # a slice file that cannot be created: the run ends there
expect 255 "Failed to open output slice file \"$dir/sl/slice_001.txt\"" --cells 20 --slices 2 --slice-dir "$dir/sl"
"$bin" --help | grep -q -- "--seed-file PATH" || { echo "FAIL: --help lacks the options"; fail=1; }

# The sphere sample shrunk to radius 7 holds the aggregate (a free run of
# 400 cells reaches about 11).
grow "$bin" s --sample 21 --transform 0.35,0.35,0.35 0,0,0 0,0,0 --cells 400
awk -F, 'NR > 1 { n++; if ($3*$3 + $4*$4 + $5*$5 >= 49) { print "FAIL: cell " $1 " outside the sphere"; bad = 1 } }
         END { if (n != 400) { print "FAIL: " n " cells"; bad = 1 } exit bad }' "$dir/s.csv" || fail=1
exit $fail

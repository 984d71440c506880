#!/usr/bin/env bash
# dla3d-batch from the shell. A seed gives the same CSV at -O0 as at -O2
# (the index against the scan: tests/growth/test_index.cpp). Exit statuses
# and messages, runs that never reach their count.
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
expect 2 "dla3d-batch: unknown option \"on\" (see --help)" --stats on "${files[@]}"
# Unreachable: 3 associated roots, one placed; no root placed.
expect 2 "dla3d-batch: --associate with 3 roots but 1 placed: the next cell must join root class 1, which has no cell (give --steps N to run anyway)" \
  --roots 3 --root-distribution 1 --associate --cells 300 "${files[@]}"
expect 2 "dla3d-batch: no root is placed (--roots 1, --root-distribution 10): no cell can ever stick (give --steps N to run anyway)" \
  --root-distribution 10 --cells 300 "${files[@]}"
printf '0 0 0\n1e300 1e300 0\n' >"$dir/far.txt"  # its distance overflows
expect 2 "dla3d-batch: the roots reach beyond any distance (radius inf): no cell can ever stick (give --steps N to run anyway)" \
  --seed-file "$dir/far.txt" --cells 300 "${files[@]}"
# Roots no particle can reach: outside the release sphere; far inside a huge one.
expect 2 "dla3d-batch: every root lies out of reach: particles start at distance 12 from the origin and can touch only cells between 0 and 13.001 from it, the nearest root lies 36.999 beyond that: no cell can ever stick (give --steps N to run anyway)" \
  --root-range -50 --roots 4 --root-distribution 6 "${files[@]}"
expect 2 "dla3d-batch: --root-distribution 1 (Origin) places one root, not the 3 --roots asks for" \
  --roots 3 --root-range 1e6 "${files[@]}"
# A stall ends the run, every file written, status 3.
"$bin" --no-progress --cells 100 --intersect-range 20 --stall-steps 10000000 "${files[@]}" 2>"$dir/err"
st=$? n=$(sed -n 's/^dla3d-batch: no new cell in 10000000 steps, at \([0-9]*\) cells: the intersection range (--intersect-range) refused every stick ([0-9]* times); the files asked for are written (--stall-steps N waits longer)$/\1/p' "$dir/err")
[ $st = 3 ] && [ -n "$n" ] && [ "$(wc -l <"$dir/out/c.csv")" = $((n + 1)) ] && [ -s "$dir/out/p.pov" ] ||
  { echo "FAIL: a stall: status $st, $(cat "$dir/err"), $(wc -l <"$dir/out/c.csv") CSV lines"; fail=1; }
# No output: what grew on standard output. With --progress, the bar ends at 100%.
out=$("$bin" --cells 300 --progress 2>"$dir/err")
[[ $out =~ ^300\ cells\ in\ [0-9]+\ steps:\ radius\ [0-9.]+,\ radius\ of\ gyration\ [0-9.]+,\ dimension\ [0-9.]+\ \(from ]] ||
  { echo "FAIL: a bare run said \"$out\""; fail=1; }
tr '\r' '\n' <"$dir/err" | tail -1 | grep -q '^\[#\{40\}\] 100% 300 cells, [0-9]* cells/s, 0:00 left$' ||
  { echo "FAIL: progress bar: $(tr '\r' '\n' <"$dir/err" | tail -1)"; fail=1; }
expect 1 "dla3d-batch: --slice-dir: cannot write into \"$dir/none\": No such file or directory" --cells 20 --slices 2 \
  --slice-dir "$dir/none" --csv "$dir/out/c.csv"
[ ! -e "$dir/out/c.csv" ] || { echo "FAIL: a CSV made before a slice directory that cannot be written into"; fail=1; }
mkdir -p "$dir/sl/slice_001.txt"  # a slice file that cannot be created: the run ends there
expect 255 "Failed to open output slice file \"$dir/sl/slice_001.txt\"" --cells 20 --slices 2 --slice-dir "$dir/sl"
"$bin" --help | grep -qF -- "--seed-file PATH" || { echo "FAIL: --help"; fail=1; }

exit $fail

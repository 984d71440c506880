#!/usr/bin/env bash
# The batch program's exports end to end: refused options write nothing, an
# aggregate grown inside the sphere sample stays inside it, the report's
# branch distribution matches the CSV's parents, and unwritable files give
# status 1.
set -u
bin=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
fail=0
out=$dir/out
mkdir "$out"

refuse() {  # refuse TEXT ARGS...: status 2, TEXT on standard error, nothing written
  local text=$1
  shift
  "$bin" --cells 5 --no-progress --csv "$out/c.csv" --info "$out/i.txt" --pov "$out/p.pov" \
    --stl-out "$out/s.stl" "$@" 2>"$dir/err" >/dev/null
  local got=$?
  if [ "$got" != 2 ]; then echo "$*: status $got, expected 2"; fail=1; fi
  if ! grep -qF -- "$text" "$dir/err"; then echo "$*: no \"$text\" in: $(cat "$dir/err")"; fail=1; fi
  if [ -n "$(ls -A "$out")" ]; then echo "$*: files were written: $(ls "$out")"; fail=1; fi
}

refuse "--sample: 5 is out of range (allowed: 1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100)" --sample 5
refuse "--sample: \"x\" is not an integer" --sample x
refuse "--transform: \"1,1\" is not three comma-separated numbers" --transform 1,1 0,0,0 0,0,0
refuse "--transform needs three values" --transform 1,1,1 0,0,0
refuse "--slices: 1 is out of range (allowed: an integer from 2 to 2147483647)" --slices 1
refuse "--slice-normal: \"0,0\" is not three comma-separated numbers" --slices 3 --slice-normal 0,0
refuse "--slice-dir needs --slices N" --slice-dir "$out"
refuse "--sample and --stl" --sample 21 --stl "$dir/x.stl"
refuse "--vrml needs a value" --vrml
refuse "unknown option \"on\"" --stats on

# Grown inside the closed sphere (radius 20, the root at the origin): every
# cell nearer the origin than 20.
"$bin" --sample 21 --cells 500 --no-progress --csv "$dir/sphere.csv" --stats --info "$dir/info.txt" ||
  { echo "sphere run failed"; fail=1; }
awk -F, 'NR > 1 { n++; if ($3*$3 + $4*$4 + $5*$5 >= 400) { print "cell " $1 " outside the sphere"; bad = 1 } }
         END { if (n != 500) { print n " cells"; bad = 1 } exit bad }' "$dir/sphere.csv" || fail=1

# A free run of 500 cells reaches about 11 from the origin, so the sphere
# above is not pressed on: shrunk to radius 7 it must hold the aggregate.
"$bin" --sample 21 --transform 0.35,0.35,0.35 0,0,0 0,0,0 --cells 400 --no-progress --csv "$dir/small.csv" ||
  { echo "small sphere run failed"; fail=1; }
awk -F, 'NR > 1 { n++; if ($3*$3 + $4*$4 + $5*$5 >= 49) { print "cell " $1 " outside the small sphere"; bad = 1 } }
         END { if (n != 400) { print n " cells"; bad = 1 } exit bad }' "$dir/small.csv" || fail=1

# The branch distribution from the CSV's parent column.
want=$(awk -F, 'NR > 1 { n++; if ($2 >= 0) kids[$2]++ }
                END { for (i = 0; i < n; i++) { k = kids[i] + 0; if (k > 9) k = 9; h[k]++ }
                      printf "   0:%d 1:%d 2:%d 3:%d 4:%d 5:%d\n", h[0], h[1], h[2], h[3], h[4], h[5] }' "$dir/sphere.csv")
grep -qx "Statistics at time step: 500" "$dir/info.txt" || { echo "no statistics heading"; fail=1; }
got=$(grep -A2 -x "Statistics at time step: 500" "$dir/info.txt" | sed -n 3p)
if [ "$got" != "$want" ]; then echo "branch distribution \"$got\", from the CSV \"$want\""; fail=1; fi
grep -qx "Constraint surface: Sphere" "$dir/info.txt" || { echo "no surface line"; fail=1; }

# Slices: exactly N files in the slice directory.
mkdir "$dir/slices"
"$bin" --cells 100 --no-progress --slices 7 --slice-normal 0,0,0 --slice-dir "$dir/slices" 2>/dev/null ||
  { echo "slice run failed"; fail=1; }
n=$(ls "$dir/slices" | wc -l)
[ "$n" = 7 ] && [ -e "$dir/slices/slice_006.txt" ] || { echo "$n slice files"; fail=1; }
"$bin" --cells 20 --no-progress --slices 2 --slice-dir "$dir/none" 2>"$dir/err"
got=$?
[ "$got" = 255 ] || { echo "missing slice dir: status $got"; fail=1; }
grep -qF "Failed to open output slice file \"$dir/none/slice_000.txt\"" "$dir/err" ||
  { echo "missing slice dir: $(cat "$dir/err")"; fail=1; }

# A CSV in a missing directory: status 1 before growth, nothing written.
rm -f "$out"/*
"$bin" --cells 20 --no-progress --csv "$dir/none/c.csv" --info "$out/i.txt" --stl-out "$out/s.stl" 2>"$dir/err"
got=$?
[ "$got" = 1 ] || { echo "CSV in a missing directory: status $got"; fail=1; }
grep -qF "dla3d-batch: --csv: cannot create \"$dir/none/c.csv\": No such file or directory" "$dir/err" ||
  { echo "CSV message: $(cat "$dir/err")"; fail=1; }
[ -z "$(ls -A "$out")" ] || { echo "files written after the CSV error: $(ls "$out")"; fail=1; }

# A writer in a missing directory: status 1, the other writers' files exist.
"$bin" --cells 20 --no-progress --vrml "$dir/none/v.wrl" --info "$out/i.txt" 2>"$dir/err"
got=$?
[ "$got" = 1 ] || { echo "VRML in a missing directory: status $got"; fail=1; }
grep -qF -- "--vrml: cannot create" "$dir/err" || { echo "VRML message: $(cat "$dir/err")"; fail=1; }
[ -s "$out/i.txt" ] || { echo "the report was not written"; fail=1; }
exit $fail

#!/usr/bin/env bash
# Refused options and unusable files: the exit status, a message on
# standard error, and no CSV written.
set -u
bin=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
fail=0

expect() {  # expect STATUS TEXT ARGS...
  local want=$1 text=$2
  shift 2
  rm -f "$dir/out.csv"
  "$bin" "$@" --csv "$dir/out.csv" --cells 5 --no-progress 2>"$dir/err" >/dev/null
  local got=$?
  if [ "$got" != "$want" ]; then echo "$*: status $got, expected $want"; fail=1; fi
  if ! grep -qF -- "$text" "$dir/err"; then echo "$*: no \"$text\" in: $(cat "$dir/err")"; fail=1; fi
  if [ -e "$dir/out.csv" ]; then echo "$*: a CSV was written"; fail=1; fi
}

expect 2 "--bias" --bias 2
expect 2 "0 to 1" --bias x
expect 2 "-5 to 5" --rotation 9
expect 2 "--stickiness" --stickiness 0
expect 2 "--source" --source 18
expect 2 "--seed" --seed -3
expect 2 "--thickness" --thickness 1
expect 2 "unknown option" --nonsense
expect 1 "Failed to read seed file" --seed-file "$dir/none.txt"
printf 'x y z\n' > "$dir/bad.txt"
expect 1 "Failed to read any root positions" --seed-file "$dir/bad.txt"
expect 1 "Failed to read STL file" --stl "$dir/none.stl"
printf 'tiny' > "$dir/short.stl"
expect 255 "Failed to read an expected STL header" --stl "$dir/short.stl"
printf 'solid s\nouter loop\nvertex 1 2 3\nvertex a b c\n' > "$dir/bad.stl"
expect 255 "Error reading vertices in ascii STL file" --stl "$dir/bad.stl"

"$bin" --help | grep -q -- "--seed-file PATH" || { echo "--help lacks the options"; fail=1; }
exit $fail

#!/usr/bin/env bash
# Window dumps with w and r, checked through the files written.
# Usage: test_dump.sh DLA3D single|next_free|record
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
gui_init "$1"
case=$2

gui_start_xvfb
if [ "$case" = next_free ]; then
  # Numbered dumps never overwrite: a run continues after these.
  echo keep0 >"$GUI_WORKDIR/0000.tga"
  echo keep1 >"$GUI_WORKDIR/0001.tga"
fi
gui_start
gui_find_window || gui_fail "no window"
sleep 1

case $case in
single)
  gui_dump 0000.tga
  # w is one-shot: later frames write nothing.
  sleep 1.5
  [ "$(gui_dumps)" = 1 ] || gui_fail "expected one dump, found: $(ls "$GUI_WORKDIR")"
  # Run-length true colour, 800 x 600 (little-endian 32 3 and 88 2), 24 bit,
  # origin at the bottom left.
  header=$(gui_tga header 0000.tga)
  [ "$header" = "0 0 10 0 0 0 0 0 0 0 0 0 32 3 88 2 24 0" ] || gui_fail "header: $header"
  [ "$(gui_tga size 0000.tga)" = 800x600 ] || gui_fail "size $(gui_tga size 0000.tga)"
  identify -format '%m %wx%h' "$GUI_WORKDIR/0000.tga" | grep -q '^TGA 800x600$' ||
    gui_fail "ImageMagick does not read the dump"
  ;;
next_free)
  gui_dump 0002.tga
  gui_dump 0003.tga
  [ "$(cat "$GUI_WORKDIR/0000.tga")" = keep0 ] || gui_fail "0000.tga overwritten"
  [ "$(cat "$GUI_WORKDIR/0001.tga")" = keep1 ] || gui_fail "0001.tga overwritten"
  [ "$(gui_dumps)" = 4 ] || gui_fail "files: $(ls "$GUI_WORKDIR")"
  [ "$(gui_tga size 0003.tga)" = 800x600 ] || gui_fail "0003.tga unreadable"
  ;;
record)
  gui_key r
  sleep 2
  gui_key r
  sleep 0.5
  n1=$(gui_dumps)
  sleep 1.5
  n2=$(gui_dumps)
  [ "$n1" = "$n2" ] || gui_fail "dumps went on after r was pressed again ($n1, then $n2)"
  # 30 redisplays a second: two seconds give far more than ten frames even
  # on a slow machine.
  [ "$n1" -ge 10 ] || gui_fail "only $n1 dumps in two seconds of recording"
  # Numbered from 0000 without gaps, each a whole image.
  last=$(printf '%04d.tga' $((n1 - 1)))
  [ -f "$GUI_WORKDIR/$last" ] || gui_fail "numbering has gaps: $(ls "$GUI_WORKDIR" | tr '\n' ' ')"
  for f in 0000.tga "$last"; do
    [ "$(gui_tga size "$f")" = 800x600 ] || gui_fail "$f unreadable"
  done
  ;;
*)
  gui_fail "unknown case $case"
  ;;
esac

gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS"
gui_pass

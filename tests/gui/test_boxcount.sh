#!/usr/bin/env bash
# F5 computes the statistics: the box count draws its occupied boxes in
# (0.5, 1, 0.5) over a line drawing, then the statistics block fades in at
# the top of the right half. Needs the F5 entry of the main menu (14).
# Usage: test_boxcount.sh DLA3D
source "$(dirname "$0")/harness.sh"
source "$(dirname "$0")/harness_dump.sh"
gui_init "$1"

gui_start_xvfb
gui_start
gui_find_window || gui_fail "no window"
sleep 0.5
# Extras off, so that the box colour is the circles' no more; text off.
gui_key F3 F1 F2
sleep 0.5
gui_dump 0000.tga
stats_region=(400 0 800 60)
n=$(gui_tga lit 0000.tga "${stats_region[@]}")
[ "$n" = 0 ] || gui_fail "statistics shown before F5: $n lit pixels"

# Every frame is dumped while the count runs (it may take under a second).
gui_key r F5
sleep 2
gui_key r
sleep 0.5
total=$(gui_dumps)
files=()
for i in $(seq 1 $((total - 1))); do files+=("$(printf '%04d.tga' "$i")"); done
boxes=$(gui_tga having 128 255 128 "${files[@]}")
[ "$boxes" -ge 1 ] || gui_fail "no frame of $((total - 1)) showed a box"

# Count over: no boxes, the statistics block drawn (fading grey over 500
# frames, about 16 s). How long the count takes depends on how far the
# aggregate grew before F3 and on the machine's load: wait for it, up to
# 30 s, one dump every half second.
for try in $(seq 1 60); do
  f=$(printf '%04d.tga' "$(gui_dumps)")
  gui_dump "$f"
  c=$(gui_tga count "$f" 0 0 800 600 128 255 128)
  [ "$c" = 0 ] && break
  sleep 0.5
done
[ "$c" = 0 ] || gui_fail "boxes still drawn 30 s after the count began: $c pixels"
n=$(gui_tga lit "$f" "${stats_region[@]}")
[ "$n" -ge 100 ] || gui_fail "statistics block missing: $n lit pixels"

gui_key_quit q
gui_wait_exit
[ "$GUI_STATUS" = 0 ] || gui_fail "exit status $GUI_STATUS"
gui_pass

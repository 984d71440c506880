#!/usr/bin/env bash
# Window dumps: w writes the next free number; one that cannot be written
# says so and takes none; r dumps every frame until pressed again. Recorded
# F5: the boxes of the count, then the statistics fading by 1/500 a frame.
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
gui_start_xvfb
for i in 0 1; do echo keep$i >"$W/000$i.tga"; done
gui_start -d
DUMPNO=2
dump first
[ "$(od -An -tu1 -N18 -w18 "$W/first.tga" | tr -s ' ')" = " 0 0 10 0 0 0 0 0 0 0 0 0 32 3 88 2 24 0" ] || gui_fail "header"
identify -format '%m %wx%h' "$W/first.tga" | grep -qx 'TGA 800x600' || gui_fail "ImageMagick does not read the dump"
[ "$(cat "$W/0000.tga" "$W/0001.tga")" = $'keep0\nkeep1' ] || gui_fail "a dump overwrote an earlier one"
# The next free name cannot be written (a link into a missing directory).
ln -s "$W/missing/0003.tga" "$W/0003.tga"
key w
wait_for 30 grep -q . "$GUI_TMP/stderr" || gui_fail "no message for a failed dump"
rm "$W/0003.tga"
dump second  # 0003: the failure took no number
[ "$(cat "$GUI_TMP/stderr")" = "WindowDump - Failed to open file for window dump" ] || gui_fail "standard error: $(cat "$GUI_TMP/stderr")"
[ "$(ls "$W" | grep -c '^[0-9]*\.tga$')" = 2 ] || gui_fail "w dumped more than one frame: $(ls "$W")"

# A held aggregate of a few hundred cells in lines, no extras or text;
# recording, F5. The recorded frames are numbered from 0004.
key F4; sleep 0.5; key F3 F1 F2 r F5
frames() { ls "$W" | grep '^[0-9]*\.tga$' | sed 1,2d; }
box="400 0 800 130"
wait_for 90 eval '[ "$(probe brightest $box "$(frames | tail -2 | head -1)" 2>/dev/null)" -gt 0 ]' || gui_fail "no statistics block"
shown=$(frames | wc -l)
wait_for 60 eval '[ $(frames | wc -l) -gt $((shown + 40)) ]' || gui_fail "the recording stopped"
key r; sleep 0.5; n=$(frames | wc -l); sleep 0.5
[ "$(frames | wc -l)" = "$n" ] || gui_fail "r did not stop the recording"
[ "$(frames | tail -1)" = "$(printf '%04d.tga' $((n + 3)))" ] || gui_fail "the recorded frames are not numbered without gaps"
[ "$(probe having 128 255 128 $(frames))" -ge 1 ] || gui_fail "no frame showed a box of the count"
probe brightest $box $(frames) | tr ' ' '\n' | awk '$1 > 0 && !k {k = 1} k {
    want = 255 * (500 - (k - 1)) / 500; if ($1 < want - 1.5 || $1 > want + 1.5) { print "frame " k ": grey " $1 ", expected " want; bad = 1 }; k++ }
  END { if (k < 30) { print "only " k - 1 " frames of the block"; bad = 1 } exit bad }' >&2 || gui_fail "the statistics block does not fade by 1/500 a frame"
gui_quit q
gui_pass

#!/usr/bin/env bash
# Camera keys and mouse, read from a saved POV-Ray scene's VP, VU and angle:
# each turns, rolls, zooms or moves the eye by its amount; h goes home.
source "$(dirname "$0")/harness.sh"
gui_init "$1" "$2"
gui_start_xvfb
gui_start
key F4 F3  # a small aggregate, held: the scenes stay small
pov() { save "$W/$1.pov" "Save DLA as" "PovRay (Cylinders + Spheres)"; }
# camera WANT: the scene's "VP VU angle" as nine numbers and one, against
# WANT (awk expressions), each within the 6 digits %g gives.
camera() {
  pov c
  local got=$(sed -n 's/^#declare VP = <\(.*\)>;$/\1/p; s/^#declare VU = <\(.*\)>;$/\1/p; s/^ angle \([^ ]*\) .*/\1/p' "$W/c.pov" | tr ',\n' '  ')
  awk -v got="$got" -v want="$1" 'BEGIN {
    n = split(got, g, " "); split(want, w, " ")
    for (i = 1; i <= 7; i++) {
      e = w[i]; gsub(/c2/, cos(0.02), e); gsub(/s2/, sin(0.02), e)
      split(e, t, "*"); v = t[1] * (t[2] == "" ? 1 : t[2]) * (t[3] == "" ? 1 : t[3])
      if (n != 7 || (g[i] - v) ^ 2 > (1e-5 * (v < 0 ? -v : v) + 1e-6) ^ 2) exit 1
    } }' || gui_fail "camera VP VU angle \"$got\", expected \"$1\""
}
# The arrows turn by 0.02 rad: Left about the up vector to -y, Up about the
# right vector taking the eye down; + and - zoom by 0.95, . and , dolly.
key Left plus period; camera "57*c2 -57*s2 0 0 0 1 57"
key h Right minus comma; camera "63.157895*c2 63.157895*s2 0 0 0 1 63.157895"
key H Up equal greater; camera "57*c2 0 -57*s2 s2 0 c2 57"
key h Down underscore less; camera "63.157895*c2 0 63.157895*s2 -s2 0 c2 63.157895"
# The roll keys turn only the up vector; shifted arrows do nothing.
key h bracketright shift+Left shift+Up; camera "60 0 0 0 s2 c2 60"
# Zoom stops just below 1 and just above 90; the eye never crosses the origin.
key h bracketleft $(yes plus | head -90); camera "60 0 0 0 -s2 c2 0.990922"
key h $(yes minus | head -20) $(yes period | head -150); camera "0.0273333 0 0 0 0 1 90.440386"
# A left drag turns by -0.01 rad per pixel: 60 right, then 40 down; a
# middle drag rolls by 1/200 rad per pixel across and ignores up and down;
# with shift held neither moves.
key h; drag 300 300 360 300; camera "60*0.825336 -60*0.564642 0 0 0 1 60"
key h; drag 300 300 300 340; camera "60*0.921061 0 60*0.389418 -0.389418 0 0.921061 60"
key h; drag 300 300 340 330 2; drag 300 300 340 330 1 shift; camera "60 0 0 0 0.198669 0.980067 60"
# Autospin: a turns the view like Right, a bit each frame.
key h a; sleep 0.5; pov spin
awk -v y="$(sed -n 's/^#declare VP = <[^,]*,\([^,]*\),.*/\1/p' "$W/spin.pov")" 'BEGIN {exit !(y > 0)}' || gui_fail "a: no spin"
gui_quit q
gui_pass

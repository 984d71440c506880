#!/usr/bin/env bash
# Menu, file selector, message box and form helpers for the GUI tests.
# Source after harness.sh, once gui_find_window has set GUI_WID.
#
# freeglut 3.4 under Xvfb (no window manager), as measured:
# - a right-button press opens the main menu with its top left corner at
#   the pointer (the menu is a separate override-redirect window named
#   "freeglut menu");
# - every entry is one row of the same height (25 pixels with the default
#   18-point menu font) below a 2-pixel border; the row height is read from
#   the open menu's window height here, so another font still works;
# - a sub-menu opens when the pointer rests on its entry, to the right of
#   the parent menu (x = parent x + parent width), its top at the top of
#   that entry's row (no border offset);
# - the entry under the pointer when the button is released is chosen, but
#   in a sub-menu the release is ignored and the menu stays up; a click
#   then chooses.
#
#   menu_choose 5          main entry 5 (counting from 0: "Save simulation information")
#   menu_choose 14 0       main entry 14 ("Initial root distribution"), its entry 0
#
# XForms: the file selector ("FileSelector") and message box ("Message")
# are their own top-level windows; the selector's file name input has the
# keyboard focus once the window has it, Enter presses "Ready", the message
# box's "Ok" answers Enter. Forms shown with FL_PLACE_CENTER sit at the
# screen centre (gui_centred_origin).

MENU_MAIN_ENTRIES=23
MENU_BORDER=2
# Where the menu is opened, in window coordinates (room below for the 23
# rows and to the right for a sub-menu).
MENU_PRESS_X=${MENU_PRESS_X:-150}
MENU_PRESS_Y=${MENU_PRESS_Y:-40}

# Main menu entry indices (from 0), for readable tests.
MENU_SETTINGS=0; MENU_SAVE=1; MENU_SAVE_STL=2; MENU_SLICES=3; MENU_SAVE_INFO=4
MENU_READ_STL=5; MENU_READ_SEEDS=6; MENU_SEPARATOR1=7; MENU_DLA_MODE=8; MENU_STL_MODE=9
MENU_SEPARATOR2=10; MENU_SOURCE=11; MENU_SAMPLE=12; MENU_TRANSFORM=13; MENU_ROOT=14
MENU_SEPARATOR3=15; MENU_EXTRAS=16; MENU_INFO=17; MENU_PAUSE=18; MENU_RESTART=19
MENU_STATISTICS=20; MENU_SEPARATOR4=21; MENU_QUIT=22

# menu_geometry X Y: prints "W H" of the visible freeglut menu whose top left
# corner is at screen X Y, or fails.
menu_geometry() {
  local id x y w h
  for id in $(xdotool search --onlyvisible --name '^freeglut menu$' 2>/dev/null); do
    read -r x y w h < <(xwininfo -id "$id" | awk '/Absolute upper-left X:/ {x = $4}
      /Absolute upper-left Y:/ {y = $4} /^ *Width:/ {w = $2} /^ *Height:/ {h = $2}
      END {print x, y, w, h}')
    if [ "$x" = "$1" ] && [ "$y" = "$2" ]; then
      echo "$w $h"
      return 0
    fi
  done
  return 1
}

menu_move() {
  xdotool mousemove "$1" "$2"
  sleep 0.1
}

# menu_choose MAIN [SUB]: presses the right button in the drawing window,
# moves to main entry MAIN (and, for a sub-menu, into its entry SUB) and
# releases there. Fails (button released off the menu) when the menu does
# not open.
menu_choose() {
  local wx wy px py mw mh row i ty sx sy
  read -r wx wy < <(gui_window_position)
  px=$((wx + MENU_PRESS_X)); py=$((wy + MENU_PRESS_Y))
  xdotool mousemove --sync "$px" "$py" mousedown 3
  for i in $(seq 1 30); do
    if read -r mw mh < <(menu_geometry "$px" "$py"); then break; fi
    mw=""
    sleep 0.1
  done
  if [ -z "$mw" ]; then
    xdotool mouseup 3
    echo "menu did not open" >&2
    return 1
  fi
  row=$(((mh - 2 * MENU_BORDER) / MENU_MAIN_ENTRIES))
  # Into the menu first (a release at the press point could choose too).
  # Plain moves with short pauses: "mousemove --sync" waits forever when the
  # pointer is already at the target.
  ty=$((py + MENU_BORDER + row * $1 + row / 2))
  menu_move $((px + 20)) $((py + MENU_BORDER + row / 2))
  menu_move $((px + 21)) "$ty"
  if [ $# -ge 2 ]; then
    sleep 0.3
    # Along the row into the sub-menu, then down to the entry.
    sx=$((px + mw + 20)); sy=$((py + row * $1))
    menu_move $((px + mw - 10)) "$ty"
    menu_move "$sx" $((sy + MENU_BORDER + row / 2))
    menu_move $((sx + 1)) $((sy + MENU_BORDER + row * $2 + row / 2))
  fi
  sleep 0.2
  xdotool mouseup 3
  sleep 0.3
  # freeglut takes the release only in some cases (not in a sub-menu
  # opened on the way); while the menu is still up, a click on the
  # highlighted entry chooses it.
  if xdotool search --onlyvisible --name '^freeglut menu$' >/dev/null 2>&1; then
    xdotool click 3
    sleep 0.3
  fi
}

# xf_wait_window NAME [SECONDS]: prints the id of the visible top-level
# window titled NAME once it shows (default 10 s), or fails.
xf_wait_window() {
  local i id
  for i in $(seq 1 $((${2:-10} * 10))); do
    id=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | head -n 1)
    if [ -n "$id" ]; then
      echo "$id"
      return 0
    fi
    sleep 0.1
  done
  return 1
}

# xf_wait_gone NAME [SECONDS]: waits until no visible window is titled NAME.
xf_wait_gone() {
  local i
  for i in $(seq 1 $((${2:-10} * 10))); do
    xdotool search --onlyvisible --name "^$1\$" >/dev/null 2>&1 || return 0
    sleep 0.1
  done
  return 1
}

# fsel_type PATH: types PATH into the open file selector and presses Enter.
fsel_type() {
  local fs
  fs=$(xf_wait_window FileSelector) || { echo "no file selector" >&2; return 1; }
  xdotool windowfocus --sync "$fs" || return 1
  xdotool type --delay 10 -- "$1"
  xdotool key Return
  xf_wait_gone FileSelector
}

# fsel_cancel: presses "Cancel" of the open file selector.
fsel_cancel() {
  local fs x y
  fs=$(xf_wait_window FileSelector) || { echo "no file selector" >&2; return 1; }
  read -r x y < <(gui_window_position "$fs")
  gui_click $((x + 251)) $((y + 218))
  xf_wait_gone FileSelector
}

# msg_dismiss: answers the toolkit's message box with Enter ("Ok").
msg_dismiss() {
  local m
  m=$(xf_wait_window Message) || { echo "no message box" >&2; return 1; }
  xdotool windowfocus --sync "$m" || return 1
  xdotool key Return
  xf_wait_gone Message
}


# form_origin W H: screen position of a centred form of that size.
form_origin() { gui_centred_origin "$1" "$2"; }

# form_type W H X Y TEXT: replaces the text of the input at layout (X, Y)
# (a point inside it) of the centred W x H form and presses Enter.
form_type() {
  local ox oy
  read -r ox oy < <(form_origin "$1" "$2")
  xdotool mousemove --sync $((ox + $3)) $((oy + $4))
  # No window manager: give the form's window the keyboard, then the field.
  xdotool windowfocus --sync "$(xdotool getmouselocation --shell | awk -F= '/^WINDOW=/ {print $2}')" || return 1
  xdotool click 1
  xdotool key --delay 20 ctrl+a ctrl+k
  xdotool type --delay 20 -- "$5"
  xdotool key Return
  sleep 0.3
}

# form_press W H X Y: clicks the button at layout (X, Y) of the centred form.
form_press() {
  local ox oy
  read -r ox oy < <(form_origin "$1" "$2")
  gui_click $((ox + $3)) $((oy + $4))
  sleep 0.3
}

# report_write PATH: "Save simulation information" into PATH; waits for it.
report_write() {
  rm -f "$1"
  menu_choose $MENU_SAVE_INFO || return 1
  fsel_type "$1" || return 1
  local i
  for i in $(seq 1 50); do
    [ -s "$1" ] && return 0
    sleep 0.1
  done
  return 1
}

# report_value PATH LABEL: prints what follows "LABEL: " in the report.
report_value() {
  sed -n "s/^$2: //p" "$1" | head -n 1
}

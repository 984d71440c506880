#!/usr/bin/env bash
# Window dump helpers for the GUI tests; source after harness.sh.
#
#   gui_dump_wait 0000.tga        # waits until the dump is complete
#   gui_dump 0003.tga             # presses w and waits for that file
#   gui_tga count 0000.tga 0 0 250 200 255 255 255
#
# Dumps land in $GUI_WORKDIR and are read with tga_probe.py (Pillow, from
# Debian's python3-pil, which only /usr/bin/python3 sees).

GUI_PROBE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/tga_probe.py"

# gui_tga ARGS...: runs tga_probe.py on files in the working directory.
gui_tga() {
  (cd "$GUI_WORKDIR" && /usr/bin/python3 "$GUI_PROBE" "$@")
}

# gui_dump_wait NAME [SECONDS]: waits (default 10 s) until NAME exists in
# the working directory and decodes; the program writes it inside a frame,
# so a file seen early may still be growing.
gui_dump_wait() {
  local name=$1 limit=${2:-10} i
  for i in $(seq 1 $((limit * 10))); do
    if [ -s "$GUI_WORKDIR/$name" ] && gui_tga size "$name" >/dev/null 2>&1; then
      return 0
    fi
    gui_running || return 1
    sleep 0.1
  done
  return 1
}

# gui_dump NAME: asks for one dump (w) and waits for it under NAME.
gui_dump() {
  gui_key w
  gui_dump_wait "$1" || gui_fail "no window dump $1"
}

# gui_dumps: the number of TGA files in the working directory.
gui_dumps() {
  ls "$GUI_WORKDIR" | grep -c '\.tga$'
}

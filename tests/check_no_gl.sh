#!/usr/bin/env bash
# Fails when a core program pulls in GL, GLU, GLUT, XForms or X11.
status=0
for bin in "$@"; do
  if ldd "$bin" | grep -E -i 'libGL|libglut|libforms|libX11'; then
    echo "$bin links a GL or X library" >&2
    status=1
  fi
done
exit $status

#!/usr/bin/env bash
# Fails when a core program pulls in a window system library or the
# window system's OpenGL: GLX/libGL, GLU (which links libGL), GLUT, XForms,
# X11. Usage: check_no_gl.sh [--offscreen] PROGRAM...
# With --offscreen the programs must link OSMesa instead: OpenGL drawn into
# memory, which works without an X server and must not meet libGL in the
# same process (both define every gl* function).
status=0
offscreen=0
[ "$1" = --offscreen ] && { offscreen=1; shift; }
for bin in "$@"; do
  libs=$(ldd "$bin") || { echo "$bin: ldd failed" >&2; status=1; continue; }
  if grep -E 'libGL\.|libGLX|libGLU|libOpenGL|libglut|libforms|libX11' <<<"$libs"; then
    echo "$bin links a window system or its GL library" >&2
    status=1
  fi
  if [ $offscreen = 1 ] && ! grep -q 'libOSMesa' <<<"$libs"; then
    echo "$bin does not link OSMesa" >&2
    status=1
  fi
done
exit $status

#!/usr/bin/env bash
# check_no_gl.sh [--offscreen] PROGRAM: fails when it links a window system
# or its OpenGL, or libpng without --offscreen; with --offscreen, when it does
# not link OSMesa (OpenGL drawn into memory, which must not meet libGL: both
# define every gl*).
[ "$1" = --offscreen ] && { offscreen=1; shift; }
libs=$(ldd "$1") || { echo "$1: ldd failed" >&2; exit 1; }
if grep -E 'libGL\.|libGLX|libGLU|libOpenGL|libglut|libforms|libX11' <<<"$libs"; then
  echo "$1 links a window system or its GL library" >&2
  exit 1
fi
if [ -z "${offscreen:-}" ] && grep 'libpng' <<<"$libs"; then
  echo "$1 links libpng, which only the offscreen pictures may" >&2
  exit 1
fi
if [ -n "${offscreen:-}" ] && ! grep -q 'libOSMesa' <<<"$libs"; then
  echo "$1 does not link OSMesa" >&2
  exit 1
fi

#!/usr/bin/env bash
# Runs the vertex array picture test (test_drawarrays.cpp) on a private Xvfb.
# Usage: test_drawarrays.sh TEST_DRAWARRAYS [GTEST ARGS...]
source "$(dirname "$0")/harness.sh"
gui_init "$1"
shift

gui_start_xvfb
"$GUI_PROG" "$@" || gui_fail "pictures from the vertex arrays differ from the immediate mode (status $?)"
gui_pass

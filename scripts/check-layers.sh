#!/usr/bin/env bash
# Checks that every #include "..." under src/ follows the layers README's
# "Layout" section lists, and that no core, gl or offscreen file includes a
# window system header (OpenGL only in gl, offscreen and desktop; libpng only
# in offscreen). The public header (include/) includes no header of the
# project, and the Python module (python/) only the public header. Prints
# each offending line; exits 1 if there is one.
set -euo pipefail
cd "$(dirname "$0")/.."

# folder: the folders its files may include (a folder may include itself).
declare -A allowed=(
  [lib]="lib"
  [app]="lib"
  [app/startup]="lib surface growth view export"
  [surface]="lib app"
  [growth]="lib app surface"
  [view]="lib app surface"
  [export]="lib app surface view"
  [forms]="lib app surface growth"
  [batch]="lib app surface growth view export forms"
  [gl]="lib app surface view"
  [library]="lib app surface growth view export forms batch dla3d"
  [offscreen]="lib app surface growth view export forms batch gl library dla3d"
  [desktop]="lib app surface growth view export forms gl"
)
# System headers of the window system and the toolkit, and of OpenGL.
window='<(GL/glut\.h|GL/freeglut\.h|forms\.h|X11/)'
opengl='<GL/'

status=0
# Users of the library see only its header: no project header behind it.
while IFS= read -r file; do
  case "$file" in include/*) allow="" ;; *) allow="dla3d/dla3d.h" ;; esac
  while IFS= read -r line; do
    [ "$line" = "#include \"$allow\"" ] || { echo "$file: $line (may include: ${allow:-no project header})"; status=1; }
  done < <(grep -E '^#include "' "$file" || true)
done < <(git ls-files 'include/*' 'python/*.h' 'python/*.cpp'; git ls-files --others --exclude-standard 'include/*' 'python/*.h' 'python/*.cpp')
while IFS= read -r file; do
  folder=${file#src/}
  base=${folder%.*}
  folder=${folder%%/*}
  # A file may have a rule of its own (app/startup sits above the records).
  [ -n "${allowed[$base]+x}" ] && folder=$base
  [ -n "${allowed[$folder]+x}" ] || { echo "$file: folder $folder has no rule"; status=1; continue; }
  while IFS= read -r line; do
    target=${line#\#include \"}
    target=${target%%/*}
    case " ${folder%%/*} ${allowed[$folder]} " in
      *" $target "*) ;;
      *) echo "$file: $line ($folder may include: ${folder%%/*} ${allowed[$folder]})"; status=1 ;;
    esac
  done < <(grep -E '^#include "' "$file" || true)
  if [ "${folder%%/*}" != desktop ] && grep -qE "^#include $window" "$file"; then
    echo "$file: includes a window system header"; status=1
  fi
  if [ "${folder%%/*}" != desktop ] && [ "$folder" != gl ] && [ "$folder" != offscreen ] && grep -qE "^#include $opengl" "$file"; then
    echo "$file: a core file includes OpenGL"; status=1
  fi
  if [ "$folder" != offscreen ] && grep -qE '^#include <png\.h>' "$file"; then
    echo "$file: includes libpng, which only offscreen may"; status=1
  fi
done < <(git ls-files 'src/*.h' 'src/*.cpp'; git ls-files --others --exclude-standard 'src/*.h' 'src/*.cpp')
exit $status

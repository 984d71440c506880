#!/usr/bin/env bash
# Installs the Debian packages dla3d needs. Does nothing when they are all
# present.
#   scripts/install-deps.sh          building and running (scripts/run.sh)
#   scripts/install-deps.sh --test   also what the tests need: Xvfb and the
#                                    tools that drive the window, the real
#                                    readers of the exported files (and the
#                                    glTF validator from the npm registry),
#                                    clang for the fuzzers (scripts/test.sh)
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  freeglut3-dev libglu1-mesa-dev libgl1-mesa-dri libforms-dev libosmesa6-dev libpng-dev
  libtinygltf-dev nlohmann-json3-dev
  pybind11-dev python3-dev
)
test=0
[ "${1:-}" = --test ] && test=1
if [ $test = 1 ]; then
  packages+=(
    mesa-utils xvfb xauth xdotool x11-utils x11-apps xfonts-base xfonts-75dpi
    imagemagick python3 python3-pil parallel
    povray view3dscene admesh assimp-utils python3-ezdxf openscad
    blender python3-numpy python3-pytest python3-vtk9 meshlab
    clang libclang-rt-14-dev
  )
  # A machine may bring its own Node.js and npm; Debian's otherwise.
  command -v npm >/dev/null 2>&1 || packages+=(nodejs npm)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}" >&2
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The glTF validator, at the version its lock file pins.
if [ $test = 1 ]; then
  (cd tests/export && { npm ls --loglevel=error >/dev/null 2>&1 || npm ci --no-audit --no-fund --loglevel=error; })
fi
exit 0

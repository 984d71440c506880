#!/usr/bin/env bash
# Installs the Debian packages dla3d needs to build, run and test.
# Does nothing when they are all present.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  freeglut3-dev libglu1-mesa-dev libgl1-mesa-dri libforms-dev mesa-utils libosmesa6-dev
  xvfb xauth xdotool x11-utils x11-apps xfonts-base xfonts-75dpi
  imagemagick python3 python3-pil
  povray view3dscene admesh assimp-utils python3-ezdxf openscad
  clang libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}" >&2
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

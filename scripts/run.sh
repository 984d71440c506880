#!/usr/bin/env bash
# Installs what is missing, builds, and starts dla3d (arguments are passed on).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh
exec build/dla3d "$@"

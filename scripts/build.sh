#!/usr/bin/env bash
# Configures and builds into a build folder: scripts/build.sh [BUILD_DIR] [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
shift || true
cmake -S . -B "$dir" -G Ninja -DFL_WERROR=ON "$@" >/dev/null
ninja -C "$dir" -j "$(nproc)"

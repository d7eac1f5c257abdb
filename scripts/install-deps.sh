#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking need.
# Does nothing when they are all present already.
set -euo pipefail

packages=(
    cmake ninja-build g++ clang pkg-config
    zlib1g-dev libboost-filesystem-dev qt6-base-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    python3 python3-vtk9 python3-numpy
    clang-format
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"

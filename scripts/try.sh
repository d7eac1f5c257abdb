#!/usr/bin/env bash
# Installs what is needed, builds, and loads a small sample with fluentload.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh build
./build/apps/fluentload/fluentload samples/square.cas

#!/usr/bin/env bash
# Configures and builds into build/ with Ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" "$@"
cmake --build build -j "${JOBS:-2}"

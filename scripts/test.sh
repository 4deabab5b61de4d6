#!/usr/bin/env bash
# Sets up, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh -DKAVLIN_BUILD_TESTS=ON
ctest --test-dir build --output-on-failure -j "${JOBS:-2}"

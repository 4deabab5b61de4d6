#!/usr/bin/env bash
# Sets up, builds and runs every test: the short seeded fuzz runs (with clang)
# and then the whole suite.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh -DKAVLIN_BUILD_TESTS=ON
bash scripts/fuzz.sh
ctest --test-dir build --output-on-failure -j "${JOBS:-2}"

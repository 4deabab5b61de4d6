#!/usr/bin/env bash
# Sets up, builds and starts the program; arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh -DKAVLIN_BUILD_TESTS=OFF
exec build/bin/kavlin "$@"

#!/usr/bin/env bash
# Renders every dialog offscreen to PNG for review: at 100% into
# OUTPUT/100/ and at 200% into OUTPUT/200/ (OUTPUT defaults to
# build/dialogs). Names after OUTPUT pick single dialogs.
set -euo pipefail
cd "$(dirname "$0")/.."
Output="${1:-build/dialogs}"
shift || true
if [ ! -f build/build.ninja ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" -DKAVLIN_BUILD_TESTS=ON
fi
cmake --build build -j "${JOBS:-2}" --target render_dialogs
Program="$(find build -type f -name render_dialogs -perm -u+x | head -n 1)"
export QT_QPA_PLATFORM=offscreen
QT_SCALE_FACTOR=1 "$Program" "$Output/100" "$@"
QT_SCALE_FACTOR=2 "$Program" "$Output/200" "$@"

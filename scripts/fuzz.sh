#!/usr/bin/env bash
# Builds the fuzz targets with clang into build-fuzz/ and runs the short
# seeded runs (ctest -L fuzz). With an argument, fuzzes the preference file
# reader for that many seconds instead: bash scripts/fuzz.sh 600
set -euo pipefail
cd "$(dirname "$0")/.."
if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ not found; the fuzz targets are skipped"
  exit 0
fi
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DKAVLIN_FUZZ=ON -DKAVLIN_BUILD_TESTS=OFF
cmake --build build-fuzz -j "${JOBS:-2}" --target prf_fuzzer
if [ $# -ge 1 ]; then
  mkdir -p build-fuzz/long-corpus
  exec build-fuzz/bin/prf_fuzzer -max_total_time="$1" -max_len=9000 -timeout=10 \
    build-fuzz/long-corpus fuzz/corpus/prf
fi
ctest --test-dir build-fuzz --output-on-failure -L fuzz

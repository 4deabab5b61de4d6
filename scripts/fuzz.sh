#!/usr/bin/env bash
# Builds the fuzz targets with clang into build-fuzz/ and runs the short
# seeded runs (ctest -L fuzz). With an argument, fuzzes the preference file
# reader for that many seconds instead: bash scripts/fuzz.sh 600; a second
# argument kvm fuzzes the symbol map reader (bash scripts/fuzz.sh 600 kvm),
# machine the bytecode machine (bash scripts/fuzz.sh 600 machine), compile the
# compiler over module text (bash scripts/fuzz.sh 600 compile)
set -euo pipefail
cd "$(dirname "$0")/.."
if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ not found; the fuzz targets are skipped"
  exit 0
fi
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DKAVLIN_FUZZ=ON -DKAVLIN_BUILD_TESTS=OFF
cmake --build build-fuzz -j "${JOBS:-2}" --target prf_fuzzer kvm_fuzzer machine_fuzzer \
  compile_fuzzer
if [ $# -ge 1 ]; then
  target="${2:-prf}"
  case "$target" in
    prf) max_len=9000 work=build-fuzz/long-corpus ;;
    kvm) max_len=20000 work=build-fuzz/long-corpus-kvm ;;
    machine) max_len=4096 work=build-fuzz/long-corpus-machine ;;
    compile) max_len=8192 work=build-fuzz/long-corpus-compile ;;
    *) echo "fuzz: no target $target: prf, kvm, machine or compile" >&2; exit 2 ;;
  esac
  mkdir -p "$work"
  exec "build-fuzz/bin/${target}_fuzzer" -max_total_time="$1" -max_len="$max_len" -timeout=10 \
    "$work" "fuzz/corpus/$target"
fi
ctest --test-dir build-fuzz --output-on-failure -L fuzz

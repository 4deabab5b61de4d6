#!/usr/bin/env bash
# Writes what each example of docs/language.md prints now under it, after a
# change of the compiler or the machine that is meant to change it. Read the
# diff before committing it.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build build -j "${JOBS:-2}" --target compiler_tests
KAVLIN_REGENERATE_EXAMPLES=1 QT_QPA_PLATFORM=offscreen build/bin/compiler_tests \
    --gtest_filter='LanguageExamplesTest.RegenerateTheDocumentsOutputsWhenAsked'
git --no-pager diff --stat -- docs/language.md

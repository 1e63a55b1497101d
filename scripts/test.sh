#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: once in a
# normal build and once under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
bash scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTIDEMAKE_TESTS=ON
ctest --test-dir build --output-on-failure -j "$jobs"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DTIDEMAKE_SANITIZE=ON -DTIDEMAKE_TESTS=ON
ctest --test-dir build-asan --output-on-failure -j "$jobs"

# A short fuzzing pass over every reader of outside input: 10 s per target.
bash scripts/fuzz.sh 10

#!/usr/bin/env bash
# The main job: install what is missing, build tidemake, and run it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTIDEMAKE_TESTS=OFF
# With no arguments tidemake prints its banner and usage and exits 0.
build/bin/tidemake

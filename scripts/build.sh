#!/usr/bin/env bash
# Configures and builds one tree: scripts/build.sh DIR [extra cmake arguments].
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$1; shift
cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
cmake --build "$dir"

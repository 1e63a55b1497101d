#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the main job need.
# Safe to run again: it only calls apt-get when something is missing.
set -euo pipefail

packages=(cmake ninja-build g++ qt6-base-dev libgtest-dev libgmock-dev)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update
  apt-get install -y "${missing[@]}"
fi

#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the main job need.
# Safe to run again: it only calls apt-get when something is missing.
set -euo pipefail

# clang checks that the compile database of -compdb describes the examples' sources.
packages=(cmake ninja-build g++ qt6-base-dev libmimalloc-dev libgtest-dev libgmock-dev clang)
# The fuzz targets: clang with its runtime of libFuzzer and the sanitizers.
packages+=(clang libclang-rt-14-dev)
# The ARM cross tool chain, its C and C++ libraries, and the emulator that runs the firmware.
# Their recommendations (a GUI for the emulator, firmware for other machines) aren't needed.
cross_packages=(gcc-arm-none-eabi binutils-arm-none-eabi libnewlib-arm-none-eabi
                libstdc++-arm-none-eabi-newlib qemu-system-arm)

# missing NAME...: the packages among NAME that aren't installed.
missing() {
  for package in "$@"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
      echo "$package"
    fi
  done
}

mapfile -t missing_packages < <(missing "${packages[@]}")
mapfile -t missing_cross_packages < <(missing "${cross_packages[@]}")

if [ ${#missing_packages[@]} -gt 0 ] || [ ${#missing_cross_packages[@]} -gt 0 ]; then
  echo "installing: ${missing_packages[*]} ${missing_cross_packages[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update
  if [ ${#missing_packages[@]} -gt 0 ]; then
    apt-get install -y "${missing_packages[@]}"
  fi
  if [ ${#missing_cross_packages[@]} -gt 0 ]; then
    apt-get install -y --no-install-recommends "${missing_cross_packages[@]}"
  fi
fi

#!/usr/bin/env bash
# Installs what the build and the tests need, from Debian's packages.
set -euo pipefail

PACKAGES=(cmake ninja-build g++ clang libclang-rt-dev qt6-base-dev qt6-serialport-dev libgtest-dev
  libgmock-dev libbenchmark-dev)

missing=()
for package in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if ((${#missing[@]})); then
  SUDO=""
  if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
  echo "Installing: ${missing[*]}"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

#!/usr/bin/env bash
# Debian 12 packages that building, testing and benchmarking need (run as root); further
# packages named as arguments are installed with them.
set -euo pipefail
packages=(cmake g++ make ninja-build pkg-config libopenblas64-serial-dev libsuitesparse-dev libmetis-dev
          googletest libgtest-dev libblas-dev liblapack-dev "$@")
missing=()
for package in "${packages[@]}"; do
  dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
done
if ((${#missing[@]})); then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}"
fi

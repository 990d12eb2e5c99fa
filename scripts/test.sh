#!/usr/bin/env bash
# Builds both objects and the whole test suite under AddressSanitizer and
# UndefinedBehaviorSanitizer, then runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -G Ninja -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEL_SANITIZE=ON -DZEL_BUILD_BENCH=OFF
cmake --build build-asan -j"$(nproc)"
cd build-asan
ctest --output-on-failure -j"$(nproc)"

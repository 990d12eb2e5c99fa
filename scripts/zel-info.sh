#!/usr/bin/env bash
# Builds the release objects and the zel command, then shows what the library finds here.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
cmake --build build -j"$(nproc)" --target zel
./build/tools/zel info "$@"

#!/usr/bin/env bash
# Builds the release objects and the zel command, then solves the built-in problem (the 7-point
# Laplacian on a 60×60×60 grid, 216,000 unknowns) and prints the report. Arguments go to
# `zel solve` (`bash scripts/solve.sh --size 40`, `bash scripts/solve.sh matrix.mtx`);
# `./build/tools/zel info` then shows what the library finds on this machine.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
cmake --build build -j"$(nproc)" --target zel
./build/tools/zel --version
./build/tools/zel solve "$@"

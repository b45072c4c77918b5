#!/usr/bin/env bash
# Builds an optimised server without sanitizers, generates a synthetic project of the given
# size (small or large, default large) and prints the timing table.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/install-deps.sh
fb_install_missing

size=${1:-large}
runs=${2:-20}
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DFB_BUILD_TESTS=OFF -DFB_BUILD_BENCH=ON >/dev/null
cmake --build build-bench -j "$(nproc)" >/dev/null
mkdir -p bench/out
if [ ! -d "bench/out/$size/project" ]; then
    build-bench/bench/fablery-bench-generate "$size" "bench/out/$size"
fi
build-bench/bench/fablery-bench-driver build-bench/fablery-mcp "bench/out/$size" "$runs"

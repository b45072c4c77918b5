#!/usr/bin/env bash
# Installs what is missing, checks the house format, builds with warnings as errors under
# AddressSanitizer and UndefinedBehaviorSanitizer, and runs every test: unit and end-to-end tests
# (the fuzz corpora among them) through CTest, then the interoperability test with the official
# MCP client.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/install-deps.sh
fb_install_missing --with-node
scripts/check-format.sh

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Debug -DFB_WERROR=ON -DFB_SANITIZE=ON
cmake --build build -j "$(nproc)"
ctest --test-dir build --output-on-failure -j "$(nproc)"

cd tests/interop
npm ci --no-audit --no-fund --loglevel=error
node --test

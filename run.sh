#!/usr/bin/env bash
# Installs what is missing, builds the server and serves a project over standard input and
# output. Without an argument it serves a scratch copy of the bundled sample project, so the
# sample itself stays pristine.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/install-deps.sh
fb_install_missing

if [ ! -f build/CMakeCache.txt ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >&2
fi
cmake --build build -j "$(nproc)" >&2

if [ $# -ge 1 ]; then
    project=$1
else
    scratch=$(mktemp -d "${TMPDIR:-/tmp}/fablery-sample.XXXXXX")
    cp -R examples/sample "$scratch/sample"
    project="$scratch/sample"
    echo "Serving a scratch copy of the sample project: $project" >&2
fi
exec build/fablery-mcp "$project"

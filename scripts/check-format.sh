#!/usr/bin/env bash
# Fails when a C++ file of the project is not in the house format (.clang-format). Fix with:
#   git ls-files '*.cpp' '*.h' | xargs clang-format -i
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h' 2>/dev/null || find src tests bench -name '*.cpp' -o -name '*.h')
if ! clang-format --dry-run --Werror "${files[@]}" 2>/tmp/fablery-format.log; then
    grep -m 20 'error:' /tmp/fablery-format.log >&2 || true
    echo "Some files are not formatted; run: git ls-files '*.cpp' '*.h' | xargs clang-format -i" >&2
    exit 1
fi

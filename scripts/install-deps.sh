#!/usr/bin/env bash
# Installs the Debian packages the server needs to build and test, when any is missing.
# Sourced by run.sh and test.sh; it runs apt-get only when something is actually missing.
set -euo pipefail

fb_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-pdf-dev libgtest-dev)
# Only the tests need these: the house format is checked before anything is built.
fb_test_packages=(clang-format git)

# With --with-node (the tests), clang-format and git are installed too, and Node.js and npm when
# no "node" is on the PATH (the interoperability test runs the official MCP client under Node).
fb_install_missing() {
    local missing=()
    for package in "${fb_packages[@]}"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    if [ "${1:-}" = "--with-node" ]; then
        for package in "${fb_test_packages[@]}"; do
            dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
                missing+=("$package")
        done
        command -v node >/dev/null 2>&1 || missing+=(nodejs npm)
    fi
    if ((${#missing[@]})); then
        echo "Installing: ${missing[*]}" >&2
        local sudo=""
        [ "$(id -u)" -eq 0 ] || sudo="sudo"
        $sudo apt-get update
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
    fi
}

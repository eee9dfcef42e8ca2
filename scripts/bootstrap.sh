#!/usr/bin/env bash
# Installs what the project needs, builds it and runs it, from a fresh clone on Debian bookworm.
#
#   scripts/bootstrap.sh demo   build the default preset and run the demo (tessel demo)
#   scripts/bootstrap.sh test   build the default, asan and tsan presets and run every test in each,
#                               then build the fuzzers (fuzz preset) and run each one briefly, and
#                               build the Debian packages
#   scripts/bootstrap.sh package  build the Debian packages into build/package/ (package preset)
#
# Only the Debian packages that are missing are installed, after one `apt-get update`; as a
# non-root user the script uses sudo for that step.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

packages=(
    g++ make cmake ninja-build pkgconf
    libthrift-dev thrift-compiler libboost-dev
    libzmq3-dev cppzmq-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    libcli11-dev nlohmann-json3-dev
    clang libclang-rt-14-dev
    pybind11-dev python3-dev python3-pytest python3-pytest-asyncio mypy
    dpkg-dev file
)

install_missing() {
    local missing=() package
    for package in "${packages[@]}"; do
        if [[ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]]; then
            missing+=("$package")
        fi
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    echo "Installing: ${missing[*]}"
    local sudo=()
    if [[ "$(id -u)" != 0 ]]; then
        sudo=(sudo)
    fi
    "${sudo[@]}" apt-get update
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# The runtime library, development and tools packages (CPack, DEB generator).
packages_build() {
    build package
    cmake --build --preset package --target package
    ls -l build/package/*.deb
}

# A compiler cache, when the machine has one, makes the five builds share what they can.
if command -v ccache >/dev/null && [[ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ]]; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

build() {
    local preset=$1
    cmake --preset "$preset"
    cmake --build --preset "$preset" -j "$(nproc)"
}

case "${1:-}" in
    demo)
        install_missing
        build default
        ./build/default/apps/tessel demo
        ;;
    test)
        install_missing
        for preset in default asan tsan fuzz; do
            echo "=== ${preset} ==="
            build "$preset"
            ctest --preset "$preset"
        done
        echo "=== package ==="
        packages_build
        ;;
    package)
        install_missing
        packages_build
        ;;
    *)
        echo "usage: $0 demo|test|package" >&2
        exit 2
        ;;
esac

#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then configures, builds and runs a consumer
# project that finds it with find_package. Arguments: <build dir> <scratch dir>.
set -euo pipefail
build_dir=$1
scratch=$2
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
rm -rf "$scratch"
cmake --install "$build_dir" --prefix "$scratch/prefix" >/dev/null
cmake -S "$here/consumer" -B "$scratch/build" -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/build" >/dev/null
"$scratch/build/consumer"

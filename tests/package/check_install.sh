#!/usr/bin/env bash
# Installs the built project into a scratch prefix, then builds and runs the consumer program
# against it (consume.sh). Arguments: <build dir> <scratch dir>.
set -euo pipefail
build_dir=$1
scratch=$2
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
rm -rf "$scratch"
cmake --install "$build_dir" --prefix "$scratch/prefix" >/dev/null
"$here/consume.sh" "$scratch" "$scratch/prefix"

#!/usr/bin/env bash
# Builds the fuzz preset and runs every fuzzer for a while, one after the other.
#
#   scripts/fuzz.sh [seconds]   each fuzzer runs that long (default 600)
#
# Each fuzzer keeps what it finds in build/fuzz/fuzz/work/<fuzzer>/corpus, so a run builds on the
# previous ones; a fault leaves its input in build/fuzz/fuzz/work/<fuzzer>/crash-* (or leak-*,
# oom-*, timeout-*) and ends the script with a non-zero status. Reproduce one with
#   build/fuzz/fuzz/<fuzzer> <that file>
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:-600}

cmake --preset fuzz
cmake --build --preset fuzz -j "$(nproc)"

fuzzers=(reply_builders_fuzzer notification_dispatch_fuzzer record_round_trip_fuzzer envelope_fuzzer)
seeds=(replies notifications records envelope)
for i in "${!fuzzers[@]}"; do
    name=${fuzzers[$i]}
    echo "=== ${name} (${seconds} s) ==="
    fuzz/run_fuzzer.sh "build/fuzz/fuzz/${name}" "$seconds" "build/fuzz/fuzz/seeds/${seeds[$i]}" \
        "build/fuzz/fuzz/work/${name}"
done

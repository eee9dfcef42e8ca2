#!/usr/bin/env bash
# The long form of the attack tests: every hostile peer runs for SECONDS (default 60) instead of
# the 2 seconds CI gives them, and the soak test (every fault at once against one tessel-sim
# process) prints the peak resident memory and thread counts it sampled. Then the mirror's soak
# (commands from several threads, faults at random) runs for SECONDS and must end equal to a fresh
# listing.
#
#   scripts/soak.sh [SECONDS] [PRESET]     PRESET: default (the default), asan or tsan
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=${1:-60}
preset=${2:-default}
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)" --target faults_tests mirror_tests tessel-sim tessel
KORVO_ATTACK_SECONDS=$seconds "build/$preset/tests/faults_tests" \
    --gtest_filter='Soak*:Hostile*:NotificationPump*' 2>&1 | tee "build/$preset/soak.log"
grep -h '^soak:\|^\[ flood\|^\[ fault' "build/$preset/soak.log" || true
KORVO_SOAK_SECONDS=$seconds "build/$preset/tests/mirror_tests" --gtest_filter='*Soak*' 2>&1 |
    tee -a "build/$preset/soak.log"

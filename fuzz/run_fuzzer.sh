#!/usr/bin/env bash
# Runs one fuzzer for a while over its seeds, with the memory limits every run uses.
#
#   fuzz/run_fuzzer.sh <fuzzer> <seconds> <seed folder> <work folder>
#
# New inputs go to <work folder>/corpus (kept between runs, so a longer run builds on a shorter
# one), crashes to <work folder>/crash-*. Exits non-zero when the fuzzer finds a fault.
set -euo pipefail

fuzzer=$1 seconds=$2 seeds=$3 work=$4
mkdir -p "$work/corpus"

# AddressSanitizer keeps freed memory aside to catch late uses; 256 MiB of it by default would
# count against the RSS limit below, so keep 64.
export ASAN_OPTIONS="${ASAN_OPTIONS:+${ASAN_OPTIONS}:}quarantine_size_mb=64"

# 512 MiB in all and 64 MiB in one allocation: a decoder that lets a few bytes ask for more fails.
# Inputs stay under 16 KiB: a valid frame of that size may hold 16 Ki empty records, which is
# what the decoded containers cost, not a fault (see docs/reliability.md).
exec "$fuzzer" \
    -max_total_time="$seconds" \
    -rss_limit_mb=512 \
    -malloc_limit_mb=64 \
    -max_len=16384 \
    -timeout=10 \
    -print_final_stats=1 \
    -artifact_prefix="$work/" \
    "$work/corpus" "$seeds"

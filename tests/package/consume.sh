#!/usr/bin/env bash
# Builds the consumer program against an installed library twice, with its CMake package and with
# pkg-config, and runs each against tessel-sim over loopback. Checks that the consumer is small,
# links the library dynamically and needs nothing but it and the system's own libraries.
#   consume.sh <scratch dir> [<prefix>]   (without a prefix: the system's, as packages install)
set -euo pipefail
scratch=$1
prefix=${2:-}
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
library=libKorvo.Plexis.Tessel.Client.so
max_consumer_bytes=$((1024 * 1024))

fail() {
    echo "consume.sh: $*" >&2
    exit 1
}

rm -rf "$scratch/cmake" "$scratch/pkg-config"
mkdir -p "$scratch/pkg-config"

echo "-- consumer with the CMake package"
cmake_args=()
if [[ -n "$prefix" ]]; then
    cmake_args+=(-DCMAKE_PREFIX_PATH="$prefix")
fi
cmake -S "$here/consumer" -B "$scratch/cmake" "${cmake_args[@]}" >/dev/null
cmake --build "$scratch/cmake" >/dev/null

echo "-- consumer with pkg-config"
pkg_config_path=()
rpath=()
if [[ -n "$prefix" ]]; then
    libdir="$(dirname "$(find "$prefix" -name korvo-tessel-client.pc -print -quit)")/.."
    pkg_config_path=(env "PKG_CONFIG_PATH=$(cd "$libdir/pkgconfig" && pwd)")
    rpath=(-Wl,-rpath,"$(cd "$libdir" && pwd)")
fi
# shellcheck disable=SC2046
c++ -std=c++17 -O2 -o "$scratch/pkg-config/consumer" "$here/consumer/main.cpp" \
    $("${pkg_config_path[@]}" pkg-config --cflags --libs korvo-tessel-client) "${rpath[@]}"

simulator=tessel-sim
if [[ -n "$prefix" ]]; then
    simulator="$prefix/bin/tessel-sim"
fi
sim_output="$scratch/tessel-sim.out"
"$simulator" --ephemeral >"$sim_output" &
sim_pid=$!
trap 'kill "$sim_pid" 2>/dev/null || true; wait "$sim_pid" 2>/dev/null || true' EXIT
endpoint=
for _ in $(seq 300); do
    endpoint="$(sed -n 's/^commands: //p' "$sim_output")"
    [[ -n "$endpoint" ]] && break
    kill -0 "$sim_pid" 2>/dev/null || fail "tessel-sim ended early"
    sleep 0.1
done
[[ -n "$endpoint" ]] || fail "tessel-sim printed no endpoint"

for consumer in "$scratch/cmake/consumer" "$scratch/pkg-config/consumer"; do
    "$consumer" "$endpoint" || fail "$consumer could not talk to tessel-sim at $endpoint"

    size=$(stat -c %s "$consumer")
    ((size < max_consumer_bytes)) || fail "$consumer is $size bytes, more than $max_consumer_bytes"

    libraries="$(ldd "$consumer")"
    grep -q "$library" <<<"$libraries" || fail "$consumer does not link $library dynamically"
    # Every library resolves, to the installed one or to the system's.
    while read -r name arrow path _; do
        [[ "$arrow" == "=>" ]] || continue
        [[ "$path" != "not" ]] || fail "$consumer: $name not found"
        if [[ -n "$prefix" && "$path" == "$prefix"/* ]]; then
            continue
        fi
        [[ "$path" == /lib/* || "$path" == /usr/lib/* || "$path" == /lib64/* ]] ||
            fail "$consumer: $name from $path, outside the system's libraries"
        if [[ -z "$prefix" ]]; then
            dpkg -S "*/$(basename "$path")" >/dev/null 2>&1 ||
                fail "$consumer: $path belongs to no installed package"
        fi
    done <<<"$libraries"
    echo "-- $consumer: $size bytes, needs" \
        $(objdump -p "$consumer" | awk '$1 == "NEEDED" {print $2}')
done

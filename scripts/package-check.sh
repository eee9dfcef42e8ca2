#!/usr/bin/env bash
# Checks the Debian packages on a bare machine: builds them (scripts/bootstrap.sh package),
# installs them with apt into a fresh Debian bookworm made by debootstrap (minbase), then, inside
# it, builds the consumer program of tests/package with the CMake package and with pkg-config and
# runs each against tessel-sim from the tools package (tests/package/consume.sh).
#
#   sudo scripts/package-check.sh [<work dir>]      (default: build/package-check)
#
# Needs root (debootstrap, chroot, mount) and a Debian mirror: the one of apt's sources, or
# KORVO_DEBIAN_MIRROR. Takes a few minutes, most of them downloading and unpacking the system.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
work=$(realpath -m "${1:-build/package-check}")
root="$work/bookworm"

if [[ "$(id -u)" != 0 ]]; then
    echo "package-check.sh: run as root (debootstrap and chroot need it)" >&2
    exit 2
fi
if ! command -v debootstrap >/dev/null; then
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends debootstrap
fi

# The mirror apt already uses, so that the check works wherever this machine's apt does.
mirror=${KORVO_DEBIAN_MIRROR:-}
if [[ -z "$mirror" ]]; then
    mirror=$(sed -n 's/^URIs: *\([^ ]*debian\/\?\)$/\1/p; s/^deb \(\[[^]]*\] \)\?\([^ ]*\) bookworm .*/\2/p' \
        /etc/apt/sources.list /etc/apt/sources.list.d/*.sources /etc/apt/sources.list.d/*.list \
        2>/dev/null | head -n 1 || true)
fi
mirror=${mirror:-http://deb.debian.org/debian}

scripts/bootstrap.sh package
debs=(build/package/*.deb)

cleanup() {
    for mounted in "$root/proc" "$root/dev/pts"; do
        if mountpoint -q "$mounted"; then
            umount "$mounted"
        fi
    done
}
trap cleanup EXIT

echo "=== a bare bookworm from $mirror"
cleanup
rm -rf "$root"
mkdir -p "$work"
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$work/debootstrap.log"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mount -t proc proc "$root/proc"
mount -t devpts devpts "$root/dev/pts"

mkdir -p "$root/tmp/check/debs"
cp "${debs[@]}" "$root/tmp/check/debs/"
root_debs=()
for deb in "${debs[@]}"; do
    root_debs+=("/tmp/check/debs/$(basename "$deb")")
done
cp -r tests/package "$root/tmp/check/package"

in_root() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

echo "=== the packages, installed with apt"
in_root apt-get update -q >/dev/null
# The packages and their Depends; a compiler, CMake and make for the consumer.
in_root apt-get install -y -q --no-install-recommends "${root_debs[@]}" g++ cmake make \
    >"$work/apt.log"

echo "=== installed sizes"
for deb in "${debs[@]}"; do
    package=$(dpkg-deb -f "$deb" Package)
    bytes=$(in_root sh -c "dpkg -L $package | while read -r f; do [ -f \"\$f\" ] && [ ! -L \"\$f\" ] && stat -c %s \"\$f\"; done | awk '{s += \$1} END {print s}'")
    printf '%-32s %10d bytes installed\n' "$package" "$bytes"
done
printf '%-32s %10d exported symbols\n' "libKorvo.Plexis.Tessel.Client" \
    "$(in_root sh -c 'nm -D --defined-only /usr/lib/*/libKorvo.Plexis.Tessel.Client.so.*.*.* | wc -l')"

echo "=== a consumer against the installed packages"
in_root /tmp/check/package/consume.sh /tmp/check/scratch

if in_root dpkg -s python3-tessel >/dev/null 2>&1; then
    echo "=== the Python package against its in-process simulator"
    in_root python3 -c '
import asyncio, tessel
async def main():
    with tessel.Simulator(servers=1, clips=3) as sim:
        async with tessel.connect(sim.commands, sim.notifications) as server:
            await server.ping()
asyncio.run(main())
print("python3-tessel: pinged the simulator")'
fi
echo "=== package check passed"

#!/usr/bin/env bash
# Installs the build into an empty prefix, then builds the example host
# against the installed tree alone (copied out of the source tree), once with
# pkg-config and once with find_package, and runs both and the installed
# invscan.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
prefix=$(mktemp -d) work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
cp -r examples/host "$work/src"

PKG_CONFIG_PATH="$prefix/lib/pkgconfig" make -s -C "$work/src" host
cmake -S "$work/src" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake" -- --no-print-directory >/dev/null

for host in "$work/src/host" "$work/cmake/host"; do
  loaded=$(ldd "$host" | awk '$1 == "libinvscan.so.0" { print $3 }')
  [ "$(realpath -m "$loaded")" = "$(realpath "$prefix/lib/libinvscan.so.0")" ] ||
    { echo "install-check: $host loads '$loaded', not the installed library"; exit 1; }
  "$host" Memory Processor >"$work/out.txt"
  grep -q '^Memory: 1 rows' "$work/out.txt" && grep -q '^Processor: ' "$work/out.txt" ||
    { echo "install-check: $host printed:"; cat "$work/out.txt"; exit 1; }
done
"$prefix/bin/invscan" scan Memory >/dev/null
"$prefix/bin/invscan" probe cpuid >/dev/null
echo "install-check: installed into a new prefix; the example host built with pkg-config and with CMake, and it and invscan scanned from there"

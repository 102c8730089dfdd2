#!/usr/bin/env bash
# Rewrites abi/libvelmio.abi.gz from a built library (RelWithDebInfo or
# Debug: the description is read from the debug information).
#   cmake --build build --target velmio && scripts/update-abi-baseline.sh [build]
# Run it on purpose, in the same commit as the change it records: after
# merging additions (new functions, new classes), or with a change that is
# meant to break compatibility, which also needs a new major version (the
# soname follows it). The test ABI.NoIncompatibleChange compares the built
# library with this file.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build}
library=$(ls "$build"/libvelmio.so.*.*.* | head -n1)
out=$(mktemp)
trap 'rm -f "$out"' EXIT
# No source locations or paths: the file changes only when the interface does.
abidw --no-show-locs --no-comp-dir-path --no-corpus-path --type-id-style hash --out-file "$out" "$library"
gzip -9n < "$out" > "$here/abi/libvelmio.abi.gz"
echo "abi/libvelmio.abi.gz now describes $library"

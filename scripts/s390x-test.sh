#!/usr/bin/env bash
# Proves that the files never depend on the host's byte order: cross-builds
# VelmIO for s390x (big-endian), runs the test suite under qemu-user, and
# compares a demo line written there with one written by the native build,
# byte by byte.
#
#   scripts/s390x-test.sh            sysroot in VELMIO_S390X_SYSROOT
#                                    (default ~/.cache/velmio/s390x-sysroot),
#                                    made on first use (about 400 MB)
#
# Debian's s390x development packages cannot be installed beside the amd64
# ones here, so the sysroot is made by debootstrap (download and unpack only)
# and every downloaded package is unpacked into it.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
sysroot=${VELMIO_S390X_SYSROOT:-${XDG_CACHE_HOME:-$HOME/.cache}/velmio/s390x-sysroot}
build=${BUILD_DIR:-$here/build-s390x}
native=${NATIVE_BUILD_DIR:-$here/build}
packages=libxml2-dev,libicu-dev,libgtest-dev,libgmock-dev,libgeographiclib-dev,libgdal-dev,libstdc++-12-dev,libc6-dev
start=$(date +%s)

if [ ! -e "$sysroot/.velmio-unpacked" ]; then
  # The mirror the machine's own packages come from.
  mirror=$(grep -hoE '^(URIs:|deb) +https?://[^ ]+' /etc/apt/sources.list.d/*.sources /etc/apt/sources.list \
             2>/dev/null | grep -v security | head -1 | awk '{print $2}' || true)
  mirror=${mirror:-http://deb.debian.org/debian}
  mkdir -p "$sysroot"
  debootstrap --foreign --arch=s390x --variant=minbase --include="$packages" bookworm "$sysroot" "$mirror"
  for deb in "$sysroot"/var/cache/apt/archives/*.deb; do dpkg-deb -x "$deb" "$sysroot"; done
  # The links that the packages' scripts (update-alternatives) would make.
  for lib in blas/libblas.so.3 lapack/liblapack.so.3; do
    ln -sf "$lib" "$sysroot/usr/lib/s390x-linux-gnu/$(basename "$lib")"
  done
  touch "$sysroot/.velmio-unpacked"
fi

cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_TOOLCHAIN_FILE="$here/cmake/s390x-toolchain.cmake" -DVELMIO_S390X_SYSROOT="$sysroot" \
  -DVELMIO_BUILD_BENCH=OFF -DVELMIO_BUILD_FUZZ=OFF >/dev/null
cmake --build "$build" -j"$(nproc)"
built=$(date +%s)

# The suite, every program under qemu (CMAKE_CROSSCOMPILING_EMULATOR). The
# ABI baseline, the programs built against an installed copy and the Python
# package are checks of the native build.
(cd "$build" && ctest --output-on-failure -j"$(nproc)" --timeout 900 -E '^(ABI|Install|Python)\.')
tested=$(date +%s)

# The same demo survey from both builds, at the same path (some files name
# themselves), must be the same bytes.
cmake -S "$here" -B "$native" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$native" -j"$(nproc)" --target velmio_tool >/dev/null
work=$(mktemp -d "${TMPDIR:-/tmp}/velmio-s390x-XXXXXX")
trap 'rm -rf "$work"' EXIT
"$native/tools/velmio" demo "$work/survey" >/dev/null
mv "$work/survey" "$work/native"
qemu-s390x -L "$sysroot" "$build/tools/velmio" demo "$work/survey" >/dev/null
mv "$work/survey" "$work/s390x"
files=$(cd "$work/native" && find . -type f | wc -l)
diff -r "$work/native" "$work/s390x"
echo "s390x: $files demo files byte-identical to the native build's;" \
  "build $((built - start)) s, tests $((tested - built)) s, total $(($(date +%s) - start)) s"

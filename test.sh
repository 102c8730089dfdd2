#!/usr/bin/env bash
# Installs what is missing, builds VelmIO and runs the whole test suite.
# --sanitize builds and runs it with AddressSanitizer and UBSan instead.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/scripts/install-deps.sh"
if [ "${1:-}" = "--sanitize" ]; then
  export BUILD_DIR=$here/build-sanitize
  export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  "$here/scripts/build.sh" -DVELMIO_SANITIZE=address,undefined -DVELMIO_BUILD_BENCH=OFF
else
  export BUILD_DIR=$here/build
  "$here/scripts/build.sh"
fi
cd "$BUILD_DIR"
ctest --output-on-failure -j"$(nproc)"

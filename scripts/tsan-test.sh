#!/usr/bin/env bash
# Builds the threads test with ThreadSanitizer and runs it: several threads
# using handles of every family and the process-wide state at once. Any data
# race the sanitizer sees fails the run.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build-tsan}
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMIO_SANITIZE=thread \
  -DVELMIO_BUILD_BENCH=OFF -DVELMIO_BUILD_FUZZ=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target test_threads
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 "$build/tests/test_threads"

#!/usr/bin/env bash
# Fuzzes every target (or the ones named) with libFuzzer, AddressSanitizer
# and UBSan for SECONDS each (default 60), starting from its committed corpus
# fuzz/corpus/<target>, two targets at a time. Fails when any target finds an
# input that crashes, leaks, times out or allocates too much; such inputs are
# left in build-libfuzzer/findings/ to be fixed and then added to the corpus.
#   scripts/fuzz.sh [SECONDS [TARGET...]]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build-libfuzzer}
seconds=${1:-60}
shift || true

CC=clang CXX=clang++ cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMIO_LIBFUZZER=ON \
  -DVELMIO_SANITIZE=address,undefined -DCMAKE_C_FLAGS=-fsanitize=fuzzer-no-link \
  -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link -DVELMIO_BUILD_BENCH=OFF -DVELMIO_BUILD_TESTS=OFF >/dev/null
if [ $# -eq 0 ]; then
  set -- $(cd "$here/fuzz/corpus" && ls)
fi
cmake --build "$build" -j"$(nproc)" --target "${@/%/_libfuzzer}"

findings=$build/findings
rm -rf "$findings" "$build/fuzz-work"
mkdir -p "$findings" "$build/fuzz-work"
export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# One target: new inputs go to a scratch copy of the corpus, never into the
# source tree. The library's diagnostics on standard output are dropped.
fuzz_one() {
  local target=$1 work=$build/fuzz-work/$1
  mkdir -p "$work/corpus"
  cp "$here/fuzz/corpus/$target"/* "$work/corpus/"
  if (cd "$work" && TMPDIR=$work "$build/fuzz/${target}_libfuzzer" -max_total_time="$seconds" -timeout=10 \
        -rss_limit_mb=2048 -malloc_limit_mb=512 -max_len=8192 -close_fd_mask=1 \
        -artifact_prefix="$findings/$target-" corpus >"$work/log" 2>&1); then
    echo "fuzz $target: $(grep -aoE '^Done [0-9]+ runs in [0-9]+ second' "$work/log" | tail -1)s," \
      "$(grep -aoE 'cov: [0-9]+' "$work/log" | tail -1), no finding"
  else
    echo "fuzz $target: FINDING"
    tail -40 "$work/log"
    return 1
  fi
}
export -f fuzz_one
export build here seconds findings

status=0
printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'fuzz_one {}' || status=1
if [ "$status" -ne 0 ]; then
  echo "findings (replay with $build/fuzz/<target>_libfuzzer FILE):"
  ls -l "$findings"
fi
exit "$status"

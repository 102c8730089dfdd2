#!/usr/bin/env bash
# Builds the benchmarks in Release (in build-bench), runs them and prints one
# table of VelmIO against the raw I/O limit measured in the same run.
# Arguments go to the benchmark program, e.g. --benchmark_filter=Gyro.
# VELMIO_BENCH_PASSES sets the passes over the 10-million-record lines (3).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${VELMIO_BENCH_BUILD_DIR:-$here/build-bench}
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVELMIO_BUILD_TESTS=OFF -DVELMIO_BUILD_FUZZ=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target velmio_bench >/dev/null
# The lines are written under TMPDIR; an interrupted run leaves nothing behind.
export TMPDIR=$(mktemp -d)
trap 'rm -rf "$TMPDIR"' EXIT
results=$TMPDIR/results.json
# Progress goes to stderr so that stdout is the table alone.
"$build/bench/velmio_bench" --benchmark_out="$results" --benchmark_out_format=json "$@" >&2
/usr/bin/python3 "$here/bench/table.py" "$results"

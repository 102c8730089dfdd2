#!/usr/bin/env bash
# Configures and builds VelmIO in BUILD_DIR (default: build). Extra arguments
# go to cmake's configure step.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$here/build}
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build" -j"$(nproc)"

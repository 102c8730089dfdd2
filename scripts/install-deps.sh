#!/usr/bin/env bash
# Installs the Debian packages VelmIO builds and tests with, when missing.
set -euo pipefail
packages=(cmake make g++ pkg-config libxml2-dev libicu-dev icu-devtools libgtest-dev libgmock-dev
          libbenchmark-dev libgeographiclib-dev abigail-tools tzdata locales)
# --checks: also what the fuzzing, thread and big-endian checks of .ci/run use
# (scripts/fuzz.sh, scripts/tsan-test.sh, scripts/s390x-test.sh) and the
# Debian package check (cpack -G DEB, scripts/deb-test.sh).
if [ "${1:-}" = "--checks" ]; then
  packages+=(clang libclang-rt-14-dev debootstrap qemu-user g++-s390x-linux-gnu)
  packages+=(dpkg-dev file)
fi
packages+=(python3-dev python3-numpy pybind11-dev python3-pytest python3-hypothesis python3-xarray python3-dask python3-distributed python3-pandas python3-matplotlib)  # the Python package
packages+=(libgdal-dev)  # velmio export writes GIS formats through GDAL/OGR
packages+=(libproj-dev)  # the projection benchmarks compare with PROJ
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  as_root apt-get update -qq
  DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq "${missing[@]}" >/dev/null
fi
# A decimal-comma locale lets the tests prove that files do not depend on it.
if ! locale -a 2>/dev/null | grep -qi '^de_DE.utf8$'; then
  as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "note: could not generate de_DE.UTF-8; locale tests will be skipped"
fi

#!/usr/bin/env bash
# Installs the Debian packages VelmIO builds and tests with, when missing.
set -euo pipefail
packages=(cmake make g++ pkg-config libxml2-dev libicu-dev icu-devtools libgtest-dev libgmock-dev
          libbenchmark-dev libgeographiclib-dev tzdata locales
          libproj-dev)  # libproj-dev: the projection benchmarks compare with PROJ
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

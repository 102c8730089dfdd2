#!/usr/bin/env bash
# Installs what is missing, builds VelmIO and runs the velmio tool on a demo
# survey that it makes in a temporary data root.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/scripts/install-deps.sh"
"$here/scripts/build.sh"
velmio="$here/build/tools/velmio"
root=$(mktemp -d "${TMPDIR:-/tmp}/velmio-demo-XXXXXX")
line="$root/DemoProject/Surveyor/2004-123/Line001"
"$velmio" demo "$root"
"$velmio" show "$line"
"$velmio" info "$root/DemoProject/Surveyor" --quiet | tail -5
"$velmio" dump "$line" Navigation --records 1:3
"$velmio" export "$root" --to "$root/tracks.gpkg"
echo "demo survey left in $root"

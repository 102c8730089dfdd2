#!/usr/bin/env bash
# Installs what is missing, builds VelmIO and runs the velmio tool on a demo
# survey line that it makes in a temporary data root.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/scripts/install-deps.sh"
"$here/scripts/build.sh"
root=$(mktemp -d "${TMPDIR:-/tmp}/velmio-demo-XXXXXX")
line="$root/DemoProject/DemoVessel/2004-123/Line001"
"$here/build/tools/velmio" demo "$line"
"$here/build/tools/velmio" show "$line"
echo "demo line left in $line"

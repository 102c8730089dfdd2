#!/usr/bin/env bash
# Proves that the Debian packages install on a fresh Debian and serve their
# users there: makes them (cpack -G DEB) from a build configured for /usr,
# installs them with apt into a fresh copy of a minimal chroot of this
# machine's Debian release, and there builds and runs the examples against
# them (find_package and pkg-config), runs the installed velmio and reads its
# manual page, and imports the Python package with Debian's interpreter.
#
#   scripts/deb-test.sh            chroot in VELMIO_DEB_CHROOT (default
#                                  ~/.cache/velmio/deb-chroot), made on first
#                                  use (about 450 MB) and never changed after;
#                                  build in BUILD_DIR (default build-deb)
#
# Needs root (debootstrap, chroot, mount) and the Debian mirror.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
base=${VELMIO_DEB_CHROOT:-${XDG_CACHE_HOME:-$HOME/.cache}/velmio/deb-chroot}
build=${BUILD_DIR:-$here/build-deb}
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
start=$(date +%s)

if [ ! -e "$base/.velmio-ready" ]; then
  # The mirror the machine's own packages come from.
  mirror=$(grep -hoE '^(URIs:|deb) +https?://[^ ]+' /etc/apt/sources.list.d/*.sources /etc/apt/sources.list \
             2>/dev/null | grep -v security | head -1 | awk '{print $2}' || true)
  mirror=${mirror:-http://deb.debian.org/debian}
  rm -rf "$base"
  mkdir -p "$base"
  # A bare system plus what someone building against the packages brings.
  debootstrap --variant=minbase --include=cmake,g++,make,pkg-config,man-db "$release" "$base" "$mirror"
  touch "$base/.velmio-ready"
fi

# Packages are made from a build for /usr: the install paths (the multiarch
# library folder, Debian's dist-packages) follow the prefix.
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DVELMIO_BUILD_TESTS=OFF -DVELMIO_BUILD_BENCH=OFF -DVELMIO_BUILD_FUZZ=OFF >/dev/null
cmake --build "$build" -j"$(nproc)"
rm -f "$build"/*.deb
(cd "$build" && cpack -G DEB >/dev/null)
built=$(date +%s)

work=$(mktemp -d "${TMPDIR:-/tmp}/velmio-deb-XXXXXX")
root=$work/root
cleanup() {
  umount "$root/proc" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
cp -a "$base" "$root"
mount -t proc proc "$root/proc"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir -p "$root/tmp/velmio"
cp "$build"/*.deb "$here/tests/install/consume_installed.cmake" "$root/tmp/velmio/"
cp -r "$here/examples" "$root/tmp/velmio/examples"
in_root() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 "$@"; }

in_root apt-get update -qq
in_root sh -c 'cd /tmp/velmio && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq ./*.deb >/dev/null'
packages=$(cd "$build" && ls ./*.deb | sed 's|^\./||; s|_.*||' | paste -sd' ')

# The examples against /usr, with find_package and pkg-config; the library
# and the installed velmio find the message bundle.
libdir=$(in_root dpkg -L "$(cd "$build" && ls libvelmio[0-9]*.deb | sed 's|_.*||')" | grep -m1 '/libvelmio\.so\.')
libdir=$(dirname "${libdir#/usr/}")
in_root cmake -DWORK=/tmp/velmio/consumer -DEXAMPLES=/tmp/velmio/examples -DLIBDIR="$libdir" -DPREFIX=/usr \
  -DCC=gcc -DCXX=g++ -P /tmp/velmio/consume_installed.cmake
in_root man -P cat velmio | grep -q 'velmio' || { echo "man velmio shows no page" >&2; exit 1; }
in_root /usr/bin/python3 -c '
import velmio
sentence = velmio.explain(5000046)
assert sentence and "data file" in sentence, sentence
print("python3-velmio:", velmio.__file__)'
echo "deb: $packages installed with apt into a fresh $release and used there;" \
  "build $((built - start)) s, total $(($(date +%s) - start)) s"

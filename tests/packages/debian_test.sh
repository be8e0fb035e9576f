#!/usr/bin/env bash
# Makes the packages for Debian, has them checked by lintian, installs them into a folder with the machine's own list of
# packages (so that what they depend on has to be there), and builds and runs clients from that alone, through CMake and
# through pkg-config. Arguments: build folder, source folder. The packages stay in BUILD/packages.
set -euo pipefail
build=$1 source=$2
umask 0022
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rm -rf "$build/packages"
# shellcheck source=tests/packages/compression.sh
. "$(dirname "$0")/compression.sh"
cpack --config "$build/CPackConfig.cmake" -G DEB "${compression[@]}" -B "$build/packages" >"$work/cpack.log" || { cat "$work/cpack.log"; exit 1; }
rm -rf "$build/packages/_CPack_Packages"

lintian --fail-on error,warning --allow-root "$build"/packages/*.deb
for package in "$build"/packages/*deb; do
  dpkg-deb --contents "$package" >"$work/contents"
  case $package in *-dbgsym*) grep -q '\.debug$' "$work/contents"; continue ;; esac
  for notice in copyright LICENSE THIRD-PARTY-NOTICES; do
    grep -q "/$notice" "$work/contents" || { echo "$package has no $notice" >&2; exit 1; }
  done
done

mkdir -p "$work/root/var/lib/dpkg/"{info,updates,triggers}
cp /var/lib/dpkg/status "$work/root/var/lib/dpkg/"
touch "$work/root/var/lib/dpkg/available"
# Their scripts call ldconfig, which is for the machine itself.
mkdir "$work/path"
ln -s /bin/true "$work/path/ldconfig"
PATH=$work/path:$PATH dpkg --force-not-root --force-script-chrootless --root="$work/root" --no-triggers -i \
  "$build"/packages/*deb >"$work/dpkg.log" 2>&1 ||
  { cat "$work/dpkg.log"; exit 1; }
prefix=$work/root/usr
libraries=$(dirname "$(find "$prefix" -name liboct_rendering.so)")
[ -z "$(find "$prefix" -name '*.so*' -exec readelf -d {} + | grep -E 'RPATH|RUNPATH')" ] || exit 1

. "$(dirname "$0")/clients.sh"
export LD_LIBRARY_PATH=$libraries PKG_CONFIG_PATH=$libraries/pkgconfig
cmake -S "$work/client" -B "$work/client/build" "-DCMAKE_PREFIX_PATH=$prefix" >/dev/null
cmake --build "$work/client/build" >/dev/null
says "$bright" "$work/client/build/readme"
says "5 volumes drawn, $bright" "$work/client/build/live"

compile() { # NAME LIBRARY...
  # The flags are words of a command line.
  # shellcheck disable=SC2046
  cc -std=c99 -Wall -Werror "$work/client/$1.c" -o "$work/$1" $(pkg-config --cflags --libs "${@:2}") -lm
}
compile readme oct_rendering
says "$bright" "$work/readme"
compile live oct_rendering oct_device
compile vendor oct_rendering
"$work/vendor" >/dev/null 2>&1
compile draw_bscan oct_rendering
"$work/draw_bscan" "$work/bscan.ppm" >/dev/null
[ "$(stat -c %s "$work/bscan.ppm")" -gt 900000 ]
"$prefix/bin/octrender" --help >/dev/null
# The installed program finds the installed device library.
"$prefix/bin/octrender" live --seconds 0.05 --size 40x30 --spectrum 64 --ascans 8 --bscans 4 >/dev/null

# GDB finds the symbols by the number of the build.
id=$(readelf -n "$libraries/liboct_rendering.so" | sed -n 's/.*Build ID: //p')
says '\.debug_line' readelf -SW "$prefix/lib/debug/.build-id/${id:0:2}/${id:2}.debug"

#!/usr/bin/env bash
# Makes the zip for Windows, and builds and runs clients from it alone, under Wine: with mingw-w64 through CMake and through
# pkg-config, and with the import library for MSVC. Arguments: build folder, source folder. It stays in BUILD/packages.
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rm -rf "$build/packages"
cpack --config "$build/CPackConfig.cmake" -G ZIP -B "$build/packages" >"$work/cpack.log" || { cat "$work/cpack.log"; exit 1; }
rm -rf "$build/packages/_CPack_Packages"
for package in "$build"/packages/*.zip; do
  (mkdir "$work/zip" && cd "$work/zip" && cmake -E tar xf "$package" && ls */LICENSE */THIRD-PARTY-NOTICES >/dev/null)
  mv "$work/zip" "$work/$(case $package in *symbols*) echo symbols ;; *) echo library ;; esac)"
done
prefix=$(echo "$work"/library/*)
wine=$source/scripts/wine-run
# Programs find the DLLs beside them.
mkdir -p "$work/bin"
cp "$prefix"/bin/*.dll "$work/bin/"

. "$(dirname "$0")/clients.sh"
cmake -S "$work/client" -B "$work/client/build" "-DCMAKE_TOOLCHAIN_FILE=$source/cmake/toolchain-windows.cmake" \
  "-Doct_rendering_DIR=$prefix/lib/cmake/oct_rendering" "-DCMAKE_RUNTIME_OUTPUT_DIRECTORY=$work/bin" >/dev/null
cmake --build "$work/client/build" >/dev/null
says "$bright" "$wine" "$work/bin/readme.exe"
says "5 volumes drawn, $bright" "$wine" "$work/bin/live.exe"

export PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig
compile() { # NAME LIBRARY...
  # The flags are words of a command line.
  # shellcheck disable=SC2046
  x86_64-w64-mingw32-gcc-posix -std=c99 -Wall -Werror "$work/client/$1.c" -o "$work/bin/$1_plain.exe" \
    $(pkg-config --cflags --libs "${@:2}")
}
compile readme oct_rendering
says "$bright" "$wine" "$work/bin/readme_plain.exe"
compile draw_bscan oct_rendering
"$wine" "$work/bin/draw_bscan_plain.exe" "$work/bscan.ppm" >/dev/null
[ "$(stat -c %s "$work/bscan.ppm")" -gt 900000 ]

# What MSVC would make of a program: its object format and calling convention, its linker's stand-in, no run-time library.
cat >"$work/msvc.c" <<'EOF'
#include <oct_rendering/oct_rendering.h>
int _fltused;
static float image[64][64];
static unsigned char pixels[8][8][4];
int mainCRTStartup(void) {
  for (int x = 0; x < 64; ++x)
    for (int z = 0; z < 64; ++z) image[x][z] = 1.0f;
  OffscreenTargetHandle target = createOffscreenTarget();
  DisplayRenderingHandle display = createDisplayRendering();
  initDisplayRendering(display);
  setDisplayData(display, 64, 64, &image[0][0]);
  setDisplayColoringBoundaries(display, 0.0, 2.0);
  beginOffscreenFrame(target, 8, 8);
  renderDisplay(display);
  finishOffscreenFrame(target, pixels);
  clearDisplayRendering(display);
  clearOffscreenTarget(target);
  return isRendererError() ? 1 : pixels[4][4][0]; /* half of the way between the boundaries */
}
EOF
clang --target=x86_64-pc-windows-msvc -ffreestanding -O0 -Wall -Werror "-I$prefix/include" -c "$work/msvc.c" -o "$work/msvc.obj"
lld-link /subsystem:console /entry:mainCRTStartup "/out:$work/bin/msvc.exe" "$work/msvc.obj" "$prefix/lib/oct_rendering.lib"
status=0
"$wine" "$work/bin/msvc.exe" >/dev/null || status=$?
[ "$status" -ge 126 ] && [ "$status" -le 130 ] || { echo "the program linked for MSVC ends with $status" >&2; exit 1; }

"$wine" "$prefix/bin/octrender.exe" --help >/dev/null
"$wine" "$prefix/bin/octrender.exe" live --seconds 0.05 --size 40x30 --spectrum 64 --ascans 8 --bscans 4 >/dev/null
for name in oct_rendering.dll oct_device.dll octrender.exe octsimulate.exe octview.exe; do
  says '\.debug_line' x86_64-w64-mingw32-objdump -h "$work"/symbols/*/bin/$name.debug
  says "format RSDS" x86_64-w64-mingw32-objdump -p "$prefix/bin/$name"
  [ -s "$(echo "$work"/symbols/*/bin/"${name%.*}.pdb")" ]
done

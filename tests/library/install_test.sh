#!/usr/bin/env bash
# Installs the build, then builds and runs the C example from the installation alone, through CMake's find_package and
# through pkg-config. Arguments: build folder, source folder.
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(dirname "$(find "$work/prefix" -name 'liboct_rendering.so')")

mkdir "$work/client"
cp "$source/examples/draw_bscan.c" "$work/client/"
# The client of live volumes in its guide.
sed -n '/^## A client in C$/,$p' "$source/docs/live.md" | sed -n '/^```c$/,/^```$/{/^```/d;p}' >"$work/client/live.c"
cat >"$work/client/CMakeLists.txt" <<'EOF'
cmake_minimum_required(VERSION 3.25)
project(client C)
find_package(oct_rendering 0.2 REQUIRED)
add_executable(client draw_bscan.c)
target_link_libraries(client PRIVATE oct_rendering::oct_rendering m)
add_executable(live live.c)
target_link_libraries(live PRIVATE oct_rendering::oct_rendering oct_rendering::oct_device)
EOF
cmake -S "$work/client" -B "$work/client/build" "-DCMAKE_PREFIX_PATH=$work/prefix" >/dev/null
cmake --build "$work/client/build" >/dev/null
"$work/client/build/client" "$work/cmake.ppm" >/dev/null

export PKG_CONFIG_PATH="$libdir/pkgconfig"
# The flags are words of a command line.
# shellcheck disable=SC2046
cc -std=c99 "$work/client/draw_bscan.c" -o "$work/client/plain" $(pkg-config --cflags --libs oct_rendering) -lm
LD_LIBRARY_PATH="$libdir" "$work/client/plain" "$work/pkgconfig.ppm" >/dev/null

cmp "$work/cmake.ppm" "$work/pkgconfig.ppm"

# The program in the README.
sed -n '/^```c$/,/^```$/{/^```/d;p}' "$source/README.md" >"$work/readme.c"
# shellcheck disable=SC2046
cc -std=c99 -Wall -Werror "$work/readme.c" -o "$work/readme" $(pkg-config --cflags --libs oct_rendering)
# Through a file: grep would end at its match and break the pipe under the program's last lines.
LD_LIBRARY_PATH="$libdir" "$work/readme" >"$work/readme.txt"
grep -q "the middle pixel is [1-9]" "$work/readme.txt"

# shellcheck disable=SC2046
cc -std=c99 -Wall -Werror "$work/client/live.c" -o "$work/live" $(pkg-config --cflags --libs oct_rendering oct_device)
for live in "$work/live" "$work/client/build/live"; do
  LD_LIBRARY_PATH="$libdir" "$live" >"$work/live.txt"
  grep -q "5 volumes drawn, the middle pixel is [1-9]" "$work/live.txt"
done

# A program whose device library brings the handle types itself.
cat >"$work/vendor.c" <<'EOC'
typedef struct Device* OCTDeviceHandle;
typedef struct Processing* ProcessingHandle;
typedef struct ScanPattern* ScanPatternHandle;
typedef struct PolarizationProcessing* PolarizationProcessingHandle;
#define OCT_DEVICE_HANDLES
#include <oct_rendering/oct_rendering.h>
int main(void) { return createOnlineDataSource((OCTDeviceHandle)0, (ProcessingHandle)0) != 0; }
EOC
# shellcheck disable=SC2046
cc -std=c99 -Wall -Werror "$work/vendor.c" -o "$work/vendor" $(pkg-config --cflags --libs oct_rendering)
LD_LIBRARY_PATH="$libdir" "$work/vendor" 2>/dev/null >"$work/vendor.txt"
[ "$(stat -c %s "$work/cmake.ppm")" -gt 900000 ]
"$work/prefix/bin/octrender" --help >/dev/null
# The installed program finds the installed device library.
"$work/prefix/bin/octrender" live --seconds 0.05 --size 40x30 --spectrum 64 --ascans 8 --bscans 4 >/dev/null

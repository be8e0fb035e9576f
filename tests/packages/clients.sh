# Clients of an installed package, in $work/client: the program of the README, the one of the guide to live volumes and an
# example. Sourced by the tests of packages, which say what builds and runs them: $source, $work.
mkdir "$work/client"
c_program() { # FILE [HEADING]: the first C program of a page, or that below a heading
  awk -v heading="${2-}" '
    $0 ~ heading { below = 1 }
    code && /^```$/ { exit }
    code
    below && /^```c$/ { code = 1 }' "$source/$1"
}
c_program README.md >"$work/client/readme.c"
c_program docs/live.md '^## A client in C$' >"$work/client/live.c"
cp "$source/examples/draw_bscan.c" "$work/client/"
cat >"$work/client/CMakeLists.txt" <<'EOF'
cmake_minimum_required(VERSION 3.25)
project(client C)
find_package(oct_rendering 0.2 REQUIRED)
add_executable(readme readme.c)
target_link_libraries(readme PRIVATE oct_rendering::oct_rendering)
add_executable(live live.c)
target_link_libraries(live PRIVATE oct_rendering::oct_rendering oct_rendering::oct_device)
find_package(oct_rendering 0.1 QUIET)
if(oct_rendering_FOUND)
  message(FATAL_ERROR "a package that may break programs of 0.1 was taken for one of 0.1")
endif()
EOF
# A program whose device library brings the handle types itself.
cat >"$work/client/vendor.c" <<'EOF'
typedef struct Device* OCTDeviceHandle;
typedef struct Processing* ProcessingHandle;
typedef struct ScanPattern* ScanPatternHandle;
typedef struct PolarizationProcessing* PolarizationProcessingHandle;
#define OCT_DEVICE_HANDLES
#include <oct_rendering/oct_rendering.h>
int main(void) { return createOnlineDataSource((OCTDeviceHandle)0, (ProcessingHandle)0) != 0; }
EOF

# says TEXT COMMAND...: the command succeeds and prints the text. Through a file, because grep would end at its match and
# break the pipe under the program's last lines.
says() {
  local text=$1
  shift
  "$@" >"$work/output.txt" || { cat "$work/output.txt" >&2; echo "failed: $*" >&2; return 1; }
  grep -q "$text" "$work/output.txt" || { cat "$work/output.txt" >&2; echo "does not say $text: $*" >&2; return 1; }
}
bright="the middle pixel is [1-9]"

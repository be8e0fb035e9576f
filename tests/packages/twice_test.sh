#!/usr/bin/env bash
# Two builds of the same sources are the same, byte for byte: builds and packs what is shipped once more, in another
# folder, with other settings of the user, and compares the packages with those in BUILD/packages. Arguments: build folder
# (BUILD), source folder.
# Linking, packing and what CMake makes are done anew. Of the objects a sixteenth is compiled anew, another one with each
# commit, because all of them take more than a minute; OCT_COMPILE_TWICE=all (./check --twice) compiles all. What could
# differ in the others is held by two other means: no compiler may use a clock (-Werror=date-time), and no file that is
# shipped names the folder that it was built in.
set -euo pipefail
build=$1 source=$2
preset=$(basename "$build")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
again=$work/another/folder
mkdir -p "$again/build"
(cd "$source" && git ls-files -z --cached --others --exclude-standard | tar -c --null -T -) | tar -x -C "$again"
ln -s "$(realpath "$source/build/deps")" "$again/build/deps"

commit=$(git -C "$source" rev-parse HEAD)
export OCT_FIRST_BUILD=$build OCT_COMPILED=$work/compiled OCT_SHARE=${OCT_COMPILE_TWICE:-$((16#${commit:0:4} % 16))}
SOURCE_DATE_EPOCH=$(git -C "$source" log -1 --format=%ct)
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1 TZ=Asia/Kathmandu LC_ALL=C.UTF-8 USER=somebody
umask 0022  # cpack writes it into packages for Debian
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
# shellcheck source=tests/packages/compression.sh
. "$(dirname "$0")/compression.sh"
launcher=$(realpath "$(dirname "$0")/reuse_object")
{
  cmake --preset "$preset" -S "$again" -DOCT_BUILD_TESTS=OFF -DOCT_BUILD_BENCHMARKS=OFF \
    "-DCMAKE_C_COMPILER_LAUNCHER=$launcher" "-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher" &&
    cmake --build "$again/build/$preset" --target shipped &&
    cpack --config "$again/build/$preset/CPackConfig.cmake" "${compression[@]}" -B "$work/packages"
} >"$work/log" 2>&1 || { tail -n 30 "$work/log" >&2; exit 1; }
echo "$(wc -l <"$OCT_COMPILED") objects compiled anew"

# Unpacks a package, without PDB files: GNU's linker writes the full names of object files into them.
unpack() { # PACKAGE FOLDER
  mkdir "$2"
  case $1 in
    *deb) dpkg-deb -x "$1" "$2" ;;
    *) (cd "$2" && cmake -E tar xf "$1" && find . -name '*.pdb' -delete) ;;
  esac
}
cd "$build/packages"
failed=
for package in *deb *.zip; do
  [ -e "$package" ] || continue
  unpack "$PWD/$package" "$work/first"
  unpack "$work/packages/$package" "$work/second"
  diff -rq --no-dereference "$work/first" "$work/second" || failed=yes
  # CPack's list of sums in packages of symbols names the folder that they were packed in.
  [[ $package == *-symbols.zip || $package == *.ddeb ]] || cmp "$package" "$work/packages/$package" || failed=yes
  if grep -rlaF -e "$(realpath "$source")" "$work/first"; then
    echo "these files of $package name the folder that they were built in" >&2
    failed=yes
  fi
  rm -rf "$work/first" "$work/second"
done
[ -z "$failed" ]

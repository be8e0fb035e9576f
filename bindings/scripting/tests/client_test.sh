#!/usr/bin/env bash
# Builds a C89 client with the header alone and runs it. Arguments: folder of the header, folder of the libraries, the
# device library.
set -euo pipefail
header=$1 libraries=$2 device=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
here=$(dirname "$0")
gcc -std=c89 -pedantic-errors -Wall -Wextra -Werror -fsyntax-only -I "$header" "$here/client.c"
tcc -std=c89 -Wall -Werror -I "$header" "$here/client.c" -L "$libraries" -loct_rendering -loct_device -o "$work/client"
LD_LIBRARY_PATH="$libraries" "$work/client" "$device"

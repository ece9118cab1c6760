#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_reproducible.sh BUILD PACKAGES: builds the DLL and zrthumb.exe once more, from a copy of the sources in another
# folder, and expects the very same packages.
set -euo pipefail
build=$(realpath "$1") packages=$(realpath "$2")
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

again=$(mktemp -d)
trap 'rm -rf "$again"' EXIT
copy=$again/a/copy/elsewhere
mkdir -p "$copy"
"$top/tools/list-sources" | tar -c -C "$top" --no-recursion --null --files-from=- | tar -x -C "$copy"

cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
# The compiler cache would give the first build's results.
export CCACHE_DISABLE=1
cmake -S "$copy" -B "$again/build" -G Ninja -DCMAKE_BUILD_TYPE="$(cached CMAKE_BUILD_TYPE)" -DZRTHUMB_TESTS=OFF \
    -DCMAKE_TOOLCHAIN_FILE="$copy/cmake/mingw-w64-x86_64.cmake" \
    -DZRTHUMB_QT_WINDOWS="$(cached ZRTHUMB_QT_WINDOWS)" >"$again/configure.log" || { cat "$again/configure.log"; exit 1; }
# The copy is no clone and has no commit; its packages bear the time of the first ones.
SOURCE_DATE_EPOCH=$(stat -c %Y "$packages/payload")
export SOURCE_DATE_EPOCH
cmake --build "$again/build" --target packages >"$again/build.log" || { tail -n 30 "$again/build.log"; exit 1; }

diff -r "$packages/payload" "$again/build/packages/payload"
diff "$packages/SHA256SUMS" "$again/build/packages/SHA256SUMS"

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# make_tested_packages.sh BUILD QT VERSION DECOY OUTPUT: makes the packages of BUILD in the folder OUTPUT, unpacks the zip
# there and makes the installer of an older version, whose files all differ and whose server still works. As in older
# versions, there are libraries and plug-ins next to the server, here copies of DECOY.
set -euo pipefail
build=$(realpath "$1") qt=$(realpath "$2") version=$3 decoy=$(realpath "$4") output=$(realpath -m "$5")
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

"$top/packaging/windows/make-packages" "$build" "$qt" "$version" "$output"
(cd "$output" && sha256sum --quiet --check SHA256SUMS)
mkdir "$output/unpacked"
(cd "$output/unpacked" && cmake -E tar xf "$output/ZRThumbnail-$version-windows.zip")

older=$(mktemp -d)
trap 'rm -rf "$older"' EXIT
cp -R "$output/payload/." "$older/"
# Windows does not load bytes after the last section of a DLL.
find "$older" -type f -exec sh -c 'for file; do echo older >>"$file"; done' sh {} +
for file in Qt5{Core,Gui,Sql,Widgets}.dll platforms/qwindows.dll sqldrivers/qsqlite.dll \
    libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll; do
    install -D -m 644 "$decoy" "$older/$file"
done
mkdir "$older/older"
echo "a file that the next version no longer has" >"$older/older/only.txt"
SOURCE_DATE_EPOCH=$(stat -c %Y "$output/payload")
export SOURCE_DATE_EPOCH
# Less compressed than what users get, which takes a fifth of the time; the two warnings are that the installer's own
# choice has no effect.
make_setup() {
    "$top/packaging/windows/make-setup" "$1" "$build/uninstall.exe" "$build/generated/suffixes.nsh" "$2" "$output/$3" \
        "-X!pragma warning disable 8020" "-X!pragma warning disable 8026" "-XSetCompressor /FINAL zlib"
}
make_setup "$older" 0.9.0.0 older-setup.exe

# One whose server loads but cannot be registered.
mkdir "$older/unfit"
cp "$decoy" "$older/unfit/ZRThumbnail.dll"
cp "$output/payload/"{LICENSE.txt,README.txt} "$older/unfit/"
make_setup "$older/unfit" 1.1.0.0 unfit-setup.exe

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_desktop_files.sh BUILD ROOT: installs the programs' package from the build folder BUILD below the folder ROOT and
# makes the database of types there, of the system's definitions and ours. Nothing may complain about ours.
set -euo pipefail
build=$1 root=$2
system=/usr/share/mime/packages/freedesktop.org.xml

rm -rf "$root"
DESTDIR=$root cmake --install "$build" --component zrthumb --prefix /usr >/dev/null
mime=$root/usr/share/mime

# The definitions come with a DTD.
sed -n '/^<!DOCTYPE/,/^\]>/p' "$system" | sed -e 1d -e '/^\]>/d' >"$root/mime.dtd"
xmllint --noout --nonet --dtdvalid "$root/mime.dtd" "$mime/packages/zrthumb.xml"

cp "$system" "$mime/packages/"
complaints=$(PKGSYSTEM_ENABLE_FSYNC=0 XDG_DATA_DIRS=$root/usr/share update-mime-database "$mime" 2>&1)
[ -z "$complaints" ] || { echo "$complaints" >&2; exit 1; }

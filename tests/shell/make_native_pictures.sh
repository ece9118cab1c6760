#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# make_native_pictures.sh BUILD FOLDER: fills FOLDER with the picture NAME.png that the Linux host in the build folder
# BUILD makes of each sample file NAME.
set -euo pipefail
build=$1 folder=$2
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
for program in make-samples zrthumb; do
    [[ -x $build/$program ]] || { echo "$build/$program is missing: build the preset native first" >&2; exit 1; }
done

rm -rf "$folder"
mkdir -p "$folder/samples"
"$build/make-samples" "$folder/samples" >/dev/null
export XDG_DATA_HOME=$folder/data
for sample in "$folder"/samples/*; do
    "$top/tools/with-display" "$build/zrthumb" --quiet -o "$folder/${sample##*/}.png" "$sample"
done

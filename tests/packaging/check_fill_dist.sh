#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_fill_dist.sh: what ./package puts into dist/ takes the place of older packages and of nothing else; wrong arguments
# are told, and nothing is done.
set -uo pipefail
top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
failed=0
complain() { echo "$1" >&2; failed=1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dist=$work/dist
mkdir -p "$work/new" "$dist/zrthumb_of_mine"
new=(zrthumb_2.0_amd64.deb "ZRThumbnail-2.0-setup.exe")
for name in "${new[@]}"; do echo "new $name" >"$work/new/$name"; done
older=(SHA256SUMS zrthumb_1.0_amd64.deb zrthumb-kde_1.0_amd64.deb ZRThumbnail-1.0-{setup.exe,windows.zip,source.tar.gz})
others=(notes.txt zrthumb.deb zrthumbs_1.0_amd64.deb ZRThumbnail.zip "a name.deb" zrthumb_of_mine/zrthumb_1.0_amd64.deb)
for name in "${older[@]}" "${others[@]}"; do echo older >"$dist/$name"; done

"$top/packaging/fill-dist" "$dist" "${new[@]/#/$work/new/}" >/dev/null || complain "failed"
for name in "${older[@]:1}"; do [ ! -e "$dist/$name" ] || complain "$name is left"; done
for name in "${others[@]}"; do [[ $(cat "$dist/$name") == older ]] || complain "$name is changed"; done
for name in "${new[@]}"; do cmp "$work/new/$name" "$dist/$name" || complain "$name is not there"; done
[[ $(sed 's/^[^ ]* *//' "$dist/SHA256SUMS" | sort | xargs) == "${new[1]} ${new[0]}" ]] || complain "other checksums"

for arguments in macos "linux macos" --help; do
    read -ra words <<<"$arguments"
    usage=$("$top/package" "${words[@]}" 2>&1)
    [ $? -eq 2 ] || complain "./package $arguments: not refused"
    [[ $usage == *"linux "*"windows "* ]] || complain "./package $arguments: its usage is not told"
done
exit $failed

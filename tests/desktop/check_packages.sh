#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_packages.sh FOLDER VERSION: what is inside of the Debian packages in FOLDER, which are of VERSION, and what they say of
# themselves:
#   - name, version, maintainer, section and priority; no homepage; zrthumb needs what loads the cache's database, and
#     zrthumb-kde the zrthumb of its version
#   - no scripts of the maintainer's, nothing but the control file and checksums
#   - files and folders of root, below /usr, with usual modes, all of one time
#   - nothing else than what is listed below
#   - programs without symbols, without a path for libraries; no file names a folder that the package was built in
#   - changelog, copyright and manual pages as Debian wants them
set -uo pipefail
folder=$(realpath "$1") version=$2
failed=0
complain() { echo "$1" >&2; failed=1; }

top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
triplet=$(dpkg-architecture -qDEB_HOST_MULTIARCH)

declare -A contents=(
    [zrthumb]="bin/zrthumb
bin/zrthumbnailer
share/bash-completion/completions/zrthumb
share/bash-completion/completions/zrthumbnailer
share/doc/zrthumb/changelog.gz
share/doc/zrthumb/copyright
share/fish/vendor_completions.d/zrthumb.fish
share/fish/vendor_completions.d/zrthumbnailer.fish
share/man/man1/zrthumb.1.gz
share/man/man1/zrthumbnailer.1.gz
share/metainfo/local.zrthumb.zrthumb.metainfo.xml
share/mime/packages/zrthumb.xml
share/thumbnailers/zrthumb.thumbnailer
share/zsh/vendor-completions/_zrthumb
share/zsh/vendor-completions/_zrthumbnailer"
    [zrthumb-kde]="lib/$triplet/qt5/plugins/kf5/thumbcreator/zrthumb_kde.so
share/doc/zrthumb-kde/changelog.gz
share/doc/zrthumb-kde/copyright"
)
declare -A dependencies=([zrthumb]="libqt5sql5-sqlite" [zrthumb-kde]="zrthumb (= $version)")
declare -A sections=([zrthumb]="graphics" [zrthumb-kde]="kde")

check_control() {
    local package=$1 deb=$2
    field() { dpkg-deb --field "$deb" "$1"; }
    expect_field() { [[ $(field "$1") == "$2" ]] || complain "$package: $1 is $(field "$1")"; }
    expect_field Package "$package"
    expect_field Version "$version"
    expect_field Section "${sections[$package]}"
    expect_field Priority optional
    expect_field Homepage ""
    expect_field Maintainer "The ZRThumbnail authors <zrthumb@example.org>"
    [[ ", $(field Depends), " == *", ${dependencies[$package]}, "* ]] || complain "$package: depends on $(field Depends)"
    [[ $(field Depends) == *"libqt5core5a (>= "* ]] || complain "$package: no libraries in $(field Depends)"
    [[ $(dpkg-deb --ctrl-tarfile "$deb" | tar -t | sort | xargs) == "./control ./md5sums" ]] ||
        complain "$package: more than control and md5sums"
}

check_files() {
    local package=$1 deb=$2 mode owner rest
    diff <(echo "${contents[$package]}") <(cd "$tree/usr" && find . ! -type d -printf '%P\n' | LC_ALL=C sort) ||
        complain "$package: other files than expected"
    [[ $(ls "$tree") == usr ]] || complain "$package: files outside of /usr"
    while read -r mode owner rest; do
        [[ $owner == root/root ]] || complain "$package: of $owner: $rest"
        case "$mode $rest" in
        drwxr-xr-x*/ | -rwxr-xr-x*/usr/bin/* | -rw-r--r--*) ;;
        *) complain "$package: $mode $rest" ;;
        esac
    done < <(dpkg-deb -c "$deb")
    [[ $(dpkg-deb -c "$deb" | awk '{ print $4, $5 }' | sort -u | wc -l) == 1 ]] || complain "$package: files of several times"
    (cd "$tree" && dpkg-deb -I "$deb" md5sums | md5sum --check --quiet) || complain "$package: wrong checksums"
}

check_programs() {
    local package=$1 file
    while IFS= read -r file; do
        if readelf -d "$file" | grep -qE 'RUNPATH|RPATH'; then complain "$package: a path for libraries in ${file##*/}"; fi
        if readelf -S "$file" | grep -qE '\.(symtab|debug_info|comment) '; then complain "$package: symbols in ${file##*/}"; fi
    done < <(find "$tree/usr" -path '*/bin/*' -o -name '*.so')
}

# The folder of the sources and of the build, home folders, and this machine's name where it is longer than a word.
check_traces() {
    local package=$1 traces=("$top" "$HOME/" /home/ /tmp/)
    [ "${#HOSTNAME}" -lt 8 ] || traces+=("$HOSTNAME")
    find "$tree" -name '*.gz' -exec gunzip {} +
    grep -rlF "${traces[@]/#/-e}" "$tree" && complain "$package: these tell where they were built"
}

check_papers() {
    local package=$1 paper
    for paper in "$tree"/usr/share/{doc/*/*,man/man1/*}; do
        case $paper in
        */copyright | *'*'*) ;;
        *.gz) file "$paper" | grep -q 'max compression' || complain "$package: ${paper##*/} could be smaller" ;;
        *) complain "$package: ${paper##*/} is not compressed" ;;
        esac
    done
    zcat "$tree/usr/share/doc/$package/changelog.gz" | dpkg-parsechangelog -l - -S Version 2>&1 | diff - <(echo "$version") ||
        complain "$package: its changelog"
    grep -qxF "Copyright: 2026 The ZRThumbnail authors" "$tree/usr/share/doc/$package/copyright" ||
        complain "$package: its copyright"
}

packages=0
for package in zrthumb zrthumb-kde; do
    for deb in "$folder/${package}_${version}_"*.deb; do
        [ -f "$deb" ] || continue
        packages=$((packages + 1))
        rm -rf "${tree:?}"/*
        dpkg-deb -x "$deb" "$tree"
        check_control "$package" "$deb"
        check_files "$package" "$deb"
        check_programs "$package"
        check_papers "$package"
        check_traces "$package"
    done
done
[ -f "$folder/zrthumb_${version}_$(dpkg --print-architecture).deb" ] || complain "no package of zrthumb"
[ "$(find "$folder" -name '*.deb' | wc -l)" = $packages ] || complain "other packages than expected"
(cd "$folder" && sha256sum --quiet --check SHA256SUMS) || complain "wrong SHA256SUMS"
exit $failed

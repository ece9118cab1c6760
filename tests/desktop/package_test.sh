#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# package_test.sh BUILD PACKAGES CHECK: one check of both Debian packages in the folder PACKAGES, made of the build folder BUILD,
# which are those that take too long for every run of the tests. CHECK is one of these:
#   contents      what check_packages.sh lists, for both packages
#   lintian       finds neither errors nor warnings
#   reproducible  a build from a copy of the sources in another folder gives the very same packages
#   satisfiable   this system's packages have all that they depend on
#   installed     dpkg installs them in an empty root, and again over themselves; every file is there once; the programs make
#                 a picture of each sample file there, with nothing else of the build; dpkg removes them again, and no file
#                 and no folder is left
set -uo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
top=$(realpath "$here/../..")
build=$(realpath "$1") packages=$(realpath "$2") check=$3
cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
version=$(cached CMAKE_PROJECT_VERSION)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
root=$work/root

check_contents() { "$here/check_packages.sh" "$packages" "$version" && [ "$(find "$packages" -name '*.deb' | wc -l)" = 2 ]; }

check_lintian() {
    local findings
    findings=$(lintian --allow-root --fail-on none "$packages"/*.deb 2>&1)
    [ -z "$findings" ] || { echo "$findings" >&2; return 1; }
}

check_reproducible() {
    local copy=$work/again/a/copy/elsewhere
    mkdir -p "$copy"
    "$top/tools/list-sources" | tar -c -C "$top" --no-recursion --null --files-from=- | tar -x -C "$copy"
    # The compiler cache would give the first build's results.
    export CCACHE_DISABLE=1
    {
        cmake -S "$copy" -B "$work/again/build" -G Ninja -DCMAKE_BUILD_TYPE="$(cached CMAKE_BUILD_TYPE)" \
            -DZRTHUMB_TESTS=OFF -DZRTHUMB_KDE=ON &&
            cmake --build "$work/again/build" --target zrthumb zrthumbnailer zrthumb_kde
    } >"$work/log" 2>&1 || { tail -n 30 "$work/log" >&2; return 1; }
    # The copy is no clone and has no commit; its packages bear the time of the first ones.
    SOURCE_DATE_EPOCH=$("$top/tools/source-date") "$copy/packaging/linux/make-packages" "$work/again/build" "$work/again/packages" &&
        diff "$packages/SHA256SUMS" "$work/again/packages/SHA256SUMS"
}

check_satisfiable() { apt-get install --simulate "$packages"/*.deb >"$work/log" 2>&1 || { cat "$work/log" >&2; return 1; }; }

run_dpkg() {
    dpkg --root="$root" --log=/dev/null --force-not-root --force-depends --force-bad-path "$@" >"$work/log" 2>&1 ||
        { cat "$work/log" >&2; return 1; }
}

# Without the folders of dpkg's own.
list_root() { (cd "$root" && find . -mindepth 1 -path ./var -prune -o -print | sort); }

check_installed() { install_twice && make_pictures && remove_all; }

install_twice() {
    mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers}
    touch "$root"/var/lib/dpkg/{status,available}
    run_dpkg --install "$packages"/*.deb || return 1
    list_root >"$work/first"
    run_dpkg --install "$packages"/*.deb || return 1
    list_root | diff "$work/first" - &&
        diff <(for deb in "$packages"/*.deb; do dpkg-deb --fsys-tarfile "$deb" | tar -t; done |
            sed -e 's|/$||' -e '/^\.$/d' | sort -u) "$work/first"
}

make_pictures() {
    local sample outputs=0 samples=0
    mkdir "$work/samples" "$work/home"
    "$build/make-samples" "$work/samples" >/dev/null || return 1
    for sample in "$work/samples"/*; do
        samples=$((samples + 1))
        env -i PATH="$root/usr/bin:/usr/bin:/bin" HOME="$work/home" \
            zrthumbnailer -s 128 "$sample" "$work/picture.png" && [ -s "$work/picture.png" ] && outputs=$((outputs + 1))
        rm -f "$work/picture.png"
    done
    [ "$samples" -gt 10 ] && [ "$outputs" -eq "$samples" ] &&
        [[ $(env -i HOME="$work/home" "$root/usr/bin/zrthumb" --version) == "zrthumb $version" ]]
}

remove_all() {
    run_dpkg --remove zrthumb-kde zrthumb || return 1
    [ -z "$(list_root)" ] || { list_root >&2; return 1; }
}

"check_$check"

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# container_test.sh BUILD PACKAGES: packaging/container/Containerfile makes an image of the package in the folder PACKAGES, and
# what it starts makes the pictures that zrthumb of the folder BUILD makes, as an ordinary user. The image it stands on is made
# of Debian's packages and kept in BUILD, so nothing but Debian's archive is asked. buildah needs root for that; all that it
# keeps is in memory.
set -euo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
build=$(realpath "$1") packages=$(realpath "$2")
if [ "$(id -u)" -ne 0 ]; then
    sudo -n true 2>/dev/null || { echo "This needs root, or sudo without a password, to make an image" >&2; exit 1; }
    exec sudo -n "$0" "$@"
fi
# What is mounted goes with the namespace.
[ "${ZRTHUMB_NAMESPACE:-}" ] || ZRTHUMB_NAMESPACE=1 exec unshare --mount "$0" "$@"

work=/mnt
# The layers are whole copies, which a disk takes minutes for.
mount -t tmpfs -o mode=755 tmpfs "$work"
mkdir -p "$work"/{home,context/dist,models,pictures,expected}
export HOME=$work/home LC_ALL=C.UTF-8
in_log() { "$@" >"$work/log" 2>&1 || { tail -n 30 "$work/log" >&2; return 1; }; }
run_buildah() { buildah --storage-driver vfs --root "$work/storage" --runroot "$work/state" "$@"; }

make_base() {
    [ -s "$build/container-base.tar" ] && return
    in_log mmdebstrap --variant=minbase bookworm "$work/base.tar" &&
        cp "$work/base.tar" "$build/container-base.tar.new" &&
        mv "$build/container-base.tar.new" "$build/container-base.tar"
}

make_image() {
    local container image
    image=$(sed -n 's/^FROM //p' "$here/../../packaging/container/Containerfile")
    container=$(run_buildah from scratch) &&
        in_log run_buildah add "$container" "$build/container-base.tar" / &&
        in_log run_buildah commit --rm "$container" "$image" || return
    cp "$packages"/*.deb "$work/context/dist/"
    in_log run_buildah bud --isolation chroot --pull-never --file "$here/../../packaging/container/Containerfile" \
        --tag zrthumb "$work/context"
}

# The image's user writes to a folder of its own.
run_image() {
    local container entry user
    user=$(run_buildah inspect --type image --format '{{.OCIv1.Config.User}}' zrthumb)
    [ "$user" = zrthumb ] || { echo "it runs as $user" >&2; return 1; }
    entry=$(run_buildah inspect --type image --format '{{index .OCIv1.Config.Entrypoint 0}}' zrthumb)
    container=$(run_buildah from --pull-never zrthumb) || return
    chmod 1777 "$work/pictures"
    in_log run_buildah run --isolation chroot --volume "$work/models:/models:ro" --volume "$work/pictures:/pictures" \
        "$container" -- "$entry" "$@"
}

"$build/make-samples" "$work/models" >"$work/log"
cp "$work/models/gear.stl" "$work/models/Zahnräder.stl"
options=(-r -j 2 -s 256 --json --no-cache --renderer software)
"$build/zrthumb" "${options[@]}" --output-dir "$work/expected" "$work/models" >"$work/log"
make_base
make_image
run_image "${options[@]}" --output-dir /pictures /models
diff -r "$work/expected" "$work/pictures"
[ "$(find "$work/pictures" -type f ! -user 0 | wc -l)" -eq "$(find "$work/models" -type f | wc -l)" ]
# With the cache, which is in its home.
run_image -q /models/gear.stl

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# clients_test.sh BUILD PACKAGES CLIENT: a client of Debian's desktops, as an ordinary user, has the pictures of
# make_client_cases.py, with the packages in the folder PACKAGES, made of the folder BUILD. CLIENT is one of these:
#   gnome  GNOME's library, which runs the program in its sandbox
#   xfce   tumblerd, the service of Thunar
#   kde    KIO's job for previews, with the installed plug-in
#   check  zrthumb --check, which finds nothing to mend
# Afterwards the files are as they were, no process is left, and no file but in the desktop's own caches.
# The packages are unpacked over /usr in namespaces of this test's own, so the system stays as it is; that needs root.
set -euo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
build=$(realpath "$1") packages=$(realpath "$2") client=$3

if [ "$(id -u)" -ne 0 ]; then
    sudo -n true 2>/dev/null || { echo "This needs root, or sudo without a password, to make namespaces" >&2; exit 1; }
    exec sudo -n "$0" "$@"
fi
# What is mounted and what still runs goes with the namespaces.
[ "${ZRTHUMB_NAMESPACE:-}" ] || ZRTHUMB_NAMESPACE=1 exec unshare --mount --pid --fork --kill-child --mount-proc "$0" "$@"

# Layers may not lie on layers, which the root of a container is.
work=/mnt
user=nobody group=nogroup
mount -t tmpfs -o mode=755 tmpfs "$work"
mkdir "$work"/{upper,scratch,samples}
"$build/make-samples" "$work/samples" >/dev/null
# The build may be out of an ordinary user's reach.
cp "$here"/*.py "$build/tests/desktop/kde_previews_test" "$work/"
mount -t overlay -o "lowerdir=/usr,upperdir=$work/upper,workdir=$work/scratch" overlay /usr
for package in "$packages"/*.deb; do dpkg-deb -x "$package" /; done
PKGSYSTEM_ENABLE_FSYNC=0 update-mime-database /usr/share/mime
/usr/bin/python3 "$work/make_client_cases.py" "$work/samples" "$work/cases"
chown -R "$user:$group" "$work/cases"
install -d -m 700 -o "$user" -g "$group" "$work/home" "$work/runtime"
install -d -m 1777 "$work/tmp"
mount --bind "$work/tmp" /tmp

# as_user COMMAND...: with a home folder and a session bus of its own, as a session of the desktop has them. The bus takes only
# users that the system knows.
as_user() {
    env -i PATH=/usr/bin:/bin HOME="$work/home" LC_ALL=C.UTF-8 XDG_RUNTIME_DIR="$work/runtime" QT_QPA_PLATFORM=offscreen \
        PYTHONDONTWRITEBYTECODE=1 ZRTHUMB_CLIENT_CASES="$work/cases" \
        setpriv --reuid "$user" --regid "$group" --clear-groups dbus-run-session -- "$@"
}

# There are a registration, one line for each suffix and the plug-in, and nothing is noted about them.
check_registration() {
    as_user env -u QT_QPA_PLATFORM /usr/bin/zrthumb --check | tee "$work/lines" &&
        grep -qx 'ok   thumbnailer: /usr/share/thumbnailers/zrthumb.thumbnailer runs /usr/bin/zrthumbnailer' "$work/lines" &&
        ! grep -E '^(note|FAIL) (\.[a-z]+|KDE): ' "$work/lines"
}

failed=0
complain() { echo "$1" >&2; failed=1; }

list_cases() { find "$work/cases" -printf '%P %y %s %m %i %T@ %C@\n' | sort; }
list_cases >"$work/before"
case $client in
gnome) as_user /usr/bin/python3 "$work/gnome_client.py" "$work/cases" || failed=1 ;;
xfce) as_user /usr/bin/python3 "$work/tumbler_client.py" "$work/cases" || failed=1 ;;
kde) as_user "$work/kde_previews_test" || failed=1 ;;
check) check_registration || failed=1 ;;
esac

# The session's services end when they see that the bus has.
for _ in {1..50}; do
    left=$(ps -u "$user" -o args=) || break
    sleep 0.1
done
[ -z "$left" ] || complain "still running: $left"
diff <(list_cases) "$work/before" || complain "the files have changed"
# expect_only FOLDER PATTERN...: FOLDER has no other entries than those of these names, which are the desktop's own.
expect_only() {
    local folder=$1 left
    shift
    left=$(find "$folder" -mindepth 1 -maxdepth 1 -printf '%P\n' | grep -vxE -- "$(printf '%s\n' "$@")") || true
    [ -z "$left" ] || complain "left in $folder: $left"
}
expect_only /tmp ''
expect_only "$work/runtime" dbus-1 dconf
if [ "$client" = check ]; then
    expect_only "$work/home" .local
    exit $failed
fi
expect_only "$work/home" .cache
expect_only "$work/home/.cache" thumbnails gnome-desktop-thumbnailer gstreamer-1.0 'ksycoca5_.*'
exit $failed

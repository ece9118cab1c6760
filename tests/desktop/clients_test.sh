#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# clients_test.sh [BUILD]: the clients of Debian's desktops make a picture of each sample file, with the packages of BUILD,
# which is build/native without it, configured with -DZRTHUMB_KDE=ON and built. The packages are unpacked over /usr in a mount
# namespace of this test's own, so the system stays as it is; that needs root. The clients run as an ordinary user.
#   gnome  GNOME's library, which runs the program in its sandbox
#   xfce   tumblerd, the service of Thunar
#   kde    KIO's job for previews, with the installed plug-in (kde_previews_test)
# And zrthumb finds out what they are told:
#   check  zrthumb --check finds nothing to mend
set -uo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
top=$(realpath "$here/../..")
build=$(realpath "${1:-$top/build/native}")

[ "${ZRTHUMB_NAMESPACE:-}" ] || ZRTHUMB_NAMESPACE=1 exec unshare --mount "$0" "$build"

# Layers may not lie on layers, which the root of a container is.
work=$(mktemp -d)
mount -t tmpfs -o mode=755 tmpfs "$work" || exit 1
trap 'umount -l "$work" && rmdir "$work"' EXIT
mkdir "$work"/{upper,scratch,packages,samples}
"$top/packaging/linux/make-packages" "$build" "$work/packages" || exit 1
"$build/make-samples" "$work/samples" >/dev/null || exit 1
# The build may be out of an ordinary user's reach.
cp "$here"/*.py "$build/tests/desktop/kde_previews_test" "$work/" || exit 1
mount -t overlay -o "lowerdir=/usr,upperdir=$work/upper,workdir=$work/scratch" overlay /usr || exit 1
for package in "$work/packages"/*.deb; do dpkg-deb -x "$package" / || exit 1; done
update-mime-database /usr/share/mime || exit 1

# as_user COMMAND...: with a home folder and a session bus of its own, as a session of the desktop has them. The bus takes only
# users that the system knows.
user=nobody
as_user() {
    rm -rf "${work:?}/home"
    install -d -m 700 -o "$user" -g nogroup "$work/home"
    env -i PATH=/usr/bin:/bin HOME="$work/home" LC_ALL=C.UTF-8 XDG_RUNTIME_DIR="$work/home" QT_QPA_PLATFORM=offscreen \
        setpriv --reuid "$user" --regid nogroup --clear-groups dbus-run-session -- "$@"
}

check_gnome() { as_user /usr/bin/python3 "$work/gnome_thumbnails.py" "$work/samples"/*; }

check_xfce() { as_user /usr/bin/python3 "$work/tumbler_thumbnails.py" "$work/samples"/*; }

check_kde() { as_user "$work/kde_previews_test"; }

check_check() {
    as_user env -u QT_QPA_PLATFORM /usr/bin/zrthumb --check >"$work/lines" || { cat "$work/lines"; return 1; }
    cat "$work/lines"
    grep -qx 'ok   thumbnailer: /usr/share/thumbnailers/zrthumb.thumbnailer runs /usr/bin/zrthumbnailer' "$work/lines" &&
        ! grep -qE '^(note|FAIL) (\.[a-z]+|KDE): ' "$work/lines"
}

failed=0
for check in gnome xfce kde check; do
    if "check_$check" >"$work/log" 2>&1; then echo "ok    $check"; else cat "$work/log"; echo "FAIL  $check"; failed=1; fi
done
exit $failed

#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""gnome_thumbnails.py FILE...: makes a thumbnail of each FILE as GNOME Files does, and fails when one has none."""

import sys

import gi

gi.require_version("GnomeDesktop", "4.0")
from gi.repository import Gio, GnomeDesktop  # noqa: E402 (the version comes first)

SIZE = 256

factory = GnomeDesktop.DesktopThumbnailFactory.new(GnomeDesktop.DesktopThumbnailSize.LARGE)
failed = 0
for name in sys.argv[1:]:
    file = Gio.File.new_for_path(name)
    information = file.query_info("standard::content-type,time::modified", Gio.FileQueryInfoFlags.NONE, None)
    content_type = information.get_content_type()
    time = information.get_attribute_uint64("time::modified")
    try:
        if not factory.can_thumbnail(file.get_uri(), content_type, time):
            raise ValueError("no program makes thumbnails of " + content_type)
        picture = factory.generate_thumbnail(file.get_uri(), content_type, None)
        size = max(picture.get_width(), picture.get_height())
        if size != SIZE:
            raise ValueError(f"a picture of {size} pixels")
    except Exception as error:
        print(f"{name}: {error}")
        failed = 1
sys.exit(failed)

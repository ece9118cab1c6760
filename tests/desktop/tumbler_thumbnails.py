#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tumbler_thumbnails.py FILE...: makes a thumbnail of each FILE as Thunar does, and fails when one has none."""

import hashlib
import os
import sys

from gi.repository import Gio, GLib

TIMEOUT_S = 120
SERVICE = ("org.freedesktop.thumbnails.Thumbnailer1", "/org/freedesktop/thumbnails/Thumbnailer1")

files = [Gio.File.new_for_path(name) for name in sys.argv[1:]]
types = [file.query_info("standard::content-type", 0, None).get_content_type() for file in files]

loop = GLib.MainLoop()
service = Gio.DBusProxy.new_for_bus_sync(Gio.BusType.SESSION, 0, None, *SERVICE, SERVICE[0], None)
service.connect("g-signal", lambda _proxy, _sender, signal, _values: signal == "Finished" and loop.quit())
service.call_sync("Queue", GLib.Variant("(asasssu)", ([file.get_uri() for file in files], types, "large", "default", 0)),
                  0, -1, None)
GLib.timeout_add_seconds(TIMEOUT_S, loop.quit)
loop.run()

failed = 0
for file, content_type in zip(files, types):
    name = hashlib.md5(file.get_uri().encode()).hexdigest() + ".png"
    path = os.path.join(GLib.get_user_cache_dir(), "thumbnails", "large", name)
    if not os.path.exists(path):
        print(f"{file.get_path()}: no picture, as {content_type}")
        failed = 1
sys.exit(failed)

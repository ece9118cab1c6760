#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tumbler_client.py FOLDER: asks for the pictures of make_client_cases.py as Thunar does, by the session's bus."""

import hashlib
import os
import sys

from gi.repository import Gio, GLib

from client_cases import Findings, pixels, read_cases

SERVICE = ("org.freedesktop.thumbnails.Thumbnailer1", "/org/freedesktop/thumbnails/Thumbnailer1")
# The service works while nobody else does, so a busy machine takes long. A program that hangs takes for ever.
TIME_LIMIT_S = 240
SIZES = {"normal": 128, "large": 256, "x-large": 512, "xx-large": 1024}

service = Gio.DBusProxy.new_for_bus_sync(Gio.BusType.SESSION, 0, None, *SERVICE, SERVICE[0], None)
loop = GLib.MainLoop()
ready, failed, finished = set(), {}, []


def on_signal(_service, _sender, signal, values):
    if signal == "Ready":
        ready.update(values[1])
    elif signal == "Error":
        failed.update((uri, values[3]) for uri in values[1])
    elif signal == "Finished":
        finished.append(values[0])
        loop.quit()


def on_timeout():
    loop.quit()
    return GLib.SOURCE_REMOVE


def ask(cases, flavor):
    """Whether an answer comes. The service makes one picture after another."""
    for answers in (ready, failed, finished):
        answers.clear()
    request = GLib.Variant("(asasssu)", ([case.uri for case in cases], [case.type for case in cases], flavor, "default", 0))
    service.call_sync("Queue", request, 0, -1, None)
    timer = GLib.timeout_add_seconds(TIME_LIMIT_S, on_timeout)
    loop.run()
    if finished:
        GLib.source_remove(timer)
    return bool(finished)


def thumbnail(case, flavor):
    name = hashlib.md5(case.uri.encode()).hexdigest() + ".png"
    return os.path.join(GLib.get_user_cache_dir(), "thumbnails", flavor, name)


findings = Findings()
all_cases = read_cases(sys.argv[1])
flavors = service.call_sync("GetFlavors", None, 0, -1, None)[0]
print("flavors:", *flavors)
if not {"normal", "large"} <= set(flavors):
    sys.exit("flavors are missing")
owner = service.get_name_owner()
service.connect("g-signal", on_signal)
for flavor in flavors:
    size = SIZES[flavor]
    cases = [case for case in all_cases if case.is_asked_at(size)]
    if not ask(cases, flavor):
        sys.exit(f"{flavor}: no answer in time; {len(ready)} pictures, {len(failed)} failures")
    for case in cases:
        path = thumbnail(case, flavor)
        if case.pictures:
            findings.expect(case.uri in ready, case, size, "no picture: " + failed.get(case.uri, "and no failure"))
            if os.path.exists(path):
                findings.expect(pixels(path) == pixels(case.pictures[size]), case, size, "another picture")
        else:
            findings.expect(case.uri in failed and case.uri not in ready, case, size, "no failure")
            findings.expect(not os.path.exists(path), case, size, "a picture")
findings.expect(service.get_name_owner() == owner, all_cases[-1], 0, "the service has ended on the way")
sys.exit(findings.exit_status())

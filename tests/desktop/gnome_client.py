#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""gnome_client.py FOLDER: asks for the pictures of make_client_cases.py as GNOME Files does, with GNOME's library, which runs
the program in its sandbox. Prints how long that takes, beside the sandbox alone."""

import statistics
import subprocess
import sys
import time

import gi

gi.require_version("GnomeDesktop", "4.0")
from gi.repository import GLib, GnomeDesktop  # noqa: E402 (the version comes first)

from client_cases import Findings, pixels, read_cases  # noqa: E402

# For one file: more than the program may take.
TIME_LIMIT_S = 30
SIZES = GnomeDesktop.DesktopThumbnailSize
FACTORIES = {size: GnomeDesktop.DesktopThumbnailFactory.new(name) for size, name in
             ((128, SIZES.NORMAL), (256, SIZES.LARGE), (512, SIZES.XLARGE), (1024, SIZES.XXLARGE))}
SANDBOX = ("bwrap --ro-bind /usr /usr --symlink /usr/bin /bin --symlink /usr/lib /lib --symlink /usr/lib64 /lib64 "
           "--proc /proc --dev /dev --unshare-all --die-with-parent").split()

findings = Findings()


def milliseconds(function):
    start = time.monotonic()
    result = function()
    return 1000 * (time.monotonic() - start), result


def generated(factory, case):
    try:
        return factory.generate_thumbnail(case.uri, case.type, None)
    except GLib.Error as error:
        print(f"{case.name!r}: {error.message}")
        return None


def check_picture(factory, case, size):
    findings.expect(factory.can_thumbnail(case.uri, case.type, case.time), case, size, "no program makes pictures of it")
    taken, picture = milliseconds(lambda: generated(factory, case))
    if picture is None:
        findings.expect(False, case, size, "no picture")
        return taken
    factory.save_thumbnail(picture, case.uri, case.time, None)
    path = factory.lookup(case.uri, case.time)
    findings.expect(path is not None and pixels(path) == pixels(case.pictures[size]), case, size, "another picture")
    return taken


def check_failure(factory, case, size):
    # Nobody is asked for an empty file, which has no type.
    if factory.can_thumbnail(case.uri, case.type, case.time):
        taken, picture = milliseconds(lambda: generated(factory, case))
        findings.expect(picture is None, case, size, "a picture")
        findings.expect(taken < 1000 * TIME_LIMIT_S, case, size, f"{taken:.0f} ms")
        factory.create_failed_thumbnail(case.uri, case.time, None)
        findings.expect(factory.has_valid_failed_thumbnail(case.uri, case.time), case, size, "its failure is not kept")
    else:
        findings.expect("empty" in case.name, case, size, "no program makes pictures of it")
    findings.expect(not factory.can_thumbnail(case.uri, case.type, case.time), case, size, "it would be tried again")
    findings.expect(factory.lookup(case.uri, case.time) is None, case, size, "there is a picture")


alone = [milliseconds(lambda: subprocess.run([*SANDBOX, "/bin/true"], check=True))[0] for _ in range(10)]
print(f"the sandbox alone: {statistics.median(alone):.0f} ms")
for case in read_cases(sys.argv[1]):
    times = []
    for size, factory in FACTORIES.items():
        if not case.is_asked_at(size):
            continue
        if case.pictures:
            times.append(f"{check_picture(factory, case, size):.0f} ms at {size}")
        else:
            check_failure(factory, case, size)
    if times:
        print(f"{case.name!r}:", ", ".join(times))
sys.exit(findings.exit_status())

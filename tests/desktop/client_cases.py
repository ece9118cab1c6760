# SPDX-License-Identifier: MIT
"""What the tests of the desktops' clients have in common: the cases of make_client_cases.py and what is said of them."""

import json
import pathlib

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf, Gio  # noqa: E402 (the version comes first)

# For what has no picture.
USUAL_SIZE = 256


class Case:
    def __init__(self, folder, row):
        self.name = row["file"]
        self.pictures = {int(size): str(folder / picture) for size, picture in row["pictures"].items()}
        file = Gio.File.new_for_path(str(folder / row["file"]))
        self.uri = file.get_uri()
        information = file.query_info("standard::content-type,time::modified", Gio.FileQueryInfoFlags.NONE, None)
        self.type = information.get_content_type()
        self.time = information.get_attribute_uint64("time::modified")

    def is_asked_at(self, size):
        return size in (self.pictures or (USUAL_SIZE,))


def read_cases(folder):
    folder = pathlib.Path(folder)
    return [Case(folder, row) for row in json.loads((folder / "cases.json").read_text())]


def pixels(path):
    """Size and colours of a picture, which is compared with others."""
    picture = GdkPixbuf.Pixbuf.new_from_file(path).add_alpha(False, 0, 0, 0)
    return picture.get_width(), picture.get_height(), picture.get_pixels()


class Findings:
    def __init__(self):
        self.checked = 0
        self.faults = 0

    def expect(self, is_right, case, size, what):
        self.checked += 1
        if not is_right:
            self.faults += 1
            print(f"{case.name!r} at {size}, {case.type}: {what}")

    def exit_status(self):
        print(f"{self.checked} checked, {self.faults} wrong")
        return 1 if self.faults or not self.checked else 0

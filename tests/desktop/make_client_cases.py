#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""make_client_cases.py SAMPLES FOLDER: puts the files that clients are asked for into FOLDER/files, and what they have to
show into FOLDER/cases.json. From the folder SAMPLES it takes what make-samples makes; the pictures are those of
zrthumbnailer itself. Each row of cases.json has

  file      below FOLDER
  pictures  the PNG below FOLDER for each size to ask for; none when the file has no picture
"""

import json
import pathlib
import random
import struct
import subprocess
import sys

SIZES = (128, 256, 512, 1024)
USUAL_SIZE = 256
MODELS = (".stl", ".slc", ".obj")

# Each is followed by the name of a sample, whose contents it gets.
NAMES = (
    ("two  blanks .stl", "gear.stl"),
    ("#1 part.obj", "duck.obj"),
    ("100%.vrx", "rook.vrx"),
    ("a%20b.vrx", "rook.vrx"),
    ("a b.vrx", "rook-wide.vrx"),
    ("Möbelstück-模型.gf", "goblet.gf"),
    ("'single'.photons", "bottle.photons"),
    ('"double" $HOME `id`.svgx', "spinning-top.svgx"),
    ("-s.stl", "gear.stl"),
    ("--help.slc", "tower.slc"),
    ("two\nlines.stl", "vase-ascii.stl"),
    ("back\\slash.kestravo", "vase.kestravo"),
    ("UPPER.STL", "gear.stl"),
    ("one/part.stl", "gear.stl"),
    ("two/part.stl", "vase-ascii.stl"),
)
# The first half of these is a smaller model, or has the whole preview.
USABLE_HALVES = ("vase-ascii.stl", "tower.slc", "duck.obj")


# More triangles than the program may have memory for.
HUGE_COUNT = 64_000_000
HUGE_STL = bytes(80) + struct.pack("<I", HUGE_COUNT)


def longest_side(png):
    return max(struct.unpack(">II", png.read_bytes()[16:24]))


class Cases:
    def __init__(self, folder):
        self.folder = folder
        self.rows = []
        (folder / "pictures").mkdir(parents=True)

    def add(self, name, contents, sizes=(), whole_size=None):
        path = self.folder / "files" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "xb") as file:
            file.write(contents)
            file.truncate(whole_size or len(contents))
        pictures = {size: f"pictures/{len(self.rows)}-{size}.png" for size in sizes}
        for size, picture in pictures.items():
            subprocess.run(["zrthumbnailer", "-s", str(size), path, self.folder / picture], check=True)
            side = longest_side(self.folder / picture)
            if side > size or (side < size and path.suffix.lower() in MODELS):
                sys.exit(f"zrthumbnailer makes {side} pixels of {name}, not {size}")
        self.rows.append({"file": f"files/{name}", "pictures": pictures})

    def write(self):
        (self.folder / "cases.json").write_text(json.dumps(self.rows, indent=1))


def main(samples, folder):
    cases = Cases(folder)
    contents = {sample.name: sample.read_bytes() for sample in sorted(samples.iterdir())}
    noise = random.Random(2).randbytes(20_000)

    # The damaged ones first: those that follow show that the client has survived them.
    for suffix in sorted({pathlib.Path(name).suffix for name in contents}):
        cases.add("damaged/random" + suffix, noise)
        cases.add("damaged/empty" + suffix, b"")
    for name, whole in contents.items():
        if name not in USABLE_HALVES:
            cases.add("damaged/half-" + name, whole[:len(whole) // 2])
    cases.add("damaged/nothing.stl", b"solid nothing\nendsolid nothing\n")
    cases.add("damaged/nothing.obj", b"# nothing\nv 0 0 0\nv 1 0 0\nv 0 1 0\n")
    cases.add("damaged/huge.stl", HUGE_STL, whole_size=84 + 50 * HUGE_COUNT)

    for name, whole in contents.items():
        cases.add(name, whole, SIZES)
    for name, sample in NAMES:
        cases.add("names/" + name, contents[sample], (USUAL_SIZE,))
    cases.write()


main(*map(pathlib.Path, sys.argv[1:]))

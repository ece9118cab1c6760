# SPDX-License-Identifier: MIT
"""check_run.py MODELS REFERENCES PICTURES RESULTS NAMES: what a run of the recipe has made. Each name of the list NAMES has
exactly one line of JSON in the folder RESULTS; it tells of a picture if there is one in REFERENCES for the same bytes, which
it then equals to the byte, and of a failure if not. PICTURES has no other files."""

import base64
import hashlib
import json
import os
import sys


def name_in(line, key):
    return base64.b64decode(line[key + "Bytes"]) if key + "Bytes" in line else os.fsencode(line[key])


def read_lines(results):
    lines = {}
    for entry in sorted(os.listdir(results)):
        if not entry.endswith(b".jsonl"):
            continue
        with open(os.path.join(results, entry), "rb") as file:
            for text in file:
                line = json.loads(text)
                name = name_in(line, "file")
                assert name not in lines, f"{name} has two lines"
                lines[name] = line
    return lines


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def check_file(name, line, models, references, pictures):
    source = os.path.join(models, name)
    # Of a file that is away.
    content = bytes_of(source) if os.path.exists(source) else b""
    reference = os.path.join(references, os.fsencode(hashlib.sha256(content).hexdigest() + ".png"))
    picture = os.path.normpath(os.path.join(pictures, name + b".png"))
    if not os.path.exists(reference):
        assert "error" in line and not os.path.exists(picture), f"{name} should have failed: {line}"
        return None
    assert "error" not in line, line
    assert bytes_of(picture) == bytes_of(reference), f"{picture} is not the picture of {name}"
    return picture


def main():
    models, references, pictures, results, names_file = map(os.fsencode, sys.argv[1:])
    names = bytes_of(names_file).split(b"\0")[:-1]
    lines = read_lines(results)
    assert len(names) == len(set(names)) > 0, "the list has names twice or none"
    assert set(lines) == set(names), f"without a line or not listed: {set(lines) ^ set(names)}"
    expected = {check_file(name, lines[name], models, references, pictures) for name in names} - {None}
    found = {os.path.join(folder, name) for folder, _, files in os.walk(pictures) for name in files}
    found = {path for path in found if not os.path.basename(path).startswith(b".")}
    assert found == expected, f"missing or too many: {found ^ expected}"


main()

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A second reader of what the programs keep, written after docs/file-formats.md and not after their code.

    read_application_folder.py FOLDER [PICTURE...]

Prints all that it finds as JSON. Ends with status 1 and a line at the first thing that is not as the document says.
"""

import json
import pathlib
import plistlib
import re
import sqlite3
import sys
from itertools import product

TABLES = {
    "Data0.data": ("Windows", "CREATE TABLE Windows (ID INTEGER PRIMARY KEY AUTOINCREMENT, field text, value text)",
                   [(f"{side}{frame}", "0") for frame, side in product(range(5), ("Width", "Height", "Left", "Top"))]),
    "Data1.data": ("Preferences", "CREATE TABLE Preferences (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)",
                   [(f"Value{number:02}", "0") for number in range(99)]),
    "Data2.data": ("General", "CREATE TABLE General (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)",
                   [(f"Value{number:02}", "0") for number in range(1, 25)]),
}
PREFERENCES = dict(zip((f"Value{number:02}" for number in (4, 5, 6, 7, *range(10, 24))),
                       "0 14 0 2 5 5 1 400 100 250 20 130 0 80 10 18 6 100".split()))
SLIDERS = [name + "Slider" for name in (
    "rocketHeight rocketBirth rocketAngle rocketVelocity rocketRange rocketGravity explodeLife explodeVelocity explodeRange "
    "explodeGravity sparkleBirth sparkleLife sparkleSize animateSpeed").split()]
NOTE = ["starbloom-show", "program", "version", "seed", "moment", "steady", "stage", "scale", "launch", "background", *SLIDERS]
FORMATS = ["BMP", "GIF", "JPEG", "JPEG 2000", "PNG", "TIFF"]
NUMBER = re.compile(r"-?\d+(\.\d+)?(e[+-]\d+)?")


def expect(condition, what):
    if not condition:
        raise ValueError(what)


def store(path):
    """The values that are not as at first."""
    table, statement, rows = TABLES[path.name]
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    made = database.execute("SELECT name, sql FROM sqlite_master WHERE name NOT LIKE 'sqlite%'").fetchall()
    expect(made == [(table, statement)], f"{path.name}: {made}")
    found = database.execute(f"SELECT * FROM {table}").fetchall()
    database.close()
    expect([(number, field) for number, field, _ in found] == [(i, field) for i, (field, _) in enumerate(rows, 1)],
           f"{path.name}: other rows, or another order")
    expect(all(isinstance(value, str) for _, _, value in found), f"{path.name}: a value is no text")
    folders = ("Value00", "Value01") if table == "Preferences" else ()
    for _, field, value in found:
        expect(NUMBER.fullmatch(value) or field in folders and value.startswith("/"), f"{path.name}: {field} is {value}")
    at_first = dict(rows) | (PREFERENCES if table == "Preferences" else {})
    return {field: value for _, field, value in found if value != at_first[field]}


def shared_folder(path):
    [record] = plistlib.loads(path.read_bytes(), fmt=plistlib.FMT_XML)
    expect(set(record) == {"path", "bookmark"}, f"{path.name}: {sorted(record)}")
    expect(record["bookmark"].decode(errors="replace") == record["path"], f"{path.name}: two folders")
    return record["path"]


def export_settings(path):
    texts = plistlib.loads(path.read_bytes(), fmt=plistlib.FMT_XML)
    expect(len(texts) == 6 and len(set(texts[2:])) == 1, f"{path.name}: {texts}")
    return {"format": FORMATS[int(texts[0])], "quality": 100 - 5 * int(texts[1]), "name": texts[2]}


def background(path):
    archive = plistlib.loads(path.read_bytes(), fmt=plistlib.FMT_BINARY)
    expect((archive["$version"], archive["$archiver"]) == (100000, "NSKeyedArchiver"), f"{path.name}: no keyed archive")

    def resolved(reference):
        return archive["$objects"][reference.data]

    colors = resolved(archive["$top"]["root"])
    expect(resolved(colors["$class"])["$classname"] == "NSArray", f"{path.name}: no array")
    expect(len(colors["NS.objects"]) == 4 and len(set(each.data for each in colors["NS.objects"])) == 1,
           f"{path.name}: not four times one color")
    color = resolved(colors["NS.objects"][0])
    expect(resolved(color["$class"])["$classes"] == ["NSColor", "NSObject"] and color["NSColorSpace"] == 1,
           f"{path.name}: no color")
    expect(color["NSRGB"].endswith(b"\0"), f"{path.name}: no NUL")
    return [float(each) for each in color["NSRGB"][:-1].decode("ascii").split(" ")]


def journal(path):
    heading, target, part, pending, rate, end = path.read_bytes().split(b"\0")
    expect(heading == b"starbloom movie 1" and end == b"", f"{path.name}: another kind of file")
    for hidden in (pathlib.Path(part.decode()), pathlib.Path(pending.decode())):
        expect(re.fullmatch(r"\.starbloom\.\d+-\d+\.part", hidden.name), f"{path.name}: {hidden}")
        expect(hidden.parent == pathlib.Path(target.decode()).parent, f"{path.name}: not beside its target")
    return {"target": target.decode(), "rate": int(rate)}


def note(path):
    text = re.search(rb"starbloom-show=1 [\x20-\x7e]+", path.read_bytes())[0].decode()
    entries = dict(word.split("=", 1) for word in text.split(" "))
    expect(sorted(entries) == sorted(NOTE), f"{path.name}: {sorted(entries)}")
    return entries


READERS = {"Data3.data": shared_folder, "Data4.data": export_settings, "Data6.data": background} | dict.fromkeys(TABLES, store)


def main():
    folder = pathlib.Path(sys.argv[1])
    found = {}
    try:
        for path in sorted(folder.iterdir()):
            if not re.fullmatch(r".*\.damaged-\d+", path.name):
                reader = journal if re.fullmatch(r"Recording(\.[1-9])?", path.name) else READERS.get(path.name)
                expect(reader, f"{path.name} is not told of")
                found[path.name] = reader(path)
        found |= {pathlib.Path(path).name: note(pathlib.Path(path)) for path in sys.argv[2:]}
    except (ValueError, KeyError, IndexError, TypeError, AttributeError, sqlite3.Error, plistlib.InvalidFileException) as why:
        print(f"{type(why).__name__}: {why}", file=sys.stderr)
        return 1
    print(json.dumps(found))
    return 0


sys.exit(main())

# SPDX-License-Identifier: GPL-3.0-or-later
"""Looks at what the program leaves on the disk: its stores, its property lists, exported pictures and movies, and
hidden files that should be gone. Each function gives a list of complaints, empty when all is well."""
import contextlib
import os
import pathlib
import plistlib
import re
import shutil
import sqlite3
import subprocess
import tempfile

# File, table and the keys of its rows.
STORES = (("Data0.data", "Windows", [f"{side}{n}" for n in range(5) for side in ("Width", "Height", "Left", "Top")]),
          ("Data1.data", "Preferences", [f"Value{n:02}" for n in range(99)]),
          ("Data2.data", "General", [f"Value{n:02}" for n in range(1, 25)]))
LISTS = ("Data3.data", "Data4.data", "Data6.data")
TEMPORARY = re.compile(r"\.starbloom\.(\d+)-\d+\.part")
PICTURES = {".bmp": "bmp", ".gif": "gif", ".jpg": "mjpeg", ".jp2": "jpeg2000", ".png": "png", ".tif": "tiff"}
LEAST_WIDTH, LEAST_HEIGHT = 480, 320


def stores(data, robbed):
    """Each store is a sound database with its table and the rows of a first launch, in their order. `robbed` has the
    inodes of those that the monkey changed such that nobody is to mend them: a row less, or a folder in the place."""
    complaints = []
    for name, table, keys in STORES:
        file = data / name
        if not file.exists():
            complaints.append(f"{name} is missing")
        elif file.stat().st_ino != robbed.get(name):
            complaints += [f"{name}: {each}" for each in _store(file, table, keys)]
    return complaints


def _store(file, table, keys):
    with tempfile.TemporaryDirectory() as copy:
        try:
            for each in file.parent.glob(file.name + "*"):  # With its journal.
                if each.is_file() and ".damaged-" not in each.name:
                    shutil.copy(each, copy)
            with contextlib.closing(sqlite3.connect(pathlib.Path(copy, file.name))) as database:
                database.text_factory = os.fsdecode  # Values can be paths, and those any bytes.
                sound = database.execute("pragma integrity_check").fetchall()
                rows = database.execute(f"select field, value from {table} order by ID").fetchall()
        except (OSError, sqlite3.Error) as failure:
            return [str(failure)]
    complaints = [] if sound == [("ok",)] else [str(sound[:3])]
    if [row[0] for row in rows] != keys:
        complaints.append(f"{len(rows)} rows, expected {len(keys)} with their usual keys")
    if any(row[1] is None for row in rows):
        complaints.append("a value is NULL")
    return complaints


def lists(data, spoiled):
    """Property lists that can be read. `spoiled` holds what the monkey made of some; one that nothing was saved to
    since stays like that."""
    complaints = []
    for name in LISTS:
        file = data / name
        if file.is_file() and file.read_bytes() != spoiled.get(name):
            try:
                plistlib.loads(file.read_bytes())
            except Exception as failure:  # The reader raises many kinds.
                complaints.append(f"{name} is no property list: {failure}")
    return complaints


def shared_folder(data):
    """The folder for exports as the program has it written down; nothing when there is none."""
    try:
        path = plistlib.loads((data / "Data3.data").read_bytes())[0]["path"]
    except Exception:
        return None
    return pathlib.Path(path) if pathlib.Path(path).is_dir() else None


def journals(data):
    return [each for each in data.glob("Recording*") if each.is_file()]


def temporaries(folders, data):
    """Hidden files of exports and settings, but for those of movies that can still be recovered."""
    kept = b"".join(each.read_bytes() for each in journals(data))
    found = []
    for folder in [*folders, data]:
        if folder.is_dir():
            found += [each for each in folder.iterdir()
                      if TEMPORARY.fullmatch(each.name) and str(each).encode() not in kept]
    return found


def export(file):
    """A picture or movie that can be decoded to its end."""
    kind = file.suffix.lower()
    if kind not in PICTURES and kind != ".m4v":
        return [f"{file.name}: nothing exports such a file"]
    try:
        probed = subprocess.run(
            ["ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries", "stream=codec_name,width,height",
             "-of", "default=noprint_wrappers=1", file], capture_output=True, text=True, timeout=120)
        decoded = subprocess.run(["ffmpeg", "-v", "error", "-xerror", "-i", file, "-f", "framemd5", "-"],
                                 capture_output=True, text=True, timeout=300)
    except subprocess.TimeoutExpired:
        return [f"{file.name}: decoding takes too long"]
    complaints = [f"{file.name}: {text.strip()[:300]}" for text in (probed.stderr, decoded.stderr) if text.strip()]
    facts = dict(line.split("=", 1) for line in probed.stdout.splitlines() if "=" in line)
    wanted = PICTURES.get(kind, "h264")
    if facts.get("codec_name") != wanted:
        complaints.append(f"{file.name}: is {facts.get('codec_name')}, not {wanted}")
    elif int(facts["width"]) < LEAST_WIDTH or int(facts["height"]) < LEAST_HEIGHT:
        complaints.append(f"{file.name}: is only {facts['width']} x {facts['height']}")
    if not any(line and not line.startswith("#") for line in decoded.stdout.splitlines()):
        complaints.append(f"{file.name}: has no frame")
    return complaints


def target_folder(journal):
    """The folder of the movie that a journal names; nothing when it is not there or the journal names none."""
    fields = journal.read_bytes().split(b"\0")
    folder = pathlib.Path(fields[1].decode(errors="surrogateescape")).parent if len(fields) == 6 else None
    return folder if folder and folder.is_dir() else None

# SPDX-License-Identifier: GPL-3.0-or-later
"""Looks at what the program leaves on the disk: its stores, its property lists, exported pictures and movies, and
hidden files that should be gone. Each function gives a list of complaints, empty when all is well."""
import pathlib
import plistlib
import re
import shutil
import sqlite3
import subprocess
import tempfile

# File, table, and how many rows there are of which number in the key's name, for keys with a first number.
STORES = (("Data0.data", "Windows", [f"{side}{n}" for n in range(5) for side in ("Width", "Height", "Left", "Top")]),
          ("Data1.data", "Preferences", [f"Value{n:02}" for n in range(99)]),
          ("Data2.data", "General", [f"Value{n:02}" for n in range(1, 25)]))
LISTS = ("Data3.data", "Data4.data", "Data6.data")
TEMPORARY = re.compile(r"\.starbloom\.(\d+)-\d+\.part")
PICTURES = {".bmp": "bmp", ".gif": "gif", ".jpg": "mjpeg", ".jp2": "jpeg2000", ".png": "png", ".tif": "tiff"}
LEAST_WIDTH, LEAST_HEIGHT = 480, 320


def stores(data, robbed):
    """Each store is a sound database with its table and the rows of a first launch, in their order. The files named in
    `robbed` lack a row, and the program is not to mend that."""
    complaints = []
    for name, table, keys in STORES:
        file = data / name
        with tempfile.TemporaryDirectory() as copy:
            try:
                for each in data.glob(name + "*"):
                    if each.is_file() and ".damaged-" not in each.name:
                        shutil.copy(each, copy)
                if not file.is_file():
                    complaints.append(f"{name} is missing")
                    continue
                with sqlite3.connect(pathlib.Path(copy, name)) as database:
                    sound = database.execute("pragma integrity_check").fetchall()
                    if sound != [("ok",)]:
                        complaints.append(f"{name}: {sound[:3]}")
                    found = [row[0] for row in database.execute(f"select field from {table} order by ID")]
                    values = [row[0] for row in database.execute(f"select value from {table}")]
                database.close()
            except (OSError, sqlite3.Error) as failure:
                complaints.append(f"{name}: {failure}")
                continue
            if found != keys and not (name in robbed and found == [each for each in keys if each in found]):
                complaints.append(f"{name}: {len(found)} rows, expected {len(keys)} with their usual keys")
            if any(value is None for value in values):
                complaints.append(f"{name}: a value is NULL")
    return complaints


def lists(data):
    complaints = []
    for name in LISTS:
        file = data / name
        if file.is_file():
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

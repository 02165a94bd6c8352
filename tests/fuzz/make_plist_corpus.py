#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the first inputs of PropertyListFuzzer: small files of each layout that the program reads.

Usage: make_plist_corpus.py FOLDER
"""

import pathlib
import plistlib
import sys


def color_archive(space, components, array_class="NSArray", shared=True):
    """A keyed archive of four colours: one object that is referred to four times, or four objects."""
    color = {"NSColorSpace": space, "NSRGB": components, "$class": plistlib.UID(2)}
    places = [4, 4, 4, 4] if shared else [4, 5, 6, 7]
    return plistlib.dumps({
        "$version": 100000,
        "$archiver": "NSKeyedArchiver",
        "$top": {"root": plistlib.UID(1)},
        "$objects": ["$null",
                     {"NS.objects": [plistlib.UID(place) for place in places], "$class": plistlib.UID(3)},
                     {"$classname": "NSColor", "$classes": ["NSColor", "NSObject"]},
                     {"$classname": array_class, "$classes": [array_class, "NSObject"]}]
                    + [dict(color) for _ in range(1 if shared else 4)],
    }, fmt=plistlib.FMT_BINARY, sort_keys=False)


def folder_record(entries):
    return plistlib.dumps([entries], fmt=plistlib.FMT_XML)


CORPUS = {
    "color-calibrated": color_archive(1, b"0.25 0.5 0.75\0"),
    "color-alpha": color_archive(1, b"0 0 0 0.5\0"),
    "color-device": color_archive(2, b"1 0.125 0", "NSMutableArray"),
    "color-separate": color_archive(1, b"0.1 0.2 0.3\0", shared=False),
    "color-text": color_archive(1, "0.1 0.2 0.3"),
    "folder-plain": folder_record({"path": "/srv/pictures", "bookmark": b"/srv/pictures"}),
    "folder-bytes": folder_record({"path": "/srv/\ufffd & <x>", "bookmark": b"/srv/\xff & <x>"}),
    "folder-foreign": folder_record({"path": "/srv/caf\u00e9", "bookmark": b"book\0\0\0\0mark"}),
    "folder-no-bookmark": folder_record({"path": "/srv"}),
}


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, content in CORPUS.items():
        (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares what two PNG files of one writer hold, whatever their compression: another zlib packs the same pixels
into other bytes.

    python3 tools/same_pixels.py A.png B.png
"""

import sys
import zlib


def contents(path):
    with open(path, "rb") as file:
        data = file.read()
    chunks, packed, at = [], b"", 8
    while at < len(data):
        length = int.from_bytes(data[at : at + 4], "big")
        kind, body = data[at + 4 : at + 8], data[at + 8 : at + 8 + length]
        if kind == b"IDAT":
            packed += body
        else:
            chunks.append((kind, body))
        at += length + 12
    return chunks, zlib.decompress(packed)


if __name__ == "__main__":
    if contents(sys.argv[1]) != contents(sys.argv[2]):
        sys.exit(f"{sys.argv[1]} and {sys.argv[2]} differ")

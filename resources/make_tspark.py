#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the spark image: a hot core in a soft halo, as light on black.

    python3 resources/make_tspark.py resources/tspark.png

The picture is 16-bit grey, so that the faint end of the halo has no steps, and two pixels to the point, so that it
stays smooth when it is drawn larger. It has a side of 72 points: most of it is so faint that it shows only where sparks
crowd, and there it wraps a young burst in a glow of its colour.
"""

import math
import struct
import sys
import zlib

POINTS = 72
PIXELS_PER_POINT = 2
SIDE = POINTS * PIXELS_PER_POINT
PIXELS_PER_METRE = round(PIXELS_PER_POINT * 72 / 0.0254)


def light(r):
    """Light at a distance from the centre; 1 is the middle of an edge."""
    if r >= 1.0:
        return 0.0
    core = 0.62 * math.exp(-((r / 0.09) ** 2))
    halo = 0.34 * math.exp(-r / 0.13)
    glow = 0.04 * math.exp(-r / 0.26)
    # Led down to exactly nothing at the edge: otherwise crowds of sparks would show their squares.
    fade = (1.0 - r * r) ** 2
    return min((core + halo + glow) * fade, 1.0)


def rows():
    for y in range(SIDE):
        row = bytearray([0])
        for x in range(SIDE):
            r = math.hypot(x + 0.5 - SIDE / 2, y + 0.5 - SIDE / 2) / (SIDE / 2)
            row += struct.pack(">H", round(light(r) * 65535))
        yield bytes(row)


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def main():
    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", SIDE, SIDE, 16, 0, 0, 0, 0))
    png += chunk(b"pHYs", struct.pack(">IIB", PIXELS_PER_METRE, PIXELS_PER_METRE, 1))
    png += chunk(b"IDAT", zlib.compress(b"".join(rows()), 9))
    png += chunk(b"IEND", b"")
    with open(sys.argv[1], "wb") as file:
        file.write(png)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the font Univercity: digits as on the shirts of a team, octagonal, with slabs where a stroke ends.

    /usr/bin/python3 resources/fonts/make_univercity.py resources/fonts/Univercity.otf

Needs python3-fonttools, and only to change the font: the file is kept. The same script gives the same bytes.

The font is made for one size, 18 pixels: 100 units are a pixel there, so stems, digits and the line lie on whole pixels.
The badge of the introduction puts the middle of a line one pixel above its own middle; the line reaches two pixels
further up than down beyond the digits, which brings the digits themselves to the middle.
"""

import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.t2CharStringPen import T2CharStringPen

EM = 1800
HEIGHT = 1400  # Of a digit.
ASCENT = 1800
DESCENT = 200
ADVANCE = 1000  # The same for all digits: a badge does not jump from page to page.

LEFT, RIGHT = 60, 940
STEM = 270  # The width of what stands,
BAR = 240  # and of what lies.
CORNER = 230  # What is cut off an outer corner,
NOTCH = 100  # and an inner one.
MIDDLE = HEIGHT // 2

FAMILY = "Univercity"
STYLE = "Regular"
VERSION = "1.000"
COPYRIGHT = "Copyright 2026 The Starbloom developers"
LICENSE = "This Font Software is licensed under the SIL Open Font License, Version 1.1."
LICENSE_ADDRESS = "https://openfontlicense.org"
MADE = 3_850_000_000  # Seconds since 1904; fixed, so that nothing but a change changes the file.


def octagon(left, bottom, right, top, cut):
    return [
        (left + cut, bottom), (right - cut, bottom), (right, bottom + cut), (right, top - cut),
        (right - cut, top), (left + cut, top), (left, top - cut), (left, bottom + cut),
    ]


def turned(contours):
    """By half a turn about the middle of a digit."""
    return [[(LEFT + RIGHT - x, HEIGHT - y) for x, y in contour] for contour in contours]



def zero():
    return [
        octagon(LEFT, 0, RIGHT, HEIGHT, CORNER),
        octagon(LEFT + STEM, BAR, RIGHT - STEM, HEIGHT - BAR, NOTCH),
    ]


def one():
    left, right = 370, 640
    return [[
        (150, 0), (860, 0), (860, 220), (right, 220), (right, HEIGHT), (left + 30, HEIGHT),
        (150, 1200), (150, 960), (left, 1090), (left, 220), (150, 220),
    ]]


def two():
    inner_top = HEIGHT - BAR
    return [[
        (LEFT, 0), (RIGHT, 0), (RIGHT, 470), (RIGHT - 210, 470), (RIGHT - 210, BAR + 10), (LEFT + 330, BAR + 10),
        (RIGHT, 790), (RIGHT, HEIGHT - CORNER), (RIGHT - CORNER, HEIGHT), (LEFT + CORNER, HEIGHT),
        (LEFT, HEIGHT - CORNER), (LEFT, 940), (LEFT + STEM, 940), (LEFT + STEM, inner_top - NOTCH),
        (LEFT + STEM + NOTCH, inner_top), (RIGHT - STEM - NOTCH, inner_top), (RIGHT - STEM, inner_top - NOTCH),
        (RIGHT - STEM, 880), (LEFT, 290),
    ]]


def three():
    half = BAR // 2
    upper = [
        (RIGHT - 120, MIDDLE), (RIGHT, MIDDLE + 120), (RIGHT, HEIGHT - CORNER), (RIGHT - CORNER, HEIGHT),
        (LEFT + CORNER, HEIGHT), (LEFT, HEIGHT - CORNER), (LEFT, 980), (LEFT + STEM, 980),
        (LEFT + STEM, HEIGHT - BAR - NOTCH), (LEFT + STEM + NOTCH, HEIGHT - BAR), (RIGHT - STEM - NOTCH, HEIGHT - BAR),
        (RIGHT - STEM, HEIGHT - BAR - NOTCH), (RIGHT - STEM, MIDDLE + half + NOTCH),
        (RIGHT - STEM - NOTCH, MIDDLE + half), (LEFT + 290, MIDDLE + half),
    ]
    lower = [(x, HEIGHT - y) for x, y in reversed(upper[1:])]
    return [upper + lower]


def four():
    left, right = 490, 760  # Of the stem.
    return [
        [
            (350, 0), (880, 0), (880, 190), (right, 190), (right, 320), (RIGHT, 320), (RIGHT, 550), (right, 550),
            (right, HEIGHT), (left - 20, HEIGHT), (LEFT, 600), (LEFT, 320), (left, 320), (left, 190), (350, 190),
        ],
        [(300, 550), (left, 550), (left, 955)],
    ]


def five():
    top = 880  # Of the bowl.
    return [[
        (LEFT, HEIGHT), (LEFT, 640), (LEFT + STEM - 40, 640), (RIGHT - STEM - NOTCH, 640), (RIGHT - STEM, 640 - NOTCH),
        (RIGHT - STEM, BAR + NOTCH), (RIGHT - STEM - NOTCH, BAR), (LEFT + STEM + NOTCH, BAR),
        (LEFT + STEM, BAR + NOTCH), (LEFT + STEM, 420), (LEFT, 420), (LEFT, CORNER), (LEFT + CORNER, 0),
        (RIGHT - CORNER, 0), (RIGHT, CORNER), (RIGHT, top - CORNER), (RIGHT - CORNER, top), (LEFT + STEM - 20, top),
        (LEFT + STEM - 20, HEIGHT - BAR), (RIGHT - 240, HEIGHT - BAR), (RIGHT - 240, HEIGHT - BAR - 130),
        (RIGHT - 40, HEIGHT - BAR - 130), (RIGHT - 40, HEIGHT),
    ]]


def six():
    top = 860  # Of the bowl.
    return [
        [
            (LEFT + CORNER, 0), (RIGHT - CORNER, 0), (RIGHT, CORNER), (RIGHT, top - CORNER), (RIGHT - CORNER, top),
            (LEFT + STEM, top), (LEFT + STEM, HEIGHT - BAR - NOTCH), (LEFT + STEM + NOTCH, HEIGHT - BAR),
            (RIGHT - STEM - NOTCH, HEIGHT - BAR), (RIGHT - STEM, HEIGHT - BAR - NOTCH), (RIGHT - STEM, 1000),
            (RIGHT, 1000), (RIGHT, HEIGHT - CORNER), (RIGHT - CORNER, HEIGHT), (LEFT + CORNER, HEIGHT),
            (LEFT, HEIGHT - CORNER), (LEFT, CORNER),
        ],
        octagon(LEFT + STEM, BAR, RIGHT - STEM, top - BAR + 10, NOTCH),
    ]


def seven():
    return [[
        (LEFT, HEIGHT), (LEFT, 960), (LEFT + 220, 960), (LEFT + 220, HEIGHT - BAR - 10), (650, HEIGHT - BAR - 10),
        (330, 560), (330, 0), (610, 0), (610, 520), (RIGHT, 1130), (RIGHT, HEIGHT),
    ]]


def eight():
    half = BAR // 2
    return [
        [
            (LEFT + CORNER, 0), (RIGHT - CORNER, 0), (RIGHT, CORNER), (RIGHT, MIDDLE - 110), (RIGHT - 110, MIDDLE),
            (RIGHT, MIDDLE + 110), (RIGHT, HEIGHT - CORNER), (RIGHT - CORNER, HEIGHT), (LEFT + CORNER, HEIGHT),
            (LEFT, HEIGHT - CORNER), (LEFT, MIDDLE + 110), (LEFT + 110, MIDDLE), (LEFT, MIDDLE - 110), (LEFT, CORNER),
        ],
        octagon(LEFT + STEM, BAR, RIGHT - STEM, MIDDLE - half, NOTCH - 20),
        octagon(LEFT + STEM, MIDDLE + half, RIGHT - STEM, HEIGHT - BAR, NOTCH - 20),
    ]


def missing():
    return [[(150, 0), (850, 0), (850, HEIGHT), (150, HEIGHT)], [(250, 100), (750, 100), (750, 1300), (250, 1300)]]


GLYPHS = {
    ".notdef": missing(),
    "space": [],
    "zero": zero(),
    "one": one(),
    "two": two(),
    "three": three(),
    "four": four(),
    "five": five(),
    "six": six(),
    "seven": seven(),
    "eight": eight(),
    "nine": turned(six()),
}
CHARACTERS = {ord(" "): "space", 0xA0: "space"} | {ord("0") + i: name for i, name in enumerate(list(GLYPHS)[2:])}


def area(contour):
    return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(contour, contour[1:] + contour[:1])) / 2


def char_string(contours):
    """The first contour is the outline, the others are holes in it, which run the other way round."""
    pen = T2CharStringPen(ADVANCE, None)
    for i, contour in enumerate(contours):
        forwards = (area(contour) > 0) == (i == 0)
        points = contour if forwards else contour[::-1]
        pen.moveTo(points[0])
        for point in points[1:]:
            pen.lineTo(point)
        pen.closePath()
    return pen.getCharString()


def build(path):
    font = FontBuilder(EM, isTTF=False)
    font.font.recalcTimestamp = False
    font.setupHead(unitsPerEm=EM, created=MADE, modified=MADE, fontRevision=1.0)
    font.setupGlyphOrder(list(GLYPHS))
    font.setupCharacterMap(CHARACTERS)
    strings = {name: char_string(contours) for name, contours in GLYPHS.items()}
    information = {"FullName": FAMILY, "FamilyName": FAMILY, "Weight": STYLE, "Notice": COPYRIGHT}
    alignment = {"BlueValues": [-20, 0, HEIGHT, HEIGHT + 20], "StdHW": BAR, "StdVW": STEM}
    font.setupCFF(f"{FAMILY}-{STYLE}", information, strings, alignment)
    font.setupHorizontalMetrics({
        name: (ADVANCE, min((x for contour in contours for x, _ in contour), default=0))
        for name, contours in GLYPHS.items()
    })
    font.setupHorizontalHeader(ascent=ASCENT, descent=-DESCENT, lineGap=0)
    font.setupNameTable({
        "copyright": COPYRIGHT, "familyName": FAMILY, "styleName": STYLE,
        "uniqueFontIdentifier": f"{VERSION};{FAMILY}-{STYLE}", "fullName": FAMILY, "version": f"Version {VERSION}",
        "psName": f"{FAMILY}-{STYLE}", "licenseDescription": LICENSE, "licenseInfoURL": LICENSE_ADDRESS,
    })
    font.setupOS2(
        version=4, usWeightClass=400, fsType=0, fsSelection=0x40 | 0x80, sTypoAscender=ASCENT,
        sTypoDescender=-DESCENT, sTypoLineGap=0, usWinAscent=ASCENT, usWinDescent=DESCENT, sCapHeight=HEIGHT,
        sxHeight=HEIGHT, xAvgCharWidth=ADVANCE)
    font.setupPost(isFixedPitch=1)
    font.save(path)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    build(sys.argv[1])

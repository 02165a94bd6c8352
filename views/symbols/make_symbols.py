#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Turns drawings into the table of symbols that is compiled into the application.

    make_symbols.py SYMBOLS.CPP DRAWING.SVG...

Drawn from a table, an icon costs its strokes and nothing else: no library to load and no XML to read at each launch.
The little of SVG that our drawings use is understood, anything else ends the build with an error: paths, circles and
rectangles, filled or stroked with round ends, in plain colours, in the current colour or in a gradient.
"""

import math
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

SVG = "{http://www.w3.org/2000/svg}"
INHERITED = {"fill": "#000000", "stroke": "none", "stroke-width": "1", "stroke-opacity": "1", "stroke-linecap": "butt",
             "stroke-linejoin": "miter"}
OWN = {"path": {"d"}, "circle": {"cx", "cy", "r"}, "rect": {"x", "y", "width", "height", "rx"}, "g": set()}
ARGUMENTS = {"M": 2, "L": 2, "H": 1, "V": 1, "A": 7, "Z": 0}


class NotUnderstood(Exception):
    pass


def number(value):
    return repr(float(value))


def arc(start, radii, rotation, large, sweep, end):
    """The cubics of an elliptical arc, a quarter of the ellipse each at most."""
    (x0, y0), (x1, y1) = start, end
    rx, ry = map(abs, radii)
    if rotation != 0 or rx != ry or rx == 0:
        raise NotUnderstood("an arc that is not of a circle")
    chord = math.hypot(x1 - x0, y1 - y0) / rx
    if chord > 2:
        rx *= chord / 2
        chord = 2.0
    # In units of the radius, as seen from the chord's middle.
    side = 1 if large != sweep else -1
    off = side * math.sqrt(max(1 - chord * chord / 4, 0.0)) / max(chord, 1e-12)
    cx = (x0 + x1) / 2 + off * (y0 - y1)
    cy = (y0 + y1) / 2 - off * (x0 - x1)
    first = math.atan2(y0 - cy, x0 - cx)
    angle = math.atan2(y1 - cy, x1 - cx) - first
    if sweep and angle < 0:
        angle += 2 * math.pi
    elif not sweep and angle > 0:
        angle -= 2 * math.pi
    pieces = math.ceil(abs(angle) / (math.pi / 2 + 0.001))
    for piece in range(pieces):
        a, b = first + piece * angle / pieces, first + (piece + 1) * angle / pieces
        reach = 8 / 3 * math.sin((b - a) / 4) ** 2 / math.sin((b - a) / 2)
        yield [cx + rx * (math.cos(a) - reach * math.sin(a)), cy + rx * (math.sin(a) + reach * math.cos(a)),
               cx + rx * (math.cos(b) + reach * math.sin(b)), cy + rx * (math.sin(b) - reach * math.cos(b)),
               cx + rx * math.cos(b), cy + rx * math.sin(b)]


def path(text):
    """The steps of a path in letters (M, L, C, Z), and their absolute coordinates in one list."""
    steps, numbers = "", []
    place = begin = (0.0, 0.0)
    for letter, arguments in re.findall(r"([A-Za-z])([^A-Za-z]*)", text):
        values = [float(each) for each in re.findall(r"-?(?:\d+\.?\d*|\.\d+)", arguments)]
        kind, relative = letter.upper(), letter.islower()
        if kind not in ARGUMENTS:
            raise NotUnderstood(f"the step {letter} in a path")
        count = ARGUMENTS[kind]
        if count == 0:
            steps += "Z"
            place = begin
            continue
        if len(values) % count or not values:
            raise NotUnderstood(f"{len(values)} numbers after {letter}")
        for i in range(0, len(values), count):
            now = values[i:i + count]
            x, y = place
            dx, dy = place if relative else (0.0, 0.0)
            end = {"H": (now[0] + dx, y), "V": (x, now[0] + dy)}.get(kind) or (now[-2] + dx, now[-1] + dy)
            if kind == "A":
                for cubic in arc(place, now[0:2], now[2], now[3] != 0, now[4] != 0, end):
                    steps += "C"
                    numbers += cubic
                numbers[-2:] = end
            else:
                steps += "M" if kind == "M" and i == 0 else "L"
                numbers += end
            place = end
            if kind == "M" and i == 0:
                begin = end
    return steps, numbers


def color(text, opacity=1.0):
    if not re.fullmatch(r"#[0-9a-f]{6}", text):
        raise NotUnderstood(f"the colour {text}")
    return f"0x{math.floor(opacity * 255 + 0.5):02x}{text[1:]}"


class Drawing:
    """One file, as the lines of the table that stand for it."""

    def __init__(self, file):
        self.name = file.stem
        root = xml.parse(file).getroot()
        left, top, self.width, self.height = map(float, root.get("viewBox").split())
        if left or top:
            raise NotUnderstood("a view box that does not begin at 0 0")
        self.gradients = {each.get("id"): each for each in root.iter()
                          if each.tag in (SVG + "linearGradient", SVG + "radialGradient")}
        self.arrays, self.shapes = [], []
        self.walk(root, INHERITED, {"width", "height", "viewBox"})

    def walk(self, element, style, known):
        style = dict(style, **{name: value for name, value in element.attrib.items() if name in INHERITED})
        for name in element.attrib:
            if name not in INHERITED and name not in known:
                raise NotUnderstood(f"the attribute {name} of {element.tag}")
        if known == OWN["g"] or element.tag == SVG + "svg":
            for child in element:
                tag = child.tag.removeprefix(SVG)
                if tag == "defs":
                    continue
                if tag not in OWN:
                    raise NotUnderstood(f"the element {tag}")
                self.walk(child, style, OWN[tag])
        else:
            self.shape(element, style)

    def array(self, kind, type_, values):
        name = f"{self.name}{kind}{len(self.arrays)}"
        self.arrays.append(f"constexpr {type_} {name}[]{{{', '.join(values)}}};")
        return name

    def paint(self, text):
        if text == "none":
            return "{}"
        if text == "currentColor":
            return "{.kind = SymbolPaint::Kind::Current}"
        if not text.startswith("url(#"):
            return f"{{.kind = SymbolPaint::Kind::Plain, .argb = {color(text)}}}"
        gradient = self.gradients[text[5:-1]]
        stops = self.array("Stops", "SymbolStop", [
            f"{{{number(stop.get('offset'))}, {color(stop.get('stop-color'), float(stop.get('stop-opacity', '1')))}}}"
            for stop in gradient])
        radial = gradient.tag == SVG + "radialGradient"
        if radial != (gradient.get("gradientUnits") == "userSpaceOnUse"):
            raise NotUnderstood("a linear gradient in points, or a radial one in parts of its shape")
        names = ("cx", "cy", "r") if radial else ("x1", "y1", "x2", "y2")
        place = ", ".join(number(gradient.get(name)) for name in names)
        return (f"{{.kind = SymbolPaint::Kind::{'Radial' if radial else 'Linear'}, .place = {{{place}}}, "
                f".stops = {stops}}}")

    def shape(self, element, style):
        if style["stroke"] != "none" and (style["stroke-linecap"], style["stroke-linejoin"]) != ("round", "round"):
            raise NotUnderstood("a stroke that is not round at its ends and corners")
        tag = element.tag.removeprefix(SVG)

        def get(name):
            return float(element.get(name, "0"))

        if tag == "path":
            steps, numbers = path(element.get("d"))
            form = f".form = SymbolShape::Form::Path, .steps = \"{steps}\""
        elif tag == "circle":
            numbers = [get("cx") - get("r"), get("cy") - get("r"), 2 * get("r"), 2 * get("r")]
            form = ".form = SymbolShape::Form::Ellipse"
        else:
            numbers = [get("x"), get("y"), get("width"), get("height"), get("rx")]
            form = ".form = SymbolShape::Form::Rectangle"
        numbers = self.array("Numbers", "double", map(number, numbers))
        self.shapes.append(f"{{{form}, .numbers = {numbers}, .fill = {self.paint(style['fill'])}, "
                           f".stroke = {self.paint(style['stroke'])}, .strokeWidth = {number(style['stroke-width'])}, "
                           f".strokeOpacity = {number(style['stroke-opacity'])}}}")

    def text(self):
        shapes = ",\n    ".join(self.shapes)
        return "\n".join(self.arrays) + f"\nconstexpr SymbolShape {self.name}Shapes[]{{\n    {shapes}}};\n"

    def row(self):
        return f"{{\"{self.name}\", {number(self.width)}, {number(self.height)}, {self.name}Shapes}}"


def main():
    drawings = []
    for file in map(pathlib.Path, sys.argv[2:]):
        try:
            drawings.append(Drawing(file))
        except (NotUnderstood, xml.ParseError) as fault:
            sys.exit(f"{file}: cannot make a symbol of this: {fault}")
    rows = ",\n    ".join(drawing.row() for drawing in drawings)
    pathlib.Path(sys.argv[1]).write_text(
        "// Written by make_symbols.py.\n#include \"views/symbols/SymbolTable.h\"\n\nnamespace starbloom {\n\nnamespace {\n\n"
        + "\n".join(drawing.text() for drawing in drawings)
        + f"\nconstexpr Symbol symbols[]{{\n    {rows}}};\n\n}} // namespace\n\n"
        + "std::span<const Symbol> symbolTable() {\n    return symbols;\n}\n\n} // namespace starbloom\n",
        encoding="utf-8")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that each text that the program asks for is in every string table, and that no table holds one too many.

Keys are the literals in qtTrId("..."), the texts of the interface files, and the names of the parameters with Title,
Effect, Unit or Guide behind; any other literal that is the same as a key counts as its use (keys in tables).
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as xml

ROOT = pathlib.Path(__file__).resolve().parent.parent


def asked():
    """(keys that must exist, literals that may be keys)"""
    needed, literals = set(), set()
    for folder in ("shell", "views"):
        for path in [*(ROOT / folder).rglob("*.cpp"), *(ROOT / folder).rglob("*.h")]:
            source = re.sub(r"^\s*//.*$", "", path.read_text(encoding="utf-8"), flags=re.MULTILINE)
            needed |= set(re.findall(r'qtTrId\("((?:[^"\\]|\\.)+)"\)', source))
            literals |= set(re.findall(r'"((?:[^"\\\n]|\\.)+)"', source))
    for path in (ROOT / "resources").glob("*.ui"):
        for text in xml.parse(path).iter("string"):
            if text.get("notr") != "true" and text.text:
                needed.add(text.text)
    table = (ROOT / "engine/panel/ParameterTable.h").read_text(encoding="utf-8")
    for name in re.findall(r'"(\w+Slider)"', table):
        needed |= {name + kind for kind in ("Title", "Effect", "Unit", "Guide")}
    return needed, literals


def faults(table, needed, literals):
    texts = {each.get("id"): each.findtext("translation") or "" for each in xml.parse(table).iter("message")}
    for key in sorted(needed - set(texts)):
        yield f"{table.name}: no text for {key}"
    for key in sorted(set(texts) - needed - literals):
        yield f"{table.name}: nothing asks for {key}"
    for key in sorted(key for key, text in texts.items() if not text.strip()):
        yield f"{table.name}: the text of {key} is empty"


def main():
    needed, literals = asked()
    tables = sorted((ROOT / "resources/texts").glob("*.ts"))
    found = [fault for table in tables for fault in faults(table, needed, literals)]
    print("\n".join(found) if found else f"{len(tables)} string tables: every text is there, and none too many")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

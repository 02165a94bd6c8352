#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the string tables: each text that the program asks for is in every one, and none too many; a translation has the
placeholders, mnemonics and line breaks of the English text; mnemonics that are seen together differ, and so do shortcuts.

Keys are the literals in qtTrId("..."), the texts of the interface files, and the names of the parameters with a word of
theirs behind. Any other literal that is the same as a key, but for a number at its end, counts as its use.
Seen together are the menu bar, each menu, and each window: the texts of an interface file (each tab by itself, with what
surrounds the tabs) and those that the source of the same name asks for. A message box is known by its source alone.
"""

import collections
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

ROOT = pathlib.Path(__file__).resolve().parent.parent
KEY_IN_SOURCE = re.compile(r'qtTrId\("((?:[^"\\]|\\.)+)"\)')


def source_of(path):
    return re.sub(r"^\s*//.*$", "", path.read_text(encoding="utf-8"), flags=re.MULTILINE)


def asked():
    """(keys that must exist, literals that may be keys)"""
    needed, literals = set(), set()
    for folder in ("shell", "views"):
        for path in [*(ROOT / folder).rglob("*.cpp"), *(ROOT / folder).rglob("*.h")]:
            source = source_of(path)
            needed |= set(KEY_IN_SOURCE.findall(source))
            literals |= set(re.findall(r'"((?:[^"\\\n]|\\.)+)"', source))
    for path in (ROOT / "resources").glob("*.ui"):
        for text in xml.parse(path).iter("string"):
            if text.get("notr") != "true" and text.text:
                needed.add(text.text)
    table = (ROOT / "engine/panel/ParameterTable.h").read_text(encoding="utf-8")
    for name in re.findall(r'"(\w+Slider)"', table):
        needed |= {name + kind for kind in literals & {"Title", "Effect", "Unit", "Guide"}}
    return needed, literals


def commands():
    """({command: (key, shortcut or None)}, {name of a menu: keys}) of the command table"""
    source = source_of(ROOT / "shell/Commands.cpp")
    table = {}
    for command, key, rest in re.findall(r'\{(\w+),\s*"\w+",\s*"(\w+)"([^{}]*)\}', source):
        shortcut = re.search(r"(?:Qt::[A-Z]+ \| )*Qt::Key_\w+", rest)
        table[command] = (key, shortcut and " ".join(sorted(re.findall(r"Qt::(\w+)", shortcut.group()))))
    menus = {"menu bar": set(re.findall(r'\{"\w+Menu",\s*"(\w+)"', source))}
    for name, items in re.findall(r"constexpr Item (\w+)\[\] = \{([^}]*)\}", source):
        menus[name] = {table[item][0] for item in re.findall(r"\w+", items) if item != "line"}
    return table, menus


def interface(path, titles):
    """The keys in one interface file, once for each tab; titles: {name of a control: keys that the program sets}"""
    around, tabs = set(), []

    def visit(element, keys):
        if element.tag == "widget":
            keys.update(titles.get(element.get("name"), ()))
        if element.tag == "property" and element.get("name") in ("text", "title"):
            keys.update(text.text for text in element.iter("string") if text.get("notr") != "true")
        for child in element:
            if element.get("class") == "QTabWidget" and child.tag == "widget":
                tabs.append(set())
                visit(child, tabs[-1])
            else:
                visit(child, keys)

    visit(xml.parse(path).getroot(), around)
    return [around | tab for tab in tabs or [set()]]


def windows():
    """{name of a window or message box: keys}"""
    titles = collections.defaultdict(set)
    for control, key in re.findall(r'\{"(\w+)", "(\w+)"', source_of(ROOT / "shell/ControlTitles.cpp")):
        titles[control].add(key)
    sources = {path.stem: set(KEY_IN_SOURCE.findall(source_of(path))) for path in (ROOT / "shell").rglob("*.cpp")}
    found = {}
    for path in (ROOT / "resources").glob("*.ui"):
        in_code = sources.pop(path.stem, set())
        for number, keys in enumerate(interface(path, titles)):
            found[path.stem + (f", tab {number + 1}" if number else "")] = keys | in_code
    return found | sources


def placeholders(text):
    return set(re.findall(r"%L?\d+", text))


def mnemonics(text):
    return re.findall(r"&(\w)", text.replace("&&", "").upper())


def line_ends(text):
    return text.count("\n"), text[: len(text) - len(text.lstrip())], text[len(text.rstrip()) :]


def key_faults(messages, texts, needed, literals):
    for key in sorted(needed - set(texts)):
        yield f"no text for {key}"
    for key in sorted(set(texts) - needed - literals):
        if re.sub(r"\d+$", "", key) not in literals:
            yield f"nothing asks for {key}"
    for key, count in collections.Counter(key for key, _ in messages).items():
        if count > 1:
            yield f"{key} is there {count} times"
    for key, text in texts.items():
        if not text.strip():
            yield f"the text of {key} is empty"


def translation_faults(texts, english):
    for key in sorted(texts.keys() & english.keys()):
        for what, of in (("placeholders", placeholders), ("line breaks or blanks at its ends", line_ends)):
            if of(texts[key]) != of(english[key]):
                yield f"{key} has other {what} than in English"
        if len(mnemonics(texts[key])) != len(mnemonics(english[key])):
            yield f"{key} has another number of mnemonics than in English"


def mnemonic_faults(texts, menus, groups):
    for name, keys in menus.items():
        for key in sorted(keys & texts.keys()):
            if not mnemonics(texts[key]):
                yield f"{key} in {name} has no mnemonic"
    for name, keys in (menus | groups).items():
        users = collections.defaultdict(list)
        for key in sorted(keys & texts.keys()):
            for letter in mnemonics(texts[key]):
                users[letter].append(key)
        for letter, several in users.items():
            if len(several) > 1:
                yield f"mnemonic {letter} clashes in {name}: {', '.join(several)}"


def menu_faults(table, menus):
    if not table or not menus["menu bar"]:
        yield "shell/Commands.cpp: its tables are not written as this check reads them"
    for command, (key, _) in table.items():
        if not any(key in keys for keys in menus.values()):
            yield f"shell/Commands.cpp: {command} is in no menu"


def shortcut_faults(table):
    users = collections.defaultdict(list)
    for command, (_, shortcut) in table.items():
        users[shortcut].append(command)
    for shortcut, several in users.items():
        if shortcut and len(several) > 1:
            yield f"shell/Commands.cpp: shortcut {shortcut} clashes: {', '.join(several)}"


def table_faults(path, english, needed, literals, menus, groups):
    """(its texts, what is wrong with it)"""
    tree = xml.parse(path).getroot()
    messages = [(each.get("id"), each.findtext("translation") or "") for each in tree.iter("message")]
    texts = dict(messages)
    faults = [
        *key_faults(messages, texts, needed | english.keys(), literals),
        *translation_faults(texts, english),
        *mnemonic_faults(texts, menus, groups),
    ]
    if path.stem != "starbloom_" + tree.get("language"):
        faults.append("it is of another language than its name says")
    return texts, [f"{path.name}: {fault}" for fault in faults]


def main():
    needed, literals = asked()
    table, menus = commands()
    groups = windows()
    found = list(shortcut_faults(table))
    found += menu_faults(table, menus)
    english = {}
    tables = sorted((ROOT / "resources/texts").glob("*.ts"), key=lambda path: (path.stem != "starbloom_en", path))
    for path in tables:
        texts, faults = table_faults(path, english, needed, literals, menus, groups)
        english = english or texts
        found += faults
    print("\n".join(found) if found else f"{len(tables)} string tables: complete, and in agreement")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

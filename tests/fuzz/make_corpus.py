#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the first inputs of StoreFuzzer: small stores, whole, unusual and damaged, into corpus/stores.

The pages are as small as SQLite allows, so that a mutation is likely to meet something that counts.
"""

import pathlib
import sqlite3
import tempfile

FOLDER = pathlib.Path(__file__).resolve().parent / "corpus" / "stores"


def database(*statements, encoding="UTF-8"):
    """The bytes of a database made by the statements."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "store"
        connection = sqlite3.connect(path)
        connection.execute("PRAGMA page_size=512")
        connection.execute(f"PRAGMA encoding='{encoding}'")
        for statement in statements:
            connection.execute(statement)
        connection.commit()
        connection.close()
        return path.read_bytes()


def table(name, columns="ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text"):
    return f"CREATE TABLE {name} ({columns})"


def rows(name, keys, value="'0'"):
    return [f"INSERT INTO {name} (field,value) values ('{key}', {value})" for key in keys]


def with_endless_row(content):
    """Makes a row of the schema claim a length that no memory could hold."""
    forged = bytearray(content)
    row = int.from_bytes(forged[110:112], "big")
    forged[row:row + 18] = b"\xff" * 18
    return bytes(forged)


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    keys = [f"Value{number:02}" for number in range(12)]
    preferences = database(table("Preferences"), *rows("Preferences", keys))
    corpus = {
        "preferences": preferences,
        "windows": database(table("Windows"), *rows("Windows", ["Width0", "Height0", "Left0", "Top0", "Width1"])),
        "general-utf16": database(table("General"), *rows("General", keys[1:]), encoding="UTF-16le"),
        "null-and-blob": database(table("General"), *rows("General", keys[:3], "NULL"),
                                  *rows("General", keys[3:6], "x'3100ff'")),
        "overflow": database(table("Preferences"), *rows("Preferences", keys[:2], f"'{'x' * 900}'")),
        "few-columns": database(table("Preferences", "field text, value text")),
        "generated": database(table("General", "ID integer, field text, value text as (field || ID)")),
        "view": database("CREATE VIEW General AS SELECT 1, 'Value01' AS field, 'x' AS value"),
        "trigger": database(table("Windows"), *rows("Windows", ["Width0", "Width1", "Height1"]),
                            "CREATE TRIGGER t AFTER UPDATE ON Windows BEGIN DELETE FROM Windows; END"),
        "cut": preferences[:1100],
        "endless-row": with_endless_row(preferences),
        "empty": b"",
        "text": b"no database",
    }
    for name, content in corpus.items():
        (FOLDER / name).write_bytes(content)


if __name__ == "__main__":
    main()

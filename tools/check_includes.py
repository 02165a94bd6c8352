#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that includes point one way, and that Qt stays out of the core.

Run it from anywhere; it prints each include that points the wrong way and fails if there is one. The linker keeps the
same rule for functions; this keeps it for headers.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What each folder may include beside itself.
MAY_INCLUDE = {
    "base": set(),
    "resources": set(),
    "engine": {"base"},
    "persistence": {"base", "engine"},
    "export": {"base", "engine"},
    "views": {"base", "engine"},
    "shell": {"base", "engine", "persistence", "export", "views", "resources"},
    "cli": {"base", "engine", "persistence", "export", "resources"},
    "bench": {"base", "engine", "persistence", "export", "views", "cli", "resources"},
    "tests": {"base", "engine", "persistence", "export", "views", "shell", "cli", "resources"},
    "tools": {"base", "engine", "persistence", "export", "views", "shell", "cli", "resources"},
}
MAY_USE_QT = {"views", "shell", "tests", "tools", "bench"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
QT = re.compile(r"^(Q[A-Z]\w*|Qt\w*/.*|qt\w*/.*)$")


def faults(path):
    folder = path.parts[0]
    for number, line in enumerate((ROOT / path).read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        target = match.group(2)
        if QT.match(target) and folder not in MAY_USE_QT:
            yield f"{path}:{number}: {folder}/ is free of Qt, but includes {target}"
        top = target.split("/")[0]
        if match.group(1) == '"' and top in MAY_INCLUDE and top != folder and top not in MAY_INCLUDE[folder]:
            yield f"{path}:{number}: {folder}/ must not include {target}"
        if match.group(1) == '"' and "/" not in target and not target.startswith("ui_") and not target.endswith(".moc"):
            yield f"{path}:{number}: write {target} with its path from the root of the tree"


def main():
    files = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.h", "*.cpp"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    ).stdout.split()
    found = [fault for name in files for fault in faults(pathlib.Path(name)) if (ROOT / name).exists()]
    print("\n".join(found) if found else f"{len(files)} files: all includes point the right way")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

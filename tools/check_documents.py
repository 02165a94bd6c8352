#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares the documents with the tree that they tell of.

Every link, anchor and picture leads somewhere, each picture and page is used, ARCHITECTURE.md names only what there is and
every folder at the top and those of the core, pages for users quote the program's own words, the list of dependencies is that of the packages, and
the pages that the program opens can be made. Says what is wrong, one line each.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as tree
from collections import Counter

ROOT = pathlib.Path(__file__).resolve().parent.parent
PICTURES = {".png", ".jpg", ".webp", ".gif", ".apng", ".svg"}
problems = []


def problem(place, what):
    problems.append(f"{place}: {what}")


def listed_files():
    """What belongs to the tree, whether it has been committed yet or not."""
    out = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                         stdout=subprocess.PIPE).stdout
    return {pathlib.Path(name) for name in out.decode().split("\0") if name and (ROOT / name).exists()}


def prose(text):
    """A document without its blocks of code, whose lines stay so that they can be counted."""
    return re.sub(r"^```.*?^```$", lambda block: "\n" * block.group().count("\n"), text, flags=re.M | re.S)


def anchors(text):
    """What the headings of a page can be reached by."""
    seen = Counter()
    for heading in re.findall(r"^#+ +(.+?) *$", prose(text), re.M):
        words = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading).lower()
        name = re.sub(r"[^\w\- ]", "", words).replace(" ", "-")
        yield name if not seen[name] else f"{name}-{seen[name]}"
        seen[name] += 1


def check_links(documents, files):
    """Tells of links that lead nowhere, and returns those that lead to a file."""
    texts = {each: (ROOT / each).read_text() for each in documents}
    linked = set()
    for document, text in texts.items():
        plain = re.sub(r"`[^`\n]*`", "", prose(text))
        for target in re.findall(r"\]\(([^)\s]+)\)|<img[^>]* src=\"([^\"]+)\"", plain):
            target = "".join(target)
            if re.match(r"[a-z]+:", target):
                continue
            path, _, anchor = target.partition("#")
            place = (ROOT / document.parent / path).resolve() if path else ROOT / document
            if not place.exists() or ROOT not in [place, *place.parents]:
                problem(document, f"the link {target} leads nowhere")
                continue
            found = place.relative_to(ROOT)
            if place.is_file() and found not in files:
                problem(document, f"{target} is ignored by git")
            linked.add(found)
            if anchor and anchor not in anchors(texts.get(found) or place.read_text()):
                problem(document, f"{path} has no heading {anchor}")
    return linked


def check_use(files, linked):
    packaging = "".join((ROOT / each).read_text(errors="replace") for each in files if each.parts[0] == "packaging"
                        and each.suffix not in PICTURES)
    for each in sorted(files):
        if each.parts[0] == "docs" and each.suffix in PICTURES and each not in linked and str(each) not in packaging:
            problem(each, "no page shows this picture")
        if each.parts[0] == "docs" and each.suffix == ".md" and each not in linked:
            problem(each, "no page leads here")


def check_architecture(files):
    page = pathlib.Path("ARCHITECTURE.md")
    text = (ROOT / page).read_text()
    sources = "".join((ROOT / each).read_text() for each in files if each.suffix in {".h", ".cpp"})
    builds = "".join((ROOT / each).read_text() for each in files if each.name == "CMakeLists.txt" or each.suffix == ".cmake")
    targets = {"starbloom::" + name for name in re.findall(r"starbloom_library\((\w+)", builds)}
    targets |= set(re.findall(r"add_library\((starbloom::\w+) ALIAS", builds))
    targets |= set(re.findall(r"add_(?:executable|library)\(([\w-]+)", builds))
    folders = {parent for each in files for parent in each.parents}
    names = {each.name for each in files}
    words = set(re.findall(r"\w+", sources))
    for span in sorted(set(re.findall(r"`([^`\n]+)`", prose(text)))):
        if span.startswith("starbloom::") or re.fullmatch(r"starbloom(-[a-z]+)*", span):
            known = span in targets
        elif "/" in span or re.search(r"\.(h|cpp|py|md|ui|txt)$", span):
            known = pathlib.Path(span) in files | folders or span in names
        elif re.match(r"[A-Z]", span):
            known = set(re.findall(r"\w+", span.partition("=")[0])) <= words
        else:
            known = True  # A word of the text.
        if not known:
            problem(page, f"there is no {span}")
    for folder in sorted({each.parts[0] for each in files if len(each.parts) > 1}):
        if not re.search(rf"`{re.escape(folder)}/", text):
            problem(page, f"does not name the folder {folder}/")
    for folder in sorted({"/".join(each.parts[:2]) for each in files if len(each.parts) > 2
                          and each.parts[0] in {"engine", "export", "persistence"}}):
        if f"| `{folder}/` |" not in text:
            problem(page, f"has no row for the folder {folder}/")


def check_words():
    """Bold words of the pages for users are titles of the program, in which %1 is the program's own to fill in."""
    messages = tree.parse(ROOT / "resources/texts/starbloom_en.ts").iter("message")
    texts = {"".join(each.find("translation").itertext()) for each in messages}
    plain = {re.sub(r"&(.)", r"\1", each).removesuffix("…").removesuffix(":") for each in texts}
    patterns = [re.compile(re.sub(r"%\d", ".+", re.escape(each))) for each in plain if each]
    for page in ("README.md", "docs/user-guide.md", "docs/support.md"):
        for quoted in sorted(set(re.findall(r"\*\*(.+?)\*\*", prose((ROOT / page).read_text()), re.S))):
            words = " ".join(quoted.split())
            if not any(each.fullmatch(words) for each in patterns):
                problem(page, f"the program nowhere says “{words}”")


def check_packages():
    lines = (ROOT / "packaging/debian-packages.txt").read_text().splitlines()
    packages = Counter(line.strip() for line in lines if line.strip() and not line.startswith("#"))
    table = [line.split("|")[1] for line in (ROOT / "docs/dependencies.md").read_text().splitlines() if line.startswith("|")]
    told = Counter(name for cell in table for name in re.findall(r"`([^`]+)`", cell))
    for name in sorted(packages | told):
        if packages[name] < 1 or told[name] != 1:  # Two sections may have one package.
            problem("docs/dependencies.md", f"{name} is told {told[name]} times, and listed {packages[name]} times in "
                    "packaging/debian-packages.txt")


def check_help_pages():
    """The addresses that the program opens are those that its pages are made for."""
    source = (ROOT / "shell/HelpCommands.cpp").read_text()
    opened = set(re.findall(r"\"https://\" STARBLOOM_\w+_HOST \"([^\"]+)\"", source))
    with tempfile.TemporaryDirectory() as site:
        made = subprocess.run([ROOT / "tools/make-help-pages", site], stdout=subprocess.PIPE, text=True, check=False)
        if made.returncode:
            problem("tools/make-help-pages", f"ended with {made.returncode}")
        answers = dict(line.split(" ", 1) for line in made.stdout.splitlines())
        if opened != set(answers):
            problem("tools/make-help-pages", f"makes {sorted(answers)}, and the program opens {sorted(opened)}")
        for page in pathlib.Path(site).rglob("*.*"):
            if page.suffix in {".html", ".php"} and "**" in re.sub(r"<(code|pre)>.*?</\1>", "", page.read_text(), flags=re.S):
                problem(page.name, "has asterisks where something should be bold")
        for page in (pathlib.Path(each) for each in answers.values()):
            for link in re.findall(r"(?:src|href)=\"([^\"#:]+)[\"#]", page.read_text()):
                if not (page.parent / link).exists():
                    problem(page.name, f"{link} is not among the pages of help")


def main():
    files = listed_files()
    documents = sorted(each for each in files if each.suffix == ".md" and each.parts[0] in {each.name, "docs"})
    check_use(files, check_links(documents, files))
    check_architecture(files)
    check_words()
    check_packages()
    check_help_pages()
    for each in problems:
        print(each)
    return 1 if problems else 0


sys.exit(main())

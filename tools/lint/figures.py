#!/usr/bin/env python3
"""README.md quotes rows of docs/performance.md: looks whether they still stand there, or, with --update, quotes anew."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
# Rows of the goals, by their names there: those that say most to who meets the library for the first time.
QUOTED = (
    "import props, 25 MB, a value",
    "import arrays, 44 MB, a number",
    "peak memory of an import, props",
    "held container: find, open, read a double, close",
    "traverse, a value",
    "write an array of 1 M doubles",
    "build through the interface, a value",
    "file store of 25 MB: open, read one value",
    "durable commit of one record (on the wall)",
)


def section(page, name):
    found = re.search(rf"<!-- {name} -->\n(.*?)<!-- /{name} -->", page, re.DOTALL)
    if not found:
        sys.exit(f"there are no marks {name}")
    return found[1]


def quoted(page):
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in section(page, "goals").splitlines()]
    figures = {row[1]: row[2:4] for row in rows}
    missing = [name for name in QUOTED if name not in figures]
    if missing:
        sys.exit(f"docs/performance.md has no row {missing[0]}")
    return "| What | Costs | Beside it |\n|---|---|---|\n" + "".join(
        f"| {name} | {figures[name][0]} | {figures[name][1]} |\n" for name in QUOTED)


def main():
    readme = ROOT / "README.md"
    page = readme.read_text()
    wanted = quoted((ROOT / "docs/performance.md").read_text())
    if section(page, "figures") == wanted:
        return
    if sys.argv[1:] != ["--update"]:
        sys.exit("README.md quotes other figures than docs/performance.md has: run tools/lint/figures.py --update")
    readme.write_text(page.replace(section(page, "figures") + "<!-- /figures -->", wanted + "<!-- /figures -->"))


main()

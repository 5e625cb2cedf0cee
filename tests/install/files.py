#!/usr/bin/env python3
"""Looks at what was installed: each file in its component, libraries that are named and found as they should be, and
no path of the build or of another prefix.

usage: files.py BUILD SOURCE FOLDER
"""

import pathlib
import re
import subprocess
import sys

BUILD, SOURCE, FOLDER = (pathlib.Path(argument) for argument in sys.argv[1:])
wrong = []


def expect(holds, words):
    if not holds:
        wrong.append(words)


def files(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}


def dynamic(path, tag):
    text = subprocess.run(["readelf", "-d", path], check=True, stdout=subprocess.PIPE).stdout.decode()
    return re.findall(r"\(" + tag + r"\)[^\[]*\[([^\]]*)\]", text)


def check_components():
    parts = {name: files(FOLDER / ("only-" + name)) for name in ("runtime", "dev", "tools")}
    everything = files(FOLDER / "first" / "usr")
    expect(set().union(*parts.values()) == everything, "the components together are the whole")
    expect(sum(map(len, parts.values())) == len(everything), "no file is in two components")
    expect(all(name.endswith(".so") for name in parts["runtime"]), "runtime has libraries alone")
    beside = {"share/man/man1/qvt.1", "share/bash-completion/completions/qvt", "share/zsh/site-functions/_qvt"}
    expect(parts["tools"] == {"bin/qvt"} | beside,
           f"tools is the program, its page and its completion: {parts['tools']}")
    headers = {str(path.relative_to(SOURCE)) for path in (SOURCE / "include").rglob("*")
               if path.suffix in (".h", ".hpp")}
    expect({name for name in parts["dev"] if name.startswith("include/")} == headers, "dev has every public header")
    return parts["runtime"]


def check_libraries(libraries):
    for library in libraries:
        path = FOLDER / "second" / "usr" / library
        expect(dynamic(path, "SONAME") == [path.name], f"{library} is found under its own name")
        expect(re.fullmatch(r"libqvt_[a-z]+-\d+_\d+\.so", path.name), f"{library} is named with its release")
        expect(dynamic(path, "RUNPATH") == ["$ORIGIN"], f"{library} finds its neighbours")
        needed = dynamic(path, "NEEDED")
        expect(any("sqlite" in name for name in needed) == ("libqvt_file" in library),
               f"SQLite is needed by the store in a file alone: {library} needs {needed}")


def check_paths():
    foreign = [str(FOLDER).encode(), str(BUILD).encode(), str(SOURCE).encode()]
    for path in (FOLDER / "second" / "usr").rglob("*"):
        if path.is_file() and path.suffix in (".cmake", ".pc", ".h", ".hpp"):
            text = path.read_bytes()
            expect(not any(place in text for place in foreign), f"{path} names a folder of the build")


def check_pages():
    pages = FOLDER / "second" / "usr" / "share" / "doc" / "qvt"
    for page in pages.rglob("*.md"):
        for target in re.findall(r"\]\((?!https?:)([^)#]+)", page.read_text()):
            expect((page.parent / target).exists(), f"{page.relative_to(pages)} leads to {target}, which is not installed")
    expect((pages / "README.md").exists(), "the pages are installed")


check_libraries(check_components())
check_pages()
check_paths()
if wrong:
    sys.exit("does not hold:\n  " + "\n  ".join(wrong))

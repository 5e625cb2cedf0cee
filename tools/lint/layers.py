#!/usr/bin/env python3
"""Fails on an #include that points right in the order of cmake/layers.txt, or that opens a layer to a mere user."""
import pathlib, re, sys

root = pathlib.Path(__file__).resolve().parents[2]
rows = [row.split() for row in (root / "cmake/layers.txt").read_text().splitlines() if row and row[0] != "#"]
layers = {layer for row in rows for layer in row}
left = {layer: {seen for row in rows if layer in row for seen in row[: row.index(layer) + 1]} for layer in layers}
public = {"public core", "public data"}


def owner(path):
    """The layer, or the public headers, that a path below the root belongs to."""
    parts = path.parts
    if parts[:3] == ("include", "norvane", "platform"):
        return "public " + parts[3]
    if parts[:2] == ("src", "stores"):
        return {"pool": "pool", "overlay": "overlay", "file": "filestore"}.get(parts[2], "stores")
    return parts[1] if parts[0] == "src" else None


def allowed(path):
    """What a file may include beside the headers of other packages and of its own folder."""
    here = owner(path)
    if here in public:
        return {here, "public core"}
    if here in ("core", "pool", "stores", "overlay", "filestore"):
        return left[here] | {"public core"}
    if here in layers:
        return left[here] | public
    # The tool is a host like any other, but for two things: it shows records as such, and it needs a handle on the
    # root, which no public interface gives.
    knows = path.parts[:2] == ("tools", "qvt") and (path.stem.startswith("dump") or path.stem == "RootAsGroup")
    # Number text is measured by itself, and is no part of a public interface.
    if path.parts[:3] == ("bench", "ours", "numbers.cpp"):
        return public | {"xml"}
    return public | ({"records"} if knows else set())


def included(path, name):
    """The file of this repository that an #include names, if it is one."""
    for folder in ((root / path).parent, root / "src", root / "include"):
        if (folder / name).is_file():
            return (folder / name).resolve().relative_to(root)


wrong = 0
for folder in ("include", "src", "tools", "examples", "bench"):
    for file in sorted(root.glob(folder + "/**/*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        path = file.relative_to(root)
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            match = re.match(r'\s*#\s*include\s*["<]([^">]+)[">]', line)
            target = match and included(path, match[1])
            what = target and owner(target)
            if what and what not in allowed(path):
                print(f"{path}:{number}: may not include {match[1]} ({what})")
                wrong = 1
sys.exit(wrong)

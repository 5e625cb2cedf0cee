#!/usr/bin/env python3
"""Compares the order of the virtual operations of every public class with the texts in cmake/abi/slots/.

usage: slots.py [--write]
A host was compiled against that order: what is there keeps its place, and new operations go last. --write replaces the
texts; read the difference before it is committed.
"""
import difflib, pathlib, re, shutil, subprocess, sys, tempfile

root = pathlib.Path(__file__).resolve().parents[2]
kept = root / "cmake/abi/slots"
qualifier = re.compile(r"(\w+(<[^<>]*>)?::)+(?=\w)")


def layouts():
    """The compiler's own print of the tables of tests/abi/slots.cpp."""
    command = ["clang++", "-std=c++17", "-I", root / "include", "-Xclang", "-fdump-vtable-layouts"]
    with tempfile.TemporaryDirectory() as folder:
        command += ["-c", root / "tests/abi/slots.cpp", "-o", pathlib.Path(folder) / "slots.o"]
        result = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    return result.stdout if result.returncode == 0 else sys.exit("the public headers do not compile")


def slots(print_out):
    """The text of each namespace: its classes, and the slots of each as `number signature`."""
    texts = {}
    for block in print_out.split("\n\n"):
        probe = re.search(r"Probe<(.+)>::~Probe\(\) \[complete\]", block)
        if not block.startswith("Vtable for 'Probe") or not probe:
            continue
        space, name = re.fullmatch(r"norvane::platform::((?:[a-z]\w*::)+)(.+)", probe[1]).groups()
        lines = [name]
        for number, signature in re.findall(r"^ *(\d+) \| (.+)$", block, re.M)[2:]:
            signature = signature.replace(f"Probe<{probe[1]}>::~Probe()", "destructor")
            lines.append(f"{int(number) - 2:4} {qualifier.sub('', signature)}")
        texts.setdefault(space[:-2].replace("::", "."), []).append("\n".join(lines) + "\n")
    return {space: "\n".join(sorted(classes)) for space, classes in texts.items()}


def unprobed(print_out):
    """Public headers with virtual operations whose class has no probe; the numbered types are all alike."""
    for header in sorted((root / "include").rglob("*.h")):
        interface = header.stem.startswith("I") and "virtual" in header.read_text(encoding="utf-8")
        if interface and f"::{header.stem}, 0) vtable address" not in print_out:
            yield str(header.relative_to(root))


if not shutil.which("clang++"):
    print("SKIPPED: the order of virtual operations is not compared, because clang++ is missing")
    sys.exit(77)

print_out = layouts()
now = slots(print_out)
if "--write" in sys.argv[1:]:
    for old in kept.glob("*.txt"):
        old.unlink()
    for space, text in now.items():
        (kept / f"{space}.txt").write_text(text, encoding="utf-8")
    sys.exit(0)

before = {file.stem: file.read_text(encoding="utf-8") for file in kept.glob("*.txt")}
wrong = 0
for space in sorted(before.keys() | now.keys()):
    old, new = before.get(space, "").splitlines(), now.get(space, "").splitlines()
    for line in difflib.unified_diff(old, new, f"kept/{space}", f"now/{space}", lineterm=""):
        print(line)
        wrong = 1
for header in unprobed(print_out):
    print(f"{header}: its class has no probe in tests/abi/slots.cpp")
    wrong = 1
sys.exit(wrong)

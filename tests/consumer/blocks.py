#!/usr/bin/env python3
"""Runs every block of code in a page, and looks after what the page refers to.

Blocks stand between fences, and each has one of these forms; anything else fails:

  console              a session: each line that begins with "$ " is run (a "\\" at its end continues it) and must print
                       the lines below it. All sessions of a page have one folder, with the documents of
                       examples/documents and the examples, also built, in it; pkg-config and CMake find an installed qvt
  cpp                  a program: compiled as C++20 and, if it includes nothing of <qvt/...>, as C++17, and run. It must
                       print what stands in the `text` block behind it
  LANGUAGE FILE        a file that stands in the folder from then on; a session further down uses it
  LANGUAGE PATH/FILE   a piece of that file of the repository, indented or not
  sh                   commands for the repository, which take too long to be run here; its files that they name are there
  text drawing         no code

Wherever they stand, links lead to files and headings that are there, `./dev VERB` has that verb, and `--preset NAME`
and `build/NAME/` have that preset.

usage: blocks.py PAGE
The environment says what to build with: CXX, CXXFLAGS, QVT (the tool), QVT_LIBRARIES (their folder), QVT_SOURCE,
QVT_EXAMPLES (the folder of the built examples), QVT_PREFIX (where qvt is installed).
"""

import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(os.environ["QVT_SOURCE"])
END = "\x1e"
# The only place of blocks that are indented instead of fenced: the form of a command.
USAGE = re.compile(r"    qvt [A-Z]")
SETUP = """
qvt() { "$QVT" "$@"; }
g++() { command $CXX $CXXFLAGS "$@" -Wl,-rpath,"$(pkg-config --variable=libdir qvt-core-3.0)"; }
"""


def blocks(page):
    """Language, name of a file, and lines of each fenced block."""
    found = re.findall(r"^```(\w+)(?: (\S+))?\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    if len(re.findall(r"^\s*(?:```|~~~)", page, re.MULTILINE)) != 2 * len(found):
        sys.exit("there is a fence that begins or ends no block")
    rest = re.sub(r"^```.*?^```$", "", page, flags=re.MULTILINE | re.DOTALL)
    for line in rest.splitlines():
        if line.startswith("    ") and not USAGE.match(line):
            sys.exit(f"this stands in no block:\n{line}")
    return found


def run_program(code, standard):
    with tempfile.TemporaryDirectory() as folder:
        source, program = pathlib.Path(folder, "block.cpp"), pathlib.Path(folder, "block")
        source.write_text(code)
        libraries = os.environ["QVT_LIBRARIES"]
        subprocess.run([os.environ["CXX"], *shlex.split(os.environ["CXXFLAGS"]), f"-std={standard}", "-Wall", "-Wextra",
                        "-Werror", f"-I{SOURCE}/include", source, "-o", program, f"-L{libraries}",
                        f"-Wl,-rpath,{libraries}", "-Wl,--as-needed", "-lqvt_file-3_0",
                        "-lqvt_data-3_0", "-lqvt_core-3_0"], check=True)
        return subprocess.run([program], cwd=folder, check=True, stdout=subprocess.PIPE).stdout.decode()


def run_session(commands, folder):
    """What each command prints, and its status, one after the other in one shell."""
    script = SETUP + "".join(f"{{ {command}\n}} 2>&1; printf '\\036%s\\036' $?\n" for command in commands)
    prefix = os.environ["QVT_PREFIX"]
    packages = ":".join({str(path.parent) for path in pathlib.Path(prefix).rglob("*.pc")})
    environment = dict(os.environ, LC_ALL="C.UTF-8", PKG_CONFIG_PATH=packages, CMAKE_PREFIX_PATH=prefix)
    run = subprocess.run(["bash", "-c", script], cwd=folder, stdout=subprocess.PIPE, env=environment)
    parts = run.stdout.decode().split(END)[:-1]
    return list(zip(parts[::2], parts[1::2], strict=True))


def check(what, expected, printed):
    if printed != expected:
        sys.exit(f"{what}\nprints\n{printed}\nand not\n{expected}")


def check_session(text, folder):
    steps = re.findall(r"^\$ ((?:.*\\\n)*.*)\n((?:(?!\$ ).*\n)*)", text, re.MULTILINE)
    if "".join(f"$ {command}\n{expected}" for command, expected in steps) != text:
        sys.exit(f"this is no session:\n{text}")
    results = run_session([command for command, _ in steps], folder)
    for (command, expected), (printed, status) in zip(steps, results, strict=True):
        check("$ " + command, expected, printed)
        if status != "0" and not printed:
            sys.exit(f"$ {command}\nfails with status {status} and nothing tells")
    return len(steps)


def check_piece(text, name):
    lines = [line.strip() for line in (SOURCE / name).read_text().splitlines()]
    piece = [line.strip() for line in text.splitlines()]
    if not any(lines[at:at + len(piece)] == piece for at in range(len(lines))):
        sys.exit(f"this is no piece of {name}:\n{text}")


def headings(path):
    """The anchors of a page: its headings in lower case, with dashes, and without punctuation."""
    titles = re.findall(r"^#+ (.*)$", path.read_text(), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def check_references(page, path):
    for target, anchor in re.findall(r"\]\((?!https?:)([^)#]*)(?:#([^)]*))?\)", page):
        there = path.parent / target if target else path
        if not there.exists():
            sys.exit(f"there is no {target}")
        if anchor and anchor not in headings(there):
            sys.exit(f"{there} has no heading {anchor}")
    verbs = subprocess.run([SOURCE / "dev", "help"], check=True, stdout=subprocess.PIPE).stdout.decode()
    for verb in re.findall(r"\./dev (\w+)", page):
        if not re.search(rf"^  {verb} ", verbs, re.MULTILINE):
            sys.exit(f"./dev has no verb {verb}")
    described = json.loads((SOURCE / "CMakePresets.json").read_text())
    presets = {preset["name"] for kind in described if kind.endswith("Presets") for preset in described[kind]}
    for preset in re.findall(r"--preset[ =](\w+)|\bbuild/(\w+)/", page):
        # Made by ./dev docs and by cpack.
        if "".join(preset) not in presets | {"docs", "packages"}:
            sys.exit(f"there is no preset {''.join(preset)}")


def check_use(name, following):
    used = "cmake " if name == "CMakeLists.txt" else name
    if not any(language == "console" and used in text for language, _, text in following):
        sys.exit(f"nothing is done with {name}")


def check_program(text, output):
    for standard in ("c++20",) if "<qvt/" in text else ("c++17", "c++20"):
        check("the program", output, run_program(text, standard))


def check_commands(text):
    for name in re.findall(r"(?<![\w/.~])(?:bench|docs|examples|fuzz|tests|tools)/[\w./-]+", text):
        if not (SOURCE / name).exists():
            sys.exit(f"there is no {name}")


def is_output(block, before):
    """A text right behind a program."""
    return block[:2] == ("text", "") and before[:2] == ("cpp", "")


def check_block(block, before, following, folder):
    """What it counts as, and how often."""
    language, name, text = block
    if language == "console" and not name:
        return "commands", check_session(text, folder)
    if language == "cpp" and not name:
        behind = following[0] if following else ("", "", "")
        check_program(text, behind[2] if is_output(behind, block) else "")
        return "programs", 1
    if "/" in name:
        check_piece(text, name)
        return "pieces", 1
    if name and language != "text":
        pathlib.Path(folder, name).write_text(text)
        check_use(name, following)
        return "files", 1
    if block[:2] == ("sh", ""):
        check_commands(text)
    if block[:2] not in (("text", "drawing"), ("sh", "")) and not is_output(block, before):
        sys.exit(f"nothing is known of a block {language} {name}:\n{text}")
    return "others", 1


def fill(folder):
    shutil.copytree(SOURCE / "examples" / "documents", folder, dirs_exist_ok=True)
    for example in (SOURCE / "examples").glob("*.cpp"):
        shutil.copy(example, folder)
        shutil.copy(pathlib.Path(os.environ["QVT_EXAMPLES"], example.stem), folder)


def main(path):
    page = path.read_text()
    check_references(page, path)
    found = blocks(page)
    done = dict.fromkeys(("programs", "files", "pieces", "commands", "others"), 0)
    with tempfile.TemporaryDirectory() as folder:
        fill(folder)
        for at, block in enumerate(found):
            kind, count = check_block(block, found[at - 1] if at else ("", "", ""), found[at + 1:], folder)
            done[kind] += count
    print(", ".join(f"{count} {kind}" for kind, count in done.items()) + f" are as {path} says")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))

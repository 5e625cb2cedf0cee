#!/usr/bin/env python3
"""Runs every block of code in a page.

A `cpp` block is a program: it is compiled against the public headers and the shared libraries, as C++20 and, if it
includes nothing of <qvt/...>, as C++17; it is run, and must print what stands in the `text` block behind it. A `console`
block is a session: each line that begins with "$ " is run in a folder with the documents of examples/documents, the same
one for all blocks of a page, and must print the lines below it. `cpp examples/NAME.cpp` is a piece of that example,
which can be run in sessions as ./NAME. Any other language with the name of a file behind it is a file that stands in the
folder from then on.

usage: blocks.py PAGE
The environment says what to build with: CXX, CXXFLAGS, QVT (the tool), QVT_LIBRARIES (their folder), QVT_SOURCE,
QVT_EXAMPLES (the folder of the built examples).
"""

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


def blocks(page):
    """Language, name of a file, and lines of each fenced block."""
    return re.findall(r"^```(\w*)(?: (\S+))?\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)


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
    """What each command prints, one after the other in one shell."""
    script = f"qvt() {{ {shlex.quote(os.environ['QVT'])} \"$@\"; }}\n"
    script += "".join(f"{{ {command}\n}} 2>&1; printf '\\036'\n" for command in commands)
    run = subprocess.run(["bash", "-c", script], cwd=folder, stdout=subprocess.PIPE)
    return run.stdout.decode().split(END)[:-1]


def check(what, expected, printed):
    if printed != expected:
        sys.exit(f"{what}\nprints\n{printed}\nand not\n{expected}")


def check_session(text, folder):
    steps = re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", text, re.MULTILINE)
    commands = [command for command, _ in steps]
    for (command, expected), printed in zip(steps, run_session(commands, folder), strict=True):
        check("$ " + command, expected, printed)
    return len(steps)


def check_piece(text, name):
    """A piece may be indented in its example."""
    lines = [line.strip() for line in (SOURCE / name).read_text().splitlines()]
    piece = [line.strip() for line in text.splitlines()]
    if not any(lines[at:at + len(piece)] == piece for at in range(len(lines))):
        sys.exit(f"this is no piece of {name}:\n{text}")


def main(path):
    found = blocks(pathlib.Path(path).read_text())
    programs = commands = pieces = 0
    folder = tempfile.TemporaryDirectory()
    shutil.copytree(SOURCE / "examples" / "documents", folder.name, dirs_exist_ok=True)
    for example in pathlib.Path(os.environ.get("QVT_EXAMPLES", folder.name)).glob("*"):
        if example.is_file() and os.access(example, os.X_OK):
            pathlib.Path(folder.name, example.name).symlink_to(example)
    for (language, name, text), (after, _, output) in zip(found, [*found[1:], ("", "", "")]):
        if language == "cpp" and name:
            check_piece(text, name)
            pieces += 1
        elif language == "cpp":
            for standard in ("c++20",) if "<qvt/" in text else ("c++17", "c++20"):
                check("the program", output if after == "text" else "", run_program(text, standard))
            programs += 1
        elif language == "console":
            commands += check_session(text, folder.name)
        elif name:
            pathlib.Path(folder.name, name).write_text(text)
    print(f"{programs} programs, {pieces} pieces of examples and {commands} commands are as {path} says")
    if programs + commands + pieces == 0:
        sys.exit("there is nothing to run")


if __name__ == "__main__":
    main(sys.argv[1])

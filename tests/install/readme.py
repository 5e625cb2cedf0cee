#!/usr/bin/env python3
"""Installs as README.md says, below a home of its own, and works there with what was installed: the tool, and the two ways
to build the first example.

usage: readme.py README BUILD FOLDER CXX FLAGS
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

README, BUILD, FOLDER, CXX, FLAGS = sys.argv[1:]


def blocks(page, form):
    return re.findall(rf"^```{form}\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)


def commands(page):
    """The block that installs, for this build, and what is done behind it."""
    lines = [block for block in blocks(page, "sh") if "cmake --install" in block][0].splitlines()
    install = [line.replace("build/release", BUILD) for line in lines if not line.startswith("./dev ")]
    compiling = re.search(r"^\$ (g\+\+ .*)\n\$ ./example$", page, re.MULTILINE)[1]
    building = re.search(r"^\$ (cmake .*)$", page, re.MULTILINE)[1]
    return [*install, "command -v qvt", "qvt --version", compiling.replace("g++", f"{CXX} {FLAGS}", 1), "./example", building]


def main():
    page = pathlib.Path(README).read_text()
    home = pathlib.Path(FOLDER, "home")
    shutil.rmtree(home, ignore_errors=True)
    home.mkdir()
    for name, form in (("example.cpp", "cpp"), ("CMakeLists.txt", "cmake")):
        (home / name).write_text(blocks(page, f"{form} {name}")[0])
    prints = re.search(r"^\$ ./example\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)[1]
    run = subprocess.run(["sh", "-e", "-c", "\n".join(commands(page))], cwd=home, check=True, stdout=subprocess.PIPE,
                         env={**os.environ, "HOME": str(home), "CXX": CXX, "CXXFLAGS": FLAGS})
    said = [line for line in run.stdout.decode().splitlines() if not line.startswith("-- ")]
    if said[0] != f"{home}/qvt/bin/qvt" or not said[1].startswith("qvt ") or said[2:] != 2 * prints.splitlines():
        sys.exit(f"what was installed says\n{said}")
    version = subprocess.run([BUILD + "/bin/qvt", "--version"], check=True, stdout=subprocess.PIPE).stdout.decode()
    if said[1] + "\n" != version:
        sys.exit(f"another qvt was installed: {said[1]}")


main()

#!/usr/bin/env python3
"""Makes the Debian packages and reads what they say; takes them apart into one folder, and builds hosts against that: the
first example of README.md by its own line, and those of a folder by CMake.

usage: packages.py CPACK BUILD FOLDER HOSTS CXX README
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

CPACK, BUILD, FOLDER, HOSTS, CXX, README = sys.argv[1:]
wrong = []


def expect(holds, words):
    if not holds:
        wrong.append(words)


def run(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, **options).stdout.decode()


def fields(package):
    return dict(re.findall(r"^([A-Z][\w-]*): (.*)$", run("dpkg-deb", "--field", package), re.MULTILINE))


def make():
    """Where each package is, by its name."""
    shutil.rmtree(FOLDER, ignore_errors=True)
    run(CPACK, "--config", f"{BUILD}/CPackConfig.cmake", "-G", "DEB", "-B", FOLDER)
    return {fields(str(path))["Package"]: str(path) for path in pathlib.Path(FOLDER).glob("*.deb")}


def check_words(packages):
    expect(set(packages) == {"libqvt3.0", "libqvt-dev", "qvt"}, f"there are three packages: {set(packages)}")
    said = {name: fields(path) for name, path in packages.items()}
    needs = {name: re.findall(r"(?:^|, )([\w.+-]+)", said[name].get("Depends", "")) for name in said}
    for library in ("libexpat1", "libtbb12", "libsqlite3-0", "zlib1g", "libc6", "libstdc++6"):
        expect(library in needs["libqvt3.0"], f"the libraries name {library}: {needs['libqvt3.0']}")
    for name in ("libqvt-dev", "qvt"):
        expect("libqvt3.0" in needs[name], f"{name} names the libraries: {needs[name]}")
    page = pathlib.Path(README).read_text()
    for name in said:
        expect(f"`{name}`" in page, f"README.md tells of {name}")
    expect(set(re.findall(r"`(libqvt[\w.-]+)`", page)) < set(said), "README.md tells of no other package")
    expect(not any("-dev" in need for name in needs for need in needs[name]), f"nobody needs what builds: {needs}")


def check_example(root):
    page = pathlib.Path(README).read_text()
    program = re.search(r"^```cpp example.cpp\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)[1]
    line, prints = re.search(r"^\$ (g\+\+ .*)\n\$ ./example\n(.*?)^```$", page, re.MULTILINE | re.DOTALL).groups()
    (root / "example.cpp").write_text(program)
    environment = dict(os.environ, PKG_CONFIG_PATH=str(root / "usr/lib/pkgconfig"))
    run("sh", "-c", line.replace("g++", CXX, 1), cwd=root, env=environment)
    # The folder stands for the root of a system, where the loader looks by itself.
    printed = run("./example", cwd=root, env=dict(os.environ, LD_LIBRARY_PATH=str(root / "usr/lib")))
    expect(printed == prints, f"README.md's example prints {printed}")


def check_hosts(root):
    made = str(root / "made")
    run("cmake", "-G", "Ninja", "-S", HOSTS, "-B", made, f"-DCMAKE_CXX_COMPILER={CXX}", f"-DCMAKE_PREFIX_PATH={root}/usr")
    run("cmake", "--build", made)
    run("ctest", "--test-dir", made, "--output-on-failure")


def main():
    packages = make()
    check_words(packages)
    root = pathlib.Path(FOLDER, "root").resolve()
    for path in packages.values():
        run("dpkg-deb", "--extract", path, str(root))
    check_example(root)
    check_hosts(root)
    run(str(root / "usr/bin/qvt"), "--version")
    if wrong:
        sys.exit("does not hold:\n  " + "\n  ".join(wrong))


main()

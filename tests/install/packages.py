#!/usr/bin/env python3
"""Makes the Debian packages, reads what they say, takes them apart into one folder, and compiles a host against that.

usage: packages.py CPACK BUILD FOLDER HOSTS CXX
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

CPACK, BUILD, FOLDER, HOSTS, CXX = sys.argv[1:]
wrong = []


def expect(holds, words):
    if not holds:
        wrong.append(words)


def run(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, **options).stdout.decode()


def fields(package):
    return dict(re.findall(r"^([A-Z][\w-]*): (.*)$", run("dpkg-deb", "--field", package), re.MULTILINE))


shutil.rmtree(FOLDER, ignore_errors=True)
run(CPACK, "--config", f"{BUILD}/CPackConfig.cmake", "-G", "DEB", "-B", FOLDER)
packages = {fields(str(path))["Package"]: str(path) for path in pathlib.Path(FOLDER).glob("*.deb")}
expect(set(packages) == {"libqvt3.0", "libqvt-dev", "qvt"}, f"there are three packages: {set(packages)}")

said = {name: fields(path) for name, path in packages.items()}
needs = {name: re.findall(r"(?:^|, )([\w.+-]+)", said[name].get("Depends", "")) for name in said}
for library in ("libexpat1", "libtbb12", "libsqlite3-0", "zlib1g", "libc6", "libstdc++6"):
    expect(library in needs["libqvt3.0"], f"the libraries name {library}: {needs['libqvt3.0']}")
for name in ("libqvt-dev", "qvt"):
    expect("libqvt3.0" in needs[name], f"{name} names the libraries: {needs[name]}")
expect(not any("-dev" in need for name in needs for need in needs[name]), f"nobody needs what builds: {needs}")

root = pathlib.Path(FOLDER, "root")
for path in packages.values():
    run("dpkg-deb", "--extract", path, str(root))
environment = dict(os.environ, PKG_CONFIG_PATH=str(root / "usr/lib/pkgconfig"))
flags = run("pkg-config", "--cflags", "--libs", "qvt-data-3.0", env=environment).split()
program = str(root / "host")
run(CXX, "-std=c++17", f"{HOSTS}/host.cpp", "-o", program, *flags, f"-Wl,-rpath,{root}/usr/lib")
run(program)
run(str(root / "usr/bin/qvt"), "--version")
if wrong:
    sys.exit("does not hold:\n  " + "\n  ".join(wrong))

#!/usr/bin/env python3
"""Compiles each installed header alone, twice over, in both languages that hosts are written in. Those of qvt/ need
C++20.

usage: headers.py CXX INCLUDE
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

CXX, INCLUDE = sys.argv[1:]
FLAGS = ["-Wall", "-Wextra", "-Wshadow", "-Wconversion", "-Wnon-virtual-dtor", "-Woverloaded-virtual", "-Werror",
         "-fsyntax-only", "-I" + INCLUDE]


def compiled(job):
    header, standard = job
    run = subprocess.run([CXX, f"-std={standard}", *FLAGS, "-x", "c++", "-"],
                         input=f'#include "{header}"\n'.encode() * 2, stderr=subprocess.PIPE)
    return "" if run.returncode == 0 else f"{header} does not compile alone as {standard}\n{run.stderr.decode()}"


headers = sorted(str(path.relative_to(INCLUDE)) for path in pathlib.Path(INCLUDE).rglob("*.h*"))
jobs = [(header, standard) for header in headers for standard in ("c++17", "c++20")
        if header.endswith(".h") or standard == "c++20"]
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    wrong = [words for words in pool.map(compiled, jobs) if words]
print(f"{len(headers)} headers, {len(jobs)} times")
if wrong or len(headers) < 2:
    sys.exit("\n".join(wrong) or "there are no headers")

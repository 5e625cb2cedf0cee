"""Runs the tool and looks at what it says."""

import json
import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

QVT = os.environ["QVT"]
SOURCE = pathlib.Path(os.environ["QVT_SOURCE"])
DOCUMENTS = SOURCE / "examples" / "documents"

# Trees are drawn with lines, whatever the locale of the run is.
os.environ["LC_ALL"] = "C.UTF-8"

# A fault that a sanitizer finds must not look like one of the tool's own statuses.
SANITIZED = {"ASAN_OPTIONS": "exitcode=99", "UBSAN_OPTIONS": "exitcode=99:print_stacktrace=1"}

# What was freed counts as used for as long as a sanitizer holds it back.
MEASURED = {**SANITIZED, "ASAN_OPTIONS": "exitcode=99:quarantine_size_mb=1"}

# Runs a command and says at last how much memory it had at most, in KiB.
MEASURING = [sys.executable, "-c", """
import resource, subprocess, sys
run = subprocess.run(sys.argv[1:])
print("peak", resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, file=sys.stderr)
sys.exit(run.returncode)
"""]


def read_terminal(master):
    """All that is written to a terminal, until nobody is left who could."""
    out = b""
    try:
        while piece := os.read(master, 65536):
            out += piece
    except OSError:  # how a terminal ends
        pass
    os.close(master)
    return out


class Result:
    def __init__(self, run):
        self.status = run.returncode
        self.bytes = run.stdout
        self.out = run.stdout.decode("utf-8", "surrogateescape")
        self.err = run.stderr.decode("utf-8", "surrogateescape")

    def take_peak(self):
        said, _, peak = self.err.rpartition("peak ")
        self.err = said
        self.peak = int(peak) * 1024

    @property
    def lines(self):
        return self.out.splitlines()

    @property
    def json(self):
        return json.loads(self.out)


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def document(self, text, name="model.xml"):
        """Writes a document; its name is relative to the folder in which the tool runs."""
        data = text if isinstance(text, bytes) else text.encode()
        (self.folder / name).write_bytes(data)
        return name

    def run_tool(self, *arguments, stdin=b"", stack=None, measure=False):
        """Runs the tool; a death by signal or a sanitizer fails the test. When measured, it has its peak of memory in
        bytes."""
        def limit():
            if stack:
                resource.setrlimit(resource.RLIMIT_STACK, (stack, stack))

        command = [QVT, *map(str, arguments)]
        run = subprocess.run(
            [*MEASURING, *command] if measure else command, input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            cwd=self.folder, env={**os.environ, **(MEASURED if measure else SANITIZED)}, preexec_fn=limit, timeout=200)
        result = Result(run)
        if measure:
            result.take_peak()
        self.assertGreaterEqual(result.status, 0, result.err)
        self.assertNotEqual(result.status, 99, result.err)
        return result

    def done(self, *arguments, **more):
        """Runs the tool and expects that it does what it is asked without a word on standard error."""
        result = self.run_tool(*arguments, **more)
        self.assertEqual((result.status, result.err), (0, ""))
        return result

import os
import subprocess

from tool import QVT, SANITIZED, ToolTest

MODEL = '<root name="r"><group name="g"><double name="d">' + "1.5 " * 100000 + "</double></group></root>"


class Output(ToolTest):
    def test_GoesToAFileInsteadOfStandardOutput(self):
        self.document('<root name="r"/>')
        self.assertEqual(self.done("tree", "model.xml", "-o", "out.txt").out, "")
        self.assertEqual((self.folder / "out.txt").read_text(), "r: root, version 0\n")

    def test_EveryVerbTakesAFile(self):
        self.document('<root name="r"><table name="T"><int8 name="i">1</int8></table><group name="g" class="T"/></root>')
        for verb in (["export", "model.xml"], ["tree", "model.xml"], ["show", "model.xml"], ["get", "model.xml", "g.i"],
                     ["stat", "model.xml"], ["schema", "model.xml", "T"], ["units"], ["conforms", "model.xml", "g", "T"],
                     ["dump", "model.xml", "0"], ["find", "model.xml"]):
            with self.subTest(verb[0]):
                said = self.done(*verb).out
                self.done(*verb, "-o", "out.txt")
                self.assertEqual((self.folder / "out.txt").read_text(), said)

    def test_ReplacesAFileAndLeavesNothingBesideIt(self):
        self.document('<root name="r"/>')
        self.document("old", "out.txt")
        self.done("tree", "model.xml", "-o", "out.txt")
        self.assertEqual(sorted(os.listdir(self.folder)), ["model.xml", "out.txt"])
        self.assertEqual((self.folder / "out.txt").read_text(), "r: root, version 0\n")

    def test_LeavesAFileAsItWasWhereTheRunFails(self):
        self.document("old", "out.txt")
        self.document('<root name="r">')
        self.assertEqual(self.run_tool("tree", "model.xml", "-o", "out.txt").status, 3)
        self.assertEqual((self.folder / "out.txt").read_text(), "old")

    def test_MayBeTheDocumentThatIsRead(self):
        self.document('<root name="r"/>')
        self.done("export", "model.xml", "-o", "model.xml")
        self.assertIn('<root version="0" name="r"/>', (self.folder / "model.xml").read_text())

    def test_ThatCannotBeWrittenHasItsOwnStatus(self):
        self.document('<root name="r"/>')
        result = self.run_tool("tree", "model.xml", "-o", "none/out.txt")
        self.assertEqual((result.status, result.err),
                         (7, "none/out.txt: error: cannot write it: No such file or directory\n"))


class StandardOutput(ToolTest):
    def run_into(self, output, *arguments):
        return subprocess.run([QVT, *arguments], stdout=output, stderr=subprocess.PIPE, cwd=self.folder,
                              env={**os.environ, **SANITIZED}, timeout=100)

    def test_ThatIsFullHasItsOwnStatus(self):
        self.document(MODEL)
        for arguments in (["tree", "model.xml"], ["get", "model.xml", "g.d"], ["export", "model.xml"], ["--help"]):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                result = self.run_into(full, *arguments)
                self.assertEqual((result.returncode, result.stderr),
                                 (7, b"standard output: error: cannot write it: No space left on device\n"))

    def test_WhoseReaderHasGoneEndsTheRunInSilence(self):
        self.document(MODEL)
        for arguments in (["get", "model.xml", "g.d"], ["export", "model.xml"]):
            with self.subTest(arguments):
                reading, writing = os.pipe()
                os.close(reading)
                result = self.run_into(writing, *arguments)
                os.close(writing)
                self.assertEqual((result.returncode, result.stderr), (0, b""))

    def test_ThatIsClosedHasThatStatusTooAndNoFileTakesItsPlace(self):
        self.document('<root name="r"/>')
        result = subprocess.run(f"'{QVT}' tree model.xml >&-", shell=True, stderr=subprocess.PIPE, cwd=self.folder,
                                env={**os.environ, **SANITIZED})
        self.assertEqual((result.returncode, result.stderr),
                         (7, b"standard output: error: cannot write it: Bad file descriptor\n"))
        self.assertEqual((self.folder / "model.xml").read_text(), '<root name="r"/>')

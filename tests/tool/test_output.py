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

    def test_IsNeverWrittenOverWhatIsRead(self):
        text = '<root name="r"/><!-- kept -->'
        for name in ("model.xml", "other.xml", "types.xml"):
            self.document(text, name)
        (self.folder / "link.xml").symlink_to("model.xml")
        os.link(self.folder / "model.xml", self.folder / "hard.xml")
        for name, read, arguments in (
                ("model.xml", "model.xml", ["export", "model.xml"]),
                ("link.xml", "model.xml", ["tree", "model.xml"]),
                ("hard.xml", "link.xml", ["export", "link.xml"]),
                ("./model.xml", "hard.xml", ["get", "hard.xml", "none"]),
                ("other.xml", "./other.xml", ["diff", "model.xml", "./other.xml"]),
                ("types.xml", "types.xml", ["export", "model.xml", "--schemas", "types.xml"])):
            with self.subTest(name):
                result = self.run_tool(*arguments, "-o", name)
                self.assertEqual((result.status, result.out, result.err), (
                    2, "", f"qvt: error: -o {name}: the file is {read}, and no answer is written over what is read\n"))
                for each in self.folder.iterdir():
                    self.assertEqual(each.read_text(), text)

    def test_IsNotWrittenOverTheFileOnStandardInput(self):
        self.document('<root name="r"/>')
        with open(self.folder / "model.xml", "rb") as document:
            run = subprocess.run([QVT, "export", "-", "-o", "model.xml"], stdin=document, stderr=subprocess.PIPE,
                                 cwd=self.folder, env={**os.environ, **SANITIZED})
        self.assertEqual((run.returncode, run.stderr.decode()), (
            2, "qvt: error: -o model.xml: the file is standard input, and no answer is written over what is read\n"))
        self.assertEqual((self.folder / "model.xml").read_text(), '<root name="r"/>')

    def test_MayGoWhereNothingIsKept(self):
        with open("/dev/null", "rb") as nothing:
            run = subprocess.run([QVT, "export", "-", "-o", "/dev/null"], stdin=nothing, stderr=subprocess.PIPE, cwd=self.folder)
        self.assertEqual(run.returncode, 3)  # nothing is no document, and that is all there is to say

    def test_OverAFileStoreIsRefusedBeforeAnythingIsDone(self):
        self.document('<root name="r"/>')
        self.done("import", "model.xml", "model.qvt")
        result = self.run_tool("repair", "model.qvt", "new.qvt", "-o", "new.qvt")
        self.assertEqual((result.status, result.err),
                         (2, "qvt: error: -o new.qvt: a file store; no answer is written over one\n"))
        self.assertFalse((self.folder / "new.qvt").exists())

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

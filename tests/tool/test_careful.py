"""What a slip of the hand must not cost."""

import os
import shutil
import signal
import subprocess
import time
import unittest

from tool import DOCUMENTS, QVT, ToolTest


class Careful(ToolTest):
    def setUp(self):
        super().setUp()
        self.done("import", DOCUMENTS / "pump.lib.xml", DOCUMENTS / "pump.xml", "plant.qvt")
        self.before = (self.folder / "plant.qvt").read_bytes()

    def assert_untouched(self):
        self.assertEqual((self.folder / "plant.qvt").read_bytes(), self.before)

    def test_no_answer_is_written_over_a_store(self):
        shutil.copy(self.folder / "plant.qvt", self.folder / "other.name")
        for name in ("plant.qvt", "other.name", "new.qvt"):
            with self.subTest(name=name):
                run = self.run_tool("export", "plant.qvt", "-o", name)
                self.assertEqual((run.status, run.out), (2, ""))
                self.assertIn(f"-o {name}: a file store; no answer is written over one", run.err)
        self.assert_untouched()
        self.assertEqual((self.folder / "other.name").read_bytes(), self.before)
        self.assertFalse((self.folder / "new.qvt").exists())

    def test_a_value_that_looks_like_a_question_is_refused(self):
        for words in (["set", "plant.qvt", "hall.p1.maker", "-h"], ["new", "plant.qvt", "hall.n", "string", "-hello"]):
            run = self.run_tool(*words)
            self.assertEqual((run.status, run.out), (2, ""))
            self.assertIn("--", run.err)
        self.assert_untouched()
        self.done("set", "plant.qvt", "hall.p1.maker", "--", "-h")
        self.assertEqual(self.done("get", "plant.qvt", "hall.p1.maker").out, "-h\n")

    def test_a_question_within_a_verb_is_answered(self):
        self.assertIn("VALUE", self.done("set", "-h").out)
        self.assertIn("VALUE", self.done("set", "plant.qvt", "--help").out)

    def test_a_store_of_another_name_is_called_one(self):
        shutil.copy(self.folder / "plant.qvt", self.folder / "plant.db")
        run = self.run_tool("tree", "plant.db")
        self.assertEqual((run.status, run.err),
                         (3, "plant.db: error: a file store, but its name does not end in .qvt\n"))

    def test_a_document_of_that_name_is_called_one(self):
        for beginning in (b"", b"\xef\xbb\xbf", b"\n  "):
            self.document(beginning + b'<root name="r"/>', "model.qvt")
            for verb in (["tree"], ["set", "g", "1"]):
                run = self.run_tool(verb[0], "model.qvt", *verb[1:])
                self.assertEqual((run.status, run.err), (
                    3, "model.qvt: error: a document, but its name ends in .qvt, as that of a file store does\n"))
        self.document("anything", "model.qvt")
        self.assertEqual(self.run_tool("tree", "model.qvt").err, "model.qvt: error: not a store\n")
        run = self.run_tool("import", "plant.qvt", "new.qvt")
        self.assertEqual((run.status, run.err),
                         (3, "plant.qvt: error: a file store, where a document is wanted\n"))
        self.assertFalse((self.folder / "new.qvt").exists())

    def test_an_interrupted_import_leaves_nothing(self):
        group = '<group name="g%d">' + '<double name="d">1</double>' * 20 + "</group>"
        self.document('<root name="r">' + "".join(group % i for i in range(20000)) + "</root>", "big.xml")
        before = sorted(os.listdir(self.folder))
        run = subprocess.Popen([QVT, "import", "big.xml", "new.qvt"], cwd=self.folder, stderr=subprocess.DEVNULL)
        while not any(name.endswith(".new") for name in os.listdir(self.folder)) and run.poll() is None:
            time.sleep(0.001)
        self.assertIsNone(run.poll(), "the import was done before it could be interrupted")

        run.send_signal(signal.SIGINT)

        self.assertEqual(run.wait(timeout=60), -signal.SIGINT)
        self.assertEqual(sorted(os.listdir(self.folder)), before)

    def test_repair_that_saves_nothing_says_so(self):
        (self.folder / "bad.qvt").write_bytes(self.before[:4096] + bytes(len(self.before) - 4096))
        run = self.run_tool("repair", "bad.qvt", "good.qvt")
        self.assertEqual(run.status, 4, run.err)
        self.assertTrue(run.err.endswith("(--salvage looks for records in every page)\n"), run.err)
        self.assertFalse((self.folder / "good.qvt").exists())


if __name__ == "__main__":
    unittest.main()

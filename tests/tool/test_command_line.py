import os
import pty
import subprocess

from tool import QVT, ToolTest

VERBS = ["import", "export", "tree", "show", "get", "set", "new", "rm", "mv", "cp", "merge", "stat", "schema", "units",
         "conforms", "check", "repair", "compact", "dump"]


class WrongUsage(ToolTest):
    def test_EndsWithStatusTwoAndOneHelpfulLine(self):
        self.document('<root name="r"/>')
        for arguments, words in (
                ([], "a verb is missing; there are import, export"),
                (["nonsense"], "no verb nonsense; there are import, export"),
                (["--nonsense"], "no verb --nonsense"),
                (["tree"], "STORE is required (see qvt tree --help)"),
                (["get", "model.xml"], "PATH is required (see qvt get --help)"),
                (["import", "model.xml"], "STORE is required (see qvt import --help)"),
                (["import"], "DOC is required"),
                (["set", "model.qvt"], "PATH is required"),
                (["new", "model.qvt", "a"], "KIND|TYPE is required"),
                (["rm", "model.qvt"], "PATH is required"),
                (["mv", "model.qvt", "a"], "NEWPATH is required"),
                (["cp", "model.qvt", "a"], "NEWPATH is required"),
                (["merge", "model.qvt", "a"], "SOURCE is required"),
                (["repair", "model.qvt"], "OUT is required"),
                (["compact", "model.qvt", "-o", "x"], "-o"),
                (["conforms", "model.xml", "g"], "CLASS is required"),
                (["tree", "model.xml", "a", "b"], "the following argument was not expected: b"),
                (["tree", "model.xml", "--nonsense"], "--nonsense"),
                (["tree", "model.xml", "-f", "yaml"], "yaml is none of text|json"),
                (["tree", "model.xml", "--color", "red"], "red is none of auto|always|never"),
                (["tree", "model.xml", "-d", "x"], "x is no number of levels"),
                (["tree", "model.xml", "-d", "-1"], "-1 is no number of levels"),
                (["export", "model.xml", "-f", "json"], "-f"),
                (["help", "nonsense"], "no verb nonsense"),
                (["help", "tree", "more"], "the following argument was not expected: more")):
            with self.subTest(arguments):
                result = self.run_tool(*arguments)
                self.assertEqual((result.status, result.out), (2, ""))
                self.assertEqual(result.err.count("\n"), 1, result.err)
                self.assertIn("qvt: error: ", result.err)
                self.assertIn(words, result.err)


class Help(ToolTest):
    def test_NamesEveryVerbAndTheStatuses(self):
        for arguments in (["-h"], ["--help"], ["help"]):
            text = self.done(*arguments).out
            for verb in VERBS:
                self.assertRegex(text, rf"(?m)^  {verb} ")
            for status in ("0 done", "1 no", "2 wrong", "3 the input", "4 the", "5 another", "6 an edit", "7 the", "70 a"):
                self.assertRegex(text, rf"(Exit status: |; |\n){status}\b", status)

    def test_IsThereForEachVerb(self):
        for verb in VERBS:
            text = self.done(verb, "--help").out
            self.assertIn(f"Usage: qvt {verb} ", text)
            self.assertEqual(self.done("help", verb).out, text)
            self.assertEqual(self.done(verb, "-h").out, text)

    def test_OfStatDefinesEveryNumberThatItPrints(self):
        self.document('<root name="r"/>')
        text = self.done("help", "stat").out
        for key, value in self.done("stat", "model.xml", "-f", "json").json.items():
            if isinstance(value, int) and key not in ("version", "nodes", "groups", "links", "primitives", "bytes"):
                self.assertRegex(text, rf"(?m)^  [a-zA-Z, ]*{key}", key)

    def test_OfHelpIsPrintedOnce(self):
        self.assertEqual(self.done("help", "--help").out.count("Usage: qvt help"), 1)

    def test_VersionIsPrinted(self):
        self.assertRegex(self.done("--version").out, r"^qvt \d+\.\d+\.\d+\n$")


class Progress(ToolTest):
    """Standard error is a terminal here; reading takes long only where the document is large."""

    def messages(self, *arguments):
        master, slave = pty.openpty()
        run = subprocess.Popen([QVT, *arguments], stdout=subprocess.DEVNULL, stderr=slave, cwd=self.folder)
        os.close(slave)
        out = b""
        try:
            while piece := os.read(master, 65536):
                out += piece
        except OSError:  # how a terminal ends
            pass
        os.close(master)
        self.assertEqual(run.wait(), 0)
        return out.decode()

    def test_IsNotShownForWhatIsQuick(self):
        self.document('<root name="r"/>')
        self.assertEqual(self.messages("tree", "model.xml"), "")

    def test_IsShownForWhatTakesLongAndWipedOutAgainAndNeverWhenQuiet(self):
        rows = "".join(f'<group name="g{i}"><double name="d">1</double></group>' for i in range(2000))
        said = ""
        times = 1
        while not said and times <= 1024:
            times *= 4
            groups = "".join(f'<group name="{i}">{rows}</group>' for i in range(times))
            self.document(f'<root name="r">{groups}</root>')
            said = self.messages("tree", "model.xml", "-d", "0")
        self.assertRegex(said, r"\rreading model\.xml \[[#.]{40}\] +\d+%")
        self.assertTrue(said.endswith("\r\x1b[K"), repr(said[-80:]))
        self.assertEqual(self.messages("tree", "model.xml", "-d", "0", "-q"), "")

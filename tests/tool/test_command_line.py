import os
import pty
import re
import shlex
import shutil
import subprocess
import time
import unittest

from tool import DOCUMENTS, QVT, SOURCE, ToolTest, read_terminal

VERBS = ["import", "export", "tree", "show", "get", "set", "new", "rm", "mv", "cp", "merge", "stat", "schema", "units",
         "conforms", "check", "repair", "compact", "dump", "find", "diff"]


class WrongUsage(ToolTest):
    def test_EndsWithStatusTwoAndOneHelpfulLine(self):
        self.document('<root name="r"/>')
        for arguments, words in (
                ([], "a verb is missing; there are import, export"),
                (["nonsense"], "no verb nonsense; there are import, export"),
                (["--nonsense"], "no option --nonsense; a verb comes first (see qvt --help)"),
                (["-d", "0", "tree", "model.xml"], "no option -d; a verb comes first"),
                ([""], 'no verb ""; there are import, export'),
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
                (["tree", "model.xml", "a", "b", ""], 'the following arguments were not expected: b ""'),
                (["tree", "--", "model.xml", "-d", "0"],
                 "the following argument was not expected: 0, as behind -- nothing is an option"),
                (["tree", "model.xml", "--nonsense"], "no option --nonsense (see qvt tree --help)"),
                (["tree", "model.xml", "--vales"], "no option --vales; did you mean --values? (see qvt tree --help)"),
                (["tree", "model.xml", "--vales=1"], "no option --vales; did you mean --values?"),
                (["diff", "model.xml"], "B is required (see qvt diff --help)"),
                (["diff", "model.xml", "model.xml", "a", "b", "c"], "the following argument was not expected: c"),
                (["find", "model.xml", "--name"], "--name"),
                (["find", "model.xml", "--class", "A;B"], "--class takes one class"),
                (["dump", "model.xml", "x"], "x is no offset"),
                (["tree", "model.xml", "-f", "yaml"], "yaml is none of text|json"),
                (["tree", "model.xml", "--color", "red"], "red is none of auto|always|never"),
                (["tree", "model.xml", "-d", "x"], "x is no number of levels"),
                (["tree", "model.xml", "-d", "-1"], "-1 is no number of levels"),
                (["tree", "model.xml", "-d", ""], '"" is no number of levels'),
                (["tree", "model.xml", "-d", "4294967296"], "4294967296 is too large; 999999999 levels are the most"),
                (["tree", "model.xml", "-f", ""], '"" is none of text|json'),
                (["dump", "model.xml", "0x100000000"], "0x100000000 is no offset: the highest are below 4294967295"),
                (["dump", "model.xml", " "], '" " is no offset (a number, as 12 or 0xc)'),
                (["new", "model.qvt", "a", ""], '"" is neither node, group, link or table nor a type'),
                (["check", "."], ". is a folder; check works on file stores (*.qvt)"),
                (["import", "model.xml", "x.db"], "x.db does not end in .qvt; import works on file stores (*.qvt)"),
                (["check", "model.xml"], "model.xml is a document; check works on file stores (*.qvt)"),
                (["tree", "-", "--schemas", "-"], "standard input can be read once only (see qvt tree --help)"),
                (["diff", "-", "-"], "standard input can be read once only"),
                (["merge", "model.qvt", "g", "-", "--schemas", "-"], "standard input can be read once only"),
                (["import", "-", "-", "model.qvt"], "standard input can be read once only"),
                (["export", "model.xml", "-f", "json"], "-f"),
                (["help", "nonsense"], "no verb nonsense"),
                (["help", "tree", "more"], "the following argument was not expected: more")):
            with self.subTest(arguments):
                result = self.run_tool(*arguments)
                self.assertEqual((result.status, result.out), (2, ""))
                self.assertEqual(result.err.count("\n"), 1, result.err)
                self.assertIn("qvt: error: ", result.err)
                self.assertIn(words, result.err)


    def test_IsAnEmptyWordWhereAFileOrANameIsWanted(self):
        self.document('<root name="r"/>')
        for arguments in (["tree", ""], ["check", ""], ["import", "", "model.qvt"], ["diff", "", "model.xml"],
                          ["diff", "model.xml", ""], ["repair", "", "x.qvt"], ["repair", "model.qvt", ""],
                          ["merge", "model.qvt", "g", ""], ["schema", "model.xml", ""], ["conforms", "model.xml", "g", ""],
                          ["tree", "model.xml", "-o", ""], ["tree", "model.xml", "--schemas", ""],
                          ["cp", "model.qvt", "a", "b", "--to", ""], ["repair", "model.qvt", "x.qvt", "--recover", ""],
                          ["new", "model.qvt", "a", "node", "--class", ""], ["set", "model.qvt", "a", "--unit", ""]):
            with self.subTest(arguments):
                result = self.run_tool(*arguments)
                self.assertEqual((result.status, result.out), (2, ""))
                self.assertRegex(result.err, rf"\Aqvt: error: [\w-]+: is empty \(see qvt {arguments[0]} --help\)\n\Z")

    def test_DoesNotKeepTheRootFromBeingNamedByNoPath(self):
        self.document('<root name="r"/>')
        self.assertEqual(self.done("show", "model.xml", "").lines[1], "name      r")


class Suggestions(ToolTest):
    """What is asked where something near was meant, and where nothing is near."""

    def setUp(self):
        super().setUp()
        self.document('<root name="plant"><table name="Types"><table name="Pump"><double name="power">1</double></table></table>'
                      '<group name="hall"><node name="pump_one" class="Types.Pump"/><node name="ümläut"/></group></root>')

    def said(self, *arguments):
        result = self.run_tool(*arguments)
        self.assertEqual((result.out, result.err.count("\n")), ("", 1), result.err)
        return result.err

    def test_AreVerbs(self):
        for typed, meant in (("tre", "tree"), ("SHOW", "show"), ("shwo", "show"), ("exprot", "export"), ("hlep", "help"),
                             ("conform", "conforms")):
            self.assertIn(f"no verb {typed}; did you mean {meant}?", self.said(typed))
        self.assertIn("no verb shwo; did you mean show?", self.said("help", "shwo"))

    def test_AreOptionsOfTheToolItself(self):
        for typed, meant in (("--verson", "--version"), ("--hlep", "--help")):
            self.assertEqual(self.said(typed), f"qvt: error: no option {typed}; did you mean {meant}? (see qvt --help)\n")

    def test_AreNotMadeOfWhatIsFarOff(self):
        for typed in ("frobnicate", "x", "te", "delete", "-"):
            self.assertNotIn("did you mean", self.said(typed))
        for path in ("hall.valve", "hal.x.y.z", "h", "hall.pump_one.weight", "nothing"):
            self.assertNotRegex(self.said("show", "model.xml", path), r"did you mean (?!hall\?)")

    def test_ArePathsWithTheNearestNameWhereTheyFail(self):
        for typed, words in (
                ("hal.pump_one.power", "nothing at hal.pump_one.power; did you mean hall.pump_one.power?"),
                ("hall.pump_oen.power", "though there is hall; did you mean hall.pump_one.power?"),
                ("hall.pump-one", "though there is hall; did you mean hall.pump_one?"),
                ("hall.Pump_One", "though there is hall; did you mean hall.pump_one?"),
                ("hall.pump_noe.none", "though there is hall; did you mean hall.pump_one?"),
                ("hall.umläut", "though there is hall; did you mean hall.ümläut?"),
                ("plant.hall.pump_one", "nothing at plant.hall.pump_one; did you mean hall.pump_one?")):
            self.assertTrue(self.said("show", "model.xml", typed).endswith(words + "\n"), typed)

    def test_AreClasses(self):
        for typed, meant in (("Types.Pmup", "Types.Pump"), ("Type.Pump", "Types.Pump"), ("Pump", "Types.Pump"),
                             ("Elsewhere.Pump", "Types.Pump")):
            self.assertIn(f"did you mean {meant}?", self.said("schema", "model.xml", typed))
            self.assertIn(f"did you mean {meant}?", self.said("conforms", "model.xml", "hall", typed))
        self.assertNotIn("did you mean", self.said("schema", "model.xml", "hal"))
        self.document('<root name="r"/>', "empty.xml")
        self.assertIn("did you mean Types.Pump?", self.said("schema", "empty.xml", "Types.Pumps", "--schemas", "model.xml"))

    def test_AreUnitsAndTypes(self):
        self.done("import", "model.xml", "model.qvt")
        self.assertIn("no unit Kilowat; did you mean Kilowatt?",
                      self.said("new", "model.qvt", "hall.x", "double", "--unit", "Kilowat"))
        self.assertIn("did you mean double?", self.said("new", "model.qvt", "hall.x", "duoble"))
        self.assertIn("did you mean group?", self.said("new", "model.qvt", "hall.x", "gruop"))
        self.assertIn("did you mean Velocity?", self.said("units", "Velicoty"))
        self.assertNotIn("did you mean", self.said("units", "Parsnip"))

    def test_InAWideGroupTakeNoTime(self):
        rows = "".join(f'<node name="the_name_{i}"/>' for i in range(25000))
        self.document(f'<root name="r"><group name="g">{rows}</group></root>')
        self.done("import", "model.xml", "wide.qvt")
        begin = time.monotonic()
        self.assertIn("did you mean g.the_name_", self.said("show", "wide.qvt", "g.teh_name_7"))
        asked = time.monotonic() - begin
        begin = time.monotonic()
        self.done("show", "wide.qvt", "g")
        self.assertLess(asked, 5 * (time.monotonic() - begin) + 2)


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

    def test_HasExamplesThatWorkForEachVerb(self):
        for name in ("pump.xml", "pump.lib.xml"):
            shutil.copy(DOCUMENTS / name, self.folder)
        self.document('<group name="hall"><node name="more"/></group>', "more.xml")
        self.done("import", "pump.lib.xml", "pump.xml", "begin.qvt")
        self.done("import", "pump.lib.xml", "other-begin.qvt")
        self.done("export", "begin.qvt", "-o", "plant.xml")
        for verb in VERBS:
            examples = re.findall(r"(?m)^  (qvt .*)$", self.done("help", verb).out.split("\nExamples:\n")[1])
            self.assertIn(len(examples), (1, 2, 3), verb)
            for example in examples:
                with self.subTest(example):
                    shutil.copy(self.folder / "begin.qvt", self.folder / "plant.qvt")
                    shutil.copy(self.folder / "begin.qvt", self.folder / "old.qvt")
                    shutil.copy(self.folder / "other-begin.qvt", self.folder / "other.qvt")
                    if example.startswith("qvt import pump.lib.xml"):
                        (self.folder / "plant.qvt").unlink()
                    if verb == "diff":
                        self.done("cp", "plant.qvt", "hall.p1", "hall.p3")
                        self.done("set", "plant.qvt", "hall.p1.power", "8")
                    self.assertEqual(example.split()[1], verb)
                    result = self.run_tool(*shlex.split(example)[1:])
                    self.assertEqual((result.status, result.err), (1 if verb == "diff" else 0, ""))
                    (self.folder / "sound.qvt").unlink(missing_ok=True)

    def test_OfHelpIsPrintedOnce(self):
        self.assertEqual(self.done("help", "--help").out.count("Usage: qvt help"), 1)

    def test_VersionIsPrinted(self):
        self.assertRegex(self.done("--version").out, r"^qvt \d+\.\d+\.\d+\n$")


class Manual(ToolTest):
    PAGE = SOURCE / "docs" / "qvt.1"

    def test_IsThePageThatTheToolPrints(self):
        self.assertEqual(self.PAGE.read_text(), self.done("__manual").out, "qvt __manual > docs/qvt.1 makes it anew")

    def words(self, text):
        return " ".join(text.split())

    def test_HasEveryVerbOptionAndExampleOfTheHelpAndNoOther(self):
        page = self.PAGE.read_text().replace("\\-", "-").replace("\\e", "\\")
        verbs = re.findall(r'(?m)^\.SS "(\w+)', page)
        self.assertEqual(sorted(verbs), sorted([*VERBS, "help"]))
        for verb, part in zip(verbs, re.split(r'(?m)^\.SS ', page)[1:]):
            text = self.done("help", verb).out
            options = re.findall(r"(?m)^  (?:-\w,)?(--[\w-]+)", text.split("\nExamples:")[0].split("\n\n\n")[0])
            for option in set(options) - {"--help"}:
                self.assertIn(option, part, verb)
            for option in set(re.findall(r"(?m)^\.B (?:-\w, )?(--[\w-]+)", part.split("\n.SH ")[0])):
                self.assertIn(option, text, verb)
            for example in re.findall(r"(?m)^  (qvt .*)$", text):
                self.assertIn(example, part)
            for status in ("70 a fault", "NO_COLOR", "LC_ALL"):
                self.assertIn(status, page)

    @unittest.skipUnless(shutil.which("groff"), "there is no groff")
    def test_IsFormattedWithoutAWarning(self):
        run = subprocess.run(["groff", "-ww", "-man", "-Tutf8", "-P-c", self.PAGE], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        text = self.words(run.stdout.decode())
        self.assertIn("--keep-going", text)
        self.assertIn("~ PATH: WHAT A -> B both have it: kind, type", text)
        self.assertIn("qvt find plant.qvt hall --name 'p*' --type node", text)

    @unittest.skipUnless(shutil.which("groff"), "there is no groff")
    def test_FitsTerminalsOfEightyColumns(self):
        for device in ("ascii", "utf8"):
            run = subprocess.run(["groff", "-ww", "-man", "-rLL=80n", "-T" + device, "-P-cbou", self.PAGE], check=True,
                                 stdout=subprocess.PIPE)
            self.assertEqual([line for line in run.stdout.decode().splitlines() if len(line) > 80], [])


class Progress(ToolTest):
    """Standard error is a terminal here; reading takes long only where the document is large."""

    def messages(self, *arguments, terminal="xterm"):
        master, slave = pty.openpty()
        run = subprocess.Popen([QVT, *arguments], stdout=subprocess.DEVNULL, stderr=slave, cwd=self.folder,
                               env={**os.environ, "TERM": terminal})
        os.close(slave)
        out = read_terminal(master)
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
        self.assertEqual(self.messages("tree", "model.xml", "-d", "0", terminal="dumb"), "")
        said = self.messages("import", "model.xml", "model.qvt")
        self.assertRegex(said, r"\rsaving model\.qvt \[\.{40}\]   0%")
        self.assertTrue(said.endswith("\r\x1b[K"), repr(said[-80:]))
        said = self.messages("export", "model.qvt", "-o", "out.xml")
        self.assertRegex(said, r"\rwriting out\.xml \[#[#.]{39}\] +\d+%")
        self.assertTrue(said.endswith("\r\x1b[K"), repr(said[-80:]))
        result = self.run_tool("export", "model.qvt", "-o", "quiet.xml")
        self.assertEqual(result.err, "")
        self.assertEqual((self.folder / "quiet.xml").read_bytes(), (self.folder / "out.xml").read_bytes())

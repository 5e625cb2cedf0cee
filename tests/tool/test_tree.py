import os
import pty
import subprocess

from tool import QVT, ToolTest, read_terminal

MODEL = """<root name="r" version="3">
<table name="Box"><default unit="Meter" type="double"/>
  <double name="w" units="Meter">1.5</double><double name="h" units="Meter">2</double>
  <table name="Lid"><bool name="open">1</bool></table></table>
<group name="g" class="Box">
  <double name="w">3</double>
  <node name="n"><int32 name="i">1 2 3</int32></node>
  <string name="s"><val>one</val><val>two</val></string>
  <link name="l" to="g.n"/>
</group></root>"""


class Drawing(ToolTest):
    def test_ShowsNamesKindsTypesClassesTargetsAndWhatIsInherited(self):
        self.document(MODEL)
        self.assertEqual(self.done("tree", "model.xml").out, """\
r: root, version 3
├── Box: table
│   ├── w: double
│   ├── h: double
│   └── Lid: table
│       └── open: bool
└── g: group [Box]
    ├── w: double (overridden)
    ├── h: double (inherited)
    ├── Lid: table (inherited)
    │   └── open: bool (inherited)
    ├── s: string
    ├── n: node
    │   └── i: int32
    └── l: link -> g.n
""")

    def test_ShowsValuesWithUnitsWhenAsked(self):
        self.document(MODEL)
        lines = self.done("tree", "model.xml", "g", "--values").lines
        self.assertIn("├── w: double = 3 Meter (overridden)", lines)
        self.assertIn("├── h: double = 2 Meter (inherited)", lines)
        self.assertIn('├── s: string = "one" …', lines)

    def test_BeginsAtAPath(self):
        self.document(MODEL)
        self.assertEqual(self.done("tree", "model.xml", "Box.Lid").lines, ["Lid: table", "└── open: bool"])

    def test_EndsAtTheDepthGiven(self):
        self.document(MODEL)
        self.assertEqual(self.done("tree", "model.xml", "-d", "0").lines, ["r: root, version 3"])
        self.assertEqual(self.done("tree", "model.xml", "-d", "1").lines,
                         ["r: root, version 3", "├── Box: table", "└── g: group [Box]"])

    def test_CutsLongValues(self):
        self.document('<root name="r"><group name="g"><uint16 name="n">' + " 7" * 1000 + "</uint16>"
                      '<string name="s">' + "x" * 1000 + "</string><binary name=\"b\">AAECAw==</binary></group></root>")
        lines = self.done("tree", "model.xml", "g", "--values").lines
        self.assertEqual(lines[1], "├── n: uint16 = " + "7 " * 16 + "… (1000)")
        self.assertEqual(lines[2], '├── s: string = "' + "x" * 60 + '…"')
        self.assertEqual(lines[3], "└── b: binary = 4 bytes")

    def test_AValueThatLiesElsewhereShowsItsUri(self):
        self.document('<group name="g"><double name="d" uri="http://x/y"/></group>')
        self.assertEqual(self.done("tree", "model.xml", "--values").lines[1], "└── d: double = <http://x/y>")

    def test_NothingReachesATerminalThatCouldMoveIt(self):
        self.document('<root name="r\u009b"><group name="g\u202e&#10;"><string name="s">a\u009b31m"\\&#13;</string>'
                      "</group></root>")
        result = self.done("tree", "model.xml", "--values")
        self.assertEqual(result.out, "r\\x9b: root, version 0\n└── g\\u202e\\n: group\n"
                                     '    └── s: string = "a\\x9b31m\\"\\\\\\r"\n')

    def test_ANameThatNoPathLeadsToIsStillDrawn(self):
        self.document('<root name="r"><group name="a.b"><group name="c"/></group></root>')
        self.assertEqual(self.done("tree", "model.xml").lines,
                         ["r: root, version 0", "└── a.b: group", "    └── c: group"])


class Locales(ToolTest):
    def lines(self, **environment):
        self.document('<root name="r"><group name="g"><string name="s">' + "x" * 100 + '</string><group name="ä"/></group>'
                      '<group name="h"/></root>')
        env = {key: value for key, value in os.environ.items() if key not in ("LC_ALL", "LC_CTYPE", "LANG")}
        run = subprocess.run([QVT, "tree", "model.xml", "--values"], stdout=subprocess.PIPE, cwd=self.folder,
                             env={**env, **environment}, check=True)
        return run.stdout.decode().splitlines()

    def test_ThatAreNotOfUtf8GetAscii(self):
        ascii_lines = ["r: root, version 0", "|-- g: group", '|   |-- s: string = "' + "x" * 60 + '..."', "|   `-- ä: group",
                       "`-- h: group"]
        for locale in ({"LC_ALL": "C"}, {"LC_CTYPE": "POSIX", "LANG": "C.UTF-8"}, {"LANG": "de_DE.ISO-8859-1"}):
            self.assertEqual(self.lines(**locale), ascii_lines, locale)

    def test_OfUtf8GetLines(self):
        for locale in ({}, {"LC_ALL": "C.UTF-8", "LANG": "C"}, {"LANG": "nl_NL.utf8"}, {"LC_ALL": "", "LANG": "en_US.UTF-8"}):
            lines = self.lines(**locale)
            self.assertEqual((lines[1], lines[2][-2:]), ("├── g: group", '…"'), locale)


class Json(ToolTest):
    def test_IsOneObjectWithNestedChildren(self):
        self.document(MODEL)
        tree = self.done("tree", "model.xml", "-f", "json").json
        self.assertEqual((tree["kind"], tree["name"]), ("root", "r"))
        box, group = tree["children"]
        self.assertEqual([child["name"] for child in box["children"]], ["w", "h", "Lid"])
        self.assertEqual(group["class"], "Box")
        self.assertEqual([(child["name"], child["inherited"], child["overridden"]) for child in group["children"][:3]],
                         [("w", False, True), ("h", True, False), ("Lid", True, False)])
        self.assertEqual(group["children"][-1]["target"], "g.n")

    def test_HasValuesOnlyWhenAsked(self):
        self.document(MODEL)
        plain = self.done("tree", "model.xml", "g.w", "-f", "json").json
        self.assertEqual(plain, {"path": "g.w", "kind": "primitive", "name": "w", "class": None, "type": "double", "unit": "Meter",
                                 "inherited": False, "overridden": True})
        valued = self.done("tree", "model.xml", "g.w", "-f", "json", "--values").json
        self.assertEqual(valued["value"], [3])

    def test_LeavesOutTheChildrenBelowTheDepth(self):
        self.document(MODEL)
        tree = self.done("tree", "model.xml", "-f", "json", "-d", "1").json
        self.assertEqual(len(tree["children"]), 2)
        self.assertNotIn("children", tree["children"][0])

    def test_CutsNoValue(self):
        self.document('<group name="g"><uint16 name="n">' + " 7" * 1000 + "</uint16></group>")
        tree = self.done("tree", "model.xml", "--values", "-f", "json").json
        self.assertEqual(tree["children"][0]["value"], [7] * 1000)


class Colours(ToolTest):
    def on_terminal(self, *arguments, **environment):
        master, slave = pty.openpty()
        env = {**os.environ, "TERM": "xterm", "NO_COLOR": "", **environment}
        run = subprocess.Popen([QVT, *arguments], stdout=slave, cwd=self.folder, env=env)
        os.close(slave)
        out = read_terminal(master)
        self.assertEqual(run.wait(), 0)
        return out

    def test_AreNotWrittenIntoAPipe(self):
        self.document(MODEL)
        self.assertNotIn("\x1b", self.done("tree", "model.xml").out)

    def test_AreWrittenToATerminal(self):
        self.document(MODEL)
        self.assertIn(b"\x1b[1mBox\x1b[0m", self.on_terminal("tree", "model.xml"))

    def test_AreNotWrittenWhereNoColorIsSetOrTheTerminalIsDumb(self):
        self.document(MODEL)
        self.assertNotIn(b"\x1b", self.on_terminal("tree", "model.xml", NO_COLOR="1"))
        self.assertNotIn(b"\x1b", self.on_terminal("tree", "model.xml", TERM="dumb"))

    def test_AndLinesFallBackTogetherOnAPoorTerminal(self):
        self.document(MODEL)
        out = self.on_terminal("tree", "model.xml", "--values", TERM="dumb", LC_ALL="C")
        self.assertTrue(out.isascii(), out)
        self.assertNotIn(b"\x1b", out)
        self.assertIn(b"|-- Box: table\r\n", out)

    def test_AreWrittenAlwaysOrNeverWhenSoAsked(self):
        self.document(MODEL)
        self.assertIn("\x1b", self.done("tree", "model.xml", "--color", "always").out)
        self.assertNotIn(b"\x1b", self.on_terminal("tree", "model.xml", "--color", "never"))

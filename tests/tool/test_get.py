import os
import pty
import subprocess

from tool import QVT, ToolTest


class Get(ToolTest):
    def value(self, element, *options):
        self.document(f'<root name="r"><table name="P"><double name="a">1</double><int8 name="b">2 3</int8></table>'
                      f'<group name="g">{element}</group></root>')
        return self.done("get", "model.xml", "g.x", *options).out

    def test_NumbersStandInOneLine(self):
        self.assertEqual(self.value('<int16 name="x">1 -2 3</int16>'), "1 -2 3\n")

    def test_NumbersHaveTheShortestFormThatReadsBack(self):
        self.assertEqual(self.value('<double name="x">0.1 1e300 123456789.125 3.0 -0</double>'),
                         "0.1 1e+300 123456789.125 3 -0\n")
        self.assertEqual(self.value('<scalar name="x">0.1 16777216 3.4028235e38</scalar>'),
                         "0.1 16777216 3.4028235e+38\n")

    def test_EveryIntegerTypeHasItsRange(self):
        for kind, text in (("int8", "-128 127"), ("uint8", "0 255"), ("int16", "-32768 32767"), ("uint16", "0 65535"),
                           ("int32", "-2147483648 2147483647"), ("uint32", "0 4294967295"), ("bool", "0 1"),
                           ("int64", "-9223372036854775808 9223372036854775807"), ("uint64", "0 18446744073709551615")):
            with self.subTest(kind):
                self.assertEqual(self.value(f'<{kind} name="x">{text}</{kind}>'), text + "\n")

    def test_VectorsAndMatricesAreTheirComponents(self):
        self.assertEqual(self.value('<matrix2x2 name="x">1 2 3 4</matrix2x2>'), "1 2 3 4\n")

    def test_TextsStandOneALineExactly(self):
        self.assertEqual(self.value('<string name="x"><val> a\u009b"\\ </val><val/><val>b</val></string>'),
                         ' a\u009b"\\ \n\nb\n')

    def test_ATerminalGetsNoControlCharacters(self):
        self.document('<group name="g"><string name="x">a\u009b31m\tb</string></group>')
        master, slave = pty.openpty()
        subprocess.run([QVT, "get", "model.xml", "g.x"], stdout=slave, cwd=self.folder, check=True)
        os.close(slave)
        self.assertEqual(os.read(master, 100), b"a\\x9b31m\\tb\r\n")
        os.close(master)

    def test_StructsStandOneALine(self):
        self.assertEqual(self.value('<struct name="x" type="P">1.5 2 3 4.5 5 6</struct>'), "1.5 2 3\n4.5 5 6\n")

    def test_BytesAreBase64(self):
        self.assertEqual(self.value('<binary name="x">AAECAw==</binary>'), "AAECAw==\n")

    def test_AnEmptyValueIsAnEmptyLine(self):
        self.assertEqual(self.value('<double name="x"/>'), "\n")

    def test_OfALinkIsItsTarget(self):
        self.assertEqual(self.value('<link name="x" to="a.b"/>'), "a.b\n")

    def test_InJson(self):
        self.document('<group name="g"><int8 name="x">1 2</int8><link name="l" to="a"/></group>')
        self.assertEqual(self.done("get", "model.xml", "g.x", "-f", "json").json, {
            "path": "g.x", "kind": "primitive", "name": "x", "class": None, "type": "int8", "unit": None,
            "inherited": False, "overridden": False, "locale": None, "uri": None, "count": 2, "value": [1, 2]})
        link = self.done("get", "model.xml", "g.l", "-f", "json").json
        self.assertEqual((link["path"], link["target"], link["value"]), ("g.l", "a", None))

    def test_OfAContainerOrTableIsRefused(self):
        self.document('<root name="r"><table name="t"/><group name="g"/></root>')
        for path, words in (("t", "t is a table and"), ("g", "g is a group and"), ("", "the root")):
            result = self.run_tool("get", "model.xml", path)
            self.assertEqual((result.status, result.out, result.err),
                             (3, "", f"model.xml: error: {words} has no value\n"))

    def test_OfAValueThatLiesElsewhereSaysNo(self):
        self.document('<group name="g"><double name="x" uri="http://x/y"/></group>')
        result = self.run_tool("get", "model.xml", "g.x")
        self.assertEqual((result.status, result.out, result.err),
                         (1, "", "model.xml: error: the value of g.x lies elsewhere: http://x/y\n"))

    def test_OfAStructWhoseClassIsNotKnownSaysThatItIsBase64(self):
        self.document('<root name="r"><table name="P"><double name="a">1</double></table></root>', "types.xml")
        self.document('<root name="r"><group name="g"><struct name="s" type="P">1.5</struct></group></root>')
        self.done("import", "model.xml", "model.qvt", "--schemas", "types.xml")
        words = ("model.qvt: warning: class P is not known, the struct is printed as Base64 "
                 "(--schemas STORE says where to look)\n")
        for verb in ("get", "show"):
            result = self.run_tool(verb, "model.qvt", "g.s")
            self.assertEqual((result.status, result.err), (0, words))
            self.assertIn("AAAAAAAA+D8=", result.out)
            self.assertEqual(self.done(verb, "model.qvt", "g.s", "-q").out, result.out)
        self.assertEqual(self.done("get", "model.qvt", "g.s", "--schemas", "types.xml").out, "1.5\n")

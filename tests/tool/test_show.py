from tool import ToolTest

MODEL = """<root name="r" version="2"><name locale="en-us">Model</name><name locale="de">Modell</name>
<table name="Pair"><double name="a">1</double><int32 name="b">2 3</int32></table>
<table name="Box"><default unit="Meter" type="double"/><default unit="Second" type="vec3"/>
  <double name="w" units="Meter">1.5</double></table>
<group name="g" class="Box">
  <name locale="en-us">Group</name>
  <double name="d" units="Inch" locale="de"><name locale="nl">Dee</name><val>0.1 -2.5e-300</val></double>
  <scalar name="f">0.1</scalar>
  <struct name="s" type="Pair">1.5 2 3 4.5 5 6</struct>
  <binary name="bytes">AAECAw==</binary>
  <string name="texts"><val>one</val><val></val><val>tw"o&#10;x</val></string>
  <bool name="yes">1 0 7</bool>
  <double name="far" uri="http://x/y"/>
  <link name="l" to="g.n"/><link name="lost" to="g.none"/><node name="n" class="Box"/>
</group></root>"""


class Text(ToolTest):
    def show(self, *path):
        self.document(MODEL)
        return self.done("show", "model.xml", *path).out

    def test_OfAPrimitive(self):
        self.assertEqual(self.show("g.d"), """\
path     g.d
kind     primitive
name     d
type     double
name nl  Dee
unit     Inch
locale   de
count    2
value    0.1 -2.5e-300
""")

    def test_OfTheRoot(self):
        self.assertEqual(self.show(), """\
kind        root
name        r
version     2
name en-us  Model
name de     Modell
children    3
""")

    def test_OfATableWithItsDefaults(self):
        self.assertEqual(self.show("Box"), """\
path      Box
kind      table
name      Box
default   Length: double in Meter
default   Time: vector3 in Second
children  1
""")

    def test_OfAStructFieldByField(self):
        self.assertEqual(self.show("g.s"), """\
path       g.s
kind       primitive
name       s
type       struct
class      Pair
count      32
value [0]  a = 1.5
value [0]  b = 2 3
value [1]  a = 4.5
value [1]  b = 5 6
""")

    def test_OfTextsOneALine(self):
        self.assertEqual(self.show("g.texts").splitlines()[-3:],
                         ['value  "one"', 'value  ""', 'value  "tw\\"o\\nx"'])

    def test_OfALinkSaysWhatItLeadsTo(self):
        self.assertEqual(self.show("g.l").splitlines()[-2:], ["target    g.n", "leads to  a node [Box]"])

    def test_OfALinkThatLeadsNowhere(self):
        self.assertEqual(self.show("g.lost").splitlines()[-1], "leads to  nothing")

    def test_OfAnInheritedMember(self):
        self.assertIn("flags  fixed, inherited\nunit   Meter\ncount  1\nvalue  1.5\n", self.show("g.n.w"))

    def test_OfAValueThatLiesElsewhere(self):
        self.assertEqual(self.show("g.far").splitlines()[-3:],
                         ["flags  uri", "uri    http://x/y", "count  0"])


class Json(ToolTest):
    def show(self, *path):
        self.document(MODEL)
        return self.done("show", "model.xml", *path, "-f", "json").json

    def test_HasTheSameKeysForEveryObject(self):
        keys = {"path", "kind", "name", "class", "type", "unit", "locale", "uri", "names", "inherited", "count", "value"}
        for path in ("", "g", "Box", "g.d", "g.l", "g.far"):
            with self.subTest(path):
                self.assertLessEqual(keys, set(self.show(path)))

    def test_OfAPrimitive(self):
        self.assertEqual(self.show("g.d"), {
            "path": "g.d", "kind": "primitive", "name": "d", "class": None, "type": "double", "unit": "Inch",
            "inherited": False, "overridden": False, "names": {"nl": "Dee"}, "flags": [], "locale": "de", "uri": None,
            "count": 2, "bytes": 16, "value": [0.1, -2.5e-300]})

    def test_OfAFloatHasNoDigitsThatItNeverHad(self):
        self.document(MODEL)
        self.assertIn("0.1\n", self.done("show", "model.xml", "g.f", "-f", "json").out)

    def test_OfAStructIsAnObjectForEach(self):
        shown = self.show("g.s")
        self.assertEqual((shown["class"], shown["count"]), ("Pair", 32))
        self.assertEqual(shown["value"], [{"a": 1.5, "b": [2, 3]}, {"a": 4.5, "b": [5, 6]}])

    def test_OfBytesIsBase64(self):
        self.assertEqual(self.show("g.bytes")["value"], "AAECAw==")

    def test_OfTextsIsAnArray(self):
        self.assertEqual(self.show("g.texts")["value"], ["one", "", 'tw"o\nx'])

    def test_OfABoolIsTrueOrFalseUnlessItIsNeither(self):
        self.assertEqual(self.show("g.yes")["value"], [True, False, 7])

    def test_OfNoFiniteNumberIsItsWord(self):
        self.document('<group name="g"><double name="d" dim="1"/><scalar name="f">1e39</scalar></group>')
        self.assertEqual(self.done("show", "model.xml", "g.d", "-f", "json").json["value"], [0])

    def test_OfALinkSaysWhetherItResolves(self):
        self.assertEqual((self.show("g.l")["target"], self.show("g.l")["resolves"]), ("g.n", True))
        self.assertEqual((self.show("g.lost")["target"], self.show("g.lost")["resolves"]), ("g.none", False))

    def test_OfTheRoot(self):
        shown = self.show()
        self.assertEqual((shown["kind"], shown["name"], shown["version"], shown["count"]), ("root", "r", 2, 3))
        self.assertEqual(shown["names"], {"en-us": "Model", "de": "Modell"})

    def test_OfATableHasItsDefaults(self):
        self.assertEqual(self.show("Box")["defaults"], [
            {"dimension": "Length", "unit": "Meter", "type": "double"},
            {"dimension": "Time", "unit": "Second", "type": "vector3"}])


class Paths(ToolTest):
    def test_ThatLeadNowhereSayHowFarTheyLead(self):
        self.document(MODEL)
        result = self.run_tool("show", "model.xml", "g.n.none.x")
        self.assertEqual((result.status, result.out, result.err),
                         (3, "", "model.xml: error: nothing at g.n.none.x, though there is g.n\n"))

    def test_DoNotGoOnBelowAValue(self):
        self.document(MODEL)
        result = self.run_tool("show", "model.xml", "g.d.x")
        self.assertEqual((result.status, result.err),
                         (3, "model.xml: error: nothing at g.d.x, though there is g.d\n"))

    def test_DoNotFollowLinks(self):
        self.document(MODEL)
        self.assertEqual(self.run_tool("show", "model.xml", "g.l.w").status, 3)

    def test_LeadThroughTables(self):
        self.document(MODEL)
        self.assertEqual(self.done("show", "model.xml", "Pair.a").lines[0], "path   Pair.a")

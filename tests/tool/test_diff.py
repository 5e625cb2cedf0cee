from tool import DOCUMENTS, ToolTest

TYPES = """<table name="Pump"><double name="power" units="Kilowatt">1.5</double><string name="maker">unknown</string></table>
<table name="Fan"><double name="power" units="Kilowatt">1.5</double><bool name="fast">1</bool></table>"""
MODEL = """<root name="r" version="3">{types}{table}<group name="g">
<name locale="en">Group</name><double name="d" units="Meter">1 2 3</double><string name="s">text</string>
<node name="p" class="Pump"><double name="power">7.5</double></node><link name="l" to="g.p"/></group></root>"""
TABLE = '<table name="cells"><default unit="Meter" type="double"/><int8 name="a">1</int8><int8 name="b">2</int8></table>'


class DiffTest(ToolTest):
    def diff(self, left, right, *arguments):
        """Of two documents, or of two ways to write a part of one: what differs."""
        self.document(left, "left.xml")
        self.document(right, "right.xml")
        result = self.run_tool("diff", "left.xml", "right.xml", *arguments)
        self.assertEqual((result.status, result.err), (1 if result.out else 0, ""))
        return result.lines

    def changed(self, before, after):
        """What changing this in the model makes differ."""
        left = MODEL.format(types=TYPES, table=TABLE)
        self.assertIn(before, left)
        return self.diff(left, left.replace(before, after))

    def inside(self, left, right, *arguments):
        return self.diff(*(f'<root name="r"><group name="g">{part}</group></root>' for part in (left, right)), *arguments)


class Equal(DiffTest):
    def test_DocumentsSayNothingAndEndWithZero(self):
        self.assertEqual(self.changed("<string", "<string"), [])

    def test_IsADocumentToTheStoreThatItWasReadInto(self):
        for name, schemas in (("gltf-small.xml", []), ("ifc-small.xml", ["--schemas", DOCUMENTS / "ifc-small.lib.xml"])):
            self.done("import", DOCUMENTS / name, name + ".qvt", *schemas)
            self.done("diff", DOCUMENTS / name, name + ".qvt", *schemas)

    def test_IsAStoreToItself(self):
        self.document(MODEL.format(types=TYPES, table=TABLE))
        self.done("import", "model.xml", "model.qvt")
        self.done("diff", "model.qvt", "model.qvt")
        self.assertEqual(self.done("diff", "model.qvt", "model.qvt", "-f", "json").json,
                         {"left": "model.qvt", "right": "model.qvt", "differences": [], "added": 0, "removed": 0,
                          "changed": 0, "equal": True})

    def test_IsWhatIsSpeltInAnotherWay(self):
        self.assertEqual(self.changed(">1 2 3<", ">1.0 2e0\n 3<"), [])


class Values(DiffTest):
    def test_AreToldWithUnitAndOrigin(self):
        self.assertEqual(self.changed(">7.5<", ">8<"),
                         ["~ g.p.power: value 7.5 Kilowatt (overridden) -> 8 Kilowatt (overridden)"])

    def test_ThatOverrideAClassAreTold(self):
        self.assertEqual(self.changed("<double name=\"power\">7.5</double>", ""),
                         ["~ g.p.power: value 7.5 Kilowatt (overridden) -> 1.5 Kilowatt (inherited)"])

    def test_ThatAreWrittenAsTheClassHasThemDifferInOriginAlone(self):
        self.assertEqual(self.changed(">7.5</double></node>", '>7.5</double><string name="maker">unknown</string></node>'),
                         ["~ g.p.maker: origin inherited -> overridden"])

    def test_OfAnotherClassDefinitionAreToldWhereTheyAreInherited(self):
        self.assertEqual(self.changed(">unknown<", ">nobody<"),
                         ['~ Pump.maker: value "unknown" -> "nobody"',
                          '~ g.p.maker: value "unknown" (inherited) -> "nobody" (inherited)'])

    def test_InAnotherUnitAreNotConverted(self):
        self.assertEqual(self.inside('<double name="d" units="Meter">1</double>', '<double name="d" units="CentiMeter">100</double>'),
                         ["~ g.d: value 1 Meter -> 100 CentiMeter"])
        self.assertEqual(self.inside('<double name="d" units="Meter">1</double>', '<double name="d">1</double>'),
                         ["~ g.d: value 1 Meter -> 1"])

    def test_OfAnotherTypeDifferInTheType(self):
        self.assertEqual(self.inside('<int8 name="d">1</int8>', '<int16 name="d">1</int16>'), ["~ g.d: type int8 -> int16"])

    def test_ThatLieElsewhereShowWhere(self):
        self.assertEqual(self.inside('<int8 name="d">1</int8>', '<int8 name="d" uri="x"/>'), ["~ g.d: value 1 -> <x>"])

    def test_ThatAreLongSayWhereTheyDiffer(self):
        left = " ".join(["7"] * 1000)
        self.assertEqual(self.inside(f'<int16 name="d">{left}</int16>', f'<int16 name="d">{left[:1000]}8{left[1001:]}</int16>'),
                         ["~ g.d: value differs from element 500 on (of 1000 and 1000)"])

    def test_OfMinusZeroAndZeroDiffer(self):
        self.assertEqual(self.inside('<double name="d">0</double>', '<double name="d">-0</double>'), ["~ g.d: value 0 -> -0"])

    def test_OfAnotherLocaleDifferInTheLocale(self):
        self.assertEqual(self.inside('<string name="d" locale="de">a</string>', '<string name="d">a</string>'),
                         ["~ g.d: locale de -> none"])

    def test_InTablesAreCells(self):
        self.assertEqual(self.changed('<int8 name="b">2</int8>', '<int8 name="b">3</int8>'), ["~ cells.b: value 2 -> 3"])


class Objects(DiffTest):
    def test_ThatOneSideHasAreCountedWithAllBelow(self):
        self.assertEqual(self.changed('<link name="l" to="g.p"/>', '<group name="n"><group name="m"/></group>'),
                         ["- g.l: link -> g.p", "+ g.n: group (2 objects)"])

    def test_OfAnotherClassSayWhatComesAndGoes(self):
        self.assertEqual(self.changed('class="Pump"', 'class="Fan"'),
                         ["~ g.p: class Pump -> Fan", '- g.p.maker: string = "unknown" (inherited)',
                          "+ g.p.fast: bool = 1 (inherited)"])

    def test_OfAnotherKindAreChangedWhereBothAreContainers(self):
        self.assertEqual(self.inside('<node name="n"/>', '<group name="n"/>'), ["~ g.n: kind node -> group"])

    def test_OfAnotherSortAreTwoThings(self):
        self.assertEqual(self.inside('<node name="n"/>', '<int8 name="n">1</int8>'),
                         ["- g.n: node", "+ g.n: int8 = 1"])

    def test_HaveDisplayNames(self):
        self.assertEqual(self.changed('<name locale="en">Group</name>', '<name locale="en">G</name><name locale="de">X</name>'),
                         ['~ g: name de none -> "X", en "Group" -> "G"'])

    def test_OfLinksHaveTargets(self):
        self.assertEqual(self.changed('to="g.p"', 'to="g.q"'), ["~ g.l: target g.p -> g.q"])

    def test_OfTablesHaveDefaults(self):
        lines = self.changed('<default unit="Meter" type="double"/>', "")
        self.assertEqual(len(lines), 1)
        self.assertTrue(lines[0].startswith("~ cells: defaults [{"), lines)

    def test_OfRootsHaveNameAndVersion(self):
        self.assertEqual(self.changed('name="r" version="3"', 'name="q" version="4"'),
                         ["~ the root: name r -> q", "~ the root: version 3 -> 4"])

    def test_BelowWhatIsGoneAreNotToldOneByOne(self):
        self.assertEqual(self.diff('<root name="r"><group name="g"><group name="h"/></group></root>', '<root name="r"/>'),
                         ["- g: group (2 objects)"])


class Order(DiffTest):
    LEFT = '<node name="a"/><node name="b"/><node name="c"/>'

    def test_IsADifferenceOfWhatHoldsThem(self):
        self.assertEqual(self.inside(self.LEFT, '<node name="c"/><node name="a"/><node name="b"/>'), ["~ g: order of children"])

    def test_IsNoneWhereItIsIgnored(self):
        self.assertEqual(self.inside(self.LEFT, '<node name="c"/><node name="a"/><node name="b"/>', "--ignore-order"), [])

    def test_IsNotChangedByWhatComesOrGoes(self):
        self.assertEqual(self.inside(self.LEFT, '<node name="x"/><node name="a"/><node name="c"/>'),
                         ["- g.b: node", "+ g.x: node"])

    def test_DoesNotKeepObjectsApart(self):
        self.assertEqual(self.inside('<node name="a"><int8 name="i">1</int8></node><node name="b"/>',
                                     '<node name="b"/><node name="a"><int8 name="i">2</int8></node>'),
                         ["~ g.a.i: value 1 -> 2", "~ g: order of children"])

    def test_OfManyTurnedRoundTakesNoTimeForEachPair(self):
        names = [f"n{i}" for i in range(3000)]
        left, right = ("".join(f'<node name="{name}"/>' for name in each) for each in (names, reversed(names)))
        self.assertEqual(self.inside(left, right), ["~ g: order of children"])


class Paths(DiffTest):
    PAIR = '<root name="r"><group name="a"><node name="n"/></group><group name="b"><node name="m"/></group></root>'

    def test_AreThoseOfTheLeftSide(self):
        self.assertEqual(self.diff(self.PAIR, self.PAIR, "a", "b"), ["- a.n: node", "+ a.m: node"])

    def test_AreOneForBothSidesUnlessTwoAreGiven(self):
        self.assertEqual(self.diff(self.PAIR, self.PAIR, "a"), [])

    def test_ThatLeadNowhereAreAnError(self):
        self.document(self.PAIR)
        for arguments in (["none"], ["a", "none"]):
            self.assertEqual(self.run_tool("diff", "model.xml", "model.xml", *arguments).status, 3)

    def test_MayLieInOneStore(self):
        self.document(self.PAIR)
        self.done("import", "model.xml", "model.qvt")
        self.assertEqual(self.run_tool("diff", "model.qvt", "model.qvt", "a", "b").lines, ["- a.n: node", "+ a.m: node"])


class Answers(DiffTest):
    def json(self, *arguments):
        left = MODEL.format(types=TYPES, table=TABLE)
        self.document(left, "left.xml")
        self.document(left.replace("7.5", "8").replace('<link name="l" to="g.p"/>', '<group name="n"/>'), "right.xml")
        result = self.run_tool("diff", "left.xml", "right.xml", "-f", "json", *arguments)
        self.assertEqual((result.status, result.err), (1, ""))
        return result.json

    def test_InJsonHaveWhatIsChanged(self):
        answer = self.json()
        self.assertEqual((answer["added"], answer["removed"], answer["changed"], answer["equal"]), (1, 1, 1, False))
        changed, removed, added = answer["differences"]
        self.assertEqual((changed["path"], changed["change"], changed["type"]), ("g.p.power", "changed", "double"))
        self.assertEqual(changed["changes"], [{"what": "value", "from": [7.5], "to": [8]}])
        self.assertEqual((removed["path"], removed["change"], removed["objects"]), ("g.l", "removed", 1))
        self.assertEqual((added["path"], added["change"], added["kind"]), ("g.n", "added", "group"))

    def test_InJsonHaveEachChangeByItself(self):
        self.document('<root name="r"><group name="g"><int8 name="d" units="Meter">1</int8></group></root>', "left.xml")
        self.document('<root name="r"><group name="g"><int8 name="d" uri="x"/></group></root>', "right.xml")
        changes = self.run_tool("diff", "left.xml", "right.xml", "-f", "json").json["differences"][0]["changes"]
        self.assertEqual(changes, [{"what": "unit", "from": "Meter", "to": None}, {"what": "uri", "from": None, "to": "x"},
                                   {"what": "value", "from": [1], "to": None}])

    def test_WhenQuietAreTheStatusAlone(self):
        self.document('<root name="r"/>', "left.xml")
        self.document('<root name="q"/>', "right.xml")
        result = self.run_tool("diff", "left.xml", "right.xml", "-q")
        self.assertEqual((result.status, result.out, result.err), (1, "", ""))

    def test_HaveColoursWhereAsked(self):
        self.document('<root name="r"><group name="a"/></root>', "left.xml")
        self.document('<root name="r"><group name="b"/></root>', "right.xml")
        lines = self.run_tool("diff", "left.xml", "right.xml", "--color", "always").lines
        self.assertEqual([line[:7] for line in lines], ["\x1b[31m- ", "\x1b[32m+ "])

    def test_OfADocumentWithReportsEndWithOne(self):
        self.document('<root name="r"><nonsense/></root>', "left.xml")
        self.document('<root name="r"/>', "right.xml")
        result = self.run_tool("diff", "left.xml", "right.xml")
        self.assertEqual((result.status, result.out), (1, ""))

    def test_OfWhatIsNotThereAreErrors(self):
        self.document('<root name="r"/>')
        self.assertEqual(self.run_tool("diff", "model.xml", "none.xml").status, 3)
        self.assertEqual(self.run_tool("diff", "-", "-").status, 2)

    def test_DoNotLetATextMoveTheTerminal(self):
        self.assertEqual(self.inside('<string name="s">a\u009b</string>', '<string name="s">\u202e</string>'),
                         ['~ g.s: value "a\\x9b" -> "\\u202e"'])


class Size(DiffTest):
    def test_OfAnyDepthTakesNoStack(self):
        depth = 3000
        for name, value in (("left.xml", 1), ("right.xml", 2)):
            self.document('<root name="r">' + '<group name="g">' * depth + f'<int8 name="i">{value}</int8>' +
                          "</group>" * depth + "</root>", name)
        result = self.run_tool("diff", "left.xml", "right.xml", stack=256 * 1024)
        self.assertEqual((result.status, result.lines), (1, ["~ " + "g." * depth + "i: value 1 -> 2"]))

    def test_DoesNotGrowTheMemoryWhereBothHaveTheSameOrder(self):
        count = 30000
        rows = "".join(f'<int8 name="a{i}">1</int8>' for i in range(count))
        self.document(f'<root name="r"><group name="g">{rows}</group></root>')
        self.done("import", "model.xml", "model.qvt")
        one = self.done("stat", "model.qvt", measure=True).peak
        both = self.done("diff", "model.qvt", "model.qvt", measure=True).peak
        self.assertLess(both - one, 64 << 20)

import time

from tool import ToolTest

MODEL = """<root name="r">
<table name="Base"><double name="w" units="Meter">1</double></table>
<table name="Box" class="Base"><bool name="lid">1</bool></table>
<table name="Crate" class="Box"/>
<table name="Pair"><double name="a">1</double><double name="b">2</double></table>
<group name="g" class="Base">
  <node name="crate" class="Crate"/><node name="box" class="Box"/><node name="plain"/>
  <node name="ring"/><link name="l" to="g.box"/>
  <double name="inches" units="Inch">100 200</double><double name="watts" units="Watt">100</double>
  <double name="bare">100</double><scalar name="tenth">0.1</scalar>
  <uint64 name="large">18446744073709551615</uint64><int64 name="odd">9007199254740993</int64>
  <double name="age" units="Month">3</double><double name="years" units="Year">3</double>
  <double name="cold" units="DegreeCelsius">-40</double>
  <string name="text"><val>Acme Pumps</val><val>second</val></string><string name="ümläut">ä</string>
  <struct name="pair" type="Pair">100 100</struct><binary name="bytes">AAECAw==</binary>
  <double name="far" units="Meter" uri="x"/>
  <group name="deep"><group name="deeper"><int8 name="i">5</int8></group></group>
</group></root>"""


class FindTest(ToolTest):
    def found(self, *arguments, text=MODEL):
        self.document(text)
        result = self.run_tool("find", "model.xml", *arguments)
        self.assertEqual((result.status, result.err), (0 if result.out else 1, ""))
        return result.lines


class Names(FindTest):
    def test_AreMatchedWhole(self):
        self.assertEqual(self.found("--name", "box"), ["g.box"])
        self.assertEqual(self.found("--name", "*in*"), ["g.inches", "g.plain", "g.ring"])

    def test_TakeSetsAndSingleCharacters(self):
        self.assertEqual(self.found("--name", "[a-c]o?"), ["g.box"])
        self.assertEqual(self.found("g.deep", "--name", "[!a-h]"), ["g.deep.deeper.i"])
        self.assertEqual(self.found("g.deep", "--name", "[!a-i]"), [])

    def test_CountCharactersNotBytes(self):
        self.assertEqual(self.found("--name", "?ml?ut"), ["g.ümläut"])

    def test_OfNoObjectFindNothingAndSayNo(self):
        self.assertEqual(self.found("--name", "BOX"), [])

    def test_WithManyStarsTakeNoTime(self):
        self.document(f'<root name="r"><group name="{"a" * 2000}"/></root>')
        begin = time.monotonic()
        self.run_tool("find", "model.xml", "--name", "*a" * 30 + "b")
        self.assertLess(time.monotonic() - begin, 5)

    def test_ThatNoPathCanReachAreFoundAllTheSame(self):
        self.assertEqual(self.found(text='<root name="r"><group name="a.b"><group name="c"/></group></root>'),
                         ["a.b", "a.b.c"])


class Classes(FindTest):
    def test_FindObjectsOfTheClassAndOfThoseThatComeDownFromIt(self):
        self.assertEqual(self.found("--class", "Base"), ["Box", "Crate", "g", "g.crate", "g.box"])
        self.assertEqual(self.found("--class", "Box"), ["Crate", "g.crate", "g.box"])
        self.assertEqual(self.found("--class", "Crate"), ["g.crate"])

    def test_ThatComeDownFromEachOtherInTwoStoresAreFound(self):
        for name, above in (("Ring1", "Ring2"), ("Ring2", "Ring1")):
            self.document(f'<root name="t"><table name="{above}"/></root>', "types.xml")
            self.document(f'<root name="r"><table name="{name}" class="{above}"/></root>')
            self.done("import", "model.xml", name + ".qvt", "--schemas", "types.xml")
        for wanted in ("Ring1", "Ring2"):
            self.assertEqual(self.done("find", "Ring1.qvt", "--schemas", "Ring2.qvt", "--class", wanted).lines, ["Ring1"])

    def test_FindStructs(self):
        self.assertEqual(self.found("--class", "Pair"), ["g.pair"])

    def test_OfOtherStoresAreKnown(self):
        self.document(MODEL, "types.xml")
        self.document('<root name="r"><node name="n" class="Crate"/></root>')
        self.assertEqual(self.done("find", "model.xml", "--class", "Base", "--schemas", "types.xml").lines, ["n"])

    def test_ThatNobodyKnowsAreAnErrorWithTheOneThatWasMeant(self):
        self.document(MODEL)
        result = self.run_tool("find", "model.xml", "--class", "Bsae")
        self.assertEqual((result.status, result.out, result.err),
                         (3, "", "model.xml: error: no class Bsae, nor in the stores of --schemas; did you mean Base?\n"))

    def test_ThatNobodyKnowsAreFoundWhereObjectsNameThem(self):
        self.document(MODEL, "types.xml")
        self.document('<root name="r"><node name="n" class="Crate"/></root>')
        self.done("import", "model.xml", "model.qvt", "--schemas", "types.xml")
        self.assertEqual(self.done("find", "model.qvt", "--class", "Crate").lines, ["n"])

    def test_ThatNobodyKnowsMayComeDownAndAreTold(self):
        self.document(MODEL, "types.xml")
        self.document('<root name="r"><node name="n" class="Base"/><node name="m" class="Crate"/></root>')
        self.done("import", "model.xml", "model.qvt", "--schemas", "types.xml")
        result = self.run_tool("find", "model.qvt", "--class", "Base")
        self.assertEqual((result.status, result.lines, result.err), (
            1, ["n"], "model.qvt: error: class Crate is not known (--schemas STORE says where to look)\n"))
        self.assertEqual(self.done("find", "model.qvt", "--class", "Base", "--schemas", "types.xml").lines, ["n", "m"])

    def test_ThatItComesDownFromItselfNeedNotBeKnown(self):
        self.document(MODEL, "types.xml")
        self.document('<root name="r"><table name="Tin" class="Box"/><node name="n" class="Tin"/><node name="m" class="Box"/></root>')
        self.done("import", "model.xml", "model.qvt", "--schemas", "types.xml")
        self.assertEqual(self.done("find", "model.qvt", "--class", "Tin").lines, ["n"])

    def test_OfADocumentAreToldOnce(self):
        self.document('<root name="r"><table name="Base"/><node name="m" class="Crate"/><node name="n" class="Base"/></root>')
        result = self.run_tool("find", "model.xml", "--class", "Base")
        self.assertEqual((result.status, result.lines), (1, ["n"]))
        self.assertEqual(result.err.count("Crate is not known"), 1)

    def test_InALongChainTakeNoTime(self):
        count = 200
        tables = "".join(f'<table name="T{i}" class="T{i - 1}"/>' for i in range(1, count))
        nodes = "".join(f'<node name="n{i}" class="T{i}"/>' for i in reversed(range(count)))
        self.assertEqual(len(self.found("--class", "T0", text=f'<root name="r"><table name="T0"/>{tables}{nodes}</root>')),
                         2 * count - 1)


class Types(FindTest):
    def test_AreKindsAndTypesOfPrimitives(self):
        self.assertEqual(self.found("--type", "link"), ["g.l"])
        self.assertEqual(self.found("--type", "scalar"), ["g.tenth"])
        self.assertEqual(self.found("g.deep", "--type", "primitive"), ["g.deep.deeper.i"])

    def test_ThatAreNoneAreWrongUsage(self):
        self.document(MODEL)
        result = self.run_tool("find", "model.xml", "--type", "nod")
        self.assertEqual((result.status, result.err),
                         (2, "qvt: error: nod is neither node, group, link or table nor a type; did you mean node?\n"))


    def test_ThatAreEmptyAreWrongUsage(self):
        self.document(MODEL)
        for option in ("--name", "--class", "--type", "--unit", "--value"):
            result = self.run_tool("find", "model.xml", option, "")
            self.assertEqual((result.status, result.out, result.err),
                             (2, "", f"qvt: error: {option}: is empty (see qvt find --help)\n"))


class Values(FindTest):
    def test_AreComparedInEveryUnitOfTheDimension(self):
        self.assertEqual(self.found("--value", "> 5 Meter"), ["g.inches"])
        self.assertEqual(self.found("--value", "= 508 CentiMeter"), ["g.inches"])
        self.assertEqual(self.found("--value", ">= 5.08 Meter"), ["g.inches"])
        self.assertEqual(self.found("--value", "> 5.08 Meter"), [])
        self.assertEqual(self.found("g", "--value", "<= 1 Meter"), ["g.w", "g.crate.w", "g.box.w"])
        self.assertEqual(self.found("--value", "= 0.1 Kilowatt"), ["g.watts"])
        self.assertEqual(self.found("--value", "= -40 DegreeFahrenheit"), ["g.cold"])
        self.assertEqual(self.found("--value", "= 233.15 DegreeKelvin"), ["g.cold"])

    def test_WithoutAUnitAreComparedAsTheyAre(self):
        self.assertEqual(self.found("--value", "100"), ["g.inches", "g.watts", "g.bare"])
        self.assertEqual(self.found("--value", "== 100", "--unit", "Watt"), ["g.watts"])

    def test_AreMetByOneOfSeveralNumbers(self):
        self.assertEqual(self.found("--value", "= 200"), ["g.inches"])
        self.assertEqual(self.found("--value", "!= 100", "--unit", "Inch"), ["g.inches"])
        self.assertEqual(self.found("--value", "!= 100", "--unit", "Watt"), [])

    def test_AreExactForLargeNumbersAndForScalars(self):
        self.assertEqual(self.found("--value", "= 18446744073709551615"), ["g.large"])
        self.assertEqual(self.found("--value", "= 18446744073709551614"), [])
        self.assertEqual(self.found("--value", "= 9007199254740993"), ["g.odd"])
        self.assertEqual(self.found("--value", "= 0.1"), ["g.tenth"])

    def test_AreFoundAsTheyAreWritten(self):
        numbers = ["5.1", "0.1", "-4.2", "1e300", "100.1", "3.4e38", "9007199254740993", "0.30000000000000004"]
        values = "".join(f'<double name="d{i}" units="Kilowatt">{number}</double>' for i, number in enumerate(numbers))
        text = f'<root name="r"><group name="g">{values}<vector2 name="v">5.2 0.3</vector2></group></root>'
        for i, number in enumerate(numbers):
            self.assertEqual(self.found("--value", f"= {number} Kilowatt", text=text), [f"g.d{i}"])
            self.assertNotIn(f"g.d{i}", self.found("--value", f"< {number}", text=text))
            self.assertNotIn(f"g.d{i}", self.found("--value", f"> {number}", text=text))
        self.assertEqual(self.found("--value", "0.3", text=text), ["g.v"])
        self.assertEqual(self.found("--value", "> 1e400", text=text), [])

    def test_AreEqualWhereTheOtherScaleBegins(self):
        text = '<root name="r"><group name="g"><double name="ice" units="DegreeCelsius">0</double></group></root>'
        for operator, expected in (("=", ["g.ice"]), ("<=", ["g.ice"]), (">=", ["g.ice"]), ("<", []), (">", [])):
            self.assertEqual(self.found("--value", f"{operator} 32 DegreeFahrenheit", text=text), expected)

    def test_OfTextsMatchOrAreEqual(self):
        self.assertEqual(self.found("--value", "Acme*"), ["g.text"])
        self.assertEqual(self.found("--value", "sec?nd"), ["g.text"])
        self.assertEqual(self.found("--value", "= Acme Pumps"), ["g.text"])
        self.assertEqual(self.found("--value", "= Acme*"), [])
        self.assertEqual(self.found("--value", "!= ä"), ["g.text"])

    def test_OfBoolsAreWords(self):
        self.assertEqual(self.found("g.box", "--value", "true"), ["g.box.lid"])
        self.assertEqual(self.found("g.box", "--value", "false"), [])

    def test_InUnitsOfUnknownSizeAreComparedWithThemselvesAlone(self):
        self.document(MODEL)
        self.assertEqual(self.run_tool("find", "model.xml", "--value", "= 3 Month").lines, ["g.age"])
        result = self.run_tool("find", "model.xml", "--value", "= 36 Month")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err, "model.xml: warning: values in Year were not compared with one in Month: how they "
                                     "relate is not known\n")

    def test_ThatAreNoConditionsAreWrongUsage(self):
        self.document(MODEL)
        for condition, words in (("> x", '--value > x: "x" is no number to compare with'),
                                 ("<", '--value <: "" is no number to compare with'),
                                 ("> 5 Metre", "--value > 5 Metre: no unit Metre; did you mean Meter?"),
                                 (">5Metre", '--value >5Metre: "5Metre" is no number to compare with; did you mean "5 Meter"?'),
                                 ("<= 2.5Inch", '--value <= 2.5Inch: "2.5Inch" is no number to compare with; did you mean '
                                                '"2.5 Inch"?'),
                                 ("> 5Parsnip", '--value > 5Parsnip: "5Parsnip" is no number to compare with')):
            result = self.run_tool("find", "model.xml", "--value", condition)
            self.assertEqual((result.status, result.out, result.err), (2, "", f"qvt: error: {words}\n"))


class Answers(FindTest):
    def test_AreAllBelowAPathAndItself(self):
        self.assertEqual(self.found("g.deep"), ["g.deep", "g.deep.deeper", "g.deep.deeper.i"])

    def test_MeetAllThatIsAsked(self):
        self.assertEqual(self.found("--class", "Base", "--type", "node", "--name", "c*"), ["g.crate"])

    def test_ShowValuesWhenAsked(self):
        self.assertEqual(self.found("g.box", "--values"), ["g.box", "g.box.w = 1 Meter (inherited)",
                                                           "g.box.lid = 1 (inherited)"])

    def test_InJsonAreObjects(self):
        self.document(MODEL)
        found = self.done("find", "model.xml", "--unit", "Inch", "-f", "json").json["found"]
        self.assertEqual(found, [{"path": "g.inches", "kind": "primitive", "name": "inches", "class": None,
                                  "type": "double", "unit": "Inch", "inherited": False, "overridden": False}])
        valued = self.done("find", "model.xml", "--unit", "Inch", "--values", "-f", "json").json["found"]
        self.assertEqual(valued[0]["value"], [100, 200])

    def test_InJsonOfNothingAreAnEmptyArray(self):
        self.document(MODEL)
        result = self.run_tool("find", "model.xml", "--name", "none", "-f", "json")
        self.assertEqual((result.status, result.json), (1, {"found": []}))

    def test_OfAnObjectThatIsNotThereAreAnError(self):
        self.document(MODEL)
        self.assertEqual(self.run_tool("find", "model.xml", "none").status, 3)

    def test_OfADocumentWithReportsHaveItsStatus(self):
        self.document('<root name="r"><group name="g"/><nonsense/></root>')
        result = self.run_tool("find", "model.xml")
        self.assertEqual((result.status, result.out), (1, "g\n"))

    def test_AreFoundAtAnyDepth(self):
        depth = 3000
        self.document('<root name="r">' + '<group name="g">' * depth + '<int8 name="i">1</int8>' + "</group>" * depth +
                      "</root>")
        lines = self.done("find", "model.xml", "--type", "int8", stack=256 * 1024).lines
        self.assertEqual(lines, ["g." * depth + "i"])

    def test_OfAStoreAreThoseOfItsDocument(self):
        self.document(MODEL)
        self.done("import", "model.xml", "model.qvt")
        self.assertEqual(self.done("find", "model.qvt", "--values").out, self.done("find", "model.xml", "--values").out)

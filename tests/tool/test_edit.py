from tool import ToolTest

MODEL = """<root name="r" version="2"><table name="Box"><double name="w" units="Meter">1.5</double>
<string name="note">empty</string><table name="Lid"><bool name="open">1</bool></table></table>
<table name="Pair"><double name="a">1</double><int16 name="b">2 3</int16></table>
<table name="Said"><string name="word">a</string></table>
<group name="g" class="Box"><double name="d" units="Inch" locale="de"><name locale="nl">Dee</name><val>1 2</val></double>
<string name="t">one</string><vector3 name="v">1 2 3</vector3><binary name="bytes">AAEC</binary>
<struct name="s" type="Pair">1 2 3</struct><bool name="yes">1</bool><double name="far" uri="http://x/y"/>
<table name="own"><int8 name="i">1</int8></table><node name="n"><int8 name="j">4</int8></node><link name="l" to="g.n"/>
</group><group name="h"/></root>"""


class EditTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.document(MODEL)
        self.done("import", "model.xml", "model.qvt")

    def edit(self, verb, *arguments):
        self.assertEqual(self.done(verb, "model.qvt", *arguments).out, "")
        self.done("check", "model.qvt", "-q")

    def refuse(self, status, words, verb, *arguments):
        """The tool says no, and the file keeps its bytes."""
        before = (self.folder / "model.qvt").read_bytes()
        result = self.run_tool(verb, "model.qvt", *arguments)
        self.assertEqual((result.status, result.out, result.err), (status, "", words + "\n"))
        self.assertEqual((self.folder / "model.qvt").read_bytes(), before)

    def get(self, path):
        return self.done("get", "model.qvt", path).out.removesuffix("\n")

    def show(self, path):
        return self.done("show", "model.qvt", path, "-f", "json").json

    def children(self, path):
        node = self.done("tree", "model.qvt", path, "-d", "1", "-f", "json").json
        return [each["name"] for each in node["children"]]


class Set(EditTest):
    def test_TakesNumbersOneByOneOrAsGetPrintsThem(self):
        for words in (["3", "-4.5", "1e300"], ["3 -4.5 1e300"]):
            self.edit("set", "g.d", *words)
            self.assertEqual(self.get("g.d"), "3 -4.5 1e+300")

    def test_ReplacesTheWholeValue(self):
        self.edit("set", "g.d", "7")
        self.assertEqual(self.show("g.d")["value"], [7])
        self.edit("set", "g.d", "")
        self.assertEqual(self.show("g.d")["count"], 0)

    def test_KeepsEveryThingElse(self):
        before = self.show("g.d")
        self.edit("set", "g.d", "7", "8")
        self.assertEqual(self.show("g.d"), {**before, "value": [7, 8]})

    def test_TakesEveryNumberTypeToItsLimits(self):
        for kind, most, beyond in (("int8", "-128 127", "128"), ("uint8", "0 255", "-1"), ("int16", "-32768 32767", "32768"),
                                   ("uint16", "0 65535", "65536"), ("int32", "-2147483648 2147483647", "2147483648"),
                                   ("uint32", "0 4294967295", "4294967296"), ("bool", "0 1", "yes"),
                                   ("int64", "-9223372036854775808 9223372036854775807", "9223372036854775808"),
                                   ("uint64", "0 18446744073709551615", "1.5"), ("scalar", "0.1 inf", "1e40"),
                                   ("double", "0.1 -inf", "1e400")):
            with self.subTest(kind):
                self.edit("new", "h." + kind, kind)
                self.edit("set", "h." + kind, "--", *most.split())
                self.assertEqual(self.get("h." + kind), most)
                why = "no number of" if beyond in ("yes", "1.5") else "out of the range of"
                self.refuse(2, f"qvt: error: {beyond} is {why} type {kind}", "set", "h." + kind, "--", beyond)

    def test_TakesTrueAndFalse(self):
        self.edit("set", "g.yes", "true", "false", "1")
        self.assertEqual(self.get("g.yes"), "1 0 1")

    def test_TakesTextsOneAWord(self):
        self.edit("set", "g.t", "--", "ä €", "", "-x")
        self.assertEqual(self.show("g.t")["value"], ["ä €", "", "-x"])
        self.edit("set", "g.t", "short")
        self.assertEqual(self.show("g.t")["value"], ["short"])

    def test_TakesVectorsAsTheirComponents(self):
        self.edit("set", "g.v", "1", "2", "3", "4", "5", "6")
        self.assertEqual(self.get("g.v"), "1 2 3 4 5 6")
        self.refuse(2, "qvt: error: a vector3 takes 3 numbers, and here are 2", "set", "g.v", "1", "2")
        self.refuse(2, "qvt: error: 1e999 is out of the range of a vector3", "set", "g.v", "1", "1e999", "2")
        self.refuse(2, "qvt: error: 1e is no number of a vector3", "set", "g.v", "1", "1e", "2")

    def test_TakesBytesAsBase64(self):
        self.edit("set", "g.bytes", "/+8=")
        self.assertEqual(self.get("g.bytes"), "/+8=")
        self.refuse(2, "qvt: error: the value is no Base64", "set", "g.bytes", "A!")

    def test_TakesStructsAsTheNumbersOfTheirFields(self):
        self.edit("set", "g.s", "0.5", "-1", "-2", "4.5", "5", "6")
        self.assertEqual(self.show("g.s")["value"], [{"a": 0.5, "b": [-1, -2]}, {"a": 4.5, "b": [5, 6]}])
        self.refuse(2, "qvt: error: a struct of this class takes 3 numbers, and here are 2", "set", "g.s", "1", "2")
        self.refuse(2, "qvt: error: 70000 is out of the range of type int16", "set", "g.s", "1", "2", "70000")

    def test_OfAStructTakesNoTextAndNoUnknownClass(self):
        self.document('<root name="t"><table name="Far"><double name="a">1</double></table></root>', "types.xml")
        self.done("new", "model.qvt", "h.far", "struct", "1", "--class", "Far", "--schemas", "types.xml")
        self.refuse(3, "qvt: error: class Far is not known", "set", "h.far", "2")
        self.refuse(2, "qvt: error: the field word holds no numbers, and only these can be given",
                    "new", "h.said", "struct", "1", "2", "--class", "Said")

    def test_ReplacesAUriAndMakesOne(self):
        self.edit("set", "g.far", "2.5")
        self.assertEqual((self.show("g.far")["uri"], self.get("g.far")), (None, "2.5"))
        self.edit("set", "g.far", "--uri", "http://z")
        self.assertEqual((self.show("g.far")["uri"], self.show("g.far")["value"]), ("http://z", None))

    def test_OfALinkIsItsTarget(self):
        self.edit("set", "g.l", "h")
        self.assertEqual((self.get("g.l"), self.show("g.l")["resolves"]), ("h", True))
        self.edit("set", "g.l", "")
        self.assertEqual(self.get("g.l"), "")
        self.refuse(2, "qvt: error: a link has one target", "set", "g.l", "h", "g")

    def test_OverridesWhatCameFromAClass(self):
        self.edit("set", "g.w", "9")
        self.assertEqual((self.show("g.w")["inherited"], self.show("g.w")["overridden"]), (False, True))
        self.edit("set", "g.Lid.open", "0")
        self.edit("set", "g.note", "--uri", "http://n")
        written = self.done("export", "model.qvt").out
        for words in ('<double name="w" units="Meter">9</double>', '<bool name="open">0</bool>',
                      '<string name="note" uri="http://n"/>'):
            self.assertEqual(written.count(words), 1, words)

    def test_SetsDisplayNamesAndRemovesThem(self):
        for path in ("", "g", "g.d", "Box"):
            with self.subTest(path):
                self.edit("set", path, "--name", "de=Etwas", "--name", "fr=Chose")
                self.edit("set", path, "--name", "de=Ding", "--name", "fr=")
                names = self.show(path)["names"]
                self.assertEqual((names["de"], "fr" in names), ("Ding", False))
        self.refuse(6, "model.qvt: error: the only display name that there is cannot be removed", "set", "g", "--name", "de=")
        self.refuse(2, "qvt: error: --name takes LOCALE=TEXT, and not x", "set", "g", "--name", "x")

    def test_GivesAnotherUnitToWhatIsNoMemberOfAClass(self):
        before = self.show("g.d")
        self.edit("set", "g.d", "5", "--unit", "Meter")
        self.assertEqual(self.show("g.d"), {**before, "unit": "Meter", "value": [5], "count": 1, "bytes": 8})
        self.edit("set", "g.own.i", "--unit", "Kilogram", "--name", "de=Eins")
        self.assertEqual(self.show("g.own.i")["names"], {"de": "Eins"})
        self.assertEqual((self.show("g.own.i")["unit"], self.get("g.own.i")), ("Kilogram", "1"))
        self.edit("set", "g.w", "5", "--unit", "Meter")
        self.refuse(6, "model.qvt: error: g.w came from a class with its unit, Meter", "set", "g.w", "5", "--unit", "Inch")
        self.refuse(2, "qvt: error: no unit Inches; did you mean Inch? (qvt units lists them)", "set", "g.d", "--unit", "Inches")

    def test_OfWhatHasNoValueIsRefused(self):
        self.refuse(6, "model.qvt: error: g has no value that could be set", "set", "g", "1")
        self.refuse(6, "model.qvt: error: g.own has no value that could be set", "set", "g.own", "--unit", "Inch")
        self.refuse(6, "model.qvt: error: the root has no value that could be set", "set", "", "1")
        self.refuse(6, "model.qvt: error: g.l has no value that could be set", "set", "g.l", "--uri", "x")

    def test_OfNothingIsMissing(self):
        self.refuse(3, "model.qvt: error: nothing at g.none, though there is g; did you mean g.note?", "set", "g.none", "1")

    def test_TakesSomething(self):
        self.refuse(2, "qvt: error: set takes a VALUE, --uri, --unit or --name", "set", "g.d")
        self.refuse(2, "qvt: error: set takes either a VALUE or --uri", "set", "g.d", "1", "--uri", "x")

    def test_ChangesNothingWhereOnePartOfItIsRefused(self):
        self.refuse(2, "qvt: error: x is no number of type double", "set", "g.d", "x", "--name", "de=D")
        self.assertEqual(self.show("g.d")["names"], {"nl": "Dee"})


class New(EditTest):
    def test_MakesEveryKindOfObject(self):
        for kind in ("node", "group", "link", "table"):
            for above in ("", "h."):
                self.edit("new", above + kind, kind)
                self.assertEqual(self.show(above + kind)["kind"], kind)

    def test_MakesAPrimitiveWithItsValue(self):
        for path, kind, *words in (("h.d", "double", "1.5", "2"), ("h.t", "string", "a", "b"), ("h.e", "int8"),
                                   ("h.b", "binary", "AAEC"), ("h.m", "matrix2x2", "1 2 3 4")):
            self.edit("new", path, kind, *words)
            self.assertEqual((self.show(path)["type"], self.get(path).split()), (kind, " ".join(words).split()))

    def test_GivesAUnitInContainersAndTables(self):
        for path in ("h.d", "g.own.d"):
            self.edit("new", path, "double", "2", "--unit", "Inch")
            self.assertEqual((self.show(path)["unit"], self.get(path)), ("Inch", "2"))

    def test_MakesALinkToItsTarget(self):
        self.edit("new", "h.l", "link", "g.n")
        self.assertEqual(self.show("h.l")["target"], "g.n")

    def test_GivesTheMembersOfAClass(self):
        self.edit("new", "h.box", "node", "--class", "Box")
        self.assertEqual((self.show("h.box")["class"], self.children("h.box")), ("Box", ["w", "note", "Lid"]))
        self.edit("new", "h.table", "table", "--class", "Box")
        self.assertEqual((self.show("h.table")["class"], self.children("h.table")), ("Box", ["w", "note", "Lid"]))
        self.edit("new", "h.both", "node", "--class", "Box;Pair")
        self.assertEqual(self.children("h.both"), ["w", "note", "Lid", "a", "b"])

    def test_MakesAStructOfAClass(self):
        self.edit("new", "h.s", "struct", "1.5", "2", "3", "--class", "Pair")
        self.assertEqual(self.show("h.s")["value"], [{"a": 1.5, "b": [2, 3]}])
        self.assertIn('<struct name="s" type="Pair">1.5 2 3</struct>', self.done("export", "model.qvt", "h").out)

    def test_MakesAStructWithRoomForAMemberWhoseValueLiesElsewhere(self):
        self.edit("new", "h.Gap", "table")
        self.edit("new", "h.Gap.a", "int8", "1")
        self.edit("new", "h.Gap.far", "double")
        self.edit("set", "h.Gap.far", "--uri", "http://x")
        self.edit("new", "h.Gap.b", "int8", "1")
        layout = self.done("schema", "model.qvt", "h.Gap", "-f", "json").json
        self.edit("new", "h.s", "struct", "5", "6", "--class", "h.Gap")
        shown = self.show("h.s")
        self.assertEqual((shown["bytes"], shown["value"][0]["a"], shown["value"][0]["b"]), (layout["bytes"], 5, 6))
        self.assertGreater(layout["bytes"], 2)

    def test_FindsClassesInTheStoresOfSchemas(self):
        self.document('<root name="t"><table name="Far"><double name="a">1</double></table></root>', "types.xml")
        self.edit("new", "h.far", "node", "--class", "Far", "--schemas", "types.xml")
        self.assertEqual(self.children("h.far"), ["a"])
        self.refuse(3, "model.qvt: error: no class Far, nor in the stores of --schemas", "new", "h.more", "node", "--class", "Far")

    def test_MarksTheTableThatItChanges(self):
        self.edit("new", "g.Lid.none", "int8")
        self.assertIn('<int8 name="none"/>', self.done("export", "model.qvt").out)
        self.edit("new", "g.Lid.more", "int8", "3")
        self.assertIn('<int8 name="more">3</int8>', self.done("export", "model.qvt").out)

    def test_WhereSomethingIsIsRefused(self):
        for path in ("g", "g.d", "g.own.i", "Box", "g.w"):
            self.refuse(6, f"model.qvt: error: {path} is there already", "new", path, "int8")

    def test_WhereNothingCanStandIsRefused(self):
        self.refuse(6, "model.qvt: error: g.d is a primitive, and nothing can stand below it", "new", "g.d.x", "int8")
        self.refuse(6, "model.qvt: error: g.own is a table, and no container can stand below it", "new", "g.own.x", "node")
        self.refuse(6, "model.qvt: error: no primitive can stand directly below the root", "new", "x", "int8")

    def test_BelowNothingIsMissing(self):
        self.refuse(3, "model.qvt: error: nothing at none", "new", "none.x", "int8")

    def test_TakesWordsThatFitTogether(self):
        for words, *arguments in (
                ("vec3 is neither node, group, link or table nor a type", "h.x", "vec3"),
                ("only primitives have a unit", "h.x", "node", "--unit", "Inch"),
                ("a struct takes --class", "h.x", "struct", "1"),
                ("a int8 has no class", "h.x", "int8", "--class", "Box"),
                ("a group takes no VALUE", "h.x", "group", "1"),
                ("a link takes no second VALUE", "h.x", "link", "a", "b"),
                ("a table takes no VALUE", "h.x", "table", "1"),
                ("x is no number of type int8", "h.x", "int8", "x"),
                ('the path "h." ends in no name', "h.", "int8"),
                ('the path "" ends in no name', "", "group")):
            self.refuse(2, "qvt: error: " + words, "new", *arguments)


class Remove(EditTest):
    def test_TakesObjectsAwayWithAllThatIsBelow(self):
        self.edit("rm", "g.n", "g.own.i", "g.t", "Said")
        for path in ("g.n", "g.n.j", "g.own.i", "g.t", "Said"):
            self.assertEqual(self.run_tool("show", "model.qvt", path).status, 3)
        self.edit("rm", "g")
        self.assertEqual(self.children(""), ["Box", "Pair", "h"])

    def test_TakesAllOrNothing(self):
        self.refuse(3, "model.qvt: error: nothing at g.none, though there is g; did you mean g.note?", "rm", "g.n", "g.none")
        self.refuse(6, "model.qvt: error: g.w came from a class and cannot be removed", "rm", "g.n", "g.w")
        self.assertEqual(self.show("g.n")["kind"], "node")

    def test_OfWhatIsBelowWhatWasRemovedIsMissing(self):
        self.refuse(3, "model.qvt: error: nothing at g.n.j, though there is g", "rm", "g.n", "g.n.j")

    def test_OfTheRootIsRefused(self):
        self.refuse(2, 'qvt: error: the path "" ends in no name', "rm", "")


class Move(EditTest):
    def test_RenamesWithoutChangingTheOrder(self):
        self.edit("mv", "g.t", "g.text")
        self.assertEqual(self.children("g").index("text"), self.children("g").index("d") + 1)
        self.edit("mv", "h", "hall")
        self.edit("mv", "g.own.i", "g.own.k")
        self.edit("mv", "Box", "Crate")
        self.assertEqual(self.children(""), ["Crate", "Pair", "Said", "g", "hall"])
        self.assertEqual(self.get("g.own.k"), "1")

    def test_MovesToAnotherContainerWithEverythingInIt(self):
        before = self.show("g.d")
        self.edit("mv", "g.d", "h.e")
        self.assertEqual(self.show("h.e"), {**before, "path": "h.e", "name": "e"})
        self.edit("mv", "g", "h.g")
        self.assertEqual(self.get("h.g.n.j"), "4")
        self.assertEqual(self.children(""), ["Box", "Pair", "Said", "h"])
        self.edit("mv", "h.g", "up")
        self.assertEqual(self.children("")[-1], "up")

    def test_MovesAPrimitiveIntoATableAndOutOfIt(self):
        before = self.show("g.d")
        self.edit("mv", "g.d", "g.own.d")
        self.assertEqual(self.show("g.own.d"), {**before, "path": "g.own.d"})
        self.edit("mv", "g.own.i", "h.i")
        self.assertEqual((self.get("h.i"), self.children("g.own")), ("1", ["d"]))

    def test_IsRefusedWhereItCannotBe(self):
        for words, *arguments in (("g.n is there already", "g.d", "g.n"), ("g is there already", "g", "g"),
                                  ("g cannot be moved into itself", "g", "g.n.g"),
                                  ("g.w came from a class and cannot be moved", "g.w", "g.x"),
                                  ("g.Lid came from a class and cannot be moved", "g.Lid", "h.x"),
                                  ("only primitives can be copied into a table", "g.own", "Box.own"),
                                  ("no primitive can stand directly below the root", "g.d", "d"),
                                  ("g.d is a primitive, and nothing can stand below it", "h", "g.d.h")):
            self.refuse(6, "model.qvt: error: " + words, "mv", *arguments)
        self.refuse(3, "model.qvt: error: nothing at none", "mv", "none", "h.x")
        self.refuse(3, "model.qvt: error: nothing at none", "mv", "g.d", "none.d")


class Copy(EditTest):
    def test_CopiesUnderTheNewName(self):
        self.edit("cp", "g.n", "h.m")
        self.assertEqual((self.get("h.m.j"), self.get("g.n.j")), ("4", "4"))
        self.edit("cp", "g", "k")
        self.assertEqual(self.show("k")["class"], "Box")
        self.assertEqual(self.done("tree", "model.qvt", "k", "--values").lines[1:],
                         self.done("tree", "model.qvt", "g", "--values").lines[1:])

    def test_CopiesIntoTheVeryObject(self):
        self.edit("cp", "g", "g.n.g")
        self.assertEqual(self.get("g.n.g.n.j"), "4")
        self.assertEqual(self.run_tool("show", "model.qvt", "g.n.g.n.g").status, 3)

    def test_OfAMemberOfAClassIsAMemberOfItsOwn(self):
        self.edit("cp", "g.Lid", "h.Lid")
        self.edit("cp", "g.w", "h.w")
        self.assertEqual((self.show("h.Lid")["flags"], self.show("h.Lid.open")["flags"]), ([], []))
        self.assertIn('<double name="w" units="Meter">1.5</double>', self.done("export", "model.qvt", "h").out)
        self.edit("rm", "h.Lid")

    def test_CopiesIntoAnotherStore(self):
        self.document('<root name="o"><group name="x"/></root>', "other.xml")
        self.done("import", "other.xml", "other.qvt")
        before = (self.folder / "model.qvt").read_bytes()
        self.edit("cp", "g.d", "x.e", "--to", "other.qvt")
        self.edit("cp", "g", "g", "--to", "other.qvt")
        self.assertEqual(self.done("get", "other.qvt", "x.e").out, "1 2\n")
        self.assertEqual(self.done("get", "other.qvt", "g.n.j").out, "4\n")
        self.assertEqual((self.folder / "model.qvt").read_bytes(), before)
        self.done("check", "other.qvt", "-q")
        self.refuse(6, "other.qvt: error: g is there already", "cp", "h", "g", "--to", "other.qvt")
        self.refuse(3, "model.qvt: error: nothing at none", "cp", "none", "k", "--to", "other.qvt")

    def test_IntoTheSameStoreByAnotherNameIsAnEditOfThatStore(self):
        (self.folder / "same.qvt").symlink_to("model.qvt")
        self.edit("cp", "g.n", "h.m", "--to", "./model.qvt")
        self.assertEqual(self.get("h.m.j"), "4")

    def test_IsRefusedWhereItCannotBe(self):
        for words, *arguments in (("the root cannot be copied; merge takes what is below it", "", "x"),
                                  ("h is there already", "g", "h"),
                                  ("only primitives can be copied into a table", "Pair", "g.own.Pair"),
                                  ("no primitive can stand directly below the root", "g.d", "d")):
            self.refuse(6, "model.qvt: error: " + words, "cp", *arguments)


class Merge(EditTest):
    def test_AddsTheChildrenOfAnotherStore(self):
        self.document('<root name="o"><group name="x"><node name="m"/><int8 name="k">1</int8></group></root>', "o.xml")
        self.done("import", "o.xml", "o.qvt")
        for source in ("o.qvt", "o.xml"):
            into = "h" if source == "o.qvt" else "g.n"
            self.edit("merge", into, source, "x")
            self.assertEqual(self.children(into)[-2:], ["k", "m"])
        self.edit("merge", "", "o.qvt")
        self.assertEqual(self.children("")[-1], "x")

    def test_LeavesOutWhatIsThereWithAWarning(self):
        self.document('<root name="o"><group name="g"/><group name="x"/></root>', "o.xml")
        result = self.run_tool("merge", "model.qvt", "", "o.xml")
        self.assertEqual((result.status, result.out, result.err),
                         (0, "", "o.xml: warning: g is there already and was left out\n"))
        self.assertEqual((self.children("")[-1], self.get("g.n.j")), ("x", "4"))

    def test_FromTheSameStore(self):
        self.edit("merge", "h", "model.qvt", "g.n")
        self.assertEqual(self.children("h"), ["j"])
        for path, source in (("g", "g.n"), ("g.n", "g"), ("g", ""), ("g", "g")):
            self.refuse(6, "model.qvt: error: one of the two containers stands in the other", "merge", path, "model.qvt", source)

    def test_OfWhatIsNoContainerIsRefused(self):
        self.refuse(6, "model.qvt: error: g.d is no container; merge takes and fills containers", "merge", "g.d", "model.xml")
        self.refuse(6, "model.xml: error: Box is no container; merge takes and fills containers", "merge", "g", "model.xml", "Box")

    def test_OfADocumentWithReportsEndsWithStatusOne(self):
        self.document('<root name="o"><nonsense/><group name="x"/></root>', "o.xml")
        self.assertEqual(self.run_tool("merge", "model.qvt", "h", "o.xml").status, 1)
        self.assertEqual(self.children("h"), ["x"])

    def test_OfADocumentThatIsNotWellFormedChangesNothing(self):
        self.document('<root name="o"><group name="x"/>', "o.xml")
        self.refuse(3, "o.xml:1:33: error: not well-formed: no element found", "merge", "h", "o.xml")

from tool import ToolTest

ROOT = '<root name="r">{}</root>'


class Reports(ToolTest):
    def test_NameFileLineColumnAndTheWordsOfTheLibrary(self):
        self.document('<root name="r">\n  <group name="g">\n    <vec3 name="v"/>\n  </group>\n</root>')
        result = self.run_tool("tree", "model.xml")
        self.assertEqual(result.err, "model.xml:3:5: error: vec3 : unknown element, skipping\n")

    def test_EndWithStatusOneAfterTheAnswer(self):
        self.document(ROOT.format('<group name="g"><double>1</double><int32 name="i">2</int32></group>'))
        result = self.run_tool("tree", "model.xml")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.lines, ["r: root, version 0", "└── g: group", "    └── i: int32"])
        self.assertEqual(result.err, "model.xml:1:32: error: double : missing mandatory 'id' attribute\n")

    def test_ColumnsCountCharactersNotBytes(self):
        self.document('<root name="r"><group name="äöü€"><vec3/></group></root>')
        self.assertEqual(self.run_tool("tree", "model.xml").err,
                         "model.xml:1:35: error: vec3 : unknown element, skipping\n")

    def test_ComeOnceForEachSkippedElementWithAllItsContent(self):
        self.document(ROOT.format('<nonsense><nonsense/><group/></nonsense><double name="d">1</double>'))
        self.assertEqual(self.run_tool("tree", "model.xml").err.splitlines(), [
            "model.xml:1:16: error: nonsense : unknown element, skipping",
            "model.xml:1:56: error: double : could not nest the element"])

    def test_ComeOnceFromAVerbThatLooksAtRecordsAndObjects(self):
        self.document(ROOT.format("<nonsense/>"))
        result = self.run_tool("stat", "model.xml")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.err.count("\n"), 1)

    def test_AreNotPrintedWhenQuietAndStillDecideTheStatus(self):
        self.document(ROOT.format("<nonsense/>"))
        result = self.run_tool("tree", "model.xml", "-q")
        self.assertEqual((result.status, result.err), (1, ""))
        self.assertEqual(result.lines, ["r: root, version 0"])

    def test_OfALibraryCountToo(self):
        self.document(ROOT.format(""))
        self.document(ROOT.format("<nonsense/>"), "types.xml")
        result = self.run_tool("tree", "model.xml", "--schemas", "types.xml")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.err, "types.xml:1:16: error: nonsense : unknown element, skipping\n")

    def test_OfAStructWithoutATypeSayWhatIsMissing(self):
        self.document(ROOT.format('<group name="g"><struct name="s"/></group>'))
        self.assertEqual(self.run_tool("tree", "model.xml").err,
                         "model.xml:1:32: error: struct : missing mandatory 'type' attribute for <struct>\n")

    def test_DoNotLetTheControlCharactersOfAFileNameThrough(self):
        name = self.document(ROOT.format("<nonsense/>"), "mod\u009b31mel\n.xml")
        result = self.run_tool("tree", name)
        self.assertEqual(result.err, "mod\\x9b31mel\\n.xml:1:16: error: nonsense : unknown element, skipping\n")

    def test_OfASkippedDocumentElementLeaveNothingToShow(self):
        self.document("<nonsense/>")
        for verb in ("tree", "export", "show"):
            with self.subTest(verb):
                result = self.run_tool(verb, "model.xml")
                self.assertEqual((result.status, result.out), (1, ""))
                self.assertEqual(result.err, "model.xml:1:1: error: nonsense : unknown element, skipping\n"
                                             "model.xml: error: nothing was read\n")

    def test_OfARootWithoutANameLeaveNothingToShow(self):
        self.document('<root><group name="g"/></root>')
        for verb in ("tree", "export"):
            with self.subTest(verb):
                result = self.run_tool(verb, "model.xml")
                self.assertEqual((result.status, result.out), (1, ""))
                self.assertEqual(result.err, "model.xml:1:1: error: root : missing mandatory 'id' attribute\n"
                                             "model.xml: error: nothing was read\n")


class NotWellFormed(ToolTest):
    def expect(self, text, words, name="model.xml"):
        self.document(text, name)
        for verb in (["tree"], ["stat"], ["export"], ["dump", "--all"]):
            with self.subTest(verb):
                result = self.run_tool(verb[0], name, *verb[1:])
                self.assertEqual((result.status, result.out, result.err), (3, "", f"{name}:{words}\n"))

    def test_SaysWhereAndWhy(self):
        self.expect('<root name="r">\n  <group name="g">\n </root>', "3:4: error: not well-formed: mismatched tag")

    def test_OneThatJustEnds(self):
        self.expect('<root name="r">\n<group name="g"/>\n', "3:1: error: not well-formed: no element found")

    def test_AnEmptyOne(self):
        self.expect("", "1:1: error: not well-formed: no element found")

    def test_AStrayCharacterIsNotCalledNotWellFormedTwice(self):
        self.expect(b'<root name="\xff"/>', "1:13: error: not well-formed: invalid token")

    def test_TwoOutermostElementsAlsoWhereNoneIsARoot(self):
        self.expect('<group name="a"/><group name="b"/>', "1:18: error: not well-formed: junk after document element")

    def test_TwoAttributesOfOneName(self):
        self.expect('<root name="r" name="s"/>', "1:16: error: not well-formed: duplicate attribute")

    def test_InALibraryNamesTheLibrary(self):
        self.document('<root name="r"/>')
        self.document("<root", "types.xml")
        result = self.run_tool("tree", "model.xml", "--schemas", "types.xml")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertEqual(result.err, "types.xml:1:1: error: not well-formed: unclosed token\n")


class Hostile(ToolTest):
    """Ends quickly, in little memory, with a clear error."""

    def run_small(self, *arguments):
        result = self.run_tool(*arguments, measure=True)
        self.assertLess(result.peak, 256 << 20)
        return result

    def test_AnEntityBombIsRefused(self):
        bomb = "<!DOCTYPE r [<!ENTITY a 'aaaaaaaaaa'>" + "".join(
            f"<!ENTITY {n} '&{p};&{p};&{p};&{p};&{p};&{p};&{p};&{p};&{p};&{p};'>" for p, n in zip("abcdefghi", "bcdefghij")
        ) + ']><root name="&j;"/>'
        self.document(bomb)
        result = self.run_small("tree", "model.xml")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertEqual(result.err, "model.xml:1:13: error: a document type with an internal subset is not read\n")

    def test_AnExternalEntityIsNotOpened(self):
        self.document("secret", "secret.txt")
        self.document('<!DOCTYPE r [<!ENTITY x SYSTEM "secret.txt">]><root name="r"><name>&x;</name></root>')
        result = self.run_tool("show", "model.xml")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertNotIn("secret", result.err)

    def test_AValueTooLargeForARecordStopsTheReadingAtItsPlace(self):
        for size in ("4294967295", "-1", "268435456"):
            with self.subTest(size):
                self.document(f'<root name="r">\n<group name="g"><double name="d" dim="{size}"/></group></root>')
                for verb in ("tree", "export", "stat"):
                    result = self.run_small(verb, "model.xml")
                    self.assertEqual((result.status, result.out), (3, ""))
                    self.assertRegex(result.err, r"^model\.xml:2:17: error: reading stopped: .+\n$")


class Inputs(ToolTest):
    def test_ADocumentOnStandardInput(self):
        result = self.done("tree", "-", stdin=b'<root name="r"><group name="g"/></root>')
        self.assertEqual(result.lines, ["r: root, version 0", "└── g: group"])

    def test_StandardInputIsNamedInMessages(self):
        result = self.run_tool("stat", "-", stdin=b"<root")
        self.assertEqual(result.err, "<stdin>:1:1: error: not well-formed: unclosed token\n")

    def test_AMissingFile(self):
        result = self.run_tool("tree", "none.xml")
        self.assertEqual((result.status, result.err),
                         (3, "none.xml: error: cannot read it: No such file or directory\n"))

    def test_ADirectory(self):
        result = self.run_tool("tree", ".")
        self.assertEqual((result.status, result.err), (3, ".: error: cannot read it: Is a directory\n"))

    def test_AMissingLibrary(self):
        self.document('<root name="r"/>')
        result = self.run_tool("tree", "model.xml", "--schemas", "none.xml")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn("none.xml: error: cannot read it", result.err)

    def test_AByteOrderMarkIsPassedOver(self):
        self.document(b"\xef\xbb\xbf" + '<root name="r"><group name="ü"/></root>'.encode())
        self.assertEqual(self.done("tree", "model.xml").lines, ["r: root, version 0", "└── ü: group"])

    def test_Utf16IsReadAsUtf8Is(self):
        for encoding in ("utf-16-le", "utf-16-be"):
            with self.subTest(encoding):
                text = '\ufeff<table name="t">\n<string name="ü">€</string></table>'
                self.document(text.encode(encoding))
                self.assertEqual(self.done("tree", "model.xml", "--values").lines,
                                 ["t: table", '└── ü: string = "€"'])


class OtherOutermostElements(ToolTest):
    """Any object can be a document, and is shown as one."""

    def test_AContainerIsTheOutermostObject(self):
        self.document('<?xml version="1.0"?>\n<!-- c -->\n<node name="n"><group name="g"/></node>')
        self.assertEqual(self.done("tree", "model.xml").lines, ["n: node", "└── g: group"])
        self.assertEqual(self.done("show", "model.xml").lines[0], "path      n")
        self.assertEqual(self.done("show", "model.xml", "n.g").lines[0], "path      n.g")

    def test_ATable(self):
        self.document('<table name="t"><int8 name="i">1</int8></table>')
        self.assertEqual(self.done("get", "model.xml", "t.i").out, "1\n")

    def test_AValue(self):
        self.document('<double name="d" units="Inch">1 2</double>')
        self.assertEqual(self.done("tree", "model.xml", "--values").lines, ["d: double = 1 2 Inch"])
        self.assertEqual(self.done("get", "model.xml", "d").out, "1 2\n")

    def test_ItsClassAndItsReportsAreThoseOfTheDocument(self):
        self.document('<root name="t"><group name="T"><table name="Box"><double name="w">1</double></table></group>'
                      "</root>", "types.xml")
        self.document('<group name="g" class="T.Box"><vec3/></group>')
        result = self.run_tool("tree", "model.xml", "--schemas", "types.xml")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.lines, ["g: group [T.Box]", "└── w: double (inherited)"])
        self.assertEqual(result.err, "model.xml:1:31: error: vec3 : unknown element, skipping\n")

    def test_ClassesAndTargetsWithinItAreFoundAsInItsRecords(self):
        self.document('<group name="g"><table name="Box"><int8 name="i">1</int8></table><node name="n" class="Box"/>'
                      '<link name="l" to="n"/></group>')
        self.assertIn('<node name="n" class="Box"/>', self.done("export", "model.xml").out)
        self.assertIn("├── n: node [Box]", self.done("tree", "model.xml").lines)
        self.assertEqual(self.done("show", "model.xml", "g.l").lines[-1], "leads to  a node [Box]")
        self.assertEqual(self.done("stat", "model.xml", "-f", "json").json["classes"], {"Box": 1})


TYPES = ('<root name="t"><group name="T"><table name="Box"><double name="w">1</double></table>'
         '<table name="Lid"><double name="h">1</double></table></group></root>')


class Classes(ToolTest):
    def test_AreFoundInTheDocumentsOfSchemas(self):
        self.document(TYPES, "types.xml")
        self.document('<root name="r"><group name="g" class="T.Box"/></root>')
        self.assertEqual(self.done("tree", "model.xml", "--schemas", "types.xml").lines,
                         ["r: root, version 0", "└── g: group [T.Box]", "    └── w: double (inherited)"])

    def test_AreFoundInSeveralOfThem(self):
        self.document(TYPES, "types.xml")
        self.document('<root name="t"><table name="Foot"><bool name="b">1</bool></table></root>', "more.xml")
        self.document('<root name="r"><group name="g" class="T.Box;Foot"/></root>')
        result = self.done("tree", "model.xml", "--schemas", "types.xml", "--schemas", "more.xml")
        self.assertIn("└── g: group [T.Box;Foot]", result.lines)

    def test_AreFoundInTheDocumentItself(self):
        self.document('<root name="r"><table name="Box"><double name="w">1</double></table>'
                      '<group name="g" class="Box"/></root>')
        self.assertIn("└── g: group [Box]", self.done("tree", "model.xml").lines)

    def test_ALibraryMayUseThoseOfTheLibraryBeforeIt(self):
        self.document(TYPES, "types.xml")
        self.document('<root name="u"><table name="Crate" class="T.Box"/></root>', "more.xml")
        self.document('<root name="r"><group name="g" class="Crate"/></root>')
        result = self.done("tree", "model.xml", "--schemas", "types.xml", "--schemas", "more.xml")
        self.assertIn("    └── w: double (inherited)", result.lines)

    def lacking(self, classes, *options):
        groups = "".join(f'<group name="g{i}" class="{each}"/>' for i, each in enumerate(classes))
        self.document(f'<root name="r">\n{groups}</root>')
        result = self.run_tool("tree", "model.xml", *options)
        self.assertEqual(result.status, 1)
        return result.err

    def test_ThatAreNotFoundAreToldOnceAndEndWithStatusOne(self):
        self.assertEqual(self.lacking(["T.Box", "T.Box"]),
                         "model.xml:2:1: error: class T.Box is not known (--schemas STORE says where to look)\n")

    def test_OfTwoThatAreNotFoundBothAreNamed(self):
        self.assertIn(": classes T.Box and T.Lid are not known (", self.lacking(["T.Box", "T.Box;T.Lid"]))

    def test_OfMoreThatAreNotFoundTheOthersAreCounted(self):
        self.assertIn(": class T.Box and 2 others are not known (", self.lacking(["T.Box", "T.Lid", "T.Top"]))

    def test_OneOfSeveralThatIsNotFoundIsTold(self):
        self.document(TYPES, "types.xml")
        self.document('<root name="r"><group name="a" class="T.Box;T.None"/></root>')
        result = self.run_tool("tree", "model.xml", "--schemas", "types.xml")
        self.assertIn("class T.None is not known (", result.err)

    def test_AnEmptyClassTextIsNotMissed(self):
        self.document('<root name="r"><group name="a" class=""/></root>')
        self.done("tree", "model.xml")

    def test_ThatAreNotFoundAreToldEvenWhenQuietAsTheDocumentThatIsWrittenLacksThem(self):
        self.assertIn("class T.Box is not known", self.lacking(["T.Box"], "-q"))
        self.assertEqual(self.run_tool("export", "model.xml", "-q").status, 1)


class Units(ToolTest):
    def warned(self, text, *options):
        self.document(text)
        result = self.run_tool("tree", "model.xml", *options)
        self.assertEqual(result.status, 0)
        return result.err

    def test_ThatAreNoneAreWarnedOfOnceWithThePlaceOfTheFirst(self):
        self.assertEqual(self.warned('<group name="g">\n<double name="a" units="Metre">1</double></group>'),
                         "model.xml:2:1: warning: unit Metre is not known and was left out; did you mean Meter?\n")
        self.assertEqual(self.warned('<group name="g"><double name="a" units="Metre">1</double><double name="b" units="Metre"/>'
                                     "<double name='c' units = 'Wat'/></group>"),
                         "model.xml:1:17: warning: unit Metre and 1 other are not known and were left out; did you mean "
                         "Meter?\n")

    def test_AreNotWarnedOfWhenQuiet(self):
        self.assertEqual(self.warned('<group name="g"><double name="a" units="Metre">1</double></group>', "-q"), "")

    def test_InCommentsAndTextsAreNone(self):
        self.assertEqual(self.warned('<group name="g"><!-- units="Metre" --><string name="s">units="x" units=</string>'
                                     '<double name="a" units="Meter">1</double><double name="b" units=""/></group>'), "")

    def test_OfEveryNameThatThereIsAreKnown(self):
        rows = "".join(f'<double name="d{i}" units="{row["unit"]}"/>'
                       for i, row in enumerate(self.done("units", "-f", "json").json["units"]))
        self.assertEqual(self.warned(f'<group name="g">{rows}</group>'), "")

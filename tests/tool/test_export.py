from tool import ToolTest

MODEL = """<root name="r" version="4"><name locale="en-us">Model</name>
<table name="Pair"><double name="a">1</double><int32 name="b">2 3</int32></table>
<table name="Box"><default unit="Meter" type="double"/><double name="w" units="Meter">1.5</double>
  <table name="Lid"><bool name="open">1</bool><int8 name="more">2</int8></table></table>
<group name="g" class="Box"><name locale="de">Gruppe</name><double name="w">2</double>
  <struct name="s" type="Pair">1.5 2 3</struct><node name="n"><link name="l" to="g.n"/></node></group></root>"""

HEADER = '<?xml version="1.0" encoding="UTF-8"?>\n'


class Export(ToolTest):
    def export(self, *path):
        self.document(MODEL)
        return self.done("export", "model.xml", *path).out

    def test_WritesTheDocumentAnew(self):
        self.assertEqual(self.export(), HEADER + """\
<root version="4" name="r">
  <name locale="en-us">Model</name>
  <table name="Pair" class="">
    <double name="a">1</double>
    <int32 name="b">2 3</int32>
  </table>
  <table name="Box" class="">
    <default unit="Meter" type="double"/>
    <double name="w" units="Meter">1.5</double>
    <table name="Lid" class="">
      <bool name="open">1</bool>
      <int8 name="more">2</int8>
    </table>
  </table>
  <group name="g" class="Box">
    <name locale="de">Gruppe</name>
    <double name="w" units="Meter">2</double>
    <struct name="s" type="Pair">1.5 2 3</struct>
    <node name="n" class="">
      <link name="l" class="" to="g.n"/>
    </node>
  </group>
</root>
""")

    def test_OfAnExportGivesTheSameBytes(self):
        once = self.export()
        self.document(once, "once.xml")
        self.assertEqual(self.done("export", "once.xml").out, once)

    def test_OfAContainerIsADocumentOfItsOwn(self):
        self.assertEqual(self.export("g.n"), HEADER + """\
<node name="n" class="">
  <link name="l" class="" to="g.n"/>
</node>
""")

    def test_OfAClassedContainerLeavesOutWhatTheClassGives(self):
        written = self.export("g")
        self.assertIn('<group name="g" class="Box">', written)
        self.assertIn("<name locale=\"de\">Gruppe</name>", written)
        self.assertNotIn("Lid", written)

    def test_OfAStructKnowsItsLayout(self):
        self.assertEqual(self.export("g.s"), HEADER + '<struct name="s" type="Pair">1.5 2 3</struct>\n')

    def test_OfWhatAClassGaveIsWhole(self):
        self.assertEqual(self.export("g.Lid"), HEADER + """\
<table name="Lid" class="">
  <bool name="open">1</bool>
  <int8 name="more">2</int8>
</table>
""")
        self.assertEqual(self.export("g.Lid.more"), HEADER + '<int8 name="more">2</int8>\n')

    def test_OfAnInheritedTableWithAnOverriddenMemberIsWhole(self):
        self.document('<root name="r"><table name="Box"><table name="Lid"><bool name="open">1</bool>'
                      '<int8 name="more">2</int8></table></table><group name="g" class="Box"><table name="Lid">'
                      '<bool name="open">0</bool></table></group></root>')
        self.assertEqual(self.done("export", "model.xml", "g.Lid").out, HEADER + """\
<table name="Lid" class="">
  <bool name="open">0</bool>
  <int8 name="more">2</int8>
</table>
""")

    def test_OfNothingIsAnError(self):
        self.document(MODEL)
        result = self.run_tool("export", "model.xml", "g.none")
        self.assertEqual((result.status, result.out), (3, ""))

    def test_OfADocumentWithReportsWritesWhatWasRead(self):
        self.document('<group name="g"><nonsense/><int8 name="i">1</int8></group>')
        result = self.run_tool("export", "model.xml")
        self.assertEqual((result.status, result.out),
                         (1, HEADER + '<group name="g" class="">\n  <int8 name="i">1</int8>\n</group>\n'))

    def test_OfADocumentThatIsNotARootKeepsItsElement(self):
        for element in ('<table name="t" class=""/>', '<int8 name="i">1</int8>', '<link name="l" class="" to=""/>'):
            self.document(element)
            self.assertEqual(self.done("export", "model.xml").out, HEADER + element + "\n")

from tool import ToolTest

TYPES = """<root name="t"><group name="T">
<table name="Point"><vector3 name="at">0 0 0</vector3><int8 name="tag">1</int8></table>
<table name="Line"><struct name="ends" type="T.Point">0 0 0 0 0 0 0 0</struct><scalar name="width">1</scalar>
  <double name="far" uri="x"/></table>
</group></root>"""


class Schema(ToolTest):
    def test_IsOneLineAField(self):
        self.document(TYPES)
        self.assertEqual(self.done("schema", "model.xml", "T.Point").out, """\
field  type     count  offset  size
at     vector3  3      0       24
tag    int8     1      24      1
25 bytes, 4 elements
""")

    def test_KeepsItsColumnsBesideALongName(self):
        self.document(f'<root name="r"><table name="T"><int8 name="{"n" * 100}">1</int8><int8 name="i">1</int8></table></root>')
        lines = self.done("schema", "model.xml", "T").lines
        self.assertEqual(lines[:3], [f"{'field':48}  type  count  offset  size", f"{'n' * 100}  int8  1      0       1",
                                     f"{'i':48}  int8  1      1       1"])

    def test_FlattensStructsWithinIt(self):
        self.document(TYPES)
        schema = self.done("schema", "model.xml", "T.Line", "-f", "json").json
        self.assertEqual((schema["class"], schema["bytes"]), ("T.Line", 2 * 25 + 4 + 4))
        self.assertEqual([(f["field"], f["type"], f["count"], f["offset"], f["size"]) for f in schema["fields"]], [
            ("ends[0].at", "vector3", 3, 0, 24), ("ends[0].tag", "int8", 1, 24, 1),
            ("ends[1].at", "vector3", 3, 25, 24), ("ends[1].tag", "int8", 1, 49, 1),
            ("width", "scalar", 1, 50, 4), ("far", "double", 0, 54, 4)])

    def test_IsFoundInTheDocumentsOfSchemas(self):
        self.document('<root name="r"/>')
        self.document(TYPES, "types.xml")
        self.done("schema", "model.xml", "T.Point", "--schemas", "types.xml")

    def test_OfAnUnknownClassIsAnError(self):
        self.document(TYPES)
        result = self.run_tool("schema", "model.xml", "T.None")
        self.assertEqual((result.status, result.out, result.err),
                         (3, "", "model.xml: error: no class T.None, nor in the stores of --schemas\n"))

    def test_OfTwoClassesIsWrongUsage(self):
        self.document(TYPES)
        self.assertEqual(self.run_tool("schema", "model.xml", "T.Point;T.Line").status, 2)

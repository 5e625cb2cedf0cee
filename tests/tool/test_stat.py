from tool import ToolTest

MODEL = """<root name="r" version="7"><name locale="en-us">Model</name>
<table name="Pair"><double name="a">1</double><int32 name="b">2 3</int32></table>
<table name="Box"><default unit="Meter" type="double"/><double name="w" units="Meter">1.5</double>
  <table name="Lid"><bool name="open">1</bool></table></table>
<group name="g" class="Box"><name locale="de">Gruppe</name><double name="w">2</double>
  <struct name="s" type="Pair">1.5 2 3 4.5 5 6</struct><string name="t"><val>abc</val><val></val></string>
  <vector3 name="v" units="Inch">1 2 3</vector3><binary name="far" uri="x"/><int8 name="none"/>
  <node name="n"><link name="l" to="g.n"/></node></group></root>"""


class Stat(ToolTest):
    def test_CountsWhatStandsInTheDocumentAndWhatClassesBringIn(self):
        self.document(MODEL)
        counts = self.done("stat", "model.xml", "-f", "json").json
        expected = {
            "version": 7, "containers": 3, "nodes": 1, "groups": 1, "links": 1,
            "tables": 4,           # Pair, Box, Lid, and the Lid of g
            "primitives": 4 + 7,   # in the classes, and in g: w, open, s, t, v, far, none
            "external": 1, "defaults": 1, "displayNames": 2,
            "inherited": 2,        # Lid and open
            "overridden": 1, "maxDepth": 4}
        expected["values"] = 4 + 5
        # a, b, w, open; w, open, s in bytes, t in code units, v
        expected["elements"] = 1 + 2 + 1 + 1 + 1 + 1 + 32 + 5 + 3
        self.assertEqual({key: counts[key] for key in expected}, expected)
        self.assertEqual(counts["units"], {"Inch": 1, "Meter": 2})
        self.assertEqual(counts["classes"], {"Box": 1})
        self.assertEqual(counts["structTypes"], {"Pair": 1})
        self.assertEqual(counts["types"], {"binary": 1, "bool": 2, "double": 3, "int32": 1, "int8": 1, "string": 1,
                                           "struct": 1, "vector3": 1})

    def test_RecordsAreThoseOfTheDump(self):
        self.document(MODEL)
        counts = self.done("stat", "model.xml", "-f", "json").json
        rows = [line.split() for line in self.done("dump", "model.xml", "--all").lines]
        self.assertEqual((counts["records"], counts["bytes"]), (len(rows), sum(int(row[1]) for row in rows)))
        kinds = ["root", "primitive", "table", "offsets", "container", "locale"]
        for number, kind in enumerate(kinds):
            of_kind = [row for row in rows if int(row[2][:2], 16) == number]
            self.assertEqual(counts["recordKinds"][kind],
                             {"records": len(of_kind), "bytes": sum(int(row[1]) for row in of_kind)})

    def test_TheRootHasDepthOne(self):
        for text, depth in (('<root name="r"/>', 1), ('<root name="r"><group name="g"/></root>', 2),
                            ('<group name="g"/>', 1), ('<double name="d">1</double>', 1)):
            self.document(text)
            self.assertEqual(self.done("stat", "model.xml", "-f", "json").json["maxDepth"], depth)

    def test_NothingReadHasNoDepth(self):
        self.document("<nonsense/>")
        result = self.run_tool("stat", "model.xml", "-f", "json")
        self.assertEqual((result.status, result.json["maxDepth"], result.json["records"]), (1, 0, 0))

    def test_AsTextHasTheSameNumbers(self):
        self.document(MODEL)
        counts = self.done("stat", "model.xml", "-f", "json").json
        lines = self.done("stat", "model.xml").lines
        rows = dict(line.split() for line in lines if not line.startswith(" ") and " " in line)
        self.assertEqual(rows, {key: str(value) for key, value in counts.items() if isinstance(value, int)})
        self.assertIn("  2  Meter", lines)
        self.assertIn("  1  Box", lines)

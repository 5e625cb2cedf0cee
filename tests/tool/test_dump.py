from tool import ToolTest

MODEL = '<root name="r" version="1"><group name="g"><int8 name="i">5</int8></group></root>'


class Dump(ToolTest):
    def test_OfOneRecordNamesItsFields(self):
        self.document(MODEL)
        lines = [line.split(None, 2) for line in self.done("dump", "model.xml", "3").lines]
        self.assertEqual(lines[0], ["record", "3:", "primitive, 47 bytes"])
        self.assertIn(["0", "1", "kind = 1 (0x1)"], lines)
        self.assertIn(["22", "4", "data type = 8 (0x8)"], lines)
        self.assertIn(["46", "1", "value = 05"], lines)

    def test_AnOffsetMayBeHexadecimal(self):
        self.document(MODEL)
        self.assertEqual(self.done("dump", "model.xml", "0x3").lines[1:], self.done("dump", "model.xml", "3").lines[1:])

    def test_OfAllHasALineForEachRecordAtRest(self):
        self.document(MODEL)
        self.assertEqual(self.done("dump", "model.xml", "--all").lines, [
            "0 26 00" "ffffffff" "00000000" "ffffffff" "00" "02000000" "04000000" "72000000",
            "1 35 04" "00000000" "00000000" "ffffffff" "00" "04000000" "01" "04000000" "00000000" "00000000" "67000000",
            "2 5 03" "01000000",
            "3 47 01" "01000000" "00000000" "ffffffff" "00" "00000000" "00000000" "08000000" "00000000" "04000000"
            "00000000" "01000000" "69000000" "05",
            "4 5 03" "03000000"])

    def test_ShowsNoTableThatALookUpKeepsOpen(self):
        self.document('<root name="r"><table name="Box"><int8 name="i">5</int8></table><group name="g" class="Box"/></root>')
        for line in self.done("dump", "model.xml", "--all").lines:
            data = bytes.fromhex(line.split()[2])
            if data[0] in (0, 1, 2, 4):
                self.assertEqual(data[5:9], bytes(4), line)

    def test_OfNoRecordIsAnError(self):
        self.document(MODEL)
        result = self.run_tool("dump", "model.xml", "99")
        self.assertEqual((result.status, result.out, result.err), (3, "", "model.xml: error: no record at offset 99\n"))

    def test_InJsonHasTheSameRecords(self):
        self.document(MODEL)
        rows = [line.split() for line in self.done("dump", "model.xml", "--all").lines]
        records = self.done("dump", "model.xml", "--all", "-f", "json").json["records"]
        self.assertEqual([[str(each["offset"]), str(each["bytes"]), each["data"]] for each in records], rows)
        self.assertEqual([each["kind"] for each in records], ["root", "container", "offsets", "primitive", "offsets"])
        self.assertEqual(self.done("dump", "model.xml", "0x3", "-f", "json").json["records"], [records[3]])

    def test_TakesANumberOrAllAndNotBoth(self):
        self.document(MODEL)
        for arguments in ([], ["0", "--all"], ["x"], ["0x"], ["-1"], ["4294967296"]):
            with self.subTest(arguments):
                result = self.run_tool("dump", "model.xml", *arguments)
                self.assertEqual((result.status, result.out), (2, ""))
                self.assertEqual(result.err.count("\n"), 1)

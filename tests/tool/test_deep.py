from tool import ToolTest

DEPTH = 20000
STACK = 256 * 1024


class Deep(ToolTest):
    """As many levels as there may be, on a stack that has no room for a step for each."""

    def setUp(self):
        super().setUp()
        self.document('<root name="r">' + '<group name="g">' * DEPTH + '<double name="d">1</double>' + "</group>" * DEPTH +
                      "</root>")

    def test_IsExportedAndExportedAgainWithTheSameBytes(self):
        self.done("export", "model.xml", "-o", "once.xml", stack=STACK)
        self.done("export", "once.xml", "-o", "twice.xml", stack=STACK)
        self.assertEqual((self.folder / "once.xml").read_bytes(), (self.folder / "twice.xml").read_bytes())

    def test_PartOfItIsExported(self):
        written = self.done("export", "model.xml", "g.g.g", stack=STACK).out
        self.assertEqual(written.count("<group "), DEPTH - 2)

    def test_IsDrawnInLinesOfBoundedLength(self):
        lines = self.done("tree", "model.xml", stack=STACK).lines
        self.assertEqual(len(lines), DEPTH + 2)
        self.assertLess(max(map(len, lines)), 250)
        self.assertTrue(lines[-1].endswith(f"[{DEPTH + 1}] d: double"), lines[-1])

    def test_IsWrittenAsJson(self):
        out = self.done("tree", "model.xml", "-f", "json", stack=STACK).out
        self.assertEqual(out.count('"children":['), DEPTH + 1)
        self.assertEqual(out.count("{"), out.count("}"))

    def test_IsCounted(self):
        counts = self.done("stat", "model.xml", "-f", "json", stack=STACK).json
        self.assertEqual((counts["groups"], counts["maxDepth"], counts["elements"]), (DEPTH, DEPTH + 2, 1))


class Wide(ToolTest):
    def test_ALargeNumberOfNamesWithOneBeginningIsReadAndDrawn(self):
        count = 30000
        self.document('<root name="r">' + "".join(
            f'<group name="the_beginning_that_all_of_them_have_in_common_{i}"/>' for i in range(count)) + "</root>")
        self.assertEqual(len(self.done("tree", "model.xml").lines), count + 1)
        self.assertEqual(self.done("stat", "model.xml", "-f", "json").json["groups"], count)
        self.done("show", "model.xml", f"the_beginning_that_all_of_them_have_in_common_{count - 1}")

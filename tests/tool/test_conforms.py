from tool import ToolTest

MODEL = """<root name="r">
<table name="Box"><double name="w">1</double><double name="h">2</double></table>
<table name="Lid"><bool name="open">1</bool></table>
<group name="named" class="Box;Lid"/>
<group name="alike"><double name="w"/><int8 name="between"/><double name="h"/></group>
<group name="turned"><double name="h"/><double name="w"/></group>
<table name="table"><double name="w"/><double name="h"/></table>
</root>"""


class Conforms(ToolTest):
    def answer(self, path, class_text):
        self.document(MODEL)
        result = self.run_tool("conforms", "model.xml", path, class_text)
        self.assertEqual(result.err, "")
        return result.status, result.out

    def test_YesWhereTheClassIsNamed(self):
        self.assertEqual(self.answer("named", "Box"), (0, "yes\n"))
        self.assertEqual(self.answer("named", "Lid;Box"), (0, "yes\n"))

    def test_YesWhereTheMembersOccurInOrder(self):
        self.assertEqual(self.answer("alike", "Box"), (0, "yes\n"))
        self.assertEqual(self.answer("table", "Box"), (0, "yes\n"))

    def test_NoWhereTheyAreOutOfOrderOrMissing(self):
        self.assertEqual(self.answer("turned", "Box"), (1, "no\n"))
        self.assertEqual(self.answer("alike", "Lid"), (1, "no\n"))

    def test_NoForAValue(self):
        self.assertEqual(self.answer("alike.w", "Box"), (1, "no\n"))

    def test_AnUnknownClassIsNoAnswer(self):
        self.document(MODEL)
        for class_text in ("None", "Box;None"):
            result = self.run_tool("conforms", "model.xml", "named", class_text)
            self.assertEqual((result.status, result.out, result.err),
                             (3, "", "model.xml: error: no class None, nor in the stores of --schemas\n"))

    def test_AMissingPathIsNoAnswer(self):
        self.document(MODEL)
        self.assertEqual(self.run_tool("conforms", "model.xml", "none", "Box").status, 3)

    def test_QuietAnswersByStatusAlone(self):
        self.document(MODEL)
        result = self.run_tool("conforms", "model.xml", "turned", "Box", "-q")
        self.assertEqual((result.status, result.out, result.err), (1, "", ""))

    def test_InJson(self):
        self.document(MODEL)
        self.assertEqual(self.run_tool("conforms", "model.xml", "turned", "Box", "-f", "json").json,
                         {"path": "turned", "class": "Box", "conforms": False})

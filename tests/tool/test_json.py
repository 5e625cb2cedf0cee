"""Every key that is printed is described, and every key that is described is printed."""

import collections
import re

from tool import SOURCE, ToolTest

MODEL = """<root name="r"><name locale="en">Root</name>
<table name="Pair"><double name="a">1</double><int32 name="b">2 3</int32></table>
<table name="Box"><default unit="Meter" type="double"/><double name="w" units="Meter">1.5</double></table>
<group name="g" class="Box"><struct name="s" type="Pair">1 2 3</struct><string name="t" locale="de">x</string>
<link name="l" to="g"/><double name="far" uri="x"/></group></root>"""

# Keys below these are names that the user gave, or words that stand for themselves.
OPEN = {"names", "types", "units", "classes", "structTypes", "recordKinds"}


def keys_in(value):
    if isinstance(value, list):
        return set().union(*map(keys_in, value)) if value else set()
    if not isinstance(value, dict):
        return set()
    found = set(value)
    for key, each in value.items():
        if key in OPEN and isinstance(each, dict):
            continue
        if key == "value" or key in ("from", "to"):
            continue
        found |= keys_in(each)
    return found


def documented():
    """The keys of each table below "JSON", by the heading."""
    page = (SOURCE / "docs" / "tool.md").read_text()
    page = page[page.index("\n## JSON\n"):]
    keys = collections.defaultdict(set)
    for part in page.split("\n### ")[1:]:
        name, _, text = part.partition("\n")
        keys[name] = set()
        for row in re.findall(r"(?m)^\| (`.*?) \|", text):
            keys[name] |= set(re.findall(r"`(\w+)`", row))
    return keys


class Keys(ToolTest):
    def setUp(self):
        super().setUp()
        self.document(MODEL)
        self.document(MODEL.replace(">x<", ">y<").replace('<link name="l" to="g"/>', '<node name="n"/>'), "other.xml")
        self.done("import", "model.xml", "model.qvt")
        data = bytearray((self.folder / "model.qvt").read_bytes())
        at = data.index("far\0".encode("utf-16-le"))
        data[at] ^= 1
        (self.folder / "bad.qvt").write_bytes(data)

    def printed(self, *runs):
        found = set()
        for arguments in runs:
            result = self.run_tool(*arguments, "-f", "json")
            self.assertIn(result.status, (0, 1, 4), result.err)
            found |= keys_in(result.json)
        return found

    def test_OfEveryVerbAreThoseOfThePage(self):
        keys = documented()
        a_thing, a_value = keys["An object"], keys["A value"]
        repeated = {"path", "count", "target"}
        for verb, also, runs in (
                ("tree", a_thing | a_value, [["tree", "model.xml", "--values"]]),
                ("show", a_thing | a_value, [["show", "model.xml", path] for path in ("", "g", "Box", "g.s", "g.l", "g.far")]),
                ("get", a_thing | a_value, [["get", "model.xml", "g.t"], ["get", "model.xml", "g.l"]]),
                ("find", a_thing | a_value, [["find", "model.xml", "--values"]]),
                ("diff", a_thing, [["diff", "model.xml", "other.xml"]]),
                ("stat", set(), [["stat", "model.xml"]]),
                ("schema", set(), [["schema", "model.xml", "Pair"]]),
                ("units", set(), [["units", "Inch"]]),
                ("conforms", set(), [["conforms", "model.xml", "g", "Box"]]),
                ("check", set(), [["check", "bad.qvt"]]),
                ("repair", keys["check"], [["repair", "bad.qvt", "good.qvt"]]),
                ("dump", set(), [["dump", "model.xml", "--all"], ["dump", "model.xml", "0"]])):
            with self.subTest(verb):
                self.assertEqual(self.printed(*runs) - repeated, (keys[verb] | also) - repeated)

    def test_AreDescribedForEveryVerbThatHasThem(self):
        described = set(documented()) - {"An object", "A value"}
        having = {verb for verb in re.findall(r"(?m)^  (\w+) ", self.done("help").out)
                  if "--format" in self.done("help", verb).out}
        self.assertEqual(having, described)

    def test_OfStatMapsAreDescribed(self):
        self.assertLessEqual(OPEN - {"names"}, documented()["stat"])


class Same(ToolTest):
    def test_AnObjectHasTheSameKeysAndValuesInEveryAnswer(self):
        self.document(MODEL)
        for path in ("g.t", "g.s", "g.far"):
            shown = self.done("show", "model.xml", path, "-f", "json").json
            got = self.run_tool("get", "model.xml", path, "-f", "json")
            trees = self.done("tree", "model.xml", path, "--values", "-f", "json").json
            found = self.done("find", "model.xml", path, "--values", "-f", "json").json["found"][0]
            for other in (trees, found, *([got.json] if got.status == 0 else [])):
                self.assertEqual(other, {key: shown[key] for key in other})
                self.assertLessEqual({"path", "kind", "type", "unit", "class", "value", "count"}, set(other))

    def test_BytesThatAreNoTextStillMakeJson(self):
        self.document('<group name="g"><struct name="s" type="T"/></group>')
        self.assertEqual(self.run_tool("find", "model.xml", "-f", "json").json["found"][0]["path"], "g")

"""The real documents of examples/documents, counted here once more, from their XML alone."""

import base64
import collections
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from tool import DOCUMENTS, QVT, SOURCE, ToolTest

NUMBERS = "bool int8 uint8 int16 uint16 int32 uint32 int64 uint64 scalar double".split()
VECTORS = {"vector2": 2, "vector3": 3, "vector4": 4, "matrix2x2": 4, "matrix3x3": 9, "matrix4x4": 16}
TEXTS = "uuid string time uri version".split()
VALUES = ["binary", *TEXTS, *NUMBERS, *VECTORS, "struct"]
KEYWORDS = ["root", "node", "group", "link", "table", *VALUES]

SAMPLES = {
    "ifc-small.xml": ["--schemas", DOCUMENTS / "ifc-small.lib.xml"],
    "ifc-small.lib.xml": [],
    "gltf-small.xml": [],
}

# What classes bring in, and how much of that the documents override.
BROUGHT = {"ifc-small.xml": (1905, 1102), "ifc-small.lib.xml": (0, 0), "gltf-small.xml": (495, 144 + 21)}


def elements_of(element):
    """Elements of a value in a document without classes and structs."""
    if element.get("uri") is not None:
        return 0
    texts = [each.text or "" for each in element.findall("val")]
    if element.find("val") is None and element.find("name") is None:
        texts = [element.text or ""]
    if element.tag in VECTORS:
        return VECTORS[element.tag]
    if element.tag == "binary":
        return sum(len(base64.b64decode(text)) for text in texts)
    if element.tag in TEXTS:
        return sum(len(text.encode("utf-16-le")) // 2 + 1 for text in texts)
    return max(int(element.get("dim", 0)), *(len(text.split()) for text in texts), 0)


class Document:
    def __init__(self, name):
        self.tags = collections.Counter()
        self.units = collections.Counter()
        self.depth = 0
        self.elements = 0
        pending = [(ElementTree.parse(DOCUMENTS / name).getroot(), 1)]
        while pending:
            element, depth = pending.pop()
            self.tags[element.tag] += 1
            if element.tag in KEYWORDS:
                self.depth = max(self.depth, depth)
            if element.tag in VALUES:
                self.elements += elements_of(element)
                if element.get("units"):
                    self.units[element.get("units")] += 1
            pending += [(child, depth + 1) for child in element]

    def count(self, tags):
        return sum(self.tags[tag] for tag in tags)


class Samples(ToolTest):
    def test_ReportNothing(self):
        for name, schemas in SAMPLES.items():
            with self.subTest(name):
                self.done("tree", DOCUMENTS / name, *schemas)

    def test_ExportedAgainHaveTheSameBytes(self):
        for name, schemas in SAMPLES.items():
            with self.subTest(name):
                self.done("export", DOCUMENTS / name, *schemas, "-o", "once.xml")
                twice = self.done("export", "once.xml", *schemas)
                self.assertGreater(len(twice.bytes), 10000)
                self.assertEqual((self.folder / "once.xml").read_bytes(), twice.bytes)

    def test_ExportedHaveTheSameObjects(self):
        for name, schemas in SAMPLES.items():
            with self.subTest(name):
                self.done("export", DOCUMENTS / name, *schemas, "-o", "once.xml")
                self.assertEqual(self.done("tree", "once.xml", *schemas).out,
                                 self.done("tree", DOCUMENTS / name, *schemas).out)

    def test_AreCountedAsTheirXmlSays(self):
        for name, schemas in SAMPLES.items():
            with self.subTest(name):
                document = Document(name)
                counts = self.done("stat", DOCUMENTS / name, *schemas, "-f", "json").json
                self.assertEqual((counts["nodes"], counts["groups"], counts["links"], counts["maxDepth"]),
                                 (document.tags["node"], document.tags["group"], document.tags["link"], document.depth))
                objects = 1 + counts["containers"] + counts["tables"] + counts["primitives"]
                self.assertEqual(objects - counts["inherited"], document.count(KEYWORDS))
                brought, overridden = BROUGHT[name]
                self.assertEqual(counts["overridden"], overridden)
                self.assertEqual(objects, document.count(KEYWORDS) + brought - overridden)
                self.assertEqual(counts["displayNames"], document.tags["name"])

    def test_WithoutClassesAreCountedToTheLastElement(self):
        document = Document("ifc-small.lib.xml")
        counts = self.done("stat", DOCUMENTS / "ifc-small.lib.xml", "-f", "json").json
        self.assertEqual(counts["types"], {tag: n for tag, n in sorted(document.tags.items()) if tag in VALUES})
        self.assertEqual(counts["units"], dict(sorted(document.units.items())))
        self.assertEqual(counts["elements"], document.elements)
        self.assertEqual((counts["tables"], counts["primitives"], counts["defaults"]),
                         (document.tags["table"], document.count(VALUES), document.tags["default"]))

    def test_HoldTheStructsThatAreKnownOfThem(self):
        counts = self.done("stat", DOCUMENTS / "ifc-small.xml", *SAMPLES["ifc-small.xml"], "-f", "json").json
        self.assertEqual(counts["structTypes"], {"Structs.Axis2Placement3D": 62, "Structs.ColourRgb": 3})

    def test_WithoutTheirLibraryEndWithStatusOneAndOneMessage(self):
        result = self.run_tool("tree", DOCUMENTS / "ifc-small.xml")
        self.assertEqual(result.status, 1)
        self.assertIn("error: class Entities.IfcProject and 183 others are not known", result.err)


class Demonstration(unittest.TestCase):
    def test_RunsToItsEnd(self):
        run = subprocess.run([SOURCE / "examples" / "demo.sh", QVT], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        out = run.stdout.decode()
        self.assertEqual(run.returncode, 0, out)
        for words in ("(inherited)", "(overridden)", "= 10 MilliMeter", "Location = ", "leads to  a node", "name nl-nl"):
            self.assertIn(words, out)
        self.assertRegex(out.splitlines()[-1], r"^the same \d{6} bytes$")

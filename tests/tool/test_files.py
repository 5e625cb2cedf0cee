"""What is imported is read as the document is."""

import os
import subprocess

from tool import DOCUMENTS, QVT, SANITIZED, ToolTest

LIBRARY = DOCUMENTS / "ifc-small.lib.xml"
SCHEMAS = ["--schemas", LIBRARY]
WALL = "wall-with-opening-and-window.Default_Project.Default_Site"


class Samples(ToolTest):
    """Each verb on the documents of examples/documents and on the files that they were imported into."""

    SAMPLES = {
        "ifc-small.xml": (SCHEMAS, WALL, WALL + ".RefElevation", "Structs.Axis2Placement3D", "Entities_2.IfcSite"),
        "ifc-small.lib.xml": ([], "Entities", "Entities.IfcSite.RefElevation", "Structs.Axis2Placement3D", "Structs.Axis2Placement3D"),
        "gltf-small.xml": ([], "streetlight.materials.citybits_texture", "streetlight.buffers.buffer.byteLength",
                           "Library.Vertices.Vertex_P3_N3_T2", "Library.Material"),
    }

    def verbs(self, path, value, layout, name):
        for form in ([], ["-f", "json"]):
            yield "tree", *form
            yield "tree", path, "--values", "-d", "3", *form
            yield "show", *form
            yield "show", path, *form
            yield "show", value, *form
            yield "get", value, *form
            yield "stat", *form
            yield "schema", layout, *form
            yield "conforms", path, name, *form
        yield "export",
        yield "export", path
        yield "export", value
        yield "dump", "0"
        yield "dump", "--all"

    def test_GiveWhatTheirDocumentsGive(self):
        for name, (schemas, *what) in self.SAMPLES.items():
            self.done("import", DOCUMENTS / name, name + ".qvt", *schemas)
            before = (self.folder / (name + ".qvt")).read_bytes()
            for verb, *arguments in self.verbs(*what):
                with self.subTest(f"{name}: {verb} {arguments}"):
                    document = self.run_tool(verb, DOCUMENTS / name, *arguments, *schemas)
                    stored = self.run_tool(verb, name + ".qvt", *arguments, *schemas)
                    self.assertIn(document.status, (0, 1), document.err)
                    self.assertEqual((stored.status, stored.bytes, stored.err),
                                     (document.status, document.bytes, document.err))
            self.done("check", name + ".qvt")
            self.assertEqual((self.folder / (name + ".qvt")).read_bytes(), before)
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(name + ".qvt" for name in self.SAMPLES))

    def test_AreTheSameWithALibraryThatIsAFile(self):
        self.done("import", LIBRARY, "lib.qvt")
        self.done("import", DOCUMENTS / "ifc-small.xml", "model.qvt", "--schemas", "lib.qvt")
        document = self.done("export", DOCUMENTS / "ifc-small.xml", *SCHEMAS)
        for library in ("lib.qvt", LIBRARY):
            self.assertEqual(self.done("export", "model.qvt", "--schemas", library).bytes, document.bytes)

    def test_KeepWhatADocumentKeepsWhenTheyAreExportedAndImportedAgain(self):
        self.done("import", DOCUMENTS / "ifc-small.xml", "model.qvt", *SCHEMAS)
        self.done("export", "model.qvt", *SCHEMAS, "-o", "once.xml")
        self.done("import", "once.xml", "again.qvt", *SCHEMAS)
        self.done("export", "again.qvt", *SCHEMAS, "-o", "twice.xml")
        self.assertEqual((self.folder / "once.xml").read_bytes(), (self.folder / "twice.xml").read_bytes())


class Classes(ToolTest):
    TYPES = '<root name="t"><table name="Pair"><double name="a">1</double><double name="b">2</double></table></root>'

    def setUp(self):
        super().setUp()
        self.document(self.TYPES, "types.xml")
        self.document('<root name="r"><group name="g" class="Pair"><struct name="s" type="Pair">3 4</struct></group></root>')
        self.done("import", "model.xml", "model.qvt", "--schemas", "types.xml")

    def test_StandInTheStoreAlsoWithoutTheirLibrary(self):
        self.assertEqual(self.done("tree", "model.qvt").lines[1:3], ["└── g: group [Pair]", "    ├── a: double (inherited)"])

    def test_ThatWouldBeNeededToWriteAStructAreToldEvenWhenQuiet(self):
        for options in ([], ["-q"]):
            result = self.run_tool("export", "model.qvt", *options)
            self.assertEqual((result.status, result.err),
                             (1, "model.qvt: error: class Pair is not known (--schemas STORE says where to look)\n"))
        self.assertIn(">3 4</struct>", self.done("export", "model.qvt", "--schemas", "types.xml").out)


class Unreadable(ToolTest):
    VERBS = (["tree"], ["show"], ["get", "g"], ["stat"], ["export"], ["dump", "--all"], ["schema", "T"],
             ["conforms", "g", "T"], ["set", "g", "1"], ["new", "h", "group"], ["rm", "g"], ["mv", "g", "h"],
             ["cp", "g", "h"], ["merge", "g", "model.xml"], ["compact"])

    def expect(self, status, words):
        self.document('<root name="r"/>')
        for verb, *arguments in self.VERBS:
            with self.subTest(verb):
                result = self.run_tool(verb, "model.qvt", *arguments)
                self.assertEqual((result.status, result.out), (status, ""), result.err)
                self.assertRegex(result.err, rf"\Amodel\.qvt: error: {words}.*\n\Z")

    def test_AMissingFile(self):
        self.expect(3, "")
        self.assertEqual(os.listdir(self.folder), ["model.xml"])

    def test_WhatIsNoStore(self):
        for contents in (b"anything", b"", b"<root name='r'/>"):
            (self.folder / "model.qvt").write_bytes(contents)
            self.expect(3, "")
            self.assertEqual((self.folder / "model.qvt").read_bytes(), contents)

    def test_ADirectory(self):
        (self.folder / "model.qvt").mkdir()
        self.expect(3, "")

    def test_AFileStoreAsALibrary(self):
        self.document('<root name="r"/>')
        result = self.run_tool("tree", "model.xml", "--schemas", "none.qvt")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertRegex(result.err, r"\Anone\.qvt: error: .+\n\Z")


class Empty(ToolTest):
    """A store that a host has made and not filled."""

    def setUp(self):
        super().setUp()
        subprocess.run([os.environ["QVT_EMPTY_STORE"], self.folder / "model.qvt"], check=True)

    def test_HasNothingToShowOrEdit(self):
        for verb, *arguments in (["tree"], ["show"], ["export"], ["new", "g", "group"], ["set", "", "--name", "de=R"]):
            with self.subTest(verb):
                result = self.run_tool(verb, "model.qvt", *arguments)
                self.assertEqual((result.status, result.out), (3, ""))
                self.assertRegex(result.err, r"\Amodel\.qvt: error: there is no(thing| object) in it.*\n\Z")

    def test_IsCountedAndFilled(self):
        self.assertEqual(self.done("stat", "model.qvt", "-f", "json").json["records"], 0)
        self.document('<root name="r"><group name="g"/></root>')
        self.done("import", "model.xml", "model.qvt")
        self.assertEqual(self.done("tree", "model.qvt").lines, ["r: root, version 0", "└── g: group"])


class Documents(ToolTest):
    def test_AreRefusedByVerbsThatWorkOnFilesAlone(self):
        self.document('<root name="r"><group name="g"/></root>')
        for verb, *arguments in (["set", "g", "1"], ["new", "h", "group"], ["rm", "g"], ["mv", "g", "h"], ["cp", "g", "h"],
                                 ["merge", "g", "model.xml"], ["check"], ["compact"], ["repair", "out.qvt"]):
            for store in ("model.xml", "-"):
                with self.subTest(verb):
                    result = self.run_tool(verb, store, *arguments)
                    self.assertEqual((result.status, result.out, result.err), (
                        2, "", f"qvt: error: {store} is a document; {verb} works on file stores (*.qvt)\n"))
        for arguments in (["import", "model.xml", "other.xml"], ["repair", "model.qvt", "out.xml"],
                          ["cp", "model.qvt", "g", "h", "--to", "out.xml"]):
            result = self.run_tool(*arguments)
            self.assertEqual((result.status, result.out), (2, ""))
            self.assertIn("does not end in .qvt", result.err)
        self.assertEqual(os.listdir(self.folder), ["model.xml"])


class Deep(ToolTest):
    def test_AFileIsReadAndWrittenOnASmallStack(self):
        depth, stack = 5000, 256 * 1024
        self.document('<root name="r">' + '<group name="g">' * depth + '<double name="d">1</double>' + "</group>" * depth +
                      "</root>")
        self.done("import", "model.xml", "model.qvt", stack=stack)
        path = ".".join(["g"] * depth)
        self.assertEqual(self.done("get", "model.qvt", path + ".d", stack=stack).out, "1\n")
        self.assertEqual(self.done("export", "model.qvt", stack=stack).bytes, self.done("export", "model.xml", stack=stack).bytes)
        self.done("cp", "model.qvt", "g", "h", stack=stack)
        self.done("rm", "model.qvt", "g", stack=stack)
        self.assertEqual(self.done("stat", "model.qvt", "-f", "json", stack=stack).json["groups"], depth)


class Writers(ToolTest):
    """One writer, many readers. The writer here reads its document from a pipe that stays open."""

    def setUp(self):
        super().setUp()
        self.document('<root name="r"><group name="g"/></root>')
        self.done("import", "model.xml", "model.qvt")

    def writing(self):
        os.mkfifo(self.folder / "pipe")
        run = subprocess.Popen([QVT, "merge", "model.qvt", "g", "pipe"], cwd=self.folder,
                               env={**os.environ, **SANITIZED})
        self.addCleanup(run.wait)
        return run, open(self.folder / "pipe", "wb")

    def test_ASecondOneIsRefusedAtOnceWhileReadersGoOn(self):
        run, pipe = self.writing()
        with pipe:
            for arguments in (["set", "model.qvt", "g", "--name", "de=G"], ["import", "model.xml", "model.qvt"],
                              ["compact", "model.qvt"]):
                with self.subTest(arguments):
                    result = self.run_tool(*arguments)
                    self.assertEqual((result.status, result.out), (5, ""), result.err)
                    self.assertRegex(result.err, r"\Amodel\.qvt: error: .+\n\Z")
            self.assertEqual(len(self.done("tree", "model.qvt").lines), 2)
            self.done("check", "model.qvt")
            pipe.write(b'<root name="s"><node name="n"/></root>')
        self.assertEqual(run.wait(), 0)
        self.assertEqual(self.done("tree", "model.qvt").lines[-1], "    └── n: node")

    def test_AKilledOneKeepsNobodyOut(self):
        run, pipe = self.writing()
        run.kill()
        run.wait()
        pipe.close()
        self.done("new", "model.qvt", "h", "group")
        self.assertEqual(len(self.done("tree", "model.qvt").lines), 3)

import os
import pty
import shutil
import signal
import subprocess
import time

from tool import QVT, ToolTest, read_terminal

MODEL = '<root name="r" version="3"><group name="g"><int8 name="i">1</int8></group></root>'


class Import(ToolTest):
    def imported(self, *texts, options=(), status=0):
        """Writes documents and imports them into model.qvt in one go."""
        names = [self.document(text, f"{i}.xml") for i, text in enumerate(texts)]
        result = self.run_tool("import", *names, "model.qvt", *options)
        self.assertEqual(result.status, status, result.err)
        return result

    def tree(self, *options):
        return self.done("tree", "model.qvt", *options).lines

    def test_MakesAStoreThatHoldsTheDocument(self):
        self.assertEqual((self.imported(MODEL).out, os.listdir(self.folder).count("model.qvt")), ("", 1))
        self.assertEqual(self.tree("--values"), ["r: root, version 3", "└── g: group", "    └── i: int8 = 1"])

    def test_LeavesNothingBesideTheStore(self):
        self.imported(MODEL)
        self.assertEqual(sorted(os.listdir(self.folder)), ["0.xml", "model.qvt"])

    def test_ReadsFurtherDocumentsIntoTheRootAndKeepsItsNameAndVersion(self):
        self.imported(MODEL, '<root name="s" version="9"><name locale="de">S</name><node name="n"/></root>')
        self.assertEqual(self.tree(), ["r: root, version 3", "├── g: group", "│   └── i: int8", "└── n: node"])
        self.assertEqual(self.done("show", "model.qvt", "-f", "json").json["names"], {"de": "S"})

    def test_ReadsIntoAStoreThatIsThere(self):
        self.imported(MODEL)
        self.imported('<root name="s"><node name="n"/></root>')
        self.assertEqual(self.tree()[-1], "└── n: node")

    def test_MakesAChildOfAnObjectThatIsNoRoot(self):
        self.imported(MODEL, '<node name="n"><name locale="de">N</name><int8 name="j">2</int8></node>')
        self.assertEqual(self.tree("--values")[-2:], ["└── n: node", "    └── j: int8 = 2"])
        self.assertEqual(self.done("show", "model.qvt", "n", "-f", "json").json["names"], {"de": "N"})

    def test_RefusesSuchAnObjectWhereItsNameIsTaken(self):
        result = self.imported(MODEL, '<node name="g"/>', status=6)
        self.assertEqual(result.err, "model.qvt: error: g is there already\n")
        self.assertFalse((self.folder / "model.qvt").exists())

    def test_ReadsIntoAContainerForWhichTheOutermostOneStands(self):
        self.imported(MODEL)
        self.imported('<root name="s"><node name="n"/></root>', '<group name="x"><node name="o"/></group>',
                      options=["--into", "g"])
        self.assertEqual(self.tree()[2:], ["    ├── i: int8", "    ├── n: node", "    └── o: node"])

    def test_ReadsATableOrPrimitiveIntoAContainerAsItsChild(self):
        self.imported(MODEL)
        self.imported('<table name="t"/>', '<int8 name="j">2</int8>', options=["--into", "g"])
        self.assertEqual(self.tree()[2:], ["    ├── i: int8", "    ├── t: table", "    └── j: int8"])

    def test_PutsNoPrimitiveBelowTheRoot(self):
        result = self.imported(MODEL, '<int8 name="j">2</int8>', status=6)
        self.assertEqual(result.err, "model.qvt: error: no primitive can stand directly below the root\n")

    def test_ReadsIntoNothingButAContainer(self):
        self.imported(MODEL)
        before = (self.folder / "model.qvt").read_bytes()
        result = self.imported('<root name="s"/>', options=["--into", "g.i"], status=6)
        self.assertEqual(result.err, "model.qvt: error: g.i is no container\n")
        result = self.imported('<root name="s"/>', options=["--into", "g.x"], status=3)
        self.assertEqual(result.err, "model.qvt: error: nothing at g.x, though there is g\n")
        self.assertEqual((self.folder / "model.qvt").read_bytes(), before)

    def test_GivesAPropertyThatIsThereTheNewValue(self):
        self.imported(MODEL)
        self.imported('<group name="x"><int8 name="i">5</int8></group>', options=["--into", "g"])
        self.assertEqual(self.done("get", "model.qvt", "g.i").out, "5\n")

    def test_ReportsAContainerWhoseNameIsTaken(self):
        self.imported(MODEL)
        result = self.imported('<root name="s"><group name="g"><int8 name="i">5</int8></group></root>', status=1)
        self.assertEqual(result.err, "0.xml:1:16: error: group : could not nest the element\n")
        self.assertEqual(self.done("get", "model.qvt", "g.i").out, "1\n")

    def test_WithReportsImportsTheRestAndEndsWithStatusOne(self):
        result = self.imported('<root name="r"><nonsense/><group name="g"/></root>', status=1)
        self.assertEqual(result.err, "0.xml:1:16: error: nonsense : unknown element, skipping\n")
        self.assertEqual(self.tree(), ["r: root, version 0", "└── g: group"])

    def test_WithAClassThatIsNotKnownEndsWithStatusOne(self):
        result = self.imported('<root name="r"><group name="g" class="T.Box"/></root>', options=["-q"], status=1)
        self.assertEqual(result.err, "0.xml:1:16: error: class T.Box is not known (--schemas STORE says where to look)\n")

    def test_FindsClassesInTheStoreItself(self):
        self.imported('<root name="r"><table name="Box"><int8 name="w">4</int8></table></root>',
                      '<root name="s"><group name="g" class="Box"/></root>', '<node name="n" class="Box"/>')
        self.assertEqual(self.tree("--values")[-4:], ["├── g: group [Box]", "│   └── w: int8 = 4 (inherited)",
                                                      "└── n: node [Box]", "    └── w: int8 = 4 (inherited)"])

    def test_FindsClassesInALibraryThatIsAStore(self):
        self.document('<root name="t"><table name="Box"><int8 name="w">4</int8></table></root>', "types.xml")
        self.done("import", "types.xml", "types.qvt")
        self.imported('<root name="r"><group name="g" class="Box"/></root>', options=["--schemas", "types.qvt"])
        self.assertEqual(self.tree()[-1], "    └── w: int8 (inherited)")

    def test_OfADocumentOnStandardInput(self):
        self.done("import", "-", "model.qvt", stdin=MODEL.encode())
        self.assertEqual(len(self.tree()), 3)

    def test_OfAnObjectThatIsNoRootIsThatObject(self):
        self.imported('<group name="g"><node name="n"/><link name="l" to="n"/></group>')
        self.assertEqual(self.tree(), ["g: group", "├── n: node", "└── l: link -> n"])
        self.assertEqual(self.done("show", "model.qvt", "g.l").lines[-1], "leads to  a node")
        result = self.imported('<node name="x"/>', status=6)
        self.assertIn("its outermost object is no root", result.err)
        self.imported('<group name="s"><node name="x"/></group>', options=["--into", "g"])
        self.assertEqual(self.tree()[-1], "└── x: node")


class AllOrNothing(ToolTest):
    BROKEN = '<root name="s"><group name="h"/>'

    def setUp(self):
        super().setUp()
        self.document(MODEL, "good.xml")
        self.document(self.BROKEN, "broken.xml")
        self.store = self.folder / "model.qvt"

    def test_ADocumentThatIsNotWellFormedLeavesNoNewStore(self):
        for documents in (["broken.xml"], ["good.xml", "broken.xml"], ["broken.xml", "good.xml"]):
            with self.subTest(documents):
                result = self.run_tool("import", *documents, "model.qvt")
                self.assertEqual((result.status, result.err),
                                 (3, "broken.xml:1:33: error: not well-formed: no element found\n"))
                self.assertEqual(sorted(os.listdir(self.folder)), ["broken.xml", "good.xml"])

    def test_ADocumentThatIsNotWellFormedLeavesTheStoreAsItWas(self):
        self.done("import", "good.xml", "model.qvt")
        before = self.store.read_bytes()
        self.document('<root name="t"><node name="n"/></root>', "other.xml")
        self.assertEqual(self.run_tool("import", "other.xml", "broken.xml", "model.qvt").status, 3)
        self.assertEqual(self.store.read_bytes(), before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["broken.xml", "good.xml", "model.qvt", "other.xml"])

    def test_AMissingDocumentIsFoundBeforeAnythingIsMade(self):
        result = self.run_tool("import", "good.xml", "none.xml", "model.qvt")
        self.assertEqual((result.status, result.err),
                         (3, "none.xml: error: cannot read it: No such file or directory\n"))
        self.assertFalse(self.store.exists())

    def test_KeepGoingKeepsWhatCouldBeReadAndEndsWithStatusThree(self):
        self.document('<root name="t"><node name="n"/></root>', "other.xml")
        result = self.run_tool("import", "good.xml", "broken.xml", "other.xml", "model.qvt", "--keep-going")
        self.assertEqual((result.status, result.err),
                         (3, "broken.xml:1:33: error: not well-formed: no element found\n"))
        self.assertEqual(self.done("tree", "model.qvt", "-d", "1").lines,
                         ["r: root, version 3", "├── g: group", "├── h: group", "└── n: node"])
        self.done("check", "model.qvt")

    def test_ADocumentOfWhichNothingWasReadLeavesNoStore(self):
        self.document("<nonsense/>", "nonsense.xml")
        result = self.run_tool("import", "nonsense.xml", "model.qvt")
        self.assertEqual((result.status, result.err.splitlines()[-1]), (1, "nonsense.xml: error: nothing was read"))
        self.assertFalse(self.store.exists())

    def test_ALinkThatLeadsNowhereIsNotReplaced(self):
        (self.folder / "model.qvt").symlink_to("elsewhere.qvt")
        result = self.run_tool("import", "good.xml", "model.qvt")
        self.assertEqual((result.status, result.err), (6, "model.qvt: error: there is such a file already\n"))
        self.assertEqual(sorted(os.listdir(self.folder)), ["broken.xml", "good.xml", "model.qvt"])

    def test_KeepGoingWithNothingReadLeavesNoStore(self):
        self.document("<root", "worse.xml")
        result = self.run_tool("import", "worse.xml", "model.qvt", "--keep-going")
        self.assertEqual((result.status, result.err.splitlines()),
                         (3, ["worse.xml:1:1: error: not well-formed: unclosed token", "worse.xml: error: nothing was read"]))
        self.assertFalse(self.store.exists())

    def test_AStoreInAFolderThatIsNotThere(self):
        result = self.run_tool("import", "good.xml", "none/model.qvt")
        self.assertEqual((result.status, result.out), (7, ""))
        self.assertTrue(result.err.startswith("none/model.qvt: error: "), result.err)
        self.assertEqual(result.err.count("\n"), 1)

    def test_WhatIsNoStoreIsNotTouched(self):
        self.document("anything", "model.qvt")
        result = self.run_tool("import", "good.xml", "model.qvt")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertEqual(self.store.read_bytes(), b"anything")

    def test_AKilledImportLeavesTheOldState(self):
        self.done("import", "good.xml", "model.qvt")
        before = self.done("dump", "model.qvt", "--all").out
        rows = "".join(f'<group name="g{i}"><double name="d">1</double></group>' for i in range(2000))
        groups = "".join(f'<group name="h{i}">{rows}</group>' for i in range(20))
        self.document(f'<root name="t">{groups}</root>', "large.xml")
        shutil.copy(self.store, self.folder / "whole.qvt")
        self.done("import", "large.xml", "whole.qvt")
        whole = self.done("dump", "whole.qvt", "--all").out
        for delay in (0.02, 0.1, 0.3, 0.6):
            run = subprocess.Popen([QVT, "import", "large.xml", "model.qvt"], cwd=self.folder)
            time.sleep(delay)
            run.send_signal(signal.SIGKILL)
            run.wait()
            after = self.done("dump", "model.qvt", "--all").out
            with self.subTest(delay):
                self.assertTrue(after in (before, whole), "neither the old state nor the new one")
                self.done("check", "model.qvt")
            if after == whole:
                break
        self.document('<node name="n"/>', "small.xml")
        self.done("import", "small.xml", "model.qvt")

    def test_AKilledImportLeavesNoNewStore(self):
        self.document('<root name="r">' + '<group name="g"><double name="d">1</double></group>' * 100000 + "</root>", "large.xml")
        run = subprocess.Popen([QVT, "import", "large.xml", "model.qvt"], cwd=self.folder, stderr=subprocess.DEVNULL)
        time.sleep(0.1)
        run.send_signal(signal.SIGKILL)
        if run.wait() != 0:
            self.assertFalse(self.store.exists())


class Progress(ToolTest):
    def test_ShowsABarOnATerminalForWhatTakesLong(self):
        rows = "".join(f'<group name="g{i}"><double name="d">1</double></group>' for i in range(2000))
        said, times = "", 1
        while not said and times <= 1024:
            times *= 4
            (self.folder / "model.qvt").unlink(missing_ok=True)
            groups = "".join(f'<group name="{i}">{rows}</group>' for i in range(times))
            self.document(f'<root name="r">{groups}</root>')
            said = self.said()
        self.assertRegex(said, r"\rreading model\.xml \[[#.]{40}\] +\d+%")
        self.assertTrue(said.endswith("\r\x1b[K"), repr(said[-80:]))

    def said(self):
        master, slave = pty.openpty()
        run = subprocess.Popen([QVT, "import", "model.xml", "model.qvt"], stderr=slave, cwd=self.folder)
        os.close(slave)
        out = read_terminal(master)
        self.assertEqual(run.wait(), 0)
        return out.decode()

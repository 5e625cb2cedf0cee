import os
import random
import re
import resource
import signal
import subprocess

from tool import DOCUMENTS, QVT, SANITIZED, ToolTest

MODEL = '<root name="r" version="1"><group name="g"><string name="t">{}</string></group><group name="h"/></root>'
TEXT = "".join(chr(0x4E00 + i) for i in range(3000))


class IntegrityTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.document(MODEL.format(TEXT))
        self.done("import", "model.xml", "model.qvt")
        self.store = self.folder / "model.qvt"

    def damage(self, name="bad.qvt"):
        """A copy with one wrong bit in the value of g.t."""
        data = bytearray(self.store.read_bytes())
        data[data.index("".join(TEXT[300:310]).encode("utf-16-le"))] ^= 1
        (self.folder / name).write_bytes(data)


class Check(IntegrityTest):
    def test_OfASoundStoreSaysSo(self):
        self.assertEqual(self.done("check", "model.qvt").out, "model.qvt: 6 records, sound\n")
        self.assertEqual(self.done("check", "model.qvt", "-f", "json").json,
                         {"store": "model.qvt", "sound": True, "records": 6, "findings": []})
        self.assertEqual(self.done("check", "model.qvt", "-q").out, "")

    def test_ChangesNothing(self):
        before = self.store.read_bytes()
        self.done("check", "model.qvt")
        self.assertEqual(self.store.read_bytes(), before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["model.qvt", "model.xml"])

    def test_NamesTheRecordThatIsDamaged(self):
        self.damage()
        result = self.run_tool("check", "bad.qvt")
        self.assertEqual((result.status, result.err), (4, ""))
        self.assertRegex(result.out, r"(?m)^bad\.qvt: error: record \d+: .*checksum")
        self.assertRegex(result.lines[-1], r"^bad\.qvt: \d+ records, \d+ errors?$")
        found = self.run_tool("check", "bad.qvt", "-f", "json").json
        self.assertFalse(found["sound"])
        self.assertIn("error", [each["severity"] for each in found["findings"]])

    def test_CountsNotesAndListsThemInJson(self):
        self.done("import", DOCUMENTS / "gltf-small.xml", "gltf.qvt")
        lines = self.done("check", "gltf.qvt").lines
        notes = self.done("check", "gltf.qvt", "-f", "json").json["findings"]
        self.assertGreater(len(notes), 100)
        self.assertEqual(lines[0], f"gltf.qvt: note: {len(notes)} findings [unreachable], listed by -f json")
        self.assertEqual(len(lines), 2)

    def test_OfAMissingFileIsMissing(self):
        result = self.run_tool("check", "none.qvt")
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertRegex(result.err, r"\Anone\.qvt: error: .+\n\Z")

    def test_OfWhatIsNoStoreFindsNoStore(self):
        self.document("anything", "text.qvt")
        result = self.run_tool("check", "text.qvt")
        self.assertEqual(result.status, 4)
        self.assertIn("[identity]", result.lines[0])


class Damaged(IntegrityTest):
    def test_AReadThatNeedsWhatIsDamagedSaysWhichRecord(self):
        self.damage()
        result = self.run_tool("export", "bad.qvt")
        self.assertEqual((result.status, result.out), (4, ""))
        self.assertRegex(result.err, r"\Abad\.qvt: error: record \d+: .+ \(qvt check STORE lists what is damaged, "
                                     r"qvt repair STORE NEW saves the rest\)\n\Z")

    def test_AnEditThatMeetsItChangesNothing(self):
        self.damage()
        before = (self.folder / "bad.qvt").read_bytes()
        self.assertEqual(self.run_tool("cp", "bad.qvt", "g", "k").status, 4)
        self.assertEqual((self.folder / "bad.qvt").read_bytes(), before)

    def test_EveryVerbGivesTheRightAnswerOrAClearErrorOnAnyDamage(self):
        verbs = (["tree", "--values"], ["export"], ["stat"], ["dump", "--all"], ["check"], ["get", "g.t"])
        right = {verb[0]: self.done(verb[0], "model.qvt", *verb[1:]).out.replace("model.qvt", "bad.qvt") for verb in verbs}
        sound = self.store.read_bytes()
        chance = random.Random(5)
        for each in range(40):
            data = bytearray(sound)
            if each % 4 == 3:
                del data[chance.randrange(len(data)):]
            else:
                for _ in range(1 << each % 4):
                    data[chance.randrange(len(data))] ^= 1 << chance.randrange(8)
            (self.folder / "bad.qvt").write_bytes(data)
            for verb in verbs:
                with self.subTest(f"{each} {verb[0]}"):
                    result = self.run_tool(verb[0], "bad.qvt", *verb[1:])
                    if verb[0] == "check":
                        self.assertIn(result.status, (0, 3, 4), result.err)
                    elif result.status == 0:
                        self.assertEqual(result.out, right[verb[0]])
                    else:
                        self.assertIn(result.status, (3, 4), result.err)
                        self.assertRegex(result.err, r"\Abad\.qvt: error: .+\n\Z")


class Repair(IntegrityTest):
    def mended(self, *arguments):
        """Runs a repair that finds something to mend, and says so by its status."""
        result = self.run_tool(*arguments)
        self.assertEqual((result.status, result.err), (1, ""))
        return result

    def test_KeepsAllThatIsSoundAndItsResultPassesTheCheck(self):
        self.damage()
        before = (self.folder / "bad.qvt").read_bytes()
        result = self.mended("repair", "bad.qvt", "good.qvt")
        self.assertRegex(result.lines[0], r"^bad\.qvt: error: record \d+: ")
        self.assertRegex(result.lines[-1], r"^good\.qvt: \d+ records, \d+ repairs?$")
        self.done("check", "good.qvt")
        self.assertEqual(self.done("tree", "good.qvt").lines, ["r: root, version 1", "├── g: group", "└── h: group"])
        self.assertEqual((self.folder / "bad.qvt").read_bytes(), before)

    def test_OfASoundStoreHasTheSameRecords(self):
        self.done("repair", "model.qvt", "good.qvt")
        self.assertEqual(self.done("dump", "good.qvt", "--all").out, self.done("dump", "model.qvt", "--all").out)

    def test_NeverReplacesAFile(self):
        self.document("anything", "good.qvt")
        result = self.run_tool("repair", "model.qvt", "good.qvt")
        self.assertEqual((result.status, result.out), (6, ""))
        self.assertRegex(result.err, r"\Agood\.qvt: error: .+\n\Z")
        self.assertEqual((self.folder / "good.qvt").read_bytes(), b"anything")

    def wide(self):
        self.document('<root name="r">' + "".join(f'<group name="g{i}"/>' for i in range(2000)) + "</root>", "wide.xml")
        self.done("import", "wide.xml", "wide.qvt")
        return (self.folder / "wide.qvt").read_bytes()

    def records(self, name):
        self.done("check", name, "-q")
        return self.done("stat", name, "-f", "json").json["records"]

    def test_KeepsTheBeginningOfAFileThatIsCutOff(self):
        data = self.wide()
        (self.folder / "bad.qvt").write_bytes(data[:len(data) // 2])
        self.mended("repair", "bad.qvt", "good.qvt")
        self.assertGreater(self.records("good.qvt"), 500)

    def test_SalvagesAFileOfWhoseOrderNothingIsLeft(self):
        data = self.wide()
        (self.folder / "bad.qvt").write_bytes(data[:4096] + bytes(5 * 4096) + data[6 * 4096:])
        result = self.run_tool("repair", "bad.qvt", "good.qvt")
        self.assertEqual((result.status, result.out), (4, ""))
        self.assertFalse((self.folder / "good.qvt").exists())
        self.mended("repair", "bad.qvt", "good.qvt", "--salvage")
        self.assertGreater(self.records("good.qvt"), 1900)

    def test_PutsWhatNothingLeadsToBelowAGroup(self):
        data = bytearray(self.store.read_bytes())
        for group in list(re.finditer(rb"\x04\0{8}", data)):  # containers below record 0
            data[group.start()] ^= 1
        (self.folder / "bad.qvt").write_bytes(data)
        self.mended("repair", "bad.qvt", "good.qvt", "--recover", "recovered")
        self.done("check", "good.qvt", "-q")
        self.assertIn("recovered: group", self.done("tree", "good.qvt").out)

    def test_ThatCannotBeWrittenNamesWhatWasAskedFor(self):
        """/proc takes no file of anybody."""
        for out, words in (("none/good.qvt", "none/: No such file or directory"), ("/proc/good.qvt", "No such file or directory")):
            result = self.run_tool("repair", "model.qvt", out)
            self.assertEqual((result.status, result.out, result.err), (7, "", f"{out}: error: {words}\n"))

    def test_OfNothingLeavesNothing(self):
        self.document("anything", "bad.qvt")
        for source, status in (("none.qvt", 3), ("bad.qvt", 4)):
            result = self.run_tool("repair", source, "good.qvt")
            self.assertEqual((result.status, result.out), (status, ""), result.err)
        self.assertFalse((self.folder / "good.qvt").exists())

    def test_AnswersInJson(self):
        self.damage()
        answer = self.mended("repair", "bad.qvt", "good.qvt", "-f", "json").json
        self.assertEqual((answer["store"], answer["out"], answer["sound"]), ("bad.qvt", "good.qvt", False))
        self.assertIn("error", [each["severity"] for each in answer["findings"]])


class Compact(IntegrityTest):
    def test_GivesRoomBackAndKeepsTheRecords(self):
        self.done("import", DOCUMENTS / "gltf-small.xml", "gltf.qvt")
        models = self.done("tree", "gltf.qvt", "-d", "1", "-f", "json").json["children"]
        self.done("rm", "gltf.qvt", *(each["name"] for each in models))
        before, size = self.done("dump", "gltf.qvt", "--all").out, (self.folder / "gltf.qvt").stat().st_size
        self.assertEqual(self.done("compact", "gltf.qvt").out, "")
        self.assertEqual(self.done("dump", "gltf.qvt", "--all").out, before)
        self.assertLess((self.folder / "gltf.qvt").stat().st_size, size / 2)
        self.done("check", "gltf.qvt", "-q")

    def test_OfADamagedStoreIsRefusedAndLeavesItAsItIs(self):
        self.damage()
        before = (self.folder / "bad.qvt").read_bytes()
        for options in ([], ["--drop-unreachable"]):
            result = self.run_tool("compact", "bad.qvt", *options)
            self.assertEqual((result.status, result.out), (4, ""))
            self.assertRegex(result.err, r"\Abad\.qvt: error: \d+ errors? in it, and it stays as it is \(qvt check STORE "
                                         r"lists what is damaged, qvt repair STORE NEW saves the rest\)\n\Z")
            self.assertEqual((self.folder / "bad.qvt").read_bytes(), before)

    def test_OfAFileThatIsCutOffIsRefusedToo(self):
        data = self.store.read_bytes()
        (self.folder / "bad.qvt").write_bytes(data[:len(data) // 2])
        self.assertEqual(self.run_tool("compact", "bad.qvt").status, 4)


class DroppingWhatNothingLeadsTo(IntegrityTest):
    """What is left behind by elements that an import refuses."""

    def setUp(self):
        super().setUp()
        self.tidy = self.done("dump", "model.qvt", "--all").out
        for _ in range(2):
            self.assertEqual(self.run_tool("import", "model.xml", "model.qvt").status, 1)

    def unreachable(self):
        found = self.done("check", "model.qvt", "-f", "json").json["findings"]
        return [each["offset"] for each in found if each["code"] == "unreachable"]

    def test_SaysHowManyRecordsWentAndLeavesAllOthers(self):
        left = len(self.done("dump", "model.qvt", "--all").lines) - len(self.tidy.splitlines())
        self.assertEqual(left, 6)
        result = self.done("compact", "model.qvt", "--drop-unreachable")
        self.assertEqual(result.out, f"model.qvt: {left} records dropped\n")
        self.assertEqual(self.done("dump", "model.qvt", "--all").out, self.tidy)
        self.assertEqual(self.unreachable(), [])
        self.assertEqual(self.done("compact", "model.qvt", "--drop-unreachable").out, "model.qvt: 0 records dropped\n")

    def test_IsSilentWhenQuiet(self):
        self.assertEqual(self.done("compact", "model.qvt", "--drop-unreachable", "-q").out, "")
        self.assertEqual(self.unreachable(), [])

    def test_IsNotDoneUnasked(self):
        before = self.unreachable()
        self.done("compact", "model.qvt")
        self.assertEqual(self.unreachable(), before)
        self.assertGreater(len(before), 0)

    def test_LeavesRepairNothingToBringBack(self):
        self.done("compact", "model.qvt", "--drop-unreachable")
        self.done("repair", "model.qvt", "good.qvt", "--recover", "found")
        self.assertEqual(self.done("tree", "good.qvt").out, self.done("tree", "model.qvt").out)


class Unwritable(IntegrityTest):
    def test_WhereThereIsNoRoomNothingChangesAndItHasItsOwnStatus(self):
        def no_room():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        before = self.store.read_bytes()
        self.document(MODEL.format(TEXT * 20).replace('name="g"', 'name="k"'), "large.xml")
        self.done("import", "large.xml", "large.qvt")
        for arguments in (["merge", "model.qvt", "h", "large.xml"], ["import", "large.xml", "new.qvt"],
                          ["repair", "large.qvt", "new.qvt"]):
            run = subprocess.run([QVT, *arguments], cwd=self.folder, stderr=subprocess.PIPE, preexec_fn=no_room,
                                 env={**os.environ, **SANITIZED})
            self.assertEqual(run.returncode, 7, run.stderr)
            self.assertRegex(run.stderr.decode(), rf"\A{arguments[1 if arguments[0] == 'merge' else -1]}: error: .+\n\Z")
            self.assertNotIn("new.qvt.", run.stderr.decode())
        self.assertEqual(self.done("export", "model.qvt").bytes, self.done("export", "model.xml").bytes)
        self.assertEqual(self.store.read_bytes(), before)
        self.assertFalse((self.folder / "new.qvt").exists())

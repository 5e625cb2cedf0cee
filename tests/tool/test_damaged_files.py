"""Every verb on files that were damaged anywhere: the right answer, or a clear error."""

import os
import random
import shutil
import unittest

from tool import DOCUMENTS, ToolTest

PAGE = 4096
TORTURE = os.environ.get("QVT_TORTURE")
FILES = 2000 if TORTURE else 24
SEED = int(TORTURE or 1)

READING = [
    ["tree", "--values"],
    ["show", "streetlight.materials.citybits_texture.alphaCutoff"],
    ["get", "streetlight.buffers.buffer.byteLength"],
    ["stat"],
    ["export"],
    ["dump", "--all"],
]


def flip_bits(data, chance):
    for _ in range(chance.randint(1, 8)):
        data[chance.randrange(len(data))] ^= 1 << chance.randrange(8)


def spoil_header(data, chance):
    data[chance.randrange(100)] = chance.randrange(256)


def overwrite_run(data, chance):
    begin, size = chance.randrange(len(data)), chance.choice([16, 512, 4096, 20000])
    filling = bytes(size) if chance.randrange(2) else chance.randbytes(size)
    data[begin:begin + size] = filling[:len(data) - begin]


def cut(data, chance):
    del data[chance.randrange(len(data)):]


def swap_pages(data, chance):
    first, second = (chance.randrange(len(data) // PAGE) * PAGE for _ in range(2))
    page = bytes(data[first:first + PAGE])
    data[first:first + PAGE] = data[second:second + PAGE]
    data[second:second + PAGE] = page


DAMAGES = [flip_bits, spoil_header, overwrite_run, cut, swap_pages]


class DamagedFiles(ToolTest):
    def setUp(self):
        super().setUp()
        run = self.run_tool("import", DOCUMENTS / "gltf-small.xml", "sound.qvt")
        self.assertIn(run.status, (0, 1), run.err)
        self.sound = (self.folder / "sound.qvt").read_bytes()
        self.right = [self.run_tool(verb[0], "sound.qvt", *verb[1:]) for verb in READING]
        for verb, answer in zip(READING, self.right):
            self.assertIn(answer.status, (0, 1), (verb, answer.err))

    def clear_error(self, run, what):
        self.assertIn(run.status, (3, 4), (what, run.status, run.err))
        self.assertRegex(run.err, r"(?m)^\S+\.qvt: error: .", what)

    def damaged(self, number):
        chance = random.Random(SEED * 1000003 + number)
        data = bytearray(self.sound)
        DAMAGES[number % len(DAMAGES)](data, chance)
        (self.folder / "bad.qvt").write_bytes(data)
        return data

    def test_every_verb_gives_the_right_answer_or_a_clear_error(self):
        for number in range(FILES):
            with self.subTest(number=number):
                data = self.damaged(number)
                is_sound = self.run_tool("check", "bad.qvt").status == 0
                for verb, right in zip(READING, self.right):
                    run = self.run_tool(verb[0], "bad.qvt", *verb[1:])
                    if run.status == right.status and run.bytes == right.bytes:
                        continue
                    self.assertFalse(is_sound, (verb, run.err))
                    self.clear_error(run, verb)
                self.assertEqual((self.folder / "bad.qvt").read_bytes(), bytes(data), "reading has changed it")
                self.edit()
                self.repair()

    def edit(self):
        shutil.copy(self.folder / "bad.qvt", self.folder / "edited.qvt")
        path = "streetlight.buffers.buffer.byteLength"
        run = self.run_tool("set", "edited.qvt", path, "12345")
        if run.status != 0:
            return self.clear_error(run, "set")
        again = self.run_tool("get", "edited.qvt", path)
        self.assertEqual((again.status, again.out), (0, "12345\n"), again.err)

    def repair(self):
        for options in ([], ["--salvage", "--recover", "recovered"]):
            run = self.run_tool("repair", "bad.qvt", "good.qvt", *options)
            if (self.folder / "good.qvt").exists():
                self.assertIn(run.status, (0, 1), run.err)
                check = self.run_tool("check", "good.qvt")
                self.assertEqual(check.status, 0, check.out)
                (self.folder / "good.qvt").unlink()
            else:
                self.clear_error(run, "repair")


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/env python3
"""What is wrong on a page does not pass unseen: no block is left out for its form."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

BLOCKS = pathlib.Path(__file__).with_name("blocks.py")


def fence(form, text):
    return f"```{form}\n{text}```\n"


def answer(page):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "page.md")
        path.write_text("# A page\n\n" + page)
        run = subprocess.run([sys.executable, BLOCKS, path], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return run.returncode, run.stdout.decode()


class Pages(unittest.TestCase):
    def refuses(self, page, words):
        status, said = answer(page)
        self.assertEqual(status, 1, said)
        self.assertIn(words, said)

    def test_a_page_that_tells_the_truth_passes(self):
        page = fence("text drawing", "--->\n") + fence("sh", "./dev test\n")
        page += fence("txt words", "one\n") + fence("console", "$ cat words\none\n$ echo a \\\n  b\na b\n")
        status, said = answer(page + "[here](#a-page)\n")
        self.assertEqual(status, 0, said)

    def test_a_command_that_is_not_there_is_refused(self):
        self.refuses(fence("sh", "tools/lint/nonsense.py --update\n"), "there is no tools/lint/nonsense.py")

    def test_an_unknown_language_is_refused(self):
        self.refuses(fence("python", "print()\n"), "nothing is known of a block python")

    def test_a_block_without_a_language_is_refused(self):
        self.refuses(fence("", "code\n"), "a fence that begins or ends no block")

    def test_an_indented_block_is_refused(self):
        self.refuses("    ls\n", "this stands in no block")

    def test_another_fence_is_refused(self):
        self.refuses("~~~console\n$ true\n~~~\n", "a fence that begins or ends no block")

    def test_a_fence_within_a_list_is_refused(self):
        self.refuses("- one\n\n  ```console\n  $ true\n  ```\n", "a fence that begins or ends no block")

    def test_output_without_a_program_is_refused(self):
        self.refuses(fence("text", "7.5\n"), "nothing is known of a block text")

    def test_a_session_that_begins_without_a_command_is_refused(self):
        self.refuses(fence("console", "words\n$ true\n"), "this is no session")

    def test_another_output_is_refused(self):
        self.refuses(fence("console", "$ echo a\nb\n"), "and not\nb")

    def test_a_failure_that_shows_nothing_is_refused(self):
        self.refuses(fence("console", "$ false\n"), "fails with status 1")

    def test_a_session_that_ends_early_is_refused(self):
        self.assertNotEqual(answer(fence("console", "$ exit\n$ true\n"))[0], 0)

    def test_a_file_that_nothing_uses_is_refused(self):
        self.refuses(fence("console", "$ true\n") + fence("cpp a.cpp", "int main() {}\n"), "nothing is done with a.cpp")

    def test_a_piece_of_something_else_is_refused(self):
        self.refuses(fence("cpp examples/plant.cpp", "int nothing;\n"), "no piece of examples/plant.cpp")

    def test_an_unknown_verb_is_refused(self):
        self.refuses("Run `./dev nothing`.\n", "no verb nothing")

    def test_an_unknown_preset_is_refused(self):
        self.refuses("Run `cpack --preset rpm`.\n", "no preset rpm")
        self.refuses("Run `build/nothing/bin/qvt`.\n", "no preset nothing")

    def test_a_link_to_nothing_is_refused(self):
        self.refuses("[there](nothing.md)\n", "there is no nothing.md")
        self.refuses("[there](#nothing)\n", "no heading nothing")


class Index(unittest.TestCase):
    def test_every_page_for_users_is_in_the_list_of_pages(self):
        docs = BLOCKS.parents[2] / "docs"
        listed = (docs / "README.md").read_text()
        for page in docs.rglob("*.md"):
            name = str(page.relative_to(docs))
            self.assertTrue(name == "README.md" or f"]({name})" in listed, f"docs/README.md does not name {name}")


if __name__ == "__main__":
    unittest.main()

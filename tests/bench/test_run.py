"""Runs the benchmarks at small sizes, and the runner's own judgement on made-up measurements."""

import importlib.util
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
from importlib.machinery import SourceFileLoader

SOURCE = pathlib.Path(os.environ["BENCH_SOURCE"])
sys.path.insert(0, str(SOURCE))

import goals  # noqa: E402
import growth  # noqa: E402
import report  # noqa: E402

loader = SourceFileLoader("bench_run", str(SOURCE / "run"))
spec = importlib.util.spec_from_loader(loader.name, loader)
run = importlib.util.module_from_spec(spec)
loader.exec_module(run)


def line(hold, aim, rises=False):
    return goals.Line(1, "something", [], None, "{}", None, "", hold, aim, rises=rises)


class Judgement(unittest.TestCase):
    def test_a_ratio_at_its_limit_is_reached(self):
        self.assertEqual(report.verdict(line(2.5, 1.6), 2.5), "holds")
        self.assertEqual(report.verdict(line(2.5, 1.6), 1.6), "aim")

    def test_a_ratio_above_its_limit_does_not_hold(self):
        self.assertEqual(report.verdict(line(2.5, 1.6), 2.51), "does not hold")

    def test_where_more_is_better_less_does_not_hold(self):
        self.assertEqual(report.verdict(line(15, 25, rises=True), 14.9), "does not hold")
        self.assertEqual(report.verdict(line(15, 25, rises=True), 30), "aim")

    def test_what_was_not_measured_holds_nothing(self):
        self.assertEqual(report.verdict(line(2.5, 1.6), None), "not measured")

    def test_programs_that_read_different_things_are_told(self):
        document = goals.Document("props", 10)
        ours, other = goals.Measurement("import", "import", document), goals.Measurement("pugixml", "load", document)
        found = [{ours.key: {"values": "12"}, other.key: {"values": "13"}}]
        wrong = run.disagreements([ours, other], found)
        self.assertEqual(len(wrong), 1)
        self.assertIn("12", wrong[0])
        self.assertIn("13", wrong[0])

    def test_programs_that_read_the_same_are_not_told(self):
        document = goals.Document("props", 10)
        ours, other = goals.Measurement("import", "import", document), goals.Measurement("pugixml", "load", document)
        self.assertEqual(run.disagreements([ours, other], [{ours.key: {"values": "12"}, other.key: {"values": "12"}}]), [])

    def test_a_line_is_the_median_of_the_rounds_that_have_all_it_needs(self):
        ours, other = goals.Measurement("a", "b"), goals.Measurement("c", "d")
        plan = goals.Plan.__new__(goals.Plan)
        plan.lines = []
        plan.compare(1, "something", ours, other, "other", 2, 1)

        def found(seconds):
            return {ours.key: {"seconds": seconds, "units": 2}, other.key: {"seconds": 1, "units": 1}}

        rounds = [found(2), found(4), found(60), {ours.key: {"seconds": 900, "units": 1}}]
        self.assertEqual(run.line_values(plan.lines[0], rounds), (2e9, 2))

    def test_rows_are_chosen_by_number_and_range(self):
        rows = [goals.Line(row, "", [], None, "", None, "", None, None) for row in range(1, 20)]
        self.assertEqual([row.row for row in run.chosen(rows, "1,3-5,19")], [1, 3, 4, 5, 19])

    def test_a_page_keeps_what_stands_around_a_table(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "page.md"
            page.write_text("before\n<!-- goals -->\nold\n<!-- /goals -->\nafter\n")
            report.into_page(page, {"goals": "new"})
            self.assertEqual(page.read_text(), "before\n<!-- goals -->\nnew\n<!-- /goals -->\nafter\n")

    def test_a_size_that_took_too_long_is_said_and_left_out_of_the_plot(self):
        found = [("add", {10: 1e-7, 100: None})]
        self.assertIn("too long", growth.table(found))
        self.assertEqual(growth.plot(found + [("import", {10: 1e-7, 100: 1e-6})]).count("<circle"), 3)


class QuickRun(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            cls.page = pathlib.Path(folder) / "performance.md"
            cls.page.write_text((SOURCE.parent / "docs/performance.md").read_text())
            cls.quick = subprocess.run(
                [sys.executable, "-B", str(SOURCE / "run"), "--quick", "--growth", "--programs", os.environ["BENCH_PROGRAMS"],
                 "--data", folder + "/data", "--markdown", str(cls.page)], capture_output=True, text=True, timeout=280)
            cls.written = cls.page.read_text()
            cls.plot = cls.page.with_name("performance-growth.svg")
            cls.plotted = cls.plot.read_text() if cls.plot.exists() else ""

    def test_every_program_runs_and_all_read_the_same(self):
        self.assertEqual((self.quick.returncode, self.quick.stderr), (0, ""))

    def test_every_row_is_measured(self):
        rows = [[cell.strip() for cell in line.split("|")[1:-1]] for line in self.quick.stdout.splitlines()]
        numbered = [row for row in rows if re.fullmatch(r"\d+", row[0] if row else "")]
        self.assertEqual({int(row[0]) for row in numbered}, set(range(1, 20)))
        self.assertEqual([row for row in numbered if not row[2] or row[6] == "not measured"], [])

    def test_the_page_gets_the_tables_and_the_plot(self):
        for table in self.quick.stdout.strip().split("\n\n"):
            self.assertTrue(table in self.written, table)
        self.assertIn("<polyline", self.plotted)


if __name__ == "__main__":
    unittest.main()

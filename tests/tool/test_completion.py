import os
import pty
import re
import shlex
import shutil
import subprocess
import unittest

from tool import DOCUMENTS, QVT, SANITIZED, SOURCE, ToolTest, read_terminal

COMPLETION = SOURCE / "tools" / "qvt" / "completion"


class CompletionTest(ToolTest):
    def setUp(self):
        super().setUp()
        for name in ("pump.xml", "pump.lib.xml"):
            shutil.copy(DOCUMENTS / name, self.folder)
        self.done("import", "pump.lib.xml", "pump.xml", "plant.qvt")
        (self.folder / "bin").mkdir()
        (self.folder / "bin" / "qvt").symlink_to(QVT)
        self.environment = {**os.environ, **SANITIZED, "PATH": f"{self.folder}/bin:{os.environ['PATH']}"}

    def shell(self, *command):
        run = subprocess.run(command, cwd=self.folder, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             timeout=100)
        self.assertEqual((run.returncode, run.stderr.decode()), (0, ""))
        return run.stdout.decode().splitlines()


class Answers(CompletionTest):
    """What the shells are told."""

    def answer(self, *words):
        result = self.run_tool("__complete", *words)
        self.assertEqual(result.status, 0)
        return result.lines

    def test_OfTheFirstWordAreVerbs(self):
        self.assertEqual(self.answer("s"), ["words", "show", "set", "stat", "schema"])
        self.assertEqual(self.answer("--v"), ["words", "--version"])
        self.assertIn("help", self.answer(""))

    def test_AreTheOptionsOfTheVerb(self):
        self.assertEqual(self.answer("tree", "plant.qvt", "--va"), ["words", "--values"])
        self.assertIn("--keep-going", self.answer("import", "--"))
        self.assertNotIn("--into", self.answer("tree", "--"))

    def test_AreTheWordsThatAnOptionTakes(self):
        self.assertEqual(self.answer("tree", "-f", ""), ["words", "text", "json"])
        self.assertEqual(self.answer("tree", "--color", "a"), ["words", "auto", "always"])
        self.assertEqual(self.answer("find", "plant.qvt", "--type", "lin"), ["words", "link"])
        units = self.answer("set", "plant.qvt", "hall.p1.power", "--unit", "Kilowatt")
        self.assertIn("Kilowatt", units)
        self.assertTrue(all(unit.startswith("Kilowatt") for unit in units[1:]), units)
        self.assertEqual(self.answer("units", "Velo"), ["words", "Velocity"])

    def test_BehindAnOptionsEqualsSignAreItsValues(self):
        self.assertEqual(self.answer("tree", "plant.qvt", "--format="), ["words", "text", "json"])
        self.assertEqual(self.answer("tree", "--color=a"), ["words", "auto", "always"])
        self.assertEqual(self.answer("tree", "--output="), ["files"])
        self.assertEqual(self.answer("find", "pump.xml", "--schemas=pump.lib.xml", "--class=Types.Pu"), ["paths", "Types.Pump"])
        for word in ("--values=", "--nonsense=", "--=", "--format=x"):
            self.assertEqual(self.answer("tree", word), ["words"])

    def test_AreFilesWhereFilesStand(self):
        for words in (["tree", ""], ["import", "a.xml", "b"], ["tree", "--schemas", ""], ["tree", "-o", ""], ["repair", "a", ""],
                      ["diff", "a", ""]):
            self.assertEqual(self.answer(*words), ["files"], words)

    def test_ArePathsWithinTheStore(self):
        self.assertEqual(self.answer("show", "plant.qvt", "h"), ["paths", "hall"])
        self.assertEqual(self.answer("show", "plant.qvt", ""), ["paths", "Types", "hall"])
        self.assertEqual(self.answer("show", "plant.qvt", "hall.p1.p"), ["paths", "hall.p1.power"])
        self.assertEqual(self.answer("rm", "plant.qvt", "hall.p1", "hall.s"), ["paths", "hall.spare"])
        self.assertEqual(self.answer("diff", "plant.qvt", "pump.xml", "hall", "hall.s"), ["paths", "hall.spare"])
        self.assertEqual(self.answer("get", "pump.xml", "--schemas", "pump.lib.xml", "hall.p1.m"), ["paths", "hall.p1.maker"])

    def test_OfAWholePathAreWhatIsBelow(self):
        self.assertEqual(self.answer("show", "plant.qvt", "hall"), ["paths", "hall.p1", "hall.spare"])
        self.assertEqual(self.answer("show", "plant.qvt", "hall.spare"), ["paths", "hall.spare"])

    def test_AreClassesWhereClassesStand(self):
        self.assertEqual(self.answer("schema", "plant.qvt", "Types.P"), ["paths", "Types.Point", "Types.Pump"])
        self.assertEqual(self.answer("find", "pump.xml", "--schemas", "pump.lib.xml", "--class", "Types.Pu"),
                         ["paths", "Types.Pump"])

    def test_AreNoneWhereNothingIsKnown(self):
        for words in (["nonsense", ""], ["show", "none.qvt", ""], ["get", "plant.qvt", "hall", ""], ["show", "plant.qvt", "x.y"],
                      ["set", "plant.qvt", "hall", "--name", ""]):
            self.assertEqual(self.answer(*words)[1:], [], words)

    def test_OfAWideGroupAreBounded(self):
        rows = "".join(f'<node name="the_name_{i}"/>' for i in range(5000))
        self.document(f'<root name="r"><group name="g">{rows}</group></root>')
        self.done("import", "model.xml", "wide.qvt")
        self.assertEqual(len(self.answer("show", "wide.qvt", "g.the")), 1001)

    def test_DoNotGoBelowAPathThatMoreMayGoOnFrom(self):
        early, late = '<node name="n1"><node name="below"/></node>', '<node name="n12"/><node name="last"><node name="below"/></node>'
        rows = early + "".join(f'<node name="m{i}"/>' for i in range(21000)) + late
        self.document(f'<root name="r"><group name="g">{rows}</group></root>')
        self.done("import", "model.xml", "wide.qvt")
        self.assertEqual(self.answer("show", "wide.qvt", "g.n1"), ["paths", "g.n1"])
        self.assertEqual(self.answer("show", "wide.qvt", "g.n1."), ["paths", "g.n1.below"])
        self.assertEqual(self.answer("show", "wide.qvt", "g.last"), ["paths", "g.last"])
        self.assertEqual(self.answer("show", "wide.qvt", "g.none"), ["paths"])


@unittest.skipUnless(shutil.which("bash"), "there is no bash")
class Bash(CompletionTest):
    def complete(self, *words, breaks="=:"):
        """As bash does when the tab key is hit behind the last word."""
        parts = [part for word in words for part in re.findall(f"[{breaks}]+|[^{breaks}]+", word) or [""]]
        script = f"""
            compopt() {{ options+=" $2"; }}
            . '{COMPLETION}/qvt.bash'
            complete -p qvt >/dev/null || exit 1
            COMP_LINE=$1 COMP_POINT=${{#1}} COMP_WORDS=(qvt "${{@:2}}") COMP_CWORD=$(($# - 1)) options=
            _qvt
            printf '%s\\n' "$options" "${{COMPREPLY[@]}}"
        """
        options, *candidates = self.shell("bash", "-c", script, "bash", "qvt " + " ".join(words), *parts)
        return options.strip(), [each for each in candidates if each]

    def test_CompletesVerbsOptionsAndWords(self):
        self.assertEqual(self.complete("comp"), ("", ["compact"]))
        self.assertEqual(self.complete("tree", "plant.qvt", "--val"), ("", ["--values"]))
        self.assertEqual(self.complete("tree", "-f", "j"), ("", ["json"]))

    def test_LeavesFilesToTheShell(self):
        self.assertEqual(self.complete("tree", "pu"), ("default", []))

    def test_CompletesPathsThatGoOn(self):
        self.assertEqual(self.complete("show", "plant.qvt", "hall.p"), ("nospace", ["hall.p1"]))

    def test_QuotesWhatTheShellWouldTakeApart(self):
        self.document('<root name="r"><group name="a b"/></root>')
        self.assertEqual(self.complete("show", "model.xml", "a"), ("nospace", ["a\\ b"]))
        self.assertEqual(self.complete("show", "model.xml", "a\\ "), ("nospace", ["a\\ b"]))

    def test_CompletesValuesBehindAnEqualsSign(self):
        self.assertEqual(self.complete("tree", "plant.qvt", "--format=j"), ("", ["json"]))
        self.assertEqual(self.complete("tree", "plant.qvt", "--format="), ("", ["text", "json"]))
        self.assertEqual(self.complete("tree", "--format=json", "plant.qvt", "ha"), ("nospace", ["hall"]))
        self.assertEqual(self.complete("tree", "--output=pu"), ("default", []))

    def test_CompletesThemWhereTheSignIsPartOfTheWord(self):
        self.assertEqual(self.complete("tree", "plant.qvt", "--format=j", breaks=":"), ("", ["--format=json"]))
        self.assertEqual(self.complete("tree", "--schemas=pump.l", breaks=":"), ("default", ["--schemas=pump.lib.xml"]))

    def test_CompletesNamesWithColonsAndEqualsSigns(self):
        self.document('<root name="r"><group name="a:1=b"><node name="c"/></group><group name="a:2"/></root>')
        self.assertEqual(self.complete("show", "model.xml", "a:"), ("nospace", ["1=b", "2"]))
        self.assertEqual(self.complete("show", "model.xml", "a:1=b."), ("nospace", ["b.c"]))
        self.assertEqual(self.complete("show", "model.xml", "a:", breaks="="), ("nospace", ["a:1=b", "a:2"]))

    def test_WorksInAnInteractiveShell(self):
        typed = f". '{COMPLETION}/qvt.bash'; PS1='$ '\nqvt get plant.qvt hall.p1.po\t\nqvt tree plant.qvt ha\t -d 0 --val\t\n" \
                "qvt get plant.qvt --format=js\t hall.spare\nexit\n"
        run = subprocess.run(["bash", "--norc", "-i"], input=typed.encode(), cwd=self.folder, env=self.environment,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=100)
        self.assertIn("7.5\n", run.stdout.decode())
        self.assertIn("hall: group\n", run.stdout.decode())
        self.assertIn('"name":"spare"', run.stdout.decode())


@unittest.skipUnless(shutil.which("zsh"), "there is no zsh")
class Zsh(CompletionTest):
    def complete(self, *words):
        script = f"""
            compdef() {{ :; }}
            _files() {{ print files; }}
            compadd() {{ print -l -- "$@"; }}
            compset() {{ print -l -- "$@"; }}
            source '{COMPLETION}/_qvt'
            words=(qvt "$@") CURRENT=$(($# + 1))
            _qvt
        """
        return self.shell("zsh", "-f", "-c", script, "zsh", *words)

    def test_CompletesVerbsOptionsAndWords(self):
        self.assertEqual(self.complete("comp"), ["--", "compact"])
        self.assertEqual(self.complete("tree", "plant.qvt", "--val"), ["--", "--values"])

    def test_LeavesFilesToTheShell(self):
        self.assertEqual(self.complete("tree", "pu"), ["files"])

    def test_CompletesPathsThatGoOn(self):
        self.assertEqual(self.complete("show", "plant.qvt", "hall.p"), ["-S", "", "--", "hall.p1"])

    def test_CompletesValuesBehindAnEqualsSign(self):
        self.assertEqual(self.complete("tree", "plant.qvt", "--format=j"), ["-P", "1", "*=", "--", "json"])

    def typed(self, *lines):
        """What an interactive shell prints in which these lines are typed."""
        master, slave = pty.openpty()
        run = subprocess.Popen(["zsh", "-f", "-i"], stdin=slave, stdout=slave, stderr=slave, cwd=self.folder, start_new_session=True,
                               env={**self.environment, "TERM": "dumb", "ZDOTDIR": str(self.folder)})
        os.close(slave)
        os.write(master, "".join(line + "\n" for line in (*lines, "exit")).encode())
        out = read_terminal(master)
        run.wait(timeout=100)
        return out.decode().replace("\r", "")

    def test_WorksInAnInteractiveShellThatFindsItInAFolderOfItsOwn(self):
        said = self.typed(f"fpath=({shlex.quote(str(COMPLETION))} $fpath); autoload -U compinit; compinit -D -u",
                          "qvt get plant.qvt hall.p1.po\t > power", "qvt get plant.qvt --format=js\t hall.spare > spare")
        self.assertEqual((self.folder / "power").read_text(), "7.5\n", said)
        self.assertIn('"name":"spare"', (self.folder / "spare").read_text(), said)

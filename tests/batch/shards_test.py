#!/usr/bin/python3
"""Does "run --inputs" run each input exactly once, in whatever shards? shards_test.py CORVANTA"""
import contextlib
import json
import os
import pathlib
import random
import resource
import subprocess
import sys
import time
import unittest
import zipfile

from batch_case import GRAPH, BatchCase

BatchCase.corvanta = str(pathlib.Path(sys.argv.pop(1)).resolve())
KILLS = int(os.environ.get("CORVANTA_KILLS", "8"))


def entry_name(entry):
    return pathlib.Path(entry["input"]["name"]).name


class Shards(BatchCase):
    def test_each_input_is_in_one_shard(self):
        names = self.write_inputs(7)
        self.write_list(names)
        for i, name in enumerate(names):  # sizes that a balanced distribution must notice
            with open(self.folder / name, "a", encoding="utf-8") as file:
                file.write("".join(f"{row},{'x' * 50}\n" for row in range(200 if i == 0 else i)))
        for balance in ("count", "size"):
            shares = []
            for i in (1, 2, 3):
                self.counts("--inputs", "list.txt", "--shard", f"{i}/3", "--balance", balance, "--journal", f"{balance}{i}")
                shares.append([entry_name(entry) for entry in self.journal(f"{balance}{i}")])
            self.assertEqual(sorted(sum(shares, [])), [pathlib.Path(name).name for name in names])
            self.assertEqual(shares[0], ["a01.csv", "a04.csv", "a07.csv"] if balance == "count" else ["a01.csv"])
        self.assertEqual(self.outputs(), self.expected(7))
        # More shards than inputs: the last ones have nothing to do.
        self.assertEqual(self.counts("--inputs", "list.txt", "--shard", "9/9", "--journal", "other"), {})

    def test_random_lists(self):
        """Each input is in one shard, and no shard has more bytes than its share and one input."""
        choice = random.Random(7)
        for count in (1, 2, 5, 9):
            sizes = [choice.choice((0, 1, 10, 5000)) * choice.randrange(1, 9) for _ in range(choice.randrange(2, 20))]
            names = [f"in/r{count}_{i}.csv" for i in range(len(sizes))]
            for name, size in zip(names, sizes):
                (self.folder / name).write_text("k,t\n" + "1,\n" * (size // 3))
            self.write_list(names)
            bytes_of = {pathlib.Path(name).name: (self.folder / name).stat().st_size for name in names}
            for balance in ("count", "size"):
                shares = []
                for i in range(1, count + 1):
                    journal = f"{balance}{count}_{i}"
                    self.counts("--inputs", "list.txt", "--shard", f"{i}/{count}", "--balance", balance, "--journal", journal)
                    shares.append([entry_name(entry) for entry in self.journal(journal)])
                self.assertEqual(sorted(sum(shares, [])), sorted(bytes_of))
                if balance == "size":
                    loads = [sum(bytes_of[name] for name in share) for share in shares]
                    self.assertLessEqual(max(loads), sum(loads) / count + max(bytes_of.values()))

    def test_lists_patterns_and_standard_input(self):
        names = self.write_inputs(3)
        (self.folder / "list.txt").write_bytes(b"\xef\xbb\xbf\n" + "\r\n\n".join(["./" + names[0], str(self.folder / names[1])]).encode())
        self.assertEqual(self.counts("--inputs", "list.txt"), {"done": 2})
        self.assertEqual(self.counts("--inputs", "i?/a*.csv"), {"done": 1, "skipped": 2})
        self.assertEqual(self.counts("--inputs", "-", input=names[2] + "\n"), {"skipped": 1})
        self.assertEqual(self.outputs(), self.expected(3))
        with zipfile.ZipFile(self.folder / "jan.zip", "w") as archive:
            archive.write(self.folder / names[0], "2026/a.csv")
        self.assertEqual(self.counts("--inputs", "-", input="jan.zip@2026/a.csv\n"), {"done": 1})
        self.assertEqual(self.outputs()["jan_a_x.csv"], self.outputs()["a01_x.csv"])

    def test_variables(self):
        self.write_graph(GRAPH.replace("${inputStem}_${suffix}", "${inputIndex}"))
        names = self.write_inputs(3)
        os.rename(self.folder / names[1], self.folder / "in/b.2026.csv")
        self.write_list([names[0], "in/b.2026.csv", names[2]])
        self.counts("--inputs", "list.txt", "--shard", "2/3")
        self.assertEqual(list(self.outputs()), ["2.csv"])  # the place in the list, not in the shard
        # Another place in the list is another output.
        self.write_list(["in/b.2026.csv", names[0], names[2]])
        self.assertEqual(self.counts("--inputs", "list.txt", "--shard", "1/3"), {"done": 1})
        self.write_graph(GRAPH)
        self.counts("--inputs", "list.txt", "--set", "suffix=${input}%1")
        self.assertIn("b.2026_${input}%1.csv", self.outputs())
        os.rename(self.folder / names[0], self.folder / "in/.csv")
        self.write_list(["in/.csv"])
        self.counts("--inputs", "list.txt")
        self.assertIn(".csv_x.csv", self.outputs())  # a stem is never empty

    def test_array_of_a_scheduler(self):
        self.write_inputs(4)

        def share(task, count, first, last):
            journal = f"j{task}_{count}_{first}"
            self.counts("--inputs", "in/*.csv", "--journal", journal, variables={
                "SLURM_ARRAY_TASK_ID": task, "SLURM_ARRAY_TASK_COUNT": count, "SLURM_ARRAY_TASK_MIN": first, "SLURM_ARRAY_TASK_MAX": last})
            return [entry_name(entry) for entry in self.journal(journal)]
        self.assertEqual(share("2", "2", "1", "2"), ["a02.csv", "a04.csv"])
        self.assertEqual(share("0", "4", "0", "3"), ["a01.csv"])
        # A part of an array says nothing about the whole.
        for variables in ({"SLURM_ARRAY_TASK_ID": "3", "SLURM_ARRAY_TASK_COUNT": "1", "SLURM_ARRAY_TASK_MIN": "3", "SLURM_ARRAY_TASK_MAX": "3"},
                          {"SLURM_ARRAY_TASK_ID": "1", "SLURM_ARRAY_TASK_COUNT": "2", "SLURM_ARRAY_TASK_MIN": "1", "SLURM_ARRAY_TASK_MAX": "7"},
                          {"SLURM_ARRAY_TASK_ID": "5", "SLURM_ARRAY_TASK_COUNT": "4"}):
            message = self.run_inputs("--inputs", "in/*.csv", status=2, variables=variables)[-1]["message"]
            self.assertIn(f" is {variables['SLURM_ARRAY_TASK_COUNT']}: this is not an array 0-N or 1-N; give --shard I/N", message)
            self.assertEqual(sum(self.counts("--inputs", "in/*.csv", "--shard", "1/1", variables=variables).values()), 4)

    def test_failed_inputs(self):
        names = self.write_inputs(4)
        self.damage(names[1])
        messages = self.run_inputs("--inputs", "in/*.csv", "--progress", "always", status=1)
        self.assertEqual(messages[-1]["summary"]["inputs"], {"shard": "1/1", "done": 3, "skipped": 0, "failed": 1, "left": 0})
        self.assertIn("shard 1/1: 3 inputs done, 1 failed, ", messages[-1]["message"])
        errors = [message for message in messages if message["level"] == 1]
        self.assertEqual([message["input"] for message in errors], [str(self.folder / names[1])])
        entry = next(entry for entry in self.journal() if entry["status"])
        self.assertEqual((entry["status"], entry["error"]), (1, errors[0]["message"].strip()))
        # Inputs that have failed come last.
        self.damage(names[0])
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--fail-fast", "--no-resume", status=1), {"failed": 1, "left": 3})
        self.write_inputs(2)
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 2, "skipped": 2})
        self.assertEqual(self.outputs(), self.expected(4))
        text = self.call("run", "g.graph", "--inputs", "in/a01.csv", "--out-dir", "out")
        self.assertEqual(text.returncode, 2)  # the rows of a CSV file are not names of files
        self.assertIn("the file 'k,t' (line 1 of the list) is missing, and so are 3 more", text.stderr)


class Resume(BatchCase):
    def setUp(self):
        super().setUp()
        self.names = self.write_inputs(3)
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 3})

    def test_what_is_done_is_skipped(self):
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--shard", "2/2"), {"skipped": 1})
        entry = self.journal()[0]
        self.assertEqual((entry["rows"], entry["status"], [file["name"] for file in entry["files"]]),
                         (3, 0, [str(self.folder / "out/a01_x.csv")]))
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--no-resume"), {"done": 3})

    def test_what_has_changed_runs_again(self):
        changes = [
            lambda: self.write_graph(GRAPH.replace("version='4.12'", "version='4.11'")),
            lambda: os.utime(self.folder / self.names[0], ns=(0, 1)),
            lambda: (self.folder / "out/a02_x.csv").unlink(),
            lambda: (self.folder / "out/a03_x.csv").write_text("half"),
        ]
        for change, again in zip(changes, (3, 1, 1, 1)):
            change()
            self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": again, **({"skipped": 3 - again} if again < 3 else {})})
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--system-encoding", "windows-1252"), {"done": 3})
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--set", "suffix=y"), {"done": 3})
        # The last run of an input counts: its outputs may have been those of other variables.
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 3})
        self.write_graph("<!-- a comment -->" + GRAPH.replace("version='4.12'", "version='4.11'"))
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"skipped": 3})

    def test_journal_cut_anywhere(self):
        """A cut costs the entries that it takes; all others count, and the next run makes the journal whole."""
        file = self.folder / "out/g.journal/shard-1-of-1.jsonl"
        choice = random.Random(5)
        for i in range(30):
            last = {}
            for line in file.read_bytes().splitlines():
                with contextlib.suppress(ValueError):
                    last[entry_name(json.loads(line))] = line + b"\n"
            whole = b"".join(last.values())
            cut = choice.randrange(len(whole)) if i else len(last["a01.csv"]) - 1
            file.write_bytes(whole[:cut])
            kept = whole.count(b"\n", 0, cut)
            self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 3 - kept, **({"skipped": kept} if kept else {})}, cut)
            self.assertEqual(self.counts("--inputs", "in/*.csv"), {"skipped": 3}, cut)

    def test_clock_that_was_set_back(self):
        """The last run counts, whatever the times of its lines."""
        file = self.folder / "out/g.journal/shard-1-of-1.jsonl"
        lines = [json.loads(line) for line in file.read_bytes().splitlines()]
        for entry in lines:
            entry.update(time=entry["time"] + 3_600_000, status=1)
        file.write_text("".join(json.dumps(entry) + "\n" for entry in lines))
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--shard", "1/2"), {"done": 2})
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 1, "skipped": 2})
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"skipped": 3})

    def test_damaged_journal(self):
        file = self.folder / "out/g.journal/shard-1-of-1.jsonl"
        lines = file.read_bytes().splitlines(True)
        file.write_bytes(lines[0] + b"garbage\n" + lines[1] + lines[2][:40])
        messages = self.run_inputs("--inputs", "in/*.csv", "--progress", "always")
        self.assertIn("1 line of the journal cannot be read and is ignored (first: ", messages[0]["message"])
        self.assertEqual(messages[-1]["summary"]["inputs"]["done"], 1)
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"skipped": 3})
        # The zeros of a file system: one long line, which is not kept in memory.
        with open(file, "r+b") as journal:
            journal.seek(400 << 20)
            journal.write(b"\n")
        messages = self.run_inputs("--inputs", "in/*.csv", "--progress", "always")
        self.assertIn("3 lines of the journal cannot be read and are ignored (first: ", messages[0]["message"])
        self.assertEqual(messages[-1]["summary"]["inputs"]["skipped"], 3)
        if "ASAN_OPTIONS" not in os.environ:  # it keeps freed memory
            self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, 300 << 10)

    def test_journal_of_another_graph(self):
        self.write_graph(GRAPH.replace("'K,U'", "'U,U'"), "other.graph")
        message = self.run_inputs("--inputs", "in/*.csv", "--journal", "out/g.journal", graph="other.graph", status=2)[-1]["message"]
        self.assertIn(f"is of another graph, '{self.folder}/g.graph'; name another folder with --journal", message)
        self.write_graph(GRAPH, "moved.graph")
        self.assertEqual(self.counts("--inputs", "in/*.csv", "--journal", "out/g.journal", graph="moved.graph"), {"skipped": 3})

    def test_program_that_ends_during_an_input(self):
        """The input that has ended the program before runs last, and the reason is in the journal."""
        running = self.folder / "out/g.journal/shard-1-of-1.running"
        self.assertFalse(running.exists())
        entry = (self.folder / "out/g.journal/shard-1-of-1.jsonl").read_text().splitlines()[0]
        entry = entry.replace('"status":0', '"status":1').replace('"error":""', '"error":"the program ended during the run of this input"')
        running.write_text(entry.replace('"time":1', '"time":9') + "\n")
        for path in (self.folder / "out").glob("*.csv"):
            path.unlink()
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"done": 3})
        self.assertEqual([entry_name(entry) for entry in self.journal()][3:], ["a01.csv", "a02.csv", "a03.csv", "a01.csv"])


class Kills(BatchCase):
    def test_killed_at_random(self):
        """After any number of kills nothing is lost, doubled or half-written."""
        names = self.write_inputs(30, rows=300)
        choice = random.Random(3)
        begin = time.monotonic()
        self.run_inputs("--inputs", "in/*.csv", "--journal", "timed")
        length = time.monotonic() - begin
        for path in (self.folder / "out").glob("*.csv"):
            path.unlink()
        words = [self.corvanta, "run", "g.graph", "--inputs", "in/*.csv", "--out-dir", "out", "--quiet"]
        for i in range(KILLS):
            if i % 10 == 9:  # begin again
                for path in (self.folder / "out/g.journal").iterdir():
                    path.unlink()
            with subprocess.Popen(words, cwd=self.folder, stderr=subprocess.DEVNULL) as process:
                time.sleep(choice.uniform(0, length))
                process.kill()
            for name, content in self.outputs().items():
                if not name.endswith("_TMP"):
                    self.assertEqual(content, self.expected(30)[name])
        self.run_inputs("--inputs", "in/*.csv")
        self.assertEqual(self.outputs(), self.expected(30))
        done = [entry_name(entry) for entry in self.journal() if entry["status"] == 0]
        self.assertEqual(sorted(done), sorted(pathlib.Path(name).name for name in names))
        self.assertEqual(self.counts("--inputs", "in/*.csv"), {"skipped": 30})


# Words after "run GRAPH", and what the message says. Nothing is written.
BAD = [
    (["--inputs", "empty.txt"], "--inputs: the list 'empty.txt' is empty"),
    (["--inputs", "none*.csv"], "--inputs: no file matches 'none*.csv'"),
    (["--inputs", "none.txt"], "--inputs: cannot read the list 'none.txt': "),
    (["--inputs", "in"], "--inputs: cannot read the list 'in': it is a folder"),
    (["--inputs", "huge.txt"], "--inputs: the list 'huge.txt' is larger than 256 MiB; use several"),
    (["--inputs", "zero.txt"], "' is not a list of file names (it has a zero byte); a list is a text with one name per line"),
    (["--inputs", "twice.txt"], "'./in/a01.csv' is listed twice (lines 1 and 3)"),
    (["--inputs", "missing.txt"], "the file 'in/none.csv' (line 2 of the list) is missing, and so is 1 more"),
    (["--inputs", "pattern.txt"], "/in/a?1.csv' is a pattern that matches '"),
    (["--inputs", "data.json"], "'data.json' is not a list of file names (line 1 is too long for a name); a list is a text with one name per line"),
    (["--inputs", "list.txt", "--shard", "3/2"], "--shard: invalid value '3/2' (expected I/N with I from 1 to N, for example 2/10)"),
    (["--inputs", "list.txt", "--balance", "weight"], "--balance must be count or size"),
    (["--inputs", "list.txt", "--set", "input=a.csv"], "--set input: --inputs sets the variable 'input'"),
    (["--inputs", "list.txt", "--tap", "in:0=x.csv"], "--tap cannot be used with --inputs: every run would write the file"),
    (["--shard", "1/2"], "--shard needs --inputs"),
]


class BadInput(BatchCase):
    def setUp(self):
        super().setUp()
        names = self.write_inputs(2)
        self.write_list(names)
        self.write_list(["", " "], "empty.txt")
        self.write_list([names[0], names[1], "./" + names[0]], "twice.txt")
        self.write_list([names[0], "in/none.csv", "in/neither.csv"], "missing.txt")
        self.write_list(["in/a?1.csv"], "pattern.txt")
        (self.folder / "in/a?1.csv").write_text("k,t\n")
        (self.folder / "data.json").write_text("[" + "1," * 2100 + "1]")
        (self.folder / "zero.txt").write_bytes(b"PAR1\0\0")
        with open(self.folder / "huge.txt", "wb") as file:
            file.truncate((256 << 20) + 1)  # a hole

    def fails(self, words, text, graph="g.graph"):
        before = self.files()
        with self.subTest(words=words):
            messages = self.run_inputs(*words, status=2, graph=graph)
            self.assertIn(text, "\n".join(message["message"] for message in messages))
            self.assertEqual(self.files(), before)

    def test_usage(self):
        for words, text in BAD:
            self.fails(words, text)
        done = self.call("run", "-", "--inputs", "-", input=GRAPH)
        self.assertIn("the graph and --inputs cannot both be standard input", done.stderr)

    def test_graphs(self):
        both = ["--inputs", "list.txt"]
        self.write_graph(GRAPH.replace("${input}", "in/a01.csv"), "fixed.graph")
        self.fails(both, "--inputs: the graph does not use ${input}, so every run would read the same file", "fixed.graph")
        self.write_graph(GRAPH.replace("${inputStem}", "all"), "one.graph")
        self.fails(both, f"the runs of '{self.folder}/in/a01.csv' and '{self.folder}/in/a02.csv' would both write '{self.folder}/out/all_x.csv'; its "
                   "name must depend on ${input}, ${inputStem} or ${inputIndex}", "one.graph")
        self.write_graph(GRAPH.replace("${outDir}/${inputStem}_${suffix}.csv", "${input}"), "same.graph")
        self.fails(both, f"the run of '{self.folder}/in/a01.csv' would replace the input '{self.folder}/in/a01.csv'", "same.graph")
        (self.folder / "link").symlink_to("in")
        self.write_graph(GRAPH.replace("_${suffix}", ""), "linked.graph")
        self.fails([*both, "--out-dir", "link"], f"the run of '{self.folder}/in/a01.csv' would replace the input '{self.folder}/in/a01.csv'", "linked.graph")
        (self.folder / "in2").mkdir()
        os.rename(self.folder / "in/a02.csv", self.folder / "in2/a01.csv")
        self.write_list(["in/a01.csv", "in2/a01.csv"])
        self.fails(both, "a01_x.csv'; its name must depend on", "g.graph")
        # Without --inputs the variable is unknown.
        done = self.call("run", "g.graph")
        self.assertEqual(done.returncode, 2)
        self.assertIn("the graph uses ${input}: name its input files with --inputs LIST, or set the variable with --set input=VALUE", done.stderr)
        done = self.call("run", "g.graph", "--set", "input=in/a01.csv", "--set", "inputStem=s", "--out-dir", "out")
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_check(self):
        done = self.call("check", "g.graph", "--inputs", "list.txt", "--list-outputs", "--out-dir", "out")
        self.assertEqual(done.stdout, f"{self.folder}/out/a01_x.csv\n{self.folder}/out/a02_x.csv\n")
        self.write_graph(GRAPH.replace("${inputStem}", "all"))
        self.assertEqual(self.call("check", "g.graph", "--inputs", "list.txt").returncode, 2)

    def test_journal_that_cannot_be_written(self):
        (self.folder / "j/shard-1-of-1.jsonl").mkdir(parents=True)
        messages = self.run_inputs("--inputs", "list.txt", "--journal", "j", status=1)
        self.assertEqual([message["message"] for message in messages if message["level"] == 1],
                         ["Error: the journal cannot be written: a second run does not know which inputs are done"])
        self.assertEqual(self.outputs(), self.expected(2))
        (self.folder / "file").write_text("")
        messages = self.run_inputs("--inputs", "list.txt", "--journal", "file/j", status=1)
        self.assertIn(f"cannot create the folder '{self.folder}/file/j' of the journal: Not a directory", messages[-1]["message"])


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""Does "batch" run all inputs, in local processes and with GNU parallel? batch_test.py CORVANTA

A program named sbatch on the path that this test writes shows what happens when a scheduler rejects a job; slurm_test.py has a real one.
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import unittest

from batch_case import GRAPH, ODD_FOLDER, PIECES, BatchCase

BatchCase.corvanta = str(pathlib.Path(sys.argv.pop(1)).resolve())
PARALLEL = shutil.which("parallel")
ODD_SUFFIX = "it's %1\t\\t\r\u202e\n"  # no cell of a table may have these signs
WAITS = 20


class Batches(BatchCase):
    def batch(self, *words, status=0, graph="g.graph", **more):
        done = self.call("batch", graph, "--out-dir", "out", *words, **more)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def status(self):
        return json.loads(self.call("batch", "--status", "out/g.batch", "--json").stdout)

    def wait_until(self, condition):
        end = time.monotonic() + WAITS
        while not condition():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.01)

    def processes(self):
        """(number, command line) of the processes that have the folder of the test in their words."""
        found = []
        for path in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                line = path.read_text(errors="replace")
            except OSError:
                continue  # it has ended
            found += [(path.parent.name, line)] if str(self.folder) in line else []
        return found

    def check_failures(self, backend):
        """One input fails; its command repeats it, and the same batch then has nothing to do."""
        names = self.write_inputs(9)
        self.damage(names[4])
        done = self.batch("--inputs", "in/*.csv", "--backend", backend, "--per-task", "2", "--max-running", "2", "--set", f"suffix={ODD_SUFFIX}", status=1)
        self.assertIn(f"9 inputs in 5 tasks to run ({backend}); the folder of the batch is '{self.folder}/out/g.batch'", done.stderr)
        self.assertIn("8 of 9 inputs done, 1 failed, 24 rows", done.stderr)
        self.assertIn("Error: 1 input is not done; '", done.stderr)
        self.assertIn("/failures.tsv' has the causes and the commands that repeat them", done.stderr)
        self.assertEqual((self.folder / "out/g.batch/failures.tsv").read_text(), done.stdout)
        title, row = done.stdout.splitlines()
        self.assertEqual(title, "input\tcause\tlog\tcommand")
        name, cause, log, command = row.split("\t")
        self.assertEqual(name, str(self.folder / names[4]))
        self.assertIn("line 2, column 'k': 'not a number' is not of type K", cause)
        file, line = log.rsplit(":", 1)
        message = json.loads(pathlib.Path(file).read_text().splitlines()[int(line) - 1])
        self.assertEqual((message["message"].strip(), message["input"]), (cause, name))
        self.assertEqual(self.status(), {"inputs": 9, "done": 8, "failed": 1, "left": 0, "rows": 24, "running": False, "backend": backend, "job": "",
                                         "merge": "", "failures": [{"input": name, "cause": cause, "log": log, "command": command}]})
        self.write_inputs(9)
        for other in set(names) - {names[4]}:  # unchanged
            os.utime(self.folder / other, ns=self.times[other])
        environment = {**os.environ, "PATH": f"{os.path.dirname(self.corvanta)}:{os.environ['PATH']}"}
        subprocess.run(["sh", "-c", command], check=True, env=environment, stderr=subprocess.DEVNULL)
        self.assertEqual(self.outputs(), self.expected(9, ODD_SUFFIX))
        before = {path: path.stat().st_mtime_ns for path in (self.folder / "out").glob("*.csv")}
        again = self.batch("--inputs", "in/*.csv", "--backend", backend, "--set", f"suffix={ODD_SUFFIX}")
        self.assertIn("9 of 9 inputs done, 27 rows", again.stderr)
        self.assertEqual(again.stdout, "")
        self.assertEqual({path: path.stat().st_mtime_ns for path in before}, before)

    def write_inputs(self, *words, **more):
        names = super().write_inputs(*words, **more)
        self.times = getattr(self, "times", {name: (0, (self.folder / name).stat().st_mtime_ns) for name in names})
        return names

    def test_local(self):
        self.check_failures("local")

    @unittest.skipUnless(PARALLEL, "GNU parallel is not installed")
    def test_parallel(self):
        self.check_failures("parallel")
        self.assertIn("job.sh 5", (self.folder / "out/g.batch/joblog").read_text())

    def check_pieces(self, backend):
        """Each piece is an input: one that fails is named with its rows, and its command repeats only this one."""
        self.parquet("in/a.parquet", [30, 30, 30])
        self.parquet("in/b.parquet", [30, 30])
        self.write_graph(PIECES.replace(" header='0'", ""))
        (self.folder / "out/b_2.csv").mkdir(parents=True)  # cannot be written
        pieces = ["--inputs", "in/*.parquet", "--split-rows", "30", "--backend", backend]
        words = [*pieces, "--merge", "all.csv"]
        done = self.batch(*words, status=1)
        self.assertIn(f"5 inputs in 5 tasks to run ({backend})", done.stderr)
        self.assertIn("4 of 5 inputs done, 1 failed, 120 rows", done.stderr)
        self.assertFalse((self.folder / "all.csv").exists())
        title, row = done.stdout.splitlines()
        name, cause, log, command = row.split("\t")
        self.assertEqual(name, f"{self.folder}/in/b.parquet (rows 31 to 60)")
        file, line = log.rsplit(":", 1)
        message = json.loads(pathlib.Path(file).read_text().splitlines()[int(line) - 1])
        self.assertEqual((message["message"].strip(), message["input"]), (cause, name))
        failure = {"input": name, "cause": cause, "log": log, "command": command}
        state = {"inputs": 5, "done": 4, "failed": 1, "left": 0, "rows": 120, "running": False, "backend": backend, "job": "", "merge": "waiting"}
        self.assertEqual(self.status(), {**state, "failures": [failure]})
        (self.folder / "out/b_2.csv").rmdir()
        environment = {**os.environ, "PATH": f"{os.path.dirname(self.corvanta)}:{os.environ['PATH']}"}
        subprocess.run(["sh", "-c", command], check=True, env=environment, stderr=subprocess.DEVNULL)
        times = {path: path.stat().st_mtime_ns for path in (self.folder / "out").glob("*.csv")}
        self.assertEqual(len(times), 5)
        self.assertIn("5 of 5 inputs done, 150 rows", self.batch(*words, "--balance", "size").stderr)
        self.assertEqual({path: path.stat().st_mtime_ns for path in times}, times)
        numbers = [str(n) for rows in (90, 60) for n in range(1, rows + 1)]
        self.assertEqual((self.folder / "all.csv").read_text().split(), ["n", *numbers])
        # A file that changes runs again with all its pieces; one that is gone is not done.
        self.parquet("in/b.parquet", [30, 20])
        self.assertEqual((self.status()["done"], self.status()["left"]), (3, 2))
        self.assertIn("2 inputs in 2 tasks to run", self.batch(*pieces).stderr)
        self.assertEqual(len(self.outputs()["b_2.csv"].split()), 21)
        (self.folder / "in/a.parquet").unlink()
        self.assertEqual((self.status()["inputs"], self.status()["done"]), (5, 2))
        self.assertIn(" --shard 3/5 ", self.status()["failures"][2]["command"])

    def test_pieces(self):
        self.check_pieces("local")

    @unittest.skipUnless(PARALLEL, "GNU parallel is not installed")
    def test_pieces_with_parallel(self):
        self.check_pieces("parallel")

    def check_names(self, backend):
        """Names have no special signs for what starts the tasks."""
        outputs = self.write_odd_inputs()
        words = ["--inputs", "in/*.csv", "--backend", backend, "--per-task", "3", "--folder", ODD_FOLDER]
        self.call("batch", "g.graph", "--out-dir", ODD_FOLDER + "/out", *words)
        self.assertEqual(self.outputs(ODD_FOLDER + "/out"), outputs)

    def test_names(self):
        self.check_names("local")
        # Lists have a name per line, what they do not hold is refused; a pattern finds such a file.
        (self.folder / "in/new\nline.csv").write_text("k,t\n8,text\n")
        for wrong, says in ((b"in/\xfc[1].csv", "--inputs: the name of 'in/\ufffd[1].csv' is not UTF-8; rename the file"),
                            (b"in/lost[1].csv", "--inputs: 'in/lost[1].csv' is a link to a file that does not exist")):
            os.symlink("none", os.path.join(os.fsencode(self.folder), wrong))
            self.assertIn(says, self.batch("--inputs", "in/*[1].csv", status=2).stderr)
            os.unlink(os.path.join(os.fsencode(self.folder), wrong))
        self.batch("--inputs", "in/*.csv")
        self.assertEqual(self.outputs()["new\nline_x.csv"], b"k,t\n8,text\n")
        self.assertIn(f"--merge: the name '{self.folder}/out/new\nline_x.csv' has a line break",
                      self.batch("--inputs", "in/*.csv", "--merge", "all.csv", status=2).stderr)

    @unittest.skipUnless(PARALLEL, "GNU parallel is not installed")
    def test_names_with_parallel(self):
        self.check_names("parallel")

    def test_inputs_that_change(self):
        """The tasks of a batch have the inputs of its begin: a change must not move an input to a shard that has ended."""
        names = self.write_inputs(6)
        self.batch("--inputs", "in/*.csv")
        with open(self.folder / names[5], "a", encoding="utf-8") as file:
            file.write("9,large\n" * 100)
        self.assertEqual(self.counts("--inputs", "out/g.batch", "--journal", "j", "--balance", "size", "--shard", "1/3"), {"done": 2})
        (self.folder / names[0]).write_text("k,t\n" + "8,larger\n" * 1000)
        (self.folder / names[1]).unlink()
        counts = [self.counts("--inputs", "out/g.batch", "--journal", "j", "--balance", "size", "--shard", f"{i}/3", status=None) for i in (2, 3)]
        self.assertEqual(sum(count["done"] for count in counts), 3)
        self.assertEqual(sorted(entry["input"]["name"] for entry in self.journal("j")), [str(self.folder / name) for name in names])
        failed = [entry for entry in self.journal("j") if entry["status"]]
        self.assertEqual([entry["input"]["name"] for entry in failed], [str(self.folder / names[1])])
        (self.folder / "out/g.batch/inputs.jsonl").write_text("{}\n")
        self.assertIn("/out/g.batch/inputs.jsonl' of a batch cannot be read; start the batch again",
                      self.call("batch", "--status", "out/g.batch").stderr)

    def test_input_that_vanishes(self):
        """Its run has failed, and the table says why. An output that vanishes is written again."""
        self.write_inputs(2)
        path = self.write_scheduler("rm -f in/a02.csv\nsh out/g.batch/job.sh 1 >job.out 2>&1\necho 7", "exit 0")
        words = ["--inputs", "in/*.csv", "--backend", "slurm"]
        done = self.batch(*words, status=1, variables=path)
        self.assertIn("1 of 2 inputs done, 1 failed", done.stderr)
        self.assertRegex(done.stdout, r"/a02\.csv\tError: readCSV: cannot open file")
        (self.folder / "out/a01_x.csv").unlink()
        self.assertIn("1 input in 1 task to run", self.batch(*words, variables=path).stderr)
        self.assertTrue((self.folder / "out/a01_x.csv").exists())

    def test_pieces_of_a_file_that_changes(self):
        self.parquet("in/a.parquet", [30, 30])
        self.write_graph(PIECES)
        self.batch("--inputs", "in/*.parquet", "--split-rows", "30")
        self.parquet("in/a.parquet", [30, 40])
        messages = self.run_inputs("--inputs", "out/g.batch", "--shard", "2/2", "--journal", "j", status=1)
        self.assertIn("Error: the file has changed since it was divided into pieces; start the same command again",
                      [message["message"].strip() for message in messages])
        self.assertEqual(len(self.outputs()["a_2.csv"].split()), 30)
        messages = self.run_inputs("--inputs", "out/g.batch", "--split-rows", "30", status=2)
        self.assertIn("--split-rows: the batch in 'out/g.batch' has divided its inputs", messages[-1]["message"])

    def test_started_several_times(self):
        """One of them runs, the others say so."""
        name = self.write_inputs(1)[0]
        (self.folder / name).unlink()
        os.mkfifo(self.folder / name)
        self.write_list([name])
        words = [self.corvanta, "batch", "g.graph", "--out-dir", "out", "--inputs", "list.txt", "--quiet"]
        processes = [subprocess.Popen(words, cwd=self.folder, stderr=subprocess.PIPE, stdout=subprocess.DEVNULL) for _ in range(6)]
        for process in processes:
            self.addCleanup(process.stderr.close)
            self.addCleanup(process.wait)
            self.addCleanup(process.terminate)
        self.wait_until(lambda: sum(process.poll() is None for process in processes) == 1)
        self.assertEqual(sorted(process.returncode for process in processes if process.returncode is not None), [2] * 5)

    def test_what_has_changed_runs_again(self):
        self.write_inputs(4)
        self.batch("--inputs", "in/*.csv")
        (self.folder / "out/a02_x.csv").unlink()
        self.batch("--inputs", "in/*.csv")
        self.assertEqual(len(self.journal("out/g.batch/journal")), 5)
        self.write_graph(GRAPH.replace("'x'", "'y'"))
        self.batch("--inputs", "in/*.csv", "--balance", "size")
        self.assertEqual(self.outputs(), {**self.expected(4), **self.expected(4, "y")})
        (self.folder / "out/g.batch/journal/shard-data.csv").write_text("of a user")
        self.batch("--inputs", "in/*.csv", "--no-resume", "--compression", "isal-3", "--strict")
        self.assertEqual([entry["run"]["compression"] for entry in self.journal("out/g.batch/journal")], ["isal-3"] * 4)
        self.assertIn(" --strict ", (self.folder / "out/g.batch/job.sh").read_text())
        self.assertTrue((self.folder / "out/g.batch/journal/shard-data.csv").exists())

    def test_crash(self):
        """A run that ends its program does not keep the other inputs of its task from being run."""
        names = self.write_inputs(4)
        self.write_list(names)
        (self.folder / names[0]).unlink()
        os.mkfifo(self.folder / names[0])  # its run waits until it is killed
        words = [self.corvanta, "batch", "g.graph", "--out-dir", "out", "--inputs", "list.txt", "--per-task", "4", "--retries", "1", "--quiet"]
        running = self.folder / "out/g.batch/journal/shard-1-of-1.running"
        with subprocess.Popen(words, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as process:
            for done in (0, 3):
                self.wait_until(lambda done=done: running.exists() and names[0] in running.read_text() and len(self.outputs()) == done)
                found = [number for number, line in self.processes() if line.startswith(f"{self.corvanta}\0run\0-")]
                self.assertEqual(len(found), 1)
                os.kill(int(found[0]), signal.SIGSEGV)
                self.wait_until(lambda number=found[0]: not pathlib.Path(f"/proc/{number}").exists())
            table = process.communicate(timeout=WAITS)[0]
        self.assertEqual(process.returncode, 139)
        self.assertIn(f"{names[0]}\tthe program ended during the run of this input\t", table)
        self.assertEqual(len(table.splitlines()), 2)

    def check_processors(self, backend):
        """Two local tasks that run share the processors between them."""
        allowed = os.sched_getaffinity(0)
        shares = {frozenset(os.sched_getaffinity(int(number))) for number, line in self.processes() if f"{self.corvanta}\0run\0" in line}
        self.assertEqual(frozenset().union(*shares), allowed)
        self.assertEqual(sum(map(len, shares)), len(allowed))
        self.assertEqual(len(shares), 2 if backend == "local" and len(allowed) > 1 else 1)

    def check_end(self, number, backend, status):
        """A signal ends all tasks; nothing half-written is left, and the same command continues."""
        names = self.write_inputs(6)
        self.write_list(names)  # a pattern does not match pipes
        for name in names[1:3]:
            (self.folder / name).unlink()
            os.mkfifo(self.folder / name)
        words = [self.corvanta, "batch", "g.graph", "--out-dir", "out", "--inputs", "list.txt", "--backend", backend, "--per-task", "1",
                 "--max-running", "2"]
        process = subprocess.Popen(words, cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)  # after a failure the runs would wait for their pipes
        self.wait_until(lambda: len(list((self.folder / "out/g.batch/journal").glob("*.running"))) == 2)
        busy = self.call("batch", "g.graph", "--out-dir", "out", "--inputs", "list.txt")
        self.assertEqual(busy.returncode, 2)
        self.assertIn('the batch is running already; "corvanta batch --status ', busy.stderr)
        self.assertTrue(self.status()["running"])
        self.check_processors(backend)
        process.send_signal(number)
        self.assertEqual(process.wait(timeout=WAITS), status)
        self.wait_until(lambda: not self.processes())
        self.assertEqual([name for name in self.files() if "out/g.batch" not in name and name.startswith("out/")], ["out/a01_x.csv"])
        for name in names[1:3]:
            (self.folder / name).unlink()
        self.write_inputs(6)
        self.batch("--inputs", "list.txt", "--backend", backend)
        self.assertEqual(self.outputs(), self.expected(6))

    def test_signals(self):
        self.check_end(signal.SIGINT, "local", 130)

    def test_killed(self):
        self.check_end(signal.SIGKILL, "local", -9)

    @unittest.skipUnless(PARALLEL, "GNU parallel is not installed")
    def test_signals_with_parallel(self):
        self.check_end(signal.SIGTERM, "parallel", 143)

    def test_detach(self):
        self.write_list(self.write_inputs(3))
        (self.folder / "in/a02.csv").rename(self.folder / "kept")
        os.mkfifo(self.folder / "in/a02.csv")
        self.assertEqual(self.batch("--inputs", "list.txt", "--detach").stdout, f"{self.folder}/out/g.batch\n")
        self.assertTrue(self.status()["running"])
        with open(self.folder / "in/a02.csv", "wb") as pipe:
            os.replace(self.folder / "kept", self.folder / "in/a02.csv")
            pipe.write((self.folder / "in/a02.csv").read_bytes())
        self.wait_until(lambda: not self.status()["running"])
        self.batch("--inputs", "list.txt", "--detach")
        self.wait_until(lambda: self.status()["done"] == 3 and not self.status()["running"])
        self.assertIn("3 of 3 inputs done, 9 rows (not running)", self.call("batch", "--status", "out/g.batch").stdout)
        self.assertEqual(self.outputs(), self.expected(3))

    def write_scheduler(self, sbatch, squeue):
        """Programs with these names; returns the variables with which they are found."""
        (self.folder / "bin").mkdir()
        for name, text in (("sbatch", sbatch), ("squeue", squeue)):
            (self.folder / "bin" / name).write_text(f"#!/bin/sh\ncd {self.folder}\n{text}\n")
            (self.folder / "bin" / name).chmod(0o755)
        return {"PATH": f"{self.folder}/bin:/usr/bin:/bin"}

    def test_merge_of_a_scheduler(self):
        """A merge does not depend on the last job only: a task of an earlier one may have failed."""
        self.damage(self.write_inputs(2)[1])
        first = "case $* in *merge.sh) touch ended; sh out/g.batch/job.sh 2; esac"  # and task 1 is lost
        path = self.write_scheduler(f'echo "$*" >>calls\nwc -l <calls\n[ ! -e ended ] || sh out/g.batch/job.sh 1\n{first}\nexit 0',
                                    "echo 'Invalid job id specified' >&2\nexit 1")
        words = ["--inputs", "in/*.csv", "--backend", "slurm", "--per-task", "1", "--merge", "all.csv"]
        self.assertIn("1 of 2 inputs done, 1 failed", self.batch(*words, "--retries", "1", status=1, variables=path).stderr)
        self.assertEqual([line.rsplit("/", 1)[1] for line in (self.folder / "calls").read_text().splitlines()], ["job.sh", "merge.sh", "job.sh"])
        # Without tasks there is no job that a merge could depend on.
        self.write_inputs(2)
        self.batch("--inputs", "in/*.csv")
        self.assertEqual(self.batch(*words, "--detach", variables=path).stdout, f"{self.folder}/out/g.batch\n")
        self.assertEqual(self.status()["merge"], "done")

    def test_job_that_is_held_and_removed(self):
        self.write_inputs(2)
        jobs = "(sleep 1; for task in 1 2; do sh out/g.batch/job.sh $task; done) >job.out 2>&1 &"
        path = self.write_scheduler(f"echo '7;cluster'\nif [ -e seen ] && [ ! -e gone ]; then touch again; {jobs} fi",
                                    "case $* in *%K*) [ -e again ] && echo 1 && echo 2; exit; esac\nif [ -e again ] && [ ! -e gone ]; then echo '7_1 RUNNING None'; exit; fi\n"
                                    "if [ -e seen ]; then echo 'Invalid job id specified' >&2; exit 1; fi\n"
                                    "touch seen; echo '7_1 PENDING JobHeldAdmin'")
        (self.folder / "out/g.batch").mkdir(parents=True)
        done = self.batch("--inputs", "in/*.csv", "--backend", "slurm", "--per-task", "1", variables=path)
        self.assertIn('Warning: Slurm holds a task: 7_1 PENDING JobHeldAdmin; "scontrol release 7_1" starts it', done.stderr)
        self.assertIn("Warning: 2 tasks ended without a status (the first is 1) and are started again", done.stderr)
        self.assertEqual((done.stdout, self.outputs()), ("", self.expected(2)))
        self.assertNotIn("Warning", self.call("batch", "--status", "out/g.batch", variables=path).stderr)
        self.assertIn("Warning: Slurm does not say whether the job 7 runs: execvp: No such file",
                      self.call("batch", "--status", "out/g.batch", variables={"PATH": "none"}).stderr)
        # Slurm still lists tasks that have ended.
        self.batch("--inputs", "in/*.csv", "--backend", "slurm", variables=path)
        (self.folder / "gone").write_text("")
        done = self.batch("--inputs", "in/*.csv", "--backend", "slurm", "--retries", "0", "--no-resume", status=1, variables=path)
        self.assertEqual([line.split("\t")[1] for line in done.stdout.splitlines()], ["cause", "not run", "not run"])

    def test_merge(self):
        """The merged file has the rows of one run for all inputs, in their order, and only if all are done."""
        names = self.write_inputs(7)
        self.damage(names[3])
        words = ["--inputs", "in/*.csv", "--per-task", "2", "--merge", "all.csv"]
        self.batch(*words, status=1)
        self.assertFalse((self.folder / "all.csv").exists())
        self.write_inputs(7)
        self.batch(*words)
        for text, name in ((GRAPH, "one.csv"), (GRAPH.replace("writeCSV fileName=", "writeParquet file="), "one.parquet")):
            self.write_graph(text.replace("${input}", "in/*.csv").replace("${outDir}/${inputStem}_${suffix}.csv", name), "one.graph")
            self.assertEqual(self.call("run", "one.graph").returncode, 0)
            self.write_graph(text.replace("}.csv", "}" + pathlib.Path(name).suffix))
            all_name = "all" + pathlib.Path(name).suffix
            self.batch("--inputs", "in/*.csv", "--merge", all_name, "--no-resume", "--system-encoding", "windows-1252")
            rows = [self.call("convert", file, "-", "--to", "csv").stdout for file in (name, all_name)]
            self.assertEqual(len(rows[0].splitlines()), 22)
            self.assertEqual(rows[1], rows[0])
        self.assertEqual((self.folder / "all.csv").read_bytes(), (self.folder / "one.csv").read_bytes())

    def test_merge_of_other_columns(self):
        self.write_graph(GRAPH.replace(" types='K,U'", ""))
        for name, text in (("a", "k,t\n1,x\n"), ("b", "t,more\ny,z\n")):
            (self.folder / f"in/{name}.csv").write_text(text)
        words = ["--inputs", "in/*.csv", "--merge", "all.csv"]
        self.assertIn("Error: the merge has failed: ", self.batch(*words, status=1).stderr)
        self.batch(*words, "--union", "--detach")
        self.wait_until(lambda: not self.status()["running"])
        self.assertEqual(self.status()["merge"], "done")
        self.assertEqual((self.folder / "all.csv").read_text(), "k,t,more\n1,x,\n,y,z\n")

    def test_merge_that_fails(self):
        self.write_inputs(2)
        (self.folder / "all.csv").mkdir()
        self.assertIn("Error: the merge has failed: ", self.batch("--inputs", "in/*.csv", "--merge", "all.csv", status=1).stderr)
        self.assertIn("2 of 2 inputs done, 6 rows (not running, merge failed)", self.call("batch", "--status", "out/g.batch").stdout)
        self.assertEqual(self.outputs(), self.expected(2))
        (self.folder / "out/g.batch/logs/merge.log").unlink()
        (self.folder / "out/g.batch/logs/merge.log").mkdir()  # as if the merge was killed
        self.assertIn("Error: the merge has failed: its program has ended without a message",
                      self.batch("--inputs", "in/*.csv", "--merge", "all.csv", status=1).stderr)

    def test_merge_that_is_ended(self):
        """A signal ends the program that merges, too, before its script ends without a status."""
        self.write_inputs(2)
        self.batch("--inputs", "in/*.csv", "--merge", "all.csv")
        (self.folder / "out/g.batch/status/merge").unlink()
        (self.folder / "all.csv").unlink()
        os.mkfifo(self.folder / "all.csv")  # the merge waits for a reader
        with subprocess.Popen(["sh", self.folder / "out/g.batch/merge.sh"], stderr=subprocess.DEVNULL) as process:
            self.wait_until(lambda: any("\0merge\0" in line for _, line in self.processes()))
            process.terminate()
        left = self.processes()
        for number, _ in left:
            os.kill(int(number), signal.SIGKILL)
        self.assertEqual((process.returncode, left), (143, []))
        self.assertFalse((self.folder / "out/g.batch/status/merge").exists())

    def test_merge_without_rows(self):
        """A run without rows may write no file, and does not remove the one that an earlier run has written."""
        self.write_graph(GRAPH.replace("writeCSV", "writeJSON").replace("}.csv", "}.json"))
        names = self.write_inputs(2, rows=1)
        words = ["--inputs", "in/*.csv", "--merge", "all.json"]
        self.batch(*words)
        (self.folder / names[0]).write_text("k,t\n")
        self.batch(*words)
        self.assertTrue((self.folder / "out/a01_x.json").exists())
        self.assertEqual((self.folder / "all.json").read_text(), '[\n{"k":2000,"t":"text 2"}\n]\n')
        parts = ["--parts-from", "out/g.batch"]
        self.assertIn("Info: 1 input of the batch wrote no file", self.call("merge", "more.json", *parts).stderr)
        self.assertEqual((self.folder / "more.json").read_text(), (self.folder / "all.json").read_text())
        (self.folder / names[1]).write_text("k,t\n")
        self.assertRegex(self.batch(*words, status=1).stderr, "the merge has failed: .*the runs of the batch in '.*' have written no file")
        self.damage(names[1])
        self.batch(*words, status=1)
        done = self.call("merge", "more.json", *parts)
        self.assertEqual((done.returncode, done.stderr), (1, "corvanta merge: 1 input of the batch in 'out/g.batch' is not done\n"))

    def test_table_that_cannot_be_written(self):
        self.damage(self.write_inputs(1)[0])
        (self.folder / "out/g.batch").mkdir(parents=True)
        (self.folder / "out/g.batch/lock").write_text("")  # of a batch that could not begin
        self.batch("--inputs", "in/*.csv", status=1)
        table = self.folder / "out/g.batch/failures.tsv"
        table.unlink()
        table.mkdir()
        self.assertIn(f"Warning: cannot write '{table}': ", self.batch("--inputs", "in/*.csv", status=1).stderr)

    def test_progress(self):
        names = self.write_inputs(3)
        self.write_list(names)
        (self.folder / names[2]).unlink()
        os.mkfifo(self.folder / names[2])
        words = [self.corvanta, "batch", "g.graph", "--out-dir", "out", "--inputs", "list.txt", "--progress", "lines", "--log-format", "json"]
        with subprocess.Popen(words, cwd=self.folder, stderr=subprocess.PIPE, text=True) as process:
            self.addCleanup(process.kill)
            self.assertIn("in 3 tasks to run", json.loads(process.stderr.readline())["message"])
            line = json.loads(process.stderr.readline())["message"]
            while line.startswith(("0 of", "1 of")):  # a slow machine
                line = json.loads(process.stderr.readline())["message"]
            process.send_signal(signal.SIGTERM)
            process.communicate(timeout=WAITS)
            self.assertRegex(line, r"^2 of 3 inputs done, 6 rows, \d+\.\d inputs/s, \d+:\d\d left$")
        self.assertEqual(process.returncode, 143)

    def test_bad_input(self):
        self.write_inputs(2)
        self.write_graph(GRAPH.replace("${inputStem}", "all"), "one.graph")
        self.write_graph(GRAPH.replace("'K,U'", "'U,U'"), "other.graph")
        path = self.write_scheduler("echo 'sbatch: error: Invalid job array size' >&2\nexit 1", "")
        (self.folder / "full").mkdir()
        (self.folder / "full/file").write_text("")
        alone = {"PATH": str(self.folder / "nothing")}
        inputs = ["--inputs", "in/*.csv"]
        cases = [
            ([], "--inputs LIST is required", {}),
            ([*inputs, "--backend", "cluster"], "--backend must be slurm, parallel or local", {}),
            ([*inputs, "--per-task", "0"], "--per-task needs a number of at least 1", {}),
            ([*inputs, "--backend", "slurm"], "--backend slurm: the program 'sbatch' is not on the path", alone),
            ([*inputs, "--backend", "parallel"], "--backend parallel: the program 'parallel' is not on the path", alone),
            ([*inputs, "--backend", "slurm"], "the scheduler has rejected the job: sbatch: error: Invalid job array size; a larger --per-task makes fewer tasks", path),
            ([*inputs, "--folder", "full"], f"the folder '{self.folder}/full' has other files; name another one with --folder", {}),
            ([*inputs, "--union"], "--union needs --merge", {}),
            ([*inputs, "--json"], "--json needs --status", {}),
            (["--inputs", "none.txt"], "--inputs: cannot read the list 'none.txt': ", {}),
            (["--inputs", "old"], "--inputs: 'old' is the folder of a batch; a batch needs a list or a pattern", {}),
            (["--inputs", "-", "--detach"], "--detach needs a list file or a pattern, because the batch reads it after this program has ended", {}),
            ([*inputs, "--merge", "all.docx"], "files such as 'FOLDER/all.docx' cannot be merged; ", {}),
            ([*inputs, "--merge", "all.parquet"], "the part 'FOLDER/out/a01_x.csv' does not have the extension of a Parquet file", {}),
            ([*inputs, "--merge", "none/all.csv"], "--merge: there is no folder 'FOLDER/none'", {}),
        ]
        cases += [([*inputs, "--backend", "parallel", "--backend-option=--nothing"], "GNU parallel has rejected its options: Unknown option: nothing", {})] if PARALLEL else []
        (self.folder / "old").mkdir()
        (self.folder / "old/inputs.jsonl").write_text("")
        before = self.files()
        for words, text, variables in cases:
            with self.subTest(words=words):
                self.assertIn(text.replace("FOLDER", str(self.folder)), self.batch(*words, status=2, variables=variables).stderr)
                self.assertEqual(self.files(), before)
                self.assertFalse((self.folder / "out").exists())
        for graph, text in [("one.graph", "its name must depend on"), ("-", "a batch needs a graph file, because its tasks read it later")]:
            self.assertIn(text, self.batch(*inputs, status=2, graph=graph).stderr)
        two = GRAPH.replace("</graph>", "<action id='b'><writeCSV fileName='${inputStem}.b.csv'/></action><link from='in:0' to='b:0'/></graph>")
        self.write_graph(two, "two.graph")
        self.assertIn("--merge needs a graph that writes one file per input; this one writes ",
                      self.batch(*inputs, "--merge", "all.csv", status=2, graph="two.graph").stderr)
        for name in ("in/a02.csv", "out/a01_x.csv"):
            self.assertIn(f"--merge: the file '{self.folder}/{name}' is an input of the batch, or the output of a run",
                          self.batch(*inputs, "--merge", name, status=2).stderr)
        self.assertEqual(self.files(), sorted([*before, "two.graph"]))
        self.batch(*inputs, "--folder", "b")
        self.assertIn(f"the folder '{self.folder}/b' is of a batch of another graph, '{self.folder}/g.graph'; name another one with --folder",
                      self.batch(*inputs, "--folder", "b", status=2, graph="other.graph").stderr)
        done = self.call("batch", "--status", "in")
        self.assertEqual(done.returncode, 2)
        self.assertIn("'in' is not the folder of a batch: ", done.stderr)
        (self.folder / "b/batch.json").write_text("{}")
        self.assertIn("/batch.json' cannot be read: it is not the plan of a batch", self.call("batch", "--status", "b").stderr)


if __name__ == "__main__":
    unittest.main()

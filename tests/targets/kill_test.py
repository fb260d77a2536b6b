#!/usr/bin/python3
"""Is a file ever lost or half-written? kill_test.py CORVANTA [RandomMoments | EachCall]

Each writer replaces, updates or adds to a file that is there. Its run is killed and interrupted at random moments and, under strace,
killed before each system call that changes files; each of those calls is made to fail in turn. Afterwards the file is the old one,
byte for byte, or the whole new one, a failed run says so, and only a killed run leaves other files in its folder.
"""
import contextlib
import dataclasses
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import openpyxl

CORVANTA = sys.argv.pop(1)
RUNS = 30
SMALL, LARGE = 3000, 30_000  # rows
STOP_SECONDS = 1
CALLS = ["rename,renameat,renameat2", "link,linkat", "unlink,unlinkat", "fsync,fdatasync", "write,pwrite64"]
FAILURES = [("write,pwrite64", "ENOSPC"), ("write,pwrite64", "EIO"), ("rename,renameat,renameat2", "EACCES"),
            ("fsync,fdatasync", "EIO")]
MOST_CALLS = 40
DOCUMENTS = pathlib.Path(__file__).parents[2] / "examples" / "documents"


@dataclasses.dataclass
class Writer:
    element: str
    targets: list
    appends: bool = False  # in place: a killed run may leave more than the old file, never less
    leaves: str = None     # what a failed run leaves in the target's folder
    rows: str = ""         # the table, if it is not that of the others
    reads: bool = True     # rows; otherwise it reads the file of the table itself


WRITERS = [
    Writer("<writeExcel fileNameDestination='created.xlsx'/>", ["created.xlsx"]),
    Writer("<writeExcel mode='1' fileNameDestination='added.xlsx' sheetName='New'/>", ["added.xlsx"]),
    Writer("<writeExcel mode='2' fileNameDestination='appended.xlsx' startRow='0'/>", ["appended.xlsx"]),
    Writer("<writeExcel mode='3' fileNameSource='source.xlsx' fileNameDestination='copied.xlsx' sheetName='New'/>", ["copied.xlsx"]),
    Writer("<writeExcel mode='4' fileNameSource='source.xlsx' fileNameDestination='changed.xlsx'/>", ["changed.xlsx"]),
    Writer("<writeParquet file='one.parquet'/>", ["one.parquet"], leaves="*_TMP"),
    Writer("<writeParquet file='many.parquet' split='1' splitVar='mixed'/>", ["many__0.parquet", "many__1.parquet"], leaves="*_TMP"),
    Writer("<writeReport output='report.xlsx' template='&gt;bar.xlsx'><Chart type='0' name='data'><axis pinIdx='0'>t</axis>"
           "<axis pinIdx='0'>f</axis></Chart></writeReport>", ["report.xlsx"]),
    Writer("<writeJSON fileName='one.json'/>", ["one.json"]),
    Writer("<writeJSON fileName='many.json' splitFile='1' splitCol='sorted'/>", ["many0.json", "many1.json"]),
    Writer("<writeJSON fileName='longer.json' fileMode='1'/>", ["longer.json"], appends=True),
    Writer("<writeXML fileName='one.xml'/>", ["one.xml"]),
    Writer("<writeXML fileName='longer.xml' fileMode='1'/>", ["longer.xml"], appends=True),
    Writer("<writeCSV fileName='one.csv'/>", ["one.csv"]),
    Writer(f"<writeDocTable template='{DOCUMENTS}/report.docx' output='report.docx'><v colWidths='1,1,1,1,1'/></writeDocTable>",
           ["report.docx"]),
    Writer("<writeDoc output='output' template='template'><text><s>name</s></text><image><s>picture</s></image></writeDoc>",
           ["one.docx", "two.docx"], rows="output,template,name,picture\n" + "".join(
               f"{name}.docx,{DOCUMENTS}/letter.docx,{name},{DOCUMENTS}/mars.png\n" for name in ("one", "two"))),
    Writer("<writeSAS fileName='one.sas7bdat' autoWidth='1'/>", ["one.sas7bdat"]),
    Writer("<writeSASXPT fileName='one.xpt' autoWidth='1'/>", ["one.xpt"]),
    Writer("<mergeFiles fileName='merged.csv'><parts>" + "<s>in.csv</s>" * 20 + "</parts></mergeFiles>", ["merged.csv"], reads=False),
]


class Kill(unittest.TestCase):
    """Runs writers over old files and compares the files with the old and the new ones."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_kill_"))
        self.addCleanup(shutil.rmtree, self.folder)
        book = openpyxl.Workbook()
        book.active.title = "Sheet1"
        for i in range(2000):
            book.active.append([i, f"old {i}"])
        book.save(self.folder / "source.xlsx")
        self.old_book = (self.folder / "source.xlsx").read_bytes()

    def prepare(self, writers, rows):
        """Write the graph of these writers, and run it once to see what it makes of the old files."""
        self.writers = writers
        (self.folder / "in.csv").write_text("k,f,t,sorted,mixed\n" + "".join(
            f"{i},{i / 8},text {i},{i * 2 // rows},{i % 2}\n" for i in range(rows)))
        (self.folder / "case.graph").write_text(
            "<graph version='4.11'><action id='in'><readCSV fileName='in.csv' types='K,F,U,U,U' sortedOn='sorted'/></action>"
            + "".join(self.actions(i, writer) for i, writer in enumerate(writers)) + "</graph>")
        self.given = {"in.csv", "case.graph", "source.xlsx", *(f"in{i}.csv" for i in range(len(WRITERS)))}
        self.restore()
        begin = time.monotonic()
        subprocess.run(self.command(), check=True, stderr=subprocess.DEVNULL)
        self.length = time.monotonic() - begin
        self.new = {name: (self.folder / name).read_bytes() for name in self.targets()}
        self.assertEqual([name for name in self.new if self.new[name] == self.old(name)], [])

    def actions(self, number, writer):
        """A writer and what it reads."""
        if not writer.reads:
            return f"<action id='a{number}'>{writer.element}</action>"
        reader, source = "", "in"
        if writer.rows:
            source = f"in{number}"
            (self.folder / f"{source}.csv").write_text(writer.rows)
            reader = f"<action id='{source}'><readCSV fileName='{source}.csv'/></action>"
        return f"{reader}<action id='a{number}'>{writer.element}</action><link from='{source}:0' to='a{number}:0'/>"

    def targets(self):
        return [name for writer in self.writers for name in writer.targets]

    def old(self, name):
        return self.old_book if name.endswith(".xlsx") else b"old\n"

    def restore(self):
        for name in self.targets():
            (self.folder / name).write_bytes(self.old(name))

    def other_files(self):
        return {path.name for path in self.folder.iterdir()} - self.given - set(self.targets())

    def command(self, *inject):
        # with a filter in the kernel, only the calls of interest stop the run
        traced = ["strace", "-f", "--seccomp-bpf", "-qq", "-o", "/dev/null", *inject] if inject else []
        return [*traced, CORVANTA, "run", str(self.folder / "case.graph")]

    def traced(self, *options):
        """The system calls of a run. With -ff each thread has a file of its own, so that no line is split."""
        with tempfile.TemporaryDirectory(prefix="corvanta_trace_") as name:
            subprocess.run(["strace", "-ff", "-qq", "-o", f"{name}/trace", *options, *self.command()],
                           check=True, stderr=subprocess.DEVNULL)
            return "".join(path.read_text() for path in pathlib.Path(name).iterdir())

    def states(self, killed):
        """For each target "old" or "new", or why it is neither."""
        states = {}
        for writer in self.writers:
            for name in writer.targets:
                path = self.folder / name
                content = path.read_bytes() if path.exists() else None
                if content == self.old(name) or (killed and writer.appends and content and content.startswith(self.old(name))):
                    states[name] = "old"
                else:
                    states[name] = "new" if content == self.new[name] else "lost" if content is None else "half"
        return states

    def check_whole(self, killed):
        states = self.states(killed)
        self.assertEqual({name: state for name, state in states.items() if state not in ("old", "new")}, {})
        return set(states.values())


class RandomMoments(Kill):
    @contextlib.contextmanager
    def running(self, wait):
        """A run that has been writing for `wait` seconds, or has ended."""
        with subprocess.Popen(self.command(), stderr=subprocess.DEVNULL) as process:
            before = self.other_files()
            while process.poll() is None and self.other_files() == before:
                time.sleep(0.001)
            time.sleep(wait)
            yield process

    def test_killed_at_random(self):
        self.check_kills(WRITERS)

    def test_merge_killed_at_random(self):
        """A merge that ends long before the other writers is rarely hit among them."""
        self.check_kills(WRITERS[-1:])

    def check_kills(self, writers):
        self.prepare(writers, LARGE)
        choice = random.Random(11)
        killed = 0
        for _ in range(RUNS):
            self.restore()
            with self.running(choice.uniform(0, self.length)) as process:
                process.kill()
            killed += process.returncode != 0
            self.check_whole(killed=True)
        self.assertGreater(killed, 0, "every run had ended: the table is too small")
        # the files that they left must not disturb the next one
        self.restore()
        subprocess.run(self.command(), check=True, stderr=subprocess.DEVNULL)
        self.assertEqual(self.check_whole(killed=False), {"new"})

    def test_interrupted_at_random(self):
        self.prepare(WRITERS, LARGE)
        choice = random.Random(5)
        interrupted = 0
        for _ in range(RUNS):
            self.restore()
            with self.running(choice.uniform(0, self.length)) as process:
                process.send_signal(signal.SIGINT)
                sent = time.monotonic()
                status = process.wait(timeout=30)
                self.assertIn(status, (0, 130))
                self.assertTrue(time.monotonic() - sent < STOP_SECONDS or status == 0, "the run did not end within a second")
            interrupted += status == 130
            self.check_whole(killed=False)
            self.assertEqual(self.other_files(), set())
        self.assertGreater(interrupted, 0, "every run had ended: the table is too small")


class EachCall(Kill):
    def each_call(self, calls, effect, check):
        for n in range(1, MOST_CALLS + 1):
            self.restore()
            done = subprocess.run(self.command("-e", f"trace={calls}", "-e", f"inject={calls}:{effect}:when={n}"),
                                  capture_output=True, text=True, check=False)
            with self.subTest(writer=self.writers[0].element, calls=calls, effect=effect, n=n):
                check(done)
            if done.returncode == 0:
                return  # there is no n-th call, or it did not matter

    def each_writer(self, writers=WRITERS):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        for writer in writers:
            self.prepare([writer], SMALL)
            yield writer
            for name in [*self.other_files(), *self.targets()]:
                (self.folder / name).unlink(missing_ok=True)

    def test_killed_before_each_call(self):
        for _ in self.each_writer():
            for calls in CALLS:
                self.each_call(calls, "signal=KILL", lambda _: self.check_whole(killed=True))

    def test_each_call_fails(self):
        def check(done):
            states = self.check_whole(killed=False)
            if done.returncode == 0:
                self.assertEqual(states, {"new"})
            else:
                self.assertEqual(done.returncode, 1)
                self.assertIn("old", states)
                self.assertIn(str(self.folder), done.stderr)
            left = {path.name for path in self.folder.glob(writer.leaves)} if writer.leaves and done.returncode else set()
            self.assertEqual(self.other_files() - left, set())

        for writer in self.each_writer():
            for calls, error in FAILURES:
                self.each_call(calls, f"error={error}", check)

    def test_the_device_has_new_files_when_a_run_is_done(self):
        for _ in self.each_writer([w for w in WRITERS if "mode='1'" not in w.element and "mode='2'" not in w.element]):
            for name in self.targets():
                (self.folder / name).unlink()
            calls = self.traced("-y", "-e", "trace=fsync")
            for path in [self.folder, *(self.folder / name for name in self.targets())]:
                self.assertRegex(calls, rf"fsync\(\d+<{re.escape(str(path))}>\) += 0")
            for name in self.targets():
                (self.folder / name).unlink()
            done = subprocess.run(self.command("-e", "trace=fsync", "-e", "inject=fsync:error=EIO"),
                                  capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 1)
            self.assertIn(str(self.folder), done.stderr)


if __name__ == "__main__":
    unittest.main()

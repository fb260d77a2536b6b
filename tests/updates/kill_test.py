#!/usr/bin/python3
"""Is the workbook ever lost while it is updated in place? kill_test.py CORVANTA

The update is killed at random moments and, under strace, before each system call that changes files; each of those calls is made
to fail in turn. Afterwards the workbook is the old one, byte for byte, or the whole new one, and a failed update says so.
"""
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

import openpyxl

CORVANTA = sys.argv.pop(1)
CALLS = ["rename,renameat,renameat2", "link,linkat", "unlink,unlinkat", "fsync,fdatasync", "write,pwrite64"]
FAILURES = [("write,pwrite64", "ENOSPC"), ("write,pwrite64", "EIO"), ("rename,renameat,renameat2", "EACCES"),
            ("fsync,fdatasync", "EIO")]
MOST_CALLS = 40
GRAPH = """<graph version='4.11'>
  <action id='in'><readCSV fileName='in.csv' types='K,U'/></action>
  <action id='book'><writeExcel mode='2' startRow='0' firstLineContainsColumnNames='0' fileNameDestination='book.xlsx'/></action>
  <link from='in:0' to='book:0'/>
</graph>
"""


class Kill(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_kill_"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "in.csv").write_text("k,t\n" + "".join(f"{i},text {i}\n" for i in range(3000)))
        (self.folder / "case.graph").write_text(GRAPH)
        book = openpyxl.Workbook()
        book.active.title = "Sheet1"
        for i in range(2000):
            book.active.append([i, f"old {i}"])
        self.book = self.folder / "book.xlsx"
        book.save(self.book)
        self.old = self.book.read_bytes()

    def command(self, *inject):
        traced = ["strace", "-f", "-qq", "-o", "/dev/null", *inject] if inject else []
        return [*traced, CORVANTA, "run", str(self.folder / "case.graph")]

    def state(self):
        """"old" or "new", or why it is neither."""
        content = self.book.read_bytes() if self.book.exists() else None
        if content == self.old:
            return "old"
        try:
            with zipfile.ZipFile(self.book) as package:
                assert package.testzip() is None
                rows = package.read("xl/worksheets/sheet1.xml").count(b"<row ")
        except (OSError, zipfile.BadZipFile, KeyError, AssertionError) as error:
            return f"lost: {error}"
        return "new" if rows == 5000 else f"half: {rows} rows"

    def restore(self):
        for path in self.folder.glob("book.xlsx*"):
            path.unlink()
        self.book.write_bytes(self.old)

    def test_killed_at_random(self):
        choice = random.Random(11)
        begin = time.monotonic()
        subprocess.run(self.command(), check=True)
        length = time.monotonic() - begin
        self.assertEqual(self.state(), "new")
        for _ in range(40):
            self.restore()
            process = subprocess.Popen(self.command())
            time.sleep(choice.uniform(0, length * 1.2))
            process.kill()
            process.wait()
            self.assertIn(self.state(), ("old", "new"))
            # what it left behind must not disturb the next one
        self.restore()
        subprocess.run(self.command(), check=True)
        self.assertEqual(self.state(), "new")

    def each_call(self, calls, effect, check):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        for n in range(1, MOST_CALLS + 1):
            self.restore()
            done = subprocess.run(self.command("-e", f"trace={calls}", "-e", f"inject={calls}:{effect}:when={n}"),
                                  capture_output=True, text=True, check=False)
            with self.subTest(calls=calls, effect=effect, n=n):
                check(done)
            if done.returncode == 0:
                return  # there is no n-th call, or it did not matter

    def test_killed_before_each_call(self):
        for calls in CALLS:
            self.each_call(calls, "signal=KILL", lambda done: self.assertIn(self.state(), ("old", "new")))

    def check_failure(self, done):
        if done.returncode == 0:
            self.assertEqual(self.state(), "new")
        else:
            self.assertEqual((done.returncode, self.state()), (1, "old"))
            self.assertIn("book.xlsx", done.stderr)
        self.assertEqual([p.name for p in self.folder.glob("book.xlsx_tmp*")], [])

    def test_each_call_fails(self):
        for calls, error in FAILURES:
            self.each_call(calls, f"error={error}", self.check_failure)


if __name__ == "__main__":
    unittest.main()

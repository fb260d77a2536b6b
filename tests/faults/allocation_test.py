#!/usr/bin/python3
"""What happens when memory runs out? allocation_test.py CORVANTA FAILING_MALLOC SECONDS

One allocation of a small command fails, chosen at random. In other runs a thread cannot be started.
The command then succeeds with the right output, or fails with a message. It leaves no temporary file, the old target or the new one,
and it never crashes or hangs.
"""
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import small_runs

CORVANTA, FAILING_MALLOC, SECONDS = sys.argv[1:4]
HANGS = 60  # seconds
# The library of the statistical formats does not check its allocations.
CASES = [case for case in small_runs.CASES if case.name not in ("sas", "from_spss")]


class Allocations(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_memory_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.count = self.folder.with_suffix(".count")
        self.addCleanup(self.count.unlink, missing_ok=True)
        self.files = small_runs.Folder(CORVANTA, self.folder)

    def run_with(self, case, **environment):
        return subprocess.run(self.files.command(case.words), cwd=self.folder, capture_output=True, timeout=HANGS,
                              env={**os.environ, "LD_PRELOAD": FAILING_MALLOC, **environment})

    def allocations(self, case):
        self.files.restore(case)
        self.run_with(case, FAIL_COUNT=str(self.count))
        return int(self.count.read_text())

    def check(self, case, new, printed, **environment):
        self.files.restore(case)
        done = self.run_with(case, **environment)
        what = f"{case.name}, {environment}: {done.stderr.decode()}"
        if b"Fatal glibc error" in done.stderr:
            return 1  # the C library ends a program that it cannot give a destructor of a thread's variable
        found = {name: self.files.content(name) for name in case.targets}
        if done.returncode == 0 and small_runs.NO_SHEETS not in done.stderr:
            self.assertEqual((found, done.stdout), (new, printed), what)
        elif done.returncode != 0:
            self.assertEqual(done.returncode, 1, what)
            self.assertNotEqual(done.stderr, b"", what)
            for name, content in found.items():
                self.assertIn(content, (self.files.old(name), new[name]), what)
        left = {path.name for path in self.folder.glob(case.leaves)} if done.returncode else set()
        self.assertEqual(self.files.others(case) - left, set(), what)
        return done.returncode

    def test_an_allocation_fails(self):
        choice = random.Random(3)
        cases = [(case, *self.files.reference(case), self.allocations(case)) for case in CASES]
        end = time.monotonic() + float(SECONDS)
        statuses = set()
        while time.monotonic() < end:
            for case, new, printed, most in cases:
                with self.subTest(case=case.name):
                    statuses.add(self.check(case, new, printed, FAIL_AT=str(choice.randint(1, most))))
        self.assertIn(1, statuses)

    def test_a_thread_cannot_be_started(self):
        for case in (case for case in CASES if case.targets):  # the others start fewer threads
            new, printed = self.files.reference(case)
            statuses = [self.check(case, new, printed, FAIL_THREAD=str(number)) for number in range(1, 6)]
            # the first one waits for signals, the next ones are those of actions and codecs, which can do without
            self.assertEqual(statuses[0], 1, case.name)
            self.assertIn(1, statuses[1:], case.name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

#!/usr/bin/python3
"""What happens when memory runs out? allocation_test.py CORVANTA FAILING_MALLOC SECONDS

One allocation of a small command fails, chosen at random; in some runs all later ones fail too. In others a thread cannot be started.
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


class Allocations(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_memory_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.count = self.folder.with_suffix(".count")
        self.addCleanup(self.count.unlink)
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
        found = {name: self.files.content(name) for name in case.targets}
        if done.returncode == 0:
            self.assertEqual((found, done.stdout), (new, printed), what)
        else:
            self.assertEqual(done.returncode, 1, what)
            self.assertIn("error", done.stderr.decode().lower(), what)
            for name, content in found.items():
                self.assertIn(content, (self.files.old(name), new[name]), what)
        self.assertEqual(self.files.others(case), set(), what)
        return done.returncode

    def test_an_allocation_fails(self):
        choice = random.Random(3)
        cases = [(case, *self.files.reference(case), self.allocations(case)) for case in small_runs.CASES]
        end = time.monotonic() + float(SECONDS)
        statuses = set()
        while time.monotonic() < end:
            for case, new, printed, most in cases:
                lasting = {"FAIL_LASTING": "1"} if choice.random() < 0.2 else {}
                with self.subTest(case=case.name):
                    statuses.add(self.check(case, new, printed, FAIL_AT=str(choice.randint(1, most)), **lasting))
        self.assertEqual(statuses, {0, 1})

    def test_a_thread_cannot_be_started(self):
        for case in small_runs.CASES:
            new, printed = self.files.reference(case)
            statuses = [self.check(case, new, printed, FAIL_THREAD=str(number)) for number in range(1, 6)]
            # the thread that waits for signals and those of the actions; codecs can do without theirs
            self.assertEqual(statuses[:2], [0, 0] if case.name == "check" else [1, 1], case.name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

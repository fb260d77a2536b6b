#!/usr/bin/python3
"""Does a signal at any moment end a command cleanly? stop_test.py CORVANTA SECONDS

Commands with 20,000 rows get one of the signals that end a program, at a random moment. A command ends within a second, with its
result or with the status of the signal; it leaves no temporary file, and each target is the old or the new one.
"""
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import small_runs

CORVANTA, SECONDS = sys.argv[1:3]
SIGNALS = [signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM]
ROWS = 20_000
STOP_SECONDS = 1


class Stops(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_stop_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.files = small_runs.Folder(CORVANTA, self.folder, ROWS)

    def timed_reference(self, case):
        begin = time.monotonic()
        reference, _ = self.files.reference(case)
        return reference, time.monotonic() - begin

    def stop(self, case, new, number, moment):
        """Whether the run was stopped, and not already done."""
        self.files.restore(case)
        with subprocess.Popen(self.files.command(case.words), cwd=self.folder, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE) as process:
            time.sleep(moment)
            process.send_signal(number)
            sent = time.monotonic()
            messages = process.communicate(timeout=60)[1]
            took = time.monotonic() - sent
        what = f"{case.name}, signal {number} after {moment:.4f} s: {messages.decode()}"
        # negative: before main() has been called
        self.assertIn(process.returncode, (0, 128 + number, -number), what)
        others = [line for line in messages.decode().splitlines() if "] Info: " not in line]
        self.assertIn(others, [[], *([line] for line in self.reports(process.returncode, new))], what)
        self.assertLess(took, STOP_SECONDS, what)
        for name, content in new.items():
            allowed = (content,) if process.returncode == 0 else (self.files.old(name), content)
            self.assertIn(self.files.content(name), allowed, what)
        self.assertEqual(self.files.others(case), set(), what)
        return process.returncode != 0

    def reports(self, status, new):
        """The lines with which a stopped run may say what it left."""
        kept = ", ".join(str(self.folder / name) for name in new)
        return [] if status == 0 else ["Warning: interrupted; no file was written", f"Warning: interrupted; kept: {kept}"]

    def test_at_random_moments(self):
        choice = random.Random(2)
        cases = [(case, *self.timed_reference(case)) for case in small_runs.CASES]
        end = time.monotonic() + float(SECONDS)
        stopped = 0
        while time.monotonic() < end:
            for case, new, length in cases:
                with self.subTest(case=case.name):
                    stopped += self.stop(case, new, choice.choice(SIGNALS), choice.uniform(0, length))
        self.assertGreater(stopped, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

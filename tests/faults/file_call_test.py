#!/usr/bin/python3
"""What happens when the system refuses a file? file_call_test.py CORVANTA FAILING_CALLS SECONDS

One call for a file of a small command fails: each in turn, with an error that varies. The command then succeeds with the right output, or
fails with a message that names a file and with the system's reason. It leaves the old target or the new one, and no temporary file.
"""
import errno
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import small_runs

CORVANTA, FAILING_CALLS, SECONDS = sys.argv[1:4]
ERRORS = [errno.EIO, errno.EACCES, errno.EMFILE, errno.ENOSPC]
HANGS = 60  # seconds
# Messages of calls that fail rarely; every run of the test provokes each.
PROVOKED = ["Error: cannot write file '", "ERROR: cannot finalize XLSX file '", "WARNING: failed attempt to rename '",
            "ERROR cannot rename Parquet file '"]


class FileCalls(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_calls_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.count = self.folder.with_suffix(".count")
        self.addCleanup(self.count.unlink, missing_ok=True)
        self.messages = ""
        self.files = small_runs.Folder(CORVANTA, self.folder)

    def run_with(self, case, **environment):
        self.files.restore(case)
        return subprocess.run(self.files.command(case.words), cwd=self.folder, capture_output=True, timeout=HANGS, text=True,
                              env={**os.environ, "LC_ALL": "C.UTF-8", "LD_PRELOAD": FAILING_CALLS, "FAIL_FOLDER": str(self.folder),
                                   **environment})

    def calls(self, case):
        self.run_with(case, FAIL_COUNT=str(self.count))
        return int(self.count.read_text())

    def check(self, case, new, printed, call, error):
        done = self.run_with(case, FAIL_AT=str(call), FAIL_ERROR=str(error), FAIL_COUNT=str(self.count))
        self.messages += done.stderr
        what = f"{case.name}, call {call}, {errno.errorcode[error]}: {done.stderr}"
        found = {name: self.files.content(name) for name in case.targets}
        others = self.files.others(case)
        if done.returncode == 0 and small_runs.NO_SHEETS in done.stderr.encode():
            self.assertIn(os.strerror(error), done.stderr, what)
        elif done.returncode == 0:
            self.assertEqual((found, done.stdout.encode()), (new, printed), what)
            self.assertNotRegex(done.stderr, r"(?mi)^(\[.*?\] )?error", what)
            self.assertNotIn("lost", self.count.read_text(), what)
        else:
            # A graph file that cannot be read is like an invalid one.
            self.assertEqual(done.returncode, 2 if "graph file" in done.stderr else 1, what)
            self.assertRegex(done.stderr, "(?i)error|warning", what)
            self.assertRegex(done.stderr, r"\.(csv|xlsx?|docx|json|xml|parquet|dbf|sav|sas7bdat|xpt|graph)", what)
            self.assertIn(os.strerror(error), done.stderr, what)
            for name, content in found.items():
                self.assertIn(content, (self.files.old(name), new[name]), what)
            others = {name for name in others if not name.endswith("_TMP")}  # writeParquet leaves it for inspection
        self.assertEqual(others, set(), what)
        return done.returncode

    def test_a_call_fails(self):
        end = time.monotonic() + float(SECONDS)
        statuses = set()
        cases = [(case, *self.files.reference(case), self.calls(case)) for case in small_runs.CASES]
        # Round after round with another error: a slow machine tries fewer errors, but every call.
        for turn in range(len(ERRORS)):
            for case, new, printed, most in cases:
                for call in range(1, most + 1):
                    if turn > 0 and time.monotonic() > end:
                        break
                    with self.subTest(case=case.name, call=call):
                        statuses.add(self.check(case, new, printed, call, ERRORS[(call + turn) % len(ERRORS)]))
        self.assertEqual(statuses, {0, 1, 2})
        self.assertEqual([text for text in PROVOKED if text not in self.messages], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

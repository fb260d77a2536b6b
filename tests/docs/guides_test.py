#!/usr/bin/python3
"""The commands and files of the cookbook and of the guides work as their pages say: guides_test.py CORVANTA [PAGE...]

A block after a line with "as `NAME`" is that file; a comment "<!-- copy PATH [as NAME] -->" copies a file of the project. A block of "sh" is run
in a folder of its own per page, and a block of "text" after it is exactly what it prints.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

CORVANTA = pathlib.Path(sys.argv.pop(1)).resolve()
ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = [pathlib.Path(name) for name in sys.argv[1:]] or [*sorted((ROOT / "docs/cookbook").glob("*.md")), ROOT / "docs/guide/start.md", ROOT / "docs/guide/batch.md"]
BLOCK = re.compile(r"^<!-- copy (?P<copy>\S+)(?: as (?P<name>\S+))? -->$|(?P<before>[^\n]*)\n+```(?P<language>\w*)\n(?P<text>.*?)^```$", re.MULTILINE | re.DOTALL)


class Guides(unittest.TestCase):
    def run_page(self, page, folder):
        environment = {**os.environ, "PATH": f"{CORVANTA.parent}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
        output = None
        for block in BLOCK.finditer(page.read_text(encoding="utf-8")):
            named = re.search(r"as `([^`]+)`", block["before"] or "")
            if block["copy"]:
                shutil.copyfile(ROOT / block["copy"], folder / (block["name"] or pathlib.Path(block["copy"]).name))
            elif block["language"] == "sh":
                done = subprocess.run(["bash", "-euo", "pipefail", "-c", block["text"]], cwd=folder, env=environment, capture_output=True, text=True,
                                      check=False, timeout=120)
                self.assertEqual(done.returncode, 0, f"{block['text']}{done.stderr}")
                self.assertNotRegex(done.stderr, r"(?m)^(Warning|WARNING)")
                output = done.stdout
            elif block["language"] == "text":
                self.assertEqual(output, block["text"])
            elif named:
                (folder / named.group(1)).write_text(block["text"], encoding="utf-8")

    def test_pages(self):
        self.assertTrue(PAGES)
        for page in PAGES:
            with self.subTest(page=page.name), tempfile.TemporaryDirectory() as folder:
                self.run_page(page, pathlib.Path(folder))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

#!/usr/bin/python3
"""The commands, parameters and lists of README.md are right: readme_test.py CORVANTA"""
import gzip
import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
import zipfile

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
PROJECT = pathlib.Path(__file__).resolve().parents[2]
README = (PROJECT / "README.md").read_text(encoding="utf-8")
BLOCKS = re.findall(r"^```\w*\n(.*?)^```", README, re.MULTILINE | re.DOTALL)
ORDERS = [{"id": 1, "buyer": {"city": "Oslo"}, "lines": [{"product": "pen", "price": "2"}, {"product": "ink", "price": "3"}]}]


class Readme(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for begin, name in (("order,", "orders.csv"), ("<graph", "orders.graph")):
            (cls.folder / name).write_text(next(block for block in BLOCKS if block.startswith(begin)), encoding="utf-8")
        for name in ("orders", "dump"):
            (cls.folder / f"{name}.json.gz").write_bytes(gzip.compress(json.dumps({"orders": ORDERS}).encode()))
        (cls.folder / "more.json").write_text(json.dumps([{"order": 3, "note": "x"}]))
        for month in ("01", "02"):
            (cls.folder / f"2026-{month}.csv").write_bytes((cls.folder / "orders.csv").read_bytes())
        with zipfile.ZipFile(cls.folder / "data.zip", "w") as archive:
            archive.write(cls.folder / "orders.csv", "orders.csv")
        (cls.folder / "page.html").write_text("<table><tr><th>a</th></tr><tr><td>1</td></tr></table>" * 3)
        (cls.folder / "letter.docx").write_bytes((PROJECT / "examples/documents/letter.docx").read_bytes())
        for target in ("book.xlsx", "orders.parquet", "sales.parquet"):
            cls.corvanta("convert", "orders.csv", target)

    @classmethod
    def corvanta(cls, *words, status=(0,)):
        done = subprocess.run([CORVANTA, *words], cwd=cls.folder, capture_output=True, text=True, check=False)
        if done.returncode not in status:
            raise AssertionError(f"{words}: {done.stderr}")
        return done.stdout

    def test_commands_work(self):
        lines = [line for block in BLOCKS for line in block.splitlines()]
        commands = [line.split("#")[0] for line in lines if line.startswith(("corvanta ", "cat "))] + re.findall(r"`corvanta\s[^`]*`", README)
        self.assertGreater(len(commands), 20)
        for command in commands:
            words = command.strip("` ").replace("corvanta", shlex.quote(CORVANTA)).replace("\n", " ")
            done = subprocess.run(["bash", "-o", "pipefail", "-c", words], cwd=self.folder, capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 0, f"{command}: {done.stderr}")
        for name in ("orders_2026.xlsx", "seen.csv", "orders.xlsx", "dear.csv", "year.parquet", "tables/lines.csv"):
            self.assertTrue((self.folder / name).exists(), name)
        for chore in re.findall(r"\./dev (\w+)", README):
            self.assertIn(f"\ncmd_{chore}() {{", (PROJECT / "dev").read_text())

    def test_parameters_are_known(self):
        shown = re.findall(r"<((?:read|write|Read)\w+)((?:\s+\w+='[^']*')*)", README)
        self.assertGreater(len(shown), 8)
        for action, attributes in shown:
            (self.folder / "shown.graph").write_text(f"<graph version='4.11'><action id='a'><{action}{attributes}/></action></graph>")
            self.assertNotIn("unknown attribute", self.corvanta("check", "shown.graph", "--json", status=(0, 2)), action)

    def test_lists_are_complete(self):
        known = [line.split()[0] for line in self.corvanta("actions").splitlines()]
        table = README.partition("## Actions")[2].partition("## Cookbook")[0]
        self.assertEqual(sorted(re.findall(r"`(\w+)`", table)), sorted(known))
        listed = re.sub(r"[ \n]+", " ", README.partition("orders.xlsx` reads")[2].partition("It derives")[0])
        for line in self.corvanta("help", "convert").splitlines():
            use, *extensions = line.split() or [""]
            if use in ("reads", "writes"):
                named = re.findall(r"\w+", listed.partition(" files ")[0] if use == "reads" else listed.partition(" writes ")[2])
                self.assertEqual(set(named) - {"and", "files"} - set(extensions), set())


if __name__ == "__main__":
    unittest.main()

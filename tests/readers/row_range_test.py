#!/usr/bin/python3
"""firstRow and rowCount of readParquet and readStat: row_range_test.py CORVANTA CORPUS"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CORPUS = pathlib.Path(sys.argv.pop(1)).resolve() if len(sys.argv) > 1 else pathlib.Path("none")
PARQUET = "<readParquet fileName='{}' extendedEncodings='1' logicalTypes='1' skipUnreadable='1' {}/>"
STAT = "<readStat fileName='{}' {}/>"


@unittest.skipUnless((CORPUS / "stat").is_dir(), "no corpus")
class Ranges(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_ranges_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def read(self, element, name, words, *options, status=0):
        """The header and the rows of a range."""
        graph = self.folder / "g.graph"
        graph.write_text("<graph><variable name='first' value='1'/><variable name='count' value='0'/>"
                         f"<action id='r'>{element.format(name, words)}</action><action id='w'><writeCSV fileName='out.csv'/></action>"
                         "<link from='r:0' to='w:0'/></graph>")
        done = subprocess.run([CORVANTA, "run", graph, *options], capture_output=True, timeout=120, check=False)
        self.said = done.stderr.decode()
        self.assertEqual(done.returncode, status, f"{name} {words}: {self.said}")
        lines = (self.folder / "out.csv").read_bytes().split(b"\n") if status == 0 else [b"", b""]
        return lines[0], lines[1:-1]

    def check(self, element, name, sizes):
        header, rows = self.read(element, name, "")
        for size in sizes:
            pieces = []
            for first in range(1, len(rows) + 1, size):
                own, piece = self.read(element, name, "firstRow='${first}' rowCount='${count}'", "--set", f"first={first}", "--set", f"count={size}")
                self.assertEqual(own, header, name)
                pieces += piece
            self.assertEqual(pieces, rows, f"{name} in pieces of {size} rows")
        self.assertEqual(self.read(element, name, f"firstRow='{len(rows)}'"), (header, rows[-1:]), name)
        self.assertEqual(self.read(element, name, "firstRow='999999999'"), (header, []), name)
        self.assertEqual(self.read(element, name, "rowCount='2'"), (header, rows[:2]), name)

    def test_row_groups(self):
        for name in ("multi_rgs_pyarrow.parquet", "alltypes_plain.snappy.parquet"):
            self.check(PARQUET, CORPUS / "parquet" / name, (3,))
        # Groups outside of the range are not read: damage in them does not matter.
        (self.folder / "a.csv").write_text("n\n" + "".join(f"{i}\n" for i in range(500)))
        for words in (("convert", "a.csv", "a.parquet"), ("convert", "a.csv", "b.parquet"), ("merge", "two.parquet", "a.parquet", "b.parquet")):
            subprocess.run([CORVANTA, *words], cwd=self.folder, check=True, capture_output=True)
        two = self.folder / "two.parquet"
        content = two.read_bytes()
        two.write_bytes(content[:4] + b"\xff" * 100 + content[104:])
        self.read(PARQUET, two, "rowCount='1'", status=1)
        _, rows = self.read(PARQUET, two, "firstRow='501' rowCount='500'")
        self.assertEqual((len(rows), rows[-1]), (500, b"499"))

    def test_data_sets(self):
        for pattern in ("*.sas7bdat", "*.sav", "*.dta", "*.xpt", "*.por"):
            files = [path for path in sorted((CORPUS).rglob(pattern)) if 1000 < path.stat().st_size < 200000]
            done = 0
            for path in files:
                alone = subprocess.run([CORVANTA, "convert", path, "-", "--to", "csv", "-q"], capture_output=True, timeout=60, check=False)
                rows = alone.stdout.count(b"\n") - 1
                if alone.returncode == 0 and 4 < rows and b"\n\n" not in alone.stdout and b'"' not in alone.stdout:
                    self.check(STAT, path, (rows // 3 + 1,))
                    done += 1
                if done == 3:
                    break
            self.assertGreater(done, 0, pattern)

    def test_wrong_numbers(self):
        name = CORPUS / "parquet" / "alltypes_plain.snappy.parquet"
        self.read(PARQUET, name, "firstRow='x'", status=1)
        self.assertIn("Error: 'x' is not a value of firstRow; allowed: a whole number from 1\n", self.said)
        self.read(PARQUET, name, "rowCount='${count}'", "--set", "count=", status=1)
        self.assertIn("Error: '' is not a value of rowCount; allowed: a whole number from 0\n", self.said)


if __name__ == "__main__":
    unittest.main(verbosity=2)

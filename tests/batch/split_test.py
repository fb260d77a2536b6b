#!/usr/bin/python3
"""Does "run --inputs --split-rows" read each row of a file exactly once? split_test.py CORVANTA [CORPUS]"""
import pathlib
import sys
import unittest

from batch_case import PIECES, BatchCase

BatchCase.corvanta = str(pathlib.Path(sys.argv.pop(1)).resolve())
CORPUS = pathlib.Path(sys.argv.pop(1)) if len(sys.argv) > 1 else None


class Split(BatchCase):
    def test_row_groups(self):
        self.parquet("in/big.parquet", [30, 30, 30, 100, 10])
        self.write_graph(PIECES)
        pieces = self.call("check", "g.graph", "--inputs", "in/*.parquet", "--split-rows", "60", "--out-dir", "out", "--list-outputs")
        self.assertEqual(pieces.stdout.split(), [f"{self.folder}/out/big_{part}.csv" for part in (1, 2, 3, 4)])
        counts = self.counts("--inputs", "in/*.parquet", "--split-rows", "60")
        self.assertEqual(counts, {"done": 4})
        pieces = {name: content.decode().split() for name, content in self.outputs().items()}
        self.assertEqual([len(pieces[f"big_{part}.csv"]) for part in (1, 2, 3, 4)], [60, 30, 100, 10])
        self.assertEqual([int(n) for part in (1, 2, 3, 4) for n in pieces[f"big_{part}.csv"]], list(range(1, 201)))
        # A second run has nothing to do, in whatever shards; a piece that is gone runs again.
        self.assertEqual(self.counts("--inputs", "in/*.parquet", "--split-rows", "60", "--shard", "1/2"), {"skipped": 2})
        (self.folder / "out/big_3.csv").unlink()
        self.assertEqual(self.counts("--inputs", "in/*.parquet", "--split-rows", "60"), {"done": 1, "skipped": 3})
        self.assertEqual(len(self.outputs()["big_3.csv"].split()), 100)
        said = self.run_inputs("--inputs", "in/*.parquet", "--split-rows", "60", "--no-resume", "-v")
        self.assertTrue(any(line.get("input", "").endswith("big.parquet (rows 91 to 190)") for line in said), said)
        # A file without rows is one piece, without a range.
        (self.folder / "none.csv").write_text("n\n")
        self.call("convert", "none.csv", "in/none.parquet")
        said = self.run_inputs("--inputs", "in/n*.parquet", "--split-rows", "60", status=1)
        self.assertEqual(said[0]["input"], f"{self.folder}/in/none.parquet")
        (self.folder / "in/none.parquet").unlink()
        # Shards by size count the rows of the pieces.
        self.counts("--inputs", "in/*.parquet", "--split-rows", "60", "--shard", "1/2", "--balance", "size", "--journal", "size")
        self.assertEqual(len(self.journal("size")), 1)

    @unittest.skipUnless(CORPUS and (CORPUS / "stat").is_dir(), "no corpus")
    def test_data_sets(self):
        self.write_graph(PIECES.replace("readParquet", "readStat"))
        names = [CORPUS / "stat" / name for name in ("iris.sav", "sample.xpt")] + [CORPUS / "stat/dta/stata1_117.dta"] + \
            sorted((CORPUS / "stat").glob("iris.sas7bdat"))
        for name in names:
            whole = self.call("convert", str(name), "-", "--to", "csv", "--reader", "formatDates=0").stdout.split("\n", 1)[1]
            self.write_list([str(name)])
            self.counts("--inputs", "list.txt", "--split-rows", "4", "--journal", "j" + name.suffix)
            count = len([line for line in self.journal("j" + name.suffix) if line["status"] == 0])
            text = b"".join(self.outputs()[f"{name.stem}_{part}.csv"] for part in range(1, count + 1)).decode()
            self.assertEqual(text, whole, name)

    def test_what_cannot_be_split(self):
        self.write_inputs(1)
        self.parquet("in/p.parquet", [5])
        for pattern, words, says in (("in/*.csv", ("4",), "files of its format can only be read from their beginning; Parquet, SAS, SPSS and Stata files can be divided"),
                                     ("in/*.parquet", ("0",), "--split-rows needs a number of rows, at least 1")):
            done = self.call("run", "g.graph", "--inputs", pattern, "--split-rows", *words)
            self.assertEqual((done.returncode, says in done.stderr), (2, True), done.stderr)
        graph = PIECES
        for old, new, says in ((" rowCount='${inputRowCount}'", "", "}, so every run would read rows of other pieces; set firstRow='${inputFirstRow}' rowCount='${inputRowCount}' in its reader"),
                               ("_${inputPart}", "", ", and for pieces on ${inputIndex} or ${inputPart}")):
            self.parquet("in/q.parquet", [5, 5])
            self.write_graph(graph.replace(old, new))
            done = self.call("run", "g.graph", "--inputs", "in/q?parquet", "--split-rows", "5", "--out-dir", "out")
            self.assertEqual((done.returncode, says in done.stderr), (2, True), done.stderr)
        self.write_graph(graph)
        self.assertIn("--split-rows needs --inputs", self.call("check", "g.graph", "--split-rows", "5").stderr)
        done = self.call("run", "g.graph", "--inputs", "in/q?parquet")
        self.assertEqual(done.returncode, 2)
        self.assertIn("}: divide its input files with --inputs LIST --split-rows N, or set the variable with --set ", done.stderr)
        (self.folder / "in/bad.parquet").write_text("no")
        done = self.call("run", "g.graph", "--inputs", "in/b?d.parquet", "--split-rows", "5")
        self.assertIn("bad.parquet' cannot be divided: the file is shorter than its trailer", done.stderr)
        self.assertFalse((self.folder / "out").exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)

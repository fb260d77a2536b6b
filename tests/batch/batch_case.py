"""A folder with a graph and small inputs, and the command that runs the graph for all of them. Used by the tests of this folder."""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

GRAPH = """<graph version='4.12'>
  <variable name='suffix' value='x'/>
  <action id='in'><readCSV fileName='${input}' types='K,U'/></action>
  <action id='out'><writeCSV fileName='${outDir}/${inputStem}_${suffix}.csv'/></action>
  <link from='in:0' to='out:0'/>
</graph>
"""
# For --split-rows.
PIECES = """<graph version='4.12'>
  <action id='in'><readParquet fileName='${input}' firstRow='${inputFirstRow}' rowCount='${inputRowCount}'/></action>
  <action id='out'><writeCSV fileName='${outDir}/${inputStem}_${inputPart}.csv' header='0'/></action>
  <link from='in:0' to='out:0'/>
</graph>
"""


# Signs that a shell, a pattern, GNU parallel or sbatch would replace, and those that end a line or a cell.
ODD_FOLDER = "it's {} {#} {.} 100%a a\\b\n\tc"
ODD_NAMES = ["-r.csv", "a b.csv", "100%1%j.csv", "it's.csv", 'say "x".csv', "$HOME `id`.csv", "{}.csv", "#;&.csv"]


class BatchCase(unittest.TestCase):
    """`corvanta` is the program; set by the test script."""
    corvanta = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_batch_"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "in").mkdir()
        self.write_graph(GRAPH)

    def write_graph(self, text, name="g.graph"):
        (self.folder / name).write_text(text, encoding="utf-8")

    def write_inputs(self, count, rows=3):
        """in/a01.csv and so on; returns their names. All have other content."""
        names = []
        for i in range(1, count + 1):
            name = f"in/a{i:02}.csv"
            (self.folder / name).write_text("k,t\n" + "".join(f"{i * 1000 + row},text {i}\n" for row in range(rows)), encoding="utf-8")
            names.append(name)
        return names

    def write_list(self, names, name="list.txt"):
        (self.folder / name).write_text("\n".join(names) + "\n", encoding="utf-8")

    def parquet(self, name, groups, column="n"):
        """A Parquet file with row groups of these sizes; its rows are numbered."""
        parts, first = [], 1
        for i, rows in enumerate(groups):
            (self.folder / "part.csv").write_text(f"{column}\n" + "".join(f"{n}\n" for n in range(first, first + rows)))
            parts.append(f"in/part{i}.parquet")
            self.assertEqual(self.call("convert", "part.csv", parts[-1]).returncode, 0)
            first += rows
        done = self.call("merge", name, *parts)
        self.assertEqual(done.returncode, 0, done.stderr)
        for part in parts:
            (self.folder / part).unlink()

    def write_odd_inputs(self):
        """Inputs with ODD_NAMES; returns what their runs must write."""
        outputs = {}
        for i, name in enumerate(ODD_NAMES):
            text = f"k,t\n{i},text\n"
            (self.folder / "in" / name).write_text(text, encoding="utf-8")
            outputs[name[:-len(".csv")] + "_x.csv"] = text.encode()
        return outputs

    def damage(self, name):
        """The input no longer parses."""
        (self.folder / name).write_text("k,t\nnot a number,x\n", encoding="utf-8")

    def call(self, *words, variables=None, **more):
        return subprocess.run([self.corvanta, *words], cwd=self.folder, env={**os.environ, **(variables or {})}, capture_output=True, text=True,
                              check=False, timeout=120, **more)

    def run_inputs(self, *words, status=0, graph="g.graph", **more):
        """`run` for the inputs, with the messages as objects. `status` None: any."""
        done = self.call("run", graph, "--out-dir", "out", "--log-format", "json", *words, **more)
        if status is not None:
            self.assertEqual(done.returncode, status, done.stderr)
        return [json.loads(line) for line in done.stderr.splitlines()]

    def counts(self, *words, **more):
        """The counts of the summary of a run."""
        counts = self.run_inputs("--progress", "always", *words, **more)[-1]["summary"]["inputs"]
        return {name: counts[name] for name in ("done", "skipped", "failed", "left") if counts[name]}

    def outputs(self, folder="out"):
        """The content of each output."""
        return {path.name: path.read_bytes() for path in (self.folder / folder).glob("*.csv")}

    def expected(self, count, suffix="x"):
        return {f"a{i:02}_{suffix}.csv": (self.folder / f"in/a{i:02}.csv").read_bytes() for i in range(1, count + 1)}

    def journal(self, folder="out/g.journal"):
        """All lines of a journal, in the order of their files."""
        return [json.loads(line) for path in sorted((self.folder / folder).glob("*.jsonl")) for line in path.read_text(encoding="utf-8").splitlines()]

    def files(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file())

#!/usr/bin/python3
"""Tables that do not fit into the memory for rows: large_tables_test.py CORVANTA"""
import os
import pathlib
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
ROWS = 1_600_000  # of 80 bytes and more, in memory
MEMORY = 300 << 20

SORT = "<sort><keys><s>n</s></keys><kinds><s>n=integer</s></kinds></sort>"
JOIN = "<join type='2'><keys><s>n</s></keys></join>"


class LargeTables(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_large_tables_"))
        text = "a text of a row that is long enough for few rows to need much memory"
        # Every number once, in an order that is not sorted.
        cls.numbers = [i * 7 % ROWS for i in range(ROWS)]
        with open(cls.folder / "in.csv", "w", encoding="ascii") as out:
            out.write("n,text\n")
            out.writelines(f"{n},{text}\n" for n in cls.numbers)
        (cls.folder / "tmp").mkdir()
        cls.write_graph("sort", SORT, 1)
        cls.write_graph("join", JOIN, 2)

    @classmethod
    def tearDownClass(cls):
        subprocess.run(["rm", "-rf", cls.folder], check=True)

    @classmethod
    def write_graph(cls, name, element, pins):
        reader = "<readCSV fileName='in.csv'/>"
        parts = [f"<action id='in{i}'>{reader}</action><link from='in{i}:0' to='a:{i}'/>" for i in range(pins)]
        (cls.folder / f"{name}.graph").write_text("<graph version='4.11'>" + "".join(parts) + f"<action id='a'>{element}</action>"
                                                  f"<action id='out'><writeCSV fileName='{name}.csv'/></action><link from='a:0' to='out:0'/></graph>")

    def start(self, name, temporary="tmp"):
        return subprocess.Popen([CORVANTA, "run", f"{name}.graph"], cwd=self.folder, stderr=subprocess.PIPE, text=True,
                                env={**os.environ, "TMPDIR": str(self.folder / temporary)})

    def check_run(self, name):
        process = self.start(name)
        _, status, usage = os.wait4(process.pid, 0)
        self.assertEqual(status, 0, process.stderr.read())
        process.stderr.close()
        self.assertLess(usage.ru_maxrss * 1024, MEMORY)
        self.assertEqual(os.listdir(self.folder / "tmp"), [])
        with open(self.folder / f"{name}.csv", encoding="ascii") as table:
            next(table)
            return [int(line.partition(",")[0]) for line in table]

    def test_sort(self):
        self.assertEqual(self.check_run("sort"), list(range(ROWS)))

    def test_join(self):
        self.assertEqual(self.check_run("join"), self.numbers)

    def test_no_temporary_file_can_be_made(self):
        for name in ["sort", "join"]:
            _, log = (process := self.start(name, "none")).communicate(timeout=120)
            self.assertEqual(process.returncode, 1)
            self.assertIn(f"Error: {name}: the rows cannot be kept in a temporary file in the folder '{self.folder}/none'\n", log)
            self.assertIn("No such file or directory", log)

    def test_no_room_for_the_temporary_file(self):
        process = subprocess.run([CORVANTA, "run", "sort.graph"], cwd=self.folder, capture_output=True, text=True, timeout=120, check=False,
                                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (20 << 20, 20 << 20)))
        self.assertEqual(process.returncode, 1)
        self.assertIn("Error: sort: the rows cannot be kept in a temporary file", process.stderr)
        self.assertIn("File too large", process.stderr)

    def test_a_kill_leaves_nothing(self):
        for delay in [0.5, 1.5]:
            process = self.start("sort")
            time.sleep(delay)
            process.send_signal(signal.SIGKILL)
            process.communicate()
            self.assertEqual(os.listdir(self.folder / "tmp"), [])


if __name__ == "__main__":
    unittest.main()

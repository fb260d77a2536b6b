#!/usr/bin/python3
"""Several writers of one file, in one graph and in several processes. same_file_test.py CORVANTA

In a graph they take turns, or the graph is invalid; processes that update or extend one file wait for each other. No row is lost,
every file is complete, and no other file stays in the folder.
"""
import contextlib
import fcntl
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import openpyxl

CORVANTA = sys.argv.pop(1)
CSV = "<readCSV fileName='{0}.csv' types='K,U'/>"
CREATE = "<writeExcel fileNameDestination='z.xlsx' sheetName='{0}'/>"
ADD = "<writeExcel mode='1' fileNameDestination='{1}' sheetName='{0}'/>"
EXTEND = "<writeExcel mode='2' fileNameDestination='z.xlsx' sheetName='A' startRow='0'/>"
ROWS = 50_000  # several blocks of a file
JSON = "<writeJSON fileName='z.json' fileMode='{0}'/>"


class SameFile(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_same_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.table("a", 3)
        self.table("b", 2000)

    def table(self, name, rows):
        (self.folder / f"{name}.csv").write_text("k,t\n" + "".join(f"{i},{name}{i}\n" for i in range(rows)))

    def graph(self, *actions, links, name="case"):
        """A graph of the actions a0, a1, ... (or of "id=element"), and of links "a0 a1"."""
        text = "".join(f"<action id='a{i}'>{element}</action>\n" for i, element in enumerate(actions))
        for link in links.split(","):
            source, target = (end if ":" in end else f"{end}:0" for end in link.split())
            text += f"<link from='{source}' to='{target}'/>\n"
        path = self.folder / f"{name}.graph"
        path.write_text(f"<graph version='4.11'>\n{text}</graph>")
        return path

    def command(self, path, *args, verb="run"):
        return subprocess.run([CORVANTA, verb, str(path), *args], capture_output=True, text=True, timeout=60, check=False,
                              cwd=self.folder)

    def run_graph(self, *actions, links, args=()):
        done = self.command(self.graph(*actions, links=links), *args)
        self.assertEqual((done.returncode, done.stderr), (0, ""), f"{actions} {links}")

    def sheets(self, name="z.xlsx"):
        """The names of the sheets, each with its number of rows."""
        with contextlib.closing(openpyxl.load_workbook(self.folder / name, read_only=True)) as book:
            return {sheet.title: sum(1 for _ in sheet.iter_rows()) for sheet in book}

    def contents(self):
        return {path.name: path.read_bytes() if path.exists() else None for path in self.folder.iterdir()}

    def check_files(self, *names):
        self.assertEqual({path.name for path in self.folder.iterdir()}, {"a.csv", "b.csv", *names})

    def check_invalid(self, *actions, links, names, line, args=(), verbs=("run", "check")):
        path = self.graph(*actions, links=links)
        before = self.contents()
        for verb in verbs:
            done = self.command(path, *args, verb=verb)
            self.assertEqual(done.returncode, 2, done.stderr)
            for part in (*(f"'{name}'" for name in names), f"case.graph{line}: "):
                self.assertIn(part, done.stderr)
            self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertEqual(self.contents(), before)

    # in one graph

    def test_sheets_of_one_workbook(self):
        add = [ADD.format("B", "z.xlsx"), ADD.format("C", "./x/../z.xlsx")]
        for given, links in {
                "chain": "a0 a1,a1 a2,a2 a3",
                "fan out": "a0 a1,a0 a2,a0 a3",
                "half chain": "a0 a1,a0 a2,a2 a3",
        }.items():
            with self.subTest(given):
                self.run_graph(CSV.format("b"), CREATE.format("A"), *add, links=links)
                self.assertEqual(self.sheets(), {"A": 2001, "B": 2001, "C": 2001})
                self.check_files("z.xlsx", "case.graph")
                (self.folder / "z.xlsx").unlink()
        self.run_graph(CSV.format("a"), CSV.format("b"), CREATE.format("A"), ADD.format("B", "z.xlsx"), links="a0 a2,a1 a3")
        self.assertEqual(self.sheets(), {"A": 4, "B": 2001})
        # two updates of one sheet, in separate branches and in a chain
        self.run_graph(CSV.format("a"), CSV.format("b"), EXTEND, EXTEND, links="a0 a2,a1 a3")
        self.assertEqual(self.sheets(), {"A": 4 + 4 + 2001, "B": 2001})
        self.run_graph(CSV.format("a"), EXTEND, EXTEND, links="a0 a1,a1 a2")
        self.assertEqual(self.sheets(), {"A": 4 + 4 + 2001 + 4 + 4, "B": 2001})

    def test_rows_that_two_actions_write_to_one_place(self):
        replace = "<writeExcel mode='2' fileNameDestination='{0}' sheetName='A' startRow='{1}'/>"
        (self.folder / "l.xlsx").symlink_to("z.xlsx")
        path = self.graph(CSV.format("b"), CSV.format("a"), CREATE.format("A"), replace.format("z.xlsx", 3),
                          replace.format("l.xlsx", 6).replace("sheetName='A'", "sheetMode='0' sheetIdx='1'"),
                          replace.format("z.xlsx", 3), links="a0 a2,a1 a3,a1 a4,a1 a5")
        done = self.command(path, "--log-format", "json")
        self.assertEqual(done.returncode, 0, done.stderr)
        log = [json.loads(line) for line in done.stderr.splitlines()]
        lost = [re.search(r"(.*) from row (\d+) in the sheet 'A' of .*, which the action '(\w+)' has just written, (\w+) replaced",
                          message["message"]).groups() for message in log]
        self.assertIn(" replaced (startRow='0' writes below them).", log[0]["message"])
        expected = [("a3", "1999 rows", "3", "a2", "are"), ("a4", "1 row", "6", "a3", "is"), ("a5", "3 rows", "3", "a3", "are"),
                    ("a5", "4 rows", "6", "a4", "are")]
        self.assertEqual([(message["action"], message["level"]) for message in log], [(row[0], 2) for row in expected])
        self.assertEqual([words.removeprefix("Warning: ") for line in lost for words in line], [word for row in expected for word in row[1:]])
        self.assertEqual(self.sheets(), {"A": 2 + 4})

    def test_links_come_before_the_order_of_the_graph(self):
        self.run_graph(ADD.format("B", "z.xlsx"), CREATE.format("A"), CSV.format("a"), links="a2 a1,a1 a0")
        self.assertEqual(list(self.sheets()), ["A", "B"])

    def test_a_link_and_its_file_are_one(self):
        (self.folder / "l.xlsx").symlink_to("z.xlsx")
        self.run_graph(CSV.format("a"), CREATE.format("A"), ADD.format("B", "l.xlsx"), links="a0 a1,a0 a2")
        self.assertEqual(self.sheets(), {"A": 4, "B": 4})
        self.assertTrue((self.folder / "l.xlsx").is_symlink())

    def test_hard_links_to_one_file_take_turns(self):
        self.table("b", 40_000)  # more than the queues hold
        (self.folder / "z.json").touch()
        (self.folder / "h.json").hardlink_to(self.folder / "z.json")
        self.run_graph(CSV.format("b"), JSON.format(1), JSON.format(1).replace("z.json", "h.json"), links="a0 a1,a0 a2")
        self.assertEqual(len(json.loads("[" + (self.folder / "h.json").read_text().replace("][", "],[") + "]")), 2)

    def test_a_copy_onto_itself_is_an_update(self):
        copy = "<writeExcel mode='3' fileNameSource='z.xlsx' fileNameDestination='z.xlsx' sheetName='B'/>"
        self.run_graph(CSV.format("a"), CREATE.format("A"), copy, links="a0 a1,a1 a2")
        self.assertEqual(self.sheets(), {"A": 4, "B": 4})

    def test_appended_elements_do_not_mix(self):
        self.table("b", ROWS)
        self.run_graph(CSV.format("b"), JSON.format(0), JSON.format(1), JSON.format(1), links="a0 a1,a0 a2,a0 a3")
        whole = json.loads("[" + (self.folder / "z.json").read_text().replace("][", "],[") + "]")
        self.assertEqual(whole, [[{"k": i, "t": f"b{i}"} for i in range(ROWS)]] * 3)
        split = "<writeJSON fileName='s.json' fileMode='1' splitFile='1' splitCol='k'/>"
        done = self.command(self.graph(CSV.format("a"), split, split, links="a0 a1,a0 a2"))
        self.assertEqual(done.returncode, 0)
        self.assertEqual((self.folder / "s1.json").read_text(), '[{"k":1,"t":"a1"}]' * 2)

    def test_rows_wait_beyond_the_memory(self):
        (self.folder / "b.csv").write_text("k,t\n" + "".join(f"{i},{'text ' * 200}{i}\n" for i in range(60_000)))
        self.run_graph(CSV.format("b"), JSON.format(0), JSON.format(1), "<writeCSV fileName='copy.csv'/>",
                       links="a0 a1,a0 a2,a2 a3")
        self.assertEqual((self.folder / "copy.csv").read_bytes(), (self.folder / "b.csv").read_bytes())
        self.assertEqual(len(re.findall('"k":59999,', (self.folder / "z.json").read_text())), 2)

    def test_readers_see_the_old_content(self):
        self.table("big", 100_000)
        old = (self.folder / "big.csv").read_bytes()
        self.run_graph(CSV.format("a"), "<writeCSV fileName='./big.csv'/>", CSV.format("big"), "<writeCSV fileName='copy.csv'/>",
                       links="a0 a1,a2 a3")
        self.assertEqual((self.folder / "copy.csv").read_bytes(), old)
        self.assertEqual((self.folder / "big.csv").read_bytes(), (self.folder / "a.csv").read_bytes())
        # parts of a merge, which have no pin
        merge = "<mergeFiles fileName='copy.csv'><parts><s>big.csv</s><s>a.csv</s></parts></mergeFiles>"
        done = self.command(self.graph(CSV.format("b"), "<writeCSV fileName='./big.csv'/>", merge, links="a0 a1"))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual((self.folder / "copy.csv").read_text().splitlines()[1:], ["0,a0", "1,a1", "2,a2"] * 2)
        # a workbook that is opened with the first row, which comes when the writer would be done
        old, new = CREATE.format("old"), CREATE.format("new")
        copy = "<writeExcel mode='3' fileNameSource='z.xlsx' fileNameDestination='copy.xlsx' sheetName='B'/>"
        self.run_graph(CSV.format("a"), old, links="a0 a1")
        os.mkfifo(self.folder / "pipe.csv")
        path = self.graph(CSV.format("a"), new, CSV.format("pipe"), copy, links="a0 a1,a2 a3")
        with subprocess.Popen([CORVANTA, "run", str(path)]) as process, open(self.folder / "pipe.csv", "w", encoding="ascii") as pipe:
            time.sleep(0.5)
            pipe.write("k,t\n1,x\n")
            pipe.close()
            self.assertEqual(process.wait(timeout=30), 0)
        self.assertEqual((self.sheets(), self.sheets("copy.xlsx")), ({"new": 4}, {"old": 4, "B": 2}))
        # a reader after the writer: the old content, or what was written if there is none
        self.run_graph(CSV.format("a"), old, copy.replace("copy", "c2"), links="a0 a1,a1 a2")
        self.assertEqual((self.sheets(), self.sheets("c2.xlsx")), ({"old": 4}, {"new": 4, "B": 4}))
        (self.folder / "z.xlsx").unlink()
        self.run_graph(CSV.format("a"), old, copy.replace("copy", "c3"), links="a0 a1,a1 a2")
        self.assertEqual(self.sheets("c3.xlsx"), {"old": 4, "B": 4})
        # a reader that depends on the writer, and one that fills the writer
        self.run_graph(CSV.format("a"), "<writeCSV fileName='a.csv'/>", links="a0 a1")
        self.run_graph(CSV.format("b"), "<writeCSV fileName='b.csv'/>", CSV.format("b"), "<writeCSV fileName='copy.csv'/>",
                       links="a0 a1,a2 a3", args=["--tap", "a1:0=b.csv.tap"])
        self.assertEqual((self.folder / "copy.csv").read_bytes(), (self.folder / "b.csv").read_bytes())

    def test_one_creator_per_file(self):
        csv = "<writeCSV fileName='{0}'/>"
        for first, second in [("z.csv", "z.csv"), ("z.csv", "./z.csv"), ("x/../z.csv", "z.csv"), ("l.csv", "z.csv")]:
            (self.folder / "l.csv").unlink(missing_ok=True)
            (self.folder / "l.csv").symlink_to("z.csv")  # dangling
            self.check_invalid(CSV.format("a"), csv.format(first), csv.format(second), links="a0 a1,a0 a2",
                               names=["a1", "a2"], line=":4")
        parquet = "<writeParquet file='z.parquet' split='1' splitVar='t'/>"
        self.check_invalid(CSV.format("a"), parquet, parquet, links="a0 a1,a0 a2", names=["a1", "a2"], line=":4")
        self.check_invalid(CSV.format("a"), ADD.format("B", "z.xlsx"), CREATE.format("A"), links="a0 a1,a1 a2",
                           names=["a1", "a2"], line=":4")
        tap = ["--tap", f"a0:0={self.folder}/z.csv"]
        self.check_invalid(CSV.format("a"), csv.format("z.csv"), links="a0 a1", names=["a1", "tap a0:0"], line="", args=tap,
                           verbs=["run"])
        self.check_invalid(CSV.format("a"), links="a0 a0", names=["a0"], line="", verbs=[])
        device = csv.format("/dev/null")
        self.run_graph(CSV.format("a"), device, device, links="a0 a1,a0 a2")

    def test_names_that_depend_on_the_rows(self):
        split = "<writeJSON fileName='z.json' splitFile='1' splitCol='k'/>"
        done = self.command(self.graph(CSV.format("a"), split, "<writeJSON fileName='z1.json'/>", links="a0 a1,a0 a2"))
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, "'a[12]' and 'a[12]' write the same file '.*/z1.json'")
        sorted_rows = "<readCSV fileName='a.csv' types='K,U' sortedOn='t'/>"
        self.run_graph(sorted_rows, "<writeJSON fileName='z9.json'/>", "<writeParquet file='p.pq' split='1' splitVar='t'/>",
                       "<writeParquet file='p__x.pq'/>", links="a0 a1,a0 a2,a0 a3")

    def test_no_append_to_what_is_read(self):
        append = "<writeJSON fileName='{0}' fileMode='1'/>"
        (self.folder / "hard.csv").hardlink_to(self.folder / "a.csv")
        for name in ("a.csv", "hard.csv"):
            self.check_invalid(CSV.format("a"), append.format(name), links="a0 a1", names=["a0", "a1"], line=":3")
        (self.folder / "z.json").write_text("[]")
        read = "<readJSON fileName='*.json'><Level initialPath=''><e name='k' path='k'/></Level></readJSON>"
        self.check_invalid(read, append.format("new.json"), links="a0 a1", names=["a0", "a1"], line=":3")
        (self.folder / "a.json").write_text('[{"k":1}]')
        done = self.command("a.json", "./a.json", "--writer", "fileMode=1", verb="convert")
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, "'input'.*'output'")

    def test_a_failure_and_a_stop_end_the_waits(self):
        (self.folder / "bad.csv").write_text("k,t\n1,x\ny,z\n")
        path = self.graph(CSV.format("bad"), CREATE.format("A"), ADD.format("B", "z.xlsx"), links="a0 a1,a0 a2")
        self.assertEqual(self.command(path).returncode, 1)
        (self.folder / "bad.csv").unlink()
        self.check_files("case.graph")
        os.mkfifo(self.folder / "pipe.csv")
        path = self.graph(CSV.format("pipe"), CSV.format("a"), CREATE.format("A"), ADD.format("B", "z.xlsx"), links="a0 a2,a1 a3")
        with subprocess.Popen([CORVANTA, "run", str(path)], stderr=subprocess.DEVNULL) as process, \
                open(self.folder / "pipe.csv", "w", encoding="ascii") as pipe:
            pipe.write("k,t\n" + "1,x\n" * 100_000)
            pipe.flush()
            time.sleep(0.3)
            process.send_signal(signal.SIGINT)
            time.sleep(0.3)
            pipe.close()
            self.assertEqual(process.wait(timeout=10), 130)
        (self.folder / "pipe.csv").unlink()
        self.check_files("case.graph")

    # in several processes

    def processes(self, *elements):
        paths = [self.graph(CSV.format("b"), element, links="a0 a1", name=f"p{i}") for i, element in enumerate(elements)]
        running = [subprocess.Popen([CORVANTA, "run", str(path)], stderr=subprocess.PIPE, text=True) for path in paths]
        ends = [(process.communicate(timeout=60)[1], process.returncode) for process in running]
        for path in paths:
            path.unlink()
        self.assertEqual([status for _, status in ends], [0] * len(ends), ends)

    def test_processes_that_update_one_workbook(self):
        self.table("b", 20_000)
        names = ["A", "B", "C", "D"]
        for _ in range(3):
            self.processes(*(ADD.format(name, "z.xlsx") for name in names))  # the first one creates the workbook
            self.assertEqual(self.sheets(), {name: 20_001 for name in names})
            self.check_files("z.xlsx")
            (self.folder / "z.xlsx").unlink()

    def test_processes_that_extend_one_file(self):
        self.table("b", ROWS)
        for _ in range(3):
            self.processes(*[JSON.format(1)] * 4)
            whole = json.loads("[" + (self.folder / "z.json").read_text().replace("][", "],[") + "]")
            self.assertEqual([len(part) for part in whole], [ROWS] * 4)
            self.check_files("z.json")
            (self.folder / "z.json").unlink()

    def test_processes_that_write_one_parquet_file(self):
        self.table("b", 100_000)
        self.addCleanup(os.environ.pop, "CORVANTA_NET_DRIVE", None)
        for drive in ("", "", str(self.folder)):
            os.environ["CORVANTA_NET_DRIVE"] = drive
            (self.folder / "z.parquet_TMP").write_text("left by a killed run")
            self.processes(*["<writeParquet file='z.parquet'/>"] * 4)
            done = self.command("z.parquet", "copy.csv", verb="convert")
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual((self.folder / "copy.csv").read_bytes(), (self.folder / "b.csv").read_bytes())
            (self.folder / "copy.csv").unlink()
            if drive:
                (self.folder / "z.parquet_TMP").unlink()  # not used there
            self.check_files("z.parquet")

    def test_an_update_waits_for_the_process_that_creates_the_workbook(self):
        os.mkfifo(self.folder / "pipe.csv")
        for first in (True, False):  # a new workbook, and one that is replaced
            creating = self.graph(CSV.format("pipe"), CREATE.format("A"), links="a0 a1", name="p0")
            with subprocess.Popen([CORVANTA, "run", str(creating)]) as one, open(self.folder / "pipe.csv", "w", encoding="ascii") as pipe:
                pipe.write("k,t\n" + "1,x\n" * 50_000)  # more than the pin holds: the workbook is begun
                pipe.flush()
                adding = self.graph(CSV.format("a"), ADD.format("B", "z.xlsx"), links="a0 a1", name="p1")
                with subprocess.Popen([CORVANTA, "run", str(adding)], stderr=subprocess.PIPE, text=True) as other:
                    self.assertIn("Waiting: another program is writing to the file", other.stderr.readline(), first)
                    pipe.close()
                    self.assertEqual((one.wait(timeout=30), other.wait(timeout=30)), (0, 0))
            self.assertEqual(self.sheets(), {"A": 50_001, "B": 4})
        self.check_files("z.xlsx", "pipe.csv", "p0.graph", "p1.graph")

    def test_a_lock_of_another_program(self):
        os.environ["CORVANTA_NET_DRIVE"] = str(self.folder)  # Parquet files there are written without a temporary file
        self.addCleanup(os.environ.pop, "CORVANTA_NET_DRIVE")
        elements = {"z.xlsx": ADD.format("B", "z.xlsx"), "n.xlsx": CREATE.format("B").replace("z.", "n."), "z.json": JSON.format(1),
                    "z.parquet": "<writeParquet file='z.parquet'/>"}
        created = {"z.xlsx": CREATE.format("A"), "n.xlsx": CREATE.format("A").replace("z.", "n."), "z.json": JSON.format(0),
                   "z.parquet": "<writeParquet file='z.parquet' codec='1'/>"}
        for name, element in elements.items():
            self.run_graph(CSV.format("a"), created[name], links="a0 a1")
            before = (self.folder / name).read_bytes()
            path = self.graph(CSV.format("a"), element.replace(" ", " timeOut='1' ", 1), links="a0 a1")
            with open(self.folder / name, "rb") as other:
                fcntl.flock(other, fcntl.LOCK_EX)
                done = self.command(path, "--log-format", "json")
                self.assertEqual(done.returncode, 1)
                log = [json.loads(line) for line in done.stderr.splitlines()]
                self.assertEqual([message["level"] for message in log], [3, 1], log)
                self.assertIn(f"Waiting: another program is writing to the file '{self.folder}/{name}'", log[0]["message"])
                self.assertIn(f"'{self.folder}/{name}': another program has been writing to it for 1 second (see timeOut)",
                              log[1]["message"])
                self.assertEqual((self.folder / name).read_bytes(), before)
                # a stop while it waits
                path = self.graph(CSV.format("a"), element, links="a0 a1")
                with subprocess.Popen([CORVANTA, "run", str(path)], stderr=subprocess.PIPE, text=True) as process:
                    process.stderr.readline()
                    process.send_signal(signal.SIGINT)
                    self.assertEqual(process.wait(timeout=10), 130)
                # the lock is given back
                with subprocess.Popen([CORVANTA, "run", str(path)], stderr=subprocess.PIPE, text=True) as process:
                    self.assertIn("Waiting", process.stderr.readline())
                    fcntl.flock(other, fcntl.LOCK_UN)
                    self.assertEqual(process.wait(timeout=20), 0)
            self.assertNotEqual((self.folder / name).read_bytes(), before)
        self.check_files("case.graph", *elements)

    # names

    def test_names_of_255_bytes_and_links_without_a_file(self):
        (self.folder / "far").mkdir()
        (self.folder / "far/near").mkdir()
        (self.folder / "near").symlink_to("far/near")
        for element, ending in {"<writeCSV fileName='{0}'/>": ".csv", "<writeParquet file='{0}'/>": ".parquet",
                                "<writeJSON fileName='{0}'/>": ".json", "<writeJSON fileMode='1' fileName='{0}'/>": ".json",
                                "<writeXML fileName='{0}'/>": ".xml", "<writeExcel fileNameDestination='{0}'/>": ".xlsx",
                                "<writeExcel mode='1' fileNameDestination='{0}'/>": ".xlsx"}.items():
            for letter in ("x", "ü", "\U0001f600"):
                room = 255 - len(ending)
                size = len(letter.encode())
                name = letter * (room // size) + "x" * (room % size) + ending
                for _ in range(2):  # new, and replaced
                    done = self.command(self.graph(CSV.format("a"), element.format(name), links="a0 a1"))
                    self.assertEqual(done.returncode, 0, f"{element} {done.stderr}")
                self.assertGreater((self.folder / name).stat().st_size, 0)
                (self.folder / name).unlink()
            # a chain through a linked folder: relative parts count from where the folder really is
            (self.folder / "far/near/link").unlink(missing_ok=True)
            (self.folder / "far/near/link").symlink_to("../second")
            (self.folder / "far/second").unlink(missing_ok=True)
            (self.folder / "far/second").symlink_to("file" + ending)
            done = self.command(self.graph(CSV.format("a"), element.format("near/link"), links="a0 a1"))
            self.assertEqual(done.returncode, 0, f"{element} {done.stderr}")
            self.assertTrue((self.folder / "near/link").is_symlink() and (self.folder / "far/second").is_symlink(), element)
            (self.folder / ("far/file" + ending)).unlink()
        self.check_files("case.graph", "far", "near")


if __name__ == "__main__":
    unittest.main()

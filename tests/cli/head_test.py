#!/usr/bin/python3
"""corvanta head and schema: head_test.py CORVANTA CORPUS [TEST]..."""
import fcntl
import json
import os
import pathlib
import pty
import struct
import subprocess
import sys
import tempfile
import termios
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CORPUS = pathlib.Path(sys.argv.pop(1))


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_head_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def put(self, name, text):
        (self.folder / name).write_bytes(text.encode())

    def corvanta(self, *words, status=0):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr}")
        return done

    def on_terminal(self, columns, *words):
        """What a terminal of that width gets."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen([CORVANTA, *words], cwd=self.folder, stdout=slave, stderr=subprocess.DEVNULL)
        os.close(slave)
        shown = b""
        while True:
            try:
                piece = os.read(master, 65536)
            except OSError:
                break
            shown += piece
        process.wait()
        os.close(master)
        return shown.decode().replace("\r\n", "\n")


class Head(Case):
    def test_numbers_are_aligned_right_and_texts_left(self):
        self.put("in.csv", 'k,long name,t\n7,0.25,a\n,-1e300,\n4294967293,nan,""\n')
        self.assertEqual(self.corvanta("head", "in.csv", "--reader", "types=K,F,U").stdout,
                         "         k  long name  t\n"
                         "----------  ---------  --\n"
                         "         7       0.25  a\n"
                         "              -1e+300\n"
                         "4294967293        nan  \"\"\n")

    def test_nothing_is_printed_after_an_error(self):
        self.put("in.csv", 'a,b\n' + '1,2\n' * 5 + '"x\n')
        self.assertEqual(self.corvanta("head", "in.csv", status=1).stdout, "")

    def test_widths_are_those_of_a_terminal(self):
        self.put("in.csv", "a,b\n東京,x\né\u0301,x\n😀,x\nabc,x\n")
        self.assertEqual(self.corvanta("head", "in.csv").stdout,
                         "a     b\n----  -\n東京  x\né\u0301     x\n😀    x\nabc   x\n")

    def test_nothing_in_a_cell_reaches_the_terminal(self):
        self.put("in.csv", '"a\x1b[2J\tb"\n"line\r\nline\x00\x7f\u202e\u2028"\n')
        self.assertEqual(self.corvanta("head", "in.csv").stdout.split("\n"),
                         ["a\\x1b[2J\\tb", "-" * 32, "line\\r\\nline\\x00\\x7f\\u202e\\u2028", ""])
        self.assertEqual(self.corvanta("schema", "in.csv").stdout, "a\\x1b[2J\\tb\tU\n")

    def test_rows(self):
        self.put("in.csv", "n\n" + "".join(f"{i}\n" for i in range(5000)))
        for words, rows in (([], 10), (["-n", "0"], 0), (["-n", "1"], 1), (["-n", "2500"], 2500), (["-n", "9999"], 5000)):
            shown = self.corvanta("head", "in.csv", *words).stdout.splitlines()
            self.assertTrue([line.strip() for line in shown[2:]] == [str(i) for i in range(rows)], words)

    def test_rows_after_the_measured_ones_are_whole(self):
        self.put("in.csv", "n,m\n" + "x,x\n" * 1000 + "yyy,x\n")
        self.assertEqual(self.corvanta("head", "in.csv", "-n", "2000").stdout.splitlines()[-2:], ["x  x", "yyy  x"])

    def test_tables_without_rows_or_columns(self):
        self.put("in.csv", "a,b\n")
        self.assertEqual(self.corvanta("head", "in.csv").stdout, "a  b\n-  -\n")
        self.assertEqual(self.corvanta("schema", "in.csv").stdout, "a\tU\nb\tU\n")
        self.put("empty.csv", "")
        self.assertEqual(self.corvanta("head", "empty.csv").stdout, "")
        self.put("empty.json", "[]")
        self.assertEqual(self.corvanta("head", "empty.json").stdout, "value\n-----\n")

    def test_json_distinguishes_names_and_empty_cells(self):
        self.put("in.csv", 'k,k,t\n1,2,""\n3,4,\n')
        self.assertEqual(json.loads(self.corvanta("head", "in.csv", "--json").stdout),
                         [{"k": "1", "k_2": "2", "t": ""}, {"k": "3", "k_2": "4", "t": None}])
        # The settings of --reader win over other options.
        self.put("in.csv", "a;b\n1;2\n")
        self.assertEqual(json.loads(self.corvanta("head", "in.csv", "--json", "--separator", ",", "--reader", "separator=;").stdout), [{"a": 1, "b": 2}])

    def test_long_cells_are_whole_but_on_a_terminal(self):
        self.put("in.csv", "a,b,c\n" + "x" * 300 + "," + "y" * 5000 + ",z\n")
        line = self.corvanta("head", "in.csv").stdout.splitlines()[2]
        self.assertEqual(line, "x" * 300 + "  " + "y" * 999 + "…  z")
        shown = self.on_terminal(60, "head", "in.csv").splitlines()
        self.assertEqual(shown, ["a", "-" * 40, "x" * 39 + "…", "and 2 more columns: b, c"])
        self.assertEqual(self.on_terminal(200, "head", "in.csv").splitlines()[2], "x" * 39 + "…  " + "y" * 39 + "…  z")

    def test_damage_after_the_shown_rows_is_not_read(self):
        self.put("in.json", "[" + '{"a":1},' * 20 + "]]]")
        self.assertEqual(self.corvanta("head", "in.json", "-n", "20").stderr, "")
        self.assertEqual(self.corvanta("head", "in.json", "-n", "21", status=1).stdout, "")
        self.assertEqual(self.corvanta("schema", "in.json").stdout, "a\tK\n")

    def test_what_the_shown_rows_lost_is_reported(self):
        record = b" x"  # no logical value
        (self.folder / "t.dbf").write_bytes(struct.pack("<BxxxIHH20x11sc4xB15x", 3, 5000, 65, 2, b"L", b"L", 1) + b"\r" +
                                            record * 5000)
        self.assertIn("has 3 values not valid for the type of the column", self.corvanta("head", "t.dbf", "-n", "3").stderr)

    @unittest.skipUnless(CORPUS.is_dir(), "no corpus of real files")
    def test_schema_shows_labels_formats_and_value_labels(self):
        data = str(CORPUS / "stat/sample.por")
        lines = self.corvanta("schema", data).stdout.splitlines()
        self.assertEqual([lines[0], lines[1], lines[4]],
                         ["MYCHAR\tU\tcharacter\tA1", "MYNUM\tF\tnumeric\tF8.2", "MYLABL\tF\tlabeled\tF8.2\t1=Male, 2=Female"])
        columns = json.loads(self.corvanta("schema", data, "--json").stdout)
        self.assertEqual(columns[4], {"name": "MYLABL", "type": "decimal", "letter": "F", "label": "labeled", "format": "F8.2",
                                      "valueLabels": [{"value": "1", "label": "Male"}, {"value": "2", "label": "Female"}]})
        self.put("in.csv", "k\n1\n")
        self.assertEqual(json.loads(self.corvanta("schema", "in.csv", "--json").stdout), [{"name": "k", "type": "integer", "letter": "K"}])

    def test_statuses(self):
        self.put("in.csv", "a\n1\n")
        for command in ("head", "schema"):
            for words in ([], ["in.csv", "in.csv"], ["in.pdf"], ["in"], ["in.csv", "--nope"], ["in.csv", "--writer", "header=0"],
                          ["in.csv", "--reader", "nope=0"], ["in.csv", "--table", "x"]):
                self.assertIn(f"corvanta help {command}", self.corvanta(command, *words, status=2).stderr)
            for extension in ("csv", "csv.gz", "json", "xml", "html", "parquet", "dbf", "xlsx", "xls", "sav"):
                self.assertEqual(self.corvanta(command, f"nope.{extension}", status=1).stdout, "")
        for rows in ("x", "-1", "1.5", ""):
            self.corvanta("head", "in.csv", "-n", rows, status=2)
        self.corvanta("schema", "in.csv", "-n", "1", status=2)
        self.put("wrong.csv", "a,b\n1\n")
        self.corvanta("head", "wrong.csv", status=1)

    def test_types(self):
        self.put("in.csv", "k,f,t\n1,2,3\n")
        self.assertEqual(self.corvanta("schema", "in.csv", "--types", "text").stdout, "k\tU\nf\tU\nt\tU\n")
        self.corvanta("convert", "in.csv", "in.parquet", "--reader", "types=K,F,U")
        self.assertEqual(self.corvanta("schema", "in.parquet").stdout, "k\tK\nf\tF\nt\tU\n")


@unittest.skipUnless(CORPUS.is_dir(), "no corpus of real files")
class Corpus(Case):
    """Every file is shown, or refused with a message."""

    def check(self, folder, extension, mostly):
        files = sorted(path for path in (CORPUS / folder).rglob("*")
                       if path.suffix.lower() == f".{extension}" and path.name != "polygon.dbf")  # which has no columns
        self.assertNotEqual(files, [])
        shown = 0
        for path in files:
            for command in ("schema", "head"):
                done = subprocess.run([CORVANTA, command, str(path)], capture_output=True, timeout=60, check=False)
                self.assertIn(done.returncode, (0, 1), path)
                self.assertTrue(done.stdout if done.returncode == 0 else done.stderr, f"{command} {path} says nothing")
                done.stdout.decode("utf-8")
                self.assertNotIn(b"\x1b", done.stdout)
            shown += done.returncode == 0
        self.assertGreaterEqual(shown / len(files), mostly, f"{shown} of {len(files)} {extension} files are shown")

    def test_json(self):
        self.check("json/docs", "json", 0.9)
        self.check("json/lines", "ndjson", 0.8)

    def test_xml(self):
        self.check("xml", "xml", 0.75)

    def test_html(self):
        self.check("html", "html", 0.9)

    def test_parquet(self):
        self.check("parquet", "parquet", 0.8)

    def test_dbf(self):
        # The unsupported field types are refused.
        self.check("dbf", "dbf", 0.8)


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C.UTF-8"
    unittest.main()

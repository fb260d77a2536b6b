#!/usr/bin/python3
"""The inputs, outputs and row options of corvanta convert: pipeline_test.py CORVANTA"""
import csv
import gzip
import io
import json
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
import zlib

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
TABLE = b"a,b\n1,x\n2,y\n"


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_pipeline_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.put("in.csv", TABLE)

    def put(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())

    def content(self, name):
        return (self.folder / name).read_bytes()

    def names(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file())

    def convert(self, *words, status=0, stdin=b"", env=None):
        done = subprocess.run([CORVANTA, "convert", *words], cwd=self.folder, capture_output=True, timeout=120, check=False, input=stdin,
                              env={**os.environ, **(env or {})})
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr.decode()}")
        self.said = done.stderr.decode()
        return done.stdout

    def rows_of(self, name):
        return list(csv.reader(io.StringIO(self.content(name).decode(), newline="")))


class Streams(Case):
    def test_dash_is_standard_input_and_output(self):
        for source, document in (("csv", TABLE), ("tsv", TABLE.replace(b",", b"\t")), ("json", b'[{"a":1,"b":"x"},{"a":2,"b":"y"}]'),
                                 ("jsonl", b'{"a":1,"b":"x"}\n{"a":2,"b":"y"}\n'), ("xml", b"<t><r a='1' b='x'/><r a='2' b='y'/></t>")):
            self.assertEqual(self.convert("-", "-", "--from", source, "--to", "csv", stdin=document), TABLE, source)
            self.convert("-", f"out.{source}", f"--from={source}", stdin=document)
            self.assertEqual(self.convert(f"out.{source}", "-", "--to", "csv"), TABLE, source)
        self.assertEqual(self.convert("in.csv", "-", "--to", "jsonl").splitlines()[1][-8:], b'"b":"y"}')
        self.assertEqual(self.names(), ["in.csv", *(f"out.{name}" for name in ("csv", "json", "jsonl", "tsv", "xml"))])
        for words, text in ((("-", "out.csv"), "'-' is standard input: --from FORMAT must name its format (for example --from csv)"),
                            (("in.csv", "-"),
                             "'-' is standard output: --to FORMAT must name its format, one of csv, tsv, json, jsonl and xml"),
                            (("in.csv", "-", "--to", "parquet"), "--to FORMAT must name its format, one of csv"),
                            (("in.csv", "out", "--to", "cvs"), "--to: unknown format 'cvs'; the nearest known name is 'csv'")):
            self.convert(*words, status=2)
            self.assertIn(text, self.said)

    def test_standard_input_may_be_compressed(self):
        lines = b'{"a":1,"b":"x"}\n{"a":2,"b":"y"}\n'
        for source, document in (("csv", TABLE), ("jsonl", lines)):
            packed = gzip.compress(document)
            self.put("in.gz", packed)
            self.assertEqual(self.convert("-", "-", "--from", source, "--to", "csv", stdin=packed), TABLE, source)
            for command, rows in (("convert", TABLE), ("head", b"a  b\n-  -\n1  x\n2  y\n")):
                with open(self.folder / "in.gz", "rb") as stdin:
                    words = [CORVANTA, command, "-", "--from", source, *(["-", "--to", "csv"] if command == "convert" else [])]
                    self.assertEqual(subprocess.run(words, stdin=stdin, capture_output=True, check=True).stdout, rows)
        self.convert("-", "out.csv", "--from", "csv", stdin=b"PK\3\4....", status=1)
        self.assertIn("Error: readCSV: file '/dev/stdin' is not a text file: it begins like a zip archive or a workbook; give it the right "
                      "extension", self.said)

    def test_redirected_output_is_written_at_its_position(self):
        for mode, before in (("wb", b"first\n"), ("ab", b"")):
            with open(self.folder / "all.csv", mode) as out:
                out.write(before)
                out.flush()
                subprocess.run([CORVANTA, "convert", "in.csv", "-", "--to", "csv"], cwd=self.folder, stdout=out, check=True)
        self.assertEqual(self.content("all.csv"), b"first\n" + TABLE * 2)
        ours, theirs = socket.socketpair()
        with ours, theirs:
            subprocess.run([CORVANTA, "convert", "in.csv", "-", "--to", "csv"], cwd=self.folder, stdout=theirs, check=True)
            self.assertEqual(ours.recv(100), TABLE)
        for target in ("/dev/full", "closed"):
            out = subprocess.PIPE if target == "closed" else open(target, "wb")
            with subprocess.Popen([CORVANTA, "convert", "in.csv", "-", "--to", "csv"], cwd=self.folder, stdout=out, stderr=subprocess.DEVNULL) as run:
                if target == "closed":
                    run.stdout.close()
                else:
                    out.close()
                # A small table may be in the pipe before it is closed.
                self.assertIn(run.wait(60), (1,) if target == "/dev/full" else (0, 1), target)

    def test_formats_replace_extensions(self):
        self.put("data.txt2", b'[{"a":1},{"a":2}]')
        self.convert("data.txt2", "out.bin", "--from", "json", "--to", "tsv")
        self.assertEqual(self.content("out.bin"), b"a\n1\n2\n")

    def test_outputs_are_packed(self):
        for extension in ("json", "jsonl", "xml"):
            self.convert("in.csv", f"plain.{extension}")
            self.convert("in.csv", f"packed.{extension}.gz")
            self.assertEqual(gzip.decompress(self.content(f"packed.{extension}.gz")), self.content(f"plain.{extension}"))
        self.convert("in.csv", "out.xlsx.gz", status=2)
        self.put("bad.csv", "a,b\n1,2\n3\n")
        self.put("old.json.gz", "old")
        self.convert("bad.csv", "old.json.gz", status=1)
        self.assertEqual(self.content("old.json.gz"), b"old")

    def test_lines_of_json(self):
        self.put("t.csv", 'a,b\n1,"x\ny"\n,""\n,\n')
        self.convert("t.csv", "out.jsonl")
        lines = [json.loads(line) for line in self.content("out.jsonl").decode().splitlines()]
        self.assertEqual([str(lines[0]["a"]), lines[0]["b"], lines[1], lines[2]],
                         ["1", "x\ny", {"a": None, "b": ""}, {"a": None, "b": None}])

    def test_members_of_archives(self):
        def pack(name, members):
            with zipfile.ZipFile(self.folder / name, "w", zipfile.ZIP_DEFLATED) as archive:
                for member in members:
                    archive.writestr(member, '[{"a":1}]' if member.endswith("json") else "x")
        pack("one.zip", ["notes.md", "data/t.json", "__MACOSX/data/t.json"])
        self.assertEqual(self.convert("one.zip", "-", "--to", "csv"), b"a\n1\n")
        pack("two.zip", ["a.json", "b.json", "c.csv"])
        self.convert("two.zip", "out.csv", status=2)
        self.assertIn("the archive 'two.zip' contains 3 files that can be read. Choose one:\n  two.zip@a.json\n  two.zip@b.json\n  two.zip@c.csv", self.said)
        self.assertEqual(self.convert("two.zip@b.json", "-", "--to", "csv"), b"a\n1\n")
        pack("none.zip", ["notes.md"])
        self.convert("none.zip", "out.csv", status=2)
        self.assertIn("the archive 'none.zip' has no file of a known format (see --from). It contains:\n  none.zip@notes.md", self.said)
        self.put("broken.zip", b"PK\3\4 not a zip archive")
        self.convert("broken.zip", "out.csv", status=1)
        self.assertIn("cannot read the archive 'broken.zip': it is not a zip archive, or it is damaged", self.said)


class SeveralInputs(Case):
    def test_members_of_rar_archives(self):
        def number(value):
            return bytes([value & 0x7F | 0x80, value >> 7])

        def pack(name, members):
            archive = b"Rar!\x1A\x07\x01\0"
            for member, data in members:
                fields = (b"\2\2" + number(len(data)) + b"\4" + number(len(data)) + b"\0" + struct.pack("<I", zlib.crc32(data)) +
                          b"\0\1" + number(len(member)) + member)
                header = number(len(fields)) + fields
                archive += struct.pack("<I", zlib.crc32(header)) + header + data
            self.put(name, archive)

        pack("one.rar", [(b"t.json", b'[{"a":1}]'), (b"photo.png", b"x")])
        self.assertEqual(self.convert("one.rar", "-", "--to", "csv"), b"a\n1\n")
        pack("two.rar", [(b"a.json", b'[{"a":1}]'), (b"b.csv", TABLE)])
        self.convert("two.rar", "out.csv", status=2)
        self.assertIn("the archive 'two.rar' contains 2 files that can be read. Choose one (the first file of a RAR archive; unpack it for "
                      "others):\n  two.rar@a.json\n  two.rar@b.csv", self.said)
        self.assertEqual(self.convert("two.rar@a.json", "-", "--to", "csv"), b"a\n1\n")
        for words in (("two.rar@b.csv",), ("two.rar", "--from", "csv")):
            self.convert(*words, "out.csv", status=2)
            self.assertIn("only the first file of a RAR archive can be read, and that of 'two.rar' is 'a.json'; unpack the archive to read "
                          "'b.csv'", self.said)

    def test_inputs_are_joined(self):
        self.put("b.csv", "a,b\n3,z\n")
        self.convert("in.csv", "b.csv", "all.tsv")
        self.assertEqual(self.content("all.tsv"), b"a\tb\n1\tx\n2\ty\n3\tz\n")
        self.put("c.json", '[{"b":"w","c":5}]')
        self.convert("in.csv", "c.json", "out.csv", status=1)
        self.convert("in.csv", "c.json", "out.csv", "--union")
        self.assertEqual(self.content("out.csv"), b"a,b,c\n1,x,\n2,y,\n,w,5\n")
        self.convert("*.csv", "both.json", "--union")
        self.assertEqual(len(json.loads(self.content("both.json"))), 6)

    def test_names_of_files_are_added(self):
        self.put("p1.json", '[{"a":1}]')
        self.put("p2.json", '[{"a":2}]')
        for words in (("p*.json",), ("p1.json", "p2.json"), ("p?.json", "--union")):
            self.convert(*words, "out.csv", "--add-file-name")
            rows = self.rows_of("out.csv")
            self.assertEqual([rows[0], *(row[0] for row in rows[1:])], [["a", "_FileNames"], "1", "2"], words)
            self.assertTrue(rows[2][1].endswith("p2.json"), rows)
        self.convert("in.csv", "p1.json", "out.csv", "--add-file-name", "--union", "--rename", "b=c")
        self.assertEqual(self.rows_of("out.csv")[0], ["a", "c", "_FileNames"])
        self.put("p1.json", '[{"z":1}]')
        self.convert("in.csv", "p1.json", "out.csv", "--add-file-name", "--union")
        self.assertEqual(self.rows_of("out.csv")[0], ["a", "b", "z", "_FileNames"])
        self.put("one.dbf", struct.pack("<BxxxIHH20x11sc4xB15x", 3, 1, 65, 3, b"A", b"C", 2) + b"\r 12")
        self.convert("in.csv", "one.xpt")
        for name in ("one.dbf", "one.xpt"):
            self.convert(name, "out.csv", "--add-file-name")
            rows = self.rows_of("out.csv")
            self.assertEqual(rows[0][-1], "_FileNames", name)
            self.assertTrue(rows[1][-1].endswith(name), rows)

    def test_too_many_inputs(self):
        self.convert(*["in.csv"] * 201, "out.csv", status=2)
        self.assertIn("201 inputs are too many (at most 200); a pattern in quotes, such as '*.csv', reads any number of files of one format", self.said)


class Rows(Case):
    def setUp(self):
        super().setUp()
        self.put("t.json", '[{"name":"pen","price":9.5,"day":"2026-01-02"},{"name":"ink","price":10.50,"day":"2026-01-01"},'
                           '{"name":"cap","day":"2026-02-01"},{"name":"pad","price":100}]')

    def test_rows_and_columns(self):
        for words, expected in (
                (("--where", "price > 10"), ["ink,10.50,2026-01-01", "pad,100,"]),
                (("--where", "name = 'cap' or price < 10"), ["pen,9.5,2026-01-02", "cap,,2026-02-01"]),
                (("--sort", "-price"), ["pad,100,", "ink,10.50,2026-01-01", "pen,9.5,2026-01-02", "cap,,2026-02-01"]),
                (("--sort=-price", "--limit", "1"), ["pad,100,"]),
                (("--rows", "2:3"), ["ink,10.50,2026-01-01", "cap,,2026-02-01"]), (("--rows", ":1"), ["pen,9.5,2026-01-02"]),
                (("--rows", "4:", "--limit", "5"), ["pad,100,"]), (("--limit", "0"), []),
                (("--sort", "day", "--rows", "2:2"), ["pen,9.5,2026-01-02"])):
            self.assertEqual(self.convert("t.json", "-", "--to", "csv", *words).decode().splitlines(), ["name,price,day", *expected], words)
        out = self.convert("t.json", "-", "--to", "csv", "--select", "day, name", "--rename", "day=a=b", "--where", "not price is null", "--limit", "1")
        self.assertEqual(out, b"a=b,name\n2026-01-02,pen\n")

    def test_rows_that_are_not_read_do_not_decide_types(self):
        self.put("long.csv", "a\n" + "1\n" * 150_000 + "x\n")
        self.convert("long.csv", "out.json", "--limit", "1")
        self.assertEqual(json.loads(self.content("out.json")), [{"a": 1}])
        self.assertEqual(self.said, "")
        self.convert("long.csv", "out.json", "--limit", "1", "--where", "a is not null")
        self.assertEqual(json.loads(self.content("out.json")), [{"a": "1"}])

    def test_numbers_with_many_digits_are_numbers(self):
        values = ("9.5", "100.12345678901234567", "9007199254740993", "9007199254740992", "-3", "")
        for name, separator in (("csv", ","), ("tsv", "\t")):
            self.put(f"m.{name}", f"n{separator}t\n" + "".join(f"{i}{separator}{value}\n" for i, value in enumerate(values)))
            out = self.convert(f"m.{name}", "-", "--to", "csv", "--sort", "-t", "--select", "n")
            self.assertEqual(out.split(), [b"n", b"2", b"3", b"1", b"0", b"4", b"5"], name)
            for where, expected in (("t > 10", b"123"), ("t > 9007199254740992", b"2"), ("t = 9007199254740993", b"2"), ("t < 9", b"4")):
                out = self.convert(f"m.{name}", "-", "--to", "csv", "--where", where, "--select", "n")
                self.assertEqual(b"".join(out.split()[1:]), expected, where)
        self.convert("m.csv", "m.json")  # but no digit is lost
        self.assertIn(b'"t":"100.12345678901234567"', self.content("m.json").replace(b" ", b""))
        self.put("long.csv", "t\n9007199254740993\n")
        self.put("short.csv", "t\n7\n")
        for inputs in (("long.csv", "short.csv"), ("short.csv", "long.csv")):
            self.convert(*inputs, "joined.json")
            self.assertIn(b'"9007199254740993"', self.content("joined.json"))
        self.put("mixed.csv", "t\n10\n9\nn/a\n")
        self.assertEqual(self.convert("mixed.csv", "-", "--to", "csv", "--sort", "t"), b"t\n10\n9\nn/a\n")
        self.assertIn("sort: the column 't' is sorted as texts: 2 of its 3 values are numbers; the first other value is 'n/a' in row 3", self.said)

    def test_numbers_with_a_decimal_comma(self):
        self.put("d.csv", "k;t\n10,5;a\n9,25;b\n100,0;c\n")
        for words, keys in ((("--sort", "k"), b"bac"), (("--where", "k > 9.5"), b"ac")):
            out = self.convert("d.csv", "-", "--to", "tsv", *words, "--reader", "decimal=,")
            self.assertEqual(b"".join(line[-1:] for line in out.splitlines()[1:]), keys)
            self.assertIn(b"\n10,5\ta\n", out)

    def test_printed_graph_does_the_same(self):
        words = ("t.json", "out.csv", "--where", "price > 5", "--sort", "-price,name", "--select", "name,price", "--rename", "name=n", "--limit", "2")
        graph = self.convert(*words, "--print-graph")
        self.assertEqual(self.names(), ["in.csv", "t.json"])
        self.convert(*words)
        direct = self.content("out.csv")
        self.assertEqual(direct, b"n,price\npad,100\nink,10.50\n")
        (self.folder / "out.csv").unlink()
        self.put("g.graph", graph)
        subprocess.run([CORVANTA, "run", "g.graph", "--quiet"], cwd=self.folder, check=True)
        self.assertEqual(self.content("out.csv"), direct)

    def test_wrong_options(self):
        for words, text in ((("--rows", "3"), "--rows '3': expected FROM:TO, rows from 1"), (("--rows", "3:2"), "--rows '3:2': expected FROM:TO"),
                            (("--limit", "-1"), "--limit needs a number of rows"),
                            (("--select", 'a,"b'), "--select 'a,\"b': expected names of columns with commas between them"),
                            (("--rename", "a"), "--rename 'a' is not of the form OLD=NEW")):
            self.convert("in.csv", "out.csv", *words, status=2)
            self.assertIn(text, self.said)
        self.convert("none.csv", "out.csv", "--where", "a >", status=2)
        self.assertIn("--where 'a >': invalid expression at character 4: expected a column", self.said)
        self.convert("in.csv", "out.csv", "--where", "a is null or a = bob", status=1)
        self.assertIn("the input has no column 'bob'", self.said)
        self.assertIn("; a text is put in single quotes ('bob')", self.said)
        for words in (("--where", "nope > 1"), ("--sort", "nope"), ("--select", "nope")):
            self.convert("in.csv", "out.csv", *words, status=1)
        self.assertEqual(self.names(), ["in.csv", "t.json"])


class Targets(Case):
    def test_existing_targets_are_kept(self):
        self.put("out.json", "old")
        self.convert("in.csv", "out.json", "--no-clobber", status=1)
        self.assertIn("'out.json' exists already, and --no-clobber keeps it", self.said)
        self.assertEqual(self.content("out.json"), b"old")
        self.convert("in.csv", "new.json", "--no-clobber")
        (self.folder / "link.json").symlink_to("later.json")
        self.convert("in.csv", "link.json", "--no-clobber", status=1)
        self.assertFalse((self.folder / "later.json").exists())

    def test_a_file_becomes_its_own_output(self):
        self.convert("in.csv", "in.csv", "--where", "a > 1")
        self.assertEqual(self.content("in.csv"), b"a,b\n2,y\n")
        warning = "Warning: the input 'in.csv' is also the output, which replaces it when the run is complete"
        self.assertIn(warning, self.said)
        self.convert("*.csv", "in.csv")
        self.assertIn(warning.replace("in.csv", "./in.csv"), self.said)

    def test_rows_before_an_error_are_kept_on_request(self):
        rows = "".join(f"{i},x\n" for i in range(5000))
        self.put("bad.csv", "a,b\n" + rows + "1,2,3\n")
        for extension in ("csv", "json", "xlsx", "parquet"):
            self.convert("bad.csv", f"out.{extension}", status=1)
            self.assertEqual(self.names(), ["bad.csv", "in.csv"])
            self.assertRegex(self.said, "line 5002")
            self.convert("bad.csv", f"out.{extension}", "--keep-partial", status=1)
            self.assertIn("Warning: not all of the input was read; kept: ", self.said)
            kept = self.convert(f"out.{extension}", "-", "--to", "csv").decode()
            self.assertEqual(kept.splitlines()[-1], "4999,x", extension)
            (self.folder / f"out.{extension}").unlink()
        self.convert("nope.csv", "out.csv", "--keep-partial", status=1)
        self.assertEqual(self.names(), ["bad.csv", "in.csv"])

    def test_an_interrupted_run_says_what_was_kept(self):
        for keeps in (True, False):
            words = [CORVANTA, "convert", "-", "out.csv", "--from", "csv", *["--keep-partial"][:keeps]]
            with subprocess.Popen(words, cwd=self.folder, stdin=subprocess.PIPE, stderr=subprocess.PIPE) as run:
                run.stdin.write(b"a\n" + b"1\n" * 3_000_000)
                run.stdin.flush()
                time.sleep(0.5)
                run.send_signal(signal.SIGINT)
                said = run.stderr.read().decode()
                self.assertEqual(run.wait(60), 130)
            if keeps:
                self.assertIn("Warning: interrupted; kept: ", said)
                self.assertEqual(set(self.content("out.csv").splitlines()), {b"a", b"1"})
                (self.folder / "out.csv").unlink()
            else:
                self.assertIn("Warning: interrupted; no file was written", said)
                self.assertEqual(self.names(), ["in.csv"])

    def test_log_options(self):
        self.convert("in.csv", "out.json", "-v", "--log-file", "run.log")
        self.assertIn("input (readCSV): 0 rows in, 2 rows out", self.said)
        self.assertEqual(self.content("run.log").decode(), self.said)
        self.convert("nope.json", "out.csv", "-q", "--log-file", "run.log", "--color", "always", status=1)
        self.assertRegex(self.said, "^\033\\[31m\\[input\\] Error.*\033\\[0m\n")
        self.assertNotIn("\033", self.content("run.log").decode())
        self.convert("nope.json", "out.csv", status=1)
        self.assertNotIn("\033", self.said)
        self.convert("in.csv", "out.csv", "--log-file", "no/run.log", status=1)
        self.assertIn("--log-file: cannot write 'no/run.log': ", self.said)
        self.convert("in.csv", "out.csv", "--color", "red", status=2)
        self.assertIn("--color must be auto, always or never", self.said)
        self.convert("in.csv", "out.csv", "-v", "--log-file", "/dev/full")
        self.assertIn("Warning: --log-file: cannot write '/dev/full'", self.said)


class Folders(Case):
    DOCUMENT = {"orders": [{"id": 1, "city": "Oslo", "lines": [{"p": "pen", "n": 2}, {"p": "ink", "n": 1}], "notes": [{"t": "a"}, {"t": "b"}]},
                           {"id": 2, "city": "Rome", "lines": []}, {"id": 3, "city": "Bonn", "lines": [{"p": "cap", "n": 7}]}],
                "people": [{"name": "A"}, {"name": "B"}]}

    def test_each_table_has_a_file(self):
        self.put("dump.json", json.dumps(self.DOCUMENT))
        self.convert("dump.json", "out/")
        self.assertEqual(self.names(), ["dump.json", "in.csv", "out/lines.csv", "out/notes.csv", "out/orders.csv", "out/people.csv"])
        self.assertEqual(self.rows_of("out/orders.csv"), [["id", "city"], ["1", "Oslo"], ["2", "Rome"], ["3", "Bonn"]])
        self.assertEqual(self.rows_of("out/lines.csv"), [["orders_id", "p", "n"], ["1", "pen", "2"], ["1", "ink", "1"], ["3", "cap", "7"]])
        self.assertEqual(self.rows_of("out/notes.csv"), [["orders_id", "t"], ["1", "a"], ["1", "b"]])

    def test_parts_that_no_table_reads_are_reported_once(self):
        text = json.dumps({**self.DOCUMENT, "version": 3, "more": {"note": "x", "places": [{"z": 1}, {"z": 2}], "dates": [{"y": 1}, {"y": 2}]}})
        self.put("dump.json", text)
        self.convert("dump.json", "out/")
        self.assertEqual([name for name in self.names() if "/" in name],
                         [f"out/{name}.csv" for name in ("dates", "lines", "notes", "orders", "people", "places")])
        self.assertEqual(self.said.count("not read"), 2, self.said)
        for part in ("(count: 1, first 'version' at", "(count: 1, first 'note' at"):
            self.assertIn(part, self.said)
        self.put("dump.json", json.dumps(self.DOCUMENT))
        self.convert("dump.json", "out/")
        self.assertEqual(self.said, "")
        self.put("shop.xml", "<s><i>x</i><as><a n='1'><b>1</b><b>2</b></a><a n='2'><b>1</b></a></as><cs><c>1</c><c>2</c></cs></s>")
        self.convert("shop.xml", "xml/")
        self.assertEqual(self.said.count("not read"), 1, self.said)
        self.assertIn("(count: 1, first 'i' at", self.said)

    def test_lists_of_values_beside_the_records_are_tables(self):
        self.put("dump.json", '{"tags":["a",null,"b"],"m":[{"id":1,"t":[5,6]},{"id":2}],"o":{"tags":[7]}}')
        self.convert("dump.json", "out/")
        self.assertEqual(self.said, "")
        self.assertEqual({name: self.content(name).decode() for name in self.names() if "/" in name},
                         {"out/m.csv": "id,t[0],t[1]\n1,5,6\n2,,\n", "out/tags.csv": "tags\na\n\nb\n", "out/o.tags.csv": "tags\n7\n"})
        self.put("shop.xml", "<s><i>1</i><i>2</i><a><b>3</b><b>4</b></a></s>")
        self.convert("shop.xml", "xml/")
        self.assertEqual((self.rows_of("xml/i.csv"), self.rows_of("xml/b.csv")), ([["i"], ["1"], ["2"]], [["b"], ["3"], ["4"]]))

    def test_nothing_is_left_of_an_input_that_cannot_be_read(self):
        self.put("bad.json", '{"a":[1,2')
        for name, text in (("bad.json", "JSON structure error"), ("none.json", "Error: "), ("none.csv", "cannot open file")):
            self.convert(name, "new/out/", status=1)
            self.assertEqual(self.said.count(text), 2 if name == "bad.json" else 1, self.said)
            self.assertFalse((self.folder / "new").exists())

    def test_numbers_join_where_there_is_no_key(self):
        for third in (1, ""):  # repeated, or nothing to join by
            document = json.loads(json.dumps(self.DOCUMENT))
            document["orders"][2]["id"] = third
            self.put("dump.json", json.dumps(document))
            self.convert("dump.json", "out/")
            self.assertEqual(self.rows_of("out/orders.csv"),
                             [["orders_number", "id", "city"], ["1", "1", "Oslo"], ["2", "2", "Rome"], ["3", str(third), "Bonn"]])
            self.assertEqual(self.rows_of("out/lines.csv"), [["orders_number", "p", "n"], ["1", "pen", "2"], ["1", "ink", "1"], ["3", "cap", "7"]])

    def test_names_that_a_file_system_may_not_distinguish(self):
        self.put("dump.json", json.dumps({name: [{"n": i}, {"n": i}] for i, name in enumerate(("a:b", "a?b", "A_B", "A_B_2"))}))
        self.convert("dump.json", "out/")
        self.assertEqual({name: self.rows_of(name)[1] for name in self.names() if "/" in name},
                         {"out/a_b.csv": ["0"], "out/a_b_2.csv": ["1"], "out/A_B_3.csv": ["2"], "out/A_B_2_2.csv": ["3"]})

    def test_xml_lines_and_deeper_levels(self):
        self.put("shop.xml", "<shop>" + "".join(
            f"<order no='{i}'><line><p>{i}</p>" + "".join(f"<tag><k>{k}</k></tag>" for k in range(i)) + "</line><line><p>z</p></line></order>"
            for i in range(3)) + "</shop>")
        self.convert("shop.xml", "a/b/")
        self.assertEqual(self.rows_of("a/b/order.csv"), [["order_number", "no"], ["1", "0"], ["2", "1"], ["3", "2"]])
        self.assertEqual(self.rows_of("a/b/line.csv")[1:3], [["1", "1", "0"], ["1", "2", "z"]])
        self.assertEqual(self.rows_of("a/b/tag.csv"), [["line_number", "k"], ["3", "0"], ["5", "0"], ["5", "1"]])

    def test_sheets_and_wrong_uses(self):
        self.convert("in.csv", "book.xlsx", "--writer", "sheetName=Data")
        self.convert("book.xlsx", "sheets/")
        self.assertEqual(self.content("sheets/Data.csv"), TABLE)
        self.convert("in.csv", "sheets/", "--no-clobber")
        self.convert("book.xlsx", "sheets/", "--no-clobber", status=1)
        self.assertIn("'sheets/Data.csv' exists already", self.said)
        self.convert("in.csv", "out/", "--limit", "1", status=2)
        self.assertIn("--limit chooses from one table; into a folder all tables are written, as CSV files", self.said)
        self.convert("in.csv", "in.csv", "out/", status=2)
        self.assertIn("one input is required to write its tables to a folder", self.said)
        self.convert("in.csv", "in.csv/out/", status=1)
        self.assertIn("cannot create the folder 'in.csv/out/': ", self.said)


class BadInput(Case):
    def test_other_formats_are_named(self):
        self.convert("in.csv", "book.xlsx")
        self.put("a.csv", self.content("book.xlsx"))
        self.convert("a.csv", "out.json", status=1)
        self.assertIn("'a.csv' is not a csv file: it begins like a zip archive or a workbook; --from xlsx reads it", self.said)
        for content, said in ((b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "a legacy Office file; --from xls reads it if it is a workbook"),
                              (b"PAR1\x15\x04\x15\x80", "a Parquet file; --from parquet reads it"), (b"\x1F\x8B\x08\0", "a gzip file; rename it to end in .gz"),
                              (b"Rar!\x1A\x07\x01\0", "a RAR archive; rename it to end in .rar"), (b"$FL2@(#) SPSS", "an SPSS file; --from sav reads it"),
                              (b"%PDF-1.7\n", "a PDF document; it cannot be read"), (b"\xFF\xD8\xFF\xE0", "an image; it cannot be read")):
            self.put("a.csv", content)
            self.convert("a.csv", "out.json", status=1)
            self.assertIn(f"'a.csv' is not a csv file: it begins like {said}\n", self.said)
        self.put("b.csv", b"a,b\n1," + bytes(8) + b"\n")
        self.convert("b.csv", "out.json", status=1)
        self.assertIn("'b.csv' is not a csv file: there is a zero byte in line 2; --encoding NAME reads it if", self.said)
        self.convert("book.xlsx", "out.json", "--separator", ";", status=2)
        self.assertIn("--separator: readExcel has no such choice", self.said)

    def test_missing_and_wrong_names(self):
        (self.folder / "d.csv").mkdir()
        for words, status in ((("nope.csv",), 1), (("d.csv",), 1), (("nope.xlsx", "--sheet", "2"), 1), (("in.csv", "--table", "x"), 2)):
            self.convert(words[0], "out.json", *words[1:], status=status)
            self.assertNotIn("is not a workbook", self.said)
        self.assertIn("--table: there is no table 'x' in the list of tables", self.said)
        self.put("two.json", json.dumps({"a": [{"x": 1}, {"x": 2}, {"x": 3}], "b": [{"y": 1, "z": 2}]}))
        self.assertEqual(self.convert("two.json", "-", "--to", "csv", "--table", "b"), b"y,z\n1,2\n")
        self.convert("two.json", "out.json", "--table", "c", status=2)
        self.assertIn("there is no table 'c' in the list of tables: 'a', 'b'\n", self.said)


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C.UTF-8"
    unittest.main()

#!/usr/bin/python3
"""ReadXBF when it takes long, when a header promises much, and tables as Visual FoxPro, R and GDAL write them: table_reader_test.py CORVANTA"""
import gzip
import json
import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

CORVANTA = sys.argv.pop(1)
PIECE = 64 * 1024 * 1024
PIECES = 300


def header(fields, count, version=0x30, page=0):
    """Fields are name, type, length and perhaps flags."""
    record_bytes = 1 + sum(field[2] for field in fields)
    out = struct.pack("<BxxxIHH17xB2x", version, count, 33 + 32 * len(fields), record_bytes, page)
    for name, kind, length, *flags in fields:
        out += struct.pack("<11sc4xBxB13x", name, kind, length, *(flags or [0]))
    return out + b"\r"


class Tables(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_tables_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def put(self, name, front, byte, pieces):
        """`front`, then 64 MiB of one byte again and again: a gzip member each."""
        piece = gzip.compress(byte * PIECE, 1)
        (self.folder / name).write_bytes(gzip.compress(front) + piece * pieces)

    def start(self, attributes):
        graph = self.folder / "case.graph"
        graph.write_text(f"<graph version='4.11'><action id='r'><ReadXBF {attributes}/></action></graph>")
        process = subprocess.Popen([CORVANTA, "run", str(graph), "--log-format", "json"],
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.kill)
        return process

    def has_open(self, process, name):
        try:
            links = pathlib.Path(f"/proc/{process.pid}/fd").iterdir()
            return any(os.path.samefile(link, self.folder / name) for link in links)
        except OSError:  # a file was closed, or the process ended
            return False

    def check_that_it_stops(self, attributes, name):
        """An undisturbed run, then one that is stopped as soon as it has the file open."""
        began = time.monotonic()
        whole = self.start(attributes)
        _, messages = whole.communicate(timeout=120)
        seconds = time.monotonic() - began
        self.assertEqual((whole.returncode, messages), (0, ""))

        process = self.start(attributes)
        while process.poll() is None and not self.has_open(process, name):
            time.sleep(0.001)
        stopped = time.monotonic()
        process.send_signal(signal.SIGINT)
        _, messages = process.communicate(timeout=120)
        self.assertEqual(process.returncode, 130)
        self.assertEqual([json.loads(line)["message"] for line in messages.splitlines()],
                         ["Warning: interrupted; no file was written"])
        self.assertLess(time.monotonic() - stopped, seconds / 2)

    def convert(self, name, *words, to="jsonl"):
        done = subprocess.run([CORVANTA, "convert", name, "-", "--to", to, *words], cwd=self.folder, capture_output=True, text=True, timeout=60, check=True)
        return done.stdout.splitlines(), done.stderr

    def test_null_flags_and_varying_texts(self):
        fields = [(b"TEXT", b"V", 5, 2), (b"NUMBER", b"N", 5, 2), (b"FULL", b"I", 4), (b"COUNT", b"I", 4, 2), (b"_NullFlags", b"0", 1, 5)]
        records = [b"ab \0\x03  1.5" + struct.pack("<iiB", 1, 7, 0b0001), b"abcde*****" + struct.pack("<iiB", 2, 0, 0), bytes(10) + struct.pack("<iiB", 3, 0, 0b1110)]
        for version in (0x30, 0x32):
            (self.folder / "t.dbf").write_bytes(header(fields, 3, version) + b"".join(b" " + record for record in records))
            rows, log = self.convert("t.dbf")
            self.assertEqual(rows, ['{"TEXT":"ab ","NUMBER":1.5,"FULL":1,"COUNT":7}', '{"TEXT":"abcde","NUMBER":null,"FULL":2,"COUNT":0}',
                                    '{"TEXT":null,"NUMBER":null,"FULL":3,"COUNT":null}'])
            self.assertIn("has 1 value not valid for the type of the column, read as missing; the first is in record 2, column 'NUMBER'", log)

    def test_the_encoding_that_a_table_names(self):
        def write(text, page, cpg=None):
            (self.folder / "t.dbf").write_bytes(header([(b"NAME", b"C", 12)], 1, 3, page) + b" " + text.ljust(12))
            (self.folder / "T.CPG").unlink(missing_ok=True)
            if cpg:
                (self.folder / "T.CPG").write_text(cpg + "\n")
        for encoding, page, cpg in (("cp866", 0x65, None), ("cp1251", 0xC9, None), ("utf-8", 0, "UTF-8"), ("iso-8859-5", 0x57, "88595"), ("cp1251", 0x57, "ANSI 1251")):
            write("Мир".encode(encoding), page, cpg)
            self.assertEqual(self.convert("t.dbf"), (['{"NAME":"Мир"}'], ""), encoding)
            self.assertEqual(self.convert("t.dbf", "--where", "NAME = 'Мир'", to="csv")[0], ["NAME", "Мир"])
        self.assertEqual(self.convert("t.dbf", "--encoding", "windows-1252")[0], ['{"NAME":"Ìèð"}'])
        write("Мир".encode("cp866"), 0x65)
        rows, log = self.convert("t.dbf", "--reader", "declaredEncoding=0")
        self.assertEqual(rows, ['{"NAME":"Œ¨à"}'])
        self.assertIn("t.dbf' names the encoding CP866, but its texts are read as windows-1252. declaredEncoding='1' reads them as CP866.", log)
        for page, cpg, name in ((0x69, None, "0x69"), (0, "none-such", "NONE-SUCH")):
            write(b"x", page, cpg)
            self.assertIn(f"t.dbf' names the encoding {name}, which is not known: its texts are read as windows-1252", self.convert("t.dbf")[1])

    def test_stops_among_deleted_records(self):
        fields = [(b"TEXT", b"C", 255), (b"MORE", b"C", 255), (b"LAST", b"C", 1)]
        self.put("t.dbf.gz", header(fields, PIECE // 512 * PIECES), b"*", PIECES)
        self.check_that_it_stops("fileName='t.dbf.gz'", "t.dbf.gz")

    def test_stops_while_the_memo_file_is_loaded(self):
        record = b" " + struct.pack("<I", 1)
        (self.folder / "t.dbf").write_bytes(header([(b"NOTE", b"M", 4)], 1) + record + b"\x1a")
        memos = struct.pack(">IxxH504x", 2, 512) + struct.pack(">II", 1, 4) + b"text"
        self.put("t.fpt.gz", memos, b"\0", 15)
        (self.folder / "t.dbf.gz").write_bytes(gzip.compress((self.folder / "t.dbf").read_bytes()))
        self.check_that_it_stops("fileName='t.dbf.gz'", "t.fpt.gz")

    def test_memory_depends_on_what_is_there(self):
        fields = [(b"TEXT", b"C", 255)] * 200
        (self.folder / "t.dbf.gz").write_bytes(gzip.compress(header(fields, 0xFFFFFFFF) + b" " * 1000))
        process = self.start("fileName='t.dbf.gz' bufferSize='2047'")
        with process.stderr:
            messages = process.stderr.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 1)
        self.assertIn("ends after 0 of 4294967295 records", messages)
        self.assertLess(usage.ru_maxrss, 1024 * 1024)


if __name__ == "__main__":
    unittest.main()

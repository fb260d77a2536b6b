#!/usr/bin/python3
"""readExcelOld and readExcelSheets on real workbooks: legacy_workbook_test.py CORVANTA CORPUS

The golden files hold the first worksheet of each workbook, and the names of all worksheets, as another program reads them.
"""
import csv
import json
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import legacy_workbook as xls  # pylint: disable=wrong-import-position

CORVANTA = sys.argv.pop(1)
CORPUS = pathlib.Path(sys.argv.pop(1)).resolve() / "xls"
GOLDEN = CORPUS / "golden"

REFUSED = {
    "fuzz_4819588401201152.xls": "it is damaged",
    "issue_385.xls": "it is encrypted (RC4)",
    "password.xls": "it is encrypted (RC4)",
    "password_2002_40_972000.xls": "it is encrypted (RC4)",
    "too_small.xls": "its content is a text file",
    "xor-encryption-abc.xls": "it is encrypted (XOR obfuscation)",
}
# A time of the day has no date here, and an elapsed time is not one: docs/formats/xls.md.
ELAPSED = {"date_1904.xls": ("1904-01-11T15:10:10", "255:10:10")}
# docs/formats/xls.md says why the list of names differs: charts and macro sheets are sheets too.
MORE_SHEETS = {"any_sheets.xls": ["Chart"]}


def normal(value):
    """A value without differences of form: midnight, a time without a date, and the digits of a number."""
    value = re.sub(r"T00:00:00$|^1899-12-31T", "", value).replace("\r\n", "\n")
    try:
        return float(value)
    except ValueError:
        return {"TRUE": 1.0, "FALSE": 0.0}.get(value, value)


def letters(column):
    return (letters(column // 26 - 1) if column >= 26 else "") + chr(65 + column % 26)


def table_of(path, change=lambda value: value):
    with path.open(encoding="utf-8", newline="") as file:
        return [[change(value) for value in row] for row in csv.reader(file)]


class Corpus(unittest.TestCase):
    def setUp(self):
        if not CORPUS.is_dir():
            self.skipTest(f"no corpus at {CORPUS}")
        holder = tempfile.TemporaryDirectory(prefix="corvanta_xls_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def run_actions(self, *actions, status=0):
        """Run one chain per action, each into out0.csv, out1.csv, ...; the messages and the tables."""
        text = "".join(f"<action id='r{i}'>{action}</action><action id='w{i}'><writeCSV fileName='out{i}.csv'/></action>"
                       f"<link from='r{i}:0' to='w{i}:0'/>" for i, action in enumerate(actions))
        graph = self.folder / "case.graph"
        graph.write_text(f"<graph version='4.12'>{text}</graph>")
        done = subprocess.run([CORVANTA, "run", str(graph), "--out-dir", str(self.folder), "--log-format", "json"],
                              capture_output=True, text=True, timeout=120, check=False)
        messages = [json.loads(line)["message"] for line in done.stderr.splitlines()]
        self.assertEqual(done.returncode, status, messages)
        return messages, [table_of(self.folder / f"out{i}.csv")[1:] for i in range(len(actions)) if status == 0]

    def test_cells_are_those_of_the_golden_files(self):
        names, wanted, actions = [], [], []
        for golden in sorted(GOLDEN.glob("*.csv")):
            name = golden.name.removesuffix(".csv")
            if (CORPUS / name).is_file():
                old, new = ELAPSED.get(name, ("", ""))
                rows = table_of(golden, lambda value, old=old, new=new: new if value == old else value)
                columns = max(map(len, rows))
                names.append(name)
                wanted.append([[normal(value) for value in row] + [""] * (columns - len(row)) for row in rows])
                actions.append(f"<readExcelOld fileName='{CORPUS / name}' range='A1:{letters(columns - 1)}{len(rows)}' "
                               "firstLineContainsColumnNames='0'/>")
        self.assertGreater(len(names), 25)
        _, tables = self.run_actions(*actions)
        for name, rows, table in zip(names, wanted, tables):
            with self.subTest(name):
                actual = [[normal(value) for value in row] for row in table]
                actual += [[""] * len(rows[0])] * (len(rows) - len(actual))
                self.assertEqual(actual, rows)

    def test_names_of_sheets(self):
        wanted = {}
        for file, sheet, *_ in table_of(GOLDEN / "sheet_names.csv")[1:]:
            wanted.setdefault(file, []).append(sheet)
        for name, more in MORE_SHEETS.items():
            wanted[name] += more
        _, tables = self.run_actions(*(f"<readExcelSheets fileName='{CORPUS / name}'/>" for name in wanted))
        for (name, sheets), table in zip(wanted.items(), tables):
            self.assertEqual([row[1] for row in table], sheets, name)
            self.assertEqual({row[0] for row in table}, {str(CORPUS / name)})

    def test_files_that_cannot_be_read_are_named(self):
        for name, reason in REFUSED.items():
            messages, _ = self.run_actions(f"<readExcelOld fileName='{CORPUS / name}'/>", status=1)
            self.assertIn(name, messages[0])
            self.assertIn(reason, "".join(messages))
        # Its directory leads into sectors of the stream, but the tree of its root folder is intact.
        _, (rows,) = self.run_actions(f"<readExcelOld fileName='{CORPUS / 'phpexcel_bad_cfb_dir.xls'}' "
                                      "firstLineContainsColumnNames='0'/>")
        self.assertEqual(rows[0][:4], ["Kategori No", "Dükkan No", "Stok No", "Başlık"])


class Hostile(unittest.TestCase):
    """Files below 1 MB that promise much: at most 512 MiB and 10 seconds."""

    def check(self, name, content, *settings, reason=""):
        with tempfile.TemporaryDirectory(prefix="corvanta_xls_") as folder:
            path = pathlib.Path(folder) / f"{name}.xls"
            path.write_bytes(content)
            self.assertLess(len(content), 1_000_000, name)
            with open(path.with_suffix(".log"), "w", encoding="utf-8") as log, \
                    subprocess.Popen([CORVANTA, "convert", str(path), str(path.with_suffix(".csv")), *settings],
                                     stderr=log, stdout=subprocess.DEVNULL) as process:
                _, status, usage = os.wait4(process.pid, 0)
                process.returncode = os.waitstatus_to_exitcode(status)
            self.assertIn(reason, path.with_suffix(".log").read_text(encoding="utf-8"))
            self.assertIn(process.returncode, (0, 1), name)
            self.assertLess(usage.ru_maxrss / 1024, 512, name)
            self.assertLess(usage.ru_utime + usage.ru_stime, 10, name)

    def test_memory_and_time_are_bounded(self):
        number = [xls.number(8, 65535 - i, i % 256, i) for i in range(50_000)]
        self.check("backwards", xls.compound(xls.workbook(8, [("S", b"".join(number))])))
        self.check("empty_texts", xls.workbook(8, [("S", b"")], xls.record(0xFC, bytes(8)) + xls.record(0x3C, bytes(60_000)) * 15))
        self.check("no_results", xls.workbook(8, [("S", xls.record(0x0006, struct.pack("<HHH8s2x", 1, 0, 0, b"\0\0\0\0\0\0\xff\xff")) * 40_000)]))
        self.check("many_sheets", xls.workbook(8, [("S", b"")], xls.record(0x85, struct.pack("<IBBBBB", 20, 0, 0, 1, 0, 65)) * 70_000))
        self.check("corners", xls.workbook(8, [("S", xls.number(8, 0, 0, 1) + xls.number(8, 65535, 16383, 1))]))
        # All sheets are in one place, which has many records.
        sheets = [struct.pack("<HHIBBBB", 0x85, 9, 220_000, 0, 0, 1, 0) + b"A" for _ in range(15_000)]
        globals_part = xls.workbook(8, [("S", b"")], b"".join(sheets))
        body = xls.record(0x809, struct.pack("<HHHHII", 0x600, 0x10, 0, 0, 0, 0)) + xls.record(0x99, b"") * 150_000 + xls.record(10, b"")
        self.check("one_place", globals_part.ljust(220_000, b"\0") + body, "--reader", "sheets=3",
                   reason="too many of its sheets are in the same place")
        # A mini stream and a FAT whose chains are as long as the file, and a directory that refers to itself.
        loops = bytearray(xls.compound(bytes(900_000)))
        for at in range(len(loops) - 7 * 512 * 2, len(loops) - 4, 4):
            struct.pack_into("<I", loops, at, (at * 7919) % 1700)
        self.check("loops", bytes(loops))


if __name__ == "__main__":
    unittest.main()

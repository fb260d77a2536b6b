#!/usr/bin/python3
"""Written workbooks as foreign programs see them: written_workbook_test.py CORVANTA

Every cell of a generated table is compared with what openpyxl and LibreOffice read; the run is repeated under a
locale with a decimal comma, and the limits of a sheet are crossed.
"""
import csv
import datetime
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

import openpyxl

CORVANTA = sys.argv.pop(1)
TEXTS = ["plain", "a<b>&\"c\"'", "Żółć 東京 😀", "_x0041_", "line\nfeed", "tab\there", "=1+1", " spaces ", "1.5", "true", "-"]
HEADER = ["key", "float", "text", "day"]


def make_table(rows):
    choice = random.Random(3)
    table = []
    for i in range(rows):
        key = choice.choice([i, 0, 4294967293, None])
        number = choice.choice([None, 0.0, -2.5, 1e300, 123456789.125, round(choice.uniform(-1e6, 1e6), 8)])
        day = choice.choice([None, f"{choice.randint(1901, 2099)}-{choice.randint(1, 12):02}-{choice.randint(1, 28):02}"])
        table.append([key, number, choice.choice([None, *TEXTS]), day])
    return table


def write_csv(path, table):
    """As readCSV wants it: texts quoted, so that none is taken as missing."""
    with open(path, "w", encoding="utf-8", newline="") as out:
        out.write(",".join(HEADER) + "\n")
        for key, number, text, day in table:
            quoted = "" if text is None else '"' + text.replace('"', '""') + '"'
            out.write(f"{'' if key is None else key},{'' if number is None else repr(number)},{quoted},{day or ''}\n")


def run(folder, attributes="", types="K,F,U,U", dates="day", environment=None):
    graph = (f"<graph version='4.11'><action id='in'><readCSV fileName='in.csv' types='{types}'/></action>"
             f"<action id='book'><writeExcel fileNameDestination='book.xlsx' dateFormat='yyyy-MM-dd' {attributes}>"
             f"{'<ToDate><s>' + dates + '</s></ToDate>' if dates else ''}</writeExcel></action><link from='in:0' to='book:0'/></graph>")
    (folder / "case.graph").write_text(graph)
    done = subprocess.run([CORVANTA, "run", str(folder / "case.graph"), "--log-format", "json"],
                          capture_output=True, text=True, env={**os.environ, **(environment or {})}, check=False)
    messages = [json.loads(line) for line in done.stderr.splitlines()]
    return done.returncode, messages


def expected_cells(table):
    for key, number, text, day in table:
        yield [key, number, text or None, datetime.datetime.fromisoformat(day) if day else None]


class WrittenWorkbook(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_peer_"))
        self.addCleanup(shutil.rmtree, self.folder)

    def test_openpyxl_reads_every_cell(self):
        table = make_table(3000)
        write_csv(self.folder / "in.csv", table)
        self.assertEqual(run(self.folder), (0, []))
        sheet = openpyxl.load_workbook(self.folder / "book.xlsx")["Sheet1"]
        rows = [list(row) for row in sheet.iter_rows(values_only=True, max_col=4, max_row=3001)]
        self.assertEqual(rows[0], HEADER)
        for got, wanted in zip(rows[1:], expected_cells(table), strict=True):
            # openpyxl leaves the escaped forms of control characters to its caller
            got[2] = None if got[2] is None else openpyxl.utils.escape.unescape(got[2])
            self.assertEqual(got, wanted)

    def test_libreoffice_reads_every_cell(self):
        office = shutil.which("soffice")
        if office is None:
            self.skipTest("LibreOffice is not installed")
        table = make_table(3000)
        write_csv(self.folder / "in.csv", table)
        self.assertEqual(run(self.folder), (0, []))
        # comma, double quote, UTF-8, from row 1, values as they are and not as shown, texts quoted
        subprocess.run([office, f"-env:UserInstallation=file://{self.folder}/profile", "--headless", "--convert-to",
                        "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,true,false,false", "--outdir",
                        str(self.folder / "csv"), str(self.folder / "book.xlsx")],
                       check=True, capture_output=True, timeout=240)
        with open(self.folder / "csv" / "book.csv", encoding="utf-8", newline="") as file:
            rows = list(csv.reader(file))
        self.assertEqual(rows[0], HEADER)
        rows += [[""] * 4] * (len(table) + 1 - len(rows))  # empty rows at the end are left out
        for got, (key, number, text, day) in zip(rows[1:], table, strict=True):
            self.assertEqual(got[0], "" if key is None else str(key))
            self.assertEqual(None if got[1] == "" else float(got[1]), number)
            self.assertEqual(got[2], text or "")
            got_day = datetime.datetime.strptime(got[3], "%m/%d/%Y").date() if got[3] else None
            self.assertEqual(got_day, datetime.date.fromisoformat(day) if day else None)

    def test_a_comma_locale_changes_nothing(self):
        made = subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", str(self.folder / "de_DE.UTF-8")],
                              capture_output=True, check=False)
        german = {"LOCPATH": str(self.folder), "LC_ALL": "de_DE.UTF-8"}
        printed = subprocess.run(["bash", "-c", "printf %.1f 1,5"], env={**os.environ, **german},
                                 capture_output=True, check=False).stdout
        if made.returncode != 0 or printed != b"1,5":
            self.skipTest("the German locale cannot be made")
        write_csv(self.folder / "in.csv", make_table(50))
        contents = []
        for environment in ({"LC_ALL": "C.UTF-8"}, german):
            self.assertEqual(run(self.folder, "floatToString='%.3f'", environment=environment), (0, []))
            with zipfile.ZipFile(self.folder / "book.xlsx") as package:
                contents.append(package.read("xl/worksheets/sheet1.xml"))
        self.assertEqual(contents[0], contents[1])

    def test_long_cells(self):
        text = "a" * 32766 + "<" + "b" * 7000
        write_csv(self.folder / "in.csv", [[1, 1.0, text, None]])
        status, messages = run(self.folder)
        self.assertEqual(status, 0)
        first = "One Cell is larger than 32768 chars: Excel will complain"
        self.assertEqual([m["message"] for m in messages],
                         [first] * 50 + ["One Cell is larger than 32768 chars: Excel will complain. Some more warnings won't be reported."])
        self.assertEqual(self.third_cell(), text)
        status, messages = run(self.folder, "crop='1'")
        self.assertEqual((status, len(messages)), (0, 1))
        self.assertIn("is cut to fewer than 32768 characters", messages[0]["message"])
        self.assertEqual(self.third_cell(), text[:32766])

    def third_cell(self):
        return openpyxl.load_workbook(self.folder / "book.xlsx").active["C2"].value

    def test_a_cell_beyond_the_buffer_is_an_error(self):
        (self.folder / "in.csv").write_text("t\n" + "x" * 2_097_083 + "\n")
        self.assertEqual(run(self.folder, types="U", dates="")[0], 0)
        (self.folder / "in.csv").write_text("t\n" + "x" * 2_097_084 + "\n")
        status, messages = run(self.folder, types="U", dates="")
        self.assertEqual(status, 1)
        self.assertEqual(messages[-1]["message"],
                         f"\nERROR writing to XLSX file '{self.folder}/book.xlsx': output buffer too small\n")

    def test_the_row_limit_warns_once_and_all_rows_are_written(self):
        with open(self.folder / "in.csv", "w", encoding="utf-8") as table:
            table.write("k\n" + "".join(f"{i}\n" for i in range(1_048_580)))
        status, messages = run(self.folder, types="K", dates="")
        self.assertEqual((status, [m["level"] for m in messages]), (0, [2]))
        self.assertIn("nRows>1048576", messages[0]["message"])
        with zipfile.ZipFile(self.folder / "book.xlsx") as package:
            sheet = package.read("xl/worksheets/sheet1.xml")
        self.assertEqual(sheet.count(b"<row r="), 1_048_581)
        self.assertIn(b'<c r="A1048581"><v>1048579</v></c></row></sheetData>', sheet)

    def test_the_column_limit_warns_once_and_all_columns_are_written(self):
        for columns, last, warnings in ((16_384, b"XFD2", 0), (16_385, b"XFE2", 1)):
            (self.folder / "in.csv").write_text(",".join(f"c{i}" for i in range(columns)) + "\n" + ",".join("7" * columns) + "\n")
            status, messages = run(self.folder, types=",".join("K" * columns), dates="")
            self.assertEqual((status, [m["level"] for m in messages]), (0, [2] * warnings))
            self.assertTrue(all("nColumns>16384" in m["message"] for m in messages))
            with zipfile.ZipFile(self.folder / "book.xlsx") as package:
                self.assertIn(b'<c r="' + last + b'"><v>7</v></c></row></sheetData>', package.read("xl/worksheets/sheet1.xml"))


if __name__ == "__main__":
    unittest.main()

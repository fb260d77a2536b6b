#!/usr/bin/python3
"""readExcel on real and made workbooks: workbook_test.py CORVANTA CORPUS

The golden files hold the first worksheet of each workbook as another program reads it; docs/formats/xlsx-read.md lists the differences.
"""
import csv
import gzip
import io
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import unittest.mock
import zipfile

import openpyxl

CORVANTA = sys.argv.pop(1)
CORPUS = pathlib.Path(sys.argv.pop(1)) / "xlsx"
# By file: row and column from 0, and the value.
DIFFERENT = {
    "date_1904.xlsx": (2, 0, "255:10:10"),
    "dates-leap-year-1900-xlsx.xlsx": (4, 0, "1900-02-29T08:00:00"),
    "exceljs_1904.xlsx": (3, 1, "1904-01-01"),
}
REFUSED = {
    "invalid.xlsx": "it is a zip file without the workbook part 'xl/workbook.xml'",
    "missing-bits.xlsx": "without the workbook part",
    "null_archive.xlsx": "without the workbook part",
    "null_file.xlsx": "its content is an empty file",
    "pass_protected.xlsx": "it is an Office file with a password; save it without a password",
    "poc-xmlbomb.xlsx": "'xl/sharedStrings.xml': the markup is broken",
}
STYLES = ('<styleSheet><numFmts><numFmt numFmtId="164" formatCode="[h]:mm"/><numFmt numFmtId="165" formatCode="0.0&quot;day&quot;"/>'
          '</numFmts><cellXfs><xf numFmtId="0"/><xf numFmtId="14"/><xf numFmtId="22"/><xf numFmtId="164"/><xf numFmtId="165"/>'
          '<xf numFmtId="21"/></cellXfs></styleSheet>')


def normal(value):
    value = re.sub(r"T00:00:00$", "", value).replace("\r\n", "\n")
    try:
        return float(value)
    except ValueError:
        return value


def trimmed(rows):
    """Without empty cells and rows at the ends."""
    rows = [[normal(value) for value in row] for row in rows]
    for row in rows:
        while row and row[-1] == "":
            row.pop()
    while rows and not rows[-1]:
        rows.pop()
    return rows


def text(reference, value):
    return f'<c r="{reference}" t="str"><v>{value}</v></c>'


def sheet(*rows, before="", after="", attributes=""):
    """A sheet of numbers and texts; a text that begins with "<" is a cell."""
    markup = ""
    for number, row in enumerate(rows, 1):
        cells = "".join(value if str(value).startswith("<") else
                        text(f"{chr(65 + i)}{number}", value) if isinstance(value, str) else
                        f'<c r="{chr(65 + i)}{number}"><v>{value}</v></c>'
                        for i, value in enumerate(row) if value is not None)
        markup += f'<row r="{number}" {attributes if number == 3 else ""}>{cells}</row>' if cells else ""
    return f"<worksheet>{before}<sheetData>{markup}</sheetData>{after}</worksheet>"


class Workbooks(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_xlsx_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def make(self, *sheets, name="book.xlsx", names="abcdef", states=(), more="", parts=()):
        """A package without relationships and content types, which is readable by its names."""
        with zipfile.ZipFile(self.folder / name, "w", zipfile.ZIP_DEFLATED) as package:
            entries = "".join(f"<sheet name='{names[i]}' {states[i] if i < len(states) else ''}/>" for i in range(len(sheets)))
            package.writestr("xl/workbook.xml", f"<workbook>{more}<sheets>{entries}</sheets><definedNames>"
                             "<definedName name='part'>a!$B$1:$B$2</definedName><definedName name='Sum'>SUM(a!$A:$A)</definedName>"
                             "</definedNames></workbook>")
            package.writestr("xl/styles.xml", STYLES)
            for number, markup in enumerate(sheets, 1):
                package.writestr(f"xl/worksheets/sheet{number}.xml", markup)
            for part, content in parts:
                package.writestr(part, content)
        return self.folder / name

    def read(self, settings="", name="book.xlsx", status=0):
        """The rows with the header, and the messages."""
        graph = self.folder / "case.graph"
        graph.write_text(f"<graph version='4.12'><action id='r'><readExcel fileName='{name}' {settings}/></action><action id='w'>"
                         "<writeCSV fileName='out.csv'/></action><link from='r:0' to='w:0'/></graph>")
        done = subprocess.run([CORVANTA, "run", str(graph), "--log-format", "json"], capture_output=True, text=True, timeout=120,
                              check=False)
        messages = "".join(json.loads(line)["message"] for line in done.stderr.splitlines())
        self.assertEqual(done.returncode, status, messages)
        out = (self.folder / "out.csv").read_bytes().decode() if status == 0 else ""
        rows = list(csv.reader(io.StringIO(out, newline="")))
        return rows, messages.replace(str(self.folder) + "/", "")

    def command(self, *words, status=0):
        done = subprocess.run([CORVANTA, *map(str, words)], capture_output=True, text=True, timeout=120, check=False, cwd=self.folder)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout, done.stderr

    def test_corpus(self):
        if not CORPUS.is_dir():
            self.skipTest(f"no corpus at {CORPUS}")
        for path in sorted(path for path in CORPUS.iterdir() if path.is_file()):
            with self.subTest(path.name):
                if path.name in REFUSED:
                    _, messages = self.read(name=path, status=1)
                    self.assertIn(REFUSED[path.name], messages)
                    continue
                rows, _ = self.read("firstLineContainsColumnNames='0'", path)
                golden = CORPUS / "golden" / (path.name + ".csv")
                if golden.exists():
                    wanted = trimmed(csv.reader(io.StringIO(golden.read_bytes().decode(), newline="")))
                    if path.name in DIFFERENT:
                        row, column, value = DIFFERENT[path.name]
                        wanted[row][column] = value
                    self.assertEqual(trimmed(rows[1:]), wanted)

    def test_types_and_values(self):
        self.make(sheet(["k", "f", "u", "none", "date", "empty"],
                        [4294967293, 0.5, 1, None, '<c r="E2" s="1"><v>60</v></c>', '<c r="F2" t="str"><v></v></c>'],
                        [0, -1, "x&amp;y_x000D_", None, '<c r="E3" s="2"><v>45000.5</v></c>', 2],
                        [None, 1e300, '<c r="C4" t="b"><v>1</v></c>', None, '<c r="E4" s="3"><v>10.5</v></c>', 3],
                        [1, 2, '<c r="C5" t="e"><v>#N/A</v></c>', None, '<c r="E5" s="5"><v>0.5</v></c>', '<c r="F5"><v> 4 </v></c>']))
        rows, _ = self.read()
        self.assertEqual(rows[1:], [["4294967293", "0.5", "1", "", "1900-02-29", ""],
                                    ["0", "-1", "x&y\r", "", "2023-03-15T12:00:00", "2"],
                                    ["", "1e+300", "TRUE", "", "252:00:00", "3"], ["1", "2", "#N/A", "", "12:00:00", "4"]])
        self.assertEqual(self.command("schema", "book.xlsx")[0], "k\tK\nf\tF\nu\tU\nnone\tU\ndate\tU\nempty\tK\n")
        rows, messages = self.read("dates='1' errorCells='1'")
        self.assertEqual([row[4] for row in rows[1:]], ["60", "45000.5", "10.5", "0.5"])
        self.assertEqual(rows[4][2], "")
        self.assertIn("Warning: 1 error cell of the sheet 'a' of the workbook 'book.xlsx' is read as missing; the first is cell C5", messages)

    def test_a_time_directly_before_midnight_has_no_date(self):
        cells = [f'<c r="A{row}" s="{style}"><v>{value}</v></c>' for row, style, value in
                 ((2, 5, 0.999999999), (3, 1, 0.999999999), (4, 2, 45000.999999999), (5, 5, 0.5))]
        self.make(sheet(["t"], *([cell] for cell in cells)))
        self.assertEqual([row[0] for row in self.read()[0][1:]], ["23:59:59.999", "23:59:59.999", "2023-03-16T00:00:00", "12:00:00"])

    def test_a_package_without_an_end_or_without_sheets(self):
        self.make()
        self.assertIn("has no sheet number '1', it has no sheets at all", self.read(status=1)[1])
        self.make(sheet([1]))
        book = self.folder / "book.xlsx"
        book.write_bytes(book.read_bytes()[:-40])
        self.assertIn("Error: The workbook 'book.xlsx' is damaged\nReason: it ends before the directory of its zip package.\n", self.read(status=1)[1])

    def test_forms_of_markup(self):
        self.make('<x:worksheet xmlns:x="m"><x:sheetData><x:row><x:c t="inlineStr"><x:is><x:r><x:t>a</x:t></x:r><x:rPh><x:t>p</x:t>'
                  '</x:rPh><x:r><x:t xml:space="preserve"> b</x:t></x:r></x:is></x:c><x:c/><x:c t="s"><x:v>0</x:v></x:c></x:row>'
                  '<x:row><x:c><x:v>1</x:v></x:c><x:c r="D2"><x:v>2</x:v></x:c></x:row></x:sheetData></x:worksheet>',
                  parts=[("xl/sharedStrings.xml", "<sst><si><t>s&#x41;<![CDATA[&]]></t></si></sst>")])
        self.assertEqual(self.read()[0], [["a b", "B", "sA&", "D"], ["1", "", "", "2"]])
        self.make('<worksheet><sheetData><row/><row><c><v>1,5</v></c><c><v>1e999</v></c><c t="s"><v>0</v></c></row></sheetData></worksheet>',
                  parts=[("xl/sharedStrings.xml", "<sst><si><t>s</t></si></sst>")])
        self.assertEqual(self.read("firstLineContainsColumnNames='0'")[0][2:], [["1,5", "1e999", "s"]])

    def test_problems_are_counted(self):
        self.make('<worksheet><sheetData><row r="2"><c r="A2"><v>1</v></c><c r="A2"><v>2</v></c></row>'
                  '<row r="1"><c r="A1" t="str"><v>n</v></c><c r="B1" t="s"><v>7</v></c></row>'
                  '<row r="3"><c r="?"><v>x</v></c><c r="XFE3"><v>1</v></c><c r="C3"><f>A1</f></c>'
                  '<c r="D3" t="str"><v>\xff</v></c></row></sheetData></worksheet>'.encode("latin-1"))
        rows, messages = self.read()
        self.assertEqual(rows, [["n", "B", "C", "D"], ["2", "", "", ""], ["x", "", "", "\ufffd"]])
        for problem in ("cell without a valid reference (put after the previous cell)", "cell with an invalid number (read as text)",
                        "cell with the number of a missing text (left out)", "cell with several values (the last value counts)",
                        "row in the wrong order (sorted by row number)", "cell beyond the last column or row of a sheet (left out)",
                        "text with invalid bytes (replaced by U+FFFD)", "formula without a stored result (read as missing)"):
            self.assertIn(f"Warning: The sheet 'a' of the workbook 'book.xlsx' has 1 {problem}; the first is ", messages)
        self.make('<worksheet><sheetData><row><c t="s"><v>0</v></c><c t="s"><v>1</v></c><c t="s"><v>2</v></c></row><row><c><v>1</v></c>'
                  '<c t="inlineStr"><is><t>\xff</t></is></c><c t="s"><v>1</v></c></row></sheetData></worksheet>'.encode("latin-1"),
                  parts=[("xl/sharedStrings.xml", "<sst><si><t>a</t></si><si><t>\xff</t></si><si><r><t>\xfe</t></r></si></sst>".encode("latin-1"))])
        rows, messages = self.read()
        self.assertEqual(rows, [["a", "\ufffd", "\ufffd_2"], ["1", "\ufffd", "\ufffd"]])
        self.assertIn("Warning: The sheet 'a' of the workbook 'book.xlsx' has 4 texts with invalid bytes (replaced by U+FFFD); the first is cell B1\n", messages)
        self.make('<worksheet><sheetData><row r="1"><c r="A1" t="str"><f>1</f><v></v></c><c r="B1"><f>2</f><v></v></c></row></sheetData></worksheet>')
        self.assertIn("Warning: The sheet 'a' of the workbook 'book.xlsx' has 1 formula without a stored result (read as missing); the first is cell B1\n",
                      self.read()[1])
        row = '<row r="{0}"><c r="A{0}"><v>{0}</v></c></row>'
        self.make(f"<worksheet><sheetData>{''.join(map(row.format, (1, 2, 4, 3)))}</sheetData></worksheet>")
        _, messages = self.read("scanRows='1' sampleOnly='1'", status=1)
        self.assertIn("Error: The rows of the sheet 'a' of the workbook 'book.xlsx' are not in order; use sampleOnly='0' to sort them",
                      messages)

    def test_sheets(self):
        states = ["", "state='hidden'"]
        self.make(sheet(), sheet(["n"], [1]), sheet(["n"], [2.5]), names=["x", "y 1", "Y 2"], states=states)
        self.assertEqual(self.read("sheetIdx='2'")[0], [["n"], ["1"]])
        self.assertEqual(self.read("sheetMode='1' sheetName='y 2'")[0], [["n"], ["2.5"]])
        self.assertEqual(self.read("sheets='1'")[0], [["n"], ["1"]])
        self.assertEqual(self.read("sheets='1' skipHiddenSheets='1' outputSheetNames='1'")[0], [["n", "_SheetName"], ["2.5", "Y 2"]])
        both = [["n", "_SheetName"], ["1", "y 1"], ["2.5", "Y 2"]]
        self.assertEqual(self.read("sheets='2' sheetName='y*'")[0], both)
        self.assertIn("Warning: The sheet name 'y 2' is not used: sheetMode='1' reads the sheet of this name\n", self.read("sheetName='y 2'")[1])
        rows, _ = self.read("sheets='3' outputFilenames='1'")
        self.assertEqual([row[:2] for row in rows], both)
        self.assertEqual(rows[0][2], "_FileNames")
        for settings, problem in (("sheetIdx='9'", "no sheet number '9', its 3 sheets are 'x', 'y 1', 'Y 2'"),
                                  ("sheetMode='1' sheetName='z'", "no sheet 'z' with cells, its 3 sheets are"),
                                  ("sheets='2' sheetName='z*'", "no sheet that matches 'z*', its 3 sheets are")):
            self.assertIn("Error: The workbook 'book.xlsx' has " + problem, self.read(settings, status=1)[1])
        out, messages = self.command("head", "book.xlsx", "--sheet", "Y 2")
        self.assertIn("2.5", out)
        self.assertIn("The file contains 3 sheets; the marked one is read (--sheet NAME or NUMBER reads another):\n    1: x\n"
                      "    2: y 1 (hidden)\n*   3: Y 2", messages)
        self.assertIn("--sheet: 'book.xlsx' has no sheet 'z'; its sheets are 'x'",
                      self.command("schema", "book.xlsx", "--sheet", "z", status=2)[1])
        (self.folder / "in.csv").write_text("a\n1\n")
        self.make(sheet(["_SheetName"], ["s"]))
        self.assertEqual(self.read("outputSheetNames='1'")[0], [["_SheetName", "_SheetName_2"], ["s", "a"]])
        self.assertIn("--sheet: 'in.csv' is not a workbook that can be read",
                      self.command("head", "in.csv", "--sheet", "1", status=2)[1])

    def test_ranges(self):
        self.make(sheet([1, 2, 3], [4, 5, 6], [], [7, 8, 9]))
        off = "firstLineContainsColumnNames='0'"
        for area, wanted in (("B2:C4", [["B", "C"], ["5", "6"], ["", ""], ["8", "9"]]), ("b4:", [["B", "C"], ["8", "9"]]),
                             ("A:A", [["A"], ["1"], ["4"], [], ["7"]]), ("2:2", [["A", "B", "C"], ["4", "5", "6"]]),
                             ("$C$1", [["C"], ["3"]]), ("a!:A1", [["A"], ["1"]]), ("PART", [["B"], ["2"], ["5"]])):
            self.assertEqual(self.read(f"{off} range='{area}'")[0], wanted, area)
        self.assertEqual(self.read("skipRows='1'")[0], [["4", "5", "6"], ["", "", ""], ["7", "8", "9"]])
        self.assertEqual(self.read(f"{off} emptyRows='1'")[0][3:], [["7", "8", "9"]])
        self.assertEqual(self.read(f"{off} emptyRows='2'")[0][1:], [["1", "2", "3"], ["4", "5", "6"]])
        for settings in ("skipRows='9'", "range='H1:J9'"):
            self.assertIn("The sheet 'a' of the workbook 'book.xlsx' has no cells in the rows and columns that are read\n",
                          self.read(settings)[1])
        self.assertIn("Error: The workbook 'book.xlsx' has a defined name 'sum' that is not one range of cells",
                      self.read("range='sum'", status=1)[1])
        self.assertIn("no table or defined name 'nothing'; a range of cells is written as B2:D9",
                      self.read("range='nothing'", status=1)[1])
        self.make(sheet(["n", "m"], [1, 2], [3, 4]), parts=[
            ("xl/worksheets/_rels/sheet1.xml.rels", "<Relationships><Relationship Id='r' Type='http://x/relationships/table' "
             "Target='../tables/table1.xml'/></Relationships>"),
            ("xl/tables/table1.xml", "<table name='T1' displayName='T1' ref='B1:B2'/>")])
        self.assertEqual(self.read("range='T1'")[0], [["m"], ["2"]])
        self.make(sheet(["n"], [1]), sheet(["n"], [2]))
        self.assertIn("The file contains 2 sheets (--sheet NAME or NUMBER reads one):\n    1: a\n    2: b",
                      self.command("head", "book.xlsx", "--reader", "sheets=3")[1])
        if CORPUS.is_dir():
            rows, _ = self.read("range='sales_bob'", CORPUS / "table-multiple.xlsx")
            self.assertEqual(rows[:2], [["Item", "Units"], ["1", "750"]])

    def test_hidden_and_merged(self):
        self.make(sheet([1, 2, 3], [4, None, 6], [7, 8, 9], before="<cols><col min='2' max='2' hidden='1'/></cols>",
                        after="<mergeCells><mergeCell ref='A1:A2'/><mergeCell ref='C2:D3'/></mergeCells>", attributes="hidden='1'"))
        off = "firstLineContainsColumnNames='0'"
        self.assertEqual(self.read(f"{off} skipHiddenRows='1' skipHiddenColumns='1'")[0], [["A", "C"], ["1", "3"], ["4", "6"]])
        self.assertEqual(self.read(f"{off} fillMerged='1'")[0][1:], [["1", "2", "3", ""], ["1", "", "6", "6"], ["7", "8", "6", "6"]])

    def test_merged_ranges_of_all_cells_are_refused(self):
        rows = "".join(f'<row r="{i}"><c r="A{i}"><v>{i}</v></c></row>' for i in (1, 1048576))
        for areas in ("<mergeCell ref='A1:XFD1048576'/>", "<mergeCell ref='A1:XFD1'/>" * 5000):
            self.make(f"<worksheet><sheetData>{rows}</sheetData><mergeCells>{areas}</mergeCells></worksheet>")
            self.assertIn("its merged ranges have too many cells; use fillMerged='0'", self.read("fillMerged='1'", status=1)[1])

    def test_a_stray_cell_costs_nothing(self):
        self.make(sheet(["a", "a"], [1, 2, '<c r="XFD2"><v>3</v></c>']))
        rows, messages = self.read()
        self.assertEqual(rows, [["a", "a_2", "XFD"], ["1", "2", "3"]])
        self.assertIn("Warning: The sheet 'a' of the workbook 'book.xlsx' is read without 16381 empty columns; the first is C", messages)
        rows = "".join(f'<row r="{i}"><c r="AA{i}"><v>1</v></c></row>' for i in (2, 1048576))
        self.make("<worksheet><sheetData><row>" + "<c t='str'><v>n</v></c>" * 1100 + "</row>" + rows + "</sheetData></worksheet>")
        self.assertIn("Error: The sheet 'a' of the workbook 'book.xlsx' has only 2 cells in 1048575 rows and 1100 columns; select a part "
                      "of it with range, or use emptyRows='1'", self.read(status=1)[1])

    def test_all_kinds_of_cells_survive_the_second_reading(self):
        """The rows of the scan are kept in memory; several files are parsed again, and must give the same."""
        numbers = [0, 255, 256, 65535, 65536, 2147483647, 2147483648, -1, 0.5, 1e300]
        rows = [[*numbers, f"text {i} é", '<c r="M{0}" t="b"><v>1</v></c>', None, '<c r="O{0}" t="e"><v>#REF!</v></c>',
                 '<c r="P{0}" t="d"><v>2024-02-29</v></c>', '<c r="ZZ{0}" t="s"><v>1</v></c>', '<c r="AAA{0}" s="2"><v>45000.5</v></c>']
                for i in range(800)]
        rows[700][10] = "long" * 25_000
        rows = [[str(cell).replace("{0}", str(i)) if str(cell).startswith("<") else cell for cell in row] for i, row in enumerate(rows, 1)]
        markup = sheet(*rows, attributes='hidden="1"')
        for name in ("one.xlsx", "two.xlsx"):
            self.make(markup, name=name, parts=[("xl/sharedStrings.xml", "<sst><si><t>x</t></si><si><t>shared</t></si></sst>")])
        settings = "firstLineContainsColumnNames='0' emptyRows='1' skipHiddenRows='1'"
        kept, _ = self.read(settings, "one.xlsx")
        parsed, _ = self.read(settings, "*.xlsx")
        self.assertEqual(kept[1:] * 2, parsed[1:])
        self.assertEqual(len(kept), 800)
        self.assertEqual(len(kept[700][10]), 100_000)
        values = ["text 0 é", "", "TRUE", "", "#REF!", "2024-02-29", "shared", "2023-03-15T12:00:00"]
        self.assertEqual(kept[1][:10], ["0", "255", "256", "65535", "65536", "2147483647", "2147483648", "-1", "0.5", "1e+300"])
        self.assertEqual(kept[1][10:16] + kept[1][-2:], values)

    def test_small_files_with_much_content(self):
        """Files below 1 MB that promise much end within 10 seconds and without much memory."""
        # Reserved addresses count towards the limit. AddressSanitizer reserves terabytes, and needs more time.
        limits = "ulimit -t 120" if "ASAN_OPTIONS" in os.environ else "ulimit -t 10 -v 4000000"

        def refused(reason):
            done = subprocess.run(["/usr/bin/env", "bash", "-c", limits + '; exec "$0" convert book.xlsx out.csv --reader sheets=3',
                                   CORVANTA], capture_output=True, text=True, timeout=240, check=False, cwd=self.folder)
            self.assertEqual(done.returncode, 1, done.stderr[:1000])
            self.assertIn(reason, done.stderr)
            self.assertLess((self.folder / "book.xlsx").stat().st_size, 1_000_000)

        self.make("<worksheet><sheetData>" + "<row/>" * 50_000_000 + "</sheetData></worksheet>")
        refused("the content up to 'xl/worksheets/sheet1.xml' is too large for the size of the file")
        rich = "<sst><si>" + ("<r><t>" + "a" * 1_000_000 + "</t></r>") * 30 + "</si></sst>"
        self.make('<worksheet><sheetData><row><c t="s"><v>0</v></c></row></sheetData></worksheet>', parts=[("xl/sharedStrings.xml", rich)])
        refused("a text has more than 16777215 characters")
        self.make("<worksheet><sheetData>" + '<row><c t="s"><v>0</v></c></row>' * 20_000 + "</sheetData></worksheet>",
                  parts=[("xl/sharedStrings.xml", "<sst><si><t>" + "a" * 10_000_000 + "</t></si></sst>")])
        refused("it repeats its texts so often that its cells have more than ")
        for cell, reason in (("A1", "is too large for the size of the file"), ("XFD1", "its sheets have more than 4194304 columns")):
            self.make(f'<worksheet><sheetData><row><c r="{cell}"><v>1</v></c></row></sheetData></worksheet>')
            with zipfile.ZipFile(self.folder / "book.xlsx", "a", zipfile.ZIP_DEFLATED) as package:
                package.writestr("xl/_rels/workbook.xml.rels", "<Relationships><Relationship Id='r' Type='http://x/relationships/worksheet' "
                                 "Target='worksheets/sheet1.xml'/></Relationships>")
                package.writestr("[Content_Types].xml", "<Types/>")
                package.writestr("_rels/.rels", "<Relationships><Relationship Id='r' Type='http://x/relationships/officeDocument' "
                                 "Target='xl/many.xml'/></Relationships>")
                package.writestr("xl/_rels/many.xml.rels", package.read("xl/_rels/workbook.xml.rels"))
                package.writestr("xl/many.xml", "<workbook xmlns:r='r'><sheets>" +
                                 "".join(f"<sheet name='s{i}' r:id='r'/>" for i in range(30_000)) + "</sheets></workbook>")
            refused(reason)

    def test_rows_beyond_the_memory_are_kept_in_a_file(self):
        """Without a folder for temporary files the sheet is parsed again, with the same result."""
        rows = "".join(f'<row r="{i}"><c r="A{i}"><v>{i}</v></c><c r="B{i}" t="inlineStr"><is><t>{f"{i} " * 1000}</t></is></c></row>'
                       for i in range(2, 10_002))
        header = '<row r="1">' + text("A1", "n") + text("B1", "text") + "</row>"
        self.make(f"<worksheet><sheetData>{header}{rows}</sheetData></worksheet>")
        results = []
        for folder in (self.folder, self.folder / "none"):
            with unittest.mock.patch.dict(os.environ, {"TMPDIR": str(folder)}):
                results.append(self.read()[0])
        self.assertEqual(results[0], results[1])
        self.assertEqual([len(results[0]), results[0][-1]], [10_001, ["10001", "10001 " * 1000]])

    def test_columns_that_few_values_make_text(self):
        day, yes = '<c r="B{0}" s="1"><v>45000</v></c>', '<c r="C{0}" t="b"><v>1</v></c>'
        rows = [[i, day.format(i), yes.format(i), "x" if i % 2 else i] for i in range(2, 8)]
        rows[3][0], rows[4][1], rows[2][2] = "n/a", "long" * 20, 0.5
        self.make(sheet(["number", "day", "yes", "mixed"], *rows))
        messages = self.read()[1]
        for note in ("The column 'number' of the sheet 'a' is text because of 'n/a' in A5; 5 of its 6 values are numbers\n",
                     "The column 'day' of the sheet 'a' is text because of '" + "long" * 15 + "...' in B6; 5 of its 6 values are dates\n",
                     "The column 'yes' of the sheet 'a' is text because of '0.5' in C4; 5 of its 6 values are booleans\n"):
            self.assertIn(note, messages)
        self.assertNotIn("'mixed'", messages)
        self.assertNotIn("is text because", self.read("allText='1'")[1])
        wide = [[1] * 26, [2] * 26, ["x"] * 26]
        self.make(sheet(*wide), sheet(*wide))
        messages = self.read("firstLineContainsColumnNames='0' sheets='3'")[1]
        self.assertEqual([messages.count("is text because"), messages.count("More columns are text because of a few values\n")], [20, 1])

    def test_head_shows_the_first_rows_with_cells(self):
        row = '<row r="{0}"><c r="A{0}" t="str"><v>name</v></c></row><row r="{1}"><c r="A{1}"><v>5</v></c></row>'
        self.make(f"<worksheet><sheetData>{row.format(5000, 9000)}</sheetData></worksheet>")
        self.assertIn("name", self.command("head", "book.xlsx")[0])
        self.assertIn("5", self.command("head", "book.xlsx", "--reader", "emptyRows=1")[0])
        self.assertEqual(self.command("schema", "book.xlsx")[0], "name\tK\n")

    def test_scan_of_some_rows(self):
        self.make(sheet(["n"], [1], [2], ["text"]))
        rows, messages = self.read("scanRows='2'")
        self.assertEqual(rows, [["n"], ["1"], ["2"], ["text"]])
        self.assertIn("Warning: 1 column has only numbers in the first 2 rows and other values later; it is read as text; the "
                      "first is 'n', in row 4 of the sheet 'a'", messages)
        self.assertIn("are those of its first 1 row\n", self.read("scanRows='1' sampleOnly='1' allText='1'")[1])
        _, messages = self.read("scanRows='2' sampleOnly='1'", status=1)
        self.assertIn("The types of the columns of the sheet 'a' are those of its first 2 rows", messages)
        self.assertIn("Error: The cell A4 of the sheet 'a' of the workbook 'book.xlsx' does not have the type that the first 2 rows give "
                      "its column; use sampleOnly='0' or allText='1'", messages)
        self.assertEqual(self.read("scanRows='2' sampleOnly='1' allText='1'")[0][3], ["text"])

    def test_several_files(self):
        self.make(sheet(["a", "b"], [1, 2]), name="1.xlsx")
        self.make(sheet(["b", "a"], ["x", 4.5]), name="2.xlsx")
        self.assertIn("Error: Column 1 of the sheet 'a' of the workbook '2.xlsx' is 'b' instead of 'a'; use unionByName='1' to join "
                      "columns by name", self.read(name="?.xlsx", status=1)[1])
        self.assertEqual(self.read("unionByName='1'", "?.xlsx")[0], [["a", "b"], ["1", "2"], ["4.5", "x"]])
        self.make(sheet(["a"], [1]), name="2.xlsx")
        self.assertIn("Error: The sheet 'a' of the workbook '2.xlsx' has 1 column instead of 2; use unionByName='1' to join columns by "
                      "name", self.read(name="?.xlsx", status=1)[1])
        self.assertIn("Error: cannot open the workbook 'none.xlsx'", self.read(name="none.xlsx", status=1)[1])
        self.assertIn("Warning: cannot open the workbook 'none.xlsx'", self.read("abortIfMissing='0'", "none.xlsx")[1])

    def test_names_from_a_pin(self):
        self.make(sheet(["n"], [1]))
        for names, status in (("book.xlsx\nb*.xlsx\n", 0), ("", 1)):
            (self.folder / "names.csv").write_text("name\n" + names)
            (self.folder / "pin.graph").write_text(
                "<graph version='4.12'><action id='n'><readCSV fileName='names.csv'/></action><action id='r'>"
                "<readExcel fileNameFromPin='1' fileName=''/></action><action id='w'><writeCSV fileName='out.csv'/></action>"
                "<link from='n:0' to='r:0'/><link from='r:0' to='w:0'/></graph>")
            _, messages = self.command("run", "pin.graph", status=status)
            self.assertEqual("ERROR: Cannot read the name of the workbook on input pin??" in messages, status == 1)
            self.assertEqual((self.folder / "out.csv").read_text(), "n\n1\n1\n")

    def test_other_contents(self):
        page = "its content is an HTML page, whatever its name says; give it the right extension, or open it in a spreadsheet program"
        legacy = ("its content is that of an .xls workbook, whatever its name says; read it with readExcelOld or give it the right "
                  "extension")
        for content, problem in ((b"<html><table>", page), (b"a,b\n1,2\n", "its content is a text file, perhaps CSV"),
                                 (b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(600), legacy), (b"%PDF-1.4", "its content is a PDF document")):
            (self.folder / "book.xlsx").write_bytes(content)
            messages = self.read(status=1)[1]
            self.assertIn("Error: The file 'book.xlsx' is not an .xlsx workbook", messages)
            self.assertIn("Reason: " + problem, messages)
        with zipfile.ZipFile(self.folder / "letter.xls", "w") as package:
            package.writestr("content.xml", "<x/>")
        messages = self.command("head", "letter.xls", status=1)[1]
        self.assertIn("letter.xls' is not an .xls workbook", messages)
        self.assertIn("Reason: it is an OpenDocument file (.ods); save it as .xlsx", messages)

    def test_why_a_workbook_is_refused(self):
        def refused(error, reason, name="book.xlsx"):
            messages = self.read(name=name, status=1)[1]
            self.assertIn(error.replace("%1", name) + "\n", messages)
            self.assertIn("Reason: " + reason, messages)
        self.make("<worksheet><sheetData><row><c><v>1</v></c>")
        damaged = "Error: The workbook '%1' is damaged"
        refused(damaged, "'xl/worksheets/sheet1.xml': the text ends too early")
        whole = (self.folder / "book.xlsx").read_bytes()
        (self.folder / "book.xlsx").write_bytes(whole[:-60])
        refused(damaged, "it ends before the directory of its zip package")
        encrypted = bytearray(whole)
        encrypted[whole.index(b"PK\x01\x02") + 8] |= 1
        (self.folder / "book.xlsx").write_bytes(encrypted)
        refused("Error: The workbook '%1' is encrypted", "'")
        with zipfile.ZipFile(self.folder / "book.xlsx", "w") as package:
            package.writestr("_rels/.rels", "<Relationships><Relationship Id='1' Target='xl/workbook.bin' Type='http://schemas.openxmlformats."
                                            "org/officeDocument/2006/relationships/officeDocument'/></Relationships>")
        refused("Error: The workbook '%1' is not supported", "it is a binary workbook (.xlsb); save it as .xlsx")
        (self.folder / "book.xlsx.gz").write_bytes(gzip.compress(whole)[:-100])
        refused("Error: cannot read the workbook '%1'", "", name="book.xlsx.gz")

    def test_a_chart_comes_first(self):
        kind = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
        self.make("<chartsheet/>", sheet(["n"], [1]), states=("r:id='1'", "r:id='2'"), parts=[("xl/_rels/workbook.xml.rels", (
            f"<Relationships><Relationship Id='1' Type='{kind}chartsheet' Target='worksheets/sheet1.xml'/>"
            f"<Relationship Id='2' Type='{kind}worksheet' Target='worksheets/sheet2.xml'/></Relationships>"))])
        rows, messages = self.read()
        self.assertEqual(rows, [["n"], ["1"]])
        self.assertIn("Warning: The first sheet 'a' of the workbook 'book.xlsx' is a chart; the first sheet with cells is read", messages)
        self.assertIn("\n    1: a (chart)\n*   2: b", self.command("head", "book.xlsx")[1])

    def test_convert_of_several_sheets(self):
        self.make(sheet(["n"], [1]), sheet(["m"], [2]), sheet(), names=["First", "Second", "Third"])
        _, messages = self.command("convert", "book.xlsx", "one.xlsx", "--sheet", "second")
        self.assertIn("Warning: 2 sheets of 'book.xlsx' are not copied (--sheet reads another one): 'First', 'Third'", messages)
        self.assertEqual(openpyxl.load_workbook(self.folder / "one.xlsx").sheetnames, ["Second"])
        self.assertNotIn("not copied", self.command("convert", "one.xlsx", "two.xlsx", "--writer", "sheetName=Mine")[1])
        self.assertEqual(openpyxl.load_workbook(self.folder / "two.xlsx").sheetnames, ["Mine"])
        self.assertIn("only sheet is 'Mine'", self.command("head", "two.xlsx", "--sheet", "none", status=2)[1])
        self.assertIn("its only sheet is 'Mine'", self.command("head", "two.xlsx", "--reader", "sheetIdx=7", status=1)[1])
        self.assertNotIn("not copied", self.command("convert", "book.xlsx", "out.csv")[1])
        self.assertNotIn("not copied", self.command("convert", "book.xlsx", "all.xlsx", "--reader", "sheets=3", "--reader", "unionByName=1")[1])
        before = (self.folder / "book.xlsx").read_bytes()
        self.assertIn("'book.xlsx' has 3 sheets, and the output would have only one; use another output name",
                      self.command("convert", "book.xlsx", "./book.xlsx", status=2)[1])
        self.assertEqual((self.folder / "book.xlsx").read_bytes(), before)
        self.command("convert", "one.xlsx", "one.xlsx")

    def test_convert_keeps_kinds_of_cells(self):
        self.make(sheet(["day", "time", "text", "n"], ['<c r="A2" s="1"><v>45000</v></c>', '<c r="B2" s="2"><v>45000.5</v></c>',
                                                       "2023-03-15", 7]))
        self.command("convert", "book.xlsx", "other.xlsx")
        markup = zipfile.ZipFile(self.folder / "other.xlsx").read("xl/worksheets/sheet1.xml").decode()
        self.assertRegex(markup, r'<c r="A2" s="\d+"><v>45000</v></c><c r="B2" s="\d+"><v>45000.5</v></c>'
                         r'<c r="C2" t="inlineStr"><is><t>2023-03-15</t></is></c><c r="D2"><v>7</v></c>')
        self.command("convert", "book.xlsx", "1.csv")
        self.command("convert", "other.xlsx", "2.csv")
        self.assertEqual([(self.folder / name).read_text() for name in ("1.csv", "2.csv")],
                         ["day,time,text,n\n2023-03-15,2023-03-15T12:00:00,2023-03-15,7\n"] * 2)


if __name__ == "__main__":
    unittest.main()

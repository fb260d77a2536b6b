#!/usr/bin/python3
"""Workbooks with styles, filters and column widths as openpyxl sees them: workbook_look_test.py CORVANTA"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

import openpyxl

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
FILLED = "FFDDEBF7"


class Look(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_look_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.book = self.folder / "book.xlsx"

    def write(self, text, attributes, formats=(), types="K,F,U"):
        """Run writeExcel; returns its messages up to level 2."""
        (self.folder / "in.csv").write_text(text, encoding="utf-8")
        children = "".join(f"<s>{entry}</s>" for entry in formats)
        graph = (f"<graph><action id='in'><readCSV fileName='in.csv' types='{types}'/></action>"
                 f"<action id='book'><writeExcel fileNameDestination='book.xlsx' {attributes}>"
                 f"<columnFormats>{children}</columnFormats></writeExcel></action><link from='in:0' to='book:0'/></graph>")
        (self.folder / "case.graph").write_text(graph, encoding="utf-8")
        done = subprocess.run([CORVANTA, "run", "case.graph", "--log-format", "json"], cwd=self.folder, capture_output=True, text=True,
                              timeout=120, check=False)
        messages = [json.loads(line) for line in done.stderr.splitlines()]
        self.assertEqual(done.returncode, 0, messages)
        return [(message["level"], message["message"].replace(str(self.folder) + "/", "")) for message in messages]

    def header_style(self, sheet):
        cell = sheet["A1"]
        return cell.font.b, cell.fill.fgColor.rgb if cell.fill.fill_type == "solid" else None

    def test_convert_makes_a_sheet_ready_for_reading(self):
        (self.folder / "in.csv").write_text("id,a text\n1,x\n2,\"a text of more than twenty characters\"\n", encoding="utf-8")
        subprocess.run([CORVANTA, "convert", "in.csv", "book.xlsx"], cwd=self.folder, check=True)
        book = openpyxl.load_workbook(self.book)
        sheet = book.active
        self.assertEqual((self.header_style(sheet), sheet.freeze_panes, sheet.auto_filter.ref), ((True, FILLED), "A2", "A1:B3"))
        self.assertFalse(sheet["A2"].font.b)
        self.assertEqual([sheet.column_dimensions[letter].width for letter in "AB"], [9, 39])
        with zipfile.ZipFile(self.book) as package:
            self.assertIn(b"<definedName name=\"_xlnm._FilterDatabase\" localSheetId=\"0\" hidden=\"1\">'Sheet1'!$A$1:$B$3</definedName>",
                          package.read("xl/workbook.xml"))

    def test_columns_have_formats(self):
        text = "k,price,day\n1,2.5,2024-02-29\n"
        self.assertEqual(self.write(text, "isoDates='1' columnWidths='7,,12.5'", ["price=#,##0.00 \"&lt;EUR\"", "k=0%"]), [])
        sheet = openpyxl.load_workbook(self.book).active
        self.assertEqual([sheet[cell].number_format for cell in ("A2", "B2", "C2", "A1")], ["0%", '#,##0.00 "<EUR"', "General", "General"])
        self.assertEqual([sheet.column_dimensions[letter].width for letter in "AC"], [7, 12.5])

    def test_a_sheet_added_to_a_workbook(self):
        old = openpyxl.Workbook()
        old.active["A1"] = "kept"
        old.active["A1"].font = openpyxl.styles.Font(name="Arial", sz=8, i=True)
        old.save(self.book)
        look = "mode='1' sheetName='New' headerStyle='1' freezeHeader='1' autoFilter='1' columnWidths='auto'"
        sizes = []
        for _ in range(2):
            self.assertEqual([level for level, _ in self.write("k,price,t\n1,2.5,x\n", look, ["price=0.00"]) if level < 3], [])
            book = openpyxl.load_workbook(self.book)
            sheet = book.worksheets[-1]
            self.assertEqual((self.header_style(sheet), sheet.freeze_panes, sheet.auto_filter.ref), ((True, FILLED), "A2", "A1:C2"))
            self.assertEqual((sheet["B2"].number_format, sheet["A2"].number_format), ("0.00", "General"))
            self.assertEqual((book.active["A1"].value, book.active["A1"].font.name), ("kept", "Arial"))
            with zipfile.ZipFile(self.book) as package:
                sizes.append(len(package.read("xl/styles.xml")))
        # The second sheet uses the formats of the first one.
        self.assertEqual(book.sheetnames, ["Sheet", "New", "New_2"])
        self.assertEqual(sizes[0], sizes[1])

    def test_a_changed_sheet_keeps_its_look(self):
        old = openpyxl.Workbook()
        old.active["A1"] = "x"
        old.save(self.book)
        self.assertEqual(self.write("k\n1\n", "mode='2' sheetName='Sheet' headerStyle='1' freezeHeader='1' autoFilter='1' columnWidths='auto'",
                                    ["k=0.00"], types="K"), [])
        sheet = openpyxl.load_workbook(self.book)["Sheet"]
        self.assertEqual((self.header_style(sheet), sheet.freeze_panes, sheet.auto_filter.ref), ((False, None), None, None))
        self.assertEqual(sheet["A2"].number_format, "General")

    def test_widths_beyond_the_columns(self):
        messages = self.write("k\n1\n", "columnWidths='7,8'", types="K")
        self.assertEqual(messages, [(2, "Warning: writing to Excel file 'book.xlsx': columnWidths has 2 widths, but 1 column is written\n")])
        messages = self.write("k,l\n1,2\n", "columnWidths='7,8,9'", types="K,K")
        self.assertEqual(messages, [(2, "Warning: writing to Excel file 'book.xlsx': columnWidths has 3 widths, but 2 columns are written\n")])

    def test_rows_continue_in_further_sheets(self):
        rows = 2 * 1_048_575 + 5
        text = "link\n" + "".join("u\n" if i % 700_000 else f"\"URL(\"\"x\"\",\"\"http://h/{i}\"\")\"\n" for i in range(rows))
        name = "a name of thirty-one characters"
        look = f"urlTag='1' sheetName='{name}' overflow='newSheet' headerStyle='bold' autoFilter='1' columnWidths='20' namedRange='all'"
        notes = self.write(text, look, types="U")
        second, third = "a name of thirty-one charac (2)", "a name of thirty-one charac (3)"
        self.assertEqual(notes, [
            (3, f"Note: the sheet '{name}' of the Excel file 'book.xlsx' is full: row 1048576 of the table and those after it are "
                f"written to the sheet '{second}'\n"),
            (2, f"Warning: the name 'all' of the Excel file 'book.xlsx' covers only the rows in the sheet '{name}': the table continues in the "
                f"sheet '{third[:-2]}2)'\n"),
            (3, f"Note: the sheet '{second}' of the Excel file 'book.xlsx' is full: row 2097151 of the table and those after it are "
                f"written to the sheet '{third}'\n")])
        with zipfile.ZipFile(self.book) as package:
            self.assertEqual(package.testzip(), None)
            sheets = [package.read(f"xl/worksheets/sheet{number}.xml") for number in (1, 2, 3)]
            self.assertEqual([sheet.count(b"<row r=") for sheet in sheets], [1_048_576, 1_048_576, 6])
            for sheet, last in zip(sheets, (1_048_576, 1_048_576, 6), strict=True):
                self.assertIn(b'<c r="A1" s="3" t="inlineStr"><is><t>link</t></is></c>', sheet[:1000])
                self.assertIn(b'width="20"', sheet[:1000])
                self.assertIn(f'<autoFilter ref="A1:A{last}"/>'.encode(), sheet[-1000:])
            links = [package.read(f"xl/worksheets/_rels/sheet{number}.xml.rels").count(b"http://h/") for number in (1, 2)]
            self.assertEqual(links, [2, 1])
            # A book with its last sheet alone is small enough for openpyxl.
            small = self.folder / "small.xlsx"
            with zipfile.ZipFile(small, "w") as output:
                for member in package.namelist():
                    is_large = member in ("xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml")
                    empty = sheets[2][:sheets[2].index(b"<row ")] + b"</sheetData></worksheet>"
                    output.writestr(member, empty if is_large else package.read(member))
        book = openpyxl.load_workbook(small)
        self.assertEqual(book.sheetnames, [name, second, third])
        self.assertEqual([cell.value for cell in book[third]["A"]], ["link"] + ["u"] * 5)

    def test_an_appended_sheet_continues_in_a_new_one(self):
        old = openpyxl.Workbook()
        old.active["A1048575"] = 7
        old.save(self.book)
        levels = [level for level, _ in self.write("k\n1\n2\n3\n", "mode='2' sheetName='Sheet' startRow='0' overflow='newSheet' "
                                                   "headerStyle='bold' columnWidths='auto'", types="K")]
        self.assertEqual(levels, [3])
        book = openpyxl.load_workbook(self.book)
        self.assertEqual((book.sheetnames, book["Sheet"]["A1048576"].value), (["Sheet", "Sheet (2)"], "k"))
        self.assertEqual([cell.value for cell in book["Sheet (2)"]["A"]], ["k", 1, 2, 3])
        self.assertEqual((book["Sheet"]["A1048576"].font.b, book["Sheet (2)"]["A1"].font.b), (False, True))


if __name__ == "__main__":
    unittest.main()

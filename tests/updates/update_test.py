#!/usr/bin/python3
"""Workbooks updated in place and copied: update_test.py CORVANTA"""
import os
import pathlib
import re
import resource
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

from workbooks import IN_CSV, MAIN, OFFICE, PACKAGE, files, members, odd_parts, plain_parts, run_update, write_workbook

CORVANTA = sys.argv.pop(1)
SHEET = f"{{{MAIN}}}"
REWRITTEN = {"[Content_Types].xml", "xl/workbook.xml", "xl/_rels/workbook.xml.rels", "xl/styles.xml"}


def rows_of(text):
    """Row number -> formula or text of the cells, in order."""
    found = {}
    number = 0
    for row in ElementTree.fromstring(text).find(SHEET + "sheetData"):
        assert row.tag == SHEET + "row", row.tag
        number = int(row.get("r", number + 1))
        found[number] = ["".join(cell.itertext()) for cell in row]
    return found


class UpdateCase(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.book = self.folder / "book.xlsx"
        self.addCleanup(shutil.rmtree, self.folder)

    def update(self, attributes, parts=None, **more):
        if parts is not None:
            write_workbook(self.book, parts)
        return run_update(CORVANTA, self.folder, attributes, **more)


class ChangedParts(UpdateCase):
    def check(self, attributes, parts, changed=()):
        """Run an update that succeeds without a message; returns the new members."""
        status, messages = self.update(attributes, parts)
        self.assertEqual((status, messages), (0, []))
        self.assertEqual(files(self.folder), ["book.xlsx"])
        old, new = {}, members(self.book)
        for name, text in parts.items():
            old[name] = text.encode("latin-1" if name.endswith(".png") else "utf-8")
        for name in old:
            if name.replace("\\", "/") not in REWRITTEN | set(changed):
                self.assertEqual(new[name], old[name], name)
        for name in new:
            if name.endswith((".xml", ".rels")):
                ElementTree.fromstring(new[name])
        self.assertEqual(list(new)[0], "[Content_Types].xml")
        return new

    def test_a_sheet_is_added(self):
        new = self.check("mode='1' sheetName='Data' namedRange='N'", plain_parts())
        workbook = new["xl/workbook.xml"].decode()
        self.assertIn('<sheet name="Data_2" sheetId="6" r:id="rId5"/></sheets><definedNames><definedName name="N">'
                      "'Data_2'!$A$2:$D$3</definedName></definedNames>"
                      '<calcPr calcId="0" fullCalcOnLoad="1"/>', workbook)
        self.assertIn('Id="rId5" Type="' + OFFICE + '/worksheet" Target="worksheets/sheet3.xml"',
                      new["xl/_rels/workbook.xml.rels"].decode())
        self.assertIn('PartName="/xl/worksheets/sheet3.xml"', new["[Content_Types].xml"].decode())
        self.assertEqual(rows_of(new["xl/worksheets/sheet3.xml"])[2], ["1", "a<b & c", "45351", "site"])
        self.assertIn('Id="rId1" Target="http://x.org/?a=1&amp;b=2"', new["xl/worksheets/_rels/sheet3.xml.rels"].decode())

    def test_a_new_sheet_takes_no_name_that_is_declared(self):
        parts = plain_parts()
        stale = '<Override PartName="/xl/worksheets/sheet7.xml" ContentType="x/y"/></Types>'
        parts["[Content_Types].xml"] = parts["[Content_Types].xml"].replace("</Types>", stale)
        self.assertIn("xl/worksheets/sheet8.xml", self.check("mode='1' sheetName='New'", parts))

    def test_no_recalculation_when_not_wanted(self):
        new = self.check("mode='1' sheetName='New' forceRecompute='0'", plain_parts())
        self.assertIn('<calcPr calcId="124519"/>', new["xl/workbook.xml"].decode())

    def test_rows_are_replaced_and_the_tail_kept(self):
        tail = "<mergeCells count='1'><mergeCell ref='C1:D1'/></mergeCells><printOptions/><pageMargins/>"
        sheet = "xl/worksheets/sheet1.xml"
        new = self.check("mode='2' sheetName='Data' startRow='3'", plain_parts(tail), [sheet])
        text = new[sheet].decode()
        rows = rows_of(text)
        self.assertEqual(sorted(rows), [1, 2, 3, 4, 5])
        self.assertEqual(rows[3], ["id", "name", "day", "link"])
        self.assertEqual(rows[2], ["2", "A2+1"])
        self.assertTrue(text.endswith("</mergeCells><hyperlinks><hyperlink ref=\"D4\" r:id=\"rId1\"/></hyperlinks>"
                                      "<printOptions/><pageMargins/></worksheet>"))
        self.assertNotIn("dimension", text)
        # The chain lists the formulas of the rows that are gone.
        self.assertNotIn("calcChain", new["xl/_rels/workbook.xml.rels"].decode())

    def test_rows_are_appended_and_links_numbered_on(self):
        sheet, links = "xl/worksheets/sheet1.xml", "xl/worksheets/_rels/sheet1.xml.rels"
        parts = plain_parts(f"<hyperlinks><hyperlink ref='A1' r:id='rId7'/></hyperlinks>")
        parts[links] = f"<Relationships xmlns='r'><Relationship Id='rId7' Type='{OFFICE}/hyperlink' Target='http://z' TargetMode='External'/></Relationships>"
        new = self.check("mode='2' sheetMode='0' sheetIdx='1' startRow='0' firstLineContainsColumnNames='0'", parts, [sheet, links])
        self.assertEqual(sorted(rows_of(new[sheet])), [1, 2, 3, 4, 5, 6, 7])
        self.assertIn("r:id='rId7'/><hyperlink ref=\"D6\" r:id=\"rId8\"/></hyperlinks>", new[sheet].decode())
        self.assertIn('Id="rId8" Target="http://x.org', new[links].decode())
        self.assertIn("calcChain", new["xl/_rels/workbook.xml.rels"].decode())

    def test_appended_rows_look_like_the_last_row(self):
        sheet, parts = "xl/worksheets/sheet1.xml", plain_parts()
        parts["xl/styles.xml"] = parts["xl/styles.xml"].replace(
            '<cellXfs count="1"><xf xfId="0"/>', '<cellXfs count="4"><xf xfId="0"/><xf numFmtId="14"/><xf numFmtId="2"/><xf fontId="0"/>')
        rows = {1: "<c r='A1' s='3'><v>1</v></c><c r='B1' s='3'/>", 2: "<c r='A2' s='2'><v>1</v></c><c r='C2' s='{}'/><c s='2'/>"}

        def appended(rows, attributes="keepStyles='1'"):
            text = "".join(f"<row r='{n}'>{cells}</row>" for n, cells in rows.items())
            parts[sheet] = f"<worksheet xmlns='{MAIN}'><sheetData>{text}</sheetData></worksheet>"
            new = self.check(f"mode='2' sheetName='Data' startRow='0' {attributes}", parts, [sheet, "xl/worksheets/_rels/sheet1.xml.rels"])
            return re.findall("<c [^>]*>", new[sheet].decode().partition(text)[2])

        for style, day in ((1, '<c s="1" r="C4">'), (2, '<c r="C4" s="4">')):
            found = appended({1: rows[1], 2: rows[2].format(style)})
            text = 't="inlineStr">'
            self.assertEqual(found[:8], [f'<c r="{column}3" {text}' for column in "ABCD"] + [
                '<c s="2" r="A4">', f'<c r="B4" {text}', day, f'<c s="2" r="D4" {text}'])
        # The only row is a header; without the parameter nothing changes.
        self.assertIn('<c r="A3">', appended({1: rows[1]}))
        self.assertIn('<c r="A4">', appended({1: rows[1], 2: rows[2]}, ""))

    def test_rows_beyond_the_last_of_a_sheet_are_appended_with_one_warning(self):
        sheet = "xl/worksheets/sheet2.xml"
        for last, header, warnings in ((1048574, 0, 0), (1048575, 0, 1), (1048576, 1, 1), (2000000, 0, 1)):
            with self.subTest(last=last, header=header):
                parts = plain_parts()
                parts[sheet] = parts[sheet].replace('r="1"', f'r="{last}"').replace("A1", f"A{last}")
                status, messages = self.update(
                    f"mode='2' sheetMode='0' sheetIdx='2' startRow='0' firstLineContainsColumnNames='{header}'", parts)
                self.assertEqual((status, len(messages)), (0, warnings))
                self.assertTrue(all("because it's too large (nRows>1048576)" in message for message in messages))
                self.assertEqual(max(rows_of(members(self.book)[sheet])), last + header + 2)

    def test_rows_below_empty_ones_give_a_warning(self):
        sheet, book = "xl/worksheets/sheet2.xml", self.folder / "book.xlsx"
        # The last value, as the tag of its cell may be: closed, with a prefix, far before the end of the rows, or in a merged cell.
        for rows, merged, warned in ((10, "", "8 rows without a value: delete these rows, or set startRow='2'"), (40000, "", "39998 rows"),
                                     (1, "", ""), (10, "A1:B9", ""), (10, "A1:B8", "1 row without"), (10, "A5:B9", "8 rows")):
            for prefix in ("", "x:"):
                with self.subTest(rows=rows, merged=merged, prefix=prefix):
                    parts = plain_parts()
                    empty = "".join(f'<row r="{n}" ht="15"><c r="A{n}" s="0"/></row>' for n in range(2, rows))
                    more = f'<mergeCells><mergeCell ref="{merged}"/></mergeCells>' if merged else ""
                    parts[sheet] = parts[sheet].replace("</sheetData>", empty + "</sheetData>" + more)
                    if prefix:
                        parts[sheet] = re.sub("<(/?)(?=[a-z])", r"<\1x:", parts[sheet]).replace("xmlns=", "xmlns:x=")
                    status, messages = self.update("mode='2' sheetMode='0' sheetIdx='2' startRow='0'", parts)
                    self.assertEqual((status, len(messages)), (0, int(warned != "")))
                    for message in messages:
                        self.assertIn(f"from row {rows} on in the sheet 'It's & more' of the Excel file '{book.name}', below {warned}", message)
                    self.assertEqual(self.update("mode='2' sheetMode='0' sheetIdx='2' startRow='0'"), (0, []))

    def test_odd_forms_are_understood(self):
        for attributes, sheet, row in (("mode='2' sheetMode='0' startRow='0'", "xl\\worksheets\\sheet1.xml", 6),
                                       ("mode='2' sheetMode='0' startRow='4'", "xl\\worksheets\\sheet1.xml", 4),
                                       ("mode='2' sheetName=\"It's &amp; more\"", "xl\\worksheets\\sheet2.xml", 1),
                                       ("mode='1' namedRange='N'", "xl/worksheets/sheet3.xml", 1)):
            with self.subTest(attributes):
                new = self.check(attributes, odd_parts(), [sheet.replace("\\", "/")])
                rows = rows_of(new[sheet])
                self.assertEqual(rows[row][0], "id")
                self.assertEqual(max(rows), row + 2)
                styles = ElementTree.fromstring(new["xl\\styles.xml"])
                for table, count in (("numFmts", 1), ("fonts", 2), ("cellXfs", 3)):
                    element = styles.find(SHEET + table)
                    self.assertEqual((len(element), element.get("count")), (count, str(count)))
                self.assertIn(b' s="1"><v>45351', new[sheet])

    def test_rows_out_of_order_above_the_place_stay(self):
        sheet, parts = "xl/worksheets/sheet2.xml", plain_parts()
        rows = "".join(f'<row r="{n}"><c r="A{n}"><v>{n}</v></c></row>' for n in (4, 1, 5, 2))
        parts[sheet] = f"<worksheet xmlns='{MAIN}'><sheetData>{rows}</sheetData></worksheet>"
        new = self.check("mode='2' sheetMode='0' sheetIdx='2' startRow='3'", parts, [sheet])
        self.assertEqual([(n, cells[0]) for n, cells in rows_of(new[sheet]).items()], [(1, "1"), (2, "2"), (3, "id"), (4, "1"), (5, "2")])

    def test_a_sheet_with_a_prefix_is_updated_again(self):
        write_workbook(self.book, odd_parts())
        sheet = "xl\\worksheets\\sheet1.xml"
        for attributes, last in (("startRow='0'", 8), ("startRow='0' firstLineContainsColumnNames='0'", 10), ("startRow='7'", 9)):
            self.assertEqual(self.update("mode='2' sheetMode='0' keepStyles='1' " + attributes), (0, []))
            rows = re.findall('<(?:x:)?row\\b[^0-9>]*([0-9]*)', members(self.book)[sheet].decode())
            self.assertEqual(rows, [""] * 5 + [str(n) for n in range(6, last + 1)])
        self.assertEqual(rows_of(members(self.book)[sheet])[9][:2], ["2", "ünï"])

    def test_dates_count_from_1904_where_the_workbook_does(self):
        parts = plain_parts()
        parts["xl/workbook.xml"] = parts["xl/workbook.xml"].replace("<sheets>", '<workbookPr date1904="1"/><sheets>')
        new = self.check("mode='1' sheetName='New'", parts)
        self.assertEqual(rows_of(new["xl/worksheets/sheet3.xml"])[2][2], str(45351 - 1462))

    def test_copies_leave_the_source(self):
        for mode in (3, 4):
            with self.subTest(mode):
                source = self.folder / "source.xlsx"
                write_workbook(source, plain_parts())
                before = source.read_bytes()
                self.assertEqual(self.update(f"mode='{mode}' fileNameSource='source.xlsx' sheetName='Data' startRow='0'"), (0, []))
                self.assertEqual(source.read_bytes(), before)
                new = members(self.book)
                self.assertEqual(new["xl/media/image1.png"], plain_parts()["xl/media/image1.png"].encode("latin-1"))
                self.assertIn("xl/worksheets/sheet3.xml" if mode == 3 else "xl/worksheets/sheet1.xml", new)


class Messages(UpdateCase):
    ONE_SHEET = {name: text for name, text in odd_parts().items()}
    ONE_SHEET["xl\\workbook.xml"] = re.sub("<x:sheet sheetId='5'.*?</x:sheet>", "", ONE_SHEET["xl\\workbook.xml"])

    def test_refusals_leave_the_workbook(self):
        damaged = plain_parts()
        no_sheet = plain_parts()
        del no_sheet["xl/worksheets/sheet1.xml"]
        no_root = {**plain_parts(), "xl/worksheets/sheet1.xml": f"<chartsheet xmlns='{MAIN}'/>"}
        utf16 = {**plain_parts(), "xl/workbook.xml": plain_parts()["xl/workbook.xml"].replace("UTF-8", "UTF-16")}
        reading = "\nERROR Reading Excel file 'book.xlsx'\n"
        cases = [
            (self.ONE_SHEET, "mode='2' sheetMode='0' sheetIdx='3'",
             ["ExcelWriter: Could not find sheet number '3' inside the file 'book.xlsx' (The only sheet has the index '1')."]),
            (plain_parts(), "mode='2' sheetMode='0' sheetIdx='x'",
             ["Warning: case.graph:1: the action 'book' (writeExcel): the value 'x' of 'sheetIdx' is not allowed; "
              "allowed: a whole number from 1; the action finds no sheet",
              "ExcelWriter: Could not find sheet number '0' inside the file 'book.xlsx' (The valid range of sheet indexes is from 1 to 2)."]),
            (self.ONE_SHEET, "mode='2' sheetName='data' createIfNotExists='0'",
             ["ExcelWriter: Could not find sheet named 'data' inside the file 'book.xlsx'. The only sheet is named 'Data'."]),
            (plain_parts(), "mode='2' sheetName='%1' createIfNotExists='0'",
             ["ExcelWriter: Could not find sheet named '%1' inside the file 'book.xlsx'. The 2 available sheets have the following names: 'Data', 'It's & more'."]),
            (no_sheet, "mode='2' sheetName='Data'", ["\nERROR: cannot open file 'xl/worksheets/sheet1.xml' in the zipfile for read", reading]),
            (no_root, "mode='2' sheetName='Data'", [reading]),
            (utf16, "mode='1'", [reading]),
            (damaged, "mode='1'", ["\nERROR: cannot decompress file 'xl/media/image1.png'.\n", reading]),
        ]
        for parts, attributes, expected in cases:
            with self.subTest(attributes):
                write_workbook(self.book, parts)
                if parts is damaged:
                    content = bytearray(self.book.read_bytes())
                    content[content.rindex(b"xl/media/image1.png", 0, -200) + 25] ^= 0x10
                    self.book.write_bytes(content)
                before = self.book.read_bytes()
                self.assertEqual(self.update(attributes), (1, expected))
                if parts in (no_root, utf16):
                    part = "xl/workbook.xml" if parts is utf16 else "xl/worksheets/sheet1.xml"
                    self.assertIn(f"Reason: the part '{part}' of the workbook is not the XML text in UTF-8 that it should be.\n",
                                  self.update(attributes, reasons=True)[1])
                self.assertEqual(self.book.read_bytes(), before)
                self.assertEqual(files(self.folder), ["book.xlsx"])

    def test_what_is_no_package_is_not_overwritten(self):
        self.book.write_bytes(b"not a workbook")
        self.assertEqual(self.update("mode='1'"), (1, ["\nERROR Reading Excel file 'book.xlsx'\n"]))
        self.assertEqual(self.book.read_bytes(), b"not a workbook")

    def test_a_missing_workbook_is_made_or_refused(self):
        for mode, source in ((1, "book.xlsx"), (4, "none.xlsx")):
            attributes = f"mode='{mode}' fileNameSource='none.xlsx' "
            self.assertEqual(self.update(attributes + "createIfNotExists='0'"), (1, [f"\nERROR Reading Excel file '{source}'\n"]))
            self.assertEqual(files(self.folder), [])
            reason = "Reason: there is no file with this name (No such file or directory): a new workbook is written instead.\n"
            self.assertEqual(self.update(attributes, reasons=True), (0, [f"\nWarning Cannot read Excel file '{source}'\n", reason]))
            self.assertEqual(rows_of(members(self.book)["xl/worksheets/sheet1.xml"])[1][0], "id")
            self.book.unlink()

    def test_a_missing_sheet_is_made(self):
        self.assertEqual(self.update("mode='2' sheetName='Later' startRow='9'", plain_parts()), (0, []))
        self.assertEqual(min(rows_of(members(self.book)["xl/worksheets/sheet3.xml"])), 1)

    def test_a_new_name_is_noted(self):
        write_workbook(self.book, plain_parts())
        messages = run_update(CORVANTA, self.folder, "mode='1' sheetName='Data'", reasons=True)[1]
        self.assertEqual(messages, ["Note: the Excel file 'book.xlsx' already has a sheet 'Data': the new sheet is named 'Data_2'\n"])

    def test_long_names_are_cut_once_and_stay_unique(self):
        name = "n" * 35
        warning = [f"WARNING: in the Excelfile 'book.xlsx' the SheetName '{name}' is too long: truncating at 31 chars."]
        self.assertEqual(self.update(f"mode='1' sheetName='{name}'", plain_parts()), (0, warning))
        self.assertEqual(self.update(f"mode='1' sheetName='{name}'"), (0, warning))
        names = re.findall('<sheet name="(n[^"]*)"', members(self.book)["xl/workbook.xml"].decode())
        self.assertEqual(names, ["n" * 31, "n" * 29 + "_2"])

    def test_styles_that_cannot_take_ours(self):
        for styles, warning in ((None, "Warning: Cannot add new Cell Styles (1) inside Excel file"),
                                (f"<styleSheet xmlns='{MAIN}'/>", "Warning: Cannot add new Cell Styles (2) inside Excel file")):
            parts = {**plain_parts(), "xl/styles.xml": styles}
            if styles is None:
                del parts["xl/styles.xml"]
            self.assertEqual(self.update("mode='1' sheetName='New'", parts), (0, [warning]))
            new = members(self.book)
            self.assertEqual(len(ElementTree.fromstring(new["xl/styles.xml"]).find(SHEET + "cellXfs")), 3)
            self.assertIn(b' s="1"><v>45351', new["xl/worksheets/sheet3.xml"])

    def test_a_sheet_beyond_the_limits_is_written_with_a_warning(self):
        self.assertEqual(self.update("mode='2' sheetName='Data' startRow='1048577'", plain_parts()), (0, [
            "Warning: You won't be able to open the Excel file 'book.xlsx' inside MS-Excel because it's too large (nRows>1048576). "
            "However, you can still use the file with Corvanta.\n"]))
        self.assertIn(b'<row r="1048578"', members(self.book)["xl/worksheets/sheet1.xml"])
        columns = 16_385 - 4
        csv = "id,name,day,link" + "".join(f",c{n}" for n in range(columns)) + "\n1,,," + "," * columns + "\n"
        self.assertEqual(self.update("mode='1' sheetName='New'", plain_parts(), csv=csv), (0, [
            "Warning: You won't be able to open the Excel file 'book.xlsx' inside MS-Excel because it's too large (nColumns>16384). "
            "However, you can still use the file with Corvanta.\n"]))

    def test_a_member_without_a_name_is_refused(self):
        write_workbook(self.book, plain_parts())
        with zipfile.ZipFile(self.book, "a") as package:
            member = zipfile.ZipInfo("x")
            member.filename = ""
            package.writestr(member, b"text")
        before = self.book.read_bytes()
        self.assertEqual(self.update("mode='1'"), (1, ["\nERROR: cannot open file '' in the zipfile for write"]))
        self.assertEqual((self.book.read_bytes(), files(self.folder)), (before, ["book.xlsx"]))

    def test_an_empty_input_swaps_nothing(self):
        header = "id,name,day,link\n"
        write_workbook(self.book, plain_parts())
        before = self.book.read_bytes()
        program = self.folder / "soffice"
        program.write_text(f"#!/bin/sh\necho >> {self.folder}/started\nexit 3\n")
        program.chmod(0o755)
        status, messages = self.update("mode='2' sheetName='Data' runExcel='1'", csv=header, environment={"PATH": str(self.folder)}, reasons=True)
        self.assertEqual(status, 1)
        reason = "the input has no rows (alwaysWrite='1' writes its header)"
        self.assertEqual(messages.pop(0), f"Note: the Excel file 'book.xlsx' is not updated: {reason}\n")
        messages.remove(f"Reason: {reason}.\n")
        # The recalculation runs nevertheless.
        self.assertEqual(messages.pop(), "Warning: cannot run MS-Excel to finalize XLSX file 'book.xlsx'\n")
        self.assertEqual((self.folder / "started").read_text(), "\n")
        pair = r"book\.xlsx_tmp_1_\d+' to 'book\.xlsx'"
        for message in messages[:-1]:
            self.assertRegex(message, f"^WARNING: failed attempt to rename '{pair}$")
        self.assertEqual(len(messages), 6)
        self.assertRegex(messages[-1], f"^ERROR: impossible to rename '{pair}$")
        self.assertEqual((self.book.read_bytes(), files(self.folder)), (before, ["book.xlsx", "soffice", "started"]))
        self.assertEqual(self.update("mode='4' fileNameSource='book.xlsx'", csv=header),
                         (0, ["Warning: the Excel file 'book.xlsx' is not written: the input has no rows (alwaysWrite='1' writes its header).\n"]))
        self.assertEqual(self.book.read_bytes(), before)


def with_table(header_row, names):
    """plain_parts() with a table of two columns, A and B, in the first sheet."""
    parts = plain_parts()
    parts["xl/worksheets/_rels/sheet1.xml.rels"] = (
        f'<Relationships xmlns="{PACKAGE}/relationships"><Relationship Id="rId1" Type="{OFFICE}/table" Target="../tables/table1.xml"/></Relationships>')
    columns = "".join(f'<tableColumn id="{n}" name="{name}"/>' for n, name in enumerate(names, 1))
    parts["xl/tables/table1.xml"] = (f'<table xmlns="{MAIN}" id="1" name="t" displayName="Sales" ref="A{header_row}:B5">'
                                     f'<tableColumns count="2">{columns}</tableColumns></table>')
    return parts


class Losses(UpdateCase):
    """What an update damages or leaves out is reported once."""

    def test_a_table_that_loses_its_header_is_named(self):
        warning = ("Warning: the header row of the table 'Sales' in the sheet 'Data' of the Excel file 'book.xlsx' is overwritten, "
                   "and no longer has the names of the table's columns: the workbook may not open.\n")
        for header_row, names, more, warnings in ((1, ("id", "name"), "", 0), (1, ("id", "Name"), "", 1),
                                                  (1, ("id", "name"), "firstLineContainsColumnNames='0'", 1),
                                                  (4, ("id", "name"), "startRow='2'", 1), (2, ("x", "y"), "startRow='3'", 0)):
            with self.subTest(header_row=header_row, names=names, more=more):
                done = self.update(f"mode='2' sheetName='Data' {more}", with_table(header_row, names))
                self.assertEqual(done, (0, [warning] * warnings))

    def test_rows_below_a_table_are_not_part_of_it(self):
        warning = ("Warning: %s from row 6 in the sheet 'Data' of the Excel file 'book.xlsx' %s below the table 'Sales', "
                   "which does not include what is below it: extend the table in a spreadsheet program.\n")
        for start, warnings in ((3, []), (4, [warning % ("1 row", "is")]), (6, [warning % ("3 rows", "are")]),
                                (0, [warning % ("3 rows", "are")]), (7, [])):
            with self.subTest(start=start):
                done = self.update(f"mode='2' sheetName='Data' startRow='{start}'", with_table(2, ("x", "y")))
                self.assertEqual(done, (0, warnings))

    def test_merged_ranges_that_hide_cells_are_counted(self):
        tail = "<mergeCells count='3'><mergeCell ref='A1:D2'/><mergeCell ref='B3:C3'/><mergeCell ref='D4:E9'/><mergeCell ref='A5:A6'/></mergeCells>"
        warning = "Warning: %s in the sheet 'Data' of the Excel file 'book.xlsx' may hide written cells; the first is %s.\n"
        for start, expected in ((3, [warning % ("2 merged ranges", "B3:C3")]), (4, [warning % ("2 merged ranges", "D4:E9")]),
                                (6, [warning % ("2 merged ranges", "D4:E9")]), (10, [])):
            with self.subTest(start):
                self.assertEqual(self.update(f"mode='2' sheetName='Data' startRow='{start}'", plain_parts(tail)), (0, expected))

    def test_an_update_uses_the_styles_of_an_earlier_one(self):
        self.update("mode='1' sheetName='One'", plain_parts())
        styles = members(self.book)["xl/styles.xml"]
        self.assertEqual(self.update("mode='1' sheetName='Two'"), (0, []))
        new = members(self.book)
        self.assertEqual(new["xl/styles.xml"], styles)
        self.assertIn(b' s="1"><v>45351', new["xl/worksheets/sheet4.xml"])
        self.assertEqual(self.update("mode='1' sheetName='Three' dateFormatExcel='1'"), (0, []))
        new = members(self.book)
        self.assertEqual(new["xl/styles.xml"].count(b"<xf "), styles.count(b"<xf ") + 2)
        self.assertIn(b' s="3"><v>45351', new["xl/worksheets/sheet5.xml"])

    def test_names_that_programs_reject_are_written_with_a_warning(self):
        parts = plain_parts()
        parts["xl/workbook.xml"] = parts["xl/workbook.xml"].replace("</sheets>", "</sheets><definedNames><definedName name='sum'>1</definedName></definedNames>")
        sheet = "Warning: the sheet name '%s' of the Excel file 'book.xlsx' %s: the workbook may not open.\n"
        for attributes, expected in (
                ("sheetName='data'", [sheet % ("data", "differs only in letter case from 'Data'")]),
                ("sheetName=''", [sheet % ("", "is empty")]),
                ("sheetName='HISTORY'", [sheet % ("HISTORY", "is reserved")]),
                ("sheetName='" + "n" * 30 + "&apos;tail'",
                 ["WARNING: in the Excelfile 'book.xlsx' the SheetName '" + "n" * 30 + "'tail' is too long: truncating at 31 chars.",
                  sheet % ("n" * 30 + "'", "begins or ends with an apostrophe")]),
                ("sheetName='N' namedRange='" + "n" * 256 + "'",
                 ["Warning: the range name '" + "n" * 256 + "' of the Excel file 'book.xlsx' has more than 255 characters: the workbook may not open.\n"]),
                ("sheetName='N' namedRange='SUM'",
                 ["Warning: the range name 'SUM' of the Excel file 'book.xlsx' differs only in letter case from 'sum', which it replaces.\n"])):
            with self.subTest(attributes):
                self.assertEqual(self.update("mode='1' " + attributes, parts), (0, expected))

    def test_dates_before_the_first_day_of_the_workbook_are_counted(self):
        csv = "id,name,day,link\n1,,1903-12-31,\n2,,1904-01-01,\n3,,1800-01-01,\n4,,no,\n"
        parts = plain_parts()
        parts["xl/workbook.xml"] = parts["xl/workbook.xml"].replace("<sheets>", '<workbookPr date1904="1"/><sheets>')
        status, messages = self.update("mode='1' sheetName='New'", parts, csv=csv)
        start = "Warning: writing to Excel file 'book.xlsx': "
        self.assertEqual((status, messages), (0, [
            start + "1 text of column 'day' does not match the date format 'yyyy-MM-dd'; the first is 'no' in row 4\n",
            start + "2 dates of column 'day' are before the first day of the workbook, in 1900 or 1904; the first is '1903-12-31' in row 1\n"]))
        self.assertEqual(rows_of(members(self.book)["xl/worksheets/sheet3.xml"])[3], ["2", "0"])

    def test_more_links_than_programs_read(self):
        """Older links count, unless new ones of the same cells replace them."""
        lines = "".join(f"{n},,,\"URL(\"\"u\"\")\"\n" for n in range(65529))
        warning = "Warning: the sheet 'Data' of the Excel file 'book.xlsx' has 65531 hyperlinks, but MS-Excel reads only 65530: the workbook may not open.\n"
        for start, expected in ((1, []), (3, [warning])):
            tail = "<hyperlinks><hyperlink ref='D2' r:id='rId7'/><hyperlink ref='A1' r:id='rId7'/></hyperlinks>"
            done = self.update(f"mode='2' sheetName='Data' startRow='{start}'", plain_parts(tail), csv="id,name,day,link\n" + lines)
            self.assertEqual(done, (0, expected))

    def test_the_reason_why_a_workbook_cannot_be_updated(self):
        reading = "\nERROR Reading Excel file 'book.xlsx'\n"
        chart = plain_parts()
        chart["xl/_rels/workbook.xml.rels"] = chart["xl/_rels/workbook.xml.rels"].replace(f'{OFFICE}/worksheet" Target="worksheets/sheet2', f'{OFFICE}/chartsheet" Target="worksheets/sheet2')
        self.assertEqual(self.update("mode='2' sheetMode='0' sheetIdx='2'", chart, reasons=True),
                         (1, [reading, "Reason: the sheet 'It's & more' is a chart sheet, which has no cells to write.\n"]))
        for content, reason in (("EncryptedPackage", "the workbook is encrypted with a password; save it without one first"),
                                ("Workbook", "the file is not an .xlsx workbook, but an old one (.xls) or an encrypted one")):
            # The name of the stream spans two of the pieces that are read.
            self.book.write_bytes(bytes.fromhex("D0CF11E0A1B11AE1") + bytes(65536 - 18) + content.encode("utf-16-le") + bytes(700))
            self.assertEqual(self.update("mode='1'", reasons=True), (1, [reading, f"Reason: {reason}.\n"]))


class Surroundings(UpdateCase):
    def test_a_full_disk_leaves_the_workbook(self):
        rows = IN_CSV + "".join(f"{n},{n * n * 7919 % 1000003},,\n" for n in range(5000))
        for mode in (0, 1):
            self.assertEqual(self.update(f"mode='{mode}'", plain_parts(), csv=rows), (0, []))
            size = self.book.stat().st_size
            # Full at the start, when the rows come out of the compressor, and with the last bytes.
            for most, verb in ((900, "write to"), (size - 15000, "write to"), (size - 10, "finalize")):
                def limit():
                    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                    resource.setrlimit(resource.RLIMIT_FSIZE, (most, most))
                with self.subTest(mode=mode, most=most):
                    write_workbook(self.book, plain_parts())
                    before = self.book.read_bytes()
                    done = self.update(f"mode='{mode}'", csv=rows, limit=limit)
                    self.assertEqual(done, (1, [f"\nERROR: cannot {verb} XLSX file 'book.xlsx'\n"]))
                    self.assertEqual((self.book.read_bytes(), files(self.folder)), (before, ["book.xlsx"]))

    def test_a_file_that_may_not_be_written_stays(self):
        def limit():
            if os.geteuid() == 0:
                os.setuid(65534)
        try:
            subprocess.run([CORVANTA, "--version"], preexec_fn=limit, check=True, capture_output=True)
        except (OSError, subprocess.CalledProcessError):
            self.skipTest("the program cannot be run by another user")
        self.folder.chmod(0o777)
        for mode in (0, 1):
            write_workbook(self.book, plain_parts())
            self.book.chmod(0o444)
            before = self.book.read_bytes()
            self.assertEqual(self.update(f"mode='{mode}'", limit=limit), (1, ["\nERROR writing to Excel file 'book.xlsx'\n"]))
            self.assertEqual((self.book.read_bytes(), files(self.folder)), (before, ["book.xlsx"]))
            self.book.chmod(0o644)

    def test_network_drives_get_the_same_bytes(self):
        contents = []
        for environment in ({}, {"CORVANTA_NET_DRIVE": str(self.folder)}):
            self.assertEqual(self.update("mode='2' sheetName='Data' startRow='0'", plain_parts(), environment=environment), (0, []))
            contents.append(self.book.read_bytes())
        self.assertEqual(contents[0], contents[1])

    def test_permissions_stay(self):
        write_workbook(self.book, plain_parts())
        self.book.chmod(0o640)
        self.assertEqual(self.update("mode='1'"), (0, []))
        self.assertEqual(stat.S_IMODE(self.book.stat().st_mode), 0o640)

    def test_the_spreadsheet_program_is_checked(self):
        tools = self.folder / "tools"
        tools.mkdir()
        program = tools / "soffice"
        warning = ["Warning: cannot run MS-Excel to finalize XLSX file 'book.xlsx'\n"]
        find_out = 'while [ "$1" != --outdir ]; do shift; done; mkdir -p "$2"; '
        for script, expected in ((None, warning), ("exit 3", warning), (find_out + 'echo bad > "$2/book.xlsx"', warning),
                                 (find_out + 'cp "$3" "$2/book.xlsx"; printf marked >> "$2/book.xlsx"', [])):
            with self.subTest(script):
                if script is not None:
                    program.write_text("#!/bin/sh\nPATH=/usr/bin:/bin\n" + script + "\n")
                    program.chmod(0o755)
                done = self.update("mode='1' runExcel='1'", plain_parts(), environment={"PATH": str(tools)})
                self.assertEqual(done, (0, expected))
                self.assertEqual(self.book.read_bytes().endswith(b"marked"), not expected)
                self.assertIn("xl/worksheets/sheet3.xml", members(self.book))
                self.assertEqual(files(self.folder), ["book.xlsx", "tools"])
        # A temporary folder whose path is so long that it can have no folder: the program is not started.
        program.write_text(f"#!/bin/sh\n: > {self.folder}/started\nexit 3\n")
        length = 4096 - len("/corvanta-XXXXXX") - 4
        deep = (str(self.folder) + ("/" + "t" * 99) * 41)[:length]
        os.makedirs(deep.rstrip("/"))
        done = self.update("mode='1' runExcel='1'", plain_parts(), environment={"PATH": str(tools), "TMPDIR": deep})
        self.assertEqual(done, (0, warning))
        self.assertFalse((self.folder / "started").exists())


if __name__ == "__main__":
    unittest.main()

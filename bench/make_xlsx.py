#!/usr/bin/python3
"""Print a CSV table as a workbook with shared strings, as spreadsheet programs write them: make_xlsx.py sales.csv > sales.xlsx"""
import csv
import sys
import zipfile
from xml.sax.saxutils import escape

TYPES = "KKFFFUUUUU"
NAMESPACE = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
RELATIONSHIPS = '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">{}</Relationships>'


def relationships(**targets):
    return RELATIONSHIPS.format("".join(f'<Relationship Id="r{i}" Type="{OFFICE}/{kind}" Target="{target}"/>'
                                        for i, (kind, target) in enumerate(targets.items())))


def main():
    strings = {}

    def cell(letter, number, column, value):
        if not value:
            return ""
        if number > 1 and TYPES[column] != "U":
            return f'<c r="{letter}{number}"><v>{value}</v></c>'
        return f'<c r="{letter}{number}" t="s"><v>{strings.setdefault(value, len(strings))}</v></c>'

    with open(sys.argv[1], encoding="utf-8", newline="") as table, zipfile.ZipFile(
            sys.stdout.buffer, "w", zipfile.ZIP_DEFLATED, compresslevel=6) as package:
        with package.open("xl/worksheets/sheet1.xml", "w", force_zip64=True) as out:
            out.write(f'<worksheet xmlns="{NAMESPACE}"><sheetData>'.encode())
            for number, row in enumerate(csv.reader(table), 1):
                cells = "".join(cell(chr(65 + i), number, i, value) for i, value in enumerate(row))
                out.write(f'<row r="{number}" spans="1:{len(row)}">{cells}</row>'.encode())
            out.write(b"</sheetData></worksheet>")
        items = "".join(f"<si><t>{escape(text)}</t></si>" for text in strings)
        package.writestr("xl/sharedStrings.xml", f'<sst xmlns="{NAMESPACE}">{items}</sst>')
        package.writestr("xl/workbook.xml", f'<workbook xmlns="{NAMESPACE}" xmlns:r="{OFFICE}">'
                         '<sheets><sheet name="sales" sheetId="1" r:id="r0"/></sheets></workbook>')
        package.writestr("xl/_rels/workbook.xml.rels",
                         relationships(worksheet="worksheets/sheet1.xml", sharedStrings="sharedStrings.xml"))
        package.writestr("_rels/.rels", relationships(officeDocument="xl/workbook.xml"))
        package.writestr("[Content_Types].xml", '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                         '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                         '<Default Extension="xml" ContentType="application/xml"/><Override PartName="/xl/workbook.xml" '
                         'ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/></Types>')


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Print a workbook with a long list of sheets, which are empty: make_sheets.py SHEETS"""
import sys
import zipfile

NAMESPACE = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"


def main():
    sheets = "".join(f'<sheet name="Sheet &amp; number {i}" sheetId="{i}"/>' for i in range(1, int(sys.argv[1]) + 1))
    with zipfile.ZipFile(sys.stdout.buffer, "w", zipfile.ZIP_DEFLATED) as package:
        package.writestr("xl/workbook.xml", f'<workbook xmlns="{NAMESPACE}"><sheets>{sheets}</sheets></workbook>')


if __name__ == "__main__":
    main()

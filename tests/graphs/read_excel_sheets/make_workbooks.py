#!/usr/bin/python3
"""Make the workbooks of the cases in this folder: make_workbooks.py"""
import pathlib
import sys
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "support"))
import legacy_workbook as xls  # pylint: disable=wrong-import-position

SHEETS = '<workbook xmlns="m"><sheets><sheet name="One" sheetId="1"/><sheet name="A &amp; B"/></sheets></workbook>'


def package(path, workbook, member="xl/workbook.xml"):
    with zipfile.ZipFile(HERE / path, "w", zipfile.ZIP_DEFLATED) as out:
        for name, content in ((member, workbook), ("other.xml", "<a/>")):
            out.writestr(zipfile.ZipInfo(name), content)


def main():
    package("names/a.xlsx", SHEETS)
    # Packed with "\", a prefix, another element first, a sheet without a name, and no more after the sheets.
    package("names/b.xlsx", '<x:workbook><x:pr><x:sheets/></x:pr><x:sheets><x:sheet name="&#8364;"/><x:sheet/></x:sheets><',
            "xl\\workbook.xml")
    legacy = [("Übersicht", b""), ("Chart", b"", 0, 2), ("Hidden", b"", 1, 0)]
    (HERE / "names/c.xls").write_bytes(xls.compound(xls.workbook(8, legacy + [("Ж", b"")])))
    (HERE / "names/d.XLSX").write_bytes(xls.compound(xls.workbook(5, legacy), "BOOK"))
    (HERE / "names/e.xls").write_bytes(xls.sheet(3, xls.label(3, 0, 0, "x")))
    # Long names, in wide and compressed units, of a stream that is not in mini sectors.
    many = [("n" * 31, b""), ("€" * 31, b"")] * 60
    (HERE / "names/f.xlt").write_bytes(xls.compound(xls.workbook(8, many)))

    bad = HERE / "legacy_unreadable"
    (bad / "a_encrypted.xls").write_bytes(xls.compound(xls.workbook(8, legacy, xls.record(0x2F, b"\1\0\1\0\1\0"))))
    (bad / "b_text.xls").write_bytes(b"this is no workbook")
    (bad / "c_document.xls").write_bytes(xls.compound(b"text", "WordDocument"))
    (bad / "d_damaged.xls").write_bytes(xls.compound(b"\1\2\3\4" * 4))
    (bad / "e_good.xls").write_bytes(xls.workbook(8, legacy))

    (HERE / "pin/100%1.xls").write_bytes(xls.workbook(5, legacy))
    (HERE / "package_missing/a.xlsx").write_bytes(b"no package")
    package("package_missing/b.xlsx", SHEETS)
    package("no_workbook/book %2.xlsx", SHEETS, "xl/Workbook.xml")
    package("no_sheets/a.xlsx", "<workbook><sheets/></workbook>")
    package("no_sheets/b.xlsx", "<workbook><views/></workbook>")
    package("not_an_element/a.xlsx", '<workbook><sheets><sheet name="One"/>text</sheets></workbook>')
    package("damaged_member/a.xlsx", '<workbook><sheets><sheet name="One"/><sheet name=')


if __name__ == "__main__":
    main()

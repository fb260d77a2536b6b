#!/usr/bin/python3
"""Make the workbooks of the cases in this folder: make_workbooks.py"""
import pathlib
import struct
import sys
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "support"))
import legacy_workbook as xls  # pylint: disable=wrong-import-position

DATE, TIME = xls.record(0xE0, struct.pack("<HH16x", 0, 14)), xls.record(0xE0, struct.pack("<HH16x", 0, 22))
STYLES = xls.record(0xE0, bytes(20)) + DATE + TIME


def put(name, content):
    path = HERE / name
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(content)


def header(biff, *names):
    return b"".join(xls.label(biff, 0, column, name) for column, name in enumerate(names))


def kinds():
    """Every kind of cell, a shared text that continues, a hidden row, merged cells and a defined name."""
    cells = header(8, "number", "text", "date", "flag", "formula")
    cells += xls.record(0x0208, struct.pack("<8H", 2, 0, 5, 0, 0, 0, 0x20, 0))
    for row in range(1, 5):
        cells += xls.number(8, row, 0, row / 4) + xls.record(0xFD, struct.pack("<HHHI", row, 1, 0, row % 2))
        cells += xls.number(8, row, 2, 45000 + row / 2, 2 if row % 2 else 1)
        cells += xls.record(0x0205, struct.pack("<HHHBB", row, 3, 0, row % 2, 0))
        cells += xls.record(0x0006, struct.pack("<HHH8s10x", row, 4, 0, b"\0\0\0\0\0\0\xff\xff"))
        cells += xls.record(0x0207, xls.text8(f"result {row}"))
    cells += xls.record(0xE5, struct.pack("<5H", 1, 3, 4, 1, 1))
    shared = xls.record(0xFC, struct.pack("<II", 8, 2) + xls.text8("even") + struct.pack("<HB", 5, 0) + b"od")
    shared += xls.record(0x3C, b"\1" + "d €".encode("utf-16le"))
    names = xls.record(0x1AE, struct.pack("<HH", 1, 0x0401)) + xls.record(0x17, struct.pack("<4H", 1, 0, 0, 0))
    names += xls.record(0x18, struct.pack("<HBBHHH4x", 0, 0, 4, 11, 0, 0) + b"\0Part\x3b" + struct.pack("<5H", 0, 0, 2, 0, 1))
    return xls.compound(xls.workbook(8, [("Cells", cells), ("Chart", b"", 0, 2)], STYLES + names + shared))


def main():
    put("kinds/kinds.xls", kinds())
    for biff in (2, 3, 4):
        put(f"versions/biff{biff}.xls", xls.sheet(biff, header(biff, "a", "b") + xls.number(biff, 1, 0, biff) + xls.label(biff, 1, 1, "é")))
    for biff in (5, 8):
        rows = header(biff, "a", "b") + xls.number(biff, 1, 0, biff) + xls.label(biff, 1, 1, "é")
        put(f"versions/biff{biff}.xls", xls.compound(xls.workbook(biff, [("S", rows)]), "Book" if biff == 5 else "Workbook"))
    put("wrong_page/page.xls", b"<html><body><table><tr><td>1</td></tr></table></body></html>")
    put("wrong_text/text.xls", b"a,b\n1,2\n")
    put("wrong_document/document.xls", xls.compound(b"text", "WordDocument"))
    with zipfile.ZipFile(HERE / "wrong_book/book.xls", "w") as out:
        out.writestr(zipfile.ZipInfo("xl/workbook.xml"), "<workbook/>")
    password = xls.record(0x2F, struct.pack("<HHH", 1, 1, 1))
    put("encrypted_rc4/rc4.xls", xls.compound(xls.workbook(8, [("S", b"")], password)))
    put("encrypted_xor/xor.xls", xls.compound(xls.workbook(5, [("S", b"")], password), "Book"))
    put("encrypted_package/package.xls", xls.compound(b"x" * 80, "EncryptedPackage"))
    rows = b"".join(xls.number(8, row, 0, row) for row in range(300))
    whole = xls.compound(xls.workbook(8, [("S", header(8, "n") + rows)]))
    put("damaged_cut/cut.xls", whole[:4096])
    # The header alone, with the directory in sector 4.
    put("damaged_directory/directory.xls", whole[:48] + struct.pack("<I", 4) + whole[52:512])
    broken = xls.number(8, 1, 0, 1) + xls.record(0xFD, struct.pack("<HHHI", 1, 1, 0, 7)) + xls.number(8, 1, 0, 2)
    broken += xls.record(0x0205, struct.pack("<HHHBB", 2, 0, 0, 99, 1)) + xls.number(8, 2, 20000, 3)
    broken += xls.record(0x0006, struct.pack("<HHH8s10x", 3, 0, 0, b"\0\0\0\0\0\0\xff\xff"))
    put("damaged_problems/problems.xls", xls.workbook(8, [("S", header(8, "n", "t") + broken)]))
    columns = b"".join(xls.number(8, row, column, row * 10 + column) for column in range(3) for row in (2, 1))
    put("out_of_order/columns.xls", xls.workbook(8, [("S", columns + header(8, "a", "b", "c"))]))


if __name__ == "__main__":
    main()

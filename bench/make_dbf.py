#!/usr/bin/python3
"""Print the benchmark table as a dBase III table in Windows 1252: make_dbf.py sales.csv > sales.dbf"""
import csv
import struct
import sys

# name, type, length, decimals: wide enough for what make_sales prints
SHAPES = {"K": ("N", 10, 0), "F": ("N", 20, 6), "U": ("C", 60, 0)}
TYPES = "KKFFFUUUUU"


def main():
    with open(sys.argv[1], encoding="utf-8", newline="") as table:
        rows = csv.reader(table)
        names = next(rows)
        shapes = [SHAPES[letter] for letter in TYPES]
        record_bytes = 1 + sum(length for _, length, _ in shapes)
        records = bytearray()
        count = 0
        for count, row in enumerate(rows, 1):
            records += b" "
            for cell, (kind, length, decimals) in zip(row, shapes):
                if decimals and cell:
                    cell = f"{float(cell):.{decimals}f}"
                text = cell.encode("cp1252", "replace")[:length]
                records += text.rjust(length) if kind == "N" else text.ljust(length)
    out = sys.stdout.buffer
    out.write(struct.pack("<BxxxIHH20x", 3, count, 33 + 32 * len(names), record_bytes))
    for name, (kind, length, decimals) in zip(names, shapes):
        out.write(struct.pack("<11sc4xBB14x", name.encode()[:10], kind.encode(), length, decimals))
    out.write(b"\r" + records + b"\x1a")


if __name__ == "__main__":
    main()

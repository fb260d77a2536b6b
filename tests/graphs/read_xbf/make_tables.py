#!/usr/bin/python3
"""Make the tables of the cases in this folder again: make_tables.py"""
import gzip
import pathlib
import struct
import zipfile

HERE = pathlib.Path(__file__).resolve().parent


def table(version, fields, records, count=None, tail=b"\x1a"):
    """A table; a field is (name, type, length), a record its bytes with the deletion flag."""
    record_bytes = 1 + sum(length for _, _, length in fields)
    header_bytes = 33 + 32 * len(fields)
    count = len(records) if count is None else count
    out = struct.pack("<BxxxIHH20x", version, count, header_bytes, record_bytes)
    for name, kind, length in fields:
        out += struct.pack("<11sc4xB15x", name, kind, length)
    assert all(len(record) == record_bytes for record in records)
    return out + b"\r" + b"".join(records) + tail


def level7_table(fields, records):
    """The same in the layout of dBase 7, whose integers sort as bytes."""
    record_bytes = 1 + sum(length for _, _, length in fields)
    out = struct.pack("<BxxxIHH20x32s4x", 4, len(records), 69 + 48 * len(fields), record_bytes, b"DB437US0")
    for name, kind, length in fields:
        out += struct.pack("<32scB14x", name, kind, length)
    return out + b"\r" + b"".join(records) + b"\x1a"


def foxpro_memos(*texts):
    """A memo file with blocks of 64 bytes; the first text is in block 1."""
    out = struct.pack(">IxxH56x", len(texts) + 1, 64)
    for text in texts:
        assert len(text) <= 56
        out += (struct.pack(">II", 1, len(text)) + text).ljust(64, b"\0")
    return out


class NameInCodePage437(zipfile.ZipInfo):
    """A member as DOS packers write it: its name is not in UTF-8, and no flag says so."""

    def _encodeFilenameFlags(self):
        return self.filename.encode("cp437"), 0


def put(name, content):
    path = HERE / name
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(content)


PEOPLE = [(b"NAME", b"C", 8), (b"AGE", b"N", 3), (b"NOTE", b"M", 4)]


def person(name, age, note, flag=b" "):
    return flag + name.ljust(8) + b"%3d" % age + struct.pack("<I", note)


ADA = person(b"Ada", 36, 2)
BOB = person(b"Bob", 7, 1)
GONE = person(b"Gone", 99, 1, b"*")
MEMOS = foxpro_memos(b"second in\r\nthe file", b"Gr\xfc\xdfe, \x80")

ALL_TYPES = [(b"C", b"C", 6), (b"N", b"N", 5), (b"F", b"F", 5), (b"D", b"D", 8), (b"L", b"L", 1), (b"I", b"I", 4),
             (b"O", b"O", 8), (b"B", b"B", 8), (b"T", b"T", 8), (b"PLUS", b"+", 4), (b"V", b"V", 3)]


def main():
    values = struct.pack("<iddIIi", -7, 0.25, 1e300, 2461366, 45296999, 42)
    put("types/all.dbf", table(0x30, ALL_TYPES, [
        b" " + b" a \x80  " + b"  7.5" + b"-1.50" + b"20261121" + b"T" + values + b"xyz",
        b" " + b" " * 24 + b"?" + struct.pack("<iddIIi", 0, 0, -1, 0, 0, 0) + b"   "]))
    for case in ("memo_buffered", "memo_in_ram", "memo_unused"):
        put(f"{case}/people.dbf", table(0x30, PEOPLE, [ADA, GONE, BOB]))
        put(f"{case}/PEOPLE.Fpt", MEMOS)
    put("memo_missing/people.dbf", table(0xF5, PEOPLE, [ADA]))
    put("memo_damaged/people.dbf", table(0x30, PEOPLE, [ADA, person(b"Eve", 1, 77), person(b"Max", 2, 1)]))
    put("memo_damaged/people.fpt", MEMOS[:-64] + struct.pack(">II", 1, 0x7FFFFFFF))

    put("archives/a.dbf.gz", gzip.compress(table(0x30, PEOPLE, [ADA]), mtime=0))
    put("archives/a.dbt.gz", gzip.compress(MEMOS, mtime=0))
    with zipfile.ZipFile(HERE / "archives/b.zip", "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in (("in/people.DBF", table(0x30, PEOPLE, [BOB])), ("in/people.fpt", MEMOS)):
            archive.writestr(zipfile.ZipInfo(name), content, zipfile.ZIP_DEFLATED)
    put("archives/c.zip", b"this is no archive")
    with zipfile.ZipFile(HERE / "archives/d.zip", "w") as archive:
        for name, content in (("\u00e9t\u00e9.dbf", table(0x30, PEOPLE, [ADA])), ("\u00c9T\u00c9.FPT", MEMOS)):
            archive.writestr(NameInCodePage437(name), content)

    put("counts/a_too_high.dbf", table(0x03, PEOPLE[:2], [r[:-4] for r in (ADA, BOB)], count=5))
    put("counts/b_too_low.dbf", table(0x03, PEOPLE[:2], [r[:-4] for r in (ADA, GONE, BOB)], count=2))
    put("cut_off/people.dbf", table(0x03, PEOPLE[:2], [r[:-4] for r in (ADA, BOB)], tail=b"")[:-1])
    put("cut_off_gzip/people.dbf.gz", gzip.compress(table(0x03, PEOPLE[:2], [ADA[:-4]]), mtime=0)[:-1])
    money = [(b"OK", b"C", 1), (b"MONEY", b"Y", 8)]
    put("unsupported/money.dbf", table(0x30, money, []))
    record = b" +" + struct.pack("<q", -123456)
    put("all_types/money.dbf", table(0x30, money + [(b"CHART", b"G", 4), (b"PHOTO", b"P", 4)], [record + bytes(8)]))

    numbered = [(b"NAME", b"C", 8), (b"N", b"I", 4)]
    put("level7/a.dbf", table(0x03, numbered, [ADA[:9] + struct.pack("<i", 7)]))
    put("level7/b.dbf", level7_table(numbered, [BOB[:9] + struct.pack(">I", 0x80000000 - 7), BOB[:9] + bytes(4)]))

    kinds = [(b"I", b"I", 4), (b"O", b"O", 8)]
    put("level7_zeros/zeros.dbf", level7_table(kinds, [b" \x80\0\0\0" + b"\x80" + bytes(7)]))

    dbase3 = bytes(512) + b"in block 1\x1a".ljust(512) + b"in block 2\x1a".ljust(512)
    put("memo_kinds/a.fpt.dbf", table(0x83, PEOPLE, [ADA]))
    put("memo_kinds/a.fpt.dbt", dbase3)
    put("memo_kinds/b.dbf", table(0x03, PEOPLE, [BOB, ADA]))
    put("memo_kinds/b.dbt", dbase3)
    put("memo_kinds/c.dbf", table(0xF5, PEOPLE, [ADA]))
    put("memo_kinds/c.dbt", dbase3)
    put("memo_kinds/c.fpt", MEMOS)
    put("memo_kinds/d.dbf", table(0x83, PEOPLE, [ADA]))
    put("memo_kinds/d.dbt", dbase3)
    put("memo_kinds/d.fpt", MEMOS)

    odd = [(b"NAME", b"C", 8), (b"GEO", b"W", 3), (b"AGE", b"N", 3), (b"MORE", b"V", 1)]
    record = b" Ada     xyz 36-"
    put("columns_hidden/a_unknown.dbf", table(0x03, odd, [record]))
    hidden = bytearray(table(0x03, odd, [record]))
    hidden[32 + 3 * 32] = 0x0D
    put("columns_hidden/b_early_end.dbf", bytes(hidden))

    odd = [(b"OK", b"L", 1), (b"AT", b"T", 8), (b"T", b"C", 6), (b"NOTE", b"M", 4)]
    put("values_bad/t.dbf", table(0x03, odd, [
        b" T" + struct.pack("<II", 2461366, 0) + b"\xc3\xa9    " + bytes(4), b" ?" + bytes(8) + b" " * 6 + bytes(4),
        b" x" + struct.pack("<II", 5, 5) + b"Gr\xfc\xdfe " + struct.pack("<I", 7)]))

    for case, second in (("columns_count", [(b"A", b"C", 1)]), ("columns_name", [(b"A", b"C", 1), (b"%1", b"C", 1)]),
                         ("columns_type", [(b"A", b"C", 1), (b"B", b"L", 1)])):
        put(f"{case}/1.dbf", table(0x03, [(b"A", b"C", 1), (b"B", b"C", 1)], [b" xy"]))
        put(f"{case}/2%2.dbf", table(0x03, second, [b" " * (1 + len(second))]))


if __name__ == "__main__":
    main()

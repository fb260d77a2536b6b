#!/usr/bin/python3
"""Make the Parquet files of the cases in this folder again: make_files.py CORVANTA"""
import gzip
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

HERE = pathlib.Path(__file__).resolve().parent
GRAPH = """<graph version='4.11'><action id='in'><readCSV fileName='in.csv' types='{types}'/></action>
<action id='out'><writeParquet file='out.parquet' {attributes}/></action><link from='in:0' to='out:0'/></graph>"""


def parquet(csv, types, attributes=""):
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        (folder / "in.csv").write_text(csv)
        (folder / "make.graph").write_text(GRAPH.format(types=types, attributes=attributes))
        subprocess.run([sys.argv[1], "run", str(folder / "make.graph")], check=True)
        return (folder / "out.parquet").read_bytes()


def after_varints(file, at, count):
    """Where `count` fields of one type byte and a varint end."""
    for _ in range(count):
        at += 2
        while file[at - 1] & 0x80:
            at += 1
    return at


def with_checksum(file):
    """A file of one page with the checksum of that page: i32 field 4 of its header, before field 5, the only struct."""
    field = after_varints(file, 4, 3)
    begin = after_varints(file, field + 1, 4) + 2
    footer = len(file) - 8 - int.from_bytes(file[-8:-4], "little")
    crc = zlib.crc32(file[begin:footer])
    number = crc * 2 if crc < 1 << 31 else ((1 << 32) - crc) * 2 - 1
    varint = bytes([number >> shift & 0x7F | (0x80 if shift < 28 else 0) for shift in range(0, 35, 7)])
    return file[:field] + b"\x15" + varint + b"\x1c" + file[field + 1:]


def put(case, **files):
    (HERE / case).mkdir(exist_ok=True)
    for name, content in files.items():
        (HERE / case / (name.replace("_", "%", 1) + ".parquet")).write_bytes(content)


FIRST = parquet('k,f,t\n1,0.5,one\n,,\n4294967293,-1e300,""\n', "K,F,U")
SECOND = parquet("k,f,t\n7,nan,žluť\n", "K,F,U")
LONG = parquet("k,t\n" + "".join(f"{i},text number {i * i}\n" for i in range(600)), "K,U", "pageSize='1'")
WITH_CHECKSUM = with_checksum(parquet("t\nnever\nagain\n", "U", "codec='1'"))
WRONG_CHECKSUM = WITH_CHECKSUM.replace(b"never", b"newer")
DAMAGED_PAGE = LONG[:5000] + b"\xff" * 40 + LONG[5040:]

put("several_files", a=FIRST, b=SECOND, c=FIRST)
put("columns_count", a=FIRST, b=parquet("k,f\n1,2\n", "K,F"))
put("columns_name", a=FIRST, b_1=parquet("k,%1,t\n1,2,x\n", "K,F,U"))
put("columns_type", a=FIRST, b=parquet("k,f,t\n1,2,x\n", "F,F,U"))
put("int64_as_float", a=FIRST)
put("columns_listed", a=FIRST)
put("columns_listed_missing", a=FIRST)
put("columns_from_pin", a=FIRST, b=SECOND)
put("names_from_pin", a=FIRST, b=SECOND, bad=SECOND[:-1])
put("no_rows", a=parquet("k,f,t\n", "K,F,U"))
put("no_rows_allowed", a=parquet("k,f,t\n", "K,F,U"))
put("damaged_footer", a=FIRST[:-40] + b"\xff" * 20 + FIRST[-20:])
put("encrypted_footer", a=FIRST[:-1] + b"E")
put("damaged_later", a=FIRST, b=FIRST[:-40] + b"\xff" * 20 + FIRST[-20:], c=SECOND)
put("damaged_page", a=DAMAGED_PAGE)
put("checksum_compared", a=WITH_CHECKSUM, b=WRONG_CHECKSUM)
put("checksum_ignored", a=WRONG_CHECKSUM)
put("codec_refused", a=parquet("k\n1\n", "K", "codec='3'"))
put("codec_allowed", a=parquet("k\n1\n", "K", "codec='3' statistics='1'"))
put("fewer_rows_than_declared", a=FIRST.replace(b"\x16\x06\x19\x1c\x19\x3c", b"\x16\x08\x19\x1c\x19\x3c"))

def foreign(csv, types, attributes, replaced=()):
    """A file of another writer: its integers need not be keys."""
    file = parquet(csv, types, f"codec='1' {attributes}").replace(b"Corvanta", b"Corvamta")
    for old, new in replaced:
        assert file.count(old) == 1, old
        file = file.replace(old, new)
    return file


def with_fewer_values(file, count):
    """The first page claims `count` values: field 1 of the struct in its header."""
    at = after_varints(file, 4, 3) + 2
    return file[:at] + bytes([count * 2]) + file[at + 1:]


TABLE = "n,t\n4,a\n,b\n6,c\n7,d\n8,e\n"
WIDE = [(struct.pack("<q", n), struct.pack("<q", other)) for n, other in ((6, -5), (8, 1 << 53 | 1))]
put("chunk_too_short", a=with_fewer_values(FIRST, 2))
put("chunk_overlaps", a=with_fewer_values(FIRST, 2).replace(b"\x16\x52\x26\x08", b"\x16\x7e\x26\x08"))
put("chunk_of_more_values", a=FIRST.replace(b"\x16\x06\x19\x1c\x19\x3c", b"\x16\x04\x19\x1c\x19\x3c")
    .replace(b"\x16\x06\0(", b"\x16\x04\0("))
put("integers_of_a_set", a=foreign(TABLE, "K,U", "statistics='1'"), b=foreign(TABLE, "K,U", ""))
for case in ("integers_cut", "integers_rounded"):
    put(case, a=foreign(TABLE, "K,U", ""), b=foreign(TABLE, "K,U", "", WIDE),
        c=foreign(TABLE, "K,U", "dictionaryPages='1'", WIDE))
put("integers_negative", a=foreign(TABLE, "K,U", "keyStorage='1'", [(struct.pack("<i", 6), struct.pack("<i", -1))]))
DAMAGED_COLUMN = with_fewer_values(FIRST, 0)
put("column_damaged", a=DAMAGED_COLUMN, b=FIRST, c=FIRST.replace(b"one", b"tne"))
put("column_damaged_later", a=FIRST, b=DAMAGED_COLUMN, c=SECOND)
ONE_VALUE, NO_VALUE = b"\x2c\x15\x02", b"\x2c\x15\0"  # in the header of a page
MANY = parquet(",".join(f"c{i}" for i in range(13)) + "\n" + ",".join("1" * 13) + "\n", ",".join("K" * 13))
FIRST_PAGE = MANY.find(ONE_VALUE) + len(ONE_VALUE)
put("columns_damaged", a=MANY[:FIRST_PAGE] + MANY[FIRST_PAGE:].replace(ONE_VALUE, NO_VALUE, 12))
PACKED = gzip.compress(FIRST, mtime=0)
for name, content in {"a": PACKED, "b": PACKED[:-20], "c": gzip.compress(SECOND, mtime=0)}.items():
    (HERE / "packed").mkdir(exist_ok=True)
    (HERE / "packed" / (name + ".parquet.gz")).write_bytes(content)

#!/usr/bin/python3
"""Make the Parquet files of the cases in this folder anew: make_files.py CORVANTA"""
import pathlib
import subprocess
import sys
import tempfile

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


def put(case, **files):
    (HERE / case).mkdir(exist_ok=True)
    for name, content in files.items():
        (HERE / case / (name.replace("_", "%", 1) + ".parquet")).write_bytes(content)


FIRST = parquet('k,f,t\n1,0.5,one\n,,\n4294967293,-1e300,""\n', "K,F,U")
SECOND = parquet("k,f,t\n7,nan,žluť\n", "K,F,U")
LONG = parquet("k,t\n" + "".join(f"{i},text number {i * i}\n" for i in range(600)), "K,U", "pageSize='1'")
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
put("damaged_footer", a=FIRST[:-40] + b"\xff" * 20 + FIRST[-20:])
put("damaged_later", a=FIRST, b=FIRST[:-40] + b"\xff" * 20 + FIRST[-20:], c=SECOND)
put("damaged_page", a=DAMAGED_PAGE)
put("codec_refused", a=parquet("k\n1\n", "K", "codec='3'"))
put("codec_allowed", a=parquet("k\n1\n", "K", "codec='3' statistics='1'"))
put("fewer_rows_than_declared", a=FIRST.replace(b"\x16\x06\x19\x1c\x19\x3c", b"\x16\x08\x19\x1c\x19\x3c"))

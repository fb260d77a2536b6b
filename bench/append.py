#!/usr/bin/python3
"""Time appending to a large workbook: bench/append.py BIN [--rows N] [--runs N] [--peer]

Ours appends 1,000 rows in place; with --peer openpyxl loads the same workbook, appends and saves.
"""
import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile

from jobs import READ_SALES, graph
from run import medians, show, timed

ADDED = 1000
PEER = """import openpyxl
book = openpyxl.load_workbook("peer.xlsx")
for number in range(%d):
    book.worksheets[0].append([number, 1, 0.5, 0.25, 1.5, "x", "y", "z", "w", "2024-01-01"])
book.save("peer.xlsx")
""" % ADDED


def report(who, runs):
    figures = medians(runs)
    show(who, figures)
    return figures["cpu"]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bin", type=pathlib.Path)
    parser.add_argument("--rows", type=int, default=500_000)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--peer", action="store_true")
    args = parser.parse_args()
    corvanta = str(args.bin.resolve() / "corvanta")
    write = "<writeExcel fileNameDestination='%s' %s dateFormat='yyyy-MM-dd'><ToDate><s>day</s></ToDate></writeExcel>"
    append = "mode='2' sheetMode='0' startRow='0' firstLineContainsColumnNames='0'"
    with tempfile.TemporaryDirectory(prefix="corvanta_bench_") as name:
        folder = pathlib.Path(name)
        for rows, options in ((args.rows, ""), (ADDED, append)):
            with open(folder / "sales.csv", "wb") as table:
                subprocess.run([args.bin.resolve() / "make_sales", str(rows)], stdout=table, check=True)
            (folder / "bench.graph").write_text(graph(READ_SALES, write % ("book.xlsx", options)))
            if not options:
                timed([corvanta, "run", "bench.graph"], folder)
        shutil.copyfile(folder / "book.xlsx", folder / "peer.xlsx")
        print(f"xlsx_append: {ADDED:,} rows to {args.rows:,}")
        ours = report("corvanta", [timed([corvanta, "run", "bench.graph"], folder) for _ in range(args.runs)])
        if args.peer:
            theirs = report("openpyxl", [timed([sys.executable, "-c", PEER], folder)])
            print(f"  {theirs / ours:.0f} times the peer's speed, in CPU time")


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Time whole programs, file in to file out: bench/run.py BIN [--rows N] [--runs N] [JOB...]

Each job is a graph that "corvanta run" runs and, where there is one, a peer that does the same job from the same
file. Both run in turn; the figures are medians. Inputs are made anew from a fixed seed and lie in the page cache.
"""
import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

BENCH = pathlib.Path(__file__).resolve().parent
SALES_TYPES = "K,K,F,F,F,U,U,U,U,U"


def graph(*actions):
    """A chain of actions, each linked to the next."""
    lines = [f"<action id='a{i}'>{action}</action>" for i, action in enumerate(actions)]
    lines += [f"<link from='a{i}:0' to='a{i + 1}:0'/>" for i in range(len(actions) - 1)]
    return "<graph version='4.11'>\n" + "\n".join(lines) + "\n</graph>\n"


READ_SALES = f"<readCSV fileName='sales.csv' types='{SALES_TYPES}'/>"

LINE_MEMBERS = ["id", "quantity", "price", "discount", "total", "city", "product", "customer", "comment", "day"]
LINE_ITEMS = "".join(f"<e name='{name}' path='{name}'/>" for name in LINE_MEMBERS)
READ_ORDERS = ("<readJSON fileName='orders.json'><Level initialPath='orders'><e name='order' path='order'/>"
               "<e name='name' path='buyer/name'/><e name='city' path='buyer/city'/></Level>"
               "<Level initialPath='lines'>" + LINE_ITEMS.replace("name='city'", "name='lineCity'")
               + "</Level></readJSON>")
DUCKDB_ORDERS = ("COPY (WITH o AS (SELECT unnest(orders) AS o FROM read_json('orders.json', maximum_object_size=2000000000)), "
                 'l AS (SELECT o."order", o.buyer.name, o.buyer.city, unnest(o.lines) AS l FROM o) '
                 'SELECT "order", name, city, ' + ", ".join(f"l.{name}" for name in LINE_MEMBERS)
                 + " FROM l) TO 'peer.csv' (HEADER)")

PAGE_ITEMS = "".join(f"<e name='{name}' path='[{i}]'/>" for i, name in enumerate(LINE_MEMBERS, 1))

# name: (what it does, graph, output, peer program of the bin folder with its arguments or None, peer's output)
JOBS = {
    "csv_csv": ("CSV through a pass-through action to CSV",
                graph(READ_SALES, "<writeCSV fileName='first.csv'/>", "<writeCSV fileName='second.csv'/>"),
                "second.csv", None, None),
    "xlsx_write": ("CSV to a new workbook; peer: libxlsxwriter, constant memory",
                   graph(READ_SALES, "<writeExcel fileNameDestination='ours.xlsx' dateFormat='yyyy-MM-dd'>"
                                     "<ToDate><s>day</s></ToDate></writeExcel>"),
                   "ours.xlsx", ["xlsxwriter_peer", "sales.csv", "peer.xlsx"], "peer.xlsx"),
    "dbf_read": ("dBase table to CSV; peer: ogr2ogr",
                 graph("<ReadXBF fileName='sales.dbf'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                 ["ogr2ogr", "-f", "CSV", "peer.csv", "sales.dbf", "-oo", "ENCODING=CP1252"], "peer.csv"),
    "parquet_write": ("CSV to Parquet; peer: DuckDB without dictionaries, which is what we write",
                      graph(READ_SALES, "<writeParquet file='ours.parquet'/>"), "ours.parquet",
                      ["duckdb", "-c", "COPY (SELECT * FROM 'sales.csv') TO 'peer.parquet' "
                                       "(COMPRESSION snappy, DICTIONARY_SIZE_LIMIT 1)"], "peer.parquet"),
    "json_write": ("CSV to JSON; peer: a plain loop that formats the same rows",
                   graph(READ_SALES, "<writeJSON fileName='ours.json'/>"),
                   "ours.json", ["text_peer", "json", "sales.csv", "peer.json"], "peer.json"),
    "xml_write": ("CSV to XML; peer: a plain loop that formats the same rows",
                  graph(READ_SALES, "<writeXML fileName='ours.xml' charMode='1'/>"),
                  "ours.xml", ["text_peer", "xml", "sales.csv", "peer.xml"], "peer.xml"),
    "json_read": ("JSON array of objects to CSV; peer: DuckDB",
                  graph(f"<readJSON fileName='sales.json'><Level>{LINE_ITEMS}</Level></readJSON>",
                        "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                  ["duckdb", "-c", "COPY (SELECT * FROM read_json('sales.json')) TO 'peer.csv' (HEADER)"], "peer.csv"),
    "jsonl_read": ("JSON Lines to CSV; peer: DuckDB",
                   graph(f"<readJSON fileName='sales.jsonl'><Level>{LINE_ITEMS}</Level></readJSON>",
                         "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                   ["duckdb", "-c", "COPY (SELECT * FROM read_json('sales.jsonl')) TO 'peer.csv' (HEADER)"], "peer.csv"),
    "json_nested": ("lines of nested orders to CSV; peer: simdjson",
                    graph(READ_ORDERS, "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                    ["simdjson_peer", "orders.json", "peer.csv"], "peer.csv"),
    "json_nested_duckdb": ("lines of nested orders to CSV; peer: DuckDB",
                           graph(READ_ORDERS, "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                           ["duckdb", "-c", DUCKDB_ORDERS], "peer.csv"),
    "xml_read": ("XML to CSV; peer: libxml2, SAX",
                 graph("<readXML fileName='sales.xml'><Level initialPath='sales' subtagName='row'>"
                       + LINE_ITEMS.replace("path='id'", "path='@id'") + "</Level></readXML>", "<writeCSV fileName='ours.csv'/>"),
                 "ours.csv", ["libxml2_peer", "xml", "sales.xml", "peer.csv"], "peer.csv"),
    "html_read": ("a page with a table, a fifth of the rows, to CSV; peer: libxml2, tree",
                  graph(f"<readXML fileName='sales.html'><Level initialPath='html/body/table/tbody' subtagName='tr'>{PAGE_ITEMS}"
                        "</Level></readXML>", "<writeCSV fileName='ours.csv'/>"),
                  "ours.csv", ["libxml2_peer", "html", "sales.html", "peer.csv"], "peer.csv"),
}

# Inputs besides sales.csv, by the job that reads them: the file, and the command that prints it.
INPUTS = {
    "dbf_read": ("sales.dbf", "make_dbf.py", "sales.csv"),
    "json_read": ("sales.json", "make_json.py", "sales.csv", "array"),
    "jsonl_read": ("sales.jsonl", "make_json.py", "sales.csv", "lines"),
    "json_nested": ("orders.json", "make_json.py", "sales.csv", "orders"),
    "json_nested_duckdb": ("orders.json", "make_json.py", "sales.csv", "orders"),
    "xml_read": ("sales.xml", "make_sales", "{rows}", "xml"),
    "html_read": ("sales.html", "make_sales", "{rows}", "html"),
}


def timed(command, folder):
    """Wall seconds, CPU seconds and peak memory (MiB) of one run."""
    begin = time.monotonic()
    process = subprocess.Popen(command, cwd=folder)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command[0]} ended with status {process.returncode}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def report(who, runs, rows, input_bytes, output):
    wall, cpu, memory = (statistics.median(column) for column in zip(*runs))
    print(f"  {who:10} {wall:7.2f} s  cpu {cpu:6.2f} s  {memory:7.1f} MiB  {rows / wall:12,.0f} rows/s"
          f"  {input_bytes / wall / 1e6:7.1f} MB/s in  {output.stat().st_size / 1e6:8.1f} MB out")
    return wall


def run_job(name, args, folder, corvanta, bin_folder):
    meaning, text, output, peer, peer_output = JOBS[name]
    (folder / "bench.graph").write_text(text)
    ours, theirs = [], []
    rows = args.rows // 5 if name == "html_read" else args.rows
    table = folder / "sales.csv"
    if name in INPUTS:
        file_name, maker, *arguments = INPUTS[name]
        table = folder / file_name
        program = [sys.executable, BENCH / maker] if maker.endswith(".py") else [bin_folder / maker]
        with open(table, "wb") as out:
            subprocess.run([*program, *(argument.format(rows=rows) for argument in arguments)], cwd=folder, stdout=out, check=True)
    peer_program = peer and (shutil.which(peer[0], path=str(bin_folder)) or shutil.which(peer[0]))
    for _ in range(args.runs):
        ours.append(timed([corvanta, "run", "bench.graph", "--progress", "never"], folder))
        if peer_program:
            (folder / peer_output).unlink(missing_ok=True)
            theirs.append(timed([peer_program, *peer[1:]], folder))
    print(f"{name}: {meaning}")
    input_bytes = table.stat().st_size
    wall = report("corvanta", ours, rows, input_bytes, folder / output)
    if peer_program:
        peer_wall = report("peer", theirs, rows, input_bytes, folder / peer_output)
        print(f"  {peer_wall / wall:.1f} times the speed of the peer")
    elif peer is not None:
        print(f"  (no peer: {peer[0]} is not there)")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bin", type=pathlib.Path)
    parser.add_argument("jobs", nargs="*", choices=[*JOBS, []], default=[])
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--runs", type=int, default=3)
    args = parser.parse_args()
    bin_folder = args.bin.resolve()
    with tempfile.TemporaryDirectory(prefix="corvanta_bench_") as name:
        folder = pathlib.Path(name)
        with open(folder / "sales.csv", "wb") as table:
            subprocess.run([bin_folder / "make_sales", str(args.rows)], stdout=table, check=True)
        for job in args.jobs or JOBS:
            run_job(job, args, folder, str(bin_folder / "corvanta"), bin_folder)


if __name__ == "__main__":
    main()

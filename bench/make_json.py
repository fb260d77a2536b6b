#!/usr/bin/python3
"""Print the benchmark table as JSON: make_json.py sales.csv array|lines|orders

array and lines: one object per row, in one array or one per line. orders: the rows as lines of orders of one to eight,
{"exported": ..., "orders": [{"order": 0, "buyer": {"name": ..., "city": ...}, "lines": [{...}, ...]}, ...]}.
"""
import csv
import itertools
import json
import sys

TYPES = "KKFFFUUUUU"


def records(path):
    with open(path, encoding="utf-8", newline="") as table:
        rows = csv.reader(table)
        names = next(rows)
        for row in rows:
            yield {name: cell if letter == "U" else json.loads(cell)
                   for name, cell, letter in zip(names, row, TYPES) if cell not in ("", "nan", "inf", "-inf")}


def orders(rows):
    for number in itertools.count():
        lines = list(itertools.islice(rows, 1 + number * 7 % 8))
        if not lines:
            return
        buyer = {"name": f"Buyer no. {number % 9973}", "city": lines[0].get("city", "")}
        yield {"order": number, "buyer": buyer, "lines": lines}


def write_list(out, items):
    for number, item in enumerate(items):
        out.write((",\n" if number else "") + json.dumps(item, ensure_ascii=False, separators=(",", ":")))


def main():
    path, kind = sys.argv[1:]
    out = open(sys.stdout.fileno(), "w", encoding="utf-8", closefd=False)
    if kind == "lines":
        for record in records(path):
            out.write(json.dumps(record, ensure_ascii=False, separators=(",", ":")) + "\n")
    elif kind == "array":
        out.write("[")
        write_list(out, records(path))
        out.write("]\n")
    else:
        out.write('{"exported":"2026-01-01","orders":[')
        write_list(out, orders(records(path)))
        out.write("]}\n")
    out.flush()


if __name__ == "__main__":
    main()

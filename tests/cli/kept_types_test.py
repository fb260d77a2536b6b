#!/usr/bin/python3
"""Types of columns from format to format: kept_types_test.py CORVANTA [TEST]...

Written workbooks and JSON files are compared with what openpyxl and Python's json see.
"""
import datetime
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import openpyxl

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())

TYPED = """b,i,n,d,t,c,s
true,-5,4000000000,2026-01-31,2026-01-31T04:30:05.25,04:30:05,true
false,9007199254740993,12,1999-12-31,2026-02-01,23:59:59.5,007
,,,,,,
"""
TYPES = ("--reader", "types=U,U,F,U,U,U,U")
LISTS = ("--writer", "ToBoolean=b", "--writer", "ToInteger=i\nn", "--writer", "ToDate=d", "--writer", "ToDateTime=t", "--writer", "ToTime=c")
# Timestamps have a time, also at midnight.
READ_BACK = TYPED.replace("2026-02-01,", "2026-02-01T00:00:00,")


class Types(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_types_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        (self.folder / "in.csv").write_text(TYPED)
        self.convert("in.csv", "in.parquet", *TYPES, *LISTS)

    def convert(self, *words, status=0):
        done = subprocess.run([CORVANTA, "convert", *words], cwd=self.folder, capture_output=True, timeout=120, check=False)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr.decode()}")
        return done.stderr.decode()

    def graph_of(self, *words):
        done = subprocess.run([CORVANTA, "convert", "--print-graph", *words], cwd=self.folder, capture_output=True, timeout=120, check=True)
        return "".join(done.stdout.decode().split())

    def text(self, name):
        return (self.folder / name).read_text()

    def test_parquet_keeps_its_types(self):
        self.assertEqual(self.convert("in.parquet", "again.parquet"), "")
        graph = self.graph_of("in.parquet", "again.parquet")
        for names in ("<ToBoolean><s>b</s>", "<ToInteger><s>i</s><s>n</s>", "<ToDate><s>d</s>", "<ToDateTime><s>t</s>", "<ToTime><s>c</s>"):
            self.assertIn(names, graph)
        self.convert("again.parquet", "out.csv")
        self.assertEqual(self.text("out.csv"), READ_BACK)

    def test_one_odd_value_makes_a_text(self):
        (self.folder / "nano.csv").write_text("t\n2026-01-31T04:30:05\n")
        self.convert("nano.csv", "micro.parquet", "--writer", "ToDateTime=t", "--writer", "codec=1", "--writer", "dictionaryPages=0",
                     "--writer", "statistics=0")
        self.assertIn("<ToDateTime><s>t</s>", self.graph_of("micro.parquet", "again.parquet"))
        whole = (self.folder / "micro.parquet").read_bytes()
        value = (20484 * 86400 + 16205) * 1000000
        old = value.to_bytes(8, "little")
        self.assertEqual(whole.count(old), 1)
        (self.folder / "late.parquet").write_bytes(whole.replace(old, (2**62).to_bytes(8, "little")))
        self.assertIn("the first is 't', because of '148108-07-06T14:00:27.387904'", self.convert("late.parquet", "again.parquet"))
        self.assertNotIn("ToDateTime", self.graph_of("late.parquet", "again.parquet"))

    def test_integers_without_statistics(self):
        for value, written in (("-9007199254740991", -9007199254740991), ("9007199254740993", "9007199254740993")):
            (self.folder / "one.csv").write_text(f"i\n{value}\n5\n")
            self.convert("one.csv", "one.parquet", "--writer", "ToInteger=i", "--writer", "statistics=0")
            self.convert("one.parquet", "out.xlsx")
            cells = openpyxl.load_workbook(self.folder / "out.xlsx").active["A"]
            self.assertEqual(cells[1].value, written)

    def test_workbooks_have_dates_times_and_booleans(self):
        self.assertEqual(self.convert("in.parquet", "out.xlsx"), "")
        sheet = openpyxl.load_workbook(self.folder / "out.xlsx").active
        rows = [[cell.value for cell in row] for row in sheet.rows]
        self.assertEqual(rows[1], [True, "-5", 4000000000, datetime.datetime(2026, 1, 31),
                                   datetime.datetime(2026, 1, 31, 4, 30, 5, 250000), datetime.time(4, 30, 5), "true"])
        self.assertEqual(rows[2][3:6], [datetime.datetime(1999, 12, 31), datetime.datetime(2026, 2, 1),
                                        datetime.time(23, 59, 59, 500000)])
        self.assertEqual([sheet.cell(2, column).number_format for column in (4, 5, 6)], ["yyyy/mm/dd", "yyyy/mm/dd\\ h:mm:ss", "h:mm:ss"])
        self.assertEqual([sheet.column_dimensions[letter].width for letter in "DEF"], [12, 20, 12])
        self.assertEqual(self.convert("out.xlsx", "back.parquet"), "")
        self.convert("back.parquet", "back.csv")
        # Rows without values at the end of a sheet are not rows.
        self.assertEqual(self.text("back.csv"), READ_BACK.removesuffix(",,,,,,\n"))

    def test_json_has_bare_numbers_and_booleans(self):
        self.assertEqual(self.convert("in.parquet", "out.json"), "")
        rows = json.loads(self.text("out.json"))
        self.assertEqual(rows[0], {"b": True, "i": -5, "n": 4000000000, "d": "2026-01-31", "t": "2026-01-31T04:30:05.25",
                                   "c": "04:30:05", "s": "true"})
        self.assertEqual(rows[1]["i"], 9007199254740993)
        self.assertEqual(list(rows[2].values()), [None] * 7)

    def test_values_of_another_type_are_errors(self):
        said = self.convert("in.csv", "out.parquet", *TYPES, "--writer", "ToInteger=i\ns", status=1)
        self.assertIn("the value 'true' of the column 's' in row 1 is not a whole number of 64 bits; write the column as text, "
                      "without it in ToInteger or with logicalTypes='0' (convert: --types text)", said)

    def test_names_that_change(self):
        (self.folder / "names.csv").write_text("a b,Größe,ok\n1,2,3\n")
        self.assertIn("2 column names are changed to fit the format: 'a b' to 'a_b', 'Größe' to 'Gro_e'",
                      self.convert("names.csv", "out.sas7bdat"))
        self.assertIn("1 column name is changed to fit the format: 'a b' to 'a_b'", self.convert("names.csv", "out.xml"))


if __name__ == "__main__":
    unittest.main()

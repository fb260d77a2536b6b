#!/usr/bin/python3
"""The types that convert and schema find in files of texts: types_test.py CORVANTA"""
import csv
import datetime
import json
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import threading
import unittest
import zipfile

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_types_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def put(self, name, text):
        (self.folder / name).write_bytes(text.encode() if isinstance(text, str) else text)

    def read(self, name):
        return (self.folder / name).read_text(encoding="utf-8")

    def corvanta(self, *words, status=0, **options):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, text=True, timeout=60, check=False, **options)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr}")
        return done

    def types(self, name, *words):
        """NAME=TYPE LETTER of each column."""
        columns = json.loads(self.corvanta("schema", name, "--json", *words).stdout)
        return [f"{column['name']}={column['type']} {column['letter']}" for column in columns]

    def fifo(self, name, data):
        """A pipe with the data."""
        os.mkfifo(self.folder / name)

        def write():
            with open(self.folder / name, "wb") as pipe:
                pipe.write(data)
        threading.Thread(target=write, daemon=True).start()


class Found(Case):
    def test_csv(self):
        self.put("in.csv", "int,big,neg,dec,bool,day,at,time,id,long,plus,sep,none,mix\n"
                           "1,4294967294,-1,1.50,true,2026-01-31,2026-01-31T04:30,04:30,007,12345678901234567,+1,\"1,000\",,1\n"
                           ",5,2,1e3,false,2026-02-01,2026-02-01,04:30:05.25,8,1,2,2,,x\n")
        self.assertEqual(self.types("in.csv"), [
            "int=integer K", "big=integer F", "neg=integer F", "dec=decimal F", "bool=boolean U", "day=date U", "at=datetime U",
            "time=time U", "id=text U", "long=text U", "plus=text U", "sep=text U", "none=text U", "mix=text U"])
        self.assertEqual(set(self.types("in.csv", "--types", "text")), {f"{name}=text U" for name in self.read("in.csv").splitlines()[0].split(",")})

    def test_the_value_that_decides_is_named(self):
        self.put("in.csv", "code,n,day\n1,1,2026-01-31\n2,,2026-02-01\n007,n/a,2026-02-02\n")
        self.assertEqual(self.corvanta("schema", "in.csv", "-v").stdout,
                         "code\tU\n    text because of '007' in row 3 (line 4); the values before it: integer\n"
                         "n\tU\n    text because of 'n/a' in row 3 (line 4); the values before it: integer\n"
                         "day\tU\n    date\n")
        columns = json.loads(self.corvanta("schema", "in.csv", "-v", "--json").stdout)
        self.assertEqual(columns[0]["decidedBy"], {"value": "007", "place": "row 3 (line 4)", "typeBefore": "integer"})
        self.put("in.json", '[{"a":1},\n{"a":"x"}]')
        self.assertIn("text because of 'x' in row 2 (line 2, column", self.corvanta("schema", "in.json", "-v").stdout)

    def test_what_the_reader_makes_of_a_field_decides(self):
        self.put("in.csv", "day,n\n31.01.2026,-1\n-,2\n01.02.2026,3\n")
        settings = ["--reader", "dateFormat=day=dd.MM.yyyy", "--reader", "nullValues=-"]
        self.assertEqual(self.corvanta("schema", "in.csv", "-v", *settings).stdout, "day\tU\n    date\nn\tF\n    integer\n")
        self.corvanta("convert", "in.csv", "out.parquet", *settings)
        self.assertEqual(self.types("out.parquet"), ["day=date U", "n=integer F"])
        self.corvanta("convert", "in.csv", "out.xlsx", *settings)
        self.corvanta("convert", "out.xlsx", "again.parquet")
        self.assertEqual(self.types("again.parquet"), ["day=date U", "n=integer F"])

    def test_equal_names(self):
        self.put("in.csv", "a,a,a_2,b\n1,2,x,3\n")
        self.assertIn("two columns are named 'a'; uniqueNames='1' of readCSV (convert: --reader uniqueNames=1) numbers them",
                      self.corvanta("convert", "in.csv", "out.json", status=1).stderr)
        self.corvanta("convert", "in.csv", "out.json", "--reader", "uniqueNames=1")
        self.assertEqual(json.loads(self.read("out.json")), [{"a": 1, "a_2": 2, "a_2_2": "x", "b": 3}])

    def test_lines_before_the_names(self):
        for before in ("sep=|\n", "\n\r\n", "\ufeffsep=|\r\n", "\r\nsep=|\r\n"):
            self.put("in.csv", before + "a,b|c\n1|2\n")
            self.assertEqual(self.types("in.csv"), ["a,b=integer K", "c=integer K"], before)
        self.put("in.csv", "\nsep=|\n1|2\n")
        self.assertEqual(self.types("in.csv", "--reader", "skipRows=1", "--reader", "ragged=fill"), ["sep==integer K", "=integer K"])
        self.put("in.csv", "sep=\n1\n")
        self.assertEqual(self.types("in.csv"), ["sep==integer K"])

    def test_lines_that_end_with_carriage_returns(self):
        for name, separator in (("in.csv", ";"), ("in.tsv", "\t")):
            self.put(name, f'a{separator}b\r1{separator}"x\ry"\r2{separator}z\r'.encode())
            self.assertEqual(self.types(name), ["a=integer K", "b=text U"])
            self.corvanta("convert", name, "out.csv")
            self.assertEqual((self.folder / "out.csv").read_bytes(), b'a,b\n1,"x\ry"\n2,z\n')
        self.put("bad.csv", b"a,b\r1,2\r3\r")
        self.assertIn("line 3: 1 field instead of 2; ragged='fill' (convert: --reader ragged=fill) reads such lines",
                      self.corvanta("convert", "bad.csv", "out.csv", status=1).stderr)

    def test_types_of_several_inputs(self):
        self.put("a.csv", "n,d,e,t\n1,2026-01-01,,x\n")
        self.put("b.csv", "n,d,e,t\n-5,2026-01-02T10:00,7,5\n")
        self.put("c.csv", "n,d,e,t\n,,,\n")
        for inputs in (["a.csv", "b.csv", "c.csv"], ["c.csv", "a.csv", "b.csv"]):
            self.corvanta("convert", *inputs, "out.parquet")
            self.assertEqual(self.types("out.parquet"), ["n=integer F", "d=datetime U", "e=integer K", "t=text U"])

    def test_columns_with_zones_in_some_values(self):
        self.put("utc.csv", "at,d,n\n2026-01-01T10:00:00Z,2026-01-01T10:00Z,2026-01-02T10:00Z\n")
        self.put("local.csv", "at,d,n\n2026-01-01 09:00,2026-01-01,\n")
        self.put("one.csv", "at\n2026-01-01T10:00:00Z\n2026-01-01T09:00\n")
        said = "text, because only some of the times end with Z; the first is 'at', because of"
        for inputs, text in ((["utc.csv", "local.csv"], f"2 columns are {said} 'local.csv'"), (["local.csv", "utc.csv"], f"2 columns are {said} 'utc.csv'"),
                             (["one.csv"], f"1 column is {said} '2026-01-01T09:00' in row 2 (line 3) of 'one.csv'")):
            self.assertIn(text, self.corvanta("convert", *inputs, "out.parquet").stderr)
            self.assertEqual(self.types("out.parquet")[0], "at=text U")
        self.corvanta("convert", "utc.csv", "local.csv", "out.parquet", "--sort", "n")
        self.assertEqual(self.types("out.parquet")[2], "n=datetime U")
        self.corvanta("convert", "utc.csv", "utc.parquet")
        self.corvanta("convert", "local.csv", "local.parquet")
        self.assertIn(f"2 columns are {said} 'local.parquet'", self.corvanta("convert", "utc.parquet", "local.parquet", "out.xlsx").stderr)
        for words in (["utc.csv", "local.csv"], ["utc.csv"]):
            self.assertNotIn("end with Z", self.corvanta("convert", *words, "out.csv" if len(words) > 1 else "out.parquet").stderr)

    def test_only_written_columns_are_reported(self):
        self.put("in.csv", "id,b,zip,at\n1,TRUE,01234,2026-01-01T10:00Z\n2,false,x,2026-01-01\n3,True,9,2026-01-01\n")
        for name in ("out.json", "out.parquet", "out.xlsx", "out.sas7bdat"):
            self.assertEqual(self.corvanta("convert", "in.csv", name, "--select", "id", "--where", "b = true", "--sort", "-at").stderr, "", name)
        self.corvanta("convert", "in.csv", "out.json", "--select", "id,b", "--rename", "b=c")
        self.assertEqual(json.loads(self.read("out.json"))[0], {"id": 1, "c": True})

    def test_values_of_json_and_ranges(self):
        self.put("in.csv", "b,at\nTRUE,2026-01-01 10:00\nfalse,2026-01-01T09:00\n")
        self.assertEqual([row["b"] for row in json.loads(self.corvanta("head", "in.csv", "--json").stdout)], [True, False])
        self.assertEqual([line.split()[-2:] for line in self.corvanta("stats", "in.csv").stdout.splitlines()[2:3]], [["false", "TRUE"]])
        self.assertIn("2026-01-01T09:00  2026-01-01 10:00", self.corvanta("stats", "in.csv").stdout)

    def test_zones_that_are_lost_are_reported(self):
        self.put("in.csv", "at\n2026-01-01T10:00:00Z\n2026-01-01T11:00:00Z\n")
        for name, text in (("out.xlsx", "2 times of column 'at' are written without the zone; the first is '2026-01-01T10:00:00Z' in row 1"),
                           ("out.sas7bdat", "2 times of the column 'at' are written without the zone Z; the first is in row 1"),
                           ("out.parquet", ""), ("out.json", "")):
            said = self.corvanta("convert", "in.csv", name).stderr
            self.assertIn(text, said)
            self.assertEqual("zone" in said, text != "")

    def test_numbers_that_stay_texts_are_reported(self):
        self.put("in.csv", "x,n,zip\n0.30000000000000004,1,01234\n4,2,1\n10,-,2\n")
        note = ("2 columns of 'in.csv' have numbers but are text; the first is 'x', because of '0.30000000000000004' in row 1 (line 2) "
                "(--types with one letter for each column, such as K,F,U, reads numbers)")
        self.assertIn(note, self.corvanta("convert", "in.csv", "out.xlsx").stderr)
        for words in ([], ["--sort", "-x"], ["--sort", "-x", "--types", "F,U,U"]):
            self.assertEqual(self.corvanta("convert", "in.csv", "out.csv", *words).stderr, "")
        self.assertEqual([line.split(",")[0] for line in self.read("out.csv").splitlines()], ["x", "10", "4", "0.30000000000000004"])

    def test_dates_that_stay_texts_are_reported(self):
        self.put("in.csv", "day,at,n\n2026-02-28,10:00,1\n2026-02-30,11:00,2\n,-,\n")
        self.put("in.json", '[{"day":"2026-02-28"},{"day":"2026-02-30"}]')
        for name, note in (("in.csv", "2 columns of 'in.csv' have dates or times but are text; the first is 'day', because of '2026-02-30' in row 2 (line 3)\n"),
                           ("in.json", "1 column of 'in.json' has dates or times but is text; the first is 'day', because of '2026-02-30' in row 2 (line 1, column 25)\n")):
            for out in ("out.xlsx", "out.parquet"):
                self.assertEqual(self.corvanta("convert", name, out).stderr, f"Info: {note}")
            self.assertEqual(self.corvanta("convert", name, "out.csv").stderr, "")

    def test_json_tokens_are_types(self):
        self.put("in.json", '[{"n":1,"d":1.5,"s":"12","b":true,"day":"2026-01-31","e":"2026\\u002d01-31","x":12345678901234567890,"m":1},'
                            '{"n":null,"d":2,"s":"13","b":null,"day":null,"e":"2026-01-31","x":1,"m":"1"}]')
        self.assertEqual(self.types("in.json"), ["n=integer K", "d=decimal F", "s=text U", "b=boolean U", "day=date U", "e=date U",
                                                 "x=decimal U", "m=text U"])
        self.corvanta("convert", "in.json", "out.parquet")  # an integer of more than 64 bits is a text there
        self.assertIn("x=text U", self.types("out.parquet"))
        self.assertNotIn("null", self.corvanta("head", "in.json").stdout)
        self.corvanta("convert", "in.json", "out.csv")
        self.assertEqual(self.read("out.csv").splitlines()[2], ",2,13,,,2026-01-31,1,1")
        self.assertIn("null", self.corvanta("head", "in.json", "--reader", "nullIsMissing=0").stdout)

    def test_json_values_are_copied_as_they_are(self):
        values = ['1', '"x"', '""', 'null', 'true', '1.50', '"12"', '"null"', '1e3', '-0', '12345678901234567890', '"q\\u0001\\"\\\\\\/\\n"', '"\u00e9\U0001f600"']
        self.put("in.json", "[" + ",".join(f'{{"m":{value},"k":{i}}}' for i, value in enumerate(values)) + "]")
        self.put("more.jsonl", '{"k":-1,"m":"y","z":[false,"2"]}\n')
        wanted = [json.loads(value) for value in values]
        for words in (("in.json", "out.jsonl"), ("in.json", "out.jsonl", "--sort", "-k", "--rename", "m=n"), ("in.json", "out.jsonl", "--where", "k >= 0"),
                      ("in.json", "more.jsonl", "out.jsonl", "--union", "--add-file-name", "--limit", "13")):
            self.corvanta("convert", *words)
            found = [list(json.loads(line).values())[0] for line in self.read("out.jsonl").splitlines()]
            self.assertEqual([repr(value) for value in found], [repr(value) for value in (wanted[::-1] if "--sort" in words else wanted)], words)
        self.assertIn('"in.json"', self.read("out.jsonl").replace(str(self.folder.resolve()) + "/", ""))
        self.assertIn('{"m":1.50,"k":5}', self.corvanta("convert", "in.json", "-", "--to", "jsonl").stdout)
        # Compared as texts, and not JSON.
        self.put("odd.json", '[{"m":"b"},{"m":7},{"m":NaN},{"m":012},{"m":"t\tb"}]')
        self.assertEqual(self.corvanta("convert", "odd.json", "-", "--to", "jsonl").stdout, '{"m":"b"}\n{"m":7}\n{"m":"NaN"}\n{"m":"012"}\n{"m":"t\\tb"}\n')
        self.assertEqual(self.corvanta("convert", "odd.json", "-", "--to", "jsonl", "--where", "\"m\" = 'b'").stdout, '{"m":"b"}\n')
        self.put("float.json", '[{"a":1.256}]')
        self.assertEqual(self.corvanta("convert", "float.json", "-", "--to", "jsonl", "--writer", "floatToString=%.2f").stdout, '{"a":1.26}\n')
        self.assertEqual(self.corvanta("convert", "in.json", "-", "--to", "jsonl", "--types", "text", "--limit", "1").stdout, '{"m":"1","k":"0"}\n')

    def test_numbers_of_records_have_types(self):
        self.put("in.json", '{"a":{"x":[{"n":1},{"n":2}],"y":[{"n":3}]}}')
        graph = ("<graph><action id='in'><readJSON fileName='in.json' outputSubTags='1' types='%s'><Level initialPath='a'><e path='' number='1' name='i'/>"
                 "</Level><Level initialPath=''><e path='' number='1' name='j'/><e path='n' name='n'/></Level></readJSON></action>"
                 "<action id='out'><writeCSV fileName='out.csv'/></action><link from='in:0' to='out:0'/></graph>")
        for letters in ("", "U,K,U,F,K", "J,J,J,U,J"):
            self.put("g.graph", graph % letters)
            self.corvanta("run", "g.graph")
            name, none = ('"""%s"""', '""""""') if "J" in letters else ("%s", '""')
            self.assertEqual(self.read("out.csv").splitlines()[1:], [f"{name % parent},{number},{none},{n},{n}" for parent, number, n in
                                                                     (("x", 1, 1), ("x", 1, 2), ("y", 2, 3))], letters)
        self.put("g.graph", graph % "K")
        self.assertIn("'x' is not of type K", self.corvanta("run", "g.graph", status=1).stderr)

    def test_levels_in_levels(self):
        self.put("in.json", '{"orders":[{"id":1,"lines":[{"s":2.5},{"s":3}]},{"id":2,"lines":[{"s":4}]}]}')
        self.assertEqual([text.split("=")[1] for text in self.types("in.json")], ["integer K", "decimal F"])
        self.put("in.jsonl", '{"a":1}\n{"a":2}\n')
        self.assertEqual(self.types("in.jsonl"), ["a=integer K"])

    def test_xml_and_html(self):
        self.put("in.xml", "<l><r k='1'><d>2026-01-31</d><p>1.5</p><t>a&amp;b</t></r><r k='2'><d>2026-02-01</d><p>&#50;</p><t/></r></l>")
        self.assertEqual([text.split("=")[1] for text in self.types("in.xml")], ["integer K", "date U", "decimal F", "text U"])
        self.put("in.html", "<table><tr><th>a</th><th>b</th></tr><tr><td>1</td><td><b>x</b></td></tr><tr><td>2</td><td>3</td></tr></table>")
        self.assertEqual(self.types("in.html"), ["a=integer K", "b=text U"])

    def test_dbase(self):
        fields = [(b"C", b"C", 10), (b"N", b"N", 8), (b"D", b"D", 8), (b"L", b"L", 1), (b"T", b"T", 8)]
        at = struct.pack("<II", datetime.date(2026, 1, 31).toordinal() + 1721425, 16205000)
        rows = [b" " + b"2.50".ljust(10) + b"7.25".rjust(8) + b"20260131" + b"T" + at,
                b"*" + b"x".ljust(10) + b"x".rjust(8) + b"20260131" + b"T" + at,
                b" " + b"1".ljust(10) + b"12".rjust(8) + b"00000000" + b"F" + bytes(8)]
        header = struct.pack("<BxxxIHH20x", 3, len(rows), 32 + 32 * len(fields) + 1, len(rows[0]))
        header += b"".join(struct.pack("<11sc4xB15x", name, kind, size) for name, kind, size in fields) + b"\r"
        self.put("in.dbf", header + b"".join(rows))
        self.assertEqual(self.types("in.dbf"), ["C=decimal F", "N=decimal F", "D=date U", "L=boolean U", "T=datetime U"])
        self.corvanta("convert", "in.dbf", "out.xlsx")
        self.assertEqual(self.types("out.xlsx"), ["C=decimal F", "N=decimal F", "D=date U", "L=boolean U", "T=datetime U"])
        self.corvanta("convert", "in.dbf", "out.csv", "--reader", "types=F,F")
        self.put("cut.dbf", header[:20])
        self.assertIn("The columns of 'cut.dbf' are texts: the file could not be examined",
                      self.corvanta("convert", "cut.dbf", "cut.xlsx", status=1).stderr)
        self.assertEqual(self.read("out.csv"), "C,N,D,L,T\n2.5,7.25,20260131,1,20260131 04:30:05\n1,12,00000000,0,\n")
        self.assertIn("record 1, column 'N': '7.25' is not of type K",
                      self.corvanta("convert", "in.dbf", "out.csv", "--reader", "types=F,K", status=1).stderr)

    def test_damaged_files_with_types(self):
        for name, beginning in (("cut.xls", b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"), ("cut.parquet", b"PAR1"), ("cut.sav", b"$FL2"), ("cut.dta", b"<stata_dta>")):
            self.put(name, beginning + bytes(600))
            self.assertIn(f"Dates and booleans of '{name}' are texts or numbers: the file could not be examined",
                          self.corvanta("convert", name, "cut.xlsx", status=1).stderr)
        with zipfile.ZipFile(self.folder / "cut.zip", "w") as archive:
            archive.write(self.folder / "cut.sav", "cut.sav")
        self.assertIn("of 'cut.zip@cut.sav' are texts or numbers", self.corvanta("convert", "cut.zip@cut.sav", "cut.xlsx", status=1).stderr)

    def test_types_in_a_pipe(self):
        self.put("in.csv", "day\n2026-01-31\n")
        self.corvanta("convert", "in.csv", "in.parquet")
        with subprocess.Popen(["cat", self.folder / "in.parquet"], stdout=subprocess.PIPE) as cat:
            self.assertIn("Dates and booleans of '-' are texts or numbers: the file could not be examined",
                          self.corvanta("convert", "-", "out.xlsx", "--from", "parquet", stdin=cat.stdout).stderr)
        self.assertEqual(self.types("out.xlsx"), ["day=text U"])

    def test_encodings_of_dbase(self):
        header = struct.pack("<BxxxIHH20x", 3, 1, 65, 5) + struct.pack("<11sc4xB15x", b"T", b"C", 4) + b"\r"
        self.put("in.dbf", header + b" " + "\u043c\u0438\u0440".encode("cp866") + b" ")
        for name in ("cp866", "IBM866"):
            self.assertEqual(self.corvanta("convert", "in.dbf", "-", "--to", "csv", "--encoding", name).stdout, "T\n\u043c\u0438\u0440\n")
        said = self.corvanta("convert", "in.dbf", "-", "--to", "csv", "--encoding", "cp866", "--print-graph")
        self.assertIn("The graph needs the option --system-encoding cp866", said.stderr)
        self.assertIn("encoding='1'", said.stdout)
        self.assertIn("--encoding: the encoding 'nope' is unknown", self.corvanta("head", "in.dbf", "--encoding", "nope", status=2).stderr)

    def test_a_sample_is_marked_and_all_rows_can_be_examined(self):
        self.put("in.csv", "a\n" + "1\n" * 200000 + "x\n")
        sample = self.corvanta("schema", "in.csv")
        self.assertEqual(sample.stdout, "a\tK\n")
        self.assertIn("The types of the columns are those of the first rows of 'in.csv' (--all examines all rows)", sample.stderr)
        everything = self.corvanta("schema", "in.csv", "--all", "-v")
        self.assertEqual(everything.stdout, "a\tU\n    text because of 'x' in row 200001 (line 200002); the values before it: integer\n")
        self.assertEqual(self.corvanta("schema", "in.csv", "--all").stderr, "")
        self.put("small.csv", "a\n1\n")
        self.assertEqual(self.corvanta("schema", "small.csv").stderr, "")

    def test_columns_of_one_name_and_damage(self):
        self.put("in.csv", "a,a,b\n1,x,2\n")
        self.assertEqual(self.types("in.csv"), ["a=text U", "a=text U", "b=integer K"])
        self.put("bad.csv", "a,b\n1,2\n3\n")
        self.corvanta("convert", "bad.csv", "out.xlsx", status=1)
        self.assertFalse((self.folder / "out.xlsx").exists())

    def test_patterns_and_pipes(self):
        self.put("p1.json", '[{"a":1}]')
        self.put("p2.json", '[{"a":1.5}]')
        self.assertEqual(self.types("p?.json"), ["a=decimal F"])
        # More than the memory that keeps a pipe.
        rows = 2_000_000
        self.fifo("pipe.json", b"[" + b'{"a":1,"b":"2026-01-31","c":"xxxxx"},\n' * rows + b'{"a":7.5,"b":null,"c":"end"}]')
        self.assertEqual(self.types("pipe.json", "--all"), ["a=decimal F", "b=date U", "c=text U"])
        self.fifo("small.json", b'[{"a":1},{"a":2.5}]')
        self.corvanta("convert", "small.json", "out.xlsx")
        self.assertEqual(self.types("out.xlsx"), ["a=decimal F"])


class Given(Case):
    def test_letters(self):
        self.put("in.csv", "a,b\n007,1\n8,2\n")
        self.assertEqual(self.types("in.csv", "--types", "K,U"), ["a=integer K", "b=text U"])
        self.corvanta("convert", "in.csv", "out.xlsx", "--types", "K,U")
        self.assertEqual(self.corvanta("schema", "out.xlsx").stdout, "a\tK\nb\tU\n")
        self.put("bad.csv", "a,b\nx,1\n")
        self.put("bad.json", '[{"a":1},\n{"a":"x"}]')
        self.put("bad.xml", "<l>\n<r><a>x</a></r>\n<r><a>1</a></r></l>")
        for name, letters, place in (("bad.csv", "K,U", "line 2"), ("bad.json", "F", "line 2"), ("bad.xml", "K", "line 2")):
            error = self.corvanta("convert", name, "bad.xlsx", "--types", letters, status=1).stderr
            for part in (name, place, "column 'a'", "'x' is not of type"):
                self.assertIn(part, error)
            self.assertFalse((self.folder / "bad.xlsx").exists())

    def test_types_of_readers(self):
        self.put("in.json", '[{"a":1,"b":"2.5"},{"a":null,"b":""},{"b":7}]')
        self.corvanta("convert", "in.json", "out.csv", "--reader", "types=K")
        self.assertEqual(self.read("out.csv"), 'a,b\n1,2.5\n,""\n,7\n')
        self.assertIn("only a column of texts (type U) can have this value",
                      self.corvanta("convert", "in.json", "out.csv", "--reader", "types=K,F", status=1).stderr)
        for types, text in (("K,Q", "Error: readJSON: 'Q' is not a column type (K, F, U, J)"), ("K,U,U", "Error: readJSON: 3 column types for 2 columns"),
                            ("K,F", "line 1, column 'b': '' is not of type F"), ("U,U,F,1", "is not a column type")):
            self.assertIn(text, self.corvanta("convert", "in.json", "out.csv", "--reader", f"types={types}", status=1).stderr)
        self.put("big.json", '[{"a":4294967294},{"a":1e400}]')
        self.assertIn("'4294967294' is not of type K", self.corvanta("convert", "big.json", "o.csv", "--reader", "types=K", status=1).stderr)
        self.assertIn("'1e400' is not of type F", self.corvanta("convert", "big.json", "o.csv", "--reader", "types=F", status=1).stderr)

    def test_usage(self):
        self.put("in.csv", "a,b\n1,2\n")
        self.assertIn("--types: 'Q' is not auto, text, or one of the letters K (integer), F (decimal number) and U (text) for each column, such as K,F,U",
                      self.corvanta("schema", "in.csv", "--types", "Q", status=2).stderr)
        self.assertIn("--types: 1 letter for the 2 columns of 'in.csv'", self.corvanta("schema", "in.csv", "--types", "K", status=2).stderr)
        self.corvanta("convert", "in.csv", "in.parquet")
        self.assertIn("--types: the columns of 'in.parquet' have types, and letters are only for files of texts",
                      self.corvanta("schema", "in.parquet", "--types", "K,K", status=2).stderr)

    def test_between_texts_cells_stay_as_they_are(self):
        text = "a,b\n1.50,true\n1e3,\n+1,x\n"
        self.put("in.csv", text)
        for words in ([], ["--types", "auto"]):
            self.corvanta("convert", "in.csv", "out.csv", *words)
            self.assertEqual(self.read("out.csv"), text)
        self.assertNotIn(" types=", self.corvanta("convert", "in.csv", "out.csv", "--print-graph").stdout)
        self.corvanta("convert", "in.csv", "out.csv", "--types", "F,U")
        self.assertEqual(self.read("out.csv"), "a,b\n1.5,true\n1000,\n1,x\n")
        for target in ("bad.csv", "bad.xml"):
            self.assertIn("line 2, column 'a': '1.50' is not of type K",
                          self.corvanta("convert", "in.csv", target, "--types", "K,U", status=1).stderr)
            self.assertFalse((self.folder / target).exists())


class RoundTrip(Case):
    """Random tables as CSV, in another format, and as CSV again have the same values."""

    # The values of each kind are those that every format below can hold.
    MAKERS = {
        "integer": lambda r: str(r.choice([r.randrange(10), r.randrange(-10**14, 10**15), r.randrange(2**32)])),
        "decimal": lambda r: r.choice([f"{r.uniform(-1e6, 1e6):.{r.randrange(1, 5)}f}", f"{r.randrange(1, 999)}e{r.randrange(-30, 30)}", "0.0", ".5"]),
        "boolean": lambda r: r.choice(["true", "false"]),
        "date": lambda r: f"{r.randrange(1901, 2200)}-{r.randrange(1, 13):02}-{r.randrange(1, 29):02}",
        "datetime": lambda r: f"{r.randrange(1901, 2200)}-{r.randrange(1, 13):02}-{r.randrange(1, 29):02}T{r.randrange(24):02}:{r.randrange(60):02}:{r.randrange(60):02}",
        "id": lambda r: r.choice(["007", "+1", "1,000", "12345678901234567", "0x1", "nan", "2026-02-30", "TRUE "]),
        "text": lambda r: "".join(r.choice("abc \u00e9\u20ac\U0001f600\"',;\n<&") for _ in range(r.randrange(1, 9))).strip() or "x",
    }

    def table(self, r):
        kinds = [r.choice(list(self.MAKERS)) for _ in range(r.randrange(1, 8))]
        rows = [["" if r.random() < 0.2 else self.MAKERS[kind](r) for kind in kinds] for _ in range(r.randrange(1, 30))]
        return [[f"c{i} {kind}" for i, kind in enumerate(kinds)]] + [row for row in rows if any(row)]

    @staticmethod
    def same(kind, before, after):
        if kind in ("integer", "decimal") and before and after:
            return float(before) == float(after)
        if kind == "boolean":
            return before.upper() == after.upper()  # workbooks have TRUE and FALSE
        return before == after or (kind == "datetime" and before == after + "T00:00:00")

    def test_csv_through_other_formats(self):
        r = random.Random(11)
        for _ in range(12):
            rows = self.table(r)
            with open(self.folder / "in.csv", "w", encoding="utf-8", newline="") as out:
                csv.writer(out, lineterminator="\n").writerows(rows)
            for extension in ("json", "parquet", "xlsx", "xml"):
                self.corvanta("convert", "in.csv", f"x.{extension}")
                self.corvanta("convert", f"x.{extension}", "back.csv")
                with open(self.folder / "back.csv", encoding="utf-8", newline="") as back:
                    found = list(csv.DictReader(back))
                self.assertEqual(len(found), len(rows) - 1, extension)
                for before, after in zip(rows[1:], found):
                    for name, old in zip(rows[0], before):
                        # JSON and XML have no columns without values, and names of XML no blanks.
                        new = after.get(name, after.get(name.replace(" ", "_"), ""))
                        self.assertTrue(self.same(name.split()[1], old, new), f"{extension} {name}: {old!r} became {new!r}")


if __name__ == "__main__":
    unittest.main()

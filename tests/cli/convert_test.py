#!/usr/bin/python3
"""corvanta convert from every format into every format: convert_test.py CORVANTA CORPUS [TEST]...

What is written is compared with what openpyxl, Python's json, csv and expat, and our own readers see.
"""
import csv
import datetime
import gzip
import io
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

import openpyxl

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CORPUS = pathlib.Path(sys.argv.pop(1))

HEADER = ["id", "a name", "Größe", "note"]
ROWS = [["007", "plain", "1.50", None], ["2", "a<b>&\"c\" 'd'", "1e400", ""], ["3", "tab\tand\r\nlines", "-0", " blanks "],
        ["4", "😀 東京", None, "${HOME} %1"], ["18446744073709551616", "]]>\\", "0.1", "=1+1"]]
NESTED = [{"order": i, "buyer": {"city": f"C{i}"}, "lines": [{"product": f"p{i}{k}", "price": k + 0.25} for k in range(i)]}
          for i in range(1, 4)]


def as_csv(rows):
    """The form that writeCSV has."""
    def field(text):
        if text is None:
            return ""
        return '"' + text.replace('"', '""') + '"' if text == "" or any(c in text for c in ',"\r\n') else text
    return "".join(",".join(field(text) for text in row) + "\n" for row in rows).encode()


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_convert_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.put("in.csv", as_csv([HEADER, *ROWS]))

    def put(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())

    def content(self, name):
        return (self.folder / name).read_bytes()

    def corvanta(self, *words, status=0):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, timeout=120, check=False)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr.decode()}")
        return done

    def convert(self, *words, status=0):
        return self.corvanta("convert", *words, status=status).stderr.decode()

    def convert_cleanly(self, *words):
        said = [line for line in self.convert(*words).splitlines() if " has numbers but is text; " not in line]
        self.assertEqual(said, [])

    def rows_of(self, name):
        return list(csv.reader(io.StringIO(self.content(name).decode(), newline="")))


class Pairs(Case):
    def test_texts_come_back_through_every_format(self):
        for extension in ("tsv", "txt", "json", "parquet", "csv"):
            self.convert_cleanly("in.csv", f"between.{extension}")
            self.convert_cleanly(f"between.{extension}", "back.csv")
            self.assertEqual(self.content("back.csv"), self.content("in.csv"), extension)
        self.assertEqual(self.content("between.tsv").split(b"\n")[0], "\t".join(HEADER).encode())

    def test_xml_is_well_formed_and_comes_back(self):
        self.assertIn("1 column name is changed to fit the format: 'a name' to 'a_name'", self.convert("in.csv", "out.xml"))
        names = ["id", "a_name", "Größe", "note"]
        found = [row.attrib for row in xml.etree.ElementTree.parse(self.folder / "out.xml").getroot()]
        self.assertEqual(found, [{n: text for n, text in zip(names, row) if text is not None} for row in ROWS])
        self.convert_cleanly("out.xml", "back.csv")
        self.assertEqual(self.content("back.csv"), as_csv([names, *ROWS]))

    def test_json_is_what_the_file_says(self):
        self.convert_cleanly("in.csv", "out.json")
        self.assertEqual(json.loads(self.content("out.json")),
                         [dict(zip(HEADER, row)) for row in ROWS])

    def test_workbooks_hold_typed_cells(self):
        self.put("typed.csv", "k,f,t\n4294967293,0.30000000000000004,007\n,1e300,\n0,nan,x\n")
        self.assertIn("1 number of column 'f' is not finite (nan, inf or -inf) and left out; the first is in row 3",
                      self.convert("typed.csv", "book.xlsx", "--reader", "types=K,F,U", "--writer", "sheetName=Data"))
        sheet = openpyxl.load_workbook(self.folder / "book.xlsx")["Data"]
        self.assertEqual([list(row) for row in sheet.values],
                         [["k", "f", "t"], [4294967293, 0.30000000000000004, "007"], [None, 1e300, None], [0, None, "x"]])

    def test_numbers_keep_all_their_digits(self):
        self.put("typed.csv", "k,f,t\n4294967293,0.30000000000000004,007\n,1e+300,\n0,-0.1,true\n")
        self.convert_cleanly("typed.csv", "a.parquet", "--reader", "types=K,F,U")
        self.convert_cleanly("a.parquet", "b.json")
        self.assertEqual(json.loads(self.content("b.json")),
                         [{"k": 4294967293, "f": 0.30000000000000004, "t": "007"}, {"k": None, "f": 1e300, "t": None}, {"k": 0, "f": -0.1, "t": "true"}])
        self.convert_cleanly("b.json", "c.parquet")
        self.convert_cleanly("c.parquet", "d.csv")
        self.assertEqual(self.content("d.csv"), self.content("typed.csv"))
        self.convert_cleanly("a.parquet", "e.xml")
        self.assertIn(b'f="0.30000000000000004"', self.content("e.xml"))

    def test_pipes_are_opened_once(self):
        self.put("in.csv", "a\nx\n")
        for source, target in (("xlsx", "csv"), ("sas7bdat", "xlsx")):
            self.convert("in.csv", f"in.{source}")
            os.mkfifo(self.folder / f"pipe.{source}")
            for words in (["head", f"pipe.{source}"], ["schema", "--json", f"pipe.{source}"], ["convert", f"pipe.{source}", f"out.{target}"]):
                with subprocess.Popen([CORVANTA, *words], cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as process:
                    # The writer ends at once: a second opening finds nothing.
                    (self.folder / f"pipe.{source}").write_bytes(self.content(f"in.{source}"))
                    try:
                        self.assertNotIn(b"Error", process.communicate(timeout=60)[1])
                        self.assertEqual(process.returncode, 0, words)
                    finally:
                        process.kill()
        self.assertEqual([row[0].value for row in openpyxl.load_workbook(self.folder / "out.xlsx").active.rows], ["a", "x"])

    def test_tables_without_rows(self):
        self.put("empty.csv", "a,b\n")
        for extension, content in (("json", b"[]"), ("csv", b"a,b\n"), ("tsv", b"a\tb\n")):
            self.convert_cleanly("empty.csv", f"out.{extension}")
            self.assertEqual(self.content(f"out.{extension}"), content)
        self.convert_cleanly("empty.csv", "out.xml")
        self.assertEqual(len(xml.etree.ElementTree.parse(self.folder / "out.xml").getroot()), 0)
        self.convert_cleanly("empty.csv", "out.parquet")
        self.convert_cleanly("out.parquet", "back.csv")
        self.assertEqual(self.content("back.csv"), b"a,b\n")
        self.convert_cleanly("empty.csv", "out.xlsx")
        self.assertEqual(list(openpyxl.load_workbook(self.folder / "out.xlsx").active.values), [("a", "b")])

    def test_dates_of_workbooks(self):
        self.put("dates.csv", "day,id\n2024-02-29,1\n2024-02-29T06:30,2\n29.2.2024,3\n")
        day, morning = datetime.datetime(2024, 2, 29), datetime.datetime(2024, 2, 29, 6, 30)
        for more, read in (((), (day, morning, None)), (("--writer", "dateFormat="), (day, morning, None)),
                           (("--writer", "dateFormat=d.M.yyyy"), (None, None, day))):
            done = self.convert("dates.csv", "book.xlsx", "--writer", "ToDate=day", *more)
            self.assertIn("of column 'day' do", done)
            cells = openpyxl.load_workbook(self.folder / "book.xlsx").active["A"]
            self.assertEqual(tuple(cell.value for cell in cells[1:]), read)

    def test_a_workbook_without_columns_is_not_written(self):
        self.put("empty.csv", "")
        done = self.convert("empty.csv", "book.xlsx")
        self.assertIn("book.xlsx' is not written: the input has neither columns nor rows.", done)
        self.assertFalse((self.folder / "book.xlsx").exists())

    def test_packed_inputs(self):
        for extension in ("csv", "json", "xml", "parquet"):
            self.convert("in.csv", f"x.{extension}")
            self.convert_cleanly(f"x.{extension}", "plain.csv")
            self.put(f"y.{extension}.gz", gzip.compress(self.content(f"x.{extension}")))
            self.convert_cleanly(f"y.{extension}.gz", "packed.csv")
            self.assertEqual(self.content("packed.csv"), self.content("plain.csv"), extension)

    def test_any_letter_case_and_any_name(self):
        name = "a b'%1\"${x}é&.JSON"
        self.put(name, json.dumps([{"${y}": 1, "b": 2}]))
        self.convert_cleanly(name, "out${z}.CSV")
        self.assertEqual(self.content("out${z}.CSV"), b"${y},b\n1,2\n")
        self.put("page.HTML", "<table><tr><th>a</th></tr><tr><td>1 &nope; <b>2</b></td></tr></table>")
        self.convert_cleanly("page.HTML", "out.csv")
        self.assertEqual(self.content("out.csv"), b"a\n1 &nope; 2\n")
        self.convert_cleanly(str(self.folder / "in.csv"), str(self.folder / "absolute.csv"))
        self.assertEqual(self.content("absolute.csv"), self.content("in.csv"))

    def test_pattern_reads_every_file(self):
        self.put("part1.csv", "")
        self.put("p1.json", '[{"a":1}]')
        self.put("p2.json", '[{"a":2}]')
        self.convert_cleanly("p*.json", "out.csv")
        self.assertEqual(self.content("out.csv"), b"a\n1\n2\n")


class Levels(Case):
    def test_nested_json_gives_a_row_per_inner_record(self):
        expected = [["order", "city", "product", "price"]]
        expected += [[str(o["order"]), o["buyer"]["city"], line["product"], str(line["price"])] for o in NESTED for line in o["lines"]]
        documents = {"a.json": json.dumps(NESTED), "b.json": json.dumps({"orders": NESTED}),
                     "c.jsonl": "\n".join(json.dumps(order) for order in NESTED),
                     "d.xml": "<shop>" + "".join(
                         f"<order><order>{o['order']}</order><buyer><city>{o['buyer']['city']}</city></buyer>"
                         + "".join(f"<lines><product>{k['product']}</product><price>{k['price']}</price></lines>" for k in o["lines"])
                         + "</order>" for o in NESTED) + "</shop>"}
        for name, document in documents.items():
            self.put(name, document)
            self.convert_cleanly(name, "out.csv")
            self.assertEqual(self.rows_of("out.csv"), expected, name)

    def test_what_the_levels_leave_out_is_said(self):
        self.put("in.json", json.dumps({"total": 3, "orders": [{"A": 1, "a": {"B": [2, 3]}, " c ": 4, "k": [{"x": 1}, {"x": 2}],
                                                                "l": [{"y": 5}]}]}))
        said = self.convert("in.json", "out.csv")
        for part in ("Repeated parts of the records that are not read: l", "Values outside of the records that are not read: total",
                     "Warning: names that differ only in letter case are distinguished by their order in each record: a",
                     "Warning: elements whose names no path can express are not read (count in the sample: 1, first ' c ')"):
            self.assertIn(part, said)
        self.put("deep.json", '{"a":' * 70 + "1" + "}" * 70)
        self.assertIn("Warning: elements beyond the limits of the sample are not read (count in the sample: 1, first 'a')",
                      self.convert("deep.json", "out.csv"))
        # Repeated names that differ only in letter case: every one has its column.
        self.put("case.json", '[{"A":1,"A":2,"a":3,"b":{"c":4,"C":5,"C":6}}]')
        self.convert("case.json", "out.csv")
        self.assertEqual(self.rows_of("out.csv"), [["A[0]", "A[1]", "a", "c", "C[0]", "C[1]"], ["1", "2", "3", "4", "5", "6"]])
        # So have attributes, which no index can distinguish, also in records that lack some of them.
        self.put("case.xml", '<r><o A="1" a="2"/><o a="3"/><o b="4" A="5"/></r>')
        self.convert_cleanly("case.xml", "out.csv")
        self.assertEqual(self.rows_of("out.csv"), [["A", "a", "b"], ["1", "2", ""], ["", "3", ""], ["5", "", "4"]])

    def test_text_and_values_next_to_the_records_are_not_records(self):
        error = "\nInternal Server Error 500\n"
        stray = "text outside of the values of file '.*in.json' is not read \\(count: %s, first at line 2, column 1\\)"
        single = "single values among the records of file '.*in.json' give rows without a value \\(count: %s, first at line 2, column 1\\)"
        for document, ids, message in (
                ('[{"id":1},{"id":2}]' + error, ["1", "2"], stray % 1), ('[{"id":1},{"id":2}]\n5\n6', ["1", "2", "", ""], single % 2),
                ('{"id":1}' + error + '{"id":2}', ["1", "2"], stray % 1), ('{"id":1}\n5\n{"id":2}', ["1", "", "2"], single % 1),
                ('{"d":[{"id":1},{"id":2}]}' + error, ["1", "2"], stray % 1), ('{"d":[{"id":1},{"id":2}]}\n5', ["1", "2"], stray % 1),
                ('[{"id":1}]\noops\n{"id":2}\n{"id":3}', ["1", "2", "3"], stray % 1)):
            self.put("in.json", document)
            said = self.convert("in.json", "out.csv")
            self.assertEqual(self.content("out.csv").decode().splitlines(), ["id", *ids], document)
            self.assertRegex(said, message, document)
            self.assertNotRegex(said, "Values outside of the records that are not read: *$", document)
        for document, text in (("5\noops\n6", ["5", "6"]), ("[1,2]\noops", ["1", "2"])):
            self.put("in.json", document)
            self.assertRegex(self.convert("in.json", "out.csv"), stray % 1, document)
            self.assertEqual(self.content("out.csv").decode().splitlines(), ["value", *text], document)
        self.put("in.xml", "<a><i>1</i><i>2</i></a>stray")
        self.assertRegex(said := self.convert("in.xml", "out.csv"), "text outside of the values")
        self.assertNotIn("Values outside", said)
        self.assertEqual(self.rows_of("out.csv"), [["i"], ["1"], ["2"]])

    def test_a_nul_inside_a_document_is_named(self):
        for name, document, line, options in (
                ("in.json", '[{"a":1},\0{"a":2}]', 10, ()), ("in.json", '[{"a":1},\n {"a"\0:2}]', 6, ()),
                ("in.json", '[{"a":1},\n {"a"\0:2}]', 6, ("--reader", "ignoreErrors=1")),
                ("in.json", '[{"a":1},\0{"a":2}]', 10, ("--reader", "ignoreErrors=1")),
                ("in.json", '[{"a":1},{"a":"\0"}' + ' ' * 9_000_000 + ']', 16, ()),
                ("in.xml", "<r><a>1</a>\0<a>2</a></r>", 12, ())):
            self.put(name, document)
            run = self.convert(name, "out.csv", *options, status=0 if options else 1)
            self.assertIn("structure error", run)
            left = len(document.partition("\0")[2])
            self.assertRegex(run, rf"ends at a NUL character \(line \d, column {line}\); what follows is not read \(count: {left} bytes\)")

    def test_values_that_repeat_only_after_the_sample_are_counted(self):
        self.put("late.jsonl", '{"id":1}\n{"id":2,"id":3}\n')
        said = self.convert("late.jsonl", "out.csv", "--reader", "autoFillNRows=1")
        self.assertRegex(said, r"path 'id' in file '.*late.jsonl' are not read \(count: 1, first at line 2, column 10\)")

    def test_values_that_first_appear_after_the_sample_are_counted(self):
        warning = ("Warning: values of the records of file '%s' are not read because no item names them (count: %s, first '%s' at line %s). "
                   "With a larger autoFillNRows more records are examined to find the columns")
        nested = {"total": 3, "orders": [{"id": 1, "lines": [{"p": 1}, {"p": 2}], "notes": [{"n": 1}, {"n": 2}]}]}
        more = {"id": 2, "new": 1, "lines": [{"p": 1, "q": 2}], "notes": [{"n": 1, "m": 2}]}
        for name, known, late, expected in (
                # a name, list items, a value in place of an object, an object in place of a value, an inner name; null does not count
                ("late.jsonl", '{"a":1,"t":[1],"o":{"x":1}}\n' * 2,
                 '{"b":5,"t":[1,2,3],"o":7}\n{"a":{"z":1},"c":null,"t":null,"o":{"x":1,"y":{"q":2}}}\n', (6, "b", "3, column 3")),
                # attributes, elements and text; an empty element and a name space have no value
                ("late.xml", "<s>\n<r i='1'><a>1</a></r>\n<r i='2'><a>1</a></r>\n",
                 "<r i='2' j='3' xmlns='u'>text<a k='1'>1</a><b/><c>3</c></r></s>", (4, ".", "4, column 2")),
                # of two levels; what the sample has left out is not counted again
                ("nest.json", json.dumps(nested)[:-2], ",\n" + json.dumps(more) + "]}", (2, "new", "2, column 12"))):
            records = ("--reader", "autoFillNRows=2" if name != "nest.json" else "autoFillNRows=1")
            self.put(name, known + late)
            self.assertIn(warning % (self.folder / name, *expected), said := self.convert(name, "out.csv", *records))
            self.assertNotRegex(self.convert(name, "out.csv"), "values of the records .* are not read", said)

    def test_parts_outside_of_the_records_are_counted_after_the_sample(self):
        for name, document, first in (("late.json", '{"orders":[{"id":1},\n{"id":2}],\n"late":{"x":5},"n":7}', "'late' at line 3, column 1"),
                                      ("late.xml", "<s><r><a>1</a></r><r><a>2</a></r>\n<r><a>3</a></r><sum>6</sum>text</s>",
                                       "'sum' at line 2, column 16")):
            self.put(name, document)
            self.assertIn(f"Parts outside of the records of file '{self.folder / name}' are not read (count: 2, first {first})",
                          self.convert(name, "out.csv", "--reader", "autoFillNRows=2"))

    def test_characters_that_the_target_cannot_hold_are_counted(self):
        self.put("lone.json", r'[{"a":"x","b":"ok"},{"a":"y\ud800z","b":"\udc00\ud83d\ude00"},{"a":"\u0001","b":"q"}]')
        replaced = "characters that the file '%s' cannot hold are replaced by U+FFFD (count: %d, first in row 2 of column 'a')"
        for name, options, count in (("out.csv", (), 2), ("out.json", (), 2), ("out.xml", (), 3),
                                     ("out.xml", ("--writer", "charMode=2"), 3), ("out.xml", ("--writer", "wellFormed=0"), 2)):
            self.assertIn(replaced % (self.folder / name, count), self.convert("lone.json", name, *options))
        self.assertEqual(self.content("out.csv").decode(), "a,b\nx,ok\ny\ufffdz,\ufffd\U0001f600\n\x01,q\n")
        self.assertIn('<R  a="\ufffd" b="q"/>', (self.convert("lone.json", "out.xml"), self.content("out.xml").decode())[1])
        wide = ("--writer", "charMode=2", "--writer", "wellFormed=0")  # UTF-16 has lone halves
        self.assertEqual(self.convert("lone.json", "out.xml", *wide), "")
        self.assertIn("1 text of the column 'a' has characters that a Parquet file cannot hold, which are replaced by U+FFFD; the first is "
                      f"in row 2 of the file '{self.folder}/out.parquet'", self.convert("lone.json", "out.parquet"))

    def test_two_values_take_a_bit_per_row_of_a_parquet_file(self):
        rows = random.Random(1).choices("xy", k=16000)
        self.put("in.csv", "\n".join(["a", *rows]))
        self.convert_cleanly("in.csv", "out.parquet", "--writer", "codec=1", "--writer", "dictionaryPages=1")
        self.assertLess(len(self.content("out.parquet")), 2500)

    def test_texts_of_parquet_files_that_are_changed_are_counted(self):
        self.put("in.csv", "a,b\nplain,x\nodd~,y\n\u00e9,zero~\n")
        self.convert("in.csv", "in.parquet", "--writer", "codec=1", "--writer", "dictionaryPages=0", "--writer", "statistics=0")
        for name, byte, row, text in (("a", b"\xff", 2, "odd\u00ff"), ("b", b"\0", 3, "zero")):
            word = text.encode("latin-1").strip(b"\xff") + b"~"
            self.put("changed.parquet", self.content("in.parquet").replace(word, word[:-1] + byte))
            self.assertRegex(self.convert("changed.parquet", "out.csv"),
                             f"1 text of the column '{name}' of Parquet files is not UTF-8 and read as Latin-1, or cut before zero bytes at the end; "
                             f"the first is in row {row} of the file")
            self.assertIn(text, self.content("out.csv").decode())

    def test_int96_values_that_become_other_numbers_are_counted(self):
        # two days, whose times are 0; the first byte of the second one decides about the sign of the first
        times = b"".join(bytes(8) + day.to_bytes(4, "little") for day in (2457755, 2457786))
        self.put("in.parquet", (CORPUS / "parquet/dates.parquet").read_bytes().replace(times, times[:12] + b"\x80" + times[13:]))
        strict = ("--reader", "logicalTypes=0")
        said = self.convert("in.parquet", "out.csv", *strict)
        self.assertRegex(said, r"(1 value|2 values) of the INT96 column 'TimestampTypeChecker' of Parquet files (is|are) read as another number; the first is .*\. Use logicalTypes='1' to read timestamps")
        self.assertEqual(self.convert("in.parquet", "out.csv"), "")

    def test_a_large_buffer_is_not_larger_than_the_file(self):
        self.put("small.json", '[{"a":1}]')
        program = subprocess.Popen([CORVANTA, "convert", "small.json", "out.csv", "--reader", "bufferSize=2047"], cwd=self.folder)
        _, status, usage = os.wait4(program.pid, 0)
        program.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(program.returncode, 0)
        self.assertLess(usage.ru_maxrss, 500_000, "KiB")

    def test_members_of_a_map_are_records_with_their_names(self):
        self.put("map.json", json.dumps({"packages": {f"p{i}": {"version": i} for i in range(5)}}))
        self.convert_cleanly("map.json", "out.csv")
        self.assertEqual(self.rows_of("out.csv"), [["Level 1 Subtag", "version"], *([f"p{i}", str(i)] for i in range(5))])

    def test_cdata_is_text(self):
        self.put("feed.xml", "<rss><item><t><![CDATA[a < b]]></t></item><item><t>&hellip;</t></item></rss>")
        self.assertIn("has 1 reference to unknown entities", self.convert("feed.xml", "out.csv"))
        self.assertEqual(self.content("out.csv"), b"t\na < b\n&hellip;\n")

    def test_tables_are_told_and_chosen(self):
        self.put("two.json", json.dumps({"a": [{"x": 1}, {"x": 2}, {"x": 3}], "b": [{"y": 1, "z": 2}]}))
        notes = self.convert("two.json", "out.csv")
        self.assertIn("*   1: 3 rows x 1 column: x (a)\n    2: 1 row x 2 columns: y, z (b)\n", notes)
        self.assertEqual(self.content("out.csv"), b"x\n1\n2\n3\n")
        self.convert("two.json", "out.csv", "--table", "2")
        self.assertEqual(self.content("out.csv"), b"y,z\n1,2\n")
        self.assertEqual(self.convert("two.json", "out.csv", "--quiet"), "")
        self.assertIn("Error: there is no table number 3 among the 2 of the file", self.convert("two.json", "out.csv", "--table", "3", status=1))

    def test_pages(self):
        self.put("page.html", "<html><body><table><tr><td>menu</td></tr></table><p>x<table class=data><thead><tr><th>Name<th>Price"
                 "</thead><tbody><tr><td><a href='u'>A</a> &amp; B</td><td>1</td></tr><tr><td>C<br>D</td><td></td></tr></tbody>"
                 "</table></body></html>")
        notes = self.convert("page.html", "out.csv")
        self.assertIn("*   2: 2 rows x 2 columns: Name, Price (html/body/p/table)", notes)
        self.assertEqual(self.content("out.csv"), b"Name,Price\nA & B,1\nC D,\n")
        self.convert("page.html", "out.csv", "--table=1")
        self.assertEqual(self.content("out.csv"), b"column 1\nmenu\n")

    def test_levels_that_are_given_are_kept(self):
        self.put("a.json", json.dumps(NESTED))
        self.convert_cleanly("a.json", "out.csv", "--reader", "Level=<Level initialPath=''><e name='n' path='order'/></Level>")
        self.assertEqual(self.content("out.csv"), b"n\n1\n2\n3\n")


class CommandLine(Case):
    def test_printed_graph_does_the_same(self):
        self.put("a.json", json.dumps(NESTED))
        self.put("p.html", "<table><tr><th>${x}</th></tr><tr><td>1</td></tr></table>")
        for words in (["a.json", "out.csv"], ["p.html", "out.json"], ["in.csv", "out.tsv", "--reader", "separator=;"],
                      ["in.csv", "out.xml", "--writer", "humanReadable=1", "--writer", "ToWrite=id", "--writer", "ToWrite=note",
                       "--writer", "writeAllColumns=0"]):
            graph = self.corvanta("convert", *words, "--print-graph").stdout
            self.assertFalse((self.folder / words[1]).exists())
            self.convert_cleanly(*words)
            direct = self.content(words[1])
            (self.folder / words[1]).unlink()
            (self.folder / "sub").mkdir(exist_ok=True)
            self.put("sub/printed.graph", graph)
            self.assertEqual(self.corvanta("run", "sub/printed.graph").stderr, b"")
            self.assertEqual(self.content(words[1]), direct, words)
            (self.folder / words[1]).unlink()

    def test_texts_of_fixed_width_formats_take_their_widths_from_the_data(self):
        # Of a transport file: the descriptors of the variables, 140 bytes each, are before the rows.
        self.convert("in.csv", "out.xpt")
        variables = self.content("out.xpt")[8 * 80:]
        found = [(variables[i:][8:16].rstrip(), variables[i:][48:88].rstrip(), int.from_bytes(variables[i:][4:6], "big")) for i in range(0, 560, 140)]
        self.assertEqual([width for _, _, width in found], [20, 14, 5, 10], found)
        self.convert("in.csv", "out.sas7bdat", "--writer", "f1=1.5", "--writer", "f2=2")
        self.assertIn(b"a_name", self.content("out.sas7bdat"))

    def test_statuses(self):
        usage = [[], ["in.csv"], ["in.csv", "out.csv", "more"], ["in.csv", "out.pdf"], ["in.pdf", "out.csv"], ["in.csv", "out"],
                 ["in.csv", "out.xlsx.gz"], ["in.csv", "out.csv", "--reader", "nope=1"], ["in.csv", "out.csv", "--reader", "types"],
                 ["in.csv", "out.csv", "--reader", "header=x"], ["in.csv", "out.csv", "--writer", "types=K"],
                 ["in.csv", "out.csv", "--table", "0"], ["in.csv", "out.csv", "--table", "1"], ["in.csv", "out.csv", "--nope"],
                 ["in.csv", "out.csv", "--log-format", "xml"]]
        for words in usage:
            self.assertIn("corvanta help convert", self.convert(*words, status=2), words)
            self.assertEqual([path.name for path in self.folder.iterdir()], ["in.csv"], words)
        for extension in ("csv", "csv.gz", "json", "xml", "html", "parquet", "dbf", "xlsx", "sav"):
            self.assertNotEqual(self.convert(f"nope.{extension}", "out.csv", status=1), "")
            self.assertEqual([path.name for path in self.folder.iterdir()], ["in.csv"], extension)
        self.convert("in.csv", "no/folder/out.csv", status=1)

    def test_tap_needs_an_output_pin(self):
        self.put("g.graph", "<graph><action id='in'><readCSV fileName='in.csv'/></action>"
                            "<action id='pq'><writeParquet fileName='out.parquet'/></action><link from='in:0' to='pq:0'/></graph>")
        for pin in ("pq:0", "in:1", "nobody:0"):
            done = self.corvanta("run", "g.graph", "--tap", f"{pin}=tap.csv", status=2)
            self.assertIn(f"no output pin '{pin}'", done.stderr.decode())
            self.assertFalse((self.folder / "tap.csv").exists())

    def test_messages_for_programs(self):
        self.put("two.json", json.dumps({"a": [{"x": 1}], "b": [{"y": 1}]}))
        messages = [json.loads(line) for line in self.convert("two.json", "o.csv", "--log-format", "json").splitlines()]
        self.assertEqual([(m["level"], m["action"]) for m in messages], [(3, "input")] * 2)  # the tables, and what is not read
        messages = [json.loads(line) for line in self.convert("nope.json", "o.csv", "--log-format=json", status=1).splitlines()]
        self.assertEqual([(m["level"], m["action"]) for m in messages], [(1, "input"), (3, "input")])

    def test_failed_conversion_leaves_the_old_target(self):
        self.put("broken.json", '[{"a":1},{"a":2},{"a":')
        for extension in ("csv", "json", "xml", "xlsx"):
            self.put(f"old.{extension}", "old")
            self.convert("broken.json", f"old.{extension}", status=1)
            self.assertEqual(self.content(f"old.{extension}"), b"old")
        self.assertEqual(len(list(self.folder.iterdir())), 6)

    def test_help(self):
        for command in ("convert", "head", "schema"):
            self.assertIn(f"corvanta {command} INPUT".encode(), self.corvanta("help", command).stdout)
            self.assertEqual(self.corvanta(command, "--help").stdout, self.corvanta("help", command).stdout)
            self.assertIn(f"  {command} ".encode(), self.corvanta("help").stdout)


@unittest.skipUnless(CORPUS.is_dir(), "no corpus of real files")
class Corpus(Case):
    """Tables as other programs read them."""

    def check(self, name, golden, *words):
        self.convert(str(CORPUS / name), "out.csv", *words)
        found = self.rows_of("out.csv")
        with open(CORPUS / golden, encoding="utf-8", newline="") as file:
            expected = list(csv.reader(file))
        places = [found[0].index(column.split("/")[-1].lstrip("@")) for column in expected[0]]
        self.assertEqual([[row[i] for i in places] for row in found], [[c.split("/")[-1].lstrip("@") for c in expected[0]], *expected[1:]])

    def test_documents(self):
        for name in ("miserables.json miserables_links.csv", "penguins.json penguins.csv"):
            document, golden = name.split()
            self.check(f"json/docs/{document}", f"json/docs/golden/{golden}", "--reader", "nullIsMissing=0")
        self.check("json/docs/citm_catalog.json", "json/docs/golden/citm_performances.csv", "--table", "2", "--reader", "nullIsMissing=0", "--reader",
                   "Level=<Level initialPath='performances'>" + "".join(
                       f"<e name='{n}' path='{n}'/>" for n in ("id", "eventId", "logo", "name", "start", "venueCode")) + "</Level>")
        for name in ("slashdot", "slashdot16"):
            self.check(f"xml/docs/{name}.xml", f"xml/docs/golden/{name}_story.csv")

    def test_pages(self):
        for name in ("banklist", "small/table", "pages/links-in-tables"):
            folder, _, page = name.rpartition("/")
            golden, = (CORPUS / "html" / folder / "golden").glob(f"{page}.html.table*.csv")
            self.convert(str(CORPUS / "html" / f"{name}.html"), "out.csv")
            with open(golden, encoding="utf-8", newline="") as file:
                expected = list(csv.reader(file))
            # The other program does not part words at line breaks.
            found, expected = ([[cell.replace(" ", "") for cell in row] for row in rows] for rows in (self.rows_of("out.csv"), expected))
            self.assertEqual(found, expected, name)

    def test_integers_of_stata_files(self):
        def types(*words):
            return {column["name"]: column["type"] for column in json.loads(self.corvanta("schema", "--json", *words).stdout)}
        source = CORPUS / "stat/dta/stata5_117.dta"
        self.convert(str(source), "out.parquet")
        for found in (types(str(source)), types("out.parquet")):
            self.assertEqual([found[name] for name in ("byte_", "int_", "long_", "float_", "double_", "date_td")],
                             ["integer", "integer", "integer", "decimal", "decimal", "date"])
        # Only the first of several files is examined.
        for name in ("a.dta", "b.dta"):
            self.put(name, source.read_bytes())
        self.assertEqual(types("?.dta")["int_"], "decimal")

    def test_nested_columns_of_parquet_files_are_left_out(self):
        notes = self.convert(str(CORPUS / "parquet/datapage_v2.snappy.parquet"), "out.csv")
        self.assertIn("is read without column 'e.list.element': nested columns are not supported", notes)
        self.assertEqual(self.rows_of("out.csv")[0], ["a", "b", "c", "d"])


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C.UTF-8"
    unittest.main()

#!/usr/bin/python3
"""corvanta merge: merge_test.py CORVANTA [CORPUS]"""
import csv
import gzip
import io
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CORPUS = pathlib.Path(sys.argv.pop(1)) if len(sys.argv) > 1 else None


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_merge_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def put(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())
        return name

    def content(self, name):
        return (self.folder / name).read_bytes()

    def names(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file())

    def corvanta(self, *words, status=0, stdin=b""):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, timeout=120, check=False, input=stdin)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr.decode()}")
        self.said = done.stderr.decode()
        return done.stdout

    def merge(self, *words, status=0, stdin=b""):
        return self.corvanta("merge", *words, status=status, stdin=stdin)

    def refused(self, *words, status=1, says):
        """A merge that fails, changes nothing and says why."""
        before = {name: self.content(name) for name in self.names()}
        self.merge(*words, status=status)
        self.assertIn(says, self.said)
        self.assertEqual({name: self.content(name) for name in self.names()}, before)

    def parquet(self, name, text, *words):
        """A Parquet file of these rows, as CSV."""
        self.put(name + ".csv", text)
        self.corvanta("convert", name + ".csv", name, *words)
        (self.folder / (name + ".csv")).unlink()
        return name

    def rows(self, name):
        text = self.corvanta("convert", name, "-", "--to", "csv").decode()
        return list(csv.reader(io.StringIO(text, newline="")))


class Parquet(Case):
    def test_row_groups_are_those_of_the_parts(self):
        texts = [f"n,t\n{n},x{n}\n{n + 10},\n" for n in range(3)]
        parts = [self.parquet(f"p{n}.parquet", text) for n, text in enumerate(texts)]
        self.merge("all.parquet", *parts)
        self.assertIn(f"mergeFiles: 3 parts with 6 rows joined to the file '{self.folder}/all.parquet'", self.said)
        self.assertEqual(self.rows("all.parquet"), [["n", "t"]] + [row for n in range(3) for row in ([str(n), f"x{n}"], [str(n + 10), ""])])
        # The bytes of the pages are those of the parts, without their footers.
        merged = self.content("all.parquet")
        at = 4
        for part in parts:
            own = self.content(part)
            pages = own[4:len(own) - 8 - int.from_bytes(own[-8:-4], "little")]
            self.assertEqual(merged[at:at + len(pages)], pages)
            at += len(pages)
        # A part that was merged can be merged again, and in a list.
        self.put("list.txt", "p0.parquet\r\n\n" + parts[1] + "\n")
        self.merge("two.parquet", "--parts-from", "list.txt", "-q")
        self.merge("again.parquet", "two.parquet", "--parts-from", "-", stdin=b"p2.parquet")
        self.assertEqual(self.rows("again.parquet"), self.rows("all.parquet"))
        # A pattern, in the order of the names.
        self.merge("pattern.parquet", "p?.parquet")
        self.assertEqual(self.content("pattern.parquet"), merged)

    def test_columns_that_differ(self):
        self.parquet("a.parquet", "n,t\n1,x\n")
        self.parquet("b.parquet", "t,n\ny,2\n")
        self.parquet("c.parquet", "n,t,more\n3,z,true\n")
        self.parquet("d.parquet", "n\n4\n")
        self.parquet("e.parquet", "n,t\n0.5,u\n")
        for part, says in (("b", "column 'n' is not in the place that it has in the first part"),
                           ("c", "column 'more' is missing in the first part"),
                           ("d", "column 't' of the first part is missing"),
                           ("e", "column 'n' is DOUBLE, but INT64 in the first part")):
            self.refused("all.parquet", "a.parquet", f"{part}.parquet",
                         says=f"Error: mergeFiles: the part '{self.folder}/{part}.parquet' does not match the parts before it: {says}; "
                              "byName='1' (merge --union) joins columns by name")
        self.merge("all.parquet", *(f"{part}.parquet" for part in "abcd"), "--union")
        self.assertEqual(self.rows("all.parquet"), [["n", "t", "more"], ["1", "x", ""], ["2", "y", ""], ["3", "z", "true"], ["4", "", ""]])
        self.assertNotIn("decoded", self.said)
        # The first part may lack columns, and a merged file is a part like others.
        self.merge("more.parquet", "d.parquet", "all.parquet", "--union")
        self.assertEqual(self.rows("more.parquet")[1:3], [["4", "", ""], ["1", "x", ""]])
        # Numbers of another type need other bytes.
        self.merge("types.parquet", "a.parquet", "e.parquet", "--union")
        self.assertIn("Warning: all parts are decoded and written again, because their bytes cannot be joined: "
                      "'e.parquet': column 'n' is DOUBLE, but INT64 in the first part", self.said)
        self.assertEqual(self.rows("types.parquet"), [["n", "t"], ["1", "x"], ["0.5", "u"]])

    def test_damaged_parts(self):
        self.parquet("a.parquet", "n\n1\n")
        whole = self.content("a.parquet")
        self.put("cut.parquet", whole[:-9])
        self.put("text.parquet", "n\n1\n")
        footer = int.from_bytes(whole[-8:-4], "little")
        self.put("zeros.parquet", whole[:-8 - footer] + bytes(footer) + whole[-8:])
        for part, says in (("cut", "it is not a Parquet file, or it is truncated"), ("text", "the file is shorter than its trailer"),
                           ("zeros", "its schema is damaged")):
            self.refused("all.parquet", "a.parquet", f"{part}.parquet",
                         says=f"Error: mergeFiles: the part '{self.folder}/{part}.parquet' cannot be merged: {says}")
        # Metadata that contradicts itself.
        self.parquet("two.parquet", "n,t\n1,x\n")
        whole_two = self.content("two.parquet")
        begin = len(whole_two) - 8 - int.from_bytes(whole_two[-8:-4], "little")
        for pattern, byte, says in ((rb"\x18\x01n\x15.\x16(\x02)", 4, "the chunk of column 'n' is damaged"),  # values
                                    (rb"\x18\x01n\x15.\x16\x02\x16.\x16(.)", 0x7e, "the column chunks of the metadata overlap"),
                                    (rb"\x16\x02(\x19)\x1c", 0x1a, "the metadata is damaged"),  # a set of row groups
                                    (rb"\x25(.)\x18\x01n", 6, "its schema is damaged")):  # repetition
            at = re.compile(pattern, re.DOTALL).search(whole_two, begin).start(1)
            self.put("odd.parquet", whole_two[:at] + bytes([byte]) + whole_two[at + 1:])
            self.refused("all.parquet", "odd.parquet", says=f"Error: mergeFiles: the part '{self.folder}/odd.parquet' cannot be merged: {says}")
        # A footer with any byte changed is merged or refused, and the result can be read or is refused.
        for at in range(len(whole) - 8 - footer, len(whole) - 8, 3):
            self.put("bit.parquet", whole[:at] + bytes([whole[at] ^ 0x55]) + whole[at + 1:])
            done = subprocess.run([CORVANTA, "merge", "bits.parquet", "bit.parquet", "-q"], cwd=self.folder, capture_output=True, timeout=60, check=False)
            self.assertIn(done.returncode, (0, 1), done.stderr.decode())

    def test_metadata_of_the_parts(self):
        whole = self.content(self.parquet("a.parquet", "n\n1\n"))
        footer = whole[-8 - int.from_bytes(whole[-8:-4], "little"):-8]
        # created_by is field 6, after row_groups (4): key_value_metadata (5) comes before it.
        at = footer.rindex(b"\x28\x08Corvanta")
        for name, value in (("b", b"one"), ("c", b"two")):
            pairs = b"\x19\x1c\x18\x01k\x18" + bytes([len(value)]) + value + b"\x00"
            other = footer[:at] + pairs + b"\x18" + footer[at + 1:]
            self.put(f"{name}.parquet", whole[:-8 - len(footer)] + other + len(other).to_bytes(4, "little") + b"PAR1")
        self.merge("bc.parquet", "b.parquet", "c.parquet", "a.parquet")
        self.assertIn("Warning: mergeFiles: 2 parts have other key-value metadata than the first part, whose metadata is kept; the first one is "
                      f"'{self.folder}/c.parquet'", self.said)
        self.assertIn(b"\x18\x03one", self.content("bc.parquet"))
        self.assertNotIn(b"\x18\x03two", self.content("bc.parquet"))

    @unittest.skipUnless(CORPUS and (CORPUS / "parquet").is_dir(), "no corpus")
    def test_required_columns_become_optional(self):
        self.parquet("other.parquet", "another\n1\n")
        for name in ("offset_indexed", "datapage_v1-snappy-compressed-checksum", "breaking-spec-2024", "plain-dict-uncompressed-checksum", "alltypes_tiny_pages"):
            path = CORPUS / "parquet" / f"{name}.parquet"
            self.put("copy.parquet", path.read_bytes())
            self.merge("both.parquet", "other.parquet", "copy.parquet", "--union")
            if name == "offset_indexed":
                self.assertIn("Warning: mergeFiles: page indexes or Bloom filters of "
                              f"2 column chunks are left out of the file '{self.folder}/both.parquet'; no values are lost", self.said)
            rows, both = self.rows("copy.parquet"), self.rows("both.parquet")
            self.assertEqual(both, [["another", *rows[0]], ["1"] + [""] * len(rows[0])] + [["", *row] for row in rows[1:]], name)

    @unittest.skipUnless(CORPUS and (CORPUS / "parquet").is_dir(), "no corpus")
    def test_files_of_other_programs(self):
        merged = 0
        for path in sorted((CORPUS / "parquet").rglob("*.parquet")):
            alone = subprocess.run([CORVANTA, "convert", path, "-", "--to", "csv", "-q"], capture_output=True, timeout=60, check=False)
            self.put("copy.parquet", path.read_bytes())
            done = subprocess.run([CORVANTA, "merge", "two.parquet", path, "copy.parquet", "-q"], cwd=self.folder, capture_output=True, timeout=60, check=False)
            self.assertIn(done.returncode, (0, 1), f"{path}: {done.stderr.decode()}")
            if done.returncode == 0 and alone.returncode == 0:
                both = subprocess.run([CORVANTA, "convert", "two.parquet", "-", "--to", "csv", "-q"], cwd=self.folder, capture_output=True, timeout=60, check=False)
                header, rows = alone.stdout.split(b"\n", 1)
                self.assertEqual(both.stdout, header + b"\n" + 2 * rows, path)
                merged += 1
        self.assertGreater(merged, 60)


class Texts(Case):
    def test_one_header(self):
        self.put("a.csv", b"\xef\xbb\xbfn,t\r\n1,\"x\r\ny\"\r\n2,last")
        self.put("b.csv", b"\xef\xbb\xbf\"n\",t\n\n3,\"a,\"\"b\"\n")
        self.put("c.csv", b"n,t\n")
        self.merge("all.csv", "a.csv", "b.csv", "c.csv")
        self.assertEqual(self.content("all.csv"), b"\xef\xbb\xbfn,t\r\n1,\"x\r\ny\"\r\n2,last\r\n3,\"a,\"\"b\"\n")
        self.assertIn("3 parts with 3 rows joined", self.said)
        # Compressed, and with tabs.
        self.put("d.csv.gz", gzip.compress(b"n,t\n4,z\n"))
        self.merge("all.csv.gz", "c.csv", "d.csv.gz")
        self.assertEqual(gzip.decompress(self.content("all.csv.gz")), b"n,t\n4,z\n")
        self.put("a.tsv", "n\tt\n1\tx, y\n")
        self.merge("all.tsv", "a.tsv")
        self.assertEqual(self.content("all.tsv"), self.content("a.tsv"))
        # Another separator, and lines that end with CR.
        self.put("e.csv", "n;t\n5;\"a;b\"\n6;c,d\n")
        self.put("f.csv", "n,t\r7,x\r")
        self.merge("forms.csv", "c.csv", "e.csv", "f.csv")
        self.assertEqual(self.content("forms.csv"), b"n,t\n5,\"a;b\"\n6,\"c,d\"\n7,x\n")

    def test_columns_that_differ(self):
        self.put("a.csv", "n,t\n1,\"\"\n")
        self.put("b.csv", "t,n\ny,2\n")
        self.put("c.csv", "n,more\n3,z\n")
        for part, says in (("b", "column 'n' is not in the place that it has in the first part"), ("c", "column 'more' is missing in the first part")):
            self.refused("all.csv", "a.csv", f"{part}.csv", says=f"/{part}.csv' does not match the parts before it: {says}")
        self.merge("all.csv", "a.csv", "b.csv", "c.csv", "--union")
        self.assertEqual(self.content("all.csv"), b"n,t,more\n1,\"\",\n2,y,\n3,,z\n")
        self.put("d.csv", "n,n\n1,2\n")
        self.merge("same.csv", "d.csv", "d.csv", status=2)
        self.assertIn("the part 'd.csv' is named twice", self.said)
        self.refused("same.csv", "a.csv", "d.csv", "--union", says="column 'n' is there twice, but columns are joined by name")

    def test_damaged_parts(self):
        self.put("a.csv", "n,t\n1,ü\n")
        self.parquet("a.parquet", "n,t\n1,x\n")
        for part, content, says in (("short", "n,t\n1,x\n2\n", "cannot be merged: line 3 has 1 fields, but the header has 2"),
                                    ("quote", "n,t\n1,\"x\n", "cannot be merged: a quoted field is not closed (line 2)"),
                                    ("empty", "", "cannot be merged: it is empty: the header is missing"),
                                    ("wide", "n,t\n1,x\n".encode("utf-16"), "cannot be merged: it is UTF-16; convert it to UTF-8"),
                                    ("latin", b"n,t\n1,\xfc\n", "does not match the parts before it: its text is not UTF-8, but that of a part before it is"),
                                    ("packed", self.content("a.parquet"), "cannot be merged: it begins like a Parquet file")):
            self.put(f"{part}.csv", content)
            self.refused("all.csv", "a.csv", f"{part}.csv", says=f"Error: mergeFiles: the part '{self.folder}/{part}.csv' {says}")
        self.refused("all.csv", "latin.csv", "a.csv", says="its text is UTF-8, but that of a part before it is not")
        self.put("latin2.csv", b"n,t\n2,\xe9\n")
        self.merge("all.csv", "latin.csv", "latin2.csv")
        self.assertEqual(self.content("all.csv"), b"n,t\n1,\xfc\n2,\xe9\n")

    def test_json(self):
        self.put("a.jsonl", b"\xef\xbb\xbf{\"n\":1}\n\n{\"t\":\"}\\\"{\"}")
        self.put("b.jsonl", "{\"n\":2}\r\n")
        self.merge("all.jsonl", "a.jsonl", "b.jsonl")
        self.assertEqual(self.content("all.jsonl"), b"{\"n\":1}\n{\"t\":\"}\\\"{\"}\n{\"n\":2}\r\n")
        self.assertIn("2 parts with 3 rows joined", self.said)
        self.put("a.json", " [ {\"n\":1}, {\"t\":\"],[\"} ]\n")
        self.put("b.json", "[]")
        self.put("c.json", "[[1,2],3]")
        self.merge("all.json", "b.json", "a.json", "c.json")
        self.assertEqual(json.loads(self.content("all.json")), [{"n": 1}, {"t": "],["}, [1, 2], 3])
        self.assertIn("3 parts with 4 rows joined", self.said)
        self.merge("none.json", "b.json")
        self.assertEqual(json.loads(self.content("none.json")), [])
        for name, content, says in (("cut.jsonl", "{\"n\":1}\n{\"n\":", "it ends inside a value (line 2)"), ("cut.json", "[{\"n\":1},{\"t\":\"]\"", "it ends inside a value (line 1)"),
                                    ("one.json", "{\"n\":1}", "it does not begin with '[': only arrays of records are joined"),
                                    ("two.json", "[1] [2]", "it is not valid JSON (line 1)"), ("text.jsonl", "{\"n\":\"x\ny\"}\n", "it is not valid JSON (line 1)"),
                                    ("wide.jsonl", "{}".encode("utf-16"), "it is UTF-16"), ("pack.jsonl", gzip.compress(b"{}"), "it begins like")):
            self.put(name, content)
            kind = name.split(".")[1]
            self.refused(f"bad.{kind}", f"b.{kind}", name, says=f"/{name}' cannot be merged: {says}")


class Workbooks(Case):
    def sheets(self, name):
        import openpyxl  # pylint: disable=import-outside-toplevel
        book = openpyxl.load_workbook(self.folder / name)
        return {sheet.title: [[cell.value for cell in row] for row in sheet.rows] for sheet in book}

    def test_a_sheet_per_part(self):
        self.put("north.csv", "n,t\n1,x\n2,y\n")
        self.parquet("south.parquet", "day\n2026-01-31\n")
        self.corvanta("convert", "north.csv", "east.xlsx", "--writer", "sheetName=Data")
        (self.folder / "other").mkdir()
        self.put("other/North.csv", "a\n")
        self.put("this is [a] name that is much too long.csv", "a\n7\n")
        self.put("book.xlsx", "an older file")
        pair = "x" * 30 + "\U0001f600.csv"  # a cut after 31 units would divide the last character
        self.put(pair, "a\n8\n")
        self.put("me@home.csv", "a\n9\n")
        self.merge("book.xlsx", "north.csv", "south.parquet", "east.xlsx", "other/North.csv", "this is [a] name that is much too long.csv", pair, "me@home.csv",
                   "--progress", "always", "--log-format", "json")
        sheets = self.sheets("book.xlsx")
        self.assertEqual(list(sheets), ["north", "south", "east", "North_2", "this is _a_ name that is much t", "x" * 30, "me@home"])
        self.assertEqual(sheets["north"], [["n", "t"], [1, "x"], [2, "y"]])
        self.assertEqual(sheets["east"], sheets["north"])
        self.assertEqual(str(sheets["south"][1][0]), "2026-01-31 00:00:00")
        self.assertEqual(sheets["North_2"], [["a"]])
        self.assertIn("Warning: 3 sheets of the workbook 'book.xlsx' are not named like the part; the first is 'North_2' for 'other/North.csv'", self.said)
        last = json.loads(self.said.splitlines()[-1])
        self.assertEqual((last["summary"]["rows"], [pathlib.Path(name).name for name in last["summary"]["files"]]), (8, ["book.xlsx"]))
        # Of a failure nothing is left, and the workbook stays.
        self.put("bad.csv", "a,b\n1\n")
        self.refused("book.xlsx", "north.csv", "bad.csv", "--progress", "always", says="bad.csv")
        self.assertNotIn("wrote", self.said)
        self.refused("book.xlsx", "north.csv", "missing.csv", says="missing.csv")
        self.refused("book.xlsx", "north.csv", "--no-clobber", says="'book.xlsx' exists already, and --no-clobber keeps it")


class Commands(Case):
    def test_wrong_words(self):
        self.put("a.csv", "n\n1\n")
        self.put("a?.csv", "n\n2\n")
        self.put("ab.csv", "n\n3\n")
        self.put("empty.txt", "\n")
        self.put("zero.txt", b"a\0")
        for words, says in (((), "an output file and its parts are required"), (("all.csv",), "an output file and its parts are required"),
                            (("all.csv", "a?.csv"), "/a?.csv' is a pattern that matches '"),
                            (("all.csv", "--parts-from", "empty.txt"), "--parts-from: the list 'empty.txt' is empty"),
                            (("all.csv", "--parts-from", "zero.txt"), "--parts-from: 'zero.txt' is not a list of file names (it has a zero byte)"),
                            (("all.csv", "--parts-from", "none.txt"), "--parts-from: cannot read the list 'none.txt': "),
                            (("all.csv", "--parts-from", "."), "--parts-from: cannot read the list '.': it is a folder"),
                            (("a.csv", "./a.csv"), "the output './a.csv' is also a part"),
                            (("all.xml", "a.csv"), "all.xml' cannot be merged; parquet, csv, txt, tsv, tab, jsonl, ndjson and json can be, the texts also with .gz; a workbook (xlsx) gets a sheet per part"),
                            (("all.csv.GZ", "a.csv"), "all.csv.GZ' cannot be merged"),
                            (("all.parquet", "a.csv"), "a.csv' does not have the extension of a Parquet file, as the output has; convert joins files of several formats")):
            self.refused(*words, status=2, says=says)
        self.refused("all.csv", "a.csv", "none.csv", says=f"Error: mergeFiles: cannot open the part '{self.folder}/none.csv'")
        self.refused("no/all.csv", "a.csv", says=f"Error: mergeFiles: cannot create file '{self.folder}/no/all.csv'")
        self.put("old.csv", "old")
        self.refused("old.csv", "a.csv", "--no-clobber", says="'old.csv' exists already, and --no-clobber keeps it")
        os.mkfifo(self.folder / "pipe.csv")
        self.merge("all.csv", "pipe.csv", status=1)
        self.assertIn("it is a pipe or a device, and parts are read twice", self.said)
        self.merge("old.csv", "a.csv", "--progress", "always")
        self.assertEqual(self.content("old.csv"), b"n\n1\n")
        self.assertRegex(self.said.splitlines()[-1], "1 row")

    def test_full_disk(self):
        self.put("a.csv", "n\n" + "1234567\n" * 100000)
        done = subprocess.run(["bash", "-c", 'ulimit -f 100; trap "" XFSZ; exec "$0" merge all.csv a.csv', CORVANTA], cwd=self.folder, capture_output=True, timeout=60,
                              check=False)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn(f"Error: mergeFiles: cannot write file '{self.folder}/all.csv'", done.stderr.decode())
        self.assertEqual(self.names(), ["a.csv"])

    def test_graph(self):
        self.put("a.csv", "n\n1\n")
        self.put("b.csv", "n\n2\n3\n")
        self.put("g.graph", "<graph><action id='m'><mergeFiles fileName='sub/all.csv' createDir='1'><parts><s>a.csv</s><s>b*.csv</s></parts></mergeFiles></action>"
                 "<action id='w'><writeCSV fileName='list.csv'/></action><link from='m:0' to='w:0'/></graph>")
        self.corvanta("run", "g.graph")
        self.put("none.graph", "<graph><action id='m'><mergeFiles fileName='all.csv'/></action></graph>")
        self.corvanta("run", "none.graph", status=1)
        self.assertIn("Error: mergeFiles: there are no parts to join\n", self.said)
        self.put("none.graph", "<graph><action id='m'><mergeFiles fileName='all.xml'><parts><s>a.csv</s></parts></mergeFiles></action></graph>")
        self.corvanta("run", "none.graph", status=1)
        self.assertIn("Error: mergeFiles: files such as", self.said)
        self.assertEqual(self.content("sub/all.csv"), b"n\n1\n2\n3\n")
        self.assertEqual([line.rsplit("/", 1)[-1] for line in self.content("list.csv").decode().splitlines()], ["part,rows", "a.csv,1", "b.csv,2"])

    def test_signals_and_kills_leave_the_target(self):
        line = b"1,some text that is long enough\n"
        self.put("big.csv", b"n,t\n" + line * 400000)
        self.put("all.csv", "old")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            for wait in (0.02, 0.06, 0.1):
                with subprocess.Popen([CORVANTA, "merge", "all.csv", "big.csv"], cwd=self.folder,
                                      stderr=subprocess.PIPE) as process:
                    time.sleep(wait)
                    process.send_signal(number)
                    process.communicate(timeout=60)
                whole = self.content("all.csv")
                self.assertIn(whole, (b"old", b"n,t\n" + line * 400000))
                if number != signal.SIGKILL:
                    self.assertEqual(self.names(), ["all.csv", "big.csv"])
                self.put("all.csv", "old")


if __name__ == "__main__":
    unittest.main(verbosity=2)

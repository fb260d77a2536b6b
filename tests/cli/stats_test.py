#!/usr/bin/python3
"""corvanta stats, and head --json: stats_test.py CORVANTA"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_stats_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def put(self, name, text):
        (self.folder / name).write_bytes(text if isinstance(text, bytes) else text.encode())

    def corvanta(self, *words, status=0):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr}")
        return done.stdout


class Stats(Case):
    TABLE = 'k,f,t,none\n3,0.25,b,\n1,,"",\n,nan,\U0001F600\uFFFDé,\n3,-1e300,b,\n'

    def test_columns(self):
        self.put("in.csv", self.TABLE)
        self.assertEqual(self.corvanta("stats", "in.csv", "--reader", "types=K,F,U,U").splitlines(), [
            "column  type     rows  missing  distinct  minimum  maximum                mean  longest",
            "------  -------  ----  -------  --------  -------  -------  ------------------  -------",
            "k       integer     4        1         2        1        3  2.3333333333333335",
            "f       decimal     4        1         3  -1e+300     0.25             -5e+299",
            "t       text        4        0         3       \"\"     \U0001F600\uFFFDé                            3",
            "none    text        4        4         0"])

    def test_json(self):
        self.put("in.csv", self.TABLE)
        columns = json.loads(self.corvanta("stats", "in.csv", "--json", "--reader", "types=K,F,U,U"))
        self.assertEqual(columns, [
            {"name": "k", "type": "integer", "rows": 4, "missing": 1, "distinct": 2, "minimum": 1, "maximum": 3, "mean": 7 / 3},
            {"name": "f", "type": "decimal", "rows": 4, "missing": 1, "distinct": 3, "minimum": -1e300, "maximum": 0.25, "mean": -5e299},
            {"name": "t", "type": "text", "rows": 4, "missing": 0, "distinct": 3, "minimum": "", "maximum": "\U0001F600\uFFFDé", "longest": 3},
            {"name": "none", "type": "text", "rows": 4, "missing": 4, "distinct": 0}])

    def test_types_are_those_of_schema(self):
        self.put("in.csv", "i,d,b,t,day\n10,1.5,true,010,2024-02-29\n9,1e3,false,11,2023-01-01\n,,,,\n")
        self.assertEqual([[column.get(key) for key in ("type", "minimum", "maximum", "mean", "longest")]
                          for column in json.loads(self.corvanta("stats", "in.csv", "--json"))],
                         [["integer", 9, 10, 9.5, None], ["decimal", 1.5, 1000, 500.75, None], ["boolean", "false", "true", None, None],
                          ["text", "010", "11", None, 3], ["date", "2023-01-01", "2024-02-29", None, None]])
        self.put("in.json", '[{"a": "12", "b": 12}, {"a": "9", "b": 9}]')
        columns = json.loads(self.corvanta("stats", "in.json", "--json"))
        self.assertEqual([(column["type"], column["minimum"]) for column in columns], [("text", "12"), ("integer", 9)])

    def test_digits_of_long_integers(self):
        digits = "n\n" + "".join(f"{n}\n" for n in (9007199254740993, -9223372036854775807, 5, 9223372036854775807))
        self.put("in.csv", digits)
        self.put("in.json", json.dumps([{"n": int(n)} for n in digits.split()[1:]]))
        for name, limits in (("in.csv", ("text", "-9223372036854775807", "9223372036854775807", None)),
                             ("in.json", ("integer", -9223372036854775807, 9223372036854775807, 2251799813685249.5))):
            column = json.loads(self.corvanta("stats", name, "--json"))[0]
            self.assertEqual(tuple(column.get(key) for key in ("type", "minimum", "maximum", "mean")), limits)
            self.assertIn("  -9223372036854775807  9223372036854775807", self.corvanta("stats", name))

    def test_one_number_in_several_forms_is_one_value(self):
        self.put("in.csv", "n,t,long\n1,1,9007199254740993\n1.0,1.0,9007199254740992\n1.00,x,9007199254740993\n-0,-0,1\n0,0,1\n")
        self.assertEqual([column["distinct"] for column in json.loads(self.corvanta("stats", "in.csv", "--json"))], [2, 5, 3])

    def test_numbers_with_a_decimal_comma(self):
        self.put("in.csv", "n;t\n9,5;a\n10,25;b\n")
        column = json.loads(self.corvanta("stats", "in.csv", "--json", "--reader", "decimal=,"))[0]
        self.assertEqual([column["minimum"], column["maximum"], column["mean"]], [9.5, 10.25, 9.875])
        self.assertEqual(json.loads(self.corvanta("head", "in.csv", "--json", "--reader", "decimal=,"))[0], {"n": 9.5, "t": "a"})

    def test_distinct_values_are_counted_up_to_a_limit(self):
        self.put("in.csv", "a,b\n" + "".join(f"{i},{i % 100_000}\n" for i in range(100_001)))
        lines = self.corvanta("stats", "in.csv").splitlines()
        self.assertIn("  over 100000  ", lines[2])
        self.assertIn("       100000  ", lines[3])
        a, b = json.loads(self.corvanta("stats", "in.csv", "--json"))
        self.assertEqual(("distinct" in a, b["distinct"]), (False, 100_000))

    def test_ends(self):
        self.put("in.csv", "a,b\n")
        self.assertEqual([line.split() for line in self.corvanta("stats", "in.csv").splitlines()[2:]],
                         [["a", "text", "0", "0", "0"], ["b", "text", "0", "0", "0"]])
        self.put("wrong.csv", "a,b\n" + "1,2\n" * 5000 + "1\n")
        self.assertEqual(self.corvanta("stats", "wrong.csv", status=1), "")
        self.assertEqual(self.corvanta("stats", "none.csv", status=1), "")
        for words in ([], ["in.csv", "in.csv"], ["in.pdf"], ["in.csv", "-n", "1"]):
            self.corvanta("stats", *words, status=2)


class HeadAsJson(Case):
    def test_cells(self):
        self.put("in.csv", 'k,f,"t ""\\",t,t\n7,0.25,"a\x01""\u2028é",x,\n,nan,"",,y\n4294967293,-inf,1,2,3\n')
        text = self.corvanta("head", "in.csv", "--json", "--reader", "types=K,F,U,U,U")
        self.assertEqual(json.loads(text), [
            {"k": 7, "f": 0.25, 't "\\': 'a\x01"\u2028é', "t": "x", "t_2": None},
            {"k": None, "f": "nan", 't "\\': "", "t": None, "t_2": "y"},
            {"k": 4294967293, "f": "-inf", 't "\\': "1", "t": "2", "t_2": "3"}])
        self.assertEqual(text.splitlines()[1].split(":")[0], '  {"k"')
        self.assertEqual(list(json.loads(text)[0]), ["k", "f", 't "\\', "t", "t_2"])

    def test_types(self):
        self.put("in.csv", "i,d,b,t\n10,1.50,true,010\n9,-1e3,false,TRUE\n")
        self.assertEqual(self.corvanta("head", "in.csv", "--json"),
                         '[\n  {"i": 10, "d": 1.50, "b": true, "t": "010"},\n  {"i": 9, "d": -1e3, "b": false, "t": "TRUE"}\n]\n')

    def test_types_of_a_sample_and_of_all_rows(self):
        self.put("in.csv", "n\n" + "1\n" * 150_000 + "x\n")
        self.assertEqual(json.loads(self.corvanta("head", "in.csv", "--json", "-n", "1")), [{"n": 1}])
        self.assertEqual(json.loads(self.corvanta("head", "in.csv", "--json", "-n", "1", "--all")), [{"n": "1"}])

    def test_rows(self):
        self.put("in.csv", "n\n" + "".join(f"{i}\n" for i in range(200_000)))
        for words, rows in (([], 10), (["-n", "0"], 0), (["-n", "1"], 1), (["-n", "150000"], 150_000)):
            shown = json.loads(self.corvanta("head", "in.csv", "--json", *words))
            self.assertEqual([int(row["n"]) for row in shown], list(range(rows)))
        self.put("empty.csv", "n\n")
        self.assertEqual(self.corvanta("head", "empty.csv", "--json"), "[]\n")
        self.put("wrong.csv", "a,b\n1,2\n1\n")
        self.assertEqual(self.corvanta("head", "wrong.csv", "--json", status=1), "")

    def test_texts_that_are_not_unicode(self):
        self.put("in.json", b'[{"a":"x\\ud800y","\\udc00":"\\u0000"}]')
        self.assertEqual(len(json.loads(self.corvanta("head", "in.json", "--json"))), 1)


if __name__ == "__main__":
    unittest.main()

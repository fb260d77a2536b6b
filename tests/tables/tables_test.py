#!/usr/bin/python3
"""select, filter, sort, cast, join and union against plain Python: tables_test.py CORVANTA"""
import functools
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest
from xml.sax.saxutils import quoteattr

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
TABLE = "k,f,t\n1,0.5,abc\n2,,\n,nan,x\n"


def strings(name, values):
    return f"<{name}>" + "".join(f"<s>{value}</s>" for value in values) + f"</{name}>" if values else ""


def action(kind, attributes="", **lists):
    return f"<{kind} {attributes}>" + "".join(strings(name, values) for name, values in lists.items()) + f"</{kind}>"


def where(expression, *kinds):
    return action("filter", f"where={quoteattr(expression)}", kinds=kinds)


def text_of(rows):
    """A table as writeCSV writes it; None is a missing cell."""
    lines = [",".join("" if cell is None else cell if cell else '""' for cell in row) for row in rows]
    return "".join(line + "\n" for line in lines)


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_tables_"))
        self.addCleanup(subprocess.run, ["rm", "-rf", self.folder])

    def run_graph(self, inputs, *actions, status=0, last="<writeCSV fileName='out.csv'/>"):
        """The rows and messages of a chain of actions, the first of which reads the inputs: (CSV text, types)."""
        parts = []
        for i, (text, types) in enumerate(inputs):
            (self.folder / f"in{i}.csv").write_text(text)
            parts.append(f"<action id='in{i}'><readCSV fileName='in{i}.csv' types='{types}'/></action><link from='in{i}:0' to='a0:{i}'/>")
        for i, element in enumerate(actions):
            parts.append(f"<action id='a{i}'>{element}</action><link from='a{i}:0' to='a{i + 1}:0'/>")
        parts.append(f"<action id='a{len(actions)}'>{last}</action>")
        (self.folder / "g.graph").write_text("<graph version='4.11'>" + "".join(parts) + "</graph>")
        done = subprocess.run([CORVANTA, "run", "g.graph", "--log-format", "json"], cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(done.returncode, status, done.stderr)
        messages = [json.loads(line)["message"] for line in done.stderr.splitlines()]
        out = self.folder / "out.csv"
        return out.read_text() if status == 0 and out.exists() else None, messages

    def check(self, inputs, actions, expected, messages=()):
        self.assertEqual(self.run_graph(inputs, *actions), (expected, list(messages)))

    def check_error(self, inputs, element, message):
        self.assertIn(message, self.run_graph(inputs, element, status=1)[1])


class Select(Folder):
    def test_rows_columns_and_names(self):
        table = [("a,b,c\n" + "".join(f"{i},{i}b,{i}c\n" for i in range(1, 6)), "")]
        self.check(table, [action("select", "firstRow='2' lastRow='3'", columns=["c", "a"], rename=["c=a", "a=c"])], "a,c\n2c,2\n3c,3\n")
        self.check(table, [action("select", "firstRow='4'")], "a,b,c\n4,4b,4c\n5,5b,5c\n")
        self.check(table, [action("select", "lastRow='0'")], "a,b,c\n")
        self.check(table, [action("select", "firstRow='9' lastRow='7'")], "a,b,c\n")
        self.check([("a=b,c\n1,2\n", "")], [action("select", rename=["a=b=x=y"])], "x=y,c\n1,2\n")

    def test_no_more_is_read_than_needed(self):
        # The rows after the first ones are invalid: reading them would fail. They do not fit the queues between the actions.
        table = "a\n" + "1\n" * 3_000_000 + "x\n"
        self.check([(table, "K")], [where("a = 1"), action("cast", types=["a=F"]),
                                    action("select", "lastRow='2'")], "a\n1\n1\n")

    def test_errors(self):
        table = [(TABLE, "")]
        self.check_error(table, action("select", columns=["tt"]), "Error: select: the input has no column 'tt'; the nearest known name is 't'\n")
        self.check_error(table, action("select", rename=["k=f"]), "Error: select: two columns of the output have the name 'f'\n")
        self.check_error(table, action("select", rename=["k=a", "t=t", "t=t", "k=b"]),
                         "Error: select: rename has two values for the column 'k': 'a' and 'b'\n")
        self.check_error(table, action("select", rename=["k"]), "Error: select: 'k' is not an old and a new name, for example old=new\n")


class Filter(Folder):
    def test_kinds_leave_the_cells_unchanged(self):
        table = [("price,day\n1.50,2026-01-31\n010,2025-12-31\n,\n1e1,2026-02-01\n", "")]
        self.check(table, [where("price >= 10 or day = '2026-01-31'", "price=decimal", "day=date")],
                   "price,day\n1.50,2026-01-31\n010,2025-12-31\n1e1,2026-02-01\n")
        self.check(table, [where("day > '2026'")], "price,day\n1.50,2026-01-31\n1e1,2026-02-01\n")
        self.check(table, [where("1 = 2")], "price,day\n")

    def test_rows_in_any_pattern(self):
        # Consecutive rows, single ones, and batches of which nothing passes.
        chance = random.Random(3)
        for share in [0, 1, 20, 500, 990, 1000]:
            values = [chance.randrange(1000) for _ in range(5000)]
            text = "n,v\n" + "".join(f"{i},{value}\n" for i, value in enumerate(values))
            expected = "n,v\n" + "".join(f"{i},{value}\n" for i, value in enumerate(values) if value < share)
            self.check([(text, "K,K")], [where(f"v < {share}"), where(f"v < {share} and n >= 0")], expected)

    def test_errors(self):
        table = [(TABLE, "K,F,U")]
        self.check_error(table, where("k >"), "Error: filter: invalid expression 'k >' at character 4: expected a column, a number or a text in "
                                              "single quotes, found the end\n")
        self.check_error(table, where("k = 1 and kk = 2"),
                         "Error: filter: invalid expression 'k = 1 and kk = 2' at character 11: the input has no column 'kk'; the nearest known "
                         "name is 'k'; a text is put in single quotes ('kk')\n")
        self.check_error(table, where("t > 1"), "Error: filter: row 1: column 't' holds texts (here 'abc'), which cannot be compared with the number "
                                                "1; state its kind ('t=decimal' in 'kinds'; convert: --types), make the text a missing value "
                                                "(nullValues of readCSV), or write a text in single quotes\n")
        self.check_error(table, where("t > 1", "t=decimal"), "Error: filter: row 1: 'abc' in column 't' is not a number\n")
        self.check_error(table, where("k = 1", "x=decimal"), "Error: filter: kinds: the input has no column 'x'\n")
        self.check_error(table, where("k = 1", "t=number"), "Error: filter: 't=number' is not a column and a kind (text, integer, decimal, boolean, "
                                                            "date, datetime, time), for example price=decimal\n")


class Sort(Folder):
    def test_numbers_texts_and_missing_cells(self):
        table = [("k,f,t\n3,nan,b\n,1e3,\n1,-0.5,\"\"\n3,2,a\n", "K,F,U")]
        self.check(table, [action("sort", keys=["-k", "t"])], "k,f,t\n3,2,a\n3,nan,b\n1,-0.5,\"\"\n,1000,\n")
        self.check(table, [action("sort", keys=["f"])], "k,f,t\n1,-0.5,\"\"\n3,2,a\n,1000,\n3,nan,b\n")
        self.check(table, [action("sort", keys=["-t"])], "k,f,t\n3,nan,b\n3,2,a\n1,-0.5,\"\"\n,1000,\n")
        self.check([("-n,n\n10,1\n9,2\n", "")], [action("sort", keys=["-n"], kinds=["-n=integer"])], "-n,n\n9,2\n10,1\n")

    def test_numbers_in_texts(self):
        self.check([("t\n10\n9\n-\n100\n", "")], [action("sort", keys=["t"])], "t\n-\n10\n100\n9\n",
                   ["sort: the column 't' is sorted as texts: 3 of its 4 values are numbers; the first other value is '-' in row 3 (nullValues of "
                    "readCSV can make it a missing value)\n"])
        self.check([("t\n10\n9\n\n", "")], [action("sort", keys=["t"])], "t\n10\n9\n\n",
                   ["sort: the column 't' is sorted as texts, and all of its values are numbers; kinds='t=decimal' (convert: --types) sorts them "
                    "as numbers\n"])
        self.check([("t\n010\n9\nx\n", "")], [action("sort", keys=["t"])], "t\n010\n9\nx\n")
        local = [('t\n"10,5"\n"9,25"\n7\n', "")]
        self.check(local, [action("sort", "decimal=','", keys=["t"], kinds=["t=decimal"])], 't\n7\n"9,25"\n"10,5"\n')
        self.check(local, [action("filter", "where='t &lt; 9.5' decimal=','", kinds=["t=decimal"])], 't\n"9,25"\n7\n')
        for kind in ("sort", "filter"):
            self.check_error(local, action(kind, "where='t = 1' decimal='ab'"[-12 if kind == "sort" else 0:], **({"keys": ["t"]} if kind == "sort" else {})),
                             f"Error: {kind}: decimal='ab' is not one ASCII character\n")

    def test_times_are_sorted_by_time(self):
        times = ["2026-01-01 10:00", "2026-01-01T09:00", "2026-01-02", "2026-01-01T10:00:00", "", "2026-01-01 09:30"]
        ordered = [times[1], times[5], times[0], times[3], times[2], ""]
        table = [("d,n\n" + "".join(f"{time},{letter}\n" for time, letter in zip(times, "fedcba")), "")]
        for keys, expected in ((["d"], ordered), (["d", "n"], [*ordered[:2], times[3], times[0], *ordered[4:]])):
            rows = [(time or None, "fedcba"[times.index(time)]) for time in expected]
            self.check(table, [action("sort", keys=keys, kinds=["d=datetime"])], text_of([("d", "n"), *rows]))
        self.check([("b\ntrue\nFALSE\nTrue\nfalse\n", "")], [action("sort", keys=["b"], kinds=["b=boolean"])], "b\nFALSE\nfalse\ntrue\nTrue\n")

    def test_the_declared_order_is_that_of_the_texts(self):
        """A writer that has a file for each value relies on it."""
        table = [("a,b\n10,x\n9,y\n10.0,x\n", "")]
        by_texts, by_numbers = action("sort", keys=["b"]), action("sort", keys=["a", "b"], kinds=["a=decimal"])
        exchange = action("select", rename=["a=b", "b=a"])
        for actions, column, is_sorted in (([by_texts], "b", True), ([by_numbers], "a", False), ([by_numbers], "b", False),
                                           ([by_texts, exchange], "b", False)):
            said = self.run_graph(table, *actions, last=f"<writeParquet file='p' split='1' splitVar='{column}'/>")[1]
            self.assertEqual(any("The table to split is not sorted" in text for text in said), not is_sorted, actions)

    def test_random_tables(self):
        chance = random.Random(11)
        texts = [None, "", "a", "b", "ab", "é", "\uff5e", "\U0001f600"]
        for _ in range(4):
            rows = [(chance.choice([None, "7", "12", "3.5", "-1"]), chance.choice(texts), str(i)) for i in range(3000)]
            descending = chance.random() < 0.5

            def compare(a, b):
                if a is None or b is None or a == b:
                    return (a is None) - (b is None)
                return (-1 if a < b else 1) * (-1 if descending else 1)
            number = lambda text: text and float(text)
            expected = sorted(rows, key=functools.cmp_to_key(lambda a, b: compare(a[1], b[1])))
            expected.sort(key=lambda row: (row[0] is None, number(row[0])))
            self.check([(text_of([("n", "t", "i"), *rows]), "")],
                       [action("sort", keys=["n", "-t" if descending else "t"], kinds=["n=decimal"])], text_of([("n", "t", "i"), *expected]))

    def test_errors(self):
        self.check_error([(TABLE, "")], action("sort", keys=["x"]), "Error: sort: the input has no column 'x'\n")
        self.check_error([(TABLE, "")], action("sort"), "Error: sort: no column to sort by (keys)\n")
        self.check_error([(TABLE, "")], action("sort", keys=["t"], kinds=["t=integer"]), "Error: sort: row 1: 'abc' in column 't' is not a number\n")


class Cast(Folder):
    def test_all_types(self):
        table = [("k,f,t\n7,0.5,12\n,,\n4294967293,1e300,1.0\n", "K,F,U")]
        self.check(table, [action("cast", types=["k=F", "f=U", "t=K"])], "k,f,t\n7,0.5,12\n,,\n4294967293,1e+300,1\n")
        self.check(table, [action("cast", types=["k=U", "t=F"]), action("cast", types=["k=K", "t=K"])],
                   "k,f,t\n7,0.5,12\n,,\n4294967293,1e+300,1\n")
        self.check(table, [action("cast", types=["k=K"])], "k,f,t\n7,0.5,12\n,,\n4294967293,1e+300,1.0\n")

    def test_values_that_do_not_fit(self):
        table = [("t\n1\nabc\n-1\n1e999\n4294967295\n", "")]
        for kind, row, value, what in [("F", 2, "abc", "a number"), ("K", 2, "abc", "a whole number from 0 to 4294967293")]:
            self.check_error(table, action("cast", types=[f"t={kind}"]),
                             f"Error: cast: row {row}, column 't': '{value}' is not {what}; onError='1' makes such values missing\n")
        self.check(table, [action("cast", "onError='1'", types=["t=K"])], "t\n1\n\n\n\n\n",
                   ["Warning: cast: 4 values became missing, because the types of their columns do not have them; the first is row 2, column 't': "
                    "'abc'\n"])
        self.check(table, [action("cast", "onError='1'", types=["t=F"])], "t\n1\n\n-1\n\n4294967295\n",
                   ["Warning: cast: 2 values became missing, because the types of their columns do not have them; the first is row 2, column 't': "
                    "'abc'\n"])
        self.check_error(table, action("cast", types=["t=U", "t=U", "t=K"]), "Error: cast: types has two values for the column 't': 'U' and 'K'\n")
        self.check_error(table, action("cast", types=["t=X"]), "Error: cast: 't=X' is not a column and a type (K, F, U), for example price=F\n")


class Join(Folder):
    def test_random_tables(self):
        chance = random.Random(5)
        keys = [None, "", "a", "b", "c", "d", "e"]
        for kind in range(3):
            first = [(chance.choice(keys), str(i)) for i in range(60)]
            second = [(f"s{i}", chance.choice(keys[:-1] + ["z"])) for i in range(20)]
            expected = []
            for key, value in first:
                partners = [row for row in second if key is not None and row[1] == key]
                expected += [(key, value, row[0]) for row in partners]
                expected += [(key, value, None)] if not partners and kind > 0 else []
            if kind == 2:
                found = {key for key, _ in first if key is not None}
                expected += [(row[1], None, row[0]) for row in second if row[1] not in found]
            self.check([(text_of([("k", "v"), *first]), ""), (text_of([("w", "k"), *second]), "")],
                       [action("join", f"type='{kind}'", keys=["k"])], text_of([("k", "v", "w"), *expected]))

    def test_names_types_and_two_keys(self):
        first = ("id,day,v\n1,a,x\n2,a,y\n2,b,z\n", "K,U,U")
        second = ("nr,day,v\n2.0,b,9\n1.0,a,8\n", "")
        self.check([first, second], [action("join", keys=["id=nr", "day"], kinds=["nr=decimal"])], "id,day,v,v_2\n1,a,x,8\n2,b,z,9\n",
                   ["join: 1 column of the second table got the suffix '_2'; the first is 'v'\n"])
        self.check([first, ("id,w\n", "F,U")], [action("join", "type='1'", keys=["id"])], "id,day,v,w\n1,a,x,\n2,a,y,\n2,b,z,\n")

    def test_keys_are_equal_times(self):
        """The kind of one side is enough."""
        inputs = [("at,v\n2026-01-01 10:00,x\n2026-01-02,y\n", ""), ("when,w\n2026-01-01T10:00:00,8\n2026-01-02T00:00,9\n", "")]
        for kind in ("at=datetime", "when=datetime"):
            self.check(inputs, [action("join", keys=["at=when"], kinds=[kind])], "at,v,w\n2026-01-01 10:00,x,8\n2026-01-02,y,9\n")

    def test_errors(self):
        first, second = ("id,v\n1,x\n", "K,U"), ("id,v,v_2\na,b,c\n", "")
        for element, message in [
                (action("join", keys=["x"]), "Error: join: the first table has no column 'x' (columns: id, v)\n"),
                (action("join", keys=["v=x"]), "Error: join: the second table has no column 'x' (columns: id, v, v_2)\n"),
                (action("join"), "Error: join: no column to join by (keys)\n"),
                (action("join", keys=["id"]), "Error: join: the key 'id' is a text in one table and a number in the other; state the kind of the text "
                                              "column (for example 'id=decimal' in kinds)\n"),
                (action("join", "type='2'", keys=["id"], kinds=["id=integer"]),
                 "Error: join: the key 'id' has different types in the two tables, which a full join does not allow\n"),
                (action("join", "suffix=''", keys=["v=v_2"]), "Error: join: two columns of the output have the name 'id'; choose another suffix\n"),
                (action("join", keys=["id"], kinds=["id=integer"]), "Error: join: second table, row 1: 'a' in column 'id' is not a number\n")]:
            self.check_error([first, second], element, message)


class Union(Folder):
    def test_columns_and_types(self):
        a, b = ("a,b\n1,x\n2,\n", "K,U"), ("c,a\n0.5,7\n,3\n", "F,F")
        self.check([a, b, a], [action("union")], "a,b,c\n1,x,\n2,,\n7,,0.5\n3,,\n1,x,\n2,,\n")
        self.check([a, b], [action("union", "match='1'")], "a,b\n1,x\n2,\n0.5,7\n,3\n")
        self.check([a, a], [action("union", "match='2'")], "a,b\n1,x\n2,\n1,x\n2,\n")
        self.check([("a\n1\n\n", "K"), ("a\nx\n", "")], [action("union")], "a\n1\n\nx\n")
        self.check([("a\n1\n\n", "K"), ("a\n0.5\n", "F")], [action("union")], "a\n1\n\n0.5\n")
        self.check([a, b], [action("union", "lastColumn='a'")], "b,c,a\nx,,1\n,,2\n,0.5,7\n,,3\n")

    def test_errors(self):
        a, b = ("a,b\n1,x\n", ""), ("a,c\n1,x\n", "")
        self.check_error([a, b], action("union", "match='2'"),
                         "Error: union: column 2 of table 2 is 'c', that of the first table is 'b'; match='0' (convert --union) joins columns by name\n")
        self.check_error([a, ("a\n1\n", "")], action("union", "match='1'"),
                         "Error: union: table 2 has 1 columns, the first table has 2; match='0' (convert --union) joins columns by name\n")
        self.check_error([a, ("b,b\n1,x\n", "")], action("union"), "Error: union: two columns of table 2 have the name 'b', but columns are joined by "
                                                                            "name; give them different names\n")


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""JSON and XML files as foreign programs see them: json_xml_test.py CORVANTA

A generated table is written in several forms and compared with what jq, Python's json, expat and xmllint read, and with
what our own readers read back; the runs are repeated under a locale with a decimal comma.
"""
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

CORVANTA = sys.argv.pop(1)
HEADER = ["group", "key", "number", "text"]
# Without control characters: those are written as they are, which these parsers refuse.
TEXTS = ["plain", "a<b>&\"c\"", "Żółć 東京 😀", "back\\slash \\\" \\n", "</text>", " spaces ", "1.5", "TRUE", "null", "x" * 5000]

READ = "<readCSV fileName='in.csv' types='K,K,F,U'/>"
SUBTAGS = ("<Levels><Level commaSeparated='0'><Item text='&lt;row>'/><Item type='3'/><Item text='&lt;/row>'/></Level>"
           "</Levels>")
NESTED = ("<Levels><Level><Item text='{'/><Item type='2'><s>group</s></Item><Item type='6'/><Item text='\"rows\":['/>"
          "<Item type='5' calledLevel='row'/><Item text=']}'/></Level>"
          "<Level name='row' partitionCol='group'><Item text='{'/><Item type='2'><s>key</s><s>number</s><s>text</s></Item>"
          "<Item text='}'/></Level></Levels>")
READ_NESTED = ("<readJSON fileName='nested.json'><Level initialPath=''><e name='group' path='group'/></Level>"
               "<Level initialPath='rows'><e name='key' path='key'/><e name='number' path='number'/>"
               "<e name='text' path='text'/></Level></readJSON>")
NESTED_XML = ("<Levels><Level commaSeparated='0'><Item text='&lt;group'/><Item type='2'><s>group</s></Item><Item text='>'/>"
              "<Item type='8' calledLevel='row'/><Item text='&lt;/group>'/></Level>"
              "<Level name='row' partitionCol='group' commaSeparated='0'><Item text='&lt;row'/><Item type='2'>{attributes}</Item>"
              "<Item text='>'/><Item type='4'>{subtags}</Item><Item text='&lt;/row>'/></Level></Levels>")
READ_NESTED_XML = ("<readXML fileName='{file}'><Level initialPath='data' subtagName='group'><e name='group' path='@group'/></Level>"
                   "<Level subtagName='row'>{items}</Level></readXML>")


def make_table(rows):
    """Sorted by group; numbers that %g shows whole."""
    choice = random.Random(5)
    table = []
    for i in range(rows):
        key = choice.choice([i, 0, 4294967293, None])
        number = choice.choice([None, 0.0, -2.5, 1e300, round(choice.uniform(-99, 99), 3), 123456.0])
        table.append([i // 7, key, number, choice.choice([None, "", *TEXTS])])
    return table


def cell_text(value):
    return "" if value is None else format(value, "g") if isinstance(value, float) else str(value)


def without_missing(row):
    return {name: value for name, value in zip(HEADER, row) if value is not None}


class Writers(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_peer_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.table = make_table(3000)
        self.write_table("in.csv", self.table)

    def write_table(self, name, table):
        with open(self.folder / name, "w", encoding="utf-8", newline="") as out:
            out.write(",".join(HEADER) + "\n")
            for row in table:
                text = "" if row[3] is None else '"' + row[3].replace('"', '""') + '"'
                out.write(",".join(cell_text(value) for value in row[:3]) + "," + text + "\n")

    def run_chain(self, *actions, environment=None):
        lines = [f"<action id='a{i}'>{action}</action>" for i, action in enumerate(actions)]
        lines += [f"<link from='a{i}:0' to='a{i + 1}:0'/>" for i in range(len(actions) - 1)]
        (self.folder / "case.graph").write_text("<graph version='4.11'>" + "".join(lines) + "</graph>")
        done = subprocess.run([CORVANTA, "run", str(self.folder / "case.graph"), "--log-format", "json"], text=True,
                              capture_output=True, env={**os.environ, **(environment or {})}, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_json_holds_every_cell(self):
        self.run_chain(READ, "<writeJSON fileName='out.json' specialBool='0'/>")
        jq = subprocess.run(["jq", "-c", ".[]", str(self.folder / "out.json")], capture_output=True, text=True, check=True)
        rows = [json.loads(line) for line in jq.stdout.splitlines()]
        expected = [without_missing(row) for row in self.table]
        for row in rows + expected:  # jq cannot show 1e300
            row["number"] = None if row.get("number") == 1e300 or row.get("number") == sys.float_info.max else row.get("number")
        self.assertEqual(rows, expected)
        self.assertEqual(json.loads((self.folder / "out.json").read_text("utf-8")),
                         [without_missing(row) for row in self.table])

    def test_nested_json_comes_back_through_the_reader(self):
        self.run_chain(READ, f"<writeJSON fileName='nested.json' specialBool='0'>{NESTED}</writeJSON>")
        groups = json.loads((self.folder / "nested.json").read_text("utf-8"))
        rows = [{"group": group["group"], **row} for group in groups for row in group["rows"]]
        self.assertEqual(rows, [without_missing(row) for row in self.table])
        self.run_chain(READ_NESTED, "<writeCSV fileName='back.csv'/>")
        self.assertEqual((self.folder / "back.csv").read_bytes(), self.as_text_table())

    def as_text_table(self):
        """The table as writeCSV writes it when all columns are text."""
        self.run_chain("<readCSV fileName='in.csv' types='U,U,U,U'/>", "<writeCSV fileName='expected.csv'/>")
        return (self.folder / "expected.csv").read_bytes()

    def test_xml_holds_every_cell_in_every_encoding(self):
        writers = [f"<writeXML fileName='{mode}{human}.xml' charMode='{mode}' humanReadable='{human}'>{SUBTAGS}</writeXML>"
                   for mode in range(4) for human in range(2)]
        self.run_chain(READ, *writers)
        expected = [{name: cell_text(value) for name, value in without_missing(row).items()} for row in self.table]
        for mode in range(4):
            for human in range(2):
                path = self.folder / f"{mode}{human}.xml"
                subprocess.run(["xmllint", "--noout", "--huge", str(path)], check=True)
                root = xml.etree.ElementTree.parse(path).getroot()
                self.assertEqual([{cell.tag: cell.text or "" for cell in row} for row in root], expected)

    def nested_xml_comes_back(self, attributes, subtags, expected):
        """Two levels in every encoding, with the columns of the rows as attributes or subtags of theirs."""
        parts = {"attributes": "".join(f"<s>{name}</s>" for name in attributes), "subtags": "".join(f"<s>{name}</s>" for name in subtags)}
        paths = [f"@{name}" for name in attributes] + subtags
        items = "".join(f"<e name='{path.strip('@')}' path='{path}'/>" for path in sorted(paths, key=lambda path: path.strip("@")))
        self.write_table("expected.csv", expected)
        self.run_chain("<readCSV fileName='expected.csv' types='U,U,U,U'/>", "<writeCSV fileName='expected.csv'/>")
        for mode in range(4):
            for human in range(2):
                name = f"{mode}{human}.xml"
                self.run_chain(READ, f"<writeXML fileName='{name}' charMode='{mode}' humanReadable='{human}'>"
                                     f"{NESTED_XML.format(**parts)}</writeXML>")
                self.run_chain(READ_NESTED_XML.format(file=name, items=items), "<writeCSV fileName='back.csv'/>")
                self.assertEqual((self.folder / "back.csv").read_bytes(), (self.folder / "expected.csv").read_bytes(), name)

    def test_nested_xml_comes_back_through_the_reader(self):
        self.table += [[1000, 1, 0.5, "two\r\nlines\tand &#65; ]]>"]]
        self.write_table("in.csv", self.table)
        # Text between tags loses the spaces before it; nothing between them is a missing value.
        self.nested_xml_comes_back(["key"], ["number", "text"], [row[:3] + [(row[3] or "").lstrip() or None] for row in self.table])

    def test_nested_xml_comes_back_from_attributes(self):
        self.table = [row[:3] + [None if row[3] is None or set(row[3]) & set("\"'") else row[3]] for row in self.table]
        self.write_table("in.csv", self.table)
        self.nested_xml_comes_back(["key", "number", "text"], [], self.table)

    def test_attributes_hold_what_xml_can_hold(self):
        self.table = [row[:3] + [None if row[3] is None or set(row[3]) & set("<\"'") else row[3]] for row in self.table]
        self.write_table("in.csv", self.table)
        self.run_chain(READ, "<writeXML fileName='out.xml' nullString='1'/>")
        subprocess.run(["xmllint", "--noout", "--huge", str(self.folder / "out.xml")], check=True)
        root = xml.etree.ElementTree.parse(self.folder / "out.xml").getroot()
        self.assertEqual([row.get("text") for row in root], [row[3] or "" for row in self.table])
        self.assertEqual([row.get("number") for row in root],
                         [None if row[2] is None else cell_text(row[2]) for row in self.table])

    def test_a_comma_locale_changes_nothing(self):
        made = subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", str(self.folder / "de_DE.UTF-8")],
                              capture_output=True, check=False)
        if made.returncode not in (0, 1) or not (self.folder / "de_DE.UTF-8").exists():
            self.skipTest("the German locale cannot be made")
        writers = ["<writeJSON fileName='{0}.json' floatToString='%.2f'/>", "<writeXML fileName='{0}.xml' floatToString='%e'/>"]
        self.run_chain(READ, *(w.format("c") for w in writers), environment={"LC_ALL": "C.UTF-8"})
        german = {"LOCPATH": str(self.folder), "LC_ALL": "de_DE.UTF-8"}
        self.run_chain(READ, *(w.format("de") for w in writers), environment=german)
        for ending in ("json", "xml"):
            self.assertEqual((self.folder / f"c.{ending}").read_bytes(), (self.folder / f"de.{ending}").read_bytes())


if __name__ == "__main__":
    unittest.main()

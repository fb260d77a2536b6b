#!/usr/bin/python3
"""Mistakes in graphs and on the command line: check_test.py CORVANTA"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
MODES = "allowed: 0 (Create a new Excel File (or overwrite an existing file)), 1 ("


class Case(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_check_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name).resolve()
        (self.folder / "in.csv").write_text("a,day\n1,2020-01-01\n")

    def corvanta(self, *words, status=0, **more):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output="stdout" not in more, text=True, timeout=60,
                              check=False, **more)
        self.assertEqual(done.returncode, status, f"{words}: {done.stderr}")
        return done

    def graph(self, *lines, reader="<readCSV fileName='in.csv'/>"):
        """A graph of a reader `in` on line 2 and of `lines`, from line 3 on."""
        text = "\n".join(["<graph version='4.11'>", f"<action id='in'>{reader}</action>", *lines, "</graph>"])
        (self.folder / "g.graph").write_text(text)

    def writer(self, parameters, name="w"):
        """A linked action."""
        return f"<action id='{name}'>{parameters}</action><link from='in:0' to='{name}:0'/>"

    def problems(self, command, *words, status):
        """Level and text after "Error: " or "Warning: " of each message."""
        done = self.corvanta(command, "g.graph", "--log-format", "json", *words, status=status)
        messages = [json.loads(line) for line in done.stderr.splitlines()]
        return [(m["level"], m["message"].split(": ", 1)[1]) for m in messages]

    def check(self, *expected):
        """`expected`: parts of the only problem; check fails."""
        found = self.problems("check", status=2)
        self.assertEqual(len(found), 1, found)
        for part in expected:
            self.assertIn(part, found[0][1])
        self.assertEqual(found[0][0], 1)


class Mistakes(Case):
    def test_each_is_an_error_of_check_and_a_warning_of_run(self):
        cases = [
            ("<writeExcel fileNameDestination='o.xlsx' sheetname='x'/>", ["unknown attribute 'sheetname'", "'sheetName'"]),
            ("<writeExcel fileNameDestination='o.xlsx' todate='x'/>", ["unknown attribute 'todate' of 'writeExcel'; 'ToDate' is an element in 'writeExcel'"]),
            ("<writeExcel fileNameDestination='o.xlsx'><ToDat><s>day</s></ToDat></writeExcel>", ["'ToDat'", "name is 'ToDate'"]),
            ("<writeExcel fileNameDestination='o.xlsx'><ToWrite>a</ToWrite></writeExcel>", ["text 'a' in 'ToWrite'", "<s>TEXT</s>"]),
            ("<writeExcel fileNameDestination='o.xlsx'><ToWrite><x>a</x></ToWrite></writeExcel>", ["'x' of 'ToWrite'; the only known name is 's'"]),
            ("<writeExcel fileNameDestination='o.xlsx'><ToWrite><s>a</s></ToWrite><ToWrite><s>b</s></ToWrite></writeExcel>",
             ["'ToWrite'", "more than once"]),
            ("<writeExcel fileNameDestination='o.xlsx' mode='9'/>", ["'9' of 'mode'", MODES, "creates a new workbook"]),
            ("<writeExcel fileNameDestination='o.xlsx' startRow='abc'/>", ["'abc' of 'startRow'", "a whole number from 0", "appends"]),
            ("<writeExcel fileNameDestination='o.xlsx' startRow='2147483648'/>", ["'2147483648' of 'startRow'", "at most 2147483647"]),
            ("<writeExcel fileNameDestination='o.xlsx' crop='maybe'/>", ["'maybe' of 'crop'", "allowed: 0, 1", "uses 1"]),
            ("<writeExcel fileNameDestination='o.xlsx' dateFormatExcel='99'/>", ["'99' of 'dateFormatExcel'", "uses 11"]),
            ("<writeExcel fileNameDestination='o.xlsx' version='x'/>", ["'x' of 'version'", "a decimal number"]),
            ("<writeExcel fileNameDestination='o.xlsx'>text</writeExcel>", ["the text 'text' in 'writeExcel' is not used"]),
            ("<writeParquet file='o.parquet' pageSize='many'/>", ["'many' of 'pageSize'", "from 1 to 1048576", "uses 1"]),
            ("<writeParquet file='o.parquet' segmentSize='1 MB'/>", ["'1 MB' of 'segmentSize'", "uses 1"]),
            ("<writeJSON fileName='o.json'><Levels><Level><Item type='text' text='x'/></Level></Levels></writeJSON>",
             ["'text' of 'type'", "0 (A simple text), 1 (A dictionary containing all columns)", "uses 0"]),
            ("<writeJSON fileName='o.json'><Levels><Level><Item type='8'/><Item text='x'/></Level></Levels></writeJSON>",
             ["'8' of 'type'", "writes nothing"]),
            ("<writeJSON fileName='o.json'><Levels><Level nam='x'><Item text='x'/></Level></Levels></writeJSON>", ["'nam' of 'Level'"]),
            ("<writeJSON fileName='o.json'><Levels><Lvl/><Level><Item text='x'/></Level></Levels></writeJSON>", ["'Lvl' of 'Levels'; the only known name is 'Level'"]),
            ("<writeJSON fileName='o.json'><Levels><Level><Itm/><Item text='x'/></Level></Levels></writeJSON>", ["'Itm' of 'Level'"]),
            ("<writeJSON fileName='o.json'><Prefix a='1'>[</Prefix></writeJSON>", ["unknown attribute 'a' of 'Prefix'"]),
            ("<writeCSV fileName='o.csv'><x/></writeCSV>", ["unknown element 'x' of 'writeCSV'"]),
        ]
        for parameters, parts in cases:
            self.graph("", self.writer(parameters))
            self.check("g.graph:4: the action 'w'", *parts)
            ran = self.problems("run", status=0)
            self.assertEqual(ran[0], (2, self.problems("check", status=2)[0][1]), parameters)
            self.assertTrue(any(self.folder.glob("o.*")), parameters)
            for path in self.folder.glob("o.*"):
                path.unlink()
            self.assertEqual(self.problems("run", "--strict", status=2), self.problems("check", status=2))
            self.assertFalse(any(self.folder.glob("o.*")), parameters)

    def test_problems_as_json(self):
        self.graph(self.writer("<writeCSV fileName='o.csv' x='1'/>"), "<action id='q'><writeJSON fileName='o.json' floatToString='%a'/></action>")
        done = self.corvanta("check", "g.graph", "--json", status=2)
        problems = json.loads(done.stdout)
        self.assertEqual([(p["level"], p["severity"], p["file"], p["line"]) for p in problems],
                         [(1, "error", "g.graph", 3), (2, "warning", "g.graph", 4), (2, "warning", "g.graph", 4)], problems)
        self.assertRegex(problems[0]["message"], "^the action 'w' .*: unknown attribute 'x'")
        self.assertIn("'%a' prints numbers that JSON does not have", str(problems))
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"))
        self.assertEqual(json.loads(self.corvanta("check", "g.graph", "--json").stdout), [])
        listed = json.loads(self.corvanta("check", "g.graph", "--json", "--list-outputs").stdout)
        self.assertEqual(listed, [str(self.folder / "o.csv")])
        problems = json.loads(self.corvanta("check", "none.graph", "--json", status=2).stdout)
        self.assertEqual(([p["file"] for p in problems], "line" in problems[0]), (["none.graph"], False))
        # Names that look like a name with a line.
        for name in ("none:1", "none: 1: x"):
            problem = json.loads(self.corvanta("check", name, "--json", status=2).stdout)[0]
            self.assertEqual((problem["file"], "line" in problem, name in problem["message"]), (name, False, False), problem)
        self.assertEqual(self.corvanta("check", "g.graph", "--json", "--set", "a=b", status=2).stdout, "")

    def test_every_parameter_of_every_action(self):
        """Misspelled names and wrong values; the wrong values are allowed by none of the types."""
        wrong = {"integer": "x", "real": "x", "flag": "x"}
        for action in json.loads(self.corvanta("actions", "--json").stdout):
            infos = json.loads(self.corvanta("describe", action["type"], "--json").stdout)["parameters"]
            lines, expected = [], []
            for number, info in enumerate(infos):
                attribute = info["type"] != "strings" and info["type"] != "structure" and not info["name"][0].isupper()
                name = info["name"]
                kind = "attribute" if attribute else "element"
                content = f" {name}_='1'/>" if attribute else f"><{name}_/></{action['type']}>"
                lines.append(f"<action id='n{number}'><{action['type']}{content}</action>")
                expected.append(f"unknown {kind} '{name}_' of '{action['type']}'; the nearest known name is '{name}'")
                if info["type"] in wrong:
                    lines.append(f"<action id='v{number}'><{action['type']} {name}='x'/></action>")
                    expected.append(f"the value 'x' of '{name}' is not allowed")
            self.graph(*lines)
            found = [text.split(": ", 2)[2] for level, text in self.problems("check", status=2) if level == 1]
            found = [text for text in found if text.startswith(("unknown", "the value"))]
            self.assertEqual([text[:len(e)] for text, e in zip(found, expected)], expected)
            self.assertEqual(len(found), len(expected))

    def test_child_elements_are_checked_too(self):
        (self.folder / "t.xlsx").write_text("")
        for parameters, parts in [
                ("<writeReport output='o.xlsx' template='t.xlsx'><Chart type='99' name='c'/></writeReport>", ["'99' of 'type'", "uses 14"]),
                ("<writeReport output='o.xlsx' template='t.xlsx'><Chart name='c'><axis pinIdx='x'>a</axis></Chart></writeReport>",
                 ["'x' of 'pinIdx'", "a whole number"]),
                ("<writeDocTable output='o.docx' template='t.xlsx'><v colWidths='9,x'/></writeDocTable>",
                 ["the width 'x' of the table on input pin 1 is not allowed; allowed: a whole number from 1 to 31680"]),
                ("<writeSAS fileName='o.sas7bdat'><StringColDef><CD n='a' l='-1'/></StringColDef></writeSAS>", ["'-1' of 'l'", "from 0"]),
                ("<writeSAS fileName='o.sas7bdat'><StringColDef><CD n='a' l='w'/></StringColDef></writeSAS>", ["'w' of 'l'"])]:
            self.graph(self.writer(parameters))
            found = self.problems("check", status=2)
            for part in parts:
                self.assertIn(part, found[0][1])
        self.graph(self.writer("<writeSASXPT fileName='o.xpt' encoding='utf-16'><VariableDef><V n='a' format='day'/></VariableDef></writeSASXPT>"))
        found = self.problems("check", status=2)
        self.assertIn("the encoding 'utf-16' is unknown, or its characters have several bytes", found[0][1])
        self.assertIn("'day' is not a format of SAS", found[1][1])

    def test_values_that_only_the_action_knows(self):
        for reader, problem in [
                ("<readExcel fileName='in.csv' sheetMode='2'/>", "the value '2' of 'sheetMode' is not allowed; allowed: 0 (by number), 1 (by "
                 "name); the action reads the sheet of sheetIdx"),
                ("<readStat fileName='in.csv' fileFormat='5'/>", "the value '5' of 'fileFormat' is not allowed; allowed: a whole number from "
                 "-1 to 4; the action goes by the ending of the file name"),
                ("<readStat fileName='in.csv' encoding='Klingon'/>", "the encoding 'Klingon' is unknown"),
                ("<readXML fileName='in.csv' encoding='Klingon'/>", "the encoding 'Klingon' is unknown")]:
            self.graph(reader=reader)
            self.check("g.graph:2:", problem)
        for reader in ("<readStat fileName='in.csv' fileFormat='4' encoding='WINDOWS-1252'/>", "<readXML fileName='in.csv' encoding='AUTO'/>",
                       "<readXML fileName='in.csv' encoding=''/>",
                       "<readXML fileName='in.csv' encoding='System'/>", "<readXML fileName='in.csv' encoding='gb2312'/>"):
            self.graph(reader=reader)
            self.assertEqual(self.problems("check", status=0), [])
        for pin in ("-1", "1"):
            self.graph(self.writer("<writeReport output='o.docx' template='>line.docx'><Chart type='2' name='data'><axis pinIdx='0'>day"
                                   f"</axis><axis pinIdx='{pin}'>a</axis></Chart></writeReport>"))
            self.check("g.graph:3:", f"the axis 'a' of the Chart 'data' has the input pin {pin}; allowed: a whole number from 0 to 0")

    def test_parts_of_the_graph(self):
        self.graph(self.writer("<writeCSV fileName='o.csv'/>").replace("id=", "idx='1' id=").replace("<link", "<link too=''"))
        found = self.problems("check", status=2)
        self.assertIn("g.graph:3: unknown attribute 'idx' of 'action'; the nearest known name is 'id'", found[0][1])
        self.assertIn("unknown attribute 'too' of 'link'; the nearest known name is 'to'", found[1][1])
        self.graph("<variable name='v' value='1'><x/></variable>", "stray", self.writer("<writeCSV fileName='o.csv'/>"))
        self.assertEqual([text for _, text in self.problems("check", status=2)],
                         ["g.graph:1: the text 'stray' in 'graph' is not used", "g.graph:3: unknown element 'x' of 'variable'"])

    def test_levels_of_readers(self):
        (self.folder / "x.json").write_text('[{"a":1}]')
        inline = "initialPath='' subtagName=''"
        for content, parts in [
                ("<readJSON fileName='x.json'><Level %s><e pth='a'/></Level></readJSON>", ["unknown attribute 'pth'", "'path'"]),
                ("<readJSON fileName='x.json' %s><e path='a'/><Level/></readJSON>", ["'Level' of 'readJSON' is not used"]),
                ("<readJSON fileName='x.json' subtagName='b'><Level %s><e path='a'/></Level></readJSON>", ["'subtagName'", "not used"]),
                ("<readJSON fileName='x.json'><Levl %s/></readJSON>", ["unknown element 'Levl'", "'Level'"])]:
            self.graph(reader=content % inline)
            self.check("g.graph:2:", *parts)
        for content in ("<readJSON fileName='x.json' %s><e path='a'/></readJSON>",
                        "<readJSON fileName='x.json'><Level %s><e path='a'/></Level></readJSON>"):
            self.graph(reader=content % inline)
            self.assertEqual(self.problems("check", status=0), [])

    def test_the_line_is_where_the_element_begins(self):
        self.graph("", "<action id='w'><writeExcel\n\n  fileNameDestination='o.xlsx'\n  mode='9'>", "\n<ToDat\n/></writeExcel></action>",
                   "<link from='in:0' to='w:0'/>")
        self.assertEqual([text.split(": ")[0] for _, text in self.problems("check", status=2)], ["g.graph:4", "g.graph:9"])

    def test_values_that_are_not_mistakes(self):
        self.graph("<variable name='n' value='3'/>",
                   self.writer("<writeExcel fileNameDestination='o.xlsx' startRow='${n}' sheetMode='7' crop='true' runExcel='no'/>"))
        self.assertEqual(self.problems("check", status=0), [])


    def test_numbers_of_the_graph(self):
        (self.folder / "g.graph").write_text("<graph version='four'>\n<variable name='v' value='1'/><variable name='v' value='2'/>\n"
                                             "<action id='in' x='left'><readCSV fileName='in.csv'/></action></graph>")
        self.assertEqual(self.problems("check", status=2), [
            (1, "g.graph:1: the value 'four' of 'version' is not allowed; allowed: a decimal number; the graph uses 0"),
            (2, "g.graph:2: the variable 'v' is defined twice; the last value is used"),
            (1, "g.graph:3: the value 'left' of 'x' is not allowed; allowed: a decimal number; the graph uses 0")])
        self.assertEqual(self.problems("run", status=0), [(2, text) for _, text in self.problems("check", status=2)])

    def test_a_valid_graph_is_counted(self):
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"))
        self.assertEqual(self.corvanta("check", "g.graph").stdout, "g.graph: 2 actions, 1 link: valid\n")


class Missing(Case):
    def test_inputs(self):
        link = "<action id='n'><writeCSV fileName='n.csv'/></action><link from='in:0' to='n:0'/>"
        for name in ("nope.csv", "nope*.csv", "nope.zip@a.csv", "."):
            self.graph(link, reader=f"<ReadXBF fileName='{name}'/>")
            self.check("g.graph:2: the action 'in' (ReadXBF): the file", name.split("@")[0])
        self.graph(link, reader="<readParquet fileName='nope.parquet' abortIfMissing='0'/>")
        self.assertEqual([level for level, _ in self.problems("check", status=0)], [2])
        self.graph(reader="<readJSON fileName='in.c*'/>")
        self.assertEqual(self.problems("check", status=0), [])
        self.graph(self.writer("<writeExcel fileNameDestination='o.xlsx' fileNameSource='nope.xlsx' mode='3'/>"))
        self.check("'fileNameSource'")
        self.graph(self.writer("<writeExcel fileNameDestination='o.xlsx' fileNameSource='nope.xlsx'/>"))
        self.assertEqual(self.problems("check", status=0), [], "a file that is not used")

    def test_folders(self):
        self.graph(self.writer("<writeJSON fileName='no/o.json'/>"))
        self.check(f"folder '{self.folder}/no' of the target does not exist", "createDir='1'")
        self.graph(self.writer("<writeJSON fileName='no/o.json' createDir='1'/>"))
        self.problems("check", status=0)
        (self.folder / "dir").mkdir()
        self.graph(self.writer("<writeCSV fileName='dir'/>"))
        self.check(f"target '{self.folder}/dir' is a folder")
        self.graph(self.writer("<writeCSV fileName='no/o.csv'/>"))
        self.assertIn("out/no' of the target", self.problems("check", "--out-dir", "out", status=2)[0][1])
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"))
        self.problems("check", "--out-dir", "out/below", status=0)
        self.corvanta("run", "g.graph", "--out-dir", "out/below")
        self.assertTrue((self.folder / "out/below/o.csv").exists())
        done = self.corvanta("run", "g.graph", "--out-dir", "g.graph/below", status=1)
        self.assertIn("cannot create the folder 'g.graph/below' of --out-dir: ", done.stderr)

    def test_required_values(self):
        empty = [("<writeCSV/>", "fileName"), ("<writeJSON fileName=''/>", "fileName"), ("<writeXML/>", "fileName"),
                 ("<writeParquet/>", "file"), ("<writeExcel/>", "fileNameDestination"), ("<writeCSV fileName='${v}'/>", "fileName"),
                 ("<writeExcel fileNameDestination='o.xlsx' mode='4'/>", "fileNameSource"),
                 ("<writeJSON fileName='o.json' splitFile='1'/>", "splitCol"),
                 ("<writeParquet file='o.parquet' split='1'/>", "splitVar"),
                 ("<writeJSON fileName='o.json' writeAllRows='0'/>", "testCol"),
                 ("<writeParquet file='o.parquet' writeAllColumns='0'/>", "ToWrite")]
        for parameters, name in empty:
            self.graph("<variable name='v' value=''/>", self.writer(parameters))
            self.check(f"g.graph:4: the action 'w' ({parameters[1:].split()[0].split('/')[0]}): '{name}' is required and empty")
        for reader in ("readCSV", "readJSON", "readXML", "readParquet", "ReadXBF"):
            self.graph(reader=f"<{reader}/>")
            self.check(f"({reader}): 'fileName' is required and empty")

    def test_folder_below_a_file(self):
        self.graph(self.writer("<writeJSON createDir='1' fileName='in.csv/sub/o.json'/>"))
        self.check("in.csv/sub' of the target does not exist, and '", "in.csv' is not a folder")

    def test_unknown_variables_are_the_only_problem(self):
        for reader, name in [("<readCSV fileName='in.csv' types='${y}'/>", "types"), ("<readCSV fileName='${y}.csv'/>", "fileName"),
                             ("<readCSV fileName='in.csv' separator='${y}'/>", "separator")]:
            self.graph(reader=reader)
            self.check(f"uses the unknown variable '${{y}}' in '{name}'")
        for parameters, name in [("sheetIdx='${y}'", "sheetIdx"), ("floatToString='${y}'", "floatToString"),
                                 ("namedRange='${y}${y}'", "namedRange")]:
            self.graph(self.writer(f"<writeExcel fileNameDestination='o.xlsx' {parameters}/>"))
            self.check(f"uses the unknown variable '${{y}}' in '{name}'")

    def test_values_that_fail_a_run(self):
        self.graph(reader="<readCSV fileName='in.csv' separator=',,' types='K,X'/>")
        self.assertEqual([text.split(": ")[2] for _, text in self.problems("check", status=2)],
                         ["the separator ',,' is not one ASCII character", "'X' is not a column type (K, F, U)"])

    def test_forms_of_text_files(self):
        self.graph(self.writer("<writeCSV fileName='o.csv' encoding='nowhere' lineEnd='cr'/>"),
                   reader="<readCSV fileName='in.csv' encoding='none' decimal='' quote=',' ragged='x'><dateFormat><s>day</s></dateFormat></readCSV>")
        self.assertCountEqual([text.split(": ")[2] for _, text in self.problems("check", status=2)], [
            "the encoding 'none' is unknown", "decimal='' is not one ASCII character other than the separator",
            "quote=',' is not one ASCII character other than the separator", "'day' is not of the form COLUMN=FORMAT",
            "ragged='x' is neither 'error' nor 'fill'", "the encoding 'nowhere' is unknown", "lineEnd='cr' is neither 'lf' nor 'crlf'"])


class Hints(Case):
    def test_writer_without_a_link(self):
        self.graph("<action id='w'><writeCSV fileName='o.csv'/></action>")
        self.assertEqual(self.problems("check", status=0), [(2, "g.graph:3: the action 'w' (writeCSV): no link leads to this writer")])
        self.graph(reader="<readParquet fileNameFromPin='1'/>")
        self.assertEqual(self.problems("check", status=0),
                         [(2, "g.graph:2: the action 'in' (readParquet): no link leads to its input pins")])

    def test_variable_that_is_not_replaced(self):
        for parameters in ("<writeExcel fileNameDestination='o.xlsx' namedRange='${y}'/>",
                           "<writeExcel fileNameDestination='o.xlsx'><ToDate><s>${y}</s></ToDate></writeExcel>",
                           "<writeJSON fileName='o.json'><Levels><Level><Item text='${y}'/></Level></Levels></writeJSON>"):
            self.graph("<variable name='y' value='1'/>", self.writer(parameters))
            found = [text for level, text in self.problems("check", status=0) if level == 2]
            self.assertTrue(any("'${y}' is used literally" in text for text in found), found)
        self.graph("<variable name='y' value='1'/>",
                   self.writer("<writeJSON fileName='o${y}.json'><Prefix>${y}[</Prefix></writeJSON>"),
                   self.writer("<writeExcel fileNameDestination='o.xlsx' sheetName='${y}' sheetIdx='${y}' dateFormat='${y}'/>", "x"))
        self.assertEqual(self.problems("check", status=0), [])


class Outputs(Case):
    def test_are_listed(self):
        self.graph("<variable name='y' value='7'/>", self.writer("<writeCSV fileName='o${y}.csv'/>", "a"),
                   self.writer("<writeExcel fileNameDestination='b.xlsx'/>", "b"), self.writer("<writeParquet file='/tmp/c.parquet'/>", "c"))
        (self.folder / "sub").mkdir()
        done = self.corvanta("check", "g.graph", "--list-outputs", "--out-dir", "sub")
        self.assertEqual(done.stdout.splitlines(), [f"{self.folder}/sub/o7.csv", f"{self.folder}/sub/b.xlsx", "/tmp/c.parquet"])
        self.graph(self.writer("<writeCSV/>"))
        self.assertEqual(self.corvanta("check", "g.graph", "--list-outputs", status=2).stdout, "")


class CommandLine(Case):
    def test_nearest_names(self):
        for words, name in [("ruun g.graph", "run"), ("help chek", "check"), ("describe writeexcel", "writeExcel"),
                            ("convert in.csv o.xlsx --wrter mode=1", "--writer"), ("run g.graph --sett a=1", "--set"),
                            ("convert in.csv o.xlsx --writer sheetnam=x", "sheetName"), ("head in.csv --reader typs=K", "types")]:
            self.assertIn(f"; the nearest known name is '{name}'", self.corvanta(*words.split(), status=2).stderr, words)
        for words in ("frobnicate", "run g.graph --foo", "convert in.csv o.xlsx --writer colomn=x", "describe nothing"):
            self.assertNotIn("nearest", self.corvanta(*words.split(), status=2).stderr, words)
        self.graph("<action id='w'><writeExel/></action>")
        self.assertIn("'writeExel'; the nearest known name is 'writeExcel'", self.corvanta("run", "g.graph", status=2).stderr)

    def test_graph_files_that_cannot_be_read(self):
        for name, reason in [("no.graph", "there is no file with this name"), (".", "is a folder"), ("/dev/null", "not a regular file"),
                             ("in.csv/x", "is not a folder"), ("no/x", "no' does not exist")]:
            for command in ("run", "check"):
                self.assertRegex(self.corvanta(command, name, status=2).stderr, f"cannot read the graph file: .*{reason}")

    def test_names_that_are_arguments(self):
        for words, option in [("--writer fileName=z.csv", "--writer"), ("--reader fileName=z.csv", "--reader")]:
            error = self.corvanta("convert", "in.csv", "o.csv", *words.split(), status=2).stderr
            self.assertRegex(error, f"'fileName=z.csv': the file to .* is the argument '.*'; {option} cannot replace it")
        self.assertFalse(any(self.folder.glob("[oz].csv")))

    def test_system_encodings(self):
        for words in ("head in.csv", "convert in.csv o.csv"):
            self.assertIn("--system-encoding: the encoding 'nope' is unknown (windows-1252 is an example)", self.corvanta(*words.split(), "--system-encoding", "nope", status=2).stderr)
            self.corvanta(*words.split(), "--system-encoding", "ISO-8859-2")

    def test_values_of_parameters(self):
        (self.folder / "x.json").write_text('[{"a":1}]')
        for words, part in [("in.csv o.xlsx --writer mode=7", MODES), ("in.csv o.xlsx --writer crop=2", "allowed: 0, 1"),
                            ("in.csv o.xlsx --writer startRow=x", "a whole number from 0"),
                            ("in.csv o.parquet --writer pageSize=0", "a whole number from 1 to 1048576"),
                            ("in.csv o.parquet --writer segmentSize=x", "a decimal number"),
                            ("x.json o.csv --reader Level=x", "XML elements 'Level'"),
                            ("x.json o.csv --reader Level=<Lvl/>", "XML elements 'Level'"),
                            ("x.json o.csv --reader Level=<Level><e", "XML elements 'Level'"),
                            ("in.csv o.json --writer Levels=<Levels><Level><Item/></Level></Levels><x/>", "unknown element 'x'")]:
            self.assertIn(part, self.corvanta("convert", *words.split(" ", 3), status=2).stderr, words)
            self.assertFalse(any(self.folder.glob("o.*")), words)

    def test_variables_that_are_not_used(self):
        self.graph("<variable name='year' value='1'/>", self.writer("<writeCSV fileName='${year}.csv'/>"))
        for command in ("run", "check"):
            found = self.problems(command, "--set", "yaer=2", status=2)
            self.assertEqual(found, [(1, "--set yaer: the graph does not use the variable 'yaer'; the nearest known name is 'year'")])
            self.problems(command, "--set", "year=2", status=0)
        self.graph(self.writer("<writeCSV fileName='${outDir}/x.csv'/>"))
        self.problems("run", "--set", f"outDir={self.folder}", status=0)

    def test_usage_errors_for_programs(self):
        for words in ("run", "run g.graph --nope", "nope", "convert a b", "convert in.csv o.xlsx --writer x=1", "check --set=a g.graph"):
            for option in (["--log-format", "json"], ["--log-format=json"]):
                done = self.corvanta(*words.split(), *option, status=2)
                message = json.loads(done.stderr)
                self.assertEqual((message["level"], message["severity"], done.stdout), (1, "error", ""), words)

    def test_each_usage_error_says_what_is_wrong(self):
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"))
        for words, text in {
                "": "a command is required", "run": "one graph file is required", "head": "one file is required",
                "convert in.csv": "an input and an output file are required", "describe": "one action type is required",
                "actions x": "no argument is expected",
                "head --colour in.csv": "unknown option '--colour'",
                "head in.csv -n x": "-n needs a number of rows",
                "head in.csv --log-format xml": "--log-format must be text or json",
                "head in.csv --table 0": "--table needs a table number, from 1",
                "head in.csv --table 2": "--table: 'in.csv' does not contain several tables",
                "run g.graph --set": "the option '--set' needs a value",
                "run g.graph --set x": "'x' is not of the form NAME=VALUE",
                "run g.graph --tap x": "'x' is not of the form ID:PIN=FILE.csv",
                "run g.graph --tap x:0=t.csv": "the graph has no output pin 'x:0' to tap",
                "convert in.csv o.csv --reader nme=1": "unknown parameter 'nme' of readCSV",
                "convert in.csv o.csv --reader header=maybe": "invalid value 'maybe' for parameter 'header' of readCSV (allowed: 0, 1)",
                "convert in.csv o.csv --reader separator=\1": "a name or value contains characters that a graph cannot contain",
                "convert in.csv my o.csv": "no action reads files with the extension of 'my'",
                "head in.csv my": "one file is required, and 'my' is one too many; put names with blanks, and patterns, in quotes",
                "convert in.csv .": "'.' is a folder, not a file; './' writes a CSV file per table into it",
                "convert in.pdf o.csv": "no action reads files with the extension of 'in.pdf' (supported: csv ",
                "convert in.csv report": "no action writes files with the extension of 'report' (supported: csv txt tsv tab json jsonl ndjson xml parquet "
                                         "xlsx sas7bdat xpt; --to FORMAT names the format of a file with another name)",
                "describe readXSV": "unknown action 'readXSV'; the nearest known name is 'readCSV' (\"corvanta actions\" lists all actions)"}.items():
            self.assertIn(f": {text}", self.corvanta(*words.split(" ") if words else (), status=2).stderr)

    def test_output_that_cannot_be_written(self):
        for words in ("actions", "describe readCSV", "head in.csv", "schema in.csv", "--version", "help"):
            for target in ("/dev/full", None):
                with open(target or os.devnull, "wb") as out:
                    close = None if target else lambda: os.close(1)
                    done = self.corvanta(*words.split(), status=1, stdout=out, stderr=subprocess.PIPE, preexec_fn=close)
                    self.assertIn("cannot write to standard output: ", done.stderr)

    def program_elsewhere(self):
        """A copy of the program that finds its library, but no module."""
        build = pathlib.Path(CORVANTA).parent.parent
        (self.folder / "bin").mkdir()
        (self.folder / "lib").mkdir()
        for library in (build / "lib").glob("*.so*"):
            (self.folder / "lib" / library.name).symlink_to(library)
        return shutil.copy(CORVANTA, self.folder / "bin")

    def test_no_module(self):
        done = subprocess.run([self.program_elsewhere(), "actions"], cwd=self.folder, capture_output=True, text=True, check=False,
                              env={**os.environ, "XDG_DATA_HOME": "/no/where"})
        self.assertIn("Warning: no module with actions found in the folders '/no/where/corvanta/plugins', "
                      f"'{self.folder}/lib/corvanta/plugins' (the option --plugin-path and the environment variable "
                      "CORVANTA_PLUGIN_PATH add folders)", done.stderr)
        self.assertIn("there is no folder '/no/where' (--plugin-path)", self.corvanta("actions", "--plugin-path=/no/where", status=2).stderr)

    def test_modules_that_are_refused(self):
        """Each is refused with its reason, and the module of the installation is used."""
        module = pathlib.Path(CORVANTA).parent / "../lib/corvanta/plugins/CorvantaPluginWriteReport.so"
        content, abi = module.read_bytes(), b"\x63abi\x01"
        self.assertEqual(content.count(abi), 1)
        reasons = {"A": (b"no library", "is not a valid ELF object"),
                   "B": (content.replace(abi, b"\x63abx\x01"), "it does not name its plug-in ABI, and this host has ABI 1"),
                   "C": (content.replace(b"Interface/1.0", b"Interface/2.0"),
                         "its interface is 'CorvantaPluginInterface/2.0' instead of 'CorvantaPluginInterface/1.0'"),
                   "CorvantaPluginWriteReport": (content.replace(abi, b"\x63abi\x07"),
                                                 "it is built for plug-in ABI 7, and this host has ABI 1 (build the module with the headers of this host)")}
        for name, (bytes_, _) in reasons.items():
            (self.folder / f"{name}.so").write_bytes(bytes_)
        (self.folder / "D.so").symlink_to(module)
        done = self.corvanta("actions", "--plugin-path", str(self.folder))
        found = {entry["file"]: entry for entry in json.loads(self.corvanta("plugins", "--json", "--plugin-path", str(self.folder)).stdout)}
        for name, (_, reason) in reasons.items():
            file = f"{self.folder}/{name}.so"
            self.assertIn(f"Warning: cannot load the plug-in '{file}': ", done.stderr)
            self.assertIn(reason, done.stderr)
            self.assertFalse(found[file]["loaded"])
            self.assertIn(reason, found[file]["reason"])
        self.assertEqual(len(found[f"{self.folder}/D.so"]["actions"]), 17)
        text = self.corvanta("plugins").stdout
        self.assertIn("\nCorvantaPluginTables  ", text)
        self.assertIn("\n\nSearched folders, in order:\n", text)

    def test_search_path_of_modules(self):
        """The option, the environment variable and the user's folder add modules; the first of a name is used."""
        module = (pathlib.Path(CORVANTA).parent / "../lib/corvanta/plugins/CorvantaPluginTables.so").resolve()
        folders = [self.folder / name for name in ("option", "variable", "user/corvanta/plugins")]
        for folder in folders:
            folder.mkdir(parents=True)
            shutil.copy(module, folder)
        env = {**os.environ, "CORVANTA_PLUGIN_PATH": f"/no/where:{folders[1]}", "XDG_DATA_HOME": str(self.folder / "user")}
        found = json.loads(self.corvanta("plugins", "--json", f"--plugin-path={folders[0]}", env=env).stdout)
        self.assertEqual([entry["file"] for entry in found if entry["name"] == "CorvantaPluginTables"],
                         [f"{folder}/{module.name}" for folder in [*folders, module.parent]])
        self.assertEqual([entry.get("reason", "") for entry in found if entry["name"] == "CorvantaPluginTables"],
                         ["", *3 * [f"'{folders[0]}/{module.name}' is used instead"]])
        shutil.copy(module, folders[0] / "CorvantaPluginA.so")
        module = folders[0] / module.name
        self.assertIn(f"Warning: the plug-in '{module}' has actions with the names of others, which are used instead: 'readCSV', ",
                      self.corvanta("actions", f"--plugin-path={folders[0]}").stderr)
        self.assertIn("not used, because an earlier module has actions with these names: readCSV, ",
                      self.corvanta("plugins", f"--plugin-path={folders[0]}").stdout)

    def test_own_actions_of_the_host(self):
        """They come last, also from the folder of the program when another one is chosen."""
        names = [action["type"] for action in json.loads(self.corvanta("actions", "--json").stdout)]
        self.assertEqual(names[17:19], ["readCSV", "writeCSV"])
        plugins = pathlib.Path(CORVANTA).parent / "../lib/corvanta/plugins"
        (self.folder / "Z.so").symlink_to(plugins / "CorvantaPluginWriteReport.so")
        other = {**os.environ, "CORVANTA_PLUGIN_PATH": str(self.folder)}
        self.assertEqual([action["type"] for action in json.loads(self.corvanta("actions", "--json", env=other).stdout)], names)

    def test_tap_without_the_own_actions_of_the_host(self):
        program = self.program_elsewhere()
        (self.folder / "M.so").symlink_to(pathlib.Path(CORVANTA).parent.parent / "lib/corvanta/plugins/CorvantaPluginWriteReport.so")
        self.graph(reader="<readJSON fileName='in.json'/>")
        done = subprocess.run([program, "run", "g.graph", "--tap", "in:0=tap.csv"], cwd=self.folder,
                              env={**os.environ, "CORVANTA_PLUGIN_PATH": str(self.folder)}, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertIn("--tap needs the action 'writeCSV', which no module has", done.stderr)

    def test_control_characters(self):
        (self.folder / "nul.csv").write_bytes(b"a\nb\0c\x1b[2Jd\r\xc2\x9be\n")
        error = self.corvanta("convert", "nul.csv", "o.csv", "--reader", "types=K", status=1).stderr
        self.assertIn(r"'b\x00c\x1b[2Jd\r\x9be' is not of type K", error)
        error = self.corvanta("convert", "nul.csv", "o.csv", "--reader", "types=K", "--log-format", "json", status=1).stderr
        self.assertIn("'b\0c\x1b[2Jd\r\x9be' is not of type K", json.loads(error)["message"])
        self.assertIn(r"unknown command '\x1b[2J'", self.corvanta("\x1b[2J", status=2).stderr)

    def test_summary(self):
        (self.folder / "in.csv").write_text("a\n" + "1\n" * 1000)
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"), self.writer("<writeXML fileName='o.xml'/>", "x"))
        summary = json.loads(self.corvanta("run", "g.graph", "--progress=always", "--log-format=json", "--tap",
                                           "in:0=t.csv").stderr.splitlines()[-1])
        self.assertEqual((summary["level"], summary["severity"], summary["action"]), (3, "info", ""))
        self.assertEqual(summary["summary"]["rows"], 1000)
        self.assertEqual(sorted(summary["summary"]["files"]), [f"{self.folder}/{name}" for name in ("o.csv", "o.xml", "t.csv")])
        rate = summary["summary"]["megabytesPerSecond"] * summary["summary"]["seconds"]
        self.assertAlmostEqual(rate, 0.002002)
        quiet = self.corvanta("convert", "in.csv", "no/o.csv", "--progress", "always", "--quiet", status=1).stderr.splitlines()
        self.assertIn("Reason: ", quiet[-2])
        last = quiet[-1]
        self.assertRegex(last, r"[0-9]+ rows? read in [0-9.]+ s \([0-9.]+ MB/s\), no file written")
        self.assertRegex(self.corvanta("head", "in.csv", "--progress=always").stderr, r"^[0-9]+ rows? read .*, no file written\n$")
        for words in (["--progress", "auto"], ["--progress", "never"], []):
            self.assertEqual(self.corvanta("convert", "in.csv", "o.csv", *words).stderr, "")

    def test_progress_for_programs(self):
        (self.folder / "in.csv").write_text("a\n" + "1\n" * 1000)
        self.graph(self.writer("<writeXML fileName='o.xml'/>", "x"), self.writer("<writeCSV fileName='no/o.csv'/>").replace("in:0", "x:0"))
        words = ["--log-format=json", "--progress=lines", "--log-file=log"]
        lines = [json.loads(line) for line in self.corvanta("run", "g.graph", *words, status=1).stderr.splitlines()]
        self.assertEqual((list(lines[-2])[-1], list(lines[-1])[-1]), ("progress", "summary"))
        states = {action["action"]: action["state"] for action in lines[-2]["progress"]}
        self.assertEqual(states["w"], "failed")
        self.assertIn(states["in"], ("done", "stopped"))
        (self.folder / "no").mkdir()
        lines = [json.loads(line) for line in self.corvanta("run", "g.graph", *words).stderr.splitlines()]
        self.assertEqual(lines[-2]["progress"], [
            {"action": "in", "state": "done", "rowsIn": 0, "rowsOut": [1000], "fraction": 1},
            {"action": "x", "state": "done", "rowsIn": 1000, "rowsOut": [1000], "fraction": 1},
            {"action": "w", "state": "done", "rowsIn": 1000, "rowsOut": [1000], "fraction": 1}])
        self.assertNotIn("progress", (self.folder / "log").read_text())
        self.assertIn("--progress must be auto, always, never or lines", self.corvanta("run", "g.graph", "--progress=x", status=2).stderr)
        self.assertIn("--progress lines needs --log-format json", self.corvanta("run", "g.graph", "--progress=lines", status=2).stderr)

    def test_a_graph_from_standard_input(self):
        self.graph(self.writer("<writeCSV fileName='o.csv'/>"))
        graph = (self.folder / "g.graph").read_text()
        (self.folder / "elsewhere").mkdir()
        name = str(self.folder / "new.graph")
        self.corvanta("run", "-", "--name", name, input=graph)
        self.assertEqual((self.folder / "o.csv").read_text(), "a,day\n1,2020-01-01\n")
        error = self.corvanta("check", "-", "--name", name, input=graph.replace("in.csv", "no.csv"), status=2).stderr
        self.assertIn(f"{name}:2: ", error)
        with open(self.folder / "closed", "wb") as closed:
            error = subprocess.run([CORVANTA, "run", "-"], stdin=closed, capture_output=True, text=True, check=False).stderr
        self.assertIn("standard input:", error)
        self.assertIn("standard input:1: ", self.corvanta("run", "-", input="<grap", status=2).stderr)
        self.assertIn('--name needs "-" as the graph', self.corvanta("run", "g.graph", "--name", name, status=2).stderr)

    def test_files_that_are_too_large_for_a_graph(self):
        for size, problem in ((256 << 20, "not well-formed XML"), ((256 << 20) + 1, "the file is too large for a graph")):
            with open(self.folder / "large.graph", "wb") as file:
                file.truncate(size)
            self.assertIn(problem, self.corvanta("check", "large.graph", status=2).stderr)

    def test_help(self):
        for words in ("help help", "help --help", "--help", "-h"):
            self.assertEqual(self.corvanta(*words.split()).stdout, self.corvanta("help").stdout)
        writes = next(line for line in self.corvanta("help", "convert").stdout.splitlines() if line.startswith("  writes"))
        self.assertEqual(writes.split()[1:], "csv txt tsv tab json jsonl ndjson xml parquet xlsx sas7bdat xpt".split())


class WritersWithoutRows(Case):
    def test_say_so(self):
        (self.folder / "in.csv").write_text("a\nx\n")
        for rows, filter_, reason in [("a\n", "", "the input has no rows"),
                                      ("a\nx\n", " writeAllRows='0' testCol='a' testValue='y'", "no row passes the test")]:
            (self.folder / "in.csv").write_text(rows)
            for action, name in (("writeJSON", "JSON"), ("writeXML", "XML")):
                self.graph(self.writer(f"<{action} fileName='o'{filter_}/>"))
                self.assertEqual(self.problems("run", status=0), [
                    (2, f"the {name} file '{self.folder}/o' is not written: {reason} (alwaysWrite='1' writes a file without rows).\n")])
                self.graph(self.writer(f"<{action} fileName='o2' alwaysWrite='1'{filter_}/>"))
                self.assertEqual(self.problems("run", status=0), [])
                (self.folder / "o2").unlink()
        self.graph(self.writer("<writeJSON fileName='o'><Levels><Level><Item type='8'/></Level></Levels></writeJSON>"))
        self.assertIn("nothing of the rows is written", self.problems("run", status=0)[1][1])
        (self.folder / "in.csv").write_text("a\n")
        self.graph(self.writer("<writeParquet file='o' split='1' splitVar='a'/>"))
        self.assertIn("the Parquet file", self.problems("run", status=0)[-1][1])
        self.assertFalse((self.folder / "o").exists())


if __name__ == "__main__":
    unittest.main()

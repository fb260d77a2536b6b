#!/usr/bin/python3
"""What writeReport writes and says: report_test.py CORVANTA"""
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from templates import CHART, FOLDERS, TYPES, axes_of, data_of, graph, members, write_package

CORVANTA = sys.argv.pop(1)
PROJECT = pathlib.Path(__file__).resolve().parents[2]
TEMPLATES = PROJECT / "templates/office"
DATA = "n,a,b,c,d\nNorth,1.5,2,3,4\n\"A<&>\"\"B\",-2e3,5,6,7\n"
PART = "xl/charts/chart1.xml"
OTHERS = {"[Content_Types].xml": b"<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'/>", "docProps/app.xml": b"<a>\n</a>"}
NO_TAG = "\nwarning: couldn't find any tag to replace ([[KOBData <reference>]]) in file {folder}/t.xlsx"
NO_ELEMENT = "Warning: the series of the tag 's' has no element for the column '%s', which is not written\n"


def series(tag, axes="cat:strRef val:numRef"):
    """A series with axes of the given kinds; plus and minus are inside errBars."""
    data = ""
    for axis, kind in (pair.split(":") for pair in axes.split()):
        element = f"<c:{axis}><c:{kind}><c:f>S!$A$1</c:f></c:{kind}></c:{axis}>"
        data += f"<c:errBars>{element}</c:errBars>" if axis in ("plus", "minus") else element
    return f"<c:ser><c:idx val='0'/><c:tx><c:v>{tag}</c:v></c:tx>{data}</c:ser>"


def chart(inner):
    return f"<c:chartSpace xmlns:c='{CHART}'><c:chart>{inner}</c:chart></c:chartSpace>".encode()


def bars(*all_series):
    return chart("<c:barChart>" + "".join(all_series) + "</c:barChart>")


class Report(unittest.TestCase):
    limit = None  # of the size of files

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        (self.folder / "data.csv").write_text(DATA)
        self.write(bars(series("[[KOBData s]]")))

    def tearDown(self):
        shutil.rmtree(self.folder)

    def set_limit(self):
        if self.limit is not None:
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (self.limit, self.limit))

    def write(self, *parts, name="t.xlsx"):
        """A template with these chart parts."""
        folder = FOLDERS.get(pathlib.Path(name).suffix.lower(), "xl")
        write_package(self.folder / name, OTHERS | {f"{folder}/charts/chart{i + 1}.xml": part for i, part in enumerate(parts)})

    def run_graph(self, text):
        (self.folder / "case.graph").write_text(text)
        done = subprocess.run([CORVANTA, "run", self.folder / "case.graph", "--log-format", "json"], capture_output=True, text=True,
                              check=False, preexec_fn=self.set_limit)
        log = [json.loads(line) for line in done.stderr.splitlines()]
        return done.returncode, [(line["level"], line["message"].replace(str(self.folder), "{folder}")) for line in log]

    def fill(self, charts=(("s", 0, ["n", "a"]),), template="t.xlsx", output="out.xlsx", **more):
        status, log = self.run_graph(graph(template, output, charts, **more))
        self.assertEqual((status, [text for level, text in log if level == 1]), (0, []))
        return log, members(self.folder / output)

    def fails(self, *messages, charts=(("s", 0, ["n", "a"]),), template="t.xlsx", output="out.xlsx", **more):
        """The run fails with these errors, and leaves no output."""
        before = sorted(os.listdir(self.folder))
        status, log = self.run_graph(graph(template, output, charts, **more))
        self.assertEqual((status, [text for level, text in log if level == 1]), (1, list(messages)))
        self.assertEqual(sorted(os.listdir(self.folder)), sorted({*before, "case.graph"}))
        return log

    def warnings(self, log):
        return [text for level, text in log if level == 2]

    def test_each_type_is_filled_by_its_element(self):
        for number, kind in enumerate(TYPES):
            axes = axes_of(kind)
            kinds = " ".join(f"{axis}:{'numLit' if axis == 'plus' else 'numRef' if i else 'strRef'}" for i, axis in enumerate(axes))
            self.write(chart(f"<c:{kind}Chart>{series('[[KobDATA s]]', kinds)}</c:{kind}Chart>"))
            log, out = self.fill([("s", number, ["n", "a", "b", "c"][:len(axes)])])
            self.assertEqual(log, [])
            root = ElementTree.fromstring(out[PART])
            for axis, values in zip(axes, [["North", 'A<&>"B'], ["1.5", "-2000"], ["2", "5"], ["3", "6"]]):
                literal = "strLit" if values[0] == "North" else "numLit"
                self.assertEqual(data_of(root.find(f".//{{{CHART}}}{axis}")), (literal, 2, dict(enumerate(values))), f"{kind} {axis}")

    def test_a_series_is_written_in_its_form(self):
        _, out = self.fill()
        self.assertEqual(out.pop(PART), bars(series("[[KOBData s]]", "")).replace(
            b"</c:ser>", b'<c:cat><c:strLit><c:ptCount val="2"/><c:pt idx="0"><c:v>North</c:v></c:pt>'
            b'<c:pt idx="1"><c:v>A&lt;&amp;&gt;"B</c:v></c:pt></c:strLit></c:cat><c:val><c:numLit><c:ptCount val="2"/>'
            b'<c:pt idx="0"><c:v>1.5</c:v></c:pt><c:pt idx="1"><c:v>-2000</c:v></c:pt></c:numLit></c:val></c:ser>'))
        self.assertEqual(out, OTHERS)

    def test_documents_of_all_kinds_and_several_tags(self):
        for suffix in FOLDERS:
            self.write(bars(series("[[KOBData s]]"), series("[[KOBData  u ]]")), bars(series("no tag")), name="t" + suffix.upper())
            _, out = self.fill([("u", 0, ["n", "b"]), ("s", 0, ["n", "a"])], "t" + suffix.upper(), "out" + suffix)
            first, second = (out[f"{FOLDERS[suffix]}/charts/chart{i}.xml"] for i in (1, 2))
            found = [data_of(axis)[2] for axis in ElementTree.fromstring(first).iter(f"{{{CHART}}}val")]
            self.assertEqual(found, [{0: "1.5", 1: "-2000"}, {0: "2", 1: "5"}])
            self.assertEqual(second, bars(series("no tag")))

    def test_data_of_several_pins(self):
        (self.folder / "b.csv").write_text("x\n7\n8\n9\n")
        text = graph("t.xlsx", "out.xlsx", [("s", 0, ["n", "a"])]).replace("<axis pinIdx='0'>a", "<axis pinIdx='1'>x")
        second = "<action id='in2'><readCSV fileName='b.csv'/></action><link from='in2:0' to='report:1'/></graph>"
        status, log = self.run_graph(text.replace("</graph>", second))
        self.assertEqual(status, 0)
        self.assertEqual(self.warnings(log), [
            "Warning: 1 point of the tag 's' is left out, because another cell of the row is empty; the first is in row 3\n"])
        out = members(self.folder / "out.xlsx")[PART]
        self.assertIn(b'<c:ptCount val="3"/><c:pt idx="0"><c:v>7</c:v></c:pt><c:pt idx="1"><c:v>8</c:v></c:pt></c:numLit>', out)

    def test_gaps_and_values_that_are_not_numbers(self):
        (self.folder / "data.csv").write_text("n,a\nA,1\n,2\nC, + \nD,x\nE,\n")
        log, out = self.fill(types="U,U")
        self.assertEqual(self.warnings(log), [
            "Warning: 2 points of the tag 's' are left out, because another cell of the row is empty; the first is in row 2\n",
            "Warning: 3 values of the column 'a' are not numeric and written as 0 to the chart of the tag 's'; the first is in row 3. "
            "Give the series texts in the template to keep texts\n"])
        root = ElementTree.fromstring(out[PART])
        self.assertEqual(data_of(root.find(f".//{{{CHART}}}cat")), ("strLit", 5, {0: "A", 2: "C", 3: "D"}))
        self.assertEqual(data_of(root.find(f".//{{{CHART}}}val")), ("numLit", 5, {0: "1", 2: "0", 3: "0", 4: "0"}))

    def test_axes_without_a_column_or_element(self):
        self.write(bars(series("[[KOBData s]]", "plus:numRef cat:numRef val:numRef")))
        log, out = self.fill([("s", 0, ["", "a"])])
        self.assertEqual(self.warnings(log), [
            "Warning: the Chart 's' has no column for the axis c:cat, which keeps the data of the template\n",
            "Warning: the Chart 's' has no column for the axis c:plus, which keeps the data of the template\n"])
        self.assertEqual(out[PART].count(b"S!$A$1"), 2)
        self.write(bars(series("[[KOBData s]]", "val:numRef")))
        log, _ = self.fill([("s", 0, ["n", "a"])])
        self.assertEqual(self.warnings(log), [NO_ELEMENT % "n"])
        # The template decides about the type: the empty cells of a column that it does not show leave no gap.
        (self.folder / "data.csv").write_text("n,a,b\nA,1,\nB,2,\n")
        for kind in (0, 4):
            self.write(chart("<c:pieChart>" + series("[[KOBData s]]") + "</c:pieChart>"))
            log, out = self.fill([("s", kind, ["n", "a", "b"])], types="U,F,F")
            self.assertEqual(self.warnings(log), [NO_ELEMENT % "b"])
            self.assertEqual(out[PART].count(b"<c:pt "), 4)
            self.write(bars(series("[[KOBData s]]", "cat:strRef val:numRef plus:numLit")))
            log, out = self.fill([("s", kind, ["n", "a", "a"])], types="U,F,F")
            self.assertEqual((log, out[PART].count(b"<c:pt ")), ([], 6))

    def test_a_table_without_rows_gives_empty_charts(self):
        (self.folder / "data.csv").write_text("n,a\n")
        log, out = self.fill(types="U,F")
        self.assertEqual(log, [])
        self.assertIn(b'<c:numLit><c:ptCount val="0"/></c:numLit>', out[PART])

    def test_tags_without_a_use_are_warnings(self):
        self.write(chart("<c:v>[[KOBData t]]</c:v><c:barChart>" + series("[[KOBData y]]", "cat:strRef") +
                         series("[[KOBData <b/>z]]") + "</c:barChart>"), bars(series("[[KOBData s]]")))
        log, out = self.fill([("s", 0, ["n", "a"]), ("unused", 0, ["n", "a"])])
        self.assertEqual(self.warnings(log), [
            "\nwarning: couldn't find chart type for tag t", "\nwarning: couldn't find y-Axis for tag y",
            "Warning: the tag 'z' is divided by formatting and is ignored: type it again in one piece\n",
            "Warning: the template file '{folder}/t.xlsx' has no tag for the Chart 'unused': its data is not written\n"])
        self.assertIn(b"[[KOBData t]]", out[PART])
        utf16 = "\ufeff<?xml version='1.0' encoding='UTF-16'?><a>[[KOBData s]]</a>".encode("utf-16-le")
        self.write(utf16, bars(series("[[KOBData s]]")))
        log, out = self.fill([("s", 0, ["n", "a"]), ("s", 0, ["n", "b"])])
        self.assertEqual(self.warnings(log), [
            "Warning: the tag 's' has several Charts; only the first is used\n",
            f"Warning: the part '{PART}' of the template is not UTF-8 text: its tags are ignored. Save the template again with an office program\n"])
        self.assertEqual(out[PART], utf16)
        self.write(bars(series("none")))
        log, out = self.fill()
        self.assertEqual(self.warnings(log), [NO_TAG])
        self.assertEqual(out, members(self.folder / "t.xlsx"))

    def test_check_lists_the_tags_of_a_template(self):
        def tags(name):
            done = subprocess.run([CORVANTA, "check", "--template", self.folder / name, "--json"], capture_output=True, text=True, check=True)
            return [(mark["text"], mark["location"], mark["part"], mark.get("remedy", "")) for mark in json.loads(done.stdout)]

        self.write(chart("<c:v>[[KOBData t]]</c:v><c:barChart>" + series("[[kobdata y ]]", "cat:strRef") + series("[[KOBData <b/>z]]") +
                         series("[[KOBData s]][[KOBData s]]", "minus:numLit cat:strRef val:numRef") + "</c:barChart>"))
        self.assertEqual(tags("t.xlsx"), [
            ("[[KOBData t]]", "sheet chart", PART, "make it the name of a series in a chart"),
            ("[[KOBData y]]", "sheet chart", PART, "make it the name of a series with values"),
            ("[[KOBData z]]", "sheet chart", PART, "type it again in one piece"),
            ("[[KOBData s]]", "sheet chart (barChart: cat, val, minus)", PART, "")])
        shutil.copy(TEMPLATES / "bar.xlsx", self.folder)
        self.assertEqual([mark[:2] for mark in tags("bar.xlsx")], [("[[KOBData data]]", "sheet chart on 'Report' (barChart: cat, val)")])
        shutil.copy(TEMPLATES / "slides.pptx", self.folder)
        self.assertEqual([mark[:2] for mark in tags("slides.pptx")], [
            ("[[KOBData categories]]", "slide 1 chart (barChart: cat, val)"), ("[[KOBData shares]]", "slide 2 chart (pieChart: cat, val)"),
            ("[[KOBData periods]]", "slide 3 chart (lineChart: cat, val)")])
        shutil.copy(TEMPLATES / "bar.docx", self.folder)
        self.assertEqual([mark[:2] for mark in tags("bar.docx")], [("[[KOBData data]]", "body chart (barChart: cat, val)")])

    def test_clean_tags_become_names(self):
        self.write(bars(series("<c:f>[[KOBData s&amp;t]]</c:f>[[KOBData s&amp;t]]")))
        _, out = self.fill([("s&amp;t", 0, ["n", "a"])], options=" cleanTags='1'")
        self.assertIn(b"<c:tx><c:v><c:f>s&amp;t</c:f>s&amp;t</c:v></c:tx>", out[PART])

    def test_mistakes_in_the_graph(self):
        self.fails("\nERROR: cannot find column 'no %1' on input pin 0.\n", charts=[("s", 0, ["no %1", "a"])])
        (self.folder / "data.csv").write_text("n,a\n")
        self.fails("\nERROR: cannot find column 'b' on input pin 0.\n", charts=[("s", 0, ["n", "b"])], types="U,F")
        (self.folder / "data.csv").write_text(DATA)
        self.fails("\nERROR: The template file '{folder}/t.xlsx' contains a new un-initialized tag named 's'\n", charts=[("S", 0, ["n", "a"])])
        text = graph("t.xlsx", "out.xlsx", [("s", 0, ["n", "a"])]).replace("<axis pinIdx='0'>a", "<axis pinIdx='3'>a")
        self.assertEqual(self.run_graph(text), (1, [(1, "\nERROR: cannot find column 'a' on input pin 3.\n")]))
        self.fails("ERROR: the document '{folder}/t.xlsx' would replace its own template: choose another output name.\n", output="t.xlsx")
        self.fails("\nERROR: Cannot write Report file '{folder}/no/out.xlsx'.\n", output="no/out.xlsx")

    def check(self, template, charts):
        """Status and problems of a check of a graph, each as its severity and text."""
        (self.folder / "case.graph").write_text(graph(template, "out.xlsx", charts))
        done = subprocess.run([CORVANTA, "check", self.folder / "case.graph", "--json"], capture_output=True, text=True, check=False)
        return done.returncode, [(problem["severity"], problem["message"].removeprefix("the action 'report' (writeReport): ")
                                  .replace(str(self.folder), "{folder}")) for problem in json.loads(done.stdout)]

    def test_problems_that_check_finds(self):
        charts = [("s", 0, ["n", "a"]), ("s", 0, ["n", "b"])]
        shutil.copy(self.folder / "t.xlsx", self.folder / "out.xlsx")
        self.assertEqual(self.check("out.xlsx", charts[:1]), (2, [
            ("error", "the document '{folder}/out.xlsx' would replace its own template: choose another output name")]))
        (self.folder / "t.xls").write_text("")
        self.assertEqual(self.check("t.xls", charts), (2, [
            ("error", "the extension is not .xlsx, .docx or .pptx"), ("warning", "the tag 's' has several Charts; only the first is used")]))
        self.assertEqual(self.check("t.xlsx", charts[:1]), (0, []))
        self.assertEqual(self.check("t.xlsx", [("S", 0, ["n"])]), (2, [
            ("error", "the template file '{folder}/t.xlsx' contains a new un-initialized tag named 's'"),
            ("warning", "the template file '{folder}/t.xlsx' has no tag for the Chart 'S': its data is not written")]))
        self.write(bars(series("none")))
        self.assertEqual(self.check("t.xlsx", []), (0, [("warning", NO_TAG.strip().split(": ", 1)[1])]))
        (self.folder / "t.xlsx").write_text("no package")
        self.assertEqual(self.check("t.xlsx", []), (2, [("error", "cannot read Report Template file {folder}/t.xlsx")]))
        self.assertEqual(self.check("&gt;bar.xlsx", [("data", 0, ["n", "a"])]), (0, []))
        included = f"{pathlib.Path(CORVANTA).parent.resolve()}/officeTemplates/no.xlsx"
        self.assertEqual(self.check("&gt;no.xlsx", []), (2, [("error", f"the file '{included}' of 'template' does not exist")]))

    def test_what_office_programs_do_with_the_document(self):
        self.write(bars(series("[[KOBData s]]")).replace(b"</c:chartSpace>", b"<c:externalData r:id='rId1'/></c:chartSpace>"))
        log, _ = self.fill(output="out.docx")
        self.assertEqual(log, [
            (2, "Warning: the name of the document '{folder}/out.docx' does not end like that of its template: Office programs may refuse to open it.\n"),
            (3, f"Note: the workbook of the template is kept for 1 chart of the document '{{folder}}/out.docx', first that with the tag 's' (sheet chart): "
             "\"Edit data\" in an office program shows the data of the template, and not that of the chart. To change the chart, run the graph "
             "with other rows\n")])

    def test_templates_that_cannot_be_used(self):
        unknown = "\nERROR: template file {folder}/%s has unknown extention type (not .xlsx, .pptx, .docx).\n"
        cannot = "\nERROR: cannot read Report Template file {folder}/%s\n"
        log = self.fails(unknown % "t.xlsm", template="t.xlsm")
        self.assertIn("save the template as one of these first", log[-1][1])
        self.fails(cannot % "missing.xlsx", template="missing.xlsx")
        (self.folder / "text.xlsx").write_text("no package")
        self.fails(cannot % "text.xlsx", template="text.xlsx")
        (self.folder / "empty.xlsx").write_bytes(b"")
        self.fails(cannot % "empty.xlsx", "\nERROR: template file {folder}/empty.xlsx is empty.\n", template="empty.xlsx")
        write_package(self.folder / "none.xlsx", {})
        self.fails("\nERROR: template file {folder}/none.xlsx is empty.\n", template="none.xlsx")
        shutil.copy(self.folder / "t.xlsx", self.folder / "t.docx")
        log = self.fails(cannot % "t.docx", template="t.docx")
        self.assertIn((3, "Reason: the package has no folder word/: its extension does not fit its content.\n"), log)
        self.write(bars(series("[[KOBData s]]"))[:-5])
        self.fails(f"\nERROR: cannot open file '{PART}' in the zipfile for read")
        self.write(bars(series("[[KOBData s]]")))
        damaged = (self.folder / "t.xlsx").read_bytes().replace(b"PK\x03\x04", b"PK\x03\x05", 1)
        (self.folder / "t.xlsx").write_bytes(damaged)
        self.fails("\nERROR: cannot open file '[Content_Types].xml' in the zipfile for read")

    def test_texts_that_xml_cannot_hold(self):
        (self.folder / "data.csv").write_text("n,a\nA,1\nB\x01,2\n")
        self.fails("Error: the column 'n' of input pin 0 has in row 2 a character that XML does not allow: the chart of the tag 's' "
                   "cannot be written\n", types="U,F")

    def test_an_included_template_is_opened_by_its_name(self):
        for suffix in FOLDERS:
            for kind in ("bar", "line", "pie"):
                _, out = self.fill([("data", TYPES.index(kind), ["n", "a"])], f"&gt;{kind}{suffix}", "out" + suffix)
                self.assertTrue(any(b"<c:ptCount val=\"2\"/>" in content for content in out.values()), kind + suffix)
        self.fails(f"\nERROR: cannot read Report Template file {pathlib.Path(CORVANTA).parent.resolve()}/officeTemplates/no.xlsx\n",
                   template="&gt;no.xlsx")

    def test_the_included_templates_are_what_their_script_makes(self):
        subprocess.run([sys.executable, TEMPLATES / "make_templates.py", self.folder], check=True)
        for path in sorted(TEMPLATES.glob("*.???x")):
            # Compressors differ.
            self.assertEqual(members(path), members(self.folder / path.name), path.name)

    def test_the_examples(self):
        for name, document in (("workbook", "sales.xlsx"), ("slides", "sales.pptx")):
            done = subprocess.run([CORVANTA, "run", PROJECT / f"examples/charts/{name}.graph", "--out-dir", self.folder],
                                  capture_output=True, text=True, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            text = b"".join(content for part, content in members(self.folder / document).items() if "/charts/" in part)
            self.assertEqual([text.count(part) for part in (b"Overseas", b"Repairs", b"Dec", b"[[KOBData", b"<c:v>periods")], [1, 1, 1, 0, 1])

    def test_a_full_disk_leaves_no_document(self):
        self.fill()
        size = (self.folder / "out.xlsx").stat().st_size
        (self.folder / "out.xlsx").unlink()
        self.limit = 100
        self.fails("\nERROR: Cannot write Report file '{folder}/out.xlsx'.\n")
        # The last bytes are the end of the directory.
        self.limit = size - 1
        log = self.fails("ERROR: the document '{folder}/out.xlsx' could not be completed and is not written.\n")
        self.assertEqual(self.warnings(log), ["\nWARNING: problem closing the output file {folder}/out.xlsx\n"])


unittest.main()

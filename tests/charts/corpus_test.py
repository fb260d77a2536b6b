#!/usr/bin/python3
"""Charts of real documents, filled with data: corpus_test.py CORVANTA CORPUS

Each series of each chart gets a tag and new data. Only the data of the series may change in the charts, and nothing in the other members.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from templates import CHART, TYPES, axes_of, data_of, graph, is_chart, members, tag_document

CORVANTA, CORPUS = sys.argv[1], pathlib.Path(sys.argv.pop())
sys.argv.pop()
ROWS = [("North & <South>", "1.5", "10", "0.5", "0.25"), ("\u00e9t\u00e9", "-2", "20", "1", "2"), ("", "3", "30", "1", "1"), ("X", "1e300", "40", "7", "7")]
COLUMNS = ["name", "a", "b", "c", "d"]
EXPECTED = {"cat": 0, "xVal": 0, "val": 1, "yVal": 1, "plus": 2, "minus": 3, "bubbleSize": 2}
# Of these, LibreOffice makes a PDF.
OPENED_BY_LIBREOFFICE = ["bar-chart-template.docx", "cht-charts.pptx", "chart_bar01.xlsx", "chart_errorbars03.xlsx"]


def documents():
    for folder in ("charts", "docx", "pptx"):
        for path in sorted((CORPUS / folder).glob("*")):
            if path.suffix in (".xlsx", ".docx", ".pptx"):
                yield path


def has_charts(path):
    try:
        return any(is_chart(name) for name in members(path))
    except Exception:  # not a package
        return False


def without_data(part):
    """The canonical text of a chart without the content of the axes of its series."""
    root = ElementTree.fromstring(part)
    for series in root.iter(f"{{{CHART}}}ser"):
        for axis in series.iter():
            if axis.tag.split("}")[-1] in EXPECTED:
                axis[:], axis.text = [], None
    return ElementTree.canonicalize(ElementTree.tostring(root))


class Charts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        lines = [",".join(COLUMNS), *(",".join(f'"{text}"' if i == 0 else text for i, text in enumerate(row)) for row in ROWS)]
        (cls.folder / "data.csv").write_text("\n".join(lines) + "\n", encoding="utf-8")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def fill(self, path):
        """The template with tags, and the document."""
        template, document = self.folder / ("template" + path.suffix), self.folder / path.name
        count = tag_document(path, template)
        # The template decides about the type; bars and lines use four columns.
        charts = [(f"s{i}", 0, COLUMNS[:4]) for i in range(count)]
        (self.folder / "case.graph").write_text(graph(template.name, document.name, charts), encoding="utf-8")
        done = subprocess.run([CORVANTA, "run", self.folder / "case.graph"], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, f"{path.name}: {done.stderr}")
        return members(template), members(document), count

    def check_series(self, chart, series):
        kind = chart.tag.split("}")[1].removesuffix("Chart")
        if kind not in TYPES:
            return 0
        for axis in (found for name in axes_of(kind) for found in series.findall(f".//{{{CHART}}}{name}")):
            column = EXPECTED[axis.tag.split("}")[1]]
            literal, count, points = data_of(axis)
            self.assertEqual(count, len(ROWS))
            # The third row has no name.
            expected = {i: row[column] for i, row in enumerate(ROWS) if row[0]}
            if literal == "numLit" and column == 0:
                expected = {i: "0" for i in expected}
            if literal == "numLit":
                expected, points = ({i: float(text) for i, text in found.items()} for found in (expected, points))
            self.assertEqual(points, expected)
        return 1

    def test_every_series_gets_its_data(self):
        total = 0
        for path in filter(has_charts, documents()):
            with self.subTest(path.name):
                before, after, count = self.fill(path)
                self.assertEqual(set(before), set(after))
                filled = 0
                for name, content in before.items():
                    if not is_chart(name) or b"[[KOBData" not in content:
                        self.assertEqual(content, after[name], name)
                        continue
                    self.assertEqual(without_data(content), without_data(after[name]), name)
                    for chart in ElementTree.fromstring(after[name]).find(f".//{{{CHART}}}plotArea"):
                        filled += sum(self.check_series(chart, series) for series in chart.findall(f"{{{CHART}}}ser"))
                self.assertEqual(filled, count)
                total += filled
        self.assertGreater(total, 80)

    @unittest.skipUnless(shutil.which("soffice"), "no LibreOffice")
    def test_libreoffice_opens_some(self):
        for name in OPENED_BY_LIBREOFFICE:
            self.fill(CORPUS / "charts" / name)
        subprocess.run(["soffice", f"-env:UserInstallation=file://{self.folder}/profile", "--headless", "--convert-to", "pdf",
                        "--outdir", self.folder, *(self.folder / name for name in OPENED_BY_LIBREOFFICE)],
                       capture_output=True, timeout=300, check=True)
        for name in OPENED_BY_LIBREOFFICE:
            self.assertTrue((self.folder / name).with_suffix(".pdf").exists(), name)


if not (CORPUS / "charts").is_dir():
    print(f"skipped: no corpus at {CORPUS}")
    sys.exit(77)
unittest.main()

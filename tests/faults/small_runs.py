"""Small commands that together run every action that works, for the tests that disturb them."""
import dataclasses
import pathlib
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
import legacy_workbook  # pylint: disable=wrong-import-position

ROWS = 40
NO_SHEETS = b"Warning: Could not open file"  # for readExcelSheets, an unreadable workbook is only a warning
SPSS = pathlib.Path(__file__).parents[1] / "graphs/read_stat/dates/d.sav"


@dataclasses.dataclass
class Case:
    name: str
    words: list    # of the command; {} in graphs and names is the folder
    targets: list = dataclasses.field(default_factory=list)
    graph: str = ""
    leaves: str = "-"  # pattern of what a failed run leaves for inspection


def graph(*elements, version="4.11"):
    """A chain of actions with the ids a0, a1, ..."""
    actions = "".join(f"<action id='a{i}'>{element}</action>" for i, element in enumerate(elements))
    links = "".join(f"<link from='a{i}:0' to='a{i + 1}:0'/>" for i in range(len(elements) - 1))
    return f"<graph version='{version}'>{actions}{links}</graph>"


def run(name, *elements, targets, **more):
    return Case(name, ["run", f"{name}.graph"], targets, graph(*elements), **more)


def join(left, right, element, writer):
    """Two readers into one action, and a writer."""
    actions = "".join(f"<action id='a{i}'>{action}</action>" for i, action in enumerate([left, right, element, writer]))
    links = "<link from='a0:0' to='a2:0'/><link from='a1:0' to='a2:1'/><link from='a2:0' to='a3:0'/>"
    return f"<graph version='4.11'>{actions}{links}</graph>"


DOCUMENTS = pathlib.Path(__file__).parents[2] / "examples" / "documents"
CSV = "<readCSV fileName='in.csv' types='K,F,U'/>"
CASES = [
    run("csv", CSV, "<writeCSV fileName='out.csv'/>", targets=["out.csv"]),
    run("excel", CSV, "<writeExcel fileNameDestination='out.xlsx'/>", targets=["out.xlsx"]),
    run("excel_add", CSV, "<writeExcel mode='1' fileNameDestination='added.xlsx' sheetName='New'/>", targets=["added.xlsx"]),
    run("excel_append", CSV, "<writeExcel mode='2' fileNameDestination='appended.xlsx' startRow='0'/>", targets=["appended.xlsx"]),
    run("excel_copy", CSV, "<writeExcel mode='3' fileNameSource='book.xlsx' fileNameDestination='copied.xlsx' sheetName='New'/>",
        targets=["copied.xlsx"]),
    run("parquet", CSV, "<writeParquet file='out.parquet'/>", targets=["out.parquet"], leaves="*_TMP"),
    run("chart", CSV, "<writeReport output='report.docx' template='&gt;line.docx'><Chart type='2' name='data'><axis pinIdx='0'>t</axis>"
        "<axis pinIdx='0'>f</axis></Chart></writeReport>", targets=["report.docx"]),
    run("json", CSV, "<writeJSON fileName='out.json'/>", targets=["out.json"]),
    run("json_longer", CSV, "<writeJSON fileName='longer.json' fileMode='1'/>", targets=["longer.json"]),
    run("xml", CSV, "<writeXML fileName='out.xml'/>", targets=["out.xml"]),
    run("table", CSV, f"<writeDocTable template='{DOCUMENTS}/report.docx' output='out.docx'><v colWidths='1,1,1'/></writeDocTable>",
        targets=["out.docx"]),
    run("letters", "<readCSV fileName='letters.csv'/>", "<writeDoc output='output' template='template' fitImages='1' allParts='1'>"
        "<text><s>name</s><s>address</s><s>date</s><s>object</s><s>text</s></text><image><s>picture</s></image></writeDoc>", targets=["one.docx", "two.docx"]),
    run("sas", CSV, "<writeSAS fileName='out.sas7bdat' autoWidth='1'/>", targets=["out.sas7bdat"]),
    run("xpt", CSV, "<writeSASXPT fileName='out.xpt' autoWidth='1'/>", targets=["out.xpt"]),
    run("rows", CSV, "<cast><types><s>k=U</s></types></cast>", "<filter where='f &gt; 1 or k is null'/>", "<sort><keys><s>-t</s></keys></sort>",
        "<select lastRow='20'><columns><s>t</s><s>k</s></columns></select>", "<writeCSV fileName='rows.csv'/>", targets=["rows.csv"]),
    Case("join", ["run", "join.graph"], ["join.csv"],
         join(CSV, CSV, "<join type='2'><keys><s>k</s></keys></join>", "<writeCSV fileName='join.csv'/>")),
    Case("union", ["run", "union.graph"], ["union.csv"], join(CSV, "<readCSV fileName='in.csv'/>", "<union/>", "<writeCSV fileName='union.csv'/>")),
    Case("merge", ["merge", "merged.parquet", "in.parquet"], ["merged.parquet"]),
    Case("merge_csv", ["merge", "merged.csv", "in.csv", "--union"], ["merged.csv"]),
    Case("merge_json", ["merge", "merged.json", "in.json"], ["merged.json"]),
    Case("merge_book", ["merge", "merged.xlsx", "in.csv", "part.parquet"], ["merged.xlsx"]),
    Case("from_parquet", ["convert", "in.parquet", "out.csv"], ["out.csv"]),
    Case("from_json", ["convert", "in.json", "out.parquet"], ["out.parquet"], leaves="*_TMP"),
    Case("from_xml", ["convert", "in.xml", "out.json"], ["out.json"]),
    Case("from_dbf", ["convert", "in.dbf", "out.xml"], ["out.xml"]),
    run("sheets", "<readExcelSheets fileName='book.xlsx'/>", "<writeCSV fileName='sheets.csv'/>", targets=["sheets.csv"]),
    Case("from_xls", ["convert", "in.xls", "from_xls.csv"], ["from_xls.csv"]),
    Case("from_spss", ["convert", "in.sav", "from_spss.csv"], ["from_spss.csv"]),
    Case("from_xlsx", ["convert", "book.xlsx", "from_xlsx.csv"], ["from_xlsx.csv"]),
    Case("head", ["head", "in.csv"]),
    Case("check", ["check", "csv.graph"]),
]


def dbf(rows):
    """A dBase III table with one number and one text."""
    fields = [(b"N", b"N", 8), (b"T", b"C", 12)]
    length = 1 + sum(field[2] for field in fields)
    header = bytes([3, 124, 1, 1]) + rows.to_bytes(4, "little") + (32 + 32 * len(fields) + 1).to_bytes(2, "little") \
        + length.to_bytes(2, "little") + bytes(20)
    for name, kind, size in fields:
        header += name.ljust(11, b"\0") + kind + bytes(4) + bytes([size, 0]) + bytes(14)
    return header + b"\r" + b"".join(b" %8d%-12b" % (i, b"text %d" % i) for i in range(rows)) + b"\x1a"


def xls(rows):
    """A legacy workbook with one column of numbers and one of texts."""
    cells = b"".join(legacy_workbook.number(8, i, 0, i) + legacy_workbook.label(8, i, 1, f"text {i}") for i in range(rows))
    return legacy_workbook.compound(legacy_workbook.workbook(8, [("Sheet", cells)]))


class Folder:
    """A folder with the inputs and the graphs of all cases. restore() removes what a run has left."""

    def __init__(self, corvanta, folder, rows=ROWS):
        self.corvanta, self.path = corvanta, pathlib.Path(folder)
        (self.path / "in.csv").write_text("k,f,t\n" + "".join(f"{i},{i / 8},text {i}\n" for i in range(rows)))
        (self.path / "letters.csv").write_text("output,template,name,address,date,object,text,picture\n" + "".join(
            f"{name}.docx,{DOCUMENTS}/letter.docx,{name},a,d,o,t,{DOCUMENTS}/mars.png\n" for name in ("one", "two")))
        (self.path / "in.dbf").write_bytes(dbf(rows))
        (self.path / "in.xls").write_bytes(xls(rows))
        shutil.copy(SPSS, self.path / "in.sav")
        for name in ("in.parquet", "in.json", "in.xml", "book.xlsx"):
            subprocess.run(self.command(["convert", "in.csv", name]), check=True, cwd=self.path, stderr=subprocess.DEVNULL)
        shutil.copy(self.path / "in.parquet", self.path / "part.parquet")
        for case in CASES:
            if case.graph:
                (self.path / f"{case.name}.graph").write_text(case.graph)
        self.book = (self.path / "book.xlsx").read_bytes()
        self.given = {path.name for path in self.path.iterdir()}

    def command(self, words):
        return [self.corvanta, *words]

    def old(self, name):
        """What a target holds before the run; None: there is none."""
        return self.book if name in ("added.xlsx", "appended.xlsx") else b"[]\n" if name == "longer.json" else None

    def restore(self, case):
        for path in self.path.iterdir():
            if path.name not in self.given:
                path.unlink()
        for name in case.targets:
            if self.old(name) is not None:
                (self.path / name).write_bytes(self.old(name))

    def content(self, name):
        path = self.path / name
        return path.read_bytes() if path.exists() else None

    def others(self, case):
        """Files other than its targets that a run has left."""
        return {path.name for path in self.path.iterdir()} - self.given - set(case.targets)

    def reference(self, case):
        """What an undisturbed run makes of the targets, and what it prints."""
        self.restore(case)
        done = subprocess.run(self.command(case.words), check=True, cwd=self.path, capture_output=True)
        return {name: self.content(name) for name in case.targets}, done.stdout

#!/usr/bin/python3
"""Real workbooks through every mode: corpus_test.py CORVANTA CORPUS

What was updated must open in openpyxl (a sample in LibreOffice too) with the cells of the other sheets as they were,
and every member that is not rewritten must have its bytes. What was refused must be as it was.
"""
import collections
import functools
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import warnings
import xml.etree.ElementTree as ElementTree

import openpyxl

from workbooks import files, members, run_update

CORVANTA, CORPUS = sys.argv[1], pathlib.Path(sys.argv.pop()) / "xlsx"
sys.argv.pop()
BY_NUMBER = "sheetMode='0' sheetIdx='1' "
MODES = {"add": (1, "sheetName='New'"), "from 1": (2, BY_NUMBER + "startRow='1'"), "from 3": (2, BY_NUMBER + "startRow='3'"),
         "append": (2, BY_NUMBER + "startRow='0'"), "add to copy": (3, "sheetName='Sheet1'"),
         "append to copy": (4, BY_NUMBER + "startRow='0'")}
# These hold no workbook, or one that cannot be read.
REFUSED = {"invalid.xlsx", "missing-bits.xlsx", "null_archive.xlsx", "pass_protected.xlsx"}
EMPTY = {"null_file.xlsx"}
LAST_ROW_TAKEN = {"issue_174.xlsx"}
# Where openpyxl compares the cells: the other modes write the same sheets in another way, and openpyxl takes most of the time.
COMPARED = ("add", "from 3", "append to copy")
OPENED_BY_LIBREOFFICE = ["59746_NoRowNums.xlsx", "WithChartSheet.xlsx", "issue281.xlsm", "pivots.xlsx", "wtf_path.xlsx"]


def cells(path):
    """Values of all sheets, or None for what openpyxl does not open."""
    try:
        with warnings.catch_warnings(), open(path, "rb") as file:
            warnings.simplefilter("ignore")
            book = openpyxl.load_workbook(file)
    except Exception:  # openpyxl raises whatever it meets
        return None
    return collections.OrderedDict(
        (sheet.title, {place: cell.value for place, cell in sheet._cells.items() if cell.value is not None})
        for sheet in book.worksheets)


# Of a file of the corpus, which does not change.
source_cells = functools.lru_cache(maxsize=1)(cells)


def is_well_formed(text):
    try:
        ElementTree.fromstring(text)
        return True
    except ElementTree.ParseError:
        return False


def is_rewritten(name):
    name = name.replace("\\", "/").lower()
    last = name.rsplit("/", 1)[-1]
    return last in ("[content_types].xml", "workbook.xml", "workbook.xml.rels", "styles.xml") or "sheet" in last


class Corpus(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def run_mode(self, source, mode, attributes):
        book = self.folder / "book.xlsx"
        book.unlink(missing_ok=True)
        if mode <= 2:
            shutil.copyfile(source, book)
        return run_update(CORVANTA, self.folder, f"mode='{mode}' fileNameSource='{source}' {attributes}")

    def check_refused(self, source, status, messages):
        self.assertEqual(status, 1)
        self.assertTrue(any(source.name in message or "book.xlsx" in message for message in messages), messages)
        for book in self.folder.iterdir():
            self.assertEqual((book.name, book.read_bytes()), ("book.xlsx", source.read_bytes()))

    def check_members(self, source):
        old, new = members(source), members(self.folder / "book.xlsx")
        for name, content in old.items():
            if not is_rewritten(name):
                self.assertEqual(new.get(name), content, name)
            elif is_well_formed(content):
                self.assertTrue(is_well_formed(new[name]), name)
        for name in set(new) - set(old):
            self.assertTrue(is_well_formed(new[name]), name)
        self.assertTrue(any("ünï".encode() in content for name, content in new.items() if new[name] != old.get(name)))

    def check_cells(self, source, mode, opens):
        old, new = source_cells(source), cells(self.folder / "book.xlsx")
        if old is None or not opens:
            return
        self.assertIsNotNone(new)
        changed = list(old)[:1] if mode in (2, 4) else []
        for sheet in old:
            if sheet not in changed:
                self.assertEqual(new[sheet], old[sheet], sheet)

    def test_every_mode(self):
        sources = sorted(CORPUS.glob("*.xls[xm]"))
        self.assertGreater(len(sources), 80)
        for source in sources:
            for label, (mode, attributes) in MODES.items():
                with self.subTest(workbook=source.name, mode=label):
                    status, messages = self.run_mode(source, mode, attributes)
                    if source.name in REFUSED:
                        self.check_refused(source, status, messages)
                        continue
                    self.assertEqual(status, 0, messages)
                    self.assertEqual(files(self.folder), ["book.xlsx"])
                    if source.name not in EMPTY:
                        self.check_members(source)
                        if label in COMPARED:
                            self.check_cells(source, mode, source.name not in LAST_ROW_TAKEN)

    @unittest.skipUnless(shutil.which("soffice"), "no LibreOffice")
    def test_libreoffice_opens_a_sample(self):
        for name in OPENED_BY_LIBREOFFICE:
            with self.subTest(name):
                self.assertEqual(self.run_mode(CORPUS / name, 1, "sheetName='New'")[0], 0)
                out = self.folder / "out"
                subprocess.run(["soffice", f"-env:UserInstallation=file://{self.folder}/profile", "--headless", "--convert-to",
                                "xlsx:Calc MS Excel 2007 XML", "--outdir", str(out), str(self.folder / "book.xlsx")],
                               capture_output=True, check=True, timeout=180)
                self.assertIn("ünï", cells(out / "book.xlsx")["New"].values())
                shutil.rmtree(out)


if __name__ == "__main__":
    if not CORPUS.is_dir():
        print("no corpus: set CORVANTA_CORPUS")
        sys.exit(77)
    unittest.main()

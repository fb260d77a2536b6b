#!/usr/bin/python3
"""Statistical files that are cut off, have a wrong name or several data sets; and dates that convert keeps: stat_input_test.py CORVANTA

The rows and messages of whole files are graph cases (graphs/read_stat), real files are in stat_corpus_test.py.
"""
import csv
import datetime
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import openpyxl

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CASES = pathlib.Path(__file__).resolve().parents[1] / "graphs/read_stat"


class StatInput(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_stat_"))
        self.addCleanup(shutil.rmtree, self.folder)

    def run_in(self, *words, status=0):
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stderr

    def convert(self, *words, status=0):
        return self.run_in("convert", *words, status=status)

    def write(self, name, data):
        (self.folder / name).write_bytes(data if isinstance(data, bytes) else data.encode())
        return name

    def transport(self, table, *settings):
        self.write("in.csv", table)
        writer = [word for setting in settings for word in ("--writer", setting)]
        self.convert("in.csv", "in.xpt", "--reader", "types=K,U", *writer)
        return (self.folder / "in.xpt").read_bytes()

    def rows(self, name):
        self.convert(name, "out.csv")
        return self.table("out.csv")

    def table(self, name):
        return list(csv.reader((self.folder / name).read_text().splitlines(keepends=True)))

    def test_a_transport_file_that_is_cut(self):
        table = "k,t\n" + "".join(f"{i},text number {i}\n" for i in range(100))
        for settings, other in (((), False), (("version8=1",), False), (("version8=1",), True)):
            whole = self.transport(table, *settings)
            # Other programs write 0 as the number of rows.
            whole = whole.replace(b"!!!!!!!            100", b"!!!!!!!000000000000000") if other else whole
            for size in (len(whole) - 1, len(whole) - 80, len(whole) - 800, 640, 700, 100):
                self.write("cut.xpt", whole[:size])
                error = self.convert("cut.xpt", "out.csv", status=1)
                self.assertRegex(error, "ERROR: cannot read the statistical file '.*cut.xpt': (the file is cut off|the file ends in the dictionary|the header announces 2 variables)", size)

    def test_a_stata_file_that_is_cut_in_its_labels(self):
        data = (CASES / "labels/v.dta").read_bytes()
        self.write("cut.dta", data[:data.index(b"<lbl>") + 20])
        self.assertRegex(self.convert("cut.dta", "out.csv"), "Warning: the statistical file '.*cut.dta' is cut off: it has no end tag, and value labels may be missing\n")

    def test_long_texts_that_do_not_fit_into_memory(self):
        data = bytearray((CASES / "labels/v.dta").read_bytes())
        at = data.index(b"<map>") + 5 + 11 * 8
        data[at:at + 8] = (5 << 30).to_bytes(8, "little")
        self.write("large.dta", bytes(data))
        self.assertRegex(self.convert("large.dta", "out.csv", status=1), r"its long texts \(strL\) have \d+ bytes, and at most 1073741824 are kept in memory")

    def test_rows_of_blanks_of_a_transport_file(self):
        self.write("in.csv", "t\na\nb\n\"\"\n\"\"\n")
        self.convert("in.csv", "in.xpt", "--writer", "version8=1")
        found = self.convert("in.xpt", "out.csv")
        self.assertIn("Warning: the last 2 rows of the statistical file '", found)
        self.assertIn("' have only missing texts and are not read\n", found)

    def test_a_transport_file_with_several_data_sets(self):
        first, other = self.transport("k,t\n1,one\n2,two\n"), self.transport("k,t,u\n" + "3,three,x\n" * 90)
        self.write("both.xpt", first + other[240:])
        self.assertIn("' has further data sets after 2 rows, which cannot be read; maxRows='2' reads the first one\n",
                      self.convert("both.xpt", "out.csv", status=1))
        self.assertNotIn("further", self.convert("both.xpt", "out.csv", "--reader", "maxRows=2"))
        self.assertEqual((self.folder / "out.csv").read_text(), "k,t\n1,one\n2,two\n")
        self.write("none.xpt", first[:240] + b"HEADER RECORD*******MEMBER  HEADER RECORD!!!!!!!000000000000000001600000000140  " + first[320:560] +
                   b"HEADER RECORD*******NAMESTR HEADER RECORD!!!!!!!000000000000000000000000000000  " + b" " * 80)
        self.assertIn("its data set has no variables", self.convert("none.xpt", "out.csv", status=1))

    def test_wrong_names(self):
        self.transport("k,t\n1,one\n")
        files = {"a SAS data set (.sas7bdat)": CASES / "sas/s.sas7bdat", "an SPSS file (.sav)": CASES / "values/v.sav",
                 "a Stata file (.dta)": CASES / "values/v.dta", "a SAS transport file (.xpt)": self.folder / "in.xpt"}
        for kind, file in files.items():
            right = self.rows(shutil.copy(file, self.folder / f"right{file.suffix}"))
            for other in (".sas7bdat", ".sav", ".zsav", ".por", ".dta", ".xpt"):
                if other == file.suffix or (other, file.suffix) == (".zsav", ".sav"):
                    continue
                name = shutil.copy(file, self.folder / f"wrong{other}")
                found = self.convert(name, "wrong.csv")
                self.assertRegex(found, r"Warning: the content of the statistical file '.*' is that of " + kind.replace("(", r"\(").replace(")", r"\)"))
                self.assertEqual(self.table("wrong.csv"), right)
            found = self.convert(f"right{file.suffix}", "out.csv", "--reader", "fileFormat=2", status=1)
            self.assertIn(f"its content is that of {kind}, but the parameter 'fileFormat' says ", found)

    def test_an_unknown_encoding_of_a_portable_file(self):
        shutil.copy(CASES / "values/v.por", self.folder / "p.por")
        self.assertIn("Invalid character encoding (none).", self.convert("p.por", "out.csv", "--reader", "encoding=none", status=1))

    def test_catalogues_and_data_sets(self):
        shutil.copy(CASES / "sas/labels.sas7bcat", self.folder / "c.sas7bdat")
        self.assertIn("': it is a SAS catalogue (.sas7bcat), which has value labels but no rows. The parameter 'catalogFile' can name it\n",
                      self.convert("c.sas7bdat", "out.csv", status=1))
        shutil.copy(CASES / "sas/s.sas7bdat", self.folder / "s.sas7bdat")
        found = self.convert("s.sas7bdat", "out.csv", "--reader", "extractLabels=1", "--reader", "catalogFile=s.sas7bdat", status=1)
        self.assertRegex(found, r"ERROR: cannot read the catalogue '.*': it is a SAS data set \(.sas7bdat\), not a SAS catalogue \(.sas7bcat\)")

    def test_labels_of_a_format_with_a_width(self):
        self.write("in.csv", "sex\n1\n2\n3\n")
        self.write("a.graph", """<graph version='4.11'><action id='a'><readCSV fileName='in.csv' types='F'/></action>
            <action id='b'><writeSAS fileName='o.sas7bdat'><VariableDef><V n='sex' format='SEX8.'/></VariableDef></writeSAS></action>
            <link from='a:0' to='b:0'/></graph>""")
        self.run_in("run", "a.graph")
        self.convert("o.sas7bdat", "out.csv", "--reader", "extractLabels=1", "--reader", f"catalogFile={CASES / 'sas/labels.sas7bcat'}")
        self.assertEqual(self.table("out.csv"), [["sex"], ["male"], ["female"], ["3"]])

    def test_dates_stay_dates(self):
        shutil.copy(CASES / "dates/d.sav", self.folder / "d.sav")
        rows = self.rows("d.sav")
        self.assertEqual(rows[1][:3], ["2026-11-22", "2026-11-22T04:30:05.25", "00:00:00"])
        for target in ("d.xpt", "d.sas7bdat"):
            self.convert("d.sav", target)
            self.assertEqual(self.rows(target)[1:], rows[1:], target)
            numbers = subprocess.run([CORVANTA, "head", target, "--reader", "formatDates=0", "-n", "1"], cwd=self.folder, capture_output=True, text=True)
            self.assertIn("24432  2110941005.25", numbers.stdout, target)
        self.convert("d.sav", "d.xlsx")
        sheet = list(openpyxl.load_workbook(self.folder / "d.xlsx").active.values)
        self.assertEqual(sheet[2][0], "1582-10-15")
        self.assertEqual(sheet[1][:2], (datetime.datetime(2026, 11, 22), datetime.datetime(2026, 11, 22, 4, 30, 5, 250000)))

    def test_texts_that_are_not_dates(self):
        self.write("in.csv", "d,t\n2026-01-31,1:00\n2026-02-30,01:00\n2026-01-31T10:00,-100:00:00.5\n,\n")
        self.write("a.graph", """<graph version='4.11'><action id='a'><readCSV fileName='in.csv'/></action>
            <action id='b'><writeSASXPT fileName='o.xpt'><StringColDef><CD n='dd' l='9'/></StringColDef><VariableDef><V n='d' format='DATE9.'/>
            <V n='t' format='TIME8.'/></VariableDef></writeSASXPT></action><link from='a:0' to='b:0'/></graph>""")
        found = self.run_in("run", "a.graph")
        self.assertIn("1 columns of StringColDef are not in the input; the first is 'dd'; the nearest known name is 'd'", found)
        self.assertIn("2 texts of the column 'd' do not have the form of ISO 8601 that the format 'DATE9.' needs, and became missing; the first is in row 2", found)
        self.assertEqual(self.rows("o.xpt")[1:], [["2026-01-31", ""], ["", "01:00:00"], ["", "-100:00:00.5"], ["", ""]])


if __name__ == "__main__":
    unittest.main()

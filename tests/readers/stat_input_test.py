#!/usr/bin/python3
"""Statistical files that are truncated, have a wrong name or several data sets; and dates that convert keeps: stat_input_test.py CORVANTA

The rows and messages of whole files are graph cases (graphs/read_stat), real files are in stat_corpus_test.py.
"""
import csv
import datetime
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

import openpyxl

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
CASES = pathlib.Path(__file__).resolve().parents[1] / "graphs/read_stat"


def stata(release, is_big, rows, texts, split=None):
    """A Stata file with the columns a (strL), n (int8) and b (strL); `texts` by (variable, row). `split` is the size of the variable in references."""
    order = ">" if is_big else "<"
    is_old = release == 117
    name, fmt, label = (33, 49, 81) if is_old else (129, 57, 321)
    endian = "big" if is_big else "little"
    split = split or {117: 4, 118: 2, 119: 3}[release]
    pad = lambda items, size: b"".join(item.ljust(size, b"\0") for item in items)
    reference = lambda key: key[0].to_bytes(split, endian) + key[1].to_bytes(8 - split, endian)
    parts = [("variable_types", struct.pack(order + "3H", 32768, 65530, 32768)), ("varnames", pad([b"a", b"n", b"b"], name)),
             ("sortlist", bytes(4 * (4 if release == 119 else 2))), ("formats", pad([b"%9s", b"%8.0g", b"%9s"], fmt)),
             ("value_label_names", bytes(3 * name)), ("variable_labels", bytes(3 * label)), ("characteristics", b""),
             ("data", b"".join(reference(a) + bytes([n % 100]) + reference(b) for a, n, b in rows)),
             ("strls", b"".join(b"GSO" + struct.pack(order + ("IIBI" if is_old else "IQBI"), *key, 130, len(text) + 1) + text + b"\0" for key, text in texts.items())),
             ("value_labels", b"")]
    head = f"<stata_dta><header><release>{release}</release><byteorder>{'MSF' if is_big else 'LSF'}</byteorder><K>".encode()
    head += struct.pack(order + ("I" if release == 119 else "H"), 3) + b"</K><N>" + struct.pack(order + ("I" if is_old else "Q"), len(rows))
    head += b"</N><label>" + bytes(1 if is_old else 2) + b"</label><timestamp>\0</timestamp></header>"
    at = len(head) + len("<map></map>") + 14 * 8
    places, body = [0, len(head)], b""
    for tag, content in parts:
        places.append(at + len(body))
        body += f"<{tag}>".encode() + content + f"</{tag}>".encode()
    places += [at + len(body), at + len(body) + len("</stata_dta>")]
    return head + b"<map>" + struct.pack(order + "14Q", *places) + b"</map>" + body + b"</stata_dta>"


def stata_old(labels):
    """A Stata file of version 115 with a column a of two rows, and a set of value labels of 72 bytes."""
    head = struct.pack("<BBBBHI", 115, 2, 1, 0, 1, 2) + bytes(81 + 18)
    variable = bytes([251]) + b"a".ljust(33, b"\0") + bytes(4) + b"%8.0g".ljust(49, b"\0") + b"s".ljust(33, b"\0") + bytes(81) + bytes(5)
    text = b"".join(label + b"\0" for label in labels)
    table = struct.pack("<ii2i2i", 2, len(text), 0, len(labels[0]) + 1, 1, 2) + text
    return head + variable + bytes([1, 2]) + struct.pack("<i", len(table)) + b"s".ljust(33, b"\0") + bytes(3) + table


class StatInput(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_stat_"))
        self.addCleanup(shutil.rmtree, self.folder)

    def run_in(self, *words, status=0, locale=None):
        environment = {**os.environ, "LC_ALL": locale} if locale else None
        done = subprocess.run([CORVANTA, *words], cwd=self.folder, capture_output=True, text=True, timeout=120, env=environment)
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

    def schema(self, name):
        return subprocess.run([CORVANTA, "schema", name], cwd=self.folder, capture_output=True, text=True, timeout=120).stdout

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
                self.assertRegex(error, "ERROR: cannot read the statistical file '.*cut.xpt': (the file is truncated|the file ends in the dictionary|the header announces 2 variables)", size)

    def test_the_reasons_of_damaged_transport_files(self):
        whole = self.transport("k,t\n" + "".join(f"{i},text number {i}\n" for i in range(100)))
        for data, reason in ((whole[:-1], f"its {len(whole) - 1} bytes are not a multiple of 80"),
                             (whole[:-80], "its last row is not complete"),
                             (whole.replace(b"HEADER RECORD*******MEMBER", b"HEADER RECORD*******NUMBER", 1), "the file has no data set"),
                             (whole.replace(b"01600000000140", b"01600000000136", 1),
                              "the descriptions of its variables have 136 bytes instead of 140, which is not supported")):
            self.write("odd.xpt", data)
            self.assertIn(reason, self.convert("odd.xpt", "out.csv", status=1))

    def test_parts_that_contradict_the_header(self):
        seeds = CASES.parents[2] / "fuzz/seeds/stat_read"
        sas = (seeds / "sas").read_bytes()[1:]  # the first byte has options
        self.write("cut.sas7bdat", sas[:len(sas) // 2])
        self.assertRegex(self.convert("cut.sas7bdat", "out.csv", status=1),
                         r"the header announces \d+ pages? of \d+ bytes after \d+ bytes, but the file has \d+ bytes")
        old = bytearray(stata_old([b"one", b"two"]))
        old[6:10] = struct.pack("<I", 1 << 30)
        self.write("rows.dta", bytes(old))
        self.assertIn("the header announces 1 variable and 1073741824 rows, which the file is too small for",
                      self.convert("rows.dta", "out.csv", status=1))
        long_texts = stata(118, False, [((1, 1), 1, (2, 1))], {(1, 1): b"first", (2, 1): b"second"})
        at = long_texts.rindex(b"GSO")
        self.write("long.dta", long_texts[:at] + b"GSX" + long_texts[at + 3:])
        self.assertIn(f"the long text (strL) at offset {at} is damaged", self.convert("long.dta", "out.csv", status=1))
        self.write("portable.sav", (seeds / "por").read_bytes()[1:])
        self.assertIn("an SPSS portable file (.por)", self.convert("portable.sav", "out.csv"))

    def test_a_stata_file_that_is_cut_in_its_labels(self):
        data = (CASES / "labels/v.dta").read_bytes()
        self.write("cut.dta", data[:data.index(b"<lbl>") + 20])
        self.assertRegex(self.convert("cut.dta", "out.csv"), "Warning: the statistical file '.*cut.dta' is truncated: it has no end tag, and value labels may be missing\n")

        self.write("more.dta", data + bytes(100))
        self.assertNotIn("truncated", self.convert("more.dta", "out.csv"))
        # Older files have no end tag. A label set begins after the rows, with its length.
        old = stata_old([b"one", b"two"])
        for missing, is_cut in ((0, False), (1, True), (30, True), (63, True), (69, True), (72, False)):
            self.write("old.dta", old[:len(old) - missing])
            self.assertEqual("' is truncated inside its value labels, and some are missing\n" in self.convert("old.dta", "out.csv"), is_cut, missing)
            self.assertEqual(self.table("out.csv"), [["a"], ["1"], ["2"]])

    def test_long_texts(self):
        texts = {(1, 1): b"first", (2, 1): "d\u00e9j\u00e0".encode(), (1, 2): b"x" * 70_000}
        for release, is_big in ((117, False), (117, True), (118, False), (118, True), (119, False), (119, True)):
            rows = [((1, 1), 1, (2, 1)), ((1, 2), 2, (0, 0)), ((1, 1), 3, (1, 2)), ((2, 1), 4, (1, 1))]
            self.write("long.dta", stata(release, is_big, rows, texts))
            self.assertNotIn("Warning", self.convert("long.dta", "out.csv", "--reader", "encoding=UTF8"))
            self.assertEqual([[cell[:6] for cell in row] for row in self.table("out.csv")],
                             [["a", "n", "b"], ["first", "1", "d\u00e9j\u00e0"], ["xxxxxx", "2", ""], ["first", "3", "xxxxxx"], ["d\u00e9j\u00e0", "4", "first"]])
        # In another order than that of the rows, and more than one part of the index.
        many = {(1, i): str(i).encode() for i in range(1, 300)}
        rows = [((1, i * 7 % 299 + 1), i, (1, i + 1)) for i in range(299)]
        for order in (many, dict(reversed(many.items()))):
            self.write("long.dta", stata(118, False, rows, order))
            self.assertEqual(self.rows("long.dta")[1:], [[str(i * 7 % 299 + 1), str(i % 100), str(i + 1)] for i in range(299)])

    def test_long_texts_of_the_library_in_version_119(self):
        many = {(3, i): str(i).encode() for i in range(1, 600)}
        for is_big in (False, True):
            rows = [((0, 0), i % 100, (3, i)) for i in range(1, 600)]
            self.write("long.dta", stata(119, is_big, [((0, 0), 0, (9, 9)), *rows], many, split=2))
            self.assertEqual(self.rows("long.dta")[2:], [["", str(n), str(key[1])] for _, n, key in rows])

    def test_long_texts_that_are_not_in_the_file(self):
        self.write("lost.dta", stata(118, False, [((1, 1), 1, (7, 7)), ((1, 9), 2, (0, 0))], {(1, 1): b"first"}))
        self.assertIn("' refers to 2 long texts (strL) that it does not have, and that become missing; the first is in row 1 of the column 'b'\n",
                      self.convert("lost.dta", "out.csv"))
        self.assertEqual(self.table("out.csv"), [["a", "n", "b"], ["first", "1", ""], ["", "2", ""]])
        whole = stata(118, False, [((1, 1), 1, (0, 0))], {(1, 1): b"first"})
        self.write("bad.dta", whole.replace(b"GSO", b"GSX"))
        error = self.convert("bad.dta", "out.csv", status=1)
        self.assertRegex(error, r"the long text \(strL\) at offset \d+ is damaged")
        self.assertNotIn("refers to", error)
        at = whole.index(b"<map>") + 5 + 11 * 8
        self.write("map.dta", whole[:at] + (5 << 30).to_bytes(8, "little") + whole[at + 8:])
        self.assertIn("its long texts (strL) are not where its header says", self.convert("map.dta", "out.csv", status=1))

    def test_labels_of_columns_stay(self):
        for name in ("values/v.sav", "values/v.dta"):
            source = shutil.copy(CASES / name, self.folder)
            for target in ("o.sas7bdat", "o.xpt"):
                found = self.convert(source, target)
                self.assertRegex(found, r"Note: the value labels of [12] columns? are not written, because a SAS (transport )?file has no place for them\n")
                self.assertRegex(self.schema(target), r"sex\t.*Sex of the person")
        self.write("in.csv", "price,n\n1.5,2\n")
        self.write("a.graph", """<graph version='4.11'><action id='a'><readCSV fileName='in.csv' types='F,F'/></action>
            <action id='b'><writeSAS fileName='p.sas7bdat'><VariableDef><V n='price' label='A price with a label of more than forty bytes' format='DOLLAR10.2'/>
            <V n='n' format='COMMA8.'/></VariableDef></writeSAS></action><link from='a:0' to='b:0'/></graph>""")
        self.run_in("run", "a.graph")
        self.convert("p.sas7bdat", "q.sas7bdat")
        self.assertRegex(self.schema("q.sas7bdat"), r"(?s)price\t.*A price with a label of more than forty bytes.*DOLLAR10.2.*n\t.*COMMA8")
        found = self.convert("q.sas7bdat", "q.xpt")
        self.assertIn("': 1 label is cut to 40 bytes; the first is that of the column 'price'\n", found)
        self.assertRegex(self.schema("q.xpt"), r"(?s)price\t.*A price with a label of more than forty\t.*DOLLAR10.2")
        # The labels are the values.
        self.convert("v.sav", "l.xpt", "--reader", "extractLabels=1")
        self.assertRegex(self.schema("l.xpt"), "sex\t.*Sex of the person")
        self.assertEqual(self.rows("l.xpt")[1][2], "male")

    def test_a_catalogue_that_is_not_used(self):
        shutil.copy(CASES / "sas/labels.sas7bcat", self.folder / "c.sas7bcat")
        for name, settings in (("sas/s.sas7bdat", ()), ("values/v.dta", ("--reader", "extractLabels=1"))):
            source = shutil.copy(CASES / name, self.folder)
            found = self.convert(source, "out.csv", "--reader", "catalogFile=c.sas7bcat", *settings)
            self.assertRegex(found, r"Warning: the catalogue '.*c.sas7bcat' is not used: it needs extractLabels='1' and a SAS file\n")

    def test_rows_of_blanks_of_a_transport_file(self):
        self.write("in.csv", "t\na\nb\n\"\"\n\"\"\n")
        self.convert("in.csv", "in.xpt", "--writer", "version8=1")
        found = self.convert("in.xpt", "out.csv")
        self.assertRegex(found, "Warning: the statistical file '.*' is read without its last 2 rows, because only missing texts are there\n")

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

    def test_a_portable_file_whose_characters_repeat(self):
        # The table also has digits and a hyphen where raised digits and a dash belong: a byte is the character of its first place.
        table = b"0" * 64 + b"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz .<(+|&[]!$*);^-/|,%_>?`:$@'=\"      ~-   0123456789   -(){}\\"
        records = b"SPSSPORTA8/202601016/00000042/70/1/A5/8/2/5/8/2/75/1/B1/5/0/1/5/0/D1/1/A1/8/5/eightF8/5/x-8|y9/4/Zo\xeb.Z"
        whole = b" " * 200 + table.ljust(256, b"0") + records
        for end in (b"\n", b"\r\n"):
            self.write("p.por", b"".join(whole[i:i + 80].ljust(80, b"Z") + end for i in range(0, len(whole), 80)))
            log = self.run_in("convert", "p.por", "out.csv", "--reader", "extractLabels=1", locale="C")
            self.assertEqual((self.folder / "out.csv").read_text(), "A,B\neight,x-8|y\n9,Zo\ufffd.\n")
            self.assertIn("Invalid character found in file", log)
            self.assertIn("U+FFFD replaces the bytes that the file's table of characters does not have, in 1 text; the first is in row 2 of the column 'B'", log)

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
        self.assertIn("StringColDef names 1 column that the input does not have; the first is 'dd'; the nearest known name is 'd'", found)
        self.assertIn("2 texts of the column 'd' became missing, without the form of ISO 8601 that the format 'DATE9.' needs; the first is in row 2", found)
        self.assertEqual(self.rows("o.xpt")[1:], [["2026-01-31", ""], ["", "01:00:00"], ["", "-100:00:00.5"], ["", ""]])


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""Does the line after a failure say why? And which inputs open at all? reason_test.py CORVANTA

Archives with every kind of bad member, folders in the place of files, folders that are missing, and pipes.
"""
import gzip
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import threading
import unittest
import zipfile
import zlib

CORVANTA = sys.argv.pop(1)
DOCUMENT = b'[{"a":1}]'
SOURCE = pathlib.Path(__file__).parents[2]
READERS = {
    "json": "<readJSON newMode='1' fileName='{}'><Level><e path='a' name='a'/></Level></readJSON>",
    "xml": "<readXML fileName='{}'><Level><e path='a' name='a'/></Level></readXML>",
    "dbf": "<ReadXBF fileName='{}'/>",
    "parquet": "<readParquet fileName='{}'/>",
    "csv": "<readCSV fileName='{}'/>",
}
WRITERS = {
    "xlsx": "<writeExcel fileNameDestination='{}'/>",
    "json": "<writeJSON fileName='{}'/>",
    "xml": "<writeXML fileName='{}'/>",
    "parquet": "<writeParquet file='{}'/>",
    "csv": "<writeCSV fileName='{}'/>",
    "docx": f"<writeDocTable template='{SOURCE}/examples/documents/report.docx' output='{{}}'/>",
    "sas7bdat": "<writeSAS autoWidth='1' fileName='{}'/>",
    "xpt": "<writeSASXPT autoWidth='1' fileName='{}'/>",
}


def archive(*members):
    """A zip file: its bytes, as zipfile writes them."""
    with tempfile.TemporaryFile() as file:
        with zipfile.ZipFile(file, "w") as out:
            for name, content, method in members:
                out.writestr(zipfile.ZipInfo(name), content, method)
        file.seek(0)
        return bytearray(file.read())


def changed(data, signature, offset, value):
    """The bytes with `value` at `offset` of the first record of that signature."""
    data = bytearray(data)
    data[data.find(signature) + offset] = value
    return data


def with_unicode_path(stored, name, checked=None):
    """An archive whose member has the name `stored` and, in its Unicode path field, `name`."""
    facts = struct.pack("<IIIHH", zlib.crc32(DOCUMENT), len(DOCUMENT), len(DOCUMENT), len(stored), 0)
    extra = struct.pack("<HHBI", 0x7075, 5 + len(name), 1, zlib.crc32(checked or stored)) + name
    local = struct.pack("<IHHHHH", 0x04034B50, 20, 0, 0, 0, 0) + facts + stored + DOCUMENT
    entry = struct.pack("<IHHHHHH", 0x02014B50, 20, 20, 0, 0, 0, 0) + facts[:-2] + struct.pack("<HHHHII", len(extra), 0, 0, 0, 0, 0) \
        + stored + extra
    return local + entry + struct.pack("<IHHHHIIH", 0x06054B50, 0, 0, 1, 1, len(entry), len(local), 0)


def rar_block(kind, flags, fields, data=b""):
    body = struct.pack("<BHH", kind, flags, 7 + len(fields)) + fields
    return struct.pack("<H", zlib.crc32(body) & 0xFFFF) + body + data


def rar_file(name, flags, content):
    fields = struct.pack("<IIBIIBBHI", len(content), len(content), 3, zlib.crc32(content), 0, 20, 0x30, len(name), 0) + name
    return rar_block(0x74, 0x8000 | flags, fields, content)


def rar5_block(kind, fields):
    """A block without data, of less than 128 bytes."""
    header = bytes([2 + len(fields), kind, 0]) + fields
    return struct.pack("<I", zlib.crc32(header)) + header


class Reasons(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_reason_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        (self.folder / "in.csv").write_text("a,b\n1,2\n")
        (self.folder / "folder").mkdir()

    def run_graph(self, first, second):
        (self.folder / "case.graph").write_text(
            f"<graph version='4.11'><action id='a'>{first}</action><action id='b'>{second}</action><link from='a:0' to='b:0'/></graph>")
        done = subprocess.run([CORVANTA, "run", "case.graph", "--log-format", "json"], cwd=self.folder, capture_output=True, text=True,
                              timeout=60, check=False, env={**os.environ, "LC_ALL": "C.UTF-8"})
        log = [json.loads(line) for line in done.stderr.splitlines()]
        return done, [message["message"] for message in log if message["level"] == 3]

    def check_refused(self, first, second, reason):
        done, reasons = self.run_graph(first, second)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn(reason, "".join(reasons), done.stderr)

    def check_read(self, name, kind="json", table="a\n1\n"):
        done, _ = self.run_graph(READERS[kind].format(name), "<writeCSV fileName='/dev/stdout'/>")
        self.assertEqual((done.returncode, done.stdout), (0, table), done.stderr)

    def test_members_of_zip_archives(self):
        good = archive(("x.json", DOCUMENT, 8))
        bad = {
            "encrypted.zip": (changed(good, b"PK\1\2", 8, 1), "is encrypted"),
            "method.zip": (archive(("x.json", DOCUMENT, zipfile.ZIP_BZIP2)), "is packed by method 12, which is not supported: pack it with deflate"),
            "header.zip": (changed(good, b"PK\3\4", 0, 0), "is damaged: its header does not match the directory of the archive"),
            "content.zip": (changed(changed(good, b"PK\1\2", 16, 7), b"PK\3\4", 14, 7),
                            "the zip member 'x.json' is damaged: it does not match its size and checksum"),
            "longer.zip": (changed(changed(good, b"PK\1\2", 24, 3), b"PK\3\4", 22, 3),
                           "the zip member 'x.json' is damaged: it is longer than its header says"),
            "deflate.zip": (changed(good, b"PK\3\4", 36, 0xFF), "the zip member 'x.json' is damaged or truncated"),
            "cut.zip": (good[:60], "not a zip archive, or it is truncated"),
            "folders.zip": (archive(("d/", b"", 0)), "the zip archive has no file in it"),
            "good.zip@y.json": (good, "the zip archive has no member 'y.json'"),
        }
        for name, (content, reason) in bad.items():
            with self.subTest(name=name):
                (self.folder / name.partition("@")[0]).write_bytes(content)
                self.check_refused(READERS["json"].format(name), WRITERS["csv"].format("out.csv"), reason)

    def test_members_of_workbooks(self):
        good = archive(("xl/workbook.xml", b"<workbook/>", 8))
        for content, reason in ((changed(good, b"PK\1\2", 8, 1), "'xl/workbook.xml' needs a password"),
                                (changed(changed(good, b"PK\1\2", 10, 12), b"PK\3\4", 8, 12),
                                 "'xl/workbook.xml' is packed by method 12, only stored and deflated members are read"),
                                (changed(good, b"PK\3\4", 0, 0), "'xl/workbook.xml' is damaged")):
            (self.folder / "book.xlsx").write_bytes(content)
            self.check_refused("<readExcelSheets fileName='book.xlsx'/>", WRITERS["csv"].format("out.csv"), reason)
        # Without its relationships, a tab could show the cells of another sheet.
        for name in ("_rels/.rels", "xl/_rels/workbook.xml.rels"):
            (self.folder / "book.xlsx").write_bytes(archive(("xl/workbook.xml", b"<workbook><sheets><sheet name='s'/></sheets></workbook>", 8),
                                                            (name, b"<Relationships/>", zipfile.ZIP_BZIP2)))
            done, _ = self.run_graph("<readExcel fileName='book.xlsx'/>", WRITERS["csv"].format("out.csv"))
            self.assertIn(f"'{name}' is packed by method 12", done.stderr)

    def test_damaged_parts_of_workbooks(self):
        book = ("xl/workbook.xml", b"<workbook><sheets><sheet name='s'/></sheets></workbook>", 8)
        rows = b"<worksheet><sheetData>" + b"<row><c><v>1</v></c></row>" * 9
        utf16 = "<?xml version='1.0' encoding='UTF-16'?><worksheet/>".encode("utf-16")
        relation = b"<Relationships><Relationship Id='r' Type='http://x/officeDocument' Target='ppt/presentation.xml'/></Relationships>"
        for parts, reason in (
                ([book, ("xl/worksheets/sheet1.xml", rows, 8)], "'xl/worksheets/sheet1.xml': the text ends too early"),
                ([book, ("xl/worksheets/sheet1.xml", rows + b"< ></row>", 8)], "'xl/worksheets/sheet1.xml': the markup is broken"),
                ([book, ("xl/worksheets/sheet1.xml", utf16, 8)], "'xl/worksheets/sheet1.xml': the text is not UTF-8"),
                ([(book[0], utf16, 8)], "'xl/workbook.xml': the text is not UTF-8"),
                ([(book[0], b"<other/>", 8)], "'xl/workbook.xml' has other content than its kind"),
                ([(book[0], b"<workbook><sheets>", 8)], "'xl/workbook.xml': the markup is broken"),
                ([("_rels/.rels", relation, 8), ("ppt/presentation.xml", b"", 0)], "it is a PowerPoint presentation")):
            with self.subTest(reason=reason):
                (self.folder / "book.xlsx").write_bytes(archive(*parts))
                self.check_refused("<readExcel fileName='book.xlsx'/>", WRITERS["csv"].format("out.csv"), reason)
        whole = archive(book, ("xl/worksheets/sheet1.xml", rows, 8))
        for content, reason in ((b"\0\1\2 no text", "its content is neither a workbook nor a text"),
                                (b"<?xml version='1.0'?><Workbook xmlns='urn:schemas-microsoft-com:office:spreadsheet'/>",
                                 "an XML spreadsheet of 2003"),
                                (changed(whole, b"PK\5\6", 10, 9), "the zip directory is damaged")):
            with self.subTest(reason=reason):
                (self.folder / "book.xlsx").write_bytes(content)
                self.check_refused("<readExcel fileName='book.xlsx'/>", WRITERS["csv"].format("out.csv"), reason)
        (self.folder / "book.xls").write_bytes(whole)
        self.check_refused("<readExcelOld fileName='book.xls'/>", WRITERS["csv"].format("out.csv"), "its content is that of an .xlsx workbook")
        (self.folder / "book.xls").write_bytes(bytes.fromhex("d0cf11e0a1b11ae1") + bytes(2000))
        self.check_refused("<readExcelOld fileName='book.xls'/>", WRITERS["csv"].format("out.csv"),
                           "it is damaged: its compound file has no usable directory")
        update = "<writeExcel mode='1' createIfNotExists='0' fileNameDestination='book.xlsx' sheetName='New'/>"
        (self.folder / "book.xlsx").write_bytes(changed(whole, b"PK\5\6", 10, 9))
        self.check_refused(READERS["csv"].format("in.csv"), update, "the package is damaged: wrong number of entries")

    def test_workbooks_beyond_the_limits(self):
        book = ("xl/workbook.xml", b"<workbook><sheets><sheet name='s'/></sheets></workbook>", 8)
        cells = b"<worksheet><sheetData><row>" + b"<c/>" * (1 << 20) + b"</row></sheetData></worksheet>"
        areas = b"<worksheet><sheetData/><mergeCells>" + b"<mergeCell ref='A1:B2'/>" * ((1 << 20) + 1) + b"</mergeCells></worksheet>"
        for reader, parts, reason in (
                ("readExcelSheets", [("xl/workbook.xml", b"<workbook>" + b" " * (33 << 20), 8)], "xl/workbook.xml is larger than 32 MiB"),
                ("readExcel", [book, ("xl/worksheets/sheet1.xml", cells, 8)], "row 1 has too much content"),
                ("readExcel fillMerged='1'", [book, ("xl/worksheets/sheet1.xml", areas, 8)], "the sheet has too many areas")):
            with self.subTest(reason=reason):
                (self.folder / "book.xlsx").write_bytes(archive(*parts))
                self.check_refused(f"<{reader} fileName='book.xlsx'/>", WRITERS["csv"].format("out.csv"), reason)

    def test_damaged_archives_and_tables(self):
        packed = gzip.compress(b"[" + b'{"a":1},' * 99 + b'{"a":1}]')
        marker = b"Rar!\x1a\x07\0"
        start = marker + rar_block(0x73, 0, bytes(6))
        good = start + rar_file(b"x.json", 0, DOCUMENT) + rar_block(0x7B, 0x4000, b"")
        data = good.find(DOCUMENT)
        wrong_sum = good[:data] + b'[{"b":1}]' + good[data + len(DOCUMENT):]
        fields = struct.pack("<IIBIIBBHI", 9, 90, 3, 0, 0, 29, 0x33, 6, 0) + b"x.json"
        for name, content, reason in (
                ("a.json.gz", packed[:2] + b"\7" + packed[3:], "its gzip variant is not known"),
                ("b.json.gz", packed[:10] + b"\xff" + packed[11:], "the gzip data is damaged"),
                ("c.json.gz", packed[:-1] + b"\1", "the gzip data does not agree with its checksum"),
                ("a.rar", b"Rar?" + good[4:], "it does not start like a RAR archive"),
                ("b.rar", good[:9] + b"\1" + good[10:], "a header of the archive is damaged or truncated"),
                ("c.rar", start + rar_block(0x7B, 0x4000, b""), "the archive is empty"),
                ("d.rar", start + rar_file(b"x.json", 2, DOCUMENT), "its entry 'x.json' is spread over several volumes"),
                ("e.rar", wrong_sum, "the RAR entry 'x.json' does not agree with its checksum"),
                ("f.rar", start + rar_block(0x74, 0x8000, fields, DOCUMENT), "the RAR entry 'x.json' is damaged or compressed by an "
                 "unsupported method"),
                ("g.rar", b"Rar!\x1a\x07\1\0" + rar5_block(1, b"\0") + rar5_block(2, b"\x08\0\0\0\1\6x.json"),
                 "the size of its entry 'x.json' is not stored"),
                ("a.zip", changed(archive(("x.json", DOCUMENT, 8)), b"PK\1\2", 27, 0x80), "the zip member 'x.json' is damaged"),
                ("b.zip", changed(archive(("x.json", DOCUMENT, 8)), b"PK\1\2", 0, 9), "the directory of the zip archive is damaged")):
            with self.subTest(name=name):
                (self.folder / name).write_bytes(content)
                self.check_refused(READERS["json"].format(name), WRITERS["csv"].format("out.csv"), reason)

    def test_texts_that_are_other_files(self):
        for content, kind in ((bytes.fromhex("d0cf11e0a1b11ae1") + bytes(600), "a legacy Office file"), (gzip.compress(b"a"), "a gzip file")):
            (self.folder / "text.csv").write_bytes(content)
            done, _ = self.run_graph(READERS["csv"].format("text.csv"), WRITERS["csv"].format("out.csv"))
            self.assertIn(kind, done.stderr)

    def test_gzip_files_that_are_cut_anywhere(self):
        whole = gzip.compress(b"a\n1\n")
        for size in range(1, len(whole)):
            (self.folder / "cut.csv.gz").write_bytes(whole[:size])
            self.check_refused(READERS["csv"].format("cut.csv.gz"), WRITERS["csv"].format("out.csv"), "ends too early")

    def test_the_first_file_is_after_the_folders(self):
        (self.folder / "a.zip").write_bytes(archive(("d/", b"", 0), ("d/x.json", DOCUMENT, 8)))
        (self.folder / "a.rar").write_bytes(b"Rar!\x1a\x07\0" + rar_block(0x73, 0, bytes(6)) + rar_file(b"d", 0xE0, b"")
                                            + rar_file(b"d/x.json", 0, DOCUMENT) + rar_block(0x7B, 0x4000, b""))
        self.check_read("a.zip")
        self.check_read("a.rar")

    def test_members_by_their_name_in_unicode(self):
        (self.folder / "a.zip").write_bytes(with_unicode_path(b"__.json", "日本.json".encode()))
        self.check_read("a.zip@日本.json")
        self.check_read("a.zip@__.json")
        # Written by a program that renamed the member and does not know the field.
        (self.folder / "a.zip").write_bytes(with_unicode_path(b"__.json", "日本.json".encode(), b"other"))
        self.check_refused(READERS["json"].format("a.zip@日本.json"), WRITERS["csv"].format("out.csv"), "has no member")

    def test_inputs_that_are_no_files(self):
        for kind, element in READERS.items():
            for name, reason in (("folder", "is a folder, not a file (Is a directory)"),
                                 ("none", "there is no file with this name (No such file or directory)"),
                                 ("none/x", f"the folder '{self.folder}/none' does not exist"),
                                 ("in.csv/x", f"'{self.folder}/in.csv' is not a folder")):
                with self.subTest(kind=kind, name=name):
                    self.check_refused(element.format(name), WRITERS["csv"].format("out.csv"), reason)

    def test_targets_that_cannot_be_written(self):
        for kind, element in WRITERS.items():
            remedy = "" if kind in ("csv", "docx") else ": createDir='1' (convert: --writer createDir=1) creates it"
            for name, reason in (("folder", "is a folder, not a file"), ("/dev/full", "the disk is full (No space left on device)"),
                                 ("none/x", f"the folder '{self.folder}/none' does not exist (No such file or directory){remedy}"),
                                 ("in.csv/x", f"'{self.folder}/in.csv' is not a folder"),
                                 ("n" * 256, "the name is too long")):
                with self.subTest(kind=kind, name=name):
                    self.check_refused(READERS["csv"].format("in.csv"), element.format(name), reason)

    def test_workbooks_that_cannot_be_updated(self):
        update = "<writeExcel mode='1' createIfNotExists='0' fileNameDestination='{}' sheetName='New'/>"
        subprocess.run([CORVANTA, "convert", "in.csv", "good.xlsx"], cwd=self.folder, check=True)
        good = (self.folder / "good.xlsx").read_bytes()
        for name, content, reason in (
                ("a.xlsx", b"no package", "not a package (zip file)"),
                ("b.xlsx", changed(good, b"PK\1\2", 8, 1), "is encrypted"),
                ("c.xlsx", changed(good, b"PK\1\2", 16, good[good.find(b"PK\1\2") + 16] ^ 1), "is damaged"),
                ("d.xlsx", archive(("x", b"", 0)), "is not there"),
                ("e.xlsx", b"", "the file is empty: createIfNotExists='1' begins a new workbook")):
            with self.subTest(name=name):
                (self.folder / name).write_bytes(content)
                self.check_refused(READERS["csv"].format("in.csv"), update.format(name), reason)

    def pipe(self, name, content):
        """A pipe that another thread fills once; it ends when it is read."""
        os.mkfifo(self.folder / name)

        def fill():
            with open(self.folder / name, "wb") as out:
                out.write(content)
        thread = threading.Thread(target=fill, daemon=True)
        thread.start()
        self.addCleanup(thread.join, 10)

    def inputs(self):
        (self.folder / "in.xml").write_text("<r><a>1</a></r>")
        for kind in ("json", "parquet"):
            subprocess.run([CORVANTA, "convert", "in.csv", f"in.{kind}"], cwd=self.folder, check=True)
        for kind in ("json", "xml", "parquet", "csv"):
            yield kind, (self.folder / f"in.{kind}").read_bytes(), "a,b\n1,2\n" if kind in ("csv", "parquet") else "a\n1\n"

    def test_pipes(self):
        for kind, content, table in self.inputs():
            with self.subTest(kind=kind):
                self.pipe(f"p.{kind}", content)
                self.check_read(f"p.{kind}", kind, table)
                self.pipe(f"p.{kind}.gz", gzip.compress(content))
                self.check_read(f"p.{kind}.gz", kind, table)
        table = SOURCE / "tests/graphs/read_xbf/types/all.dbf"
        self.pipe("p.dbf", table.read_bytes())
        self.pipe("p.zip", b"")
        subprocess.run([CORVANTA, "convert", "p.dbf", "p.csv.txt"], cwd=self.folder, check=True)
        subprocess.run([CORVANTA, "convert", table, "q.csv.txt"], cwd=self.folder, check=True)
        self.assertEqual((self.folder / "p.csv.txt").read_bytes(), (self.folder / "q.csv.txt").read_bytes())
        self.check_refused(READERS["json"].format("p.zip"), WRITERS["csv"].format("out.csv"), "only read from start to end")

    def test_a_workbook_is_not_written_to_a_pipe(self):
        os.mkfifo(self.folder / "p.xlsx")
        got = []
        thread = threading.Thread(target=lambda: got.append((self.folder / "p.xlsx").read_bytes()), daemon=True)
        thread.start()
        self.check_refused(READERS["csv"].format("in.csv"), WRITERS["xlsx"].format("p.xlsx"), "it is a pipe or a device")
        thread.join(10)
        self.assertEqual(got, [b""])

    def test_the_reason_while_a_file_is_awaited(self):
        for reader, lines in ((READERS["json"].format("no.json.gz").replace("<readJSON", "<readJSON timeOut='-1'"), 3),
                              ("<readExcel fileName='no.xlsx' timeOut='-1'/>", 2)):
            (self.folder / "case.graph").write_text(
                f"<graph version='4.11'><action id='a'>{reader}</action><action id='b'><writeCSV fileName='o.csv'/></action>"
                "<link from='a:0' to='b:0'/></graph>")
            with subprocess.Popen([CORVANTA, "run", "case.graph"], cwd=self.folder, stderr=subprocess.PIPE, text=True) as run:
                stop = threading.Timer(20, run.terminate)
                stop.start()
                found = [run.stderr.readline() for _ in range(lines)]
                run.terminate()
                stop.cancel()
            self.assertIn("Waiting: cannot read file '", found[-2])
            self.assertIn("there is no file with this name", found[-1])

    def test_workbooks_are_awaited(self):
        for reader, kind in (("readExcel", "xlsx"), ("readExcelOld", "xls")):
            done, _ = self.run_graph(f"<{reader} fileName='no.{kind}' timeOut='1'/>", WRITERS["csv"].format("out.csv"))
            self.assertEqual((done.returncode, done.stderr.count(f"/no.{kind}': Attempting again...")), (1, 1), done.stderr)

    def test_a_sample_takes_nothing_from_a_pipe(self):
        rows = [{"a": i, "b": "x" * 50} for i in range(20_000)]
        for name, content in (("p.json", json.dumps(rows).encode()), ("p.json.gz", gzip.compress(json.dumps(rows).encode()))):
            with self.subTest(name=name):
                self.pipe(name, content)
                subprocess.run([CORVANTA, "convert", name, "all.csv"], cwd=self.folder, check=True, timeout=60)
                self.assertEqual((self.folder / "all.csv").read_text().count("\n"), len(rows) + 1)


if __name__ == "__main__":
    unittest.main()

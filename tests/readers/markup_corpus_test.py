#!/usr/bin/python3
"""Real XML documents and HTML pages through readXML: markup_corpus_test.py CORVANTA CORPUS

Every document of the corpus is here: what another program read from it is what we read, or it is listed with what we do instead.
"""
import csv
import itertools
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.parsers.expat
import xml.sax.saxutils
import zipfile

CORVANTA, CORPUS = sys.argv[1], pathlib.Path(sys.argv.pop()).resolve()
sys.argv.pop()
BATCH = 50

# Documents that are refused, with the message; "%" is the document's name. Entities of a DTD are not known; a DOCTYPE
# with a subset ends at "]>"; loose documents are read with readHTML.
STRUCTURE = "XML structure error 'Error: {}' in file '%' at line {}, column {}"
ENCODING = "Invalid character encoding ({}) for file '%'."
REFUSED = {
    "docs/REC-xml-19980210.xml": STRUCTURE.format("Unknown character entity", 54, 25),
    "docs/bigentname.xml": STRUCTURE.format("Unknown character entity", 5, 5),
    "docs/ebcdic_566012.xml": "XML structure error 'Warning: No XML/JSON tag found' in file '%' at line 1, column 62",
    "docs/ent_738805.xml": STRUCTURE.format("Unknown character entity", 9, 27),
    "docs/undeclared-entity.xml": STRUCTURE.format("Unknown character entity", 4, 16),
    "docs/xhtml1.xhtml": STRUCTURE.format("Unknown character entity", 102, 14),
    "encodings/x-user-defined.xml": ENCODING.format("x-user-defined"),
    "errors/754946.xml": STRUCTURE.format("Unmatched clear tag end", 5, 0),
    "errors/758588.xml": STRUCTURE.format("Invalid char in end tag name", 1, 10243),
    "errors/759398.xml": STRUCTURE.format("Unknown character entity", 54, 25),
    "errors/attr1.xml": STRUCTURE.format("Quote or DoubleQuote expected", 2, 0),
    "errors/cdata.xml": ENCODING.format("ERROR"),
    "errors/charref1.xml": STRUCTURE.format("Unknown character entity", 1, 5),
    "errors/empty.xml": "XML structure error 'Warning: No XML/JSON tag found' in file '%' at line 1, column 0",
    "errors/invalid-start-tag-1.xml": "XML structure error 'Warning: No XML/JSON tag found' in file '%' at line 2, column 0",
    "errors/name.xml": STRUCTURE.format("Invalid char at tag end", 2, 0),
    "errors/unclosed-element.xml": STRUCTURE.format("Unmatched end tag", 2, 0),
    "errors/unsupported-encoding.xml": ENCODING.format("unsupported-encoding"),
    "errors/utf8-1.xml": STRUCTURE.format("Invalid char in tag name", 1, 83),
    "feeds/aaa_illformed.xml": STRUCTURE.format("Invalid char in end tag name", 6, 5),
    "feeds/bozo_bogus_encoding.xml": ENCODING.format("bogus"),
    "feeds/bozo_invalid-bytes-with-bom.xml": STRUCTURE.format("Invalid char at tag end", 11, 0),
    "feeds/rss_incomplete_cdata.xml": STRUCTURE.format("Unmatched clear tag end", 14, 0),
    **{f"encodings/{name}.xml": STRUCTURE.format("Quote or DoubleQuote expected", 7, column) for name, column in
       {"ISO-8859-15": 131, "ISO-8859-8": 88, "KOI8-R": 127, "Shift_JIS": 7638, "gb18030": 21651, "windows-1251": 158,
        "windows-1252": 135}.items()},
    **{f"feeds/entities_{name}.xml": STRUCTURE.format("Unknown character entity", 7, 15) for name in
       ("mdash", "times", "upper_Auml", "upper_Egrave", "upper_Omicron", "upper_Otilde")},
}
# Bytes that are not a character in the document's encoding are dropped, with a warning.
DROPPED = {"docs/ebcdic_566012.xml", "errors/truncated-utf16.xml", "feeds/bozo_invalid-bytes-with-bom.xml", "feeds/shiftjis.xml"}
# What is accepted though it is not well-formed: several roots, prefixes without a name space, control characters, repeated
# attributes, contents of a DTD, names that begin otherwise. The text that is read.
ACCEPTED = {
    "docs/err_4.xml": "", "docs/err_7.xml": "", "docs/multiline.xml": "", "errors/attr4.xml": "", "errors/attr5.xml": "",
    "errors/comment1.xml": "", "errors/content1.xml": "Anycontent", "errors/doctype1.xml": "", "errors/dup-xml-attr.xml": "",
    "errors/extra-content.xml": "", "errors/name3.xml": "", "errors/trailing-null-1.xml": "", "errors/truncated-utf16.xml": "",
    "feeds/undeclared_namespace.xml": "Foo",
}
# The encoding that has another name in Python than in the document, or that nothing in the document shows.
DECODED_AS = {
    "encodings/Shift_JIS.xml": "cp932", "encodings/weekly-shift_jis.xml": "cp932", "feeds/euc-kr.xml": "euc_kr",
    "encodings/utftest_utf32_le_bom.xml": "utf-32", "feeds/utf-32le-bom.xml": "utf-32", "feeds/big5.xml": "cp1252",
    "feeds/koi8r.xml": "cp1252", "feeds/shiftjis.xml": "cp1252", "feeds/windows1255.xml": "cp1252",
}
ABOUT_THE_FILE = ("Warning: file '%' declares no encoding", "Warning: text outside of the values of file '%'")
LOOSE = ("ISO-8859-15", "ISO-8859-8", "KOI8-R", "Shift_JIS", "gb18030", "windows-1251", "windows-1252")

# golden: attributes, levels before the one with the items, path and name of the records
XML_GOLDENS = {
    "munich_nodes": ("munich_block.osm", "", "osm", "node"),
    "players": ("players.xml", "<Level initialPath='game' subtagName='team'/>", "", "player"),
    "sample_rss_items": ("sample_rss.xml", "", "rss/channel", "item"),
    "slashdot16_story": ("slashdot16.xml", "", "ultramode", "story"),
    "slashdot_story": ("slashdot.xml", "", "ultramode", "story"),
}

# golden: paths of the tables whose rows it holds (it counts rows of inner tables too), number of their columns
HUKUMUSUME = "html/body/table"
WIKIPEDIA = "html/body/div[3]/div[3]/div[4]/div[29]/table"
HTML_GOLDENS = {
    "banklist.html.table1.csv": (["html/body/div[2]/div/table"], 7),
    "chinese_utf-16.html.table1.csv": (["table"], 3),
    "letz_latin1.html.table1.csv": (["table"], 3),
    "spam.html.table1.csv": (["html/html/body/div[3]/div[3]/div[2]/form/div/table"], 5),
    "valid_markup.html.table1.csv": (["html/body/table"], 3),
    "small/escaped.html.table1.csv": (["table"], 3),
    "small/index_1.html.table1.csv": (["table"], 4),
    "small/multiindex_1.html.table1.csv": (["table"], 5),
    "small/render_links_true.html.table1.csv": (["table"], 4),
    "small/table.html.table1.csv": (["html/body/table"], 3),
    "small/unicode_1.html.table1.csv": (["table"], 2),
    "small/various_dtypes_formatted.html.table1.csv": (["table"], 8),
    "pages/hukumusume.html.table1.csv": ([HUKUMUSUME + step for step in (
        "", "/tr/td/div/table", "/tr[2]/td/table", "/tr[2]/td/table[2]", "/tr[2]/td[2]/table", "/tr[2]/td[2]/table/tr/td/table",
        "/tr[2]/td[2]/table/tr/td/table/tr[2]/td/table", "/tr[2]/td[2]/table[2]", "/tr[2]/td[4]/table", "/tr[2]/td[4]/table[2]",
        "/tr[2]/td[4]/table[3]")], 4),
    "pages/keep-tabular-data.html.table1.csv": (["html/body/div[2]/div/div/table"], 9),
    "pages/links-in-tables.html.table3.csv": (
        ["html/body/div[3]/" + "div[2]/" * 6 + "div/div[4]/div/div/div/div[2]/" + "div/" * 5 + "div[2]/div[2]/div[2]/table"], 4),
    "pages/table-style-attributes.html.table1.csv": (["html/body/div/table"], 2),
    "pages/wikipedia.html.table3.csv": ([WIKIPEDIA + step for step in (
        "", "/tr[3]/td/table", "/tr[3]/td/table/tr[3]/td/table", "/tr[3]/td/table/tr[3]/td/table/tr[5]/td/table",
        "/tr[5]/td/table", "/tr[5]/td/table/tr[3]/td/table", "/tr[7]/td/table", "/tr[9]/td/table")], 2),
}
# The program that wrote the goldens took scripts for text, and the UTF-8 of a page that does not declare it for Latin-1.
SCRIPT = re.compile(r"//<!\[CDATA\[.*?//\]\]>")
TAKEN_FOR_LATIN1 = {"small/unicode_1.html.table1.csv"}
# Pages that are truncated in the middle of a section or a tag, or hold no element.
UNREADABLE = {
    "libxml2/758518-tag.html": "Error: Invalid char in tag name", "libxml2/758606_2.html": "Error: Unmatched clear tag end",
    "libxml2/758518-entity.html": "Warning: No XML/JSON tag found", "libxml2/758605.html": "Warning: No XML/JSON tag found",
}
PAGE_LEVELS = [
    "<Level initialPath=''><e name='text' path=''/><e name='names' path='' tagName='1'/></Level>",
    "<Level initialPath='html/body'><e name='text' path=''/><e name='second' path='[2]'/></Level><Level subtagName='td'><e name='x' path='a/@href'/></Level>",
    "<Level initialPath='html/body//table/tbody' subtagName='tr'><e name='a' path='[1]'/><e name='b' path='td[2]/b'/></Level>",
]

# xmltest.zip, documents that are not well-formed and are read all the same: what is not checked.
NOT_WELL_FORMED = {
    "a DTD": {"sa": {54, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 78, 79, 80, 82, 84, 86, 87, 89, 91, 107, 113, 114, 121,
                     122, 123, 124, 125, 126, 127, 128, 129, 130, 131, 132, 133, 134, 135, 136, 137, 138, 139, 149, 158, 160, 161,
                     162, 165, 175, 180, 183, 184},
              "not-sa": {1, 2, 3, 4, 5, 6, 7, 8}},
    "an XML declaration, the names of instructions": {"sa": {94, 95, 96, 97, 98, 99, 100, 101, 102, 147, 148, 150, 151, 152, 154, 155,
                                                            156, 157}},
    "how names begin": {"sa": {2, 23, 24}},
    "what is in a comment, or a section that is called almost CDATA": {"sa": {6, 18, 70, 108, 112}},
    "<, ]]> and control characters": {"sa": {14, 25, 26, 29, 30, 31, 32, 33, 166, 167, 171, 172, 173, 174, 177}},
    "the characters of references": {"sa": {93, 142, 143, 144, 145}},
    "attributes that repeat or touch each other": {"sa": {38, 186}},
    "text outside the document element": {"sa": {36, 37, 40, 41, 43, 44, 48, 51, 52, 105, 106, 163}},
    "the encoding of short documents": {"sa": {168, 169, 170}},
}


def without_blanks(text):
    return "".join(text.split())


def comparable(rows):
    """Rows in any order, without blanks and empty cells at the end, in which the program that wrote the goldens differs."""
    return sorted(re.sub(r"\|*$", "", "|".join(without_blanks(cell) for cell in row)) for row in rows)


def runs_of(names):
    """Tag names as a cell shows them in document order."""
    runs = [[name, len(list(group))] for name, group in itertools.groupby(names)]
    return "".join(name + (f"[{count}]" if count > 1 else "") + " " for name, count in runs)


def as_expat_reads(content):
    """The name of the document element, all text in it without blanks, the names of its children, its own text."""
    open_elements, names, children, text, own = [], [], [], [], []

    def start(name, _):
        (names if not open_elements else children if len(open_elements) == 1 else []).append(name)
        open_elements.append(name)

    def characters(piece):
        text.append(piece)
        own.extend([piece] if len(open_elements) == 1 else [])

    parser = xml.parsers.expat.ParserCreate()
    parser.StartElementHandler = start
    parser.EndElementHandler = lambda _: open_elements.pop()
    parser.CharacterDataHandler = characters
    parser.Parse(content, True)
    return names[0], without_blanks("".join(text)), runs_of(children), "".join(own).strip(" \t\r\n")


WHOLE = "<Level initialPath=''><e name='text' path=''/><e name='children' path='' tagName='1'/></Level>"
OWN_TEXT = "readClearTags='1' outputSubTags='1' tagNameSummary='0' "
ALL_TEXT = "addOnlyText='1' " + OWN_TEXT


class Corpus(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_markup_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def read_all(self, documents, status=0):
        """Run one action for each (file, attributes, levels): for each its messages and rows, header included."""
        actions, taps = [], []
        for i, (file, attributes, levels) in enumerate(documents):
            name = xml.sax.saxutils.escape(str(file), {"'": "&apos;"})
            actions.append(f"<action id='a{i}'><readXML fileName='{name}' bufferSize='1' {attributes}>{levels}</readXML></action>")
            taps += ["--tap", f"a{i}:0={self.folder}/{i}.csv"]
        (self.folder / "case.graph").write_text("<graph version='4.11'>" + "".join(actions) + "</graph>")
        done = subprocess.run([CORVANTA, "run", str(self.folder / "case.graph"), "--log-format", "json", *taps], text=True,
                              capture_output=True, timeout=300, check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        messages = [json.loads(line) for line in done.stderr.splitlines()]
        results = []
        for i, (file, _, _) in enumerate(documents):
            said = [m["message"].strip().replace(str(file), "%") for m in messages if m["action"] == f"a{i}"]
            # What the action says about good and bad documents alike; graph cases check these messages.
            said = [text for text in said if not text.startswith(ABOUT_THE_FILE)]
            rows = []
            if status == 0:
                with open(self.folder / f"{i}.csv", encoding="utf-8", newline="") as table:
                    rows = list(csv.reader(table))
            results.append((said, rows))
        return results

    def read(self, *document, status=0):
        return self.read_all([document], status)[0]

    def read_in_batches(self, documents):
        """The same for any number of documents."""
        results = []
        for start in range(0, len(documents), BATCH):
            results += self.read_all(documents[start:start + BATCH])
        return results

    def read_whole(self, files):
        """What as_expat_reads() returns for a document, for each of its roots."""
        options = "skipCorruptedFiles='1'"
        all_text = self.read_in_batches([(file, ALL_TEXT + options, WHOLE) for file in files])
        own_text = self.read_in_batches([(file, OWN_TEXT + options, WHOLE) for file in files])
        for (messages, rows), (_, own_rows) in zip(all_text, own_text):
            yield messages, [(root, without_blanks(text), children, own[1].replace("\r\n", "\n").replace("\r", "\n").strip(" \t\n"))
                             for (root, text, children), own in zip(rows[1:], own_rows[1:])]

    # ---- XML

    def test_documents_give_the_rows_of_their_goldens(self):
        self.assertEqual(sorted(path.stem for path in (CORPUS / "xml/docs/golden").iterdir()), sorted(XML_GOLDENS))
        for golden, (document, outer, path, name) in XML_GOLDENS.items():
            with open(CORPUS / "xml/docs/golden" / f"{golden}.csv", encoding="utf-8", newline="") as table:
                expected = list(csv.reader(table))
            items = "".join(f"<e name='{column}' path='{column}'/>" for column in expected[0])
            levels = f"{outer}<Level initialPath='{path}' subtagName='{name}'>{items}</Level>"
            _, rows = self.read(CORPUS / "xml/docs" / document, "readClearTags='1'", levels)
            self.assertEqual(rows, expected, golden)

    def test_every_document_is_read_or_refused_as_listed(self):
        folder = CORPUS / "xml"
        names = [str(path.relative_to(folder)) for path in sorted(folder.rglob("*"))
                 if path.is_file() and path.suffix in (".xml", ".osm", ".rdf", ".xhtml")]
        self.assertGreater(len(names), 130)
        good = [name for name in names if name not in REFUSED]
        for name, (messages, rows) in zip(good, self.read_whole([folder / name for name in good])):
            with self.subTest(name):
                dropped = ["invalid character found in file '%'"] if name in DROPPED else []
                self.assertEqual(messages, dropped)
                if name in ACCEPTED:
                    self.assertEqual("".join(row[1] for row in rows), ACCEPTED[name])
                    continue
                content = (folder / name).read_bytes()
                if name in DECODED_AS:
                    content = re.sub(r"^\ufeff?<\?xml[^>]*\?>", "", content.decode(DECODED_AS[name], "ignore")).encode()
                self.assertEqual(rows, [as_expat_reads(content)])
        for name, message in REFUSED.items():
            with self.subTest(name):
                messages, _ = self.read(folder / name, ALL_TEXT, WHOLE, status=1)
                dropped = ["invalid character found in file '%'"] if name in DROPPED else []
                expected = message if message.startswith("Invalid") else "ERROR: " + message
                self.assertEqual(messages, [*dropped, expected])

    def test_every_character_of_an_encoding_is_read(self):
        documents = [CORPUS / f"xml/encodings/{name}.xml" for name in LOOSE]
        levels = "<Level initialPath='' subtagName='root'><e name='text' path=''/></Level>"
        attributes = "readHTML='1' ignoreInvalidCharInTagName='1' readClearTags='1'"
        results = self.read_all([(file, attributes, levels) for file in documents])
        for file, (messages, rows) in zip(documents, results):
            content = file.read_bytes()
            declared = re.search(rb'encoding="([^"]+)"', content)[1].decode()
            if declared == "gb18030":  # Python knows an older edition of it
                text = subprocess.run(["iconv", "-f", "gb18030", "-t", "utf-8", file], capture_output=True, check=False).stdout.decode()
            else:
                text = content.decode(DECODED_AS.get(f"encodings/{file.name}", declared))
            between, section = re.search(r"-->([^<]*)<ns.*<!\[CDATA\[(.*)]]>\s*</root>", text, re.DOTALL).groups()
            self.assertEqual(messages, [], file.name)
            self.assertEqual(without_blanks(rows[1][0]), without_blanks(between + section), file.name)

    def test_members_of_the_conformance_suite_are_read_or_refused_as_listed(self):
        archive = CORPUS / "xml/xmltest.zip"
        with zipfile.ZipFile(archive) as members:
            contents = {name: members.read(name) for name in members.namelist() if name.endswith(".xml")}
        names = [name for name in contents if "/out/" not in name]
        results = self.read_whole([f"{archive}@{name}" for name in names])
        read = 0
        for name, (messages, rows) in zip(names, results):
            with self.subTest(name):
                _, kind, *folder, file = name.split("/")
                self.assertLessEqual(len(messages), 1)
                if kind == "not-wf":
                    is_listed = any(int(file[:3]) in files.get(folder[0], ()) for files in NOT_WELL_FORMED.values())
                    self.assertEqual(not messages, is_listed, messages)
                elif b"<!ENTITY" in contents[name] and messages or name == "xmltest/valid/not-sa/031.xml":
                    self.assertIn("Error: Unknown character entity", messages[0])
                else:
                    # What the suite says that the document is: entities in it are resolved.
                    canonical = contents.get("/".join(["xmltest", kind, *folder, "out", file]), contents[name])
                    self.assertEqual(rows, [as_expat_reads(canonical)])
                    read += 1
        self.assertGreater(read, 130)

    # ---- HTML

    def test_tables_give_the_rows_of_their_goldens(self):
        names = [path.relative_to(CORPUS / "html") for path in (CORPUS / "html").rglob("golden/*.csv")]
        self.assertEqual(sorted(str(name.parent.parent / name.name) for name in names), sorted(HTML_GOLDENS))
        for golden, (tables, columns) in HTML_GOLDENS.items():
            page, number = golden.split(".table")
            path = pathlib.Path(golden)
            with open(CORPUS / "html" / path.parent / "golden" / path.name, encoding="utf-8", newline="") as table:
                content = SCRIPT.sub("", table.read())
            if golden in TAKEN_FOR_LATIN1:
                content = content.encode("latin-1").decode()
            expected = list(csv.reader(content.splitlines(keepends=True)))
            items = "".join(f"<e name='{i}' path='[{i}]'/>" for i in range(1, columns + 1))
            rows = []
            for table in tables:
                for part in ("/thead", "/tbody"):
                    levels = f"<Level initialPath='{table}{part}' subtagName='tr'>{items}</Level>"
                    rows += self.read(CORPUS / "html" / page, "addOnlyText='1'", levels)[1][1:]
            self.assertEqual(comparable(rows), comparable(expected), golden)

    def test_no_page_stops_or_hangs_the_reader(self):
        pages = sorted(path for path in (CORPUS / "html").rglob("*") if path.suffix in (".html", ".htm"))
        self.assertGreater(len(pages), 45)
        for attributes in ("addOnlyText='1' outputSubTags='1' tagNameSummary='0'", "readClearTags='1' outputTagNames='1'",
                           "getTagPresenceFlag='1' discardNameSpaces='1' ignoreEmptyTag='0'"):
            documents = [(page, attributes + " skipCorruptedFiles='1'", levels) for page in pages for levels in PAGE_LEVELS]
            for (page, _, _), (messages, _) in zip(documents, self.read_in_batches(documents)):
                with self.subTest(page.name):
                    errors = [message for message in messages if "can't find path" not in message]
                    name = str(page.relative_to(CORPUS / "html"))
                    if name in UNREADABLE:
                        self.assertEqual(len(errors), 1, errors)
                        self.assertIn(f"WARNING: XML structure error '{UNREADABLE[name]}' in file '%'", errors[0])
                    else:
                        self.assertEqual(errors, [])


if __name__ == "__main__":
    if not CORPUS.exists():
        print("no corpus: set CORVANTA_CORPUS")
        sys.exit(77)
    unittest.main()

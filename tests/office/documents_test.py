#!/usr/bin/python3
"""Documents that writeDoc and writeDocTable make of templates: documents_test.py CORVANTA CORPUS [TEST...]"""
import pathlib
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree
import zipfile

from document_case import CORVANTA, DOCUMENT, LINK, RELATIONSHIPS, DocumentTest, members, office, rewrite

CORPUS = pathlib.Path(sys.argv[2])
TYPES = "[Content_Types].xml"
FORBIDDEN = "ERROR: {} has {} that XML does not allow: remove such characters from the data.\n"
LEFT = "Warning: 1 marker of the template '{}/t.docx' is left in the documents: {}.\n"
SEVERAL_LEFT = "Warning: {} markers of the template '{}/t.docx' are left in the documents: {}.\n"
BREAKS = "Warning: some programs do not show {} inside text elements, first in {}: set strictMarkup='1'.\n"


class WriteDoc(DocumentTest):
    def test_texts_replace_every_marker(self):
        self.word(office.paragraph("1 %text% 2 %text%%text% %text %Text%") + office.paragraph('<w:x a="%text%"/>'))
        body = self.letter("a & <b> ]]> é\r\nc\nd\\ne\"")[DOCUMENT].decode()
        self.assertEqual(self.log[2], [LEFT.format(self.folder, "'%Text%' in body (no column of this name in 'text')"),
                                       BREAKS.format("2 line breaks", "row 1, column 'text'"),
                                       "Warning: no template has a marker for 1 of the columns: '%photo%'.\n"])
        value = "a &amp; &lt;b> ]]&gt; é<w:br/>c<w:br/>d\\ne\""
        self.assertIn(f"<w:t>1 {value} 2 {value}{value} %text %Text%</w:t>", body)
        self.assertIn('a="a &amp; &lt;b> ]]&gt; é&#10;c&#10;d\\ne&quot;"', body)
        for attributes, value in (("processCR='0'", "x\ny\\nz"), ("processLF='1'", "x<w:br/>y<w:br/>z"),
                                  ("strictMarkup='1'", 'x</w:t><w:br/><w:t xml:space="preserve">y\\nz')):
            self.assertIn(f"<w:t>1 {value} 2", self.letter("x\ny\\nz", attributes=attributes)[DOCUMENT].decode())

    def test_line_breaks_only_where_the_standard_has_them(self):
        deleted = "<w:del><w:r><w:delText>%text%</w:delText></w:r></w:del><w:r><w:instrText>%text%</w:instrText></w:r>"
        self.word(f"<w:p>{deleted}</w:p><m:oMath xmlns:m='m'><m:t>%text%</m:t></m:oMath>" + office.paragraph("%text%"), footer="<w:p/>")
        footer = b"<%ftr xmlns~='" + office.WORD.encode() + b"'><%p><%r><%t>%text%</%t></%r></%p></%ftr>"
        for prefix, declared, name in ((b"p:", b":p", "p.docx"), (b"", b"", "none.docx")):
            changed = footer.replace(b"%text%", b"|").replace(b"%", prefix).replace(b"~", declared).replace(b"|", b"%text%")
            rewrite(self.folder / "t.docx", self.folder / name, lambda part, content: content if part != "word/footer1.xml" else changed)
        for attributes, text in (("", b"%t>a<%br/>b</%t>"), ("strictMarkup='1'", b'%t>a</%t><%br/><%t xml:space="preserve">b</%t>')):
            for prefix, name in ((b"p:", "p.docx"), (b"", "none.docx")):
                written = self.letter("a\nb", attributes=attributes + " allParts='1'", template=name)
                self.assertIn(deleted.replace("%text%", "a\nb"), written[DOCUMENT].decode())
                self.assertIn(b"<m:t>a\nb</m:t>", written[DOCUMENT])
                self.assertIn(text.replace(b"%", b"w:"), written[DOCUMENT])
                self.assertIn(text.replace(b"%", prefix), written["word/footer1.xml"])

    def test_characters_that_xml_does_not_have(self):
        self.word(office.paragraph("[%text%]"))
        self.assertIn("[\ufffd\t\U0001F600\x7f]", self.letter("\ufffd\t\U0001F600\x7f")[DOCUMENT].decode())
        (self.folder / "out.docx").unlink()
        self.fails(FORBIDDEN.format("row 1, column 'text'", "2 characters"), self.write_doc([("out.docx", "t.docx", "a\x01b\uffff\tc", "")]))
        self.word(office.paragraph("no marker"))
        self.letter("a\x01b")

    def test_images_are_stored(self):
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}{office.picture('rId3', 40, 40)}</w:p>",
                  LINK, "media/%photo%.png")
        for photo, kind, more in (("wide.png", "png", ""), ("tall.jpg", "jpeg", "jpg")):
            written = self.letter(photo=photo)
            name = "word/media/__Kobi_img1" + pathlib.Path(photo).suffix
            self.assertEqual(written[name], (self.folder / photo).read_bytes())
            # One member for the same file; the mode of the target goes.
            self.assertEqual(written[RELATIONSHIPS].count(b'Target="media/__Kobi_img1.%s"/>' % photo[-3:].encode()), 2)
            self.assertNotIn(b"TargetMode", written[RELATIONSHIPS])
            self.assertEqual(written[DOCUMENT].count(b"r:embed="), 2)
            for extension in filter(None, (kind, more)):
                self.assertIn(f'<Default Extension="{extension}" ContentType="image/{kind}"/>', written[TYPES].decode())
        self.assertEqual(sorted(set(written) - set(members(self.folder / "t.docx"))), ["word/media/__Kobi_img1.jpg"])

    def test_images_are_linked(self):
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}</w:p>".replace("r:link", "r:embed"), "%photo%", LINK)
        written = self.letter(photo="/a b/c%d.png", attributes="inlineImg='0'")
        self.assertEqual(written[RELATIONSHIPS].count(b'Target="file:////a%20b/c%25d.png" TargetMode="External"/>'), 2)
        self.assertIn(b'<a:blip r:link="rId2"/>', written[DOCUMENT])
        self.assertEqual(written[TYPES], members(self.folder / "t.docx")[TYPES])

    def test_slides(self):
        place = (10, 10, 40, 40)
        shapes = office.text_box(2, "%text%", place, 20, "000000") + office.slide_picture(3, "rId2", place)
        office.presentation(self.folder / "deflated.pptx", (shapes, [LINK]), (shapes, [LINK]), (office.text_box(2, "%", place, 20, "000000"), []))
        with zipfile.ZipFile(self.folder / "t.pptx", "w") as stored:
            for name, content in members(self.folder / "deflated.pptx").items():
                stored.writestr(name, content)
        written = self.letter("a<\nb\\nc", template="t.pptx", attributes="processLF='1'")
        for number in (1, 2):
            self.assertIn(b"<a:t>a&lt;\nb\rc</a:t>", written[f"ppt/slides/slide{number}.xml"])
            self.assertIn(b'Target="../media/__Kobi_img1.png"/>', written[f"ppt/slides/_rels/slide{number}.xml.rels"])
        self.assertIn("ppt/media/__Kobi_img1.png", written)
        with zipfile.ZipFile(self.folder / "out.pptx") as package:
            kinds = [package.getinfo(f"ppt/slides/slide{number}.xml").compress_type for number in (1, 2, 3)]
        self.assertEqual(kinds, [zipfile.ZIP_DEFLATED, zipfile.ZIP_DEFLATED, zipfile.ZIP_STORED], "a slide without a marker keeps its bytes")
        # 40 x 10 pixels in a square of 40 mm: 40 x 10 mm, in the middle.
        fitted = self.letter(template="t.pptx", attributes="fitImages='1'")["ppt/slides/slide1.xml"]
        self.assertIn(b'<a:off x="360000" y="900000"/><a:ext cx="1440000" cy="360000"/>', fitted)

    def test_pictures_keep_their_ratio(self):
        self.word(f"<w:p>{office.picture('rId2', 40, 40)}</w:p>" + office.paragraph("%text%"), LINK)
        for photo, size in (("wide.png", 'cx="1440000" cy="360000"'), ("tall.jpg", 'cx="480000" cy="1440000"')):
            for mode in ("", "inlineImg='0'"):
                body = self.letter(photo=str(self.folder / photo), attributes=f"fitImages='1' {mode}")[DOCUMENT].decode()
                self.assertEqual(body.count(size), 2)

    def test_markers_that_runs_divide(self):
        self.word("<w:p><w:r><w:t>[%te</w:t></w:r><w:r><w:rPr><w:b/></w:rPr><w:t>xt%]</w:t></w:r></w:p>")
        self.assertEqual(self.letter()[DOCUMENT], members(self.folder / "t.docx")[DOCUMENT])
        self.assertEqual(self.log[2][0], f"Warning: 1 marker of the template '{self.folder}/t.docx' is left in the documents: '%text%' in body (type "
                         "it again in one go, or set joinRuns='1').\n")
        self.assertIn(b"<w:t>[x</w:t></w:r><w:r><w:rPr><w:b/></w:rPr><w:t>]</w:t>", self.letter(attributes="joinRuns='1'")[DOCUMENT])

    def test_markers_with_escaped_characters(self):
        self.word(office.paragraph("%a&lt;b&amp;c&gt;d%"))
        reader = self.table([("wordFile", "templateFile", "a<b&c>d"), ("out.docx", "t.docx", "x")])
        element = "<writeDoc joinRuns='1'><text><s>a&lt;b&amp;c>d</s></text></writeDoc>"
        self.assertEqual(self.run_graph([reader, element])[0], 0)
        self.assertIn(b"<w:t>x</w:t>", members(self.folder / "out.docx")[DOCUMENT])

    def test_names_of_parts_in_capitals(self):
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}</w:p>", LINK)
        old = members(self.folder / "t.docx")
        capital = {name.upper() if "document" in name else name: content.replace(DOCUMENT.encode(), DOCUMENT.upper().encode())
                   for name, content in old.items()}
        office.package(self.folder / "t.docx", capital)
        written = self.letter()
        self.assertIn(b"<w:t>x</w:t>", written[DOCUMENT.upper()])
        self.assertIn(b"__Kobi_img1.png", written[RELATIONSHIPS.upper()])

    def test_all_parts(self):
        self.word(office.paragraph("%text%"), footer=office.paragraph("%text%"))
        self.assertIn(b"%text%", self.letter(images=())["word/footer1.xml"])
        self.assertEqual(self.log[2], [LEFT.format(self.folder, "'%text%' in footer 1 (set allParts='1')")])
        self.assertIn(b"<w:t>x</w:t>", self.letter(attributes="allParts='1'", images=())["word/footer1.xml"])
        self.assertEqual(self.log[2], [])
        # A chart is named after the part that shows it.
        chart, text = "charts/chart1.xml", b"<c:v>%text%</c:v><c:v>5%</c:v><c:v>a%</c:v><a:p><a:r><a:t>%text%</a:t></a:r></a:p>"
        for kind, folder, more, where in (("docx", "word/", "diagrams/data1.xml", "'%text%' in body chart, '%text%' in diagram 1"),
                                          ("pptx", "ppt/", "slideLayouts/slideLayout9.xml", "'%text%' in slide 1 chart, '%text%' in slide layout 9")):
            self.word(office.paragraph("%text%"))
            office.presentation(self.folder / "t.pptx", (office.text_box(2, "%text%", (1, 1, 9, 9), 9, "000000"), []))
            parts = members(self.folder / f"t.{kind}")
            parts[folder + chart] = b"<c:c>" + text + b"</c:c>"
            parts[folder + more] = b"<d:d><a:p><a:r><a:t>%te</a:t></a:r><a:r><a:t>xt%</a:t></a:r></a:p></d:d>"
            around = RELATIONSHIPS if kind == "docx" else "ppt/slides/_rels/slide1.xml.rels"
            target = "charts/chart1.xml" if kind == "docx" else "../charts/chart1.xml"
            parts[around] = parts[around].replace(b"</R", f'<Relationship Id="c" Type="x/chart" Target="{target}"/></R'.encode())
            office.package(self.folder / f"t.{kind}", parts)
            self.letter(template=f"t.{kind}", images=())
            self.assertEqual(len(self.log[2]), 1)
            for place in where.split(", "):
                self.assertIn(place, self.log[2][0])
            written = self.letter("a\n&", template=f"t.{kind}", attributes="allParts='1' joinRuns='1'", images=())
            self.assertEqual(self.log[2], [BREAKS.format("1 line break", "row 1, column 'text'")] if kind == "docx" else [])
            self.assertEqual(written[folder + chart], parts[folder + chart].replace(b"%text%", b"a\n&amp;"))
            self.assertIn(b"<a:t>a\n&amp;</a:t></a:r><a:r><a:t></a:t>", written[folder + more])

    def test_texts_that_content_controls_show(self):
        core, data, wide = "docProps/core.xml", "customXml/item1.xml", "customXml/item2.xml"
        for control, left in (("", []), ("<w:sdt><w:sdtPr><w:dataBinding/></w:sdtPr></w:sdt>", [SEVERAL_LEFT.format(
                2, self.folder, "'%text%' in document properties (set allParts='1'), '%text%' in custom XML 1 (set allParts='1')")])):
            self.word(control + office.paragraph("%text%"))
            parts = members(self.folder / "t.docx")
            parts[core] = b"<cp:p xmlns:cp='c'><d:title>%text%</d:title><d:x>5%</d:x><d:y>x%</d:y></cp:p>"
            parts[data] = b"<t>%text%</t>"
            parts[wide] = "<?xml version='1.0' encoding='utf-16'?><t/>".encode("utf-16")
            office.package(self.folder / "t.docx", parts)
            self.assertEqual(self.letter(images=())[core], parts[core])
            self.assertEqual(self.log[2], left)
            written = self.letter("a\nb", attributes="allParts='1' strictMarkup='1'", images=())
            self.assertEqual(self.log[2], [])
            for part in (core, data, wide):
                self.assertEqual(written[part], parts[part].replace(b"%text%", b"a\nb"))

    def test_markers_that_nothing_fills(self):
        names = [chr(97 + i) for i in range(12)]
        self.word(office.paragraph("5%, 10%, 3%ab 4% %text%" + "".join(f" %{name}%" for name in names)) + f"<w:p>{office.picture('rId2', 40, 40)}</w:p>",
                  LINK, footer="<w:p><w:r><w:t>%te</w:t></w:r><w:r><w:t>xt%</w:t></w:r></w:p>")
        self.letter(images=())
        left = [f"'%{name}%' in body (no column of this name in 'text')" for name in names]
        self.assertEqual(self.log[2], [SEVERAL_LEFT.format(14, self.folder, ", ".join([*left[:10], "..."]))])
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}{office.picture('rId3', 40, 40)}</w:p>", LINK,
                  "file:///C:/%20%C3%BCber%20uns.png", footer="<w:p><w:r><w:t>%te</w:t></w:r><w:r><w:t>xt%</w:t></w:r></w:p>")
        self.letter(images=())
        self.assertEqual(self.log[2], [SEVERAL_LEFT.format(
            2, self.folder, "'%photo%' in picture in the body (no column of this name in 'image'), '%text%' in footer 1 (type it again in one "
            "go, or set joinRuns='1'; set allParts='1')")])
        # The warnings come before an error; those of many templates are counted.
        for i in range(12):
            (self.folder / f"t{i}.docx").write_bytes((self.folder / "t.docx").read_bytes())
        rows = [(f"o{i}.docx", f"t{i % 12}.docx", "", "") for i in range(24)]
        _, log = self.write_doc(rows, images=())
        self.assertEqual((len(log[2]), log[2][-1]), (
            11, f"Warning: 2 more templates have markers that are left in the documents, first '{self.folder}/t10.docx': \"corvanta check --template\" "
            "lists the markers of a template.\n"))

    def test_markers_in_addresses_of_links(self):
        self.word(office.paragraph("%text%"))
        link = b'<Relationship Id="rId9" Type="/hyperlink" Target="http://x/%C3%BC?a=%text%&amp;b=%other%" TargetMode="External"/></Relationships>'
        rewrite(self.folder / "t.docx", self.folder / "link.docx",
                lambda name, content: content.replace(b"</Relationships>", link) if name == RELATIONSHIPS else content)
        (self.folder / "link.docx").replace(self.folder / "t.docx")
        self.assertIn(link, self.letter(images=())[RELATIONSHIPS])
        why = "put it into a text: addresses of links are not changed"
        self.assertEqual(self.log[2], [LEFT.format(self.folder, f"'%text%' in address of a link in the body ({why})")])
        done = subprocess.run([CORVANTA, "check", "--template", "t.docx"], cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual(done.stdout.splitlines()[1:], [
            f"t.docx: {name} in address of a link in the body (word/document.xml): not found in a run: {why}" for name in ("%text%", "%other%")])

    def test_names_of_another_kind_than_the_template(self):
        self.word(office.paragraph("%text%"), name="t.dotx")
        _, log = self.write_doc([("out.docx", "t.dotx", "", ""), ("out", "t.dotx", "", "")], images=())
        self.assertEqual(log[2], [f"Warning: 2 documents have a name that does not end like that of the template, first '{self.folder}/out.docx'"
                                  ": Office programs may refuse to open it.\n"])
        self.word(office.paragraph("%T1%"), name="t.dotx")
        reader = self.table([("a",), ("1",)])
        _, log = self.run_graph([reader, "<writeDocTable template='t.dotx' output='out.docx'><v colWidths='9'/></writeDocTable>"])
        self.assertIn(f"Warning: the name of the document '{self.folder}/out.docx' does not end like that of its template: Office programs "
                      "may refuse to open it.\n", log[2])

    def test_markers_that_no_template_has(self):
        self.word(office.paragraph("nothing"))
        self.assertEqual(self.letter(), members(self.folder / "t.docx"))
        self.assertEqual(self.log[2], ["Warning: no template has a marker for 2 of the columns: '%text%', '%photo%'.\n"])

    def test_names_that_are_empty(self):
        self.word(office.paragraph("%text%"))
        for row, message, reason in (
                (("", "t.docx", "", ""), "\nERROR: Cannot write Ouput file ''.\n", "the name of the document is empty: row 2, column 'wordFile'"),
                (("out.docx", "", "", ""), "\nERROR: cannot read Report Template file \n",
                 "the name of the template is empty: row 2, column 'templateFile'")):
            done = self.write_doc([("first.docx", "t.docx", "", ""), row], images=())
            self.fails(message, done, reason)
            self.assertEqual(done[1][2], [])

    def test_outputs_are_listed(self):
        self.write_doc([("out.docx", "t.docx", "", "")])
        graph = (self.folder / "g.graph").read_text()
        # Two actions may write to one folder.
        more = "<action id='b'><writeDoc><text><s>text</s></text></writeDoc></action><link from='a0:0' to='b:0'/></graph>"
        (self.folder / "g.graph").write_text(graph.replace("</graph>", more))
        done = subprocess.run([CORVANTA, "check", "g.graph", "--list-outputs"], cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual((done.stdout, done.stderr), (f"{self.folder}/*\n", ""))

    def test_no_rows(self):
        self.assertEqual(self.write_doc([]), (0, {1: [], 2: ["Warning: no document is written: the input has no rows.\n"], 3: []}))

    def test_columns_that_are_missing(self):
        self.word(office.paragraph("%text%"))
        self.fails("\nERROR: cannot find column 'gone' on input pin\n", self.write_doc([("out.docx", "t.docx", "", "")], texts=["gone"]))

    def test_templates_that_are_none(self):
        self.word(office.paragraph("%text%"))
        whole = (self.folder / "t.docx").read_bytes()
        (self.folder / "none.docx").write_bytes(b"")
        (self.folder / "cut.docx").write_bytes(whole[:-40])
        office.package(self.folder / "empty.docx", {})
        (self.folder / "t.pptx").write_bytes(whole)
        (self.folder / "old.doc").write_bytes(bytes.fromhex("d0cf11e0a1b11ae1") + bytes(600))
        office.package(self.folder / "t.odt", {"content.xml": b"<a/>"})
        bad = re.sub(rb"(?<=w:t>)%te", b"%tE", whole)  # nothing to find: the bytes are deflated
        self.assertEqual(bad, whole)
        cannot = "\nERROR: cannot read Report Template file {}\n"
        for name, message, reason in (
                ("gone.docx", cannot, "there is no file with this name"), ("none.docx", cannot, "the file is empty"),
                ("none.docx", "\nERROR: template file is empty.\n", None), ("cut.docx", cannot, "not a package|truncated"),
                ("empty.docx", "\nERROR: template file is empty.\n", None),
                ("t.pptx", "\nERROR: problem reading 'ppt/presentation.xml' in the template file(1)\n", "is not there"),
                ("t.odt", "\nERROR: problem reading 'ppt/presentation.xml' in the template file(1)\n", "it is not an Office package"),
                ("old.doc", cannot, "the file is not an Office template, but an old one")):
            with self.subTest(name):
                done = self.write_doc([("out.docx", name, "", "")])
                self.fails(message.format(self.folder / name), done, reason)
                self.assertRegex(done[1][3][-1], "the name is in row 1, column 'templateFile'")

    def test_damaged_members(self):
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}</w:p>", LINK)
        whole = (self.folder / "t.docx").read_bytes()
        with zipfile.ZipFile(self.folder / "t.docx") as package:
            offsets = {info.filename: info.header_offset + 30 + len(info.filename) for info in package.infolist()}
        for name, message in ((DOCUMENT, "\nERROR: problem reading 'word/document.xml' in the template file(1)\n"),
                              (RELATIONSHIPS, "\nERROR: problem reading 'word/_rels/document.xml.rels' in the template file(2)\n"),
                              ("word/styles.xml", "\nERROR: cannot open file 'word/styles.xml' in the zipfile for read")):
            with self.subTest(name):
                at = offsets[name] + 20
                (self.folder / "bad.docx").write_bytes(whole[:at] + bytes(b ^ 255 for b in whole[at:at + 9]) + whole[at + 9:])
                self.fails(message, self.write_doc([("out.docx", "bad.docx", "", "wide.png")]), "is damaged")
        rewrite(self.folder / "t.docx", self.folder / "wide.docx",
                lambda name, content: content.decode().encode("utf-16") if name == DOCUMENT else content)
        self.fails("\nERROR: problem reading 'word/document.xml' in the template file(1)\n",
                   self.write_doc([("out.docx", "wide.docx", "", "wide.png")]), "the part 'word/document.xml' of the template is not the XML")

    def test_images_that_are_none(self):
        self.word(f"<w:p>{office.picture('rId2', 40, 40)}</w:p>", LINK)
        (self.folder / "note.png").write_text("no image")
        self.fails(f"\nERROR: cannot open the file '{self.folder}/gone.png'\n", self.write_doc([("out.docx", "t.docx", "", "gone.png")]),
                   "the name is in row 1, column 'photo'")
        self.fails(f"ERROR: the file '{self.folder}/note.png' is not a PNG, JPEG, GIF, BMP, TIFF, EMF, WMF or SVG image.\n",
                   self.write_doc([("out.docx", "t.docx", "", "note.png")]), "row 1")
        for attributes in ("", "inlineImg='0'"):
            self.fails("\nERROR: cannot open the file ''\n", self.write_doc([("out.docx", "t.docx", "", "")], attributes),
                       "the name of the image for the marker '%photo%' is empty: row 1, column 'photo'")

    def test_documents_that_cannot_be_written(self):
        self.word(office.paragraph("%text%") * 3)
        self.fails(f"\nERROR: Cannot write Ouput file '{self.folder}/no/out.docx'.\n", self.write_doc([("no/out.docx", "t.docx", "", "")]),
                   "folder")
        status, log = self.write_doc([("t.docx", "t.docx", "", "")])
        self.assertEqual((status, log[1]), (1, [f"ERROR: the document '{self.folder}/t.docx' would replace its own template: choose "
                                                "another output name.\n"]))
        status, log = self.write_doc([("a.docx", "t.docx", "1", ""), ("b.docx", "t.docx", "2", ""), ("./a.docx", "t.docx", "3", "")])
        self.assertEqual((status, log[1]), (1, [f"ERROR: the rows 1 and 3 have the same output document '{self.folder}/a.docx'.\n"]))
        self.assertIn(b"<w:t>1<", members(self.folder / "a.docx")[DOCUMENT])
        # The template under other names, and that of an earlier row.
        (self.folder / "soft.docx").symlink_to("t.docx")
        (self.folder / "hard.docx").hardlink_to(self.folder / "t.docx")
        (self.folder / "u.docx").write_bytes((self.folder / "t.docx").read_bytes())
        for name in ("soft.docx", "hard.docx", f"../{self.folder.name}/t.docx"):
            status, log = self.write_doc([(name, "t.docx", "", "")])
            self.assertEqual((status, len(log[1])), (1, 1))
            self.assertIn("would replace its own template", log[1][0])
        status, log = self.write_doc([("c.docx", "t.docx", "", ""), ("soft.docx", "u.docx", "", "")])
        self.assertEqual(log[1], [f"ERROR: the document '{self.folder}/soft.docx' of row 2 would replace the template of row 1: choose "
                                  "another output name.\n"])
        self.assertIn(b"%text%", members(self.folder / "t.docx")[DOCUMENT])

    def test_full_disk(self):
        office.png(self.folder / "noise.png", 200, 100, lambda x, y: ((x * y * 7919) % 251, (x * 31 + y * 17) % 253, (x ^ y * 3) % 256))
        noise = " ".join(str(i * i * 7919 % 10_000_019) for i in range(20_000))
        self.word(office.paragraph("%text%") + f"<w:p>{office.picture('rId2', 40, 40)}</w:p>", LINK)
        self.letter(noise, "noise.png")
        size = (self.folder / "out.docx").stat().st_size
        (self.folder / "out.docx").unlink()
        found = set()
        for limit in (2000, size // 2, *range(size - 4000, size, 100)):
            status, log = self.write_doc([("out.docx", "t.docx", noise, "noise.png")], limit=limit)
            self.assertEqual((status, list(self.folder.glob("out*"))), (1, []))
            found.update(log[1] + log[2])
        self.assertEqual(found, {
            "\nWARNING: problem writing the output file (3)\n", "\nERROR: problem writing the output file(5)\n",
            "\nERROR: problem writing the output file(6)\n", "\nWARNING: problem closing the output file\n",
            f"ERROR: the document '{self.folder}/out.docx' could not be completed and is not written.\n"})

    def test_corpus(self):
        accepted = 0
        for path in sorted([*CORPUS.glob("docx/*.doc[xm]"), *CORPUS.glob("pptx/*.ppt[xm]")]):
            with self.subTest(path.name):
                accepted += self.process(path)
        self.assertGreater(accepted, 35)

    def process(self, path):
        template = "t" + path.suffix
        for old in self.folder.glob("out*"):
            old.unlink()
        # Some programs number the document part.
        texts = (DOCUMENT, "word/document2.xml", "ppt/slides/slide1.xml")

        def mark(name, content):
            return re.sub(rb"(<[wa]:p\b[^>/]*>)", rb"\1<w:r><w:t>[%text%]</w:t></w:r>", content, count=1) if name in texts else content
        try:
            rewrite(path, self.folder / template, mark)
        except (zipfile.BadZipFile, KeyError):
            (self.folder / template).write_bytes(path.read_bytes())
            self.fails(f"\nERROR: cannot read Report Template file {self.folder}/{template}\n",
                       self.write_doc([("out" + path.suffix, template, "", "")], images=()))
            return 0
        before, after = members(self.folder / template), self.letter("a & b", template=template, images=())
        for name, content in before.items():
            expected = content.replace(b"%text%", b"a &amp; b") if name in texts else content
            self.assertEqual(after.pop(name), expected, name)
        self.assertEqual(after, {})
        return 1


class WriteDocTable(DocumentTest):
    def write_tables(self, *tables, attributes="template='t.docx' output='out.docx'", **more):
        """Tables are (attributes of v, rows)."""
        readers = [self.table(rows, f"in{i}.csv") for i, (_, rows) in enumerate(tables)]
        elements = "".join(f"<v {attributes}/>" for attributes, _ in tables)
        return self.run_graph([*readers, f"<writeDocTable {attributes}>{elements}</writeDocTable>"], **more)

    def report(self, *tables, **more):
        status, self.log = self.write_tables(*tables, **more)
        self.assertEqual(status, 0, self.log)
        return members(self.folder / "out.docx")

    ROWS = [("a", "b"), ("1<", "x\ny\\nz"), ("&", "")]

    @staticmethod
    def expected(rows, widths, style="TableGrid"):
        cells = "".join("<w:tr>" + "".join(
            f'<w:tc><w:tcPr><w:tcW w:w="{width}" w:type="dxa"/></w:tcPr><w:p><w:r><w:t>{text}</w:t></w:r></w:p></w:tc>'
            for text, width in zip(row, widths)) + "</w:tr>" for row in rows)
        grid = "".join(f'<w:gridCol w:w="{width}"/>' for width in widths)
        return (f'<w:tbl><w:tblPr><w:tblStyle w:val="{style}"/></w:tblPr><w:tblGrid>{grid}</w:tblGrid>{cells}</w:tbl>')

    def test_tables(self):
        self.word(office.paragraph("%T1%, ") + office.paragraph("2", run="<w:b/>") + office.paragraph("two %T2% %T1%", run="<w:b/>"))
        old = members(self.folder / "t.docx")
        written = self.report(("markerName='T1' colWidths='100,200' styleID='TableGrid' includeHeaders='1'", self.ROWS),
                              ("colWidths=' 300 '", [("c",), ("3",)]))
        one = self.expected([("a", "b"), ("1&lt;", "x<w:br/>y\\nz"), ("&amp;", "")], (100, 200))
        two = self.expected([("3",)], (300,))
        body = old[DOCUMENT].decode().replace("<w:p><w:r><w:t>%T1%", one + "<w:p><w:r><w:t>")
        self.assertEqual(written.pop(DOCUMENT).decode(), body.replace("%T2%", two).replace("%T1%", one))
        styles = written.pop("word/styles.xml").decode()
        self.assertRegex(styles, '<w:style w:type="table" w:styleId="TableGrid"><w:name w:val="Table Grid"/><w:basedOn w:val="TableNormal"/>'
                         '.*</w:style></w:styles>$')
        self.assertEqual({name: old[name] for name in written}, written)
        self.assertEqual(self.log[2], [BREAKS.format("1 line break", "row 1, column 'b' of input pin 1"), "Warning: some programs do not show 2 tables inside "
                                       "the text of a formatted paragraph, first that at '%T2%': set "
                                       "strictMarkup='1'.\n"])

    def test_line_breaks_and_styles(self):
        self.word(office.paragraph("%T1%"))
        for attributes, text in (("processCR='0'", "x\ny\\nz"), ("processLF='1'", "x<w:br/>y<w:br/>z"),
                                 ("strictMarkup='1'", 'x</w:t><w:br/><w:t xml:space="preserve">y\\nz')):
            written = self.report(("colWidths='1,2' styleID='Report'", self.ROWS),
                                  attributes="template='t.docx' output='out.docx' " + attributes)
            self.assertIn(self.expected([("1&lt;", text), ("&amp;", "")], (1, 2), "Report").encode(), written[DOCUMENT])
            self.assertEqual([w for w in self.log[2] if "line breaks" in w],
                             [BREAKS.format("2 line breaks", "row 1, column 'b' of input pin 1")] if "LF" in attributes else [])
        self.report(("colWidths='1,2' styleID='No&lt;ne'", [("a", "b"), ("1", "")]))
        self.assertEqual(self.log[2], ["Warning: the template has no style 'No<ne': the table at '%T1%' has no format.\n"])

    def test_characters_that_xml_does_not_have(self):
        self.word(office.paragraph("%T1%"))
        for rows, place, count in (([("a", "b"), ("1", "2"), ("\x02\x03", "")], "row 2, column 'a' of input pin 1", "2 characters"),
                                   ([("a", "b\x04"), ("1", "2")], "the name of the column 'b\x04' of input pin 1", "1 character")):
            self.fails(FORBIDDEN.format(place, count), self.write_tables(("includeHeaders='1' colWidths='1,2'", rows)))

    def test_widths(self):
        self.word(office.paragraph("%T1%"))
        written = self.report(("colWidths='100,x,0'", [("a", "b", "c", "d"), "1234"]))
        self.assertIn(self.expected(["1234"], (100, 2990, 2990, 2990)).encode(), written[DOCUMENT])
        self.assertEqual((self.log[1], self.log[2], self.log[3]), (
            ["Warning reading table on input pin 1: Number of columns of input table does not match number of widths given?"],
            ["Warning: 2 widths of the table on input pin 1 are not used, first 'x': a width is a whole number from 1 to 31680.\n"],
            ["Reason: colWidths gives 3 widths for 4 columns.\n"]))

    def test_markers(self):
        divided = "<w:p><w:r><w:t>%T</w:t></w:r><w:r><w:t>1%</w:t></w:r></w:p>"
        self.word(divided + office.paragraph("text %T2% more"))
        tables = [("colWidths='9'", [("a",), ("1",)]), ("colWidths='9'", [("a",)]), ("colWidths='9'", [("a",), ("3",)])]
        body = self.report(*tables)[DOCUMENT].decode()
        self.assertIn(divided + self.expected([], (9,)) + "<w:p><w:r><w:t> more", body)
        self.assertEqual(self.log[2], [
            "WARNING reading table on input pin 2: Input table is empty?",
            "Warning: the marker '%T1%' is divided into several runs and stays in the document: type it again in one go, or set "
            "joinRuns='1'.\n", "Warning: the template has no marker '%T3%': the table on input pin 3 is not written.\n",
            "Warning: the text before 1 marker in the same paragraph is dropped, first that before '%T2%': put markers into paragraphs of "
            "their own, or set strictMarkup='1'.\n"])
        body = self.report(*tables, attributes="template='t.docx' output='out.docx' joinRuns='1' strictMarkup='1'")[DOCUMENT].decode()
        self.assertIn(self.expected([("1",)], (9,)) + '<w:p><w:r><w:t xml:space="preserve"></w:t></w:r><w:r><w:t></w:t></w:r></w:p>'
                      '<w:p><w:r><w:t>text </w:t></w:r></w:p>' + self.expected([], (9,))
                      + '<w:p><w:r><w:t xml:space="preserve"> more</w:t></w:r></w:p>', body)

    def test_markers_outside_of_the_body(self):
        self.word(office.paragraph("%T1%"), footer=office.paragraph("%T1% %T1% %x%"))
        self.report(("colWidths='9'", [("a",), ("1",)]))
        self.assertEqual(self.log[2], ["Warning: 2 markers are left in the document, first '%T1%' in footer 1: tables are only possible in the body.\n"])

    def test_markers_that_are_not_in_a_text(self):
        body = '<w:p><w:r><w:x a="%T1%"/><w:t>%T1%</w:t></w:r></w:p>'
        self.word(body)
        written = self.report(("colWidths='9'", [("a",), ("1",)]))[DOCUMENT].decode()
        self.assertIn(body.replace(">%T1%", ">" + self.expected([("1",)], (9,))), written)
        self.assertIn("Warning: 1 marker outside of texts, where no table can be, is left in the document, first '%T1%'.\n",
                      self.log[2])

    def test_styles_without_an_end_or_in_another_form(self):
        self.word(office.paragraph("%T1%"))
        table = ("colWidths='9'", [("a",), ("1",)])
        rewrite(self.folder / "t.docx", self.folder / "single.docx", lambda name, content: content if "styles" not in name else
                b"<w:styles xmlns:w='u'><w:style w:type='table' w:styleId='TableGrid'/></w:styles>")
        single = self.report(table, attributes="template='single.docx' output='out.docx'")
        self.assertEqual((single["word/styles.xml"].count(b"TableGrid"), self.log[2]), (1, []))
        rewrite(self.folder / "t.docx", self.folder / "none.docx", lambda name, content: content if "styles" not in name else b"<w:styles/>")
        self.report(table, attributes="template='none.docx' output='out.docx'")
        self.assertEqual(self.log[2], ["Warning: the template has no style 'TableGrid': the table at '%T1%' has no format.\n"])
        rewrite(self.folder / "t.docx", self.folder / "wide.docx",
                lambda name, content: content if "styles" not in name else content.decode().encode("utf-16"))
        (self.folder / "out.docx").unlink()
        self.fails("ERROR: problem reading the template file(1)\n", self.write_tables(table, attributes="template='wide.docx' "
                   "output='out.docx'"), "the part 'word/styles.xml' of the template is not the XML")

    def test_tables_between_paragraphs(self):
        self.word('<w:p w:id="1"><w:pPr><w:jc w:val="left"/></w:pPr><w:hyperlink r:id="rId1"><w:r w:id="2"><w:rPr><w:b/></w:rPr>'
                  '<w:t>%T1%%T1%z</w:t></w:r></w:hyperlink></w:p>')
        table = self.expected([("1",)], (9,))
        again = ('<w:p><w:pPr><w:jc w:val="left"/></w:pPr><w:hyperlink r:id="rId1"><w:r><w:rPr><w:b/></w:rPr>'
                 '<w:t xml:space="preserve">')
        body = self.report(("colWidths='9'", [("a",), ("1",)]), attributes="template='t.docx' output='out.docx' strictMarkup='1'")
        self.assertIn("<w:body>" + table + again + "</w:t></w:r></w:hyperlink></w:p>" + table + again + "z</w:t>",
                      body[DOCUMENT].decode())

    def test_tables_in_a_part_with_another_prefix(self):
        self.word('<w:p><w:pPr><w:jc w:val="left"/></w:pPr><w:r><w:t>x %T1% y</w:t></w:r></w:p>')
        rewrite(self.folder / "t.docx", self.folder / "other.docx", lambda name, content: content if name != DOCUMENT else
                content.replace(b"w:", b"n:").replace(b":w=", b":n="))
        for strict, place in (("0", "<n:t>x {} y</n:t>"), ("1", "x </n:t></n:r></n:p>{}<n:p><n:pPr>")):
            body = self.report(("colWidths='9'", [("a",), ("1",)]),
                               attributes=f"template='other.docx' output='out.docx' strictMarkup='{strict}'")[DOCUMENT].decode()
            self.assertIn(place.format(self.expected([("1",)], (9,))), body)
            xml.etree.ElementTree.fromstring(body)

    def test_numbered_parts(self):
        self.word(office.paragraph("%T1%"))
        office.package(self.folder / "t.docx", {
            re.sub(r"/(document|styles)\.xml", r"/\g<1>2.xml", name): re.sub(rb"(document|styles)\.xml", rb"\g<1>2.xml", content)
            for name, content in members(self.folder / "t.docx").items()})
        written = self.report(("colWidths='9'", [("a",), ("1",)]))
        self.assertIn(self.expected([("1",)], (9,)).encode(), written["word/document2.xml"])
        self.assertIn(b'w:styleId="TableGrid"', written["word/styles2.xml"])

    def test_more_pins_than_tables_and_fewer(self):
        self.word(office.paragraph("%T1% %T2% %T3%"))
        reader, start = self.table([("a",), ("1",)]), "<writeDocTable template='t.docx' output='out.docx'>"
        for readers, tables, cells in ((2, "", (["1"], ["1"])), (1, "<v/><v markerName='T3'/>", (["1"], []))):
            status, log = self.run_graph([reader] * readers + [start + tables + "</writeDocTable>"])
            self.assertEqual(status, 0)
            found = re.findall("<w:tbl>.*?</w:tbl>", members(self.folder / "out.docx")[DOCUMENT].decode())
            self.assertEqual([re.findall("<w:t>([^<]*)", one) for one in found], list(cells))
            self.assertEqual("WARNING reading table on input pin 2: Input table is empty?" in log[2], readers == 1)

    def test_failures(self):
        self.word(office.paragraph("%T1%"))
        table = ("colWidths='9'", [("a",), ("1",)])
        office.package(self.folder / "empty.docx", {})
        office.presentation(self.folder / "slides.docx")
        rewrite(self.folder / "t.docx", self.folder / "bare.docx", lambda name, content: None if name == DOCUMENT else content)
        for attributes, message in (
                ("template='t.docx'", "No Output File?"), ("output='out.docx'", "No Template File?"),
                ("template='gone.docx' output='out.docx'", f"ERROR: cannot read Report Template file {self.folder}/gone.docx\n"),
                ("template='empty.docx' output='out.docx'", "ERROR: template file is empty.\n"),
                ("template='slides.docx' output='out.docx'", "ERROR: problem reading the template file(1)\n"),
                ("template='bare.docx' output='out.docx'", "ERROR: problem reading the template file(2)\n"),
                ("template='t.docx' output='no/out.docx'", f"ERROR: Cannot write Report file '{self.folder}/no/out.docx'.\n"),
                ("template='t.docx' output='./t.docx'", "ERROR: the document '{}' would replace its own template: choose another output "
                 "name.\n".format(f"{self.folder}/t.docx"))):
            with self.subTest(attributes):
                self.fails(message, self.write_tables(table, attributes=attributes))
        self.fails("ERROR : Marker '%T1%' on pin 2 already exists. All markers must be different.\n",
                   self.write_tables(table, ("markerName='T1'", [("a",)])))

    def test_full_disk(self):
        self.word(office.paragraph("%T1%"))
        noise = [("a",)] + [(str(i * i * 7919 % 10_000_019),) for i in range(3000)]
        done = self.write_tables(("colWidths='9'", noise), limit=12_000 + (self.folder / "t.docx").stat().st_size)
        self.fails(f"ERROR: the document '{self.folder}/out.docx' could not be completed and is not written.\n", done)
        self.assertIn("\nWARNING: problem writing the output file\n", done[1][2])

    def test_tables_larger_than_memory_should_hold(self):
        self.word(office.paragraph("%T1%"))
        rows = [("a",)] + [(f"row {i}",) for i in range(170_000)]
        body = self.report(("colWidths='9'", rows))[DOCUMENT].decode()
        self.assertIn(self.expected(rows[1:], (9,)), body)
        (self.folder / "out.docx").unlink()
        done = self.write_tables(("colWidths='9'", rows), limit=5_000_000)
        self.fails("ERROR: cannot write the temporary file of the table on input pin 1.\n", done, "too large")

    def test_corpus(self):
        accepted = 0
        for path in sorted(CORPUS.glob("docx/*.docx")):
            with self.subTest(path.name):
                accepted += self.process(path)
        self.assertGreater(accepted, 22)

    def process(self, path):
        marker = b"<w:p><w:r><w:t>%T1%</w:t></w:r></w:p>"
        try:
            rewrite(path, self.folder / "t.docx", lambda name, content: content.replace(b"<w:sectPr", marker + b"<w:sectPr", 1)
                    if name == DOCUMENT else content)
        except zipfile.BadZipFile:
            return 0
        before = members(self.folder / "t.docx")
        table = ("colWidths='9'", [("a",), ("1",)])
        if DOCUMENT not in before:
            return 0
        if "word/styles.xml" not in before:
            self.assertEqual(self.write_tables(table)[0], 1)
            return 0
        after = self.report(table)
        expected = before[DOCUMENT].replace(marker, self.expected([("1",)], (9,)).encode() + marker.replace(b"%T1%", b""))
        self.assertEqual(after.pop(DOCUMENT), expected)
        self.assertEqual(after.pop("word/styles.xml").count(b'w:styleId="TableGrid"'), 1)
        self.assertEqual({name: before[name] for name in after}, after)
        return 1


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])

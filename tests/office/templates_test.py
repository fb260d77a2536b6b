#!/usr/bin/python3
"""check --template, and the templates of the examples: templates_test.py CORVANTA [TEST...]"""
import json
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree
import zipfile

from document_case import CORVANTA, DOCUMENT, EXAMPLES, LINK, RELATIONSHIPS, ROOT, DocumentTest, members, office, rewrite


class Check(DocumentTest):
    def check(self, name, *options):
        return subprocess.run([CORVANTA, "check", "--template", name, *options], cwd=self.folder, capture_output=True, text=True,
                              timeout=60, check=False)

    def test_markers_of_a_template(self):
        self.word(office.paragraph("%a% %a% %R&amp;D%") + f"<w:p>{office.picture('rId2', 4, 4)}</w:p>"
                  "<w:p><w:r><w:t>%di</w:t></w:r><w:r><w:t>vided%</w:t></w:r></w:p>", LINK, footer=office.paragraph("%f%"))
        self.assertEqual(self.check("t.docx").stdout.splitlines(), [
            "t.docx: %a% in body (word/document.xml), 2 times", "t.docx: %R&D% in body (word/document.xml): not found in a run: set "
            "joinRuns='1'",
            "t.docx: %divided% in body (word/document.xml), divided into 2 runs: not found in a run: type it again in one go, or set "
            "joinRuns='1'", "t.docx: %photo% in picture in the body (word/document.xml)",
            "t.docx: %f% in footer 1 (word/footer1.xml): not found in a run: set allParts='1'"])
        rewrite(self.folder / "t.docx", self.folder / "plain.docx",
                lambda name, content: content.replace(LINK.encode(), b"media/%add photo%.png") if name == RELATIONSHIPS else content)
        self.assertIn("plain.docx: %add photo% in picture in the body", self.check("plain.docx").stdout)
        listed = json.loads(self.check("t.docx", "--json").stdout)
        self.assertEqual(listed[0], {"text": "%a%", "location": "body", "part": DOCUMENT, "count": 2, "runs": 1})
        self.assertEqual((listed[2]["runs"], listed[2]["remedy"]), (2, "type it again in one go, or set joinRuns='1'"))

    def test_charts_of_all_parts(self):
        header = "word/header1.xml"
        rewrite(ROOT / "templates/office/bar.docx", self.folder / "t.docx", lambda name, content: content)
        old = members(self.folder / "t.docx")
        self.assertRegex(self.check("t.docx").stdout, r"^t.docx: \[\[KOBData [^]]*]] in body chart \(barChart: cat, val\) \(word/charts/")
        old[header], old["word/_rels/header1.xml.rels"] = b"<w:hdr/>", old.pop(RELATIONSHIPS)
        office.package(self.folder / "t.docx", old)
        self.assertIn("in header 1 chart (", self.check("t.docx").stdout)

    def test_included_templates(self):
        described = subprocess.run([CORVANTA, "describe", "writeReport"], capture_output=True, text=True, timeout=60, check=False).stdout
        names = re.findall(r"^  (>\S+)$", described.partition("Included templates")[2], re.MULTILINE)
        self.assertEqual(names, sorted(">" + path.name for path in (ROOT / "templates/office").glob("*.*x")))
        described = subprocess.run([CORVANTA, "describe", "writeReport", "--json"], capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(json.loads(described.stdout)["includedTemplates"], names)
        for name in names:
            done = self.check(name)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertIn("[[KOBData ", done.stdout)
        done = self.check(">none.docx")
        self.assertEqual(done.returncode, 2)
        self.assertIn("there is no included template '>none.docx' (included: >bar.docx, ", done.stderr)

    def test_graphs_with_tables(self):
        self.word(office.paragraph("%T1%") + "<w:p><w:r><w:t>%T</w:t></w:r><w:r><w:t>2%</w:t></w:r></w:p>")
        self.table([("a",)])
        readers = "".join(f"<action id='r{i}'><readCSV fileName='in.csv'/></action><link from='r{i}:0' to='w:{i}'/>" for i in range(3))

        def check(template, *tables):
            (self.folder / "g.graph").write_text(
                f"<graph>{readers}<action id='w'><writeDocTable template='{template}' output='o.docx'>"
                + "".join(f"<v markerName='{name}' styleID='{style}'/>" for name, style in tables) + "</writeDocTable></action></graph>")
            done = subprocess.run([CORVANTA, "check", "g.graph"], cwd=self.folder, capture_output=True, text=True, timeout=60, check=False)
            return done.returncode, re.findall(r"\(writeDocTable\): (.*)", done.stderr)

        grid = "TableGrid"
        self.assertEqual(check("t.docx", ("T1", grid), ("T2", grid), ("T3", "none")), (0, [
            "the template has no style 'none': the table at '%T3%' has no format",
            "the marker '%T2%' is divided into several runs and stays in the document: type it again in one go, or set joinRuns='1'",
            "the template has no marker '%T3%': the table on input pin 3 is not written"]))
        (self.folder / "o.docx").hardlink_to(self.folder / "t.docx")
        self.assertEqual(check("t.docx", ("T1", grid))[1][-1], f"the document '{self.folder}/o.docx' would replace its own template: choose another "
                         "output name")
        (self.folder / "o.docx").unlink()
        self.assertEqual(check("in.csv", ("T1", grid), ("T2", grid), ("T1", grid))[1][0],
                         "the marker '%T1%' of input pin 3 already exists: all markers must be different")
        self.assertRegex(check("in.csv", ("T1", grid), ("T2", grid), ("T3", grid))[1][0], "^cannot read the template '.*in.csv': .*package")
        office.presentation(self.folder / "t.pptx")
        status, problems = check("t.pptx", ("T1", grid), ("T2", grid), ("T3", grid))
        self.assertEqual((status, problems), (2, [f"'{self.folder}/t.pptx' is not a Word document with styles"]))

    def test_slides_and_what_is_not_a_template(self):
        box = office.text_box(2, "%a%", (1, 1, 9, 9), 9, "000000")
        office.presentation(self.folder / "t.pptx", ("", []), (box, []))
        self.assertEqual(self.check("t.pptx").stdout, "t.pptx: %a% in slide 2 (ppt/slides/slide2.xml)\n")
        self.word(office.paragraph("50 % of 3 %"))
        self.assertEqual(self.check("t.docx").stdout, "t.docx: no markers and no chart tags\n")
        self.assertEqual(json.loads(self.check("t.docx", "--json").stdout), [])
        rewrite(self.folder / "t.docx", self.folder / "wide.docx",
                lambda name, content: content.decode().encode("utf-16") if name == RELATIONSHIPS else content)
        self.assertIn("the part 'word/_rels/document.xml.rels' of the template is not the XML", self.check("wide.docx").stderr)
        done = self.check("gone.docx")
        self.assertEqual(done.returncode, 2)
        self.assertIn("cannot read Report Template file", done.stderr)
        with zipfile.ZipFile(self.folder / "t.odt", "w") as package:
            package.writestr("content.xml", "<a>%a%</a>")
        done = self.check("t.odt")
        self.assertEqual(done.returncode, 2)
        self.assertIn("it is not an Office package", done.stderr)
        with zipfile.ZipFile(self.folder / "t.xlsx", "w") as package:
            package.writestr("xl/charts/chart1.xml", "<c", zipfile.ZIP_BZIP2)
        self.assertEqual(self.check("t.xlsx").returncode, 2)


class Examples(DocumentTest):
    def test_graphs(self):
        for graph, count in (("letters", 3), ("slides", 3), ("report", 1)):
            out = self.folder / "made" / graph
            done = subprocess.run([CORVANTA, "run", EXAMPLES / f"{graph}.graph", "--out-dir", out], capture_output=True, text=True,
                                  timeout=60, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            written = list(out.iterdir())
            self.assertEqual(len(written), count)
            for path in written:
                for name, content in members(path).items():
                    if name.endswith((".xml", ".rels")):
                        xml.etree.ElementTree.fromstring(content)
                        self.assertNotRegex(content.decode(), "%[A-Za-z][A-Za-z0-9]*%")

    def test_templates_are_those_of_the_script(self):
        office.main(self.folder)
        for path in EXAMPLES.iterdir():
            if path.suffix in (".docx", ".pptx"):
                self.assertEqual(members(path), members(self.folder / path.name))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])

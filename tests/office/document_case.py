"""What tests of document templates share. Their first argument is the command corvanta."""
import csv
import json
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples" / "documents"
sys.path.insert(0, str(EXAMPLES))
import make_templates as office  # noqa: E402

CORVANTA = str(pathlib.Path(sys.argv[1]).resolve())
LINK = "file:///%25photo%25"
DOCUMENT, RELATIONSHIPS = "word/document.xml", "word/_rels/document.xml.rels"


def members(path):
    with zipfile.ZipFile(path) as package:
        assert package.testzip() is None
        return {info.filename: package.read(info) for info in package.infolist()}


def rewrite(source, target, change):
    """Copy a package; `change` maps name and content to a new content, or to None to leave the member out."""
    with zipfile.ZipFile(source) as old, zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as new:
        for info in old.infolist():
            content = change(info.filename, old.read(info))
            if content is not None:
                new.writestr(info, content)


class DocumentTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        office.png(self.folder / "wide.png", 40, 10, lambda x, y: (200, 0, 0))
        # The beginning of a JPEG file that is 10 x 30 pixels large.
        (self.folder / "tall.jpg").write_bytes(bytes.fromhex("ffd8ffe000104a46494600010100000100010000ffc0000b08001e000a01011100ffd9"))

    def word(self, body, *pictures, name="t.docx", **more):
        office.document(self.folder / name, body, *pictures, **more)

    def run_graph(self, elements, limit=None):
        """The exit status and the messages by level; `limit`: bytes that a file may have."""
        actions = "".join(f"<action id='a{i}'>{element}</action>" for i, element in enumerate(elements))
        links = "".join(f"<link from='a{i}:0' to='a{len(elements) - 1}:{i}'/>" for i in range(len(elements) - 1))
        (self.folder / "g.graph").write_text(f"<graph version='4.11'>{actions}{links}</graph>", encoding="utf-8")
        done = subprocess.run(
            [CORVANTA, "run", "g.graph", "--log-format", "json"], cwd=self.folder, capture_output=True, text=True, timeout=120,
            check=False, preexec_fn=limit and (lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))))
        log = [json.loads(line) for line in done.stderr.splitlines()]
        self.assertEqual([path.name for path in self.folder.glob("*_tmp_*")], [])
        return done.returncode, {level: [m["message"] for m in log if m["level"] == level] for level in (1, 2, 3)}

    def table(self, rows, name="in.csv"):
        with open(self.folder / name, "w", encoding="utf-8", newline="") as out:
            csv.writer(out).writerows(rows)
        return f"<readCSV fileName='{name}'/>"

    def write_doc(self, rows, attributes="", texts=("text",), images=("photo",), **more):
        """Write a document per row of (output, template, text, photo)."""
        lists = "".join(f"<{kind}>" + "".join(f"<s>{name}</s>" for name in names) + f"</{kind}>"
                        for kind, names in (("text", texts), ("image", images)))
        reader = self.table([("wordFile", "templateFile", "text", "photo"), *rows])
        return self.run_graph([reader, f"<writeDoc {attributes}>{lists}</writeDoc>"], **more)

    def letter(self, text="x", photo="wide.png", attributes="", template="t.docx", **more):
        """The members of the only document."""
        output = "out" + pathlib.Path(template).suffix
        status, log = self.write_doc([(output, template, text, photo)], attributes, **more)
        self.assertEqual((status, log[1]), (0, []))
        self.log = log
        return members(self.folder / output)

    def fails(self, message, done, reason=None, level=1):
        status, log = done
        self.assertEqual(status, 1)
        self.assertIn(message, log[level])
        if reason:
            self.assertRegex("\n".join(log[3]), reason)
        self.assertEqual(list(self.folder.glob("out*")), [])

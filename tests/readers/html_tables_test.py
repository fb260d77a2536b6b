#!/usr/bin/python3
"""Tables of pages as "convert" reads them: html_tables_test.py CORVANTA CORPUS

Every table of every page of the corpus, and of random tag soup, has the cells that lxml finds in it. lxml only makes the tree:
rows, cells that span rows or columns, and names of columns are worked out here.
"""
import csv
import html
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest

try:
    import lxml.etree
except ImportError:
    print("no lxml: install python3-lxml")
    sys.exit(77)

CORVANTA, CORPUS = sys.argv[1], pathlib.Path(sys.argv.pop()).resolve()
sys.argv.pop()
NOT_SHOWN = ("script", "style", "iframe", "noembed", "noframes")


def without_blanks(text):
    return "".join(text.split())


def encoding_of(content):
    """For lxml, which takes a page that declares nothing for Latin-1, and knows that by its name only."""
    if content[:2] in (b"\xff\xfe", b"\xfe\xff"):
        return "utf-16"
    declared = re.search(rb"<meta[^>]*charset=[\s\"']*([\w-]+)", content, re.IGNORECASE)
    name = declared[1].decode() if declared else "utf-8"
    try:
        content.decode(name)
    except UnicodeDecodeError:
        name = "cp1252"
    return "cp1252" if name.lower() == "iso-8859-1" else name


def nearest(element, *names):
    while element is not None and element.tag not in names:
        element = element.getparent()
    return element


def text_of(cell, skips_tables=False):
    """Not that of later rows and cells of the same table: libxml2 does not end an open list, font or block for them."""
    table = nearest(cell, "table")

    def inside(element):
        yield element.text or ""
        for child in element:
            is_part = child.tag in ("tr", "td", "th", "thead", "tbody", "tfoot") and nearest(child, "table") is table
            if isinstance(child.tag, str) and child.tag not in NOT_SHOWN and not is_part and not (child.tag == "table" and skips_tables):
                yield from inside(child)
            yield "" if is_part else child.tail or ""
    return "".join(inside(cell))


def rows_of(table):
    """For each row that has cells: its group of rows and its cells. A cell without a row begins one."""
    rows, implied = [], None
    for element in table.iter("tr", "td", "th"):
        if nearest(element.getparent(), "table") is not table:
            continue
        row = nearest(element.getparent(), "tr", "table")
        group = nearest(element.getparent(), "thead", "tbody", "tfoot", "table")
        if element.tag == "tr":
            rows.append((group, [], element))
            implied = None
        elif row is not table:
            next(cells for _, cells, tr in rows if tr is row).append(element)
        else:
            if implied is None:
                implied = []
                rows.append((group, implied, None))
            implied.append(element)
    return [(group, cells) for group, cells, _ in rows]


def span_of(cell, name, most):
    digits = (cell.get(name) or "").strip().lstrip("+")
    number = "".join(c for c in digits if c.isdigit())
    return min(int(number), most) if number and digits[0].isdigit() else 1


def grid_of(table):
    """Rows of cells by column; None where there is none. Rows without cells of their own are left out."""
    grid, open_cells, last_group = [], {}, None
    for group, cells in rows_of(table):
        open_cells = open_cells if group is last_group else {}
        last_group = group
        row = {column: cell for column, (cell, _) in open_cells.items()}
        open_cells = {column: (cell, left - 1) for column, (cell, left) in open_cells.items() if left > 1}
        column = 0
        for cell in cells:
            while column in row and row[column] not in cells:
                column += 1
            height = span_of(cell, "rowspan", 65534) or 10**9
            for _ in range(max(span_of(cell, "colspan", 1000), 1)):
                row[column] = cell
                open_cells.pop(column, None)
                if height > 1:
                    open_cells[column] = (cell, height - 1)
                column += 1
        if cells:
            grid.append(row)
    width = max((max(row) + 1 for row in grid), default=0)
    return [[row.get(column) for column in range(width)] for row in grid]


def names_of(header, width):
    names = []
    for column in range(width):
        cells = [row[column] for row in header]
        texts = [text_of(cell, skips_tables=True) for i, cell in enumerate(cells) if cell is not None and cell not in cells[:i]]
        names.append("/".join(filter(None, map(without_blanks, texts))) or f"column{column + 1}")
    return names


def same_names(found, expected):
    """Equal names have numbers."""
    return all(a == b or (a.startswith(b[:90]) and (len(b) > 90 or a[len(b):].lstrip("_").isdigit()))
               for a, b in zip(found, expected)) and len(found) == len(expected)


class HtmlTables(unittest.TestCase):
    maxDiff = 3000

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_html_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def convert(self, page, *options):
        """The names and the rows of a table."""
        target = self.folder / "out.csv"
        done = subprocess.run([CORVANTA, "convert", page, target, "--quiet", *options], text=True, capture_output=True, timeout=60,
                              check=False)
        self.assertEqual(done.returncode, 0, f"{page} {options} {done.stderr}")
        with open(target, encoding="utf-8", newline="") as file:
            names, *rows = list(csv.reader(file)) or [[]]
        return names, [row or [""] for row in rows]

    def read(self, content, *options):
        page = self.folder / "page.html"
        page.write_bytes(content)
        return self.convert(page, *options)

    def check_page(self, path, content, encoding=None):
        tree = lxml.etree.fromstring(content, lxml.etree.HTMLParser(encoding=encoding, huge_tree=True))
        checked = 0
        for number, table in enumerate(tree.iter("table") if tree is not None else (), 1):
            grid = grid_of(table)
            if not grid:
                continue
            names, rows = self.convert(path, "--table", str(number))
            cells = [[without_blanks(text_of(cell)) if cell is not None else "" for cell in row] for row in grid]
            header = len(grid) - len(rows)
            self.assertEqual([[without_blanks(cell) for cell in row] for row in rows], cells[header:], f"{path} table {number}")
            wanted = names_of(grid[:header], len(grid[0]))
            found = [without_blanks(name) for name in names]
            self.assertTrue(same_names(found, wanted), f"{path} table {number}: {found} {wanted}")
            checked += 1
        return checked

    def test_pages_have_the_tables_that_lxml_reads(self):
        checked = 0
        for path in sorted(CORPUS.rglob("*.htm*")):
            content = path.read_bytes()
            if path.is_file() and "golden" not in path.parts and b"<table" in content.lower().replace(b"\0", b""):
                with self.subTest(path.name):
                    checked += self.check_page(path, content, encoding_of(content))
        self.assertGreater(checked, 30)

    def test_random_soup_has_the_tables_that_lxml_reads(self):
        checked = 0
        for seed in range(100):
            content = Soup(seed).page()
            path = self.folder / f"{seed}.html"
            path.write_bytes(content)
            with self.subTest(seed=seed, page=content):
                checked += self.check_page(path, content, "utf-8")
        self.assertGreater(checked, 100)

    def test_header_rows_are_joined(self):
        two = b"<tr><th rowspan=2>city<th colspan=2>people<tr><th>2019<th>2020"
        for page, names, rows in [
                (two + b"<tr><td>Bonn<td>1<td>2", ["city", "people / 2019", "people / 2020"], [["Bonn", "1", "2"]]),
                (b"<thead>" + two + b"<tbody><tr><td rowspan=2>Bonn<td>1<td>2<tr><td>3<td>4",
                 ["city", "people / 2019", "people / 2020"], [["Bonn", "1", "2"], ["Bonn", "3", "4"]]),
                (b"<thead><tr><th><th>a<th>b<tr><th>k<th><th><tbody><tr><th>x<td>1<td>2<tfoot><tr><td>sum<td colspan=2>3",
                 ["k", "a", "b"], [["x", "1", "2"], ["sum", "3", "3"]]),
                (b"<tr><th>a<th>b<tr><th>c<th>d", ["a", "b"], [["c", "d"]]),
                (b"<tr><th>k<td>1<tr><th>l<td>2", ["column 1", "column 2"], [["k", "1"], ["l", "2"]]),
                (b"<tr><td>a<td>b<tr><td colspan=2>1", ["a", "b"], [["1", "1"]]),
                (b"<tr><th colspan=3>a<tr><td>1<td>2<td>3", ["a", "a_2", "a_3"], [["1", "2", "3"]]),
                # A span ends with its group of rows; one without a number goes to the end of the group.
                (b"<thead><tr><th>a<th>b</thead><tbody><tr><td rowspan=9>1<td>2</tbody><tbody><tr><td rowspan=0>3<td>4<tr><td>5",
                 ["a", "b"], [["1", "2"], ["3", "4"], ["3", "5"]]),
        ]:
            self.assertEqual(self.read(b"<table>" + page + b"</table>"), (names, rows), page)

    def test_large_spans_stay_small(self):
        names, rows = self.read(b"<table><tr>" + b"<td colspan=99999 rowspan=99999>x" * 40 + b"<tr><td>y</table>")
        self.assertEqual(len(names), 16384 + 23 + 1)
        self.assertEqual((rows[0][0], rows[0][-1], rows[1][0], rows[1][-1]), ("x", "", "x", "y"))

    def test_charsets_of_pages_are_used(self):
        for charset, codec in [("iso-8859-1", "cp1252"), ("Shift_JIS", "cp932"), ("utf-8", "utf-8"), ("koi8-r", "koi8-r")]:
            text = {"cp1252": "\u20ac\u00fc", "cp932": "\u65e5\u672c", "koi8-r": "\u0436"}.get(codec, "\u00e9\u4e2d")
            head = f"<title>x</title><META HTTP-EQUIV=content-type content='text/html; charset={charset}'>"
            self.assertEqual(self.read((head + f"<table><tr><td>{text}").encode(codec)), (["column 1"], [[text]]))
        done = subprocess.run([CORVANTA, "convert", self.folder / "page.html", self.folder / "out.csv"], text=True, check=False,
                              capture_output=True)
        self.assertEqual(done.returncode, 0)

    def test_unknown_charset_is_reported(self):
        page = self.folder / "page.html"
        page.write_bytes(b"<meta charset=no-such><table><tr><td>\xc3\xa9")
        done = subprocess.run([CORVANTA, "convert", page, self.folder / "out.csv"], text=True, capture_output=True, check=False)
        self.assertIn(f"Warning: page '{page}' declares the encoding 'no-such', which is unknown: it is read as UTF-8, and so are "
                      "other files of this kind", done.stderr)

    def test_cut_page_is_reported(self):
        page = self.folder / "page.html"
        page.write_bytes(b"<table><tr><td>a</table>\n <!-- <table>")
        done = subprocess.run([CORVANTA, "convert", page, self.folder / "out.csv"], text=True, capture_output=True, check=False)
        self.assertIn(f"Warning: page '{page}' ends in a comment, a script or a tag that begins at line 2, column 1: what follows is "
                      "not read", done.stderr)

    def test_soup_can_be_switched_off(self):
        page = self.folder / "page.html"
        page.write_bytes(b"<table><tr><td>a<td>b</table>")
        soup = self.convert(page)
        self.assertEqual(soup[1], [["a", "b"]])
        self.assertNotEqual(self.convert(page, "--reader", "tagSoup=0")[1], soup[1])


class Soup:
    """A random page: tables with spans, inner tables, and most ways to leave out or misplace a tag."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def page(self):
        tables = "".join(self.noise() + self.table(0) for _ in range(self.random.randint(1, 2)))
        head = self.pick("", "<!DOCTYPE html>", "<HTML><head><title>t &lt; <b></title></HEAD><BODY>", "<html><style>td > b {}</STYLE><body>")
        tables = tables[:-len("</table>")] if self.random.random() < 0.2 else tables
        return (head + tables + self.pick("", "</body></html>", "<!-- end")).encode()

    def pick(self, *choices):
        return self.random.choice(choices)

    def tag(self, name):
        return self.pick(name, name, name.upper())

    def end(self, name):
        """An end tag that browsers add when it is missing."""
        return self.pick("", f"</{self.tag(name)}>", f"</{name} >")

    def noise(self):
        return self.pick("", "\n", "<!-- <td> -->", "<!---->", "<p>text", "<script>if (a<b) '<td>'</script>", "<br/>")

    def text(self):
        word = lambda: self.pick("a", "b c", "7", "x &amp; y", "&eacute;&copy;", "&#8364;", "1 < 2", "&xyz;", "\u00fc", "")
        wrap = lambda text: self.pick(text, text, f"<b>{text}</b>", f"<a href=x>{text}</a>", f"<p>{text}", f"<div>{text}</div>",
                                      f"<ul><li>{text}<li>z</ul>", f"<font color=red>{text}", f"{text}<br>q", f"<!-- < -->{text}")
        return "".join(wrap(html.escape(word()) if self.random.random() < 0.1 else word()) for _ in range(self.random.randint(0, 2)))

    def cell(self, depth, name):
        spans = self.pick("", "", "", " colspan=2", " ROWSPAN='2'", ' rowspan="3" colspan=2', " rowspan=0", " colspan=x nowrap")
        content = self.table(depth + 1) if depth < 2 and self.random.random() < 0.06 else self.text()
        return f"<{self.tag(name)}{spans}>{content}{self.end(name)}" + self.pick("", "", "\n", "<!-- - -->")

    def row(self, depth, name):
        cells = "".join(self.cell(depth, self.pick(name, name, name, "th")) for _ in range(self.random.randint(1, 4)))
        return f"<{self.tag('tr')}{self.pick('', ' align=left')}>{self.pick('', ' ')}{cells}{self.end('tr')}"

    def section(self, depth, name, most):
        cell = "th" if name == "thead" else "td"
        rows = "".join(self.row(depth, cell) for _ in range(self.random.randint(1, most)))
        return f"<{self.tag(name)}>{rows}{self.end(name)}"

    def table(self, depth):
        begin = f"<{self.tag('table')}{self.pick('', ' border=1', ' class=a id=b')}>"
        columns = self.pick("", "", "<caption>c</caption>", "<colgroup><col><col></colgroup>")
        head = self.pick("", "", self.section(depth, "thead", 2))
        body = self.section(depth, "tbody", 3) + self.pick("", self.section(depth, "tbody", 2))
        body = self.pick(body, "".join(self.row(depth, "td") for _ in range(self.random.randint(1, 4))))
        foot = self.pick("", "", self.section(depth, "tfoot", 1))
        # With text after a table that is not ended, libxml2 puts it into the last cell, a browser before the table.
        return begin + columns + head + body + foot + f"</{self.tag('table')}>"


if __name__ == "__main__":
    if not CORPUS.exists():
        print("no corpus: set CORVANTA_CORPUS")
        sys.exit(77)
    unittest.main()

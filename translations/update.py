#!/usr/bin/env python3
"""Updates the catalogues with the texts of the sources and the parameter tables: update.py PANEL_STRINGS [LUPDATE]

New texts get an unfinished entry, and entries without a text are removed. tests/panels/catalogue_test.py uses it too.
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
FOLDERS = ["panels", "actions", "host", "codecs/expression", "studio"]


def lupdate_program():
    found = shutil.which("lupdate", path="/usr/lib/qt6/bin:/usr/bin:/usr/local/bin")
    if found is None:
        sys.exit("lupdate is not installed (qt6-l10n-tools)")
    return found


def example_strings():
    """What the examples show: the first comment of each graph, as the start page has it."""
    for path in sorted((ROOT / "examples").rglob("*.graph")):
        if comment := re.search(r"<!--(.*?)-->", path.read_text(encoding="utf-8"), re.DOTALL):
            yield 'QT_TRANSLATE_NOOP("Examples", %s)\n' % json.dumps(" ".join(comment[1].split()), ensure_ascii=False)


def button_strings():
    """The buttons of questions, whose French texts Qt has only with a package of its own."""
    for text in ["OK", "Save", "Discard", "&Yes", "&No", "Cancel", "Close"]:
        yield 'QT_TRANSLATE_NOOP("QPlatformTheme", "%s")\n' % text


def update(panel_strings, catalogue):
    """Let `catalogue` have exactly the texts of the project."""
    with tempfile.TemporaryDirectory() as folder:
        tables = pathlib.Path(folder) / "tables.cpp"
        tables.write_bytes(subprocess.run([panel_strings], check=True, capture_output=True).stdout)
        with tables.open("a", encoding="utf-8") as file:
            file.writelines(example_strings())
            file.writelines(button_strings())
        sources = [str(ROOT / name) for name in FOLDERS]
        subprocess.run([lupdate_program(), "-silent", "-locations", "none", "-no-obsolete", "-no-ui-lines", "-I", str(ROOT),
                        "-I", str(ROOT / "host/include"), "-extensions", "cpp,h", *sources, str(tables), "-ts", str(catalogue)],
                       check=True)


if __name__ == "__main__":
    for path in sorted((ROOT / "translations").glob("*.ts")):
        update(sys.argv[1], path)

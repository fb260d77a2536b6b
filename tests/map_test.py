#!/usr/bin/env python3
"""Compares docs/map.md with the actions: one row each, in catalogue order, with names that exist. Finds names of parameters outside
their tables.

Usage: map_test.py CORVANTA SOURCE_FOLDER
"""
import json
import pathlib
import re
import subprocess
import sys
import unittest

CORVANTA, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])


def corvanta(*words):
    return subprocess.run([CORVANTA, *words], check=True, capture_output=True).stdout


def rows():
    """The cells of each row: a list of the names in backticks per cell."""
    lines = (SOURCE / "docs/map.md").read_text(encoding="utf-8").splitlines()
    cells = [line.strip("|").split("|") for line in lines if line.startswith("| `")]
    return [[re.findall(r"`([^`]+)`", cell) for cell in row] for row in cells]


class Map(unittest.TestCase):
    def test_one_row_per_action(self):
        types = [action["type"] for action in json.loads(corvanta("actions", "--json"))]
        self.assertEqual([row[0][0] for row in rows()], types)

    def test_every_folder_of_an_action_has_its_row(self):
        entries = {}
        for entry in (SOURCE / "actions").glob("*/*_entry.cpp"):
            types = re.findall(r'\.typeName = "(\w+)"', entry.read_text(encoding="utf-8"))
            entries[str(entry.parent.relative_to(SOURCE))] = types
        found = {row[1][0]: row[0] for row in rows() if row[1][0].startswith("actions/")}
        self.assertEqual(found, entries)

    def test_every_name_exists(self):
        text = (SOURCE / "docs/map.md").read_text(encoding="utf-8")
        paths = [name for name in re.findall(r"`([^`]+)`", text) if "/" in name]
        self.assertEqual([path for path in paths if not (SOURCE / path).exists()], [])
        targets = {target for row in rows() for target in row[5]}
        self.assertEqual(targets - {path.name.removesuffix("_fuzz.cpp") for path in (SOURCE / "fuzz").rglob("*_fuzz.cpp")}, set())

    def test_every_codec_and_fuzz_target_is_listed(self):
        text = (SOURCE / "docs/map.md").read_text(encoding="utf-8")
        names = [f"codecs/{folder.parent.name}" for folder in (SOURCE / "codecs").glob("*/CMakeLists.txt")]
        names += [target.name.removesuffix("_fuzz.cpp") for target in (SOURCE / "fuzz").rglob("*_fuzz.cpp")]
        self.assertEqual([name for name in sorted(names) if f"`{name}`" not in text], [])

    def test_paths_in_the_documentation_exist(self):
        pages = [SOURCE / "README.md", SOURCE / "CONTRIBUTING.md", *sorted((SOURCE / "docs").rglob("*.md"))]
        folders = "base|codecs|host|io|panels|actions|plugin|cli|studio|tests|bench|fuzz|docs|examples|cmake|packaging|templates"
        missing = []
        for page in pages:
            for path in re.findall(rf"`((?:{folders})/[\w./*{{}},-]+)`", page.read_text(encoding="utf-8")):
                path = re.sub(r"\{.*?\}|\.\*$", "*", path)
                found = list(SOURCE.glob(path)) or list(SOURCE.glob(path + ".*"))
                missing += [] if found else [f"{page.name}: {path}"]
        self.assertEqual(missing, [])


# Where a name of a parameter may be written: its table, the entry with settings for "convert", the layout of its panel, and the
# editors of single structures, which are parts of panels.
DECLARING = re.compile(r"/params/|_(?:params|entry|panel|layout|test)\.|/panel_groups\.|^panels/(?:structures|fill)/")
LAYERS = ["base", "codecs", "host", "io", "panels", "actions", "plugin", "cli", "studio"]
# Texts that equal a name and mean something else, and the parameters that commands set: they make actions from their options.
OTHER_TEXTS = {("actions/read_json/read_json.cpp", "tagName"),  # a column of the input pin
               ("codecs/xlsx/sheet_tail.cpp", "autoFilter"),  # an element of a sheet
               ("cli/convert/pipeline.cpp", "firstRow"), ("cli/convert/pipeline.cpp", "lastRow"),
               ("cli/convert/pipeline.cpp", "lastColumn"), ("cli/convert/tables_command.cpp", "warnUnread"),
               ("cli/input_graph.cpp", "outputFilenames"), ("cli/merge/merge_action.cpp", "byName"),
               ("cli/merge/workbook_merge.cpp", "alwaysWrite")}


class Names(unittest.TestCase):
    def names_of(self, infos):
        for info in infos:
            yield info["name"]
            yield from self.names_of(info.get("members", []))

    def test_names_of_parameters_are_written_in_their_tables_only(self):
        """Names of one lower-case word are also words of texts and formats, and are not checked."""
        described = [json.loads(corvanta("describe", action["type"], "--json"))["parameters"]
                     for action in json.loads(corvanta("actions", "--json"))]
        names = {name for infos in described for name in self.names_of(infos) if re.search(r".[A-Z]", name)}
        self.assertGreater(len(names), 100)
        found = set()
        for path in [path for folder in LAYERS for path in (SOURCE / folder).rglob("*")]:
            name = str(path.relative_to(SOURCE))
            if path.suffix in (".h", ".cpp") and not DECLARING.search(name):
                texts = re.findall(r'"(\w+)(?:=(?!\')[^"]*)?"', path.read_text(encoding="utf-8"))
                found |= {(name, text) for text in texts if text in names}
        self.assertEqual(found, OTHER_TEXTS)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

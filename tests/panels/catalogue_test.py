#!/usr/bin/env python3
"""Compares the catalogues with the texts of the panels: catalogue_test.py PANEL_STRINGS SOURCE_FOLDER

Each text of the sources and tables has a finished translation with the same placeholders; `./dev strings` adds new texts.
"""
import pathlib
import re
import shutil
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

PANEL_STRINGS, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])
sys.path.insert(0, str(SOURCE / "translations"))
import update  # noqa: E402

PLACEHOLDER = re.compile(r"%L?\d|%n|\$\{\w*\}|&amp;&amp;|https?://\S+")


def messages(path):
    """(context, source) of each entry, with its translation."""
    found = {}
    for context in ElementTree.parse(path).getroot().iter("context"):
        for message in context.iter("message"):
            found[context.findtext("name"), message.findtext("source")] = message.find("translation")
    return found


class Catalogues(unittest.TestCase):
    def test_every_text_is_translated(self):
        catalogues = sorted((SOURCE / "translations").glob("*.ts"))
        self.assertTrue(catalogues)
        for path in catalogues:
            with tempfile.TemporaryDirectory() as folder:
                current = pathlib.Path(shutil.copy(path, folder))
                update.update(PANEL_STRINGS, current)
                wanted, present = messages(current), messages(path)
            self.assertGreater(len(wanted), 500)
            self.assertEqual(sorted(present.keys() ^ wanted.keys()), [], f"{path.name}: run ./dev strings")
            for (context, source), translation in present.items():
                with self.subTest(catalogue=path.name, context=context, source=source):
                    self.assertIsNone(translation.get("type"), "unfinished")
                    # A text with a number has a form for each kind of number.
                    for text in [form.text for form in translation.findall("numerusform")] or [translation.text]:
                        self.assertTrue(text and text.strip())
                        self.assertEqual(sorted(PLACEHOLDER.findall(source)), sorted(PLACEHOLDER.findall(text)))
                        self.assertEqual(source.endswith(":"), text.endswith(":"))
                        self.assertEqual(source.startswith(" "), text.startswith(" "))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

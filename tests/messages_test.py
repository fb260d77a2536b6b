#!/usr/bin/python3
"""Each message occurs in a test: messages_test.py [PROJECT]

A message is a text of a source of base, codecs, host, io, actions or cli that begins with "Error" or "Warning" (in any case of
letters), ends with a line feed, or is an argument of a call that logs or gives a reason; in base, codecs and io also any other sentence, because they only return
reasons. It is found in the tests by its longest part between placeholders. Labels, help texts and markup are not messages, and sources for another system are not checked.
"""
import pathlib
import re
import sys
import unittest

ROOT = pathlib.Path(sys.argv.pop(1) if len(sys.argv) > 1 else __file__ + "/../..").resolve()
PLACEHOLDER = re.compile(r"%L?\d|%[sd]|\\.")
# Messages by how they begin: why no test provokes them.
NOT_PROVOKED = {
    "the archive cannot be opened again": "a RAR archive that vanishes between two reads of it",
    "ERROR: cannot read the DBF file": "an input that fails without its own message; each kind of input has one",
    "ERROR: the image file '%1' is too large": "a file of more than 1 GiB",
    "ERROR: cannot read the temporary file of the table": "a file that only this process can open",
    "ERROR: cannot read the memo file": "as for the DBF file",
    "no module has the action '%1'": "a program without one of its own modules",
    "a read failed": "a call of the system that fails: file_call_test.py makes each one fail, and does not compare reasons",
    "the system reports a read error": "the same",
    "the metadata cannot be read": "the same",
    "the file cannot be read": "the same",
    "the file cannot be written": "the same",
    "the temporary file of its rows cannot be read": "the same",
    "not enough memory for the metadata": "an allocation that fails: allocation_test.py makes each one fail, and does not compare reasons",
    "there is not enough memory to unpack it": "the same",
    "a page could not be compressed": "the same, in a library",
    "a record is too long": "a record of 1 GiB",
    "the metadata of all parts exceeds": "metadata of 4 GiB",
    "its rows are not in order and too many to be sorted": "rows of many MiB",
    "the cells are not stored row by row": "the same",
    "the texts need more than": "texts of many MiB",
    "an element has more than": "an element of 16 MiB, which takes 5 seconds",
    "the sheet has too many rows": "4 billion rows",
    "'%1' has too many elements": "4 million elements, or 1 million levels",
    "its content is larger than": "a packed file of 1 GiB",
    "is damaged: its size is not possible": "a size of 2^63, which the library does not pass on",
    "is shorter than its header says": "a library that stops early without an error",
    "cannot be unpacked": "a library that reads another header than we do",
    "an Office package or another zip file": "a workbook of the other kind, for which there is a better text",
    "a legacy workbook (.xls) or another binary Office file": "the same",
}
sys.path.insert(0, str(ROOT / "docs/generate"))
from message_texts import JOINT, LAYERS, all_messages, all_reasons, describe, descriptions, messages_of, reasons_of  # noqa: E402 pylint: disable=wrong-import-position


def test_texts():
    files = [path for path in (ROOT / "tests").rglob("*") if path.is_file() and path != pathlib.Path(__file__).resolve()]
    files += [path for layer in [*LAYERS, "codecs"] for path in (ROOT / layer).rglob("*_test.cpp")]
    return "\n".join(JOINT.sub("", path.read_text(encoding="utf-8", errors="replace")) for path in files)


def longest_part(text):
    return max(PLACEHOLDER.split(text), key=len).strip()


class Messages(unittest.TestCase):
    def test_each_message_occurs_in_a_test(self):
        known = test_texts()
        found = list(dict.fromkeys(all_messages(ROOT, (*LAYERS, "codecs")) + all_reasons(ROOT)))
        self.assertGreater(len(found), 700)
        missing = [(path, text) for path, text in found if longest_part(text) not in known]
        others = [f"{path}: {text}" for path, text in missing if not text.startswith(tuple(NOT_PROVOKED))]
        self.assertFalse(others, f"\n{len(others)} of {len(found)} messages occur in no test:\n" + "\n".join(others))
        # The list does not hold a message that a test provokes, or that was removed.
        listed = {begin for begin in NOT_PROVOKED for _, text in missing if text.startswith(begin)}
        self.assertEqual(listed, set(NOT_PROVOKED))

    def test_each_message_is_described(self):
        described = descriptions(ROOT)
        missing, used = [], set()
        for source, text in all_messages(ROOT):
            row = describe(text, described.get(source, []))
            used.add((source, row))
            missing += [] if row else [f"{source}: {text}"]
        self.assertFalse(missing, f"\n{len(missing)} messages have no cause and cure in docs/reference/messages.txt:\n" + "\n".join(missing))
        unused = [f"{source}: {row[0]}" for source, rows in described.items() for row in rows if (source, row) not in used]
        self.assertFalse(unused, "\nno message contains these parts in docs/reference/messages.txt:\n" + "\n".join(unused))

    def test_messages_are_distinguished_from_other_texts(self):
        code = """
            // fail(u"not in a comment"_s)
            return cond ? fail(u"Cannot do (this) to '%1'"_s.arg(name), why("because of that")) : u"a label only"_s;
            text = u"WARNING writing to "
                   u"the file"_s; help = u"Line feeds become \\\\n"_s; end = "no severity here\\n";
            markup = "<?xml version='1.0'?><a b/>\\n"; page = "one two\\nthree\\nfour\\n";
        """
        self.assertEqual(list(messages_of(code)),
                         ["Cannot do (this) to '%1'", "because of that", "WARNING writing to the file", "no severity here\\n"])

    def test_reasons_are_distinguished_from_data(self):
        code = """
            static_assert(kBits == 8, "this text is not shown"); int a = 0; // as in "this is a comment"
            return Fault{Error::Bad, u"'%1' is not a good name"_s}; names = " utf-8 utf8 unicode "; path = "xl/workbook.xml";
            markup = "<a><b c='it is not text'/>"; header = "this one has\\n a line feed"; kind = "two words";
        """
        self.assertEqual(list(reasons_of(code)), ["'%1' is not a good name"])


if __name__ == "__main__":
    unittest.main()

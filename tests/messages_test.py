#!/usr/bin/python3
"""Each message occurs in a test: messages_test.py [PROJECT]

A message is a text of a source of base, host, io, actions or cli that begins with "Error" or "Warning" (in any case of letters), ends
with a line feed, or is an argument of a call that logs. It is found in the tests by its longest part between placeholders. Labels, help
texts and markup are not messages, and sources for another system are not checked.
"""
import pathlib
import re
import sys
import unittest

ROOT = pathlib.Path(sys.argv.pop(1) if len(sys.argv) > 1 else __file__ + "/../..").resolve()
LAYERS = ["base", "host", "io", "actions", "cli"]
# Messages by how they begin: why no test provokes them.
NOT_PROVOKED = {
    "the archive cannot be opened again": "a RAR archive that vanishes between two reads of it",
    "ERROR: cannot read the DBF file": "an input that fails without its own message; each kind of input has one",
    "ERROR: the image file '%1' is too large": "a file of more than 1 GiB",
    "ERROR: cannot read the temporary file of the table": "a file that only this process can open",
    "ERROR: cannot read the memo file": "as for the DBF file",
    "no module has the action '%1'": "a program without one of its own modules",
}
HELP = {"cli/main.cpp", "cli/describe_command.cpp", "cli/help/help_command.cpp"}  # most lines are printed, not logged
COMMENT = re.compile(r"^\s*//[^\n]*", re.MULTILINE)
JOINT = re.compile(r'(?<!\\)"(?:_s|_L1)?\s*\n\s*[fu]?"')  # between two lines of one text
TEXT = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
WORDS = re.compile(r"[A-Za-z]{2,}\W+[A-Za-z]{2,}")
SEVERITY = re.compile(r"(?:\\n)?(?:error|warning)\b", re.IGNORECASE)
LINE_FEED = re.compile(r"(?<!\\)\\n$")
LOGS = re.compile(r"\b(?:fail|warn|failOnInput|badUsage|addLog|logReason|logException)\(")
PLACEHOLDER = re.compile(r"%L?\d|%[sd]|\\.")


def is_test(path):
    return path.stem.endswith("_test") or "tests" in path.parts


def is_checked(path):
    return not is_test(path) and not path.stem.endswith("_windows")


def sources():
    for layer in LAYERS:
        for pattern in ("*.cpp", "*.h"):
            yield from (path for path in sorted((ROOT / layer).rglob(pattern)) if is_checked(path.relative_to(ROOT)))


def logged(code):
    """The ranges of the arguments of calls that log. Parentheses in texts do not count."""
    bare = TEXT.sub(lambda text: " " * len(text.group()), code)
    for call in LOGS.finditer(bare):
        end, depth = call.end(), 1
        while depth > 0 and end < len(bare):
            depth += {"(": 1, ")": -1}.get(bare[end], 0)
            end += 1
        yield range(call.end(), end)


def messages_of(code, is_help=False):
    code = JOINT.sub("", COMMENT.sub("", code))
    calls = list(logged(code))
    for found in TEXT.finditer(code):
        text = found.group(1)
        if WORDS.search(text) and text[0] != "<" and text.count("\\n") < 3 and (
                SEVERITY.match(text) or (LINE_FEED.search(text) and not is_help) or any(found.start() in call for call in calls)):
            yield text


def test_texts():
    files = [path for path in (ROOT / "tests").rglob("*") if path.is_file() and path != pathlib.Path(__file__).resolve()]
    files += [path for layer in [*LAYERS, "codecs"] for path in (ROOT / layer).rglob("*_test.cpp")]
    return "\n".join(JOINT.sub("", path.read_text(encoding="utf-8", errors="replace")) for path in files)


def longest_part(text):
    return max(PLACEHOLDER.split(text), key=len).strip()


class Messages(unittest.TestCase):
    def test_each_message_occurs_in_a_test(self):
        known = test_texts()
        found = [(path.relative_to(ROOT), text) for path in sources()
                 for text in messages_of(path.read_text(encoding="utf-8"), str(path.relative_to(ROOT)) in HELP)]
        self.assertGreater(len(found), 150)
        missing = [(path, text) for path, text in found if longest_part(text) not in known]
        others = [f"{path}: {text}" for path, text in missing if not text.startswith(tuple(NOT_PROVOKED))]
        self.assertFalse(others, f"\n{len(others)} of {len(found)} messages occur in no test:\n" + "\n".join(others))
        # The list does not hold a message that a test provokes, or that was removed.
        listed = {begin for begin in NOT_PROVOKED for _, text in missing if text.startswith(begin)}
        self.assertEqual(listed, set(NOT_PROVOKED))

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


if __name__ == "__main__":
    unittest.main()

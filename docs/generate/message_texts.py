"""The texts of messages in the sources, and what docs/reference/messages.txt says about them.

messages.txt has a section per source ("## PATH"). A line "PART | cause | cure" describes the message of that source that contains PART;
"TEXT | -" says that a text (without blanks around it) is only a part of a message.
"""
import functools
import pathlib
import re

LAYERS = ["base", "host", "io", "actions", "cli"]
HELP = {"cli/main.cpp", "cli/describe_command.cpp", "cli/help/help_command.cpp"}  # most lines are printed, not logged
COMMENT = re.compile(r"^\s*//[^\n]*", re.MULTILINE)
JOINT = re.compile(r'(?<!\\)"(?:_s|_L1)?\s*\n\s*[fu]?"')  # between two lines of one text
TEXT = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
WORDS = re.compile(r"[A-Za-z]{2,}\W+[A-Za-z]{2,}")
SEVERITY = re.compile(r"(?:\\n)?(?:error|warning)\b", re.IGNORECASE)
LINE_FEED = re.compile(r"(?<!\\)\\n$")
LOGS = re.compile(r"\b(?:fail|warn|failOnInput|badUsage|addLog|logReason|logException)\(")
STATIC = re.compile(r"static_assert\([^;]*;| //(?:/<)? [^\n]*")  # what no program says
REASON = re.compile(r"[^<\\]*\b[a-z]+ [a-z]+\b[^<\\]*")
INCLUDE = re.compile(r'#include "([^"]+)"')


def is_test(path):
    return path.stem.endswith("_test") or "tests" in path.parts


def sources(root, layers):
    """The sources of the layers that may have messages, relative to the folder of the project."""
    for layer in layers:
        for pattern in ("*.cpp", "*.h"):
            for path in sorted((root / layer).rglob(pattern)):
                name = path.relative_to(root)
                if not is_test(name) and not name.stem.endswith("_windows"):
                    yield name


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
    """A message begins with "Error" or "Warning" (in any case of letters), ends with a line feed, or is an argument of a call that
    logs. Labels, help texts and markup are not messages."""
    code = JOINT.sub("", COMMENT.sub("", code))
    calls = list(logged(code))
    for found in TEXT.finditer(code):
        text = found.group(1)
        if WORDS.search(text) and text[0] != "<" and text.count("\\n") < 3 and (
                SEVERITY.match(text) or (LINE_FEED.search(text) and not is_help) or any(found.start() in call for call in calls)):
            yield text


def reasons_of(code):
    """What the lower layers say is wrong, for the line after a message: texts of at least three words. Lists of words, with blanks
    at their ends, and texts with escapes are data."""
    for text in TEXT.findall(STATIC.sub("", JOINT.sub("", COMMENT.sub("", code)))):
        if len(text.split()) >= 3 and text == text.strip() and REASON.fullmatch(text):
            yield text


@functools.cache
def all_messages(root, layers=tuple(LAYERS)):
    """(source, text) of each message, in the order of the sources; equal texts of one source once."""
    found = []
    for name in sources(root, layers):
        code = (root / name).read_text(encoding="utf-8")
        found += [(str(name), text) for text in messages_of(code, str(name) in HELP)]
    return list(dict.fromkeys(found))


def all_reasons(root):
    """(source, text) of each reason of the lower layers."""
    return [(str(name), text) for name in sources(root, ["base", "codecs", "io"])
            for text in dict.fromkeys(reasons_of((root / name).read_text(encoding="utf-8")))]


@functools.cache
def descriptions(root):
    """By source: a list of (part, cause, cure); the cause of a part of a message is None."""
    result, source = {}, None
    for line in (root / "docs/reference/messages.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("## "):
            source = result.setdefault(line[3:], [])
        elif source is not None and " | " in line:
            part, cause, *cure = line.split(" | ")
            source.append((part, *((cause, cure[0]) if cure else (None, None))))
    return result


def describe(text, rows):
    """The row about a message: of several the longest part counts. None when there is none."""
    found = (row for row in rows if (row[0] in text if row[1] else row[0] == text.strip()))
    return max(found, key=lambda row: len(row[0]), default=None)


def shown(text):
    """As a user sees it, with names for the placeholders."""
    return re.sub(r"%L?(\d)", "…", text.replace("\\n", " ").replace('\\"', '"').replace("\\\\", "\\")).strip()


def sources_of_action(root, folder):
    """The sources that the action in `folder` includes, directly or not."""
    seen = set()
    todo = [path for path in sorted((root / folder).iterdir()) if path.suffix in (".h", ".cpp") and "_test" not in path.name]
    while todo:
        path = todo.pop()
        if path in seen:
            continue
        seen.add(path)
        for name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            header = next((header for header in (root / name, root / "host/include" / name) if header.exists()), None)
            if header is not None and "panel" not in name:
                todo.append(header)
                # Host sources and the base of another family would bring the messages of every action.
                if header.with_suffix(".cpp").exists():
                    todo.append(header.with_suffix(".cpp"))
    return {str(path.relative_to(root)) for path in seen}

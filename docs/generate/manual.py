"""Manual pages (troff, macros "man") from the Markdown of the reference.

Only what our pages use is converted: headings, paragraphs, lists, definition lists, tables, blocks of code, and code, strong and
emphasised words.
"""
import re

INLINE = re.compile(r"(?<!\\)`([^`]+)`|\*\*([^*]+)\*\*|\[([^\]]+)\]\([^)]*\)|!\[[^\]]*\]\([^)]*\)")


ESCAPES = {"\\": "\\e", "-": "\\-", "'": "\\(aq", "`": "\\(ga", "^": "\\(ha", "~": "\\(ti"}


def escaped(text):
    """In ASCII, so that the pages do not depend on the locale."""
    return "".join(ESCAPES.get(letter, letter if letter.isascii() else f"\\[u{ord(letter):04X}]") for letter in text)


def line(text):
    """A line of text, which must not begin like a request."""
    return "\\&" + text if text.startswith((".", "'")) else text


def plain(text):
    """Text between code and links, without the escapes of Markdown."""
    return escaped(re.sub(r"\\([*_`\[\]|\\])", r"\1", text).replace("&lt;", "<").replace("&amp;", "&"))


def inline(text):
    """Code and strong words are bold; of a link the text remains, of a picture nothing."""
    result, last = "", 0
    for found in INLINE.finditer(text):
        bold, link = found.group(1) or found.group(2), found.group(3)
        result += plain(text[last:found.start()])
        result += f"\\fB{escaped(bold)}\\fR" if bold else plain((link or "").replace("`", ""))
        last = found.end()
    return line(result + plain(text[last:]))


def blocks(markdown):
    """(kind, lines) of the blocks between empty lines; a fenced block is one."""
    current, kind = [], ""
    for text in markdown.splitlines():
        if text.startswith("```"):
            if kind == "code":
                yield kind, current
                current, kind = [], ""
            else:
                if current:
                    yield "text", current
                current, kind = [], "code"
        elif kind == "code":
            current.append(text)
        elif text:
            current.append(text)
        elif current:
            yield "text", current
            current = []
    if current:
        yield "text", current


def table(lines):
    """A list: the first cell in bold, then the others with their headings."""
    rows = [[part.strip() for part in re.split(r"(?<!\\)\|", row.strip("|"))] for row in lines]
    for row in rows[2:]:
        yield ".TP"
        yield inline(row[0] if INLINE.search(row[0]) or not row[0] else f"**{row[0]}**")
        pairs = [(name, text) for name, text in zip(rows[0][1:], row[1:]) if text]
        yield inline(pairs[0][1] if len(rows[0]) == 2 else "; ".join(f"{name}: {text}" for name, text in pairs)) if pairs else "\\&"


def items(lines):
    """The items of a list, each with its continued lines."""
    result = []
    for text in lines:
        if text.startswith("- ") or not result:
            result.append(text.removeprefix("- "))
        else:
            result[-1] += " " + text.strip()
    return result


def text_block(lines):
    if lines[0].startswith("|"):
        yield from table(lines)
    elif lines[0].startswith("- "):
        for item in items(lines):
            yield from (".IP \\(bu 2", inline(item))
    elif len(lines) > 1 and lines[1].startswith(":   "):
        yield from (".TP", inline(lines[0]), inline(" ".join(part.removeprefix(":").strip() for part in lines[1:])))
    elif not lines[0].startswith("!["):
        yield from (".PP", inline(" ".join(lines)))


def heading(text):
    level = len(text) - len(text.lstrip("#"))
    title = re.sub(r"\s*\{#.*\}$", "", text.lstrip("# "))
    return f".SH {inline(title.upper())}" if level == 2 else f".SS {inline(title)}"


def page(name, section, version, markdown):
    """The title and the first paragraph of `markdown` are the lines of NAME."""
    parts = list(blocks(markdown))
    summary = " ".join(parts[1][1]).rstrip(".")
    lines = [f".TH {name.upper()} {section} \"\" \"Corvanta {version}\" \"Corvanta manual\"", ".SH NAME",
             f"{escaped(name)} \\- {inline(summary[:1].lower() + summary[1:])}"]
    # What is between the summary and the first heading belongs to the description.
    if parts[2][0] == "code" or not parts[2][1][0].startswith("#"):
        lines.append(".SH DESCRIPTION")
    for kind, text in parts[2:]:
        if kind == "code":
            lines += [".PP", ".nf", ".RS 4", *(line(escaped(row)) for row in text), ".RE", ".fi"]
        elif text[0].startswith("#"):
            lines.append(heading(text[0]))
            lines += list(text_block(text[1:])) if text[1:] else []
        else:
            lines += list(text_block(text))
    return "\n".join(lines) + "\n"


def overview(catalogue):
    """Markdown of corvanta(1)."""
    lines = ["# corvanta", "", "Run data-flow graphs that read and write files", "", "## Synopsis", "",
             "```", "corvanta COMMAND [arguments]", "corvanta help [COMMAND]", "corvanta --version", "```", "", "## Description", "",
             "Corvanta reads, changes and writes tables in many file formats: text files, workbooks, JSON, XML, HTML, Parquet, dBase, SAS, SPSS and "
             "Stata data sets, and documents made from templates. A command converts or shows a file; a graph joins actions to larger tasks.", "",
             "## Commands", ""]
    for command in catalogue.commands:
        lines += [f"`corvanta {command['name']}`", f":   {command['summary']}; see corvanta-{command['name']}(1).", ""]
    lines += ["## Actions", "", "Each action has a page of its own, such as corvanta-readCSV(7).", ""]
    for action in catalogue.actions:
        lines += [f"`{action['type']}`", f":   {action['description']}.", ""]
    lines += ["## Environment", "", "`CORVANTA_PLUGIN_PATH`", ":   Folders with further modules of actions.", "", "`NO_COLOR`",
              ":   If it is set, messages have no colors unless `--color always` is given.", "", "`TMPDIR`", ":   Folder for temporary files.", "",
              "## Exit status", "", "0 done (warnings allowed), 1 failed, 2 bad usage or an invalid graph, 129, 130, 131 or 143 ended by a signal.", "",
              "## See also", "", see_also([f"corvanta-{command['name']}(1)" for command in catalogue.commands] + ["corvanta-studio(1)", "corvanta-graph(5)"]), ""]
    return "\n".join(lines)


def see_also(names):
    return ", ".join(names)


def pages(catalogue, reference, graph, studio):
    """File name and text of each manual page. `reference`: the pages of reference.py; `graph`, `studio`: those of the graph file and the editor."""
    result = {"man1/corvanta.1": page("corvanta", 1, catalogue.version, overview(catalogue))}
    for command in catalogue.commands:
        name = f"corvanta-{command['name']}"
        text = reference[f"reference/commands/{command['name']}.md"] + "\n## See also\n\n" + see_also(["corvanta(1)", "corvanta-graph(5)"]) + "\n"
        result[f"man1/{name}.1"] = page(name, 1, catalogue.version, text)
    for action in catalogue.actions:
        name = f"corvanta-{action['type']}"
        # Pictures and pages about formats are in the HTML only.
        text = reference[f"reference/actions/{action['type']}.md"].partition("\n## Panel\n")[0]
        text = re.sub("- Details of the format.*\n", "", text) + "\n## See also\n\n" + see_also(["corvanta(1)", "corvanta-graph(5)"]) + "\n"
        result[f"man7/{name}.7"] = page(name, 7, catalogue.version, text)
    for name, section, text in (("corvanta-graph", 5, graph), ("corvanta-studio", 1, studio)):
        text += "\n## See also\n\n" + see_also(["corvanta(1)", "corvanta-graph(5)" if section == 1 else "corvanta-studio(1)"]) + "\n"
        result[f"man{section}/{name}.{section}"] = page(name, section, catalogue.version, text)
    return result

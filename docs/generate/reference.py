"""The pages of the reference as Markdown, from the catalogue of the program and the descriptions of messages."""
import re

import message_texts

KINDS = {"strings": "list of texts", "flag": "0 or 1"}


def prose(text):
    """A text of the program, in which nothing is markup."""
    return re.sub(r"([*_`\[\]|\\])", r"\\\1", text.replace("&", "&amp;").replace("<", "&lt;")).replace("\n", " ")


def code(text):
    return f"`{text}`" if text else ""


def block(text, language=""):
    return f"```{language}\n{text}\n```\n"


def sentence(text):
    """With a capital and a full stop; a parameter at the beginning keeps its name."""
    first = text.partition(" ")[0].rstrip(",;:")
    begin = text[:1].upper() if re.fullmatch("[a-z]+", first) else text[:1]
    return begin + text[1:] + ("" if text.endswith(".") else ".")


class ActionPage:
    """Its markdown has an anchor per parameter, by which F1 in the editor opens it."""

    def __init__(self, action, formats, messages):
        self.action, self.formats, self.messages = action, formats, messages
        self.lines = []

    def markdown(self, panel=None):
        action = self.action
        self.lines = [f"# {action['type']}", "", prose(sentence(action["description"])), ""]
        self.add_facts()
        if action["examples"]:
            self.lines += ["## Examples", ""]
            for example in action["examples"]:
                self.lines += [prose(sentence(example["title"])), "", block(example["element"], "xml")]
        self.lines += ["## Parameters", "", "The values of a saved element; what is not given has its default.", ""]
        if not action["parameters"]:
            self.lines += ["This action has no parameters.", ""]
        self.add_parameters(action["parameters"], "")
        self.add_messages()
        if panel:
            self.lines += ["## Panel", "", f"![The property panel of {action['type']}]({panel})", ""]
        return "\n".join(self.lines)

    def add_facts(self):
        action = self.action
        pins = ["any number of input pins" if action["pinsIn"] > 2 else f"{action['pinsIn']} input pin" + "s" * (action["pinsIn"] != 1),
                f"{action['pinsOut']} output pin" + "s" * (action["pinsOut"] != 1)]
        self.lines += [f"- Pins: {', '.join(pins)}."]
        for use, text in (("read", "Reads for `convert`, `head`, `schema` and `stats`"), ("write", "Writes for `convert`")):
            extensions = [name for form in action.get("formats", []) if form["use"] == use for name in form["extensions"].split()]
            if extensions:
                self.lines += [f"- {text}: {', '.join('.' + name for name in extensions)}."]
        if action["keywords"]:
            self.lines += [f"- Search words: {' '.join(action['keywords'])}."]
        if self.formats:
            self.lines += ["- Details of the format: " + ", ".join(f"[{name}](../../{path})" for name, path in self.formats) + "."]
        if action.get("includedTemplates"):
            self.lines += ["- Included templates: " + ", ".join(code(name) for name in action["includedTemplates"]) + "."]
        self.lines.append("")

    def add_parameters(self, infos, path):
        level = 3 + path.count("/")
        for info in infos:
            anchor = (path + info["name"]).replace("/", ".")
            # The Markdown tool has six levels of headings.
            self.lines += [f"{'#' * min(level, 6)} {path}{info['name']} {{#{anchor}}}", "", prose(info["meaning"]), ""]
            self.lines += [f"- {fact}" for fact in self.facts(info)] + [""]
            self.lines += [block(info["example"], "xml")]
            self.add_parameters(info.get("members", []), f"{path}{info['name']}/")

    def facts(self, info):
        kind = KINDS.get(info["type"], info["type"])
        yield f"Type: {kind}" + (", required." if info.get("required") else ".")
        if info["type"] not in ("strings", "structure"):
            yield f"Default: {code(info['default']) or 'empty'}."
        bounds = [f"{word} {info[key]}" for key, word in (("low", "from"), ("high", "to")) if key in info]
        if bounds:
            yield f"Allowed: {' '.join(bounds)}."
        if info.get("unit"):
            yield f"Unit: {info['unit']}."
        if info.get("usedWhen"):
            yield f"Used only when {prose(', and '.join(info['usedWhen']))}."
        for number, choice in enumerate(info.get("choices", [])):
            explanation = (info.get("explanations") or [""] * (number + 1))[number]
            element = " ".join(info["choiceExamples"][number].split())
            yield f"{number}: {prose(choice)}" + (f". {prose(explanation)}" if explanation else ".") + (f" Example: `{element}`" if element else "")
        if info["type"] == "structure":
            yield f"Each element `{info['element']}` holds the members below."

    def add_messages(self):
        self.lines += ["## Messages", ""]
        for text, cause, cure in self.messages:
            self.lines += [code(text), f":   {sentence(cause)} {sentence(cure)}", ""]
        if not self.messages:
            self.lines += ["This action has no messages of its own.", ""]


def message_rows(root, sources):
    """(text, cause, cure) of the messages of these sources."""
    described, rows = message_texts.descriptions(root), []
    for source, text in message_texts.all_messages(root):
        row = message_texts.describe(text, described.get(source, [])) if source in sources else None
        if row and row[1] is not None:
            rows.append((message_texts.shown(text), row[1], row[2]))
    return list(dict.fromkeys(rows))


def map_rows(root):
    """From docs/map.md: the folder and the pages of the formats of each action."""
    rows = {}
    for line in (root / "docs/map.md").read_text(encoding="utf-8").splitlines():
        cells = [re.findall(r"`([^`]+)`", part) for part in line.strip("|").split("|")]
        if line.startswith("| `") and len(cells) == 7:
            rows[cells[0][0]] = (cells[1][0], [(page.split("/")[-1].removesuffix(".md"), page.removeprefix("docs/")) for page in cells[6]])
    return rows


def action_pages(catalogue, root):
    folders, pages = map_rows(root), {}
    for action in catalogue.actions:
        name = action["type"]
        folder, formats = folders.get(name, (None, []))
        sources = message_texts.sources_of_action(root, folder) if folder else set()
        picture = f"docs/pictures/{name}_light.png"
        panel = f"../../pictures/{name}_light.png" if (root / picture).exists() else None
        pages[name] = ActionPage(action, formats, message_rows(root, sources)).markdown(panel)
    return pages


def command_page(command):
    lines = [f"# corvanta {command['name']}", "", prose(sentence(command["summary"])), "", "## Synopsis", "",
             block("\n".join("corvanta " + usage for usage in command["usage"])), "## Description", ""]
    for paragraph in command["description"]:
        lines += [prose(paragraph), ""]
    lines += ["## Options", ""]
    for group in command["optionGroups"]:
        lines += [f"### {group['title']}", ""] if group["title"] else []
        for option in group["options"]:
            names = ", ".join(option["names"])
            lines += [code(f"{names} {option['value']}".strip()), f":   {prose(sentence(option['meaning']))}", ""]
    if command["examples"]:
        lines += ["## Examples", "", block("\n".join("corvanta " + example for example in command["examples"]), "sh")]
    lines += ["## Exit status", "", prose(command["exitStatus"]) or "0 done, 2 bad usage.", ""]
    return "\n".join(lines)


def formats_page(catalogue, root):
    pages, rows = map_rows(root), {}
    for use in ("read", "write"):
        for action in catalogue.actions:
            for form in action.get("formats", []):
                for extension in form["extensions"].split() if form["use"] == use else []:
                    rows.setdefault(extension, {}).setdefault(use, (action["type"], form["settings"]))
    lines = ["# File formats", "", "The action that `convert`, `head`, `schema` and `stats` use for the extension of a file name, and the parameters that",
             "they set. Every format can be read from and written to a file name that ends in `.gz`; `.Z` files and members of `.zip`",
             "and `.rar` archives can be read. Workbooks (.xlsx) have a compression of their own.", "",
             "| extension | read by | written by | details |", "|---|---|---|---|"]
    for extension, uses in rows.items():
        cells = [f"[{uses[use][0]}](actions/{uses[use][0]}.md)" if use in uses else "-" for use in ("read", "write")]
        details = dict.fromkeys(f"[{name}](../{path})" for use in uses for name, path in pages.get(uses[use][0], (None, []))[1])
        lines.append(f"| .{extension} | {cells[0]} | {cells[1]} | {', '.join(details)} |")
    lines += ["", "Documents from templates (.docx, .pptx, .xlsx) are written by [writeDoc](actions/writeDoc.md), [writeDocTable](actions/writeDocTable.md)",
              "and [writeReport](actions/writeReport.md).", "", "## Settings", "", "What the commands set, because users expect it, while the defaults of graphs stay as they are:", ""]
    for action in catalogue.actions:
        for form in action.get("formats", []):
            if form["settings"]:
                names = ", ".join("." + extension for extension in form["extensions"].split())
                lines.append(f"- {names} ({'reading' if form['use'] == 'read' else 'writing'}, {action['type']}): " +
                             ", ".join(f"`{word}`" for word in form["settings"].split()))
    return "\n".join(lines) + "\n"


def actions_index(catalogue):
    lines = ["# Actions", "", "| action | what it does | pins in | pins out |", "|---|---|---|---|"]
    for action in catalogue.actions:
        pins = "any" if action["pinsIn"] > 2 else action["pinsIn"]
        lines.append(f"| [{action['type']}](actions/{action['type']}.md) | {prose(action['description'])} | {pins} | {action['pinsOut']} |")
    return "\n".join(lines) + "\n"


def commands_index(catalogue):
    lines = ["# Commands", "", "`corvanta --version` prints the version, `corvanta help COMMAND` the help of a command, and",
             "`corvanta help --json` all commands and options.", "", "| command | what it does |", "|---|---|"]
    lines += [f"| [{command['name']}](commands/{command['name']}.md) | {command['summary']} |" for command in catalogue.commands]
    return "\n".join(lines) + "\n"


def messages_page(root):
    """All messages by source; those of commands are on no other page."""
    described = message_texts.descriptions(root)
    lines = ["# Messages", "", "All messages with cause and cure, by the part of the program that logs them. `…` is a name, a number or a value.", ""]
    for source in dict.fromkeys(source for source, _ in message_texts.all_messages(root)):
        rows = message_rows(root, {source})
        if rows and source in described:
            lines += [f"## {source}", ""]
            for text, cause, cure in rows:
                lines += [code(text), f":   {sentence(cause)} {sentence(cure)}", ""]
    return "\n".join(lines)


def pages(catalogue, root):
    """Path below docs/ and Markdown of each generated page."""
    result = {f"reference/actions/{name}.md": text for name, text in action_pages(catalogue, root).items()}
    result |= {f"reference/commands/{command['name']}.md": command_page(command) for command in catalogue.commands}
    result |= {"reference/actions.md": actions_index(catalogue), "reference/commands.md": commands_index(catalogue),
               "reference/formats.md": formats_page(catalogue, root), "reference/messages.md": messages_page(root)}
    return result

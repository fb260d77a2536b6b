#!/usr/bin/python3
"""Random small graphs lose nothing in silence: random_graphs.py CORVANTA [CASES [SEED [ONLY]]]

Each case makes a table, passes it through up to three actions that change tables, writes it with a writer whose parameters are
drawn from its parameter table, and reads the result where a reader exists. The files of this run are the reference. Then
- the same graph runs again in another form (actions in another order, the table compressed, a pass-through action added),
  which must give the same files; and
- the graph runs with one mistake (a misspelled name, a value of the wrong type, a truncated input, a second action
  on one file, ...). Other files, or files missing, then need a message or an exit status that is not 0.
Every run must end with 0, 1 and an error message, or 2. A case depends only on SEED (default 1) and its number; ONLY runs one
case again and prints its graphs.
"""
import gzip
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from xml.sax.saxutils import quoteattr, escape

SECONDS = 60
NAMES = ["id", "day", "city", "Total amount", "größe", "a_b", "x1"]
TEXTS = ["", "a", "Müller", "x,y", 'say "hi"', "two\nlines", " blanks ", "<b>&amp;", "]]>", "2026-11-22", "007", "true", "😀"]
KEYS = ["0", "1", "42", "4294967293", ""]
NUMBERS = ["0", "-1.5", "1e300", "0.1", "12345678.9", ""]
VALUES = {"K": KEYS, "F": NUMBERS, "U": TEXTS}
# The parameter that names the file, and the ending of that file.
WRITERS = {"writeCSV": ("fileName", ".csv"), "writeJSON": ("fileName", ".json"), "writeXML": ("fileName", ".xml"),
           "writeParquet": ("file", ".parquet"), "writeExcel": ("fileNameDestination", ".xlsx"),
           "writeSAS": ("fileName", ".sas7bdat"), "writeSASXPT": ("fileName", ".xpt")}
# These start programs, ask the system, or need texts of a grammar of their own.
LEFT_ALONE = {"runExcel", "fileNameSource", "Prefix", "Suffix", "dateFormat", "floatToString", "Levels", "separator", "level", "compression",
              "columnFormats", "columnWidths", "headerStyle"}
COLUMN_PARAMETERS = {"testCol", "splitCol", "splitVar"}
KINDS = ["integer", "decimal", "text", "date"]
NEEDS = {("writeAllRows", "0"): "testCol", ("split", "1"): "splitVar", ("splitFile", "1"): "splitCol"}
# Any number is a valid value of these.
TAKES_ANY_NUMBER = {"nullNumber"}


@dataclass
class Action:
    """An action of a graph: its attributes, and the texts of its list elements."""
    name: str
    type: str
    attributes: dict = field(default_factory=dict)
    lists: dict = field(default_factory=dict)
    more: str = ""  # other child elements, as XML

    def xml(self):
        attributes = "".join(f" {name}={quoteattr(value, {chr(10): '&#10;'})}" for name, value in self.attributes.items())
        lists = "".join(f"<{name}>" + "".join(f"<s>{escape(text)}</s>" for text in texts) + f"</{name}>" for name, texts in self.lists.items())
        return f"  <action id='{self.name}'><{self.type}{attributes}>{lists}{self.more}</{self.type}></action>\n"


@dataclass
class Graph:
    actions: list
    links: list

    def xml(self):
        links = "".join(f"  <link from='{start}:0' to='{end if ':' in end else end + ':0'}'/>\n" for start, end in self.links)
        return "<graph version='4.11'>\n" + "".join(action.xml() for action in self.actions) + links + "</graph>\n"

    def copy(self):
        return Graph([Action(a.name, a.type, dict(a.attributes), {k: list(v) for k, v in a.lists.items()}, a.more) for a in self.actions],
                     list(self.links))

    def action(self, name):
        return next(action for action in self.actions if action.name == name)


@dataclass
class Outcome:
    status: int
    messages: list
    files: dict

    def is_silent(self):
        return self.status == 0 and all(message["level"] > 2 for message in self.messages)


class Fault(Exception):
    pass


# Actions that change tables. Each returns the action; `table` is what it gets and becomes what it gives.

@dataclass
class Table:
    columns: list
    letters: list

    def some(self, chance):
        return chance.sample(self.columns, chance.randint(1, len(self.columns)))


def kinds_of(table, chance):
    """Kinds of some columns; most texts of the tables are not numbers, so that a run may fail."""
    return [f"{name}={chance.choice(KINDS)}" for name in table.columns if chance.random() < 0.2]


def selection(table, chance):
    action = Action("", "select")
    if chance.random() < 0.5:
        action.attributes["firstRow"] = str(chance.randint(1, 4))
    if chance.random() < 0.5:
        action.attributes["lastRow"] = str(chance.randint(1, 9))
    if chance.random() < 0.5:
        action.lists["columns"] = table.some(chance)
        table.letters = [table.letters[table.columns.index(name)] for name in action.lists["columns"]]
        table.columns = list(action.lists["columns"])
    if chance.random() < 0.3:
        old = chance.choice(table.columns)
        action.lists["rename"] = [f"{old}=new {old}"]
        table.columns[table.columns.index(old)] = f"new {old}"
    return action


def condition(table, chance):
    index = chance.randrange(len(table.columns))
    value = "'a'" if table.letters[index] == "U" else chance.choice(["0", "42", "-1.5"])
    test = chance.choice(["is null", "is not null", f"= {value}", f"!= {value}", f"< {value}", f">= {value}"])
    name = table.columns[index].replace('"', '""')
    return Action("", "filter", {"where": chance.choice(["", "not "]) + f'"{name}" {test}'})


def ordering(table, chance):
    kinds = kinds_of(table, chance)
    return Action("", "sort", {}, {"keys": [chance.choice(["", "-"]) + name for name in table.some(chance)]} | ({"kinds": kinds} if kinds else {}))


def change_of_types(table, chance):
    chosen = table.some(chance)
    letters = {name: chance.choice("KFU") for name in chosen}
    table.letters = [letters.get(name, letter) for name, letter in zip(table.columns, table.letters)]
    return Action("", "cast", {"onError": chance.choice("01")}, {"types": [f"{name}={letter}" for name, letter in letters.items()]})


def join(table, chance):
    keys = table.some(chance)
    others = [(name, letter) for name, letter in zip(table.columns, table.letters) if name not in keys]
    action = Action("", "join", {"type": chance.choice("012")}, {"keys": keys})
    if chance.random() < 0.3:
        action.attributes["suffix"] = " b"
    table.columns = table.columns + [name + action.attributes.get("suffix", "_2") for name, _ in others]
    table.letters = table.letters + [letter for _, letter in others]
    return action


def union(_, chance):
    return Action("", "union", {"match": chance.choice("012")})


CHANGES = [selection, condition, ordering, change_of_types, join, union]
SECOND_INPUT = {"join", "union"}
OTHERS = ["readCSV", "select", "filter", "sort", "cast", "join", "union"]


def cell(text, letter):
    quoted = letter == "U" and any(mark in text for mark in '",\n\r')
    return '"' + text.replace('"', '""') + '"' if quoted else text


class Case:
    """One table with its graphs, in a folder of its own."""

    def __init__(self, corvanta, parameters, folder, name):
        self.corvanta = corvanta
        self.parameters = parameters
        self.columns, self.letters = [], []
        self.folder = folder
        self.chance = random.Random(name)
        self.runs = 0
        self.shown = []

    def make_table(self):
        self.columns = self.chance.sample(NAMES, self.chance.randint(1, 5))
        self.letters = [self.chance.choice("KFU") for _ in self.columns]
        rows = [[self.chance.choice(VALUES[letter]) for letter in self.letters] for _ in range(self.chance.randint(0, 9))]
        lines = [",".join(cell(text, "U") for text in self.columns)]
        lines += [",".join(cell(text, letter) for text, letter in zip(row, self.letters)) for row in rows]
        self.rows = rows
        (self.folder / "table.csv").write_text("\n".join(lines) + "\n", encoding="utf-8")

    def value_of(self, info):
        """A valid value of a parameter; None to leave it out."""
        name, kind = info["name"], info["type"]
        if name in COLUMN_PARAMETERS:
            return self.chance.choice(self.columns)
        if "choices" in info:
            return str(self.chance.randrange(len(info["choices"])))
        if kind == "flag":
            return self.chance.choice("01")
        return None

    def fill(self, action):
        """Set some parameters of a writer."""
        for info in self.parameters[action.type]:
            name = info["name"]
            if name in LEFT_ALONE or name in action.attributes or self.chance.random() < 0.6:
                continue
            if info["type"] == "strings":
                action.lists[name] = self.chance.sample(self.columns, self.chance.randint(1, len(self.columns)))
            elif (value := self.value_of(info)) is not None:
                action.attributes[name] = value
        # Most cases without what these values need would fail before the first row.
        for value, needed in NEEDS.items():
            if value in action.attributes.items() and self.chance.random() < 0.8:
                action.attributes.setdefault(needed, self.chance.choice(self.columns))
        if action.type.startswith("writeSAS"):
            action.attributes.setdefault("autoWidth", self.chance.choice("01111"))

    def make_graph(self):
        writer = self.chance.choice(list(WRITERS))
        parameter, ending = WRITERS[writer]
        table = Action("table", "readCSV", {"fileName": "table.csv", "types": ",".join(self.letters)})
        graph = Graph([table], [])
        last = self.add_changes(graph)
        out = Action("out", writer, {parameter: "result" + ending})
        self.fill(out)
        graph.actions.append(out)
        graph.links.append((last, "out"))
        return graph

    def add_changes(self, graph):
        """Add actions that change the table; the name of the last one. A second input is the same table."""
        changed, last = Table(self.columns, self.letters), "table"
        for number in range(self.chance.choice([0, 0, 1, 1, 2, 3])):
            action = self.chance.choice(CHANGES)(changed, self.chance)
            action.name = f"change{number}"
            graph.actions.append(action)
            graph.links.append((last, action.name))
            if action.type in SECOND_INPUT:
                graph.links.append((last, f"{action.name}:1"))
            last = action.name
        self.columns = changed.columns
        return last

    def run(self, graph):
        """Run a graph in a new output folder."""
        self.runs += 1
        out = self.folder / f"out{self.runs}"
        out.mkdir()
        path = self.folder / f"{self.runs}.graph"
        path.write_text(graph.xml(), encoding="utf-8")
        self.shown.append(graph.xml())
        try:
            done = subprocess.run([self.corvanta, "run", path, "--out-dir", out, "--log-format", "json", "--progress", "never"],
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=SECONDS, check=False)
        except subprocess.TimeoutExpired:
            raise Fault("the run does not end") from None
        messages = [json.loads(line) for line in done.stderr.decode().splitlines()]
        files = {str(file.relative_to(out)): content_of(file) for file in sorted(out.rglob("*")) if file.is_file()}
        self.shown.append(f"status {done.returncode}\n{done.stderr.decode()}{sorted(files)}\n")
        if done.returncode not in (0, 1, 2):
            raise Fault(f"the run ended with status {done.returncode}")
        if done.returncode and not any(message["level"] == 1 for message in messages):
            raise Fault("the run failed without an error message")
        # An error of writeParquet leaves this one, as documented.
        if done.returncode and any("tmp" in name.lower() and not name.endswith(".parquet_TMP") for name in files):
            raise Fault("the run left a temporary file")
        return Outcome(done.returncode, messages, files)

    def check_same(self, what, reference, graph):
        outcome = self.run(graph)
        if (outcome.status, outcome.files) != (reference.status, reference.files):
            raise Fault(f"{what}: not the same files")

    def check_reported(self, what, reference, graph):
        outcome = self.run(graph)
        if outcome.is_silent() and outcome.files != reference.files:
            raise Fault(f"{what}: other files and no message")

    def read_back(self, graph, reference):
        """The graph with a reader of the written file, which is copied to the inputs; None without a file."""
        names = [name for name in reference.files if name.startswith("result.")]
        ending = WRITERS[graph.action("out").type][1]
        if reference.status or len(names) != 1:
            return None
        source = "back" + ending
        written = self.folder / f"out{self.runs}" / names[0]
        (self.folder / source).write_bytes(written.read_bytes())
        items = "".join(f"<e name={quoteattr(name)} path={quoteattr(name)}/>" for name in self.columns if " " not in name)
        readers = {".csv": Action("back", "readCSV", {"fileName": source}),
                   ".xlsx": Action("back", "readExcel", {"fileName": source}),
                   ".sas7bdat": Action("back", "readStat", {"fileName": source}),
                   ".xpt": Action("back", "readStat", {"fileName": source}),
                   ".parquet": Action("back", "readParquet", {"fileName": source}),
                   ".json": Action("back", "readJSON", {"fileName": source}, {}, f"<Level initialPath=''>{items}</Level>"),
                   ".xml": Action("back", "readXML", {"fileName": source}, {}, f"<Level initialPath='table/row'>{items}</Level>")}
        return Graph([readers[ending], Action("copy", "writeCSV", {"fileName": "copy.csv"})], [("back", "copy")])


def content_of(file):
    data = file.read_bytes()
    return data if file.suffix != ".xlsx" else len(data) > 0  # a workbook holds the time at which it was made


# Other forms of a graph that mean the same.

def reordered(case, graph):
    case.chance.shuffle(graph.actions)
    return graph


def compressed(case, graph):
    with gzip.open(case.folder / "table.csv.gz", "wb") as out:
        out.write((case.folder / "table.csv").read_bytes())
    graph.action("table").attributes["fileName"] = "table.csv.gz"
    return graph


def passed_through(case, graph):
    """An action without an effect in one of the links."""
    graph.actions.append(Action("same", case.chance.choice(["select", "union"])))
    start, end = graph.links.pop(case.chance.randrange(len(graph.links)))
    graph.links += [(start, "same"), ("same", end)]
    return graph


# Mistakes: each changes the graph or its input, or returns None where it does not apply.

def misspelled_attribute(case, graph):
    action = case.chance.choice([action for action in graph.actions if action.attributes])
    name = case.chance.choice(list(action.attributes))
    wrong = case.chance.choice([name.lower(), name.upper(), name[:-1], name + "s", name[1:]])
    if wrong == name or wrong in action.attributes:
        return None
    action.attributes = {wrong if key == name else key: value for key, value in action.attributes.items()}
    return graph


def misspelled_element(case, graph):
    with_lists = [action for action in graph.actions if action.lists]
    if not with_lists:
        return None
    action = case.chance.choice(with_lists)
    name = case.chance.choice(list(action.lists))
    action.lists[name[:-1]] = action.lists.pop(name)
    return graph


def wrong_value(case, graph):
    out = case.chance.choice(graph.actions)
    typed = {info["name"]: info for info in case.parameters[out.type] if info["type"] in ("integer", "flag", "real")}
    name = case.chance.choice(sorted(typed) or [""])
    if not name:
        return None
    out.attributes[name] = case.chance.choice(["abc", "99", "-7", "1.5", "maybe", "0x1", "1e99"])
    if typed[name]["type"] == "real" or name in TAKES_ANY_NUMBER or ("choices" not in typed[name] and typed[name]["type"] == "integer"):
        out.attributes[name] = case.chance.choice(["abc", "maybe", "0x1"])
    return graph


def unknown_column(case, graph):
    out = graph.action("out")
    places = [name for name in COLUMN_PARAMETERS if name in out.attributes]
    if places:
        out.attributes[case.chance.choice(places)] += "?"
    elif lists := [texts for action in graph.actions for texts in action.lists.values()]:
        texts = case.chance.choice(lists)
        texts[0] = "?" + texts[0]
    else:
        return None
    return graph


def second_writer(case, graph):
    out = graph.action("out")
    parameter, _ = WRITERS[out.type]
    if out.attributes.get("split", "0") != "0" or out.attributes.get("splitFile") == "1":
        return None  # its files have other names
    name = case.chance.choice([out.attributes[parameter], "./" + out.attributes[parameter]])
    graph.actions.append(Action("again", out.type, {parameter: name}))
    graph.links.append(("table", "again"))
    return graph


def missing_input(_, graph):
    graph.action("table").attributes["fileName"] = "tabel.csv"
    return graph


def lost_link(_, graph):
    graph.links.clear()
    return graph


def cut_input(case, graph):
    """Truncate a compressed input."""
    compressed(case, graph)
    path = case.folder / "table.csv.gz"
    data = path.read_bytes()
    path.write_bytes(data[:case.chance.randrange(1, len(data))])
    return graph


def cut_written(case, graph):
    """Truncate a file that is read back."""
    back = graph.action("back")
    path = case.folder / back.attributes["fileName"]
    data = path.read_bytes().rstrip()
    # Tables and transport files do not say where they end.
    if path.suffix in (".csv", ".xpt") or len(data) < 3:
        return None
    rest = data[:case.chance.randrange(1, len(data) - 1)]
    if path.suffix == ".json" and is_document(rest):
        return None  # cut between two documents
    path.write_bytes(rest)
    return graph


def is_document(data):
    try:
        return json.loads(data) is not None
    except ValueError:
        return False


FORMS = [reordered, compressed, passed_through]
MISTAKES = [misspelled_attribute, misspelled_element, wrong_value, unknown_column, second_writer, missing_input, lost_link, cut_input]


def check_case(case):
    case.make_table()
    graph = case.make_graph()
    reference = case.run(graph)
    back = case.read_back(graph, reference)
    form = case.chance.choice(FORMS)
    case.check_same(form.__name__, reference, form(case, graph.copy()))
    mistake = case.chance.choice(MISTAKES)
    if (wrong := mistake(case, graph.copy())) is not None:
        case.check_reported(mistake.__name__, reference, wrong)
    if back is not None:
        reference = case.run(back)
        if (wrong := cut_written(case, back.copy())) is not None:
            case.check_reported("cut_written", reference, wrong)


def parameters_of(corvanta, kind):
    shown = subprocess.run([corvanta, "describe", kind, "--json"], capture_output=True, check=True)
    return json.loads(shown.stdout)["parameters"]


def try_case(corvanta, parameters, seed, number, show=False):
    """The fault of a case; empty when there is none."""
    with tempfile.TemporaryDirectory(prefix="corvanta_random_") as name:
        case = Case(corvanta, parameters, pathlib.Path(name), f"{seed}:{number}")
        try:
            check_case(case)
            return ""
        except Fault as fault:
            return f"case {number}: {fault}\n" + case.shown[-2] + case.shown[-1]
        finally:
            if show:
                print("\n".join(case.shown))


def main():
    corvanta = pathlib.Path(sys.argv[1]).resolve()
    numbers = [int(word) for word in sys.argv[2:]]
    count, seed = (numbers + [500, 1][len(numbers):])[:2]
    only = numbers[2:]
    parameters = {kind: parameters_of(corvanta, kind) for kind in [*WRITERS, *OTHERS]}
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        found = [text for text in pool.map(lambda number: try_case(corvanta, parameters, seed, number, bool(only)), only or range(count)) if text]
    print("\n".join(found[:20]))
    print(f"{len(only) or count} cases, {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

"""Reads the statistical files of the corpus and compares them with what other programs found.

Usage: stat_corpus_test.py CORVANTA CORPUS

A golden file has the stored values: numbers and dates are raw, and the labels are not applied. Values
that a file declares to be missing are empty here, but R keeps them.
"""
import csv
import math
import pathlib
import subprocess
import sys
import tempfile

CORPUS = pathlib.Path(sys.argv[2])
SKIP = 77
ENDINGS = {".sas7bdat", ".sav", ".zsav", ".por", ".dta", ".xpt", ".xpt5"}

# Files that the library does not read, with a part of the message.
REFUSED = {
    "stat/sas7bdat/comp_deleted.sas7bdat": "unsupported compression scheme",
    "stat/sas7bdat/corrupt.sas7bdat": "",
    "stat/sas7bdat/invalid_lengths.sas7bdat": "",
    "stat/sas7bdat/sas_infinite_loop.sas7bdat": "",
    "stat/xpt/example.xpt": "its data set has no variables",
    # pandas and haven read the headers of the other data sets as rows.
    "stat/testEmpty.xpt": "has further data sets after 2 rows",
    "stat/xpt/sasxport_datetime.xpt": "has further data sets after 5 rows",
}


def manifest():
    for line in (CORPUS / "MANIFEST.tsv").read_text(encoding="utf-8").splitlines():
        fields = line.split("\t")
        path = CORPUS / fields[0]
        if fields[0].startswith("stat/") and path.suffix in ENDINGS:
            facts = dict(f.split("=", 1) for f in fields[-1].split("; ") if "=" in f)
            yield fields[0], path, facts


def read(corvanta, path, *settings):
    with tempfile.TemporaryDirectory() as folder:
        target = pathlib.Path(folder) / "out.csv"
        options = [option for setting in ("formatDates=0",) + settings for option in ("--reader", setting)]
        run = subprocess.run([corvanta, "convert", str(path), str(target), *options],
                             capture_output=True, text=True, timeout=120)
        if run.returncode != 0:
            return None, run.stderr
        with open(target, newline="", encoding="utf-8") as file:
            return table(file), run.stderr


def table(file):
    """The missing value of a single column is an empty line, which the csv module does not return as a row."""
    return [row or [""] for row in csv.reader(file)]


def golden_files(path):
    folder = path.parent / "golden"
    for name in (path.name + ".pandas.csv", path.name + ".foreign.csv"):
        if (folder / name).exists():
            yield folder / name


def same(ours, theirs):
    """Numbers are equal up to the digits that the other program printed."""
    theirs = theirs.rstrip(" ")
    if ours == theirs:
        return True
    try:
        return math.isclose(float(ours), float(theirs), rel_tol=1e-6, abs_tol=1e-9)
    except ValueError:
        # pandas shows the bytes of SAS files as Latin-1; R shows invalid bytes as <e0>.
        return ours.encode("utf-8").decode("latin-1") == theirs or "<" in theirs


def compare(name, rows, golden):
    with open(golden, newline="", encoding="utf-8") as file:
        theirs = table(file)
    may_differ = ".foreign." in golden.name
    problems = []
    if len(rows) != len(theirs):
        problems.append(f"{len(rows) - 1} rows instead of {len(theirs) - 1}")
    columns = len(rows[0])
    for number, (our_row, their_row) in enumerate(zip(rows[1:], theirs[1:]), 1):
        for column in range(columns):
            ours, expected = our_row[column], their_row[column]
            if not same(ours, expected) and not (may_differ and ours == ""):
                problems.append(f"row {number} column {column + 1}: {ours!r} instead of {expected!r}")
    return problems


def check_facts(rows, facts):
    problems = []
    if int(facts.get("rows", len(rows) - 1)) != len(rows) - 1:
        problems.append(f"{len(rows) - 1} rows instead of {facts['rows']}")
    if int(facts.get("columns", len(rows[0]))) != len(rows[0]):
        problems.append(f"{len(rows[0])} columns instead of {facts['columns']}")
    names = facts.get("names", "")
    expected = names.removesuffix("...").split(",")
    if names and rows[0][: len(expected)] != expected:
        problems.append(f"columns {rows[0]}")
    return problems


def check(corvanta, name, path, facts):
    rows, log = read(corvanta, path)
    if name in REFUSED:
        if rows is not None or "ERROR" not in log or path.name not in log or REFUSED[name] not in log:
            return [f"is not refused with its error: {log}"]
        return []
    if rows is None:
        return [f"cannot be read: {log}"]
    problems = check_facts(rows, facts)
    for golden in golden_files(path):
        problems += compare(name, rows, golden)
    return problems


def main():
    if not CORPUS.is_dir():
        print(f"skipped: there is no corpus at {CORPUS}")
        return SKIP
    failed = 0
    for name, path, facts in manifest():
        problems = check(sys.argv[1], name, path, facts)
        failed += bool(problems)
        for problem in problems[:5]:
            print(f"{name}: {problem}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

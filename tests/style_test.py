#!/usr/bin/python3
"""Check what the house style can measure: style_test.py format | measures | report

format: clang-format changes nothing (exit status 77 without clang-format 14). measures: the limits below hold for the code
outside tests, bench and fuzz. report: print the figures of every folder and what is over a limit, and exit with 0.
"""
import collections
import dataclasses
import pathlib
import re
import shutil
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CODE = ["base", "codecs", "host", "io", "panels", "actions", "plugin", "cli", "studio"]
CHECKS = ["bench", "fuzz", "tests"]
CLANG_FORMAT_VERSION = "14"
SKIPPED = 77

MAX_MEDIAN_LINES = 7      # of a function: from its first line to its closing brace, without comment lines
LONG_FUNCTION_LINES = 22  # nine of ten functions are shorter
MAX_FILE_LINES = 600
MAX_FOLDER_FILES = 30
HEADER_COMMENTS = (0.30, 0.45)  # comment lines of all lines that are not blank
SOURCE_COMMENTS = (0.08, 0.15)

CONTROL = re.compile(r"\s*(?:if|for|while|switch|return|case|else|do|catch|using|throw)\b")
TYPE = re.compile(r"\s*(?:template *<.*> *)?(?:class|struct|union|enum|namespace)\b")
LITERAL = re.compile(r""" "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])' """, re.VERBOSE)
ONE_LINE_FUNCTION = re.compile(r"[^=(]*\([^{]*\)[^={}]*\{.*\}$")


@dataclasses.dataclass
class Function:
    path: pathlib.Path
    first_line: int  # 1-based
    lines: int


@dataclasses.dataclass
class Figures:
    """The sums over the files of a folder or of the tree."""
    files: int = 0
    lines: int = 0
    comments: collections.Counter = dataclasses.field(default_factory=collections.Counter)  # by suffix
    filled: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    functions: list = dataclasses.field(default_factory=list)

    def add(self, other):
        self.files += other.files
        self.lines += other.lines
        self.comments += other.comments
        self.filled += other.filled
        self.functions += other.functions

    def comment_share(self, suffix):
        return self.comments[suffix] / max(1, self.filled[suffix])

    def median_lines(self):
        return statistics.median(f.lines for f in self.functions) if self.functions else 0

    def short_share(self):
        return sum(f.lines < LONG_FUNCTION_LINES for f in self.functions) / max(1, len(self.functions))


def files_of(folders):
    for folder in folders:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path


def is_test(path):
    return path.stem.endswith("_test") or "tests" in path.relative_to(ROOT).parts


def measured_files():
    return [path for path in files_of(CODE) if not is_test(path)]


def ends_declaration(line):
    text = line.strip()
    return not text or text.endswith((";", "}", "{", "public:", "private:", "protected:")) or text.startswith(("//", "#"))


def head_of(lines, brace):
    """The index of the first line of the declaration whose `{` is alone on line `brace`."""
    first = brace
    while first > 0 and not ends_declaration(lines[first - 1]):
        first -= 1
    return first


def long_functions(lines):
    """(index of the first line, number of lines) of each function whose `{` has a line of its own."""
    for brace, line in enumerate(lines):
        if line.strip() != "{":
            continue
        first = head_of(lines, brace)
        if "(" not in " ".join(lines[first:brace]) or TYPE.match(lines[first]):
            continue
        indent = line[:line.index("{")]
        end = next(i for i in range(brace, len(lines)) if lines[i].startswith(indent + "}"))
        yield first, end - first + 1 - comment_lines(lines[first:end])


def one_line_functions(lines):
    for i, line in enumerate(lines):
        if ONE_LINE_FUNCTION.match(line) and not CONTROL.match(line) and "[" not in line.split("(")[0]:
            yield i, 1


def functions_of(path, lines):
    found = [*long_functions(lines), *one_line_functions(lines)]
    return [Function(path.relative_to(ROOT), first + 1, count) for first, count in found]


def comment_lines(lines):
    """The number of lines that hold nothing but a comment."""
    return sum(line.lstrip().startswith(("//", "/*", "* ", "*/")) for line in lines)


def figures_of(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    return Figures(1, len(lines), collections.Counter({path.suffix: comment_lines(lines)}),
                   collections.Counter({path.suffix: sum(bool(line.strip()) for line in lines)}), functions_of(path, lines))


def total(paths):
    figures = Figures()
    for path in paths:
        figures.add(figures_of(path))
    return figures


def repeats_its_path(path):
    first = path.read_text(encoding="utf-8").split("\n", 1)[0]
    return re.fullmatch(r"// [\w/.]+\.(?:h|cpp|c)", first) is not None


def chained_arguments(path):
    """The numbers of the lines where .arg() is called on the result of .arg(): a placeholder in the first value would be replaced too."""
    text = LITERAL.sub(lambda found: "x" * len(found[0]), path.read_text(encoding="utf-8"))
    for call in re.finditer(r"\.arg\(", text):
        end, depth = call.end(), 1
        while depth > 0:
            depth += {"(": 1, ")": -1}.get(text[end], 0)
            end += 1
        if re.match(r"\s*\.arg\(", text[end:]):
            yield text.count("\n", 0, call.start()) + 1


def file_faults():
    for path in files_of([*CODE, *CHECKS]):
        name = path.relative_to(ROOT)
        lines = len(path.read_text(encoding="utf-8").splitlines())
        if lines > MAX_FILE_LINES:
            yield f"{name}: {lines} lines (at most {MAX_FILE_LINES})"
        for line in chained_arguments(path):
            yield f"{name}:{line}: .arg() after .arg(): fill all placeholders in one call"
    repeating = [str(path.relative_to(ROOT)) for path in files_of([*CODE, *CHECKS]) if repeats_its_path(path)]
    if repeating:
        yield f"first lines that repeat the name of the file: {len(repeating)}: {', '.join(repeating)}"


def folder_faults():
    counts = collections.Counter(path.relative_to(ROOT).parent for path in files_of([*CODE, *CHECKS]))
    for folder, files in counts.items():
        if files > MAX_FOLDER_FILES:
            yield f"{folder}: {files} source files (at most {MAX_FOLDER_FILES})"


def share_fault(name, share, limits):
    if not limits[0] <= share <= limits[1]:
        yield f"comment lines in {name}: {share:.1%} (expected {limits[0]:.0%} to {limits[1]:.0%})"


def total_faults(figures):
    if figures.median_lines() > MAX_MEDIAN_LINES:
        yield f"median length of functions: {figures.median_lines()} lines (at most {MAX_MEDIAN_LINES})"
    if figures.short_share() < 0.9:
        yield f"functions under {LONG_FUNCTION_LINES} lines: {figures.short_share():.1%} (at least 90%)"
    yield from share_fault("headers", figures.comment_share(".h"), HEADER_COMMENTS)
    yield from share_fault("sources", figures.comment_share(".cpp"), SOURCE_COMMENTS)


def faults():
    return [*total_faults(total(measured_files())), *file_faults(), *folder_faults()]


def row(name, figures):
    return (f"{name:32} {figures.files:5} {figures.lines:6} {len(figures.functions):6} {figures.median_lines():6.1f} "
            f"{figures.short_share():7.1%} {figures.comment_share('.h'):7.1%} {figures.comment_share('.cpp'):7.1%}")


def print_report():
    folders = collections.defaultdict(list)
    for path in measured_files():
        folders["/".join(path.relative_to(ROOT).parts[:-1][:2])].append(path)
    print(f"{'folder':32} files  lines  funcs median    < {LONG_FUNCTION_LINES}    .h     .cpp")
    for folder, paths in sorted(folders.items()):
        print(row(folder, total(paths)))
    everything = total(measured_files())
    print(row("all", everything))
    print("\nthe longest functions:")
    for function in sorted(everything.functions, key=lambda f: -f.lines)[:40]:
        print(f"  {function.lines:4} {function.path}:{function.first_line}")


def check_format():
    tool = shutil.which(f"clang-format-{CLANG_FORMAT_VERSION}") or shutil.which("clang-format")
    version = tool and subprocess.run([tool, "--version"], capture_output=True, text=True, check=True).stdout
    if not version or f"version {CLANG_FORMAT_VERSION}." not in version:
        print(f"skipped: needs clang-format {CLANG_FORMAT_VERSION}, found {version or 'none'}")
        return SKIPPED
    return subprocess.run([tool, "--dry-run", "-Werror", *files_of([*CODE, *CHECKS])], check=False).returncode


def check_measures():
    found = faults()
    print("\n".join(found) or "all limits hold")
    return 1 if found else 0


def report():
    print_report()
    print()
    check_measures()
    return 0


if __name__ == "__main__":
    sys.exit({"format": check_format, "measures": check_measures, "report": report}[sys.argv[1]]())

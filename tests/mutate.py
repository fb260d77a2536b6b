#!/usr/bin/python3
"""Check whether the tests notice faults: mutate.py [N [SEED]] [--slow] [--only FOLDER]

Changes one operator in a source of the folders below or of FOLDER, builds, and runs the tests that the change reaches:
first the test programs that were linked again, then the graph cases and scripts, and with --slow the slow tests. N faults
(default 20) are tried. The same SEED (default 1) chooses the same faults in the same sources. It works on a clone of the
last commit in build/mutate, so the work tree is not touched. Prints one line for each fault, those that no test noticed
with the word SURVIVED. Exit status: 1 if fewer than 85 % were noticed.
"""
import argparse
import json
import os
import pathlib
import random
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CLONE = ROOT / "build/mutate"
BUILD = CLONE / "build/release"
FOLDERS = ["base", "codecs", "io", "actions", "host/src", "cli", "panels", "studio"]
ASKED_SCORE = 0.85
TEST_SECONDS = 60  # a test that takes longer has noticed the fault: it hangs
SWAPS = [(r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "), (r" && ", " || "),
         (r" \|\| ", " && "), (r" \+ 1\b", " + 2"), (r" - 1\b", ""), (r"return false;", "return true;"), (r"return true;", "return false;"),
         (r"\+\+(\w)", r"--\1"), (r" \+= ", " -= "), (r" << ", " >> "), (r" >> ", " << "), (r"continue;", "break;")]
NO_CODE = ("//", "*", "#", "template", "static_assert")
STYLE_TESTS = "^(style|docs)[.]"


def run(*command, seconds=None):
    """The exit status; that of a command that takes longer than `seconds` is -1."""
    environment = os.environ | {"QT_QPA_PLATFORM": "offscreen"}
    environment.setdefault("CORVANTA_CORPUS", str(ROOT.parent / "shared/corpus"))
    with subprocess.Popen(command, cwd=CLONE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment,
                          start_new_session=True) as process:
        try:
            return process.wait(seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, 9)
            return -1


def build():
    return run("cmake", "--build", "build/release", seconds=900) == 0


def prepare_clone():
    """A built clone of the last commit."""
    if not CLONE.exists():
        subprocess.run(["git", "clone", "-q", "--shared", ROOT, CLONE], check=True)
    head = subprocess.run(["git", "-C", ROOT, "rev-parse", "HEAD"], capture_output=True, text=True, check=True).stdout.strip()
    subprocess.run(["git", "-C", CLONE, "checkout", "-q", "--force", head], check=True)
    if run("cmake", "--preset", "release") != 0 or not build():
        sys.exit("the clone in build/mutate does not build")


def is_code(text, at):
    """Whether the line of a place is code to its left: no comment, directive or text."""
    before = text[text.rfind("\n", 0, at) + 1:at]
    return not before.lstrip().startswith(NO_CODE) and '"' not in before and "//" not in before


class Fault:
    """One operator of one source, and what replaces it."""

    def __init__(self, source, match, new):
        self.source = source
        self.text = source.read_text(encoding="utf-8")
        self.start, self.end = match.span()
        self.new = match.expand(new)

    def __str__(self):
        line = self.text.count("\n", 0, self.start) + 1
        code = self.text.splitlines()[line - 1].strip()
        old = self.text[self.start:self.end].strip()
        return f"{self.source.relative_to(CLONE)}:{line}: {code[:90]}  [{old} -> {self.new.strip()}]"

    def __enter__(self):
        self.source.write_text(self.text[:self.start] + self.new + self.text[self.end:], encoding="utf-8")

    def __exit__(self, *_):
        self.source.write_text(self.text, encoding="utf-8")


def faults(folders, seed):
    """An endless sequence of random faults."""
    chance = random.Random(seed)
    sources = sorted(path for folder in folders for path in (CLONE / folder).rglob("*.cpp")
                     if not path.stem.endswith(("_test", "_windows")))
    while True:
        source, (pattern, new) = chance.choice(sources), chance.choice(SWAPS)
        text = source.read_text(encoding="utf-8")
        matches = [match for match in re.finditer(pattern, text) if is_code(text, match.start())]
        if matches:
            yield Fault(source, chance.choice(matches), new)


def programs():
    """The time of each program and module."""
    return {path: path.stat().st_mtime_ns for path in [*(BUILD / "bin").iterdir(), *(BUILD / "lib").rglob("*.so")]}


def test_programs():
    """The names of the tests of each test program."""
    listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], capture_output=True, text=True, check=True)
    found = {}
    for test in json.loads(listed.stdout)["tests"]:
        if "command" in test:
            found.setdefault(pathlib.Path(test["command"][0]), []).append(test["name"])
    return found


def passes(*choice):
    """Whether the chosen tests pass; true for none."""
    return run("ctest", "--test-dir", str(BUILD), f"-j{os.cpu_count()}", "--stop-on-failure", "--timeout", str(TEST_SECONDS), *choice,
               seconds=1800) == 0


def linked_tests_pass(before):
    """Run the test programs that the last build has changed since `before`, the quickest kind of test."""
    tests, now = test_programs(), programs()
    changed = [program for program in tests if now.get(program, 0) != before.get(program, 0)]
    return all(run(str(program), "--gtest_brief=1", "--gtest_fail_fast", seconds=TEST_SECONDS) == 0
               for program in sorted(changed) if program.name.endswith("_test"))


def is_noticed(before, slow):
    if not linked_tests_pass(before):
        return True
    if not passes("-LE", "slow", "-E", STYLE_TESTS):
        return True
    return slow and not passes("-L", "slow", "-E", "targets.kill")


def measure(options):
    """Try the faults; the number of noticed ones and of all that compiled."""
    noticed = tried = 0
    for fault in faults(options.only or FOLDERS, options.seed):
        if tried == options.count:
            return noticed, tried
        before = programs()
        with fault:
            compiled = build()
            found = compiled and is_noticed(before, options.slow)
        if compiled:
            tried += 1
            noticed += found
            print("noticed  " if found else "SURVIVED ", fault, flush=True)
        build()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("count", nargs="?", type=int, default=20)
    parser.add_argument("seed", nargs="?", type=int, default=1)
    parser.add_argument("--slow", action="store_true")
    parser.add_argument("--only", action="append", metavar="FOLDER")
    options = parser.parse_args()
    prepare_clone()
    noticed, tried = measure(options)
    print(f"{noticed} of {tried} faults noticed")
    return 0 if noticed >= ASKED_SCORE * tried else 1


if __name__ == "__main__":
    sys.exit(main())

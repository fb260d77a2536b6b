#!/usr/bin/python3
"""Run clang-tidy over the sources of a build folder: tidy.py BUILD [--quick] [FOLDER...]

BUILD holds compile_commands.json and the precompiled headers (preset tidy). FOLDER limits the run to sources below it.
Test programs are left out: the macros of their framework are most of what would be found. A source that passed is not
checked again until it, a header that it includes, its command or the checks change: BUILD/tidy holds one file per
passed source, which contains the digest of all of these. --quick leaves out the checks that take two thirds of the time.
"""
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(rb'^[ \t]*#[ \t]*include[ \t]*"([^"\n]+)"', re.MULTILINE)
FOLDERS = [ROOT / name for name in ("base", "codecs", "host", "io", "panels", "actions", "plugin", "cli", "studio")]
QUICK_CHECKS = "-clang-analyzer-*,-bugprone-*,bugprone-dangling-handle,bugprone-unused-return-value,bugprone-use-after-move"
INCLUDE_ROOTS = [ROOT, ROOT / "host/include", ROOT / "host/src"]


@functools.cache
def included(path):
    """The project headers that a file includes directly."""
    found = []
    for name in INCLUDE.findall(path.read_bytes()):
        candidates = [folder / os.fsdecode(name) for folder in [path.parent, *INCLUDE_ROOTS]]
        found += [candidate.resolve() for candidate in candidates if candidate.is_file()][:1]
    return found


def read_files(source):
    """The source and every project header that it includes, in a fixed order."""
    known, waiting = {source}, [source]
    while waiting:
        for header in included(waiting.pop()):
            if header not in known:
                known.add(header)
                waiting.append(header)
    return sorted(known)


def is_test(source):
    return source.stem.endswith("_test") or "tests" in source.parts


class Lint:
    def __init__(self, build, checks):
        self.build = build
        self.checks = checks  # added to those of .clang-tidy; may be empty
        self.passed = build / ("tidy-quick" if checks else "tidy")
        self.passed.mkdir(exist_ok=True)

    def stamp(self, source):
        return self.passed / str(source.relative_to(ROOT)).replace("/", "__")

    def digest(self, source, command):
        state = hashlib.sha256((ROOT / ".clang-tidy").read_bytes() + self.checks.encode() + command.encode())
        for path in read_files(source):
            state.update(path.read_bytes())
        return state.hexdigest()

    def sources(self, folders):
        """(source, digest) of each source below the folders that has not passed as it is now."""
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            source = pathlib.Path(entry["file"])
            if is_test(source) or not any(source.is_relative_to(folder) for folder in folders):
                continue
            digest = self.digest(source, entry["command"])
            stamp = self.stamp(source)
            if not stamp.exists() or stamp.read_text() != digest:
                yield source, digest

    def check(self, source, digest):
        """The findings in one source; empty when there are none, and then its stamp is written."""
        done = subprocess.run(["clang-tidy", "-p", self.build, "--quiet", f"--checks={self.checks}", source],
                              capture_output=True, text=True, check=False)
        if done.returncode != 0:
            return done.stdout or done.stderr
        self.stamp(source).write_text(digest)
        return ""


def print_new(text, known):
    """Print the findings that are not known yet: a header is seen from many sources."""
    findings = re.split(r"\n(?=/\S+:\d+:\d+: (?:error|warning):)", text.strip())
    for finding in findings:
        if finding and finding not in known:
            known.add(finding)
            print(finding, flush=True)


def main():
    words = [word for word in sys.argv[2:] if word != "--quick"]
    lint = Lint(pathlib.Path(sys.argv[1]).resolve(), QUICK_CHECKS if "--quick" in sys.argv else "")
    waiting = dict(lint.sources([pathlib.Path(word).resolve() for word in words] or FOLDERS))
    print(f"clang-tidy: {len(waiting)} sources to check", flush=True)
    known = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for text in pool.map(lambda item: lint.check(*item), waiting.items()):
            print_new(text, known)
    return 1 if known else 0


if __name__ == "__main__":
    sys.exit(main())

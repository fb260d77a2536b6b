#!/usr/bin/python3
"""Run clang-tidy over the sources of a build folder: tidy.py BUILD [--quick] [--minutes N] [FOLDER...]

BUILD holds compile_commands.json and the precompiled headers (preset tidy). FOLDER limits the run to sources below it.
Test programs are left out: the macros of their framework are most of what would be found. --quick leaves out the checks that take
two thirds of the time. After N minutes no further check begins; the sources of the latest commits come first.

A source that passed is not checked again until it, a header that it includes, its command, the checks or clang-tidy change. The cache
that remembers this is in ~/.cache/corvanta-tidy, for all clones: an empty file for each digest of all these. System headers do not
count: after an update of Qt, delete it.
"""
import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(rb'^[ \t]*#[ \t]*include[ \t]*"([^"\n]+)"', re.MULTILINE)
FOLDERS = [ROOT / name for name in ("base", "codecs", "host", "io", "panels", "actions", "plugin", "cli", "studio")]
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "corvanta-tidy"
CACHE_DAYS = 60  # after which a digest that no run needed is removed
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


def latest_sources():
    """The files of the latest commits with their rank, the last commit first."""
    log = subprocess.run(["git", "-C", ROOT, "log", "-100", "--format=", "--name-only"], capture_output=True, text=True, check=False)
    names = dict.fromkeys(log.stdout.split("\n"))
    return {ROOT / name: i for i, name in enumerate(names)}


class Lint:
    def __init__(self, build, quick, minutes):
        self.build = build
        self.quick = quick
        self.end = time.monotonic() + 60 * minutes
        self.state = (ROOT / ".clang-tidy").read_bytes() + subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
        self.unchecked = 0
        CACHE.mkdir(parents=True, exist_ok=True)

    def stamp(self, source, command, quick):
        """The file that exists when the source passed as it is now. Clones share it: the digest does not depend on their folder."""
        state = hashlib.sha256(self.state + str(quick).encode() + command.replace(str(ROOT), "").encode())
        for path in read_files(source):
            state.update(str(path.relative_to(ROOT)).encode() + path.read_bytes())
        return CACHE / state.hexdigest()

    def sources(self, folders):
        """(source, command) of each source below the folders that has not passed as it is now."""
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            source = pathlib.Path(entry["file"])
            if is_test(source) or not any(source.is_relative_to(folder) for folder in folders):
                continue
            stamp = self.stamp(source, entry["command"], self.quick)
            if stamp.exists():
                stamp.touch()
            else:
                yield source, entry["command"]

    def check(self, source, command):
        """The findings in one source; empty when there are none or no time is left."""
        if time.monotonic() > self.end:
            self.unchecked += 1
            return ""
        checks = QUICK_CHECKS if self.quick else ""
        stamps = [self.stamp(source, command, quick) for quick in {True, self.quick}]  # who passes all, passes the quick ones
        done = subprocess.run(["clang-tidy", "-p", self.build, "--quiet", f"--checks={checks}", source],
                              capture_output=True, text=True, check=False)
        if done.returncode != 0:
            return done.stdout or done.stderr
        for stamp in stamps:
            stamp.touch()
        return ""


def remove_old_stamps():
    for stamp in CACHE.iterdir():
        if stamp.stat().st_mtime < time.time() - CACHE_DAYS * 86400:
            stamp.unlink(missing_ok=True)


def print_new(text, known):
    """Print the findings that are not known yet: a header is seen from many sources."""
    findings = re.split(r"\n(?=/\S+:\d+:\d+: (?:error|warning):)", text.strip())
    for finding in findings:
        if finding and finding not in known:
            known.add(finding)
            print(finding, flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folders", type=pathlib.Path, nargs="*", default=FOLDERS)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--minutes", type=float, default=600)
    arguments = parser.parse_intermixed_args()
    lint = Lint(arguments.build.resolve(), arguments.quick, arguments.minutes)
    latest = latest_sources()
    waiting = sorted(lint.sources([folder.resolve() for folder in arguments.folders]), key=lambda item: latest.get(item[0], len(latest)))
    print(f"clang-tidy: {len(waiting)} sources to check", flush=True)
    known = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for text in pool.map(lambda item: lint.check(*item), waiting):
            print_new(text, known)
    if lint.unchecked > 0:
        print(f"clang-tidy: no time for {lint.unchecked} sources", flush=True)
    remove_old_stamps()
    return 1 if known else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Run clang-tidy over the sources of a build folder: tidy.py BUILD [FOLDER...]

BUILD holds compile_commands.json and the precompiled headers (preset tidy). FOLDER limits the run to sources below it.
A source that passed is not checked again until it, a header that it includes, its command or .clang-tidy changes:
BUILD/tidy holds one file per passed source, which contains the digest of all of these.
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


def digest(source, command):
    state = hashlib.sha256((ROOT / ".clang-tidy").read_bytes() + command.encode())
    for path in read_files(source):
        state.update(path.read_bytes())
    return state.hexdigest()


def stamp_of(build, source):
    return build / "tidy" / (str(source.relative_to(ROOT)).replace("/", "__") + ".passed")


def check(build, source, passed):
    """The findings in one source; empty when there are none, and then its stamp is written."""
    done = subprocess.run(["clang-tidy", "-p", build, "--quiet", source], capture_output=True, text=True, check=False)
    if done.returncode == 0:
        stamp = stamp_of(build, source)
        stamp.parent.mkdir(exist_ok=True)
        stamp.write_text(passed)
        return ""
    return done.stdout or done.stderr


def sources(build, folders):
    """(source, digest) of each source that has to be checked."""
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        if source.is_relative_to(build) or not any(source.is_relative_to(folder) for folder in folders):
            continue
        passed = digest(source, entry["command"])
        stamp = stamp_of(build, source)
        if not stamp.exists() or stamp.read_text() != passed:
            yield source, passed


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    waiting = dict(sources(build, [pathlib.Path(name).resolve() for name in sys.argv[2:]] or [ROOT]))
    print(f"clang-tidy: {len(waiting)} sources to check", flush=True)
    findings = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for text in pool.map(lambda item: check(build, *item), waiting.items()):
            findings |= set(re.split(r"\n(?=/\S+:\d+:\d+: (?:error|warning):)", text.strip()))  # a header is seen many times
    findings.discard("")
    print("\n".join(sorted(findings)))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())

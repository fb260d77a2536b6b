#!/usr/bin/python3
"""Measure how much of codecs/ and io/ the inputs of the fuzz targets reach: coverage.py [--lines] [FOLDER...]

Builds the replay program of each target with the preset "coverage" and runs it once over fuzz/seeds, fuzz/found, what
"./dev fuzz" has found since (build/fuzz/corpus), and small files of the corpus of real files. Prints one row
for each folder of sources: all of codecs and io, headers too, but tests and sources for Windows. --lines adds the lines
that no input reaches. With folders, only their rows are printed. Exit status: 1 if fewer than 85 % of the lines of all of
these sources are reached, or if a program fails,
or if no program contains one of the sources.
"""
import argparse
import collections
import itertools
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/coverage"
PROFILES = BUILD / "profiles"
FOLDERS = ["codecs", "io"]
ASKED_SCORE = 0.85
# Small files of the corpus that are inputs of a target, after the bytes that choose its options.
DATA_SETS = ("*.sas7bdat", "*.sav", "*.por", "*.dta", "*.xpt")
CORPUS_FILES = {"packed": {"archives/gz/*": b"", "archives/Z/*": b""}, "rar": {"archives/rar/*": b""}, "zip": {"archives/zip/*": b""},
                "biff": {"xls/*.xls": b""}, "dbf": {"dbf/*.dbf": bytes(3)}, "parquet": {"parquet/*.parquet": bytes(1)},
                "document": {"docx/*.docx": bytes([12]), "pptx/*.pptx": bytes([29])},
                "stat_check": {f"stat/**/{pattern}": bytes([i]) for i, pattern in enumerate(DATA_SETS)},
                "stat_read": {f"stat/**/{pattern}": bytes([i + 24]) for i, pattern in enumerate(DATA_SETS)},
                "xlsx_read": {"xlsx/*.xlsx": bytes(1)}}
MAX_CORPUS_BYTES = 100_000


def targets():
    return sorted(path.name.removesuffix("_fuzz.cpp") for path in (ROOT / "fuzz").rglob("*_fuzz.cpp"))


def build():
    subprocess.run(["cmake", "--preset", "coverage"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count()))
    programs = [f"{target}_fuzz_replay" for target in targets()]
    subprocess.run(["cmake", "--build", BUILD, "-j", jobs, "--target", *programs], check=True, stdout=subprocess.DEVNULL)


def corpus_files(target):
    """A folder with the small files of the corpus as inputs of the target."""
    corpus = pathlib.Path(os.environ.get("CORVANTA_CORPUS", ROOT.parent / "shared/corpus"))
    inputs = PROFILES / f"{target}.corpus"
    inputs.mkdir(parents=True, exist_ok=True)
    for old in inputs.iterdir():
        old.unlink()
    for pattern, options in CORPUS_FILES.get(target, {}).items():
        for path in corpus.glob(pattern):
            if path.is_file() and path.stat().st_size < MAX_CORPUS_BYTES:
                (inputs / path.name).write_bytes(options + path.read_bytes())
    return inputs


def replay(target):
    """The profile of one target; None if its program failed."""
    profile = PROFILES / f"{target}.profraw"
    folders = [ROOT / "fuzz/seeds" / target, ROOT / "fuzz/found" / target, ROOT / "build/fuzz/corpus" / target, corpus_files(target)]
    done = subprocess.run([BUILD / f"bin/{target}_fuzz_replay", *folders], stdout=subprocess.DEVNULL, check=False,
                          env=os.environ | {"LLVM_PROFILE_FILE": str(profile), "QT_QPA_PLATFORM": "offscreen"})
    if done.returncode != 0:
        print(f"the replay of {target} failed")
        return None
    return profile


def is_counted(source):
    return source.parts[0] in FOLDERS and not source.stem.endswith(("_test", "_windows"))


def source_of(name):
    """A source, relative to the root. ccache makes names relative to the build folder, which may be that of another clone."""
    path = pathlib.Path(os.path.normpath(BUILD / name.rpartition("/build/coverage/")[2]))
    return path.relative_to(ROOT) if path.is_relative_to(ROOT) else path


def count_lines(profiles):
    """The number of times each line of code ran, by source."""
    merged = PROFILES / "all.profdata"
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", merged, *profiles], check=True)
    programs = itertools.chain.from_iterable(("-object", BUILD / f"bin/{target}_fuzz_replay") for target in targets())
    listed = subprocess.run(["llvm-cov", "export", "-format=lcov", "-instr-profile", merged, *list(programs)[1:]],
                            capture_output=True, text=True, check=True).stdout
    lines = {}
    for entry in listed.splitlines():
        kind, _, value = entry.partition(":")
        if kind == "SF":
            source = source_of(value)
            counts = lines.setdefault(source, {}) if is_counted(source) else {}
        elif kind == "DA":
            line, count = value.split(",")[:2]
            counts[int(line)] = max(int(count), counts.get(int(line), 0))
    return lines


def sources_without_target(lines):
    """Sources that no program contains: their lines cannot be counted."""
    sources = [path.relative_to(ROOT) for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*.cpp"))]
    return [source for source in sources if is_counted(source) and source not in lines]


def ranges(numbers):
    """Numbers as text, with runs in short form: 3, 7-9."""
    runs = itertools.groupby(enumerate(numbers), lambda pair: pair[1] - pair[0])
    found = [[number for _, number in run] for _, run in runs]
    return ", ".join(f"{run[0]}-{run[-1]}" if len(run) > 1 else str(run[0]) for run in found)


def print_row(name, all_lines, reached):
    print(f"{name:40} {all_lines:7} {reached:7} {100 * reached / max(all_lines, 1):6.1f} %")


def print_lines(source, counts):
    missed = sorted(line for line, count in counts.items() if count == 0)
    if missed:
        print(f"    {source.name}: {ranges(missed)}")


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--lines", action="store_true")
    parser.add_argument("folders", nargs="*", metavar="FOLDER")
    arguments = parser.parse_args()
    shown = [folder.rstrip("/") for folder in arguments.folders] or FOLDERS
    build()
    PROFILES.mkdir(exist_ok=True)
    profiles = [replay(target) for target in targets()]
    lines = count_lines([profile for profile in profiles if profile])
    by_folder = collections.defaultdict(list)
    for source, counts in sorted(lines.items()):
        by_folder[source.parent].append((source, counts))
    total = reached = 0
    print(f"{'folder':40} {'lines':>7} {'reached':>7}")
    for folder, sources in by_folder.items():
        all_here = sum(len(counts) for _, counts in sources)
        reached_here = sum(count > 0 for _, counts in sources for count in counts.values())
        total, reached = total + all_here, reached + reached_here
        if any(folder.is_relative_to(one) for one in shown):
            print_row(str(folder), all_here, reached_here)
            for source, counts in sources if arguments.lines else []:
                print_lines(source, counts)
    print_row("all of " + " and ".join(FOLDERS), total, reached)
    unused = sources_without_target(lines)
    for source in unused:
        print(f"no fuzz target uses {source}")
    return 0 if None not in profiles and not unused and reached >= ASKED_SCORE * total else 1


if __name__ == "__main__":
    sys.exit(main())

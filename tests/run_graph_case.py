#!/usr/bin/python3
"""Run one graph case: run_graph_case.py CORVANTA CASE_FOLDER

A case is a folder with case.graph, its inputs, and:
  args                 more arguments for "corvanta run", one per line (optional)
  before/              files in the output folder before the run (optional)
  expected/status      the exit status (absent: 0)
  expected/log.jsonl   the messages (absent: none), in the order of each action
  expected/out/        the files in the output folder after the run: all of them. A package (.xlsx, .docx,
                       .pptx) is a folder with its members.

"{case}" and "{out}" are the two folders in messages, arguments and .csv files. CORVANTA_UPDATE_GOLDEN=1 rewrites expected/ from
what the run did: read the difference before committing it.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import zipfile

PACKAGES = {".xlsx", ".xlsm", ".docx", ".pptx"}
LARGEST_PACKAGE = 50_000_000


def content_of(folder):
    """All files below a folder by name; packages are split into their members."""
    found = {}
    for path in sorted(folder.rglob("*")):
        if not path.is_file():
            continue
        name = str(path.relative_to(folder))
        if path.suffix in PACKAGES and path.stat().st_size < LARGEST_PACKAGE and zipfile.is_zipfile(path):
            with zipfile.ZipFile(path) as package:
                assert package.testzip() is None, f"{name}: bad checksum"
                for member in package.namelist():
                    found[f"{name}/{member}"] = package.read(member)
        else:
            found[name] = path.read_bytes()
    return found


def messages_of(stderr, names):
    """Messages by action, with the two folders replaced."""
    lines = []
    for line in stderr.splitlines():
        for folder, placeholder in names:
            line = line.replace(json.dumps(folder)[1:-1], placeholder)
        lines.append(json.loads(line))
    return sorted(lines, key=lambda message: message["action"])


def run_case(corvanta, case, out):
    before = case / "before"
    if before.is_dir():
        shutil.copytree(before, out, dirs_exist_ok=True)
    args_file = case / "args"
    args = args_file.read_text().splitlines() if args_file.exists() else []
    args = [a.replace("{case}", str(case)).replace("{out}", str(out)) for a in args]
    done = subprocess.run(
        [corvanta, "run", str(case / "case.graph"), "--out-dir", str(out), "--log-format", "json", *args],
        capture_output=True, text=True, timeout=300, check=False)
    log = messages_of(done.stderr, [(str(out), "{out}"), (str(case), "{case}")])
    files = content_of(out)
    for name in files:
        if name.endswith(".csv"):
            files[name] = files[name].replace(os.fsencode(case), b"{case}").replace(os.fsencode(out), b"{out}")
    return done.returncode, log, files


def update(expected, status, log, files):
    shutil.rmtree(expected, ignore_errors=True)
    expected.mkdir()
    if status != 0:
        (expected / "status").write_text(f"{status}\n")
    if log:
        (expected / "log.jsonl").write_text("".join(json.dumps(m, ensure_ascii=False) + "\n" for m in log))
    for name, content in files.items():
        path = expected / "out" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def first_difference(expected, actual):
    at = next((i for i, (a, b) in enumerate(zip(expected, actual)) if a != b), min(len(expected), len(actual)))
    begin = max(at - 60, 0)
    return f"at byte {at}:\n    expected ...{expected[begin:at + 60]!r}\n    actual   ...{actual[begin:at + 60]!r}"


def compare(expected, status, log, files):
    problems = []
    status_file = expected / "status"
    wanted_status = int(status_file.read_text()) if status_file.exists() else 0
    if status != wanted_status:
        problems.append(f"exit status {status}, expected {wanted_status}")
    log_file = expected / "log.jsonl"
    wanted_log = [json.loads(line) for line in log_file.read_text().splitlines()] if log_file.exists() else []
    if log != wanted_log:
        problems.append(f"messages\n    expected {wanted_log}\n    actual   {log}")
    out = expected / "out"
    wanted = {str(p.relative_to(out)): p.read_bytes() for p in out.rglob("*") if p.is_file()} if out.exists() else {}
    for name in sorted(wanted.keys() | files.keys()):
        if name not in files:
            problems.append(f"{name} is missing")
        elif name not in wanted:
            problems.append(f"{name} should not be there")
        elif files[name] != wanted[name]:
            problems.append(f"{name} differs {first_difference(wanted[name], files[name])}")
    return problems


def main():
    corvanta, case = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    with tempfile.TemporaryDirectory(prefix="corvanta_case_") as folder:
        result = run_case(corvanta, case, pathlib.Path(folder).resolve())
    if os.environ.get("CORVANTA_UPDATE_GOLDEN") == "1":
        update(case / "expected", *result)
        return 0
    problems = compare(case / "expected", *result)
    for problem in problems:
        print(f"{case.name}: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Inputs of gigabytes: large_input_test.py CORVANTA

head and schema are fast and need little memory; an interrupted conversion leaves no target. What must fit in memory is refused when it
is larger than 1 GiB.
"""
import json
import os
import pathlib
import random
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time

CORVANTA = str(pathlib.Path(sys.argv[1]).resolve())
HUGE = 4 << 30
LIMIT = 1 << 30
SOURCE = pathlib.Path(__file__).parents[2]
SECONDS = 2
MEBIBYTES = 150


def make_huge(folder):
    """Rows, and then a hole up to 4 GiB, which takes seconds to read."""
    rows = range(20_000)
    files = {
        "in.csv": "id,text\n" + "".join(f"{i},text {i}\n" for i in rows),
        "in.jsonl": "".join(json.dumps({"id": i, "text": f"text {i}", "list": [{"x": 1}, {"x": 2}]}) + "\n" for i in rows),
        "in.json": '{"total":1,"rows":[' + ",".join(json.dumps({"id": i, "text": f"text {i}"}) for i in rows) + ",",
        "in.xml": "<data>" + "".join(f"<row id='{i}'><text>text {i}</text></row>" for i in rows),
    }
    for name, text in files.items():
        (folder / name).write_text(text)
    header = struct.pack("<B3xIHH20x", 3, HUGE // 17, 65, 17) + b"TEXT".ljust(11, b"\0") + b"C" + bytes(4) + b"\x10" + bytes(15) + b"\r"
    (folder / "in.dbf").write_bytes(header + b"".join(b" text %-10d " % i for i in rows))
    for name in [*files, "in.dbf"]:
        os.truncate(folder / name, HUGE)
    return [*files, "in.dbf"]


def check_answers(folder):
    for name in make_huge(folder):
        for command in ("head", "schema"):
            begun = time.monotonic()
            process = subprocess.Popen([CORVANTA, command, name], cwd=folder, stdout=subprocess.PIPE)
            lines = process.stdout.read().splitlines()
            _, status, usage = os.wait4(process.pid, 0)
            seconds = time.monotonic() - begun
            assert status == 0 and len(lines) >= (12 if command == "head" else 1), (command, name, status, lines)
            assert seconds < SECONDS, f"{command} {name} took {seconds:.1f} s"
            assert usage.ru_maxrss < MEBIBYTES << 10, f"{command} {name} took {usage.ru_maxrss >> 10} MiB"


def check_interrupts(folder):
    """Ctrl-C while the input is sampled, measured and converted."""
    (folder / "long.csv").write_text("k,t\n" + "".join(f"{i},text {i}\n" for i in range(1_000_000)))
    choice = random.Random(7)
    interrupted = 0
    targets = ["out.csv", "out.json", "out.xml", "out.parquet", "out.xlsx"]
    complete = {}
    for target in targets:
        subprocess.run([CORVANTA, "convert", "long.csv", target], cwd=folder, stderr=subprocess.DEVNULL, check=True)
        complete[target] = (folder / target).stat().st_size
        (folder / target).unlink()
    for target in targets * 3 + ["out.sas7bdat"]:
        process = subprocess.Popen([CORVANTA, "convert", "long.csv", target], cwd=folder, stderr=subprocess.DEVNULL)
        time.sleep(choice.uniform(0.05, 0.3))
        process.send_signal(signal.SIGINT)
        status = process.wait(timeout=30)
        left = sorted(path.name for path in folder.iterdir() if path.name.startswith("out"))
        if status == 0:
            assert left == [target], left
            (folder / target).unlink()
        else:
            # A signal that comes before the command has begun ends the program.
            assert status in (130, -signal.SIGINT), status
            # One that comes after the file got its name finds it complete.
            sizes = {name: (folder / name).stat().st_size for name in left}
            assert not sizes or sizes == {target: complete.get(target)}, sizes
            for name in left:
                (folder / name).unlink()
            interrupted += 1
    assert interrupted > 0, "no conversion was interrupted: the table is too small"


def check_refusals(folder):
    """A record, and a memo file that is read whole."""
    (folder / "in.csv").write_text("a")
    for source, name in (("people.dbf", "people.dbf"), ("PEOPLE.Fpt", "people.fpt")):
        shutil.copy(SOURCE / "tests/graphs/read_xbf/memo_in_ram" / source, folder / name)
    for name, element, message in (
            ("in.csv", "<readCSV fileName='in.csv'/>", f"Error: readCSV: file '{folder}/in.csv', line 1: the record is longer than 1 GiB\n"),
            ("people.fpt", "<ReadXBF fileName='people.dbf' dbtInRam='1'/>",
             f"ERROR: the memo file '{folder}/people.fpt' is too large to be kept in memory\n")):
        os.truncate(folder / name, LIMIT + (2 << 20))
        (folder / "case.graph").write_text(f"<graph version='4.11'><action id='in'>{element}</action></graph>")
        # Scanned again with each read, the record would take minutes.
        done = subprocess.run([CORVANTA, "run", "case.graph"], cwd=folder, stderr=subprocess.PIPE, text=True, check=False, timeout=60)
        assert (done.returncode, done.stderr) == (1, f"[in] {message}"), done
        (folder / name).unlink()


def main():
    with tempfile.TemporaryDirectory(prefix="corvanta_large_") as name:
        folder = pathlib.Path(name)
        check_answers(folder)
        check_interrupts(folder)
        check_refusals(folder.resolve())


main()

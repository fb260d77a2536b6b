#!/usr/bin/python3
"""Time of a batch, JSON to Parquet: batch.py CORVANTA [FILES [ROWS [TIMES]]]

Runs a plain loop of "corvanta run", "batch" with one local process, also on one core only, and with two, in turn, and prints the medians of
the times and of the processor times. FILES is 1000 and ROWS 20000 without arguments (2 GB in a temporary folder). Wall times mean something
on an otherwise idle machine only.
"""
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

GRAPH = """<graph version='4.12'>
  <action id='in'><readJSON fileName='${input}'><Level initialPath=''>COLUMNS</Level></readJSON></action>
  <action id='out'><writeParquet file='${inputStem}.parquet'/></action>
  <link from='in:0' to='out:0'/>
</graph>
"""
COLUMNS = ["id", "name", "price", "day", "note"]


def make_inputs(folder, files, rows):
    text = json.dumps([{"id": row, "name": f"customer {row * 7919 % 5000}", "price": row * 37 % 10000 / 100,
                        "day": f"2026-{row % 12 + 1:02}-{row % 28 + 1:02}", "note": "some text " * (row % 3)} for row in range(rows)])
    (folder / "in").mkdir()
    for i in range(files):
        (folder / f"in/f{i:05}.json").write_text(text.replace('"id": 0,', f'"id": {i},', 1), encoding="utf-8")
    (folder / "g.graph").write_text(GRAPH.replace("COLUMNS", "".join(f"<e name='{name}' path='{name}'/>" for name in COLUMNS)), encoding="utf-8")


def plain_loop(corvanta, folder):
    for path in sorted((folder / "in").iterdir()):
        subprocess.run([corvanta, "run", "g.graph", "--out-dir", "out", "-q", "--set", f"input={path}", "--set", f"inputStem={path.stem}"],
                       cwd=folder, check=True)


def batch(workers, *prefix):
    return lambda corvanta, folder: subprocess.run(
        [*prefix, corvanta, "batch", "g.graph", "--inputs", "in/*.json", "--out-dir", "out", "-q", "--max-running", str(workers)], cwd=folder, check=True)


def processor_seconds():
    times = os.times()
    return times.children_user + times.children_system


def seconds_of(job, corvanta, folder):
    """Wall time and processor time."""
    shutil.rmtree(folder / "out", ignore_errors=True)
    begin, used = time.monotonic(), processor_seconds()
    job(corvanta, folder)
    return time.monotonic() - begin, processor_seconds() - used


def main(corvanta, files=1000, rows=20000, times=3):
    jobs = {"plain loop": plain_loop, "batch, 1 process": batch(1), "batch, 1 process on 1 core": batch(1, "taskset", "-c", "0"),
            "batch, 2 processes": batch(2)}
    with tempfile.TemporaryDirectory(prefix="corvanta_bench_") as name:
        folder = pathlib.Path(name)
        make_inputs(folder, int(files), int(rows))
        found = {title: [] for title in jobs}
        for _ in range(int(times)):
            for title, job in jobs.items():
                found[title].append(seconds_of(job, corvanta, folder))
    medians = {title: [statistics.median(values) for values in zip(*pairs)] for title, pairs in found.items()}
    wall = {title: seconds for title, (seconds, _) in medians.items()}
    for title, (seconds, used) in medians.items():
        print(f"{title:26} {seconds:8.2f} s  {seconds / int(files) * 1000:7.2f} ms per file, of the processor {used / int(files) * 1000:7.2f} ms: "
              f"{used / seconds:.2f} cores")
    print(f"1 process / plain loop: {wall['batch, 1 process'] / wall['plain loop']:.2f}, 2 processes / 1: "
          f"{wall['batch, 2 processes'] / wall['batch, 1 process']:.2f}, 2 processes / 1 on 1 core: "
          f"{wall['batch, 2 processes'] / wall['batch, 1 process on 1 core']:.2f}")


if __name__ == "__main__":
    main(str(pathlib.Path(sys.argv[1]).resolve()), *sys.argv[2:])

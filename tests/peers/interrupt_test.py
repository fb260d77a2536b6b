#!/usr/bin/python3
"""Ctrl-C at any moment: interrupt_test.py CORVANTA

A run that is interrupted ends with 130 within a second (or had ended before, with 0), the old target is whole and nothing is
left beside it.
"""
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

RUNS = 25
GRAPH = """<graph version='4.11'>
  <action id='in'><readCSV fileName='in.csv' types='K,F,U'/></action>
  <action id='book'><writeExcel fileNameDestination='book.xlsx'/></action>
  <action id='text'><writeCSV fileName='out.csv'/></action>
  <link from='in:0' to='book:0'/>
  <link from='book:0' to='text:0'/>
</graph>
"""


def main():
    choice = random.Random(5)
    with tempfile.TemporaryDirectory(prefix="corvanta_interrupt_") as name:
        folder = pathlib.Path(name)
        (folder / "case.graph").write_text(GRAPH)
        (folder / "in.csv").write_text("k,f,t\n" + "".join(f"{i},{i / 8},text {i}\n" for i in range(400_000)))
        interrupted = 0
        for _ in range(RUNS):
            for target in ("book.xlsx", "out.csv"):
                (folder / target).write_text("old")
            process = subprocess.Popen([sys.argv[1], "run", str(folder / "case.graph")])
            while process.poll() is None and not list(folder.glob("*_tmp_*")):
                time.sleep(0.001)  # the run has not begun: the program itself is being loaded
            time.sleep(choice.uniform(0, 0.2))
            process.send_signal(signal.SIGINT)
            sent = time.monotonic()
            status = process.wait(timeout=30)
            assert status in (0, 130), status
            assert time.monotonic() - sent < 1 or status == 0, "the run did not end within a second"
            names = sorted(path.name for path in folder.iterdir())
            assert names == ["book.xlsx", "case.graph", "in.csv", "out.csv"], names
            if status == 130:
                interrupted += 1
                for target in ("book.xlsx", "out.csv"):
                    content = (folder / target).read_bytes()
                    assert content == b"old" or content[:2] in (b"PK", b"k,"), f"{target} is half-written"
        assert interrupted > 0, "no run was interrupted: the table is too small"
    print(f"{interrupted} of {RUNS} runs were interrupted")


main()

"""Stops readStat at random moments: the command ends soon, and leaves no file. Usage: stat_stop_test.py CORVANTA DATA_SET [STOPS]

The data set is read again and again through pin 0, with the smallest buffer, so that stops meet every state of the two threads.
"""
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

GRAPH = """<graph version='4.11'>
  <action id='names'><readCSV fileName='names.csv'/></action>
  <action id='table'><readStat fileNameFromPin='1' bufferSize='1' fileName=''/></action>
  <action id='csv'><writeCSV fileName='rows.csv'/></action>
  <link from='names:0' to='table:0'/>
  <link from='table:0' to='csv:0'/>
</graph>
"""
LONGEST_RUN = 0.25  # seconds before the stop
LONGEST_END = 20    # seconds after it


def stop_once(corvanta, folder, delay):
    process = subprocess.Popen([corvanta, "run", "stop.graph", "--log-format", "json"], cwd=folder, stderr=subprocess.PIPE)
    time.sleep(delay)
    process.send_signal(signal.SIGINT)
    _, log = process.communicate(timeout=LONGEST_END)
    assert process.returncode in (130, 0, -signal.SIGINT), (process.returncode, log)
    assert b'"severity": "error"' not in log and b'"level":1' not in log, log
    # A stop before the program handles signals leaves nothing either.
    left = {path.name for path in folder.iterdir()} - {"stop.graph", "names.csv", "rows.csv"}
    assert not left and (process.returncode == 0 or not (folder / "rows.csv").exists()), left
    (folder / "rows.csv").unlink(missing_ok=True)


def main():
    corvanta, data_set = sys.argv[1:3]
    stops = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
    chance = random.Random(1)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "stop.graph").write_text(GRAPH)
        (folder / "names.csv").write_text("name\n" + f"{data_set}\n" * 20000)
        for _ in range(stops):
            stop_once(corvanta, folder, chance.random() * LONGEST_RUN)


if __name__ == "__main__":
    main()

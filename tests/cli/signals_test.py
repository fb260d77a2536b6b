#!/usr/bin/python3
"""Do the signals that end a program end a run cleanly? signals_test.py CORVANTA

A run that waits for a pipe, or writes, ends soon after the first signal with 128 + its number, and leaves no file.
"""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

CORVANTA = sys.argv.pop(1)
SIGNALS = [signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM]
STOP_SECONDS = 1
WAITS = 10  # seconds for a run to get where it is interrupted

READERS = [
    "<readCSV fileName='pipe.csv'/>", "<ReadXBF fileName='pipe.dbf'/>", "<readParquet fileName='pipe.parquet'/>",
    "<readJSON fileName='pipe.json'><Level initialPath=''><e name='a' path='x'/></Level></readJSON>",
    "<readXML fileName='pipe.xml'><Level initialPath='x'><e name='a' path='x'/></Level></readXML>",
]
WRITERS = [
    "<writeCSV fileName='pipe.csv'/>", "<writeParquet file='pipe.parquet'/>", "<writeJSON fileName='pipe.json'/>",
    "<writeXML fileName='pipe.xml'/>", "<writeSAS fileName='pipe.sas7bdat' autoWidth='1'/>", "<writeSASXPT fileName='pipe.xpt' autoWidth='1'/>",
]


def pipe_of(element):
    return element.split("'")[1]


class Signals(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_signals_"))
        self.addCleanup(shutil.rmtree, self.folder)

    def make_graph(self, reader, writer):
        (self.folder / "case.graph").write_text(
            f"<graph version='4.11'><action id='in'>{reader}</action><action id='out'>{writer}</action>"
            "<link from='in:0' to='out:0'/></graph>")

    def start(self, *words, **more):
        return subprocess.Popen([CORVANTA, *words], cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **more)

    def wait_until(self, condition):
        end = time.monotonic() + WAITS
        while not condition():
            self.assertLess(time.monotonic(), end, "the run did not get there")
            time.sleep(0.002)

    def end_by(self, process, number, what, target=None):
        """Send the signal; the process ends within a second with the status of the signal. A run that has just completed `target` may have
        ended before; the target is then removed."""
        with process:
            process.send_signal(number)
            sent = time.monotonic()
            try:
                _, messages = process.communicate(timeout=10)
            except subprocess.TimeoutExpired:
                process.kill()
                self.fail(f"{what}: not ended by signal {number}")
        is_complete = target is not None and target in self.files()
        # An interrupted run says what it has kept, and schema that it examined only the first rows.
        messages = "".join(line for line in messages.splitlines(True)
                           if not line.startswith("Warning: interrupted; ") and not line.startswith("Info: The types of the columns are"))
        self.assertIn((process.returncode, messages), [(128 + number, ""), (0, "")][:1 + is_complete], what)
        if is_complete:
            (self.folder / target).unlink()
        self.assertLess(time.monotonic() - sent, STOP_SECONDS, what)

    def files(self):
        return {path.name for path in self.folder.iterdir()} - {"case.graph", "in.csv"}

    @staticmethod
    def has_ended(process):
        return process.poll() is not None

    @staticmethod
    def catches_signals(process):
        caught = next(line for line in pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="utf-8").splitlines()
                      if line.startswith("SigCgt:"))
        return int(caught.split()[1], 16) >> (signal.SIGTERM - 1) & 1 == 1

    @staticmethod
    def threads_of(process):
        return len(os.listdir(f"/proc/{process.pid}/task"))

    def test_a_run_that_opens_or_reads_a_pipe(self):
        for reader in READERS:
            self.make_graph(reader, "<writeParquet file='out.parquet'/>")
            os.mkfifo(self.folder / pipe_of(reader))
            for number in SIGNALS:
                for has_writer in (False, True):
                    process = self.start("run", "case.graph")
                    pipe = os.open(self.folder / pipe_of(reader), os.O_RDWR) if has_writer else None
                    # the thread that waits for signals; ReadXBF opens its file before other threads start
                    self.wait_until(lambda: self.threads_of(process) >= 2)
                    time.sleep(0.1)
                    self.end_by(process, number, f"{reader}, writer: {has_writer}")
                    if has_writer:
                        os.close(pipe)
                    self.assertEqual(self.files(), {pipe_of(reader)})
            (self.folder / pipe_of(reader)).unlink()

    def test_a_run_that_writes_a_pipe_that_nobody_reads(self):
        (self.folder / "in.csv").write_text("t\n" + "text\n" * 200_000)
        for writer in WRITERS:
            self.make_graph("<readCSV fileName='in.csv'/>", writer)
            os.mkfifo(self.folder / pipe_of(writer))
            for has_reader in (False, True):
                process = self.start("run", "case.graph")
                pipe = os.open(self.folder / pipe_of(writer), os.O_RDWR) if has_reader else None
                self.wait_until(lambda: self.has_ended(process) or self.threads_of(process) >= 2)
                time.sleep(0.1)
                self.end_by(process, signal.SIGHUP, f"{writer}, reader: {has_reader}")
                if has_reader:
                    os.close(pipe)
                self.assertEqual(self.files(), {pipe_of(writer)})
            (self.folder / pipe_of(writer)).unlink()

    def test_rows_through_pipes_are_not_lost(self):
        text = "t\n" + "".join(f"text {i}\n" for i in range(50_000))
        self.make_graph("<readCSV fileName='in'/>", "<writeCSV fileName='out'/>")
        os.mkfifo(self.folder / "in")
        os.mkfifo(self.folder / "out")
        with self.start("run", "case.graph") as process:
            def feed():
                with open(self.folder / "in", "w", encoding="utf-8") as pipe:
                    for at in range(0, len(text), 70_001):
                        pipe.write(text[at:at + 70_001])
                        pipe.flush()
                        time.sleep(0.005)
            feeder = threading.Thread(target=feed)
            feeder.start()
            with open(self.folder / "out", encoding="utf-8") as pipe:
                self.assertEqual(pipe.read(), text)
            feeder.join()
        self.assertEqual(process.returncode, 0)

    def test_a_reader_of_the_output_that_goes_away_is_an_error(self):
        (self.folder / "in.csv").write_text("t\n" + "text\n" * 200_000)
        self.make_graph("<readCSV fileName='in.csv'/>", "<writeCSV fileName='pipe'/>")
        os.mkfifo(self.folder / "pipe")
        with self.start("run", "case.graph") as process:
            with open(self.folder / "pipe", encoding="utf-8") as pipe:
                pipe.read(10)
            messages = process.stderr.read()
        self.assertEqual(process.returncode, 1)
        self.assertIn("pipe", messages)

    def test_convert_leaves_no_temporary_file(self):
        (self.folder / "in.csv").write_text("t,u\n" + "some text,more of it\n" * 400_000)
        for name in ("out.parquet", "out.xlsx", "out.json", "out.xml", "out.csv"):
            for number in SIGNALS:
                process = self.start("convert", "in.csv", name)
                self.wait_until(lambda: self.files() or self.has_ended(process))
                self.end_by(process, number, name, name)
                self.assertEqual(self.files(), set())

    def test_convert_that_looks_at_its_input(self):
        os.mkfifo(self.folder / "pipe.csv")
        for command in (["convert", "pipe.csv", "out.parquet"], ["head", "pipe.csv"], ["schema", "pipe.csv"]):
            for number in SIGNALS:
                process = self.start(*command)
                self.wait_until(lambda: self.catches_signals(process))
                time.sleep(0.1)
                self.end_by(process, number, command)
                self.assertEqual(self.files(), {"pipe.csv"})

    def test_an_ignored_signal_stays_ignored(self):
        os.mkfifo(self.folder / "pipe.csv")
        self.make_graph(READERS[0], "<writeCSV fileName='out.csv'/>")
        for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT):
            with self.start("run", "case.graph", preexec_fn=lambda: signal.signal(number, signal.SIG_IGN)) as process:
                with open(self.folder / "pipe.csv", "w", encoding="utf-8") as pipe:
                    self.wait_until(lambda: self.threads_of(process) >= 4)
                    process.send_signal(number)
                    time.sleep(0.2)
                    pipe.write("a\n1\n")
            self.assertEqual(process.returncode, 0)
            self.assertEqual((self.folder / "out.csv").read_text(), "a\n1\n")

    def test_a_signal_that_is_sent_twice_at_once_is_one(self):
        (self.folder / "in.csv").write_text("t,u\n" + "some text,more of it\n" * 400_000)
        self.make_graph("<readCSV fileName='in.csv'/>", "<writeExcel fileNameDestination='out.xlsx'/>")
        for number in SIGNALS:
            process = self.start("run", "case.graph")
            self.wait_until(lambda: self.files() or self.has_ended(process))
            process.send_signal(number)
            time.sleep(0.001)
            self.end_by(process, number, "twice", "out.xlsx")
            self.assertEqual(self.files(), set())


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""readJSON and readXML while something else happens: level_readers_test.py CORVANTA

What they say then is about what happened, and not about what the rest of the data would have held.
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

CORVANTA = sys.argv.pop(1)
LEVEL = "<Level initialPath='a'><e name='b' path='b'/><e name='never' path='never'/></Level>"
DOCUMENTS = {"XML": "<a><r><b>1</b></r></a>", "JSON": '{"a":[{"b":1}]}'}


class Runs(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="corvanta_levels_")
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def start(self, graph):
        (self.folder / "case.graph").write_text(f"<graph version='4.11'>{graph}</graph>")
        process = subprocess.Popen([CORVANTA, "run", str(self.folder / "case.graph"), "--log-format", "json"],
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.kill)
        return process

    def has_open(self, process, path):
        try:
            return any(os.path.samefile(link, path) for link in pathlib.Path(f"/proc/{process.pid}/fd").iterdir())
        except OSError:  # a file was closed, or the process ended
            return False

    def end(self, process):
        """(status, messages)"""
        _, lines = process.communicate(timeout=30)
        return process.returncode, [json.loads(line)["message"] for line in lines.splitlines()]

    def test_rows_that_fail_say_nothing_about_paths(self):
        os.mkfifo(self.folder / "rows.csv")
        for name, document in DOCUMENTS.items():
            process = self.start(
                f"<action id='rows'><readCSV fileName='rows.csv' types='K,U'/></action><action id='read'><read{name} "
                f"fileName='' fromInputPin='1' col{name}='doc'>{LEVEL}</read{name}></action>"
                "<link from='rows:0' to='read:0'/>")
            text = document.replace('"', '""')
            with open(self.folder / "rows.csv", "w", encoding="utf-8") as pipe:
                pipe.write("n,doc\n" + f'1,"{text}"\n' * 50_000)
                pipe.flush()
                time.sleep(0.5)  # the reader has used them up and waits
                pipe.write("no number,\n")
            status, messages = self.end(process)
            self.assertEqual((status, len(messages)), (1, 1), messages)
            self.assertIn("line 50002", messages[0])

    def test_references_that_stay_text_are_reported(self):
        rows = '<row a="x &co; y"><b>1</b></row>\n<row a="AT&T"><b>&co;&auml; a&b; c & d;</b></row>'
        (self.folder / "in").write_text(f'<!DOCTYPE r [<!ENTITY co "Company">]><r>{rows}</r>')
        read = "<readXML fileName='in' ignoreUnknownEntities='1'><Level initialPath='r'><e name='b' path='b'/></Level></readXML>"
        status, messages = self.end(self.start(f"<action id='read'>{read}</action>"))
        self.assertEqual((status, [message for message in messages if "entities" in message]), (0, [
            f"File '{self.folder}/in' has 4 references to unknown entities, which stay as they are (the declarations of a DTD are not read); "
            "the first is '&co;' in the text or tag at line 1, column 41\n"]), messages)

    def test_a_stopped_run_says_nothing_about_paths(self):
        for name, document in DOCUMENTS.items():
            (self.folder / "in").write_text(document * 4_000_000)
            results = []
            for delay in (0, 0.1, 0.2):
                process = self.start(f"<action id='read'><read{name} fileName='in'>{LEVEL}</read{name}></action>")
                while process.poll() is None and not self.has_open(process, self.folder / "in"):
                    time.sleep(0.001)
                time.sleep(delay)
                process.send_signal(signal.SIGINT)
                results.append(self.end(process))
            interrupted = (130, ["Warning: interrupted; no file was written"])
            self.assertIn(interrupted, results)
            ended = [result for result in results if result != interrupted]
            self.assertEqual([(status, len(messages)) for status, messages in ended], [(0, 1)] * len(ended))


if __name__ == "__main__":
    unittest.main()

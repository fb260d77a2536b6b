#!/usr/bin/python3
"""A module that throws or does not stop ends neither the program nor other modules: bad_module_test.py CORVANTA MODULE"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

CORVANTA, MODULE = sys.argv[1:3]
GRAPH = """<graph><action id='a'><bad does='%s'/></action><action id='in'><readCSV fileName='in.csv'/></action>
<action id='out'><writeCSV fileName='out.csv'/></action><link from='in:0' to='out:0'/></graph>"""


class BadModule(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        (self.folder / "in.csv").write_text("a\n1\n", encoding="utf-8")
        self.command = [CORVANTA, "run", "--log-format", "json", "--progress", "always", "--plugin-path", os.path.dirname(MODULE), "g.graph"]

    def graph(self, does):
        (self.folder / "g.graph").write_text(GRAPH % does, encoding="utf-8")

    def messages(self, text):
        return [(line["action"], line["message"]) for line in map(json.loads, text.splitlines()) if line.get("level") == 1]

    def run_graph(self, does):
        self.graph(does)
        done = subprocess.run(self.command, cwd=self.folder, capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(list(self.folder.glob("out.csv_*")), [])
        return done.returncode, self.messages(done.stderr)

    def test_what_an_action_throws_fails_the_run(self):
        for does, message in {"init": "Error: init throws\n", "run": "Error: the run function throws\n", "number": "Error: unknown failure\n",
                              "close": "Error: close throws\n", "prepare": "Error: the action has no run function\n"}.items():
            with self.subTest(does):
                self.assertEqual(self.run_graph(does), (1, [("a", message)]))
        self.assertEqual(self.run_graph("constructor"), (1, [("", "Error: cannot make the action 'bad': the constructor throws")]))
        self.assertEqual(self.run_graph("completion"), (0, []))
        self.assertTrue((self.folder / "out.csv").is_file())

    def test_what_wakeAll_throws_does_not_end_the_program(self):
        self.graph("wake")
        (self.folder / "in.csv").unlink()
        os.mkfifo(self.folder / "in.csv")
        with subprocess.Popen(self.command, cwd=self.folder, stderr=subprocess.PIPE, text=True) as process:
            time.sleep(0.5)
            process.send_signal(signal.SIGTERM)
            self.assertIn("Error: wakeAll throws", process.communicate(timeout=60)[1])
            self.assertEqual(process.returncode, 143)

    def test_action_that_does_not_stop_is_abandoned(self):
        self.graph("sleep")
        with subprocess.Popen(self.command, cwd=self.folder, stderr=subprocess.PIPE, text=True) as process:
            time.sleep(1)
            process.send_signal(signal.SIGTERM)
            errors = self.messages(process.communicate(timeout=60)[1])
            self.assertEqual(errors, [("a", "Error: the action 'a' (bad) has not stopped within 10 seconds and is abandoned\n")])
            self.assertEqual(process.returncode, 143)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["g.graph", "in.csv", "out.csv"])

    def test_module_that_fails_while_it_is_loaded_is_refused(self):
        for does, reason in {"object": "it failed while it was loaded: the plug-in object throws",
                             "initialise": "it failed while it was loaded: initialise throws",
                             "create": "it failed while it was loaded: createAction throws",
                             "number": "it failed while it was loaded",
                             "endless": "it failed while it was loaded: its list of actions does not end"}.items():
            done = subprocess.run([CORVANTA, "plugins", "--json", "--plugin-path", os.path.dirname(MODULE)], env={**os.environ, "CORVANTA_BAD_MODULE": does},
                                  capture_output=True, text=True, check=True, timeout=60)
            self.assertEqual({entry["name"]: entry.get("reason") for entry in json.loads(done.stdout)},
                             {"bad_module": reason, "CorvantaPluginWriteReport": None, "CorvantaPluginTables": None})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

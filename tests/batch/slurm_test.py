#!/usr/bin/python3
"""Does "batch" work with a real Slurm? slurm_test.py CORVANTA

Starts munged, slurmctld and two slurmd in a folder of its own, on free ports, and stops them. Skipped without Slurm, and where its programs
cannot run (they need root, because slurmd changes to the user of each job).
"""
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from batch_case import ODD_FOLDER, PIECES, BatchCase

CORVANTA = str(pathlib.Path(sys.argv.pop(1)).resolve())
SKIPPED = 77
PROGRAMS = ["munged", "slurmctld", "slurmd", "sbatch", "squeue", "scancel", "scontrol"]
NODES = ["left", "right"]
START_SECONDS, WAITS = 30, 90

CONFIG = """ClusterName=test
SlurmctldHost={host}
SlurmctldPort={controller}
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
CryptoType=crypto/munge
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool-%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd-%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd-%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,batch_sched_delay=0,requeue_setup_env_fail
ReturnToService=2
KillWait=5
SlurmdTimeout=8
MinJobAge=10
InactiveLimit=0
MpiDefault=none
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
SlurmdParameters=config_overrides
{nodes}
PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class Cluster:
    """The daemons run in the foreground, as children of this process."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvanta_slurm_"))
        self.folder.chmod(0o755)
        self.processes = {}
        (self.folder / "state").mkdir()
        (self.folder / "munge.key").write_bytes(os.urandom(128))
        (self.folder / "munge.key").chmod(0o400)
        controller, *ports = free_ports(1 + len(NODES))
        host = socket.gethostname()
        nodes = "\n".join(f"NodeName={name} NodeHostname={host} NodeAddr=127.0.0.1 Port={port} CPUs=2 State=UNKNOWN"
                          for name, port in zip(NODES, ports))
        self.config = self.folder / "slurm.conf"
        self.config.write_text(CONFIG.format(host=f"{host}(127.0.0.1)", controller=controller, folder=self.folder, nodes=nodes))
        self.environment = {**os.environ, "SLURM_CONF": str(self.config)}

    def start(self, name, *words):
        with open(self.folder / f"{name}.out", "wb") as out:
            self.processes[name] = subprocess.Popen(words, env=self.environment, stdin=subprocess.DEVNULL, stdout=out, stderr=out)

    def start_node(self, name):
        (self.folder / f"spool-{name}").mkdir(exist_ok=True)
        self.start(name, "slurmd", "-D", "-N", name, "-f", str(self.config))

    def start_all(self):
        self.start("munged", "munged", "-F", "--force", f"--socket={self.folder}/munge.socket", f"--key-file={self.folder}/munge.key",
                   f"--pid-file={self.folder}/munge.pid", f"--log-file={self.folder}/munge.log", f"--seed-file={self.folder}/munge.seed")
        self.wait(lambda: (self.folder / "munge.socket").exists())
        self.start("slurmctld", "slurmctld", "-D", "-f", str(self.config))
        for name in NODES:
            self.start_node(name)
        self.wait(lambda: self.call("sinfo", "-h", "-o", "%D %t").stdout.split() == ["2", "idle"])

    def call(self, *words):
        return subprocess.run(words, env=self.environment, capture_output=True, text=True, check=False, timeout=60)

    def wait(self, condition, seconds=START_SECONDS):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                raise TimeoutError(self.logs())
            time.sleep(0.2)

    def logs(self):
        return "\n".join(f"{path.name}: {path.read_text(errors='replace')[-1500:]}" for path in self.folder.glob("*.[ol]*[tg]"))

    def kill_node(self, name):
        """The node fails: its daemon, what watches its tasks, and the tasks end, in this order."""
        process = self.processes.pop(name)
        process.kill()
        process.wait()
        tasks = [path for path in pathlib.Path("/proc").glob("[0-9]*") if self.is_task_of(path, name)]
        watchers = {int((path / "stat").read_text().rsplit(")", 1)[1].split()[1]) for path in tasks} - {int(path.name) for path in tasks}
        for number in [*watchers, *(int(path.name) for path in tasks)]:
            os.kill(number, signal.SIGKILL)

    def is_task_of(self, path, name):
        try:
            environment = (path / "environ").read_text(errors="replace")
            return f"SLURMD_NODENAME={name}\0" in environment and f"SLURM_CONF={self.config}\0" in environment and (
                "slurmstepd" not in (path / "cmdline").read_text())
        except OSError:
            return False

    def stop(self):
        for process in reversed(list(self.processes.values())):
            process.terminate()
            try:
                process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self.folder)


class Slurm(BatchCase):
    corvanta = CORVANTA

    def setUp(self):
        super().setUp()
        self.folder.chmod(0o755)
        names = self.write_inputs(12)
        self.write_list(names)  # a pattern does not match pipes
        self.names = names

    def start_batch(self, *words):
        process = subprocess.Popen([CORVANTA, "batch", "g.graph", "--inputs", "list.txt", "--out-dir", "out", "--backend", "slurm", "--per-task",
                                    "3", *words], cwd=self.folder, env=CLUSTER.environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(lambda: process.poll() is None and process.kill())
        return process

    def end(self, process, status=0):
        table, messages = process.communicate(timeout=WAITS)
        self.assertEqual(process.returncode, status, messages + CLUSTER.logs())
        return table

    def block(self, name):
        (self.folder / name).unlink()
        os.mkfifo(self.folder / name)

    def unblock(self, index):
        """A node that has failed leaves no writer: the pipe becomes a file."""
        (self.folder / "new").write_text(f"k,t\n{index + 1}000,text {index + 1}\n")
        os.replace(self.folder / "new", self.folder / self.names[index])

    def is_running(self, index):
        return any(json.loads(path.read_text() or "{}").get("input", {}).get("name", "").endswith(self.names[index])
                   for path in (self.folder / "out/g.batch/journal").glob("*.running"))

    def check_outputs(self):
        """Equal to those of a single run, with each input once."""
        self.assertEqual(self.outputs(), self.expected(12))
        done = [entry["input"]["name"] for entry in self.journal("out/g.batch/journal") if entry["status"] == 0]
        self.assertEqual(sorted(done), sorted(str(self.folder / name) for name in self.names))

    def test_node_that_fails_and_task_that_is_queued_again(self):
        self.block(self.names[0])
        self.block(self.names[1])
        process = self.start_batch("--max-running", "4")
        CLUSTER.wait(lambda: self.is_running(0) and self.is_running(1), WAITS)
        running = CLUSTER.call("squeue", "-h", "-r", "-t", "running", "-o", "%K %N %i").stdout.splitlines()
        CLUSTER.call("scontrol", "requeue", next(line.split()[2] for line in running if line.startswith("2 ")))
        CLUSTER.wait(lambda: CLUSTER.call("squeue", "-h", "-r", "-t", "pending", "-o", "%K").stdout == "2\n", WAITS)
        self.assertFalse((self.folder / "out/g.batch/status/2").exists())  # or the batch would not wait for it
        node = next(line.split()[1] for line in running if line.startswith("1 "))
        CLUSTER.kill_node(node)
        self.unblock(0)
        self.unblock(1)

        def has_ended():
            """Slurm starts what it has queued again after two minutes; a test need not wait for them."""
            for line in CLUSTER.call("squeue", "-h", "-r", "-t", "pending", "-o", "%i %r").stdout.splitlines():
                if line.endswith(" BeginTime"):
                    CLUSTER.call("scontrol", "update", "JobId=" + line.split()[0], "StartTime=now")
            return process.poll() is not None
        CLUSTER.wait(has_ended, WAITS)
        self.assertEqual(self.end(process), "")
        self.check_outputs()
        CLUSTER.start_node(node)
        CLUSTER.wait(lambda: CLUSTER.call("sinfo", "-h", "-o", "%D %t").stdout.split() == ["2", "idle"], WAITS)

    def test_one_shard_fails_and_one_is_killed(self):
        self.damage(self.names[5])
        self.block(self.names[0])
        process = self.start_batch("--retries", "1")
        CLUSTER.wait(lambda: self.is_running(0), WAITS)
        number = next(entry.name for entry in pathlib.Path("/proc").glob("[0-9]*") if self.is_run_of(entry))
        os.kill(int(number), signal.SIGKILL)
        self.unblock(0)
        table = self.end(process, 1).splitlines()
        self.assertEqual([line.split("\t")[0] for line in table[1:]], [str(self.folder / self.names[5])])
        self.unblock(5)
        self.assertEqual(self.end(self.start_batch()), "")
        self.check_outputs()

    def is_run_of(self, entry):
        try:
            words = (entry / "cmdline").read_text(errors="replace").split("\0")
        except OSError:
            return False
        return words[:3] == [CORVANTA, "run", "-"] and "1/4" in words and str(self.folder / "g.graph") in words

    def test_interrupt_detach_and_status(self):
        self.block(self.names[0])
        process = self.start_batch()
        CLUSTER.wait(lambda: self.is_running(0), WAITS)
        process.send_signal(signal.SIGINT)
        self.end(process, 130)
        self.assertEqual(CLUSTER.call("squeue", "-h", "-t", "running").stdout, "")
        self.assertEqual([name for name in self.files() if name.startswith("out/") and name.endswith("TMP")], [])
        self.unblock(0)
        self.assertEqual(self.end(self.start_batch("--detach")), f"{self.folder}/out/g.batch\n")

        def status():
            done = subprocess.run([CORVANTA, "batch", "--status", "out/g.batch", "--json"], cwd=self.folder, env=CLUSTER.environment,
                                  capture_output=True, text=True, check=True)
            return json.loads(done.stdout)
        self.assertNotEqual(status()["job"], "")
        CLUSTER.wait(lambda: status()["done"] == 12 and not status()["running"], WAITS)
        self.check_outputs()

    def test_merge(self):
        self.assertEqual(self.end(self.start_batch("--merge", "all.csv")), "")
        rows = [line for i in range(1, 13) for line in (self.folder / f"in/a{i:02}.csv").read_text().splitlines()[1:]]
        self.assertEqual((self.folder / "all.csv").read_text().splitlines(), ["k,t", *rows])

    def test_pieces_and_merge_of_other_columns(self):
        self.parquet("in/a.parquet", [2, 1])
        self.parquet("in/b.parquet", [1, 2], "m")
        self.write_list(["in/a.parquet", "in/b.parquet"])
        self.write_graph(PIECES.replace(" header='0'", ""))
        self.assertEqual(self.end(self.start_batch("--split-rows", "1", "--merge", "all.csv", "--union")), "")
        self.assertEqual(len(self.journal("out/g.batch/journal")), 4)
        self.assertEqual((self.folder / "all.csv").read_text().split(), ["n,m", "1,", "2,", "3,", ",1", ",2", ",3"])

    def test_names(self):
        """Names have no special signs for sbatch, which writes its log where the others are."""
        for path in (self.folder / "in").iterdir():
            path.unlink()
        outputs = self.write_odd_inputs()
        words = [CORVANTA, "batch", "g.graph", "--inputs", "in/*.csv", "--out-dir", ODD_FOLDER + "/out", "--folder", ODD_FOLDER, "--backend", "slurm"]
        done = subprocess.run(words, cwd=self.folder, env=CLUSTER.environment, capture_output=True, text=True, check=False, timeout=WAITS)
        self.assertEqual(done.returncode, 0, done.stderr + CLUSTER.logs())
        self.assertEqual(self.outputs(ODD_FOLDER + "/out"), outputs)
        self.assertTrue((self.folder / ODD_FOLDER / "logs/slurm-%a.out").exists())  # no pattern after a backslash

    def test_rejected_job(self):
        before = self.files()
        process = self.start_batch("--backend-option=--partition=none")
        _, messages = process.communicate(timeout=WAITS)
        self.assertEqual(process.returncode, 2)
        self.assertIn("the scheduler has rejected the job: sbatch: error: ", messages)
        self.assertEqual(self.files(), before)

    def test_script_of_a_user(self):
        """The shard follows from the task of the array."""
        (self.folder / "own.sh").write_text(f"#!/bin/sh\n#SBATCH --array=0-3\nexec {CORVANTA} run g.graph --inputs list.txt --out-dir out\n")
        done = subprocess.run(["sbatch", "--wait", "--output=/dev/null", "own.sh"], cwd=self.folder, env=CLUSTER.environment, capture_output=True,
                              text=True, check=False, timeout=WAITS)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.outputs(), self.expected(12))
        self.assertEqual(len(self.journal()), 12)


if __name__ == "__main__":
    missing = [name for name in PROGRAMS if shutil.which(name) is None]
    if missing or os.getuid() != 0:
        print(f"skipped: {', '.join(missing)} not installed" if missing else "skipped: slurmd needs root")
        sys.exit(SKIPPED)
    CLUSTER = Cluster()
    try:
        CLUSTER.start_all()
        unittest.main()
    finally:
        CLUSTER.stop()

#!/usr/bin/python3
"""Time whole programs, file in to file out: bench/run.py BIN [--rows N] [--runs N] [--save | --compare [BIN]] [JOB...]

Each job (jobs.py) runs in turn with its peer, where that is installed; the figures are medians. Inputs are generated from
a fixed seed and are in the page cache. --save stores the medians in baseline.json. --compare runs no peers, prints the
ratio of each median to that of the baseline and exits with 1 if one is more than 3 % larger or not stored. With another bin folder,
--compare runs both programs in turn instead: that is the comparison to trust, because the machine is in the same state.
"""
import argparse
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from jobs import JOBS

BENCH = pathlib.Path(__file__).resolve().parent
BASELINE = BENCH / "baseline.json"
FIGURES = ("wall", "cpu", "memory")  # seconds, seconds, MiB
MAX_RATIO = 1.03
PAIRED_RUNS = 7


class ProgramFailed(Exception):
    pass


def timed(command, folder):
    """Wall seconds, CPU seconds and peak memory (MiB) of one run."""
    begin = time.monotonic()
    with open(folder / "stdout", "wb") as printed:
        process = subprocess.Popen(command, cwd=folder, stdout=printed)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise ProgramFailed(f"{command[0]} ended with status {process.returncode}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def medians(runs):
    return dict(zip(FIGURES, (statistics.median(column) for column in zip(*runs))))


def show(who, figures, details=""):
    print(f"  {who:10} {figures['wall']:7.2f} s  cpu {figures['cpu']:6.2f} s  {figures['memory']:7.1f} MiB{details}")


class Bench:
    """A folder with the inputs, and the programs that are measured in it."""

    def __init__(self, folder, bin_folder, rows, runs):
        self.folder = folder
        self.bin = bin_folder
        self.rows = rows
        self.runs = runs
        self.make("sales.csv", ("make_sales", "{rows}"), rows)

    def make(self, name, maker, rows):
        program, *arguments = maker
        command = [sys.executable, BENCH / program] if program.endswith(".py") else [self.bin / program]
        with open(self.folder / name, "wb") as out:
            subprocess.run([*command, *(argument.format(rows=rows) for argument in arguments)],
                           cwd=self.folder, stdout=out, check=True)

    def rows_of(self, job):
        return self.rows * job.rows_factor // job.rows_divisor

    def prepare(self, job):
        (self.folder / "bench.graph").write_text(job.graph)
        if job.make_input:
            self.make(job.input, job.make_input, self.rows_of(job))

    def ours(self, job, bin_folder):
        (self.folder / job.output).unlink(missing_ok=True)  # as for the peers: removing an old file takes time, too
        return timed([str(bin_folder / "corvanta"), *(job.command or ("run", "bench.graph")), "--progress", "never"], self.folder)

    def peers_of(self, job):
        """The commands and outputs of the job's peers that are installed."""
        peers = [(job.peer, job.peer_output), *job.also] if job.peer else []
        found = [(shutil.which(command[0], path=str(self.bin)) or shutil.which(command[0]), command, output) for command, output in peers]
        return [([program, *command[1:]], output) for program, command, output in found if program]

    def with_peers(self, job, peers):
        """The figures of ours, and each peer with its figures; all run in turn. A peer that fails is left out."""
        ours, theirs = [], [(peer, []) for peer in peers]
        for _ in range(self.runs):
            ours.append(self.ours(job, self.bin))
            for (command, output), runs in list(theirs):
                (self.folder / output).unlink(missing_ok=True)
                try:
                    runs.append(timed(command, self.folder))
                except ProgramFailed as failure:
                    print(f"  (no peer: {failure})")
                    theirs.remove(((command, output), runs))
        return medians(ours), [(peer, medians(runs)) for peer, runs in theirs]

    def with_other(self, job, other_bin):
        """The figures of both programs. They run in turn, and each goes first in half of the pairs; the first pair warms up."""
        ours, theirs = [], []
        pair = [(self.bin, ours), (other_bin, theirs)]
        for turn in range(self.runs + 1):
            for bin_folder, runs in pair if turn % 2 else reversed(pair):
                runs.append(self.ours(job, bin_folder))
        return medians(ours[1:]), medians(theirs[1:])

    def show_speed(self, who, job, figures, output):
        rows, size = self.rows_of(job), (self.folder / job.input).stat().st_size
        show(who, figures, f"  {rows / figures['wall']:12,.0f} rows/s  {size / figures['wall'] / 1e6:7.1f} MB/s in"
                           f"  {(self.folder / output).stat().st_size / 1e6:8.1f} MB out")


def measure(bench, job):
    """Measure and print a job and its peers; our figures."""
    peers = bench.peers_of(job)
    ours, theirs = bench.with_peers(job, peers)
    bench.show_speed("corvanta", job, ours, job.output)
    for (command, output), figures in theirs:
        bench.show_speed(pathlib.Path(command[0]).name, job, figures, output)
        print(f"  {figures['wall'] / ours['wall']:.1f} times the speed of the peer")
    if job.peer and not peers:
        print(f"  (no peer: {job.peer[0]} is not installed)")
    return ours


def compare(name, figures, reference):
    """Print the ratios of a job; the figures that grew beyond MAX_RATIO."""
    ratios = {figure: figures[figure] / reference[figure] for figure in FIGURES}
    show("before", reference)
    show("now", figures, "  " + "  ".join(f"{figure} x{ratio:.3f}" for figure, ratio in ratios.items()))
    return [f"{name}: {figure} x{ratio:.3f}" for figure, ratio in ratios.items() if ratio > MAX_RATIO]


def compare_with_other(bench, job, name, other_bin):
    return compare(name, *bench.with_other(job, other_bin))


def compare_with_baseline(bench, job, name, baseline):
    if name not in baseline["jobs"]:
        return [f"{name}: not in the baseline; store it with --save"]
    return compare(name, bench.with_peers(job, [])[0], baseline["jobs"][name])


def load_baseline():
    return json.loads(BASELINE.read_text()) if BASELINE.exists() else {"jobs": {}}


def save_baseline(rows, figures):
    jobs = load_baseline()["jobs"] | {name: {key: round(value, 3) for key, value in job.items()} for name, job in figures.items()}
    BASELINE.write_text(json.dumps({"rows": rows, "units": "wall and cpu in s, memory in MiB", "jobs": jobs}, indent=1) + "\n")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("bin", type=pathlib.Path)
    parser.add_argument("jobs", nargs="*", metavar="JOB", help=", ".join(JOBS))
    parser.add_argument("--rows", type=int)
    parser.add_argument("--runs", type=int)
    parser.add_argument("--save", action="store_true")
    parser.add_argument("--compare", nargs="?", const="", metavar="BIN")
    args = parser.parse_args()
    if args.compare in JOBS:  # "--compare JOB": the job is not a folder
        args.jobs.append(args.compare)
        args.compare = ""
    unknown = [name for name in args.jobs if name not in JOBS]
    if unknown:
        parser.error(f"unknown job: {', '.join(unknown)}")
    args.bin = args.bin.resolve()
    return args


def run_jobs(args, rows, bench):
    """Run every job; the figures that grew too much."""
    baseline, figures, grown = load_baseline(), {}, []
    for name in args.jobs or JOBS:
        job = JOBS[name]
        print(f"{name}: {job.meaning}", flush=True)
        bench.prepare(job)
        if args.compare is None:
            figures[name] = measure(bench, job)
        elif args.compare:
            grown += compare_with_other(bench, job, name, pathlib.Path(args.compare).resolve())
        else:
            grown += compare_with_baseline(bench, job, name, baseline)
    if args.save:
        save_baseline(rows, figures)
    return grown


def main():
    args = parse_arguments()
    rows = args.rows or (load_baseline().get("rows") if args.compare == "" else None) or 1_000_000
    runs = args.runs or (3 if args.compare is None else PAIRED_RUNS)
    with tempfile.TemporaryDirectory(prefix="corvanta_bench_") as name:
        try:
            grown = run_jobs(args, rows, Bench(pathlib.Path(name), args.bin, rows, runs))
        except ProgramFailed as failure:
            sys.exit(str(failure))
    if grown:
        sys.exit(f"More than {MAX_RATIO - 1:.0%} larger, or unknown:\n  " + "\n  ".join(grown))


if __name__ == "__main__":
    main()

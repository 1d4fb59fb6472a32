"""Runs of the test programs: how long each takes, which faults it reaches, whether it notices one."""

import dataclasses
import os
import pathlib
import re
import resource
import subprocess
import sys

from sleeping_tree import BUILD, WORK

# Seconds that no run takes, however loaded the machine: the limits that count are of processor time.
LONGEST = 1800


@dataclasses.dataclass
class Run:
    """A whole program, or one case of it that has to run by itself."""

    program: pathlib.Path
    cases: str = "*"
    seconds: float = 0
    reached: bytes = b""

    def passes(self, environment, seconds, output=subprocess.DEVNULL):
        """Returns whether the cases pass within so many seconds of processor time."""
        command = f'ulimit -c 0 -t {seconds}; exec "$0" --gtest_fail_fast "--gtest_filter=$1"'
        try:
            return subprocess.run(
                ["bash", "-c", command, self.program, self.cases], cwd=self.program.parent,
                stdout=output, stderr=subprocess.STDOUT, env={**os.environ, **environment},
                timeout=LONGEST, check=False).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def observe(self, room):
        """Runs without any fault and notes what is passed. Returns the cases that were skipped."""
        marks, log = WORK / "reached", WORK / "log"
        marks.write_bytes(bytes(room))
        started = processor_seconds()
        with open(log, "wb") as output:
            if not self.passes({"QE_MUTANTS_REACHED": str(marks)}, LONGEST, output):
                sys.exit(f"{self.program.name} fails without any fault: see {log}")
        self.seconds = processor_seconds() - started
        self.reached = marks.read_bytes()
        return re.findall(r"^\[  SKIPPED \] (\S+) \(", log.read_text(errors="replace"), re.MULTILINE)


def processor_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class TestPrograms:
    def __init__(self, patterns, room):
        bin_folder = BUILD / "bin"
        self.runs = []
        for program in sorted({path for pattern in patterns for path in bin_folder.glob(pattern)}):
            whole = Run(program)
            alone = [Run(program, case) for case in whole.observe(room)]
            # What is skipped again lacks something on this machine.
            runs = [whole, *(run for run in alone if not run.observe(room))]
            self.runs += runs
            print(f"{program.name}: {len(runs)} runs, {sum(run.seconds for run in runs):.1f} s", flush=True)
        self.runs.sort(key=lambda run: run.seconds)

    def judge(self, fault):
        """Returns "noticed", "not noticed" or "not reached"."""
        runs = [run for run in self.runs if run.reached[fault.ident]]
        for run in runs:
            if not run.passes({"QE_MUTANT": str(fault.ident)}, int(10 + 4 * run.seconds)):
                return "noticed"
        return "not noticed" if runs else "not reached"

"""Runs of the test programs: how long each takes, which faults it reaches, whether it notices one."""

import dataclasses
import hashlib
import os
import pathlib
import pickle
import re
import subprocess
import sys
import tempfile

from sleeping_tree import BUILD, WORK

# Seconds that no run takes, however loaded the machine: the limits that count are of processor time.
LONGEST = 3600
# Seconds that cases run together take at most, each.
QUICK = 0.1
# KiB for each run: a fault that takes all memory must not take that of others.
MOST_MEMORY = 6 << 20
COMMAND = f"""ulimit -c 0 -t $2 -v {MOST_MEMORY}
exec timeout {LONGEST} "$0" --gtest_fail_fast "--gtest_filter=$1" """


@dataclasses.dataclass
class Run:
    """Cases of one program that run together, with colons between them."""

    program: pathlib.Path
    cases: str
    seconds: float = 0
    reached: bytes = b""

    def passes(self, environment, limit, output=subprocess.DEVNULL):
        """Returns whether the cases pass within a limit of processor time, and the time they take."""
        process = subprocess.Popen(
            ["bash", "-c", COMMAND, self.program, self.cases, str(limit)], stdout=output,
            stderr=subprocess.STDOUT, env={**os.environ, **environment}, cwd=self.program.parent)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode == 0, usage.ru_utime + usage.ru_stime

    def observe(self, room):
        """Runs without any fault and notes what is passed. Returns the cases that were skipped."""
        with tempfile.NamedTemporaryFile(dir=WORK) as marks, tempfile.TemporaryFile() as log:
            marks.write(bytes(room))
            marks.flush()
            is_passed, self.seconds = self.passes({"QE_MUTANTS_REACHED": marks.name}, LONGEST, log)
            log.seek(0)
            text = log.read().decode(errors="replace")
            if not is_passed:
                sys.exit(f"{text[-5000:]}\n{self.program.name} fails without any fault")
            self.reached = pathlib.Path(marks.name).read_bytes()
        return re.findall(r"^\[  SKIPPED \] (\S+) \(", text, re.MULTILINE)


def read_runs(program, room):
    """Returns the key of the program, and its runs from the last time when it has not changed."""
    parts = program.read_bytes(), pathlib.Path(__file__).read_bytes(), str(room).encode()
    key = hashlib.sha256(b"".join(parts)).digest()
    kept = WORK / f"{program.name}.runs"
    known, runs = pickle.loads(kept.read_bytes()) if kept.exists() else (None, [])
    return key, runs if known == key else []


def list_cases(program):
    listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True,
                            text=True, cwd=program.parent).stdout
    cases, suite = [], ""
    for line in listed.splitlines():
        name = line.split("#")[0]
        if not name.startswith(" "):
            suite = name.strip()
        else:
            cases.append(suite + name.strip())
    return cases


def observe_programs(programs, room, pool):
    """Returns the runs that the programs take: the quick cases together, each other by itself."""
    alone = [Run(program, case) for program in programs for case in list_cases(program)]
    # What is skipped even by itself lacks something on this machine.
    alone = [run for run, skipped in zip(alone, pool.map(lambda run: run.observe(room), alone))
             if not skipped]
    quick = [run for run in alone if run.seconds < QUICK]
    together = [Run(program, ":".join(run.cases for run in quick if run.program == program))
                for program in programs]
    for run, skipped in zip(together, pool.map(lambda run: run.observe(room), together)):
        # These need a process of their own.
        quick = [case for case in quick if case.program != run.program or case.cases not in skipped]
    return [[run for run in [*together, *(run for run in alone if run not in quick)]
             if run.program == program and run.cases] for program in programs]


class TestPrograms:
    def __init__(self, patterns, room, pool):
        programs = sorted({path for pattern in patterns for path in (BUILD / "bin").glob(pattern)})
        known = {program: read_runs(program, room) for program in programs}
        changed = [program for program in programs if not known[program][1]]
        for program, runs in zip(changed, observe_programs(changed, room, pool)):
            known[program] = (known[program][0], runs)
            (WORK / f"{program.name}.runs").write_bytes(pickle.dumps(known[program]))
        for program, (_, runs) in known.items():
            print(f"{program.name}: {len(runs)} runs, {sum(run.seconds for run in runs):.1f} s", flush=True)
        self.runs = [run for _, runs in known.values() for run in runs]
        self.runs.sort(key=lambda run: run.seconds)

    def judge(self, fault):
        """Returns "noticed", "not noticed" or "not reached"."""
        runs = [run for run in self.runs if run.reached[fault.ident]]
        for run in runs:
            if not run.passes({"QE_MUTANT": str(fault.ident)}, int(4 + 4 * run.seconds))[0]:
                return "noticed"
        return "not noticed" if runs else "not reached"

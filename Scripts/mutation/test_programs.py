"""The test programs: how long each takes, which faults it reaches, and whether it notices one."""

import os
import resource
import subprocess
import sys

from sleeping_tree import BUILD, WORK

# Seconds that no test takes, however loaded the machine: the limits that count are of processor time.
LONGEST = 1800


def run(program, environment, seconds, output=subprocess.DEVNULL):
    """Returns whether the tests pass within so many seconds of processor time."""
    command = f'ulimit -c 0 -t {seconds}; exec "$0" --gtest_fail_fast --gtest_brief=1'
    try:
        return subprocess.run(["bash", "-c", command, program], cwd=program.parent, stdout=output,
                              stderr=subprocess.STDOUT, env={**os.environ, **environment},
                              timeout=LONGEST, check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def processor_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class TestPrograms:
    def __init__(self, patterns, room):
        bin_folder = BUILD / "bin"
        self.programs = sorted({path for pattern in patterns for path in bin_folder.glob(pattern)})
        self.seconds, self.reached = {}, {}
        for program in self.programs:
            self.observe(program, room)
        self.programs.sort(key=self.seconds.get)

    def observe(self, program, room):
        """Runs a program without any fault and notes what it passes."""
        marks, log = (WORK / f"{program.name}.{end}" for end in ("reached", "log"))
        marks.write_bytes(bytes(room))
        started = processor_seconds()
        with open(log, "wb") as output:
            if not run(program, {"QE_MUTANTS_REACHED": str(marks)}, LONGEST, output):
                sys.exit(f"{program.name} fails without any fault: see {log}")
        self.seconds[program] = processor_seconds() - started
        self.reached[program] = marks.read_bytes()
        print(f"{program.name}: {self.seconds[program]:.1f} s, reaches {sum(self.reached[program])} faults",
              flush=True)

    def judge(self, fault):
        """Returns "noticed", "not noticed" or "not reached"."""
        verdict = "not reached"
        for program in self.programs:
            if self.reached[program][fault.ident]:
                verdict = "not noticed"
                limit = int(10 + 4 * self.seconds[program])
                if not run(program, {"QE_MUTANT": str(fault.ident)}, limit):
                    return "noticed"
        return verdict

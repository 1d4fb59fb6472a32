#!/usr/bin/env python3
"""Runs the tool where its output cannot be delivered, and where it is ended from outside.

Usage: failures_test.py QEREFINE
"""

import os
import pathlib
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest

RETAIL = pathlib.Path(__file__).resolve().parents[2] / "Examples" / "retail"
OUTPUT_FAILED = 6
COMMANDS = [
    "path model.json sales category",
    "path model.json sales category --format html",
    "facts model.json",
    "shortcuts model.json",
    "check model.json",
    "show model.json --format dot",
    "import sql warehouse.sql",
    "batch model.json requests.jsonl",
    "evaluate model.json requests.jsonl",
    "--help",
    "path --help",
    "--version",
]


class Failures(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_in_shell(self, line, **more):
        return subprocess.run(["bash", "-c", line.replace("qerefine", str(TOOL), 1)], cwd=RETAIL,
                              text=True, capture_output=True, check=False, timeout=60, **more)

    def test_output_that_cannot_be_written_is_told(self):
        for command in COMMANDS:
            if "html" in command and not has_graphviz():
                continue
            for target, reason in (("/dev/full", "No space left"), ("&-", "Bad file descriptor")):
                with self.subTest(command=command, target=target):
                    run = self.run_in_shell(f"qerefine {command} >{target}")
                    self.assertEqual(run.returncode, OUTPUT_FAILED)
                    self.assertIn(f"standard output: cannot be written: {reason}", run.stderr)

    def test_pipe_that_nobody_reads_is_told(self):
        run = self.run_in_shell("qerefine import sql warehouse.sql | true; echo ${PIPESTATUS[0]}")
        self.assertEqual(run.stdout, f"{OUTPUT_FAILED}\n")

    def test_old_file_survives(self):
        old = self.folder / "old.json"
        old.write_text("old", encoding="utf-8")
        small = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))
        full = self.run_in_shell(f"qerefine import sql warehouse.sql -o {old}", preexec_fn=small)
        self.assertEqual(full.returncode, OUTPUT_FAILED)
        self.assertIn("old.json: cannot be written: File too large", full.stderr)
        wrong = self.run_in_shell(f"qerefine path model.json salles category -o {old}")
        self.assertEqual(wrong.returncode, 2)
        self.assertEqual(old.read_text(encoding="utf-8"), "old")
        self.assertEqual(os.listdir(self.folder), ["old.json"])
        self.assertEqual(self.run_in_shell(f"qerefine facts model.json -o {old}").stdout, "")
        self.assertIn("facts", old.read_text(encoding="utf-8"))

    def test_closed_and_unreadable_input_is_told(self):
        for source in ("<&-", "</tmp"):
            run = self.run_in_shell(f"qerefine batch model.json - {source}")
            self.assertEqual(run.returncode, 3, run.stderr)
            self.assertIn("requests: cannot be read", run.stderr)

    def test_ending_the_tool_ends_what_it_started(self):
        """The program that draws leaves a process behind that would outlive a plain kill."""
        drawn = self.folder / "pids"
        dot = self.folder / "dot"
        dot.write_text(f"#!/bin/sh\nsleep 60 &\necho $$ $! > {drawn}.new\n"
                       f"mv {drawn}.new {drawn}\nwait\n", encoding="utf-8")
        dot.chmod(0o755)
        environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}")
        for ending in (signal.SIGTERM, signal.SIGINT):
            drawn.unlink(missing_ok=True)
            with subprocess.Popen([TOOL, "show", RETAIL / "model.json"], env=environment,
                                  stdout=subprocess.PIPE) as tool:
                self.assertTrue(wait_until(drawn.exists))
                children = [int(pid) for pid in drawn.read_text(encoding="utf-8").split()]
                tool.send_signal(ending)
                self.assertEqual(tool.wait(10), -ending)
                self.assertEqual(tool.stdout.read(), b"")
            self.assertTrue(wait_until(lambda: not any(map(is_running, children))))


def has_graphviz():
    return subprocess.run(["which", "dot"], capture_output=True, check=False).returncode == 0


def is_running(process):
    try:
        state = pathlib.Path(f"/proc/{process}/stat").read_text(encoding="utf-8")
    except OSError:
        return False
    return state.rpartition(")")[2].split()[0] != "Z"


def wait_until(holds):
    end = time.monotonic() + 20
    while not holds() and time.monotonic() < end:
        time.sleep(0.02)
    return holds()


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()

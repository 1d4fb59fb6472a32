#!/usr/bin/env python3
"""Runs the tool where its output cannot be delivered, and where it is ended from outside.

Usage: failures_test.py QEREFINE
"""

import contextlib
import json
import os
import pathlib
import resource
import shutil
import signal
import sqlite3
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

    def test_standard_input_is_a_model_whatever_it_holds(self):
        model, ddl = "path - sales category", "path - sales calendar --roles"
        whole = self.run_in_shell(f"qerefine {model} <model.json")
        self.assertEqual(whole.returncode, 0, whole.stderr)
        self.assertEqual(self.run_in_shell(f"cat model.json | qerefine {model}").stdout, whole.stdout)
        self.assertIn("sales-calendar", self.run_in_shell(f"cat warehouse.sql | qerefine {ddl}").stdout)
        imported = self.run_in_shell("qerefine import sql - <warehouse.sql -o -").stdout
        self.assertEqual(len(json.loads(imported)["namespaces"][0]["subjects"]), 21)
        empty = self.run_in_shell(f"true | qerefine {model}")
        self.assertEqual((empty.returncode, empty.stderr), (3, "/dev/stdin: is empty\n"))

    def test_settings_that_cannot_be_meant_are_told(self):
        settings = self.folder / "settings.ini"
        told = {
            None: f"QEREFINER_SETTINGS: there is no such file: {settings}\n",
            "[General Options]\nNewAlgoo = 0\n":
                f'{settings}: There is no setting "general options/newalgoo" '
                "(did you mean General Options/NewAlgo?)\n",
            "[JoinGraph]\nCheapestTreesBound = 10\n": "",
        }
        for text, message in told.items():
            if text is not None:
                settings.write_text(text, encoding="utf-8")
            run = self.run_in_shell("qerefine path model.json sales category",
                                    env=dict(os.environ, QEREFINER_SETTINGS=str(settings)))
            self.assertEqual((run.returncode, run.stderr), (3 if message else 0, message))

    def test_locked_database_is_waited_for(self):
        path = self.folder / "locked.db"
        with contextlib.closing(sqlite3.connect(path, isolation_level=None)) as database:
            database.execute("CREATE TABLE a (x)")
            database.execute("BEGIN EXCLUSIVE")
            command = [TOOL, "import", "sqlite", path]
            with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as patient:
                time.sleep(0.5)
                database.execute("COMMIT")
                self.assertIn('"a"', patient.stdout.read())
            database.execute("BEGIN EXCLUSIVE")
            run = subprocess.run(command, capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, 3)
            self.assertIn("another program has locked it", run.stderr)

    @unittest.skipIf(os.geteuid() != 0, "only the administrator can become somebody else")
    def test_database_with_a_log_is_read_where_nothing_can_be_written(self):
        path = self.folder / "log.db"
        with contextlib.closing(sqlite3.connect(path)) as database:
            database.execute("PRAGMA journal_mode = WAL")
            database.execute("CREATE TABLE a (x)")
        self.folder.chmod(0o755)
        readable = self.folder / "qerefine"
        shutil.copy(TOOL, readable)
        run = subprocess.run([readable, "import", "sqlite", path], user=65534, text=True,
                             capture_output=True, check=False)
        self.assertEqual((run.returncode, run.stderr), (0, f"{path}: 1 tables, 0 joins\n"))

    def test_scripts_complete_in_bash(self):
        complete = """source <(qerefine completion bash)
            COMP_WORDS=({words}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); _qerefine
            printf '%s\\n' "${{COMPREPLY[@]}}" """
        environment = dict(os.environ, PATH=f"{TOOL.parent}:{os.environ['PATH']}")
        for words, expected in (
                ("qerefine bet", "between\n"),
                ("qerefine path model.json cost", "cost\\ center\\ country\ncost_center\n"),
                ("qerefine path model.json '\"due'", "due\\ date\n"),
                ("qerefine facts mod", "model.json\n")):
            run = subprocess.run(["bash", "-c", complete.format(words=words)], cwd=RETAIL,
                                 env=environment, text=True, capture_output=True, check=False)
            self.assertEqual(run.stdout, expected, run.stderr)

    def test_long_drawing_is_followed_on_a_terminal(self):
        dot = self.folder / "dot"
        dot.write_text("#!/bin/sh\nsleep 1.5\necho '<svg></svg>'\n", encoding="utf-8")
        dot.chmod(0o755)
        environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}")
        terminal, stream = os.openpty()
        with subprocess.Popen([TOOL, "show", RETAIL / "model.json"], env=environment, stderr=stream,
                              stdout=subprocess.PIPE, text=True) as tool:
            os.close(stream)
            self.assertEqual(tool.stdout.read(), "<svg></svg>\n")
            self.assertEqual(tool.wait(10), 0)
        shown = b""
        # A terminal that nobody writes to any more ends in an error.
        with contextlib.suppress(OSError):
            while piece := os.read(terminal, 4096):
                shown += piece
        os.close(terminal)
        shown = shown.decode()
        self.assertRegex(shown, "^\r[01] seconds of drawing")
        self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown))

    def test_roles_leave_fewer_paths_to_choose_among(self):
        counts = {}
        for roles in ("plain", "shortcuts"):
            model = self.folder / f"{roles}.json"
            self.run_in_shell(f"qerefine import sql warehouse.sql --roles {roles} -o {model}")
            report = json.loads(self.run_in_shell(f"qerefine check {model} --format json").stdout)
            totals = {rule["code"]: rule["total"] for rule in report["rules"]}
            counts[roles] = (totals["ambiguous-path"], totals["separate-group"])
        self.assertLess(counts["shortcuts"][0], counts["plain"][0])
        self.assertEqual(counts["shortcuts"][1], counts["plain"][1])

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

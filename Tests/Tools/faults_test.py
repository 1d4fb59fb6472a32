#!/usr/bin/env python3
"""Lets files, databases and servers fail under the tool, and interrupts it.

Usage: faults_test.py QEREFINE FAILING_CALLS [unittest argument...]

Whatever happens, the tool says why and ends with a code that its documentation names; what it was
to write is whole, or as it was before, with nothing beside it. QE_FAULT_SWEEP=1 tries much more.
"""

import concurrent.futures
import contextlib
import errno
import os
import pathlib
import random
import select
import shlex
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "Support"))
import servers  # noqa: E402

SWEEPS = os.environ.get("QE_FAULT_SWEEP") == "1"
CANNOT_READ = 3
OUTPUT_FAILED = 6
PARTLY_DONE = 0
OLD = b"what was there before\n"

TABLES = """
CREATE TABLE region (id INTEGER PRIMARY KEY);
CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT NOT NULL REFERENCES region);
CREATE TABLE sale (customer_id INT NOT NULL REFERENCES customer, payer_id INT REFERENCES customer);
"""
REQUEST = """{"subjects": ["sale", "region"], "joins": [["sale.customer_id", "customer.id"]]}\n"""

MANY_TABLES = TABLES + "".join(
    f"CREATE TABLE t{i} (id INTEGER PRIMARY KEY, r INT REFERENCES region);\n" for i in range(400))

# "@" begins a file of the folder.
COMMANDS = [
    "path @model.json sale region",
    "path @model.json sale region --history @past.sql -o @out",
    "path @shop.db sale region --format sql -o @out",
    "path @saved.json sale region --favour 'sale-customer (payer_id)' --save",
    "import sql @tables.sql -o @out",
    "import @shop.db -o @out",
    "export @model.json --to dbml -o @out",
    "batch @model.json @requests.jsonl --quiet -o @out",
    "evaluate @model.json @requests.jsonl -o @out",
    "check @model.json --baseline @baseline.json -o @out",
    "check @model.json --write-baseline @out",
    "show @model.json --format dot -o @out",
    "history pack @past.sql -o @out",
]
CALLS = {
    "open": [errno.EIO, errno.EMFILE, errno.EINTR],
    "read": [errno.EIO, errno.EINTR, PARTLY_DONE],
    "write": [errno.EIO, errno.ENOSPC, errno.EINTR, PARTLY_DONE],
    "sync": [errno.EIO, errno.EINTR],
    "rename": [errno.EIO, errno.ENOSPC],
    "close": [errno.EIO, errno.EINTR],
}
SAMPLE_OF_CALLS = (1, 2, 5, 14)


def fill(folder):
    """Makes a folder with a model in each form and what belongs to it."""
    folder.mkdir(exist_ok=True)
    (folder / "tables.sql").write_text(TABLES, encoding="utf-8")
    with contextlib.closing(sqlite3.connect(folder / "shop.db")) as database:
        database.executescript(TABLES)
    (folder / "past.sql").write_text(
        "SELECT 1 FROM sale s JOIN customer c ON s.payer_id = c.id;\n", encoding="utf-8")
    (folder / "requests.jsonl").write_text(REQUEST * 3, encoding="utf-8")
    (folder / "settings.ini").write_text("[General Options]\nNewAlgo = 1\n", encoding="utf-8")
    for arguments in ("import sql @tables.sql -o @model.json",
                      "check @model.json --write-baseline @baseline.json"):
        run(folder, arguments)


def made_folder(case):
    """Returns such a folder, which goes with the case."""
    folder = pathlib.Path(case.enterContext(tempfile.TemporaryDirectory()))
    fill(folder)
    return folder


def start(folder, arguments, *, program=None, environment=None, **more):
    words = [str(folder / word[1:]) if word[0] == "@" else word for word in shlex.split(arguments)]
    streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
    return subprocess.Popen([program or TOOL, *words], env={**os.environ, **(environment or {})},
                            **streams, **more)


def run(folder, arguments, **more):
    """Returns how the command ended, what it wrote and what it said."""
    with start(folder, arguments, **more) as tool:
        try:
            output, error = tool.communicate(timeout=60)
        except subprocess.TimeoutExpired:
            tool.kill()
            raise
    return tool.returncode, output, error.decode()


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir() if path.is_file()}


class CallsFail(unittest.TestCase):
    """One call of the system after the other fails."""

    faults = 0

    @classmethod
    def tearDownClass(cls):
        print(f"faults injected into calls: {cls.faults}")

    @staticmethod
    def prepare(folder):
        """Sets what a command writes back to what was there before."""
        (folder / "out").write_bytes(OLD)
        shutil.copy(folder / "model.json", folder / "saved.json")

    def fail_once(self, folder, arguments, call, number, error):
        """Runs the command while a call fails. Returns None when there was no such call."""
        self.prepare(folder)
        told = folder.with_suffix(".told")
        told.unlink(missing_ok=True)
        outcome = run(folder, arguments, environment={
            "LD_PRELOAD": str(FAILING_CALLS), "QE_FAULT_FOLDER": str(folder),
            "QE_FAULT_CALL": call, "QE_FAULT_AT": str(number), "QE_FAULT_ERROR": str(error),
            "QE_FAULT_TOLD": str(told), "QEREFINER_SETTINGS": str(folder / "settings.ini"),
            "ASAN_OPTIONS": "verify_asan_link_order=0"})
        if not told.exists():
            return None
        told.unlink()
        return outcome

    def judge(self, outcome, error, right, before, now):
        code, output, said = outcome
        if code == right[0]:
            self.assertEqual((output, now), (right[1], right[3]), said)
            return
        self.assertIn(code, (CANNOT_READ, OUTPUT_FAILED), said)
        self.assertNotEqual(error, PARTLY_DONE, said)
        # SQLite and the settings have their own words.
        causes = (os.strerror(error) if error else "", "disk I/O error", "unable to open",
                  "malformed", "settings.ini: cannot be read")
        self.assertTrue(any(cause and cause in said for cause in causes), said)
        # Where a command writes a file and then says so, the file may be there already.
        self.assertIn(now, (before, right[3]), said)

    def test_each_call(self):
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            for problems in pool.map(self.fail_everywhere, COMMANDS):
                self.assertEqual(problems, [])
        self.assertGreater(self.faults, 100, "nothing was preloaded")

    def fail_everywhere(self, arguments):
        """Returns the faults that the command did not get over."""
        problems = []
        with tempfile.TemporaryDirectory() as parent:
            folder = pathlib.Path(parent) / "files"
            fill(folder)
            self.prepare(folder)
            before = contents(folder)
            right = run(folder, arguments,
                        environment={"QEREFINER_SETTINGS": str(folder / "settings.ini")})
            right += (contents(folder),)
            for call, errors in CALLS.items():
                for error in errors if SWEEPS else errors[:1] + errors[2:]:
                    for number in range(1, 1000) if SWEEPS else SAMPLE_OF_CALLS:
                        outcome = self.fail_once(folder, arguments, call, number, error)
                        if outcome is None:
                            break
                        type(self).faults += 1
                        try:
                            self.judge(outcome, error, right, before, contents(folder))
                        except AssertionError as problem:
                            problems.append((arguments, call, number, error, str(problem)))
        return problems


class OddFiles(unittest.TestCase):
    """What stands where a file is expected."""

    def setUp(self):
        self.folder = made_folder(self)
        (self.folder / "folder").mkdir()
        os.mkfifo(self.folder / "pipe")

    def check_refused(self, arguments, says, code, **more):
        with self.subTest(arguments):
            before = contents(self.folder)
            ended, _, said = run(self.folder, arguments, **more)
            self.assertEqual(ended, code, said)
            self.assertIn(says, said)
            self.assertEqual(contents(self.folder), before)

    def test_inputs(self):
        self.check_refused("path @model.json sale region", "not a regular file", CANNOT_READ,
                           environment={"QEREFINER_SETTINGS": str(self.folder)})
        for arguments in ("path {} sale region", "import {}", "import sql {}", "check {}",
                          "batch @model.json {}", "evaluate @model.json {}", "history pack {}",
                          "path @model.json sale region --history {}",
                          "check @model.json --baseline {}"):
            self.check_refused(arguments.format("@folder"), "folder", CANNOT_READ)
            self.check_refused(arguments.format("@nothing"), "there is no such file", CANNOT_READ)
        for arguments in ("path {} sale region", "import {}"):
            self.check_refused(arguments.format("/dev/full"), "/dev/full: ", CANNOT_READ)
            self.check_refused(arguments.format("/dev/null"), "is empty", CANNOT_READ)
        self.check_refused("import sql /dev/full", "/dev/full: ", CANNOT_READ)

    def test_outputs(self):
        for arguments in ("import sql @tables.sql -o {}", "path @model.json sale region -o {}",
                          "batch @model.json @requests.jsonl --quiet -o {}"):
            self.check_refused(arguments.format("@folder"), "is a folder", OUTPUT_FAILED)
            self.check_refused(arguments.format("@nothing/out"), "No such file", OUTPUT_FAILED)
            self.check_refused(arguments.format("/dev/full"), "No space left", OUTPUT_FAILED)
            self.assertEqual(run(self.folder, arguments.format("/dev/null"))[0], 0)

    def test_pipes(self):
        model = (self.folder / "model.json").read_bytes()
        right = run(self.folder, "path @model.json sale region")
        writer = threading.Thread(target=(self.folder / "pipe").write_bytes, args=(model,))
        writer.start()
        self.assertEqual(run(self.folder, "path @pipe sale region")[:2], right[:2])
        writer.join()
        with start(self.folder, "path @model.json sale region -o @pipe") as tool:
            self.assertEqual((self.folder / "pipe").read_bytes(), right[1])
            self.assertEqual(tool.wait(), 0)
            tool.communicate()

    @unittest.skipIf(os.geteuid() != 0, "only the administrator can become somebody else")
    def test_permissions(self):
        with tempfile.TemporaryDirectory() as shared:
            tool = pathlib.Path(shared) / "qerefine"
            shutil.copy(TOOL, tool)
            pathlib.Path(shared).chmod(0o755)
            self.folder.chmod(0o755)
            somebody = {"user": 65534, "group": 65534, "extra_groups": [], "program": tool}
            for name in ("model.json", "tables.sql", "shop.db", "requests.jsonl", "past.sql"):
                (self.folder / name).chmod(0)
            for arguments in ("import @tables.sql", "import @shop.db", "facts @model.json",
                              "history pack @past.sql"):
                self.check_refused(arguments, "Permission denied", CANNOT_READ, **somebody)
            (self.folder / "tables.sql").chmod(0o644)
            (self.folder / "out").write_bytes(OLD)
            for place in ("@out", "@new"):
                self.check_refused(f"import sql @tables.sql -o {place}", "Permission denied",
                                   OUTPUT_FAILED, **somebody)

    def test_files_that_change_while_they_are_read(self):
        """Whatever part of a file is seen, it is read or refused."""
        for name in ("model.json", "tables.sql", "shop.db"):
            path = self.folder / name
            whole = path.read_bytes()
            done = threading.Event()

            def rewrite(path=path, whole=whole, done=done):
                draw = random.Random(name)
                while not done.is_set():
                    with open(path, "r+b") as file:
                        file.truncate(draw.randrange(len(whole)))
                        file.seek(0, os.SEEK_END)
                        file.write(whole[file.tell():])

            writer = threading.Thread(target=rewrite)
            writer.start()
            try:
                for _ in range(200 if SWEEPS else 5):
                    code, _, said = run(self.folder, f"import @{name}")
                    self.assertIn(code, (0, CANNOT_READ), said)
                    self.assertTrue(code == 0 or str(path) in said, said)
            finally:
                done.set()
                writer.join()


class BrokenDatabases(unittest.TestCase):
    def test_each_page(self):
        """Bytes of each page are turned around, and the file ends at each page."""
        folder = made_folder(self)
        with contextlib.closing(sqlite3.connect(folder / "shop.db")) as database:
            database.executescript("PRAGMA page_size = 512; VACUUM;" + "".join(
                f"CREATE TABLE wide_{i} (id INTEGER PRIMARY KEY, other INT REFERENCES region, "
                f"{', '.join(f'column_{j} TEXT' for j in range(20))});" for i in range(6)))
        whole = (folder / "shop.db").read_bytes()
        right = run(folder, "import @shop.db")
        self.assertEqual(right[0], 0)
        draw = random.Random(7)
        faults = 0
        for begin in range(0, len(whole), 512):
            for count in (0, 1, 4, 512) * (20 if SWEEPS else 1):
                broken = bytearray(whole if count else whole[:begin])
                for _ in range(count):
                    broken[begin + draw.randrange(512)] ^= draw.randrange(1, 256)
                (folder / "shop.db").write_bytes(broken)
                code, _, said = run(folder, "import @shop.db")
                self.assertIn(code, (0, CANNOT_READ), said)
                self.assertTrue(code == 0 or "shop.db: " in said, said)
                faults += 1
        print(f"databases broken: {faults}")


class Proxy:
    """Hands on what comes to a socket, and hangs up after so many bytes of answers."""

    def __init__(self, listening, server, most):
        self.server = server
        self.left = most
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(str(listening))
        listening.chmod(0o777)
        self.listener.listen()
        self.thread = threading.Thread(target=self.serve)
        self.thread.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.thread.join()

    def serve(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            with client, socket.socket(socket.AF_UNIX) as server:
                server.connect(str(self.server))
                self.hand_on(client, server)

    def hand_on(self, client, server):
        while True:
            for ready in select.select([client, server], [], [])[0]:
                data = ready.recv(65536)
                if ready is server:
                    data = data[:self.left]
                    self.left -= len(data)
                with contextlib.suppress(OSError):
                    (client if ready is server else server).sendall(data)
                if not data or self.left == 0:
                    return


class ServersGoAway(unittest.TestCase):
    def check(self, kind, name, url):
        if not kind.is_installed():
            self.skipTest("the server is not installed")
        folder = made_folder(self)
        output = folder / "out"
        with kind() as server:
            server.ask("CREATE DATABASE shop;", server.first)
            server.ask(TABLES, "shop")
            place = folder / name
            cuts = 0
            most = self.count(place, server, name, folder, url)
            draw = random.Random(3)
            for cut in sorted(draw.sample(range(most), min(most, 400 if SWEEPS else 4))):
                output.write_bytes(OLD)
                place.unlink(missing_ok=True)
                with Proxy(place, server.folder / name, cut):
                    code, _, said = run(folder, f"import {url.format(folder)} -o @out")
                self.assertEqual(code, CANNOT_READ, f"after {cut} bytes: {said}")
                self.assertIn("shop", said)
                self.assertEqual(output.read_bytes(), OLD)
                cuts += 1
            print(f"{kind.__name__}: connections cut: {cuts}")

    def count(self, place, server, name, folder, url):
        """Returns how many bytes of answers there are."""
        plenty = 1 << 30
        with Proxy(place, server.folder / name, plenty) as proxy:
            code, _, said = run(folder, f"import {url.format(folder)} -o @out")
            self.assertEqual(code, 0, said)
        return plenty - proxy.left

    def test_postgresql(self):
        self.check(servers.Postgres, ".s.PGSQL.5432", "postgresql://postgres@/shop?host={}")

    def test_mariadb(self):
        self.check(servers.MariaDb, "socket", "mysql://root@/shop?socket={}/socket")


class Interrupts(unittest.TestCase):
    """Signals come at random moments; a batch ends in order, the others at once."""

    def setUp(self):
        self.folder = made_folder(self)
        (self.folder / "requests.jsonl").write_text(REQUEST * 3000, encoding="utf-8")
        (self.folder / "tables.sql").write_text(MANY_TABLES, encoding="utf-8")

    def interrupt(self, arguments, ending, moment):
        """Returns how the command ended and what it said."""
        (self.folder / "out").write_bytes(OLD)
        with start(self.folder, arguments) as tool:
            time.sleep(moment)
            tool.send_signal(ending)
            _, said = tool.communicate(timeout=60)
        return tool.returncode, said.decode()

    def check(self, arguments, judge_part):
        begin = time.monotonic()
        self.assertEqual(run(self.folder, arguments)[0], 0)
        length = time.monotonic() - begin
        whole = (self.folder / "out").read_bytes()
        names = set(os.listdir(self.folder))
        draw = random.Random(11)
        for _ in range(200 if SWEEPS else 5):
            ending = draw.choice([signal.SIGINT, signal.SIGTERM, signal.SIGKILL])
            code, said = self.interrupt(arguments, ending, draw.uniform(0, length))
            written = (self.folder / "out").read_bytes()
            if code == 1:
                judge_part(whole, written, said)
            else:
                self.assertIn(code, (0, -ending), said)
                self.assertIn(written, (OLD, whole))
                self.assertTrue(code != 0 or written == whole)
            left = set(os.listdir(self.folder)) - names
            # Nobody can tidy up after SIGKILL.
            self.assertTrue(not left or ending == signal.SIGKILL, left)
            for name in left:
                (self.folder / name).unlink()

    def test_import(self):
        self.check("import sql @tables.sql -o @out", lambda *_: self.fail("no part is written"))

    def test_batch(self):
        def judge_part(whole, written, said):
            self.assertIn("(interrupted)", said)
            self.assertTrue(whole.startswith(written) and (not written or written[-1:] == b"\n"))
        self.check("batch @model.json @requests.jsonl -o @out", judge_part)


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    FAILING_CALLS = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()

"""Databases for tests: SQLite, PostgreSQL, MariaDB and DuckDB, each empty and gone at the end.

Each opener is a context manager that yields a database, or raises Unavailable where the machine has
none. Servers run in a temporary folder of their own, on a Unix socket, as another user than root,
and are ended by their process, also when a test fails.
"""
import contextlib
import ctypes
import os
import pathlib
import shutil
import sqlite3
import subprocess
import tempfile
import time

SECONDS_TO_START = 120
SECONDS_TO_STOP = 20


class Unavailable(Exception):
    """There is no such database on this machine."""


class DatabaseError(Exception):
    """A statement failed."""


def find_program(name, *folders):
    path = os.pathsep.join([os.environ.get("PATH", ""), *folders])
    found = shutil.which(name, path=path)
    if found is None:
        raise Unavailable(f"{name} is not installed")
    return found


def as_ordinary_user(folder):
    """Returns what stands before a command so that it runs as one who may own servers."""
    if os.getuid() != 0:
        return ["env", f"HOME={folder}"]
    shutil.chown(folder, "nobody", "nogroup")
    return [find_program("setpriv"), "--reuid=nobody", "--regid=nogroup", "--clear-groups",
            "env", f"HOME={folder}"]


@contextlib.contextmanager
def server_folder():
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="qe", dir=memory, ignore_cleanup_errors=True) as folder:
        yield folder


@contextlib.contextmanager
def running(command, is_ready, folder):
    """Runs a server until the block ends."""
    log = pathlib.Path(folder, "log")
    with open(log, "wb") as output:
        server = subprocess.Popen(command, stdout=output, stderr=output, stdin=subprocess.DEVNULL)
    try:
        end = time.monotonic() + SECONDS_TO_START
        while not is_ready():
            if server.poll() is not None or time.monotonic() > end:
                raise RuntimeError("the server does not start:\n" + log.read_text(errors="replace"))
            time.sleep(0.05)
        yield
    finally:
        server.terminate()
        try:
            server.wait(SECONDS_TO_STOP)
        except subprocess.TimeoutExpired:
            server.kill()
            server.wait()


class ClientDatabase:
    """A database that is reached by the client of its server."""

    def __init__(self, strict, tolerant):
        self.strict = strict
        self.tolerant = tolerant

    def run(self, script):
        """Runs the statements and returns their rows as text; raises DatabaseError at the first one
        that fails."""
        done = subprocess.run(self.strict, input=script.encode(), capture_output=True, check=False)
        if done.returncode != 0:
            raise DatabaseError(done.stderr.decode(errors="replace").strip())
        return done.stdout.decode(errors="replace")

    def count(self, query):
        """Returns the number that the query gives."""
        return int(self.run(query))

    def load(self, script):
        """Runs the statements, also behind those that fail."""
        done = subprocess.run(self.tolerant, input=script, capture_output=True, check=False)
        return done.stdout.decode(errors="replace")


@contextlib.contextmanager
def postgresql():
    """Yields a function that returns a new database of a PostgreSQL server."""
    folders = sorted(map(str, pathlib.Path("/usr/lib/postgresql").glob("*/bin")), reverse=True)
    initdb, postgres = (find_program(name, *folders) for name in ("initdb", "postgres"))
    psql = find_program("psql")
    with server_folder() as folder:
        user = as_ordinary_user(folder)
        subprocess.run([*user, initdb, "-A", "trust", "-U", "postgres", "-D", f"{folder}/data",
                        "--no-sync", "-E", "UTF8", "--locale=C"], check=True, capture_output=True)
        client = [psql, "-X", "-q", "-At", "-h", folder, "-U", "postgres"]
        command = [*user, postgres, "-D", f"{folder}/data", "-k", folder, "-c", "listen_addresses=",
                   "-c", "fsync=off", "-c", "full_page_writes=off", "-c", "autovacuum=off",
                   "-c", "max_locks_per_transaction=2000"]

        def is_ready():
            return subprocess.run([*client, "-c", "SELECT 1"], capture_output=True,
                                  check=False).returncode == 0

        names = (f"d{number}" for number in range(1000000))

        def create():
            name = next(names)
            subprocess.run([*client, "-c", f"CREATE DATABASE {name}"], check=True)
            opened = [*client, "-d", name]
            return ClientDatabase([*opened, "-v", "ON_ERROR_STOP=1"], opened)

        with running(command, is_ready, folder):
            yield create


@contextlib.contextmanager
def mariadb():
    """Yields a function that returns a new database of a MariaDB server."""
    install, server = (find_program(name, "/usr/sbin", "/usr/bin")
                       for name in ("mariadb-install-db", "mariadbd"))
    program = find_program("mariadb")
    with server_folder() as folder:
        user = as_ordinary_user(folder)
        subprocess.run([*user, install, "--no-defaults", f"--datadir={folder}/data",
                        "--auth-root-authentication-method=normal", "--skip-test-db",
                        "--skip-name-resolve"], check=True, capture_output=True)
        client = [program, "--no-defaults", "-S", f"{folder}/socket", "-u", "root", "-N", "-B",
                  "--default-character-set=utf8mb4"]
        command = [*user, server, "--no-defaults", f"--datadir={folder}/data",
                   f"--socket={folder}/socket", "--skip-networking", f"--pid-file={folder}/pid",
                   "--innodb-flush-log-at-trx-commit=0", "--optimizer-search-depth=0",
                   "--sync-frm=0"]

        def is_ready():
            return subprocess.run([*client, "-e", "SELECT 1"], capture_output=True,
                                  check=False).returncode == 0

        names = (f"d{number}" for number in range(1000000))

        def create(name=None):
            name = name or next(names)
            subprocess.run([*client, "-e", f"CREATE DATABASE IF NOT EXISTS `{name}`"], check=True)
            opened = [*client, "-D", name]
            return ClientDatabase(opened, [*opened, "--force"])

        with running(command, is_ready, folder):
            yield create


class SqliteDatabase:
    def __init__(self):
        self.connection = sqlite3.connect(":memory:")

    def run(self, script):
        try:
            self.connection.executescript(script)
        except sqlite3.Error as error:
            raise DatabaseError(str(error)) from error

    def count(self, query):
        try:
            return self.connection.execute(query).fetchone()[0]
        except sqlite3.Error as error:
            raise DatabaseError(str(error)) from error

    def load(self, script):
        self.connection.executescript(script.decode("utf-8-sig"))


@contextlib.contextmanager
def sqlite():
    """Yields a function that returns a new database."""
    yield SqliteDatabase


class DuckDbResult(ctypes.Structure):
    _fields_ = [(f"field{number}", ctypes.c_uint64) for number in range(8)]


class DuckDbDatabase:
    """A database of the library, over its C interface."""

    def __init__(self, library):
        self.library = library
        self.database = ctypes.c_void_p()
        self.connection = ctypes.c_void_p()
        if library.duckdb_open(None, ctypes.byref(self.database)) != 0:
            raise RuntimeError("DuckDB cannot be opened")
        library.duckdb_connect(self.database, ctypes.byref(self.connection))

    def run(self, script):
        self.count(script)

    def count(self, query):
        result = DuckDbResult()
        failed = self.library.duckdb_query(self.connection, query.encode(), ctypes.byref(result))
        text = self.library.duckdb_result_error(ctypes.byref(result)) if failed else None
        number = 0 if failed else self.library.duckdb_value_int64(
            ctypes.byref(result), ctypes.c_uint64(0), ctypes.c_uint64(0))
        self.library.duckdb_destroy_result(ctypes.byref(result))
        if failed:
            raise DatabaseError(text.decode(errors="replace") if text else "unknown error")
        return number

    def load(self, script):
        self.run(script.decode("utf-8-sig"))


@contextlib.contextmanager
def duckdb(folder):
    """Yields a function that returns a new database of the library below the folder."""
    libraries = sorted(pathlib.Path(folder).glob("**/libduckdb.so"))
    if not libraries:
        raise Unavailable("there is no libduckdb.so: Scripts/fetch_duckdb.sh fetches it")
    library = ctypes.CDLL(str(libraries[0]))
    library.duckdb_result_error.restype = ctypes.c_char_p
    library.duckdb_value_int64.restype = ctypes.c_int64
    yield lambda: DuckDbDatabase(library)

"""Databases for tests: SQLite, PostgreSQL, MariaDB and DuckDB, each empty and gone at the end.

Each opener is a context manager that yields a function which makes databases, or raises Unavailable
where the machine has none.
"""
import contextlib
import ctypes
import pathlib
import sqlite3
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "Support"))
import servers  # noqa: E402


class Unavailable(Exception):
    """There is no such database on this machine."""


class DatabaseError(Exception):
    """A statement failed."""


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
def running(kind, create_database, strict, tolerant):
    """Yields a function that returns a new database of a server of the kind. `strict` and `tolerant`
    are the options by which its client ends at the first failure, or does not."""
    if not kind.is_installed():
        raise Unavailable(f"{kind.__name__} is not installed")
    names = (f"d{number}" for number in range(1000000))
    with kind() as server:
        def create(name=None):
            name = name or next(names)
            subprocess.run([*server.client(server.first), *create_database(name)], check=True)
            client = server.client(name)
            return ClientDatabase([*client, *strict], [*client, *tolerant])

        yield create


def postgresql():
    return running(servers.Postgres, lambda name: ["-c", f"CREATE DATABASE {name}"],
                   ["-At", "-v", "ON_ERROR_STOP=1"], ["-At"])


def mariadb():
    return running(servers.MariaDb,
                   lambda name: ["-e", f"CREATE DATABASE IF NOT EXISTS `{name}`"],
                   ["--skip-force", "-N", "-B"], ["-N", "-B"])


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

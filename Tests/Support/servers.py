"""Database servers for tests: each on a socket in a folder of its own, run by a user without rights.

Whatever is started ends with the test process, also when that is killed.
"""
import ctypes
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import tempfile
import time

SECONDS_TO_START = 60
SET_DEATH_SIGNAL = 1  # PR_SET_PDEATHSIG
LIBC = ctypes.CDLL(None)


def find_postgres():
    """Returns the folder of the newest PostgreSQL's programs, or None."""
    folders = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin/initdb"),
                     key=lambda program: int(program.parts[-3]))
    return folders[-1].parent if folders else None


PATH = os.environ["PATH"] + ":/usr/sbin"


def find_quick_folder():
    """Returns a folder in memory, where databases are made much faster, or None."""
    memory = pathlib.Path("/dev/shm")
    needed = 2 ** 30
    fits = memory.is_dir() and shutil.disk_usage(memory).free > needed
    return memory if fits and os.access(memory, os.W_OK) else None


class Server:
    """A server that `start` starts; use it in a with statement, which ends it."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qerefine.", dir=find_quick_folder()))
        self.process = None
        # The programs refuse to be run by root.
        self.user = {}
        if os.getuid() == 0:
            nobody = pwd.getpwnam("nobody")
            self.user = {"user": nobody.pw_uid, "group": nobody.pw_gid, "extra_groups": []}
            os.chown(self.folder, nobody.pw_uid, nobody.pw_gid)

    def __enter__(self):
        try:
            self.start()
            return self
        except BaseException:
            self.__exit__()
            raise

    def __exit__(self, *_):
        self.end()
        shutil.rmtree(self.folder, ignore_errors=True)

    def end(self):
        if self.process is not None and self.process.poll() is None:
            self.process.send_signal(signal.SIGINT if self.ends_by_interrupt else signal.SIGTERM)
            try:
                self.process.wait(20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()

    def prepare(self, *command):
        """Runs a program to its end as the user of the server."""
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, cwd=self.folder,
                       env={"PATH": PATH, "LC_ALL": "C"}, **self.user)

    def launch(self, *command):
        ending = signal.SIGINT if self.ends_by_interrupt else signal.SIGTERM
        with open(self.folder / "log", "wb") as log:
            self.process = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, cwd=self.folder,
                env={"PATH": PATH, "LC_ALL": "C"}, start_new_session=True,
                preexec_fn=lambda: LIBC.prctl(SET_DEATH_SIGNAL, ending), **self.user)
        end = time.monotonic() + SECONDS_TO_START
        while not self.answers():
            if self.process.poll() is not None or time.monotonic() > end:
                raise RuntimeError((self.folder / "log").read_text(errors="replace"))
            time.sleep(0.05)

    def ask(self, statements, database):
        """Runs statements, each on its own: those that fail are passed over."""
        text = statements if isinstance(statements, bytes) else statements.encode()
        subprocess.run(self.client(database), input=text, check=False, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, cwd=self.folder,
                       env={"PATH": PATH, "PGCLIENTENCODING": "UTF8"})

    def answers(self):
        """Returns whether the server is ready for work."""
        return subprocess.run([*self.client(self.first), *self.nothing], check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0


class Postgres(Server):
    """Lets everybody in without a password, but the user "locked"."""
    ends_by_interrupt = True
    first = "postgres"
    nothing = ("-c", "SELECT 1")

    @staticmethod
    def is_installed():
        return find_postgres() is not None

    def start(self):
        programs = find_postgres()
        data = self.folder / "data"
        self.prepare(programs / "initdb", "-D", data, "-U", "postgres", "-A", "trust", "-E", "UTF8",
                     "--locale=C", "--no-sync")
        (data / "pg_hba.conf").write_text(
            "local all locked scram-sha-256\nlocal all all trust\n", encoding="utf-8")
        self.launch(programs / "postgres", "-D", data, "-k", self.folder, "-F",
                    "-c", "listen_addresses=", "-c", "max_wal_size=4GB", "-c", "autovacuum=off",
                    "-c", "full_page_writes=off", "-c", "max_locks_per_transaction=2000")

    def client(self, database):
        return [find_postgres() / "psql", "-X", "-q", "-h", self.folder, "-U", "postgres", "-d",
                database]

    def dump(self, database):
        return subprocess.run(
            [find_postgres() / "pg_dump", "-s", "-h", self.folder, "-U", "postgres", database],
            check=True, capture_output=True).stdout

    def url(self, database, user="postgres"):
        return f"postgresql://{user}@/{database}?host={self.folder}"


class MariaDb(Server):
    """Lets everybody in without a password, but the user "locked"."""
    ends_by_interrupt = False
    first = "mysql"
    nothing = ("-e", "SELECT 1")

    @staticmethod
    def is_installed():
        return all(shutil.which(program, path=PATH)
                   for program in ("mariadbd", "mariadb-install-db", "mariadb"))

    def start(self):
        data = self.folder / "data"
        self.prepare("mariadb-install-db", "--no-defaults", f"--datadir={data}",
                     "--auth-root-authentication-method=normal", "--skip-test-db",
                     "--skip-name-resolve", "--innodb-log-file-size=32M")
        self.launch(shutil.which("mariadbd", path=PATH), "--no-defaults", f"--datadir={data}",
                    f"--socket={self.folder}/socket", f"--pid-file={self.folder}/pid",
                    "--skip-networking", "--innodb-flush-log-at-trx-commit=0",
                    "--innodb-log-file-size=32M", "--optimizer-search-depth=0", "--sync-frm=0")

    def client(self, database):
        return ["mariadb", "--no-defaults", "--force", f"--socket={self.folder}/socket", "-uroot",
                "--database", database, "--default-character-set=utf8mb4"]

    def url(self, database, user="root"):
        return f"mysql://{user}@/{database}?socket={self.folder}/socket"

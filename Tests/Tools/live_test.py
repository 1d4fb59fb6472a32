#!/usr/bin/python3
"""Reads databases on real servers, and compares that with what the scripts that made them say.

Usage: live_test.py QEREFINE DATA_FOLDER [unittest argument...]

Exits with 77 where no server is installed. Cases whose server or data is absent are skipped.
"""
import json
import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "Support"))
import servers  # noqa: E402

SECRET = "open sesame"

# Databases that scripts make under names of their own.
DATABASES = {"chinook.mysql": "Chinook"}

# What keeps a script from being loaded as it stands: rows that come from files beside it, an encoding
# that it names but does not have, and a type of an extension.
REPAIRS = {
    "adventureworks.postgresql":
        lambda script: re.sub(rb"(?ms)^INSERT INTO Production\.ProductReview .*?\);$", b"",
                              script.replace(b"SET CLIENT_ENCODING=latin1;", b"")),
    "dhis2.postgresql": lambda script: b"CREATE DOMAIN geometry AS text;\n" + script,
}


def run(*arguments, **environment):
    return subprocess.run([TOOL, *map(str, arguments)], text=True, capture_output=True, check=False,
                          timeout=120, env={**os.environ, **environment})


def describe(model):
    """Returns what a model file says of each table and join; the order of keys does not count, nor
    which names a script wrote between quotes."""
    space, = json.loads(model)["namespaces"]
    tables = {table["name"]: {**table, "keys": sorted(table.get("keys", []))}
              for table in space.get("subjects", [])}
    for table in tables.values():
        table.pop("rows", None)
        table.pop("quoted", None)
    joins = {(join["name"], join.get("condition")): join
             for join in space.get("relationships", [])}
    return {**tables, **joins}


class LiveCase(unittest.TestCase):
    maxDiff = 4000
    kind = None

    @classmethod
    def setUpClass(cls):
        if cls.kind is None or not cls.kind.is_installed():
            raise unittest.SkipTest("the server is not installed")
        cls.server = cls.enterClassContext(cls.kind())
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))

    def model_of(self, *arguments, **environment):
        imported = run("import", *arguments, **environment)
        self.assertEqual(imported.returncode, 0, imported.stderr)
        return describe(imported.stdout), imported.stderr

    def make(self, database, statements):
        self.server.ask(f"CREATE DATABASE {database};", self.server.first)
        self.server.ask(statements, database)

    def check_against_script(self, database, script):
        """Compares the database with a script, which is called after it."""
        file = self.folder / f"{database}.sql"
        file.write_bytes(script)
        dumped, _ = self.model_of("sql", file)
        live, _ = self.model_of(self.server.url(database))
        self.assertEqual(live, dumped, database)
        return live

    def check_refused(self, *arguments, says, code=3, **environment):
        refused = run(*arguments, **environment)
        self.assertEqual(refused.returncode, code, refused.stderr)
        self.assertIn(says, refused.stderr)
        self.assertEqual(refused.stderr.count("\n"), 1, refused.stderr)
        self.assertNotIn(SECRET, refused.stderr)
        self.assertNotIn("@/", refused.stderr)

    def check_dumps(self, dialect):
        files = sorted(DATA.glob(f"dumps/*.{dialect}.sql"))
        if not files:
            self.skipTest(f"no dumps at hand: {DATA}")
        for file in files:
            name = file.name.removesuffix(".sql")
            script = file.read_bytes()
            database = DATABASES.get(name, name.split(".", maxsplit=1)[0])
            self.make(database, REPAIRS.get(name, lambda text: text)(script))
            with self.subTest(name):
                self.assertGreater(len(self.check_against_script(database, script)), 10)
                self.check_dump_of_server(database)

    def check_dump_of_server(self, database):
        pass


class PostgresTest(LiveCase):
    kind = servers.Postgres

    def check_dump_of_server(self, database):
        dump = self.server.dump(database)
        self.assertIn(b"\n\\restrict ", dump)
        self.check_against_script(database, dump)

    def test_dumps(self):
        self.check_dumps("postgresql")

    def test_what_only_a_catalogue_knows(self):
        self.make("odd", """
            CREATE SCHEMA "Sales Dept"; CREATE SCHEMA other;
            CREATE TABLE city (id int PRIMARY KEY, name text);
            CREATE TABLE other.city (id int PRIMARY KEY, twin int REFERENCES public.city);
            COMMENT ON TABLE other.city IS 'Städte, die''s gibt';
            CREATE TABLE "Sales Dept"."O'Brien ""x"".ü" (a int, b int NOT NULL, "C c" int,
              PRIMARY KEY (b, a), city int REFERENCES other.city, UNIQUE ("C c") INCLUDE (city));
            COMMENT ON COLUMN "Sales Dept"."O'Brien ""x"".ü"."C c" IS 'd';
            CREATE TABLE refers (x int, y int, lower text,
              FOREIGN KEY (y, x) REFERENCES "Sales Dept"."O'Brien ""x"".ü" (a, b));
            CREATE UNIQUE INDEX ON refers (lower(lower)); CREATE UNIQUE INDEX ON refers (x) WHERE y > 1;
            ALTER TABLE refers ADD gone int UNIQUE; ALTER TABLE refers DROP gone;
            CREATE TABLE parted (id int, at date, city int REFERENCES city, PRIMARY KEY (id, at))
              PARTITION BY RANGE (at);
            CREATE TABLE parted_1 PARTITION OF parted FOR VALUES FROM ('2020-01-01') TO ('2021-01-01');
            CREATE TABLE heir (more int) INHERITS (city);
            CREATE VIEW v AS SELECT * FROM city; CREATE MATERIALIZED VIEW m AS SELECT * FROM city;
            CREATE EXTENSION postgres_fdw; CREATE SERVER far FOREIGN DATA WRAPPER postgres_fdw;
            CREATE FOREIGN TABLE elsewhere (id int NOT NULL) SERVER far;
            INSERT INTO city SELECT i FROM generate_series(1, 70) i; ANALYZE city;
            CREATE ROLE stranger LOGIN; GRANT SELECT ON city TO stranger;""")
        live = self.check_against_script("odd", self.server.dump("odd"))
        self.assertIn("other.city", live)
        self.assertIn("elsewhere", live)
        as_stranger = run("import", self.server.url("odd", "stranger"))
        self.assertEqual(describe(as_stranger.stdout), live)
        self.assertIn('"rows": 70', as_stranger.stdout)
        for note in ("views left out, which have no keys: 2\n",
                     "partitions left out, whose rows are read through their tables: 1\n",
                     "for some rows only: 2\n", "tables whose rows this user may not read: 6\n"):
            self.assertIn(note, as_stranger.stderr)

    def test_some_of_the_tables(self):
        self.make("chosen", """CREATE SCHEMA s; CREATE TABLE s.a_1 (i int PRIMARY KEY);
            CREATE TABLE s.a_2 (i int REFERENCES s.a_1); CREATE TABLE b (i int REFERENCES s.a_1);""")
        url = self.server.url("chosen")
        self.assertEqual(len(self.model_of(url, "--tables", "A_?", "--schema", "s")[0]), 3)
        alone, notes = self.model_of(url, "--tables", "b")
        self.assertEqual(list(alone), ["b"])
        self.assertIn("foreign keys left out that lead to tables that are not read: 1\n", notes)
        self.check_refused("path", url, "a", "b", "--tables", "a_3", code=2,
                           says='tables: matches nothing: "a_3" (did you mean a_1 or a_2?)')
        self.check_refused("show", url, "--schema", "pubic", code=2, says="did you mean public?")
        asked = run("path", url, "a_1", "b", "--format", "sql")
        self.assertIn('FROM b', asked.stdout)

    def test_passwords(self):
        self.make("guarded", f"CREATE ROLE locked LOGIN PASSWORD '{SECRET}';")
        url = self.server.url("guarded", "locked")
        self.check_refused("import", url, says='password authentication failed for user "locked"',
                           PGPASSWORD="wrong")
        self.check_refused("import", url, says="no password supplied", PGPASSFILE="/nowhere")
        file = self.folder / "passwords"
        file.write_text(f"*:*:*:locked:{SECRET}\n", encoding="utf-8")
        file.chmod(0o600)
        for environment in ({"PGPASSWORD": SECRET}, {"PGPASSFILE": str(file)}):
            self.assertEqual(self.model_of(url, **environment)[0], {})

    def test_failing_server(self):
        self.check_refused("import", self.server.url("nowhere"), says='"nowhere" does not exist')
        self.check_refused("import", "postgresql:///x?host=/nowhere", says="Is the server running")
        self.check_refused("import", self.server.url("x") + "&hots=1", says="did you mean host?")
        self.make("busy", "CREATE TABLE t (i int);")
        url = self.server.url("busy")
        locked = subprocess.Popen(self.server.client("busy"), stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)
        self.addCleanup(locked.communicate)
        locked.stdin.write("BEGIN; LOCK t; LOCK pg_description;"
                           "\n\\echo locked\n")
        locked.stdin.flush()
        self.assertEqual(locked.stdout.readline(), "locked\n")
        self.check_refused("import", url, "--statement-timeout", "1", says="statement timeout")
        threading.Timer(1.0, self.server.ask, (
            "SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
            "WHERE application_name = 'qerefine'", "postgres")).start()
        self.check_refused("import", url, says="terminating connection")

    def test_silent_server(self):
        for scheme, name in (("postgresql", ".s.PGSQL.5432"), ("mysql", "socket")):
            path = self.folder / name
            with socket.socket(socket.AF_UNIX) as listener:
                listener.bind(str(path))
                listener.listen()
                host = f"host={self.folder}" if scheme == "postgresql" else f"socket={path}"
                self.check_refused("import", f"{scheme}:///x?connect_timeout=2&{host}",
                                   says="cannot be read: ")

    def test_odbc(self):
        if not pathlib.Path("/usr/lib/x86_64-linux-gnu/odbc/psqlodbcw.so").exists():
            self.skipTest("the ODBC driver is not installed")
        self.make("byodbc", """CREATE TABLE "Ünï" (i int PRIMARY KEY, u int UNIQUE, v text NOT NULL);
            CREATE TABLE b (i int NOT NULL, j int, a int REFERENCES "Ünï", c int REFERENCES "Ünï" (u),
                            PRIMARY KEY (j, i));
            CREATE TABLE a_c (j int, i int, FOREIGN KEY (i, j) REFERENCES b (i, j));
            CREATE TABLE abc (i int); CREATE VIEW v AS SELECT 1;""")
        connection = (f"Driver={{PostgreSQL Unicode}};Servername={self.server.folder};"
                      "Database=byodbc;UID=postgres")
        self.assertEqual(self.model_of("odbc", connection)[0],
                         self.model_of(self.server.url("byodbc"))[0])
        self.check_refused("path", f"odbc:{connection};Pwd={SECRET}", "a", "b",
                           says="holds a password")
        self.check_refused("import", f"odbc:{connection.replace('byodbc', 'gone')}",
                           says="does not exist")
        self.check_refused("import", "odbc:DSN=nowhere", says="odbc:DSN=nowhere: cannot be read: ")


class MariaDbTest(LiveCase):
    kind = servers.MariaDb

    def test_dumps(self):
        self.check_dumps("mysql")

    def test_what_only_a_catalogue_knows(self):
        self.server.ask("CREATE DATABASE aside; CREATE TABLE aside.far (i int PRIMARY KEY);",
                        self.server.first)
        script = """
            CREATE TABLE `O'Brien ``x``.ü` (a int, b int NOT NULL, `C c` varchar(99), PRIMARY KEY (b, a),
              KEY (a, b), UNIQUE (`C c`(5))) COMMENT 'it''s';
            CREATE TABLE refers (x int, y int COMMENT 'y', UNIQUE (x, y),
              FOREIGN KEY (y, x) REFERENCES `O'Brien ``x``.ü` (a, b));"""
        self.make("odd", script)
        live = self.check_against_script("odd", script.encode())
        self.assertEqual(len(live), 3)
        self.server.ask("CREATE TABLE near (i int, FOREIGN KEY (i) REFERENCES aside.far (i));"
                        "CREATE VIEW v AS SELECT 1; CREATE SEQUENCE q; INSERT INTO near VALUES (NULL);",
                        "odd")
        both, notes = self.model_of(self.server.url("odd"), "--schema", "odd", "--schema", "asi*")
        self.assertEqual(both["far"]["table"], "aside.far")
        self.assertEqual(len(both), 6)
        self.assertIn("views left out, which have no keys: 1\n", notes)

    def test_passwords_and_failures(self):
        self.make("guarded", f"CREATE USER locked IDENTIFIED BY '{SECRET}'; CREATE TABLE seen (i int);"
                             "CREATE TABLE unseen (i int); GRANT SELECT ON guarded.seen TO locked;")
        url = self.server.url("guarded", "locked")
        home = {"HOME": str(self.folder), "MYSQL_HOME": str(self.folder)}
        self.check_refused("import", url, says="Access denied", MYSQL_PWD="wrong", **home)
        self.assertEqual(list(self.model_of(url, MYSQL_PWD=SECRET, **home)[0]), ["seen"])
        file = self.folder / ".my.cnf"
        file.write_text(f"[client]\npassword=\"{SECRET}\"\n", encoding="utf-8")
        file.chmod(0o600)
        self.assertEqual(list(self.model_of(url, **home)[0]), ["seen"])
        self.check_refused("import", self.server.url("nowhere"), says="Unknown database 'nowhere'")
        self.check_refused("import", "mysql:///x?socket=/nowhere", says="Can't connect")
        self.check_refused("import", "mysql://a=b/x", says="names no host")


class SqliteByOdbcTest(unittest.TestCase):
    def test_same_as_without(self):
        if not pathlib.Path("/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so").exists():
            self.skipTest("the ODBC driver is not installed")
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "shop.db")
            subprocess.run(["sqlite3", file], check=True, text=True, input="""
                CREATE TABLE a (x int NOT NULL, y int, n text, PRIMARY KEY (x, y), UNIQUE (n));
                CREATE TABLE b (p int REFERENCES c, q int, r int, s int,
                                FOREIGN KEY (r, s) REFERENCES a (x, y), FOREIGN KEY (q) REFERENCES c);
                CREATE TABLE c (i INTEGER PRIMARY KEY);""")
            direct = run("import", file)
            by_odbc = run("import", "odbc", f"Driver=SQLite3;Database={file}")
            self.assertEqual(by_odbc.returncode, 0, by_odbc.stderr)
            self.assertEqual(describe(by_odbc.stdout), describe(direct.stdout))


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    DATA = pathlib.Path(sys.argv.pop(1)).resolve()
    if not servers.Postgres.is_installed() and not servers.MariaDb.is_installed():
        print("neither PostgreSQL nor MariaDB is installed")
        sys.exit(77)
    unittest.main()

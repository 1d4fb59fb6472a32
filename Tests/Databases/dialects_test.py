#!/usr/bin/python3
"""Executes generated SQL in SQLite, PostgreSQL, MariaDB and DuckDB.

Usage: dialects_test.py QEREFINE DATA_FOLDER DUCKDB_FOLDER [unittest argument...]

Random questions, always the same ones, are asked over every schema of the data folder; the SQL must
run in the database that its dialect is for. A schema is loaded as it is written where the database
reads it, and everywhere as its names would have come out there. Databases that the machine lacks
are skipped, and told; where nothing is left, or without the data, the test exits with 77.
"""
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

import databases

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "Support"))
import hostile  # noqa: E402

TOOL, DATA, DUCKDB = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])

OPENERS = {"sqlite": databases.sqlite, "postgresql": databases.postgresql, "mysql": databases.mariadb,
           "duckdb": lambda: databases.duckdb(DUCKDB)}
FOLDS = {"postgresql": str.lower, "oracle": str.upper, "ansi": str.upper}
QUOTES = {"mysql": "`"}
WORDS = pathlib.Path(__file__).parents[2] / "Toolkit" / "Sql" / "ReservedWords.h"
WORDS_OF_QUESTION = 10
QUESTIONS = 6
QUESTIONS_OF_SMALL = 2
SMALL_SCHEMAS = 12

ROWS = r"""
CREATE TABLE a (n int, t varchar(9), d date);
CREATE TABLE b (n int);
INSERT INTO a VALUES (1, 'x', '2024-03-05'), (2, 'a@b', '2023-12-31'), (NULL, NULL, NULL);
INSERT INTO b VALUES (1), (3), (NULL);
"""
# Conditions between both tables, and how many pairs of rows meet.
CONDITIONS = {
    "[a].[n] IS NOT DISTINCT FROM [b].[n]": 2,
    "[a].[n] IS DISTINCT FROM [b].[n]": 7,
    "[a].[t] || [b].[n] = 'x1'": 1,
    "[a].[t] || [b].[n] + 1 = 'x2'": 1,
    "[a].[t] = 'a\\b' AND [b].[n] = 3": 1,
    "([a].[n] = [b].[n]) = ([a].[t] = 'x')": 3,
    "CASE WHEN [a].[n] = 1 THEN TRUE ELSE FALSE END AND [b].[n] = 3": 1,
    "NOT ([a].[n] = [b].[n]) AND TRUE": 3,
    "YEAR([a].[d]) = 2024 AND month([a].[d]) = 3 AND DAY([a].[d]) = 5 AND [b].[n] = 1": 1,
    "substring([a].[t], 1, 1) = substr('xyz', 1, 1) AND len([a].[t]) = [b].[n]": 1,
    "substring([a].[t], 2) = 'x' OR 2 * mod(13, 10) = [a].[n] + [b].[n] + [b].[n] - 1": 1,
    "CAST([a].[n] AS varchar(10)) = '2' AND nvl([b].[n], 7) = 7": 1,
    "CAST(CAST([b].[n] AS text) AS decimal(9, 2)) = 3.00 AND ceil(1.5) = [a].[n]": 1,
    "[a].[d] < now() AND [a].[d] < CURRENT_DATE AND [b].[n] = 1": 2,
}


def run_tool(*arguments):
    done = subprocess.run([TOOL, *map(str, arguments)], capture_output=True, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{arguments}: {done.returncode}: {done.stderr.decode()}")
    return done.stdout.decode()


class Model:
    """A model file that was imported, and what it says of names."""

    def __init__(self, script, folder, roles):
        self.script = script
        self.file = pathlib.Path(folder, f"{script.stem}.{roles}.json")
        run_tool("import", "sql", script, "--roles", roles, "-o", self.file)
        self.json = json.loads(self.file.read_text(encoding="utf-8"))
        self.content = self.json["namespaces"][0]
        self.fold = FOLDS.get(self.json["dialect"], str)

    def questions(self, count, seed):
        """Returns sets of two to five subjects that joins connect."""
        chance = random.Random(f"{self.script.name} {seed}")
        joins = self.content.get("relationships", [])
        sets = []
        for _ in range(count if joins else 0):
            first = chance.choice(joins)
            chosen = [first["left"], first["right"]]
            for _ in range(chance.randrange(4)):
                near = [end for join in joins if {join["left"], join["right"]} & set(chosen)
                        for end in (join["left"], join["right"]) if end not in chosen]
                chosen += [chance.choice(near)] if near else []
            sets.append(sorted(set(chosen)))
        return sets

    def tables(self, fold):
        """Returns each table as a database has it that folds names without quotes like that: the
        parts of its name, and its columns."""
        for subject in self.content["subjects"]:
            quoted = subject.get("quoted", [])
            items = [item if isinstance(item, str) else item["name"]
                     for item in subject.get("items", [])]

            def stored(name, quoted=quoted):
                is_plain = re.fullmatch(r"[^\W\d][\w$#@]*", name) and self.fold(name) == name
                is_quoted = quoted is True or name in (quoted or [])
                return fold(name) if is_plain and not is_quoted else name

            yield [stored(part) for part in split_name(subject["table"])], list(map(stored, items))


def split_name(text):
    """Returns the parts of a qualified name, of which some stand in brackets."""
    parts = re.findall(r"\[((?:[^]]|\]\])*)\]|([^.\[]+)", text)
    return [bracketed.replace("]]", "]") or plain for bracketed, plain in parts]


def write_tables(model, dialect):
    """Returns statements that create the tables of a model, with whole numbers in all columns."""
    mark = QUOTES.get(dialect, '"')

    def quote(name):
        return mark + name.replace(mark, 2 * mark) + mark

    spaces, statements = {}, []
    opening = {"sqlite": "ATTACH ':memory:' AS {};", "mysql": "CREATE OR REPLACE DATABASE {};",
               "duckdb": "CREATE SCHEMA {};", "postgresql": "CREATE SCHEMA {};"}[dialect]
    for parts, columns in model.tables(FOLDS.get(dialect, str)):
        for space in parts[:-1]:
            spaces.setdefault(space, opening.format(quote(space)))
        name = ".".join(map(quote, parts))
        engine = " ENGINE=MEMORY" if dialect == "mysql" else ""
        listed = ", ".join(f"{quote(column)} int" for column in columns)
        statements.append(f"CREATE TABLE {name} ({listed or quote('none')}){engine};")
    start = "BEGIN;" if dialect == "postgresql" else ""
    return "\n".join([start, *spaces.values(), *statements])


def bracket(name):
    return "[" + name.replace("]", "]]") + "]"


def list_scripts():
    """Returns the large schemas and some of the many small ones."""
    small = sorted(DATA.glob("schemas/spider/*.sql"))
    large = sorted([*DATA.glob("dumps/*.sql"), *DATA.glob("schemas/*.sql")])
    return large, sorted(random.Random(7).sample(small, min(SMALL_SCHEMAS, len(small))))


def clean(script):
    """Returns a script without commands of its client and without what needs an extension."""
    text = script.read_bytes().replace(b"\r\n", b"\n")
    text = re.sub(rb"(?im)^\\(c|connect|copy)\b.*$", b"", text)
    return re.sub(rb"(?i)\bgeometry\([^)]*\)", b"text", text)


def load(create, model):
    """Returns a database in which the script of the model was run."""
    script = clean(model.script)
    chosen = re.findall(rb"(?im)^USE [`]?(\w+)", script)
    database = create(chosen[-1].decode()) if chosen and model.json["dialect"] == "mysql" \
        else create()
    database.load(script)
    return database


def join(left, right, condition):
    return {"name": f"{left}-{right}", "left": left, "leftCardinality": "1..n", "right": right,
            "rightCardinality": "1..n", "condition": condition}


def make_word_model():
    """Returns a model of tables and columns that are called like the words of all dialects, joined
    one after the other."""
    words = sorted(set(re.findall(r"\b[a-z][a-z_0-9]+\b",
                                  " ".join(re.findall(r'"([^"]*)"', WORDS.read_text())))))
    joins = [join(bracket(left), bracket(right), f"[{left}].[{left}] = [{right}].[{right}]")
             for left, right in zip(words, words[1:])]
    subjects = [{"name": word, "items": [word]} for word in words]
    return words, {"version": 1, "subjects": subjects, "relationships": joins}


class DialectsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        large, small = list_scripts()
        with ThreadPoolExecutor(2) as pool:
            cls.models = list(pool.map(lambda script: Model(
                script, cls.folder, random.Random(script.name).choice(["plain", "shortcuts"])),
                [*large, *small]))
        cls.small = set(small)

    def open(self, dialect):
        try:
            return self.enterContext(OPENERS[dialect]())
        except databases.Unavailable as reason:
            self.skipTest(str(reason))

    def ask(self, model, dialect, native):
        """Returns the statements for questions of a model, in the dialect."""
        count = QUESTIONS_OF_SMALL if model.script in self.small else QUESTIONS

        def answer(subjects):
            option = [] if native else ["--dialect", dialect]
            return run_tool("path", model.file, *map(bracket, subjects), "--format", "sql",
                            "--select", *option)

        with ThreadPoolExecutor(2) as pool:
            return list(pool.map(answer, model.questions(count, f"{dialect} {native}")))

    def execute(self, create, model, tables, statements):
        """Runs the statements over the tables; where one fails, tells which."""
        try:
            create().run("\n".join([tables, *statements]))
        except databases.DatabaseError:
            for statement in statements:
                try:
                    create().run("\n".join([tables, statement]))
                except databases.DatabaseError as error:
                    self.fail(f"{model.script.name}: {error}\n{statement}")
            raise

    def check(self, dialect):
        create = self.open(dialect)
        shared = create()
        # A server that forgets what a session made, when it is not committed, needs one database.
        create_empty = (lambda: shared) if dialect == "postgresql" else create
        questions, loaded = 0, []
        for model in self.models:
            if model.json["dialect"] == dialect:
                database = load(create, model)
                statements = self.ask(model, dialect, native=True)
                self.execute(lambda database=database: database, model, "", statements)
                questions += len(statements)
                loaded.append(model.script.stem)
            statements = self.ask(model, dialect, native=False)
            self.execute(create_empty, model, write_tables(model, dialect), statements)
            questions += len(statements)
        self.check_conditions(create(), dialect)
        self.check_words(create(), dialect)
        if dialect != "sqlite":
            self.check_hostile_names(create(), dialect)
        print(f"{dialect}: {questions} questions over {len(self.models)} schemas, "
              f"{len(loaded)} of them as they are written")
        self.assertGreater(questions, 200)

    def check_conditions(self, database, dialect):
        database.run(ROWS.replace("@", "\\\\" if dialect == "mysql" else "\\"))
        for condition, pairs in CONDITIONS.items():
            model = {"version": 1, "relationships": [join("a", "b", condition)],
                     "subjects": [{"name": "a", "items": ["n", "t", "d"]},
                                  {"name": "b", "items": ["n"]}]}
            file = pathlib.Path(self.folder, "condition.json")
            file.write_text(json.dumps(model), encoding="utf-8")
            sql = run_tool("path", file, "a", "b", "--format", "sql", "--dialect", dialect)
            with self.subTest(sql):
                self.assertEqual(database.count("SELECT COUNT(*) " + sql), pairs)

    def check_words(self, database, dialect):
        words, model = make_word_model()
        file = pathlib.Path(self.folder, "words.json")
        file.write_text(json.dumps(model), encoding="utf-8")
        mark = QUOTES.get(dialect, '"')
        engine = " ENGINE=MEMORY" if dialect == "mysql" else ""
        database.run("".join(f"CREATE TABLE {mark}{word}{mark} ({mark}{word}{mark} int){engine};\n"
                             for word in words))
        for first in range(0, len(words) - 1, WORDS_OF_QUESTION):
            last = min(first + WORDS_OF_QUESTION, len(words) - 1)
            sql = run_tool("path", file, bracket(words[first]), bracket(words[last]), "--format",
                           "sql", "--select", "--dialect", dialect)
            try:
                database.run(sql)
            except databases.DatabaseError as error:
                self.fail(f"{error}\n{sql}")

    def check_hostile_names(self, database, dialect):
        """Joins tables of hostile names, each in a schema of that name, as far as the database has
        such names."""
        mark = QUOTES.get(dialect, '"')
        kind = "DATABASE" if dialect == "mysql" else "SCHEMA"

        def quote(name):
            return mark + name.replace(mark, 2 * mark) + mark

        def make_table(name):
            return (f"CREATE {kind} {quote(name)};\n"
                    f"CREATE TABLE {quote(name)}.{quote(name)} ({quote(name)} int);\n")

        names, folded = [], set()
        for name in hostile.NAMES.values():
            try:
                if name.lower() not in folded:
                    database.run(make_table(name))
                    names.append(name)
                    folded.add(name.lower())
            except databases.DatabaseError:
                continue
        self.assertGreater(len(names), 15)
        database.run(f"CREATE TABLE {quote('hub')} "
                     f"({', '.join(quote(name) + ' int' for name in names)})")
        file = pathlib.Path(self.folder, "hostile.json")
        file.write_text(json.dumps(hostile.make_model(names)), encoding="utf-8")
        for first in range(0, len(names), WORDS_OF_QUESTION):
            part = names[first:first + WORDS_OF_QUESTION]
            asked = [f"{bracket(name)}.{bracket(name)}" for name in part]
            sql = run_tool("path", file, "hub", *asked, "--format", "sql", "--select", "--dialect",
                           dialect)
            try:
                database.run(sql)
            except databases.DatabaseError as error:
                self.fail(f"{error}\n{sql}")
        database.run(f"SELECT * FROM {quote('hub')}")

    def test_sqlite(self):
        self.check("sqlite")

    def test_postgresql(self):
        self.check("postgresql")

    def test_mariadb(self):
        self.check("mysql")

    def test_duckdb(self):
        self.check("duckdb")


if __name__ == "__main__":
    if not DATA.is_dir():
        print(f"there are no schemas in {DATA}")
        sys.exit(77)
    tests = unittest.main(argv=[sys.argv[0], *sys.argv[4:]], exit=False).result
    if tests.testsRun == len(tests.skipped):
        sys.exit(77)
    sys.exit(0 if tests.wasSuccessful() else 1)

#!/usr/bin/env python3
"""Takes names that would do harm where they are read as more than names through every output.

Usage: hostile_test.py QEREFINE [unittest argument...]
"""
import contextlib
import html.parser
import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from xml.dom import minidom

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "Support"))
import hostile  # noqa: E402

NAMES = list(hostile.NAMES.values())
# What acts on a terminal or turns the direction of writing.
HARMFUL = re.compile("[\0-\x09\x0b-\x1f\x7f-\x9f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff]")
DIALECTS = ("sqlite", "mysql", "sqlserver", "duckdb", "ansi")
# SQLite takes no more databases beside the first.
SCHEMAS = 8
WORD = r'"[^"%\\\n]+"'
MERMAID_LINES = re.compile(
    rf"erDiagram|    {WORD}( {{)?|    }}|        any (?!(?:PK|FK|UK) )[A-Za-z_][A-Za-z0-9_]*"
    rf"( PK| FK| PK,FK)?( {WORD})?|    {WORD} [|}}][o|]--[o|][|{{] {WORD} : {WORD}", re.I)
DBML_NAME = r'"[^"\\\n]+"'
DBML_COLUMNS = rf"(?:{DBML_NAME}|\({DBML_NAME}(?:, {DBML_NAME})*\))"
DBML_TEXT = r"'(?:[^'\\\n]|\\.)*'"
DBML_LINES = re.compile(
    rf"|Table {DBML_NAME} {{|  {DBML_NAME} any( \[note: {DBML_TEXT}\])?|  indexes {{|  }}|}}"
    rf"|    {DBML_COLUMNS} \[(pk|unique)\]|  Note: {DBML_TEXT}"
    rf"|Ref {DBML_NAME}: {DBML_NAME}\.{DBML_COLUMNS} (>|-|<>) {DBML_NAME}\.{DBML_COLUMNS}")


def qualify(name):
    return f"{hostile.bracket(name)}.{hostile.bracket(name)}"


def quote(name):
    return '"' + name.replace('"', '""') + '"'


class Markup(html.parser.HTMLParser):
    """Collects the tags of a page, their attributes and what its scripts hold."""

    def __init__(self, text):
        super().__init__()
        self.tags, self.attributes, self.scripts = [], [], []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.tags.append(tag)
        self.attributes += [name for name, _ in attrs]
        if tag == "script":
            self.scripts.append("")

    def handle_data(self, data):
        if self.lasttag == "script" and self.scripts:
            self.scripts[-1] += data


class HostileNames(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.model = cls.write("model.json", hostile.make_model(NAMES))
        cls.question = ["hub", *map(qualify, NAMES)]

    @classmethod
    def write(cls, name, model):
        file = cls.folder / name
        file.write_text(json.dumps(model), encoding="utf-8")
        return file

    def tearDown(self):
        self.assertEqual(list(self.folder.glob("**/pwned")), [])
        self.assertFalse((self.folder.parent.parent / "pwned").exists())

    def run_tool(self, *arguments, **more):
        return subprocess.run([TOOL, *map(str, arguments)], capture_output=True, cwd=self.folder,
                              check=False, timeout=120, **more)

    def ask(self, *arguments, codes=(0,)):
        """Returns what the tool answers, as text."""
        run = self.run_tool(*arguments)
        self.assertIn(run.returncode, codes, run.stderr[:1000])
        self.assert_harmless(run.stderr.decode())
        return run.stdout.decode()

    def assert_harmless(self, text):
        found = HARMFUL.search(text)
        self.assertIsNone(found, found and text[max(0, found.start() - 60):found.end()])

    def test_sql_runs(self):
        for first in range(0, len(NAMES), SCHEMAS):
            names = NAMES[first:first + SCHEMAS]
            for schemas in (True, False):
                model = self.write("sql.json", hostile.make_model(names, schemas))
                database = sqlite3.connect(":memory:")
                columns = ", ".join(map(quote, dict.fromkeys(map(str.lower, names))))
                database.execute(f"CREATE TABLE hub ({columns})")
                database.execute("INSERT INTO hub VALUES (" + ", ".join("1" for _ in {
                    name.lower() for name in names}) + ")")
                for name in dict.fromkeys(map(str.lower, names)):
                    if schemas:
                        database.execute(f"ATTACH ':memory:' AS {quote(name)}")
                    table = f"{quote(name)}.{quote(name)}" if schemas else quote(name)
                    database.execute(f"CREATE TABLE {table} ({quote(name)})")
                    database.execute(f"INSERT INTO {table} VALUES (1)")
                roles = [hostile.bracket(f"role {name}") for name in names]
                sql = self.ask("path", model, "hub", *map(qualify, names), *roles, "--format", "sql",
                               "--select", "--dialect", "sqlite")
                rows = database.execute(sql).fetchall()
                self.assertEqual((len(rows), set(rows[0])), (1, {1}))
                self.assertEqual(database.execute("SELECT COUNT(*) FROM hub").fetchall(), [(1,)])

    def test_sql_of_a_database_runs_in_it(self):
        path = self.folder / "hostile.db"
        path.unlink(missing_ok=True)
        names = [name for name in NAMES if name != "Case"]
        with contextlib.closing(sqlite3.connect(path)) as database:
            keys = []
            for name in names:
                database.execute(f"CREATE TABLE {quote('t' + name)} ({quote(name)} PRIMARY KEY)")
                database.execute(f"INSERT INTO {quote('t' + name)} VALUES (1)")
                keys.append(f"{quote(name)} REFERENCES {quote('t' + name)}({quote(name)})")
            database.execute(f"CREATE TABLE hub ({', '.join(keys)})")
            database.execute("INSERT INTO hub VALUES (" + ", ".join("1" for _ in names) + ")")
            database.commit()
            asked = [hostile.bracket("t" + name) for name in names]
            sql = self.ask("path", path, "hub", *asked, "--format", "sql", "--select")
            rows = database.execute(sql).fetchall()
            self.assertEqual((len(rows), set(rows[0])), (1, {1}))
        imported = json.loads(self.ask("import", path))
        self.assertEqual({subject["name"] for subject in imported["namespaces"][0]["subjects"]},
                         {"hub", *("t" + name for name in names)})

    def test_quotes_stand_in_every_dialect(self):
        quoted = {"mysql": r"`(?:[^`]|``)*`", "sqlserver": r"\[(?:[^]]|\]\])*\]"}
        for dialect in DIALECTS:
            sql = self.ask("path", self.model, *self.question, "--format", "sql", "--select",
                           "--dialect", dialect)
            # Without comments and what stands between quotes nothing of a name is left.
            rest = re.sub(quoted.get(dialect, r'"(?:[^"]|"")*"') + r"|--.*", "", sql)
            with self.subTest(dialect):
                self.assertFalse(set(re.findall(r"[^A-Za-z0-9_\s.,=]", rest.rstrip(";\n"))))

    def test_json_and_text(self):
        answer = json.loads(self.ask("path", self.model, *self.question, "--format", "json"))
        self.assertEqual({join["name"] for join in answer["joins"]}, set(NAMES))
        for command in ("path", "best", "subjects", "tree", "facts"):
            self.assert_harmless(self.ask(command, self.model, *self.question))
        history = self.folder / "past.sql"
        history.write_text("\n".join(
            f"SELECT 1 FROM hub JOIN {quote(name)} ON hub.{quote(name)} = {quote(name)}.{quote(name)};"
            f" -- {name}" for name in NAMES), encoding="utf-8")
        self.assert_harmless(self.ask("path", self.model, *self.question, "--history", history,
                                      "--explain-history"))
        for name in NAMES:
            run = self.run_tool("path", self.model, "hub", "-x" + name, "--favour", name)
            self.assertNotEqual(run.returncode, 0)
            self.assert_harmless(run.stderr.decode())

    def test_batch_lines_stay_lines(self):
        requests = "".join(json.dumps({"id": name, "subjects": ["hub", qualify(name), *wrong]}) + "\n"
                           for name in NAMES for wrong in ([], ["no " + name]))
        run = self.run_tool("batch", self.model, input=requests.encode())
        answers = [json.loads(line) for line in run.stdout.decode().split("\n")[:-1]]
        self.assertEqual([answer["id"] for answer in answers],
                         [name for name in NAMES for _ in range(2)])
        self.assertEqual([answer["line"] for answer in answers],
                         list(range(1, 2 * len(NAMES) + 1)))
        self.assert_harmless(run.stderr.decode())

    def test_reports(self):
        self.assert_harmless(self.ask("check", self.model, "--all", "--limit", "0"))
        alone = hostile.make_model(NAMES)
        alone["relationships"], alone["decisions"] = [], []
        model = self.write("alone.json", alone)
        text = self.ask("check", model, "--all", "--limit", "0", codes=(0, 1))
        self.assert_harmless(text)
        junit = self.ask("check", model, "--format", "junit", "--all", "--limit", "0", codes=(0, 1))
        self.assert_harmless(junit)
        minidom.parseString(junit)
        for report in ("json", "sarif"):
            found = json.dumps(json.loads(self.ask("check", model, "--format", report, "--all",
                                                   "--limit", "0", codes=(0, 1))))
            for name in NAMES:
                self.assertIn(json.dumps(name)[1:-1], found)

    @unittest.skipUnless(shutil.which("dot"), "Graphviz is not installed")
    def test_pictures(self):
        for command in (["path", self.model, *self.question], ["show", self.model, "--limit", "0"]):
            self.assert_harmless(self.ask(*command, "--format", "dot"))
            svg = self.ask(*command, "--format", "svg")
            self.assert_harmless(svg)
            parts = minidom.parseString(svg).getElementsByTagName("*")
            self.assertLessEqual({part.tagName for part in parts},
                                 {"svg", "g", "title", "polygon", "polyline", "path", "text"})
            attributes = {name for part in parts for name in part.attributes.keys()}
            self.assertFalse({name for name in attributes if re.match("on|href|xlink:href", name)})

    @unittest.skipUnless(shutil.which("dot"), "Graphviz is not installed")
    def test_page(self):
        page = self.ask("path", self.model, *self.question, "--format", "html")
        self.assert_harmless(page)
        self.assertIn("content=\"default-src 'none'; style-src 'unsafe-inline'; "
                      "script-src 'unsafe-inline'\"", page)
        markup = Markup(page)
        self.assertEqual(markup.tags.count("script"), 2)
        self.assertFalse({"b", "i", "img", "iframe", "link", "object"} & set(markup.tags))
        self.assertFalse([name for name in markup.attributes if name.startswith("on")])
        data = json.loads(markup.scripts[0])
        self.assertEqual(data["paths"][0]["sql"], self.ask(
            "path", self.model, *self.question, "--format", "sql"))

    def test_exports(self):
        # Words that Mermaid and DBML read themselves.
        for names in (NAMES, ["PK", "fk", "erDiagram", "title", "Table", "Ref", "Note", "1a"]):
            model = self.write("exported.json", hostile.make_model(names))
            for target, lines in (("mermaid", MERMAID_LINES), ("dbml", DBML_LINES)):
                text = self.ask("export", model, "--to", target)
                self.assert_harmless(text)
                for line in text.split("\n")[:-1]:
                    self.assertRegex(line, rf"\A(?:{lines.pattern})\Z" if target == "dbml" else
                                     rf"(?i)\A(?:{lines.pattern})\Z")
            for target in ("ossie", "tbls"):
                file = self.folder / f"exported.{target}"
                self.ask("export", model, "--to", target, "-o", file)
                facts = self.ask("subjects", file, *("hub", hostile.bracket(names[0])), "--format",
                                 "json")
                self.assertIn(names[0], json.dumps(json.loads(facts)).replace('\\"', '"'))
        if shutil.which("dot"):
            text = self.ask("export", self.model, "--to", "dot")
            self.assert_harmless(text)
            subprocess.run(["dot", "-Tsvg"], input=text.encode(), capture_output=True, check=True)

    def test_files(self):
        for number, name in enumerate(name for name in NAMES if "/" not in name):
            folder = self.folder / f"files {number}"
            folder.mkdir()
            model, output = folder / f"{name}.json", folder / f"out {name}"
            try:
                shutil.copy(self.model, model)
            except OSError:
                continue
            self.ask("path", model, "hub", "[case].[case]", "-o", output)
            self.assertIn("Path of 1 join", output.read_text(encoding="utf-8"))
            self.assertEqual(len(os.listdir(folder)), 2)
            model.write_text("{", encoding="utf-8")
            run = self.run_tool("path", model, "hub", "x")
            self.assertEqual(run.returncode, 3)
            self.assert_harmless(run.stderr.decode())

    def test_completion_runs_nothing(self):
        complete = """source <(qerefine completion bash)
            COMP_WORDS=(qerefine path model.json "$1"); COMP_CWORD=3; _qerefine
            printf '%s\\n' "${COMPREPLY[@]}" """
        environment = dict(os.environ, PATH=f"{TOOL.parent}:{os.environ['PATH']}")
        for begin in ("", "$(", "$(touch pwned)", "`touch pwned`", "x\"; touch pwned; "):
            subprocess.run(["bash", "-c", complete, "bash", begin], env=environment,
                           cwd=self.folder, capture_output=True, check=False, timeout=60)

    def test_names_that_are_none_are_refused(self):
        for name, reason in ((hostile.NUL, "U+0000"), ("", "has no name")):
            run = self.run_tool("facts", self.write("none.json", hostile.make_model([name])))
            self.assertEqual(run.returncode, 3)
            self.assertIn(reason, run.stderr.decode())
        for text in (b'{"version": 1, "subjects": ["\xff"]}', b'{"version": 1, "subjects": ["\\ud800"]}',
                     b"\xed\xa0\x80", b"CREATE TABLE \"a\xff\x9b\" (x);", b"\0" * 100):
            file = self.folder / "none"
            file.write_bytes(text)
            run = self.run_tool("facts", file, "--format", "json")
            self.assertIn(run.returncode, (0, 3))
            json.loads(run.stdout.decode() or "{}")
            self.assert_harmless(run.stderr.decode())

    def test_huge_name(self):
        model = self.write("huge.json", hostile.make_model([hostile.HUGE]))
        answered = [("path", "text"), ("path", "json"), ("path", "sql"), ("check", "sarif")]
        if shutil.which("dot"):
            answered += [("path", "svg"), ("path", "html"), ("show", "svg")]
        for command, output in answered:
            question = ["hub", "100:2"] if command == "path" else []
            self.ask(command, model, *question, "--format", output)
        for target in ("ossie", "tbls", "dbml", "mermaid", "dot"):
            self.ask("export", model, "--to", target, "-o", "huge")
        long = self.run_tool("path", model, "hub", "100:2", "--format", "sql", "--dialect",
                             "postgresql")
        self.assertEqual(long.returncode, 3)
        self.assertLess(len(long.stderr), 2000)


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()

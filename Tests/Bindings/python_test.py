#!/usr/bin/env python3
"""Tests the installed Python package against the tool.

Usage: python_test.py QEREFINE DATA_FOLDER [--all] [unittest argument...]

Without --all, one in ten of the published schemas is asked.
"""
import collections
import contextlib
import copy
import io
import json
import pathlib
import pickle
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor

import qerefine

ROOT = pathlib.Path(__file__).resolve().parents[2]
RETAIL = ROOT / "Examples" / "retail"
REPORT = ["returns", "store", "category"]
SHOP = """
CREATE TABLE region (id INTEGER PRIMARY KEY);
CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT NOT NULL REFERENCES region);
CREATE TABLE sale (customer_id INT NOT NULL REFERENCES customer,
                   payer_id INT REFERENCES customer);
CREATE TABLE island (id INTEGER PRIMARY KEY);
"""
ORDERS = """
CREATE TABLE region (id INTEGER PRIMARY KEY);
CREATE TABLE customer (id INTEGER PRIMARY KEY, region_id INT REFERENCES region);
CREATE TABLE orders (customer_id INT REFERENCES customer, ship_id INT REFERENCES region);
"""
TWINS = json.dumps({"subjects": ["a", "[x]"], "namespaces": [
    {"name": space, "subjects": ["a", "b.c"], "relationships": [{
        "name": "j", "left": f"{space}.{left}", "leftCardinality": "0..n",
        "right": f"{space}.{right}", "rightCardinality": "1..1"}]}
    for space, left, right in [("n", "a", "[b.c]"), ("m", "[b.c]", "a")]]})
LOG = json.dumps({"subjects": ["orders", "customer"],
                  "joins": [["orders.customer_id", "customer.id"]]})
TYPED = """
import qerefine

model: qerefine.Model = qerefine.Model("shop.sqlite", roles="shortcuts")
answer: qerefine.Answer = model.path("orders", "region", avoided_joins=["a-b"])
names: list[str] = [join.name for join in answer.joins]
weight: int | None = answer.weight
sql: str = answer.sql(dialect="duckdb", select=True)
"""


def run_tool(*arguments):
    return subprocess.run([TOOL, *map(str, arguments)], check=False, capture_output=True,
                          timeout=600, encoding="utf-8").stdout


class Documents(unittest.TestCase):
    def test_examples_run(self):
        with tempfile.TemporaryDirectory() as folder, contextlib.chdir(folder), \
                contextlib.redirect_stdout(io.StringIO()) as printed:
            subprocess.run(["sqlite3", "shop.sqlite"], input=ORDERS, check=True, encoding="utf-8")
            pathlib.Path("log.jsonl").write_text(LOG, encoding="utf-8")
            for name in ("README.md", "Documentation/python.md"):
                blocks = re.findall(r"```python\n(.*?)```", (ROOT / name).read_text("utf-8"), re.S)
                self.assertTrue(blocks, name)
                for block in blocks:
                    exec(compile(block, name, "exec"), {"qerefine": qerefine})
            self.assertIn("JOIN region", printed.getvalue())


class Answers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.model = qerefine.Model(RETAIL / "model.json")

    def test_are_the_tools(self):
        answer = self.model.path(*REPORT)
        path = ["path", RETAIL / "model.json", *REPORT, "--format"]
        self.assertEqual(answer.to_json(), run_tool(*path, "json"))
        self.assertEqual(answer.sql("mysql"), run_tool(*path, "sql", "--dialect", "mysql"))
        self.assertEqual(self.model.check(), json.loads(
            run_tool("check", RETAIL / "model.json", "--format", "json")))
        self.assertEqual(self.model.facts(*REPORT), json.loads(
            run_tool("facts", RETAIL / "model.json", *REPORT, "--format", "json")))
        self.assertEqual(
            self.model.evaluate(RETAIL / "requests.jsonl", history="leave-one-out"),
            json.loads(run_tool("evaluate", RETAIL / "model.json", RETAIL / "requests.jsonl",
                                "--format", "json", "--leave-one-out")))

    def test_tell_joins_alternatives_and_risks(self):
        answer = self.model.path(*REPORT)
        self.assertEqual([join.name for join in answer.joins][:2],
                         ["returns-sales", "sales-product"])
        self.assertEqual([one.weight for one in answer.alternatives], [85] * 4)
        self.assertEqual(answer.ambiguous.equally_cheap, 4)
        self.assertEqual(answer.multiplied, [])
        trap = self.model.path("sales", "inventory", "product")
        self.assertEqual({one.reason for one in trap.multiplied}, {"chasm"})
        self.assertIn("<qerefine.Answer returns, store, category: 5 joins", repr(answer))

    def test_fail_by_kind(self):
        model = qerefine.Model.from_bytes(SHOP, "shop.sql")
        with self.assertRaises(qerefine.UnknownNameError) as unknown:
            model.path("sales", "region")
        self.assertEqual(unknown.exception.suggestions, ["sale"])
        with self.assertRaises(qerefine.NotConnectedError) as apart:
            model.path("sale", "island")
        self.assertEqual(apart.exception.groups, [["sale"], ["island"]])
        self.assertFalse(model.ask({"subjects": ["sale", "island"]}).connected)
        with self.assertRaises(qerefine.RefusedError):
            model.path("sale", "island", cross_product=2)
        with self.assertRaises(qerefine.UsageError) as usage:
            model.path("sale", "region").sql("mysq")
        self.assertEqual(usage.exception.mistakes[0].place, "options#/dialect")
        with self.assertRaises(qerefine.RequestError):
            model.ask({"subjects": []})
        with self.assertRaises(qerefine.ModelError) as broken:
            qerefine.Model.from_bytes('{\n "subjects": 7}', "m.json")
        self.assertEqual(broken.exception.mistakes[0].place, "m.json#/subjects")
        for fail in [lambda: qerefine.Model("/no/such/file"),
                     lambda: model.batch("/no/such/file"),
                     lambda: qerefine.Model.from_bytes(SHOP, history="/no/such/file"),
                     lambda: model.evaluate([], history=pathlib.Path("/no/such/file"))]:
            with self.assertRaises(qerefine.ModelError) as missing:
                fail()
            self.assertEqual(missing.exception.mistakes[0].place, "/no/such/file")
        for fail in [lambda: model.ask("sale"), lambda: model.batch({"subjects": ["sale"]})]:
            self.assertRaisesRegex(TypeError, "a request is a dictionary", fail)

    def test_are_shown_in_notebooks(self):
        page = self.model.path(*REPORT)._repr_html_()
        self.assertIn("<table>", page)
        self.assertEqual("<svg" in page, shutil.which("dot") is not None)
        hostile = qerefine.Model.from_bytes(SHOP.replace("sale", '"<script>"'), "shop.sql")
        self.assertNotIn("<script>", hostile.path("<script>", "region")._repr_html_())

    def test_become_frames_and_graphs_where_there_are_any(self):
        answer = self.model.path(*REPORT)
        for name, convert in [("networkx", answer.to_networkx), ("pandas", answer.to_pandas)]:
            try:
                __import__(name)
            except ImportError:
                self.assertRaises(ImportError, convert)
                continue
            self.assertEqual(len(convert().edges if name == "networkx" else convert()), 5)
            if name == "networkx":
                graph = qerefine.Model.from_bytes(TWINS).to_networkx()
                self.assertEqual(set(map(frozenset, graph.edges)),
                                 {frozenset([f"{space}.a", f"{space}.[b.c]", "j"]) for space in "nm"})
                self.assertEqual(set(graph), {"n.a", "n.[b.c]", "m.[b.c]", "m.a", "[x]", "a"})

    def test_stay_in_their_process(self):
        answer = self.model.path(*REPORT)
        for held in (self.model, answer):
            self.assertIs(copy.deepcopy(held), held)
            self.assertRaisesRegex(TypeError, "process", pickle.dumps, held)

    def test_hold_the_published_schema(self):
        self.assertEqual(qerefine.schema("answer"), json.loads(
            (ROOT / "Documentation" / "answer.schema.json").read_text(encoding="utf-8")))
        self.assertEqual(qerefine.version(), run_tool("--version").strip())


class Requests(unittest.TestCase):
    def test_open_requests_are_answered_as_by_the_tool(self):
        if not (DATA / "requests").is_dir():
            self.skipTest("the published data is not there")
        for schema, requests in list_schemas():
            with self.subTest(schema=schema.name), tempfile.NamedTemporaryFile("w") as file:
                file.writelines(json.dumps(request) + "\n" for request in requests)
                file.flush()
                lines = run_tool("batch", schema, file.name, "--quiet").splitlines()
                model = qerefine.Model(schema)
                self.assertEqual(model.batch(requests), list(map(json.loads, lines)))
                for request, line in zip(requests[:20], lines):
                    if json.loads(line).get("error"):
                        with self.assertRaises(qerefine.QerefineError):
                            model.path(*request["subjects"])
                        continue
                    answer = model.ask({"subjects": request["subjects"]}).to_dict()
                    expected = {**json.loads(line), "alternatives": answer["alternatives"],
                                "joins": answer["joins"]}
                    self.assertEqual({"line": expected["line"], "id": request["id"], **answer},
                                     expected)


class Threads(unittest.TestCase):
    def test_share_a_model(self):
        model = qerefine.Model(RETAIL / "model.json")
        expected = model.path(*REPORT).to_json()
        with ThreadPoolExecutor(4) as pool:
            answers = list(pool.map(lambda _: model.path(*REPORT).to_json(), range(200)))
        self.assertEqual(set(answers), {expected})

    def test_run_beside_a_call(self):
        model = qerefine.Model(RETAIL / "model.json")
        requests = [{"subjects": REPORT}] * 1500
        begin = time.monotonic()
        call = threading.Thread(target=model.batch, args=(requests,))
        call.start()
        longest, last = 0.0, time.monotonic()
        while call.is_alive():
            now = time.monotonic()
            longest, last = max(longest, now - last), now
        # A call that keeps the lock would stop this thread for nearly all its time.
        self.assertLess(longest, (time.monotonic() - begin) / 2)


class Package(unittest.TestCase):
    def test_is_typed(self):
        if shutil.which("mypy") is None:
            self.skipTest("mypy is not installed")
        with tempfile.TemporaryDirectory() as folder:
            caller = pathlib.Path(folder, "caller.py")
            caller.write_text(TYPED, encoding="utf-8")
            package = pathlib.Path(qerefine.__file__).parent
            shutil.copytree(package, pathlib.Path(folder, "qerefine"))
            run = subprocess.run(["mypy", "--strict", "--python-version", "3.10", "caller.py",
                                  "qerefine"], cwd=folder, capture_output=True, text=True,
                                 check=False)
            self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_example_prints_what_the_one_in_c_does(self):
        script = ROOT / "Examples" / "python" / "report_sql.py"
        run = subprocess.run([sys.executable, script, RETAIL / "model.json", *REPORT,
                              "--dialect", "postgresql"], capture_output=True, check=True)
        self.assertEqual(run.stdout, (ROOT / "Examples" / "c" / "expected.sql").read_bytes())


def list_schemas():
    """Yields each schema with the requests about it."""
    requests = collections.defaultdict(list)
    for file in sorted((DATA / "requests").glob("*.jsonl")):
        for line in file.read_text(encoding="utf-8").splitlines():
            request = json.loads(line)
            requests[file.stem, request["db"]].append(request)
    for i, ((name, database), asked) in enumerate(sorted(requests.items())):
        folders = [DATA / "schemas", DATA / "schemas" / name]
        found = next(path for path in (folder / f"{database}.sql" for folder in folders)
                     if path.exists())
        if ALL or i % 10 == 0:
            yield found, asked


if __name__ == "__main__":
    TOOL, DATA = sys.argv.pop(1), pathlib.Path(sys.argv.pop(1))
    ALL = "--all" in sys.argv
    sys.argv = [argument for argument in sys.argv if argument != "--all"]
    unittest.main()

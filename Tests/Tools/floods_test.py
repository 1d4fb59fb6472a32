#!/usr/bin/env python3
"""Floods the tool: huge models, names, nesting and requests, and many requests in one process.

Usage: floods_test.py QEREFINE [--long | --threads N | unittest argument...]
  --long       in full size, and prints a table and how memory goes
  --threads N  only the requests, by N threads; for builds with the thread sanitizer
"""
import json
import os
import pathlib
import random
import resource
import subprocess
import sys
import tempfile
import threading
import unittest

RETAIL = pathlib.Path(__file__).resolve().parents[2] / "Examples" / "retail" / "model.json"
OPERATIONS = ("path", "best", "subjects", "between", "best between", "tree")
SELECTORS = ("keys", "first", "main-object")
SETTINGS = ("General Options/NewAlgo=0", "General Options/FFJoins=1",
            "General Options/AdjustWeightByFolder=1", "JoinGraph/CheapestTreesBound=2",
            "JoinGraph/CheapestTreesEffort=1")
POINTS = 20
MEBIBYTE = 1024
# What a flood may take: seconds of the processor and MiB of memory.
SECONDS = 60
MEMORY = 2048


def join(name, left, right, condition):
    return {"name": name, "left": left, "leftCardinality": "1..n", "right": right,
            "rightCardinality": "1..1", "condition": condition}


def make_pair(condition, count=1):
    return {"version": 1, "subjects": [{"name": "a", "items": ["k"]}, {"name": "b", "items": ["k"]}],
            "relationships": [join(f"j{i}", "a", "b", condition) for i in range(count)]}


def make_tree(size, parent):
    """Returns a model of many subjects, each joined to the one that `parent` gives its number."""
    return {"version": 1, "subjects": [{"name": f"s{i}", "items": ["k", "f"]} for i in range(size)],
            "relationships": [join(f"j{i}", f"s{i}", f"s{parent(i)}",
                                   f"[s{i}].[f] = [s{parent(i)}].[k]") for i in range(1, size)]}


def draw_request(chance, number, subjects, joins):
    """Returns a request with options at random."""
    def some(names, most):
        return chance.sample(names, chance.randrange(most + 1))

    request = {"id": number, "operation": chance.choice(OPERATIONS),
               "subjects": chance.sample(subjects, chance.randrange(1, 6)),
               "selector": chance.choice(SELECTORS), "crossProduct": chance.randrange(3),
               "grouping": chance.randrange(2), "useFactTableCount": chance.random() < 0.5,
               "useStraightestPath": chance.random() < 0.5}
    if "between" in request["operation"]:
        request["secondSet"] = chance.sample(subjects, chance.randrange(1, 4))
    for key, names in (("favouredJoins", joins), ("avoidedJoins", joins), ("requiredJoins", joins),
                       ("withoutJoins", joins), ("favouredSubjects", subjects),
                       ("withoutSubjects", subjects)):
        if chance.random() < 0.2:
            request[key] = some(names, 2)
    return json.dumps(request)


def list_names(content, *kinds):
    """Returns the names of the objects of those kinds in a model and what it holds."""
    names = [thing if isinstance(thing, str) else thing["name"] for kind in kinds
             for thing in content.get(kind, [])]
    for holder in content.get("folders", []) + content.get("namespaces", []):
        names += list_names(holder, *kinds)
    return names


def find_memory(process):
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="utf-8")
    return int(status.split("VmRSS:")[1].split()[0])


class Floods(unittest.TestCase):
    scale, requests, fresh, jobs = 20, 1000, 10, 1

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))

    def write(self, name, content):
        file = self.folder / name
        file.write_text(content if isinstance(content, str) else json.dumps(content),
                        encoding="utf-8")
        return file

    def flood(self, title, codes, *arguments):
        """Runs the tool within limits of time and memory, and returns its messages."""
        output, errors = self.folder / "output", self.folder / "errors"
        with open(output, "wb") as out, open(errors, "wb") as err, subprocess.Popen(
                [TOOL, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU,
                                                      (SECONDS, SECONDS))) as process:
            _, status, used = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        seconds, memory = used.ru_utime + used.ru_stime, used.ru_maxrss // MEBIBYTE
        if PRINTS:
            print(f"| {title} | {process.returncode} | {seconds:.1f} | {memory} |", flush=True)
        text = errors.read_text(encoding="utf-8", errors="replace")
        with self.subTest(title):
            self.assertIn(process.returncode, codes, text[:300])
            self.assertLess(memory, MEMORY)
        return text

    def test_parallel_joins(self):
        model = self.write("parallel.json", make_pair("[a].[k] = [b].[k]", 100_000 // self.scale))
        for output in ("text", "json", "sql"):
            self.flood(f"100,000 joins of two subjects: path, {output}", (0,), "path", model, "a", "b",
                       "--format", output)
        self.flood("100,000 joins of two subjects: check", (0, 1), "check", model)
        self.flood("100,000 joins of two subjects: show", (0,), "show", model, "--format", "dot")

    def test_large_models(self):
        size = 50_000 // self.scale
        tree = self.write("tree.json", make_tree(size, lambda i: (i - 1) // 2))
        ends = ("s1", f"s{size - 1}")
        self.flood("50,000 subjects: path", (0,), "path", tree, *ends)
        for command in ("check", "facts"):
            self.flood(f"50,000 subjects: {command}", (0, 1), command, tree)
        self.flood("50,000 subjects: export", (0,), "export", tree, "--to", "dbml")
        chain = self.write("chain.json", make_tree(size, lambda i: i - 1))
        self.flood("50,000 subjects in a row: path from end to end", (0,), "path", chain, "s0", ends[1])
        self.flood("50,000 subjects in a row: sql", (0,), "path", chain, "s0", ends[1], "--format",
                   "sql")

    def test_large_requests(self):
        size = 50_000 // self.scale
        tree = self.write("tree.json", make_tree(size, lambda i: (i - 1) // 2))
        count = size // 5
        asked = [f"s{size - 1 - i}" for i in range(count)]
        requests = self.write("large.jsonl", json.dumps({"subjects": asked}) + "\n")
        self.flood("a request of 10,000 subjects: batch", (0, 1), "batch", tree, requests)
        for command in ("path", "subjects"):
            self.flood(f"a request of 10,000 subjects: {command}", (0, 2), command, tree, *asked)

    def test_nesting(self):
        depth = 100_000
        for title, text in (("parentheses", "(" * depth + "[a].[k] = [b].[k]" + ")" * depth),
                            ("NOT", "NOT " * depth + "[a].[k] = [b].[k]"),
                            ("functions", "f(" * depth + "1" + ")" * depth)):
            model = self.write("condition.json", make_pair(text))
            self.assertIn("no more than 200 levels", self.flood(
                f"a condition of 100,000 {title}", (3,), "path", model, "a", "b"))
        for kind, text in (("json", "[" * depth + "]" * depth),
                           ("yaml", "a: " + "[" * depth + "]" * depth)):
            file = self.write(f"deep.{kind}", text)
            self.assertIn("nested too deep", self.flood(f"100,000 levels of {kind}", (3,), "facts", file))
        script = self.write("deep.sql", "CREATE TABLE a (x int PRIMARY KEY);\nCREATE TABLE t (a int "
                            "REFERENCES a(x), CHECK (" + "(" * depth + "a > 1" + ")" * depth + "));\n")
        for dialect in ("postgresql", "mysql", "sqlserver", "oracle", "sqlite"):
            self.assertIn("1 joins", self.flood(f"DDL of 100,000 parentheses: {dialect}", (0,),
                                                "import", "sql", script, "--from", dialect))

    def test_megabyte_name(self):
        name, twin = 999_999 * "n" + "n", 999_999 * "n" + "m"
        model = self.write("name.json", {
            "version": 1, "subjects": [{"name": name, "items": ["k"]}, {"name": twin, "items": ["k"]}],
            "relationships": [join(name, name, twin, f"[{name}].[k] = [{twin}].[k]")]})
        for output in ("text", "json", "sql", "dot"):
            self.flood(f"a name of a megabyte: {output}", (0,), "path", model, "100:1", "100:2",
                       "--format", output)
        wrong = self.write("wrong.jsonl", json.dumps({"subjects": [name[:-2] + "oo", "100:2"]}) + "\n")
        self.flood("a wrong name of a megabyte", (1,), "batch", model, wrong)

    def test_many_requests(self):
        """Answers of one process to many requests are those of fresh processes, and its memory
        does not grow."""
        chance = random.Random(2026)
        model = json.loads(RETAIL.read_text(encoding="utf-8"))
        names = [list_names(model, "subjects", "shortcuts"), list_names(model, "relationships")]
        lines = [draw_request(chance, number, *names) for number in range(self.requests)]
        options = [option for setting in chance.sample(SETTINGS, 2) for option in ("--set", setting)]
        for settings in ([], options):
            answers, curve = self.answer(lines, settings)
            if PRINTS:
                print(f"{len(lines)} requests {' '.join(settings)}: MiB", curve, flush=True)
            self.assertEqual(len(answers), len(lines))
            # What is kept for later requests is full after the first ones.
            self.assertLess(curve[-1], 1.1 * curve[POINTS // 4] + 4)
            for number in sorted(chance.sample(range(len(lines)), self.fresh)):
                fresh = subprocess.run([TOOL, "batch", RETAIL, *settings], check=False, text=True,
                                       input=lines[number] + "\n", capture_output=True).stdout
                expected, answer = json.loads(fresh), json.loads(answers[number])
                self.assertEqual({**answer, "line": 0}, {**expected, "line": 0}, lines[number])

    def answer(self, lines, settings):
        """Returns the answers of one process, and its memory in MiB at twenty points."""
        with subprocess.Popen([TOOL, "batch", RETAIL, "--quiet", "--jobs", str(self.jobs), *settings],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as tool:
            def write():
                for line in lines:
                    tool.stdin.write(line + "\n")
                tool.stdin.close()

            writer = threading.Thread(target=write)
            writer.start()
            answers, curve, step = [], [], len(lines) // POINTS
            for line in tool.stdout:
                answers.append(line)
                # The last answers come when the process is about to end.
                if len(answers) % step == step // 2:
                    curve.append(find_memory(tool) // MEBIBYTE)
            writer.join()
        self.assertIn(tool.returncode, (0, 1))
        return answers, curve


if __name__ == "__main__":
    TOOL = pathlib.Path(sys.argv.pop(1)).resolve()
    PRINTS = "--long" in sys.argv or "--threads" in sys.argv
    if "--long" in sys.argv:
        sys.argv.remove("--long")
        Floods.scale, Floods.requests, Floods.fresh = 1, 100_000, 300
    if "--threads" in sys.argv:
        position = sys.argv.index("--threads")
        Floods.jobs = int(sys.argv.pop(position + 1))
        sys.argv[position] = "Floods.test_many_requests"
    unittest.main()

#!/usr/bin/python3
"""Runs Examples/cluster on two worker processes, one of which is killed in the middle.

Usage: cluster_test.py QEREFINE [--requests N]

Skipped (77) without Debian's python3-distributed or the package qerefine. With --requests, so many
requests are also answered by one worker and by two, and the times are told.
"""
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import time
import unittest

try:
    import distributed
    import qerefine  # noqa: F401  the workers open models with it
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

ROOT = pathlib.Path(__file__).resolve().parents[2]
MODEL = ROOT / "Examples" / "retail" / "model.json"
PROGRAM = ROOT / "Examples" / "cluster" / "query_log.py"
SUBJECTS = ["sales", "returns", "inventory", "product", "category", "store", "city", "region", "country",
            "customer", "calendar", "supplier", "account", "no such subject"]

sys.path.insert(0, str(PROGRAM.parent))
import query_log  # noqa: E402


def make_requests(count, seed=7):
    generator = random.Random(seed)
    for number in range(count):
        subjects = generator.sample(SUBJECTS, generator.randint(2, 3))
        yield json.dumps({"id": f"ü{number}", "subjects": subjects}, ensure_ascii=False) + "\n"


class Cluster(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.log = self.folder / "log.jsonl"
        self.results = self.folder / "results"

    def read_parts(self, pattern):
        return "".join(path.read_text(encoding="utf-8") for path in sorted(self.results.glob(pattern)))

    def batch(self, log):
        with open(self.folder / "expected", "w+", encoding="utf-8") as expected:
            subprocess.run([TOOL, "batch", MODEL, log, "--quiet"], stdout=expected, check=False)
            expected.seek(0)
            return expected.read()

    def options(self, work, log, *more):
        return query_log.read_options([work, str(MODEL), str(log), str(self.results), *more])

    def test_a_killed_worker_changes_nothing(self):
        self.log.write_text("".join(make_requests(3000)) + "\n{not json}\n\n" + '{"subjects": ["sales"]}',
                            encoding="utf-8")
        options = self.options("answer", self.log, "--partition", "100")
        self.results.mkdir()
        (self.results / "part-00031.jsonl").write_text("of an earlier run", encoding="utf-8")
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                      dashboard_address=None) as cluster, distributed.Client(cluster) as client:
            first = dict(client.run(os.getpid))
            done = 0
            for _ in query_log.run(client, query_log.answer, options):
                done += 1
                if done == 3:
                    os.kill(next(iter(first.values())), 9)
            self.assertNotEqual(set(client.run(os.getpid).values()), set(first.values()))
        self.assertEqual(done, 31)
        self.assertEqual(self.read_parts("part-*.jsonl"), self.batch(self.log))
        self.assertEqual([path.name for path in self.results.glob(".*")], [])

    def test_folders_are_one_log(self):
        folder = self.folder / "log"
        folder.mkdir()
        lines = list(make_requests(250))
        for number, begin in enumerate(range(0, 250, 90)):
            text = "".join(lines[begin:begin + 90])
            (folder / f"{number}.jsonl").write_text(text.rstrip("\n"), encoding="utf-8")
        self.log.write_text("".join(lines), encoding="utf-8")
        parts = list(query_log.cut(folder, 100))
        self.assertEqual([part.first for part in parts], [0, 100, 200])
        self.assertEqual(b"".join(part.read() for part in parts), self.log.read_bytes())

    def test_evaluations_add_up(self):
        log = MODEL.with_name("requests.jsonl")
        options = ["evaluate", str(MODEL), str(log), str(self.results), "--partition", "3"]
        self.assertEqual(query_log.main(options), 0)
        total = json.loads((self.results / "evaluation.json").read_text(encoding="utf-8"))
        told = json.loads(subprocess.run([TOOL, "evaluate", MODEL, log, "--format", "json"],
                                         capture_output=True, check=False).stdout)
        groups = [("all", total["all"], told["all"])] + [
            (f"{group} {key}", total[group][key], told[group][key])
            for group in ("byGiven", "bySubjects", "byCase") for key in told[group]]
        for name, summed, tally in groups:
            self.assertEqual(summed["requests"], tally["requests"], name)
            self.assertEqual(summed["counts"], tally["counts"], name)
            self.assertAlmostEqual(summed["same"], tally["same"], 1, name)
        parts = [json.loads(path.read_text(encoding="utf-8"))["differences"]
                 for path in sorted(self.results.glob("part-*.json"))]
        self.assertEqual(sum(parts, []), told["differences"])


def processor_time():
    """Returns what this process has used, with the processes that it has waited for."""
    return sum(os.times()[:4])


def measure(count):
    """Tells how long one worker and two take for so many requests, and what the workers themselves use."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        log = folder / "log.jsonl"
        with open(log, "w", encoding="utf-8") as file:
            file.writelines(make_requests(count))
        for workers in (1, 2):
            options = query_log.read_options(["answer", str(MODEL), str(log), str(folder / str(workers))])
            options.results.mkdir()
            with distributed.Client(n_workers=workers, threads_per_worker=1, processes=True,
                                    dashboard_address=None) as client:
                begin, own = time.monotonic(), processor_time()
                partitions = sum(1 for _ in query_log.run(client, query_log.answer, options))
                used = client.run(processor_time)
                print(f"{count} requests, {workers} workers: {time.monotonic() - begin:.1f} s, "
                      f"{partitions} partitions; processor time of the workers "
                      f"{', '.join(f'{seconds:.1f} s' for seconds in used.values())}, of client and scheduler "
                      f"{processor_time() - own:.1f} s", flush=True)


if __name__ == "__main__":
    TOOL = sys.argv.pop(1)
    if sys.argv[1:2] == ["--requests"]:
        measure(int(sys.argv[2]))
    else:
        unittest.main()

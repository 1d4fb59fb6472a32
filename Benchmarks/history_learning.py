#!/usr/bin/env python3
"""Measures how many past queries help, or with --favoured what favouring their joins does.

For each of several rounds, the cases of each model are shuffled; a fifth of them is asked, with the
first 0, 1, 3, 7, ... of the others as the history. A case is what requests for the same tables and
pairs of columns have in common, so that no request is asked with a history that knows its answer.
Models with fewer cases than the longest history needs are left out.

With --favoured each request names the declared joins that other cases use as favoured ones.
"""

import argparse
import collections
import json
import pathlib
import random
import re
import subprocess
import tempfile


def case_of(request):
    """Returns what tells requests from others."""
    pairs = sorted(tuple(sorted(column.lower() for column in pair)) for pair in request["joins"])
    tables = {subject.lower() for subject in request["subjects"]}
    tables |= {column.rpartition(".")[0] for pair in pairs for column in pair}
    return request.get("db"), tuple(sorted(tables)), tuple(pairs)


def group_by_model(path):
    """Returns for each model its requests by their cases."""
    models = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        request = json.loads(line)
        cases = models.setdefault(request.get("db"), {})
        cases.setdefault(case_of(request), []).append(request)
    return models


def write(path, requests):
    path.write_text("".join(json.dumps(request) + "\n" for request in requests), encoding="utf-8")


def count_same(arguments, folder, asked, history):
    write(folder / "asked.jsonl", asked)
    command = [arguments.tool, "evaluate", arguments.model, folder / "asked.jsonl",
               "--format", "json"]
    if history:
        write(folder / "history.jsonl", history)
        command += ["--history", folder / "history.jsonl"]
    result = subprocess.run(command, check=True, capture_output=True, text=True)
    return json.loads(result.stdout)["all"]["counts"]["same"]


REFERENCE = re.compile(r"(?:\[[^\]]*\]\.)?\[([^\]]*)\]\.\[([^\]]*)\]")


def read_joins(arguments, database):
    """Returns the pairs of columns of each join of a model whose name is its own."""
    path = pathlib.Path(arguments.model)
    if path.is_dir():
        path = next(path.glob(f"{database}.*"))
    imported = subprocess.run([arguments.tool, "import", path], check=True, capture_output=True,
                              text=True)
    joins = [join for namespace in json.loads(imported.stdout)["namespaces"]
             for join in namespace.get("relationships", [])]
    counts = collections.Counter(join["name"] for join in joins)
    pairs = {}
    for join in joins:
        columns = [".".join(names).lower() for names in REFERENCE.findall(join["condition"])]
        if counts[join["name"]] == 1:
            pairs[join["name"]] = {tuple(sorted(pair)) for pair in zip(columns[::2], columns[1::2])}
    return pairs


def favour(arguments, models):
    """Returns all requests, each with what other cases join as its favoured joins."""
    requests = []
    for database, cases in models.items():
        joins = read_joins(arguments, database)
        used = {case: {name for name, pairs in joins.items() if pairs <= set(case[2])}
                for case in cases}
        for case in cases:
            names = set().union(*(used[other] for other in cases if other != case))
            requests += [{**request, "favouredJoins": sorted(names)} for request in cases[case]]
    return requests


def measure_favoured(arguments, models):
    requests = [request for cases in models.values() for group in cases.values()
                for request in group]
    with tempfile.TemporaryDirectory() as name:
        plain = count_same(arguments, pathlib.Path(name), requests, [])
        favoured = count_same(arguments, pathlib.Path(name), favour(arguments, models), [])
    print(f"{len(requests)} requests: {plain} the same, {favoured} with favoured joins")


def measure_lengths(arguments, models):
    lengths = [int(length) for length in arguments.lengths.split(",")]
    generator = random.Random(1)
    models = {name: cases for name, cases in sorted(models.items())
              if len(cases) * 4 // 5 >= max(lengths)}
    asked_count, same = 0, dict.fromkeys(lengths, 0)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for _ in range(arguments.rounds):
            asked, pools = [], []
            for cases in models.values():
                keys = sorted(cases)
                generator.shuffle(keys)
                known = len(keys) * 4 // 5
                asked += [request for key in keys[known:] for request in cases[key]]
                pools.append([cases[key][0] for key in keys[:known]])
            asked_count += len(asked)
            for length in lengths:
                history = [query for pool in pools for query in pool[:length]]
                same[length] += count_same(arguments, folder, asked, history)
    print(f"{len(models)} models, {asked_count} requests in {arguments.rounds} rounds")
    for length in lengths:
        print(f"{length:6} past queries: {100 * same[length] / max(asked_count, 1):.1f} % the same")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tool", help="the program qerefine")
    parser.add_argument("model", help="a model, or a folder of models")
    parser.add_argument("requests", type=pathlib.Path, help="requests with joins, as evaluate reads")
    parser.add_argument("--lengths", default="0,1,3,7,20", help="how many past queries of a model")
    parser.add_argument("--rounds", type=int, default=30)
    parser.add_argument("--favoured", action="store_true", help="measure favoured joins instead")
    arguments = parser.parse_args()
    measure = measure_favoured if arguments.favoured else measure_lengths
    measure(arguments, group_by_model(arguments.requests))


if __name__ == "__main__":
    main()

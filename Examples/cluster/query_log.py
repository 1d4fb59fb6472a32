#!/usr/bin/python3
"""Answers or evaluates a log of requests on the workers of a Dask scheduler.

Usage: query_log.py answer|evaluate MODEL LOG RESULTS [--scheduler ADDRESS | --workers N]
                    [--partition LINES] [--defaults JSON]

LOG is a file of requests as `qerefine batch` reads them, or a folder of such files, which are read
in the order of their names as if they were one. It is cut into partitions of LINES lines. Each
worker opens MODEL once, reads its partitions of the log itself and writes what they come to into
the folder RESULTS, so that scheduler and client carry no answers. MODEL, LOG and RESULTS lie where
all workers see them, under the same names.

    answer    RESULTS/part-00000.jsonl and so on: together the lines of `qerefine batch`
    evaluate  RESULTS/part-00000.json and so on, and evaluation.json, which sums them up: the
              numbers of `qerefine evaluate --format json`

A partition is written whole or not at all. What a worker was at when it died is done by another one.
With --workers, a cluster of so many processes of this machine is started for the run.
"""
import argparse
import contextlib
import dataclasses
import json
import os
import pathlib
import sys
import tempfile

import distributed

PLUGIN = "qerefine-model"
LINES_OF_PARTITION = 10_000
SUFFIXES = {"answer": ".jsonl", "evaluate": ".json"}


@dataclasses.dataclass(frozen=True)
class Partition:
    """Consecutive lines of the log: those of some pieces of files, (path, begin, end) in bytes.

    `first` is the number of lines before them.
    """
    number: int
    first: int
    pieces: tuple

    @property
    def name(self):
        return f"part-{self.number:05}"

    def read(self):
        text = bytearray()
        for path, begin, end in self.pieces:
            with open(path, "rb") as file:
                file.seek(begin)
                text += file.read(end - begin)
            if text and not text.endswith(b"\n"):
                text += b"\n"
        return bytes(text)


def cut(log, lines_of_partition):
    """Yields the partitions of a file of requests, or of a folder of them, in order."""
    files = sorted(path for path in log.iterdir() if path.is_file()) if log.is_dir() else [log]
    number, first, count, pieces = 0, 0, 0, []
    for path in files:
        begin = end = 0
        with open(path, "rb") as file:
            for line in file:
                end += len(line)
                count += 1
                if count == lines_of_partition:
                    yield Partition(number, first, (*pieces, (str(path), begin, end)))
                    number, first, count, pieces, begin = number + 1, first + count, 0, [], end
        if end > begin:
            pieces.append((str(path), begin, end))
    if pieces:
        yield Partition(number, first, tuple(pieces))


class OpenModel(distributed.WorkerPlugin):
    """Opens the model in each worker as it joins, also in those that take the place of others."""

    def __init__(self, model):
        self.model = model

    def setup(self, worker):
        import qerefine  # where the work is done

        worker.qerefine_model = qerefine.Model(self.model)


def write_whole(path, text):
    """Puts the text in the place of the file at once, whoever else does so."""
    with tempfile.NamedTemporaryFile("w", dir=path.parent, prefix=".", delete=False,
                                     encoding="utf-8", newline="") as file:
        file.write(text)
    os.chmod(file.name, 0o644)
    os.replace(file.name, path)


def to_line(document):
    return json.dumps(document, ensure_ascii=False, separators=(",", ":")) + "\n"


@contextlib.contextmanager
def as_file(partition):
    """Lends the partition as a file, which the package reads line by line."""
    with tempfile.NamedTemporaryFile(suffix=".jsonl") as file:
        file.write(partition.read())
        file.flush()
        yield file.name


def answer(partition, results, defaults):
    """Writes a line for each request of the partition. Returns how many, and how many failed."""
    model = distributed.get_worker().qerefine_model
    with as_file(partition) as requests:
        answers = model.batch(requests, defaults=defaults)
    for each in answers:
        each["line"] += partition.first
    write_whole(pathlib.Path(results, partition.name + SUFFIXES["answer"]), "".join(map(to_line, answers)))
    return {"requests": len(answers), "failures": sum(bool(each["error"]) for each in answers)}


def evaluate(partition, results, defaults):
    """Writes how the partition compares with what people wrote. Returns its tallies."""
    model = distributed.get_worker().qerefine_model
    with as_file(partition) as requests:
        evaluation = model.evaluate(requests, defaults=defaults)
    for each in evaluation["differences"]:
        each["line"] += partition.first
    write_whole(pathlib.Path(results, partition.name + SUFFIXES["evaluate"]), to_line(evaluation))
    return {key: value for key, value in evaluation.items() if key != "differences"}


def add_tallies(sums, tally):
    """Adds what one partition counted; shares are told anew from the counts."""
    sums["requests"] = sums.get("requests", 0) + tally["requests"]
    counts = sums.setdefault("counts", {})
    for comparison, count in tally["counts"].items():
        counts[comparison] = counts.get(comparison, 0) + count
    sums["same"] = 100 * counts["same"] / sums["requests"] if sums["requests"] else 0


def sum_up(evaluations):
    """Returns the numbers of all partitions together."""
    total = {"partitions": 0, "cutLists": 0, "all": {}, "byGiven": {}, "bySubjects": {}, "byCase": {}}
    for evaluation in evaluations:
        total["partitions"] += 1
        total["cutLists"] += evaluation["cutLists"]
        add_tallies(total["all"], evaluation["all"])
        for group in ("byGiven", "bySubjects", "byCase"):
            for key, tally in evaluation[group].items():
                add_tallies(total[group].setdefault(key, {}), tally)
    return total


def remove_others(results, suffix, partitions):
    """Removes what an earlier run with more partitions left."""
    names = {partition.name + suffix for partition in partitions}
    for path in results.glob("part-*" + suffix):
        if path.name not in names:
            path.unlink()


def run(client, work, options):
    """Yields what the work returns for each partition, as it is done."""
    partitions = list(cut(options.log, options.partition))
    remove_others(options.results, SUFFIXES[work.__name__], partitions)
    client.register_worker_plugin(OpenModel(str(options.model)), name=PLUGIN)
    futures = [client.submit(work, partition, str(options.results), options.defaults, pure=False,
                             retries=2, key=f"{work.__name__}-{partition.name}")
               for partition in partitions]
    for future, result in distributed.as_completed(futures, with_results=True):
        yield result
        future.release()


def to_positive(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError("must be at least 1")
    return number


def read_options(arguments):
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("work", choices=["answer", "evaluate"])
    for name in ("model", "log", "results"):
        parser.add_argument(name, type=lambda text: pathlib.Path(text).absolute())
    cluster = parser.add_mutually_exclusive_group()
    cluster.add_argument("--scheduler", metavar="ADDRESS")
    cluster.add_argument("--workers", type=to_positive, default=2, metavar="N")
    parser.add_argument("--partition", type=to_positive, default=LINES_OF_PARTITION,
                        metavar="LINES")
    parser.add_argument("--defaults", type=json.loads, metavar="JSON")
    options = parser.parse_args(arguments)
    if not options.log.exists():
        parser.error(f"{options.log}: there is no such file")
    return options


def connect(options):
    """Returns a client of the scheduler, or of one that is started for this run."""
    if options.scheduler:
        return distributed.Client(options.scheduler)
    return distributed.Client(n_workers=options.workers, threads_per_worker=1, processes=True,
                              dashboard_address=None)


def main(arguments):
    options = read_options(arguments)
    options.results.mkdir(parents=True, exist_ok=True)
    with connect(options) as client:
        done = run(client, {"answer": answer, "evaluate": evaluate}[options.work], options)
        if options.work == "evaluate":
            total = sum_up(done)
            write_whole(options.results / "evaluation.json", json.dumps(total, indent=2) + "\n")
            print(f"{total['all'].get('requests', 0)} requests,"
                  f" {total['all'].get('same', 0):.1f} % answered the same")
            return 0
        sums = {"requests": 0, "failures": 0}
        for result in done:
            for key in sums:
                sums[key] += result[key]
    print(f"requests: {sums['requests']}, failures: {sums['failures']}")
    return 1 if sums["failures"] else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

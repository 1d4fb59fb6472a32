#!/usr/bin/env python3
"""Measures how the answers of the Python package scale over threads of one interpreter.

Usage: python_threads.py MODEL REQUESTS [ANSWERS [ROUNDS]]

Asks requests, one JSON object a line, over and over, each by a call of its own. Prints a line for
each run: how long the answers took, and what each cost in CPU time. What is lost between threads
shows in both. Numbers of threads come in turn, so that neighbours can be compared on a busy machine.
"""
import itertools
import json
import pathlib
import resource
import sys
import threading
import time

import qerefine


def measure(model, requests, threads, answers):
    """Returns the seconds that the answers took, and the CPU seconds."""

    def work():
        for request in itertools.islice(itertools.cycle(requests), answers // threads):
            model.ask(request).to_json()

    workers = [threading.Thread(target=work) for _ in range(threads)]
    usage, begin = resource.getrusage(resource.RUSAGE_SELF), time.monotonic()
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    after, seconds = resource.getrusage(resource.RUSAGE_SELF), time.monotonic() - begin
    return seconds, after.ru_utime + after.ru_stime - usage.ru_utime - usage.ru_stime


def main():
    model = qerefine.Model(sys.argv[1])
    lines = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").splitlines()
    requests = [{"subjects": json.loads(line)["subjects"]} for line in lines]
    answers = int(sys.argv[3]) if len(sys.argv) > 3 else 2000
    rounds = int(sys.argv[4]) if len(sys.argv) > 4 else 3
    for threads in [1, 2] * rounds:
        seconds, cpu = measure(model, requests, threads, answers)
        print(f"{threads} threads: {seconds:7.2f} s, {cpu / answers * 1000:6.2f} ms of CPU an answer",
              flush=True)


if __name__ == "__main__":
    main()

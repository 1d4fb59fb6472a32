#!/usr/bin/env python3
"""Measures how the answers of the Python package scale over threads of one interpreter.

Usage: python_threads.py MODEL REQUESTS [SECONDS]

Asks the requests, one JSON object a line, over and over, each by a call of its own. Prints a line
for each number of threads: answers a second, and how many times those of one thread that is. Runs
of the same number come several times in turn, and the best counts.
"""
import itertools
import json
import os
import pathlib
import sys
import threading
import time

import qerefine

ROUNDS = 3


def measure(model, requests, threads, seconds):
    """Returns the answers a second."""
    counts = [0] * threads
    end = time.monotonic() + seconds

    def work(number):
        for request in itertools.cycle(requests[number:] + requests[:number]):
            model.ask(request).to_json()
            counts[number] += 1
            if time.monotonic() > end:
                return

    workers = [threading.Thread(target=work, args=(number,)) for number in range(threads)]
    begin = time.monotonic()
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    return sum(counts) / (time.monotonic() - begin)


def main():
    model = qerefine.Model(sys.argv[1])
    lines = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").splitlines()
    requests = [{"subjects": json.loads(line)["subjects"]} for line in lines]
    seconds = float(sys.argv[3]) if len(sys.argv) > 3 else 3.0
    sizes = [1, 2, 4][: 1 + max(1, (os.cpu_count() or 1).bit_length() - 1)]
    best = dict.fromkeys(sizes, 0.0)
    for threads in sizes * ROUNDS:
        best[threads] = max(best[threads], measure(model, requests, threads, seconds))
    for threads, rate in best.items():
        print(f"{threads} threads: {rate:8.0f} answers a second, {rate / best[1]:.2f} times one")


if __name__ == "__main__":
    main()

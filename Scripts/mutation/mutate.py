"""Plants faults in the code and counts those that the tests notice; see Scripts/mutate.sh."""

import argparse
import concurrent.futures
import difflib
import hashlib
import os
import sys

import self_test
from equivalents import find_stale, is_equivalent, read_equivalents
from sleeping_tree import ROOM, ROOT, WORK, build, configure, copy_tree, number, read_faults
from test_programs import TestPrograms

AREAS = ("Source", "Engine/Graph")
# The programs that can notice a fault.
TESTS = ("qe_source_*tests", "qe_engine_graph_*tests")


def positive(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError(f"{text} is not above 0")
    return number


def numbers(text):
    return {int(number) for number in text.split(",")}


def parse_arguments():
    parser = argparse.ArgumentParser(prog="Scripts/mutate.sh")
    parser.add_argument("--sample", type=positive, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=positive, default=os.cpu_count())
    parser.add_argument("--least", type=float, default=0)
    parser.add_argument("--only", type=numbers, default=set())
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("units", nargs="*")
    return parser.parse_args()


def check_units(units, every_unit):
    for unit in units:
        if unit not in every_unit:
            near = difflib.get_close_matches(unit, every_unit, 1, 0)
            sys.exit(f"{unit} is no unit of {' or '.join(AREAS)}; the nearest is {near[0]}")


def choose(faults, options):
    """A fault is drawn by what it is, so that a change elsewhere leaves it in the sample or out."""
    known = {fault.ident for fault in faults}
    if unknown := options.only - known:
        sys.exit(f"no faults of these units, or equivalent ones: {sorted(unknown)}")
    if options.only:
        return [fault for fault in faults if fault.ident in options.only]
    if not faults:
        sys.exit("these units have no faults")

    def draw(fault):
        return hashlib.sha256(repr((options.seed, fault.key)).encode()).digest()

    return sorted(faults, key=draw)[:options.sample]


def try_faults(chosen, tests, pool):
    """Prints the faults that survive. Returns whether each was noticed."""
    noticed = []
    for fault, verdict in zip(chosen, pool.map(tests.judge, chosen)):
        noticed.append(verdict == "noticed")
        if verdict != "noticed":
            print(f"{verdict} {fault.ident}: {fault.unit}:{fault.line}: {fault.what}\n    {fault.text}",
                  flush=True)
    return noticed


def print_shares(chosen, noticed):
    """Prints the share of the whole and of each area. Returns the least."""
    shares = []
    for area in ("", *AREAS):
        verdicts = [was for fault, was in zip(chosen, noticed) if fault.unit.startswith(area)]
        if verdicts:
            shares.append(100 * sum(verdicts) / len(verdicts))
            print(f"{area or 'Together'}: {sum(verdicts)} of {len(verdicts)} faults noticed"
                  f" ({shares[-1]:.1f} %)")
    return min(shares)


def main():
    options = parse_arguments()
    self_test.run()
    if options.self_test:
        return
    every_unit = sorted(str(path.relative_to(ROOT)) for area in AREAS
                        for path in (ROOT / area).rglob("*.cpp"))
    check_units(options.units, every_unit)
    units = options.units or every_unit
    WORK.mkdir(parents=True, exist_ok=True)
    copy_tree(set(units))
    configure()
    faults_by_unit = read_faults(units, options.jobs)
    number(faults_by_unit, every_unit)
    build(faults_by_unit, TESTS, options.jobs)
    faults = [fault for faults in faults_by_unit.values() for fault in faults if fault.edits]
    equivalent = read_equivalents()
    for stale in find_stale(equivalent, faults, set(units)):
        sys.exit(f"equivalent.txt knows a fault that does not exist: {stale}")
    countable = [fault for fault in faults if not is_equivalent(fault, equivalent)]
    print(f"{len(faults)} faults in {len(units)} units, {len(faults) - len(countable)} of them equivalent",
          flush=True)
    chosen = choose(countable, options)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        tests = TestPrograms(TESTS, len(every_unit) * ROOM, pool)
        noticed = try_faults(chosen, tests, pool)
    sys.exit(print_shares(chosen, noticed) < options.least)


if __name__ == "__main__":
    main()

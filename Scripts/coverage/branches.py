#!/usr/bin/python3
"""Tells which share of the branches the tests took, and which they never took without a known reason."""

import argparse
import bisect
import collections
import json
import os
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
KNOWN = pathlib.Path(__file__).with_name("unreached.txt")
ROOMS = ("Source", "Engine", "Toolkit", "Tools")
# Percentages of the branches that are taken at the least.
AIMS = {"Source": 95, "Engine": 90, "Toolkit": 90}
# Rooms in which each branch that is not taken has a reason.
EXPLAINED = ("Source",)


def read_counts(file, lines):
    """Returns how often each condition of a file was true and false, by its place."""
    segments = [(segment[:2], segment[2]) for segment in file["segments"]]
    starts = [start for start, _ in segments]
    counts = collections.defaultdict(lambda: [0, 0])
    # A template has the conditions once for each of its instances.
    for line, column, end_line, end_column, is_true, is_false, *_ in file["branches"]:
        count = counts[line, column, end_line, end_column]
        count[0] += is_true
        count[1] += is_false

    def is_constant(place):
        before = bisect.bisect_right(starts, list(place[:2])) - 1
        return before >= 0 and segments[before][1] > 0

    def is_switch(place):
        return lines[place[0] - 1][:place[1] - 1].endswith("switch (")

    # What runs and is neither true nor false was decided by the compiler. A switch counts as a whole
    # where it goes to none of its cases; that all are there is what the compiler's warnings see to.
    return {place: count for place, count in counts.items()
            if (any(count) or not is_constant(place)) and not is_switch(place)}


def read_known():
    """Returns the reason of each unit and line of code that is known not to be reached whole.

    A reason is a line of its own; the places that it speaks of follow, each indented: the unit, a
    colon, and the line of code. So an entry outlives changes of other lines.
    """
    known, reason = {}, None
    for line in KNOWN.read_text().splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if not line.startswith(" "):
            reason = line.strip()
            continue
        unit, separator, code = line.strip().partition(": ")
        if not separator or reason is None:
            sys.exit(f"{KNOWN.name}: not a unit and a line of code below a reason:\n{line}")
        known[unit, code] = reason
    return known


class Unit:
    def __init__(self, path):
        self.path = path
        self.lines = (ROOT / path).read_text().splitlines()
        self.counts = {}

    def add(self, file):
        for place, count in read_counts(file, self.lines).items():
            known = self.counts.get(place, (0, 0))
            self.counts[place] = (known[0] + count[0], known[1] + count[1])

    @property
    def room(self):
        return self.path.split("/")[0]

    @property
    def total(self):
        return 2 * len(self.counts)

    @property
    def taken(self):
        return sum(1 for count in self.counts.values() for side in count if side)

    def missed(self):
        """Yields the line, its code, the condition and what it never was."""
        for (line, column, end_line, end_column), count in sorted(self.counts.items()):
            never = [word for word, side in zip(("true", "false"), count) if not side]
            if never:
                code = self.lines[line - 1]
                end = end_column - 1 if end_line == line else len(code)
                yield line, code.strip(), code[column - 1:end], " or ".join(never)


def read_units(export):
    """Returns the units of the rooms in the order of their paths."""
    units = {}
    for file in json.loads(export.read_text())["data"][0]["files"]:
        # ccache makes some names relative, so that one file may have two.
        path = pathlib.Path(os.path.normpath(file["filename"]))
        if path.is_relative_to(ROOT) and path.relative_to(ROOT).parts[0] in ROOMS:
            path = str(path.relative_to(ROOT))
            units.setdefault(path, Unit(path)).add(file)
    return [units[path] for path in sorted(units)]


def print_shares(units):
    """Prints a row for each room and returns whether each reaches its aim."""
    print(f"{'room':<10}{'branches':>10}{'taken':>8}{'share':>9}{'aim':>6}")
    is_reached = True
    for room in (*ROOMS, "all"):
        chosen = [unit for unit in units if room in ("all", unit.room)]
        total, taken = (sum(getattr(unit, what) for unit in chosen) for what in ("total", "taken"))
        share = 100 * taken / total if total else 100.0
        print(f"{room:<10}{total:>10}{taken:>8}{share:>8.2f}%{AIMS.get(room, ''):>6}")
        is_reached &= share >= AIMS.get(room, 0)
    return is_reached


def print_missed(units, chosen):
    """Prints what is not taken and has no known reason, and which reasons are no longer needed.

    Returns whether there is anything of the first kind in a room that has a reason for everything.
    """
    known = read_known()
    unused = set(known)
    unexplained = 0
    for unit in units:
        for line, code, condition, never in unit.missed():
            unused.discard((unit.path, code))
            if (unit.path, code) in known:
                continue
            unexplained += unit.room in EXPLAINED
            if unit.path.startswith(chosen):
                print(f"{unit.path}:{line}: never {never}: {condition}")
    for path, code in sorted(unused):
        print(f"{KNOWN.name}: no longer needed: {path}: {code}")
    return unexplained > 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("export", type=pathlib.Path, help="what llvm-cov exports as JSON")
    parser.add_argument("--units", action="store_true", help="also print the share of each unit")
    parser.add_argument("chosen", nargs="*", default=list(EXPLAINED),
                        help="folders or units whose missed branches are named")
    arguments = parser.parse_args()
    units = read_units(arguments.export)
    if arguments.units:
        for unit in filter(lambda unit: unit.total, units):
            print(f"{100 * unit.taken / unit.total:6.1f}% of {unit.total:4}  {unit.path}")
    is_unexplained = print_missed(units, tuple(arguments.chosen))
    sys.exit(0 if print_shares(units) and not is_unexplained else 1)


if __name__ == "__main__":
    main()

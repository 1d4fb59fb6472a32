"""Faults that change nothing anybody can notice, with the reason: Scripts/mutation/equivalent.txt.

An entry is four lines and an empty one: the unit, the line of the code, the fault as it is printed,
the reason. So it outlives changes of other lines.
"""

import pathlib
import re

# Room that is not made at once is made later: only fewer allocations speak for it.
MAKES_ROOM = re.compile(r"[\w.\[\]>()-]*\b[rR]eserve\(.*\);$")
PATH = pathlib.Path(__file__).with_name("equivalent.txt")


def read_equivalents(path=PATH):
    """Returns the reason of each key of a fault. Ends the program where an entry is incomplete."""
    text = "\n".join(line for line in path.read_text().split("\n") if not line.startswith("#"))
    reasons = {}
    for entry in filter(None, (block.strip() for block in text.split("\n\n"))):
        lines = [line.strip() for line in entry.split("\n")]
        if len(lines) != 4:
            raise SystemExit(f"{path.name}: not unit, line, fault and reason:\n{entry}")
        reasons[tuple(lines[:3])] = lines[3]
    return reasons


def is_equivalent(fault, reasons):
    return fault.key in reasons or MAKES_ROOM.match(fault.text) is not None


def find_stale(reasons, faults, units):
    """Returns the entries of those units that no fault has."""
    keys = {fault.key for fault in faults}
    return [key for key in reasons if key[0] in units and key not in keys]

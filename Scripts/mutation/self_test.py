#!/usr/bin/python3
"""Checks on a unit of a few lines that faults are found and planted where they belong.

Exits with 77 where the parser of clang is not installed for Python.
"""

import importlib.util
import pathlib
import sys
import tempfile

if __name__ == "__main__" and importlib.util.find_spec("clang") is None:
    sys.exit(77)

from equivalents import find_stale, is_equivalent, read_equivalents  # noqa: E402
from faults import Fault, UnitReader, plant  # noqa: E402

UNIT = """#define CHECK(condition) do { if (!(condition)) throw 1; } while (false)
constexpr int kNone = 0;
int F(int a, int b)
{
    CHECK(a > 7);
    if (a + 1 < b && b)
        ++a;
    return a;
}
"""
PLANTED = """    if (IsAwake(0) != static_cast<bool>((IsAwake(1) || (Less(3, Plus(4, a, (1 + (IsAwake(5) ? 1 : \
0))), b))) && (IsAwake(2) || (b))))
"""
FAULTS = [
    "not a + 1 < b && b", "without a + 1 < b", "without b", "another operator than <",
    "another operator than +", "1 + 1",
]  # fmt: skip


def check_planting():
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "Unit.cpp"
        path.write_text(UNIT)
        faults = UnitReader("Unit.cpp", path, ["-std=c++20"]).faults
    assert [fault.what for fault in faults] == FAULTS, [fault.what for fault in faults]
    for ident, fault in enumerate(faults):
        fault.ident = ident
    text = plant(UNIT.encode(), faults).decode().replace("qe_mutation::", "")
    expected = UNIT.splitlines(keepends=True)
    expected[5] = PLANTED
    assert text == "".join(expected), text


def check_equivalents():
    """An entry holds wherever its line has moved to; one whose fault is gone is stale."""
    known = Fault("Unit.cpp", 7, "mOrder = 0;", "0 + 1", [])
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as entries:
        entries.write("# Comment\n\nUnit.cpp\nmOrder = 0;\n0 + 1\nOnly compared.\n")
        entries.flush()
        reasons = read_equivalents(pathlib.Path(entries.name))
    assert reasons == {known.key: "Only compared."}, reasons
    rows = {
        ("mOrder = 0;", "0 + 1"): True,
        ("mOrder = 0;", "without mOrder = 0"): False,
        ("mOrder = 1;", "0 + 1"): False,
        ("joins.reserve(path.size() + 1);", "1 + 1"): True,
        ("access.Joins().Reserve(count);", "without access.Joins().Reserve(count)"): True,
        ("joins.resize(path.size() + 1);", "1 + 1"): False,
    }
    for (text, what), expected in rows.items():
        assert is_equivalent(Fault("Unit.cpp", 9, text, what, []), reasons) == expected, text
    assert find_stale(reasons, [known], {"Unit.cpp"}) == []
    assert find_stale(reasons, [], {"Unit.cpp"}) == [known.key]
    assert find_stale(reasons, [], {"Other.cpp"}) == []


def run():
    """Raises AssertionError when something is wrong."""
    check_planting()
    check_equivalents()


if __name__ == "__main__":
    run()

"""Checks on a unit of a few lines that faults are found and planted where they belong."""

import pathlib
import tempfile

from faults import UnitReader, plant

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


def run():
    """Raises AssertionError when something is wrong."""
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

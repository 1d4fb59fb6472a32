#!/usr/bin/env python3
"""Checks that every #include follows the order of the rooms in Documentation/architecture.md.

A room is a folder. The table there says which rooms each room may include; what those may include
is allowed as well. Fails on an include that is not allowed, on a folder that the table does not
list, on rooms or units that include each other in a cycle, and on an include of a file that is neither
there nor made from a file of its name with ".in" behind it. A unit is a header with its source file.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
DOCUMENT = ROOT / "Documentation" / "architecture.md"
# Where the compiler looks for a quoted include, beside the folder of the including file.
SEARCH_PATH = ["", "Source", "Platform", "Include", "Include/Types"]
ROW = re.compile(r"^\| `(?P<room>[\w/]+)/` \|.*\|(?P<allowed>[^|]*)\|$", re.MULTILINE)
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)


def read_rooms():
    """Returns the allowed rooms of each room, as the table lists them."""
    text = DOCUMENT.read_text(encoding="utf-8")
    return {
        row["room"]: re.findall(r"`([\w/]+)/`", row["allowed"]) for row in ROW.finditer(text)
    }


def close(rooms):
    """Returns for each room all that it may include, directly or by way of others."""
    closed = {}

    def visit(room, path):
        if room in path:
            sys.exit(f"{DOCUMENT.name}: the order is cyclic: {' -> '.join([*path, room])}")
        if room not in rooms:
            sys.exit(f"{DOCUMENT.name}: no row for the room {room}/ that {path[-1]}/ may include")
        if room not in closed:
            below = [visit(other, [*path, room]) for other in rooms[room]]
            closed[room] = {room}.union(*below)
        return closed[room]

    for room in rooms:
        visit(room, [])
    return closed


def room_of(file, rooms):
    """Returns the nearest listed folder above the file, or None."""
    for folder in pathlib.PurePath(file).parents:
        if folder.as_posix() in rooms:
            return folder.as_posix()
    return None


def resolve(file, name, files):
    """Returns the file that an include means, or None."""
    for folder in [pathlib.PurePath(file).parent.as_posix(), *SEARCH_PATH]:
        candidate = pathlib.PurePath(folder, name).as_posix()
        if candidate in files:
            return candidate
        if (ROOT / f"{candidate}.in").exists():  # the build makes it
            return candidate
    return None


def find_cycle(units):
    """Returns the units of one cycle, or an empty list."""
    done = set()
    for start in sorted(units):
        path, walks = [], [iter([start])]
        while walks:
            unit = next(walks[-1], None)
            if unit is None:
                walks.pop()
                if path:
                    done.add(path.pop())
            elif unit in path:
                return [*path[path.index(unit):], unit]
            elif unit not in done:
                path.append(unit)
                walks.append(iter(sorted(units.get(unit, ()))))
    return []


def main():
    listed = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.h", "*.cpp", ":!Scripts"],
        cwd=ROOT, check=True, capture_output=True, text=True).stdout.split()
    files = {file for file in listed if (ROOT / file).exists()}
    rooms = close(read_rooms())
    problems, units = [], {}
    for file in sorted(files):
        room = room_of(file, rooms)
        if room is None:
            problems.append(f"{file}: {DOCUMENT.name} has no row for its folder")
            continue
        unit = units.setdefault(str(pathlib.PurePath(file).with_suffix("")), set())
        for name in INCLUDE.findall((ROOT / file).read_text(encoding="utf-8")):
            target = resolve(file, name, files)
            if target is None:
                problems.append(f"{file}: there is no file {name} to include")
                continue
            unit.add(str(pathlib.PurePath(target).with_suffix("")))
            if room_of(target, rooms) not in rooms[room]:
                problems.append(f"{file}: {room}/ may not include {target}")
    for unit, includes in units.items():
        includes.discard(unit)
    if cycle := find_cycle(units):
        problems.append(f"these units include each other: {' -> '.join(cycle)}")
    print("\n".join(problems) or f"includes: {len(files)} files follow the order of the rooms")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

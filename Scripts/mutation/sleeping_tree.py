"""A copy of the tree with all faults compiled in, asleep until the environment wakes one."""

import bisect
import concurrent.futures
import dataclasses
import hashlib
import json
import pathlib
import re
import subprocess
import sys

from faults import Fault, UnitReader, plant

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
TREE = WORK / "tree"
BUILD = WORK / "build"
FOUND = WORK / "faults.json"
HERE = pathlib.Path(__file__).parent
# Room for the faults of a unit: those of a unit keep their numbers when another one changes.
ROOM = 1000


def write(path, content, mode=0o644):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        path.chmod(mode)


def copy_tree(planted):
    """Copies the files that differ from the copy, but for those that faults are planted in."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.splitlines()
    for path in (ROOT / name for name in listed):
        copy = TREE / path.relative_to(ROOT)
        if path.exists() and not (copy.exists() and str(path.relative_to(ROOT)) in planted):
            write(copy, path.read_bytes(), path.stat().st_mode)


def configure():
    subprocess.run(
        ["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
         "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DQEREFINER_WARNINGS_AS_ERRORS=OFF",
         f"-DQEREFINER_DATA_DIR={ROOT.parent / 'shared' / 'data'}",
         f"-DCMAKE_CXX_FLAGS=-O1 -w -include {HERE / 'mutant.h'}"],
        check=True, stdout=subprocess.DEVNULL)


def read_flags():
    """Returns what a parser has to know, by unit; the headers are those of the original."""
    flags = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        command = entry["command"]
        words = re.findall(r"(?<!\S)-(?:I|D|std=)\S*", command)
        words += [f"-I{path}" for path in re.findall(r"-isystem (\S+)", command)]
        words = [word if str(BUILD) in word else word.replace(str(TREE), str(ROOT)) for word in words]
        flags[entry["file"].removeprefix(f"{TREE}/")] = words
    return flags


def read_faults(units, jobs):
    """Returns the faults of the units; those of a unit that is as it was are not looked for again."""
    headers = hashlib.sha256((HERE / "faults.py").read_bytes())
    for folder in ("Include", "Platform", "Source", "Engine"):
        for path in sorted((ROOT / folder).rglob("*.h")):
            headers.update(path.read_bytes())
    found = json.loads(FOUND.read_text()) if FOUND.exists() else {}
    keys = {}
    for unit in units:
        key = headers.copy()
        key.update((ROOT / unit).read_bytes())
        keys[unit] = key.hexdigest()
    changed = [unit for unit in units if found.get(unit, {}).get("key") != keys[unit]]
    flags = read_flags()
    with concurrent.futures.ProcessPoolExecutor(jobs) as pool:
        read = pool.map(read_unit, changed, [flags[unit] for unit in changed])
        for unit, faults in zip(changed, read):
            found[unit] = {"key": keys[unit], "faults": faults}
    FOUND.write_text(json.dumps(found))
    return {unit: [Fault(**fault) for fault in found[unit]["faults"]] for unit in units}


def read_unit(unit, flags):
    return [dataclasses.asdict(fault) for fault in UnitReader(unit, ROOT / unit, flags).faults]


def number(faults_by_unit, every_unit):
    for unit, faults in faults_by_unit.items():
        if len(faults) > ROOM:
            sys.exit(f"{unit} has more than {ROOM} faults")
        for position, fault in enumerate(faults):
            fault.ident = every_unit.index(unit) * ROOM + position


def forget_faults(faults):
    """Remembers that these do not compile, but keeps the numbers of the others."""
    found = json.loads(FOUND.read_text())
    for fault in faults:
        found[fault.unit]["faults"][fault.ident % ROOM]["edits"] = fault.edits = []
    FOUND.write_text(json.dumps(found))


def find_targets(patterns):
    names = subprocess.run(["ninja", "-C", BUILD, "-t", "targets", "all"], check=True,
                           capture_output=True, text=True).stdout
    return [name for name in re.findall(r"^(qe_\w+_tests): phony", names, re.MULTILINE)
            if any(pathlib.PurePath(name).match(pattern) for pattern in patterns)]


def find_wrong(faults_by_unit, output):
    """Returns the faults with an edit on a line that the compiler complains of."""
    wrong = []
    complaint = re.compile(r"^\S*\btree/(\S+?):(\d+):\d+: +(?:error|required)", re.MULTILINE)
    lines = {(unit, int(line)) for unit, line in complaint.findall(output)}
    for unit in {unit for unit, _ in lines} & set(faults_by_unit):
        text = (ROOT / unit).read_bytes()
        starts = [0, *(match.end() for match in re.finditer(b"\n", text))]
        wrong += [fault for fault in faults_by_unit[unit]
                  if any((unit, bisect.bisect_right(starts, start)) in lines for start, _, _ in fault.edits)]
    return wrong


def build(faults_by_unit, patterns, jobs):
    """Builds the copy with the faults. Those that do not compile lose their edits."""
    targets = find_targets(patterns)
    while True:
        for unit, faults in faults_by_unit.items():
            planted = [fault for fault in faults if fault.edits]
            write(TREE / unit, plant((ROOT / unit).read_bytes(), planted))
        done = subprocess.run(["ninja", "-C", BUILD, "-k", "0", f"-j{jobs}", *targets], check=False,
                              capture_output=True, text=True)
        if done.returncode == 0:
            return
        wrong = find_wrong(faults_by_unit, done.stdout)
        if not wrong:
            sys.exit(done.stdout[-5000:] + done.stderr)
        print(f"{len(wrong)} faults do not compile", flush=True)
        forget_faults(wrong)

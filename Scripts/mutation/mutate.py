"""Plants faults in the code and counts those that the tests notice; see Scripts/mutate.sh.

A fault is one small change: another comparison or operator, a condition that is forgotten or turned
round, a number that is one too large, a statement that is left out. All faults of all units are
compiled into one copy of the tree and sleep until a variable of the environment wakes one.
"""

import argparse
import concurrent.futures
import dataclasses
import json
import os
import pathlib
import random
import re
import subprocess
import sys
import time

from clang.cindex import CursorKind, Index, TypeKind

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
TREE = WORK / "tree"
BUILD = WORK / "build"
HEADER = ROOT / "Scripts" / "mutation" / "mutant.h"
# The programs that can notice a fault.
TESTS = ["qe_source_*_tests", "qe_engine_graph_*tests"]
PAIRS = {
    "<": "Less", "<=": "LessEqual", ">": "Greater", ">=": "GreaterEqual", "==": "Equal",
    "!=": "NotEqual", "+": "Plus", "-": "Minus", "*": "Times", "/": "Over", "&": "And", "|": "Or",
}  # fmt: skip
NUMBERS = range(TypeKind.BOOL.value, TypeKind.LONGDOUBLE.value + 1)


@dataclasses.dataclass
class Mutant:
    """One fault: the texts to insert or replace, as (start, end, text) of offsets in the unit."""

    unit: str
    line: int
    what: str
    edits: list
    ident: int = -1


class UnitReader:
    """Finds the places of one unit where a fault can be planted."""

    def __init__(self, unit, arguments):
        self.unit = unit
        self.path = ROOT / unit
        self.text = self.path.read_bytes()
        self.mutants = []
        parsed = Index.create().parse(str(self.path), args=arguments)
        for child in parsed.cursor.get_children():
            if child.location.file and child.location.file.name == str(self.path):
                self.visit(child)

    def add(self, cursor, what, edits):
        self.mutants.append(Mutant(self.unit, cursor.extent.start.line, what, edits))

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def source(self, cursor):
        start, end = self.span(cursor)
        return self.text[start:end].decode()

    def visit(self, cursor):
        if cursor.kind in (CursorKind.CXX_METHOD, CursorKind.FUNCTION_DECL, CursorKind.VAR_DECL):
            head = self.source(cursor).split("{")[0]
            if "constexpr" in head or "consteval" in head:
                return
        if cursor.kind in (CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL):
            return
        children = list(cursor.get_children())
        if cursor.kind == CursorKind.BINARY_OPERATOR and len(children) == 2:
            self.visit_operator(cursor, *children)
        elif cursor.kind == CursorKind.IF_STMT:
            self.visit_if(cursor, children)
        elif cursor.kind == CursorKind.COMPOUND_STMT:
            self.visit_block(children)
        elif cursor.kind == CursorKind.INTEGER_LITERAL:
            self.visit_number(cursor)
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            start, end = self.span(cursor)
            self.add(cursor, f"the opposite of {self.source(cursor)}",
                     [(start, start, "(qe_mutation::IsAwake(@) != "), (end, end, ")")])
        if cursor.kind == CursorKind.CASE_STMT:
            children = children[1:]
        for child in children:
            self.visit(child)

    def visit_operator(self, cursor, left, right):
        (start, left_end), (right_start, end) = self.span(left), self.span(right)
        sign = self.text[left_end:right_start].decode().strip()
        if sign in ("&&", "||"):
            for part in (left, right):
                begin, stop = self.span(part)
                forget = "qe_mutation::IsAwake(@) ||" if sign == "&&" else "!qe_mutation::IsAwake(@) &&"
                self.add(part, f"without {self.source(part)}",
                         [(begin, begin, f"({forget} ("), (stop, stop, "))")])
        elif sign in PAIRS and all(
            part.type.get_canonical().kind.value in NUMBERS
            or (sign in ("==", "!=") and part.type.get_canonical().kind == TypeKind.POINTER)
            for part in (left, right)
        ):
            self.add(cursor, f"another operator than {sign}",
                     [(start, start, f"qe_mutation::{PAIRS[sign]}(@, "),
                      (left_end, right_start, ", "), (end, end, ")")])

    def visit_if(self, cursor, children):
        condition = children[0]
        if condition.kind == CursorKind.DECL_STMT or condition.kind == CursorKind.VAR_DECL:
            return
        if "constexpr" in self.text[cursor.extent.start.offset:condition.extent.start.offset].decode():
            return
        start, end = self.span(condition)
        if self.text[start:end].find(b";") >= 0 or not condition.kind.is_expression():
            return
        self.add(condition, f"not {self.source(condition)}",
                 [(start, start, "qe_mutation::IsAwake(@) != static_cast<bool>("), (end, end, ")")])

    def visit_block(self, statements):
        for statement in statements:
            if not statement.kind.is_expression() and statement.kind not in (
                CursorKind.CONTINUE_STMT, CursorKind.BREAK_STMT,
            ):
                continue
            start, end = self.span(statement)
            self.add(statement, f"without {self.source(statement)}",
                     [(start, start, "if (!qe_mutation::IsAwake(@)) "), (end, end, "")])

    def visit_number(self, cursor):
        start, end = self.span(cursor)
        text = self.text[start:end].decode()
        if re.fullmatch(r"[0-9a-fA-FxX'uUlL]+", text):
            self.add(cursor, f"{text} + 1",
                     [(start, start, "("), (end, end, " + (qe_mutation::IsAwake(@) ? 1 : 0))")])


def plant(unit, mutants):
    """Returns the unit's text with the faults in it, on the lines where they were."""
    text = (ROOT / unit).read_bytes().decode("latin-1")
    edits = []
    for mutant in mutants:
        length = mutant.edits[-1][1] - mutant.edits[0][0]
        for position, (start, end, new) in enumerate(mutant.edits):
            # At one place, what ends comes before what begins; the outer begins first, ends last.
            opens = position == 0
            order = (start, 1, -length, mutant.ident) if opens else (start, 0, length, -mutant.ident)
            edits.append((order, start, end, new.replace("@", str(mutant.ident))))
    result, done = [], 0
    for _, start, end, new in sorted(edits):
        result += [text[done:start], new + "\n" * text[start:end].count("\n")]
        done = end
    return "".join(result + [text[done:]]).encode("latin-1")


def read_units(names):
    commands = {
        entry["file"]: entry for entry in json.loads((BUILD / "compile_commands.json").read_text())
    }
    for unit in names:
        entry = commands[str(TREE / unit)]
        flags = [word for word in entry["command"].split() if re.match(r"-(I|D|std=|isystem)", word)]
        systems = re.findall(r"-isystem (\S+)", entry["command"])
        flags = [flag for flag in flags if flag != "-isystem"] + [f"-I{path}" for path in systems]
        flags = [flag.replace(str(TREE), str(ROOT)) if str(BUILD) not in flag else flag for flag in flags]
        yield from UnitReader(unit, ["-x", "c++", *flags]).mutants


def copy_tree(planted):
    """Copies the files of the tree that differ from the copy, but for units that faults are in."""
    files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split("\n")
    for name in filter(None, files):
        if name in planted and (TREE / name).exists():
            continue
        write(TREE / name, (ROOT / name).read_bytes(), (ROOT / name).stat().st_mode)


def write(path, content, mode=0o644):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        path.chmod(mode)


def configure():
    subprocess.run(
        ["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
         "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DQEREFINER_WARNINGS_AS_ERRORS=OFF",
         f"-DQEREFINER_DATA_DIR={ROOT.parent / 'shared' / 'data'}",
         f"-DCMAKE_CXX_FLAGS=-O1 -w -include {HEADER}"],
        check=True, stdout=subprocess.DEVNULL)


def build(mutants):
    """Builds the copy with the faults; those that do not compile are dropped. Returns the others."""
    names = subprocess.run(["ninja", "-C", BUILD, "-t", "targets", "all"], check=True,
                           capture_output=True, text=True).stdout
    targets = [name for name in re.findall(r"^(qe_\w+_tests): phony", names, re.MULTILINE)
               if any(pathlib.PurePath(name).match(pattern) for pattern in TESTS)]
    while True:
        by_unit = {}
        for mutant in mutants:
            by_unit.setdefault(mutant.unit, []).append(mutant)
        for unit, planted in by_unit.items():
            write(TREE / unit, plant(unit, planted))
        done = subprocess.run(["ninja", "-C", BUILD, "-k", "0", *targets], check=False,
                              capture_output=True, text=True)
        if done.returncode == 0:
            return mutants
        wrong = {(file.removeprefix(str(TREE) + "/"), int(line)) for file, line in
                 re.findall(r"^(\S+?):(\d+):\d+: (?:error|  required)", done.stdout, re.MULTILINE)}
        kept = [mutant for mutant in mutants if not is_near(mutant, wrong)]
        if len(kept) == len(mutants):
            sys.exit(done.stdout[-5000:] + done.stderr)
        print(f"{len(mutants) - len(kept)} faults do not compile", flush=True)
        mutants = kept


def is_near(mutant, wrong):
    return (mutant.unit, mutant.line) in wrong


class Tests:
    """The test programs: how long each takes, and which faults it reaches."""

    def __init__(self, count):
        self.count = count
        self.programs = []
        for pattern in TESTS:
            self.programs += sorted(path for path in (BUILD / "bin").glob(pattern)
                                    if path not in self.programs)
        self.seconds, self.reached = {}, {}
        for program in self.programs:
            marks = WORK / (program.name + ".reached")
            marks.write_bytes(bytes(count))
            started = time.monotonic()
            if self.run(program, {"QE_MUTANTS_REACHED": str(marks)}, 1200) != 0:
                sys.exit(f"{program.name} fails without any fault: see {WORK}/{program.name}.log")
            self.seconds[program] = time.monotonic() - started
            self.reached[program] = marks.read_bytes()
            print(f"{program.name}: {self.seconds[program]:.1f} s, reaches"
                  f" {sum(self.reached[program])} of {count}", flush=True)

    def run(self, program, environment, limit, log=True):
        output = open(WORK / (program.name + ".log"), "wb") if log else subprocess.DEVNULL
        try:
            return subprocess.run([program, "--gtest_fail_fast", "--gtest_brief=1"], cwd=program.parent,
                                  env={**os.environ, **environment}, stdout=output,
                                  stderr=subprocess.STDOUT, timeout=limit, check=False).returncode
        except subprocess.TimeoutExpired:
            return -1
        finally:
            if log:
                output.close()

    def notice(self, mutant):
        """Returns the program that notices the fault, "" when none does, None when none reaches it."""
        programs = [program for program in self.programs if self.reached[program][mutant.ident]]
        for program in sorted(programs, key=self.seconds.get):
            limit = 10 + 4 * self.seconds[program]
            if self.run(program, {"QE_MUTANT": str(mutant.ident)}, limit, log=False) != 0:
                return program.name
        return "" if programs else None


def parse_arguments():
    parser = argparse.ArgumentParser(prog="Scripts/mutate.sh")
    parser.add_argument("--sample", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--least", type=float, default=0)
    parser.add_argument("--only", default="")
    parser.add_argument("units", nargs="*")
    return parser.parse_args()


def choose(mutants, options):
    if options.only:
        wanted = {int(ident) for ident in options.only.split(",")}
        return [mutant for mutant in mutants if mutant.ident in wanted]
    return random.Random(options.seed).sample(mutants, min(options.sample, len(mutants)))


def main():
    options = parse_arguments()
    WORK.mkdir(parents=True, exist_ok=True)
    units = options.units or sorted(
        str(path.relative_to(ROOT)) for folder in ("Source", "Engine/Graph")
        for path in (ROOT / folder).rglob("*.cpp"))
    copy_tree(set(units))
    configure()
    mutants = list(read_units(units))
    for ident, mutant in enumerate(mutants):
        mutant.ident = ident
    print(f"{len(mutants)} faults in {len(units)} units", flush=True)
    count = len(mutants)
    mutants = build(mutants)
    tests = Tests(count)
    chosen = choose(mutants, options)
    survivors, unreached = [], 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for mutant, noticed in zip(chosen, pool.map(tests.notice, chosen)):
            if not noticed:
                survivors.append(mutant)
                unreached += noticed is None
                reason = "not reached" if noticed is None else "not noticed"
                print(f"{reason} {mutant.ident}: {mutant.unit}:{mutant.line}: {mutant.what}", flush=True)
    share = 100 * (len(chosen) - len(survivors)) / max(1, len(chosen))
    print(f"{len(chosen) - len(survivors)} of {len(chosen)} faults noticed ({share:.1f} %),"
          f" {unreached} of the others not reached")
    sys.exit(share < options.least)


if __name__ == "__main__":
    main()

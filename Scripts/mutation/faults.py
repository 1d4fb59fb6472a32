"""Finds the places of a unit where a fault can be planted, and plants faults there.

A fault is one small change: another comparison or operator, a condition that is forgotten or turned
round, a number that is one too large, a statement that is left out.
"""

import collections
import dataclasses
import re

from clang.cindex import CursorKind, Index, TranslationUnit, TypeKind

PAIRS = {
    "<": "Less", "<=": "LessEqual", ">": "Greater", ">=": "GreaterEqual", "==": "Equal",
    "!=": "NotEqual", "+": "Plus", "-": "Minus", "*": "Times", "/": "Over", "&": "And", "|": "Or",
}  # fmt: skip
NUMBERS = range(TypeKind.BOOL.value, TypeKind.LONGDOUBLE.value + 1)
CONSTANT = re.compile(rb"\b(constexpr|consteval)\b")
WITHOUT_FAULTS = (CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL)
DECLARATIONS = (CursorKind.CXX_METHOD, CursorKind.FUNCTION_DECL, CursorKind.VAR_DECL)


@dataclasses.dataclass
class Fault:
    """The texts to insert or replace, as (start, end, text) of offsets in the unit."""

    unit: str
    line: int
    text: str
    what: str
    edits: list
    ident: int = -1

    @property
    def key(self):
        """What stays when lines above are added or removed."""
        return self.unit, self.text, self.what


def is_number(cursor):
    return cursor.type.get_canonical().kind.value in NUMBERS


def is_comparable(cursor):
    return is_number(cursor) or cursor.type.get_canonical().kind == TypeKind.POINTER


class UnitReader:
    """Reads the faults of one unit, in the order of the syntax tree."""

    def __init__(self, unit, path, arguments):
        self.unit = unit
        self.bytes = path.read_bytes()
        self.lines = self.bytes.decode().split("\n")
        self.faults = []
        self.counts = collections.Counter()
        parsed = Index.create().parse(
            str(path), args=["-x", "c++", *arguments],
            options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        own = [child for child in parsed.cursor.get_children()
               if child.location.file and child.location.file.name == str(path)]
        self.macros = [self.span(child) for child in own if child.kind == CursorKind.MACRO_INSTANTIATION]
        for child in own:
            if not child.kind.is_preprocessing():
                self.visit(child)

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def source(self, cursor):
        start, end = self.span(cursor)
        return " ".join(self.bytes[start:end].decode().split())

    def add(self, cursor, what, edits):
        line = cursor.extent.start.line
        fault = Fault(self.unit, line, self.lines[line - 1].strip(), what, edits)
        self.counts[fault.key] += 1
        if self.counts[fault.key] > 1:
            fault.what += f" ({self.counts[fault.key]})"
        self.faults.append(fault)

    def is_out_of_macro(self, cursor):
        """What a macro brings has the place of the macro: there is nothing to edit."""
        begin, stop = self.span(cursor)
        return not any(start <= begin and stop <= end for start, end in self.macros)

    def is_skipped(self, cursor):
        if cursor.kind in DECLARATIONS:
            start, end = self.span(cursor)
            return bool(CONSTANT.search(self.bytes[start:end].split(b"{")[0]))
        return cursor.kind in WITHOUT_FAULTS or not self.is_out_of_macro(cursor)

    def visit(self, cursor):
        if self.is_skipped(cursor):
            return
        children = list(cursor.get_children())
        if cursor.kind == CursorKind.BINARY_OPERATOR and len(children) == 2:
            self.visit_operator(cursor, *children)
        elif cursor.kind == CursorKind.IF_STMT:
            self.visit_if(cursor, children[0])
        elif cursor.kind == CursorKind.COMPOUND_STMT:
            self.visit_block(children)
        elif cursor.kind == CursorKind.INTEGER_LITERAL:
            self.visit_number(cursor)
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            start, end = self.span(cursor)
            self.add(cursor, f"the opposite of {self.source(cursor)}",
                     [(start, start, "(qe_mutation::IsAwake(@) != "), (end, end, ")")])
        for child in children[cursor.kind == CursorKind.CASE_STMT:]:
            self.visit(child)

    def visit_operator(self, cursor, left, right):
        (start, left_end), (right_start, end) = self.span(left), self.span(right)
        sign = self.bytes[left_end:right_start].decode().strip()
        if sign in ("&&", "||"):
            self.visit_condition(left, sign)
            self.visit_condition(right, sign)
        elif sign in PAIRS:
            is_fit = is_comparable if sign in ("==", "!=") else is_number
            if is_fit(left) and is_fit(right):
                self.add(cursor, f"another operator than {sign}",
                         [(start, start, f"qe_mutation::{PAIRS[sign]}(@, "),
                          (left_end, right_start, ", "), (end, end, ")")])

    def visit_condition(self, part, sign):
        start, end = self.span(part)
        forget = "qe_mutation::IsAwake(@) ||" if sign == "&&" else "!qe_mutation::IsAwake(@) &&"
        self.add(part, f"without {self.source(part)}", [(start, start, f"({forget} ("), (end, end, "))")])

    def visit_if(self, cursor, condition):
        start, end = self.span(condition)
        head = self.bytes[cursor.extent.start.offset:start]
        if condition.kind.is_expression() and b"constexpr" not in head and b";" not in head:
            self.add(condition, f"not {self.source(condition)}",
                     [(start, start, "qe_mutation::IsAwake(@) != static_cast<bool>("), (end, end, ")")])

    def visit_block(self, statements):
        for statement in statements:
            is_jump = statement.kind in (CursorKind.CONTINUE_STMT, CursorKind.BREAK_STMT)
            if (statement.kind.is_expression() or is_jump) and self.is_out_of_macro(statement):
                start, end = self.span(statement)
                self.add(statement, f"without {self.source(statement)}",
                         [(start, start, "if (!qe_mutation::IsAwake(@)) "), (end, end, "")])

    def visit_number(self, cursor):
        start, end = self.span(cursor)
        text = self.bytes[start:end].decode()
        if re.fullmatch(r"[0-9a-fA-FxX'uUlL]+", text):
            self.add(cursor, f"{text} + 1",
                     [(start, start, "("), (end, end, " + (qe_mutation::IsAwake(@) ? 1 : 0))")])


def plant(text, faults):
    """Returns the text of a unit with the faults in it, on the lines where they were."""
    edits = []
    for fault in faults:
        length = fault.edits[-1][1] - fault.edits[0][0]
        for position, (start, end, new) in enumerate(fault.edits):
            # At one place, what ends comes before what begins; the outer begins first, ends last.
            opens = position == 0
            order = (start, 1, -length, fault.ident) if opens else (start, 0, length, -fault.ident)
            edits.append((order, start, end, new.replace("@", str(fault.ident))))
    result, done = [], 0
    for _, start, end, new in sorted(edits):
        if start < done:
            raise ValueError(f"two edits at once at {start} of {faults[0].unit}")
        result += [text[done:start], new.encode() + b"\n" * text[start:end].count(b"\n")]
        done = end
    return b"".join([*result, text[done:]])

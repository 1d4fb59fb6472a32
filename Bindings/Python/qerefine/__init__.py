"""Which joins connect the subjects of a report, and what they risk.

    >>> import qerefine
    >>> model = qerefine.Model("shop.sqlite")
    >>> answer = model.path("orders", "region")
    >>> print(answer.sql(dialect="duckdb"))

Answers are those of the command-line tool, byte by byte. Models and answers never change; threads
may share them, and calls release the interpreter's lock. User settings hold for the whole process.
"""
from ._answer import Alternative, Ambiguity, Answer, Join, Multiplied
from ._errors import (
    AmbiguousNameError,
    InternalError,
    Mistake,
    ModelError,
    NoSuchFormError,
    NotConnectedError,
    OutOfMemoryError,
    QerefineError,
    RefusedError,
    RequestError,
    UnknownNameError,
    UsageError,
)
from ._library import schema, version
from ._model import Model

__version__ = version()

__all__ = [
    "Alternative",
    "Ambiguity",
    "AmbiguousNameError",
    "Answer",
    "InternalError",
    "Join",
    "Mistake",
    "Model",
    "ModelError",
    "Multiplied",
    "NoSuchFormError",
    "NotConnectedError",
    "OutOfMemoryError",
    "QerefineError",
    "RefusedError",
    "RequestError",
    "UnknownNameError",
    "UsageError",
    "schema",
    "version",
]

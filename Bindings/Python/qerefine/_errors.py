"""What goes wrong, by kind."""
from __future__ import annotations

import dataclasses
from typing import TYPE_CHECKING, Dict, List, Sequence, Type

if TYPE_CHECKING:
    from ._answer import Answer


@dataclasses.dataclass(frozen=True)
class Mistake:
    """One mistake in what was given.

    `place` is "shop.sql:12:7" for syntax, "shop.json#/subjects/3/name" for content, a JSON pointer
    or the name of a list for a request; perhaps empty. `suggestions` are right names that may be
    meant, best first.
    """

    place: str
    message: str
    suggestions: List[str]


class QerefineError(Exception):
    """Why a call failed. The text has one line for each of the mistakes."""

    def __init__(self, text: str, mistakes: Sequence[Mistake] = ()) -> None:
        super().__init__(text)
        self.mistakes = list(mistakes)

    @property
    def suggestions(self) -> List[str]:
        """The suggestions of all mistakes."""
        return [name for mistake in self.mistakes for name in mistake.suggestions]


class UsageError(QerefineError, ValueError):
    """The call is wrong: an option or its value."""


class ModelError(QerefineError):
    """A model or another file cannot be read."""


class RequestError(QerefineError, ValueError):
    """A request cannot be read."""


class UnknownNameError(QerefineError, LookupError):
    """The model has no object of a name; `suggestions` are those that may be meant."""


class AmbiguousNameError(QerefineError, LookupError):
    """The model has several objects of a name; `suggestions` tell them apart."""


class NoSuchFormError(QerefineError):
    """The answer has no such form: SQL that the dialect cannot express, or a picture that cannot
    be drawn, such as without Graphviz."""


class RefusedError(QerefineError):
    """The refiner refuses the question, such as for a governor."""


class NotConnectedError(QerefineError):
    """The subjects cannot be connected.

    `groups` are the subjects that can be connected with each other, together; joining the subjects
    of `bridge`, one of each group, would connect all.
    """

    def __init__(self, answer: Answer) -> None:
        super().__init__("the subjects cannot be connected: " + ", ".join(answer.subjects))
        self.answer = answer
        document = answer.to_dict()
        self.groups: List[List[str]] = document["groups"]
        self.bridge: List[str] = document["bridge"]


class OutOfMemoryError(QerefineError, MemoryError):
    """Memory ran out."""


class InternalError(QerefineError):
    """The library failed; please report it."""


# By the status of the C library.
KINDS: Dict[int, Type[QerefineError]] = {
    1: UsageError,
    2: ModelError,
    3: RequestError,
    4: UnknownNameError,
    5: AmbiguousNameError,
    6: NoSuchFormError,
    7: RefusedError,
    8: OutOfMemoryError,
    9: InternalError,
}

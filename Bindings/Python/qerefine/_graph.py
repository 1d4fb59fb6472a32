"""A model as a graph."""
from __future__ import annotations

import collections
from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Tuple


class _Subject(NamedTuple):
    """A query subject or shortcut, and the namespace that holds it, in which no other has its
    name."""

    name: str
    space: Optional[str]

    @property
    def own(self) -> str:
        return _quote(self.name)

    @property
    def qualified(self) -> str:
        return self.own if self.space is None else f"{_quote(self.space)}.{self.own}"


class _Subjects:
    """Finds what the joins of a model file refer to."""

    def __init__(self, model: Mapping[str, Any]) -> None:
        self.all = [_Subject(subject["name"], space) for part, space in _walk(model, None)
                    for key in ("subjects", "shortcuts") for subject in part.get(key, ())]
        self._by_own: Dict[str, List[_Subject]] = collections.defaultdict(list)
        for subject in self.all:
            self._by_own[subject.own].append(subject)
        self._by_qualified = {subject.qualified: subject for subject in self.all}

    def find(self, reference: str, space: Optional[str]) -> _Subject:
        """Returns what a reference leads to that stands in the namespace."""
        if reference in self._by_qualified:
            return self._by_qualified[reference]
        found = self._by_own[reference]
        return next((subject for subject in found if subject.space == space), found[0])

    def label(self, subject: _Subject) -> str:
        """Returns the subject's name as answers write it."""
        return subject.name if len(self._by_own[subject.own]) == 1 else subject.qualified


def to_networkx(model: Mapping[str, Any]) -> Any:
    """Returns the subjects and relationships of a model file's content."""
    import networkx  # type: ignore[import]

    graph = networkx.MultiGraph()
    subjects = _Subjects(model)
    graph.add_nodes_from(map(subjects.label, subjects.all))
    for part, space in _walk(model, None):
        for join in part.get("relationships", ()):
            left, right = (subjects.label(subjects.find(join[end], space))
                           for end in ("left", "right"))
            # Several namespaces may have joins of one name.
            key = None if graph.has_edge(left, right, join["name"]) else join["name"]
            graph.add_edge(left, right, key, condition=join.get("condition", ""))
    return graph


def _walk(part: Mapping[str, Any],
          space: Optional[str]) -> Iterator[Tuple[Mapping[str, Any], Optional[str]]]:
    yield part, space
    for folder in part.get("folders", ()):
        yield from _walk(folder, space)
    for namespace in part.get("namespaces", ()):
        yield from _walk(namespace, namespace["name"])


def _quote(name: str) -> str:
    return "[" + name.replace("]", "]]") + "]" if any(one in name for one in ".[]") else name

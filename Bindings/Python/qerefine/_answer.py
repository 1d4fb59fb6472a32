"""The answer to one question."""
from __future__ import annotations

import dataclasses
import functools
import html
import json
from typing import Any, Dict, List, Optional, cast

from . import _library
from ._errors import NoSuchFormError
from ._native import lib


@dataclasses.dataclass(frozen=True)
class Join:
    """A join between two subjects.

    `left_cardinality` and `right_cardinality` tell how many rows of each end belong to one of the
    other: "0..1", "1..1", "0..n" or "1..n", with "?" for a bound that is not known. `weight` is what
    the join weighs in the graph of the question; less is better.
    """

    id: str
    name: str
    kind: str
    left: str
    left_cardinality: str
    right: str
    right_cardinality: str
    condition: str
    weight: int


@dataclasses.dataclass(frozen=True)
class Alternative:
    """One of the candidate paths. `rank` is 100 for the best and 0 for the heaviest, or None for
    what was not ranked."""

    joins: List[Join]
    weight: int
    rank: Optional[int]


@dataclasses.dataclass(frozen=True)
class Multiplied:
    """Subjects whose rows come several times, so that sums over them are too large.

    `reason` is "fan", "chasm", "many-to-many", "bridge" or "cross product".
    """

    reason: str
    subjects: List[str]
    by: List[str]
    text: str
    advice: str


@dataclasses.dataclass(frozen=True)
class Ambiguity:
    """Other paths are as cheap as the chosen one. `arbitrary`: only names or order decided."""

    equally_cheap: int
    arbitrary: bool
    turns: List[Dict[str, Any]]
    text: str
    advice: str


class Answer(_library.Held):
    """The answer to one question. It never changes, and outlives its model. Processes cannot share
    it; to_dict() is what they can."""

    def __init__(self, handle: Any) -> None:
        self._handle = handle

    @property
    def connected(self) -> bool:
        """Whether the subjects are connected."""
        return bool(lib.qe_answer_outcome(self._handle) == lib.QE_CONNECTED)

    @property
    def subjects(self) -> List[str]:
        """The names of what was to be connected."""
        return list(self._document["subjects"])

    @property
    def joins(self) -> List[Join]:
        """The joins of the chosen path, or of the first of the best paths, in order."""
        return [self._joins[join] for join in self._path]

    @property
    def weight(self) -> Optional[int]:
        """The weight of the path; None when there is none."""
        return cast(Optional[int], self._document["weight"])

    @property
    def alternatives(self) -> List[Alternative]:
        """The candidates, best first, the chosen one among them."""
        return [Alternative([self._joins[join] for join in one["joins"]], one["weight"],
                            one["rank"])
                for one in self._document["alternatives"]]

    @property
    def multiplied(self) -> List[Multiplied]:
        """The subjects whose rows come several times, but for dimensions, of which one expects
        it; empty for a harmless path."""
        return [Multiplied(one["reason"], one["subjects"], one["by"], one["text"], one["advice"])
                for one in self._document["risks"]["multiplied"] if one["reason"] != "dimension"]

    @property
    def ambiguous(self) -> Optional[Ambiguity]:
        """That other paths are as cheap; None when the path is the only one."""
        one = self._document["risks"]["ambiguous"]
        if one is None:
            return None
        return Ambiguity(one["equallyCheap"], one["arbitrary"], one["turns"], one["text"],
                         one["advice"])

    def sql(self, dialect: Optional[str] = None, *, select: bool = False, inner: bool = False,
            skip_passed_tables: bool = False, start: Optional[str] = None) -> str:
        """Returns a FROM clause along the path, or a whole SELECT of the subjects' first items.

        Raises NoSuchFormError where the dialect cannot express it and for the operation
        "subjects", which finds no joins, and UsageError for a dialect that there is not.
        """
        return self._write("sql", dialect=dialect, select=select, inner=inner, start=start,
                           skip_passed_tables=skip_passed_tables)

    def svg(self) -> str:
        """Returns a picture of the answer in its graph. Raises NoSuchFormError without Graphviz."""
        return self._write("svg")

    def html(self) -> str:
        """Returns a page to look at and to choose in. Raises NoSuchFormError without Graphviz."""
        return self._write("html")

    def text(self) -> str:
        """Returns the answer for people."""
        return self._write("text")

    def to_json(self, alternatives: int = 10) -> str:
        """Returns what `qerefine path --format json` prints, with so many alternatives; 0: all."""
        return self._write("json", alternatives=alternatives)

    def to_dict(self, alternatives: int = 10) -> Dict[str, Any]:
        """Returns the answer as a dictionary of the published schema; see qerefine.schema()."""
        return cast(Dict[str, Any], json.loads(self.to_json(alternatives)))

    def to_networkx(self) -> Any:
        """Returns the path as a networkx.MultiGraph of subjects. Raises ImportError without
        networkx."""
        import networkx  # type: ignore[import]

        graph = networkx.MultiGraph()
        for join in self.joins:
            graph.add_edge(join.left, join.right, key=join.id, **dataclasses.asdict(join))
        return graph

    def to_pandas(self) -> Any:
        """Returns the joins of the path as a pandas.DataFrame, one a row. Raises ImportError
        without pandas."""
        import pandas  # type: ignore[import]

        columns = [field.name for field in dataclasses.fields(Join)]
        return pandas.DataFrame([dataclasses.asdict(join) for join in self.joins], columns=columns)

    @functools.cached_property
    def _document(self) -> Dict[str, Any]:
        return self.to_dict(0)

    @functools.cached_property
    def _joins(self) -> Dict[str, Join]:
        return {join["id"]: Join(join["id"], join["name"], join["kind"], join["left"],
                                 join["leftCardinality"], join["right"], join["rightCardinality"],
                                 join["condition"], join["weight"])
                for join in self._document["joins"]}

    @property
    def _path(self) -> List[str]:
        alternatives = self._document["alternatives"]
        if self._document["path"] or not alternatives:
            return cast(List[str], self._document["path"])
        return cast(List[str], alternatives[0]["joins"])

    def _write(self, form: str, **options: Any) -> str:
        return _library.get_text(lib.qe_answer_write, self._handle, form.encode(),
                                 _library.to_options(options))

    def __repr__(self) -> str:
        subjects = ", ".join(self.subjects)
        return f"<qerefine.Answer {subjects}: {len(self.joins)} joins, weight {self.weight}>"

    def _repr_svg_(self) -> Optional[str]:
        try:
            return self.svg()
        except NoSuchFormError:
            return None

    def _repr_html_(self) -> str:
        picture = self._repr_svg_() or ""
        rows = "".join(
            f"<tr><td>{html.escape(join.left)} {join.left_cardinality}</td>"
            f"<td>{html.escape(join.right)} {join.right_cardinality}</td>"
            f"<td>{html.escape(join.condition)}</td></tr>"
            for join in self.joins)
        risks = [f"{one.text} {one.advice}" for one in self.multiplied]
        if self.ambiguous is not None:
            risks.append(f"{self.ambiguous.text} {self.ambiguous.advice}")
        notes = "".join(f"<p>{html.escape(risk)}</p>" for risk in risks)
        return f"<div>{picture[picture.find('<svg'):]}<table>{rows}</table>{notes}</div>"

"""An open model, and what it can be asked."""
from __future__ import annotations

import functools
import json
import os
import pathlib
from typing import Any, Dict, Iterable, List, Mapping, Optional, Union, cast

from . import _graph, _library
from ._answer import Answer
from ._errors import (
    InternalError,
    Mistake,
    ModelError,
    NoSuchFormError,
    NotConnectedError,
    RefusedError,
)
from ._native import ffi, lib

File = Union[str, "os.PathLike[str]"]
Files = Union[File, Iterable[File]]
Requests = Union[File, Iterable[Mapping[str, Any]]]


class Model(_library.Held):
    """An open model. It never changes, and threads may share it. Processes cannot: each opens its
    own."""

    def __init__(self, source: File, *, kind: Optional[str] = None,
                 roles: Optional[str] = None, schemas: Optional[Iterable[str]] = None,
                 tables: Optional[Iterable[str]] = None, statement_timeout: Optional[int] = None,
                 history: Optional[Files] = None,
                 settings: Optional[Mapping[str, int]] = None) -> None:
        """Opens whatever holds a model: a model file, an SQLite database, SQL statements, a file or
        folder of another tool such as a manifest of dbt, or the URL of a database on a server.

        `kind` names the dialect or format ("postgresql", "dbt", ...), which is recognised without
        it; `roles` is "plain" or "shortcuts"; `schemas` and `tables` are patterns of what is read
        from a server, which may take `statement_timeout` seconds for a statement (60; 0: any).
        `history` are files of past queries. `settings` hold for the whole process:
        {"General Options/NewAlgo": 0}.

        Raises ModelError when it cannot be read, and UsageError for options.
        """
        options = _open_options(kind, roles, schemas, tables, statement_timeout, history, settings)
        self._handle = _library.get_model(
            lib.qe_model_open, _library.path_bytes(os.fspath(source)), options)
        self._source = os.fspath(source)

    @classmethod
    def from_bytes(cls, data: Union[bytes, str], name: str = "model", *,
                   kind: Optional[str] = None, roles: Optional[str] = None,
                   history: Optional[Files] = None,
                   settings: Optional[Mapping[str, int]] = None) -> Model:
        """Opens what the bytes of a file are; messages call it `name`. See Model()."""
        options = _open_options(kind, roles, None, None, None, history, settings)
        given = data.encode() if isinstance(data, str) else data
        model = cls.__new__(cls)
        model._source = name
        model._handle = _library.get_model(lib.qe_model_read, ffi.from_buffer(given), len(given),
                                           _library.path_bytes(name), options)
        return model

    def path(self, *subjects: str, favoured_joins: Optional[Iterable[str]] = None,
             required_joins: Optional[Iterable[str]] = None,
             avoided_joins: Optional[Iterable[str]] = None,
             favoured_subjects: Optional[Iterable[str]] = None,
             only_subjects: Optional[Iterable[str]] = None,
             without_subjects: Optional[Iterable[str]] = None,
             only_joins: Optional[Iterable[str]] = None,
             without_joins: Optional[Iterable[str]] = None,
             selector: Optional[str] = None, cross_product: Optional[int] = None,
             use_straightest_path: Optional[bool] = None) -> Answer:
        """Returns the joins that connect the subjects, with alternatives and risks.

        Names are those of the model, perhaps behind their parents' ("Sales.Orders"); joins are also
        named by their ends ("Orders-Customer").

        Raises NotConnectedError when the subjects cannot be connected, UnknownNameError with
        suggestions and AmbiguousNameError for names, and RefusedError where a governor forbids it.
        """
        request = {"subjects": list(subjects), "favouredJoins": favoured_joins,
                   "requiredJoins": required_joins, "avoidedJoins": avoided_joins,
                   "favouredSubjects": favoured_subjects, "onlySubjects": only_subjects,
                   "withoutSubjects": without_subjects, "onlyJoins": only_joins,
                   "withoutJoins": without_joins, "selector": selector,
                   "crossProduct": cross_product, "useStraightestPath": use_straightest_path}
        answer = self.ask({key: _to_list(value) for key, value in request.items()
                           if value is not None})
        _raise_failed(answer)
        if not answer.connected:
            raise NotConnectedError(answer)
        return answer

    def ask(self, request: Mapping[str, Any]) -> Answer:
        """Returns the answer to a request as `qerefine batch` reads it, such as
        {"operation": "best", "subjects": ["orders", "region"]}, whatever it came to.

        Raises RequestError, UnknownNameError and AmbiguousNameError.
        """
        return Answer(_library.get_answer(self._handle, _to_line(request)))

    def batch(self, requests: Requests, *, jobs: int = 1, alternatives: Optional[int] = None,
              defaults: Optional[Mapping[str, Any]] = None) -> List[Dict[str, Any]]:
        """Returns a dictionary for each request, in their order: an answer, or the `error` of a
        request that could not be answered. `requests` are dictionaries, or the path of a file with
        one JSON object a line. `alternatives` is how many candidates each lists; 0: all.

        Raises ModelError for a file that cannot be read, and UsageError for options.
        """
        lines = _read_requests(requests)
        text = _library.get_text(
            lib.qe_model_batch, self._handle, lines, len(lines),
            _library.to_options({"jobs": jobs, "alternatives": alternatives,
                                 "defaults": defaults}))
        # Only "\n" ends a line here.
        return [json.loads(line) for line in text.split("\n") if line]

    def check(self, *, severities: Optional[Mapping[str, str]] = None,
              baseline: Optional[File] = None, limit: Optional[int] = None,
              accepted: Optional[bool] = None) -> Dict[str, Any]:
        """Returns what a modeller should know about the model: see "check" in the schema.
        `limit` is how many findings of each rule are listed (20; 0: all)."""
        options = {"severities": severities, "limit": limit, "accepted": accepted,
                   "baseline": None if baseline is None else os.fspath(baseline)}
        return self._get_json(lib.qe_model_check, _library.to_options(options))

    def facts(self, *subjects: str) -> Dict[str, Any]:
        """Returns the facts and dimensions, of the whole model or along the path between the
        subjects: see "facts" in the schema."""
        request = _library.to_json({"subjects": subjects}) if subjects else ffi.NULL
        return self._get_json(lib.qe_model_facts, request)

    def shortcuts(self) -> Dict[str, Any]:
        """Returns which shortcuts count as one: see "shortcuts" in the schema."""
        return self._get_json(lib.qe_model_shortcuts, ffi.NULL)

    def evaluate(self, requests: Requests, *,
                 history: Optional[Files] = None,
                 defaults: Optional[Mapping[str, Any]] = None) -> Dict[str, Any]:
        """Returns how often answers are the joins that people wrote, in percent: see "evaluation"
        in the schema. Each request holds its `joins`, pairs of "table.column".

        `history` is "leave-one-out" or "replay", where the requests are each other's history, or
        files of past queries in place of the model's; a single one as a path, not as a str.
        """
        lines = _read_requests(requests)
        chosen: Dict[str, Any] = {"defaults": defaults}
        if isinstance(history, str):
            chosen["round"] = history
        elif history is not None:
            chosen["history"] = _to_paths(history)
        return self._get_json(lib.qe_model_evaluate, lines, len(lines),
                              _library.to_options(chosen))

    def svg(self, *around: str, limit: Optional[int] = None) -> str:
        """Returns a picture of the model: of all, or of some subjects and what is joined to them;
        of at most `limit` subjects (100; 0: all). Raises NoSuchFormError without Graphviz."""
        options = {"around": list(around) or None, "limit": limit}
        return _library.get_text(lib.qe_model_draw, self._handle, _library.to_options(options))

    def to_dict(self) -> Dict[str, Any]:
        """Returns the model as a model file holds it; see qerefine.schema("model")."""
        return self._get_json(lib.qe_model_describe)

    @functools.cached_property
    def notes(self) -> List[str]:
        """What reading the model left out or had to guess, one sentence each."""
        return cast(List[str], json.loads(_library.get_text(lib.qe_model_notes, self._handle)))

    def to_networkx(self) -> Any:
        """Returns the subjects and relationships as a networkx.MultiGraph. Where several subjects
        share a name, their parents stand before it. Raises ImportError without networkx."""
        return _graph.to_networkx(self.to_dict())

    def _get_json(self, call: Any, *arguments: Any) -> Dict[str, Any]:
        text = _library.get_text(call, self._handle, *arguments)
        return cast(Dict[str, Any], json.loads(text))

    def __repr__(self) -> str:
        return f"<qerefine.Model {self._source}>"

    def _repr_svg_(self) -> Optional[str]:
        try:
            return self.svg()
        except NoSuchFormError:
            return None

    def _repr_html_(self) -> Optional[str]:
        picture = self._repr_svg_()
        return None if picture is None else f"<div>{picture[picture.find('<svg'):]}</div>"


def _open_options(kind: Optional[str], roles: Optional[str], schemas: Optional[Iterable[str]],
                  tables: Optional[Iterable[str]], statement_timeout: Optional[int],
                  history: Optional[Files], settings: Optional[Mapping[str, int]]) -> bytes:
    return _library.to_options({
        "from": kind, "roles": roles, "schemas": _to_list(schemas), "tables": _to_list(tables),
        "statement_timeout": statement_timeout,
        "history": None if history is None else _to_paths(history), "settings": settings})


def _to_list(value: Any) -> Any:
    # The library tells what is wrong with a text in place of a list.
    return list(value) if isinstance(value, Iterable) and not isinstance(value, str) else value


def _to_paths(files: Files) -> List[str]:
    listed = [files] if isinstance(files, (str, os.PathLike)) else files
    return [os.fspath(file) for file in listed]


def _to_line(request: Mapping[str, Any]) -> bytes:
    if not isinstance(request, Mapping):
        raise TypeError(f"a request is a dictionary, not a {type(request).__name__}")
    return _library.to_json(dict(request))


def _read_requests(requests: Requests) -> bytes:
    if not isinstance(requests, (str, os.PathLike)):
        return b"\n".join(map(_to_line, requests))
    try:
        return pathlib.Path(requests).read_bytes()
    except OSError as error:
        mistake = Mistake(os.fspath(requests), f"cannot be read: {error.strerror}", [])
        raise ModelError(f"{mistake.place}: {mistake.message}", [mistake]) from error


def _raise_failed(answer: Answer) -> None:
    outcome = lib.qe_answer_outcome(answer._handle)
    if outcome == lib.QE_ANSWER_REFUSED:
        raise RefusedError(answer.to_dict()["error"]["text"])
    if outcome == lib.QE_ANSWER_FAILED:
        raise InternalError(answer.to_dict()["error"]["text"])

"""Calls of the C library: what they return, and what they raise."""
from __future__ import annotations

import json
from typing import Any, Callable, Dict, List, Mapping, NoReturn, TypeVar, cast

from ._errors import KINDS, InternalError, Mistake, QerefineError
from ._native import ffi, lib

_Self = TypeVar("_Self", bound="Held")


class Held:
    """What the C library holds. It never changes, so that a copy is the same; and it cannot leave
    its process."""

    def __copy__(self: _Self) -> _Self:
        return self

    def __deepcopy__(self: _Self, _memo: Any) -> _Self:
        return self

    def __reduce__(self) -> NoReturn:
        raise TypeError(f"{type(self).__name__} cannot be pickled: it belongs to its process")


def version() -> str:
    """Returns the version of the library, such as "0.1.0"."""
    return _to_str(lib.qe_version())


def schema(name: str) -> Dict[str, Any]:
    """Returns a JSON Schema: that of "answer", for what is returned as dictionaries, or "model"."""
    text = lib.qe_schema(name.encode())
    if text == ffi.NULL:
        raise ValueError(f'there is no schema "{name}"; there are answer and model')
    return cast(Dict[str, Any], json.loads(_to_str(text)))


def to_options(options: Mapping[str, Any]) -> bytes:
    """Returns the options that were given, with their names as JSON has them."""
    given = {_to_camel(name): value for name, value in options.items() if value is not None}
    return to_json(given)


def to_json(value: Any) -> bytes:
    """Returns the value as one line of JSON."""
    return json.dumps(value, ensure_ascii=False).encode("utf-8", "surrogateescape")


def get_model(call: Callable[..., int], *arguments: Any) -> Any:
    """Returns the model that a call opens."""
    place = ffi.new("qe_model**")
    _raise_failure(call, *arguments, place)
    return ffi.gc(place[0], lib.qe_model_free)


def get_answer(model: Any, request: bytes) -> Any:
    """Returns the answer to a request."""
    place = ffi.new("qe_answer**")
    _raise_failure(lib.qe_ask, model, request, place)
    return ffi.gc(place[0], lib.qe_answer_free)


def get_text(call: Callable[..., int], *arguments: Any) -> str:
    """Returns the text that a call sets."""
    place = ffi.new("char**")
    _raise_failure(call, *arguments, place)
    try:
        return _to_str(place[0])
    finally:
        lib.qe_text_free(place[0])


def _raise_failure(call: Callable[..., int], *arguments: Any) -> None:
    place = ffi.new("qe_error**")
    status = call(*arguments, place)
    if status == lib.QE_OK:
        return
    error = ffi.gc(place[0], lib.qe_error_free)
    kind = KINDS.get(status, InternalError)
    raise _with_mistakes(kind(_to_str(lib.qe_error_text(error))), error)


def _with_mistakes(exception: QerefineError, error: Any) -> QerefineError:
    for i in range(lib.qe_error_count(error)):
        suggestions: List[str] = []
        while (name := lib.qe_error_suggestion(error, i, len(suggestions))) != ffi.NULL:
            suggestions.append(_to_str(name))
        place, message = lib.qe_error_place(error, i), lib.qe_error_message(error, i)
        exception.mistakes.append(Mistake(_to_str(place), _to_str(message), suggestions))
    return exception


def _to_str(text: Any) -> str:
    return cast(str, ffi.string(text).decode("utf-8", "replace"))


def _to_camel(name: str) -> str:
    first, *others = name.split("_")
    return first + "".join(map(str.capitalize, others))


def path_bytes(path: str) -> bytes:
    """Returns the path as the system has it, zero bytes refused."""
    if not isinstance(path, str):
        raise TypeError(f"a path is a str or a pathlib.Path, not {type(path).__name__}")
    encoded = path.encode("utf-8", "surrogateescape")
    if b"\0" in encoded:
        raise ValueError("a path must not hold the character U+0000")
    return encoded

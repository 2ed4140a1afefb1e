"""Values between Python and the session's JSON."""

from __future__ import annotations

import dataclasses
import enum
import typing
from typing import Any, Dict, Iterable, List, Mapping, Type, TypeVar, Union

from .errors import SessionError

Bytes = Union[bytes, bytearray, memoryview]
"""What a list of bytes may be given as."""

Fields = Mapping[str, Any]
"""A record as its fields; those that are not given are zero."""

T = TypeVar("T")

_hints: Dict[type, Dict[str, Any]] = {}


class Enumeration(enum.IntEnum):
    """Numbers with names. A number without a name is one, too: a service may be newer than this package."""

    @classmethod
    def _missing_(cls, value: object) -> Any:
        if not isinstance(value, int):
            return None
        member = int.__new__(cls, value)
        member._name_ = str(value)
        member._value_ = value
        return member


def hints_of(kind: type) -> Dict[str, Any]:
    """The types of a record's or named tuple's fields."""
    if kind not in _hints:
        _hints[kind] = typing.get_type_hints(kind)
    return _hints[kind]


def wire_bytes(value: Bytes) -> str:
    if not isinstance(value, (bytes, bytearray, memoryview)):
        raise TypeError(f"bytes are given as bytes, not as {type(value).__name__}")
    return bytes(value).hex()


def wire_list(values: Iterable[Any]) -> List[Any]:
    return list(values)


def wire_record(kind: type, value: Any) -> Dict[str, Any]:
    """A record, or its fields. What is wrong with names and values is the session's to say."""
    if isinstance(value, kind):
        fields = {field.name: getattr(value, field.name) for field in dataclasses.fields(value)}
    elif isinstance(value, Mapping):
        fields = dict(value)
    else:
        raise TypeError(f"{kind.__name__} is given as one or as a dictionary, not as {type(value).__name__}")
    hints = hints_of(kind)
    return {name: _wire(hints.get(name), field) for name, field in fields.items()}


def wire_records(kind: type, values: Iterable[Any]) -> List[Dict[str, Any]]:
    return [wire_record(kind, value) for value in values]


def _wire(hint: Any, value: Any) -> Any:
    if hint is bytes:
        return wire_bytes(value)
    if dataclasses.is_dataclass(hint):
        return wire_record(typing.cast(type, hint), value)
    if typing.get_origin(hint) is list:
        return [_wire(typing.get_args(hint)[0], one) for one in value]
    return value


def read_fields(kind: Type[T], values: Any) -> T:
    """A record or named tuple from the object that the session sent."""
    if not isinstance(values, dict):
        raise SessionError(f"the session sent {values!r} for a {kind.__name__}")
    return kind(**{name: _read(hint, values.get(name), name) for name, hint in hints_of(kind).items()})


def _read(hint: Any, value: Any, name: str) -> Any:
    try:
        if hint is bytes:
            return bytes.fromhex(value)
        if typing.get_origin(hint) is list:
            return [_read(typing.get_args(hint)[0], one, name) for one in value]
        if dataclasses.is_dataclass(hint):
            return read_fields(typing.cast(type, hint), value)
        if issubclass(hint, Enumeration):
            return hint[value] if isinstance(value, str) else hint(value)
        if type(value) is hint:
            return value
    except (TypeError, ValueError, KeyError):
        pass
    raise SessionError(f"the session sent {value!r} for {name}")

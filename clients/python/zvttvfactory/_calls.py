"""What the generated interfaces stand on."""

from __future__ import annotations

import warnings
from typing import Any, Dict, Mapping, Optional, Protocol, Type, TypeVar, Union, overload

from ._values import read_fields
from .errors import StatusError


G = TypeVar("G")
U = TypeVar("U")


class Caller(Protocol):
    """Sends the session a request and waits for the result."""

    def __call__(self, method: str, params: Dict[str, Any], timeout: Optional[float]) -> Any: ...


class Interface:
    """One interface of the service."""

    _name: str

    def __init__(self, caller: Caller, instance: str) -> None:
        self._caller = caller
        self._instance = instance

    @overload
    def _call(self, method: str, arguments: Mapping[str, Any], given: Type[G], unchecked: Type[U], check: bool,
              timeout: Optional[float]) -> Union[G, U]: ...

    @overload
    def _call(self, method: str, arguments: Mapping[str, Any], given: None, unchecked: Type[U], check: bool,
              timeout: Optional[float]) -> Optional[U]: ...

    def _call(self, method: str, arguments: Mapping[str, Any], given: Optional[type], unchecked: type, check: bool,
              timeout: Optional[float]) -> Any:
        """Calls; what it gives is of the type `given` (None: nothing) when checked, else `unchecked`."""
        answer = self._caller("call", {"interface": self._name, "method": method, "instance": self._instance,
                                       "arguments": arguments}, timeout)
        return outcome(answer, given, unchecked, check)


def outcome(answer: Any, given: Optional[type], unchecked: type, check: bool) -> Any:
    """What a call gives, from what the session answered."""
    if answer.get("lossy"):
        warnings.warn(f"{answer['method']}: a text among the results is not UTF-8; what is none is U+FFFD",
                      UnicodeWarning, stacklevel=4)
    results = answer["results"]
    if check and answer["failed"]:
        status = answer["status"] or {"number": None, "name": "not done"}
        raise StatusError(answer["method"], status["number"], status["name"], status.get("reason") or "",
                          read_fields(unchecked, results))
    kind = given if check else unchecked
    return None if kind is None else read_fields(kind, results)

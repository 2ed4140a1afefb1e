"""The television's factory service, as an object."""

from __future__ import annotations

import base64
import collections
import datetime
import os
import shutil
import threading
import time
from pathlib import Path
from typing import (
    Any, Deque, Dict, Iterable, Iterator, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Type, Union,
)
from types import TracebackType

from . import interfaces
from ._calls import outcome
from ._session import Session
from .errors import DeadlineExceeded, Error, EventsLost, NotRegistered, ServiceDied, SessionError

Words = Union[str, Iterable[str]]
"""One word or several."""


class Record(NamedTuple):
    """One of the four payload records of an event."""

    value: int = 0
    text: str = ""
    data: bytes = b""


class Event(NamedTuple):
    """An event of the service's.

    :ivar number: counts the events of its watch, from 1
    :ivar time: when it came
    :ivar module: "sys", "net", "disp", "disptst", "prphrl", "inpsrc", "aud", "info" or "tv"
    :ivar type: its type, such as 0x100004
    :ivar records: four
    """

    number: int
    time: datetime.datetime
    module: str
    type: int
    records: Tuple[Record, Record, Record, Record]


class Service(NamedTuple):
    """A registered interface. The process is None where that is not known."""

    interface: str
    instance: str
    pid: Optional[int]


class Edid(NamedTuple):
    """An HDMI port's EDID: its bytes, and what edid-decode says of them, where that is installed."""

    data: bytes
    text: Optional[str]


class Answer(NamedTuple):
    """What Tv.call gives: values as the session writes them, bytes as hexadecimal text.

    :ivar status: None of a method that has none
    :ivar failed: whether the status is not 0, or the thing was not done
    :ivar milliseconds: how long the call took
    """

    method: str
    results: Dict[str, Any]
    status: Optional[int]
    failed: bool
    milliseconds: float


class Events:
    """The events of a watch, from Tv.events(). Within its with block it takes events in; what it has taken in can be
    read behind the block, too.

    Iteration waits for each event, without end: leave it with break, or ask for next(). It raises ServiceDied when the
    service dies, behind its last events. Behind the block, it ends with the events that are left. Several threads may
    read: each event goes to one of them.
    """

    def __init__(self, tv: "Tv", params: Mapping[str, Any], limit: int, timeout: Optional[float]) -> None:
        self._tv = tv
        self._params = params
        self._limit = limit
        self._timeout = timeout
        self._number: Optional[int] = None
        self._changed = threading.Condition()  # guards all below
        self._waiting: Deque[Event] = collections.deque()
        self._end: Optional[Error] = None  # why no more events come
        self._left = False  # the with block

    def __enter__(self) -> "Events":
        self._tv._watch(self)
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        with self._changed:
            over, self._left = self._end is not None, True
        try:
            self._tv._unwatch(self, over)
        except Error:
            # What ends the block is worth more than that its watch could not be ended.
            if kind is None:
                raise
        finally:
            with self._changed:
                self._changed.notify_all()

    def next(self, timeout: Optional[float] = None) -> Event:
        """The next event. Raises DeadlineExceeded when none comes within the timeout, in seconds; without one, the
        connection's holds. Behind the with block it does not wait."""
        timeout = self._tv.timeout if timeout is None else timeout
        end = None if timeout is None else time.monotonic() + timeout
        with self._changed:
            while not self._waiting:
                if self._end is not None:
                    raise type(self._end)(*self._end.args)
                if self._left:
                    raise DeadlineExceeded("no event is left of a watch that is over")
                left = None if end is None else min(end - time.monotonic(), threading.TIMEOUT_MAX)
                if left is not None and left <= 0:
                    raise DeadlineExceeded(f"no event within {timeout} s")
                self._changed.wait(left)
            return self._waiting.popleft()

    def __iter__(self) -> Iterator[Event]:
        while True:
            with self._changed:
                if self._left and not self._waiting and self._end is None:
                    return
            try:
                event = self.next(float("inf"))
            except DeadlineExceeded:
                return
            yield event

    def _take(self, event: Event) -> None:
        with self._changed:
            if self._end is not None:
                return
            if len(self._waiting) == self._limit:
                self._end = EventsLost(f"more than {self._limit} events wait to be read")
            else:
                self._waiting.append(event)
            self._changed.notify()

    def _over(self, error: Error) -> None:
        with self._changed:
            self._end = self._end or error
            self._changed.notify_all()


def _event_of(params: Mapping[str, Any]) -> Event:
    first, second, third, fourth = (
        Record(record.get("value", 0), record.get("text", ""), bytes.fromhex(record.get("bytes", "")))
        for record in params["records"])
    return Event(params["number"], _time_of(params["time"]), params["module"], params["type"],
                 (first, second, third, fourth))


def _time_of(text: str) -> datetime.datetime:
    # Python's own reading of "+0200" and "Z" is younger than the oldest Python that this is for.
    if text.endswith("Z"):
        text = text[:-1] + "+00:00"
    elif len(text) > 5 and text[-5] in "+-" and text[-4:].isdigit():
        text = f"{text[:-2]}:{text[-2:]}"
    return datetime.datetime.fromisoformat(text)


class Tv(interfaces.Interfaces):
    """A connection to the service. Its interfaces are attributes: tv.information.get_ip_enable_status(3). Any number
    of threads may use one at once.

    A method gives a named tuple of its results without the status, or None if it has no others. A status other than 0,
    or a bDone that is false, raises StatusError; with check=False the method gives all results and raises neither.
    timeout, in seconds, is how long a call may take, from waiting for the service on; without one, the connection's
    holds, and float("inf") is without end.

    Made by connect(). Ends with its with block, or with close().

    :ivar version: what the session says of itself: protocol, version, package, pid
    :ivar timeout: what holds for calls without a timeout of their own; None is without end
    """

    def __init__(self, command: Sequence[str], *, instance: str = "default", timeout: Optional[float] = None,
                 env: Optional[Mapping[str, str]] = None) -> None:
        super().__init__(self._request, instance)
        self.timeout = timeout
        self._instance = instance
        self._lock = threading.Lock()  # guards what follows
        self._watches: Dict[int, Events] = {}
        self._session = Session(command, env or {}, self._notified)
        self.version: Dict[str, Any] = self._session.version

    def __enter__(self) -> "Tv":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Ends the connection and its process. Calls that are under way in other threads raise SessionError."""
        self._session.close()

    def services(self, all: bool = False) -> List[Service]:
        """The interfaces that are registered; with all, those of other packages, too."""
        found = self._request("list", {"all": all}, None)
        return [Service(one["interface"], one["instance"], one.get("pid")) for one in found]

    def introspect(self, interface: str = "*", method: str = "*") -> List[Dict[str, Any]]:
        """What there is to call, as `fapictl introspect --json` writes it. Names or patterns."""
        found: List[Dict[str, Any]] = self._request("introspect", {"interface": interface, "method": method}, None)
        return found

    def call(self, interface: str, method: str, arguments: Union[Mapping[str, Any], Sequence[Any]] = (), *,
             instance: Optional[str] = None, timeout: Optional[float] = None) -> Answer:
        """Calls a method by its names, short or whole, for programs that do not know it when they are written.
        Values are as on the command line: bytes as hexadecimal text. It does not raise StatusError."""
        given = dict(arguments) if isinstance(arguments, Mapping) else list(arguments)
        answer = self._request("call", {"interface": interface, "method": method, "arguments": given,
                                        "instance": instance or self._instance}, timeout)
        status = answer["status"]
        return Answer(answer["method"], answer["results"], status and status["number"], answer["failed"],
                      answer["milliseconds"])

    def events(self, *, module: Words = (), type: Union[int, str, Iterable[Union[int, str]]] = (), match: Words = (),
               limit: int = 65536, timeout: Optional[float] = None) -> Events:
        """The events that come within a with block: the watch is registered before the block begins.

        :param module: of these modules alone, such as "prphrl"
        :param type: of these types alone, numbers or what `fapictl watch --type` takes
        :param match: of this content alone, as `fapictl watch --match` takes it
        :param limit: how many events are kept for the reader. One more, and the reader gets EventsLost behind them: no
            event is lost silently
        :param timeout: how long the registration may take
        """
        types = [type] if isinstance(type, (int, str)) else list(type)
        params = {"modules": _words(module), "types": types, "matches": _words(match), "instance": self._instance}
        return Events(self, {name: value for name, value in params.items() if value}, limit, timeout)

    def wait(self, *interfaces: str, ready: bool = False, instance: Optional[str] = None,
             timeout: Optional[float] = None) -> List[Service]:
        """Waits until the interfaces are registered, all of the package when none is named, and with ready until the
        library behind them can be called. Raises NotRegistered when they are not in time."""
        params: Dict[str, Any] = {"instance": instance or self._instance, "ready": ready}
        if interfaces:
            params["interfaces"] = list(interfaces)
        return [Service(one["interface"], one["instance"], one.get("pid")) for one in self._request("wait", params, timeout)]

    def post(self, type: Union[int, str], *records: Union[Record, Mapping[str, Any], str], check: bool = True,
             timeout: Optional[float] = None) -> Optional[interfaces.Status]:
        """Posts an event to every client of the service, as if a module had raised it.

        :param type: bits 16 to 24 choose the module
        :param records: up to four: a Record, its fields in a dictionary, or a text as `fapictl post` takes it
        """
        answer = self._request("post", {"type": type, "records": [_wire_record(record) for record in records],
                                        "instance": self._instance}, timeout)
        status: Optional[interfaces.Status] = outcome(answer, None, interfaces.Status, check)
        return status

    def capture(self, layers: str = "all", *, timeout: Optional[float] = None) -> bytes:
        """What the panel shows, as a PNG file: "all", "video", "graphics" or "osd"."""
        answer = self._request("capture", {"layers": layers, "instance": self._instance}, timeout)
        return base64.b64decode(answer["png"], validate=True)

    def edid(self, port: int, *, timeout: Optional[float] = None) -> Edid:
        """An HDMI port's EDID."""
        answer = self._request("edid", {"port": port, "instance": self._instance}, timeout)
        return Edid(bytes.fromhex(answer["bytes"]), answer["text"])

    def _request(self, method: str, params: Dict[str, Any], timeout: Optional[float]) -> Any:
        return self._session.request(method, params, self.timeout if timeout is None else timeout)

    def _watch(self, events: Events) -> None:
        if events._number is not None:
            raise Error("the events of a watch are watched once: ask for others")

        def registered(result: Any) -> None:
            # On the session's thread: its next message can be an event already.
            events._number = result["watch"]
            with self._lock:
                self._watches[result["watch"]] = events

        timeout = self.timeout if events._timeout is None else events._timeout
        self._session.request("watch", events._params, timeout, registered)

    def _unwatch(self, events: Events, over: bool) -> None:
        assert events._number is not None
        try:
            if not over or isinstance(events._end, EventsLost):
                self._session.request("unwatch", {"watch": events._number}, self.timeout)
        finally:
            with self._lock:
                self._watches.pop(events._number, None)

    def _notified(self, method: str, params: Mapping[str, Any]) -> None:
        with self._lock:
            watches = [events for number, events in self._watches.items()
                       if method == "over" or number == params["watch"]]
        for events in watches:
            if method == "event":
                events._take(_event_of(params))
            elif method == "died":
                events._over(ServiceDied("the service has died"))
            elif method == "over":
                events._over(SessionError(params["reason"]))


def _words(given: Words) -> List[str]:
    return [given] if isinstance(given, str) else list(given)


def _wire_record(record: Union[Record, Mapping[str, Any], str]) -> Any:
    if isinstance(record, str):
        return record
    fields = record._asdict() if isinstance(record, Record) else dict(record)
    data = fields.pop("data", b"")
    return {**fields, "bytes": data.hex()} if data else fields


def find_program(name: str, given: Optional[Union[str, Path]], variable: str) -> str:
    """A program of the tree: the one that is given, that of the environment's variable, on the PATH, or in the release
    build of the tree that this package is a part of."""
    if given is not None:
        return os.path.abspath(given) if os.sep in str(given) else str(given)
    built = Path(__file__).resolve().parents[3] / "build/release/bin" / name
    found = os.environ.get(variable) or shutil.which(name) or (str(built) if built.exists() else None)
    if found is None:
        raise SessionError(f"no {name}: neither ${variable}, nor the PATH, nor {built}")
    return found


def connect(fapictl: Optional[Union[str, Path]] = None, *, command: Optional[Sequence[str]] = None,
            instance: str = "default", timeout: Optional[float] = None,
            env: Optional[Mapping[str, str]] = None) -> Tv:
    """Connects to the service. It need not be registered yet: see Tv.wait().

    :param fapictl: the command-line client; else $FAPICTL, the one on the PATH, or that of the tree's release build
    :param command: what to run in place of it, such as ["adb", "shell", "fapictl", "session"]
    :param instance: the service's instance name
    :param timeout: [s] for all calls that have none of their own; without one, they wait without end
    :param env: variables of the session's environment, on top of ours
    """
    if command is None:
        command = [find_program("fapictl", fapictl, "FAPICTL"), "session"]
    elif fapictl is not None:
        raise TypeError("either a fapictl or a command, not both")
    return Tv(command, instance=instance, timeout=timeout, env=env)

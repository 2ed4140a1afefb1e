"""A session: `fapictl session` as a child process, and JSON-RPC with it. Any number of threads may use one at once."""

from __future__ import annotations

import collections
import json
import logging
import math
import os
import subprocess
import threading
import time
import weakref
from typing import Any, Callable, Deque, Dict, List, Mapping, Optional, Sequence

from .errors import (
    CallFailed, DeadlineExceeded, Error, NotRegistered, OutputError, ServiceDied, SessionError, StatusError, UsageError,
)

PROTOCOL = 1

# Further threads wait for their turn. The session takes twice as many: one that is answered counts a little longer.
_AT_ONCE = 32
# How long beyond a request's deadline the session may take to say that it has passed.
_GRACE = 5.0
# How long the session may take to start and to tell its version. Through a cable and a debug bridge, seconds.
_START = 30.0
# How long it may take to end, before it is told to, and again before it is made to.
_END = 2.0

# What the session answers itself, and no service: it takes no deadline for that.
_AT_HAND = {"version", "list", "introspect", "unwatch"}

_log = logging.getLogger("zvttvfactory")

Notified = Callable[[str, Dict[str, Any]], None]


class _Request:
    """One request that is under way. `done` tells when `result` or `error` is there."""

    def __init__(self, method: str, answered: Optional[Callable[[Any], None]]) -> None:
        self.method = method
        self.done = threading.Event()
        self.answered = answered
        self.result: Any = None
        self.error: Optional[Error] = None


def _error_of(method: str, error: Mapping[str, Any]) -> Error:
    code, message = error.get("code"), str(error.get("message"))
    data = error.get("data")
    if code == -32001 and isinstance(data, dict):
        return StatusError(method, data.get("status"), "", message, None)
    if code == -32003:
        return NotRegistered(message)
    if code == -32004:
        return (ServiceDied if isinstance(data, dict) and data.get("dead") else CallFailed)(message)
    if code == -32005:
        return OutputError(message)
    if code == -32007:
        return DeadlineExceeded(message)
    if code in (-32600, -32601, -32602):
        return UsageError(message)
    return CallFailed(message)


def _end(process: "subprocess.Popen[bytes]", patient: bool) -> None:
    """A session ends with its input once what is under way has been answered; the impatient do not wait for that."""
    assert process.stdin is not None
    try:
        process.stdin.close()
    except OSError:
        pass  # it has ended already
    for hurry in (process.terminate, process.kill):
        if patient:
            try:
                process.wait(_END)
                return
            except subprocess.TimeoutExpired:
                pass
        hurry()
        patient = True
    process.wait()


class Session:
    """Requires a command that runs a session on its standard input and output. `notified` is called on a thread of the
    session's own with each notification, in order; it must not wait for the session."""

    def __init__(self, command: Sequence[str], env: Mapping[str, str], notified: Notified) -> None:
        try:
            # A process group of its own: Ctrl-C is for us, who may still want to tidy up with it.
            self._process = subprocess.Popen(
                command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0,
                env={**os.environ, **env}, start_new_session=True)
        except OSError as error:
            raise SessionError(f"cannot run {command[0]}: {error.strerror}") from error
        self._command = command
        self._notified = notified
        self._lock = threading.Lock()  # guards all below
        self._requests: Dict[int, _Request] = {}
        self._next = 0
        self._broken: Optional[SessionError] = None
        self._turns = threading.Semaphore(_AT_ONCE)
        self._writing = threading.Lock()
        self._said: Deque[str] = collections.deque(maxlen=5)  # on standard error
        self._finalizer = weakref.finalize(self, _end, self._process, True)
        # The threads know the session through weak references alone: one that nobody holds any longer ends.
        this = weakref.ref(self)
        self._listener = threading.Thread(
            target=_listen, args=(this, self._process), name="zvttvfactory-session", daemon=True)
        self._errors = threading.Thread(
            target=_follow, args=(self._process, self._said), name="zvttvfactory-stderr", daemon=True)
        self._errors.start()
        self._listener.start()
        try:
            self.version = self.request("version", {}, _START)
            if not isinstance(self.version, dict) or self.version.get("protocol") != PROTOCOL:
                raise SessionError(f"this package speaks the session's protocol {PROTOCOL}, not that of {self.version}")
        except UsageError as error:
            self.close()
            raise SessionError(str(error)) from error
        except BaseException:
            self.close()
            raise

    def request(self, method: str, params: Mapping[str, Any], timeout: Optional[float],
                answered: Optional[Callable[[Any], None]] = None) -> Any:
        """Sends a request and waits for its result. `answered` gets the result on the session's own thread, ahead of
        the notifications behind it."""
        wait = None if timeout is None or math.isinf(timeout) else timeout
        begin = time.monotonic()
        if not self._turns.acquire(timeout=wait):
            raise DeadlineExceeded(f"{method}: not sent within {timeout} s, {_AT_ONCE} requests are under way")
        try:
            if wait is not None:
                wait = max(0.0, begin + wait - time.monotonic())
                if method not in _AT_HAND:
                    params = {**params, "timeout": wait}
            request = _Request(method, answered)
            with self._lock:
                if self._broken is not None:
                    raise self._fresh(self._broken)
                self._next += 1
                number = self._next
                self._requests[number] = request
            try:
                self._send({"jsonrpc": "2.0", "id": number, "method": method, "params": params})
                if not request.done.wait(None if wait is None else wait + _GRACE):
                    raise DeadlineExceeded(f"{method}: the session has not answered within {timeout} s")
            finally:
                with self._lock:
                    self._requests.pop(number, None)
        finally:
            self._turns.release()
        if request.error is not None:
            raise request.error
        return request.result

    def _send(self, message: Mapping[str, Any]) -> None:
        assert self._process.stdin is not None
        try:
            line = json.dumps(message, allow_nan=False).encode() + b"\n"
        except (TypeError, ValueError) as error:
            raise UsageError(f"an argument is nothing that the session takes: {error}") from error
        try:
            with self._writing:
                rest = memoryview(line)
                while rest:
                    rest = rest[self._process.stdin.write(rest):]
        except (OSError, ValueError):
            # It has ended, or was closed by us: the listener knows why, and lets go of all who wait.
            self._listener.join(_END)

    def close(self) -> None:
        """Ends the session. What is under way in other threads fails."""
        with self._lock:
            idle = not self._requests
            self._broken = self._broken or SessionError("the connection is closed")
        if self._finalizer.detach() is not None:
            if not self._writing.acquire(timeout=_END):
                self._process.kill()  # it reads no longer, and a thread waits for it to
                self._writing.acquire()
            _end(self._process, idle)
            self._writing.release()
            if threading.current_thread() is not self._listener:
                self._listener.join(_END)
            self._errors.join(_END)
            # A process that the command has left behind may hold the other end; then they stay open.
            for thread, stream in ((self._listener, self._process.stdout), (self._errors, self._process.stderr)):
                assert stream is not None
                if not thread.is_alive() or thread is threading.current_thread():
                    stream.close()

    # Below: on the listener's thread.

    @staticmethod
    def _fresh(error: SessionError) -> SessionError:
        """Each thread raises an exception of its own: one that is raised twice collects traces."""
        return SessionError(*error.args)

    def _take(self, line: bytes) -> None:
        message = json.loads(line)
        if not isinstance(message, dict):
            raise ValueError("no object")
        if "method" in message:
            self._notified(message["method"], message["params"])
            return
        if message["id"] is None:
            raise ValueError(message["error"]["message"])
        with self._lock:
            request = self._requests.get(message["id"])
        if request is None:
            return  # its caller has given up
        if "error" in message:
            request.error = _error_of(request.method, message["error"])
        else:
            request.result = message["result"]
            if request.answered is not None:
                request.answered(request.result)
        request.done.set()

    def _over(self, reason: str) -> None:
        with self._lock:
            self._broken = self._broken or SessionError(reason)
            broken, requests = self._broken, list(self._requests.values())
        for request in requests:
            if not request.done.is_set():
                request.error = self._fresh(broken)
                request.done.set()
        self._notified("over", {"reason": str(broken)})


def _listen(this: "weakref.ref[Session]", process: "subprocess.Popen[bytes]") -> None:
    assert process.stdout is not None
    parts: List[bytes] = []
    reason = ""
    while not reason:
        data = process.stdout.read(1 << 16)
        if not data:
            break
        *lines, rest = data.split(b"\n")
        for line in lines:
            parts.append(line)
            whole = b"".join(parts)
            parts = []
            session = this()
            if session is None:
                return
            try:
                session._take(whole)
            except (ValueError, KeyError, TypeError, AttributeError) as error:
                reason = f"the session said what it should not: {whole[:200]!r} ({type(error).__name__}: {error})"
                process.kill()
                break
            del session
        parts.append(rest)
    if not reason:
        try:
            code = process.wait(_END)
            how = f"by signal {-code}" if code < 0 else f"with {code}"
        except subprocess.TimeoutExpired:
            how = "its output"
    session = this()
    if session is not None:
        if not reason:
            session._errors.join(_END)
            reason = " ".join([f"the session has ended {how}:", *session._said]).rstrip(":")
        session._over(reason)


def _follow(process: "subprocess.Popen[bytes]", said: Deque[str]) -> None:
    """What the session says for people goes to the log, whose warnings Python shows unless told otherwise."""
    assert process.stderr is not None
    rest = b""
    while True:
        data = process.stderr.read(1 << 12)
        *lines, rest = (rest + data).split(b"\n")
        if not data and rest:
            lines.append(rest)
        for line in lines:
            text = line.decode(errors="replace").rstrip()
            said.append(text)
            _log.warning("%s", text)
        if not data:
            return

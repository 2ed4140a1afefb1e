"""What calls of the package raise. All of it is an Error."""

from __future__ import annotations

from typing import Any, Optional


class Error(Exception):
    """Whatever the package raises."""


class UsageError(Error):
    """A name, an argument or a value is wrong; nothing was called."""


class NotRegistered(Error):
    """The service is not registered, or was not in time."""


class CallFailed(Error):
    """The call did not come back with results. It may have happened all the same."""


class ServiceDied(CallFailed):
    """The service's process ended before or during the call, or while its events were watched."""


class DeadlineExceeded(Error, TimeoutError):
    """No answer within the deadline. The call may still happen."""


class EventsLost(Error):
    """More events came than a watch keeps for its reader; those that it kept were given first."""


class OutputError(Error):
    """A picture or file could not be brought."""


class SessionError(Error):
    """The session could not be started, ended, or said what it should not. The connection is of no use any longer."""


class StatusError(Error):
    """The service refused: its status is not 0, or it says that the thing was not done.

    :ivar method: the method's whole name, or "capture" or "edid"
    :ivar number: the status; None of a method that has none and only tells whether it was done
    :ivar name: the status's name, such as "out of range"; "" where it is not known
    :ivar reason: why, where the service tells; else ""
    :ivar results: the named tuple that the call would have given with check=False; None where there is none
    """

    def __init__(self, method: str, number: Optional[int], name: str, reason: str, results: Any) -> None:
        super().__init__(method, number, name, reason, results)
        self.method = method
        self.number = number
        self.name = name
        self.reason = reason
        self.results = results

    def __str__(self) -> str:
        status = self.name if self.number is None else f"{self.number} ({self.name})" if self.name else str(self.number)
        return f"{self.method}: {status}" + (f": {self.reason}" if self.reason else "")

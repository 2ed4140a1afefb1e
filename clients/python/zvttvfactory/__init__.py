"""The television's factory service: calls, events, pictures.

    import zvttvfactory

    with zvttvfactory.connect(timeout=5) as tv:
        print(tv.information.get_fapi_sw_version().strVersion)
"""

from .client import Answer, Edid, Event, Events, Record, Service, Tv, connect
from .errors import (
    CallFailed, DeadlineExceeded, Error, EventsLost, NotRegistered, OutputError, ServiceDied, SessionError, StatusError,
    UsageError,
)

__all__ = [
    "Answer", "CallFailed", "DeadlineExceeded", "Edid", "Error", "Event", "Events", "EventsLost", "NotRegistered",
    "OutputError", "Record", "Service", "ServiceDied", "SessionError", "StatusError", "Tv", "UsageError", "connect",
]

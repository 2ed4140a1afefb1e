"""The transport, beside a session that does not what it should."""

from __future__ import annotations

import concurrent.futures
import json
import subprocess
import sys
import threading
import time
from pathlib import Path
from typing import Any, List, Type

import pytest

import zvttvfactory
from zvttvfactory import _session

FAKE = str(Path(__file__).parent / "fake_session.py")


def fake(*words: str, **options: Any) -> zvttvfactory.Tv:
    return zvttvfactory.connect(command=[sys.executable, FAKE, *words], **options)


def call(tv: zvttvfactory.Tv, value: object = 1, **options: Any) -> object:
    return tv.call("I", "m", {"value": value}, **options).results["value"]


@pytest.mark.parametrize("does, says", [
    ("mute", "ended with 1: fake: no verb 'session'"),
    ("newer", "protocol 1, not that of {'protocol': 2}"),
])
def test_a_session_that_cannot_be_used_is_refused_at_once(does: str, says: str) -> None:
    with pytest.raises(zvttvfactory.SessionError, match=says):
        fake(does)


def test_answers_find_their_callers_in_any_order() -> None:
    with fake("reversed", "8") as tv, concurrent.futures.ThreadPoolExecutor(8) as threads:
        assert list(threads.map(lambda number: call(tv, number), range(8))) == list(range(8))
        # More threads than requests that may be under way.
        with concurrent.futures.ThreadPoolExecutor(100) as many:
            assert list(many.map(lambda number: call(tv, number), range(500))) == list(range(500))


@pytest.mark.parametrize("code, data, error", [
    (-32602, {"exit": 2}, zvttvfactory.UsageError),
    (-32601, {"exit": 2}, zvttvfactory.UsageError),
    (-32003, {"exit": 3}, zvttvfactory.NotRegistered),
    (-32004, {"exit": 4, "dead": True}, zvttvfactory.ServiceDied),
    (-32004, {"exit": 4, "dead": False}, zvttvfactory.CallFailed),
    (-32007, {"exit": 4}, zvttvfactory.DeadlineExceeded),
    (-32005, {"exit": 5}, zvttvfactory.OutputError),
    (-32001, {"exit": 1, "status": -102}, zvttvfactory.StatusError),
    (-32099, None, zvttvfactory.CallFailed),
])
def test_errors_are_told_apart(code: int, data: object, error: Type[Exception]) -> None:
    with fake("refuse", str(code), json.dumps(data)) as tv:
        with pytest.raises(error, match="its words$") as caught:
            call(tv)
        assert type(caught.value) is error
        assert call(tv, 2) == 2  # the session goes on


@pytest.mark.parametrize("words, says", [
    (["die"], "ended by signal 9: fake: about to end"),
    (["say", "Segmentation fault"], "what it should not: b'Segmentation fault'"),
    (["say", "[1]"], "what it should not"),
    (["say", '{"id": 2}'], "what it should not"),
    (["say", '{"id": null, "error": {"code": -32600, "message": "too long"}}'], "too long"),
])
def test_all_who_wait_learn_of_the_sessions_end(words: List[str], says: str) -> None:
    with fake(*words) as tv, concurrent.futures.ThreadPoolExecutor(3) as threads:
        for waiting in [threads.submit(call, tv) for _ in range(3)]:
            with pytest.raises(zvttvfactory.SessionError, match=says):
                waiting.result(30)
        with pytest.raises(zvttvfactory.SessionError, match=says):
            call(tv)


def test_a_session_that_does_not_answer_in_time_is_not_waited_for(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_session, "_GRACE", 0.01)
    monkeypatch.setattr(_session, "_END", 0.01)
    with fake("silent", timeout=0.01) as tv:
        with pytest.raises(TimeoutError, match="within 0.01 s"):
            call(tv)
        with concurrent.futures.ThreadPoolExecutor(1) as threads:
            waiting = threads.submit(call, tv, timeout=float("inf"))
            while not tv._session._requests:
                time.sleep(0.001)
            tv.close()
            with pytest.raises(zvttvfactory.SessionError, match="the connection is closed"):
                waiting.result(30)


def test_a_session_that_does_not_end_is_made_to(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(_session, "_END", 0.05)
    tv = fake("linger")
    tv.close()
    assert tv._session._process.poll() == -9
    assert not [thread for thread in threading.enumerate() if thread.name.startswith("zvttvfactory")]
    with pytest.raises(zvttvfactory.SessionError, match="the connection is closed"):
        call(tv)


def test_a_message_is_whole_however_it_comes() -> None:
    text = "ä\u2028\x00" * 50000
    with fake("pieces") as tv:
        assert call(tv, text) == text


@pytest.mark.parametrize("count, then, limit, error, given", [
    (3, "", 8, zvttvfactory.DeadlineExceeded, 3),
    (3, "died", 8, zvttvfactory.ServiceDied, 3),
    (3, "kill", 8, zvttvfactory.SessionError, 3),
    (9, "", 8, zvttvfactory.EventsLost, 8),
])
def test_events_come_in_order_and_their_end_behind_them(count: int, then: str, limit: int, error: Type[Exception],
                                                        given: int) -> None:
    with fake("events", str(count), then) as tv, tv.events(limit=limit) as events:
        if not then:
            call(tv)  # its answer is behind all of them
        assert [events.next(30).number for _ in range(given)] == list(range(1, given + 1))
        for _ in range(2):
            with pytest.raises(error):
                events.next(timeout=0.01)


def test_an_event_is_what_it_was() -> None:
    with fake("events", "2", "") as tv:
        with tv.events() as events:
            event = events.next(30)
            empty = zvttvfactory.Record()
            assert event[2:] == ("sys", 0x10001, (zvttvfactory.Record(7, "hello", b"\0\xff"), empty, empty, empty))
            assert event.time.isoformat() == "2026-11-23T21:56:24.123000+02:00"
        assert [event.number for event in events] == [2]  # what is left ends the iteration behind the block


def test_an_interpreter_that_ends_without_closing_does_not_hang() -> None:
    # A thread that waits for ever, a watch, and no word of farewell.
    program = f"""
import sys, threading, zvttvfactory
tv = zvttvfactory.connect(command=[sys.executable, {FAKE!r}, "silent"])
threading.Thread(target=lambda: tv.call("I", "m", {{}}), daemon=True).start()
print("end")
"""
    done = subprocess.run([sys.executable, "-c", program], timeout=30, capture_output=True, text=True)
    assert (done.returncode, done.stdout) == (0, "end\n"), done.stderr

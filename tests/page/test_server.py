"""The page's server when its clients are many, slow or gone."""

import http.client
import json
import pathlib
import signal
import socket
import urllib.parse

import pytest

from test_page import JSON, VERSION, Board


@pytest.fixture
def own(tmp_path):
    one = Board(tmp_path)
    yield one
    one.end()


class Stream:
    """A stream of server-sent events, read only when asked for."""

    def __init__(self, board):
        place = urllib.parse.urlparse(board.address)
        self.socket = socket.socket()
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 16 << 10)
        self.socket.settimeout(60)
        self.socket.connect((place.hostname, place.port))
        self.socket.sendall(f"GET {place.path}stream HTTP/1.1\r\nHost: {place.netloc}\r\n\r\n".encode())
        self.file = http.client.HTTPResponse(self.socket)
        self.file.begin()
        self.id = self.until("stream")["stream"]

    def until(self, method):
        """The parameters of the next notification of that name."""
        for line in self.file:
            if line.startswith(b"data: "):
                message = json.loads(line[6:])
                if message["method"] == method:
                    return message["params"]
        raise AssertionError(f"the stream ended without {method}")

    def close(self):
        self.file.close()
        self.socket.close()


def ask(board, method, params, stream=None):
    message = json.dumps({"jsonrpc": "2.0", "id": 1, "method": method, "params": params})
    status, _, text = board.request("POST", "rpc" + (f"?stream={stream}" if stream is not None else ""), message, **JSON)
    assert status == 200
    answer = json.loads(text)
    assert "error" not in answer, answer
    return answer["result"]


def resident(process):
    """KiB of memory of the process."""
    text = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    return int(next(line for line in text.splitlines() if line.startswith("VmRSS")).split()[1])


def test_a_stream_that_is_not_read_costs_little_and_learns_what_it_lost(own):
    stalled, reading = Stream(own), Stream(own)
    for one in (stalled, reading):
        ask(own, "watch", {}, one.id)
    before = resident(own.server)
    text = "x" * 8192
    for _ in range(2500):
        ask(own, "post", {"type": 0x10000, "records": [{"text": text}]})
        reading.until("event")
    assert resident(own.server) - before < 64 << 10
    print(f"serve: {before} KiB, then {resident(own.server)} KiB")
    # What waited is read first. Once less than half of it is left, the next notification tells.
    for _ in range(700):
        stalled.until("event")
    ask(own, "post", {"type": 0x10000, "records": [{"text": "last"}]})
    assert stalled.until("dropped")["count"] > 0
    reading.close()
    stalled.close()


def test_many_streams_are_served_and_end_with_the_server(own):
    streams = [Stream(own) for _ in range(80)]
    assert len({one.id for one in streams}) == 80
    assert own.request("POST", "rpc", VERSION, **JSON)[0] == 200
    for one in streams[:40]:
        one.close()
    ask(own, "watch", {}, streams[79].id)
    own.fapictl("post", "0x10000", "text=still")
    streams[79].until("event")
    own.server.send_signal(signal.SIGTERM)
    assert own.server.wait(timeout=60) == 0
    for one in streams[40:]:
        one.close()

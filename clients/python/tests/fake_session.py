"""A session that does what its argument says, as a real one would not."""

from __future__ import annotations

import json
import os
import signal
import sys
from typing import Any, Dict

EVENT: Dict[str, Any] = {"watch": 1, "number": 1, "time": "2026-11-23T21:56:24.123+0200", "module": "sys",
                         "type": 0x10001, "records": [{"value": 7, "text": "hello", "bytes": "00ff"}, {}, {}, {}]}


def send(**message: Any) -> None:
    print(json.dumps({"jsonrpc": "2.0", **message}), flush=True)


def answer(request: Dict[str, Any]) -> None:
    """As the real one: with what was asked, so that the caller can tell the answers apart."""
    if request["method"] == "watch":
        result: Dict[str, Any] = {"watch": 1}
    elif request["method"] == "call":
        result = {"interface": "I", "method": "m", "results": request["params"]["arguments"], "status": None,
                  "failed": False, "milliseconds": 1}
    else:
        result = {}
    send(id=request["id"], result=result)


def main(does: str, *words: str) -> None:
    if does == "mute":
        sys.exit("fake: no verb 'session'")
    requests = map(json.loads, sys.stdin)
    version = next(requests)
    send(id=version["id"], result={"protocol": 2 if does == "newer" else 1})
    if does == "reversed":
        for request in reversed([next(requests) for _ in range(int(words[0]))]):
            answer(request)
    elif does == "refuse":
        send(id=next(requests)["id"],
             error={"code": int(words[0]), "message": "its words", "data": json.loads(words[1])})
    elif does == "die":
        next(requests)
        print("fake: about to end", file=sys.stderr, flush=True)
        os.kill(os.getpid(), signal.SIGKILL)
    elif does == "say":
        next(requests)
        print(words[0], flush=True)
    elif does == "events":
        # An event of the watch right behind its answer, in the same write.
        watch = next(requests)
        lines = [{"id": watch["id"], "result": {"watch": 1}}, *({"method": "event", "params": {**EVENT, "number": n}}
                                                                for n in range(1, int(words[0]) + 1))]
        print("\n".join(json.dumps({"jsonrpc": "2.0", **line}) for line in lines), flush=True)
        if words[1] == "died":
            send(method="died", params={"watch": 1})
        elif words[1] == "kill":
            os.kill(os.getpid(), signal.SIGKILL)
    elif does == "linger":
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        while True:
            signal.pause()
    elif does == "pieces":
        request = next(requests)
        line = json.dumps({"jsonrpc": "2.0", "id": request["id"], "result": {
            "interface": "I", "method": "m", "results": request["params"]["arguments"], "status": None, "failed": False,
            "milliseconds": 1}}).encode() + b"\n"
        for at in range(0, len(line), 7):
            os.write(1, line[at:at + 7])
    for request in requests:
        if does != "silent":
            answer(request)


main(*sys.argv[1:])

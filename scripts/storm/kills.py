"""The service is killed."""

import random
import threading
import time

from service import Session, check


def kills(service):
    """What a client was told is written is there after the service was killed."""
    lost = acknowledged = 0
    for round_ in range(5):
        told = {}

        def write(number, told=told, round_=round_):
            session = Session(service.environment)
            try:
                for count in range(10_000):
                    text = f"{round_}.{count}"
                    answer = session("call", interface="Information", method="set_ini_para", arguments=[f"storm{number}", "at:last", text])
                    if not answer["failed"]:
                        told[number] = text
            except (RuntimeError, ValueError, OSError):
                pass  # the service has been killed
            session.end()

        threads = [threading.Thread(target=write, args=(number,)) for number in range(10)]
        for thread in threads:
            thread.start()
        time.sleep(0.5 + random.random())
        service.kill()
        for thread in threads:
            thread.join()
        service.start()
        session = Session(service.environment)
        for number, text in told.items():
            kept = session("call", interface="Information", method="get_ini_para", arguments=[f"storm{number}", "at:last"])
            value = next(one for one in kept["results"].values() if isinstance(one, str))
            # The next one may have been written, and not told of any more.
            count = int(text.split(".")[1])
            acknowledged += count + 1
            lost += value not in (text, f"{round_}.{count + 1}")
        session.end()
    check(lost == 0 and acknowledged > 0, f"kills: 5 under ten writers, {acknowledged} writes acknowledged, {lost} lost")

"""Mixed calls and events at a steady rate: nothing grows."""

import random
import statistics
import threading
import time

from service import Session, check, eventually

WORKERS = 4
RATE = 100  # calls a second of each worker
MIX = (
    ("Information", "get_fapi_sw_version", []),
    ("Information", "get_ini_para", ["panel", "backlight:default"]),
    ("Information", "set_ini_para", ["soak", "a:b", "1"]),
    ("System", "write_file", ["soak", "A" * 512, False, True]),
    ("System", "read_file", ["soak", 512, 0]),
    ("System", "check_file", ["absent"]),
    ("Display", "get_tcon_info", []),
    ("Peripheral", "get_hdmi_edid_data", [1]),
    ("Audio", "adv_get_volume", [0]),
)


def take_picture(service):
    mine = Session(service.environment)
    mine("capture")
    mine.end()


def soak(service, session, seconds):
    stop = threading.Event()
    taken = [[] for _ in range(10)]
    wrong = []

    def work(number):
        mine = Session(service.environment)
        due = time.monotonic()
        while not stop.is_set():
            try:
                if random.random() < 0.1:
                    mine("post", type="0x10000", records=[f"value={number}", {"bytes": "5a" * random.randrange(2000)}])
                else:
                    interface, method, arguments = random.choice(MIX)
                    start = time.perf_counter()
                    mine("call", interface=interface, method=method, arguments=arguments)
                    tenth = int((time.monotonic() - begin) * 10 // seconds)
                    if method == "get_fapi_sw_version" and 0 <= tenth <= 9:
                        taken[tenth].append((time.perf_counter() - start) * 1e6)
            except RuntimeError as error:
                wrong.append(str(error))
            due += 1 / RATE
            time.sleep(max(0, due - time.monotonic()))
        mine.end()

    def sample():
        return (*service.cost(), service.number("Threads"))

    pictures = [threading.Thread(target=take_picture, args=(service,)) for _ in range(12)]
    for picture in pictures:  # as many calls at once as are ever served: no thread is new later
        picture.start()
    for picture in pictures:
        picture.join()
    watchers = [service.watcher() for _ in range(2)]
    begin = time.monotonic() + 1  # the first second warms up
    workers = [threading.Thread(target=work, args=(number,)) for number in range(WORKERS)]
    for worker in workers:
        worker.start()
    samples = []
    for number in range(10):
        middle = begin + (number + 0.5) * seconds / 10
        while time.monotonic() < middle:  # clients that come and go
            client = service.watcher()
            time.sleep(min(0.3, seconds / 40))
            client.kill()
            client.wait()
        eventually(lambda: service.clients(session) == len(watchers), 2)
        samples.append(sample())
    time.sleep(max(0, begin + seconds - time.monotonic()))
    stop.set()
    for worker in workers:
        worker.join()
    for watcher in watchers:
        watcher.kill()
        watcher.wait()
    second, last = samples[1], samples[9]
    medians = [statistics.median(each) for each in taken]
    check(not wrong and service.runs(), f"soak: {seconds:.0f} s, {sum(map(len, taken))} calls measured, {len(wrong)} failed {wrong[:1]}")
    check(last[0] - second[0] <= 1024 and last[1] <= second[1] and last[2] <= second[2],
          f"soak: resident KiB, descriptors, threads {second} to {last}")
    # The calls are few: what is looked for is a growth with time, not the machine's mood.
    check(medians[9] <= max(2 * medians[1], medians[1] + 200), f"soak: median {medians[1]:.0f} to {medians[9]:.0f} us")

"""The page in a real browser, and what its server refuses. Run by ./dev test-page, with the programs in $BIN."""

import base64
import http.client
import json
import os
import pathlib
import re
import signal
import subprocess
import urllib.parse

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

BIN = pathlib.Path(os.environ["BIN"])
AXE = pathlib.Path(os.environ["AXE"])
PICTURES = pathlib.Path(os.environ["PICTURES"])
VIEWS = ("set", "methods", "events", "state")


class Board:
    """A service on a board of its own, and the page's server."""

    def __init__(self, folder):
        self.folder = folder
        self.environment = dict(os.environ, HIDL_RUNTIME_DIR=str(folder / "registry"), ZVTTV_STATE_DIR=str(folder / "state"))
        (folder / "registry").mkdir(mode=0o700)
        self.service = self.server = None
        try:
            self.start()
            self.server = subprocess.Popen([BIN / "fapictl", "serve"], env=self.environment, stdout=subprocess.PIPE, text=True)
            self.address = self.server.stdout.readline().strip()
        except BaseException:
            self.end()
            raise

    def start(self):
        with open(self.folder / "service.log", "ab") as log:
            self.service = subprocess.Popen([BIN / "vendor.zentrovi.tv.zvttvfactory@1.0-service"], env=self.environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.fapictl("wait", "--timeout", "60")

    def kill(self):
        self.service.kill()
        self.service.wait()

    def fapictl(self, *words):
        subprocess.run([BIN / "fapictl", *words], env=self.environment, check=True, stdout=subprocess.DEVNULL, timeout=90)

    def rpc(self, verb, **params):
        message = json.dumps({"jsonrpc": "2.0", "id": 1, "method": verb, "params": params})
        return json.loads(self.request("POST", "rpc", message, Content_Type="application/json")[2])["result"]

    def end(self):
        for process in (self.server, self.service):
            if process is not None and process.poll() is None:
                process.terminate()
                process.wait(timeout=30)

    def request(self, method, path, body=None, token=True, **headers):
        place = urllib.parse.urlparse(self.address)
        connection = http.client.HTTPConnection(place.hostname, place.port, timeout=30)
        try:
            connection.request(method, (place.path if token else "") + path, body,
                               {name.replace("_", "-"): value for name, value in headers.items()})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read()
        finally:
            connection.close()


@pytest.fixture(scope="module")
def board(tmp_path_factory):
    one = Board(tmp_path_factory.mktemp("board"))
    yield one
    one.end()


@pytest.fixture(scope="module")
def browser(tmp_path_factory):
    options = webdriver.ChromeOptions()
    for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-dev-shm-usage",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync", "--window-size=1300,900",
                 f"--user-data-dir={tmp_path_factory.mktemp('profile')}"):
        options.add_argument(word)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    options.binary_location = "/usr/bin/chromium"
    driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
    driver.set_script_timeout(60)
    yield driver
    driver.quit()


def wait(browser, condition, seconds=60):
    return WebDriverWait(browser, seconds, poll_frequency=0.05).until(condition)


def find(browser, selector):
    return wait(browser, lambda _: browser.find_element(By.CSS_SELECTOR, selector))


def state_is(browser, state):
    wait(browser, lambda _: browser.find_element(By.TAG_NAME, "body").get_attribute("data-connection") == state)


def show(browser, board, view):
    if not browser.current_url.startswith(board.address):
        browser.get(board.address)
    browser.execute_script("location.hash = arguments[0]", view)
    find(browser, f"#view-{view.split('/')[0]}")


def by_text(browser, tag, text):
    return wait(browser, lambda _: browser.find_element(By.XPATH, f"//{tag}[normalize-space()='{text}']"))


def by_label(browser, text):
    return find(browser, f"[aria-label='{text}']")


def revision(browser):
    return int(find(browser, ".panel img").get_attribute("data-revision") or 0)


def no_errors(browser, allowed=r"(?!)"):
    # A request to a server that has just been killed fails, and the browser says so.
    messages = [entry for entry in browser.get_log("browser") if entry["level"] == "SEVERE" and not re.search(allowed, entry["message"])]
    assert messages == []


VERSION = json.dumps({"jsonrpc": "2.0", "id": 1, "method": "version"})
JSON = {"Content_Type": "application/json"}


@pytest.mark.parametrize("method, path, body, headers, token, status", [
    ("GET", "", None, {}, True, 200),
    ("POST", "rpc", VERSION, JSON, True, 200),
    ("GET", "/", None, {}, False, 404),
    ("GET", "/" + "0" * 32 + "/", None, {}, False, 404),
    ("POST", "/" + "0" * 32 + "/rpc", VERSION, JSON, False, 404),
    ("GET", "../main.js", None, {}, True, 404),
    ("GET", "%2e%2e/etc/passwd", None, {}, True, 404),
    ("GET", "", None, {"Host": "factory.example"}, True, 403),
    ("GET", "", None, {"Host": "127.0.0.1.factory.example:80"}, True, 403),
    ("POST", "rpc", VERSION, {**JSON, "Origin": "http://factory.example"}, True, 403),
    ("POST", "rpc", VERSION, {**JSON, "Origin": "null"}, True, 403),
    ("GET", "", None, {"Sec_Fetch_Site": "cross-site"}, True, 403),
    ("POST", "rpc", VERSION, {"Content_Type": "text/plain"}, True, 415),
    ("PUT", "rpc", VERSION, JSON, True, 405),
    ("GET", "rpc", None, {}, True, 405),
    ("POST", "rpc", None, {**JSON, "Content_Length": str((16 << 20) + 1)}, True, 413),
    ("POST", "rpc?stream=999", VERSION, JSON, True, 409),
])
def test_what_the_server_answers(board, method, path, body, headers, token, status):
    got, answered, text = board.request(method, path, body, token, **headers)
    assert got == status
    assert "default-src 'none'" in answered["Content-Security-Policy"]
    assert status == 200 or text == b""


def test_a_body_without_a_length_has_a_limit(board):
    pieces = (b" " * (1 << 20) for _ in range(40))
    try:
        assert board.request("POST", "rpc", pieces, **JSON)[0] in (400, 413)
    except (http.client.HTTPException, OSError):
        pass  # the connection was ended, which is an answer as well
    assert board.request("POST", "rpc", VERSION, **JSON)[0] == 200


def test_nothing_is_watched_without_a_stream(board):
    for method in ("watch", "panel", "serial"):
        message = json.dumps({"jsonrpc": "2.0", "id": 1, "method": method, "params": {"layers": "all"} if method == "panel" else {}})
        assert json.loads(board.request("POST", "rpc", message, **JSON)[2])["error"]["code"] == -32602


def test_every_form_opens_and_each_interface_answers(board, browser):
    show(browser, board, "methods")
    state_is(browser, "ready")
    links = wait(browser, lambda _: (lambda all_: all_ if len(all_) >= 140 else None)(browser.find_elements(By.CSS_SELECTOR, ".methods a")))
    for target in [link.get_attribute("href").split("#")[1] for link in links]:
        show(browser, board, target)
        name = "/".join(target.split("/")[1:]).replace("/", ".")
        wait(browser, lambda _, name=name: browser.find_element(By.CSS_SELECTOR, "article h3").text == name)
    # The interface Tv has no methods.
    calls = {"Audio/adv_get_volume": "0", "Display/get_tcon_info": "", "DisplayTest/gen_test_pattern": "0",
             "Information/get_fapi_sw_version": "", "InputSource/get_current_input_source": "", "Network/set_interface_updown": "eth0",
             "Peripheral/get_gpio_status": "0", "System/get_wdt_status": "", "Manager/post_event": "0x10000"}
    for one, first in calls.items():
        show(browser, board, f"methods/{one}")
        wait(browser, lambda _, one=one: browser.find_element(By.CSS_SELECTOR, "article h3").text == one.replace("/", "."))
        if first:
            field = browser.find_element(By.CSS_SELECTOR, "article form input")
            field.send_keys(Keys.CONTROL, "a")
            field.send_keys(first)
        browser.find_element(By.CSS_SELECTOR, "article .primary").click()
        wait(browser, lambda _: browser.find_elements(By.CSS_SELECTOR, ".outcome .badge.ok"))
    no_errors(browser)


def test_a_form_is_sent_with_the_keyboard_alone(board, browser):
    show(browser, board, "methods/Audio/adv_set_volume")
    state_is(browser, "ready")
    field = find(browser, "article form input")
    browser.execute_script("arguments[0].focus()", field)
    field.send_keys(Keys.TAB)
    browser.switch_to.active_element.send_keys(Keys.CONTROL, "a")
    browser.switch_to.active_element.send_keys("101x", Keys.ENTER)
    wait(browser, lambda _: "Not sent" in browser.find_element(By.CSS_SELECTOR, ".outcome").text)
    browser.switch_to.active_element.send_keys(Keys.CONTROL, "a")
    browser.switch_to.active_element.send_keys("0x29", Keys.ENTER)
    wait(browser, lambda _: browser.find_elements(By.CSS_SELECTOR, ".outcome .badge.ok"))
    show(browser, board, "set")
    speaker = "//label[span='speaker']/output"
    wait(browser, lambda _: browser.find_element(By.XPATH, speaker).text == "41")
    no_errors(browser)


def test_the_panel_follows_and_its_layers_switch(board, browser):
    show(browser, board, "set")
    state_is(browser, "ready")
    wait(browser, lambda _: revision(browser) > 0)
    colour = """const c = document.createElement('canvas'); c.width = c.height = 1; const p = document.querySelector('.panel img');
        c.getContext('2d').drawImage(p, 40, 500, 1, 1, 0, 0, 1, 1); return Array.from(c.getContext('2d').getImageData(0, 0, 1, 1).data)"""
    board.fapictl("call", "displaytest", "gen_test_pattern", "3", "{}")
    wait(browser, lambda _: browser.execute_script(colour)[:3] == [255, 255, 255])
    browser.find_elements(By.CSS_SELECTOR, "input[name=layers]")[3].click()
    wait(browser, lambda _: browser.execute_script(colour)[:3] == [0, 0, 0])
    browser.find_elements(By.CSS_SELECTOR, "input[name=layers]")[0].click()
    wait(browser, lambda _: browser.execute_script(colour)[:3] == [255, 255, 255])
    no_errors(browser)


def test_the_sets_own_controls_act(board, browser):
    show(browser, board, "set")
    state_is(browser, "ready")
    state = lambda: board.rpc("state")["text"]
    wait(browser, lambda _: revision(browser) > 0)
    for way, there in (("connect", True), ("disconnect", False)):
        by_label(browser, f"HDMI 1: {way} the cable").click()
        wait(browser, lambda _, there=there: ("hdmi 1 edid 1 hpd up cable in" in state()) == there)
    by_text(browser, "button", "HDMI 1").click()
    wait(browser, lambda _: "Hz" in find(browser, "pre[aria-label^='The EDID']").text)
    find(browser, "input[placeholder=sys_check_file]").send_keys("sys_check_file", Keys.ENTER)
    asked = lambda: board.rpc("call", interface="System", method="check_file", arguments=["/none"])["status"]["number"]
    wait(browser, lambda _: "Forced" in find(browser, "#toast").text)
    assert asked() == -77
    assert asked() == -101
    by_text(browser, "button", "Not ready for so long").click()
    state_is(browser, "not-ready")
    state_is(browser, "ready")
    no_errors(browser)


def test_a_call_is_made_again_and_events_are_exported(board, browser, tmp_path):
    show(browser, board, "methods/Audio/adv_set_volume")
    state_is(browser, "ready")
    wait(browser, lambda _: browser.find_element(By.CSS_SELECTOR, "article h3").text == "Audio.adv_set_volume")
    for field, value in zip(browser.find_elements(By.CSS_SELECTOR, "article form input"), ("0", "17")):
        field.send_keys(Keys.CONTROL, "a")
        field.send_keys(value)
    find(browser, "article .primary").click()
    wait(browser, lambda _: browser.find_elements(By.CSS_SELECTOR, ".outcome .badge.ok"))
    board.fapictl("call", "audio", "adv_set_volume", "0", "40")
    show(browser, board, "methods/Information/get_fapi_sw_version")
    by_label(browser, "adv_set_volume again").click()
    wait(browser, lambda _: browser.find_elements(By.CSS_SELECTOR, ".outcome .badge.ok"))
    assert find(browser, "article h3").text == "Audio.adv_set_volume"
    assert 17 in board.rpc("call", interface="Audio", method="adv_get_volume", arguments=[0])["results"].values()
    show(browser, board, "events")
    find(browser, "#view-events input[placeholder^=text]").clear()
    board.fapictl("post", "0x10000", "text=kept")
    wait(browser, lambda _: "kept" in find(browser, "#view-events tbody").text)
    browser.execute_cdp_cmd("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(tmp_path)})
    by_text(browser, "button", "Export").click()
    file = tmp_path / "events.jsonl"
    wait(browser, lambda _: file.exists() and file.stat().st_size > 0)
    assert json.loads(file.read_text().splitlines()[-1])["records"][0]["text"] == "kept"
    no_errors(browser)


def test_the_keyboard_alone_reaches_every_view(board, browser):
    browser.get("about:blank")
    browser.get(board.address)
    state_is(browser, "ready")
    for view in VIEWS[1:]:
        for _ in range(100):
            ActionChains(browser).send_keys(Keys.TAB).perform()
            if browser.switch_to.active_element.get_attribute("hash") == f"#{view}":
                break
        ActionChains(browser).send_keys(Keys.ENTER).perform()
        find(browser, f"#view-{view}")
    no_errors(browser)


def test_an_event_of_another_process_appears(board, browser):
    show(browser, board, "events")
    state_is(browser, "ready")
    board.fapictl("post", "0x10000", "text=first")
    wait(browser, lambda _: "first" in find(browser, "#view-events tbody").text)
    by_text(browser, "button", "Pause").click()
    board.fapictl("post", "0x10000", "text=second")
    wait(browser, lambda _: "came meanwhile" in browser.find_element(By.ID, "view-events").text)
    assert "second" not in find(browser, "#view-events tbody").text
    by_text(browser, "button", "Go on").click()
    wait(browser, lambda _: "second" in find(browser, "#view-events tbody").text)
    find(browser, "#view-events input[placeholder^=text]").send_keys("second")
    wait(browser, lambda _: "first" not in find(browser, "#view-events tbody").text)
    no_errors(browser)


def test_the_terminal_speaks_with_the_board(board, browser):
    show(browser, board, "set")
    state_is(browser, "ready")
    terminal = find(browser, ".terminal")
    wait(browser, lambda _: terminal.is_displayed())
    terminal.send_keys("help", Keys.ENTER)
    wait(browser, lambda _: "gpio LINE" in terminal.text)
    no_errors(browser)


def test_goes_on_when_the_service_comes_back(board, browser):
    show(browser, board, "set")
    state_is(browser, "ready")
    before = revision(browser)
    board.kill()
    state_is(browser, "no-service")
    assert "not running" in browser.find_element(By.ID, "banner").text
    board.start()
    state_is(browser, "ready")
    board.fapictl("call", "displaytest", "gen_test_pattern", "9", json.dumps({"stForeground": {"u32Red": 1023, "u8Alpha": 255}}))
    wait(browser, lambda _: revision(browser) > before)
    board.fapictl("post", "0x10000", "text=back")
    show(browser, board, "events")
    find(browser, "#view-events input[placeholder^=text]").clear()
    find(browser, "#view-events input[placeholder^=text]").send_keys("back")
    wait(browser, lambda _: "back" in find(browser, "#view-events tbody").text)
    # Whoever has made it so.
    board.fapictl("call", "system", "send_cmd_to_factory_svc", "1", "not-ready 6000")
    state_is(browser, "not-ready")
    assert "not ready" in browser.find_element(By.ID, "banner").text
    state_is(browser, "ready")
    no_errors(browser)


@pytest.mark.parametrize("view", VIEWS)
@pytest.mark.parametrize("scheme, width", [("light", 1300), ("dark", 1300), ("light", 360)])
def test_looks_and_can_be_used_by_everybody(board, browser, view, scheme, width):
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 500})
    try:
        show(browser, board, "methods/Audio/adv_set_volume" if view == "methods" else view)
        state_is(browser, "ready")
        if view == "set":
            wait(browser, lambda _: revision(browser) > 0)
        assert browser.execute_script("return document.documentElement.scrollWidth") <= width
        picture = browser.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": False})["data"]
        PICTURES.mkdir(parents=True, exist_ok=True)
        (PICTURES / f"{view}-{scheme}-{width}.png").write_bytes(base64.b64decode(picture))
        if not AXE.exists():
            pytest.skip("axe-core could not be fetched")
        browser.execute_cdp_cmd("Runtime.evaluate", {"expression": AXE.read_text()})
        violations = browser.execute_async_script(
            "const done = arguments[0]; axe.run().then((r) => done(r.violations.map((v) => [v.id, v.nodes.map((n) => n.html.slice(0, 200))])), (e) => done(String(e)))")
        assert violations == []
    finally:
        browser.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
        browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})


def test_says_when_its_server_has_gone(tmp_path, browser):
    board = Board(tmp_path)
    try:
        show(browser, board, "set")
        state_is(browser, "ready")
        board.server.send_signal(signal.SIGTERM)
        assert board.server.wait(timeout=30) == 0
        state_is(browser, "server-gone")
        assert "fapictl serve" in browser.find_element(By.ID, "banner").text
        no_errors(browser, r"/(stream|rpc|panel\.png)")
    finally:
        board.end()

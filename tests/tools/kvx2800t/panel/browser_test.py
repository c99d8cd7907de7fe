"""The soft front panel as its users have it: a browser without a window, the panel and a virtual instrument.

With --screenshots FOLDER it makes the pictures of the documents instead.
"""

import argparse
import contextlib
import csv
import functools
import http.client
import http.server
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from virtual_instrument import VirtualInstrument

SKIPPED = 77


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(SKIPPED)


try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.actions.wheel_input import ScrollOrigin
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    skip("there is no Selenium for Python (Debian's python3-selenium)")

CHROMIUM = "/usr/bin/chromium"
CHROMEDRIVER = "/usr/bin/chromedriver"
GENEROUSLY = 60
DASH = "–"
CHANNELS = ["CH1", "CH2", "CH3", "CH4", "CH5", "CH6"]
WIDE = (1440, 900)
NARROW = (390, 844)


class Panel:
    """`kvx2800t panel` as a process; it ends with this process at the latest."""

    def __init__(self, resource):
        self._process = subprocess.Popen(
            [os.environ["KVX2800T"], "panel", *([resource] if resource else []), "--port", "0", "--no-browser", "--until-stdin-closes"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
        )
        self.address = next(line.strip() for line in self._process.stdout if line.startswith("http://"))
        self.host = self.address.split("/")[2]
        self.token = self.address.split("token=")[1]

    def close(self):
        self._process.communicate()


class Scpi:
    """What another client reads of the instrument."""

    def __init__(self, port):
        self._socket = socket.create_connection(("127.0.0.1", port))
        self._replies = self._socket.makefile("r", encoding="ascii")

    def write(self, message):
        self._socket.sendall(message.encode() + b"\n")

    def query(self, message):
        self.write(message)
        return self._replies.readline().rstrip("\n")

    def close(self):
        self._replies.close()
        self._socket.close()


class Page:
    """A page of the panel in the browser."""

    def __init__(self, driver):
        self.driver = driver

    def until(self, condition, what):
        """Waits for a condition; what it was, if it does not come."""
        end = time.monotonic() + GENEROUSLY
        while time.monotonic() < end:
            found = condition()
            if found:
                return found
            time.sleep(0.05)
        raise AssertionError(f"it does not come: {what}")

    def element(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def elements(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.driver.execute_script("return document.querySelector(arguments[0]).textContent", selector)

    def value(self, identifier):
        return self.driver.execute_script("return document.getElementById(arguments[0]).value", identifier)

    def reading(self, channel, quantity):
        return self.text(f"[data-channel={channel}] [data-reading={quantity}]")

    def is_on(self, channel):
        return self.element(f"[data-channel={channel}] .output").get_attribute("aria-checked") == "true"

    def switch(self, channel):
        self.element(f"[data-channel={channel}] .output").click()

    def until_value(self, identifier, text):
        self.until(lambda: self.value(identifier) == text, f"{identifier} is {text}")

    def enter(self, identifier, text):
        field = self.element(f"#{identifier}")
        self.until(field.is_enabled, f"{identifier} can be changed")
        field.click()
        field.send_keys(Keys.CONTROL, "a")
        field.send_keys(text, Keys.ENTER)

    def press_button(self, text):
        next(button for button in self.elements("button") if button.text == text and button.is_displayed()).click()

    def until_text(self, selector, text):
        self.until(lambda: self.text(selector) == text, f"{selector} says {text!r}")

    def until_reading(self, channel, quantity, text):
        self.until(lambda: self.reading(channel, quantity) == text, f"{quantity} of {channel} is {text}")

    def until_connected(self):
        self.until(lambda: self.element("#link").get_attribute("data-state") in ("connected", "simulated"), "a connection")

    def set_size(self, size):
        width, height = size
        self.driver.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride", {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        )

    def prefer(self, colours):
        self.driver.execute_cdp_cmd(
            "Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": colours}]}
        )


def started_browser(folder):
    options = webdriver.ChromeOptions()
    options.binary_location = CHROMIUM
    for switch in (
        "headless",
        "no-sandbox",
        "disable-gpu",
        "disable-quic",
        "no-first-run",
        "disable-background-networking",
        "disable-component-update",
        "disable-sync",
        "hide-scrollbars",
        f"user-data-dir={folder}/profile",
    ):
        options.add_argument(f"--{switch}")
    options.add_experimental_option("prefs", {"download.default_directory": f"{folder}/downloads"})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service(CHROMEDRIVER, log_output=subprocess.DEVNULL), options=options)


class BrowserTest(unittest.TestCase):
    """One browser, one instrument and one panel for all tests; each begins with a reset instrument and a new page."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.driver = started_browser(cls.folder)
        cls.addClassCleanup(cls.driver.quit)
        cls.instrument = VirtualInstrument()
        cls.addClassCleanup(lambda: cls.instrument.close())
        cls.panel = Panel(cls.instrument.resource)
        cls.addClassCleanup(cls.panel.close)

    def setUp(self):
        self.connect()
        self.scpi.write("*RST;*CLS")
        self.scpi.query("*OPC?")
        for channel in CHANNELS:
            self.instrument.control(f"load {channel} open")
        self.page = Page(self.driver)
        self.page.set_size(WIDE)
        self.page.prefer("light")
        self.open()

    def connect(self):
        self.scpi = Scpi(self.instrument.port)
        self.addCleanup(self.scpi.close)

    def open(self):
        self.driver.get(self.panel.address)
        self.page.until_connected()
        # What it shows is what the instrument has after its reset.
        self.page.until(lambda: self.page.value("CH1-voltageLevel") == "0.000 V", "the reset is seen")
        self.page.until(lambda: not any(self.page.is_on(channel) for channel in CHANNELS), "outputs are off")
        self.driver.get_log("browser")

    def until_instrument(self, query, reply):
        self.page.until(lambda: self.scpi.query(query) == reply, f"{query} is {reply}")

    def run_on_load(self):
        """CH1 gives 5 V to 10 ohms."""
        self.instrument.control("load CH1 10")
        self.page.enter("CH1-voltageLevel", "5")
        self.page.enter("CH1-currentLimit", "1")
        self.page.until(lambda: self.page.value("CH1-currentLimit") == "1.000 A", "the limit is set")
        self.page.switch("CH1")
        self.page.until_reading("CH1", "current", "0.500")


class Levels(BrowserTest):
    def test_a_level_typed_with_its_unit_reaches_the_instrument(self):
        self.instrument.control("clear-log")
        self.page.enter("CH1-voltageLevel", "3300 mV")
        self.until_instrument(":SOUR1:VOLT?", "3.300000")
        self.assertIn(":SOUR1:VOLT 3.300000", self.instrument.new_lines())
        self.page.until(lambda: self.page.value("CH1-voltageLevel") == "3.300 V", "the level is shown")

    def test_arrow_keys_and_the_wheel_change_a_level(self):
        self.page.enter("CH3-voltageLevel", "3.3")
        self.until_instrument(":SOUR3:VOLT?", "3.300000")
        field = self.page.element("#CH3-voltageLevel")
        field.send_keys(Keys.ARROW_UP)
        self.until_instrument(":SOUR3:VOLT?", "3.400000")
        field.send_keys(Keys.SHIFT, Keys.ARROW_DOWN)
        self.until_instrument(":SOUR3:VOLT?", "2.400000")
        ActionChains(self.driver).scroll_from_origin(ScrollOrigin.from_element(field), 0, -100).perform()
        self.until_instrument(":SOUR3:VOLT?", "2.500000")

    def test_keys_do_not_leave_the_limits(self):
        field = self.page.element("#CH3-voltageLevel")
        self.page.enter("CH3-voltageLevel", "15.95")
        self.until_instrument(":SOUR3:VOLT?", "15.950000")
        field.send_keys(Keys.ARROW_UP)
        self.until_instrument(":SOUR3:VOLT?", "16.000000")
        self.assertEqual(self.page.text("#CH3-voltageLevel-limits"), "0 … 16 V")

    def test_what_the_driver_refuses_is_said_at_the_field(self):
        self.page.enter("CH3-voltageLevel", "99")
        self.page.until(lambda: "16 V, not 99 V" in self.page.text("#CH3-voltageLevel-fault"), "the driver's reason")
        self.assertEqual(self.page.element("#CH3-voltageLevel").get_attribute("aria-invalid"), "true")
        self.assertEqual(self.scpi.query(":SOUR3:VOLT?"), "0.000000")

    def test_what_is_no_level_is_not_sent(self):
        self.page.enter("CH3-voltageLevel", "five")
        self.page.until_text("#CH3-voltageLevel-fault", "“five” is not a number")
        self.assertEqual(self.scpi.query(":SOUR3:VOLT?"), "0.000000")

    def test_the_lines_of_a_click_are_shown_in_three_languages(self):
        self.page.enter("CH1-voltageLevel", "2.5")
        self.page.until(lambda: "> :SOUR1:VOLT 2.500000" in self.page.text(".code"), "the line of SCPI")
        self.page.press_button("C")
        self.assertIn("KVX2800T_ConfigureVoltageLevel(vi, ", self.page.text(".code"))
        self.page.press_button("Python")
        self.assertIn('supply.channels["CH1"].voltage_level = 2.5', self.page.text(".code"))
        self.page.press_button("Copy")
        self.page.until_text(".copied", "Copied")


class Outputs(BrowserTest):
    def test_what_a_load_draws_is_shown(self):
        self.run_on_load()
        self.assertEqual(self.page.reading("CH1", "voltage"), "5.000")
        self.assertEqual(self.page.reading("CH1", "power"), "2.500")
        self.assertEqual(self.page.text("[data-channel=CH1] .regulation"), "CV")
        self.page.enter("CH1-currentLimit", "200 mA")
        self.page.until_reading("CH1", "voltage", "2.000")
        self.assertEqual(self.page.text("[data-channel=CH1] .regulation"), "CC")

    def test_an_over_current_trip_is_seen_and_ended(self):
        self.run_on_load()
        self.page.enter("CH1-ocpLevel", "100 mA")
        self.page.until(lambda: self.page.value("CH1-ocpLevel") == "0.100 A", "the level of the protection")
        self.page.element("#CH1-ocpEnabled").click()
        self.page.until_text("[data-channel=CH1] .trip-text", "OCP tripped")
        self.page.until(lambda: not self.page.is_on("CH1"), "the output is off")
        self.assertEqual(self.scpi.query(":OUTP:STAT? CH1"), "0")
        self.page.enter("CH1-ocpLevel", "1 A")
        self.page.until(lambda: self.page.value("CH1-ocpLevel") == "1.000 A", "the level of the protection")
        self.page.switch("CH1")
        self.page.until_reading("CH1", "current", "0.500")
        self.page.until_text("[data-channel=CH1] .trip-text", "")

    def test_escape_switches_everything_off_from_within_a_field(self):
        for channel in ("CH1", "CH3"):
            self.page.switch(channel)
            self.page.until(functools.partial(self.page.is_on, channel), f"{channel} is on")
        field = self.page.element("#CH3-voltageLevel")
        field.click()
        field.send_keys("12", Keys.ESCAPE)
        for channel in ("CH1", "CH3"):
            self.until_instrument(f":OUTP:STAT? {channel}", "0")
        self.page.until(lambda: not self.page.is_on("CH1") and not self.page.is_on("CH3"), "they are shown as off")
        self.assertEqual(self.scpi.query(":SOUR3:VOLT?"), "0.000000")

    def test_the_large_button_switches_everything_off(self):
        self.page.switch("CH4")
        self.page.until(lambda: self.page.is_on("CH4"), "CH4 is on")
        self.page.element("#all-off").click()
        self.until_instrument(":OUTP:STAT? CH4", "0")
        self.page.until(lambda: not self.page.is_on("CH4"), "CH4 is off")

    def test_series_and_parallel_take_outputs_1_and_2_together(self):
        for mode, joint, maximum in (("series", "CH5", "66 V"), ("parallel", "CH6", "33 V")):
            self.page.element(f"[data-mode={mode}]").click()
            self.page.until(
                lambda: self.page.element(f"[data-mode={mode}]").get_attribute("aria-pressed") == "true", f"{mode} is on"
            )
            self.assertEqual(self.page.text("[data-channel=CH1] .note"), f"In {mode}: part of {joint}")
            self.assertEqual(self.page.reading("CH1", "voltage"), DASH)
            self.assertFalse(self.page.element("#CH1-voltageLevel").is_enabled())
            self.assertTrue(self.page.element(f"#{joint}-voltageLevel").is_enabled())
            self.assertIn(maximum, self.page.text(f"#{joint}-voltageLevel-limits"))

    def test_changing_the_mode_asks_before_it_switches_outputs_off(self):
        self.page.switch("CH1")
        self.page.until(lambda: self.page.is_on("CH1"), "CH1 is on")
        self.page.element("[data-mode=series]").click()
        self.assertEqual(self.page.text("#question-text"), "The change switches CH1 off.")
        self.page.press_button("Leave it")
        self.assertEqual(self.scpi.query(":OUTP:STAT? CH1"), "1")
        self.page.element("[data-mode=series]").click()
        self.page.press_button("Change")
        self.until_instrument(":OUTP:STAT? CH1", "0")


class Plots(BrowserTest):
    def colours(self):
        """How many pixels of the plot have the colour of CH1."""
        return self.driver.execute_script(
            """const wanted = getComputedStyle(document.querySelector(".chip.ch1")).borderLeftColor.match(/\\d+/g).map(Number);
               const canvas = document.querySelector("#plot canvas");
               const data = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height).data;
               let count = 0;
               for (let at = 0; at < data.length; at += 4)
                   if (data[at + 3] > 200 && wanted.every((value, index) => Math.abs(data[at + index] - value) < 8)) count += 1;
               return count;"""
        )

    def downloaded(self, name):
        path = pathlib.Path(self.folder, "downloads", name)
        self.addCleanup(path.unlink, missing_ok=True)
        self.page.until(path.exists, f"{name} is there")
        return path

    def test_the_plot_draws_what_the_instrument_measures(self):
        self.run_on_load()
        self.page.until(lambda: self.colours() > 20, "the curve of CH1")
        self.page.element("#plot-channels .ch1").click()
        self.page.until(lambda: self.colours() == 0, "no curve of CH1 any more")
        self.page.element("#plot-channels .ch1").click()
        self.page.until(lambda: self.colours() > 20, "the curve of CH1 again")
        self.page.element("#plot-csv").click()
        with self.downloaded("kvx2800t-readings.csv").open(encoding="utf-8", newline="") as text:
            rows = list(csv.DictReader(text))
        self.assertEqual(rows[-1]["CH1 (V)"], "5")
        self.assertEqual(rows[-1]["CH1 (A)"], "0.5")
        self.assertEqual(rows[-1]["CH1 (W)"], "2.5")
        times = [float(row["time (s)"]) for row in rows]
        self.assertEqual(times, sorted(times))

    def test_a_picture_of_the_plot_can_be_had(self):
        self.page.element("#plot-png").click()
        self.assertEqual(self.downloaded("kvx2800t-plot.png").read_bytes()[:8], b"\x89PNG\r\n\x1a\n")

    def last_time(self):
        return self.driver.execute_script("return document.querySelector('#plot').dataset.to")

    def test_a_paused_plot_stays_and_a_live_one_goes_on(self):
        before = self.last_time()
        self.page.until(lambda: self.last_time() != before, "the plot goes on")
        self.page.element("#plot-pause").click()
        self.assertEqual(self.page.element("#plot-pause").get_attribute("aria-pressed"), "true")
        paused = self.last_time()
        reading = self.scpi.query(":SOUR1:VOLT?")
        self.page.enter("CH1-voltageLevel", "1.5")
        self.page.until(lambda: self.scpi.query(":SOUR1:VOLT?") != reading, "time has passed")
        self.assertEqual(self.last_time(), paused)
        self.page.element("#plot-live").click()
        self.page.until(lambda: self.last_time() != paused, "the plot goes on")

    def test_drawing_over_the_plot_zooms(self):
        plot = self.page.element("#plot .u-over")
        ActionChains(self.driver).move_to_element_with_offset(plot, -100, 0).click_and_hold().move_by_offset(150, 0).release().perform()
        self.page.until(lambda: self.page.element("#plot-pause").get_attribute("aria-pressed") == "true", "a part that stays")
        chart = self.page.element("#plot")
        width = float(chart.get_attribute("data-to")) - float(chart.get_attribute("data-from"))
        self.assertLess(width, 30)


class Programs(BrowserTest):
    def test_a_list_is_edited_loaded_run_and_followed(self):
        self.page.element("#tab-list").click()
        for values in (("1", "500 mA", "100 ms"), ("2.5", "0.5", "30")):
            self.page.press_button("Add group")
            for cell, value in zip(self.page.elements(".groups tbody tr")[-1].find_elements(By.TAG_NAME, "input"), values):
                cell.send_keys(Keys.CONTROL, "a")
                cell.send_keys(value, Keys.TAB)
        self.page.press_button("Run")
        self.page.until(lambda: "Running: group 2 of 2" in self.page.text(".list-status"), "the second group runs")
        self.page.until_reading("CH1", "voltage", "2.500")
        self.assertTrue(self.page.element(".groups tbody tr:nth-child(2)").get_attribute("data-active") is not None)
        self.scpi.write(":INST:SELE CH1")
        self.assertEqual(self.scpi.query(":LIST:GROUP:NUM?"), "2")
        self.page.press_button("Stop")
        self.page.until_text(".list-status", "Stopped")

    def test_the_error_queue_is_shown_and_cleared(self):
        self.instrument.control('inject -350 "Queue overflow"')
        self.page.until_text("#error-count", "1")
        self.page.element("#tab-errors").click()
        self.assertEqual([cell.text for cell in self.page.elements(".errors td")], ["-350", "Queue overflow"])
        self.page.press_button("Clear")
        self.page.until_text("#error-count", "0")


class Links(BrowserTest):
    def assert_nothing_is_shown(self):
        for channel in CHANNELS:
            for quantity in ("voltage", "current", "power"):
                self.assertEqual(self.page.reading(channel, quantity), DASH)
            for field in ("voltageLevel", "currentLimit", "ovpLimit", "ocpLevel"):
                self.assertEqual(self.page.value(f"{channel}-{field}"), DASH)
                self.assertFalse(self.page.element(f"#{channel}-{field}").is_enabled())
            self.assertFalse(self.page.is_on(channel))
        self.assertEqual(self.page.elements("[data-mode][aria-pressed=true]"), [])

    def test_a_lost_link_is_shown_and_made_again(self):
        self.run_on_load()
        port = self.instrument.port
        self.instrument.close()
        try:
            self.page.until_text("#link-text", "Link to the instrument lost")
            self.assert_nothing_is_shown()
            self.assertTrue(self.page.element("#banner").is_displayed())
        finally:
            type(self).instrument = VirtualInstrument(port)
        self.page.until_connected()
        self.page.until_reading("CH1", "voltage", "0.000")
        self.page.until(lambda: not self.page.element("#banner").is_displayed(), "no banner")
        self.connect()

    def test_a_cut_connection_is_made_again(self):
        self.instrument.control("disconnect")
        self.connect()
        self.instrument.control("load CH3 10")
        self.page.until_connected()
        self.page.enter("CH3-voltageLevel", "1")
        self.until_instrument(":SOUR3:VOLT?", "1.000000")

    def test_a_panel_that_ends_leaves_nothing_on_the_page(self):
        panel = Panel("")
        self.driver.get(panel.address)
        self.page.until_connected()
        self.assertEqual(self.page.text("#link-text"), "Simulated instrument")
        panel.close()
        self.page.until_text("#link-text", "Connection to the panel’s program lost")
        self.assert_nothing_is_shown()

    def test_two_pages_see_the_same(self):
        first = self.driver.current_window_handle
        self.driver.switch_to.new_window("window")
        second = self.driver.current_window_handle
        self.addCleanup(self.driver.switch_to.window, first)
        self.addCleanup(self.driver.close)
        self.driver.get(self.panel.address)
        self.page.until_connected()
        self.driver.switch_to.window(first)
        self.page.enter("CH2-voltageLevel", "7.5")
        self.driver.switch_to.window(second)
        self.page.until(lambda: self.page.value("CH2-voltageLevel") == "7.500 V", "the other page sees it")
        self.page.switch("CH2")
        self.driver.switch_to.window(first)
        self.page.until(lambda: self.page.is_on("CH2"), "this page sees the other's click")
        self.driver.switch_to.window(second)

    def upgrade(self, origin):
        connection = http.client.HTTPConnection(self.panel.host)
        self.addCleanup(connection.close)
        connection.request(
            "GET",
            f"/ws?token={self.panel.token}",
            headers={
                "Origin": origin,
                "Connection": "Upgrade",
                "Upgrade": "websocket",
                "Sec-WebSocket-Version": "13",
                "Sec-WebSocket-Key": "AAAAAAAAAAAAAAAAAAAAAA==",
            },
        )
        return connection.getresponse().status

    def test_a_foreign_origin_is_refused(self):
        self.assertEqual(self.upgrade(f"http://{self.panel.host}"), 101)
        self.assertEqual(self.upgrade("http://example.org"), 403)

    def test_a_foreign_page_is_refused_in_the_browser(self):
        with served_page() as address:
            self.driver.get(address)
            self.assertEqual(
                self.driver.execute_async_script(
                    """const done = arguments[arguments.length - 1];
                       const socket = new WebSocket(arguments[0]);
                       socket.onopen = () => done("open");
                       socket.onclose = () => done("refused");""",
                    f"ws://{self.panel.host}/ws?token={self.panel.token}",
                ),
                "refused",
            )

    def test_nothing_is_complained_of_in_the_browsers_console(self):
        self.run_on_load()
        self.assertEqual(self.driver.get_log("browser"), [])


@contextlib.contextmanager
def served_page():
    """A page of another program on this machine."""

    class Handler(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(b"<!DOCTYPE html><title>Foreign</title>")

        def log_message(self, *_):
            pass

    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler) as server:
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        try:
            yield f"http://127.0.0.1:{server.server_address[1]}/"
        finally:
            server.shutdown()
            thread.join()


class Access(BrowserTest):
    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def focused(self):
        return self.driver.switch_to.active_element

    def tab_to(self, identifier):
        for _ in range(300):
            if self.focused().get_attribute("id") == identifier:
                return
            self.press(Keys.TAB)
        self.fail(f"{identifier} is not reached")

    def test_the_keyboard_alone_suffices(self):
        self.tab_to("CH3-voltageLevel")
        self.press("3.3", Keys.ENTER)
        self.until_instrument(":SOUR3:VOLT?", "3.300000")
        ActionChains(self.driver).key_down(Keys.SHIFT).send_keys(Keys.TAB).key_up(Keys.SHIFT).perform()
        self.assertEqual(self.focused().get_attribute("aria-label"), "CH3 output")
        self.press(Keys.SPACE)
        self.until_instrument(":OUTP:STAT? CH3", "1")
        self.tab_to("CH3-ocpEnabled")
        self.press(Keys.SPACE)
        self.page.until(lambda: self.page.element("#CH3-ocpEnabled").is_selected(), "the protection is on")
        self.tab_to("plot-pause")
        self.press(Keys.ENTER)
        self.assertEqual(self.page.element("#plot-pause").get_attribute("aria-pressed"), "true")
        self.tab_to("tab-code")
        self.press(Keys.ARROW_RIGHT)
        self.assertTrue(self.page.element("#pane-list").is_displayed())
        self.press(Keys.ESCAPE)
        self.until_instrument(":OUTP:STAT? CH3", "0")

    def test_tab_reaches_every_control(self):
        missed = self.driver.execute_script(
            """return [...document.querySelectorAll("button, input, select")]
                   .filter((node) => !node.disabled && node.offsetParent && node.tabIndex < 0 && node.role !== "tab")
                   .map((node) => node.outerHTML);"""
        )
        self.assertEqual(missed, [])

    def test_axe_finds_no_violations(self):
        axe = pathlib.Path(os.environ["KVX_PANEL_PACKAGES"], "axe-core", "axe.min.js").read_text(encoding="utf-8")
        self.run_on_load()
        self.instrument.control('inject -350 "Queue overflow"')
        self.page.until_text("#error-count", "1")
        self.driver.execute_script(axe)
        for colours in ("light", "dark"):
            self.page.prefer(colours)
            for size in (WIDE, NARROW):
                self.page.set_size(size)
                for tab in ("tab-code", "tab-list", "tab-errors"):
                    with self.subTest(colours=colours, size=size, tab=tab):
                        self.driver.execute_script("document.getElementById(arguments[0]).click()", tab)
                        self.assertEqual(self.violations(), [])

    def test_axe_finds_no_violations_while_the_link_is_lost(self):
        axe = pathlib.Path(os.environ["KVX_PANEL_PACKAGES"], "axe-core", "axe.min.js").read_text(encoding="utf-8")
        panel = Panel("")
        self.driver.get(panel.address)
        self.page.until_connected()
        panel.close()
        self.page.until_text("#link-text", "Connection to the panel’s program lost")
        self.driver.execute_script(axe)
        for colours in ("light", "dark"):
            with self.subTest(colours=colours):
                self.page.prefer(colours)
                self.assertEqual(self.violations(), [])

    def violations(self):
        return self.driver.execute_async_script(
            """const done = arguments[arguments.length - 1];
               const tags = ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"];
               axe.run(document, { runOnly: { type: "tag", values: tags } }).then(
                   (found) => done(found.violations.flatMap((one) => one.nodes.map((node) => `${one.id}: ${node.html} ${node.failureSummary}`))),
                   (error) => done([String(error)]));"""
        )

    def test_a_narrow_screen_is_not_scrolled_sideways(self):
        for width in (320, 390, 768, 1024):
            self.page.set_size((width, 844))
            with self.subTest(width=width):
                self.assertLessEqual(self.driver.execute_script("return document.documentElement.scrollWidth"), width)

    def test_the_theme_can_be_chosen(self):
        for colours in ("Dark", "Light"):
            self.page.press_button(colours)
            self.assertEqual(self.page.element("html").get_attribute("data-theme"), colours.lower())
        self.driver.execute_script("localStorage.clear()")


class Screenshots(BrowserTest):
    """The pictures of the documents."""

    folder_of_pictures = None

    def take(self, name):
        self.driver.save_screenshot(str(pathlib.Path(self.folder_of_pictures, name)))

    def test_pictures(self):
        for channel, ohms in (("CH1", 10), ("CH3", 20), ("CH4", 1)):
            self.instrument.control(f"load {channel} {ohms}")
        for field, value in (
            ("CH1-voltageLevel", "5"),
            ("CH1-currentLimit", "1"),
            ("CH2-voltageLevel", "12"),
            ("CH2-currentLimit", "0.5"),
            ("CH3-voltageLevel", "3.3"),
            ("CH4-voltageLevel", "1.2"),
            ("CH4-currentLimit", "2"),
        ):
            self.page.enter(field, value)
            time.sleep(0.5)
        self.page.element("#CH1-ovpEnabled").click()
        for channel in ("CH1", "CH3", "CH4"):
            self.page.switch(channel)
            self.page.until(functools.partial(self.page.is_on, channel), f"{channel} is on")
        self.page.element("#tab-list").click()
        choice = self.page.element("#list-channel")
        choice.send_keys("CH2")
        for values in (("2", "0.3", "3"), ("6", "0.5", "1"), ("12", "0.5", "4"), ("9", "0.4", "2"), ("4", "0.3", "2")):
            self.page.press_button("Add group")
            for cell, value in zip(self.page.elements(".groups tbody tr")[-1].find_elements(By.TAG_NAME, "input"), values):
                cell.send_keys(Keys.CONTROL, "a")
                cell.send_keys(value, Keys.TAB)
        self.page.press_button("Run")
        for level in ("1", "4.5", "2.5", "5.5", "5"):
            time.sleep(4)
            self.page.enter("CH1-voltageLevel", level)
            self.page.enter("CH4-voltageLevel", str(float(level) / 4))
        self.page.element("#tab-code").click()
        self.page.press_button("Python")
        time.sleep(4)
        self.page.prefer("dark")
        time.sleep(1)
        self.take("panel-dark.png")
        self.page.prefer("light")
        self.page.element("#tab-list").click()
        self.page.press_button("Run")
        time.sleep(6)
        self.take("panel-light.png")
        self.page.set_size(NARROW)
        time.sleep(1)
        self.take("panel-narrow.png")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--screenshots", metavar="FOLDER", help="make the pictures of the documents instead of testing")
    options, names = parser.parse_known_args()
    for program in (CHROMIUM, CHROMEDRIVER):
        if not pathlib.Path(program).exists():
            skip(f"there is no {program} (Debian's packages chromium and chromium-driver)")
    Screenshots.folder_of_pictures = options.screenshots
    tests = [case.__name__ for case in (Levels, Outputs, Plots, Programs, Links, Access)]
    unittest.main(argv=[sys.argv[0], "-v", *(["Screenshots"] if options.screenshots else names or tests)])


if __name__ == "__main__":
    main()

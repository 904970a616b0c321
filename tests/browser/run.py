"""Opens the map's page in a real browser: python3 tests/browser/run.py PATH-TO-TARN"""

import json
import os
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.chrome.service import Service

sys.path.append(str(Path(__file__).parents[1]))
import verdict

ROOT = Path(__file__).parents[2]
NASTY = "\"q' \\N <script>document.title='run'</script> <img src=x onerror=alert(1)> &lt;b&gt; \x1b[2J\nline"
HOSTILE = {"sysinfo": {"SI_HOSTNAME": NASTY}, "hba": {"adapters": [{
    "name": "a", "attributes": {"Manufacturer": "<img src=x onerror=alert(1)>"},
    "ports": [{"attributes": {"PortWWN": "21" * 8, "PortState": 2, "PortSymbolicName": NASTY},
               "discovered": [{"attributes": {"PortWWN": "50" * 8, "NodeWWN": "51" * 8, "PortState": 6,
                                              "PortSymbolicName": "</script>" + NASTY}}]}],
    "targetMapping": [{"ScsiId": {"OSDeviceName": NASTY}, "FcpId": {"PortWWN": "50" * 8}}]}]}}


def names(paths):
    """Of every adapter, port, remote port and logical unit, as other commands call them."""
    for path in (path for unit in paths for path in unit["paths"]):
        yield f"adapter {path['adapter']}"
        yield f"adapter {path['adapter']} port {path['port']}"
        yield "remote port " + path["remotePort"]
    yield from (f"{unit['node']} LUN {unit['lun']}" for unit in paths)


class Browser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory(prefix="tarn-browser-")
        cls.addClassCleanup(cls.scratch.cleanup)
        options = webdriver.ChromeOptions()
        for flag in ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-sync",
                     "--disable-background-networking", "--disable-component-update", "--window-size=1400,1000",
                     "--user-data-dir=" + cls.scratch.name + "/profile"):
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        cls.browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        cls.addClassCleanup(cls.browser.quit)

    @classmethod
    def tarn(cls, *words, host=None):
        if host is not None:
            path = Path(cls.scratch.name, "host.json")
            path.write_text(json.dumps(host), encoding="utf-8")
            words = ["--host", path, *words]
        return subprocess.run([sys.argv[1], *words], check=True, capture_output=True, timeout=120,
                              env={**os.environ, "TARN_HOST": ""}).stdout

    def open(self, host=None, *words):
        page = Path(self.scratch.name, "page.html")
        self.tarn("map", "--output", page, *words, host=host)
        self.browser.get_log("performance")
        self.browser.get(page.as_uri())
        self.addCleanup(self.check_quiet, page.as_uri())

    def check_quiet(self, page):
        """The page ran without an error, and asked for nothing but itself."""
        self.assertEqual(self.browser.get_log("browser"), [])
        messages = [json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance")]
        asked = [message["params"]["request"]["url"] for message in messages
                 if message["method"] == "Network.requestWillBeSent"]
        self.assertEqual(asked, [page])

    def all(self, css):
        return self.browser.find_elements(By.CSS_SELECTOR, css)

    def script(self, text, *arguments):
        return self.browser.execute_script("return " + text, *arguments)

    def press(self, *keys):
        self.browser.switch_to.active_element.send_keys(*keys)

    def scale(self):
        return self.script("d3.zoomTransform(document.querySelector('#picture svg')).k")

    def facts(self):
        return self.browser.find_element(By.ID, "facts").text

    def test_rill(self):
        self.open(None, "--leadville")
        paths = json.loads(self.tarn("--json", "paths", "--leadville"))["result"]
        things = {element.get_attribute("aria-label").split(",")[0]: element for element in self.all(".node")}
        self.assertLessEqual(set(names(paths)), set(things))
        self.assertTrue(all(element.is_displayed() for element in things.values()))
        devices = {path["osDeviceName"] for unit in paths for path in unit["paths"]}
        self.assertLessEqual(devices, {text.text for text in self.all(".node text")})
        rows = self.all("tbody tr")
        self.assertEqual(len(rows), sum(len(unit["paths"]) for unit in paths))
        self.assertIn("c2t50060E8000C3A2B1d0", "".join(row.text for row in rows))

        box = self.browser.find_element(By.ID, "filter")
        box.send_keys("c2t50060e8000c3a2b1d0")
        clear = [name for name, element in things.items() if "dim" not in element.get_attribute("class")]
        self.assertEqual((clear, sum(row.is_displayed() for row in rows)), (["50060e8000c3a200 LUN 0"], 1))
        box.clear()
        box.send_keys(" ", Keys.BACKSPACE)
        self.assertEqual(self.all(".dim"), [])

        # By keyboard: the picture, then its things in order; the ways through a thing stand out.
        self.script("document.querySelector('#picture').focus()")
        before = self.scale()
        self.press("+")
        self.assertGreater(self.scale(), before)
        self.press("0")
        for _ in range(len(things)):
            self.press(Keys.TAB)
            if self.facts().startswith("50060e8000c3a200 LUN 2"):
                break
        self.assertIn("one path left", self.facts())
        self.assertIn("adapter 1 port 0 to 50060e8000c3a2b1", self.facts())
        on_way = {name for name, element in things.items() if "off" not in element.get_attribute("class").split()}
        self.assertEqual(on_way, {"host", "adapter 1", "adapter 1 port 0", "fabric 100000606950a1c4",
                                  "remote port 50060e8000c3a2b1", "50060e8000c3a200 LUN 2"})
        self.press(Keys.ESCAPE)
        self.assertEqual(self.all(".off"), [])

        # By mouse: pointing tells, the wheel zooms, dragging moves.
        chain = webdriver.ActionChains(self.browser)
        chain.move_to_element(things["adapter 1"]).perform()
        self.assertIn("FX02-118734", self.facts())
        before = self.scale()
        chain.scroll_from_origin(webdriver.common.actions.wheel_input.ScrollOrigin.from_element(things["adapter 1"]),
                                 0, -240).perform()
        self.assertGreater(self.scale(), before)
        place = things["host"].rect["x"]
        chain.move_to_element(self.browser.find_element(By.ID, "picture")).click_and_hold().move_by_offset(80, 0)
        chain.release().perform()
        self.assertAlmostEqual(things["host"].rect["x"] - place, 80, delta=3)

    def test_a_thing_that_is_reached_comes_into_view(self):
        self.browser.set_window_size(500, 900)
        self.addCleanup(self.browser.set_window_size, 1400, 1000)
        self.open(json.loads((ROOT / "hosts/rill-cable-pulled.json").read_text(encoding="utf-8")))
        for sideways in ("document.documentElement", "document.querySelector('#troubles')"):
            self.assertLessEqual(self.script(sideways + ".scrollWidth"), self.script(sideways + ".clientWidth"), sideways)
        self.all("#troubles a")[0].click()
        frame = self.browser.find_element(By.ID, "picture").rect
        thing = self.browser.switch_to.active_element.rect
        self.assertTrue(frame["x"] <= thing["x"] and thing["x"] + thing["width"] <= frame["x"] + frame["width"])

    def test_the_filter_looks_into_boxes(self):
        node, wwn = "50" * 8, "51" * 8
        self.open({"hba": {"adapters": [{
            "name": "a", "ports": [{"attributes": {"PortWWN": "21" * 8, "PortState": 2}, "discovered": [
                {"attributes": {"PortWWN": wwn, "NodeWWN": node, "PortState": 2}}]}],
            "targetMapping": [{"ScsiId": {"OSDeviceName": f"c1t0d{lun}", "ScsiOSLun": lun},
                               "FcpId": {"PortWWN": wwn, "FcpLun": lun << 48}} for lun in range(40)]}]}})
        self.browser.find_element(By.ID, "filter").send_keys("c1t0d37")
        self.assertEqual([thing.get_attribute("aria-label") for thing in self.all(".node:not(.dim)")],
                         [f"{node} LUN 0 to {node} LUN 39"])

    def test_light_and_dark_are_the_reader_s(self):
        self.open()
        colours = set()
        for scheme in ("light", "dark"):
            self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
                "features": [{"name": "prefers-color-scheme", "value": scheme}]})
            colours.add(self.script("getComputedStyle(document.body).backgroundColor + "
                                    "getComputedStyle(document.querySelector('.node path')).fill"))
        self.assertEqual(len(colours), 2)

    def test_names_of_devices_are_text(self):
        self.open(HOSTILE, "--keep-os-device-name")
        time.sleep(0.5)  # whatever would run would have run
        shown = NASTY.replace("\x1b", "\\x1b").replace("\n", "\\x0a")
        self.assertEqual(self.script("[document.title, document.querySelector('h1').textContent]"),
                         ["Storage network of " + shown] * 2)
        self.assertEqual((self.all("img"), len(self.all("script"))), ([], 3))
        self.assertIn("<img src=x onerror=alert(1)>", [text.text for text in self.all(".node text")])
        self.assertIn("link down", self.browser.find_element(By.ID, "troubles").text)


if __name__ == "__main__":
    result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Browser))
    sys.exit(verdict.report(result))

"""Opens the map's page in a real browser: python3 tests/browser/run.py PATH-TO-TARN"""

import base64
import json
import os
import random
import re
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

sys.path += [str(Path(__file__).parents[1]), str(Path(__file__).parents[1] / "san")]
import network
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
        self.show(page)

    def show(self, page):
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

    def hits(self):
        return [thing.get_attribute("aria-label").split(",")[0] for thing in self.all(".node:not(.dim):not(.legend)")]

    def filter(self, text):
        box = self.browser.find_element(By.ID, "filter")
        box.clear()
        box.send_keys(text, " ", Keys.BACKSPACE)
        return self.browser.find_element(By.ID, "matches").text

    def test_rill(self):
        self.open()
        paths = json.loads(self.tarn("--json", "paths"))["result"]
        things = {element.get_attribute("aria-label").split(",")[0]: element for element in self.all(".node:not(.legend)")}
        self.assertLessEqual(set(names(paths)), set(things))
        self.assertTrue(all(element.is_displayed() for element in things.values()))
        shown = {text.text for text in self.all(".node text")}
        self.assertLessEqual({path["disk"] for unit in paths for path in unit["paths"]} | {"66.1 GiB", "/oracle", "Port 1/0",
                             "Array port", "Fabric B", "fabric B alone", "over Fabric A alone", "in trouble"}, shown)
        findings = json.loads(subprocess.run([sys.argv[1], "--json", "check"], capture_output=True).stdout)["result"]["findings"]
        self.assertEqual(len(self.all("#troubles li")), len(findings))
        header = self.browser.find_element(By.TAG_NAME, "header").text
        for told in ("WARNING: ", "drawn by tarn ", "built-in example", "/backup (c1t3d0): 91.9% used"):
            self.assertIn(told, header)

        # The order is fixed: what comes first stands higher.
        for column in (["adapter 0 port 0", "adapter 0 port 1", "adapter 1 port 0", "adapter 1 port 1"],
                       ["fabric 100000606950a1c4", "fabric 100000606950a1d8"],
                       [f"{unit['node']} LUN {unit['lun']}" for unit in paths]):
            heights = [things[name].rect["y"] for name in column]
            self.assertEqual(heights, sorted(heights), column)

        # The filter: colons, mount points, facts behind a question mark.
        unit = "50060e8000c3a200 LUN 0"
        for text, found, told in (("/oracle", [unit], "1 of 19 things, 2 of 8 paths"), ("FX02-118734", [], "nothing found"),
                                  ("?FX02-118734", ["adapter 1"], "1 of 19 things, 0 of 8 paths"),
                                  ("naa.60060E8004C3A2000000C3A200000100", [unit], "1 of 19 things, 2 of 8 paths"),
                                  ("10:00:00:1b:32:0a:77:e0", ["adapter 1 port 0", "50060e8000c3a200 LUN 2"],
                                   "2 of 19 things, 1 of 8 paths"), ("", list(things), "")):
            self.assertEqual((self.filter(text), sorted(self.hits())), (told, sorted(found)), text)
        self.filter(unit)
        time.sleep(0.3)  # it fades
        self.assertEqual(self.script("getComputedStyle(document.querySelector('.dim')).opacity"), "0.35")
        self.filter("")

        # By keyboard: the picture is one stop, arrows go from thing to thing; the ways through a thing stand out.
        self.assertEqual(len(self.all("#picture [tabindex='0']")), 1)
        self.script("document.querySelector('#picture [tabindex=\"0\"]').focus()")
        self.assertTrue(self.facts().startswith("host"))
        self.press("0")
        fitted = self.scale()
        self.press("-")
        self.assertAlmostEqual(self.scale(), fitted, 3)
        self.press("+")
        self.assertGreater(self.scale(), fitted)
        self.press("0", *[Keys.ARROW_RIGHT] * 5, *[Keys.ARROW_DOWN] * 9, Keys.ARROW_UP)
        self.assertTrue(self.facts().startswith("50060e8000c3a200 LUN 2"), self.facts())
        self.assertIn("one path left", self.facts())
        self.assertIn("adapter 1 port 0 to 50060e8000c3a2b1", self.facts())
        on_way = {name for name, element in things.items() if "off" not in element.get_attribute("class").split()}
        self.assertEqual(on_way, {"host", "adapter 1", "adapter 1 port 0", "fabric 100000606950a1c4",
                                  "remote port 50060e8000c3a2b1", "50060e8000c3a200 LUN 2"})
        self.press(Keys.ESCAPE)
        self.assertEqual(self.all(".off"), [])

        # By mouse: pointing tells, the wheel is the page's unless Ctrl is held, dragging moves.
        chain = webdriver.ActionChains(self.browser)
        chain.move_to_element(things["adapter 1"]).perform()
        self.assertIn("FX02-118734", self.facts())
        origin = webdriver.common.actions.wheel_input.ScrollOrigin.from_element(things["adapter 1"])
        before = self.scale()
        chain.scroll_from_origin(origin, 0, -240).perform()
        self.assertEqual(self.scale(), before)
        chain.key_down(Keys.CONTROL).scroll_from_origin(origin, 0, -240).key_up(Keys.CONTROL).perform()
        self.assertGreater(self.scale(), before)
        place = things["host"].rect["x"]
        chain.move_to_element(self.browser.find_element(By.ID, "picture")).click_and_hold().move_by_offset(80, 0)
        chain.release().perform()
        self.assertAlmostEqual(things["host"].rect["x"] - place, 80, delta=3)

        # The table sorts by its heads, and keeps a unit's rows together.
        head = self.all("thead span")[11]
        for falling in (False, True):
            self.script("arguments[0].click()", head)
            units = [tuple(cell.text for cell in row.find_elements(By.TAG_NAME, "td")[:2]) for row in self.all("tbody tr")]
            runs = [unit for i, unit in enumerate(units) if i == 0 or units[i - 1] != unit]
            self.assertEqual(len(runs), len(set(runs)))
            self.assertEqual(units[0 if falling else -1], ("50060e8000c3a200", "0"))

    def test_what_was_lost_and_what_is_new(self):
        pulled = json.loads((ROOT / "hosts/rill-cable-pulled.json").read_text(encoding="utf-8"))
        self.open(pulled, "--baseline", ROOT / "hosts/rill.json")
        styles = "[...document.querySelectorAll('.edge path:not(.near)')].map(path => path.getAttribute('stroke') + " \
            "(path.hasAttribute('stroke-dasharray') ? ' dashed' : ''))"
        drawn = self.script(styles)
        self.assertEqual((drawn.count("#b3201b dashed"), drawn.count("#1b7a3a")), (5, 1))
        self.assertIn("3 paths lost, 1 new since the baseline", self.browser.find_element(By.TAG_NAME, "header").text)
        self.doCleanups()
        self.open(pulled, "--baseline", ROOT / "hosts/rill-cable-pulled.json")
        self.assertFalse([style for style in self.script(styles) if "dashed" in style or style == "#1b7a3a"])

    def test_a_thing_that_is_reached_comes_into_view(self):
        self.browser.set_window_size(500, 900)
        self.addCleanup(self.browser.set_window_size, 1400, 1000)
        self.open(json.loads((ROOT / "hosts/rill-cable-pulled.json").read_text(encoding="utf-8")))
        for sideways in ("document.documentElement", "document.querySelector('#troubles')"):
            self.assertLessEqual(self.script(sideways + ".scrollWidth"), self.script(sideways + ".clientWidth"), sideways)
        frame = self.browser.find_element(By.ID, "picture").rect
        for thing in self.all(".node:not(.legend)"):  # it opens fitted
            self.assertLessEqual(thing.rect["x"] + thing.rect["width"], frame["x"] + frame["width"])
        self.script("d3.select('#picture svg').call(d3.zoom().transform, d3.zoomIdentity)")
        self.all("#troubles a")[0].click()
        frame = self.browser.find_element(By.ID, "picture").rect
        thing = self.browser.switch_to.active_element.rect
        self.assertTrue(frame["x"] <= thing["x"] and thing["x"] + thing["width"] <= frame["x"] + frame["width"])

    @staticmethod
    def array(units, ports=1):
        node, wwns = "50" * 8, [f"{i:016x}" for i in range(0x51, 0x51 + ports)]
        return node, {"hba": {"adapters": [{
            "name": "a", "ports": [{"attributes": {"PortWWN": "21" * 8, "PortState": 2}, "discovered": [
                {"attributes": {"PortWWN": wwn, "NodeWWN": node, "PortState": 2}} for wwn in wwns]}],
            "targetMapping": [{"ScsiId": {"OSDeviceName": f"c1t0d{lun}", "ScsiOSLun": lun},
                               "FcpId": {"PortWWN": wwn, "FcpLun": lun << 48}} for lun in units for wwn in wwns]}]}}

    def test_a_box_that_many_share_opens_and_is_searched(self):
        node, host = self.array([*range(3, 40), 50, 58])
        self.open(host)
        self.assertIn("LUN 3 to 39, 50, 58", [text.text for text in self.all(".node text")])
        self.filter("c1t0d37")
        self.assertEqual(self.hits(), [f"{node} LUN 3 to {node} LUN 58"])
        box = self.all(".node:not(.dim):not(.legend)")[0]
        box.click()
        self.assertEqual(box.get_attribute("aria-expanded"), "true")
        self.assertEqual([text.text for text in self.all(".opened .name")], [f"LUN {lun}" for lun in [*range(3, 40), 50, 58]])
        box.click()
        self.assertEqual(self.all(".opened"), [])

    def test_paper(self):
        """How many pages there are, and that the picture stands whole on one."""
        for units, most, hidden in ((None, 3, 0), (range(300), 2, 300)):
            self.doCleanups()
            self.open(None if units is None else self.array(units)[1], *([] if units is None else ["--all"]))
            self.script("window.addEventListener('beforeprint', () => { const box = document.querySelector('#picture svg')"
                        ".getBoundingClientRect(); window.printed = [box.width, box.height, document.querySelector('.node')"
                        ".getBoundingClientRect().x]; })")
            pdf = base64.b64decode(self.browser.print_page())
            self.assertLessEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), most)
            self.assertEqual(self.script("document.querySelectorAll('#table.many tbody tr').length"), hidden)
            self.assertEqual(self.script("document.querySelector('#picture svg').hasAttribute('viewBox')"), False)

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
        self.assertEqual((self.all("img"), len(self.all("script"))), ([], 4))
        self.assertIn("<img src=x onerror=alert(1)>", [text.text for text in self.all(".node text")])
        self.assertIn("link down", self.browser.find_element(By.ID, "troubles").text)

    def store(self, lines):
        """A store of the network that the lines make, and its page."""
        folder = Path(tempfile.mkdtemp(dir=self.scratch.name))
        network.write(network.Network(lines), folder)
        store, page = folder / "network.db", folder / "network.html"
        self.tarn("san", "load", "--db", store, folder / "hosts")
        self.tarn("san", "map", "--db", store, "--output", page)
        self.show(page)
        return store, page

    def click(self, label):
        self.script("[...document.querySelectorAll('[aria-label]')].find(box => box.getAttribute('aria-label') === arguments[0])"
                    ".dispatchEvent(new MouseEvent('click', {bubbles: true}))", label)

    def test_a_network_answers_what_its_store_does(self):
        store, _ = self.store(network.HEALTHY + network.FAULTS)
        things = self.script("network.find('0').concat(network.find('mail'))")
        self.assertGreater(len(things), 100)
        things = [{"kind": kind, "name": name} for kind, name in sorted({(each["kind"], each["name"]) for each in things})]

        def ask(command, *failing):
            return json.loads(self.tarn("--json", "san", command, *failing, "--db", store))["result"]

        def named(some):
            return [f"{each['kind']}:{each['name']}" for each in some]
        for each, told in zip(things, ask("who", *named(things)), strict=True):
            self.assertEqual(self.script("network.who(arguments[0])", each)["hosts"], told["hosts"], each)
        for kind in ("fabric", "switch", "port", "array-port"):
            for told in ask("impact", "--each", kind):
                failing = {"kind": kind.removeprefix("array-"), "name": told["thing"]}
                impact = self.script("network.impact([arguments[0]])", failing)
                self.assertEqual((len(impact["lost"]), sum(len(each["mounts"]) for each in impact["lost"]),
                                  len(impact["lastPath"])), (told["lostUnits"], told["lostMounts"], told["lastPaths"]), failing)
        for failing in (random.Random(1).sample(things, number) for number in (1, 4, 8)):
            told, impact = ask("impact", *named(failing)), self.script("network.impact(arguments[0])", failing)
            self.assertEqual([impact[part] for part in ("lost", "lastPath")], [told[part] for part in ("lost", "lastPath")])
        expected = json.loads(subprocess.run([sys.argv[1], "--json", "san", "check", "--db", store],
                                             capture_output=True).stdout)["result"]["findings"]
        self.assertEqual(len(self.all("#troubles li")), len(expected))

        # A click draws it and tells it; several fail together.
        self.click("switch 1000006069000000/1")
        for told in ("3 units lost, on 1 host", "mail1 3 units: /mail", "84 units left with one path, on"):
            self.assertIn(told, self.facts())
        self.assertEqual([box.get_attribute("aria-label") for box in self.all(".loses")], ["host mail1"])
        self.assertEqual(len(self.all(".node.chosen")), 1)
        self.filter("/mail")
        self.assertIn("unit (1)", self.facts())
        self.click("5 hosts: db1, db3, db4, db5, db6")
        self.assertEqual([name.text for name in self.all(".opened .name")], ["db1", "db3", "db4", "db5", "db6"])
        self.all(".opened .member")[1].click()
        self.assertTrue(self.facts().startswith("host db3"), self.facts())
        self.assertIn("o'twin<b>", self.browser.find_element(By.ID, "picture").text)
        self.assertEqual(len(re.findall(rb"/Type\s*/Page\b", base64.b64decode(self.browser.print_page()))), 1)

    def test_a_network_of_many_hosts_is_a_small_page(self):
        _, page = self.store(network.large(128, 128, 0))
        self.assertEqual(len(self.all(".group")), 16)
        self.assertLess(page.stat().st_size, 1e6)
        self.assertLess(self.script("document.getElementById('data').textContent.length + "
                                    "document.querySelector('#picture svg').outerHTML.length") / 128, 2000)


if __name__ == "__main__":
    result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Browser))
    sys.exit(verdict.report(result))

"""Asks what ./tarn serve shows: python3 tests/serve/run.py PATH-TO-TARN PATH-TO-PROMETHEUS

The servers listen on ports of the loopback interface that the system chooses, and end with the test that started them.
Prometheus, too, runs from the folder that its package is unpacked in, in the foreground.
"""

import contextlib
import gzip
import http.client
import json
import os
import socket
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.error
import urllib.parse
import urllib.request
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.append(str(Path(__file__).parents[1]))
import verdict

ROOT = Path(__file__).parents[2]
TARN, PROMETHEUS = (Path(argument).absolute() for argument in sys.argv[1:3])
RILL = ROOT / "hosts/rill.json"
LIMIT = 60  # seconds until anything must have happened


class Served:
    """A server of a host, or of what the options name, and what it answers."""

    def __init__(self, test, *options, host=RILL):
        self.process = subprocess.Popen(
            [TARN, "serve", *(["--host", host] if host else []), "--listen", "127.0.0.1:0", *options],
            stdout=subprocess.PIPE, text=True)
        test.addCleanup(self.process.stdout.close)
        test.addCleanup(self.process.wait, LIMIT)
        test.addCleanup(self.process.kill)
        self.url = self.process.stdout.readline().strip()
        self.address = ("127.0.0.1", urllib.parse.urlsplit(self.url).port)

    def get(self, path, method="GET", **headers):
        """The status, the headers and the body."""
        connection = http.client.HTTPConnection(*self.address, timeout=LIMIT)
        try:
            connection.request(method, path, headers={name.replace("_", "-"): value for name, value in headers.items()})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read()
        finally:
            connection.close()

    def metrics(self):
        lines = self.get("/metrics")[2].decode().splitlines()
        return dict(line.rsplit(" ", 1) for line in lines if not line.startswith("#"))

    def threads(self, name):
        names = (Path(f"/proc/{self.process.pid}/task") / task / "comm"
                 for task in os.listdir(f"/proc/{self.process.pid}/task"))
        return sum(path.read_text().strip() == name for path in names)

    def sent(self, *parts, pause=0.0):
        """What comes back of a connection that is written to bit by bit until the server ends it, and how many bits it took."""
        back, taken = b"", 0
        with socket.create_connection(self.address, timeout=LIMIT) as connection:
            try:
                for part in parts:
                    connection.sendall(part)
                    taken += 1
                    time.sleep(pause)
                while piece := connection.recv(65536):
                    back += piece
            except (BrokenPipeError, ConnectionResetError):
                pass
        return back, taken


def run(*arguments):
    return subprocess.run([TARN, *arguments], capture_output=True, text=True, timeout=LIMIT)


def hanging(folder, **seconds):
    """A description of rill, the first adapter of which takes its time."""
    host = json.loads(RILL.read_text())
    host["hba"]["adapters"][0]["seconds"] = seconds
    (folder / "hanging.json").write_text(json.dumps(host))
    return folder / "hanging.json"


def until(ask, wanted):
    """What is answered in the end: what is wanted, unless that takes too long."""
    end = time.monotonic() + LIMIT
    while (told := ask()) != wanted and time.monotonic() < end:
        time.sleep(0.3)
    return told


class Serve(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="tarn-serve-")
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)

    def test_each_page(self):
        served = Served(self, "--fresh", "3600")
        said = {command: run(*command.split(), "--host", RILL).stdout for command in ("metrics", "check", "--json check")}
        text = served.get("/metrics")
        self.assertEqual((text[0], text[1]["Content-Type"], text[2].decode()),
                         (200, "text/plain; version=0.0.4; charset=utf-8", said["metrics"]))
        for accept, is_open in (("application/openmetrics-text;version=1.0.0,text/plain;q=0.5", True), ("*/*", False),
                                ("text/plain, application/openmetrics-text; q=0.9", False),
                                ("application/openmetrics-text;q=0", False)):
            kind, body = served.get("/metrics", Accept=accept)[1:]
            self.assertEqual((kind["Content-Type"].startswith("application/openmetrics"), body.endswith(b"\n# EOF\n")),
                             (is_open, is_open), accept)
            if is_open:
                self.assertIn(b"# TYPE tarn_disk_read_bytes counter\n", body)
                self.assertEqual([line for line in body.splitlines() if line[:1] != b"#"],
                                 [line for line in text[2].splitlines() if line[:1] != b"#"])
        packed = served.get("/metrics", Accept_Encoding="deflate, gzip;q=0.5")
        self.assertEqual((packed[1]["Content-Encoding"], gzip.decompress(packed[2])), ("gzip", text[2]))
        self.assertIsNone(served.get("/metrics", Accept_Encoding="gzip;q=0")[1]["Content-Encoding"])
        document = json.loads(served.get("/check")[2])
        line = document.pop("line")
        self.assertEqual(document, json.loads(said["--json check"])["result"])
        lines = served.get("/check", Accept="text/plain")[2].decode()
        self.assertEqual(lines.splitlines()[0], line)
        self.assertEqual(lines, said["check"])
        self.assertIn(b"<title>Storage network of rill</title>", served.get("/map")[2])
        self.assertEqual(served.get("/-/healthy")[0], 200)
        index = served.get("/")[2].decode()
        for page in ("metrics", "check", "map", "-/healthy"):
            self.assertIn(f'href="{page}"', index)
            head = served.get("/" + page, "HEAD")
            self.assertEqual((head[0], head[2]), (200, b""))
            self.assertEqual(int(head[1]["Content-Length"]), len(served.get("/" + page)[2]))

    def test_what_is_refused(self):
        served = Served(self)
        for path in ("/nothing", "/metrics/", "/..%2f..%2fetc/passwd", "/../etc/passwd", "//etc/passwd", "/hosts/rill.json"):
            self.assertEqual(served.get(path)[0], 404, path)
        for method in ("POST", "PUT", "DELETE", "OPTIONS", "TRACE"):
            status, headers, _ = served.get("/metrics", method)
            self.assertEqual((status, headers["Allow"]), (405, "GET, HEAD"), method)
        for head in (b"X: " + b"a" * 9000, b"\r\n".join(b"X%d: a" % i for i in range(2000)), b"X" * 20000):
            self.assertNotIn(b" 200 ", served.sent(b"GET /metrics HTTP/1.1\r\nHost: a\r\n" + head + b"\r\n\r\n")[0])
        self.assertNotIn(b" 200 ", served.sent(b"GET /metrics?" + b"a" * 20000 + b" HTTP/1.1\r\nHost: a\r\n\r\n")[0])
        self.assertEqual(served.get("/-/healthy")[0], 200)

    def test_slow_senders_and_too_many(self):
        served = Served(self)
        with ThreadPoolExecutor(8) as senders:
            slow = [senders.submit(served.sent, b"GET /metrics HTTP/1.1\r\n", *[b"X: a\r\n"] * 100, pause=0.5)
                    for _ in range(8)]
            self.assertEqual(served.get("/-/healthy")[0], 200, "meanwhile")
            for back, taken in (sender.result() for sender in slow):
                self.assertEqual(back, b"")
                self.assertLess(taken, 100, "it was ended before it had sent all")
        held = [socket.create_connection(served.address, timeout=LIMIT) for _ in range(100)]
        self.addCleanup(lambda: [connection.close() for connection in held])
        time.sleep(1)
        ended = 0
        for connection in held:
            connection.setblocking(False)
            try:
                ended += connection.recv(1) == b""
            except BlockingIOError:
                pass
            except ConnectionResetError:
                ended += 1
        self.assertGreaterEqual(ended, 36)
        for connection in held:
            connection.close()
        for _ in range(LIMIT):
            try:
                self.assertEqual(served.get("/-/healthy")[0], 200)
                return
            except (http.client.HTTPException, ConnectionError):
                time.sleep(0.5)
        self.fail("it answers no more")

    def test_fifty_scrapers_while_a_call_never_returns(self):
        served = Served(self, "--fresh", "1", "--timeout", "2", host=hanging(self.folder, OpenAdapter=3600))
        begun, rounds = time.monotonic(), [[] for _ in range(50)]

        def scrape(told):
            while time.monotonic() - begun < 10:
                told.append(served.metrics())
                time.sleep(0.2)
        scrapers = [threading.Thread(target=scrape, args=(told,)) for told in rounds]
        for scraper in scrapers:
            scraper.start()
        for scraper in scrapers:
            scraper.join(LIMIT)
        self.assertGreaterEqual(min(map(len, rounds)), 3)
        for metrics in sum(rounds, []):
            self.assertEqual({name: value for name, value in metrics.items() if "section_up" in name and value != "1"},
                             {f'tarn_section_up{{section="{name}"}}': "0" for name in ("hba", "activity")})
            self.assertFalse([name for name in metrics if name.startswith(("tarn_fc_", "tarn_lun_"))])
        self.assertEqual(served.threads("asker"), 2, "the one that hangs, and the one that asks")
        self.assertIn("section-failed hba", json.loads(served.get("/check")[2])["line"])
        self.assertEqual(served.get("/map")[0], 503)
        served.process.terminate()
        self.assertEqual(served.process.wait(LIMIT), 143, "the call would have taken an hour")

    def test_a_network_whose_store_is_locked_and_gone(self):
        store = self.folder / "network.db"
        self.assertEqual(run("san", "load", "--db", store, RILL).returncode, 0)
        served = Served(self, "--db", store, "--fresh", "1", "--timeout", "2", host=None)
        up, pages = 'tarn_section_up{section="san"}', ("/", "/-/healthy", "/check", "/map")
        self.assertEqual(served.get("/metrics")[2].decode(), run("san", "metrics", "--db", store).stdout)
        self.assertIn(b"\n# EOF\n", served.get("/metrics", Accept="application/openmetrics-text")[2])
        with contextlib.closing(sqlite3.connect(store)) as other:
            other.execute("BEGIN EXCLUSIVE")
            self.assertEqual(until(lambda: served.metrics()[up], "0"), "0")
            self.assertEqual([served.get(page)[0] for page in pages], [200, 200, 503, 503])
        self.assertEqual(until(lambda: served.metrics()[up], "1"), "1")
        self.assertEqual([served.get(page)[0] for page in pages], [200] * 4)
        store.unlink()
        self.assertEqual(until(served.metrics, {up: "0"}), {up: "0"})

    def test_a_section_that_comes_back(self):
        served = Served(self, "--fresh", "1", "--timeout", "1", host=hanging(self.folder, OpenAdapter=4))
        self.assertEqual(served.metrics()['tarn_section_up{section="hba"}'], "0")
        # Once it has come back it is asked anew, and hangs anew, but never in two threads at once.
        earlier, late = "an earlier call has not come back", "it has not answered within 1 seconds"
        told = []
        for _ in range(LIMIT):
            time.sleep(0.8)
            findings = json.loads(served.get("/check")[2])["findings"]
            told += [finding["message"] for finding in findings if finding["subject"] == "hba"]
            self.assertLessEqual(served.threads("asker"), 3, "one of them may be ending")
            if earlier in told and told[-1] == late:
                return
        self.fail(str(told))

    def test_a_mount_that_hangs(self):
        host = json.loads((ROOT / "tests/hosts/mounts.json").read_text())
        of_agent, of_inventory = self.folder / "nfs.json", ROOT / "tests/hosts/mounts.json"
        of_agent.write_text(json.dumps({**host, "mnttab": [*host["mnttab"], "srv:/a\t/net\tnfs\trw\t1"],
                                        "statvfs": {**host["statvfs"], "/net": {"seconds": 3600}}}))
        full = 'tarn_filesystem_bytes{mountpoint="/export/home",device="pool/home",fstype="zfs",kind="available"}'
        for path, up in ((of_inventory, "1"), (of_agent, "0")):
            served = Served(self, "--fresh", "1", "--timeout", "2", host=path)
            for _ in range(3):
                metrics = served.metrics()
                self.assertEqual([metrics[f'tarn_section_up{{section="{name}"}}'] for name in ("logical-disks", "mounts")],
                                 [up, "1"])
                self.assertEqual(metrics[full], "0")
                self.assertFalse([name for name in metrics if "/var/mail" in name])
                findings = json.loads(served.get("/check")[2])["findings"]
                self.assertIn(("/var/mail", "it gave no sizes within 1 second"),
                              [(finding["subject"], finding["message"]) for finding in findings])
                time.sleep(1.1)

    def test_bad_usage(self):
        served = Served(self)
        for options, complaint in (
                (["--listen", f"127.0.0.1:{served.address[1]}"], f"--listen: 127.0.0.1:{served.address[1]}: Address already"),
                (["--listen", "127.0.0.1:65536"], "--listen: port 65536 is not from 0 to 65535"),
                (["--listen", "127.0.0.1:99999999999"], "--listen: port 99999999999 is not from 0 to 65535"),
                (["--listen", "9479"], "--listen: '9479' is no address and port"),
                (["--listen", "nowhere.invalid:1"], "--listen: there is no address nowhere.invalid:1"),
                (["--fresh", "0"], "--fresh: '0' is not from 1"), (["--timeout", "x"], "--timeout: 'x' is not a number"),
                (["--db", "x.db"], "--host does not go with --db"),
                (["--json"], "--json does not go with serve")):
            done = run("serve", "--host", RILL, *options)
            self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (2, "", 1), done.stderr)
            self.assertTrue(done.stderr.startswith("tarn: " + complaint), done.stderr)

    def test_prometheus(self):
        served = Served(self, "--fresh", "1")
        configuration = (ROOT / "examples/prometheus/prometheus.yml").read_text()
        self.assertIn("localhost:9479", configuration)
        (self.folder / "prometheus.yml").write_text(
            configuration.replace("localhost:9479", "%s:%d" % served.address).replace("1m", "1s").replace("15s", "1s"))
        (self.folder / "rules.yml").write_text((ROOT / "examples/prometheus/rules.yml").read_text())
        with socket.create_server(("127.0.0.1", 0)) as free:
            address = "127.0.0.1:%d" % free.getsockname()[1]
        with open(self.folder / "log", "w") as log:
            server = subprocess.Popen(
                [PROMETHEUS, f"--config.file={self.folder}/prometheus.yml", f"--storage.tsdb.path={self.folder}/data",
                 f"--web.listen-address={address}"], stdout=log, stderr=log)
        self.addCleanup(server.wait, LIMIT)
        self.addCleanup(server.terminate)

        def asked(query):
            url = f"http://{address}/api/v1/query?" + urllib.parse.urlencode({"query": query})
            try:
                with urllib.request.urlopen(url, timeout=LIMIT) as answer:
                    return json.load(answer)["data"]["result"]
            except (urllib.error.URLError, ConnectionError):
                return []
        disks = {name.split('disk="')[1].split('"')[0] for name in served.metrics() if "read_bytes" in name}
        for _ in range(LIMIT):
            rates = asked("rate(tarn_disk_read_bytes_total[1m])")
            if any(float(rate["value"][1]) for rate in rates):
                break
            time.sleep(1)
        self.assertEqual({rate["metric"]["disk"] for rate in rates}, disks, (self.folder / "log").read_text())
        self.assertEqual([up["value"][1] for up in asked("up")], ["1"])
        reading = {rate["metric"]["disk"]: float(rate["value"][1]) for rate in rates}
        self.assertGreaterEqual(min(reading.values()), 0)
        self.assertGreater(max(reading.values()), 0, "rill has several samples")
        print("rate(tarn_disk_read_bytes_total[1m]):", reading)


if __name__ == "__main__":
    sys.exit(verdict.report(unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Serve))))

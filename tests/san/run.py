"""Loads the planted network into a store, and holds it against what the hosts say one by one: run.py TARN"""

import csv
import gzip
import json
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from datetime import datetime, timedelta, timezone
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1]))
import model
import network
import verdict

TARN = sys.argv.pop()
PATHS = "SELECT host, identity, wwn, remote_wwn FROM latest_path"


class San(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = Path(scratch.name)
        cls.store = cls.folder / "network.db"
        network.write(network.Network(network.HEALTHY + network.FAULTS), cls.folder)
        cls.expected = json.loads(Path(cls.folder, "expected.json").read_text())
        for packed in Path(cls.folder, "hosts").rglob("*.gz"):
            packed.with_suffix("").write_bytes(gzip.decompress(packed.read_bytes()))
            packed.unlink()
        files = sorted(Path(cls.folder, "hosts").rglob("*.json"))
        done = cls.san("load", Path(cls.folder, "hosts"))
        assert json.loads(done.stdout)["result"]["loaded"] == len(files), done.stderr
        with ThreadPoolExecutor(2) as pool:
            cls.recordings = list(pool.map(lambda file: model.recorded([TARN], file), files))

    @classmethod
    def san(cls, command, *more, store=None, json=True):
        return subprocess.run([TARN, *["--json"] * json, "san", command, "--db", store or cls.store, *more],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")

    def check(self, *more, status=2, store=None):
        """The findings, without what is said of them, and how many are ignored."""
        done = self.san("check", "--max-age", "7d", *more, store=store)
        self.assertEqual(done.returncode, status, done.stderr)
        result = json.loads(done.stdout)["result"]
        self.assertEqual(result["state"], ["OK", "WARNING", "CRITICAL", "UNKNOWN"][status])
        self.assertEqual(sorted(result["findings"], key=lambda each: each["severity"] != "critical"),
                         result["findings"])
        self.assertTrue(all(each["message"] for each in result["findings"]))
        return in_order({key: each[key] for key in ("code", "subject", "hosts")}
                        for each in result["findings"]), result["ignored"]

    def rows(self, query):
        with sqlite3.connect(self.store) as store:
            return store.execute(query).fetchall()

    def test_a_store_holds_the_paths_that_its_hosts_tell(self):
        told = [(each["host"], unit["designator"] or f"{unit['node']} LUN {unit['lun']}", path["portWWN"],
                 path["remotePort"])
                for each in model.Network(self.recordings).latest for unit in each["paths"] for path in unit["paths"]]
        self.assertGreater(len(told), 400)
        self.assertEqual(sorted(self.rows(PATHS)), sorted(told))

    def test_check_finds_what_is_planted_and_nothing_else(self):
        plain = model.check(model.Network(self.recordings), datetime.now(timezone.utc), timedelta(days=7))
        self.assertEqual(in_order(plain), in_order(self.expected))
        self.assertEqual(self.check(), (in_order(self.expected), 0))
        self.assertEqual(set(self.rows("SELECT remote_wwn, host FROM zoning_gap")),
                         {(each["subject"], host) for each in plain if each["code"] == "zoning-gap"
                          for host in each["hosts"]})
        healthy = self.folder / "healthy"
        network.write(network.Network(network.HEALTHY), healthy)
        store = self.folder / "healthy.db"
        self.san("load", healthy / "hosts", store=store)
        self.assertEqual(self.check(status=0, store=store), ([], 0))

    def test_hosts_of_one_name_are_told_from_one_whose_adapters_were_replaced(self):
        folder = self.folder / "turns"
        folder.mkdir()
        machines = [json.loads(Path(self.folder, "hosts", f"{name}.json").read_text()) for name in ("db1", "web1")]
        found = {"ab": True, "aab": True, "aba": True, "abba": True, "abb": False, "aa": False}
        for turns in found:
            for day, machine in enumerate(turns, 1):
                told = machines["ab".index(machine)]
                Path(folder, f"{turns}{day}.json").write_text(json.dumps({
                    **told, "sysinfo": {**told["sysinfo"], "SI_HOSTNAME": turns},
                    "recordedAt": f"2026-01-0{day}T00:00:00Z"}))
        store = self.folder / "turns.db"
        self.san("load", folder, store=store)
        self.assertEqual([each["subject"] for each in self.check(store=store, status=1)[0]
                          if each["code"] == "duplicate-host"], sorted(turns for turns in found if found[turns]))

    def test_check_is_a_plugin_and_keeps_to_itself_what_it_is_told_to(self):
        ignored = self.folder / "ignored"
        ignored.write_text("unit-*  # all of them\nhost-*:mail*\n")
        left = [each for each in self.expected if not each["code"].startswith("unit-")
                and (each["code"], each["subject"]) != ("host-lost-paths", "mail1")]
        self.assertEqual(self.check("--ignore-file", ignored, status=1),
                         (in_order(left), len(self.expected) - len(left)))
        done = self.san("check", "--ignore", "*-vanished", json=False)
        self.assertEqual((done.returncode, done.stderr), (1, ""))
        first, *others = done.stdout.splitlines()
        self.assertRegex(first, "^TARN SAN WARNING - 39 hosts, recorded up to 30 days ago: 13 findings: 0 critical, "
                         "13 warnings, 1 ignored; unit-one-fabric naa[.][0-9a-f]+ [(]pair1[)] [|] "
                         "findings=13;;;0 critical=0;;;0 hosts=39;;;0$")
        self.assertEqual(len([line for line in others if line.startswith("   warning ")]), 13)
        rows = list(csv.reader(self.san("check", "--csv", json=False).stdout.splitlines()))
        self.assertEqual(rows[0], ["Severity", "Code", "Subject", "Message", "Hosts"])
        self.assertIn(["firmware-drift", "375-3108-xx", "3.3.001 on 1, 3.3.116 on 15 adapters", "app5"],
                      [row[1:] for row in rows])
        empty = self.folder / "empty.db"
        self.assertEqual(self.san("load", self.folder / "nowhere.json", store=empty).returncode, 1)
        self.assertEqual(self.check(status=3, store=empty), ([], 0))
        for wrong in (["--ignore", "odd"], ["--max-age", "1w"], ["--db", self.folder / "none.db"]):
            done = self.san("check", *wrong)
            self.assertEqual((done.returncode, done.stdout, len(done.stderr.splitlines())), (3, "", 1), wrong)


def in_order(findings):
    return sorted(findings, key=lambda each: (each["code"], each["subject"]))

    def test_a_store_holds_the_mounts_of_both_libraries(self):
        host = Path(__file__).parents[1] / "hosts/mounts.json"
        self.assertEqual(self.load(host).returncode, 0)
        told = subprocess.run([TARN, "--host", host, "--json", "logical-disks", "--all"], stdout=subprocess.PIPE, check=True)
        self.assertEqual(sorted(self.rows("SELECT mount_point, total_bytes, available_bytes FROM mount")),
                         sorted((each["mountPoint"], each["totalBytes"], each["availableBytes"])
                                for each in json.loads(told.stdout)["result"]))
        self.assertEqual(self.rows("SELECT mount_point FROM mount WHERE disk = 'c1t0d0' ORDER BY mount_point"),
                         [("/",), ("/var/spool",)])


if __name__ == "__main__":
    sys.exit(verdict.report(unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(San))))

"""Loads the planted network into a store, and holds it against what the hosts say one by one: run.py TARN"""

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
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        self.store = self.folder / "network.db"
        network.write(network.Network(network.HEALTHY + network.FAULTS), self.folder)
        self.files = sorted(Path(self.folder, "hosts").glob("*.json"))

    def load(self, *more):
        return subprocess.run([TARN, "--json", "san", "load", "--db", self.store, *more], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True)

    def rows(self, query):
        with sqlite3.connect(self.store) as store:
            return store.execute(query).fetchall()

    def test_a_store_holds_the_paths_that_its_hosts_tell(self):
        first = self.load(*self.files)
        self.assertEqual(first.returncode, 0, first.stderr)
        self.assertEqual(json.loads(first.stdout)["result"]["loaded"], len(self.files))
        with ThreadPoolExecutor(2) as pool:
            recordings = list(pool.map(lambda file: model.recorded([TARN], file), self.files))
        told = [(each["host"], unit["designator"] or f"{unit['node']} LUN {unit['lun']}", path["portWWN"],
                 path["remotePort"])
                for each in model.Network(recordings).latest for unit in each["paths"] for path in unit["paths"]]
        self.assertGreater(len(told), 400)
        self.assertEqual(sorted(self.rows(PATHS)), sorted(told))
        # What takes an earlier recording to be seen is not among these files.
        planted = [each for each in json.loads(Path(self.folder, "expected.json").read_text())
                   if each["code"] not in ("unit-vanished", "host-lost-paths")]
        found = model.check(model.Network(recordings), datetime.now(timezone.utc), timedelta(days=7))
        self.assertEqual({(each["code"], each["subject"], *sorted(each["hosts"])) for each in found},
                         {(each["code"], each["subject"], *sorted(each["hosts"])) for each in planted})
        self.assertEqual(set(self.rows("SELECT remote_wwn, host FROM zoning_gap")),
                         {(each["subject"], host) for each in found if each["code"] == "zoning-gap"
                          for host in each["hosts"]})

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

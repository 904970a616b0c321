"""Loads the planted network into stores, and holds them against what the hosts say one by one:
run.py TARN CLASS-PATH PACKAGES

PACKAGES is where those of PostgreSQL are unpacked.
"""

import csv
import gzip
import json
import os
import random
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import urllib.request
from collections import Counter
from datetime import datetime, timedelta, timezone
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1]))
import model
import network
import postgres
import verdict
from together import in_one_machine, line_of

PACKAGES, CLASS_PATH, TARN = (sys.argv.pop() for _ in range(3))
PATHS = "SELECT host, identity, wwn, remote_wwn FROM latest_path"
THINGS = 200
A, VAULT = "1000006069000000", "200000a0b8000000"

# What is asked, and which rows of ports or of paths it is about.
HOSTS = [
    ([], lambda row: True),
    (["--name", "DB?", "--model", "fx-23*"], lambda row: row.host.startswith("db")),
    (["--fabric", A, "--firmware", "3.3.0*"], lambda row: row.fabric == A and row.firmware == "3.3.001"),
    (["--older-than", "7d"], lambda row: row.host == "lone4"),
    (["--name", "o'tw%"], lambda row: False),
    (["--name", "O'TWIN<b>*"], lambda row: row.host.startswith("o'twin"))]
UNITS = [
    ([], lambda row: True, lambda *unit: True),
    (["--array", "*8000000", "--name", "lone2"], lambda row: row.host == "lone2", lambda *unit: unit[3] == VAULT),
    (["--model", "FX-*", "--shared"], lambda row: row.model.startswith("FX"), lambda *unit: unit[1] > 1),
    (["--fabric", A, "--single"], lambda row: row.fabric == A, lambda *unit: unit[2] < 2)]
PORTS = [
    (["--name", "*1", "--fabric", A], lambda row: row.host.endswith("1") and row.fabric == A),
    (["--state", "link*"], lambda row: not row.online)]
ARRAY_PORTS = [
    (["--array"], lambda row: True),
    (["--array", "20:00:00:A0:B8:00:00:00", "--name", "pair*"],
     lambda row: row.array == VAULT and row.host.startswith("pair")),
    (["--array", "--fabric", A, "--model", "FX-2404"], lambda row: row.fabric == A and row.model == "FX-2404")]

# A network of a day ago, what happened to it since, and how that is told: KIND CHANGE PROPERTY WAS IS, and which hosts
# see it of which thing.
BEFORE = """
fabric A 1 2
fabric B 3
array vault naa A.1 A.2 B.3
hosts db 3 FX-2302 A.1,B.3
units db 2 1 vault.1 vault.2 vault.3
"""
SINCE = """
set vault.2 state 6
plug db1.0 A.2
set db2 firmware 3.4; set db3 firmware 3.4
hide db3 db3/1
show db3 db2/1
hosts new 1 FX-2302 A.1
"""
CHANGES = [
    ("host", "appeared", None, None, None, {"new1": "new1"}),
    ("array port", "changed", "state", "online", "link down", {"vault.2": "db1 db2 db3"}),
    ("adapter", "changed", "firmware", "3.3.116", "3.4", {"FX-2302": "db2 db3"}),
    ("port", "changed", "domain", 1, 2, {"db1.0": "db1"}),
    ("unit", "changed", "paths", 3, 2, {"db/1": "db1 db2 db3", "db/2": "db1 db2 db3", "db1/1": "db1", "db2/1": "db2"}),
    ("unit", "changed", "sizeBytes", 64 * 128 * 1024 * 512, 64 * 128 * 1025 * 512, {"db/1": "db2"}),
    ("unit", "appeared", "paths", None, 2, {"db2/1": "db3"}),
    ("unit", "vanished", "paths", 3, None, {"db3/1": "db3"})]

# What was moved to another array is not missed at the one before, which some of its hosts still use.
MOVING = "; ".join(BEFORE.strip().splitlines()) + "; array new naa A.1 A.2 B.3"
MISNAMED = """
fabric A 1
array old naa A.1 A.1
hosts db 3 FX-1100 A.1
units db 1 0 old.1 old.2
unzone db1 old.2
hosts odd 1 FX-1100 A.1
units odd 0 1 old.1 old.2
"""
OLD_1, OLD_2 = "200100a0b8000000", "200200a0b8000000"


class San(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        network.write(network.Network(network.HEALTHY + network.FAULTS), cls.folder)
        cls.expected = json.loads(Path(cls.folder, "expected.json").read_text())
        cls.server = server = cls.enterClassContext(postgres.Server(PACKAGES))
        os.environ["PGPASSWORD"] = postgres.PASSWORD
        cls.file = cls.folder / "network.db"
        cls.stores = [cls.file, server.create("network")]
        for store in cls.stores:
            cls.run_tarn("load", "--db", store, cls.folder / "hosts")
        earlier = cls.folder / "earlier"
        earlier.mkdir()
        for packed in Path(cls.folder, "hosts", "earlier").glob("*.gz"):
            (earlier / packed.stem).write_bytes(gzip.decompress(packed.read_bytes()))
        cls.network = model.Network(model.recorded(CLASS_PATH, list(cls.folder.glob("*/*.json"))))

    @staticmethod
    def run_tarn(*words, status=0):
        done = subprocess.run([TARN, "--json", "san", *map(str, words)], capture_output=True, text=True, timeout=300)
        assert done.returncode == status, done.stderr
        return json.loads(done.stdout)["result"]

    def ask(self, *words, status=0, stores=None):
        """What both stores answer."""
        return self.ask_all([words], status, stores)[0]

    def ask_all(self, questions, status=0, stores=None):
        """What both stores answer to each."""
        stores = stores or self.stores
        told = in_one_machine(CLASS_PATH, [line_of(["--json", "san", *words, "--db", store])
                                           for words in questions for store in stores])
        self.assertEqual([(done.returncode, done.args) for done in told if done.returncode != status], [])
        one, other = ([json.loads(done.stdout)["result"] for done in told[place::2]] for place in (0, 1))
        self.assertEqual(one, other)
        return one

    @classmethod
    def san(cls, command, *more, store=None):
        return subprocess.run([TARN, "san", command, "--db", store or cls.file, *more], capture_output=True,
                              encoding="utf-8")

    def check(self, *more, status=2, store=None):
        """The findings, without what is said of them, and how many are ignored."""
        result = self.ask("check", "--max-age", "7d", *more, status=status, stores=store and [store] * 2)
        self.assertEqual(result["state"], ["OK", "WARNING", "CRITICAL", "UNKNOWN"][status])
        self.assertEqual(sorted(result["findings"], key=lambda each: each["severity"] != "critical"),
                         result["findings"])
        self.assertTrue(all(each["message"] for each in result["findings"]))
        return in_order({key: each[key] for key in ("code", "subject", "hosts")}
                        for each in result["findings"]), result["ignored"]

    def rows(self, query):
        with sqlite3.connect(self.file) as store:
            return store.execute(query).fetchall()

    def test_a_store_holds_the_paths_that_its_hosts_tell(self):
        told = [(each["host"], unit["designator"] or f"{unit['node']} LUN {unit['lun']}", path["portWWN"],
                 path["remotePort"])
                for each in self.network.latest for unit in each["paths"] for path in unit["paths"]]
        self.assertGreater(len(told), 400)
        self.assertEqual(sorted(self.rows(PATHS)), sorted(told))

    def test_check_finds_what_is_planted_and_nothing_else(self):
        plain = model.check(self.network, datetime.now(timezone.utc), timedelta(days=7))
        self.assertEqual(in_order(plain), in_order(self.expected))
        self.assertEqual(self.check(), (in_order(self.expected), 0))
        self.assertEqual(set(self.rows("SELECT remote_wwn, host FROM zoning_gap")),
                         {(each["subject"], host) for each in plain if each["code"] == "zoning-gap"
                          for host in each["hosts"]})
        healthy = self.folder / "healthy"
        # Nothing lacks the zone of a port that failed, though not all hosts have forgotten it.
        failed = "unzone db6 vault.4\nset vault.4 state 6\nearlier db1"
        network.write(network.Network(network.HEALTHY.replace("earlier db1", failed)), healthy)
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

    def test_an_array_that_presented_a_unit_before_is_not_missed(self):
        store = self.folder / "moved.db"
        for hours, moved in (2, ""), (1, "migrate db/* new; migrate db3/* new"):
            folder = self.folder / f"moved{hours}"
            network.write(network.Network(f"{MOVING}; {moved}; {'; '.join(f'age db{i} {hours}' for i in (1, 2, 3))}"),
                          folder)
            self.san("load", folder / "hosts", store=store)
            self.assertEqual(self.check(status=0, store=store), ([], 0))
        with sqlite3.connect(store) as database:
            self.assertEqual(database.execute("SELECT COUNT(*) FROM snapshot").fetchall(), [(6,)])
            self.assertEqual(database.execute("SELECT * FROM zoning_gap").fetchall(), [])

    def test_what_a_port_is_tell_hosts_that_reach_units_there(self):
        """One has another node for it, and where it reaches nothing, another switch."""
        nowhere = {"odd1.json": (OLD_1, OLD_2)}
        for case, unreached in enumerate(({}, nowhere, {**nowhere, "db2.json": (OLD_2,), "db3.json": (OLD_2,)})):
            folder, store = self.folder / f"misnamed{case}", self.folder / f"misnamed{case}.db"
            folder.mkdir()
            for name, host in network.Network(MISNAMED).descriptions():
                adapter = host["hba"]["adapters"][0]
                adapter["targetMapping"] = [each for each in adapter["targetMapping"]
                                            if each["FcpId"]["PortWWN"] not in unreached.get(name, ())]
                for seen in adapter["ports"][0]["discovered"] if name == "odd1.json" else ():
                    seen["attributes"].update(NodeWWN="5" * 16, **({"PortFcId": 0x090000} if unreached else {}))
                Path(folder, name).write_text(json.dumps(host))
            self.san("load", folder, store=store)
            self.assertEqual([(each["code"], each["subject"], each["hosts"])
                              for each in self.check(status=1, store=store)[0] if "apart" not in each["code"]],
                             [("zoning-gap", OLD_2, ["db1"])], case)

    def test_check_is_a_plugin_and_keeps_to_itself_what_it_is_told_to(self):
        ignored = self.folder / "ignored"
        ignored.write_text("unit-*  # all of them\nhost-*:mail*\n")
        left = [each for each in self.expected if not each["code"].startswith("unit-")
                and (each["code"], each["subject"]) != ("host-lost-paths", "mail1")]
        self.assertEqual(self.check("--ignore-file", ignored, status=1),
                         (in_order(left), len(self.expected) - len(left)))
        done = self.san("check", "--ignore", "*-vanished")
        self.assertEqual((done.returncode, done.stderr), (1, ""))
        first, *others = done.stdout.splitlines()
        self.assertRegex(first, "^TARN SAN WARNING - 39 hosts, recorded up to 30 days ago: 13 findings: 0 critical, "
                         "13 warnings, 1 ignored; unit-one-fabric naa[.][0-9a-f]+ [(]pair1[)] [|] "
                         "findings=13;;;0 critical=0;;;0 hosts=39;;;0$")
        self.assertEqual(len([line for line in others if line.startswith("   warning ")]), 13)
        rows = list(csv.reader(self.san("check", "--csv").stdout.splitlines()))
        self.assertEqual(rows[0], ["Severity", "Code", "Subject", "Message", "Hosts"])
        self.assertIn(["firmware-drift", "375-3108-xx", "3.3.001 on 1, 3.3.116 on 15 adapters", "app5"],
                      [row[1:] for row in rows])
        empty = self.folder / "empty.db"
        self.assertEqual(self.san("load", self.folder / "nowhere.json", store=empty).returncode, 1)
        self.assertEqual(self.check(status=3, store=empty), ([], 0))
        for wrong in (["--ignore", "odd"], ["--max-age", "1w"], ["--db", self.folder / "none.db"]):
            done = self.san("check", *wrong)
            self.assertEqual((done.returncode, done.stdout, len(done.stderr.splitlines())), (3, "", 1), wrong)

    def test_a_store_holds_the_mounts_of_both_libraries(self):
        host = Path(__file__).parents[1] / "hosts/mounts.json"
        store = self.folder / "mounts.db"
        self.run_tarn("load", "--db", store, host)
        told = subprocess.run([TARN, "--host", host, "--json", "logical-disks", "--all"], stdout=subprocess.PIPE,
                              check=True)
        with sqlite3.connect(store) as database:
            rows = database.execute("SELECT mount_point, total_bytes, available_bytes, disk FROM mount").fetchall()
        self.assertEqual(sorted(row[:3] for row in rows),
                         sorted((each["mountPoint"], each["totalBytes"], each["availableBytes"])
                                for each in json.loads(told.stdout)["result"]))
        self.assertEqual(sorted(row[0] for row in rows if row[3] == "c1t0d0"), ["/", "/var/spool"])

    def online(self, **wanted):
        """How many online paths each host has to each unit, of those that are wanted."""
        reached = {}
        for row in self.network.paths:
            if all(getattr(row, name) == value for name, value in wanted.items()):
                reached.setdefault((row.host, row.unit), []).append(row)
        return {key: len(model.online_paths(rows)) for key, rows in reached.items()}

    def test_lists_are_of_what_is_asked_for(self):
        net = self.network
        kinds = (("hosts", HOSTS), ("units", UNITS), ("ports", PORTS), ("ports", ARRAY_PORTS))
        told = iter(self.ask_all([[kind, *words] for kind, questions in kinds for words, *_ in questions]))
        for words, is_meant in HOSTS:
            self.assertEqual(
                {(each["host"], each["ports"], each["units"], each["paths"]) for each in next(told)},
                {(host, sum(row.host == host for row in net.ports), len(net.seen[host]),
                  sum(self.online(host=host).values())) for host in {row.host for row in filter(is_meant, net.ports)}})
        for words, is_meant, is_left in UNITS:
            meant = {row.unit: row.array for row in filter(is_meant, net.paths)}
            units = [(unit, len(net.hosts[unit]), min(self.online(unit=unit).values()), array)
                     for unit, array in meant.items()]
            self.assertEqual({(each["unit"], each["hosts"], each["pathsMin"], *each["arrays"])
                              for each in next(told)}, {unit for unit in units if is_left(*unit)}, words)
        for words, is_meant in PORTS:
            self.assertEqual({(each["host"], each["wwn"], each["firmware"]) for each in next(told)},
                             {(row.host, row.port, row.firmware) for row in filter(is_meant, net.ports)})
        for words, is_meant in ARRAY_PORTS:
            seen = {wwn: [row for row in net.ports if wwn in row.far]
                    for wwn in {row.array_port for row in filter(is_meant, net.paths)}}
            self.assertEqual(
                {(each["wwn"], each["hosts"], each["initiators"]) for each in next(told)},
                {(wwn, len({row.host for row in rows}), len(rows)) for wwn, rows in seen.items()}, words)

    def redundancy(self, unit):
        """The worst that any host has of these."""
        worst = 5
        for host in self.network.hosts[unit]:
            rows = [row for row in self.network.paths if (row.host, row.unit) == (host, unit) and row.online]
            alike = ([{row.array_port} for row in rows], [row.switches for row in rows],
                     [{row.fabric} - {""} for row in rows])
            shared = [2 + i for i, each in enumerate(alike) if rows and set.intersection(*each)]
            worst = min([worst, *shared] if len(model.online_paths(rows)) > 1 else [len(model.online_paths(rows))])
        return ["no_path", "single_path", "one_array_port", "one_switch", "one_fabric", "redundant"][worst]

    def test_metrics_count_what_hosts_tell(self):
        net = self.network
        told = dict(line.rsplit(" ", 1) for line in self.ask("metrics").splitlines() if not line.startswith("#"))
        expected = {"tarn_san_hosts": len(net.latest), 'tarn_section_up{section="san"}': 1}
        for host in {row.host for row in net.ports}:
            name = host.replace('"', '\\"')
            online = [row.online for row in net.ports if row.host == host]
            expected[f'tarn_san_host_paths{{host="{name}"}}'] = sum(self.online(host=host).values())
            expected[f'tarn_san_host_units{{host="{name}"}}'] = len(net.seen[host])
            expected[f'tarn_san_host_ports{{host="{name}",state="online"}}'] = sum(online)
            expected[f'tarn_san_host_ports{{host="{name}",state="other"}}'] = len(online) - sum(online)
        for switch in {switch for row in net.ports for switch in row.switches}:
            rows = [row for row in net.ports if switch in row.switches]
            labels = '{fabric="%s",domain="%s"}' % tuple(switch.split("/"))
            expected["tarn_san_switch_hosts" + labels] = len({row.host for row in rows})
            expected["tarn_san_switch_host_ports" + labels] = len(rows)
            expected["tarn_san_switch_array_ports" + labels] = len(
                {row.array_port for row in net.paths if switch in row.array_switches})
        for fabric in {row.fabric for row in net.ports if row.fabric}:
            rows = [row for row in net.ports if row.fabric == fabric]
            expected[f'tarn_san_fabric_hosts{{fabric="{fabric}"}}'] = len({row.host for row in rows})
            expected[f'tarn_san_fabric_host_ports{{fabric="{fabric}"}}'] = len(rows)
            expected[f'tarn_san_fabric_array_ports{{fabric="{fabric}"}}'] = len(
                {row.array_port for row in net.paths if row.fabric == fabric})
        for each, count in Counter(map(self.redundancy, net.hosts)).items():
            expected[f'tarn_san_units{{redundancy="{each}"}}'] = count
        found = Counter((each["severity"], each["code"]) for each in self.ask("check", status=2)["findings"])
        for (severity, code), count in found.items():
            expected[f'tarn_san_check_findings{{severity="{severity}",code="{code}"}}'] = count
        self.assertEqual(sum(int(told[name]) for name in told if name.startswith("tarn_san_check_")), found.total())
        self.assertEqual({name: told.get(name) for name in expected},
                         {name: str(count) for name, count in expected.items()})
        left = {name.partition("{")[0] for name in set(told) - set(expected)}
        self.assertEqual(left, {"tarn_san_host_recorded_timestamp_seconds", "tarn_san_host_findings", "tarn_san_units",
                                "tarn_san_array_port_hosts", "tarn_san_array_port_initiators",
                                "tarn_san_check_findings"})

    def test_a_server_shows_what_the_commands_print(self):
        for store in self.stores:
            with subprocess.Popen([TARN, "serve", "--db", store, "--listen", "127.0.0.1:0"], stdout=subprocess.PIPE,
                                  text=True) as server:
                try:
                    url = server.stdout.readline().strip()
                    shown = {}
                    for page, kind in (("metrics", "*/*"), ("map", "*/*"), ("check", "*/*"), ("check", "text/plain")):
                        request = urllib.request.Request(url + page, headers={"Accept": kind})
                        with urllib.request.urlopen(request, timeout=60) as answer:
                            shown[page, kind] = answer.read().decode()
                finally:
                    server.kill()
            plugin = self.san("check", store=store).stdout
            self.assertEqual(shown["check", "text/plain"], plugin)
            self.assertEqual(json.loads(shown["check", "*/*"]), {
                "line": plugin.splitlines()[0], **self.run_tarn("check", "--db", store, status=2)})
            self.assertEqual(shown["metrics", "*/*"], self.run_tarn("metrics", "--db", store))
            self.assertEqual(shown["map", "*/*"], self.san("map", store=store).stdout)

    def test_a_change_is_told_once_whoever_sees_it(self):
        now = datetime.now(timezone.utc).replace(microsecond=0)
        old, new = network.Network(BEFORE, now - timedelta(days=1)), network.Network(BEFORE + SINCE, now)
        stores = [self.folder / "changes.db", self.server.create("changes")]
        for each, name in ((old, "old"), (new, "new")):
            network.write(each, self.folder / name)
        grown = self.folder / "new" / "hosts" / "db2.json"
        host = json.loads(grown.read_text())
        for disk in host["disks"]:
            if disk["name"].endswith("d0") and not disk["name"].startswith("c0"):
                disk["geometry"]["dkg_ncyl"] += 1
        grown.write_text(json.dumps(host))
        for store in stores:
            self.run_tarn("load", "--db", store, self.folder / "old" / "hosts", self.folder / "new" / "hosts")
        self.assertIn("tarn: --since: 'x' is no time such as 2026-11-24T10:00:00Z or 7d (",
                      self.san("diff", "--since=x").stderr)
        hosts = ["db1", "db2", "db3", "new1"]
        everything = [("host", "appeared", None, None, None, dict(zip(hosts, hosts)))]
        for days, changes, compared, unheard, status in (
                (None, CHANGES, 3, [], 1), (-0.5, CHANGES, 3, [], 1), (1, [], 0, hosts, 0), (-3, everything, 0, [], 1)):
            since = f"--since={now + timedelta(days or 0):%Y-%m-%dT%H:%M:%SZ}"
            told = self.ask("diff", *[since] * (days is not None), status=status, stores=stores)
            self.assertEqual((told["compared"], told["unheard"]), (compared, unheard))
            self.assertEqual(
                [(each["kind"], each["change"], each["property"], each["was"], each["is"],
                  {thing["name"]: " ".join(thing["hosts"]) for thing in each["things"]}) for each in told["changes"]],
                [(*change, {new.named(thing): seers for thing, seers in things.items()})
                 for *change, things in changes])

    def test_who_sees_things_is_what_the_hosts_say(self):
        asked = random.Random(1).sample(model.things(self.network, model.KINDS.values()), THINGS)
        asked += ["200000a0b8000002 LUN 1", "/mail", "/db", "c2t200100A0B8000001d4"]
        self.assertEqual(self.ask("who", *asked), [model.who(self.network, thing) for thing in asked])

    def test_what_fails_with_things_is_what_the_hosts_say(self):
        dice = random.Random(2)
        everything = model.things(self.network, model.KINDS.values())
        together = [[A, "1000006069000001/3"], *(dice.sample(everything, number) for number in (1, 2, 4, 8))]
        told = self.ask_all([["impact", *things] for things in together]
                            + [["impact", "--each", kind] for kind in model.POINTS])
        self.assertEqual(told, [model.impact(self.network, failing) for failing in together]
                         + [model.ranking(self.network, kind) for kind in model.POINTS])

    def test_a_thing_has_many_names(self):
        unit, digits = "naa.600a0b80000000000000000000000000", "600a0b80000000000000000000000000"
        names = {"200100a0b8000000": ["20:01:00:A0:B8:00:00:00", "port:200100A0B8000000"],
                 "FX-1100": ["model:FX-1100"],
                 "db1/1": ["200000e08b000002", "adapter:20:00:00:E0:8B:00:00:02"],
                 unit: [digits, "naa." + digits.upper(), f"c9t{digits.upper()}d0", f"/dev/rdsk/c1t{digits.upper()}d0s2",
                        "200000A0B8000000 LUN 0", f"db2:c9t{digits.upper()}d0", "db2:/db", "unit:db2:/db"]}
        self.assertEqual([(each["thing"], each["hosts"]) for each in self.ask("who", *sum(names.values(), []))],
                         [(name, model.who(self.network, thing)["hosts"]) for thing, each in names.items()
                          for name in each])
        nothing = ("db9", "fabric:db1", "db2:/mail", ":", "200000a0b8000000 LUN 99999999999999999999")
        self.assertEqual(self.ask_all([["who", "db1", name] for name in nothing], status=1), [None] * len(nothing))
        store = self.folder / "ambiguous.db"
        store.write_bytes(self.file.read_bytes())
        with sqlite3.connect(store) as other:
            other.execute("UPDATE host SET name = '3.3.116' WHERE name = 'rock2'")
        done = self.san("who", "3.3.116", store=store)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (
            2, "", "tarn: '3.3.116' names several things: say 'firmware:3.3.116' or 'host:3.3.116' (try 'tarn san who "
            "--help')\n"))
        self.assertEqual([each["host"] for each in self.ask("who", "host:3.3.116", stores=[store] * 2)["hosts"]],
                         ["3.3.116"])


def in_order(findings):
    return sorted(findings, key=lambda each: (each["code"], each["subject"]))


if __name__ == "__main__":
    sys.exit(verdict.report(unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(San))))

"""Checks what the commands map and metrics write: python3 tests/cli/exports.py PATH-TO-TARN PATH-TO-PROMTOOL"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

sys.path.append(str(Path(__file__).parents[1]))
import verdict

ROOT = Path(__file__).parents[2]
TARN, PROMTOOL = sys.argv[1:3]
SVG = "{http://www.w3.org/2000/svg}"
NASTY = "\"q' \\N \\ <script>alert(1)</script> <img src=x onerror=alert(1)> &lt;b&gt; \u00e9\u4e2d \x1b[2J\nline"
RILL = json.loads((ROOT / "hosts/rill.json").read_text(encoding="utf-8"))


def adapter(node, *ports, mappings=()):
    return {"name": "hba " + node, "attributes": {"NodeWWN": node}, "ports": ports, "targetMapping": list(mappings)}


def port(wwn, *discovered, state=2, **attributes):
    return {"attributes": {"PortWWN": wwn, "PortState": state, "FabricName": "1000000000000001", **attributes},
            "discovered": discovered}


def mapping(wwn, lun, device="c1t0d0"):
    return {"ScsiId": {"OSDeviceName": device, "ScsiOSLun": lun}, "FcpId": {"PortWWN": wwn, "FcpLun": lun << 48}}


def remote(number, **attributes):
    return {"attributes": {"PortWWN": f"5006{number:012x}", "NodeWWN": f"5005{number:012x}", "PortState": 2, **attributes}}


HOSTILE = {"sysinfo": {"SI_HOSTNAME": NASTY}, "mnttab": ["dev\t/<\\\"\u00e9\tufs\trw\t1"] * 2,
           "statvfs": {"/<\\\"\u00e9": {"f_bsize": 1, "f_frsize": 1, "f_blocks": 3, "f_bfree": 2, "f_bavail": -1}},
           "hba": {"adapters": [adapter("2" * 16, port("21" * 8, remote(1, PortSymbolicName=NASTY)),
                                        mappings=[mapping(f"5006{1:012x}", 0, NASTY)])]}}
MANY = {"hba": {"adapters": [
    adapter(f"20{a:014x}", port(f"21{a:014x}", *map(remote, range(16))),
            mappings=[mapping(f"5006{r:012x}", lun) for r in range(16) for lun in range(256)]) for a in range(16)]}}


def apart(adapters, disks):
    """As many arrays as disks, each of one remote port with one logical unit."""
    return {"hba": {"adapters": [
        adapter(f"20{a:014x}", port(f"21{a:014x}", *map(remote, range(disks))),
                mappings=[mapping(f"5006{r:012x}", 0) for r in range(disks)]) for a in range(adapters)]}}


def troubled():
    host = json.loads(json.dumps(RILL))
    first, second = host["hba"]["adapters"]
    first["ports"][0]["attributes"]["PortState"] = 6
    first["ports"][1]["discovered"][1]["status"] = {"GetDiscoveredPortAttributes": 1}
    second["ports"] += [port("1000001b320a77e2"), {"status": {"GetAdapterPortAttributes": 1}}]
    host["hba"]["adapters"].append({"name": "hba-2", "openFailures": 2})
    return host


class Exports(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarn-exports-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def tarn(self, *words, host=None, status=0, **environment):
        if host is not None:
            (self.folder / "host.json").write_text(json.dumps(host), encoding="utf-8")
            words = ["--host", self.folder / "host.json", *words]
        done = subprocess.run([TARN, *words], capture_output=True, timeout=300,
                              env={**os.environ, "TARN_HOST": str(ROOT / "hosts/rill.json"), **environment})
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertNotIn(b"\tat ", done.stderr)
        return done.stdout.decode("utf-8"), done.stderr.decode("utf-8")

    def boxes(self, host=None, *words):
        """The lines of each box, and the colour of its frame; by its title and each other line. Also all text there is."""
        svg = ElementTree.fromstring(self.tarn("map", "--format", "svg", *words, host=host)[0].encode())
        self.assertLessEqual({element.tag for element in svg.iter()},
                             {SVG + name for name in ("svg", "style", "g", "a", "title", "text", "polygon", "path")})
        found = {}
        for group in svg.iter(SVG + "g"):
            if group.get("class") == "node":
                lines = [text.text for text in group.iter(SVG + "text")]
                box = (lines, next(group.iter(SVG + "path")).get("stroke"))
                found.update((" ".join([lines[0], *line]), box) for line in [[], *([line] for line in lines[1:])])
        return found, sorted(text.text for text in svg.iter(SVG + "text"))

    def check_metrics(self, text):
        done = subprocess.run([PROMTOOL, "check", "metrics"], input=text.encode(), capture_output=True, timeout=120)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
        return dict(line.rsplit(" ", 1) for line in text.splitlines() if not line.startswith("#"))

    def test_the_picture_of_the_readme_is_what_map_draws(self):
        drawn = self.boxes()[1]
        shown = ElementTree.parse(ROOT / "docs/rill-map.svg")
        self.assertEqual(sorted(text.text for text in shown.iter(SVG + "text")), drawn)
        self.assertLess((ROOT / "docs/rill-map.svg").stat().st_size, 200 * 1024)
        for name in ("rill", "Adapter 1", "1000001b320a77e1", "50060e8000c3a2b2", "LUN 31", "c3t50060E8000C3A2B2d0"):
            self.assertIn(name, drawn)

    def test_trouble_is_red_and_says_why(self):
        boxes = self.boxes(troubled())[0]
        red, orange, grey = "#b3201b", "#8f5600", "#8b949c"
        for name, colour, reason in (
                ("Port 0/0 210000e08b10a3c2", red, "link down"), ("Adapter 2 it cannot be read", red, None),
                ("Port 1/3 it cannot be read", red, None), ("Remote port 1 it cannot be read", red, None),
                ("Port 1/2 1000001b320a77e2", grey, "no remote ports"), ("LUN 2 c4t50060E8000C3A2B1d2", orange, "one path left"),
                ("LUN 0 c2t50060E8000C3A2B1d0", orange, "one path left of 2"),
                ("LUN 0 c2t200400A0B8160A01d0", red, "no path left"), ("Port 1/0 1000001b320a77e0", "#8a3fa0", "online, 2 Gb/s")):
            self.assertEqual((boxes[name][1], boxes[name][0][-1]), (colour, reason or boxes[name][0][-1]), name)

    def test_a_line_is_what_one_port_sees(self):
        nameless = {"PortWWN": "0" * 16}
        host = {"hba": {"adapters": [
            adapter("2" * 16, port("21" * 8, remote(1), FabricName="0" * 16), port("22" * 8, remote(1, PortState=6), FabricName="0" * 16),
                    mappings=[mapping(f"5006{1:012x}", 0, "x" * 100)]),
            adapter("3" * 16, port("23" * 8, remote(2, **nameless, NodeWWN="0" * 16), remote(3, **nameless), FabricName="0" * 16),
                    mappings=[mapping("0" * 16, 0)]), adapter("4" * 16)]}}
        dot = self.tarn("map", "--keep-os-device-name", host=host)[0]
        lines = re.findall(r'^  "(.*)" -> "(.*)" \[id="[^"]*", color="(.*?)"', dot, re.M)
        calm, red, grey = "#7b8b9a", "#b3201b", "#8b949c"
        shared, unit = "remote port 5006000000000001", "5005000000000001 LUN 0"
        self.assertEqual(sorted(line for line in lines if line[0] != "host"), sorted([
            ("adapter 0", "adapter 0 port 0", calm), ("adapter 0", "adapter 0 port 1", calm),
            ("adapter 0 port 0", shared, calm), ("adapter 0 port 1", shared, red), (shared, unit, calm), (shared, unit, red),
            ("adapter 1", "adapter 1 port 0", calm), ("adapter 1 port 0", "adapter 1 port 0 remote port 0", calm),
            ("adapter 1 port 0", "adapter 1 port 0 remote port 1", calm),
            ("adapter 1 port 0 remote port 0", "0000000000000000 LUN 0", calm),
            ("adapter 1 port 0 remote port 1", "5005000000000003 LUN 0", calm)]))
        self.assertIn(("host", "adapter 2", grey), lines)
        self.assertNotIn("Array 0", dot)  # no name is no array
        self.assertIn(">" + "x" * 47 + "\u2026<", dot)

    def test_many_that_look_alike_share_a_box(self):
        dense = {"hba": {"adapters": [
            adapter(f"20{a:014x}", port(f"21{a:014x}", *(remote(r, NodeWWN="50" * 8) for r in range(16))),
                    mappings=[mapping(f"5006{r:012x}", lun) for r in range(16) for lun in range(8)]) for a in range(5)]}}
        for host, boxes, shown in ((MANY, 66, "256 logical units LUN 0 to 255"), (dense, 29, "8 logical units LUN 0 to 7"),
                                   (apart(2, 2000), 8, "2,000 array ports of 2,000 arrays")):
            found = self.boxes(host)[0]
            self.assertIn(shown, found)
            self.assertLessEqual(len({id(box) for box in found.values()}), boxes)
        self.assertEqual(len(self.tarn("map", "--all", host=apart(1, 300))[0].split("label=<<b>LUN ")), 301)

    def test_names_are_text(self):
        shown = NASTY.replace("\x1b", "\\x1b").replace("\n", "\\x0a")
        self.assertIn(shown, self.boxes(HOSTILE)[0])
        values = self.check_metrics(self.tarn("metrics", host=HOSTILE)[0])
        hosts = [name for name in values if name.startswith("tarn_host_info")]
        value = re.search(r'hostname="((?:[^"\\]|\\.)*)"', hosts[0])[1]
        self.assertEqual(re.sub(r"\\(.)", r"\1", value), shown)
        self.assertEqual(values['tarn_filesystem_bytes{mountpoint="/<\\\\\\"\u00e9",device="dev",fstype="ufs",'
                                'kind="available"}'], "0")
        store = self.folder / "network.db"
        self.tarn("san", "load", "--db", store, self.folder / "host.json")
        values = self.check_metrics(self.tarn("san", "metrics", "--db", store)[0])
        self.assertEqual({re.sub(r"\\(.)", r"\1", name) for name in values if "san_host_units" in name},
                         {f'tarn_san_host_units{{host="{shown}"}}'})

    def test_metrics_and_rules(self):
        rich = json.loads((ROOT / "tests/hosts/command-line.json").read_text(encoding="utf-8"))
        values = self.check_metrics(self.tarn("metrics", host=rich)[0])
        port_0 = 'adapter="0",port="0",wwn="210000e08b010203"'
        for name, value in (
                ('tarn_memory_bytes{kind="swap_free"}', "81920"), ('tarn_processor_online{processor="5"}', "0"),
                ('tarn_cpu_ticks_total{processor="0",mode="idle"}', "3221225472"),
                ('tarn_disk_busy_seconds_total{disk="c1t0d0",instance="sd0"}', "7.5"),
                ('tarn_disk_read_bytes_total{disk="",instance="sd9"}', None),
                ('tarn_fc_port_frames_total{%s,direction="received"}' % port_0, "9223372036854775808"),
                ('tarn_fc_port_frames_total{%s,direction="transmitted"}' % port_0, None),
                ('tarn_fc_port_errors_total{%s,kind="link_failure"}' % port_0, "3"),
                ('tarn_fc_port_online{adapter="0",port="2",wwn=""}', "0"),
                ('tarn_fc_remote_ports{%s}' % port_0, "2"), ('tarn_fc_port_speed_bytes_per_second{%s}' % port_0, "212500000"),
                ('tarn_fc_remote_port_online{%s,remote_wwn="50060e8000c3a2b1"}' % port_0, "1"),
                ('tarn_lun_paths{node="",lun="16389",state="online"}', None), ('tarn_section_up{section="hba"}', "1")):
            self.assertEqual(values.get(name), value, name)
        nothing = self.check_metrics(self.tarn("metrics", host={"sysinfo": RILL["sysinfo"]})[0])
        self.assertEqual({name for name, value in nothing.items() if value == "0" and "section_up" in name},
                         {f'tarn_section_up{{section="{name}"}}' for name in ("operating-system", "cpu", "activity", "disk-io")})
        self.assertLessEqual({name.split("{")[0] for name in nothing}, {"tarn_host_info", "tarn_section_up", "tarn_check_findings"})
        untold = json.loads(json.dumps(RILL))
        untold["kstat"] = [record for record in untold["kstat"] if record["ks_name"] != "vminfo"]
        told = {name for name in self.check_metrics(self.tarn("metrics", host=untold)[0]) if "tarn_memory" in name}
        self.assertEqual(told, {'tarn_memory_bytes{kind="physical"}', 'tarn_memory_bytes{kind="physical_free"}'})
        recorded = self.check_metrics(self.tarn("--host", ROOT / "hosts/rill-cable-pulled.json", "metrics")[0])
        self.assertEqual([recorded[name] for name in (
            "tarn_host_recorded_timestamp_seconds", 'tarn_check_findings{severity="critical"}',
            'tarn_lun_path_up{node="50060e8000c3a200",lun="2",disk="c4t50060E8000C3A2B1d2",adapter="1",port="0",'
            'wwn="1000001b320a77e0",remote_wwn="50060e8000c3a2b1"}')], ["1134383021", "1", "1"])
        self.assertEqual(recorded['tarn_disk_info{disk="c1t1d0",instance="sd1",vendor="SEAGATE",product="ST373207LSUN72G",'
                                  'serial="0545B1A0F7",designator="naa.5000c5000a2b3d92"}'], "1")
        self.check_rules(self.check_metrics(self.tarn("metrics", host=troubled())[0]))

    def check_rules(self, values):
        """The examples' rules by the examples' proof, then on the numbers of a host in trouble."""
        rules = ROOT / "examples/prometheus/rules.yml"
        subprocess.run([PROMTOOL, "test", "rules", rules.with_name("rules-test.yml")], check=True, capture_output=True)
        test = {"rule_files": [str(rules)], "tests": [{
            "interval": "1m", "input_series": [{"series": name, "values": f"{value}x30"} for name, value in values.items()],
            "promql_expr_test": [{"expr": f'count(ALERTS{{alertname="{alert}",alertstate="firing"}})', "eval_time": "25m",
                                  "exp_samples": [{"labels": "{}", "value": number}]}
                                 for alert, number in (("FibreChannelPortOffline", 2), ("LogicalUnitLost", 2),
                                                       ("LogicalUnitWithoutSpare", 3), ("HostInTrouble", 1),
                                                       ("FileSystemNearlyFull", 1))]}]}
        (self.folder / "test.yml").write_text(json.dumps(test), encoding="utf-8")
        done = subprocess.run([PROMTOOL, "test", "rules", self.folder / "test.yml"], capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_a_file_is_made_whole_or_not_at_all(self):
        target = self.folder / "map.svg"
        target.write_text("before")
        path = self.folder / "bin"  # everything but dot
        path.mkdir()
        for program in os.listdir("/usr/bin"):
            if program != "dot":
                (path / program).symlink_to(Path("/usr/bin", program))
        for words, complaint, environment in (
                (["map", "--output", target], "package graphviz", {"PATH": str(path)}),
                (["map", "--format", "png"], "png is no text: --output", {}),
                (["map", "--output", "x.bmp"], "'x.bmp' ends in none of dot, svg, html", {}),
                (["map", "--output", "svg"], "'svg' ends in none", {}), (["metrics", "--output", ""], "no file named", {}),
                (["metrics", "--output", self.folder / "no/where.prom"], "no such directory", {}),
                (["metrics", "--output", self.folder], "directory", {}), (["metrics", "--output", "/dev/full"], "space", {})):
            out, err = self.tarn(*words, status=2, **environment)
            self.assertEqual((out, len(err.splitlines())), ("", 1), err)
            self.assertIn(complaint, err.replace("Is a d", "d"))
        self.assertEqual(target.read_text(), "before")
        link = self.folder / "link.svg"
        link.symlink_to("map.svg")
        self.assertEqual(self.tarn("map", "--output", link), ("", ""))
        self.assertTrue(link.is_symlink() and target.read_text().startswith("<?xml"))
        umask = os.umask(0o027)
        self.addCleanup(os.umask, umask)
        target.chmod(0o604)
        for name, rights in (("map.svg", 0o604), ("new.svg", 0o640)):
            self.tarn("map", "--output", self.folder / name)
            self.assertEqual((self.folder / name).stat().st_mode & 0o777, rights)
        self.assertEqual(sorted(os.listdir(self.folder)), ["bin", "link.svg", "map.svg", "new.svg"])
        (self.folder / "dangling").symlink_to("made")
        if os.getuid() == 0:
            os.chown(target, 12, 34)
        owner = (target.stat().st_uid, target.stat().st_gid)
        for name in ("dangling", "map.svg", "n" * 251 + ".dot"):
            for _ in range(2):
                self.tarn("map", "--format", "dot", "--output", self.folder / name)
            self.assertEqual((self.folder / name).read_text(), self.tarn("map", "--output", "-")[0])
        self.assertEqual((target.stat().st_uid, target.stat().st_gid), owner)
        self.assertTrue((self.folder / "made").exists() and (self.folder / "dangling").is_symlink())
        for name, start in (("map.png", b"\x89PNG"), ("map.pdf", b"%PDF")):
            self.tarn("map", "--output", self.folder / name)
            self.assertTrue((self.folder / name).read_bytes().startswith(start))
        self.assertEqual(self.tarn("map", "--output", "/dev/stdout", "--format", "dot"), self.tarn("map"))


if __name__ == "__main__":
    result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Exports))
    sys.exit(verdict.report(result))

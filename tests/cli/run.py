"""Runs the command line on host descriptions with known answers: python3 tests/cli/run.py PATH-TO-TARN"""

import json
import os
import pty
import random
import re
import shlex
import struct
import subprocess
import sys
import tempfile
import termios
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from fcntl import ioctl
from pathlib import Path

import questions

sys.path.append(str(Path(__file__).parents[1]))
import verdict

ROOT = Path(__file__).parents[2]
TARN = SCRATCH = None  # the command, and where the descriptions are written
ANY = object()  # what the case does not compare


@dataclass
class Case:
    """One run. With result (or picks) it is run with --json and its document compared; else its output is searched."""
    name: str
    command: str
    host: object = None  # the description: an object, or the text of a file; None: the built-in one
    result: object = ANY
    picks: dict = field(default_factory=dict)  # path into the result -> value there
    log: list = field(default_factory=list)  # "level: message"
    exception: dict | None = None
    shows: list = field(default_factory=list)  # texts of standard output for people, blanks folded
    prints: str | None = None  # all of standard output
    complains: list = field(default_factory=list)  # texts of the one line of standard error, with nothing printed
    status: int = 0
    password: str = ""
    environment: dict = field(default_factory=dict)

    def is_json(self):
        return self.result is not ANY or bool(self.picks)


# ---- A host that has something to say to every command, and what it says ---------------------------------------------

PASSWORD = "Hello world!"


def read(path):
    return json.loads((Path(__file__).parent.parent / path).read_text(encoding="utf-8"))


RICH = read("hosts/command-line.json")
RILL = read("../hosts/rill.json")
UNPLUGGED = "hosts/rill.json hosts/rill-cable-pulled.json"
LUNS = read("hosts/array-luns.json")


def raised(message):
    return {"class": "java.lang.RuntimeException", "message": message}


RESULTS = read("cli/everything.json")  # of every command that takes no argument
UNIT = "0.ports.0.discoveredPorts.0.targetMappings.{}.properties.osDeviceName"
LOGS = {"disks": ["warn: SolarisDiskDrive DKIOCGVTOC"],
        "hba": ["warn: HBA_GetDiscoveredPortAttributes call returned 1 (Error) for adapter 0 (SUNW-qlc-0)",
                "warn: HBA_GetPortStatistics call returned 2 (Not supported) for adapter 0 (SUNW-qlc-0)",
                "warn: HBA_GetAdapterPortAttributes call returned 1 (Error) for adapter 0 (SUNW-qlc-0)",
                "warn: Unable to open HBA adapter 1 (hba-1) -- status is 0 (OK) (check ownership)"]}
LOGS["report"] = LOGS["disks"] + LOGS["hba"]


def array(*luns):
    return {**RICH, "disks": [LUNS[lun] for lun in luns]}


BOTH = array("A", "B")
FEWER = array("A", "B with one drive")
REPORT = "    2  0  1  0  2   80" + "".join("%10u" * 8 % (start, 2, 7, 4, 5, 6, 7, 4294967295)
                                             for start in (100, 101, 200, 201))
FAR = "50000000000000b1"  # a remote port
ARRAY = "array A B KELVO 'Tray Array'"

HOSTS = {}  # descriptions that a command names, by the word that stands for them


def counting(seconds, disk=(0, 0, 0), cpu=(0, 0, 0, 0), port=(0, 0, 0)):
    """The word for a host with these counters, recorded at that time; -1 has all bits set."""
    word = f"@{len(HOSTS)}"
    HOSTS[word] = {
        "kstat": [{"ks_name": "sd0", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
                   "data": dict(zip(("nread", "nwritten", "rtime"), disk))},
                  {"ks_module": "cpu_stat", "ks_name": "cpu_stat0",
                   "data": dict(zip(("user", "kernel", "wait", "idle"), cpu))}],
        "hba": {"adapters": [{"name": "a", "ports": [{
            "attributes": {"PortWWN": FAR},
            "statistics": dict(zip(("TxFrames", "RxFrames", "InvalidCRCCount"), port))}]}]},
        **({"recordedAt": f"2026-11-24T10:{seconds}Z"} if seconds else {})}
    return word


def sized(total):
    """The word for a host with a file system of so many bytes; None: its size is not told."""
    word = f"@{len(HOSTS)}"
    HOSTS[word] = {"mnttab": ["d\t/u\tufs\trw\t1"],
                   "statvfs": {"/u": {"f_frsize": 1, "f_bsize": 8192, "f_blocks": total}} if total else {}}
    return word


# ---- Cases ----------------------------------------------------------------------------------------------------------

COMMANDS = [*RESULTS, "report", "array", "authenticate"]
NOWHERE = {"TARN_HOST": "/no/such/file.json"}

CASES = [
    *(Case(f"everything of {name}", name, RICH, result, log=LOGS.get(name, [])) for name, result in RESULTS.items()),
    Case("the report", "report", RICH, RESULTS, log=LOGS["report"]),
    *(Case(f"one: {command}", command, RICH, result, status=int(result is None)) for command, result in (
        ("processors 5", RESULTS["processors"][1]), ("processors 7", None), ("cpu 2", RESULTS["cpu"][1]),
        ("logical-disks /", {**RESULTS["logical-disks"][0], "totalBytes": 1024000, "availableBytes": 409600,
                             "freeBytes": 512000, "blockSize": 8192}),
        ("disk-io c1t0d0", RESULTS["disk-io"][0]), ("disk-io c9t9d9", None), ("disks c1t0d0", RESULTS["disks"][0]),
        ("disks c1t2d0", None), ("partitions c1t0d0s1", RESULTS["partitions"][1]), ("partitions c1t1d0s0", None))),
    Case("an exception", "cpu 9", RICH, None, exception=raised("kstat_lookup failed."), status=1),
    Case("an exception, for people", "cpu 9", RICH, complains=["processor 9: kstat_lookup failed."], status=1),
    *(Case(f"device names: {command}", command, RICH, log=LOGS["hba"],
           picks={UNIT.format(0): first, UNIT.format(1): second}) for command, first, second in (
               ("--keep-os-device-name hba", "/dev/rdsk/c2t50060E8000C3A2B1d5s2", "/dev/dsk/c4t1d0s0"),
               ("hba --leadville", "c2t50060E8000C3A2B1d5", "c4t1d0"),
               ("hba --force-leadville", "c2t50060E8000C3A2B1d5", "c4t1d0s0"))),
    Case("device names in the report", "report --force-leadville", RICH, log=LOGS["report"],
         picks={"hba." + UNIT.format(1): "c4t1d0s0"}),
    Case("an array", ARRAY, BOTH, REPORT),
    Case("an array in the report", f"report --{ARRAY}", BOTH, picks={"array": REPORT}, log=ANY),
    *(Case(f"password of {user}: {password}", f"authenticate {user}", RICH, accepted, log=log, password=password,
           status=0 if accepted else 3) for user, password, accepted, log in (
               ("root", PASSWORD + "\n", True, []), ("root", PASSWORD + "\nsecond line\n", True, []),
               ("root", "Hello World!\n", False, []), ("root", "", False, []), ("guest", "Anything-1\n", True, []),
               ("root", "p" * 4096 + "\n", False, []),
               ("nobody", "Anything-2\n", False, ["info: No password entry for user nobody found"]))),

    Case("the report, for people", "report", RICH, log=["warn: c1t1d0: SolarisDiskDrive DKIOCGVTOC", *LOGS["hba"]],
         shows=[
        "Host name: rill", "Platform: SUNW,V440", "Memory: 8000 KB (7.8 MiB)", "Free swap: 80 KB (80.0 KiB)",
        "/home nfs srv:/home", "5 sparcv9 1281 offline", "3221225472 75.0% 2 25 25.0% 10 10.0% 5 5.0% 60 60.0%",
        "c1t0d0 sd0 5368709120 5.0 GiB 1024 1.0 KiB 7.500 9.000", "- sd9 - 0 0 B",
        "c1t0d0 SUN72G 68.4 GiB 24 424 14089 14087 2 /pci@1f/sd@0,0", "c1t1d0 - - -",
        "c1t0d0s0 c1t0d0 0 20972736 10.0 GiB 2 root wm yes", "1 3000000000 1.4 TiB 3 swap wu no", "left out: 1",
        "├─ Port 0: online", "remote ports: 2, LUNs: 2", "HBA 0 name(SUNW-qlc-0)", "Jan 18 2006"]),
    Case("the built-in host's report", "report", log=ANY, shows=[f"── {name} ──" for name in COMMANDS[:-3]]),
    Case("the adapters, for people", "hba", RICH, log=LOGS["hba"], shows=[
        "Adapter 0: QLogic Corp., QLA2342, firmware 3.03.02, WWN 200000e08b010203",
        "├─ Port 0: online, 2 Gb/s, N port, WWN 210000e08b010203, FC ID 0x010200, fabric 100000606951abcd",
        "│ ├─ Frames: - sent, 9223372036854775808 received; !! link failures 3",
        "│ ├─ Remote port 0: online, 1 Gb/s, N port, WWN 50060e8000c3a2b1",
        "│ │ ├─ LUN 5, c2t0d5, bus 2, target 0, exported as LUN 16389",
        "│ └─ !! remote port 1 not readable", "├─ Port 1: !! LINK DOWN", "│ └─ !! counters not readable",
        "└─ !! port 2 not readable", "!! adapter 1 not readable", "--leadville shows"]),
    *(Case(f"for people: {command}: {shown}", command, host, shows=[shown]) for command, host, shown in (
        ("authenticate --help", None, "Usage: tarn authenticate"),
        ("computer-system", {"sysinfo": {"SI_HOSTNAME": "\x1b[2J\x9b"}}, "Host name: \\x1b[2J\\x9b"),
        ("logical-disks /", RICH, "/ ufs 1000.0 KiB 500.0 KiB 400.0 KiB 55.6% /dev/dsk/c1t0d0s0"),
        (ARRAY, BOTH, "0 1 B 200 2 7 4 !! 5 !! 6 !! 7 !! 4294967295 0 2 A 101 2 7"),
        (ARRAY, FEWER, "? ? B 200 2 7 4 !! 5 !! 6 !! 7 !! 4294967295 ?: the places told are those of A's drives"),
        (ARRAY, array("A without blocks"), "ask again"), (ARRAY, {}, "no drive statistics"))),
    *(Case(f"not there: {command}", command, RICH, complains=[f"tarn: no {missing}\n"], status=1)
      for command, missing in (
          ("processors 7", "processor 7"), ("disk-io nope", "disk nope"), ("disks nope", "disk nope"),
          ("partitions nope", "partition nope"))),
    *(Case(f"with a directory: {command}", command, RICH, result) for command, result in (
        ("disks /dev/rdsk/c1t0d0", RESULTS["disks"][0]), ("disk-io /dev/dsk/c1t0d0", RESULTS["disk-io"][0]),
        ("partitions /dev/rdsk/c1t0d0s1", RESULTS["partitions"][1]))),
    *(Case(f"sizes: {sizes}", "logical-disks --sizes", {
        "mnttab": ["d\t/u\tufs\trw\t1"],
        "statvfs": {"/u": dict(zip(("f_frsize", "f_blocks", "f_bfree", "f_bavail"), sizes))}},
        shows=[f"/u ufs {shown} d"]) for sizes, shown in (
            ((0, 0, 0, 0), "unknown unknown unknown -"), ((1, 1000, 100, 99), "1000 B 900 B 99 B !! 90.1%"),
            ((1, 1000, 100, 101), "1000 B 900 B 101 B 89.9%"), ((1, 10, 0, -1), "10 B 10 B 0 B !! 100.0%"))),
    Case("sizes of all", "logical-disks --sizes", RICH, picks={"0.totalBytes": 1024000, "1.totalBytes": 0}),
    Case("blank names of an adapter", "hba", {"hba": {"adapters": [{"name": "a", "ports": [{}]}]}}, log=ANY,
         shows=["Adapter 0 └─ Port 0: !! STATE UNKNOWN, speed unknown └─"]),

    *(Case(f"check: {name}", "check", host, log=ANY, status=status, shows=shown) for name, host, status, shown in (
        ("the built-in host", None, 1, ["TARN WARNING - 8 findings: 0 critical, 8 warnings warning file-system-full "
                                        "/backup: 91.9% used, 5.4 GiB available warning disk-unreadable c0t0d0"]),
        ("nothing wrong", {"sysconf": RICH["sysconf"], "kstat": []}, 0, ["TARN OK - nothing found"]),
        ("all links down", {"kstat": [], "sysconf": RICH["sysconf"], "hba": {"adapters": [{"name": "a", "ports": [
            {"attributes": {"PortState": 6}}] * 2}]}}, 2, [
                "TARN CRITICAL - 2 findings: 2 critical, 0 warnings !! critical port-not-online adapter 0 port 0"]),
        ("a call that raises", {"sysconf": RICH["sysconf"]}, 2, ["section-failed disk-io: kstat open failed."]))),
    Case("check: a drive with errors", f"check --{ARRAY}", BOTH, log=ANY, status=2, shows=[
        "drive-errors tray 0 slot 1: A counts unrecovered errors: 6, request timeouts: 7; B counts"]),
    Case("check: an array that does not count", f"check --{ARRAY}", array("A without blocks"), log=ANY, status=2,
         shows=["array-counters A: "]),
    Case("check: an array that is not there", f"check --{ARRAY}", {"sysconf": RICH["sysconf"], "kstat": []}, status=1,
         picks={"findings.0.subject": "A", "findings.1": IndexError}),
    Case("check: another limit", "check --full 92", log=ANY, status=1, picks={"findings.0.code": "disk-unreadable"}),
    *(Case(f"check refuses: {command}", command, host, complains=[complaint], status=3)
      for command, host, complaint in (
          ("check --full 101", None, "101"), ("check --full x", None, "--full: 'x' is not a number"),
          ("--odd check", None, "--odd"), ("check", "no JSON", "HOST.json"))),
    *(Case(f"a way of two ports: {states}", "paths", {"hba": {"adapters": [{
        "name": "a", "ports": [{
            "attributes": {"PortState": state, "PortWWN": f"21000000000000a{number}"},
            "discovered": [{"attributes": {"PortWWN": FAR, "NodeWWN": "50000000000000b0", "PortState": 2}}]}
            for number, state in enumerate(states)],
        "targetMapping": [{"ScsiId": {"OSDeviceName": "/dev/rdsk/c1t2d3s2"}, "FcpId": {"PortWWN": FAR}}]}]}},
        shows=[shown]) for states, shown in (
            ((2,), f"50000000000000b0 LUN 0 └─ c0t0d0: adapter 0 port 0 21000000000000a0 online → {FAR} online "),
            ((2, 2), "50000000000000b0 LUN 0 ├─"), ((2, 3), "LUN 0: !! ONE PATH LEFT ├─"),
            ((6, 3), "LUN 0: !! NO PATH LEFT ├─ c0t0d0: adapter 0 port 0 21000000000000a0 !! LINK DOWN →"))),
    Case("a disk that is mentioned by its adapter only", "disk c4t1d0", RICH, log=ANY, shows=[
        "Disk: c4t1d0 Instance: - Drive: !! cannot be opened", "no slices", " LUN 0: "]),
    *(Case(f"a disk that is known by {name} only", f"disk {name}", {
        "kstat": [{"ks_name": "sd9", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}}],
        "mnttab": ["/dev/dsk/c1t3d0s0\t/three\tufs\trw\t1"]}, picks={"name": disk}, log=ANY)
      for name, disk in (("sd9", "sd9"), ("/three", "c1t3d0"), ("/dev/rdsk/c1t3d0s2", "c1t3d0"))),
    Case("a disk with nothing but odd figures", "disk c0t0d0", {"kstat": [], "disks": [{
        "name": "c0t0d0", "geometry": {"dkg_nhead": 1}, "vtoc": {"v_asciilabel": "T", "v_part": [{"p_tag": 77}]}}]},
        shows=["Drive: T, capacity unknown", "c0t0d0s0 0 B 77 wm"], log=ANY),
    Case("ports without names", "paths", {"hba": {"adapters": [{"name": "a", "ports": [{"discovered": [{}]}],
                                                                 "targetMapping": [{}]}]}},
         shows=["unknown array LUN 0 └─ c0t0d0: adapter 0 port 0 unknown !! STATE UNKNOWN → unknown !! STATE"]),
    *(Case(f"no disk {name}", f"disk {name}", RICH, complains=[f"no disk {name}\n"], status=1)
      for name in ("nope", "/home", "/dev/dsk/", "s0")),
    Case("no disk, for programs", "disk nope", RICH, None, log=LOGS["report"], status=1),
    Case("nothing changed", "compare hosts/rill.json hosts/rill.json", result={"changes": [], "rates": None}, log=ANY),
    Case("a pulled cable", f"compare {UNPLUGGED}", status=1, result=read("cli/cable-pulled.json"), log=ANY),
    *(Case(f"a file system of {old}, then of {new} bytes", f"compare {sized(old)} {sized(new)}", status=1, log=ANY,
           prints=f"changed   file system /u: totalBytes {shown}\n") for old, new, shown in (
               (2 ** 30, 2 ** 63, "1.0 GiB → 8.0 EiB"), (2 ** 30, None, "1.0 GiB → unknown"),
               (2 ** 30, 2 ** 30 + 1, "1073741824 → 1073741825"))),
    *(Case(f"rates of {rates}", f"compare {old} {new}", picks={
        "changes": [], "rates.disks": rates and [{"diskName": "", "instanceName": "sd0", **dict(zip((
            "bytesReadPerSecond", "bytesWrittenPerSecond", "busyPercent"), rates[0]))}],
        "rates.processors": rates and [{"cpuId": 0, **dict(zip((
            "userPercent", "kernelPercent", "waitPercent", "idlePercent"), rates[1]))}],
        "rates.ports": rates and [{"port": "port " + FAR, **dict(zip((
            "framesSentPerSecond", "framesReceivedPerSecond", "errorsPerSecond"), rates[2]))}]}, log=ANY)
      for old, new, rates in (
          (counting("00:00", (0, 1, 0), (0, 0, 0, 0), (0, 0, 1)),
           counting("00:10", (5000, 1, 10 ** 9), (2, 3, 0, 5), (20, 5, 4)),
           [(500.0, 0.0, 10.0), (20.0, 30.0, 0.0, 50.0), (2.0, 0.5, 0.3)]),
          (counting("00:00", (-20, 9, 5), (2 ** 32 - 1, 0, 0, 0), (-1, 0, -1)),
           counting("00:10", (-10, 8, 5), (0, 0, 0, 3), (5, -1, 4)),
           [(1.0, None, 0.0), (25.0, 0.0, 0.0, 75.0), (None, None, 0.0)]),
          (counting("00:00", (0, 0, 0), (9, 9, 9, 9), (0, 0, 0)), counting("00:10", (0, 0, 0), (0, 0, 0, 0), (0, 0, 0)),
           [(0.0, 0.0, 0.0), (None,) * 4, (0.0, 0.0, 0.0)]))),
    *(Case(f"no rates: {name}", f"compare {old} {new}", result={"changes": [], "rates": None}, log=ANY)
      for name, old, new in (("backwards", counting("00:10"), counting("00:00")), ("at once", *[counting("00:10")] * 2),
                             ("one without a time", counting(None), counting("00:00")))),
    *(Case(f"compare refuses: {command}", command, complains=[complaint], status=2) for command, complaint in (
        ("compare hosts/rill.json", "NEW"), ("compare hosts/rill.json /no/such", "/no/such"),
        ("--host hosts/rill.json compare a b", "--host"))),

    *(Case(f"comma-separated: {command}", f"--csv {command}", RICH, log=ANY, status=status, prints=prints)
      for command, status, prints in (
          ("processors", 0, "ID,Type,MHz,State\n0,sparcv9,1281,online\n5,sparcv9,1281,offline\n"),
          ("disk-io c1t0d0", 0, "Disk,Instance,Read,Written,Busy (s),Queue last changed (s since boot)\n"
           "c1t0d0,sd0,5368709120,1024,7.500,9.000\n"),
          ("check --full 99", 2, None))),
    Case("a name beyond the first plane", "logical-disks '/😀 data'", {"mnttab": ["d\t/😀 data\tufs\trw\t1"]},
         picks={"mountPoint": "/😀 data"}),
    Case("comma-separated: quotes", "--csv logical-disks", {"mnttab": ['a"b\t/x,y\tufs\trw\t1']},
         prints='Mount point,Type,Device\n"/x,y",ufs,"a""b"\n'),
    Case("comma-separated: no row", "--csv paths", {}, prints="Node,LUN,Adapter,Port,Port WWN,Port state,Remote port,"
         "Remote port state,Device,Bus,Target,SCSI LUN\n"),
    Case("version", "--version", shows=["tarn " + re.search(
        r"project\(tarnsolaris VERSION ([^ )]+)", (ROOT / "CMakeLists.txt").read_text())[1]]),
    Case("help for a command", "help check", shows=["Usage: tarn check", "--full=PERCENT"]),
    Case("the manual page is up to date", "manual", prints=(ROOT / "docs/tarn.1").read_text()),
    Case("a password among the arguments", f"authenticate root '{PASSWORD}'", password=PASSWORD, status=2,
         complains=["the password is asked for"]),
    Case("a password that is too long", "authenticate root", RICH, password="p" * 4097, status=2,
         complains=["tarn: the password is longer than 4096 bytes\n"]),
    Case("a wrong password, for people", "authenticate root", RICH, password="Anything-3\n",
         shows=["no, that is not the password of root"], status=3),
    Case("a section's exception ends no other", "report", {"sysinfo": RICH["sysinfo"]}, log=ANY, status=1, picks={
        "computer-system": RESULTS["computer-system"], "cpu": {"exception": raised("kstat open failed.")},
        "build-date": "Jan 18 2006"}),
    Case("a section's exception, for people", "report", {"sysinfo": RICH["sysinfo"]}, log=ANY, status=1,
         shows=["Host name: rill", "!! kstat open failed.", "no host bus adapters", "Jan 18 2006"]),

    Case("help", "--help", shows=["Usage: tarn", "Exit status", *COMMANDS]),
    Case("--host comes before TARN_HOST", "build-date", RICH, "Jan 18 2006", environment=NOWHERE),
    Case("TARN_HOST names no file", "cpu", environment=NOWHERE, complains=["/no/such/file.json"], status=2),
    *(Case(f"refused: {text}", "--json report", text, complains=["😀HOST.json", *names], status=2) for text, names in (
        ("this is no JSON", ["JSON"]), ('{"kernel": {}}', ["kernel"]),
        ('{"disks": [{}, {"geometry": {"dkg_nhead": 65536}}]}', ["disks[1].geometry.dkg_nhead"]))),
    *(Case(f"bad usage: {command}", command, complains=[complaint], status=2) for command, complaint in (
        ("", "command"), ("'no\ncolour'", "unknown command 'no colour'"), ("dik", "did you mean disk?"),
        ("cpu x", "ID: 'x' is not a number"), ("cpu 3000000000", "range"), ("cpu --host", "--host"),
        ("--host '' cpu", "--host: no file"), ("--host /no/such/file cpu", "/no/such/file"),
        ("--host /dev/zero cpu", "/dev/zero: a device, not a file"),
        ("--leadville cpu", "hba"), ("cpu --leadville", "--leadville"), ("authenticate", "USER"),
        ("help nope", "nope"), ("--csv hba", "--csv"), ("--csv --json cpu", "--json"), ("--csv report", "--csv"),
        ("array A B C", "PRODUCT"), ("report --array A B", "--array"), ("report" + 2 * " --array A B C D", "once"))),
]

# ---- Running --------------------------------------------------------------------------------------------------------


def write_host(host):
    path = Path(tempfile.mkdtemp(dir=SCRATCH)) / "😀HOST.json"
    path.write_text(host if isinstance(host, str) else json.dumps(host), encoding="utf-8")
    return str(path)


def run(case):
    words = [write_host(HOSTS[word]) if word in HOSTS else word for word in shlex.split(case.command)]
    words += ["--json"] * case.is_json()
    if case.host is not None:
        words = ["--host", write_host(case.host), *words]
    return subprocess.run([TARN, *words], cwd=ROOT, input=case.password.encode(), capture_output=True, timeout=120,
                          env={**os.environ, **case.environment})


def ask(command, host=None):
    return json.loads(run(Case(command, command, host, result=None)).stdout)


def pick(value, path):
    for step in path.split("."):
        try:
            value = value[int(step)] if isinstance(value, list) else value[step]
        except LookupError as missing:
            return type(missing)
    return value


class CommandLine(unittest.TestCase):
    maxDiff = None

    def check(self, case, done):
        out, err = done.stdout.decode("utf-8"), done.stderr.decode("utf-8")
        self.assertEqual(done.returncode, case.status, out + err)
        self.assertIsNone(re.search(r"^\s+at |Exception in thread", out + err, re.M), out + err)
        if case.password:
            self.assertNotIn(case.password.splitlines()[0], out + err)
        if case.complains:
            self.assertEqual((out, len(err.splitlines())), ("", 1), err)
        elif case.prints is not None:
            self.assertEqual(out, case.prints)
        elif case.is_json():
            self.assertEqual(err, "")
            self.check_document(case, json.loads(out))
        else:
            self.check_log(case, err.splitlines())
        for text in case.shows:
            self.assertIn(text, " ".join(out.split()), out)
        for text in case.complains:
            self.assertIn(text, err)

    def check_document(self, case, document):
        self.assertEqual(list(document), ["result", "log", "exception"])
        self.check_log(case, [f"{line['level']}: {line['message']}" for line in document["log"]])
        self.assertEqual(document["exception"], case.exception)
        if case.result is not ANY:
            self.assertEqual(document["result"], case.result)
            self.assertEqual(json.dumps(document["result"]), json.dumps(case.result), "the order of the members")
        for path, value in case.picks.items():
            self.assertEqual(pick(document["result"], path), value, path)

    def check_log(self, case, log):
        if case.log is not ANY:
            # The reason that an absent user's line may end with is the platform's.
            self.assertEqual([re.sub(r"( found); .*", r"\1", line) for line in log], case.log)

    def test_the_jar_is_for_java_11_and_says_what_it_is(self):
        with zipfile.ZipFile(ROOT / "build/release/tarn.jar") as jar:
            classes = {name: jar.read(name) for name in jar.namelist() if name.endswith(".class")}
            manifest = jar.read("META-INF/MANIFEST.MF").decode().splitlines()
        self.assertGreater(len(classes), 50)
        self.assertEqual([name for name, code in classes.items() if int.from_bytes(code[6:8], "big") > 55], [])
        for line in ("Implementation-Title: tarnsolaris", "Main-Class: com.kelvo.tarn.cli.Tarn"):
            self.assertIn(line, manifest)

    def test_a_result_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([TARN, "build-date"], stdout=full, stderr=subprocess.PIPE, timeout=120)
        self.assertEqual((done.returncode, done.stderr), (2, b"tarn: the result cannot be written\n"))

    def test_a_host_on_which_every_call_fails(self):
        ports = [{"attributes": {"NumberofDiscoveredPorts": 65536}}] * 64
        host = write_host({"hba": {"adapters": [{"name": "a", "ports": ports}]}})
        with_small_heap = {**os.environ, "JDK_JAVA_OPTIONS": "-Xmx96m"}
        filled, tested = (subprocess.run([TARN, "--host", host, *words], capture_output=True, check=True, timeout=600,
                                         env=with_small_heap).stdout for words in (["--json", "hba"], ["hba-test"]))
        document = json.loads(filled)
        self.assertEqual([len(port["discoveredPorts"]) for port in document["result"][0]["ports"]],
                         [65536] * 4 + [0] * 60)
        self.assertEqual((len(document["log"]), document["log"][10000]["message"]), (10001, "and 252145 lines more"))
        self.assertEqual((tested.count(b"HBA_GetDiscovered"), tested.count(b"Ignoring")), (4 * 65536, 1))
        ports = [{"attributes": {"NumberofDiscoveredPorts": 3}}]
        host = write_host({"hba": {"adapters": [{"name": "a", "ports": ports}]}})
        checked = subprocess.run([TARN, "--host", host, "--json", "check"], capture_output=True, timeout=120).stdout
        self.assertEqual([finding["message"] for finding in json.loads(checked)["result"]["findings"]
                          if finding["code"] == "library-warning"],
                         ["HBA_GetDiscoveredPortAttributes call returned 6 (Illegal index) for adapter 0 (a) (3 times)"])

    def test_a_reader_who_has_read_enough(self):
        done = subprocess.run(["bash", "-c", f"{TARN} partitions | head -1; exit ${{PIPESTATUS[0]}}"], timeout=120,
                              capture_output=True)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_paths_and_check_follow_from_the_single_commands(self):
        seen = set()
        for seed in (31, 35, 49):
            host = questions.random_host(random.Random(seed))
            with ThreadPoolExecutor(2) as pool:
                commands = (*questions.SECTIONS, "paths", "check")
                answers = dict(zip(commands, pool.map(lambda command: ask(command, host), commands)))
                names = dict.fromkeys(disk["mountPoint"] for disk in answers["logical-disks"]["result"])
                mounts = dict(zip(names, pool.map(lambda name: ask(f"logical-disks '{name}'", host), names)))
            found = answers["check"]["result"]
            findings = [(one["severity"], one["code"], one["subject"]) for one in found["findings"]]
            seen.update(findings)
            self.assertEqual(findings, questions.check(answers, mounts), seed)
            self.assertEqual(found["state"], findings[0][0].upper(), seed)
            self.assertEqual(answers["paths"]["result"], questions.paths(answers["hba"]["result"]), seed)
        self.assertEqual({code for _, code, _ in seen}, set(questions.CODES))

    def test_a_disk_is_the_same_under_all_its_names(self):
        names = "c1t0d0 c1t0d0s0 /dev/dsk/c1t0d0s0 /dev/rdsk/c1t0d0s2 sd0 /export/home".split()
        for options in ([], ["--json"]):
            pages = {subprocess.run([TARN, *options, "disk", name], capture_output=True, check=True).stdout
                     for name in names}
            self.assertEqual(len(pages), 1)
        disk = json.loads(pages.pop())["result"]
        self.assertEqual([disk["name"], disk["instance"], disk["drive"]["properties"]["diskType"],
                          disk["io"]["bytesRead"]], ["c1t0d0", "sd0", "SUN72G", 40354447360])
        self.assertEqual([len(disk[part]) for part in ("partitions", "mounts", "paths")], [8, 4, 0])
        self.assertEqual(disk["mounts"][0]["totalBytes"], 10576969728)

    def test_the_ways_to_a_disk(self):
        for name, count in (("/oracle", 2), ("c4t50060E8000C3A2B1d2", 1), ("c4t0d2", 1)):
            disk = ask(f"disk {name}")["result"]
            self.assertEqual([(way["node"], way["lun"]) for way in disk["paths"]],
                             [("50060e8000c3a200", 2 * (2 - count))] * count)

    def test_the_cookbook(self):
        recipes = re.findall(r"```console\n(.*?)```", (ROOT / "docs/cookbook.md").read_text(), re.S)
        self.assertGreaterEqual(len(recipes), 12)
        for recipe in recipes:
            shown = ""
            for command in re.findall(r"^\$ (.*)", recipe, re.M):
                done = subprocess.run(["bash", "-c", command], cwd=ROOT, capture_output=True, text=True, timeout=120)
                shown += f"$ {command}\n{done.stdout}{done.stderr}"
            self.assertEqual(shown, recipe)

    def test_the_completion(self):
        script = ("source <(%s completion); COMP_WORDS=(tarn check --f); COMP_CWORD=2; _complete_tarn 2>&-; "
                  "echo ${COMPREPLY[@]}")
        done = subprocess.run(["bash", "-c", script % TARN], capture_output=True, text=True, timeout=120)
        self.assertEqual((done.stdout, done.stderr), ("--full\n", ""))

    def on_terminal(self, words, columns=80, answer=b"", **environment):
        """Exit status and output of a run on a terminal of that width; the answer is typed when it is asked for."""
        verdict.need_terminal(self)
        pid, terminal = pty.fork()
        if pid == 0:
            ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
            os.execve(TARN, [TARN, *words], {**os.environ, "TERM": "xterm", **environment})
        shown = b""
        try:
            while more := os.read(terminal, 1024):
                shown += more
                if answer and b"Password: " in shown:
                    os.write(terminal, answer)
                    answer = b""
        except OSError:
            pass  # the other end is closed
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode("utf-8")

    def test_a_terminal_shows_no_password(self):
        status, shown = self.on_terminal(["--host", write_host(RICH), "authenticate", "root"],
                                         answer=PASSWORD.encode() + b"\n")
        self.assertEqual(status, 0)
        self.assertNotIn(PASSWORD, shown)

    def test_a_terminal_shows_what_fits_and_trouble_in_colour(self):
        for columns, command, left_out in (
                (80, "disks", "Cylinders, Data, Alternate, Device"), (200, "disks", None), (50, "paths", None),
                (30, "disks", "Type, Capacity, Heads"), (80, "hba", None),
                (80, "array 1T54412345 1T54412346 SUN CSM200_R", "Unrecovered, !! Timeouts, !! Retries"),
                (80, "disk-io", "Busy (s), Queue last")):
            _, shown = self.on_terminal(command.split(), columns)
            lines = [re.sub("\x1b.*?m", "", line) for line in shown.splitlines() if not line.startswith("warn")]
            self.assertLessEqual(max(map(len, lines)), columns, command)
            self.assertEqual(left_out is not None, "Left out, for" in " ".join(lines), command)
            self.assertIn(left_out or "", " ".join(" ".join(lines).split()))
        red = "\x1b[31m!! ONE PATH LEFT\x1b[0m\r\n"
        self.assertIn(red, self.on_terminal(["paths"])[1])
        self.assertNotIn("\x1b", self.on_terminal(["paths"], NO_COLOR="1")[1])
        self.assertNotIn("\x1b", self.on_terminal(["--csv", "paths"])[1])


def main():
    global TARN, SCRATCH
    os.environ.update(TARN_HOST="", LC_ALL="C")
    with tempfile.TemporaryDirectory(prefix="tarn-cli-") as SCRATCH, ThreadPoolExecutor(2) as pool:
        TARN = os.path.join(SCRATCH, "tarn")  # a link works as well
        os.symlink(os.path.abspath(sys.argv[1]), TARN)
        subprocess.run([TARN, "--help"], check=True, capture_output=True)  # whatever must be built is built once
        for number, case in enumerate(CASES):
            # The runs go on two at a time while earlier ones are checked.
            future = pool.submit(run, case)
            name = "test_%03d_%s" % (number, re.sub(r"\W+", "_", case.name))
            setattr(CommandLine, name, lambda self, case=case, future=future: self.check(case, future.result()))
        result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(CommandLine))
    return verdict.report(result)


if __name__ == "__main__":
    sys.exit(main())

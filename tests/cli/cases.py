"""What the command line is to answer: a case a line, by subject, to be found by what it prints."""

import json
import re
from dataclasses import dataclass, field
from pathlib import Path

from activity import disks

ROOT = Path(__file__).parents[2]
ANY = object()  # what the case does not compare


@dataclass
class Case:
    """One run. With result (or picks) it is run with --json and its document compared; else its output is searched."""
    command: str
    host: object = None  # the description: an object, or the text of a file; None: the built-in one
    result: object = ANY
    picks: dict = field(default_factory=dict)  # path into the result -> value there
    log: list = field(default_factory=list)  # "level: message"
    exception: dict | None = None
    shows: tuple = ()  # texts of standard output for people, blanks folded
    prints: str | None = None  # all of standard output
    complains: tuple = ()  # texts of the one line of standard error, with nothing printed
    status: int = 0
    password: str = ""
    environment: dict = field(default_factory=dict)

    def is_json(self):
        return self.result is not ANY or bool(self.picks)


def gives(command, result, host=None, **more):
    return Case(command, host, result, **more)


def picks(command, values, host=None, **more):
    return Case(command, host, picks=values, **more)


def shows(command, *texts, host=None, **more):
    return Case(command, host, shows=texts, **more)


def refuses(command, *complaints, host=None, status=2, **more):
    return Case(command, host, complains=complaints, status=status, **more)


# ---- A host that has something to say to every command, and what it says ---------------------------------------------

PASSWORD = "Hello world!"


def read(path):
    return json.loads((Path(__file__).parent.parent / path).read_text(encoding="utf-8"))


RICH = read("hosts/command-line.json")
LUNS = read("hosts/array-luns.json")
RILL = read("../hosts/rill.json")
MOUNTS = read("hosts/mounts.json")  # one of which hangs
SOUND = {**MOUNTS, "statvfs": {**MOUNTS["statvfs"],
                               "/var/mail": {"f_frsize": 512, "f_blocks": 9, "f_bfree": 9, "f_bavail": 9}}}
LUNS["B silent"] = {**LUNS["B"], "scsi": {**LUNS["B"]["scsi"], "LOG SENSE 3B": re.sub(
    "(?<=0024)[0-9a-f]{72}", "0" * 72, LUNS["B"]["scsi"]["LOG SENSE 3B"])}}
BARE = {"sysconf": RICH["sysconf"], "kstat": []}  # nothing is wrong with it
NO_KSTAT = {"sysconf": RICH["sysconf"]}

RESULTS = read("cli/everything.json")  # of every command that takes no argument
UFS = RESULTS["logical-disks"][0]
DEVICE = "0.ports.0.discoveredPorts.0.targetMappings.{}.properties.osDeviceName"
DISK_LOG = ["warn: SolarisDiskDrive DKIOCGVTOC"]
HBA_LOG = ["warn: HBA_GetDiscoveredPortAttributes call returned 1 (Error) for adapter 0 (SUNW-qlc-0)",
           "warn: HBA_GetPortStatistics call returned 2 (Not supported) for adapter 0 (SUNW-qlc-0)",
           "warn: HBA_GetAdapterPortAttributes call returned 1 (Error) for adapter 0 (SUNW-qlc-0)",
           "warn: Unable to open HBA adapter 1 (hba-1) -- status is 0 (OK) (check ownership)"]
LOGS = {"disks": DISK_LOG, "hba": HBA_LOG}
KSTAT_FAILED = {"class": "java.lang.RuntimeException", "message": "kstat open failed."}
LOOKUP_FAILED = {"class": "java.lang.RuntimeException", "message": "kstat_lookup failed."}


def array(*luns):
    return {**RICH, "disks": [LUNS[lun] for lun in luns]}


BOTH = array("A", "B")
ONE_DRIVE_LESS = array("A", "B with one drive")
NOT_COUNTING = array("A without blocks")
REPORT = "    2  0  1  0  2   80" + "".join("%10u" * 8 % (start, 2, 7, 4, 5, 6, 7, 4294967295)
                                             for start in (100, 101, 200, 201))
ARRAY = "array A B KELVO 'Tray Array'"
FAR = "50000000000000b1"  # a remote port

HOSTS = {}  # descriptions that a command names, by the word that stands for them


def word(host):
    """The word for a host in a command."""
    HOSTS[f"@{len(HOSTS)}"] = host
    return list(HOSTS)[-1]


def file_system(*sizes):
    """A host with one, of these numbers of bytes a block, blocks, free and available ones; none: they are not told."""
    names = ("f_frsize", "f_blocks", "f_bfree", "f_bavail")
    return {"mnttab": ["d\t/u\tufs\trw\t1"],
            "statvfs": {"/u": {"f_bsize": sizes[0], **dict(zip(names, sizes))}} if sizes else {}}


def ports(*states):
    """A host whose ports have these states, and one logical unit behind all of them."""
    far = {"attributes": {"PortWWN": FAR, "NodeWWN": "50000000000000b0", "PortState": 2}}
    return {"hba": {"adapters": [{
        "name": "a",
        "ports": [{"attributes": {"PortState": state, "PortWWN": f"21000000000000a{number}"}, "discovered": [far]}
                  for number, state in enumerate(states)],
        "targetMapping": [{"ScsiId": {"OSDeviceName": "/dev/rdsk/c1t2d3s2"}, "FcpId": {"PortWWN": FAR}}]}]}}


def adapter(**members):
    return {"hba": {"adapters": [{"name": "a", **members}]}}


def sizes_compared(old, new, shown):
    command = f"compare {word(file_system(1, *old))} {word(file_system(*new))}"
    return shows(command, f"changed file system /u: totalBytes {shown} ", status=1, log=ANY)


def changed(values, **members):
    """What compare tells of rill with other members, by its path in the result."""
    return picks(f"compare hosts/rill.json {word({**RILL, **members})}", values, log=ANY, status=1)


def change(subject, name, was, is_):
    return {"changes": [{"subject": subject, "change": "changed", "property": name, "was": was, "is": is_}]}


def counting(second, disk=(0, 0, 0), cpu=(0, 0, 0, 0), port=(0, 0, 0), instance="sd0"):
    """The word for a host with these counters, recorded at that second or time; -1 has all bits set."""
    time = f"2026-11-24T10:00:{second:02}Z" if isinstance(second, int) else second
    return word({
        "kstat": [{"ks_name": instance, "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
                   "data": dict(zip(("nread", "nwritten", "rtime"), disk))},
                  {"ks_module": "cpu_stat", "ks_name": "cpu_stat0",
                   "data": dict(zip(("user", "kernel", "wait", "idle"), cpu))}],
        **adapter(ports=[{"attributes": {"PortWWN": FAR},
                          "statistics": dict(zip(("TxFrames", "RxFrames", "InvalidCRCCount"), port))}]),
        **({} if second is None else {"recordedAt": time})})


def rates(old, new, disk, cpu, port):
    """Ten seconds lie between the two; what is per second, and of a processor in per cent. No numbers: it was reset."""
    return picks(f"compare {counting(0, *old)} {counting(10, *new)}", {
        "changes": [],
        "rates.disks": [{"diskName": "", "instanceName": "sd0", "reset": not disk, **dict(zip(
            ("bytesReadPerSecond", "bytesWrittenPerSecond", "busyPercent"), disk or (None,) * 3))}],
        "rates.processors": [{"cpuId": 0, **dict(zip(
            ("userPercent", "kernelPercent", "waitPercent", "idlePercent"), cpu))}],
        "rates.ports": [{"port": "port " + FAR, "reset": not port, **dict(zip(
            ("framesSentPerSecond", "framesReceivedPerSecond", "errorsPerSecond"), port or (None,) * 3))}]}, log=ANY)


def no_rates(old, new, reason):
    return picks(f"compare {old} {new}", {"changes": [], "rates": {
        "seconds": None, "reason": reason, "disks": [], "processors": [], "ports": []}}, log=ANY)


# ---- Cases ----------------------------------------------------------------------------------------------------------

SECTIONS = [*RESULTS, "report"]
NOWHERE = {"TARN_HOST": "/no/such/file.json"}
ODD_DISK = {"kstat": [], "disks": [{"name": "c0t0d0", "geometry": {"dkg_nhead": 1},
                                    "vtoc": {"v_asciilabel": "T", "v_part": [{"p_tag": 77}]}}]}
FEW_DISKS = {"kstat": [{"ks_name": "sd9", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}}],
             "mnttab": ["/dev/dsk/c1t3d0s0\t/three\tufs\trw\t1"]}
BUSY = {"kstat": [{"ks_name": "sd0", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
                   "data": {"rtime": 9223372036854775808, "wlastupdate": -1}}]}

FULL = {**RILL["statvfs"], "/oracle": {**RILL["statvfs"]["/oracle"], "f_bfree": 0, "f_bavail": 0}}
MANY_PATHS = word(adapter(  # all of one unit
    ports=[{"discovered": [{"attributes": {"PortWWN": FAR}}]}], targetMapping=[
        {"ScsiId": {"ScsiTargetNumber": number}, "FcpId": {"PortWWN": FAR}} for number in range(65536)]))

VOLUME = "naa.60060e8004c3a2000000c3a200000100"
PSEUDO_DEVICE = {**RILL, "mnttab": [*RILL["mnttab"], "/dev/dsk/emcpower0g\t/u09\tufs\trw\t1"], "disks": [
    *(disk for disk in RILL["disks"] if disk["name"] != "emcpower0"),
    {"name": "emcpower0", "slices": ["g", "s2"], "path": "/pseudo/emcp@0", "scsi": next(
        disk["scsi"] for disk in RILL["disks"] if disk["name"] == "c3t50060E8000C3A2B2d0")}]}


def other_volume(old, new):
    """The word for rill with other bytes in what its disks answer."""
    return word({**RILL, "disks": json.loads(json.dumps(RILL["disks"]).replace(old, new))})


OTHER_VOLUME = other_volume("c3 a2 00 00 01 00", "c3 a2 00 00 05 00")
NO_DESIGNATORS = other_volume('"00 00 00 03 00 80 83"', '"00 00 00 02 00 80"')

STEERING = {"mnttab": ["@\x1b\u202e\t=1+1\tufs\trw\t1", "b\t-5\tnfs\trw\t1"]}

CASES = [
    # Each command, and the report of all
    *(gives(name, result, RICH, log=LOGS.get(name, [])) for name, result in RESULTS.items()),
    gives("report", RESULTS, RICH, log=DISK_LOG + HBA_LOG),
    shows("report", *(f"── {name} ──" for name in RESULTS), log=ANY),
    shows("report", "Host name: rill", "Platform: SUNW,V440", "Memory: 8000 KB (7.8 MiB)",
          "Free swap: 80 KB (80.0 KiB)", "/home nfs srv:/home", "5 sparcv9 1281 offline",
          "3221225472 75.0% 2 25 25.0% 10 10.0% 5 5.0% 60 60.0%",
          "c1t0d0 sd0 5368709120 5.0 GiB 1024 1.0 KiB 7.500 9.000", "- sd9 - 0 0 B",
          "c1t0d0 SUN72G 68.4 GiB 24 424 14089 14087 2 /pci@1f/sd@0,0", "c1t1d0 - - -",
          "c1t0d0s0 c1t0d0 0 20972736 10.0 GiB 2 root wm yes", "1 3000000000 1.4 TiB 3 swap wu no", "left out: 1",
          "├─ Port 0: online", "remote ports: 2, LUNs: 2", "HBA 0 name(SUNW-qlc-0)", "Jan 18 2006",
          host=RICH, log=["warn: c1t1d0: SolarisDiskDrive DKIOCGVTOC", *HBA_LOG]),
    picks("report", {"computer-system": RESULTS["computer-system"], "cpu": {"exception": KSTAT_FAILED},
                     "build-date": "Jan 18 2006"}, {"sysinfo": RICH["sysinfo"]}, log=ANY, status=1),
    shows("report", "Host name: rill", "!! kstat open failed.", "no host bus adapters", "Jan 18 2006",
          host={"sysinfo": RICH["sysinfo"]}, log=ANY, status=1),

    # The one that an argument names
    gives("processors 5", RESULTS["processors"][1], RICH),
    gives("processors 7", None, RICH, status=1),
    gives("cpu 2", RESULTS["cpu"][1], RICH),
    gives("cpu 9", None, RICH, exception=LOOKUP_FAILED, status=1),
    gives("logical-disks /", {**UFS, "totalBytes": 1024000, "availableBytes": 409600, "freeBytes": 512000,
                              "blockSize": 8192}, RICH),
    gives("disk-io c1t0d0", RESULTS["disk-io"][0], RICH),
    gives("disk-io /dev/dsk/c1t0d0", RESULTS["disk-io"][0], RICH),
    gives("disk-io c9t9d9", None, RICH, status=1),
    gives("disks c1t0d0", RESULTS["disks"][0], RICH),
    gives("disks /dev/rdsk/c1t0d0", RESULTS["disks"][0], RICH),
    gives("disks c1t2d0", None, RICH, status=1),
    gives("partitions c1t0d0s1", RESULTS["partitions"][1], RICH),
    gives("partitions /dev/rdsk/c1t0d0s1", RESULTS["partitions"][1], RICH),
    gives("partitions c1t1d0s0", None, RICH, status=1),
    refuses("cpu 9", "processor 9: kstat_lookup failed.", host=RICH, status=1),
    refuses("processors 7", "tarn: no processor 7\n", host=RICH, status=1),
    refuses("disk-io nope", "tarn: no disk nope\n", host=RICH, status=1),
    refuses("disks nope", "tarn: no disk nope\n", host=RICH, status=1),
    refuses("partitions nope", "tarn: no partition nope\n", host=RICH, status=1),
    shows("computer-system", "Host name: \\x1b[2J\\x9b", host={"sysinfo": {"SI_HOSTNAME": "\x1b[2J\x9b"}}),
    shows("disk-io", "- sd0 0 0 B 0 0 B 9223372036.855 -", host=BUSY),

    # File systems
    picks("logical-disks '/😀 data'", {"mountPoint": "/😀 data"}, {"mnttab": ["d\t/😀 data\tufs\trw\t1"]}),
    shows("logical-disks /", "/ ufs 1000.0 KiB 500.0 KiB 400.0 KiB 55.6% /dev/dsk/c1t0d0s0", host=RICH),
    shows("logical-disks --sizes", "/u ufs unknown unknown unknown - d", host=file_system(0, 0, 0, 0)),
    shows("logical-disks --sizes", "/u ufs 1000 B 900 B 99 B !! 90.1% d", host=file_system(1, 1000, 100, 99)),
    shows("logical-disks --sizes", "/u ufs 1000 B 900 B 101 B 89.9% d", host=file_system(1, 1000, 100, 101)),
    shows("logical-disks --sizes", "/u ufs 10 B 10 B 0 B !! 100.0% d", host=file_system(1, 10, 0, -1)),
    picks("logical-disks --sizes", {"0.totalBytes": 1024000, "1.totalBytes": 0}, RICH),
    shows("logical-disks", "/ ufs /dev/dsk/c1t0d0s0 --sizes shows how large and how full they are Left out: 5 mounts "
          "of ZFS and VxFS (--all shows them) Left out: 4 mounts of other kinds (ctfs, proc, tmpfs)", host=MOUNTS),
    shows("logical-disks", "no logical disks Left out: 1 mount of ZFS", host={"mnttab": ["a\t/\tzfs\trw\t1"]}),
    shows("logical-disks --all", "/export/home zfs 9.8 MiB 9.8 MiB 0 B !! 100.0% pool/home",
          "/var/mail zfs not told not told not told - pool/mail /gone zfs unknown unknown unknown - pool/gone Left "
          "out: 4 mounts of other", host=MOUNTS),
    picks("logical-disks --all", {"0.blockSize": 8192, "1.totalBytes": 10240000, "3.mountPoint": "/var/spool",
                                  "4.freeBytes": 4608, "6": IndexError}, SOUND),
    gives("logical-disks /gone", {"device": "pool/gone", "mountPoint": "/gone", "fileSystemType": "zfs",
                                  **dict.fromkeys(("totalBytes", "availableBytes", "freeBytes", "blockSize"))}, SOUND),
    refuses("logical-disks /tmp", "Logical Disk Not Found: /tmp", host=SOUND, status=1),

    # Adapters
    picks("--keep-os-device-name hba", {DEVICE.format(0): "/dev/rdsk/c2t50060E8000C3A2B1d5s2",
                                        DEVICE.format(1): "/dev/dsk/c4t1d0s0"}, RICH, log=HBA_LOG),
    picks("hba --leadville", {DEVICE.format(0): "c2t50060E8000C3A2B1d5", DEVICE.format(1): "c4t1d0"}, RICH,
          log=HBA_LOG),
    picks("hba --force-leadville", {DEVICE.format(0): "c2t50060E8000C3A2B1d5", DEVICE.format(1): "c4t1d0s0"}, RICH,
          log=HBA_LOG),
    picks("report --force-leadville", {"hba." + DEVICE.format(1): "c4t1d0s0"}, RICH, log=DISK_LOG + HBA_LOG),
    shows("hba", "Adapter 0: QLogic Corp., QLA2342, firmware 3.03.02, WWN 200000e08b010203",
          "├─ Port 0: online, 2 Gb/s, N port, WWN 210000e08b010203, FC ID 0x010200, fabric 100000606951abcd",
          "│ ├─ Frames: - sent, 9223372036854775808 received; link failures 3",
          "│ ├─ Remote port 0: online, 1 Gb/s, N port, WWN 50060e8000c3a2b1",
          "│ │ ├─ LUN 5, c2t50060E8000C3A2B1d5, bus 2, target 0, exported as LUN 16389",
          "│ └─ !! remote port 1 not readable", "├─ Port 1: !! LINK DOWN", "│ └─ !! counters not readable",
          "└─ !! port 2 not readable", "!! adapter 1 not readable", host=RICH, log=HBA_LOG),
    shows("hba --names agent", "LUN 5, c2t0d5, bus 2", host=RICH, log=HBA_LOG),
    shows(f"hba --baseline {word(RICH)}", "received; link failures 3", host=RICH, log=HBA_LOG),
    shows(f"hba --baseline {counting(0)}", "0 received; !! CRC errors 7", host=HOSTS[counting(0, port=(0, 0, 7))], log=ANY),
    shows(f"hba --baseline {counting(0, port=(9, 0, 0))}", "0 received; CRC errors 7",
          host=HOSTS[counting(0, port=(0, 0, 7))], log=ANY),
    refuses("hba --names odd", "'odd'"),
    shows("hba", "Adapter 0 └─ Port 0: !! STATE UNKNOWN, speed unknown └─", host=adapter(ports=[{}]), log=ANY),

    # Paths
    shows("paths", "50000000000000b0 LUN 0, 1 of 1 paths online └─ c1t2d3: adapter 0 port 0 21000000000000a0 online → "
          f"{FAR} online", host=ports(2)),
    shows("paths --names agent", "50000000000000b0 LUN 0, 2 of 2 paths online ├─ c0t0d0:", host=ports(2, 2)),
    shows("paths", "LUN 0, 1 of 2 paths online: !! ONE PATH LEFT ├─", host=ports(2, 3)),
    shows("paths", "LUN 0, 0 of 2 paths online: !! NO PATH LEFT ├─ c1t2d3: adapter 0 port 0 21000000000000a0 !! LINK DOWN →",
          host=ports(6, 3)),
    shows("paths", "unknown array LUN 0, 0 of 1 paths online └─ no device: adapter 0 port 0 unknown !! STATE UNKNOWN → unknown !! STATE",
          host=adapter(ports=[{"discovered": [{}]}], targetMapping=[{}])),

    shows("paths", "50060e8000c3a200 LUN 0, 66.1 GiB, /oracle, fabric 100000606950a1c4 and 100000606950a1d8, 2 of 2 paths"),
    *(picks(f"paths {names}", {"0.node": "50060e8000c3a200", "0.lun": lun, str(count): IndexError})
      for names, lun, count in (("/oracle", 0, 1), ("C4T50060E8000C3A2B1D2", 2, 1), ("c4t0d2", 2, 1),
                                ("50060e8000c3a200", 0, 3), ("'50060E8000C3A200 LUN 3'", 3, 1),
                                ("1000001B320A77E0", 2, 1), ("'50 0a0002'", 2, 1), (VOLUME.upper(), 0, 1), ("/dev/rdsk/c4t50060E8000C3A2B1d2s2 /oracle", 0, 2))),
    picks("paths --only single", {"3.lun": 3, "4": IndexError}),
    picks("paths --only shared", {"0.lun": 31, "1.mounts": ["/oracle"], "2": IndexError}),
    gives("paths --only lost", []),
    picks("paths --only lost", {"0.paths.1.portState": 3}, ports(2, 3)),
    refuses("paths nowhere", "tarn: no paths of nowhere\n", status=1),
    refuses("paths --only odd", "'odd'"),

    # An array
    gives(ARRAY, REPORT, BOTH),
    picks(f"report --{ARRAY}", {"array": REPORT}, BOTH, log=ANY),
    shows(ARRAY, "0 1 B 200 2 7 4 !! 5 !! 6 !! 7 !! 4294967295 0 2 A 101 2 7", host=BOTH),
    shows(ARRAY, "? ? B 200 2 7 4 !! 5 !! 6 !! 7 !! 4294967295 ?: the places told are those of A's drives",
          host=ONE_DRIVE_LESS),
    shows(ARRAY, "ask again", host=NOT_COUNTING),

    # A password
    gives("authenticate root", True, RICH, password=PASSWORD + "\n"),
    gives("authenticate root", True, RICH, password=PASSWORD + "\nsecond line\n"),
    gives("authenticate root", False, RICH, password="Hello World!\n", status=3),
    gives("authenticate root", False, RICH, password="", status=3),
    gives("authenticate root", False, RICH, password="p" * 4096 + "\n", status=3),
    refuses("authenticate root", "tarn: the password is longer than 4096 bytes\n", host=RICH, password="p" * 4097),
    gives("authenticate guest", True, RICH, password="Anything-1\n"),
    gives("authenticate nobody", False, RICH, password="Anything-2\n", status=3,
          log=["info: No password entry for user nobody found"]),
    shows("authenticate root", "no, that is not the password of root", host=RICH, password="Anything-3\n", status=3),
    refuses(f"authenticate root '{PASSWORD}'", "the password is asked for", password=PASSWORD),

    # What is wrong
    shows("check", "TARN WARNING - rill, recorded ", " days ago: 9 findings: 0 critical, 9 warnings; file-system-full /backup "
          "(c1t3d0) | findings=9;;;0 critical=0;;;0 paths_min=1;;;0 '/'=31.3%;90;;0;100 ",
          "warning file-system-full /backup (c1t3d0): 91.9% used, 5.4 GiB available warning disk-unreadable c0t0d0: ",
          "single-path 50060e8000c3a200 LUN 2 (c4t50060E8000C3A2B1d2): 1 of 1 paths online: 1000001b320a77e0 → 5006",
          "shared-adapter 50060e8000c3a200 LUN 0 (c2t50060E8000C3A2B1d0, c3t50060E8000C3A2B2d0, /oracle): all", log=ANY,
          status=1),
    picks("check --ignore 'single-path:*LUN 2' --ignore 'shared-*'", {
        "host": "rill", "recordedAt": RILL["recordedAt"], "ignored": 3, "findings.0.disks": ["c1t3d0"],
        "findings.0.mounts": ["/backup"], "findings.5.subject": "50060e8000c3a200 LUN 3", "findings.6": IndexError},
        log=ANY, status=1),
    Case("check", BARE, prints="TARN OK - unnamed host: nothing found | findings=0;;;0 critical=0;;;0\n"),
    shows("check", "TARN CRITICAL - unnamed host: 2 findings: 2 critical, 0 warnings; port-not-online adapter 0 port 0 | f",
          host={**BARE, **adapter(ports=[{"attributes": {"PortState": 6}}] * 2)}, log=ANY, status=2),
    shows("check", "TARN WARNING - rill, the built-in example: ", environment={"TARN_HOST": ""}, status=1,
          log=["tarn: the built-in example rill answers; --host FILE or TARN_HOST names another"]),
    shows("metrics", "# The built-in example answers, not a host. #", environment={"TARN_HOST": ""}, log=ANY),
    shows("check --full 'a=b|c'\\''d=95' -c 99", "; file-system-full a=b\\x7cc'd | ", "'a_b_c''d'=97.0%;95;99;0;100",
          host={**BARE, "mnttab": ["d\ta=b|c'd\tufs\trw\t1"],
                "statvfs": {"a=b|c'd": {"f_frsize": 1, "f_blocks": 100, "f_bfree": 3, "f_bavail": 3}}}, status=1),
    shows("check --full /oradata=75", "'/export/home'=100.0%;90;;0;100 '/oradata'=75.0%;75;;0;100 ",
          "critical file-system-full /export/home: nothing is available warning file-system-unreadable /var/mail: it "
          "gave no sizes within 5 seconds warning file-system-unreadable /gone: the system does not tell its sizes warning "
          "file-system-full /oradata: 75.0% used, 1.0 MiB available warning file-system-full /var/spool (c1t0d0): 92",
          host=MOUNTS, status=2),
    picks("check -w 100 -c 91", {"state": "CRITICAL", "findings.0.subject": "/backup"}, log=ANY, status=2),
    picks("check --max-age 9999999d --full 99", {"findings.8": IndexError}, log=ANY, status=1),
    picks("check --max-age 36h", {"findings.0.message": "it does not say when it was recorded"}, BARE, status=1),
    picks("check --max-age 36h --full 99", {"findings.8.code": "recording-old", "findings.8.subject": "rill"}, log=ANY,
          status=1),
    picks(f"check --baseline {counting(0)}", {"findings.1.code": "port-errors", "findings.1.message": f"CRC errors up by 7, WWN {FAR}"},
          HOSTS[counting(0, port=(0, 0, 7))], log=ANY, status=1),
    shows("check --baseline hosts/rill.json --host hosts/rill-cable-pulled.json", "paths-lost 50060e8000c3a200 LUN 0 "
          "(c3t50060E8000C3A2B2d0, c2t50060E8000C3A2B1d0, /oracle): 2 paths were online, 1 are; gone: 210000e08b10a3c2 → ",
          log=ANY, status=2),
    *(shows("check --baseline hosts/rill.json", found, host=changed, log=ANY, status=2) for found, changed in (
        ("critical unit-lost 50060e8000c3a200 LUN 0 (c2t50060E8000C3A2B1d0, c3t50060E8000C3A2B2d0, /oracle): it was there",
         {**RILL, "hba": {"adapters": RILL["hba"]["adapters"][1:]}}),
        ("critical disk-lost c1t3d0 (/u02, /backup): it was there",
         {**RILL, "disks": [disk for disk in RILL["disks"] if disk["name"] != "c1t3d0"]}))),
    refuses("check --baseline /no/such", "/no/such", status=3),
    refuses("check --max-age 1w", "'1w'", status=3),
    refuses("check --ignore full", "'full'", status=3),
    refuses("check --ignore-file /no/such", "/no/such", status=3),
    refuses("check --full / --full 90", "'/'", status=3),
    refuses("check -w 90 --full 91", "all file systems", status=3),
    refuses("--host hosts/rill.json check --host hosts/rill.json", "--host", status=3),
    refuses("--json cpu --json", "--json"),
    shows("check", "section-failed disk-io: kstat open failed.", host=NO_KSTAT, log=ANY, status=2),
    shows(f"check --{ARRAY}",
          "drive-errors tray 0 slot 1: A counts unrecovered errors: 6, request timeouts: 7; B counts",
          host=BOTH, log=ANY, status=2),
    shows(f"check --{ARRAY}", "array-counters A: ", host=NOT_COUNTING, log=ANY, status=2),
    shows(f"check --{ARRAY}", "array-controller-silent B: it counts nothing", host=array("A", "B silent"), log=ANY,
          status=2),
    picks(f"check --{ARRAY}", {"findings.0.subject": "A", "findings.1": IndexError}, BARE, status=1),
    picks("check --full 92", {"findings.0.code": "disk-unreadable"}, log=ANY, status=1),
    refuses("check --full 101", "101", status=3),
    refuses("check --full x", "--full: 'x' is not a number", status=3),
    refuses("--odd check", "--odd", status=3),
    refuses("check", "HOST.json", host="no JSON", status=3),

    picks("paths /dev/dsk/emcpower0g", {"0.designator": VOLUME, "0.disk": "c2t50060E8000C3A2B1d0",
                                        "0.mounts": ["/oracle", "/u09"], "1": IndexError}, PSEUDO_DEVICE),
    shows("paths emcpower0", f"│ SUN SE9980, serial 50 0A0000, {VOLUME}, used as emcpower0 ├─", host=PSEUDO_DEVICE),

    # One disk
    *(picks(f"disk {name}", {"name": disk, "mounts.0.mountPoint": "/oracle", "mounts.1.mountPoint": "/u09",
                             "paths.1.disk": "c3t50060E8000C3A2B2d0"}, PSEUDO_DEVICE, log=ANY)
      for name, disk in (("emcpower0", "emcpower0"), ("/u09", "emcpower0"), ("/oracle", "c2t50060E8000C3A2B1d0"),
                         (VOLUME[4:], "c2t50060E8000C3A2B1d0"))),
    shows("disk /oracle", "Also: emcpower0 Vendor:", host=PSEUDO_DEVICE, log=ANY),
    picks("disk 0545b1a0c2", {"name": "c1t0d0", "identity": {
        "vendor": "SEAGATE", "product": "ST373207LSUN72G", "revision": "045A", "serial": "0545B1A0C2",
        "designator": "naa.5000c5000a2b3c41", "sizeBytes": 73394847744, "from": "device"}}, log=ANY),
    shows("disk 50:00:C5:00:0A:2B:3C:41", "Instance: sd0 Vendor: SEAGATE Product: ST373207LSUN72G Revision: 045A Serial: "
          "0545B1A0C2 Designator: naa.5000c5000a2b3c41 Size: 73394847744 bytes (68.4 GiB) Told by: the device D", log=ANY),
    refuses("disk 1T54412346", "serial number: c2t200400A0B8160A01d0, c2t200400A0B8160A01d31, c3t200500A0B", status=1),
    Case("--csv disks c1t0d0", prints="Disk,Type,Capacity,Heads,Sectors/track,Cylinders,Data,Alternate,Device,Vendor,"
         'Product,Revision,Serial,Designator,Size\nc1t0d0,SUN72G,73394847744,24,424,14089,14087,2,"/pci@1f,700000/scsi@2/'
         'sd@0,0",SEAGATE,ST373207LSUN72G,045A,0545B1A0C2,naa.5000c5000a2b3c41,73394847744\n'),
    shows("disk c4t1d0", "Disk: c4t1d0 Instance: - Drive: !! cannot be opened", "no slices", " LUN 0, ", host=RICH,
          log=ANY),
    shows("disk c0t0d0", "Drive: T, capacity unknown", "c0t0d0s0 0 B 77 wm", host=ODD_DISK, log=ANY),
    picks("disk sd9", {"name": "sd9"}, FEW_DISKS, log=ANY),
    picks("disk /three", {"name": "c1t3d0"}, FEW_DISKS, log=ANY),
    picks("disk /dev/rdsk/c1t3d0s2", {"name": "c1t3d0"}, FEW_DISKS, log=ANY),
    gives("disk nope", None, RICH, log=DISK_LOG + HBA_LOG, status=1),
    picks("disk 50:06:0E:80:00:C3:A2:00 LUN 2", {"name": "c4t50060E8000C3A2B1d2"}, log=ANY),
    refuses("disk nope", "no disk nope\n", host=RICH, status=1),
    refuses("disk /home/me", "no disk /home/me: srv:/home (nfs) is mounted there\n", host=RICH, status=1),
    refuses("disk /export/home/me", "me: pool/home (zfs) is mounted there\n", host=SOUND, status=1),
    refuses("disk /oradata", "/oradata: /dev/vx/dsk/oradg/data (vxfs) is mounted there\n", host=SOUND, status=1),
    picks("disk /var/spool/x", {"name": "c1t0d0", "mounts.1.mountPoint": "/var/spool", "mounts.1.freeBytes": 81920},
          SOUND),
    refuses("disk /md", "the metadevice /dev/md/dsk/d9 (ufs)", host={"mnttab": ["/dev/md/dsk/d9\t/md\tufs\trw\t1"]}, status=1),
    refuses("disk 50060e8000c3a2b1", "several behind it: c2t50060E8000C3A2B1d0, c4t50060E8000C3A2B1d2\n", status=1),
    shows("disk /oracle", "Busy: 35988.628 s, 1.0 % busy since boot", " online, 32.3% of the bytes └─ ", log=ANY),
    refuses("disk /dev/dsk/", "no disk /dev/dsk/\n", host=RICH, status=1),
    refuses("disk s0", "no disk s0\n", host=RICH, status=1),

    # Two descriptions
    picks("compare hosts/rill.json hosts/rill-cable-pulled.json",
          read("cli/cable-pulled.json") | {"findings.new.0.code": "port-not-online"}, log=ANY, status=1),
    sizes_compared([2 ** 30], [1, 2 ** 63], "1.0 GiB → 8.0 EiB"),
    sizes_compared([2 ** 30], [], "1.0 GiB → -"),
    sizes_compared([2 ** 30], [1, 2 ** 30 + 1], "1073741824 → 1073741825"),
    rates([(0, 1, 0), (0, 0, 0, 0), (0, 0, 1)], [(5000, 1, 10 ** 9), (2, 3, 0, 5), (20, 5, 4)],
          (500.0, 0.0, 10.0), (20.0, 30.0, 0.0, 50.0), (2.0, 0.5, 0.3)),
    rates([(-20, 9, 5), (2 ** 32 - 1, 0, 0, 0), (-1, 0, -1)], [(-10, 9, 5), (0, 0, 0, 3), (5, -1, 4)],
          (1.0, 0.0, 0.0), (25.0, 0.0, 0.0, 75.0), (None, None, 0.0)),
    rates([(0, 9, 0), (0, 0, 0, 0), (0, 0, 5000)], [(10, 8, 9), (0, 0, 0, 0), (50, 50, 900)],
          (), (None,) * 4, ()),
    rates([(7, 0, 0), (0, 0, 0, 0), (0, 0, 0)], [(7 + 2 ** 63, 0, 0), (0, 0, 0, 0), (2 ** 63 - 1, 0, 0)],
          (), (None,) * 4, ((2 ** 63 - 1) / 10, 0.0, 0.0)),
    rates([(0, 0, 0), (9, 9, 9, 9), (0, 0, 0)], [(0, 0, 0), (0, 0, 0, 0), (0, 0, 0)],
          (0.0, 0.0, 0.0), (None,) * 4, (0.0, 0.0, 0.0)),
    *(picks(f"compare {counting(0)} {counting(end, cpu=(0, 0, 0, 9))}", {"rates.processors.0.idlePercent": idle}, log=ANY)
      for end, idle in (("2027-01-12T10:00:00Z", 100.0), ("2027-01-12T10:00:01Z", None))),
    picks(f"compare {counting(0)} {counting(10, instance='sd1')}", {"rates.disks": []}, log=ANY),
    no_rates(counting(10), counting(0), "OLD is the newer of the two"),
    no_rates(*[counting(10)] * 2, "both were recorded at the same time"),
    no_rates(counting(None), counting(0), "OLD does not say when it was recorded"),
    no_rates(counting(0), counting(None), "NEW does not say when it was recorded"),
    no_rates(*[counting(None)] * 2, "neither says when it was recorded"),
    shows(f"compare {counting(0)} {counting(10, (1, 1, -1))}", "unnamed host, 2026-11-24 10:00:00 to 10:00:10 UTC nothing",
          "In the 10 seconds", "- sd0 0.1 0.1 -", log=ANY),
    shows(f"compare {counting(0, (2, 2, 2))} {counting(10, (1, 5, 5))}", "- sd0 reset reset reset CPU", log=ANY),
    changed(change("host", "hostName", "rill", "creek") | {
        "to": {"host": "creek", "recordedAt": RILL["recordedAt"]}, "rates.reason": "these are two hosts"},
        sysinfo={**RILL["sysinfo"], "SI_HOSTNAME": "creek"}),
    *(changed(change("host", "version", RILL["sysinfo"]["SI_VERSION"] + end, "Generic_118558-39" + end), **{
        member: {**RILL[member], name: "Generic_118558-39"}}) for member, name, end in
      (("sysinfo", "SI_VERSION", ""), ("uname", "version", ".5.9"))),
    changed(change("host", "totalPhysicalKB", 8388608, 4194304), sysconf={**RILL["sysconf"], "_SC_PHYS_PAGES": 524288}),
    changed(change("processor 0", "state", "online", "offline") | {
        "findings.new.0.code": "processor-offline", "findings.cleared": []},
        processors=[{**RILL["processors"][0], "pi_state": "P_OFFLINE"}, *RILL["processors"][1:]]),
    changed({"changes": [], "findings.new.0": {"severity": "critical", "code": "file-system-full", "subject": "/oracle",
             "message": "nothing is available", "disks": ["c2t50060E8000C3A2B1d0"], "mounts": ["/oracle"]},
             "usage.7.mountPoint": "/oracle", "usage.7.usedPercentAfter": 100.0}, statvfs=FULL),
    shows(f"compare {word({**RILL, 'statvfs': FULL})} {word({**RILL, 'recordedAt': '2005-12-14T09:00:00Z'})}",
          "rill, 2005-12-12 09:23:41 to 2005-12-14 09:00:00 UTC cleared critical file-system-full /oracle: nothing is "
          "available File system Used before", "/oracle 100.0% 74.7%", log=ANY, status=1),
    picks(f"compare {word({**SOUND, 'mnttab': SOUND['mnttab'][:-1]})} {word(MOUNTS)}", {
        "changes.0.subject": "file system /var/mail", "changes.0.was": 4608, "changes.0.is": None,
        "changes.1": {"subject": "file system /gone", "change": "appeared"}, "findings.new.0.subject": "/var/mail",
        "findings.cleared": [], "usage.1": {"mountPoint": "/export/home", "usedPercentBefore": 100.0,
                                            "usedPercentAfter": 100.0}, "usage.4.usedPercentAfter": None}, status=1),
    shows(f"compare {word(adapter(attributes={'Model': 'a'}))} {word(adapter())}", 'model a → ""', "no rates: neither",
          log=ANY, status=1),
    Case(f"--csv compare {counting(0, (0, 0, 9))} {counting(10, (5, -1, 8))}", log=ANY, prints="".join(
        line + "\n" for line in ("Change,Subject,Property,Was,Is", *(f"rate,disk sd0,{name},,reset" for name in (
            "bytesReadPerSecond", "bytesWrittenPerSecond", "busyPercent")), *(
            f"rate,processor 0,{name}Percent,," for name in ("user", "kernel", "wait", "idle")), *(
            f"rate,port {FAR},{name}PerSecond,,0.0" for name in ("framesSent", "framesReceived", "errors"))))),
    shows(f"compare {MANY_PATHS} {MANY_PATHS}", "recorded at unknown times nothing changed no rates: neither", log=ANY),
    refuses("compare hosts/rill.json", "NEW"),
    refuses("compare hosts/rill.json /no/such", "/no/such"),
    refuses("--host hosts/rill.json compare a b", "--host"),

    shows(f"compare hosts/rill.json {OTHER_VOLUME}", "changed disk c3t50060E8000C3A2B2d0: another disk has this name: "
          f"designator {VOLUME} →", "changed logical unit 50060e8000c3a200 LUN 0: another volume stands behind this number: "
          f"designator {VOLUME} → naa.60060e8004c3a2000000c3a200000500", log=ANY, status=1),
    picks(f"compare hosts/rill.json {NO_DESIGNATORS}", {"changes": []}, log=ANY),

    # Activity
    Case("watch 1 9 --errors", disks("sd0", "sd1", errors=(1, 3), later="ENXIO"), prints="""\
Since boot
device  r/s  w/s  kr/s  kw/s  wait  actv  wsvc_t  asvc_t  %w  %b  s/w  h/w  trn  med  nrdy  nodev  rec  ill  pfa
sd0     1.0  0.0   1.0   0.0   0.0   0.0     0.0     0.0   0   0    0    1    0    0     0      0    0    0    0
sd1     1.0  0.0   1.0   0.0   0.0   0.0     0.0     0.0   0   0    -    -    -    -     -      -    -    -    -

In 1.000 seconds
device   r/s  w/s  kr/s  kw/s  wait  actv  wsvc_t    asvc_t  %w  %b  s/w   h/w  trn  med  nrdy  nodev  rec  ill  pfa
sd0     20.0  1.0  20.0   0.0   0.0   2.1     0.0  !! 100.0   0  50    0  !! 2    0    0     0      0    0    0    0
gone since the reading before: sd1
"""),
    Case("watch 1 --slow 101 --sort r/s --top 2", disks("sd0", "sd1", "sd2", errors=(1, 3), later={"reads": 90}),
         prints="""\
Since boot
device  r/s  w/s  kr/s  kw/s  wait  actv  wsvc_t  asvc_t  %w  %b
sd0     1.0  0.0   1.0   0.0   0.0   0.0     0.0     0.0   0   0
sd1     1.0  0.0   1.0   0.0   0.0   0.0     0.0     0.0   0   0

In 1.000 seconds
device   r/s  w/s  kr/s  kw/s  wait  actv  wsvc_t  asvc_t  %w  %b
sd0     20.0  1.0  20.0   0.0   0.0   2.1     0.0   100.0   0  50  !! hard errors +2
sd1     20.0  1.0  20.0   0.0   0.0   2.1     0.0   100.0   0  50
"""),
    shows("watch 1 2", "sd0 - - - - - - - - - - counters reset", host=disks("sd0", later={"reads": 9})),
    Case("--csv watch 1 --nonzero --sort Device", disks("sd1", "sd0", later={"nread": 10240, "ks_snaptime": 2 * 10 ** 10}),
         prints="at,seconds,device,r/s,w/s,kr/s,kw/s,wait,actv,wsvc_t,asvc_t,%w,%b,instance,reset\n"
         ",10.0,sd0,1.0,0.0,1.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,sd0,false\n"
         ",10.0,sd1,1.0,0.0,1.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,sd1,false\n"
         ",10.0,sd0,4.294967286E8,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,sd0,false\n"
         ",10.0,sd1,20.0,1.0,20.0,0.0,0.0,2.1,0.0,100.0,0.0,50.0,sd1,false\n"),
    refuses("watch", "kernel statistics", host={}, status=1),
    *(refuses(f"watch {words}", complaint) for words, complaint in (
        ("0", "SECONDS: '0' is no positive number"), ("-1", "SECONDS: '-1'"), ("1s", "SECONDS: '1s'"),
        ("NaN", "SECONDS"), ("1 0", "COUNT: '0' is no positive number"), ("1 x", "COUNT: 'x' is not a number"),
        ("--sort nothing", "--sort: 'nothing' is no column; there are device r/s"),
        ("--ports --sort %b", "no column; there are port txf/s"), ("--slow 0", "--slow"), ("--top 0", "--top"),
        ("--csv --ports --units", "--csv"), ("1 2 3", "surplus argument '3'"))),

    # Comma-separated values
    Case("--csv processors", RICH, prints="ID,Type,MHz,State\n0,sparcv9,1281,online\n5,sparcv9,1281,offline\n"),
    Case("--csv disk-io c1t0d0", RICH, prints="Disk,Instance,Read,Written,Busy (s),Queue last changed (s since boot)\n"
         "c1t0d0,sd0,5368709120,1024,7.500,9.000\n"),
    shows("--csv check --full 99", "Severity,Code,Subject,Message,Disks,Mount points critical,adapter-unreadable,adapter 1,"
          "it cannot be read,, critical,port-not-online,adapter 0 port 1,link down,,", host=RICH, log=ANY, status=2),
    Case("--csv logical-disks", {"mnttab": ['a"b\t/x,y\tufs\trw\t1']},
         prints='Mount point,Type,Device\n"/x,y",ufs,"a""b"\n'),
    *(Case(f"{option} logical-disks", STEERING, prints="Mount point,Type,Device\n" + line + "\n") for option, line in (
        ("--csv", "'=1+1,ufs,'@\\x1b\\u202e\n-5,nfs,b"),
        ("--csv-raw", "=1+1,ufs,@\x1b\u202e\n-5,nfs,b"))),
    shows("logical-disks", "=1+1 ufs @\\x1b\\u202e", "-5 nfs b", host=STEERING),
    Case("logical-disks", {"mnttab": ["a\t/\u4e2d\u0301\tufs\trw\t1", "b\t/long\tufs\trw\t1"]},
         prints="Mount point  Type  Device\n/\u4e2d\u0301          ufs   a\n/long        ufs   b\n"
         "--sizes shows how large and how full they are\n"),
    Case("--csv paths", {}, prints="Node,LUN,Adapter,Port,Port WWN,Port state,Fabric,Remote port,Remote port state,Disk,"
         "Device,Bus,Target,SCSI LUN,Designator\n"),

    # Help
    shows("--help", "Usage: tarn", "Exit status", *SECTIONS, "array", "authenticate"),
    shows("help check", "Usage: tarn check", "--full=PERCENT|MOUNT=PERCENT"),
    shows("authenticate --help", "Usage: tarn authenticate"),
    shows("--version", "tarn " + re.search(r"project\(tarnsolaris VERSION ([^ )]+)",
                                           (ROOT / "CMakeLists.txt").read_text())[1]),
    Case("manual", prints=(ROOT / "docs/tarn.1").read_text()),

    # The host that answers
    gives("build-date", "Jan 18 2006", RICH, environment=NOWHERE),
    refuses("cpu", "/no/such/file.json", environment=NOWHERE),
    refuses("--json report", "😀HOST.json", "JSON", host="this is no JSON"),
    refuses("--json report", "😀HOST.json", "kernel", host='{"kernel": {}}'),
    refuses("--json report", "😀HOST.json", "disks[1].geometry.dkg_nhead",
            host='{"disks": [{}, {"geometry": {"dkg_nhead": 65536}}]}'),
    refuses("--host '' cpu", "--host: no file"),
    refuses("--host /no/such/file cpu", "/no/such/file"),
    refuses("--host /dev/zero cpu", "/dev/zero: a device, not a file"),
    refuses("cpu --host", "--host"),

    # Bad usage
    refuses("", "command"),
    refuses("'no\ncolour'", "unknown command 'no colour'"),
    refuses("dik", "did you mean disk?"),
    refuses("cpu x", "ID: 'x' is not a number"),
    refuses("cpu 3000000000", "range"),
    refuses("--leadville cpu", "hba"),
    refuses("cpu --leadville", "--leadville"),
    refuses("authenticate", "USER"),
    refuses("help nope", "nope"),
    Case("--csv hba", adapter(ports=[{"attributes": {"PortWWN": "21" * 8, "PortState": 2}}]), log=ANY, prints=(
        "Adapter,Port,Manufacturer,Model,Firmware,Port WWN,State,Speed,Type,Address,Fabric,Remote ports,Frames sent,"
        "Frames received,link failures,loss of sync,loss of signal,sequence protocol errors,invalid words,CRC errors,"
        "error frames,dumped frames\n0,0,,,,2121212121212121,online,speed unknown,,,,0,0,0,0,0,0,0,0,0,0,0\n")),
    shows("--csv disk /", "c1t0d0,sd0,", host=RILL, log=ANY),
    refuses("array X Y SUN CSM200_R", "no array of the controllers X and Y", status=1, log=ANY),
    refuses("--csv --json cpu", "--json"),
    refuses("--csv report", "--csv"),
    refuses("array A B C", "PRODUCT"),
    refuses("report --array A B", "--array"),
    refuses("report" + 2 * " --array A B C D", "once"),
]

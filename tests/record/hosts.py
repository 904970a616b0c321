"""Hosts to be recorded: those of the other tests, one that refuses every call, and random ones full of edges."""

import json
import random
from pathlib import Path

ROOT = Path(__file__).parents[2]
ARRAY = ["1T54412345", "1T54412346", "SUN", "CSM200_R"]
ERRNOS = ["EIO", "EBUSY", "ENXIO", "EACCES", "ENOTTY", "ENOTSUP", "EROFS", "250"]
CALLS = ["open", "close", "fstat", "DKIOCINFO", "DKIOCGGEOM", "DKIOCGVTOC", "USCSICMD"]
MODES = ["", " O_RDWR", " O_RDONLY", " O_RDWR|O_NDELAY", " O_RDONLY|O_NDELAY"]
COMMANDS = ["INQUIRY", "INQUIRY C0", "RECEIVE DIAGNOSTIC A0", "LOG SENSE 3B"]
WAYS = ["stat", "readlink", "ustat"] + COMMANDS + [call + mode for call in CALLS for mode in MODES]
FIELDS = {"vminfo": ["freemem", "swap_resv", "swap_avail", "updates"], "cpu": ["idle", "user", "kernel", "wait"],
          "io": ["nread", "nwritten", "rtime", "wlastupdate", "rcnt"]}


def known():
    """By name: the hosts of the other tests, as their descriptions."""
    paths = [ROOT / "hosts/rill.json", *sorted((ROOT / "tests/hosts").glob("*.json"))]
    hosts = {path.stem: json.loads(path.read_text()) for path in paths}
    sections = {"sysinfo", "kstat", "mnttab", "disks", "hba"}
    return {name: host for name, host in hosts.items() if not host or sections & host.keys()} | {"refusing": refusing()}


def refusing():
    """Each call is refused on a disk of its own, and each of the HBA library's on an adapter of its own."""
    disks = [{"name": f"c{i}t0d0", "path": f"/sd@{i}", "major": 32, "minor": 8 * i, "mounted": ["s0"], "geometry": {},
              "vtoc": {"v_asciilabel": "A b"}, "scsi": {"INQUIRY": "00"}, "fails": {way: ERRNOS[i % len(ERRNOS)]}}
             for i, way in enumerate(WAYS)]
    disks.append({**disks[0], "name": "once", "slices": ["s2"], "mounted": [],
                  "fails": {"DKIOCGGEOM O_RDWR": "EIO", "DKIOCGVTOC O_RDONLY": "EIO"}})
    statuses = (1, [2], [0, 3])
    ports = [{"status": {call: status}} for call in ("GetAdapterPortAttributes", "GetPortStatistics") for status in statuses]
    ports += [{"discovered": [{"status": {"GetDiscoveredPortAttributes": status}} for status in statuses]}]
    adapters = [{"name": f"a{i}", "ports": ports, "status": {call: status}} for i, (call, status) in enumerate(
        (call, status) for call in ("GetAdapterName", "GetAdapterAttributes", "GetFcpTargetMapping")
        for status in (1, 7, [7], [7, 7], [0, 1]))]
    return {"mnttab": ["a\t/a\tufs\trw\t1", "b\t/b\tnfs\trw\t1", "c"], "statvfs": {"/a": {"fails": "EIO"}},
            "kstat": [{"ks_name": "cpu_stat0"}, {"ks_module": "unix", "ks_name": "vminfo", "data": "EINTR"},
                      {"ks_name": "vminfo", "ks_instance": 1, "samples": [{}, {"updates": 3}]}],
            "disks": disks, "hba": {"adapters": adapters + [{"name": "shut", "openFailures": 9}]}}


class Dice(random.Random):
    def often(self, value, odds=0.7):
        return value if self.random() < odds else None

    def some(self, values, odds=0.5):
        return [value for value in values if self.random() < odds]

    def text(self, longest=40):
        return self.choice(["", "plain", "quo\"te\\", "tab\t\x01", "déjà", {"hex": "41 ff 80"}, "x" * longest,
                            {"hex": "00 41"}])

    def bytes(self, most=40):
        return self.randbytes(self.randrange(most)).hex(" ")

    def wwn(self):
        return f"50060e8000c3a2{self.randrange(6):02x}"

    def fields(self, names):
        return {name: self.choice([0, 1, 7, 2**31, 2**32 - 1]) for name in self.some(names)}

    def status(self):
        return self.choice([0, 1, 7, [7], [7, 7], [0, 1], [1], [2, 0, 3], []])


def given(**members):
    return {name: value for name, value in members.items() if value is not None}


def disk(dice, index):
    name = dice.choice([f"c{index}t0d0", f"emcpower{index}", f"s{index}s2", f"x{index}", {"hex": f"ff {index:02x}"}])
    slices = dice.choice([None, ["s0", "s1", "s2"], ["s7", "s2", "s0"], list("abc"), ["", "s2", "p0"], ["s2", "s21"]])
    if slices and dice.random() < 0.5:
        slices = [given(name=each, place=dice.often(dice.randrange(26)), minor=dice.often(dice.randrange(64), 0.3),
                        partition=dice.often(dice.randrange(9), 0.3), link=dice.often("../../else:a", 0.2),
                        rawLink=dice.often(dice.choice(["../../devices/sd@1,0:c,raw", "y" * 1500]), 0.2))
                  for each in slices]
        for each in dice.some(slices, 0.1):
            each["link"] = None
    inquiry = [("00 " * 8) + f"{vendor:<8}{product:<16}".encode().hex(" ") for vendor, product in
               (("SUN", "CSM200_R"), ("SUN", "Universal Xport"), ("ANY", "DISK"))]
    pages = {"INQUIRY": dice.choice(inquiry), "RECEIVE DIAGNOSTIC A0": dice.bytes(300), "LOG SENSE 3B": dice.bytes(300),
             "INQUIRY C0": "00 " * 112 + f"{dice.choice(ARRAY[:2]):<16}".encode().hex(" ")}
    ends = [each["name"] if isinstance(each, dict) else each for each in slices or [f"s{k}" for k in range(8)]]
    return given(
        name=name, slices=slices, path=dice.often(f"/sd@{dice.randrange(9)},0"), major=dice.randrange(3),
        minor=dice.often(dice.choice([8 * index, 2**32 - 2, dice.randrange(99)])), mounted=dice.some(ends, 0.3),
        directories=dice.often([dice.choice(["/dev/dsk", "/dev/rdsk"])], 0.2),
        geometry=dice.often({"dkg_nhead": index, "dkg_pcyl": 9, "dkg_extra": [0, 1]}),
        vtoc=dice.often({"v_asciilabel": dice.text(128), "v_part": [{"p_tag": k, "p_size": k - 3} for k in range(index % 9)]}),
        scsi={name: pages[name] for name in dice.some(COMMANDS, 0.8)},
        fails={way: dice.choice(ERRNOS + ([None] if way not in ("stat", "readlink", "ustat") else []))
               for way in dice.some(WAYS, 0.04)})


def record(dice):
    name = dice.choice(["vminfo", "vminfo", "cpu_stat0", "cpu_stat1", "sd1", "sd8", "other"])
    kind = dice.choice(["KSTAT_TYPE_RAW", "KSTAT_TYPE_RAW", "KSTAT_TYPE_IO", "KSTAT_TYPE_NAMED"])
    module = dice.choice(["unix", "cpu_stat", "sd"])
    holds = ("io" if kind == "KSTAT_TYPE_IO" else None if kind != "KSTAT_TYPE_RAW" else
             "cpu" if module == "cpu_stat" or name.startswith("cpu_stat") else "vminfo" if name == "vminfo" else None)
    samples = [dice.fields(FIELDS[holds]) if holds and dice.random() < 0.9 else "EINTR" for _ in range(dice.randrange(4))]
    return given(ks_module=module, ks_instance=dice.randrange(3), ks_name=name, ks_type=kind, samples=samples,
                 ks_class=dice.choice(["disk", "misc"]), ks_data_size=dice.often(dice.choice([8, 24, 40, 80]), 0.2))


def adapter(dice):
    def port(discovered):
        return given(attributes=given(PortWWN=dice.wwn(), PortType=dice.randrange(9), PortSymbolicName=dice.text(256),
                                      NumberofDiscoveredPorts=dice.often(dice.choice([0, 3, 70000]), 0.2)),
                     statistics=dice.often({"TxFrames": dice.choice([-1, 5])}), discovered=discovered,
                     status={call: dice.status() for call in
                             dice.some(["GetAdapterPortAttributes", "GetPortStatistics"], 0.2)})
    remote = [given(attributes={"PortWWN": dice.wwn(), "NodeWWN": dice.wwn()},
                    status=dice.often({"GetDiscoveredPortAttributes": dice.status()}, 0.2)) for _ in range(4)]
    mapping = [{"ScsiId": {"OSDeviceName": dice.choice(["/dev/rdsk/c1t0d0s2", "/devices/sd@1,0:c,raw", "c1"]),
                           "ScsiOSLun": dice.randrange(9)}, "FcpId": {"PortWWN": dice.wwn(), "FcpLun": dice.choice([0, -1])}}
               for _ in range(dice.choice([0, 3, 513]))]
    return given(name=dice.choice(["", "hba", "hba", "SUNW-qlc-0", "na\tme\x7f", {"hex": "ff"}, {"hex": "61 00 62"}]),
                 openFailures=dice.choice([0, 0, 0, 1, 2, 3]), targetMapping=mapping,
                 NumberOfEntries=dice.often(dice.choice([0, 5, 600, 2**20 + 1]), 0.2),
                 attributes=given(NodeWWN=dice.wwn(), Model=dice.text(256), NumberOfPorts=dice.often(3, 0.3)),
                 ports=[port(dice.some(remote)) for _ in range(dice.randrange(4))],
                 status={call: dice.status() for call in
                         dice.some(["GetAdapterName", "GetAdapterAttributes", "GetFcpTargetMapping"], 0.15)})


def anything(seed):
    """A random host."""
    dice = Dice(seed)
    disks = [disk(dice, i) for i in range(1, dice.randrange(2, 40))]
    dice.shuffle(disks)
    listed = [each["name"] + (end if isinstance(end, str) else end["name"]) for each in disks
              for end in each.get("slices", ["s0", "s5"]) if isinstance(each["name"], str) and "directories" not in each]
    mounts = ["/", "/é", "/a b", "/x\x01", "/gone"]
    lines = [f"d{i}\t{dice.choice(mounts)}\t{dice.choice(['ufs', 'nfs', 'tmpfs'])}\trw\t1" for i in range(8)]
    return given(
        sysinfo={name: dice.text(300) for name in dice.some(["SI_SYSNAME", "SI_HOSTNAME", "SI_PLATFORM", "SI_VERSION"], 0.8)},
        uname=dice.often({name: dice.text(257) for name in ("sysname", "nodename", "release", "version")}),
        sysconf=given(_SC_PAGESIZE=dice.often(8192), _SC_NPROCESSORS_CONF=dice.often(dice.randrange(-1, 6)),
                      _SC_CPUID_MAX=dice.often(dice.randrange(9)), _SC_PHYS_PAGES=dice.often(-1)),
        processors=[{"id": i, "pi_state": dice.choice(["P_ONLINE", "P_SPARE", 99]), "pi_processor_type": dice.text(16)}
                    for i in dice.some(range(-1, 9))],
        kstat=dice.often([record(dice) for _ in range(dice.randrange(30))], 0.9),
        mnttab=dice.often(lines + dice.some(["too\tfew", "x" * 2000, {"hex": "ff 09 ff 09 75 66 73 09 09"}], 0.3), 0.9),
        statvfs={path: {"f_frsize": 512, "f_blocks": dice.choice([9, 2**64 - 1])} for path in mounts[:4]}
        | {"/a b": {"fails": "EACCES"}},
        disks=disks, listings=dice.often({"/dev/rdsk": dice.sample(listed, len(listed) // 2), "/dev/dsk": []}, 0.5),
        entries=[{"path": "/dev/dsk/plain"}, {"path": "/dev/rdsk/plain", "position": "first"},
                 {"path": "/dev/rdsk/strays2", "link": "../../nowhere:c,raw"},
                 {"path": "/dev/rdsk/alias9s2", "link": "../../devices/sd@1,0:c,raw"},
                 {"path": "/dev/dsk/alias9s0", "link": "../../devices/sd@1,0:a"}],
        hba=dice.often(given(adapters=[adapter(dice) for _ in range(dice.randrange(6))],
                             NumberOfAdapters=dice.often(dice.choice([7, 5000]), 0.2)), 0.9))

"""What paths and check have to say of a host, worked out from the answers of the single commands; and hosts for it."""

from collections import defaultdict

ONLINE = 2
OK = [2]
ERROR = 6
CODES = ("section-failed file-system-unreadable file-system-full processor-offline disk-unreadable disk-unlabelled "
         "adapter-unreadable port-unreadable statistics-unreadable port-not-online remote-port-unreadable "
         "remote-port-not-online single-path library-warning").split()
SECTIONS = ("logical-disks", "processors", "disk-io", "disks", "hba")


def properties(instance):
    return instance["properties"] if instance else {}


def walk(adapters):
    """The ports and remote ports that the library has a record of, with where they stand."""
    for a, adapter in enumerate(adapters):
        for p, port in enumerate(adapter["ports"] if adapter else []):
            for r, remote in enumerate(port["discoveredPorts"] if port else []):
                yield (a, p, r), properties(port["instance"]), remote


def paths(adapters):
    units = defaultdict(list)
    for (a, p, _), port, remote in walk(adapters):
        far = properties(remote and remote["instance"])
        for mapping in filter(None, remote["targetMappings"] if remote else []):
            here = properties(mapping)
            units[far.get("nodeWWN", ""), here["exportedLUN"]].append({
                "adapter": a, "port": p, "portWWN": port.get("permanentAddress"), "portState": port.get("portState"),
                "remotePort": far.get("permanentAddress"), "remotePortState": far.get("portState"),
                **{name: here[name] for name in ("osDeviceName", "scsiBus", "targetId", "scsiLun")}})
    return [{"node": node, "lun": lun, "paths": units[node, lun]} for node, lun in sorted(units)]


def check(documents, mounts, full=90):
    """Severity, code and subject of each finding. Documents by command; of each mount point that is listed, its own."""
    found = []
    results = {command: documents[command]["result"] for command in SECTIONS}
    found += [("critical", "section-failed", command) for command in SECTIONS if documents[command]["exception"]]
    for mount, document in mounts.items():
        disk = document["result"]
        sizes = disk and [disk[name] for name in ("totalBytes", "availableBytes", "freeBytes", "blockSize")]
        if not disk or not any(sizes):
            found.append(("warning", "file-system-unreadable", mount))
            continue
        total, available, free, _ = (size % 2 ** 64 for size in sizes)
        available = 0 if available >= 2 ** 63 else available
        used = max(0, total - free)
        if available == 0 or 100 * used >= full * (used + available):
            found.append(("critical" if available == 0 else "warning", "file-system-full", mount))
    found += [("warning", "processor-offline", str(one["processorId"])) for one in results["processors"] or []
              if one["state"] != "online"]
    drives = {properties(drive)["name"]: properties(drive) for drive in results["disks"] or []}
    counted = dict.fromkeys(one["diskName"] for one in results["disk-io"] or [] if one["diskName"])
    found += [("warning", "disk-unreadable", name) for name in counted if name not in drives]
    found += [("warning", "disk-unlabelled", name) for name, drive in drives.items() if "diskType" not in drive]
    adapters = results["hba"]
    found += [("critical", "adapter-unreadable", f"adapter {a}") for a, one in enumerate(adapters)
              if not one or not one["instance"]]
    readable = 0
    for a, adapter in enumerate(adapters):
        for p, port in enumerate(adapter["ports"] if adapter else []):
            place, status = f"adapter {a} port {p}", properties(port and port["instance"]).get("operationalStatus")
            readable += status is not None
            if status is None:
                found.append(("warning", "port-unreadable", place))
            elif status != OK:
                found.append(("critical" if ERROR in status else "warning", "port-not-online", place))
            if port and not port["statistics"]:
                found.append(("warning", "statistics-unreadable", place))
    for (a, p, r), _, remote in walk(adapters):
        status = properties(remote and remote["instance"]).get("operationalStatus")
        if status != OK:
            found.append(("warning", f"remote-port-{'unreadable' if status is None else 'not-online'}",
                          f"adapter {a} port {p} remote port {r}"))
    for unit in paths(adapters):
        if readable > 1 and sum(one["portState"] == one["remotePortState"] == ONLINE for one in unit["paths"]) < 2:
            found.append(("warning", "single-path", f"{unit['node']} LUN {unit['lun']}"))
    for command in SECTIONS:
        lines = documents[command]["log"] + (
            [line for document in mounts.values() for line in document["log"]] if command == "logical-disks" else [])
        told = [line["message"] for line in lines if line["level"] == "warn"]
        # Lines that say the same are one finding; those of disks are told apart by their disks.
        found += [("warning", "library-warning", command)] * len(told if command == "disks" else set(told))
    return sorted(found, key=lambda finding: (finding[0] != "critical", CODES.index(finding[1])))


def random_host(random):
    """A host full of edges."""
    def maybe(likely, value):
        return value if random.random() < likely else None

    def present(**members):
        return {name: value for name, value in members.items() if value is not None}

    def port_attributes(name):
        return {"PortWWN": name, "NodeWWN": random.choice(arrays), "PortState": random.choice([2, 2, 2, *range(10)])}

    arrays = ["50060e8000c3a200", "200400a0b8160a00", "0" * 16]
    remotes = ["50060e80%08x" % number for number in range(4)]
    disks = [f"c{number % 3}t{number}d0" for number in range(6)]

    def port(number):
        return {"attributes": port_attributes("2100%012x" % number),
                "discovered": [{"attributes": port_attributes(name),
                                "status": present(GetDiscoveredPortAttributes=maybe(0.15, 1))}
                               for name in random.sample(remotes, random.randrange(1, 4))],
                "status": present(GetAdapterPortAttributes=maybe(0.15, 1), GetPortStatistics=maybe(0.2, 2))}

    def mapping():
        return {"ScsiId": {"OSDeviceName": f"/dev/rdsk/{random.choice(disks)}s2", "ScsiOSLun": random.randrange(4),
                           "ScsiBusNumber": random.randrange(9)},
                "FcpId": {"PortWWN": random.choice(remotes), "FcpLun": random.choice([0, 1, 2, 0x8001, 0xffff]) << 48}}

    def sizes():
        total = random.choice([0, 1000, 1001, 100000, 2 ** 53, 2 ** 54])
        free = random.choice([0, total // 10, total // 10, total // 2, total + 1])
        available = random.choice([0, free, free, free - 1, total // 11, 2 ** 54 - 1, 2 ** 53])
        return {"f_bsize": random.choice([0, 8192]), "f_frsize": 1024, "f_blocks": total, "f_bfree": free,
                "f_bavail": max(0, available)}

    mounts = random.sample(["/", "/u01", "/u02", "/export/home", "/\u00fcbung"], random.randrange(1, 5))
    return present(
        sysconf=maybe(0.9, {"_SC_NPROCESSORS_CONF": 3, "_SC_CPUID_MAX": 7}),
        processors=[{"id": number, "pi_state": random.choice(["P_ONLINE", "P_OFFLINE", "P_POWEROFF"])}
                    for number in random.sample(range(8), 3)],
        kstat=maybe(0.8, [{"ks_name": f"sd{number}", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}}
                          for number in random.sample(range(9), 6)]),
        mnttab=maybe(0.9, [f"/dev/dsk/{random.choice(disks)}s0\t{mount}\tufs\trw\t1" for mount in mounts + mounts[:1]]),
        statvfs={mount: sizes() for mount in mounts if random.random() < 0.8},
        disks=[present(name=name, path=f"/pci@1f/sd@{number},0", major=32, minor=8 * number,
                       geometry=maybe(0.8, {"dkg_nhead": 2}), vtoc=maybe(0.8, {"v_asciilabel": "SUN72G cyl"}),
                       fails=maybe(0.2, {"open": "EBUSY"})) for number, name in enumerate(disks)],
        hba={"adapters": [present(name=f"hba-{number}", openFailures=maybe(0.2, 2),
                                  attributes={"NodeWWN": "2000%012x" % number},
                                  ports=[port(4 * number + each) for each in range(random.randrange(1, 5))],
                                  targetMapping=[mapping() for _ in range(random.randrange(12))],
                                  status=present(GetAdapterAttributes=maybe(0.1, 1)))
                          for number in range(random.randrange(4))]})

"""What paths and check have to say of a host, worked out from the answers of the single commands; and hosts for it."""

from collections import defaultdict

ONLINE = 2
OK = [2]
ERROR = 6
CODES = ("section-failed unit-lost disk-lost file-system-unreadable file-system-full processor-offline disk-unreadable "
         "disk-unlabelled adapter-unreadable port-unreadable statistics-unreadable port-not-online port-slow port-errors "
         "duplicate-wwn remote-port-unreadable remote-port-not-online single-path paths-lost fewer-paths shared-adapter "
         "shared-fabric shared-array-port library-warning").split()
COUNTERS = ("linkFailures lossOfSyncCounter lossOfSignalCounter primitiveSeqProtocolErrCount invalidTransmissionWords "
            "crcErrors errorFrames dumpedFrames packetsTransmitted packetsReceived lipCount nosCount").split()
ERRORS = COUNTERS[:8]
NO_NAME = "0" * 16
SECTIONS = ("logical-disks", "processors", "disk-io", "disks", "hba")


def properties(instance):
    return instance["properties"] if instance else {}


def walk(adapters):
    """The ports and remote ports that the library has a record of, with where they stand."""
    for a, adapter in enumerate(adapters):
        for p, port in enumerate(adapter["ports"] if adapter else []):
            for r, remote in enumerate(port["discoveredPorts"] if port else []):
                yield (a, p, r), properties(port["instance"]), remote


def paths(adapters, own, disks, mounted, volumes):
    """Units of the adapters; the same with the HBA library's own device names, the drives, the file systems, and the
    designators of disks."""
    drives = {properties(drive)["name"]: properties(drive) for drive in disks or []}
    units = defaultdict(list)
    for ((a, p, _), port, remote), (_, _, other) in zip(walk(adapters), walk(own)):
        far = properties(remote and remote["instance"])
        fabric = port.get("fabricName", "").replace(NO_NAME, "")
        for mapping, named in zip(*(each["targetMappings"] if each else [] for each in (remote, other))):
            here = properties(mapping)
            names = properties(named)["osDeviceName"].rpartition("/")[2][:-2], here["osDeviceName"]
            units[far.get("nodeWWN", ""), here["exportedLUN"]].append({
                "adapter": a, "port": p, "portWWN": port.get("permanentAddress"), "portState": port.get("portState"),
                "fabric": fabric, "remotePort": far.get("permanentAddress"), "remotePortState": far.get("portState"),
                "osDeviceName": here["osDeviceName"], "disk": next((name for name in names if name in drives), None),
                **{name: here[name] for name in ("scsiBus", "targetId", "scsiLun")}})
    found = []
    for (node, lun), ways in sorted(units.items()):
        names = list(dict.fromkeys(way["disk"] for way in ways if way["disk"]))
        size = names and drives[names[0]]
        size = size and 512 * size["heads"] * size["sectorsPerTrack"] * size["dataCylinders"]
        volume = next((volumes[name] for name in names if name in volumes), None)
        same = [name for name in drives if volume and volumes.get(name) == volume and name not in names]
        found.append({"node": node, "lun": lun, "designator": volume, "disk": names[0] if names else None,
                      "sizeBytes": size or None,
                      "mounts": list(dict.fromkeys(one["mountPoint"] for name in names + same for one in mounted or []
                                                   if one["device"] == f"/dev/dsk/{name}s0")), "paths": ways})
    return found


def online(unit):
    """By the names of the two ports, or its place for want of one; of those that are listed twice, the first."""
    return {(way["portWWN"] if way["portWWN"] != NO_NAME else (way["adapter"], way["port"]), way["remotePort"]): way
            for way in reversed(unit["paths"]) if way["portState"] == way["remotePortState"] == ONLINE}.values()


def told(document, command):
    return document[command]["result"] or []


def check(documents, mounts, before, full=90):
    """Severity, code and subject of each finding. Documents by command; of each mount point that is listed, its own; the
    documents of the baseline."""
    found = []
    results = {command: documents[command]["result"] for command in SECTIONS}
    found += [("critical", "section-failed", command) for command in SECTIONS if documents[command]["exception"]]
    for mount, document in mounts.items():
        disk = document["result"]
        sizes = disk and [disk[name] for name in ("totalBytes", "availableBytes", "freeBytes", "blockSize")]
        if not disk or sizes[0] is None or sizes[3] == 0 and not any(sizes):
            found.append(("warning", "file-system-unreadable", mount))
            continue
        total, available, free = (size % 2 ** 64 for size in sizes[:3])
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
    found += [("critical", "disk-lost", properties(drive)["name"]) for drive in told(before, "disks")
              if properties(drive)["name"] not in drives]
    adapters = results["hba"]
    found += [("critical", "adapter-unreadable", f"adapter {a}") for a, one in enumerate(adapters)
              if not one or not one["instance"]]
    readable, names, live = 0, set(), []
    counted = {properties(port["instance"]).get("permanentAddress"): properties(port["statistics"])
               for adapter in reversed(told(before, "hba")) for port in reversed(adapter["ports"] if adapter else [])
               if port}
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
            here = properties(port and port["instance"])
            name, was, now = here.get("permanentAddress"), None, properties(port and port["statistics"])
            if here and 1 < here["speed"] < here["maxSpeed"]:
                found.append(("warning", "port-slow", place))
            if name in names:
                found.append(("warning", "duplicate-wwn", place))
            names |= {name} - {None, NO_NAME}
            live += [(a, here.get("fabricName"))] * (here.get("portState") == ONLINE)
            was = counted.get(name) if name not in (None, NO_NAME) else None
            changes = {key: now[key] - was[key] for key in COUNTERS if 2 ** 64 - 1 not in (now[key], was[key])} \
                if was and now else {}
            if min(changes.values(), default=0) >= 0 and any(changes.get(key, 0) for key in ERRORS):
                found.append(("warning", "port-errors", place))
    for (a, p, r), _, remote in walk(adapters):
        status = properties(remote and remote["instance"]).get("operationalStatus")
        if status != OK:
            found.append(("warning", f"remote-port-{'unreadable' if status is None else 'not-online'}",
                          f"adapter {a} port {p} remote port {r}"))
    units = told(documents, "paths")
    most, ends = defaultdict(int), defaultdict(set)
    for unit in units:
        most[unit["node"]] = max(most[unit["node"]], len(online(unit)))
        ends[unit["node"]] |= {way["remotePort"] for way in online(unit)}
    old = {(unit["node"], unit["lun"]): unit for unit in told(before, "paths")}
    several = {key: len({one[place] for one in live} - {NO_NAME}) > 1 for place, key in enumerate(("adapter", "fabric"))}
    for unit in units:
        subject, ways = f"{unit['node']} LUN {unit['lun']}", online(unit)
        was = len(online(old.pop((unit["node"], unit["lun"]), {"paths": []})))
        one = {key: len({way[key] for way in ways}) == 1 for key in ("adapter", "fabric", "remotePort")}
        flaws = {"single-path": readable > 1 and len(ways) < 2, "fewer-paths": 1 < len(ways) < most[unit["node"]]}
        if len(ways) > 1:
            flaws.update({"shared-adapter": one["adapter"] and several["adapter"],
                          "shared-fabric": one["fabric"] and several["fabric"] and any(way["fabric"] for way in ways),
                          "shared-array-port": one["remotePort"] and len(ends[unit["node"]]) > 1})
        found += [("warning", code, subject) for code, flaw in flaws.items() if flaw]
        if len(ways) < was:
            found.append(("critical" if 2 * len(ways) < was else "warning", "paths-lost", subject))
    found += [("critical", "unit-lost", f"{node} LUN {lun}") for node, lun in old]
    for command in SECTIONS:
        lines = documents[command]["log"] + (
            [line for document in mounts.values() for line in document["log"]] if command == "logical-disks" else [])
        if command != "disks":  # where each is about a drive without a type, which is a finding itself
            messages = {line["message"] for line in lines if line["level"] == "warn"}  # the same text is one finding
            found += [("warning", "library-warning", command)] * len(messages)
    return sorted(found, key=lambda finding: (finding[0] != "critical", CODES.index(finding[1])))


def random_host(random):
    """A host full of edges."""
    def maybe(likely, value):
        return value if random.random() < likely else None

    def present(**members):
        return {name: value for name, value in members.items() if value is not None}

    def port_attributes(name):
        return {"PortWWN": name, "NodeWWN": random.choice([arrays[int(name, 16) % 2]] * 9 + arrays),
                "PortState": random.choice([2] * 40 + [*range(10)]),
                "FabricName": random.choice(arrays[:2] * 3 + arrays), "PortSpeed": random.choice([0, 1, 2, 4]),
                "PortSupportedSpeed": random.choice([0, 1, 2, 4])}

    arrays = ["50060e8000c3a200", "200400a0b8160a00", "0" * 16]
    remotes = ["50060e80%08x" % number for number in range(3)]
    disks = [f"c{number % 3}t{number}d0" for number in range(6)]

    def port(number):
        name = random.choice(["2100%012x" % number] * 9 + ["2100%012x" % 0, "0" * 16])
        return {"attributes": port_attributes(name),
                "statistics": {key: random.choice([-1, 0, 1, 7]) for key in ("InvalidCRCCount", "LIPCount")},
                "discovered": [{"attributes": port_attributes(name),
                                "status": present(GetDiscoveredPortAttributes=maybe(0.07, 1))}
                               for name in random.choices(remotes, k=random.randrange(1, 5))],
                "status": present(GetAdapterPortAttributes=maybe(0.07, 1), GetPortStatistics=maybe(0.1, 2))}

    def mapping():
        return {"ScsiId": {"OSDeviceName": f"/dev/rdsk/{random.choice(disks)}s2", "ScsiOSLun": random.randrange(4),
                           "ScsiBusNumber": random.randrange(9)},
                "FcpId": {"PortWWN": random.choice(remotes), "FcpLun": random.choice([0, 1, 2, 0x8001, 0xffff]) << 48}}

    def pages():
        volume = f"600a0b80{random.randrange(5):024x}"
        return {"INQUIRY": "00000502" + 32 * "00", "INQUIRY 00": "000000020083", "INQUIRY 83": "0083001401030010" + volume}

    def sizes():
        total = random.choice([0, 1000, 1001, 100000, 2 ** 53, 2 ** 54])
        free = random.choice([0, total // 10, total // 10, total // 2, total + 1])
        available = random.choice([0, free, free, free - 1, total // 11, 2 ** 54 - 1, 2 ** 53])
        return {"f_bsize": random.choice([0, 8192]), "f_frsize": 1024, "f_blocks": total, "f_bfree": free,
                "f_bavail": max(0, available)}

    def kind():
        return random.choice(["ufs", "ufs", "vxfs", "tmpfs"])

    mounts = random.sample(["/", "/u01", "/u02", "/export/home", "/\u00fcbung"], random.randrange(1, 5))
    return present(
        sysconf=maybe(0.9, {"_SC_NPROCESSORS_CONF": 3, "_SC_CPUID_MAX": 7}),
        processors=[{"id": number, "pi_state": random.choice(["P_ONLINE", "P_OFFLINE", "P_POWEROFF"])}
                    for number in random.sample(range(8), 3)],
        kstat=maybe(0.8, [{"ks_name": f"sd{number}", "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO", "data": {}}
                          for number in random.sample(range(9), 6)]),
        mnttab=maybe(0.9, [f"/dev/dsk/{random.choice(disks)}s0\t{mount}\t{kind()}\trw\t1"
                           for mount in mounts + mounts[:1]]),
        statvfs={mount: sizes() for mount in mounts if random.random() < 0.8},
        disks=[present(name=name, path=f"/pci@1f/sd@{number},0", major=32, minor=8 * number,
                       geometry=maybe(0.8, {"dkg_nhead": 2, "dkg_nsect": 3, "dkg_ncyl": number}), vtoc=maybe(0.8, {"v_asciilabel": "SUN72G cyl"}),
                       scsi=maybe(0.7, pages()), fails=maybe(0.2, {"open": "EBUSY"})) for number, name in enumerate(disks)],
        hba={"adapters": [present(name=f"hba-{number}", openFailures=maybe(0.2, 2),
                                  attributes={"NodeWWN": "2000%012x" % number},
                                  ports=[port(4 * number + each) for each in range(random.randrange(1, 5))],
                                  targetMapping=[mapping() for _ in range(random.randrange(20))],
                                  status=present(GetAdapterAttributes=maybe(0.1, 1)))
                          for number in range(random.randrange(4))]})

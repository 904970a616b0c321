"""Hosts with readings of their disks and ports, and what watch is to make of them."""

PAYLOAD = {1: 106250000, 2: 212500000, 4: 1275000000}
WRAPPING = ("reads", "writes")
COUNTERS = ("nread", "nwritten", "wtime", "wlentime", "rtime", "rlentime")
ERRORS = {"soft": "Soft Errors", "hard": "Hard Errors", "transport": "Transport Errors", "media": "Media Error",
          "notReady": "Device Not Ready", "noDevice": "No Device", "recoverable": "Recoverable",
          "illegalRequest": "Illegal Request", "predictiveFailure": "Predictive Failure Analysis"}
PORT_ERRORS = {"errorFrames": "ErrorFrames", "dumpedFrames": "DumpedFrames", "linkFailures": "LinkFailureCount",
               "lossOfSync": "LossOfSyncCount", "lossOfSignal": "LossOfSignalCount",
               "primitiveSequenceErrors": "PrimitiveSeqProtocolErrCount", "invalidTxWords": "InvalidTxWordCount",
               "invalidCrcs": "InvalidCRCCount"}
TRAFFIC = ("SecondsSinceLastReset", "TxFrames", "TxWords", "RxFrames", "RxWords", "LIPCount", "NOSCount",
           *PORT_ERRORS.values())


def record(name, kind, form, samples, **more):
    return {"ks_module": "sd", "ks_name": name, "ks_class": kind, "ks_type": form, "samples": samples, **more}


def disks(*names, errors=(), later=None):
    """A host of disks that are read twice, a second after the other; what the second reading of the last finds."""
    readings = [{"reads": 10, "nread": 10240, "ks_snaptime": 10 ** 10},
                {"reads": 30, "writes": 1, "nread": 30720, "rtime": 5 * 10 ** 8, "rlentime": 21 * 10 ** 8,
                 "ks_snaptime": 11 * 10 ** 9}]
    return {"kstat": [
        *(record(name, "disk", "KSTAT_TYPE_IO", [readings[0], later if later and name == names[-1] else readings[1]])
          for name in names),
        *(record(f"{names[0]},err", "device_error", "KSTAT_TYPE_NAMED", [{"Hard Errors": count} for count in errors])
          for _ in errors[:1])]}


def random_host(random):
    """A host of some disks and ports, with as many readings as its first disk has."""
    readings, node = random.randrange(2, 6), "50060e8000c3a200"

    def grown(names, most, backwards=0.04):
        """Readings of counters that go up, and rarely back."""
        values = {name: random.choice([0, random.randrange(most)]) for name in names}
        for _ in range(readings):
            yield dict(values)
            for name in names:
                values[name] = random.randrange(values[name] + 1) if random.random() < backwards \
                    else values[name] + random.choice([0, random.randrange(most)])

    def samples(number, crtime):
        time = crtime
        for wrapping, counters in zip(grown(WRAPPING, 2 ** 31, 0), grown(COUNTERS, 2 ** 40)):
            time += random.randrange(1, 10 ** 10)
            yield "ENXIO" if number and random.random() < 0.1 else {
                **{name: value % 2 ** 32 for name, value in wrapping.items()}, **counters, "ks_snaptime": time}

    numbers = random.sample(range(9), random.randrange(1, 6))
    kstat = []
    for place, number in enumerate(numbers):
        crtime = random.randrange(10 ** 9)
        kstat.append(record(f"sd{number}", "disk", "KSTAT_TYPE_IO", list(samples(place, crtime)), ks_instance=number,
                            ks_crtime=crtime))
        if random.random() < 0.5:
            kstat.append(record(f"sd{number},err", "device_error", "KSTAT_TYPE_NAMED",
                                list(grown(ERRORS.values(), 9)), ks_module="sderr", ks_instance=number))
    remote = {"attributes": {"PortWWN": "50060e8000c3a2b1", "NodeWWN": node, "PortState": 2}}
    return {
        "kstat": kstat,
        "disks": [{"name": f"c1t{number}d0", "path": f"/pci@1f/sd@{number},0", "major": 32, "minor": 8 * number}
                  for number in numbers if random.random() < 0.8],
        "hba": {"adapters": [{
            "name": "a", "attributes": {"NodeWWN": "2000000000000000"},
            "ports": [{"attributes": {"PortWWN": "210000000000000%d" % port, "PortState": 2,
                                      "PortSpeed": random.choice([0, 1, 2, 4])}, "discovered": [remote],
                       "statistics": [{name: -1 if name in unkept else value for name, value in reading.items()}
                                      for unkept in [random.sample(TRAFFIC, 3)]
                                      for reading in grown(TRAFFIC, 2 ** 33, 0.01)]}
                      for port in range(random.randrange(1, 3))],
            "targetMapping": [{"ScsiId": {"OSDeviceName": f"/dev/rdsk/c1t{number}d0s2"},
                               "FcpId": {"PortWWN": "50060e8000c3a2b1", "FcpLun": random.randrange(3) << 48}}
                              for number in range(9)]}]}}


def increase(before, now):
    """What a disk's counters went up by, with its time in seconds; None when they were reset."""
    up = {name: now[name] - before[name] for name in COUNTERS}
    if min(up.values()) < 0:
        return None
    return {**up, **{name: (now[name] - before[name]) % 2 ** 32 for name in WRAPPING},
            "t": (now["ks_snaptime"] - before["ks_snaptime"]) / 1e9}


def load(disks):
    """What one disk did, or several as one."""
    if None in disks:
        return {**dict.fromkeys(("readsPerSecond", "writesPerSecond", "bytesReadPerSecond", "bytesWrittenPerSecond",
                                 "waiting", "active", "waitMilliseconds", "serviceMilliseconds", "waitPercent",
                                 "busyPercent")), "reset": True}

    def rate(name, unit=1):
        return sum(up[name] / unit / up["t"] for up in disks)

    def each(name):
        return sum(up[name] for up in disks) / 1e6 / operations if operations else None

    operations = sum(up["reads"] + up["writes"] for up in disks)
    return {"readsPerSecond": rate("reads"), "writesPerSecond": rate("writes"), "bytesReadPerSecond": rate("nread"),
            "bytesWrittenPerSecond": rate("nwritten"), "waiting": rate("wlentime", 1e9),
            "active": rate("rlentime", 1e9),
            "waitMilliseconds": each("wlentime"), "serviceMilliseconds": each("rlentime"),
            "waitPercent": max(up["wtime"] / up["t"] / 1e7 for up in disks),
            "busyPercent": max(up["rtime"] / up["t"] / 1e7 for up in disks), "reset": False}


def traffic(port, place, reading, seconds):
    now = port["statistics"][reading]
    before = port["statistics"][reading - 1] if reading else {name: min(value, 0) for name, value in now.items()}
    up = {name: None if -1 in (before[name], now[name]) else now[name] - before[name] for name in TRAFFIC}
    reset = any(value is not None and value < 0 for value in up.values())
    time = seconds if reading else up["SecondsSinceLastReset"]

    def rate(name, unit=1):
        return None if reset or up[name] is None or not time else unit * up[name] / time

    def share(name):
        payload, sent = PAYLOAD.get(port["attributes"]["PortSpeed"]), rate(name, 4)
        return None if payload is None or sent is None else 100 * sent / payload

    return {"adapter": 0, "port": place, "wwn": port["attributes"]["PortWWN"], "framesSentPerSecond": rate("TxFrames"),
            "framesReceivedPerSecond": rate("RxFrames"), "bytesSentPerSecond": rate("TxWords", 4),
            "bytesReceivedPerSecond": rate("RxWords", 4), "sentPercent": share("TxWords"),
            "receivedPercent": share("RxWords"),
            "errors": {kind: None if reset else up[name] for kind, name in PORT_ERRORS.items()}, "reset": reset}


def unit(lun, disks):
    figures, counts = load([up for _, up in disks]), [up and up["reads"] + up["writes"] for _, up in disks]
    whole = 0 if figures["reset"] else sum(counts)
    return {"node": "50060e8000c3a200", "lun": lun,
            "paths": [{"disk": name, "sharePercent": 100 * count / whole if whole else None}
                      for (name, _), count in zip(disks, counts)], **figures}


def watch(host):
    """What each reading is to print."""
    names = {"sd%d" % (disk["minor"] // 8): disk["name"] for disk in host["disks"]}
    # A disk's errors are only read, and so go on, where the disk itself can be.
    errors = {entry["ks_name"].split(",")[0]: iter(entry["samples"]) for entry in host["kstat"]
              if entry["ks_class"] == "device_error"}
    records = [entry for entry in host["kstat"] if entry["ks_class"] == "disk"]
    adapter = host["hba"]["adapters"][0]
    known, known_errors, previous = {}, {}, set()
    for reading in range(len(records[0]["samples"])):
        disks, counted, times = [], {}, []
        for entry in records:
            name, now = entry["ks_name"], entry["samples"][reading]
            if now == "ENXIO":
                continue
            up = increase(known.get(name, {**dict.fromkeys(WRAPPING + COUNTERS, 0), "ks_snaptime": entry["ks_crtime"]}),
                          now)
            grown = next(errors[name]) if name in errors else None
            before = known_errors.get(name, dict.fromkeys(ERRORS.values(), 0))
            risen = grown and {kind: grown[text] - before[text] for kind, text in ERRORS.items()}
            if not reading or name in previous:
                start = known[name]["ks_snaptime"] if reading else entry["ks_crtime"]
                times.append((now["ks_snaptime"] - start) / 1e9)
            known[name], known_errors[name] = now, grown
            counted[names.get(name, name)] = up
            disks.append({"disk": names.get(name), "instance": name, **load([up]),
                          "errors": None if risen and min(risen.values()) < 0 else risen})
        previous = {disk["instance"] for disk in disks}
        units = {}
        for mapping in adapter["targetMapping"]:
            disk = mapping["ScsiId"]["OSDeviceName"][len("/dev/rdsk/"):-len("s2")]
            if disk in counted:
                units.setdefault(mapping["FcpId"]["FcpLun"] >> 48, []).append((disk, counted[disk]))
        yield {"seconds": max(times), "at": None, "disks": disks,
               "ports": [traffic(port, place, reading, max(times)) for place, port in enumerate(adapter["ports"])],
               "units": [unit(lun, units[lun]) for lun in sorted(units)]}

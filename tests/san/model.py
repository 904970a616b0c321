"""What `san` has to answer, worked out plainly from what each host's `paths` and `hba` say.

A recording is {"host", "recordedAt", "paths", "hba"}, the last two the results of those commands.
"""

import json
import statistics
from collections import defaultdict
from datetime import datetime
from itertools import combinations
from types import SimpleNamespace

from together import in_one_machine, line_of

ONLINE = 2
NO_NAME = "0" * 16


def recorded(class_path, paths):
    """The recordings of descriptions."""
    asked = [("--host", path, "--json", command) for path in paths for command in ("paths", "hba")]
    told = [json.loads(done.stdout)["result"] for done in in_one_machine(class_path, [*map(line_of, asked)])]
    for path, of_paths, of_hba in zip(paths, told[::2], told[1::2]):
        description = json.loads(path.read_text())
        yield {"host": description["sysinfo"]["SI_HOSTNAME"], "recordedAt": description["recordedAt"],
               "paths": of_paths, "hba": of_hba}


def switch(fabric, address):
    """A fabric's name and a domain, the first byte of an address; an empty set where there is none."""
    return {f"{fabric}/{address >> 16}"} if fabric and address >> 16 else set()


class Network:
    """The latest recordings, as flat rows."""

    def __init__(self, recordings):
        self.history = defaultdict(list)
        for each in sorted(recordings, key=lambda each: each["recordedAt"]):
            self.history[each["host"]].append(each)
        self.latest = [each[-1] for each in self.history.values()]
        self.ports = [row for each in self.latest for row in ports(each)]
        self.paths = [row for each in self.latest for row in paths(each)]
        self.seen, self.ways = defaultdict(set), defaultdict(list)  # units by host, rows by both
        for row in self.paths:
            self.seen[row.host].add(row.unit)
            self.ways[row.host, row.unit].append(row)
        self.hosts = {unit: {row.host for row in self.paths if row.unit == unit} for unit in
                      {row.unit for row in self.paths}}


def ports(recording):
    """A row for each local port that can be read."""
    for a, adapter in enumerate(recording["hba"]):
        about = adapter["instance"]["properties"]
        for port in adapter["ports"]:
            own = port["instance"]["properties"]
            seen = [each["instance"]["properties"] for each in port["discoveredPorts"]]
            fabric = own["fabricName"].replace(NO_NAME, "")
            yield SimpleNamespace(
                host=recording["host"], adapter=f"{recording['host']}/{a}", port=own["permanentAddress"], fabric=fabric,
                switches=switch(fabric, own["portFcId"]), online=own["portState"] == ONLINE, model=about["model"],
                firmware=about["firmwareVersion"], driver=about["driverVersion"], names=set(), unit=None, disk=None,
                array=None, array_port=None,
                far={each["permanentAddress"]: switch(fabric, each["portFcId"]) for each in seen})


def paths(recording):
    """A row for each path: that of its local port, and what is at the other end."""
    local = {(row.adapter, row.port): row for row in ports(recording)}
    for unit in recording["paths"]:
        place = f"{unit['node']} LUN {unit['lun']}"
        for path in unit["paths"]:
            row = local[f"{recording['host']}/{path['adapter']}", path["portWWN"]]
            yield SimpleNamespace(**{
                **vars(row), "unit": unit["designator"] or place, "array": unit["node"],
                "array_port": path["remotePort"], "disk": path["disk"], "mounts": unit["mounts"],
                "names": {place, *unit["mounts"], path["disk"]} - {None},
                "online": path["portState"] == path["remotePortState"] == ONLINE,
                "switches": row.switches | row.far[path["remotePort"]], "array_switches": row.far[path["remotePort"]]})


KINDS = {"port": lambda row: {row.port, row.array_port}, "array": lambda row: {row.array},
         "fabric": lambda row: {row.fabric}, "switch": lambda row: row.switches, "unit": lambda row: {row.unit},
         "adapter": lambda row: {row.adapter}, "model": lambda row: {row.model}, "firmware": lambda row: {row.firmware},
         "host": lambda row: {row.host}}
# What may be a single point of failure.
POINTS = {**{kind: KINDS[kind] for kind in ("fabric", "switch", "adapter")}, "port": lambda row: {row.port},
          "array-port": lambda row: {row.array_port}}


def things(network, kinds):
    """Everything that can be asked about."""
    return sorted({name for of in kinds for row in network.ports + network.paths for name in of(row) if name})


def of_thing(network, thing):
    """The kind, and the rows that go through it. A unit may be called by any name that any host has for it."""
    rows = network.ports + network.paths
    for kind, of in KINDS.items():
        touched = [row for row in rows if thing in of(row)]
        if touched:
            return kind, touched
    units = {row.unit for row in network.paths if thing in row.names}
    return "unit" if units else None, [row for row in network.paths if row.unit in units]


def who(network, thing):
    kind, rows = of_thing(network, thing)
    hosts = []
    for host in sorted({row.host for row in rows}):
        own = [row for row in rows if row.host == host]
        hosts.append({"host": host, **{plural: sorted({getattr(row, one) for row in own} - {None}) for plural, one in (
            ("ports", "port"), ("units", "unit"), ("disks", "disk"))}})
    return {"thing": thing, "kind": kind, "hosts": hosts}


def impact(network, failing):
    """Units that lose their last path, and those of which one is left that had more, by host."""
    gone = {id(row) for thing in failing for row in of_thing(network, thing)[1]}
    answer = {"thing": failing, "lost": [], "lastPath": []}
    for (host, unit), rows in sorted(network.ways.items()):
        before, after = online_paths(rows), online_paths(row for row in rows if id(row) not in gone)
        told = {"host": host, "unit": unit, "disks": sorted({row.disk for row in rows} - {None}),
                "mounts": sorted({mount for row in rows for mount in row.mounts})}
        if before and not after:
            answer["lost"].append(told)
        elif len(after) == 1 < len(before):
            answer["lastPath"].append(told)
    return answer


def ranking(network, kind):
    """What each thing of the kind takes with it, the worst first."""
    effects = []
    for thing in things(network, [POINTS[kind]]):
        result = impact(network, [thing])
        lost, last = result["lost"], result["lastPath"]
        if lost or last:
            effects.append({"thing": thing, "hosts": len({each["host"] for each in lost + last}),
                            "lostUnits": len(lost), "lostMounts": sum(len(each["mounts"]) for each in lost),
                            "lastPaths": len(last)})
    return sorted(effects, key=lambda each: (
        -each["lostUnits"], -each["lostMounts"], -each["lastPaths"], each["thing"]))


def online_paths(rows):
    """A path is a local port, an array port and a unit, however often it is listed."""
    return {(row.port, row.array_port) for row in rows if row.online}


def check(network, now, max_age):
    """The findings {code, subject, hosts}, by code and subject."""
    found = defaultdict(set)
    for code, subject, hosts in (each for rule in RULES for each in rule(network)):
        found[code, subject] |= set(hosts)
    for each in network.latest:
        if each["recordedAt"] and now - datetime.fromisoformat(each["recordedAt"].replace("Z", "+00:00")) > max_age:
            found["host-old", each["host"]] = {each["host"]}
    return [{"code": code, "subject": subject, "hosts": sorted(hosts)}
            for (code, subject), hosts in sorted(found.items())]


def one_way(network):
    kinds = {"fabric": (lambda row: {row.fabric} - {""}, lambda row: {row.fabric} - {""}),
             "switch": (lambda row: row.switches, lambda row: row.array_switches),
             "array-port": (lambda row: {row.array_port} - {None}, lambda row: {row.array_port})}
    for unit, hosts in network.hosts.items():
        for host in hosts:
            rows = [row for row in network.paths if (row.host, row.unit) == (host, unit) and row.online]
            if len(online_paths(rows)) < 2:
                continue
            arrays = {row.array for row in rows}
            for kind, (of, of_array) in kinds.items():
                shared = set.intersection(*map(of, rows))  # a path leads through the switches of both its ends
                others = set().union(*(of(row) for row in network.ports if row.host == host and row.online),
                                     *(of_array(row) for row in network.paths if row.array in arrays))
                if shared and others - shared:
                    yield f"unit-one-{kind}", unit, [host]


def zoning_gap(network):
    sees = defaultdict(set)  # the hosts that see an array port on a fabric; what has no name may be several
    for row in network.paths:
        if row.fabric:
            sees[row.array, row.array_port, row.fabric].add(row.host)
    for unit, hosts in network.hosts.items():
        arrays = {row.array for row in network.paths if row.unit == unit}
        for host in hosts:
            fabrics = {row.fabric for row in network.ports if row.host == host and row.online}
            for (array, port, fabric), seers in sees.items():
                if array in arrays and fabric in fabrics and host not in seers and len(seers & hosts) > 1:
                    yield "zoning-gap", port, [host]


def duplicates(network):
    named = defaultdict(set)  # the same name twice in one host is for the check of that host
    for row in network.ports:
        named[row.port].add(row.host)
    yield from (("duplicate-wwn", name, hosts) for name, hosts in named.items() if len(hosts) > 1 and name != NO_NAME)
    for host, history in network.history.items():
        if any(are_strangers(before, after) and (after is history[-1] or any(
                not are_strangers(before, later) for later in history[i:]))  # or else its adapters were replaced
               for i, (before, after) in enumerate(zip(history, history[1:]), 2)):
            yield "duplicate-host", host, [host]


def are_strangers(before, after):
    """Whether two recordings of one name are of two hosts: they have ports, and none in common."""
    one, other = ({row.port for row in ports(each)} for each in (before, after))
    return bool(one and other) and not one & other


def unlike_peers(network):
    for unit, hosts in network.hosts.items():
        common = set.intersection(*(network.seen[host] for host in hosts))
        lacking = [host for host, seen in network.seen.items() if host not in hosts and len(seen & common) > 2]
        if len(lacking) == 1 and len(hosts) > 1:  # of two hosts, neither is the one that lacks
            yield "host-lacks-unit", unit, lacking
        for pair in combinations(hosts, 2):
            if set.intersection(*(network.seen[host] for host in pair)) == {unit}:
                yield "unit-shared-apart", unit, pair


def drift(network):
    for what in ("firmware", "driver"):
        adapters = {row.adapter: row for row in network.ports}.values()
        for model in {row.model for row in adapters}:
            versions = [getattr(row, what) for row in adapters if row.model == model]
            usual = max(versions, key=lambda version: (versions.count(version), version))  # of equals, the later text
            rare = {row.host for row in adapters if row.model == model and getattr(row, what) != usual}
            if rare:
                yield f"{what}-drift", model, rare


def crowded(network):
    initiators, hosts = defaultdict(lambda: defaultdict(set)), defaultdict(set)
    for row in network.paths:
        initiators[row.array][row.array_port].add(row.port)
        hosts[row.array_port].add(row.host)
    for at in initiators.values():
        usual = statistics.median(len(ports) for ports in at.values())
        for port, logged_in in at.items():
            if len(logged_in) >= max(8, 2 * usual):
                yield "array-port-crowded", port, hosts[port]


def losses(network):
    for host, history in network.history.items():
        if len(history) < 2 or are_strangers(*history[-2:]):
            continue
        was, now = ({unit: online_paths(row for row in rows if row.unit == unit) for unit in {row.unit for row in rows}}
                    for rows in (list(paths(each)) for each in history[-2:]))
        yield from (("unit-vanished", unit, [host]) for unit in was if unit not in now)
        if any(len(now[unit]) < len(was[unit]) for unit in was if unit in now):
            yield "host-lost-paths", host, [host]


RULES = [one_way, zoning_gap, duplicates, unlike_peers, drift, crowded, losses]

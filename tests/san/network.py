"""Host descriptions of a whole storage network, made from a few lines of what it is and of what is wrong with it.

python3 tests/san/network.py [--healthy | --hosts N [--paths N] [--faults N]] FOLDER

Writes the descriptions to FOLDER/hosts, and to FOLDER/expected.json what is to be found in them, each finding with its
code, subject and hosts. Without an option it is the planted network, --healthy the same without its faults; --hosts is
a large one, in which each FAULTS-th host has a fault.
"""

import argparse
import gzip
import json
from collections import defaultdict
from datetime import datetime, timedelta, timezone
from fnmatch import fnmatchcase
from pathlib import Path
from types import SimpleNamespace

# fabric NAME [SWITCH...], by domain; without a switch it is a loop, which has no name
# array NAME IDENTITY SWITCH..., a switch for each of its ports NAME.1, NAME.2 and so on; its units tell a designator of
#     that kind, or a serial number only, and are known by their address
# hosts GROUP COUNT MODEL SWITCH,SWITCH/SWITCH [mpxio] [zfs]: the switches of its ports, with a slash between adapters;
#     hosts are GROUP1 and so on, their ports GROUP1.0 and so on
# units GROUP SHARED OWN ARRAYPORT...: all hosts have GROUP/1 and so on, the first has GROUP1/1 and so on for itself
HEALTHY = """
fabric A 1 2
fabric B 3 4
fabric C 1 2
fabric D 5
array vault naa A.1 A.2 B.3 B.4
array hoard t10 A.1 A.2 B.3 B.4
array tray address A.1 B.3
array isle eui C.1 C.1 C.2 C.2
array rock naa D.5 D.5
hosts db 6 FX-2302 A.1/B.3 mpxio zfs
units db 6 1 vault.1 vault.2 vault.3 vault.4
hosts web 8 375-3108-xx A.2,B.4
units web 4 0 hoard.1 hoard.3
hosts app 8 375-3108-xx A.1,B.3
units app 4 1 hoard.2 hoard.4
hosts mail 6 FX-2302 A.1,B.3
units mail 3 0 tray.1 tray.2
hosts lone 4 FX-2404 A.2,B.4 mpxio
units lone 0 2 vault.1 vault.2 vault.3 vault.4
hosts pair 2 FX-2404 A.1,B.3/A.2,B.4
units pair 2 0 vault.1 vault.2 vault.3 vault.4
hosts twin 2 FX-2404 A.1,B.4 zfs
units twin 2 1 vault.1 vault.2 vault.3 vault.4
hosts isle 2 FX-1100 C.1/C.2 mpxio
units isle 2 0 isle.1 isle.2 isle.3 isle.4
hosts rock 2 FX-1100 D.5/D.5
units rock 2 0 rock.1 rock.2
set db5 talks
earlier db1
set twin2 name o'twin<b>"2"
"""

# What is done to the network => what has to be found, CODE SUBJECT HOST...
FAULTS = """
hide pair1 pair/1 vault.3 vault.4                => unit-one-fabric pair/1 pair1
plug isle1.1 C.1                                 => unit-one-switch isle/1 isle1; unit-one-switch isle/2 isle1
hide rock1 rock/1 rock.2                         => unit-one-array-port rock/1 rock1
unzone db2 vault.2                               => zoning-gap vault.2 db2
wwn mail3.0 mail5.0                              => duplicate-wwn mail5.0 mail3 mail5
age mail6 0.1; set mail6 name mail2                  => duplicate-host mail2 mail2
hide web4 web/2                                  => host-lacks-unit web/2 web4
show lone2 db/5                                  => unit-shared-apart db/5 db* lone2
set app5 firmware 3.3.001                         => firmware-drift 375-3108-xx app5
set lone3 driver 1.99                              => driver-drift FX-2404 lone3
move app* hoard.2 hoard.1                        => array-port-crowded hoard.1 app* web*
age lone4 720                                    => host-old lone4 lone4
earlier lone1; hide lone1 lone1/2                => unit-vanished lone1/2 lone1
earlier mail1; set mail1.1 state 6                      => host-lost-paths mail1 mail1
"""

VENDORS = {"naa": ("SUN", "CSM200_R", "0610"), "t10": ("SUN", "SE9980", "5004"), "eui": ("SUN", "SE6920", "0201"),
           "address": ("SUN", "T300", "0301"), "inner": ("SEAGATE", "ST373207LSUN72G", "045A")}
DESIGNATORS = {"naa": "0103", "t10": "0201", "eui": "0102"}  # code set and type, as INQUIRY page 0x83 has them
INNER = SimpleNamespace(kind="inner", lun=0)
ONLINE = 2
COUNTERS = {"SecondsSinceLastReset": 3542400, "TxFrames": 342652724, "TxWords": 89089708240, "RxFrames": 306360675,
            "RxWords": 154712140875, "LIPCount": -1, "LinkFailureCount": 1, "LossOfSyncCount": 2}


class Network:
    """A network by its parts, which commands make and change; and what is to be found in it."""

    def __init__(self, lines, now=None):
        self.now = now or datetime.now(timezone.utc).replace(microsecond=0)
        self.fabrics, self.arrays, self.ports, self.hosts, self.units = {}, {}, {}, {}, {}
        self.areas, self.adapters, self.earlier, self.found = defaultdict(int), 0, [], defaultdict(set)
        for line in lines.strip().splitlines():
            commands, _, findings = line.partition("=>")
            for command in filter(str.strip, commands.split(";")):
                name, *words = command.split()
                getattr(self, "do_" + name)(*words)
            for finding in filter(str.strip, findings.split(";")):
                code, subject, *hosts = finding.split()
                self.found[code, self.named(subject)] |= {host.name for each in hosts for host in self.those(each)}

    def those(self, pattern):
        return [host for key, host in self.hosts.items() if fnmatchcase(key, pattern)]

    def named(self, subject):
        """What hosts call it."""
        if subject in self.units:
            return self.units[subject].identity
        return self.ports[subject].wwn if subject in self.ports else \
            self.hosts[subject].name if subject in self.hosts else subject

    def expected(self):
        return [{"code": code, "subject": subject, "hosts": sorted(hosts)}
                for (code, subject), hosts in sorted(self.found.items())]

    def descriptions(self):
        """The name of each file, and what is in it."""
        yield from self.earlier
        for key, host in self.hosts.items():
            yield f"{key}.json", self.description(host)

    # What it is.

    def do_fabric(self, name, *switches):
        self.fabrics[name] = f"1000006069{len(self.fabrics):06x}" if switches else None

    def do_array(self, name, kind, *switches):
        number = len(self.arrays)
        self.arrays[name] = SimpleNamespace(kind=kind, number=number, node=f"200000a0b8{number:06x}", luns=0)
        for i, switch in enumerate(switches, 1):
            self.add_port(f"{name}.{i}", f"{0x2000 + i:04x}00a0b8{number:06x}", switch, self.arrays[name].node, None)

    def do_hosts(self, group, count, model, adapters, *options):
        for i in range(int(count)):
            key = f"{group}{i + 1}"
            self.hosts[key] = host = SimpleNamespace(
                name=key, group=group, model=model, firmware="3.3.116", driver="2.04", talks=True, at=[], sees={},
                mpxio="mpxio" in options, zfs="zfs" in options,
                recorded=self.now - timedelta(minutes=len(self.hosts) % 60))
            for a, switches in enumerate(adapters.split("/")):
                self.adapters += 1
                for p, switch in enumerate(switches.split(",")):
                    host.at.append(f"{key}.{len(host.at)}")
                    self.add_port(host.at[-1], f"21{p:02x}00e08b{self.adapters:06x}", switch,
                                  f"200000e08b{self.adapters:06x}", a)

    def do_units(self, group, shared, own, *at):
        members = [(key, host) for key, host in self.hosts.items() if host.group == group]
        self.add_units(group, int(shared), [host for _, host in members], at)
        for key, host in members:
            self.add_units(key, int(own), [host], at)

    def add_port(self, key, wwn, switch, node, adapter):
        self.ports[key] = SimpleNamespace(wwn=wwn, node=node, adapter=adapter, state=ONLINE)
        self.do_plug(key, switch)

    def add_units(self, prefix, count, hosts, at):
        name = at[0].partition(".")[0]
        array = self.arrays[name]
        vendor, product, _ = VENDORS[array.kind]
        for i in range(count):
            lun, array.luns = array.luns, array.luns + 1
            serial = f"{array.number:04X}{lun:06X}"
            digits = {"naa": f"600a0b8000{array.number:06x}{lun:016x}", "eui": f"00a0b8{array.number:04x}{lun:06x}",
                      "t10": f"{vendor:<8}{product:<16}{serial}", "address": f"{array.node} LUN {lun}"}[array.kind]
            key = f"{prefix}/{array.number}.{i + 1}" if f"{prefix}/{i + 1}" in self.units else f"{prefix}/{i + 1}"
            self.units[key] = SimpleNamespace(
                array=name, kind=array.kind, node=array.node, lun=lun, serial=serial, digits=digits,
                identity=digits if array.kind == "address" else f"{array.kind}.{digits}")
            for host in hosts:
                host.sees[key] = set(at)

    # What becomes of it.

    def do_plug(self, port, switch):
        """Into the next area of a switch; in a loop, at the next address."""
        fabric, _, domain = switch.partition(".")
        self.areas[switch] += 1
        self.ports[port].fabric = fabric
        self.ports[port].address = int(domain) << 16 | self.areas[switch] << 8 if domain else self.areas[switch]

    def do_wwn(self, port, like):
        self.ports[port].wwn = self.ports[like].wwn

    def do_unzone(self, host, *ports):
        for seen in self.hosts[host].sees.values():
            seen -= set(ports)

    def do_move(self, hosts, port, other):
        for seen in [seen for host in self.those(hosts) for seen in host.sees.values() if port in seen]:
            seen ^= {port, other}

    def do_hide(self, host, unit, *ports):
        self.hosts[host].sees[unit] -= set(ports or self.hosts[host].sees[unit])

    def do_migrate(self, units, array):
        """To another array, which presents them under the same identities, at its ports of the same numbers."""
        for key, unit in self.units.items():
            if fnmatchcase(key, units):
                for seen in [host.sees[key] for host in self.hosts.values() if key in host.sees]:
                    ports = {f"{array}.{port.partition('.')[2]}" for port in seen}
                    seen.clear()
                    seen |= ports
                unit.array, unit.node = array, self.arrays[array].node

    def do_show(self, host, unit):
        """Through the ports of its array that the host has other units from."""
        sees = self.hosts[host].sees
        array = self.units[unit].array
        sees[unit] = set().union(*(seen for other, seen in sees.items() if self.units[other].array == array))

    def do_set(self, key, member, value=None):
        """Of a port its state; of a host its name, firmware or driver, or whether its devices answer commands."""
        setattr(self.ports.get(key) or self.hosts[key], member, int(value) if member == "state" else value)

    def do_age(self, host, hours):
        self.hosts[host].recorded -= timedelta(hours=float(hours))

    def do_earlier(self, key):
        """A recording of a day before, while the host is as it is now."""
        self.do_age(key, 24)
        self.earlier.append((f"earlier/{key}.json.gz", self.description(self.hosts[key])))
        self.do_age(key, -24)

    # What a host tells.

    def description(self, host):
        near, adapters, disks = [self.ports[key] for key in host.at], defaultdict(list), {}
        zoned = {key: self.ports[key] for key in sorted(set().union(*host.sees.values()))}
        for i, port in enumerate(near):
            adapters[port.adapter] += []
            for target, (key, far) in enumerate(zoned.items()):
                units = [self.units[unit] for unit, seen in host.sees.items() if key in seen]
                for unit in units if far.fabric == port.fabric and port.state == ONLINE else []:
                    if host.mpxio and unit.kind in ("naa", "eui"):
                        disk, path = f"c9t{unit.digits.upper()}d0", f"/scsi_vhci/ssd@g{unit.digits}"
                    else:
                        disk = f"c{2 + i}t{far.wwn.upper()}d{unit.lun}"
                        path = f"/pci@1d,700000/SUNW,qlc@{port.adapter},{i}/fp@0,0/ssd@w{far.wwn},{unit.lun:x}"
                    disks.setdefault(disk, (path, unit))
                    adapters[port.adapter].append({
                        "ScsiId": {"OSDeviceName": f"/dev/rdsk/{disk}s2", "ScsiBusNumber": 2 + i,
                                   "ScsiTargetNumber": target, "ScsiOSLun": unit.lun},
                        "FcpId": {"FcId": far.address, "NodeWWN": far.node, "PortWWN": far.wwn,
                                  "FcpLun": unit.lun << 48}})
        mounts = [("/dev/dsk/c0t0d0s0", "/", "ufs")]
        mounts += [(f"/dev/dsk/{disk}s0", f"/{host.group}", "ufs") for disk in list(disks)[:1]]
        mounts += [(f"pool/{host.group}", "/pool", "zfs")] if host.zfs else []
        release = {"sysname": "SunOS", "release": "5.10", "version": "Generic_118833-36"}
        return {
            "recordedAt": host.recorded.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "sysinfo": {"SI_HOSTNAME": host.name, "SI_PLATFORM": "SUNW,Sun-Fire-V440",
                        **{"SI_" + name.upper(): value for name, value in release.items()}},
            "uname": {"nodename": host.name, "machine": "sun4u", **release},
            "sysconf": {"_SC_PAGESIZE": 8192, "_SC_PHYS_PAGES": 1048576, "_SC_AVPHYS_PAGES": 262144,
                        "_SC_NPROCESSORS_CONF": 1, "_SC_CPUID_MAX": 0},
            "processors": [{"id": 0, "pi_state": "P_ONLINE", "pi_processor_type": "sparcv9", "pi_clock": 1281}],
            "kstat": self.statistics([unit for _, unit in disks.values()]),
            "mnttab": [f"{device}\t{mount}\t{kind}\trw\t1130837021" for device, mount, kind in mounts],
            "statvfs": {mount: {"f_bsize": 8192, "f_frsize": 1024, "f_blocks": 8000000, "f_bfree": 5000000,
                                "f_bavail": 4900000} for _, mount, _ in mounts},
            "disks": [disk_of("c0t0d0", "/pci@1f,700000/scsi@2/sd@0,0", 32, 0, INNER, True)] + [
                disk_of(disk, path, 118, i, unit, host.talks) for i, (disk, (path, unit)) in enumerate(disks.items())],
            "hba": {"adapters": [
                {"name": f"{host.model}-{a}", "attributes": {
                    "Manufacturer": "Fabric Components", "Model": host.model, "FirmwareVersion": host.firmware,
                    "DriverVersion": host.driver, "DriverName": "fcx", "SerialNumber": f"{host.name}-{a}",
                    "NodeWWN": next(port.node for port in near if port.adapter == a)},
                 "ports": [self.port_of(port, zoned.values()) for port in near if port.adapter == a],
                 "targetMapping": mapping} for a, mapping in adapters.items()]}}

    def port_of(self, port, zoned):
        """A local port with what it sees; nothing while it is not online."""
        is_online = port.state == ONLINE
        named = {"FabricName": self.fabrics[port.fabric]} if is_online and self.fabrics[port.fabric] else {}
        return {"attributes": {**attributes(port), **named}, "statistics": COUNTERS, "discovered": [
            {"attributes": attributes(far)} for far in zoned if is_online and far.fabric == port.fabric]}

    @staticmethod
    def statistics(units):
        records = [{"ks_module": "unix", "ks_name": "vminfo", "ks_class": "vm",
                    "samples": [{"freemem": 100, "swap_resv": 10, "swap_avail": 20, "swap_free": 25}] * 2},
                   {"ks_module": "cpu_stat", "ks_name": "cpu_stat0", "ks_class": "misc",
                    "data": {"idle": 290594171, "user": 41001031, "kernel": 19745259, "wait": 4074567}}]
        for i, unit in enumerate([INNER] + units):
            driver, instance = ("ssd", i - 1) if i else ("sd", 0)
            records.append({"ks_module": driver, "ks_instance": instance, "ks_name": f"{driver}{instance}",
                            "ks_class": "disk", "ks_type": "KSTAT_TYPE_IO",
                            "data": {"nread": 24090648576, "nwritten": 32605282304, "reads": 2940753}})
            if unit.kind == "address":
                vendor, product, revision = VENDORS[unit.kind]
                records.append({"ks_module": "ssderr", "ks_instance": instance, "ks_name": f"ssd{instance},err",
                                "ks_class": "device_error", "ks_type": "KSTAT_TYPE_NAMED",
                                "data": {"Soft Errors": 0, "Vendor": f"{vendor:<8}", "Product": f"{product:<16}",
                                         "Revision": revision, "Serial No": unit.serial,
                                         "Size": 512 * 64 * 128 * cylinders(unit)}})
        return records


def attributes(port):
    is_online = port.state == ONLINE
    return {"PortWWN": port.wwn, "NodeWWN": port.node, "PortState": port.state, "PortType": 5 if is_online else 1,
            "PortFcId": port.address if is_online else 0, "PortSpeed": 2 if is_online else 0, "PortSupportedSpeed": 3,
            "PortMaxFrameSize": 2048, "PortActiveFc4Types": "00 00 01", "PortSupportedFc4Types": "00 00 01"}


def cylinders(unit):
    return 1024 * (1 + unit.lun % 32)


def page(code, digits):
    return f"00{code:02x}00{len(digits) // 2:02x}{digits}"


def disk_of(name, path, major, instance, unit, talks):
    vendor, product, revision = VENDORS[unit.kind]
    scsi, size = {}, cylinders(unit)
    if talks:
        texts = f"{vendor:<8}{product:<16}{revision}".encode().hex()
        scsi = {"INQUIRY": f"0000{'05' if unit.kind in DESIGNATORS else '02'}021f000002{texts}"}
        if unit.kind in DESIGNATORS:
            digits = unit.digits.encode().hex() if unit.kind == "t10" else unit.digits
            scsi.update({"INQUIRY 00": page(0, "008083"), "INQUIRY 80": page(0x80, unit.serial.encode().hex()),
                         "INQUIRY 83": page(0x83, f"{DESIGNATORS[unit.kind]}00{len(digits) // 2:02x}{digits}")})
    return {"name": name, "path": path, "major": major, "minor": 8 * instance, "scsi": scsi,
            "geometry": {"dkg_ncyl": size, "dkg_acyl": 2, "dkg_nhead": 64, "dkg_nsect": 128, "dkg_pcyl": size + 2},
            "vtoc": {"v_asciilabel": f"{vendor}-{product}-{revision} cyl {size} alt 2 hd 64 sec 128",
                     "v_part": [{"p_tag": 8, "p_size": 8192 * size}, {}, {"p_tag": 5, "p_size": 8192 * size}]}}


def large(hosts, paths, every):
    """Groups of eight hosts, four groups to an array, eight arrays to two fabrics; each EVERYth host has a fault."""
    lines, faults = [], []
    for first in range(0, hosts, 8):
        group, array = first // 8, first // 32
        left, right = (f"F{side}{array // 8}" for side in "ab")
        if first % 256 == 0:
            lines += [f"fabric {left} 1 2 3 4", f"fabric {right} 1 2 3 4"]
        near, far = 1 + group % 4, 1 + (group + 1) % 4
        if first % 32 == 0:
            lines.append(f"array a{array} naa {left}.{near} {left}.{far} {right}.{near} {right}.{far}")
        lines += [f"hosts g{group}h {min(8, hosts - first)} FX-2302 {left}.{near},{right}.{near} mpxio",
                  f"units g{group}h {max(1, paths // 4)} 0 " + " ".join(f"a{array}.{port}" for port in range(1, 5))]
    for turn, number in enumerate(range(every - 1, hosts, every) if every else ()):
        group, array = number // 8, number // 32
        host, peer = f"g{group}h{number % 8 + 1}", f"g{group}h{(number + 1) % min(8, hosts - number // 8 * 8) + 1}"
        other = group - 1 if group % 4 else group + 1
        kinds = 5 if other * 8 < hosts else 4
        faults.append([f"unzone {host} a{array}.2 => zoning-gap a{array}.2 {host}",
                       f"hide {host} g{group}h/1 => host-lacks-unit g{group}h/1 {host}",
                       f"wwn {host}.0 {peer}.0 => duplicate-wwn {peer}.0 {host} {peer}",
                       f"set {host} firmware 3.3.001 => firmware-drift FX-2302 {host}",
                       f"show {host} g{other}h/1 => unit-shared-apart g{other}h/1 {host} g{other}h*"][turn % kinds])
    return "\n".join(lines + faults)


def write(network, folder):
    """The descriptions in FOLDER/hosts, what is to be found in them in FOLDER/expected.json."""
    for name, description in network.descriptions():
        path = Path(folder, "hosts", name)
        path.parent.mkdir(parents=True, exist_ok=True)
        text = json.dumps(description, separators=(",", ":")).encode()
        path.write_bytes(gzip.compress(text) if path.suffix == ".gz" else text)
    Path(folder, "expected.json").write_text(json.dumps(network.expected(), indent=1))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    kind = parser.add_mutually_exclusive_group()
    kind.add_argument("--healthy", action="store_true")
    kind.add_argument("--hosts", type=int)
    parser.add_argument("--paths", type=int, default=128)
    parser.add_argument("--faults", type=int, default=100)
    parser.add_argument("folder")
    told = parser.parse_args()
    write(Network(large(told.hosts, told.paths, told.faults) if told.hosts
                  else HEALTHY if told.healthy else HEALTHY + FAULTS), told.folder)


if __name__ == "__main__":
    main()

"""Holds descriptions with pseudonyms to their originals: python3 tests/record/anonymous.py TARN BUILD CLASS-PATH"""

import contextlib
import gzip
import json
import os
import random
import re
import signal
import sqlite3
import stat
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import hosts
import run

sys.path += [str(hosts.ROOT / "tests"), str(hosts.ROOT / "tests/cli"), str(hosts.ROOT / "tests/san")]
import network
import questions
import together
import verdict

# What hangs together across hosts.
ABOUT_NETWORK = [
    "SELECT identity, host, paths, adapters, fabrics, switches, array_ports FROM unit_redundancy JOIN unit ON id = unit_id",
    "SELECT identity, hosts FROM shared_unit", "SELECT * FROM array_port",
    "SELECT host, fabric, remote_wwn FROM zoning_gap", "SELECT severity, code, subject FROM finding"]
RILL, PULLED = (json.loads((hosts.ROOT / f"hosts/{name}.json").read_text()) for name in ("rill", "rill-cable-pulled"))
WORD = re.compile(r"[^\W_]+")
# Members whose texts tell of hardware, software and numbers; all others' are somebody's own.
HARMLESS = {
    "recordedAt", "SI_SYSNAME", "SI_RELEASE", "SI_VERSION", "SI_PLATFORM", "sysname", "release", "version", "machine",
    "pi_processor_type", "pi_fputypes", "Vendor", "Product", "Revision", "Manufacturer", "Model", "ModelDescription",
    "HardwareVersion", "DriverVersion", "OptionROMVersion", "FirmwareVersion", "DriverName", "PortSupportedFc4Types",
    "PortActiveFc4Types"}
TABLES = hosts.ROOT / "agent/resources/com/kelvo/tarn/cli/anonymous"
KNOWN = {word.lower() for table in ("words.txt", "members.txt") for line in (TABLES / table).read_text().splitlines()
         if line[:1] != "#" for word in WORD.findall(line)}
PAGES = ("INQUIRY", "RECEIVE DIAGNOSTIC", "LOG SENSE")
MARK = "Zanzibar7"
# What stands in for each text: the mark as it is, and in what has the form of something.
HEX = MARK.encode().hex(" ")
FORMS = [
    MARK, f"/{MARK}", f"/dev/rdsk/c1t{MARK}d0s2", f"/devices/pci@1/{MARK},sd@w{MARK},0:{MARK}", f"c1t0d0{MARK}",
    f"{MARK}:/usr/{MARK}\t/{MARK}\t{MARK}\tdev={MARK},{MARK}=1\t{MARK}", f"{MARK} cyl 1 alt 2 hd 3 sec {MARK}",
    f"E{MARK}", f"open {MARK}", f"2026-11-24T10:00:00Z{MARK}", f"naa.{MARK}", f"$5${MARK}$", f"{MARK}{MARK}" * 40,
    f"00 83 00 ff 02 01 00 ff 20 20 20 20 20 20 20 20 {HEX} " * 5, f"3b 00 01 00 81 01 00 ff {HEX}",
    MARK + "éж漢😀", {"hex": HEX + " ff"}, {"hex": MARK}]


def leaves(value, name=""):
    """Each text with the name of the member that holds it; names of members are texts, too."""
    if isinstance(value, dict):
        for member, inner in value.items():
            yield name, member
            yield from leaves(inner, member)
    elif isinstance(value, list):
        for inner in value:
            yield from leaves(inner, name)
    elif isinstance(value, str):
        yield name, value


def texts(value):
    """The same with what the bytes of pages and other hexadecimal say, each identifier of theirs as its digits."""
    for name, text in leaves(value):
        yield name, text
        if (name == "hex" or name.startswith(PAGES)) and re.fullmatch(r"([0-9a-fA-F]{2} ?)+", text):
            data = bytes.fromhex(text)
            yield name, data.decode("latin-1")
            at = 4
            while data[:2] == b"\0\x83" and at + 4 <= len(data):
                yield name, data[at + 4:at + 4 + data[at + 3]].hex()
                at += 4 + data[at + 3]


def words_of(text):
    """The identifier within a disk's name is a word of its own."""
    return WORD.findall(re.sub(r"\b(c\d+t)([0-9A-Fa-f]{16,32})(d\d+)", r"\1 \2 \3", text))


def is_form(word, name):
    """Whether a word says nothing of anybody: a number, an address, what the lists of words have."""
    return (word in KNOWN or word.rstrip("0123456789") in KNOWN or name.startswith("mnt") and word.isdigit()
            or not word.isascii() or re.fullmatch(r"[0-9a-f]{1,8}|0+|f+|([a-z]\d+)+[a-z]?|emcpower\d+\w*", word))


def write(folder, name, value):
    path = Path(folder, name)
    path.write_bytes(value if isinstance(value, bytes) else json.dumps(value).encode())
    return str(path)


def key(folder, name="key", data=bytes(range(48)), mode=0o600):
    path = write(folder, name, data)
    os.chmod(path, mode)
    return path


class Renaming:
    """Which words became which, learnt from descriptions side by side."""

    def __init__(self, *pairs):
        self.known = {}
        for old, new in pairs:
            for (_, was), (_, now) in zip(leaves(old), leaves(new), strict=True):
                assert len(was.encode()) == len(now.encode()), (was, now)
            for (_, was), (_, now) in zip(texts(old), texts(new), strict=True):
                for one, other in zip(words_of(was), words_of(now)):
                    self.known.setdefault(one.lower(), set()).add(other.lower())

    def of(self, word):
        return max(self.known[word.lower()], key=lambda other: other != word.lower())

    def relates(self, was, now):
        """Whether one answer is the other with other names. What is sorted by name may have another order."""
        if isinstance(was, str) and isinstance(now, str):
            return WORD.sub("", was) == WORD.sub("", now) and all(
                one == other or other.lower() in self.known.get(one.lower(), ())
                for one, other in zip(words_of(was), words_of(now), strict=True))
        if isinstance(was, dict) and isinstance(now, dict):
            return self.relates(list(was), list(now)) and all(map(self.relates, was.values(), now.values()))
        if isinstance(was, list) and isinstance(now, list):
            if len(was) == len(now) and all(map(self.relates, was, now)):
                return True
            left = list(now)
            for one in was:
                place = next((i for i, other in enumerate(left) if self.relates(one, other)), None)
                if place is None:
                    return False
                del left[place]
            return not left
        return was == now


class Anonymous(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="tarn-anonymous-")
        self.addCleanup(scratch.cleanup)
        self.folder = scratch.name
        self.key = key(self.folder)

    def tarn(self, *words, status=0, **more):
        done = subprocess.run([TARN, *words], capture_output=True, timeout=300,
                              env={**os.environ, "TARN_HOST": ""}, **more)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def anonymous(self, *descriptions, with_key=None):
        """What becomes of descriptions, and the text of it."""
        out = tempfile.mkdtemp(dir=self.folder)
        files = [write(self.folder, f"{i}.json", each) for i, each in enumerate(descriptions)]
        told = self.tarn("anonymous", with_key or self.key, *files, "--output", out).stdout.decode().splitlines()
        made = dict(line.split(": ", 1) for line in told)
        self.assertEqual(sorted(made.values()), sorted(str(path) for path in Path(out).iterdir()))
        return [Path(made[file]).read_text(encoding="utf-8") for file in files]

    def test_answers_are_the_same_but_for_names(self):
        rich = json.loads((hosts.ROOT / "tests/hosts/command-line.json").read_text())
        pairs = {"rill": RILL, "pulled": PULLED, "rich": rich, **{
            f"random-{seed}": questions.random_host(random.Random(seed)) for seed in range(run.RANDOM_HOSTS)}}
        made = dict(zip(pairs, map(json.loads, self.anonymous(*pairs.values()))))
        names = {name: Renaming((pairs[name], made[name])) for name in pairs}
        commands = ["metrics", *(f"--json {command}" for command in ("report", "paths", "check", "hba --leadville"))]
        both = {name: [(command, command) for command in commands] for name in pairs}
        array, controllers = "--json array {} {} SUN CSM200_R", hosts.ARRAY[:2]
        both["rill"] += [("--json disk /oracle", f"--json disk /{names['rill'].of('oracle')}"),
                         (array.format(*controllers),
                          array.format(*(names["rill"].of(each).upper() for each in controllers))),
                         ("--json compare rill.json pulled.json",) * 2]
        of_rill = Renaming(*((pairs[each], made[each]) for each in ("rill", "pulled")))
        folders = []
        for side, descriptions in enumerate((pairs, made)):
            folders.append(tempfile.mkdtemp(dir=self.folder))
            lines = [("" if "compare" in each[side] else f"--host {name}.json ") + each[side]
                     for name, listed in both.items() for each in listed]
            for name, description in descriptions.items():
                write(folders[side], f"{name}.json", description)
            answered = run.answers(folders[side], lines)
            folders[side] = [answered[line + " "].decode() for line in lines]
        tried = [(name, each[0]) for name, listed in both.items() for each in listed]
        for (name, command), was, now in zip(tried, *folders):
            parsed = [json.loads(text[text.index("\n{"):]) if "\n{" in text else text.splitlines()
                      for text in (was, now)]
            renaming = of_rill if name == "rill" else names[name]
            self.assertTrue(renaming.relates(*parsed), (name, command, was[:4000], now[:4000]))

    def test_no_secret_survives(self):
        originals = [RILL, PULLED, *hosts.known().values(), *map(hosts.anything, range(run.RANDOM_HOSTS))]
        count, numbers = 0, {"RECEIVE DIAGNOSTIC A0", "LOG SENSE 3B"}  # by chance letters too
        for original, text in zip(originals, self.anonymous(*originals)):
            told = [each for _, each in texts(json.loads(text))]
            words = {word for each in told for word in WORD.findall(each.lower())}
            identifiers = {word[-8:] for word in words for word in re.findall(r"[0-9a-f]{16,32}", word)}
            kept = {word.lower() for name, each in texts(original) if name in HARMLESS | {"INQUIRY"}
                    for word in WORD.findall(each[:36] if name == "INQUIRY" else each)}  # there which product it is
            for name, each in texts(original):
                if name in HARMLESS | numbers:
                    continue
                for word in WORD.findall(each.lower()):
                    for digits in re.findall(r"[0-9a-f]{16,32}", word):
                        if digits.strip("0") and digits[-8:].strip("0"):
                            self.assertNotIn(digits[-8:], identifiers)
                            count += 1
                    if len(word) >= 4 and word not in kept and not is_form(word, name):
                        self.assertNotIn(word, words, each)
                        count += 1
        self.assertGreater(count, 1000)

    def test_what_has_no_row_or_not_its_form_is_gone(self):
        def marked(value, form, name=""):
            if isinstance(value, dict):
                inner = {member: marked(each, form, member) for member, each in value.items()}
                return {**inner, MARK: form, f"{MARK} more": {MARK: [form, {"x": form}]}}
            if isinstance(value, list):
                return [marked(each, form, name) for each in value] + ([] if name in HARMLESS else [form, [form]])
            in_page = isinstance(form, str) and name == "INQUIRY"  # whose begin says which product it is
            return value if name in HARMLESS else "00 " * 36 + form if in_page else form

        everything = {**RILL, "entries": hosts.anything(1)["entries"], "listings": {"/dev/rdsk": ["c1t0d0s2"]}}
        everything["disks"] = RILL["disks"] + [{"name": "x", "slices": [{"name": "s2", "link": "a", "rawLink": "b"}]}]
        originals = [marked(everything, form) for form in FORMS]
        for form, text in zip(FORMS, self.anonymous(*originals)):
            told = "\n".join(each for _, each in texts(json.loads(text))) + text
            self.assertNotIn(MARK.lower()[:-1], told.lower().replace(" ", ""), form)
            self.assertNotIn(MARK.encode().hex(), re.sub(r"\s", "", text.lower()), form)

    def test_names_in_unusual_places_are_gone_and_joined(self):
        page = {"INQUIRY": "000005021f000002" + b"SUN     SE6920          0201".hex(), "INQUIRY 00": "00000001 83",
                "INQUIRY 83": "0083000c 010200086000000000c0ffee"}
        host = {**RILL, "hba": {"adapters": [{"name": "LP-200000e08bc0ffee-1", "attributes": {
                    "Model": "Rill-1", "DriverVersion": "RILL 2"}}]},
                "mnttab": ["/dev/md/s12/dsk/d10\t/a\tufs\trw\t1", "/dev/vx/dsk/c12/v1\t/b\tvxfs\trw,addr=12.1\t1"],
                "disks": [{"name": "c9t6000000000C0FFEEd0", "scsi": page, "path": "/scsi_vhci/ssd@g6000000000c0ffee"}]}
        text = self.anonymous(host)[0]
        for gone in ("c0ffee", "/s12/", "/c12/", "rill", "12.1"):
            self.assertNotIn(gone, text.lower())
        made = json.loads(text)["disks"][0]
        self.assertEqual({made["path"][-16:], made["name"][3:-2].lower()}, {made["scsi"]["INQUIRY 83"].replace(" ", "")[16:]})

    def test_a_key_joins_the_hosts_of_a_network_and_another_does_not(self):
        planted = network.Network(network.HEALTHY + network.FAULTS)
        names, originals = zip(("rill.json", RILL), *(
            (name, each) for name, each in planted.descriptions() if name.endswith(".json")))
        made = [json.loads(text) for text in self.anonymous(*originals)]
        joined = Renaming(*zip(originals, made))
        changed = [word for word in joined.known if len(word) > 5 and word not in joined.known[word]]
        self.assertGreater(len(changed), 150)
        self.assertEqual([word for word, found in joined.known.items() if len(word) > 5 and len(found - {word}) > 1], [])
        self.assertEqual(len(set().union(*(joined.known[word] for word in changed))), len(changed))  # no two are one
        for word, company in (("50060e8000c3a2b1", "0060e8"), ("60060e8004c3a2000000c3a200000100", "0060e8"),
                              ("100000606950a1c4", "006069")):
            self.assertIn(company, next(iter(joined.known[word]))[1:10])
        other = key(self.folder, "other", bytes(range(100, 200)))
        apart = Renaming((RILL, json.loads(self.anonymous(RILL, with_key=other)[0]))).known
        self.assertEqual([word for word in changed if apart.get(word, set()) & joined.known[word]], [])
        stores, shown = [], []
        for side, descriptions in enumerate((originals, made)):
            store, folder = str(Path(self.folder, f"{side}.db")), Path(tempfile.mkdtemp(dir=self.folder))
            for name, each in zip(names, descriptions):
                write(folder, name, each)
            self.tarn("san", "load", "--db", store, folder)
            with contextlib.closing(sqlite3.connect(store)) as opened:
                stores.append([[list(row) for row in opened.execute(asked)] for asked in ABOUT_NETWORK])

            def ask(*words, status=0):
                return json.loads(self.tarn("--json", "san", *words, "--db", store, status=status).stdout)["result"]
            shown.append([sorted((each["severity"], each["code"], len(each["hosts"]))
                                 for each in ask("check", "--max-age=7d", status=1)["findings"])])
            for kind in ("switch", "array-port"):
                shown[side].append(sorted([each[count] for count in ("hosts", "lostUnits", "lostMounts", "lastPaths")]
                                          for each in ask("impact", "--each", kind)))
            asked = ("1000006069000000", "200100a0b8000000", "db1", "mail1")
            found = ask("who", *(joined.of(thing) if side else thing for thing in asked), "FX-1100")
            shown[side].append([[len(each["hosts"]), sorted((len(host["ports"]), len(host["units"]), len(host["disks"]))
                                                            for host in each["hosts"])] for each in found])
        self.assertEqual(*shown)
        for asked, was, now in zip(ABOUT_NETWORK, *stores):
            self.assertTrue(was and joined.relates(was, now), (asked, was, now))

    def test_files_go_where_they_are_wanted(self):
        plain = write(self.folder, "rill.json", RILL)
        packed = write(self.folder, "brook.json.gz", gzip.compress(json.dumps(PULLED).encode()))
        shown = self.tarn("anonymous", self.key, plain).stdout
        out, single = Path(self.folder, "out"), Path(self.folder, "single.json.gz")
        self.tarn("anonymous", self.key, plain, "--output", single)
        self.assertEqual(gzip.decompress(single.read_bytes()), shown)
        self.assertEqual(self.tarn("anonymous", self.key, "-", input=Path(plain).read_bytes()).stdout, shown)
        refused = [write(self.folder, "cut", b"{"), str(Path(self.folder, "none"))]
        done = self.tarn("anonymous", self.key, plain, *refused, packed, plain, "--output", out, status=1)
        self.assertEqual(done.stderr.decode().splitlines(), [
            f"tarn: {refused[0]}: not JSON: it ends too early", f"tarn: {refused[1]}: there is no such file"])
        host = json.loads(shown)["uname"]["nodename"]
        self.assertEqual(sorted(path.name for path in out.iterdir()), [
            f"{host}-20051212T092341Z-2.json", f"{host}-20051212T092341Z.json", f"{host}-20051212T102341Z.json.gz"])
        self.assertEqual((out / f"{host}-20051212T092341Z-2.json").read_bytes(), shown)
        self.assertEqual(json.loads(gzip.decompress((out / f"{host}-20051212T102341Z.json.gz").read_bytes()))["uname"],
                         json.loads(shown)["uname"])

    def test_what_is_refused_is_one_line_and_no_file(self):
        for name, data, mode in (("short", bytes(31), 0o600), ("open", bytes(range(40)), 0o644),
                                 ("zeros", bytes(64), 0o600), ("long", bytes(range(256)) * 17, 0o600)):
            key(self.folder, name, data, mode)
        text = json.dumps(RILL).encode()
        for name, data in (
                ("a.json", RILL), ("cut.json", text[:5000]), ("list.json", []), ("empty", b""), ("more.json", b"{}{}"),
                ("latin.json", b'{"uname": {"nodename": "\xe9"}}'), ("no.gz", b"\x1f\x8bxyz"),
                ("deep.json", b'{"x":' * 40), ("cut.gz", gzip.compress(text)[:900])):
            write(self.folder, name, data)
        before = sorted(os.listdir(self.folder))
        refused = (
                ("short a.json", "'short' cannot be the key: it is shorter than 32 bytes"),
                ("zeros a.json", "'zeros' cannot be the key: its bytes are not random"),
                ("long a.json", "'long' cannot be the key: it is longer than 4096 bytes"),
                ("none a.json", "'none' cannot be the key: there is no such file"),
                ("open a.json", "'open' cannot be the key: others may read or write it (chmod 600 makes it"),
                ("key no.json", "no.json: there is no such file"), ("key /dev/zero", "/dev/zero: it is a device"),
                ("key .", ".: it is a directory"), ("key empty", "empty: not JSON: it ends too early"),
                ("key cut.json", "cut.json: not JSON: unterminated string (line 1, column 5001)"),
                ("key cut.gz", "cut.gz: not JSON: it ends too early"),
                ("key list.json", "list.json: no description of a host: it is no JSON object"),
                ("key latin.json", "latin.json: not JSON: it is not UTF-8"),
                ("key deep.json", "deep.json: no description of a host: it has more than 32 levels of brackets"),
                ("key more.json", "more.json: not JSON: "), ("key no.gz", "no.gz: what gzip made of it is damaged"),
                ("key a.json --output key", "'key' is the key"),
                ("key a.json a.json --output a.json", "'a.json' cannot be a folder"),
                ("key a.json --output no/where", "'no/where' cannot be written: there is no such directory"),
                ("key a.json a.json", "--output names a folder for several descriptions"),
                ("key a.json --json", "A description is JSON as it is; --host, --json, --csv and device names"))
        told = together.in_one_machine(run.CLASS_PATH, [f"anonymous {words}" for words, _ in refused], self.folder)
        for (words, complaint), done in zip(refused, told, strict=True):
            self.assertEqual((done.returncode, done.stdout, done.stderr.count(b"\n")), (2, b"", 1), words)
            self.assertIn(f"tarn: {complaint}", done.stderr.decode())
        self.assertEqual(sorted(os.listdir(self.folder)), before)

    def test_a_host_is_recorded_with_pseudonyms_at_once(self):
        source, out = write(self.folder, "rill.json", {**RILL, "shadow": {}}), str(Path(self.folder, "out.json"))
        clear = run.undated(self.tarn("record", "--quiet", "--host", source).stdout)
        recorded = self.tarn("record", "--quiet", "--host", source, "--anonymous", self.key).stdout
        wanted = self.tarn("anonymous", self.key, "-", input=clear).stdout
        self.assertEqual(run.undated(recorded), wanted)
        self.tarn("record", "--quiet", "--host", source, "--anonymous", self.key, "--output", out)
        self.assertEqual((run.undated(Path(out).read_bytes()), stat.S_IMODE(os.stat(out).st_mode)), (wanted, 0o600))
        done = self.tarn("record", "--host", source, "--anonymous", self.key, "--output", out, status=2)
        self.assertEqual(done.stderr.decode(), f"tarn: '{out}' cannot be written: there is a file of that name\n")
        os.unlink(out)
        hanging = write(self.folder, "hangs.json", {
            "uname": {"nodename": "secret"}, "mnttab": ["a\t/a\tufs\trw\t1"], "statvfs": {"/a": {"seconds": 60}}})
        with subprocess.Popen([TARN, "record", "--timeout=40", "--host", hanging, "--anonymous", self.key, "--output",
                               out], stderr=subprocess.PIPE) as started:
            while b"mnttab" not in started.stderr.readline():
                pass
            started.send_signal(signal.SIGTERM)
            started.stderr.read()
        self.assertEqual((started.returncode, set(json.loads(Path(out).read_text()))),
                         (143, {"recordedAt", "uname", "mnttab"}))
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith(".")], [])

    def test_each_member_of_a_description_has_a_row(self):
        members = set().union(*(re.findall(r"MEMBER\([\w:]+, (\w+)", path.read_text())
                                for path in (hosts.ROOT / "description").glob("*Members.h")))
        rows = set(re.findall(r"^ *(\w+)", (TABLES / "members.txt").read_text(), re.M))
        self.assertEqual((members - rows, len(members) > 120), (set(), True))


def main():
    global TARN
    TARN, run.BUILD, run.CLASS_PATH = (os.path.abspath(part) if "/" in part and ":" not in part else part
                                       for part in sys.argv[1:])
    return verdict.report(unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Anonymous)))


if __name__ == "__main__":
    sys.exit(main())

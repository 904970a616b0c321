"""Records hosts and holds the recordings to them: python3 tests/record/run.py TARN BUILD CLASS-PATH [RECORDER...]

With another recorder, such as one under an emulator, nothing is held but that it writes the same bytes.
"""

import json
import os
import pty
import re
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import hosts

sys.path.append(str(Path(__file__).parents[1]))
import verdict

RANDOM_HOSTS = int(os.environ.get("TARN_RANDOM_HOSTS", "24"))
NAMED = ["logical-disks /", "processors 0", "cpu 0", "disk-io c1t0d0", "disks c1t0d0", "disk c1t0d0", "disk /",
         "partitions c1t0d0s0"]
ARRAY = " ".join(hosts.ARRAY)
COMMANDS = ["report", f"--json report --array {ARRAY}", "computer-system", "operating-system", "--csv logical-disks --sizes",
            "hba --keep-os-device-name --leadville", "hba --force-leadville", "hba-test", f"array {ARRAY}", "build-date",
            "paths", "check", f"check --array {ARRAY}", "map --all", "metrics", *NAMED]
# About the users, held below or beside the others, about no host.
ELSEWHERE = {"anonymous", "authenticate", "record", "watch", "serve", "san", "help", "completion"}


def run(command, host=None, **more):
    environment = {**os.environ, "TARN_HOST": str(host or ""), "LC_ALL": "C"}
    return subprocess.run(command, env=environment, capture_output=True, timeout=300, **more)


def scratch_host(description, folder=None, name=None):
    path = Path(folder or tempfile.mkdtemp(dir=SCRATCH), name or "host.json")
    path.write_text(json.dumps(description))
    return str(path)


def all_hosts():
    hosts_by_name = hosts.known() | {f"random-{seed}": hosts.anything(seed) for seed in range(RANDOM_HOSTS)}
    return {name: {**host, "recordedAt": "2026-11-24T10:00:00Z"} for name, host in hosts_by_name.items()}


def record(recorder, host):
    done = run([*recorder, "--quiet", "--array", *hosts.ARRAY], host)
    assert (done.returncode, done.stderr) == (0, b""), done
    return done.stdout


def undated(recording):
    """The recording as if it were made when the host was described; fails when it does not tell the time."""
    undone, count = re.subn(rb'^  "recordedAt": "\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ"',
                            b'  "recordedAt": "2026-11-24T10:00:00Z"', recording, flags=re.M)
    assert count == 1, recording
    return undone


class RoundTrip(unittest.TestCase):
    """Every command prints for the recording what it prints for the host."""

    @classmethod
    def prepare(cls, descriptions, pool):
        """Everything that takes long: two virtual machines side by side answer all the commands."""
        was, now = (Path(SCRATCH, side) for side in ("was", "now"))
        was.mkdir()
        now.mkdir()
        cls.recordings = dict(zip(descriptions, pool.map(cls.record, descriptions.items())))
        for name, (recording, _) in cls.recordings.items():
            Path(now, f"{name}.json").write_bytes(recording)
        lines = [f"--host {name}.json {command}" for name in descriptions for command in COMMANDS]
        lines += [f"compare {name}.json ../was/{name}.json" for name in descriptions]
        # The command line keeps the log of each run, which makes a virtual machine slow that runs too many.
        parts = [(folder, lines[i:i + 1000]) for i in range(0, len(lines), 1000) for folder in (was, now)]
        cls.was, cls.now = {}, {}
        for (folder, _), found in zip(parts, pool.map(answers, *zip(*parts))):
            (cls.was if folder == was else cls.now).update(found)

    @staticmethod
    def record(named):
        """The recording of a host, and the recording of the recording."""
        name, description = named
        recording = undated(record(RECORDER, scratch_host(description, Path(SCRATCH, "was"), f"{name}.json")))
        copy = Path(SCRATCH, f"{name}.json")
        copy.write_bytes(recording)
        return recording, undated(record(RECORDER, copy))

    def hold(self, name):
        recording, again = self.recordings[name]
        self.assertEqual(again, recording)
        self.assertNotIn(b"shadow", recording)
        held = [command for command in self.was if f" {name}.json " in command]
        self.assertEqual(len(held), len(COMMANDS) + 1)
        for command in held:
            self.assertNotEqual(self.was[command], b"")
            self.assertEqual(self.now[command], self.was[command], command)
        self.assertIn(b"nothing changed\n", self.was[held[-1]])

    def test_no_command_is_left_out(self):
        listed = re.findall(r"^  ([a-z][a-z-]*)", run([TARN, "--help"]).stdout.decode(), re.M)
        asked = {word for command in COMMANDS for word in command.split()}
        self.assertEqual(set(listed) - asked - {"compare"}, ELSEWHERE)


def answers(folder, lines):
    """What each command prints, and its exit status."""
    environment = {**os.environ, "TARN_HOST": "", "LC_ALL": "C.UTF-8"}
    done = subprocess.run(
        ["java", "-XX:+UseSerialGC", "-XX:TieredStopAtLevel=1", f"-Djava.library.path={BUILD}", "-cp", CLASS_PATH,
         Path(__file__).parent / "Commands.java"], input="\n".join(lines).encode(), cwd=folder, env=environment,
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
    assert done.returncode == 0, done
    found = re.findall(rb"(.*?)\0([^\n]*): (\d+)\n", done.stdout, re.S)
    assert [command.decode() for _, command, _ in found] == lines, done.stdout[-2000:]
    return {command.decode() + " ": status + b"\n" + printed for printed, command, status in found}


class SameBytes(unittest.TestCase):
    """Another recorder writes the same bytes."""

    @classmethod
    def prepare(cls, descriptions, pool):
        for side in (RECORDER, OTHER):
            hosts_written = [scratch_host(description) for description in descriptions.values()]
            found = dict(zip(descriptions, pool.map(lambda host, by=side: undated(record(by, host)), hosts_written)))
            setattr(cls, "other" if side is OTHER else "own", found)

    def hold(self, name):
        self.assertEqual(self.other[name], self.own[name])


class Recorder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(dir=SCRATCH)
        self.addCleanup(self.folder.cleanup)
        self.file = os.path.join(self.folder.name, "host.json")

    def test_tarn_records_the_host_that_it_is_told(self):
        host = scratch_host({"uname": {"nodename": "other"}})
        done = run([TARN, "record", "--quiet", "--host", host])
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(undated(done.stdout), b'{\n  "recordedAt": "2026-11-24T10:00:00Z",\n'
                                               b'  "uname": {"nodename": "other"}\n}\n')

    def test_a_recording_that_is_ended_is_what_is_known_so_far(self):
        host = scratch_host({"mnttab": ["a\t/a\tufs\trw\t1"], "statvfs": {"/a": {"seconds": 60}},
                             "disks": [{"name": "c1"}, {"name": "c2", "seconds": {"open": 60}}, {"name": "c3"}]})
        for command, ending in (([TARN, "record"], signal.SIGTERM), (RECORDER, signal.SIGTERM), (RECORDER, signal.SIGINT)):
            started = subprocess.Popen([*command, "--timeout=20", "--output", self.file], stderr=subprocess.PIPE,
                                       env={**os.environ, "TARN_HOST": host})
            with started:
                while b"mnttab" not in started.stderr.readline():
                    pass
                time.sleep(0.5)
                started.send_signal(ending)
                told = started.stderr.read()  # ends with the recorder
            self.assertIn(b"\nNot read: the rest\n", told)
            self.assertNotIn(b"statvfs", told)
            self.assertEqual(started.returncode, 143 if command[0] == TARN else 1)
            self.assertEqual(os.listdir(self.folder.name), ["host.json"])
            self.assertEqual([disk["name"] for disk in json.loads(Path(self.file).read_text())["disks"]], ["c1", "c3"])
            self.assertEqual(run(RECORDER, self.file).returncode, 0)  # it is a description
            os.unlink(self.file)

    def test_a_file_is_made_whole_for_its_owner_only(self):
        os.umask(0o000)
        self.assertEqual(run([*RECORDER, f"--output={self.file}"]).returncode, 0)
        self.assertEqual(stat.S_IMODE(os.stat(self.file).st_mode), 0o600)
        self.assertEqual(json.loads(Path(self.file).read_text())["uname"]["nodename"], "rill")
        self.assertEqual(os.listdir(self.folder.name), ["host.json"])

    def test_what_the_shell_closes_or_limits_spoils_no_file(self):
        def shell(script):
            return run(["sh", "-c", script, *RECORDER, self.file]).returncode
        self.assertEqual(shell('ulimit -f 1; exec "$0" --quiet --output "$1"'), 1)
        self.assertEqual(os.listdir(self.folder.name), [])
        self.assertEqual(shell('exec "$0" --quiet >&-'), 1)
        self.assertEqual(shell('exec "$0" --output "$1" <&- >&- 2>&-'), 0)
        self.assertEqual(json.loads(Path(self.file).read_text())["statvfs"]["/"]["f_bsize"], 8192)
        os.unlink(self.file)
        reader, ended = os.pipe()
        os.close(reader)
        done = subprocess.run([*RECORDER, "--output", self.file], stderr=ended, timeout=60)
        os.close(ended)
        self.assertEqual((done.returncode, os.listdir(self.folder.name)), (0, ["host.json"]))

    def test_what_is_refused_is_one_line_and_no_file(self):
        Path(self.folder.name, "old").write_text("old")
        folder, usage = self.folder.name, " (try 'tarn-record --help')"
        for arguments, status, complaint in (
                (["--output", f"{folder}/old"], 1, f"{folder}/old: File exists"),
                (["--output", f"{folder}/no/file"], 1, f"{folder}/no/file: No such file or directory"),
                (["--output"], 2, "--output takes a file" + usage),
                (["--output="], 2, "--output: '' is no file" + usage),
                (["--frob=1"], 2, "unknown option '--frob'" + usage),
                (["rill"], 2, "surplus argument 'rill'" + usage),
                (["\x1b\udc9b"], 2, "surplus argument '\\x1b\\x9b'" + usage),
                (["--quiet=yes"], 2, "--quiet takes no value" + usage),
                (["--timeout", "1s"], 2, "--timeout: '1s' is no number of seconds from 1 to 86400" + usage),
                (["--array", "a", "b", "c", "--quiet"], 2,
                 "--array takes four names: CONTROLLER1 CONTROLLER2 VENDOR PRODUCT" + usage)):
            done = run([*RECORDER, *arguments])
            self.assertEqual((done.returncode, done.stdout, done.stderr.decode()),
                             (status, b"", f"tarn-record: {complaint}\n"))
        self.assertEqual([path.read_text() for path in Path(folder).iterdir()], ["old"])
        unusable = scratch_host({"frob\x1b": 1})
        done = run(RECORDER, unusable)
        self.assertEqual((done.returncode, done.stdout, done.stderr.count(b"\n")), (2, b"", 1))
        self.assertNotIn(b"\x1b", done.stderr)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([*RECORDER, "--quiet"], stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((done.returncode, done.stderr),
                         (1, b"tarn-record: standard output: No space left on device\n"))

    def test_it_says_what_it_does(self):
        disks = [{"name": f"c{i}", "slices": ["s0"], "geometry": {}, "vtoc": {}, "fails": {"open": "EBUSY"} if i == 7 else {}}
                 for i in range(250)]
        disks[9] = {"name": "c9", "slices": ["s0", ""], "directories": ["/dev/dsk"], "fails": {"stat": "EIO"}}
        host = scratch_host({"disks": disks, "mnttab": ["a\t/a\tufs\trw\t1"]})
        told = run([*RECORDER], host).stderr.decode()
        for line in ("mnttab: 1 line", "disks: 249 raw devices", "statvfs: 0 of 1 file system", "Not read:",
                     "  uname: all of it: Function not implemented", "  kstat: all of it: No such file or directory",
                     "  disks: c7s0 open O_RDWR: Device or resource busy",
                     "  disks: c9s0 to c9 stat: Input/output error", "  statvfs: /a: No such file or directory",
                     "  hba: all of it: Error"):
            self.assertIn(line + "\n", told)
        self.assertNotIn("\r", told)
        failing = [{"name": f"c{i}", "slices": ["s0"], "fails": {"open": "EIO"}} for i in range(90)]
        self.assertRegex(run(RECORDER, scratch_host({"disks": failing})).stderr, rb"(\n  .*){50}\n  and 5\d more\n$")
        self.assertIn(b"/dev/rdsk: 200 of 249", self.on_terminal(host))

    def on_terminal(self, host, *options):
        verdict.need_terminal(self)
        shown, (reader, terminal) = b"", pty.openpty()
        environment = {**os.environ, "TARN_HOST": host}
        with subprocess.Popen([*RECORDER, *options], env=environment, stdout=subprocess.DEVNULL, stderr=terminal):
            os.close(terminal)
            try:
                while more := os.read(reader, 65536):
                    shown += more
            except OSError:
                pass  # the other end is closed
        os.close(reader)
        return shown

    def test_what_hangs_is_given_up_and_named(self):
        mounts = [f"/m{i}" for i in range(20)]
        disks = [{"name": f"c{i}", "path": f"/sd@{i}", "geometry": {"dkg_nhead": i}, "vtoc": {}, "scsi": {"INQUIRY": "01"}}
                 for i in range(20)]
        disks[3]["seconds"] = {"open": 3600}
        disks[4]["seconds"] = {"DKIOCGGEOM O_RDWR": 3600}
        disks[11]["seconds"] = {"INQUIRY": 3600}
        disks[12]["seconds"] = {"readlink": 3600}
        ports = [{"discovered": [{}]}, {}]
        adapters = [{"name": name, "ports": ports} for name in "abc"]
        adapters[1]["seconds"] = {"GetPortStatistics": 3600}
        adapters.append({"name": "d", "seconds": {"OpenAdapter": 3600}})
        host = scratch_host({
            "mnttab": [f"srv:{mount}\t{mount}\tnfs\trw\t1" for mount in [*mounts, "/last"]], "disks": disks,
            "statvfs": {"/last": {"f_blocks": 3}} | {mount: {"seconds": 3600} for mount in mounts},
            "hba": {"adapters": adapters}})
        limit, before = 4, time.monotonic()
        done = run([*RECORDER, f"--timeout={limit}"], host)  # ends with its output: nobody waits for what hangs
        self.assertLess(time.monotonic() - before, 3 * limit)  # several sections, and both adapters, at once
        found = json.loads(done.stdout)
        gone = {"fails": "ETIMEDOUT"}
        self.assertEqual(found["statvfs"], {"/last": {"f_blocks": 3}} | {mount: gone for mount in mounts})
        same = {"directories", "scsi", "vtoc", "geometry"}
        self.assertEqual([disk.get("fails") for disk in found["disks"]],
                         [{3: {"open": "ETIMEDOUT"}, 4: {"DKIOCGGEOM": "ETIMEDOUT"}, 11: {"INQUIRY": "ETIMEDOUT"},
                           12: {"readlink": "ETIMEDOUT"}}.get(i)
                          for i in range(20)])
        for i in (2, 5, 10, 13):
            self.assertEqual({key: disks[i].get(key) for key in same}, {key: found["disks"][i].get(key) for key in same})
        whole, cut, behind, closed = found["hba"]["adapters"]
        self.assertEqual(({**whole, "name": "c"}, whole["ports"][0]), (behind, {"discovered": [{}]}))
        self.assertEqual(cut["ports"], [
            {"discovered": [{"status": {"GetDiscoveredPortAttributes": 12}}], "status": {"GetPortStatistics": 12}},
            {"status": {"GetAdapterPortAttributes": 12}}])
        self.assertEqual(closed, {"name": "d", "openFailures": 2})
        for what in ("disks: c3s0 open O_RDWR", "disks: c4s0 DKIOCGGEOM", "disks: c11s2 INQUIRY",
                     "hba: adapter 1 GetPortStatistics port 0", *(f"statvfs: {mount}" for mount in mounts)):
            self.assertIn(f"  {what}: Connection timed out\n".encode(), done.stderr)
        self.assertIn(b"statvfs: 1 of 21 file systems\n", done.stderr)
        shown = self.on_terminal(host, f"--timeout={limit}")
        self.assertRegex(shown, rb"\r/dev/rdsk: \d+ of 160, waiting for c\d+s\d ")

    def test_what_an_asker_cannot_do_is_no_answer_of_the_host(self):
        host = scratch_host({"mnttab": ["a\t/a\tufs\trw\t1", "b\t/b\tufs\trw\t1"], "disks": [{"name": "c1"}],
                             "statvfs": {"/a": {"seconds": 60}, "/b": {"f_blocks": 1}},
                             "hba": {"adapters": [{"name": "a", "seconds": {"GetAdapterName": 60}}, {"name": "b"}]}})
        with subprocess.Popen([*RECORDER, "--timeout=30"], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              env={**os.environ, "TARN_HOST": host}) as started:
            time.sleep(2)
            family = subprocess.run(["ps", "-eo", "pid=,ppid="], capture_output=True, text=True).stdout.split()
            parents = dict(zip(map(int, family[::2]), map(int, family[1::2])))
            for process, parent in parents.items():
                if parents.get(parent) == started.pid:
                    os.kill(process, signal.SIGKILL)
            recording, told = started.communicate()
        self.assertEqual(json.loads(recording)["statvfs"], {"/b": {"f_blocks": 1}})
        self.assertEqual(json.loads(recording)["hba"], {"adapters": [{"name": "b"}]})
        self.assertIn(b"  statvfs: /a: the process that asked ended with signal 9\n", told)

    def test_entries_that_no_line_tells_are_kept(self):
        entry = dict(zip(("mnt_special", "mnt_mountp", "mnt_fstype", "mnt_mntopts", "mnt_time"),
                         ("d", "/a\tb\x1b", "ufs", "x" * 2000, "1")))
        table = ["d\t/\tufs\trw\t1", entry, "d\t/b\tufs\trw\t1"]
        done = run(RECORDER, scratch_host({"mnttab": table}))
        self.assertEqual(json.loads(done.stdout)["mnttab"], table)
        self.assertIn(b"  statvfs: /a\\x09b\\x1b: No such file or directory\n", done.stderr)

def main():
    global SCRATCH, TARN, BUILD, CLASS_PATH, RECORDER, OTHER
    TARN, BUILD, CLASS_PATH, *OTHER = sys.argv[1:]
    BUILD = os.path.abspath(BUILD)
    RECORDER = [os.path.join(BUILD, "tarn-record")]
    held = SameBytes if OTHER else RoundTrip
    descriptions = all_hosts()
    with tempfile.TemporaryDirectory(prefix="tarn-record-") as SCRATCH, ThreadPoolExecutor(2) as pool:
        held.prepare(descriptions, pool)
        for name in descriptions:
            setattr(held, f"test_{name}", lambda self, name=name: self.hold(name))
        load = unittest.defaultTestLoader.loadTestsFromTestCase
        suite = load(held) if OTHER else unittest.TestSuite([load(held), load(Recorder)])
        result = unittest.TextTestRunner().run(suite)
    return verdict.report(result)


if __name__ == "__main__":
    sys.exit(main())

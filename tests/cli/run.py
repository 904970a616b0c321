"""Runs the command line on host descriptions with known answers: python3 tests/cli/run.py PATH-TO-TARN CLASS-PATH"""

import json
import os
import pty
import random
import re
import shlex
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor
from contextlib import suppress
from fcntl import ioctl
from pathlib import Path

import activity
import questions
from cases import ANY, CASES, HOSTS, MOUNTS, PASSWORD, RICH, ROOT, SOUND, Case

sys.path.append(str(Path(__file__).parents[1]))
import verdict
from together import JAVA, in_one_machine, line_of

RANDOM_HOSTS = int(os.environ.get("TARN_RANDOM_HOSTS", "24"))
TARN = SCRATCH = None  # the command, and where the descriptions are written


def write_host(host):
    path = Path(tempfile.mkdtemp(dir=SCRATCH)) / "😀HOST.json"
    path.write_text(host if isinstance(host, str) else json.dumps(host), encoding="utf-8")
    return str(path)


def words_of(case):
    words = [write_host(HOSTS[word]) if word in HOSTS else word for word in shlex.split(case.command)]
    words += ["--json"] * case.is_json()
    if case.host is not None:
        words = ["--host", write_host(case.host), *words]
    return words


def run(case):
    return subprocess.run([TARN, *words_of(case)], cwd=ROOT, input=case.password.encode(), capture_output=True,
                          timeout=120, env={**os.environ, **case.environment})


def ask(command, host=None):
    return json.loads(run(Case(command, host, result=None)).stdout)


def run_together(cases):
    """The like of run for each, none of which asks anything of the process that it runs in."""
    return in_one_machine(sys.argv[2], [
        line_of(words if {"--host", "compare"} & set(words) else  # not the host of the case before
                ["--host", os.environ["TARN_HOST"], *words]) for words in map(words_of, cases)])


def begin(pool):
    """Begins the runs of all cases, which go on two at a time while earlier ones are checked; returns for each what
    waits for its end. Those whose command has been run before, as it is for a user, share a virtual machine."""
    waits, shared, begun = {}, [], set()
    for number, case in enumerate(CASES):
        words = shlex.split(case.command)
        kind = (next((word for word in words if not word.startswith("-")), None), case.is_json(), bool(case.complains))
        # What hung for one of them would be given up for all.
        told = json.dumps([HOSTS[word] for word in words if word in HOSTS])
        hangs = case.host in (MOUNTS, SOUND) or "seconds" in told
        if kind in begun and not hangs and not case.password and not case.environment and "\n" not in case.command:
            shared.append(number)
        else:
            begun.add(kind)
            waits[number] = pool.submit(run, case).result
    together = pool.submit(run_together, [CASES[number] for number in shared])
    return waits | {number: lambda place=place: together.result()[place] for place, number in enumerate(shared)}


def threads(process):
    """What its threads call themselves."""
    names = []
    for name in Path(f"/proc/{process}/task").glob("*/comm"):
        with suppress(OSError):  # it has ended
            names.append(name.read_text())
    return names


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
        seen, asked, volumes = set(), [], []
        own, everywhere = "hba --keep-os-device-name", "logical-disks --all"
        for seed in range(1, 1 + RANDOM_HOSTS):
            host, was = (questions.random_host(random.Random(each)) for each in (seed, 1000 + seed))
            paths = [write_host(each) for each in (host, was)]
            mounts = dict.fromkeys(mount for kind in ("ufs", "vxfs") for _, mount, *of in (
                line.split("\t") for line in host.get("mnttab", [])) if of[0] == kind)  # the agent's own come first
            volumes.append({disk["name"]: "naa." + disk["scsi"]["INQUIRY 83"][16:] for disk in host["disks"]
                            if "scsi" in disk})
            check = f"check --baseline {paths[1]}"
            asked += [(check, mounts, *([f"--host {path} --json {command}" for command in commands] for path, commands in
                                        zip(paths, ([*questions.SECTIONS, "paths", own, check, everywhere] +
                                                    [f"logical-disks {mount}" for mount in mounts],
                                                    ["disks", "hba", "paths"]))))]
        documents = {done.args: json.loads(done.stdout) for done in
                     in_one_machine(sys.argv[2], [line for _, _, now, before in asked for line in now + before])}
        for seed, (check, mounts, now, before) in enumerate(asked, 1):
            now, before = ({line.split(" ", 3)[3]: documents[line] for line in lines} for lines in (now, before))
            found = now[check]["result"]
            findings = [(one["severity"], one["code"], one["subject"]) for one in found["findings"]]
            seen.update(findings)
            told = {mount: now[f"logical-disks {mount}"] for mount in mounts}
            self.assertEqual(findings, questions.check(now, told, before), seed)
            self.assertEqual(found["state"], findings[0][0].upper() if findings else "OK", seed)
            self.assertEqual(now["paths"]["result"], questions.paths(
                *(now[command]["result"] for command in ("hba", own, "disks", everywhere)), volumes[seed - 1]), seed)
        self.assertEqual(set(questions.CODES) - {code for _, code, _ in seen}, set())

    def assert_close(self, shown, expected, place):
        """The same names in the same order, and the same numbers but for what the last digits lose."""
        if isinstance(expected, dict):
            self.assertEqual(list(shown), list(expected), place)
            shown, expected = list(shown.values()), list(expected.values())
        if isinstance(expected, list):
            self.assertEqual(len(shown), len(expected), place)
            for i, pair in enumerate(zip(shown, expected)):
                self.assert_close(*pair, (*place, i))
        elif isinstance(expected, float) and shown is not None:
            self.assertAlmostEqual(shown, expected, delta=1e-9 * max(1, abs(expected)), msg=place)
        else:
            self.assertEqual(shown, expected, place)

    def test_watch_follows_from_the_readings(self):
        hosts = [activity.random_host(random.Random(seed)) for seed in range(60)]
        lines = [f"--host {write_host(host)} --json watch 1 9 --disks --ports --units --errors" for host in hosts]
        for seed, (done, host) in enumerate(zip(in_one_machine(sys.argv[2], lines), hosts)):
            documents = [json.loads(each) for each in done.stdout.splitlines()]
            self.assert_close(documents, list(activity.watch(host)), (seed,))

    def test_a_watch_that_is_interrupted(self):
        host = {"kstat": [activity.record("sd0", "disk", "KSTAT_TYPE_IO", [
            {"reads": time, "ks_snaptime": time} for time in range(20000)])]}
        with subprocess.Popen([TARN, "--host", write_host(host), "--json", "watch", "1"], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, bufsize=0,
                              # Whoever runs the tests in the background may have it ignored.
                              preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL)) as watching:
            first = watching.stdout.readline()
            watching.send_signal(signal.SIGINT)
            # Nobody empties its pipe until it takes the signal, and it waits for that for a second only.
            end = time.monotonic() + 60
            while "SIGINT handler\n" not in threads(watching.pid) and time.monotonic() < end:
                time.sleep(0.01)
            rest, err = watching.communicate(timeout=120)
        shown = [json.loads(line) for line in (first + rest).splitlines()]
        self.assertEqual((watching.returncode, err), (0, b""))
        self.assertTrue(0 < len(shown) < 20000)

    def test_a_disk_is_the_same_under_all_its_names(self):
        names = ("c1t0d0 c1t0d0s0 /dev/dsk/c1t0d0s0 /dev/rdsk/c1t0d0s2 sd0 /export/home C1T0D0 /export/home/me/file "
                 "/devices/pci@1f,700000/scsi@2/sd@0,0:a,raw").split()
        for options in ("", " --json"):
            asked = in_one_machine(sys.argv[2], [f"--host hosts/rill.json{options} disk {name}" for name in names])
            self.assertEqual({done.returncode for done in asked}, {0})
            pages = {done.stdout for done in asked}
            self.assertEqual(len(pages), 1)
        disk = json.loads(pages.pop())["result"]
        self.assertEqual([disk["name"], disk["instance"], disk["drive"]["properties"]["diskType"],
                          disk["io"]["bytesRead"]], ["c1t0d0", "sd0", "SUN72G", 40354447360])
        self.assertEqual([len(disk[part]) for part in ("partitions", "mounts", "paths")], [8, 4, 0])
        self.assertEqual(disk["mounts"][0]["totalBytes"], 10576969728)

    def test_the_ways_to_a_disk(self):
        counts = {"/oracle": 2, "c4t50060E8000C3A2B1d2": 1, "c4t0d2": 1, "50060E8000c3a200 LUN 2": 1,
                  "1000001b320a77e0": 1}
        asked = run_together([Case(f"disk {name}", result=None) for name in counts])
        for count, disk in zip(counts.values(), (json.loads(done.stdout)["result"] for done in asked)):
            self.assertEqual([(way["node"], way["lun"]) for way in disk["paths"]],
                             [("50060e8000c3a200", 2 * (2 - count))] * count)

    def test_without_the_inventory(self):
        folder = tempfile.mkdtemp(dir=SCRATCH)
        os.symlink(ROOT / "build/release/libtarnsolaris.so", Path(folder, "libtarnsolaris.so"))
        for command, shown, untold, status in (
                ("disk c1t0d0", "SUN72G", ["mounts", "identities"], 0), ("paths /oracle", "LUN 0", ["identities"], 0),
                ("disks c1t0d0", "SUN72G", ["identities"], 0), ("map", "LUN 0", ["identities"], 0),
                ("logical-disks --all", "/oracle", ["mounts"], 0), ("check", "9 findings", ["mounts"], 1),
                ("metrics", 'section_up{section="mounts"} 0', [], 0)):
            done = subprocess.run([*JAVA, f"-Djava.library.path={folder}", "-cp", sys.argv[2], "com.kelvo.tarn.cli.Tarn",
                                   *command.split()], cwd=ROOT, capture_output=True, timeout=120, encoding="utf-8")
            self.assertIn(shown, done.stdout)
            self.assertEqual((done.returncode, re.findall(r"^warn: (\w+): no tarninventory in [^\n]*$", done.stderr, re.M),
                              done.stderr.count("tarninventory")), (status, untold, len(untold)), done.stderr)

    def test_each_description_is_read_once(self):
        was, now = (str(ROOT / "hosts" / name) for name in ("rill.json", "rill-cable-pulled.json"))
        script = (f"mkfifo pipe; cat {was} > pipe & %s --json compare pipe <(cat {now})")
        done = subprocess.run(["bash", "-c", script % TARN], cwd=tempfile.mkdtemp(dir=SCRATCH), capture_output=True,
                              timeout=120)
        self.assertEqual((done.returncode, done.stderr), (1, b""))
        self.assertEqual(json.loads(done.stdout)["result"], ask(f"compare {was} {now}")["result"])

    def test_a_pipe_serves_both_libraries(self):
        for command in ("watch 1", "metrics"):
            piped, plain = (subprocess.run(["bash", "-c", f"{TARN} {command} --host {host}"], timeout=120,
                                           capture_output=True)
                            for host in (f"<(cat {ROOT}/hosts/rill.json)", f"{ROOT}/hosts/rill.json"))
            self.assertEqual((piped.returncode, piped.stdout, piped.stderr), (0, plain.stdout, plain.stderr))
            self.assertIn(b"c1t0d0", piped.stdout)

    def test_the_cookbook(self):
        recipes = re.findall(r"```console\n(.*?)```", (ROOT / "docs/cookbook.md").read_text(), re.S)
        self.assertGreaterEqual(len(recipes), 12)
        for recipe in recipes:
            shown = ""
            for command in re.findall(r"^\$ (.*)", recipe, re.M):
                done = subprocess.run(["bash", "-c", command], cwd=ROOT, capture_output=True, text=True, timeout=120)
                shown += f"$ {command}\n{done.stdout}{done.stderr}"
            shown = re.sub(r"recorded \d+ days ago", "recorded 7653 days ago", shown)
            self.assertEqual(shown, recipe)

    def test_the_completion(self):
        script = ("source <(%s completion); COMP_WORDS=(tarn check --f); COMP_CWORD=2; _complete_tarn 2>&-; "
                  "echo ${COMPREPLY[@]}")
        done = subprocess.run(["bash", "-c", script % TARN], capture_output=True, text=True, timeout=120)
        self.assertEqual((done.stdout, done.stderr), ("--full\n", ""))

    def test_a_watch_on_a_terminal(self):
        host = write_host(activity.disks(*(f"sd{number}" for number in range(30))))
        status, shown = self.on_terminal(["--host", host, "watch", "1", "--screen"], 200)
        pages = [page.split("\x1b[K\r\n") for page in shown.split("\x1b[H")[1:]]
        self.assertEqual((status, [len(page) for page in pages]), (0, [24, 24]))  # the last piece ends the page
        self.assertEqual([page[0] for page in pages], ["Since boot", "In 1.000 seconds"])
        self.assertEqual([page[1].split()[0] for page in pages], ["device"] * 2)
        self.assertEqual([page[-2:] for page in pages], [["and 10 lines more", "\x1b[J"]] * 2)

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
                (80, "disks", "Type, Heads, Sectors/track"), (220, "disks", None), (50, "paths", None),
                (30, "disks", "Capacity, Vendor, Product, Serial"), (80, "hba", None),
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
        named = write_host({"mnttab": ["d\t!! x\tufs\trw\t1"]})
        self.assertNotIn("\x1b", self.on_terminal(["--host", named, "logical-disks"])[1])
        self.assertNotIn("\x1b", self.on_terminal(["--csv", "paths"])[1])


def main():
    global TARN, SCRATCH
    os.environ.update(TARN_HOST=str(ROOT / "hosts/rill.json"), LC_ALL="C")
    with tempfile.TemporaryDirectory(prefix="tarn-cli-") as SCRATCH, ThreadPoolExecutor(2) as pool:
        TARN = os.path.join(SCRATCH, "tarn")  # a link works as well
        os.symlink(os.path.abspath(sys.argv[1]), TARN)
        subprocess.run([TARN, "--help"], check=True, capture_output=True)  # whatever must be built is built once
        waits = begin(pool)
        for number, case in enumerate(CASES):
            words = " ".join([case.command, *case.shows, *case.complains])[:80]
            name = "test_%03d_%s" % (number, re.sub(r"\W+", "_", words))
            setattr(CommandLine, name, lambda self, case=case, wait=waits[number]: self.check(case, wait()))
        result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(CommandLine))
    return verdict.report(result)


if __name__ == "__main__":
    sys.exit(main())

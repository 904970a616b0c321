"""Runs the command line on host descriptions with known answers: python3 tests/cli/run.py PATH-TO-TARN"""

import json
import os
import pty
import random
import re
import shlex
import struct
import subprocess
import sys
import tempfile
import termios
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor
from fcntl import ioctl
from pathlib import Path

import questions
from cases import ANY, CASES, HOSTS, PASSWORD, RICH, ROOT, Case

sys.path.append(str(Path(__file__).parents[1]))
import verdict

TARN = SCRATCH = None  # the command, and where the descriptions are written


def write_host(host):
    path = Path(tempfile.mkdtemp(dir=SCRATCH)) / "😀HOST.json"
    path.write_text(host if isinstance(host, str) else json.dumps(host), encoding="utf-8")
    return str(path)


def run(case):
    words = [write_host(HOSTS[word]) if word in HOSTS else word for word in shlex.split(case.command)]
    words += ["--json"] * case.is_json()
    if case.host is not None:
        words = ["--host", write_host(case.host), *words]
    return subprocess.run([TARN, *words], cwd=ROOT, input=case.password.encode(), capture_output=True, timeout=120,
                          env={**os.environ, **case.environment})


def ask(command, host=None):
    return json.loads(run(Case(command, host, result=None)).stdout)


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
        seen = set()
        for seed in (31, 35, 49):
            host = questions.random_host(random.Random(seed))
            with ThreadPoolExecutor(2) as pool:
                commands = (*questions.SECTIONS, "paths", "check")
                answers = dict(zip(commands, pool.map(lambda command: ask(command, host), commands)))
                names = dict.fromkeys(disk["mountPoint"] for disk in answers["logical-disks"]["result"])
                mounts = dict(zip(names, pool.map(lambda name: ask(f"logical-disks '{name}'", host), names)))
            found = answers["check"]["result"]
            findings = [(one["severity"], one["code"], one["subject"]) for one in found["findings"]]
            seen.update(findings)
            self.assertEqual(findings, questions.check(answers, mounts), seed)
            self.assertEqual(found["state"], findings[0][0].upper(), seed)
            self.assertEqual(answers["paths"]["result"], questions.paths(answers["hba"]["result"]), seed)
        self.assertEqual({code for _, code, _ in seen}, set(questions.CODES))

    def test_a_disk_is_the_same_under_all_its_names(self):
        names = "c1t0d0 c1t0d0s0 /dev/dsk/c1t0d0s0 /dev/rdsk/c1t0d0s2 sd0 /export/home".split()
        for options in ([], ["--json"]):
            pages = {subprocess.run([TARN, *options, "disk", name], capture_output=True, check=True).stdout
                     for name in names}
            self.assertEqual(len(pages), 1)
        disk = json.loads(pages.pop())["result"]
        self.assertEqual([disk["name"], disk["instance"], disk["drive"]["properties"]["diskType"],
                          disk["io"]["bytesRead"]], ["c1t0d0", "sd0", "SUN72G", 40354447360])
        self.assertEqual([len(disk[part]) for part in ("partitions", "mounts", "paths")], [8, 4, 0])
        self.assertEqual(disk["mounts"][0]["totalBytes"], 10576969728)

    def test_the_ways_to_a_disk(self):
        for name, count in (("/oracle", 2), ("c4t50060E8000C3A2B1d2", 1), ("c4t0d2", 1)):
            disk = ask(f"disk {name}")["result"]
            self.assertEqual([(way["node"], way["lun"]) for way in disk["paths"]],
                             [("50060e8000c3a200", 2 * (2 - count))] * count)

    def test_the_cookbook(self):
        recipes = re.findall(r"```console\n(.*?)```", (ROOT / "docs/cookbook.md").read_text(), re.S)
        self.assertGreaterEqual(len(recipes), 12)
        for recipe in recipes:
            shown = ""
            for command in re.findall(r"^\$ (.*)", recipe, re.M):
                done = subprocess.run(["bash", "-c", command], cwd=ROOT, capture_output=True, text=True, timeout=120)
                shown += f"$ {command}\n{done.stdout}{done.stderr}"
            self.assertEqual(shown, recipe)

    def test_the_completion(self):
        script = ("source <(%s completion); COMP_WORDS=(tarn check --f); COMP_CWORD=2; _complete_tarn 2>&-; "
                  "echo ${COMPREPLY[@]}")
        done = subprocess.run(["bash", "-c", script % TARN], capture_output=True, text=True, timeout=120)
        self.assertEqual((done.stdout, done.stderr), ("--full\n", ""))

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
                (80, "disks", "Cylinders, Data, Alternate, Device"), (200, "disks", None), (50, "paths", None),
                (30, "disks", "Type, Capacity, Heads"), (80, "hba", None),
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
        self.assertNotIn("\x1b", self.on_terminal(["--csv", "paths"])[1])


def main():
    global TARN, SCRATCH
    os.environ.update(TARN_HOST="", LC_ALL="C")
    with tempfile.TemporaryDirectory(prefix="tarn-cli-") as SCRATCH, ThreadPoolExecutor(2) as pool:
        TARN = os.path.join(SCRATCH, "tarn")  # a link works as well
        os.symlink(os.path.abspath(sys.argv[1]), TARN)
        subprocess.run([TARN, "--help"], check=True, capture_output=True)  # whatever must be built is built once
        for number, case in enumerate(CASES):
            # The runs go on two at a time while earlier ones are checked.
            future = pool.submit(run, case)
            words = " ".join([case.command, *case.shows, *case.complains])[:80]
            name = "test_%03d_%s" % (number, re.sub(r"\W+", "_", words))
            setattr(CommandLine, name, lambda self, case=case, future=future: self.check(case, future.result()))
        result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(CommandLine))
    return verdict.report(result)


if __name__ == "__main__":
    sys.exit(main())

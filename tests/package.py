"""Builds the packages, and runs what they hold away from the source tree: python3 tests/package.py BUILD-TREE"""

import json
import os
import re
import shlex
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.request
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import verdict

SOURCE = Path(__file__).resolve().parents[1]
VERSION = re.search(r"project\(tarnsolaris VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
BUILD = SCRATCH = ROOT = DEB = None  # the build tree; where everything goes; the unpacked package; the package
TOOLS = "bash cksum cut dirname env find ls mkdir mktemp mv readlink rm sed sync".split()  # what the command needs besides Java


def run(*command, **options):
    return subprocess.run(command, **{"capture_output": True, "text": True, "timeout": 120, **options})


def must(*command, **options):
    done = run(*command, **options)
    if done.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def tarn(*arguments, usr=None, path="/usr/bin:/bin", **environment):
    """The installed command, run from / with nothing of this process's environment."""
    variables = {"PATH": path, "HOME": str(SCRATCH / "home"), **environment}
    return run((usr or ROOT / "usr") / "bin/tarn", *arguments, env=variables, cwd="/")


def write(path, text, mode=0o644):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)
    path.chmod(mode)


def java_home(name, version, release=True, refusing="true"):
    """A Java of that version, as far as the command looks at it, that writes down how it is called."""
    home = SCRATCH / name
    write(home / "bin/java", f"""#!/bin/bash
printf '%s\\n' "$@" >>{home}/calls
case "$*" in
    -version) echo 'openjdk version "{version}"' >&2; exit ;;
    *ArchiveClassesAtExit*) {refusing} || exit 1 ;;
esac
exec {shutil.which("java")} "$@"
""", 0o755)
    if release:
        write(home / "release", f'IMPLEMENTOR="X"\nJAVA_VERSION="{version}"\n')
    return str(home)


def tree(root):
    """What lies below: path -> octal mode, or "d" or the target of a link."""
    found = {}
    for path in sorted(root.rglob("*")):
        mode = path.lstat().st_mode
        found[str(path.relative_to(root))] = os.readlink(path) if stat.S_ISLNK(mode) else \
            "d" if stat.S_ISDIR(mode) else f"{stat.S_IMODE(mode):04o}"
    return found


class Package(unittest.TestCase):
    maxDiff = None

    def test_debian_finds_no_fault(self):
        done = run("lintian", "--allow-root", "--fail-on", "error,warning", DEB)
        self.assertEqual(done.returncode, 0, done.stdout)
        fields = must("dpkg-deb", "-f", DEB, "Depends", "Suggests", "Version", "Description")
        for needed in ("java11-runtime-headless", "libpicocli-java", "libgoogle-gson-java", "liblog4j2-java", "libc6",
                       "Suggests: graphviz", f"Version: {VERSION}\n"):
            self.assertIn(needed, fields)
        built = re.search(rf"This is tarnsolaris ({VERSION}.*)[.]", fields)[1]
        self.assertIn(f"tarn {built}\n", tarn("--version").stdout)
        shell = f"source {ROOT}/usr/share/bash-completion/completions/tarn; complete -p tarn"
        self.assertIn(" tarn\n", must("bash", "-c", shell))
        self.assertIn(".TH TARN 1", must("zcat", ROOT / "usr/share/man/man1/tarn.1.gz"))
        recorder = (ROOT / "usr/bin/tarn-record", ROOT / "usr/share/man/man1/tarn-record.1.gz")
        explained = must("zcat", recorder[1]).replace("\\-", "-")
        for option in re.findall(r"^  (--[\w-]+)", must(recorder[0], "--help"), re.M) + ["--help"]:
            self.assertRegex(explained, rf"(?m)^\.B {option}( |$)")
        self.assertIn(built, must(recorder[0], "--version"))
        self.assertEqual([path.name for path in ROOT.rglob("*.jar") if not path.is_symlink()], [f"tarn-{VERSION}.jar"])
        self.assertEqual(re.search(r"^## (\S+) - ", (SOURCE / "CHANGELOG.md").read_text(), re.M)[1], VERSION)

    def test_the_services_wait_to_be_enabled(self):
        self.assertNotRegex(must("dpkg-deb", "--ctrl-tarfile", DEB, text=False).decode("latin-1"), "postinst|prerm")
        unit = (ROOT / "lib/systemd/system/tarn-serve.service").read_text()
        command = re.search(r"^ExecStart=/(usr/bin/tarn) serve [$]OPTIONS$", unit, re.M)[1]
        self.assertTrue((ROOT / command).exists())
        self.assertFalse([path for path in ROOT.rglob("*.wants")])
        # As the unit has it: nobody's rights, no home, no cache.
        nobody = () if os.geteuid() else ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "--bounding-set=-all",
                                          "--no-new-privs")
        SCRATCH.chmod(0o755)
        served = subprocess.Popen([*nobody, ROOT / command, "serve", "--listen", "127.0.0.1:0"], text=True, cwd="/",
                                  stdout=subprocess.PIPE, env={"PATH": "/usr/bin:/bin", "TARN_CACHE": ""})
        try:
            url = served.stdout.readline().strip()
            with urllib.request.urlopen(url + "metrics", timeout=60) as answer:
                self.assertIn('tarn_section_up{section="activity"} 1', answer.read().decode())
            served.terminate()
            self.assertEqual(served.wait(60), int(re.search(r"^SuccessExitStatus=(\d+)$", unit, re.M)[1]))
        finally:
            served.kill()
            served.stdout.close()
        service = ElementTree.parse(SOURCE / "packaging/solaris/tarn-serve.xml").find("service")
        self.assertEqual(service.find("create_default_instance").get("enabled"), "false")
        self.assertNotEqual(service.find(".//method_credential").get("user"), "root")

    def test_what_one_timer_records_another_loads(self):
        unit = (ROOT / "lib/systemd/system/tarn-san-load.service").read_text()
        commands = [re.search("^ExecStart=(.*)$", unit, re.M)[1]]
        for name in ("tarn-san-load", "tarn-record"):
            instance = ElementTree.parse(ROOT / f"usr/share/doc/tarnsolaris/examples/smf/{name}.xml").find(".//instance")
            self.assertEqual(instance.get("enabled"), "false")
            commands.insert(0, instance.find("periodic_method").get("exec"))
        told = dict(word.split("=", 1) for word in shlex.split(re.search("^Environment=(.*)$", unit, re.M)[1]))
        own = {"SPOOL": str(SCRATCH / "spool"), "TARN_DB": str(SCRATCH / "network.db")}
        self.assertLessEqual(own.keys(), told.keys())
        Path(own["SPOOL"]).mkdir()
        for command in commands:
            for sign, meant in (("%{tarn/spool}", own["SPOOL"]), ("%{tarn/db}", own["TARN_DB"]), ("%%", "%"),
                                ("/usr/bin/", f"{ROOT}/usr/bin/")):
                command = command.replace(sign, meant)
            must("sh", "-c", command, env={"PATH": "/usr/bin:/bin", **told, **own})
        (host,) = json.loads(tarn("--json", "san", "hosts", **own).stdout)["result"]
        self.assertEqual(host["host"], "rill")

    def test_another_clone_makes_the_same_bytes(self):
        if not (SOURCE / ".git").exists() or must("git", "status", "--porcelain", cwd=SOURCE):
            self.skipTest("this is no clone, or not as it was committed")
        # Always in one place, where the compiler cache knows what was compiled there before, and nothing from here.
        clone = BUILD.parent / "another-clone/of-this-tree"
        shutil.rmtree(clone, ignore_errors=True)
        must("git", "clone", "--quiet", "--shared", SOURCE, clone)
        must("git", "checkout", "--quiet", must("git", "rev-parse", "HEAD", cwd=SOURCE).strip(), cwd=clone)
        elsewhere = {"env": {name: value for name, value in os.environ.items() if not name.startswith("CCACHE_")} |
                     {"TZ": "Asia/Tokyo"}, "cwd": clone, "umask": 0o077, "timeout": 1800}
        must("cmake", "--preset", "release", **elsewhere)
        must("cmake", "--build", "--preset", "release", "--target", "installable", **elsewhere)
        must("cpack", "--config", "build/release/CPackConfig.cmake", "-G", "DEB", "-B", clone / "package", **elsewhere)
        (deb,) = (clone / "package").glob("*.deb")
        must("dpkg-deb", "-x", deb, SCRATCH / "another")
        for path in tree(ROOT):
            if (ROOT / path).is_file():
                self.assertTrue((ROOT / path).read_bytes() == (SCRATCH / "another" / path).read_bytes(), path)
        self.assertEqual(tree(ROOT), tree(SCRATCH / "another"))
        self.assertEqual((deb.name, deb.read_bytes() == DEB.read_bytes()), (DEB.name, True), "the packages")

    def test_it_runs_from_anywhere(self):
        here = must(SOURCE / "tarn", "report", env={**os.environ, "TARN_HOST": ""})
        moved = SCRATCH / "some where/usr"
        must("cmake", "--install", BUILD, "--prefix", moved)
        for usr in (ROOT / "usr", moved):
            done = tarn("report", usr=usr)
            self.assertEqual((done.returncode, done.stdout), (0, here), done.stderr)
        (SCRATCH / "linked").symlink_to(moved / "bin/tarn")
        host = SCRATCH / "host.json"
        host.write_text('{"sysinfo": {"SI_HOSTNAME": "brook"}}')
        for command in (["computer-system"], ["record", "--quiet"]):
            self.assertIn("brook", must(SCRATCH / "linked", *command, env={**os.environ, "TARN_HOST": str(host)}))

    def test_the_manifests_for_solaris(self):
        must("cmake", "--build", BUILD, "--target", "solaris_packages")
        installed = tree(BUILD / "solaris/proto")
        files = {path: mode for path, mode in installed.items() if mode != "d"}
        self.assertIn("lib/svc/manifest/application/tarn-serve.xml", files)
        own = {path for path, mode in installed.items() if mode == "d" and "/tarnsolaris" in path}
        self.assertGreater(len(files), 10)

        wanted = [f"i {name}={BUILD}/solaris/{name}" for name in ("copyright", "depend", "pkginfo")]
        for path, mode in installed.items():
            attributes = "0755 root bin" if path in own else "? ? ?"
            wanted.append(f"d none {path} {attributes}" if mode == "d" else
                          f"f none {path}={BUILD}/solaris/proto/{path} {mode} root bin" if mode.startswith("0") else
                          f"s none {path}={mode}")
        self.assertEqual(sorted((BUILD / "solaris/prototype").read_text().splitlines()), sorted(wanted))
        for line in wanted[:3]:
            self.assertTrue(Path(line.partition("=")[2]).stat().st_size > 0, line)
        parameters = dict(line.split("=", 1) for line in (BUILD / "solaris/pkginfo").read_text().splitlines())
        self.assertLessEqual({"PKG", "NAME", "ARCH", "VERSION", "CATEGORY"}, parameters.keys())
        self.assertRegex(parameters["PKG"], r"^[A-Za-z][A-Za-z0-9+-]{1,31}$")
        for line in (BUILD / "solaris/depend").read_text().splitlines():
            self.assertRegex(line, r"^P [A-Z]+[A-Za-z0-9]+ \S")

        actions = [shlex.split(line) for line in (BUILD / "solaris/tarnsolaris.p5m").read_text().splitlines()]
        delivered = {}
        for kind, *words in actions:
            values = dict(word.split("=", 1) for word in words if "=" in word)
            self.assertIn(kind, ("set", "depend", "license", "file", "dir", "link"))
            if "path" in values:
                self.assertNotIn(values["path"], delivered)
                delivered[values["path"]] = values.get("target") or (
                    values["owner"], values["group"], values["mode"], words[0] if kind == "file" else kind)
            elif kind == "depend":
                self.assertRegex(values["fmri"], r"^pkg:/[a-z]")
        root = ("root", "bin")
        self.assertEqual(delivered, {path: (*root, mode, path) if mode.startswith("0") else mode
                                     for path, mode in files.items()} | {path: (*root, "0755", "dir") for path in own})
        self.assertIn(["set", "name=pkg.fmri", f"value=pkg:/system/storage/tarnsolaris@{VERSION}"], actions)

        there = SCRATCH / "there"
        must("cmake", "-S", SOURCE, "-B", there, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=SunOS", "-DTARN_JVM=ON",
             "-DTARN_LIBRARY_JARS=/usr/share/java")
        for place in ("/../lib/sparcv9\n", "/../share/lib/java/tarn.jar\n"):
            self.assertIn(place, (there / "packaging/tarn").read_text(), "where Solaris expects it")

    def test_the_example_embeds_the_installed_library(self):
        jars = ":".join(f"/usr/share/java/{name}.jar" for name in ("log4j-1.2-api", "log4j-api", "log4j-core"))
        class_path = f"{SCRATCH / 'classes'}:{ROOT / 'usr/share/java/tarn.jar'}:{jars}"
        example = ROOT / "usr/share/doc/tarnsolaris/examples/embed/Embed.java"
        (SCRATCH / "classes").mkdir()
        must("javac", "--release", "11", "-Xlint:all", "-Werror", "-cp", class_path, "-d", SCRATCH / "classes", example)
        library = next(ROOT.rglob("libtarnsolaris.so")).parent

        def embed(*arguments):
            return run("java", "-Xcheck:jni", f"-Djava.library.path={library}", "-cp", class_path, "Embed", *arguments,
                       cwd="/", env={"PATH": "/usr/bin:/bin"})
        done = embed()
        self.assertEqual((done.returncode, done.stderr), (0, "WARN SolarisDiskDrive DKIOCGVTOC\n"))
        for line in ("rill, SUNW,Sun-Fire-V440", "/: 7192340480 bytes available", "c1t0d0: SUN72G",
                     "port 210000e08b10a3c2"):
            self.assertIn(line, done.stdout.splitlines())
        write(SCRATCH / "bare.json", '{"sysinfo": {"SI_HOSTNAME": "brook", "SI_PLATFORM": "SUNW,X"}}')
        self.assertEqual(embed(SCRATCH / "bare.json").stdout, "brook, SUNW,X\n")

    def test_java_that_is_missing_or_too_old(self):
        wanted = "tarn: Java 11 or newer is needed; "
        for name in TOOLS:
            (SCRATCH / "tools").mkdir(exist_ok=True)
            (SCRATCH / "tools" / name).symlink_to(shutil.which(name))
        tools = str(SCRATCH / "tools")
        for environment, complaint in (
                ({"path": tools}, "there is no java on the PATH"),
                ({"JAVA_HOME": "/nowhere"}, "JAVA_HOME is /nowhere, which has no bin/java"),
                ({"JAVA_HOME": java_home("eight", "1.8.0_392")}, f"{SCRATCH}/eight/bin/java is Java 1.8.0_392"),
                ({"JAVA_HOME": java_home("ten", "10.0.2", False)}, f"{SCRATCH}/ten/bin/java is Java 10.0.2"),
                ({"path": f"{SCRATCH}/ten/bin:{tools}"}, f"{SCRATCH}/ten/bin/java is Java 10.0.2"),
                ({"JAVA_HOME": java_home("none", "", False)}, f"{SCRATCH}/none/bin/java does not tell its version")):
            with self.subTest(complaint):
                done = tarn("report", **environment)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (2, "", f"{wanted}{complaint}\n"))
        self.assertEqual(tarn("check", JAVA_HOME="/nowhere").returncode, 3, "unknown, to a monitor")
        usr = SCRATCH / "lacking"
        shutil.copytree(ROOT / "usr", usr, symlinks=True)
        command = usr / "bin/tarn"
        command.write_text(command.read_text().replace("/usr/share/java)", "/nowhere)"))
        done = tarn("report", usr=usr)
        self.assertEqual((done.returncode, done.stderr.count("\n")), (2, 1))
        self.assertRegex(done.stderr, r"^tarn: picocli\.jar is needed, and is not in \S+/share/java /nowhere$")

    def test_check_ends_as_monitoring_plugins_do(self):
        for end, status in (("exit 1", 1), ("exit 102", 102), ("kill -ABRT $$", -signal.SIGABRT)):
            write(SCRATCH / "dying/bin/java", f"#!/bin/bash\n{end}\n", 0o755)
            write(SCRATCH / "dying/release", 'JAVA_VERSION="11.0.2"\n')
            self.assertEqual(tarn("disks", JAVA_HOME=str(SCRATCH / "dying")).returncode, status)
            status = status - 100 if status > 100 else 3
            self.assertEqual(tarn("check", JAVA_HOME=str(SCRATCH / "dying")).returncode, status, end)
        os.mkfifo(SCRATCH / "here")
        write(SCRATCH / "dying/bin/java", f"#!/bin/bash\necho $$ >{SCRATCH}/here\nexec sleep 60\n", 0o755)
        check = subprocess.Popen([ROOT / "usr/bin/tarn", "check"],
                                 env={**os.environ, "JAVA_HOME": str(SCRATCH / "dying")})
        child = int((SCRATCH / "here").read_text())
        check.terminate()
        self.assertEqual(check.wait(30), 3)
        self.assertRaises(ProcessLookupError, os.kill, child, 0)

    def test_a_colon_in_the_path_is_refused(self):
        shutil.copytree(ROOT / "usr", SCRATCH / "a:b/usr", symlinks=True)
        shutil.copytree(SOURCE / "tools", SCRATCH / "a:b/tools")
        shutil.copy(SOURCE / "tarn", SCRATCH / "a:b")
        for command, folder in (("usr/bin/tarn", "/usr/bin"), ("tarn", "")):
            for asked, status in (("report", 2), ("check", 3)):
                done = run(SCRATCH / "a:b" / command, asked)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (
                    status, "", f"tarn: Java cannot use what lies in a folder with a colon in its name: "
                    f"{SCRATCH}/a:b{folder}\n"))

    def test_what_is_built_is_hardened(self):
        objects = [path for path in ROOT.rglob("*") if path.is_file() and path.read_bytes()[:4] == b"\x7fELF"]
        self.assertEqual({path.name for path in objects}, {"libtarnsolaris.so", "libtarninventory.so", "tarn-record"})
        objects += [path for tree in (BUILD, BUILD.parent / "sparc64")
                    for name in ("libtarnsolaris.so", "libtarninventory.so", "tarn-record") if (path := tree / name).exists()]
        self.assertGreaterEqual(len(objects), 4)
        for path in objects:
            shown = must("readelf", "-Whld", "--dyn-syms", path)
            for sign in (r"Type: +DYN", "GNU_RELRO", r"FLAGS.*\bBIND_NOW", "__stack_chk_fail@", r"__\w+printf_chk@",
                         r"GNU_STACK .* RW "):
                self.assertRegex(shown, sign, path)

    def test_the_class_data_archive(self):
        home = java_home("seventeen", "17.0.1")
        cache = SCRATCH / "cache"
        usr = SCRATCH / "archived"
        shutil.copytree(ROOT / "usr", usr, symlinks=True)

        def start(java=home, **environment):
            """Runs a command; tells whether an archive was made, and whether one was used."""
            calls = Path(java, "calls")
            calls.write_text("")
            done = tarn("build-date", usr=usr, JAVA_HOME=java, XDG_CACHE_HOME=str(cache),
                        TARN_HOST=str(SOURCE / "hosts/rill.json"), **environment)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "Jan 18 2006\n", ""))
            return "ArchiveClassesAtExit" in calls.read_text(), "SharedArchiveFile" in calls.read_text()

        def archives():
            return sorted(path.name for path in (cache / "tarn").iterdir())

        self.assertEqual([start(), start()], [(True, True), (False, True)])
        (first,) = archives()
        archive = cache / "tarn" / first
        self.assertEqual((stat.S_IMODE(archive.stat().st_mode) & 0o77, archive.stat().st_size > 1 << 20), (0, True))
        whole, made = archive.read_bytes(), archive.stat()
        for damaged in (whole[:len(whole) // 2], whole[:1 << 20] + os.urandom(4000) + whole[(1 << 20) + 4000:], b""):
            path = cache / "tarn" / archives()[0]
            path.chmod(0o600)
            path.write_bytes(damaged)
            os.utime(path, ns=(made.st_atime_ns, made.st_mtime_ns + 10**10))
            self.assertEqual([start(), start()], [(True, True), (False, True)], "damaged ones are replaced")
            self.assertEqual(len(archives()), 1)
        jar = usr / f"share/java/tarn-{VERSION}.jar"
        os.utime(jar)
        self.assertEqual(start(), (True, True), "older than the jar")
        os.utime(jar, (0, 0))
        self.assertEqual(start(), (True, True), "another jar")
        self.assertEqual((len(archives()), first in archives()), (1, False))

        # What another user could have put there is not used, and is left as it is.
        folder = cache / "tarn"
        archive = folder / archives()[0]
        changes = [lambda path, mode=mode: path.chmod(mode) for mode in (0o720, 0o702, 0o1777)]
        changes += [lambda path: os.chown(path, 65533, 0)] * (os.geteuid() == 0)
        for path in (cache, folder, archive):
            before = path.stat()
            for change in changes:
                change(path)
                expected = path == cache and path.stat().st_mode & stat.S_ISVTX != 0  # as /tmp is
                self.assertEqual(start(), (False, expected), (path, oct(path.stat().st_mode), path.stat().st_uid))
                os.chown(path, before.st_uid, before.st_gid)
                path.chmod(stat.S_IMODE(before.st_mode))
        self.assertEqual([start(), archives()], [(False, True), [archive.name]])
        cache.chmod(0o777)
        self.assertEqual(start(TARN_CACHE=str(cache / "fresh")), (False, False))
        self.assertFalse((cache / "fresh").exists())
        cache.chmod(0o700)
        (SCRATCH / "cache-link").symlink_to(cache)
        self.assertEqual(start(TARN_CACHE=str(SCRATCH / "cache-link/tarn")), (False, True), "a link leads there")

        # Of others, of trees and virtual machines that may be gone, the newest stay.
        for age in range(1, 6):
            write(folder / f"tarn-1-{age}-4294967295-0.jsa", "")
            os.utime(folder / f"tarn-1-{age}-4294967295-0.jsa", (time.time() - age,) * 2)
        write(folder / ".tarn-killed", "")
        os.utime(folder / ".tarn-killed", (time.time() - 200000,) * 2)
        archive.unlink()
        self.assertEqual(start(), (True, True))
        self.assertEqual(archives()[:3], [f"tarn-1-{age}-4294967295-0.jsa" for age in (1, 2, 3)])
        self.assertEqual(len(archives()), 4)

        self.assertEqual(start(TARN_CACHE=""), (False, False))
        self.assertEqual(start(TARN_CACHE=str(SCRATCH / "co:lon")), (False, False), "two files, to Java")
        self.assertEqual(start(TARN_CACHE="/dev/null/here"), (False, False), "no such folder")
        self.assertEqual(start(java_home("eleven", "11.0.2")), (False, False), "Java 11 makes none")
        # A virtual machine that refuses to make one is asked once.
        refusing = java_home("refusing", "17", refusing="false")
        self.assertEqual([start(refusing), start(refusing)], [(True, False), (False, False)])
        self.assertEqual([name for name in archives() if name.startswith(".")], [])


def main():
    global BUILD, SCRATCH, ROOT, DEB
    BUILD = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory(prefix="tarn-package-") as folder:
        SCRATCH = Path(folder)
        ROOT = SCRATCH / "root"
        must("cpack", "--config", BUILD / "CPackConfig.cmake", "-G", "DEB", "-B", SCRATCH)
        (DEB,) = SCRATCH.glob("*.deb")
        must("dpkg-deb", "-x", DEB, ROOT)
        result = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Package))
    return verdict.report(result)


if __name__ == "__main__":
    sys.exit(main())

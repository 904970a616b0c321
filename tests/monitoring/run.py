"""Lets Nagios and Icinga run the check: python3 tests/monitoring/run.py PATH-TO-TARN FOLDER

Both run from the folder that their packages are unpacked in, in the foreground, each with a configuration of its own and
until it has received a result. Nothing of the machine's is started or changed.
"""

import os
import re
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.append(str(Path(__file__).parents[1]))
import verdict

TARN, UNPACKED = (Path(argument).absolute() for argument in sys.argv[1:3])
RILL = Path(__file__).parents[2] / "hosts/rill.json"
LIMIT = 120  # seconds until a result must have come
COMMAND = f"{TARN} check --host {RILL} --full /backup=95 --ignore single-path:2004*"

NAGIOS = """log_file={0}/log
cfg_file={0}/objects.cfg
status_file={0}/status
object_cache_file={0}/cache
precached_object_file={0}/precached
state_retention_file={0}/retention
command_file={0}/command
lock_file={0}/pid
temp_file={0}/temporary
temp_path={0}
check_result_path={0}
query_socket={0}/socket
nagios_user={1}
nagios_group={2}
interval_length=1
service_inter_check_delay_method=n
process_performance_data=1
service_perfdata_file={0}/received
service_perfdata_file_template=$SERVICESTATE$\t$SERVICEOUTPUT$\t$SERVICEPERFDATA$
check_external_commands=0
check_for_updates=0
"""

NAGIOS_OBJECTS = """define command {
  command_name tarn
  command_line %s
}
define contact {
  contact_name nobody
  host_notification_commands tarn
  service_notification_commands tarn
}
define host {
  host_name rill
  address 127.0.0.1
  max_check_attempts 1
  contacts nobody
}
define service {
  host_name rill
  service_description storage
  check_command tarn
  max_check_attempts 1
  check_interval 5
  contacts nobody
}
""" % COMMAND

ICINGA = """include <itl>
object CheckerComponent "checker" { }
object PerfdataWriter "writer" {
  service_perfdata_path = "%(folder)s/received"
  service_temp_path = "%(folder)s/received.tmp"
  host_perfdata_path = "%(folder)s/host"
  host_temp_path = "%(folder)s/host.tmp"
  service_format_template = "$service.state$\t$service.output$\t$service.perfdata$"
  rotation_interval = 1s
}
object CheckCommand "tarn" { command = %(command)s }
object Host "rill" { check_command = "dummy" }
object Service "storage" {
  host_name = "rill"
  check_command = "tarn"
  check_interval = 5s
}
"""


def received(command, folder, environment=None):
    """What the server wrote of its first result: the state, the text and the values of graphs."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment) as server:
        try:
            for _ in range(10 * LIMIT):
                written = "".join(path.read_text() for path in sorted(folder.glob("received*")))
                if written.count("\t") >= 2 and written.endswith("\n"):  # the text may go on in further lines
                    return [part.splitlines()[0] for part in written.split("\t")[:3]]
                time.sleep(0.1)
            server.terminate()
            raise AssertionError(server.stdout.read().decode())
        finally:
            server.terminate()


class Monitoring(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="tarn-monitoring-")
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        done = subprocess.run(COMMAND.split(), capture_output=True, text=True, timeout=LIMIT)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.text, self.values = done.stdout.splitlines()[0].split(" | ")

    def test_nagios(self):
        user, group = os.getuid(), os.getgid()
        (self.folder / "nagios.cfg").write_text(NAGIOS.format(self.folder, user, group))
        (self.folder / "objects.cfg").write_text(NAGIOS_OBJECTS)
        found = received([UNPACKED / "usr/sbin/nagios4", self.folder / "nagios.cfg"], self.folder)
        self.assertEqual(found, ["WARNING", self.text.replace(";", ":"), self.values])  # as it shows every text

    def test_icinga(self):
        for name in ("data", "run", "log", "cache"):
            (self.folder / name).mkdir()
        words = "[ " + ", ".join(f'"{word}"' for word in COMMAND.split()) + " ]"
        (self.folder / "icinga2.conf").write_text(ICINGA % {"folder": self.folder, "command": words})
        here = {"RunAsUser": "root" if os.getuid() == 0 else os.environ.get("USER", ""), "DataDir": "data",
                "LogDir": "log", "CacheDir": "cache", "SpoolDir": "data", "InitRunDir": "run", "ConfigDir": "."}
        here["RunAsGroup"] = here["RunAsUser"]
        defines = [f"-D{name}={value if name.startswith('RunAs') else self.folder / value}"
                   for name, value in here.items()]
        program, = UNPACKED.glob("usr/lib/*/icinga2/sbin/icinga2")
        found = received([program, "daemon", "-I", UNPACKED / "usr/share/icinga2/include",
                          "-c", self.folder / "icinga2.conf", *defines], self.folder,
                         {**os.environ, "LD_LIBRARY_PATH": str(program.parents[2])})
        self.assertEqual([found[0], found[1].strip()], ["WARNING", self.text])
        # It has read the data, and writes them in its own way: quotes only where they are needed.
        values = (dict(re.findall(r"'?([^' =]+)'?=([\d.]+%?)", text)) for text in (found[2], self.values))
        self.assertEqual(*values)


if __name__ == "__main__":
    sys.exit(verdict.report(unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromTestCase(Monitoring))))

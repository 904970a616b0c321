"""A PostgreSQL server of the tests' own, in a folder of their own: never the machine's, and never root's."""

import os
import shutil
import signal
import socket
import subprocess
import tempfile
from pathlib import Path

USER, PASSWORD = "tarn", "s3cret/&:@"
NOBODY = ["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups"]


class Server:
    """Runs while it is entered; packages is where Debian's are unpacked."""

    def __init__(self, packages):
        self.packages = Path(packages).absolute()
        self.process = None

    def __enter__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tarn-postgres-"))
        self.as_nobody = NOBODY if os.geteuid() == 0 else []
        if self.as_nobody:
            shutil.chown(self.folder, "nobody", "nogroup")
            if subprocess.run([*NOBODY, "test", "-x", self.program("postgres")]).returncode != 0:
                self.packages = Path(shutil.copytree(self.packages, self.folder / "packages", symlinks=True))
        os.chmod(self.folder, 0o755)
        (self.folder / "password").write_text(PASSWORD, encoding="utf-8")
        os.chmod(self.folder / "password", 0o644)
        try:
            self.run("initdb", "--pgdata", self.folder / "data", "--username", USER, "--auth=scram-sha-256",
                     "--no-locale", "--encoding=UTF8", "--pwfile", self.folder / "password")
            with socket.socket() as free:
                free.bind(("127.0.0.1", 0))
                self.port = free.getsockname()[1]
            self.start()
            return self
        except BaseException:
            self.__exit__()
            raise

    def __exit__(self, *_):
        self.stop()
        shutil.rmtree(self.folder)

    def program(self, name):
        return next(self.packages.glob(f"usr/lib/postgresql/*/bin/{name}"))

    def environment(self):
        libraries = next(self.packages.glob("usr/lib/*/libpq.so.5")).parent
        return {**os.environ, "LD_LIBRARY_PATH": str(libraries), "PGPASSWORD": PASSWORD}

    def run(self, name, *arguments):
        subprocess.run([*self.as_nobody, self.program(name), *arguments], check=True, env=self.environment(), cwd="/",
                       stdout=subprocess.DEVNULL, timeout=120)

    def start(self):
        settings = {"listen_addresses": "127.0.0.1", "port": self.port, "unix_socket_directories": self.folder,
                    "jit": "off", "fsync": "off", "timezone": "UTC"}
        with open(self.folder / "log", "ab") as log:
            self.process = subprocess.Popen(
                [*self.as_nobody, self.program("postgres"), "-D", self.folder / "data",
                 *(word for name, value in settings.items() for word in ("-c", f"{name}={value}"))],
                env=self.environment(), cwd="/", stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.wait()

    def wait(self):
        for _ in range(600):
            ready = subprocess.run([self.program("pg_isready"), "-q", "-h", self.folder, "-p", str(self.port)],
                                   env=self.environment(), timeout=60)
            if ready.returncode == 0:
                return
            try:
                self.process.wait(0.1)
                break
            except subprocess.TimeoutExpired:
                pass
        raise AssertionError((self.folder / "log").read_text(errors="replace"))

    def stop(self):
        """At once, as a server ends whose machine is turned off."""
        if self.process is not None:
            self.process.send_signal(signal.SIGQUIT)
            self.process.wait(60)
            self.process = None

    def psql(self, sql, database="postgres"):
        """What psql prints, a row a line, with bars between the values."""
        done = subprocess.run(
            [self.program("psql"), "-X", "-q", "-A", "-t", "-v", "ON_ERROR_STOP=1", "-h", self.folder, "-p",
             str(self.port), "-U", USER, "-d", database], input=sql, env=self.environment(), capture_output=True,
            encoding="utf-8", timeout=300)
        assert done.returncode == 0, done.stderr
        return done.stdout

    def create(self, database):
        """The URL of a new database."""
        self.psql(f'CREATE DATABASE "{database}"')
        return f"postgresql://{USER}@127.0.0.1:{self.port}/{database}"

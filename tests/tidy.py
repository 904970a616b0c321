"""Runs clang-tidy on files: python3 tests/tidy.py BUILD-TREE FILE...

Those of a folder are read as one, as the build tree has them in a unit, since what they include takes time. What has passed
before, with all that it includes, is not read again."""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
build, asked = Path(sys.argv[1]).resolve(), {Path(name).resolve() for name in sys.argv[2:]}


def sources(unit):
    """Those that the build tree puts together there, or the file itself."""
    return list(map(Path, re.findall(r'^#include "(.*)"', unit.read_text(), re.M))) if unit.suffix == ".cxx" else [unit]


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def tidy(files, command):
    """What is to be said of them. In one file, as some checks leave out what is included."""
    texts = [each.read_text() for each in files]
    with tempfile.NamedTemporaryFile("w", suffix=".cpp") as unit:
        unit.write("".join(texts))
        unit.flush()
        state = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
        for told in (run("clang-tidy", "--version"), run(*command, "-E", "-P", "-C", unit.name)):
            state.update((told.stdout + told.stderr).encode())
        passed = build / "tidy" / state.hexdigest()
        if passed.exists():
            return ""
        done = run("clang-tidy", f"--config-file={ROOT}/.clang-tidy", "--quiet", "--warnings-as-errors=*", unit.name,
                   "--", *command[1:])
        if done.returncode == 0:
            passed.parent.mkdir(exist_ok=True)
            passed.touch()
            return ""

        def place(found):
            """Of a line of the one file, the file and the line there."""
            line = int(found[1])
            for file, text in zip(files, texts):
                if line <= text.count("\n"):
                    return f"{file}:{line}"
                line -= text.count("\n")
            return found[0]
        return re.sub(re.escape(unit.name) + r":(\d+)", place, done.stdout + done.stderr)


units = {}
for entry in json.loads((build / "compile_commands.json").read_text()):
    files, command = sources(Path(entry["file"])), shlex.split(entry["command"])
    output = command.index("-o")
    # Tests compile some of them once more, in ways of their own.
    if not command[output + 1].startswith("tests/") and asked.intersection(files):
        units[tuple(files)] = command[:output]
missed = asked.difference(*units)
largest_first = sorted(units, key=lambda files: -sum(each.stat().st_size for each in files))
with ThreadPoolExecutor(os.cpu_count()) as pool:
    findings = list(filter(None, pool.map(lambda files: tidy(files, units[files]), largest_first)))
sys.exit("\n".join([*findings, *(f"{each}: nothing compiles it" for each in sorted(missed))]) or 0)

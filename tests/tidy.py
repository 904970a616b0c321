"""Runs clang-tidy on a file as the product compiles it, unless it has passed before with all that it includes:
python3 tests/tidy.py BUILD-TREE FILE"""

import hashlib
import json
import shlex
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
# How many states of a function the analyzer looks at; by itself 225,000, for which it takes twice as long. Only in
# these files it comes to more of the code then.
STATES = 100000
STATES_ALL = ("record/Askers.cpp", "record/DiskGroups.cpp", "record/KernelStatistics.cpp")

build, source = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
# Tests compile some files once more, in ways of their own: the first is the product's.
command = next(shlex.split(entry["command"]) for entry in json.loads((build / "compile_commands.json").read_text())
               if entry["file"] == str(source))
command = command[:command.index("-o")]
bound = [] if str(source.relative_to(ROOT)) in STATES_ALL else \
    ["-Xclang", "-analyzer-config", "-Xclang", f"max-nodes={STATES}"]

state = hashlib.sha256((ROOT / ".clang-tidy").read_bytes() + shlex.join(bound).encode())
for asked in (["clang-tidy", "--version"], [*command, "-E", "-C", source]):
    state.update(subprocess.run(asked, stdout=subprocess.PIPE, check=True).stdout)
passed = build / "tidy" / state.hexdigest()
if not passed.exists():
    done = subprocess.run(["clang-tidy", "--quiet", "--warnings-as-errors=*", source, "--", *command[1:],
                           "-Wno-unknown-warning-option", *bound], stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(done.stderr)
    passed.parent.mkdir(exist_ok=True)
    passed.touch()

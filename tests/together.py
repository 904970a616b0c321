"""Runs command lines one after the other in one virtual machine, whose start takes longer than most of them."""

import os
import re
import subprocess
from glob import glob
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
JAVA = ["java", "-XX:+UseSerialGC", "-XX:TieredStopAtLevel=1"]  # as the command starts it


def line_of(words):
    """A command line, in which a tab is a blank within a word."""
    return " ".join(str(word).replace(" ", "\t") for word in words)


def in_one_machine(class_path, lines, folder=ROOT):
    """What each command line prints in that folder, with its exit status."""
    libraries = ":".join([f"{ROOT}/build/release", *glob("/usr/lib/jni"), *glob("/usr/lib/*/jni")])
    done = subprocess.run([*JAVA, f"-Djava.library.path={libraries}", "-cp", class_path,
                           ROOT / "tests/record/Commands.java", "both"], input="\n".join(lines).encode(), cwd=folder,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}, capture_output=True, timeout=600)
    out, err = (re.findall(rb"(.*?)\0([^\n]*): (\d+)\n", stream, re.S) for stream in (done.stdout, done.stderr))
    for told in (out, err):
        assert [line.decode() for _, line, _ in told] == lines, done.stderr[-2000:]
    return [subprocess.CompletedProcess(line, int(status), printed, said)
            for line, (printed, _, status), (said, _, _) in zip(lines, out, err)]

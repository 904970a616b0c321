"""How long commands take with the class-data archive, as a ratio to the same commands without, run in turns."""

import os
import resource
import subprocess
import sys
from pathlib import Path

TARN = Path(__file__).resolve().parents[1] / "tarn"
COMMANDS = ("--help", "computer-system", "--json hba", "report")
TURNS = 15
BOUND = 0.80


def processor_time(command, environment):
    """Seconds that the command and all it starts keep a processor busy: other load hardly shows."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([TARN, *command.split()], env=environment, check=True, capture_output=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def ratio(command):
    """Of the shortest turn of each side; the side that goes first changes."""
    sides = [(environment, []) for environment in (dict(os.environ, TARN_HOST=""),
                                                   dict(os.environ, TARN_HOST="", TARN_CACHE=""))]
    for turn in range(TURNS + 1):
        for environment, times in sides if turn % 2 else reversed(sides):
            times.append(processor_time(command, environment))
    measured, reference = (min(times[1:]) for _, times in sides)  # the first turn may make the archive
    return measured / reference


def main():
    print(f"{'':<64} {'ratio':>7} {'bound':>7}")
    for command in COMMANDS:
        found = ratio(command)
        name = f"tarn {command}, with the class-data archive to without"
        print(f"{name:<64} {found:7.2f} {BOUND:7.2f}  {'met' if found <= BOUND else 'NOT MET'}", flush=True)


if __name__ == "__main__":
    sys.exit(main())

"""What a store of many hosts costs, as ratios to what it takes to read and ask them, in the same run.

python3 benchmarks/san.py COMMAND..., which makes the calls of a load and stores nothing (LoadFloor.java).

TARN_BENCH_HOSTS is how many hosts there are, 10,000 by default; some rows compare them with a tenth of them.
"""

import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path
from types import SimpleNamespace

ROOT = Path(__file__).resolve().parents[1]
TARN = ROOT / "tarn"
NETWORK = ROOT / "tests" / "san" / "network.py"
HOSTS = int(os.environ.get("TARN_BENCH_HOSTS") or 10_000)
LEAST = 200
GROUP = 8  # hosts that share their units
FEW = max(GROUP, HOSTS // 10 // GROUP * GROUP)
TURNS = 3  # of what is short; the cheapest counts
LONG_TURNS = 3  # of what is long, both sides one after the other
CHECKED = (0, 1, 2)  # the exit statuses of a check that was made


def run(command, statuses=(0,)):
    """What it cost, with all it started, and what it answered."""
    with tempfile.TemporaryFile() as answer:
        started = os.times().elapsed
        process = subprocess.Popen(list(map(str, command)), stdout=answer)
        _, status, used = os.wait4(process.pid, 0)
        elapsed = os.times().elapsed - started
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode not in statuses:
            sys.exit(f"{process.args} ended with the exit status {process.returncode}")
        answer.seek(0)
        text = answer.read()
    return SimpleNamespace(processor=used.ru_utime + used.ru_stime, elapsed=elapsed, memory=used.ru_maxrss,
                           result=json.loads(text)["result"] if text else None)


def san(database, command, *arguments, **more):
    return run([TARN, "--json", "san", command, "--db", database, *arguments], **more)


def least(runs):
    return min(runs, key=lambda each: each.processor)


def cheapest(measure, *arguments, **more):
    return least([measure(*arguments, **more) for _ in range(TURNS)])


def load(database, *folders):
    database.unlink(missing_ok=True)
    return san(database, "load", *folders)


def make(folder):
    """The hosts, of which the first few are in a folder of their own."""
    subprocess.run([sys.executable, NETWORK, "--hosts", str(HOSTS), folder], check=True)
    few, all_of_them = folder / "few", folder / "hosts"
    few.mkdir()
    for group in range(FEW // GROUP):
        for host in all_of_them.glob(f"g{group}h*.json"):
            host.rename(few / host.name)
    return few, all_of_them


def show(name, ratio, bound=None, digits=2):
    print(f"{name:<64} {ratio:7.{digits}f} " + ("   none" if bound is None else f"{bound:7.{digits}f}  "
          + ("met" if ratio <= bound else "NOT MET")), flush=True)


def main():
    floor = sys.argv[1:]
    if HOSTS < LEAST:
        sys.exit(f"TARN_BENCH_HOSTS: {HOSTS} is less than {LEAST}, of which some have faults")
    with tempfile.TemporaryDirectory(prefix="tarn-bench-") as scratch:
        few, rest = make(Path(scratch))
        one = next(few.iterdir())
        seen = json.loads(one.read_text())["hba"]["adapters"][0]["ports"][0]["discovered"][0]["attributes"]["PortWWN"]
        database, small = Path(scratch, "network.db"), Path(scratch, "few.db")

        print(f"{'':<64} {'ratio':>7} {'bound':>7}")
        turns = [(run([*floor, few, rest]), load(database, few, rest)) for _ in range(LONG_TURNS)]
        asked, first = map(least, zip(*turns))
        assert (first.result["loaded"], first.result["refused"]) == (HOSTS, []), first.result
        show(f"san load, {HOSTS:,} hosts, to reading and asking them", first.processor / asked.processor, 1.5)
        show("the same, by the clock", first.elapsed / asked.elapsed)
        for name, side in (("san load", first), ("reading and asking", asked)):
            show(f"processors that {name} keeps busy, of {os.cpu_count()}", side.processor / side.elapsed)
        part = cheapest(load, small, few)
        show(f"san load, per host: {HOSTS:,} hosts to {FEW:,}",
             first.processor / HOSTS / (part.processor / part.result["loaded"]), 1.2)
        show(f"san load, memory: {HOSTS:,} hosts to {FEW:,}", first.memory / part.memory, 1.2)
        again = cheapest(san, database, "load", few, rest)
        assert again.result["unchanged"] == HOSTS, again.result
        show("san load, the same again to the first time", again.processor / first.processor, 0.1)
        checked = cheapest(san, database, "check", statuses=CHECKED)
        assert checked.result["findings"], "the planted faults are not found"
        show("san check, to the load", checked.processor / first.processor, 0.02, digits=3)
        who = cheapest(san, database, "who", seen)
        assert who.result["hosts"], "nobody sees the port"
        show("san who, an array port, to the load", who.processor / first.processor, 0.02, digits=3)
        print(f"{database.stat().st_size / HOSTS / 1024:.0f} KiB a host in the store; {first.memory / 1024:.0f} MiB of "
              f"memory; {1000 * first.processor / HOSTS:.1f} ms a host", file=sys.stderr)


if __name__ == "__main__":
    sys.exit(main())

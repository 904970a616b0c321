"""What the suites written in Python share: the lines that ./test counts, and what a machine may lack."""

import os
import pty


def report(result):
    """Prints what was not run and why, then the counts; answers the exit status."""
    for test, reason in result.skipped:
        print(f"skipped: {test.id().split('.')[-1]}: {reason}")
    failed = len({test.id().partition(" ")[0] for test, _ in result.failures + result.errors})
    skipped = len(result.skipped)
    passed = max(0, result.testsRun - failed - skipped)  # what fails before its tests is none of those that were run
    print(f"{passed} passed, {failed} failed" + f", {skipped} skipped" * bool(skipped))
    return 1 if failed else 0


def need_terminal(test):
    """Skips the rest of the test where no pseudo-terminal is to be had, as in some containers."""
    try:
        for end in pty.openpty():
            os.close(end)
    except OSError as refused:
        test.skipTest(f"no pseudo-terminal: {refused}")

#!/usr/bin/env python3
"""Says which tests of the last run in a build tree failed, and what each of them said first.

  failed-tests.py BUILD_FOLDER...

Prints a few lines for each test, so that the end of a long log still tells what went wrong.
"""
import re
import sys
from pathlib import Path

LINES_OF_A_TEST = 16
COLUMNS = 240
TELLING = re.compile(r"Failure$|ERROR: |WARNING: ThreadSanitizer|SUMMARY: |runtime error|Assertion|what\(\)|timeout", re.I)


def outputs(log):
    """The output of each test in a LastTest.log, by the test's name."""
    parts = re.split(r"^\d+/\d+ Testing: (.*)\n", log, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def first_words(output):
    """What a test said first of its failure: from the first telling line on, else its last lines."""
    lines = [line for line in output.splitlines() if line.strip()]
    for number, line in enumerate(lines):
        if TELLING.search(line):
            return lines[number : number + LINES_OF_A_TEST]
    return lines[-LINES_OF_A_TEST:]


def report(folder):
    folder = Path(folder) / "Testing" / "Temporary"
    failed = folder / "LastTestsFailed.log"
    if not failed.exists():
        return
    said = outputs((folder / "LastTest.log").read_text(errors="replace"))
    for line in failed.read_text(errors="replace").splitlines():
        name = line.partition(":")[2]
        print(f"{folder.parent.parent.name}: {name}")
        for word in first_words(said.get(name, "")):
            print(f"    {word[:COLUMNS]}")


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__.strip())
        return 0 if sys.argv[1:] in (["-h"], ["--help"]) else 2
    for folder in sys.argv[1:]:
        report(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())

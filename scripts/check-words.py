#!/usr/bin/env python3
"""Checks that the tree holds no unfinished business, no dead code and no path of one machine."""

import re
import sys

import sources

TEXT = {".h", ".cpp", ".cmake", ".md", ".py", ".sh", ".txt", ".json", ".in", ""}

# The brackets keep the patterns from finding themselves; tests may speak of a home of nobody ("me").
UNFINISHED = re.compile(
    r"\b(T[O]DO|F[I]XME|X[X]X|H[A]CK|T[B]D)\b|\bf[o]r now\b|\bp[l]aceholder\b|\bn[o]t (yet )?implemented\b"
    r"|\b[D]ISABLED_|\b[G]TEST_SKIP\b|\bN[O]LINT(?!\w*\([\w.*,-]+\))", re.IGNORECASE)
MACHINE = re.compile(r"(?<![\w.$}])/[w]ork/|(?<![\w.$}])/[h]ome/(?!me\b)\w|(?<![\w.$}])/[r]oot/|/[U]sers/\w")
DEAD_CODE = re.compile(r"^\s*//(?!/)\s*(if \(.*\) *[{;]|for \(.*\) *[{;]|return\b.*;|\w[\w:<>,*& ]*\(.*\);|#include|[{}]\s*$)")
SWITCHED_OFF = re.compile(r"^\s*#\s*if\s+0\b")
OUTSIDE = re.compile(r"\.\./[s]hared")


def faults(path, line):
    if UNFINISHED.search(line):
        yield "unfinished business"
    if MACHINE.search(line):
        yield "a path of one machine"
    if OUTSIDE.search(line) and str(path) != ".ci/run":
        yield "a path out of the tree"
    if path.suffix in (".h", ".cpp"):
        if DEAD_CODE.match(line):
            yield "code in a comment"
        if SWITCHED_OFF.match(line):
            yield "code that is switched off"


def main():
    findings = []
    for path in sources.tracked():
        if path.suffix not in TEXT:
            continue
        try:
            lines = (sources.ROOT / path).read_text().splitlines()
        except UnicodeDecodeError:
            continue
        for number, line in enumerate(lines, 1):
            findings += [f"{path}:{number}: {fault}: {line.strip()}" for fault in faults(path, line)]
    return sources.report("check-words", findings)


if __name__ == "__main__":
    sys.exit(main())

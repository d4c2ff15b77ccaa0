#!/usr/bin/env python3
"""Checks that the sources are as clang-format leaves them; with --fix makes them so."""

import subprocess
import sys

import sources


def main():
    files = [str(path) for path in sources.code()]
    if not files:
        return sources.report("check-format", [])
    mode = ["-i"] if "--fix" in sys.argv[1:] else ["--dry-run", "-Werror", "--ferror-limit=1"]
    run = subprocess.run(["clang-format", "--style=file", *mode, *files], cwd=sources.ROOT,
                         capture_output=True, text=True, check=False)
    findings = [line for line in run.stderr.splitlines() if ": error:" in line]
    if run.returncode and not findings:
        findings = [run.stderr.strip()]
    return sources.report("check-format", findings, "make format mends it")


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Checks that each header compiles alone, and twice in one source.

  scripts/check-headers.py [HEADER...]     without arguments: all of them
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

import sources

COMPILER = os.environ.get("CXX", "g++")
FLAGS = ["-std=c++20", "-fsyntax-only", "-x", "c++", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
         "-I", str(sources.ROOT)]


def compile_alone(header):
    """What the compiler says of the header, or nothing."""
    text = f'#include "{header}"\n#include "{header}"\n'
    run = subprocess.run([COMPILER, *FLAGS, "-"], input=text, capture_output=True, text=True,
                         cwd=sources.ROOT, check=False)
    return None if run.returncode == 0 else f"{header}: does not compile alone\n{run.stderr.rstrip()}"


def main():
    headers = [pathlib.PurePosixPath(name) for name in sys.argv[1:]] or sources.code((".h",))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        findings = [finding for finding in workers.map(compile_alone, headers) if finding]
    return sources.report("check-headers", findings)


if __name__ == "__main__":
    sys.exit(main())

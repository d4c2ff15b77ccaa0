#!/usr/bin/env python3
"""Checks that each header compiles alone, and twice in one source.

  scripts/check-headers.py [HEADER...]     without arguments: all of them

What compiled once is remembered by ccache, where that is installed.
"""

import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys

import sources

COMPILER = ([] if shutil.which("ccache") is None else ["ccache"]) + [os.environ.get("CXX", "g++")]
FLAGS = ["-std=c++20", "-c", "-O0", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I."]
# The same sources have the same names wherever the project lies, so that every copy of it finds them.
ENVIRONMENT = {**os.environ, "CCACHE_BASEDIR": str(sources.ROOT), "CCACHE_NOHASHDIR": "1"}
FOLDER = pathlib.PurePosixPath("build/headers")


def compile_alone(header):
    """What the compiler says of the header, or nothing."""
    source = FOLDER / (str(header).replace("/", "_") + ".cpp")
    (sources.ROOT / source).write_text(f'#include "{header}"\n#include "{header}"\n', encoding="utf-8")
    run = subprocess.run([*COMPILER, *FLAGS, str(source), "-o", str(source.with_suffix(".o"))],
                         capture_output=True, text=True, cwd=sources.ROOT, env=ENVIRONMENT, check=False)
    return None if run.returncode == 0 else f"{header}: does not compile alone\n{run.stderr.rstrip()}"


def main():
    headers = [pathlib.PurePosixPath(name) for name in sys.argv[1:]] or sources.code((".h",))
    (sources.ROOT / FOLDER).mkdir(parents=True, exist_ok=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        findings = [finding for finding in workers.map(compile_alone, headers) if finding]
    return sources.report("check-headers", findings)


if __name__ == "__main__":
    sys.exit(main())

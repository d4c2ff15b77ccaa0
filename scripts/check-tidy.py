#!/usr/bin/env python3
"""Runs clang-tidy over the library, the hosts and the plug-ins.

  scripts/check-tidy.py BUILD_DIR [SOURCE...]

BUILD_DIR is one that was configured for clang (preset tsa). A source that was found clean is not
looked at again until it, a header of ours, the options or the rules change.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

import sources

FOLDERS = sources.LIBRARY_FOLDERS + ("host", "plugins")


def digest(*texts):
    return hashlib.sha256("\0".join(texts).encode()).hexdigest()


def headers_digest():
    rules = (sources.ROOT / ".clang-tidy").read_text()
    return digest(rules, *((sources.ROOT / path).read_text() for path in sources.code((".h",), FOLDERS)))


def look_at(source, build, known_clean):
    """What clang-tidy says of the source, or nothing."""
    if known_clean.exists():
        return None
    run = subprocess.run(["clang-tidy", "--quiet", "-p", build, str(sources.ROOT / source)],
                         capture_output=True, text=True, check=False)
    if run.returncode == 0:
        known_clean.touch()
        return None
    return (run.stdout + run.stderr).replace(f"{sources.ROOT}/", "").strip()


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    commands = {entry["file"]: entry["command"]
                for entry in json.loads((build / "compile_commands.json").read_text())}
    chosen = [pathlib.PurePosixPath(name) for name in sys.argv[2:]] or sources.code((".cpp",), FOLDERS)
    headers = headers_digest()
    cache = build / "tidy"
    cache.mkdir(exist_ok=True)

    def look(source):
        full = str(sources.ROOT / source)
        if full not in commands:
            print(f"{source}: is not built by this configuration")
            return True
        key = digest(headers, commands[full], (sources.ROOT / source).read_text())
        finding = look_at(source, str(build), cache / key)
        if finding:
            print(finding, flush=True)
        return finding

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        with_findings = [str(source) for source, finding in zip(chosen, workers.map(look, chosen)) if finding]
    return sources.report("check-tidy", with_findings, "what was found stands above")


if __name__ == "__main__":
    sys.exit(main())

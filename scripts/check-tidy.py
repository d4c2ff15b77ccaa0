#!/usr/bin/env python3
"""Runs clang-tidy, and with it clang's warnings and thread-safety analysis, over all that is shipped.

  scripts/check-tidy.py [SOURCE...]     without arguments: the library, hosts, plug-ins and programs

A source that was found clean is not looked at again until its text with all that it includes, the options or
the rules change. What is known to be clean is kept below $XDG_CACHE_HOME, so that all copies of the project share
it.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys

import sources

FOLDERS = sources.LIBRARY_FOLDERS + ("host", "plugins", "tools", "examples")
PRESET = "tsa"
BUILD = sources.ROOT / "build" / PRESET


def cache_folder():
    home = os.environ.get("XDG_CACHE_HOME") or str(pathlib.Path.home() / ".cache")
    folder = pathlib.Path(home) / "playfile" / "tidy"
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def configured_commands():
    """How each source is compiled, with clang."""
    run = subprocess.run(["cmake", "--preset", PRESET], cwd=sources.ROOT, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        sys.exit(f"check-tidy: the preset {PRESET} can't be configured\n{run.stdout}{run.stderr}")
    entries = json.loads((BUILD / "compile_commands.json").read_text(encoding="utf-8"))
    return {entry["file"]: shlex.split(entry["command"]) for entry in entries}


def text_of(command):
    """A source with all that it includes and its comments, the same wherever the project lies."""
    compiler = next(i for i, word in enumerate(command) if pathlib.PurePath(word).name.startswith("clang++"))
    command = command[compiler:]
    output = command.index("-o")
    command = command[:output] + command[output + 2:]
    run = subprocess.run([*command, "-E", "-C"], cwd=BUILD, capture_output=True, check=False)
    place = str(sources.ROOT).encode()
    return None if run.returncode != 0 else (" ".join(command).encode() + run.stdout).replace(place, b"")


def findings_in(source, command, cache, rules):
    """What clang-tidy says of the source, or nothing."""
    text = text_of(command)
    known_clean = cache / hashlib.sha256(rules + (text or b"")).hexdigest()
    if text and known_clean.exists():
        known_clean.touch()
        return None
    run = subprocess.run(["clang-tidy", "--quiet", "-p", str(BUILD), str(sources.ROOT / source)],
                         capture_output=True, text=True, check=False)
    if run.returncode == 0 and text:
        known_clean.touch()
        return None
    return (run.stdout + run.stderr).replace(f"{sources.ROOT}/", "").strip()


def main():
    if any(name.startswith("-") for name in sys.argv[1:]):
        print(__doc__.strip())
        return 0 if sys.argv[1:] in (["-h"], ["--help"]) else 2
    chosen = [pathlib.PurePosixPath(name) for name in sys.argv[1:]] or sources.code((".cpp",), FOLDERS)
    commands = configured_commands()
    rules = (sources.ROOT / ".clang-tidy").read_bytes()
    cache = cache_folder()

    def look(source):
        command = commands.get(str(sources.ROOT / source))
        finding = findings_in(source, command, cache, rules) if command else "is not built by the preset"
        return f"{source}: {finding}" if finding else None

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        return sources.report("check-tidy", [finding for finding in workers.map(look, chosen) if finding])


if __name__ == "__main__":
    sys.exit(main())

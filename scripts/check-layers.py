#!/usr/bin/env python3
"""Checks that no include points upward.

A file includes files of its own rank and of lower ranks. Includes of our own files are written from
the root of the sources. Libraries of others are included where they belong and nowhere else.
"""

import re
import sys

import sources

# The first pattern that matches a path gives its rank.
RANKS = [
    (r"ole/os/Memory\b", 0),
    (r"ole/Ox/Ox(DecouplingQueue|Pool|MultipleAccessQueue|QueueRelease)", 2),
    (r"ole/Ox/", 0),
    (r"ole/os/", 1),
    (r"toolkit/", 2),
    (r"playfile/\w+\.h$", 2),
    (r"playfile/(Settings|Version)\w*\.cpp$", 2),
    (r"playfile/", 8),
    (r"header/FileXferSpec", 6),
    (r"(files|header)/", 3),
    (r"video/", 4),
    (r"audio/", 5),
    (r"material/\w*(Transfer|Xfer)", 7),
    (r"material/", 6),
    (r"transfer/", 7),
    (r"plugins/", 9),
    (r"(tools|examples|bench|tests)/", 10),
]

# The host stands beside the ranks: it sees ranks 0 to 2, and these types of the library, which the
# contract names.
HOST_RANK = 2
HOST_MAY_ALSO_SEE = re.compile(
    r"(files/(PlayFile|FileReadInstance|FileWriteInstance|FileTypes|iVariableFrameRateHandler)"
    r"|header/(SavHeader|FileXferSpec)|material/MediaLocationInfo|video/(RequestStatus|iVariableFrameRateHandler))\.h$")

# Libraries of others, and who may include them.
FOREIGN = [
    (r"lib(av|sw)\w+/", r"(plugins/ffmpeg|bench|tests|tools)/"),
    (r"sqlite3", r"(host/sqlite|tests)/"),
    (r"curl/", r"(host/remote|tests)/"),
    (r"CLI/", r"(tools|bench|tests)/"),
    (r"nlohmann/", r"(host/remote|tools|bench|tests)/"),
    (r"png\.h", r"(tools|tests)/"),
    (r"benchmark/", r"bench/"),
    (r"sndfile\.h", r"(bench|tests)/"),
    (r"g(test|mock)/", r"tests/"),
]

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def rank(path):
    for pattern, value in RANKS:
        if re.match(pattern, path):
            return value
    return None


def fault_of_own(path, included):
    """What is wrong with the file's include of one of our own, or nothing."""
    if not (sources.ROOT / included).is_file():
        return "is no file, as seen from the root"
    if included.startswith("tests/"):
        return None if path.startswith("tests/") else "belongs to the tests"
    if path.startswith("host/"):
        if included.startswith("host/") or HOST_MAY_ALSO_SEE.match(included):
            return None
        return None if rank(included) <= HOST_RANK else f"has rank {rank(included)}, a host sees up to {HOST_RANK}"
    own = rank(path)
    if included.startswith("host/"):
        return None if own == 10 else "is a host's, only programs and tests include it"
    other = rank(included)
    if other is None:
        return "is in a folder without a rank"
    return None if other <= own else f"has rank {other}, this file has rank {own}"


def fault_of_foreign(path, included):
    for pattern, where in FOREIGN:
        if re.match(pattern, included) and not re.match(where, path):
            return "is a library that this folder may not use"
    if included.split("/")[0] in sources.CODE_FOLDERS:
        return "is our own, write it with quotation marks"
    return None


def main():
    findings = []
    for source in sources.code():
        path = str(source)
        if rank(path) is None and not path.startswith("host/"):
            findings.append(f"{path}: is in a folder without a rank")
            continue
        for number, line in enumerate((sources.ROOT / source).read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            is_own = match[1] == '"' and not any(re.match(pattern, match[2]) for pattern, _ in FOREIGN)
            fault = (fault_of_own if is_own else fault_of_foreign)(path, match[2])
            if fault:
                findings.append(f"{path}:{number}: {match[2]} {fault}")
    return sources.report("check-layers", findings)


if __name__ == "__main__":
    sys.exit(main())

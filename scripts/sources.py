"""The project's own files, as the checks see them."""

import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent

LIBRARY_FOLDERS = ("ole", "toolkit", "playfile", "files", "video", "audio", "header", "material", "transfer")
CODE_FOLDERS = LIBRARY_FOLDERS + ("host", "plugins", "tools", "examples", "bench", "tests")


def tracked():
    """Paths of all files of the tree, from the root, new ones included, ignored ones not."""
    listing = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=ROOT, check=False, capture_output=True, text=True)
    if listing.returncode == 0:
        names = [name for name in listing.stdout.split("\0") if name]
    else:  # not a checkout: an unpacked archive
        names = [str(path.relative_to(ROOT)) for path in ROOT.rglob("*") if path.is_file()]
    paths = (pathlib.PurePosixPath(name) for name in sorted(set(names)))
    return [path for path in paths if path.parts[0] not in ("build", "out") and (ROOT / path).is_file()]


def code(suffixes=(".h", ".cpp"), folders=CODE_FOLDERS):
    """Paths of the sources with one of the suffixes below the folders."""
    return [path for path in tracked() if path.suffix in suffixes and path.parts[0] in folders]


def report(check, findings, hint=""):
    """Prints the findings and gives the exit code."""
    for finding in findings:
        print(finding)
    if findings:
        print(f"{check}: {len(findings)} finding(s)" + (f"; {hint}" if hint else ""))
        return 1
    print(f"{check}: nothing found")
    return 0

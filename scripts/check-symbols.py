#!/usr/bin/env python3
"""Checks what the shared libraries import and export.

  scripts/check-symbols.py BUILD_DIR [--update]

- The library and the host link to nothing but the C and C++ runtime (and the library to the host);
  every symbol they import is there.
- An unsanitized library exports the replaced allocation functions.
- What they export and import, by class and function, is what cmake/symbols/ says; --update writes
  it down anew. The lists are those of the release preset.
"""

import pathlib
import re
import subprocess
import sys

import sources

LISTS = sources.ROOT / "cmake" / "symbols"
RUNTIME = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2"}
SANITIZERS = {"libasan.so.8", "libubsan.so.1", "libtsan.so.2"}
ALLOWED = {"playfile_host": RUNTIME, "playfile": RUNTIME | {"libplayfile_host.so.0"}}

ALLOCATION = {
    "_Znwm", "_Znam", "_ZnwmRKSt9nothrow_t", "_ZnamRKSt9nothrow_t",
    "_ZdlPv", "_ZdaPv", "_ZdlPvm", "_ZdaPvm", "_ZdlPvRKSt9nothrow_t", "_ZdaPvRKSt9nothrow_t",
}

# Strong symbols only: which inline functions a library happens to hold is the compiler's affair.
STRONG = set("TDBR")
OF_OTHERS = re.compile(r"^(std|__gnu_cxx|__cxxabiv1)::|^(typeinfo|vtable|typeinfo name|VTT|guard variable)"
                       r"( for)? (std|__gnu_cxx)::|^operator (new|delete)")
OF_A_CLASS = re.compile(r"^(vtable|typeinfo name|typeinfo|VTT|construction vtable) for ")
OF_A_NAME = re.compile(r"^(guard variable for|(non-)?virtual thunk to|covariant return thunk to) ")


def namespaces():
    """All namespaces that our headers open, with those around them."""
    found = set()
    for header in sources.code((".h",), sources.LIBRARY_FOLDERS + ("host",)):
        for name in re.findall(r"^namespace (\w+(?:::\w+)*)", (sources.ROOT / header).read_text(), re.MULTILINE):
            parts = name.split("::")
            found |= {"::".join(parts[:end]) for end in range(1, len(parts) + 1)}
    return found


NAMESPACES = namespaces()


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def symbols(library, *options):
    """(kind, name) of the dynamic symbols."""
    for line in run("nm", "-D", "--format=posix", *options, str(library)).splitlines():
        match = re.match(r"(.+?) ([A-Za-z])(?: [0-9a-f]+)*\s*$", line)
        if match:
            yield match[2], match[1].split("@")[0]


def needed(library):
    return set(re.findall(r"\(NEEDED\).*\[(.+)\]", run("readelf", "-d", str(library))))


def demangled(names):
    names = sorted(names)
    text = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True, check=True).stdout
    return text.splitlines() if names else []


def without_brackets(name):
    """The name up to its parameters, without template arguments."""
    depth, kept = 0, ""
    name = name.replace("(anonymous namespace)", "{anonymous}").replace("operator()", "operator-call")
    for char in name:
        if char == "<":
            depth += 1
        elif char == ">" and depth:
            depth -= 1
        elif char == "(" and not depth:
            break
        elif not depth:
            kept += char
    return kept


def family(name):
    """The class of a member, or the function itself."""
    if OF_OTHERS.match(name):
        return None
    stem = without_brackets(OF_A_CLASS.sub("", OF_A_NAME.sub("", name))).strip()
    stem = re.sub(r" ?\[.*", "", stem).split(" ")[-1]
    if not stem or OF_OTHERS.match(stem) or "{" in stem:
        return None
    scope = stem.rpartition("::")[0]
    return stem if OF_A_CLASS.match(name) or not scope or scope in NAMESPACES else scope


def families(names):
    return sorted({each for each in map(family, demangled(names)) if each})


def runtime_paths(library):
    return re.findall(r"(/\S+) \(0x", run("ldd", str(library)))


def check_needed(name, library, findings):
    for other in sorted(needed(library) - ALLOWED[name] - SANITIZERS):
        findings.append(f"{library.name}: links to {other}")


def check_imports(library, findings):
    there = set()
    for path in runtime_paths(library) + [str(library)]:
        there |= {symbol for _, symbol in symbols(path, "--defined-only")}
    for kind, symbol in symbols(library, "--undefined-only"):
        if kind == "U" and symbol not in there:
            findings.append(f"{library.name}: imports {symbol}, which none of its libraries has")


def check_allocation(library, findings):
    if any("san" in other for other in needed(library)):
        return
    exported = {symbol for kind, symbol in symbols(library, "--defined-only") if kind in "TW"}
    for symbol in demangled(ALLOCATION - exported):
        findings.append(f"{library.name}: does not export {symbol}")


def check_list(path, found, update, findings):
    if update:
        path.parent.mkdir(exist_ok=True)
        path.write_text("".join(f"{each}\n" for each in found))
        return
    listed = path.read_text().split("\n")[:-1] if path.exists() else []
    where = path.relative_to(sources.ROOT)
    findings += [f"{where}: lacks {each}" for each in found if each not in listed]
    findings += [f"{where}: lists {each}, which is there no more" for each in listed if each not in found]


def main():
    arguments = [each for each in sys.argv[1:] if each != "--update"]
    if len(arguments) != 1:
        print(__doc__)
        return 2
    folder = pathlib.Path(arguments[0]) / "lib"
    update = "--update" in sys.argv
    library, host = folder / "libplayfile.so", folder / "libplayfile_host.so"
    findings = []
    for name, path in (("playfile_host", host), ("playfile", library)):
        check_needed(name, path, findings)
        check_imports(path, findings)
        exported = {symbol for kind, symbol in symbols(path, "--defined-only") if kind in STRONG}
        check_list(LISTS / f"{name}.exports", families(exported), update, findings)
    of_host = {symbol for _, symbol in symbols(host, "--defined-only")}
    imported = {symbol for _, symbol in symbols(library, "--undefined-only")} & of_host
    check_list(LISTS / "playfile.imports", families(imported), update, findings)
    check_allocation(library, findings)
    return sources.report("check-symbols", findings, "--update writes the lists anew")


if __name__ == "__main__":
    sys.exit(main())

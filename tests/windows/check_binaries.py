#!/usr/bin/env python3
"""Look at the built Windows binaries: exports, imports, and how the system may load them.

    check_binaries.py OBJDUMP MODULE BINARY...   the module, and the other binaries that lie beside it
"""

import pathlib
import re
import subprocess
import sys

MODULE_EXPORTS = ["IOProcessFunc"]
HOST_LIBRARIES = {"vekcommonx.dll", "vekrenderx.dll", "veklogdllx.dll"}
# What Windows itself brings; ucrtbase.dll is its C run-time, msvcrt.dll the older one.
SYSTEM_LIBRARIES = {"kernel32.dll", "user32.dll", "gdi32.dll", "msvcrt.dll", "ucrtbase.dll", "ws2_32.dll", "mswsock.dll"}
LOADER_FLAGS = {"DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"}


class Binary:
    def __init__(self, objdump, path):
        self.path = pathlib.Path(path)
        self.name = self.path.name
        listing = subprocess.run([objdump, "-p", path], capture_output=True, text=True, check=True).stdout
        self.is_64_bit = "file format pei-x86-64" in listing
        self.imports = {name.lower() for name in re.findall(r"^\tDLL Name: (\S+)$", listing, re.MULTILINE)}
        self.exports = self.export_names(listing)
        flags = re.search(r"^DllCharacteristics\t[0-9a-f]+\n((?:\t+\S+\n)*)", listing, re.MULTILINE)
        self.loader_flags = set(flags[1].split())
        relocations = re.search(r"^Entry 5 [0-9a-f]+ ([0-9a-f]+) Base Relocation", listing, re.MULTILINE)
        self.has_relocations = int(relocations[1], 16) > 0

    @staticmethod
    def export_names(listing):
        table = re.search(r"^\[Ordinal/Name Pointer\] Table.*\n((?:\t\[ *\d+\].*\n)*)", listing, re.MULTILINE)
        names = [line.split()[-1] for line in table[1].splitlines()] if table else []
        # What has a number only is exported too.
        count = re.search(r"^Number in:\n\tExport Address Table \t\t([0-9a-f]+)$", listing, re.MULTILINE)
        return names + ["(no name)"] * ((int(count[1], 16) if count else 0) - len(names))


def faults_of(binary, is_module):
    faults = []
    if not binary.is_64_bit:
        faults.append("is no 64-bit Windows binary")
    if is_module and binary.exports != MODULE_EXPORTS:
        faults.append(f"exports {len(binary.exports)} names instead of {MODULE_EXPORTS}: {binary.exports[:20]}")
    if is_module and not HOST_LIBRARIES <= binary.imports:
        faults.append(f"imports nothing from {sorted(HOST_LIBRARIES - binary.imports)}")
    foreign = binary.imports - HOST_LIBRARIES - SYSTEM_LIBRARIES
    if foreign:
        faults.append(f"imports from {sorted(foreign)}")
    if not LOADER_FLAGS <= binary.loader_flags:
        faults.append(f"lacks the flags {sorted(LOADER_FLAGS - binary.loader_flags)}")
    if not binary.has_relocations:
        faults.append("has no relocations, so that its address can't be random")
    return [f"{binary.name} {fault}" for fault in faults]


def main():
    objdump, module, *others = sys.argv[1:]
    faults = faults_of(Binary(objdump, module), is_module=True)
    for path in others:
        faults += faults_of(Binary(objdump, path), is_module=False)
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()

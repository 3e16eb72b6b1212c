#!/usr/bin/env python3
"""Look at the built Windows binaries: exports, imports, resources, and how the system may load them.

    check_binaries.py check     OBJDUMP MODULE BINARY...   the module, and the other binaries that lie beside it
    check_binaries.py self-test OBJDUMP MODULE BINARY...   whether the checks notice damage done to copies
"""

import pathlib
import re
import struct
import subprocess
import sys
import tempfile

MODULE_EXPORTS = ["IOProcessFunc"]
HOST_LIBRARIES = {"vekcommonx.dll", "vekrenderx.dll", "veklogdllx.dll"}
# What Windows itself brings; ucrtbase.dll is its C run-time, msvcrt.dll the older one.
SYSTEM_LIBRARIES = {"kernel32.dll", "user32.dll", "gdi32.dll", "msvcrt.dll", "ucrtbase.dll", "ws2_32.dll", "mswsock.dll"}
# Of the node types; 7008 is none's.
MODULE_ICONS = [*range(7000, 7008), *range(7009, 7014)]
ICON_GROUP, VERSION_RECORD = 14, 16  # types of resources
LOADER_FLAGS = {"DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"}


class Binary:
    def __init__(self, objdump, path):
        self.path = pathlib.Path(path)
        self.name = self.path.name
        listing = subprocess.run([objdump, "-p", path], capture_output=True, text=True, check=True).stdout
        self.is_64_bit = "file format pei-x86-64" in listing
        self.imports = {name.lower() for name in re.findall(r"^\tDLL Name: (\S+)$", listing, re.MULTILINE)}
        self.exports = self.export_names(listing)
        self.icons = self.resource_ids(listing, ICON_GROUP)
        self.version_records = self.resource_ids(listing, VERSION_RECORD)
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

    @staticmethod
    def resource_ids(listing, resource_type):
        """Numbers of the resources of a type. The listing indents the table of types, then those of numbers."""
        resources = listing.partition("The .rsrc Resource Directory section:\n")[2]
        for part in re.split(r"^[0-9a-f]+ {3}Entry: ID: 0x", resources, flags=re.MULTILINE)[1:]:
            if int(part.partition(",")[0], 16) == resource_type:
                numbers = re.findall(r"^[0-9a-f]+ {5}Entry: ID: 0x([0-9a-f]+)", part, re.MULTILINE)
                return [int(number, 16) for number in numbers]
        return []


def faults_of(binary, is_module):
    faults = []
    if not binary.is_64_bit:
        faults.append("is no 64-bit Windows binary")
    if is_module and binary.exports != MODULE_EXPORTS:
        faults.append(f"exports {len(binary.exports)} names instead of {MODULE_EXPORTS}: {binary.exports[:20]}")
    if is_module and not HOST_LIBRARIES <= binary.imports:
        faults.append(f"imports nothing from {sorted(HOST_LIBRARIES - binary.imports)}")
    if is_module and binary.icons != MODULE_ICONS:
        faults.append(f"has the icon groups {binary.icons}")
    if is_module and binary.version_records != [1]:
        faults.append(f"has the version records {binary.version_records}")
    foreign = binary.imports - HOST_LIBRARIES - SYSTEM_LIBRARIES
    if foreign:
        faults.append(f"imports from {sorted(foreign)}")
    if not LOADER_FLAGS <= binary.loader_flags:
        faults.append(f"lacks the flags {sorted(LOADER_FLAGS - binary.loader_flags)}")
    if not binary.has_relocations:
        faults.append("has no relocations, so that its address can't be random")
    return [f"{binary.name} {fault}" for fault in faults]


def check(objdump, module, others):
    faults = faults_of(Binary(objdump, module), is_module=True)
    for path in others:
        faults += faults_of(Binary(objdump, path), is_module=False)
    return faults


OPTIONAL_HEADER_FLAGS = 70  # offset of DllCharacteristics, 16 bits
OPTIONAL_HEADER_EXPORTS = 116  # offset of the exports' size, 32 bits
OPTIONAL_HEADER_RELOCATIONS = 156  # offset of the relocations' size, 32 bits


def change_number(content, offset, layout, change):
    """The file's bytes with one number changed."""
    content = bytearray(content)
    struct.pack_into(layout, content, offset, change(*struct.unpack_from(layout, content, offset)))
    return bytes(content)


def optional_header(content):
    """Where it begins."""
    return struct.unpack_from("<I", content, 0x3C)[0] + 4 + 20  # behind the signature and the file header


def section(content, wanted):
    """Where the header of a section begins; the section's address and its place in the file."""
    count, header_size = struct.unpack_from("<2xH12xH", content, optional_header(content) - 20)
    for number in range(count):
        header = optional_header(content) + header_size + 40 * number
        name, address, offset = struct.unpack_from("<8s4xI4xI", content, header)
        if name.rstrip(b"\0") == wanted:
            return header, address, offset
    raise AssertionError(f"no section {wanted}")


def change_optional_header(content, offset, layout, change):
    return change_number(content, optional_header(content) + offset, layout, change)


def with_two_exports(content, has_name):
    """The file's bytes with a second export of the first one's function, by a name or by a number only."""
    header, address, offset = section(content, b".edata")
    (functions,) = struct.unpack_from("<I", content, offset + 28)
    (function,) = struct.unpack_from("<I", content, functions - address + offset)
    texts = [b"QORIOProcessx.dll\0", b"IOProcessFunc\0", b"Second\0"]
    functions = address + 40  # behind the directory
    names = functions + 8
    ordinals = names + 8
    file_name, first, second = (ordinals + 4 + len(b"".join(texts[:i])) for i in range(3))
    table = struct.pack("<10I", 0, 0, 0, file_name, 1, 2, 2 if has_name else 1, functions, names, ordinals)
    table += struct.pack("<4I2H", function, function, first, second, 0, 1) + b"".join(texts)
    content = content[:offset] + table + content[offset + len(table):]
    content = change_number(content, header + 8, "<I", lambda size: len(table))
    return change_optional_header(content, OPTIONAL_HEADER_EXPORTS, "<I", lambda size: len(table))


def without_last_resource(content, resource_type):
    """The file's bytes without the last entry of the directory of the resources of a type."""
    _, _, offset = section(content, b".rsrc")
    types = struct.unpack_from("<H", content, offset + 14)[0]
    for number in range(types):
        found, directory = struct.unpack_from("<2I", content, offset + 16 + 8 * number)
        if found == resource_type:
            count_offset = offset + (directory & 0x7FFFFFFF) + 14
            return change_number(content, count_offset, "<H", lambda count: count - 1)
    raise AssertionError(f"no resources of the type {resource_type}")


def self_test(objdump, module, others):
    """Each damage, done to a copy of the module, must give exactly the expected fault."""
    content = pathlib.Path(module).read_bytes()

    def without_flag(flag):
        return change_optional_header(content, OPTIONAL_HEADER_FLAGS, "<H", lambda flags: flags & ~flag)

    all_icons_but_one = str(MODULE_ICONS[:-1])
    damages = {
        "exports 1 names": content.replace(b"IOProcessFunc\0", b"IOProcessFunk\0"),
        "exports 2 names instead of ['IOProcessFunc']: ['IOProcessFunc', 'Second']":
            with_two_exports(content, has_name=True),
        "exports 2 names instead of ['IOProcessFunc']: ['IOProcessFunc', '(no name)']":
            with_two_exports(content, has_name=False),
        f"has the icon groups {all_icons_but_one}": without_last_resource(content, ICON_GROUP),
        "has the version records []": without_last_resource(content, VERSION_RECORD),
        "imports from ['libstdcxx-6.dll']": content.replace(b"VEKCommonx.dll\0\0", b"libstdcxx-6.dll\0"),
        "imports nothing from ['veklogdllx.dll']": content.replace(b"VEKLogDllx.dll\0", b"VEKCommonx.dll\0"),
        "lacks the flags ['DYNAMIC_BASE']": without_flag(0x40),
        "lacks the flags ['NX_COMPAT']": without_flag(0x100),
        "lacks the flags ['HIGH_ENTROPY_VA']": without_flag(0x20),
        "has no relocations": change_optional_header(content, OPTIONAL_HEADER_RELOCATIONS, "<I", lambda size: 0),
    }
    unnoticed = []
    with tempfile.TemporaryDirectory() as folder:
        for expected, damaged in damages.items():
            copy = pathlib.Path(folder) / "QORIOProcessx.dll"
            copy.write_bytes(damaged)
            faults = check(objdump, copy, others)
            print(expected, "->", faults)
            if not any(expected in fault for fault in faults):
                unnoticed.append(expected)
    # A library with many exports is no module.
    if not any("exports" in fault for fault in check(objdump, others[0], [])):
        unnoticed.append("many exports")
    return [f"not noticed: {name}" for name in unnoticed]


def main():
    what, objdump, module, *others = sys.argv[1:]
    faults = {"check": check, "self-test": self_test}[what](objdump, module, others)
    if faults:
        sys.exit("\n".join(faults))


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Compare where the members of records and nodes lie in the Microsoft C++ ABI with expected_abi.py.

    check_msvc_abi.py MODULE_DIR SOURCE... -- COMPILER...

Looks at the records that cross the boundary and the nodes, in all sources that use them. Given are the module's sources,
counted from MODULE_DIR, and a clang with its options, which says how it lays out what a source uses. What is called through
tables, tests/microsoft_abi shows.
"""

import concurrent.futures
import pathlib
import re
import subprocess
import sys
import tempfile

import expected_abi
# The headers that take most of the compiler's time; they are no part of what is checked.
PRECOMPILED = ["afxwin.h", "afxtempl.h", "gdiplus.h", "algorithm", "map", "memory", "optional", "span", "string", "vector",
               "cpprest/json.h"]


class Mismatch(Exception):
    """The interface differs from the expected one."""


class CompileError(Exception):
    """The sources do not compile for the Microsoft ABI."""


def run_compiler(command, source):
    result = subprocess.run([*command, source], capture_output=True, text=True)
    if result.returncode != 0:
        raise CompileError(f"{source} does not compile:\n{result.stderr}")
    return result.stdout


def precompile(compiler, file, headers):
    """Have the headers read once for many compilations, with the templates that they use; the file's name is free. Answers
    the file for the compiler's option -include-pch."""
    file.write_text("".join(f'#include "{name}"\n' for name in headers), encoding="utf-8")
    result = file.with_suffix(".pch")
    run_compiler([*compiler, "-fpch-instantiate-templates", "-x", "c++-header", "-o", result], file)
    return result


def record_layouts(output):
    """Record's name -> (size, {member: offset}); members of bases count, members of members don't."""
    layouts = {}
    for block in output.split("*** Dumping AST Record Layout\n")[1:]:
        block, _, size = block.partition("[sizeof=")
        lines = re.findall(r"^ *(\d+) \|( +)(.*)$", block, re.MULTILINE)
        name = lines[0][2]
        members = {}
        bases = [1]  # indentations of the record itself and of the bases around the current line
        for offset, indent, text in lines[1:]:
            while len(indent) <= bases[-1]:
                bases.pop()
            if len(indent) > bases[-1] + 2:
                continue
            if text.endswith(("(primary base)", "(base)")):
                bases.append(len(indent))
            else:
                member = text if text.endswith("vftable pointer)") else text.split()[-1]
                members[member] = int(offset)
        layouts[name] = (int(re.match(r"\d+", size)[0]), members)
    return layouts


def check_records(layouts):
    """Of the expected records, those that were found."""
    for name, (size, members) in layouts.items():
        if name not in expected_abi.RECORDS:
            # Nodes are expected one by one; templates are no nodes.
            if "m_pBaseGraphNode" in members and "<" not in name:
                raise Mismatch(f"{name} is a node that nobody expects")
            continue
        expected_size, expected_members = expected_abi.RECORDS[name]
        if members != expected_members:
            raise Mismatch(f"{name}: {sorted(members.items() - expected_members.items())} instead of "
                           f"{sorted(expected_members.items() - members.items())}")
        if size != expected_size:
            raise Mismatch(f"{name}: {size} bytes instead of {expected_size}")


def layouts_in(compiler, module_dir, source):
    options = [f"-I{module_dir}", "-Xclang", "-fdump-record-layouts", "-S", "-o", "/dev/null"]
    return record_layouts(run_compiler([*compiler, *options], module_dir / source))


def check(compiler, module_dir, sources):
    found = set()
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for layouts in pool.map(lambda source: layouts_in(compiler, module_dir, source), sources):
            check_records(layouts)
            found.update(layouts)
    if missing := expected_abi.RECORDS.keys() - found:
        raise Mismatch(f"no source uses {sorted(missing)}")


def main():
    module_dir, *sources = sys.argv[1:]
    separator = sources.index("--")
    sources, compiler = sources[:separator], sources[separator + 1:]
    module_dir = pathlib.Path(module_dir).resolve()
    try:
        with tempfile.TemporaryDirectory() as folder:
            precompiled = precompile(compiler, pathlib.Path(folder) / "precompiled.h", PRECOMPILED)
            check([*compiler, "-include-pch", precompiled], module_dir, sources)
    except (Mismatch, CompileError) as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()

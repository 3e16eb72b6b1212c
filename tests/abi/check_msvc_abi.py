#!/usr/bin/env python3
"""Compare the module's binary interface, as a compiler for the Microsoft C++ ABI lays it out, with expected_abi.py.

    check_msvc_abi.py check MODULE_DIR SOURCE... -- COMPILER...   the records that cross the boundary, the members of nodes,
                                                                  the virtual tables of the base of all nodes and of the
                                                                  class in each SOURCE
    check_msvc_abi.py self-test MODULE_DIR -- COMPILER...         whether the checks notice damage done to a copy

MODULE_DIR holds the module's sources. COMPILER is a clang with its options, without those for what to compile.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import expected_abi

HERE = pathlib.Path(__file__).resolve().parent
PRECOMPILED = ["afxwin.h", "afxtempl.h", "algorithm", "string", "vector", "cpprest/json.h"]
CONTRACT_SOURCE = "nodes/input/KeyboardNode.cpp"  # any node shows the tables of its base too


class Mismatch(Exception):
    """The interface differs from the expected one."""


class CompileError(Exception):
    """The sources do not compile for the Microsoft ABI."""


def run_compiler(command, source):
    result = subprocess.run([*command, str(source)], capture_output=True, text=True)
    if result.returncode != 0:
        raise CompileError(f"{source} does not compile:\n{result.stderr}")
    return result.stdout


def with_precompiled_headers(compiler, folder):
    """The compiler with the headers that take most of its time read already; they are no part of what is checked."""
    headers = folder / "precompiled.h"
    headers.write_text("".join(f"#include <{name}>\n" for name in PRECOMPILED), encoding="utf-8")
    run_compiler([*compiler, "-x", "c++-header", "-o", f"{headers}.pch"], headers)
    return [*compiler, "-include-pch", f"{headers}.pch"]


def compiler_output(compiler, module_dir, source, option):
    return run_compiler([*compiler, f"-I{module_dir}", "-Xclang", option, "-S", "-o", "/dev/null"], source)


def virtual_tables(compiler, module_dir, source):
    """Table's name as the compiler writes it, e.g. 'BaseStruct' in 'VEKProperty' -> operations in order."""
    output = compiler_output(compiler, module_dir, source, "-fdump-vtable-layouts")
    tables = {}
    for block in output.split("\n\n"):
        heading = re.match(r"VFTable for (.*) \(\d+ entr(?:y|ies)\)\.\n", block)
        if heading:
            entries = re.findall(r"^ *\d+ \| (.*)$", block, re.MULTILINE)
            # The entry before the first operation is the type information.
            tables[heading[1]] = [entry.removesuffix(" [scalar deleting]") for entry in entries[1:]]
    return tables


def record_layouts(compiler, module_dir):
    """Record's name -> (size, {member: offset}); members of bases count, members of members don't."""
    output = compiler_output(compiler, module_dir, HERE / "records.cpp", "-fdump-record-layouts")
    layouts = {}
    for block in output.split("*** Dumping AST Record Layout\n")[1:]:
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
        layouts[name] = (int(re.search(r"sizeof=(\d+)", block)[1]), members)
    return layouts


def compare(what, expected, found):
    if len(expected) != len(found):
        raise Mismatch(f"{what}: {len(found)} entries instead of {len(expected)}")
    for index, (expected_entry, found_entry) in enumerate(zip(expected, found)):
        if expected_entry != found_entry:
            raise Mismatch(f"{what}, entry {index}: '{found_entry}' instead of '{expected_entry}'")


def expected_table(table, class_name):
    """The table as the class has it: with its own destructor and its overrides."""
    expected = []
    for entry in table:
        result, introduced_by, operation, arguments = re.fullmatch(r"(.*?)(\w+)::(~?\w+)(\(.*)", entry).groups()
        if operation.startswith("~"):
            expected.append(f"{class_name}::~{class_name}{arguments}")
        else:
            overrides = operation in expected_abi.OVERRIDES[class_name]
            expected.append(f"{result}{class_name if overrides else introduced_by}::{operation}{arguments}")
    return expected


def check_tables(tables, class_name):
    inside = " in 'VEKProperty' in 'P_ExtDevIOProcess'"
    if class_name != "P_ExtDevIOProcess":
        inside += f" in '{class_name}'"
    for base, table in (("BaseStruct", expected_abi.MAIN_TABLE), ("SParamGrpPosAdjust", expected_abi.SECOND_TABLE)):
        name = f"'{base}'{inside}"
        if name not in tables:
            raise Mismatch(f"{class_name} has no table {name}")
        compare(f"{class_name}, table of {base}", expected_table(table, class_name), tables[name])


def check_contract(compiler, module_dir):
    check_tables(virtual_tables(compiler, module_dir, module_dir / CONTRACT_SOURCE), "P_ExtDevIOProcess")


def check_node(compiler, module_dir, source):
    tables = virtual_tables(compiler, module_dir, source)
    nodes = [name.split("'")[-2] for name in tables if name.startswith("'BaseStruct' in") and "' in 'C" in name]
    if len(nodes) != 1:
        raise Mismatch(f"{source} defines {len(nodes)} node classes instead of one: {nodes}")
    if nodes[0] not in expected_abi.OVERRIDES:
        raise Mismatch(f"{nodes[0]} in {source} is not expected")
    check_tables(tables, nodes[0])


def check_records(compiler, module_dir):
    layouts = record_layouts(compiler, module_dir)
    for name, (expected_size, expected_members) in expected_abi.RECORDS.items():
        if name not in layouts:
            raise Mismatch(f"no layout of {name}")
        size, members = layouts[name]
        compare(name, sorted(expected_members.items()), sorted(members.items()))
        if size != expected_size:
            raise Mismatch(f"{name}: {size} bytes instead of {expected_size}")


def swap_lines(path, first, second):
    """Swap two lines of a file, each known by a text that no other line has."""
    lines = path.read_text(encoding="utf-8").splitlines()
    (index,) = [i for i, line in enumerate(lines) if first in line]
    (other_index,) = [i for i, line in enumerate(lines) if second in line]
    lines[index], lines[other_index] = lines[other_index], lines[index]
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")


def replace_text(path, old, new):
    text = path.read_text(encoding="utf-8")
    assert old in text
    path.write_text(text.replace(old, new), encoding="utf-8")


def self_test(compiler, module_dir):
    """Each damage, done to a copy of the sources, must be noticed."""
    def mouse(compiler, copy):
        check_node(compiler, copy, copy / "nodes/input/MouseNode.cpp")

    damages = {
        "two operations swapped":
            (lambda copy: swap_lines(copy / "host/NodeBase.h", "int PlayIn();", "int PlayNext();"), check_contract),
        "two operations of the second table swapped":
            (lambda copy: swap_lines(copy / "host/NodeBase.h", "GetXmlReader();", "ShouldReCalHeight();"), mouse),
        "two overloads in their order of declaration":
            (lambda copy: replace_text(copy / "host/NodeBase.h",
                                       "VEK_OVERLOADS_IN_TABLE_ORDER(virtual void SetSubType(int nSubType);, "
                                       "virtual void SetSubType(CString strSubType);)",
                                       "virtual void SetSubType(int nSubType); "
                                       "virtual void SetSubType(CString strSubType);"), check_contract),
        "an operation dropped":
            (lambda copy: replace_text(copy / "host/NodeBase.h", "virtual void PreRender();", "void PreRender();"),
             check_contract),
        "a parameter's type changed":
            (lambda copy: replace_text(copy / "host/NodeBase.h", "SeekEventBegin(int", "SeekEventBegin(unsigned"),
             check_contract),
        "an override too many":
            (lambda copy: replace_text(copy / "nodes/input/MouseNode.h", "int ProcessNode(SGraphNode* pGraphNode)",
                                       "int PlayIn() override; int ProcessNode(SGraphNode* pGraphNode)"), mouse),
        "two members swapped":
            (lambda copy: swap_lines(copy / "host/PluginContract.h", "CString strName;", "HICON hIcon"),
             check_records),
        "two members of a node swapped":
            (lambda copy: swap_lines(copy / "nodes/input/MouseNode.h", "int m_bButtonRight", "int m_bButtonMiddle"),
             check_records),
        "a member widened":
            (lambda copy: replace_text(copy / "host/EventRecord.h", "int m_nEvent;", "long long m_nEvent;"),
             check_records),
    }
    unnoticed = []
    for name, (damage, check) in damages.items():
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "module"
            shutil.copytree(module_dir, copy)
            damage(copy)
            try:
                check(compiler, copy)
                unnoticed.append(name)
            except Mismatch as mismatch:
                print(f"noticed: {name}: {mismatch}")
    if unnoticed:
        raise Mismatch("not noticed: " + ", ".join(unnoticed))


def check_all(compiler, module_dir, sources):
    check_records(compiler, module_dir)
    check_contract(compiler, module_dir)
    for source in sources:
        check_node(compiler, module_dir, module_dir / source)


def main():
    what, module_dir, *sources = sys.argv[1 : sys.argv.index("--")]
    compiler = sys.argv[sys.argv.index("--") + 1 :]
    module_dir = pathlib.Path(module_dir).resolve()
    try:
        with tempfile.TemporaryDirectory() as folder:
            compiler = with_precompiled_headers(compiler, pathlib.Path(folder))
            if what == "self-test":
                self_test(compiler, module_dir)
            else:
                check_all(compiler, module_dir, sources)
    except (Mismatch, CompileError) as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()

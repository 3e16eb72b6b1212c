#!/usr/bin/env python3
"""Compare the module's binary interface, as a compiler for the Microsoft C++ ABI lays it out, with expected_abi.py.

    check_msvc_abi.py check MODULE_DIR -- COMPILER...       the records that cross the boundary, the members of nodes, the
                                                            virtual tables of all nodes and of their base
    check_msvc_abi.py self-test MODULE_DIR -- COMPILER...   whether the check notices damage done to a copy

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


def virtual_tables(output):
    """Table's name as the compiler writes it, e.g. 'BaseStruct' in 'VEKProperty' -> operations in order. What a node class
    has from a template made for it counts as its own."""
    templates = "(?:CIOProcessNode|COutputNode|CNodeWithLayout|CJsonReceiveNode)"
    output = re.sub(rf" in '{templates}'(?= in ')| \[Node = \w+(?:, Base = .+)?\]", "", output)
    output = re.sub(rf"\b{templates}<(\w+).*>::", r"\1::", output)
    tables = {}
    for table in re.finditer(r"^VFTable for (.*) \(\d+ entr(?:y|ies)\)\.\n((?:.+\n)*)", output, re.MULTILINE):
        entries = re.findall(r"^ *\d+ \| (.*)$", table[2], re.MULTILINE)
        # The entry before the first operation is the type information. Nodes write the record's pointer by an alias.
        tables[table[1]] = [entry.removesuffix(" [scalar deleting]").replace("EventRecordPtr", "const SIOEventRecord *")
                            for entry in entries[1:]]
    return tables


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


def check_records(layouts):
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
    """Each damage, done to a copy of the headers, must be noticed."""
    def swap(file, first, second):
        return lambda copy: swap_lines(copy / file, first, second)

    def replace(file, old, new):
        return lambda copy: replace_text(copy / file, old, new)

    # What each damage is, and what is found in place of something else.
    damages = {
        "two operations swapped": (swap("host/NodeBase.h", "int PlayIn();", "int PlayNext();"), "PlayNext()"),
        "two operations of the second table swapped":
            (swap("host/ControlLayout.h", "GetXmlReader();", "ShouldReCalHeight();"), "ShouldReCalHeight()"),
        "two overloads in their order of declaration":
            (replace("host/NodeBase.h",
                     "VEK_OVERLOADS_IN_TABLE_ORDER(virtual void SetSubType(int nSubType);, "
                     "virtual void SetSubType(CString strSubType);)",
                     "virtual void SetSubType(int nSubType); virtual void SetSubType(CString strSubType);"),
             "SetSubType(CString)"),
        "an operation dropped":
            (replace("host/NodeBase.h", "virtual void PreRender();", "void PreRender();"), "48 entries"),
        "a parameter's type changed":
            (replace("host/NodeBase.h", "SeekEventBegin(int", "SeekEventBegin(unsigned"), "SeekEventBegin(unsigned int)"),
        "an override too many":
            (replace("nodes/input/MouseNode.h", "int ProcessNode(SGraphNode* pGraphNode)",
                     "int PlayIn() override; int ProcessNode(SGraphNode* pGraphNode)"), "CMouseIOProcess::PlayIn()"),
        "two members swapped": (swap("host/PluginContract.h", "CString strName;", "HICON hIcon"), "('hIcon', 24)"),
        "two members of a node swapped":
            (swap("nodes/input/MouseNode.h", "int m_bButtonRight", "int m_bButtonMiddle"), "('m_bButtonMiddle', 196)"),
        "a member widened":
            (replace("host/EventRecord.h", "int m_nEvent;", "long long m_nEvent;"), "('m_nEvent', 8)"),
        "a class that nobody expects":
            (lambda copy: shutil.copy(copy / "nodes/input/MouseNode.h", copy / "nodes/input/OtherNode.h"), "14 headers"),
    }
    for name, (damage, found) in damages.items():
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "module"
            shutil.copytree(module_dir, copy)
            damage(copy)
            try:
                check(compiler, copy)
            except Mismatch as mismatch:
                if found not in str(mismatch).split("instead of")[0]:
                    raise
                print(f"noticed: {name}: {mismatch}")
            else:
                raise Mismatch(f"not noticed: {name}")


def check(compiler, module_dir):
    headers = list(module_dir.glob("nodes/*/*Node.h"))
    if len(headers) != len(expected_abi.OVERRIDES) - 1:  # beside the nodes' base
        raise Mismatch(f"{len(headers)} headers of nodes instead of {len(expected_abi.OVERRIDES) - 1}")
    options = [f"-I{module_dir}", "-Xclang", "-fdump-record-layouts", "-Xclang", "-fdump-vtable-layouts", "-S", "-o", "/dev/null"]
    output = run_compiler([*compiler, *options], HERE / "interface.cpp")
    check_records(record_layouts(output))
    tables = virtual_tables(output)
    for class_name in expected_abi.OVERRIDES:
        check_tables(tables, class_name)


def main():
    what, module_dir, separator, *compiler = sys.argv[1:]
    assert separator == "--"
    module_dir = pathlib.Path(module_dir).resolve()
    try:
        with tempfile.TemporaryDirectory() as folder:
            precompiled = precompile(compiler, pathlib.Path(folder) / "precompiled.h", PRECOMPILED)
            {"check": check, "self-test": self_test}[what]([*compiler, "-include-pch", precompiled], module_dir)
    except (Mismatch, CompileError) as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()

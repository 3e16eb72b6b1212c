#!/usr/bin/env python3
"""Compile all sources of the module for Microsoft's target, up to where code would be made.

    check_sources.py own ARGUMENTS          over the module's own declarations of the host; and over them with one header
                                            at a time from another host
    check_sources.py other ARGUMENTS        over the other host's headers alone, which lie beside this script

ARGUMENTS are MODULE_DIR SOURCE... -- COMPILER...: the sources, counted from MODULE_DIR, and a clang with its options.

The other host has the classes and functions that its libraries must have, but names their members and its further types
otherwise. HostMembers.h beside this script is nodes/shared/HostMembers.h written for it; nothing else of the module may
need a change.
"""

import concurrent.futures
import functools
import pathlib
import re
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "abi"))

from check_msvc_abi import PRECOMPILED, CompileError, Mismatch, precompile, run_compiler

HOST_MEMBERS = "nodes/shared/HostMembers.h"
# What most sources include. It's read once for all of them.
SHARED = [HOST_MEMBERS, "host/HostJson.h", "nodes/shared/NodeSupport.h", "nodes/shared/NodeType.h",
          "nodes/shared/SharedRows.h"]
# The module's own numbers and macros: no host declares them.
OWN = {"Codes.h", "Export.h", "NodeTypeGuid.h"}
# An output pin overrides an operation that no parameter but this project's has.
NOT_ALONE = {"ParamModel.h": {"HostRender.h"}}


def names_in(folder):
    return {file.name for file in folder.iterdir()}


def sections(file):
    """The file's text about each header of the host; under no name, the text before the first."""
    parts = re.split(r"^// ---- host/(\w+\.h)$", file.read_text(encoding="utf-8"), flags=re.MULTILINE)
    return dict(zip(["", *parts[1::2]], parts[::2]))


def host_members(module_dir, replaced):
    """HostMembers.h for a host that has its own version of these headers."""
    own, other = sections(module_dir / HOST_MEMBERS), sections(HERE / "HostMembers.h")
    assert list(own) == list(other), "the sections differ"
    if replaced == names_in(HERE / "host"):
        own = other
    text = own[""]
    for header in [*own][1:]:
        if header in replaced:
            text += other[header]
        else:
            # The other host's headers know the types of this one by other names.
            aliases = re.findall(r"^using (\w+) = (\w+);", other[header], re.MULTILINE)
            text += own[header] + "".join(f"using {theirs} = {ours};\n" for ours, theirs in aliases)
    return text


@functools.cache
def words(file, module_dir):
    """The words of a source and of the module's headers that it includes, without those that are about the host alone."""
    text = file.read_text(encoding="utf-8")
    found = set(re.findall(r"\w+", text))
    for header in re.findall(r'^#include "((?:nodes|plugin)/.+)"$', text, re.MULTILINE):
        if header != HOST_MEMBERS:
            found |= words(module_dir / header, module_dir)
    return found


def users(headers, module_dir, files):
    """The sources that name a type or a function of these headers of the host, or of their sections: to others they're all
    the same."""
    about = sections(module_dir / HOST_MEMBERS)
    text = "".join((module_dir / "host" / name).read_text(encoding="utf-8") + about.get(name, "") for name in headers)
    names = {*re.findall(r"[A-Z]\w+(?=\()", text), *re.findall(r"(?:class|struct|using)(?: \w+_API)? (\w+)", text)}
    return [file for file in files if names & words(file, module_dir)]


def lay_over(folder, module_dir, replaced):
    """Make a folder that, in front of the include path, has these headers of the other host and HostMembers.h for them."""
    (folder / "host").mkdir(parents=True)
    for header in replaced:
        (folder / "host" / header).symlink_to(HERE / "host" / header)
    (folder / "vek").symlink_to(HERE / "vek")
    (folder / HOST_MEMBERS).parent.mkdir(parents=True)
    (folder / HOST_MEMBERS).write_text(host_members(module_dir, replaced), encoding="utf-8")


def check_taken(files, over, module_dir, replaced):
    """Of all headers read, those to be replaced come from the other host, and only they."""
    taken = {file.name for file in files if file.parent == over / "host"}
    kept = {file.name for file in files if file.parent == module_dir / "host"}
    if taken != replaced or kept & replaced or bool(replaced) != (over / HOST_MEMBERS in files):
        raise Mismatch(f"{sorted(taken)} were taken from the other host instead of {sorted(replaced)}")


def commands(compiler, base, folder, module_dir, replaced):
    """How to compile the sources over the own headers and the replaced ones: reading all that they include, and with what
    they share read already. The base is what all combinations of headers share."""
    over = folder / "over"
    if replaced:
        lay_over(over, module_dir, replaced)
    command = [compiler[0], f"-I{over}", f"-I{module_dir}", *compiler[1:]]
    depends = folder / "depends"
    shared = precompile([*command, "-include-pch", base, "-MD", "-MF", depends], folder / "shared.h", SHARED)
    check_taken([*map(pathlib.Path, depends.read_text(encoding="utf-8").split())], over, module_dir, replaced)
    return command, [*command, "-include-pch", shared]


def compile_all(files, compiler, base, module_dir, replaced, with_order):
    try:
        with tempfile.TemporaryDirectory() as folder:
            command, quick_command = commands(compiler, base, pathlib.Path(folder), module_dir, replaced)
            for file in files:
                run_compiler([*quick_command, "-fsyntax-only"], file)
                if with_order:
                    check_order(command, file)
    except CompileError as error:
        raise CompileError(f"With {sorted(replaced)} of the other host, {error}") from error


def check_order(command, file):
    """The framework comes before windows.h, which it refuses to follow; precompiled headers would hide that."""
    run_compiler([*command, "-M"], file)


def main():
    what, module_dir, *sources = sys.argv[1:]
    separator = sources.index("--")
    sources, compiler = sources[:separator], sources[separator + 1:]
    module_dir = pathlib.Path(module_dir).resolve()
    files = [module_dir / source for source in sources]
    theirs = names_in(HERE / "host")
    try:
        if odd := theirs ^ (names_in(module_dir / "host") - OWN):
            raise Mismatch(f"the module or the other host lacks {sorted(odd)}")
        with tempfile.TemporaryDirectory() as folder:
            base = precompile(compiler, pathlib.Path(folder) / "base.h", PRECOMPILED)
            if what == "other":
                compile_all(files, compiler, base, module_dir, theirs, with_order=True)
            else:
                some = [set(), *({header} | NOT_ALONE.get(header, set()) for header in sorted(theirs))]
                with concurrent.futures.ThreadPoolExecutor(2) as pool:
                    list(pool.map(lambda replaced: compile_all(users(replaced, module_dir, files) if replaced else files,
                                                               compiler, base, module_dir, replaced,
                                                               with_order=not replaced), some))
    except (Mismatch, CompileError) as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()

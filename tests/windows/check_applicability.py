#!/usr/bin/env python3
"""Hold the tests that don't run on Windows against the list of those that can't apply there.

    check_applicability.py LIST SOURCE_FOLDER... -- TEST_PROGRAM... -- EMULATOR...

Every test in the sources must be in one of the programs and must not skip itself, or must stand in LIST; and what stands
in LIST must be so. A line of LIST is a test's name, or a suite's name and ".*", then a colon and the reason; the tests
that aren't in any program's sources stand after a line "[other]" and aren't checked.
"""

import fnmatch
import pathlib
import re
import subprocess
import sys

TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),\s*(\w+)\)(.*?)^}", re.MULTILINE | re.DOTALL)


def read_list(path):
    reasons = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("[other]"):
            break
        if line and not line.startswith("#"):
            name, colon, reason = line.partition(": ")
            if not colon or not reason.strip():
                sys.exit(f"{path.name}: no reason in '{line}'")
            reasons[name] = reason
    return reasons


def tests_in_sources(folders):
    """Test's name -> whether it may skip itself."""
    tests = {}
    for folder in map(pathlib.Path, folders):
        # A source that no build takes has no tests.
        named = set(re.findall(r"\w+\.cpp\b", (folder / "CMakeLists.txt").read_text(encoding="utf-8")))
        for path in sorted(path for path in folder.glob("*.cpp") if path.name in named):
            for suite, name, body in TEST.findall(path.read_text(encoding="utf-8")):
                tests[f"{suite}.{name}"] = "GTEST_SKIP" in body
    return tests


def plain_name(name):
    """Suite.Test of a test with parameters or types, which the program calls Prefix/Suite/0.Test/1."""
    suite, _, test = name.partition(".")
    parts = [part for part in suite.split("/") if not part.isdigit()]
    return f"{parts[-1]}.{test.split('/')[0]}"


def tests_in_program(command):
    listing = subprocess.run([*command, "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
    names, suite = set(), ""
    for line in listing.replace("\r", "").splitlines():
        line = line.split("#")[0].rstrip()
        if line.startswith("  "):
            names.add(plain_name(suite + line.strip()))
        elif line.endswith("."):
            suite = line
    return names


def skipped_by_program(command, names):
    if not names:
        return set()
    output = subprocess.run([*command, "--gtest_filter=" + ":".join(sorted(names))], capture_output=True,
                            text=True, errors="replace", check=False).stdout
    return {plain_name(name) for name in re.findall(r"^\[  SKIPPED \] (\S+?)(?: \(|\r?$)", output, re.MULTILINE)}


def main():
    list_path = pathlib.Path(sys.argv[1])
    groups, group = [], []
    for argument in sys.argv[2:] + ["--"]:
        if argument == "--":
            groups.append(group)
            group = []
        else:
            group.append(argument)
    folders, programs, emulator = groups

    reasons = read_list(list_path)
    in_sources = tests_in_sources(folders)
    in_programs, skipped = set(), set()
    for program in programs:
        names = tests_in_program([*emulator, program])
        in_programs |= names
        skipped |= skipped_by_program([*emulator, program], {name for name in names if in_sources.get(name)})

    faults = []
    if not in_sources or not in_programs:
        faults.append("no tests found at all")
    not_run = {name for name in in_sources if name not in in_programs} | skipped
    for name in sorted(not_run):
        if not any(fnmatch.fnmatchcase(name, pattern) for pattern in reasons):
            faults.append(f"{name} does not run on Windows and is not in {list_path.name}")
    for pattern in reasons:
        listed = fnmatch.filter(in_sources, pattern)
        if not listed:
            faults.append(f"{list_path.name} names {pattern}, which is no test")
        for name in sorted(set(listed) - not_run):
            faults.append(f"{list_path.name} names {name}, which runs on Windows")
    if faults:
        sys.exit("\n".join(faults))
    print(f"{len(in_programs) - len(skipped)} tests run on Windows, {len(not_run)} can't")


if __name__ == "__main__":
    main()

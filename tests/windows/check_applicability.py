#!/usr/bin/env python3
"""Hold the tests that don't run on Windows against the list of those that can't apply there.

    check_applicability.py PREFIX LIST... -- SOURCE_FOLDER... -- TEST_PROGRAM... -- EMULATOR...
                           -- CTEST NATIVE_BUILD WINDOWS_BUILD

PREFIX is what the names of CTest's tests begin with in the Windows build. Every test in the sources must be in one of the
programs and must not skip itself, or must stand in a LIST; and what stands in a LIST must be so. A line of it is a test's
name, or a suite's name and ".*", then a colon and the reason. After a line "[other]" stand CTest's tests, by the names
behind the build's, that only the native build has.
"""

import fnmatch
import json
import pathlib
import re
import subprocess
import sys

TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),\s*(\w+)\)(.*?)^}", re.MULTILINE | re.DOTALL)


def read_list(path, reasons, other_reasons):
    section = reasons
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("[other]"):
            section = other_reasons
        elif line and not line.startswith("#"):
            name, colon, reason = line.partition(": ")
            if not colon or not reason.strip():
                sys.exit(f"{path.name}: no reason in '{line}'")
            section[name] = reason


def tests_in_sources(folders):
    """Test's name -> whether it may skip itself."""
    tests = {}
    for folder in map(pathlib.Path, folders):
        # A source that no build takes has no tests.
        named = set(re.findall(r"\w+\.cpp\b", (folder / "CMakeLists.txt").read_text(encoding="utf-8")))
        for path in sorted(path for path in folder.rglob("*.cpp") if path.name in named):
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


def tests_of_build(ctest, folder, prefix):
    listing = subprocess.run([ctest, "--test-dir", folder, "--show-only=json-v1"], stdout=subprocess.PIPE, check=True)
    return {test["name"].removeprefix(prefix) for test in json.loads(listing.stdout)["tests"]}


def faults_of_builds(native, windows, reasons):
    """Whether the native build's tests without a twin are those that the lists name."""
    faults = [] if native and windows else ["a build has no tests at all"]
    alone = native - windows
    for name in sorted(alone):
        if not any(fnmatch.fnmatchcase(name, pattern) for pattern in reasons):
            faults.append(f"only the native build has {name}, which is not listed")
    for pattern in reasons:
        if not fnmatch.filter(alone, pattern):
            faults.append(f"listed is {pattern}, which is no test of the native build alone")
    return faults


def main():
    groups, group = [], []
    for argument in sys.argv[1:] + ["--"]:
        if argument == "--":
            groups.append(group)
            group = []
        else:
            group.append(argument)
    (prefix, *lists), folders, programs, emulator, (ctest, native_build, windows_build) = groups

    reasons, other_reasons = {}, {}
    for path in map(pathlib.Path, lists):
        read_list(path, reasons, other_reasons)
    in_sources = tests_in_sources(folders)
    in_programs, skipped = set(), set()
    for program in programs:
        names = tests_in_program([*emulator, program])
        in_programs |= names
        skipped |= skipped_by_program([*emulator, program], {name for name in names if in_sources.get(name)})

    faults = faults_of_builds(tests_of_build(ctest, native_build, "native."),
                              tests_of_build(ctest, windows_build, prefix), other_reasons)
    if not in_sources or not in_programs:
        faults.append("no tests found at all")
    not_run = {name for name in in_sources if name not in in_programs} | skipped
    for name in sorted(not_run):
        if not any(fnmatch.fnmatchcase(name, pattern) for pattern in reasons):
            faults.append(f"{name} does not run on Windows and is not listed")
    for pattern in reasons:
        listed = fnmatch.filter(in_sources, pattern)
        if not listed:
            faults.append(f"listed is {pattern}, which is no test")
        for name in sorted(set(listed) - not_run):
            faults.append(f"listed is {name}, which runs on Windows")
    if faults:
        sys.exit("\n".join(faults))
    print(f"{len(in_programs) - len(skipped)} tests run on Windows, {len(not_run)} can't")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Run system_outputs of the native and of the Windows build; they must print the same.

    same_outputs.py NATIVE_PROGRAM WINDOWS_PROGRAM EMULATOR...
"""

import difflib
import itertools
import os
import subprocess
import sys
import tempfile


def output_of(command, environment):
    with tempfile.TemporaryDirectory() as folder:
        result = subprocess.run([*command, folder], capture_output=True, check=False, env=environment)
    if result.returncode != 0:
        sys.exit(f"{command} ended with {result.returncode}:\n{result.stderr.decode(errors='replace')}")
    return result.stdout.decode("ascii").splitlines()


def main():
    native, windows, *emulator = sys.argv[1:]
    # The ANSI code page of the native build; Wine's is pinned by the emulator's script.
    environment = {**os.environ, "COMPAT_ANSI_CODE_PAGE": "1252"}
    native_lines = output_of([native], environment)
    windows_lines = output_of([*emulator, windows], environment)
    kinds = {line.split()[0] for line in native_lines if not line.startswith(" ")}
    expected_kinds = {"profile", "bytes", "character", "text", "number", "key"}
    if kinds != expected_kinds:
        sys.exit(f"outputs of {sorted(kinds)} instead of {sorted(expected_kinds)}")
    if native_lines != windows_lines:
        differences = difflib.unified_diff(native_lines, windows_lines, "native", "Windows", lineterm="", n=1)
        sys.exit("\n".join(itertools.islice(differences, 60)))
    print(f"{len(native_lines)} lines, all the same")


if __name__ == "__main__":
    main()

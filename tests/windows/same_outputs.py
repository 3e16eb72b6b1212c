#!/usr/bin/env python3
"""Run system_outputs of the native and of the Windows build; they must print the same.

    same_outputs.py NATIVE_PROGRAM WINDOWS_PROGRAM EMULATOR...
"""

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
    expected_kinds = {"profile", "bytes", "replaced", "character", "text", "number", "key"}
    if kinds != expected_kinds:
        sys.exit(f"outputs of {sorted(kinds)} instead of {sorted(expected_kinds)}")
    heading = ""
    differences = 0
    for native_line, windows_line in zip(native_lines, windows_lines):
        if not native_line.startswith(" "):
            heading = native_line
        if native_line != windows_line:
            differences += 1
            if differences <= 20:
                print(f"{heading}\n  native:  {native_line}\n  Windows: {windows_line}")
    if differences or len(native_lines) != len(windows_lines):
        sys.exit(f"{differences} lines differ; {len(native_lines)} and {len(windows_lines)} lines")
    print(f"{len(native_lines)} lines, all the same")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Make the Windows package, unpack it into an empty folder and use what came out.

    check_package.py CMAKE BUILD_FOLDER VERSION EMULATOR...
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import urllib.request
import zipfile

TIME_LIMIT = 60  # seconds for the host to do anything
FILES = {
    "app/Plugins/NodePlugin/QORIOProcessx.dll",
    "app/Plugins/NodePlugin/NodePlugin.ini",
    "app/Plugins/NodePlugin/IOProcess/CVEKIOMouse.XML",
    "app/Plugins/NodePlugin/IOProcess/CVEKIOGesture.XML",
    "app/Plugins/NodePlugin/IOProcess/CVEKIONetParameterSend.XML",
    "app/Plugins/NodePlugin/IOProcess/CVEKIOVRHandle.XML",
    "app/Plugins/NodePlugin/IOProcess/CVEKIODevJsonReceive.XML",
    "app/Config/PortConfig.ini",
    "app/Config/Texts/en.json",
    "app/Config/Texts/zh.json",
    "app/scenes/demo.json",
    "iohost.exe",
    "VEKCommonx.dll",
    "VEKLogDllx.dll",
    "VEKRenderx.dll",
    "web/index.html",
    "web/icons/mouse.svg",
    "run.cmd",
    "readme.txt",
}


def run(command, folder, requests=""):
    result = subprocess.run(command, cwd=folder, input=requests, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"{command} ended with {result.returncode}:\n{result.stdout}{result.stderr}")
    return result.stdout


def fetch(address, path):
    with urllib.request.urlopen(f"http://{address}/{path}", timeout=TIME_LIMIT) as answer:
        return answer.read()


def use_page(folder, emulator):
    """Start the host as run.cmd does, but on a port that is free, and look at what it serves and what it loaded."""
    (command,) = re.findall(r"^iohost\.exe (.*) %\*$", (folder / "run.cmd").read_text(encoding="ascii"), re.MULTILINE)
    arguments = command.replace(":8040", ":0").split()
    assert "127.0.0.1:0" in arguments, command
    recording = folder / "recording.jsonl"
    # Broadcasts that others send have nothing to do here.
    (folder / "app/Config/PortConfig.ini").unlink()
    with subprocess.Popen([*emulator, "iohost.exe", *arguments, "--record", recording.name], cwd=folder,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True) as host:
        try:
            address = re.search(r"http://(127\.0\.0\.1:\d+)/", host.stdout.readline())[1]
            assert fetch(address, "") == (folder / "web/index.html").read_bytes()
            assert fetch(address, "icons/mouse.svg") == (folder / "web/icons/mouse.svg").read_bytes()
            end = time.monotonic() + TIME_LIMIT
            while recording.read_text(encoding="utf-8").count("\n") < 10:
                assert time.monotonic() < end, f"in {TIME_LIMIT} seconds the host recorded less than ten requests"
                time.sleep(0.05)
        finally:
            host.terminate()
    lines = [json.loads(line) for line in recording.read_text(encoding="utf-8").splitlines()[:10]]
    (load,) = [line for line in lines if line["op"] == "load"]
    assert load["reply"]["ok"], load["reply"]
    demo = json.loads((folder / "app/scenes/demo.json").read_text(encoding="utf-8"))
    loaded = {node["node"] for node in load["scene"]["nodes"]}
    assert loaded == {node["node"] for node in demo["nodes"]}, loaded
    (results, *_) = [line["reply"]["results"] for line in lines if line["op"] == "process"]
    assert set(results) == loaded, results


def main():
    cmake, build_folder, version, *emulator = sys.argv[1:]
    with tempfile.TemporaryDirectory() as work:
        run([cmake, "--build", build_folder, "--target", "package"], build_folder)
        name = f"QORIOProcessx-{version}-win64"
        unpacked = pathlib.Path(work) / "unpacked"
        with zipfile.ZipFile(pathlib.Path(build_folder) / f"{name}.zip") as package:
            package.extractall(unpacked)
        (folder,) = unpacked.iterdir()
        assert folder.name == name, folder

        found = {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}
        assert FILES <= found, f"not in the package: {sorted(FILES - found)}"
        libraries = {path for path in found if path.lower().endswith((".dll", ".exe"))}
        assert libraries <= FILES, f"too much in the package: {sorted(libraries - FILES)}"

        # The package's folder knows nothing of the build folder, so what runs here runs from the package.
        requests = [
            {"op": "catalogue"},
            {"op": "create", "node": "m", "type": "{8164BB40-6B6A-4707-88B7-386BCB0D1B03}", "clip": "Clip",
             "graph": "Mouse 1"},
            {"op": "layout", "node": "m"},
            {"op": "event", "node": "m", "device": 1, "event": 3005,
             "payload": {"is": "pointer", "rx": 0.5, "ry": 0.5, "x": 960, "y": 540, "pointer": 0, "relative": 0}},
        ]
        program = [*emulator, "iohost.exe", "--stdio"]
        output = run(program, folder, "".join(json.dumps(request) + "\n" for request in requests))
        replies = [json.loads(line) for line in output.splitlines()]
        print(output)
        assert len(replies) == len(requests) and all(reply["ok"] for reply in replies), output
        catalogue, _, layout, _ = replies
        assert len(catalogue["types"]) == 13 and all(entry["icon"] for entry in catalogue["types"]), catalogue
        assert layout["groups"] > 0, layout

        demo = run([*emulator, "cmd", "/c", "run.cmd", "--help"], folder)
        assert "iohost - the reference host" in demo, demo
        use_page(folder, emulator)


if __name__ == "__main__":
    main()

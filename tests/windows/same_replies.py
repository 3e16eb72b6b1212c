#!/usr/bin/env python3
"""Drive the native and the Windows build of iohost with the same requests; the replies must be the same bytes.

    same_replies.py NATIVE_IOHOST WINDOWS_IOHOST APP_FOLDER EMULATOR...

The requests take all node types through what a host does with them: each type by itself with every parameter set, edited and
lost, then random events and edits that are the same in each run. What must differ, addresses in memory and of files, is
numbered in the order of its appearance before the replies are compared.
"""

import json
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

GUID = "{{8164BB40-6B6A-4707-88B7-386BCB0D1B{:02X}}}"
TYPES = [0x01, 0x0B, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0D, 0x07, 0x08, 0x0C, 0x0E, 0x0F]

TEXTS = ["", "a", "1", "12", "-5", "Demo", "Lamp", "Stage", "Level", "héllo wörld", "中文，文本", "ctrl + a", "a|b|c", "{\"a\":1}",
         "😀", "x" * 300, " padded ", "a\"b\\c", "true", "0.1"]
NUMBERS = [0, 1, 2, 3, -1, 6, 27, 65, 0x1041, 70000, 2147483647, -2147483648]
KEY_TEXTS = ["a", "B", "1", "Enter", "Shift", "Backspace", "Escape", "F5", "ctrl", "中", "", "Num 5", "Space"]
JSON_TEXTS = ["{\"scene\":\"demo\",\"level\":70}", "{\"scene\":\"other\"}", "{\"b\":[1,2.5,null,{}],\"a\":\"中\\u4e2d\"}", "[]", "",
              "{", "nonsense", "{\"scene\":\"demo\",\"scene\":1}", "{\"n\":1e20,\"m\":0.1,\"k\":-0}", "\"\\ud83d\\ude00\"",
              "{\"deep\":" + "[" * 40 + "]" * 40 + "}"]


def run(program, app, requests, environment):
    """The replies, each a line of bytes."""
    command = [*program, "--stdio", "--app", app, "--texts", "en"]
    text = "".join(json.dumps(request, ensure_ascii=False) + "\n" for request in requests)
    result = subprocess.run(command, input=text.encode(), capture_output=True, check=False, env=environment)
    if result.returncode != 0 or result.stderr:
        sys.exit(f"{command} ended with {result.returncode}:\n{result.stderr.decode(errors='replace')}")
    return result.stdout.splitlines(keepends=True)


class Masks:
    """Replaces what differs between runs: addresses are numbered, so that which are the same still shows."""

    ADDRESS = re.compile(rb'(?<=")(reader|state|array)":"(\w+)"')
    APP_FOLDER = re.compile(rb'(?<="path":")[^"]+?(?=\\\\Plugins)')

    def __init__(self):
        self.addresses = {}

    def apply(self, line):
        def number(match):
            return match[1] + b'":%d' % self.addresses.setdefault(match[2], len(self.addresses))
        return self.ADDRESS.sub(number, self.APP_FOLDER.sub(b"app", line))


def event(device, event_id, payload, node=None):
    request = {"op": "event", "device": device, "event": event_id, "payload": payload}
    return request if node is None else {**request, "node": node}


def pointer(x, y, number=0, relative=0):
    return {"is": "pointer", "rx": x * 1.25, "ry": 1000 - y * 1.25, "x": x, "y": y, "pointer": number, "relative": relative}


def record(**fields):
    return {"is": "record", "DevID": "1", "DevName": "Stage", "ClipName": "Demo", "GroupName": "Stage", "KeyName": "Level",
            "KeyNumber": 1, "HelpParameter": "", "KeyValue": "", "Layer": 0, **fields}


def some_event(random_numbers):
    """A device event that one node type or another reads."""
    choice = random_numbers.choice
    number = random_numbers.randint
    match number(0, 7):
        case 0:
            return event(0, choice([2002, 2003, 2004]), {"is": "key", "text": choice(KEY_TEXTS)})
        case 1 | 2:
            return event(1, number(3001, 3014),
                         pointer(number(-10, 2000), number(-10, 1100), choice([0, 0, 0, 1]), choice([0, 0, 0, 1])))
        case 3:
            pose = [random_numbers.uniform(-2, 2) for _ in range(16)]
            hit = [random_numbers.uniform(-5, 5) for _ in range(3)]
            return event(3, 0, {"is": "vr", "hand": number(0, 2), "trigger": number(0, 1), "pad": number(0, 1),
                                "padx": random_numbers.uniform(-1, 1), "pady": random_numbers.uniform(-1, 1), "pose": pose,
                                "hit": hit, "press": number(0, 9000), "release": number(0, 9000)})
        case 4:
            return event(5, 0, {"is": "device_text", "device": number(1, 3), "text": choice(JSON_TEXTS)})
        case 5:
            return event(6, 0, {"is": "object_text", "clip": choice(["Demo", "Other"]), "object": choice(["Lamp", ""]),
                                "text": choice(JSON_TEXTS)})
        case 6:
            return event(2, 1, {"is": "broadcast", "flag": choice(["demo", "", "x"]), "clip": choice(["Demo", "Other"]),
                                "name": choice(TEXTS), "data": choice(TEXTS)})
        case _:
            return event(2, 0, record(KeyNumber=number(0, 2), KeyValue=choice(TEXTS), HelpParameter=choice(TEXTS),
                                      KeyName=choice(["Level", "level", "Other"])))


def creation(handle, type_byte, **fields):
    return {"op": "create", "node": handle, "type": GUID.format(type_byte), "clip": "Clip", "graph": f"Graph {handle}",
            **fields}


def each_type_by_itself(parameters):
    for number, type_byte in enumerate(TYPES):
        handle = f"n{number}"
        inspect = {"op": "inspect", "node": handle}
        process = {"op": "process", "node": handle}
        yield creation(handle, type_byte)
        yield from (inspect, {"op": "init", "node": handle}, inspect, {"op": "layout", "node": handle}, process)
        for parameter in parameters[type_byte]:
            values = [{"string": text} for text in TEXTS] + [{"int": value} for value in NUMBERS]
            values += [{"float": 0.1}, {"float": -1e30}, {"choice": 0}, {"choice": 1}, {"choice": 99}]
            for value in values:
                yield {"op": "edit", "node": handle, "param": parameter, **value}
            yield inspect
            yield process
            yield {"op": "trigger", "node": handle, "param": parameter}
            yield process
        for own in (True, False):
            for parameter in parameters[type_byte]:
                yield {"op": "set", "node": handle, "param": parameter, "int": 1, "own": own}
                yield {"op": "set", "node": handle, "param": parameter, "string": "1", "own": own}
        yield from (process, inspect, {"op": "outputs", "node": handle}, {**process, "graph": False})
        yield {"op": "event", "node": handle, "record": None}
        for device in range(8):
            yield event(device, 0, None, handle)
        for parameter in parameters[type_byte]:
            for place in ("inputs", "own"):
                yield {"op": "drop", "node": handle, "param": parameter, "from": [place]}
                yield process
        yield {"op": "destroy", "node": handle, "pointer": False}
        yield {"op": "destroy", "node": handle}
        # Without what a node may lack, and out of older projects.
        yield creation(handle, type_byte, clip=None, event_window=False, notify_window=False, outputs=False)
        yield from (process, inspect, {"op": "destroy", "node": handle})
        for version in range(7):
            yield creation(handle, type_byte, saved={"values": {"7": version}, "drop": parameters[type_byte][-2:]})
            yield from (inspect, process, {"op": "destroy", "node": handle})
        yield creation(handle, type_byte, saved={"groups": False})
        yield from (inspect, process, {"op": "destroy", "node": handle, "type": GUID.format(TYPES[number - 1])})


def random_session(parameters, count):
    numbers = random.Random(20240609)
    handles = {f"r{number}": type_byte for number, type_byte in enumerate(TYPES)}
    for handle, type_byte in handles.items():
        yield creation(handle, type_byte, clip="Demo")
    clock = 100_000
    for _ in range(count):
        handle, type_byte = numbers.choice(list(handles.items()))
        match numbers.randint(0, 9):
            case 0 | 1 | 2 | 3 | 4:
                yield some_event(numbers)
            case 5 | 6:
                clock += numbers.randint(1, 400)
                yield {"op": "clock", "ms": clock}
                yield {"op": "process", "frame": True}
            case 7:
                value = numbers.choice([{"int": numbers.choice(NUMBERS)}, {"string": numbers.choice(TEXTS)},
                                        {"float": numbers.uniform(-10, 10)}])
                op = numbers.choice(["set", "edit"])
                yield {"op": op, "node": handle, "param": numbers.choice(parameters[type_byte]), **value}
            case 8:
                yield {"op": "keys", "down": numbers.sample(range(1, 255), 3), "toggled": numbers.sample([20, 144, 145], 1)}
            case _:
                yield {"op": "trigger", "node": handle, "param": numbers.choice(parameters[type_byte])}
    for handle in handles:
        yield {"op": "inspect", "node": handle}
    yield {"op": "objects"}
    yield {"op": "scene"}
    for handle in handles:
        yield {"op": "destroy", "node": handle}


def session(parameters):
    yield {"op": "catalogue"}
    yield {"op": "clock", "ms": 5000}
    yield from each_type_by_itself(parameters)
    yield {"op": "devices", "list": [{"id": 1, "name": "Stage", "parser": "framed"},
                                     {"id": 2, "name": "Display", "parser": "direct"}]}
    yield {"op": "object", "clip": "Demo", "name": "Lamp"}
    yield from random_session(parameters, 2500)
    yield {"op": "no such thing"}
    yield {"op": "quit"}


def parameters_of_types(native, app, environment):
    """Type -> ids of the node's own parameters, as a node tells them."""
    requests = []
    for type_byte in TYPES:
        requests += [creation("n", type_byte), {"op": "inspect", "node": "n"}, {"op": "destroy", "node": "n"}]
    replies = [json.loads(line) for line in run(native, app, requests, environment)]
    return {type_byte: [parameter["id"] for group in reply["own"] for parameter in group["params"]]
            for type_byte, reply in zip(TYPES, replies[1::3])}


def first_differences(requests, replies, other_replies):
    faults = []
    if len(replies) != len(other_replies):
        faults.append(f"{len(replies)} replies and {len(other_replies)}")
    for request, reply, other in zip(requests, replies, other_replies):
        if reply != other:
            start = next((i for i, (a, b) in enumerate(zip(reply, other)) if a != b), min(len(reply), len(other)))
            start = max(0, start - 60)
            faults.append(f"{json.dumps(request, ensure_ascii=False)[:200]}\n  {reply[start:start + 200]}\n"
                          f"  {other[start:start + 200]}")
    return faults


def main():
    native, windows, app, *emulator = sys.argv[1:]
    # The ANSI code page of the native build; Wine's is pinned by the emulator's script.
    environment = {**os.environ, "COMPAT_ANSI_CODE_PAGE": "1252"}
    with tempfile.TemporaryDirectory() as folder:
        # Without a port, broadcasts go nowhere.
        copy = pathlib.Path(folder) / "app"
        shutil.copytree(app, copy, ignore=shutil.ignore_patterns("PortConfig.ini"))
        parameters = parameters_of_types([native], str(copy), environment)
        requests = list(session(parameters))

        def masked_replies(program):
            masks = Masks()
            return [masks.apply(line) for line in run(program, str(copy), requests, environment)]

        native_replies = masked_replies([native])
        windows_replies = masked_replies([*emulator, windows])

    done = sum(json.loads(reply)["ok"] for reply in native_replies)
    posted = {entry["node"] for reply in native_replies for entry in json.loads(reply).get("posted", [])}
    print(f"{len(requests)} requests, {done} carried out, {sum(map(len, native_replies))} bytes of replies")
    faults = first_differences(requests, native_replies, windows_replies)
    if len(posted) < 5:
        faults.append(f"only these nodes posted anything: {sorted(posted)}")
    if faults:
        sys.exit(f"{len(faults)} differences\n" + "\n".join(faults[:10]))


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Use a render window of iohost as a person does, and look at what the nodes make of it.

    window_input.py IOHOST APP_FOLDER EMULATOR...

A display of its own shows the window; what is typed, clicked and moved comes in as real input of that display. The
session's recording tells which event records the nodes got, what they posted and which values they offered.
"""

import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

TIME_LIMIT = 60  # seconds; Wine may have to start first, beside other tests
WIDTH, HEIGHT = 500, 400
NOWHERE = 1000, 750  # on the screen, on no window

KEYBOARD, POINTER = 0, 1
KEY_DOWN, KEY_UP = 2002, 2003
ENTER, LEAVE, HOVER, LEFT_DOWN, LEFT_UP, SAMPLE = 3002, 3003, 3004, 3005, 3006, 3013

GUID = "{{8164BB40-6B6A-4707-88B7-386BCB0D1B{:02X}}}"


def scene(device_port):
    """A keyboard, a check of the key K, a mouse, and a device's texts."""
    def node(handle, type_byte, **fields):
        return {"node": handle, "type": GUID.format(type_byte), "clip": "Clip", "graph": f"{handle} 1", **fields}

    key = {"id": 1101, "params": [{"id": 2}, {"id": 1102, "int": ord("K")}, {"id": 1103, "int": 100}]}
    return {"format": "iohost scene", "version": 1, "clips": [{"name": "Clip", "objects": []}],
            "nodes": [node("keyboard", 0x01), node("check", 0x0B, inputs=[key]), node("mouse", 0x03), node("text", 0x0E)],
            "links": [],
            "devices": [{"id": 1, "name": "Desk", "parser": "json", "address": f"127.0.0.1:{device_port}"}]
            if device_port else None}


class Display:
    """A screen that nobody sees, with keyboard and mouse."""

    def __init__(self):
        number, written = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(written), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
             "-r"],  # else a key repeats that a busy machine holds for long
            pass_fds=[written], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(written)
        with open(number, encoding="ascii") as pipe:
            self.environment = {**os.environ, "DISPLAY": ":" + pipe.readline().strip()}

    def do(self, *command):
        """Let xdotool do it; what that prints."""
        result = subprocess.run(["xdotool", *map(str, command)], env=self.environment, capture_output=True, text=True,
                                timeout=TIME_LIMIT, check=False)
        assert result.returncode == 0, f"xdotool {command}: {result.stderr}"
        return result.stdout

    def close(self):
        # Wine's desktop is held for the next program, which would find it on a display that is gone.
        subprocess.run(["wineserver", "--kill"], env={**os.environ, "WINEPREFIX": EMULATOR[1]}, check=False)
        self.server.terminate()
        self.server.wait(TIME_LIMIT)


class Host:
    """iohost with its window, and what its recording tells."""

    def __init__(self, display, folder, name, place, extra_environment=None, started_by=(), fps=60, device_port=None):
        self.display = display
        self.recording = folder / f"{name}.jsonl"
        self.bytes_read = 0
        self.lines_read = []
        scene_file = folder / f"{name}.json"
        scene_file.write_text(json.dumps(scene(device_port)), encoding="utf-8")
        windows_before = self.windows()
        self.errors = open(folder / f"{name}.log", "w+", encoding="utf-8", errors="replace")
        self.program = subprocess.Popen(
            [*EMULATOR, *started_by, IOHOST, "--window", "--size", f"{WIDTH}x{HEIGHT}", "--app", str(folder / "app"),
             "--fps", str(fps), "--scene", str(scene_file), "--record", str(self.recording)],
            env={**display.environment, **(extra_environment or {})}, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=self.errors)
        until(lambda: self.program.poll() is not None or self.windows() - windows_before, "the window opens")
        assert self.program.poll() is None, pathlib.Path(self.errors.name).read_text(encoding="utf-8", errors="replace")
        (self.window,) = self.windows() - windows_before
        display.do("windowmove", "--sync", self.window, *place)
        until(lambda: any(line["op"] == "process" for line in self.lines()), "the graph is evaluated")

    def windows(self):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^iohost$"],
                               env=self.display.environment, capture_output=True, text=True, check=False)
        return set(found.stdout.split())

    def lines(self):
        """What was recorded, without what is still being written."""
        if self.recording.exists():
            with open(self.recording, "rb") as file:
                file.seek(self.bytes_read)
                *whole, _ = file.read().split(b"\n")
            self.bytes_read += sum(len(line) + 1 for line in whole)
            self.lines_read += [json.loads(line) for line in whole]
        return list(self.lines_read)

    def activate(self):
        """Give it the keyboard, by a click and what a window manager, which isn't there, does then."""
        self.move(WIDTH - 10, HEIGHT - 10)
        self.display.do("click", 1)
        self.display.do("windowfocus", "--sync", self.window)

    def geometry(self):
        """Where it is and its size, with its frame if the system draws one."""
        text = self.display.do("getwindowgeometry", "--shell", self.window)
        return tuple(int(re.search(rf"^{name}=(-?\d+)$", text, re.MULTILINE)[1]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def frames(self):
        return sum(line["op"] == "process" for line in self.lines())

    def move(self, x, y):
        self.display.do("mousemove", "--window", self.window, x, y)

    def close(self):
        """Close it by keys; its exit code."""
        self.activate()
        self.display.do("key", "alt+F4")
        code = self.program.wait(TIME_LIMIT)
        self.errors.close()
        return code

    def end(self):
        if self.program.poll() is None:
            self.program.kill()
            self.program.wait()
        self.errors.close()


def until(condition, what):
    """Wait until there is something; what there is."""
    end = time.monotonic() + TIME_LIMIT
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.02)
    raise AssertionError(f"in {TIME_LIMIT} seconds it never was that {what}")


def events_in(lines, device):
    """The event records of a device, each with what the reply says was posted."""
    return [(line["event"], line["payload"], line["reply"].get("posted", []))
            for line in lines if line["op"] == "event" and line["device"] == device]


def outputs_in(lines, node):
    """The values that a node offered last, by output."""
    values = {}
    for line in lines:
        values.update(line["reply"].get("outputs", {}).get(node, {}))
    return values


def posted_in(lines, node):
    return [posted for line in lines for posted in line["reply"].get("posted", []) if posted["node"] == node]


def mouse_outputs(lines):
    """What the mouse node posted, but the rests, of which a slow machine sees more."""
    return [posted["output"] for posted in posted_in(lines, "mouse") if posted["output"] != 354]


class WindowInput(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.stack = contextlib.ExitStack()
        folder = pathlib.Path(cls.stack.enter_context(tempfile.TemporaryDirectory()))
        # Without a port, broadcasts are nobody's.
        shutil.copytree(APP_FOLDER, folder / "app", ignore=shutil.ignore_patterns("PortConfig.ini"))
        cls.folder = folder
        cls.display = Display()
        cls.stack.callback(cls.display.close)
        try:
            cls.host = Host(cls.display, folder, "host", (5, 30))
            cls.stack.callback(cls.host.end)
        except BaseException:
            cls.stack.close()
            raise

    @classmethod
    def tearDownClass(cls):
        try:
            assert cls.host.close() == 0, "the window closes with exit code 0"
        finally:
            cls.stack.close()

    def setUp(self):
        # The window, which has the keyboard, has the pointer neither on it nor pressed.
        before = len(self.host.lines())
        self.host.activate()
        self.display.do("mousemove", *NOWHERE)
        until(lambda: self.pointer_is_outside(self.host.lines()[before:]), "the pointer has left the window again")
        self.start = len(self.host.lines())

    @staticmethod
    def pointer_is_outside(lines):
        crossings = [event for event, _, _ in events_in(lines, POINTER) if event in (ENTER, LEAVE)]
        return crossings and crossings[-1] == LEAVE

    def lines(self):
        """What was recorded in this test."""
        return self.host.lines()[self.start:]

    def wait_for(self, expected, select, what):
        """Wait until what was recorded gives as much as is expected, then compare."""
        until(lambda: len(select(self.lines())) >= len(expected), f"{what}: {expected}")
        self.assertEqual(select(self.lines())[:len(expected)], expected, what)

    def test_keys_come_with_their_texts(self):
        keys = ["a", "Return", "F5", "Left", "space", "shift+b", "7", "BackSpace", "ctrl+c"]
        self.display.do("key", *keys)
        down, up = KEY_DOWN, KEY_UP
        expected = []
        for key in ("a", "Enter", "F5", "ArrowLeft", " "):
            expected += [(down, key), (up, key)]
        # The key comes up after the modifier, with the text that it went down with.
        expected += [(down, "Shift"), (down, "B"), (up, "Shift"), (up, "B")]
        for key in ("7", "Backspace"):
            expected += [(down, key), (up, key)]
        expected += [(down, "Control"), (down, "c"), (up, "Control"), (up, "c")]
        self.wait_for(expected, lambda lines: [(event, payload["text"])
                                               for event, payload, _ in events_in(lines, KEYBOARD)], "records of keys")
        # Each one made the node post its event through the window.
        output_of = {down: 152, up: 153}
        for event, _, posted in events_in(self.lines(), KEYBOARD):
            self.assertEqual([(entry["node"], entry["output"], entry["via"]) for entry in posted],
                             [("keyboard", output_of[event], "window")])
        until(lambda: outputs_in(self.lines(), "keyboard").get("154", {}).get("string") == "c",
              "the keyboard offers the last key")

    def test_a_key_that_is_held_is_seen_in_the_systems_keyboard_state(self):
        self.display.do("keydown", "k")
        until(lambda: 1153 in [posted["output"] for posted in posted_in(self.lines(), "check")], "the key is held")
        self.display.do("keyup", "k")
        until(lambda: 1154 in [posted["output"] for posted in posted_in(self.lines(), "check")], "the key is released")
        outputs = [posted["output"] for posted in posted_in(self.lines(), "check")]
        self.assertEqual(outputs[0], 1152)
        self.assertEqual(outputs[-1], 1154)
        self.assertEqual(set(outputs[1:-1]), {1153})

    def test_the_pointer_enters_moves_rests_and_leaves(self):
        self.host.move(100, 50)
        self.wait_for_output("370", lambda x: x == 100, "the pointer is over the window")  # else the system joins both
        self.host.move(250, 300)
        self.wait_for_output("370", lambda x: x == 250, "the pointer has moved")
        until(lambda: events_in(self.lines(), POINTER)[-1][0] == HOVER, "the pointer rests there")
        self.display.do("mousemove", *NOWHERE)
        until(lambda: self.pointer_is_outside(self.lines()), "the pointer leaves")
        lines = self.lines()
        events = events_in(lines, POINTER)
        self.assertEqual([event for event, _, _ in events if event != HOVER], [ENTER, SAMPLE, SAMPLE, LEAVE])
        for _, payload, _ in events[:2]:
            self.assert_place(payload, 100, 50)
        for _, payload, _ in events[-2:]:
            self.assert_place(payload, 250, 300)
        self.assertEqual(mouse_outputs(lines), [352, 353])
        self.assertIn(354, [posted["output"] for posted in posted_in(lines, "mouse")])
        values = outputs_in(lines, "mouse")
        self.assertEqual((values["370"]["int"], values["371"]["int"]), (250, 300))
        self.assertEqual((values["372"]["float"], values["373"]["float"]), (625.0, 250.0))

    def assert_place(self, payload, x, y):
        self.assertEqual((payload["x"], payload["y"], payload["pointer"], payload["relative"]), (x, y, 0, 0))
        self.assertAlmostEqual(payload["rx"], x * 1000 / HEIGHT)
        self.assertAlmostEqual(payload["ry"], (HEIGHT - y) * 1000 / HEIGHT)

    def test_buttons_are_pressed_and_released(self):
        self.host.move(100, 100)
        outputs = {1: (358, 362, "366"), 3: (359, 363, "367"), 2: (360, 364, "368")}
        for button, (pressed, released, value) in outputs.items():
            self.display.do("mousedown", button)
            self.wait_for_output(value, lambda state: state == 1, f"button {button} is down")
            self.assertEqual(mouse_outputs(self.lines())[-1], pressed)
            self.display.do("mouseup", button)
            self.wait_for_output(value, lambda state: state == 0, f"button {button} is up")
            self.assertEqual(mouse_outputs(self.lines())[-1], released)

    def test_the_wheel_turns_both_ways(self):
        self.host.move(100, 100)
        turned = [352]
        self.wait_for(turned, mouse_outputs, "the pointer is over the window")
        for button, output in ((4, 355), (4, 355), (5, 356)):
            self.display.do("click", button)
            turned.append(output)
            self.wait_for(turned, mouse_outputs, "events of the wheel")

    def test_a_drag_keeps_the_pointer_until_the_button_is_up(self):
        self.host.move(100, 100)
        self.display.do("mousedown", 1)
        self.wait_for_output("366", lambda state: state == 1, "the button is down")
        self.display.do("mousemove", 1000, 700)
        self.wait_for_output("370", lambda x: x > WIDTH, "the pointer is outside")
        self.display.do("mousemove", 800, 700)
        self.wait_for_output("370", lambda x: WIDTH < x < 900, "the pointer moves outside")
        self.display.do("mouseup", 1)
        until(lambda: self.pointer_is_outside(self.lines()), "the pointer leaves")
        self.assertEqual([event for event, _, _ in events_in(self.lines(), POINTER) if event != HOVER],
                         [ENTER, SAMPLE, LEFT_DOWN, SAMPLE, SAMPLE, LEFT_UP, LEAVE])

    def test_after_a_drag_inside_the_pointer_leaves_as_ever(self):
        self.host.move(100, 100)
        self.display.do("mousedown", 1)
        self.host.move(200, 100)
        self.display.do("mouseup", 1)
        until(lambda: 362 in mouse_outputs(self.lines()), "the button is up")
        self.display.do("mousemove", *NOWHERE)
        until(lambda: self.pointer_is_outside(self.lines()), "the pointer leaves")

    def wait_for_output(self, output, is_expected, what):
        until(lambda: is_expected(outputs_in(self.lines(), "mouse").get(output, {}).get("int", -1)), what)

    def test_what_is_held_is_let_go_when_the_focus_goes(self):
        # The other window also shows that the system carries the posted messages: Wine's log tells of each.
        other = Host(self.display, self.folder, "other", (515, 30), {"WINEDEBUG": "+message"})
        self.addCleanup(other.end)

        def outputs():
            return [posted["output"] for posted in posted_in(self.lines(), "keyboard")]

        self.host.activate()
        self.display.do("keydown", "a")
        until(lambda: outputs() == [152], "the key is down")
        other.activate()
        until(lambda: outputs() == [152, 153], "the key is let go")
        (released,) = [line for line in self.lines() if line["op"] == "release_held"]
        self.assertEqual(released["reason"], "the window lost the focus")
        self.display.do("keyup", "a")
        self.display.do("key", "b")
        until(lambda: len(posted_in(other.lines(), "keyboard")) == 2, "the other window has the keyboard")
        self.assertEqual(outputs(), [152, 153])
        self.assertEqual(other.close(), 0)
        log = pathlib.Path(other.errors.name).read_text(encoding="utf-8", errors="replace")
        dispatched = re.findall(r'"iohost general event"\S*\s+dispatched', log)
        posted = [entry for line in other.lines() for entry in line["reply"].get("posted", [])]
        self.assertEqual(len(dispatched), len(posted), "messages that the system dispatched")

    def test_frames_go_on_while_the_window_is_dragged_and_sized(self):
        # A desktop of Wine's own draws frames around its windows, which no window manager does here.
        other = Host(self.display, self.folder, "dragged", (0, 0),
                     started_by=["explorer", "/desktop=frames,900x700"])
        self.addCleanup(other.end)
        x, y, width, height = other.geometry()
        place = self.place_in_window(other, (100, 100))
        self.drag_with_frames(other, (width // 2, 12), (width // 2 + 200, 112),
                              lambda: other.geometry()[:2] != (x, y))
        self.assertEqual(self.place_in_window(other, (300, 200)), place)
        corner = width + 198, height + 98
        self.drag_with_frames(other, corner, (corner[0] + 50, corner[1] + 30),
                              lambda: other.geometry()[2:] == (width + 50, height + 30))
        self.display.do("key", "alt+F4")
        self.assertEqual(other.program.wait(TIME_LIMIT), 0)

    def test_items_of_the_network_dont_wait_for_a_frame(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            other = Host(self.display, self.folder, "seldom", (515, 30), fps=0.01, device_port=server.getsockname()[1])
            self.addCleanup(other.end)
            server.settimeout(TIME_LIMIT)
            device = server.accept()[0]
            with device:
                device.sendall(b"[1]\n")
                until(lambda: 1453 in [posted["output"] for posted in posted_in(other.lines(), "text")],
                      "the text has come")
            self.assertEqual(other.close(), 0)

    def test_frames_go_on_while_items_come_without_end(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            other = Host(self.display, self.folder, "busy", (515, 30), device_port=server.getsockname()[1])
            self.addCleanup(other.end)
            server.settimeout(TIME_LIMIT)
            device = server.accept()[0]
            threading.Thread(target=self.send_without_end, args=[device], daemon=True).start()
            until(lambda: posted_in(other.lines(), "text"), "the first text has come")
            before = other.frames()
            until(lambda: other.frames() > before + 20, "frames go on")
            self.assertEqual(other.close(), 0)

    @staticmethod
    def send_without_end(device):
        with device, contextlib.suppress(OSError):
            while True:
                device.sendall(b"[1]\n" * 1000)

    def place_in_window(self, host, on_screen):
        """Where a window sees the pointer that comes to this place of the screen."""
        def samples():
            return [payload for event, payload, _ in events_in(host.lines(), POINTER) if event == SAMPLE]

        before = len(samples())
        self.display.do("mousemove", *on_screen)
        until(lambda: len(samples()) > before, "the window sees the pointer")
        return samples()[-1]["x"], samples()[-1]["y"]

    def drag_with_frames(self, host, start, end, follows):
        def moved():
            self.display.do("mousemove", end[0] - 1, end[1])
            self.display.do("mousemove", *end)
            return follows()

        self.display.do("mousemove", *start)
        self.display.do("mousedown", 1)
        until(moved, "the window follows")  # moves before the system has begun the drag are lost
        before = host.frames()
        until(lambda: host.frames() > before + 60, "frames go on in a drag")
        self.display.do("mouseup", 1)


if __name__ == "__main__":
    IOHOST, APP_FOLDER, *EMULATOR = sys.argv[1:]
    # What is started here has to end with it, also when CTest ends this.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    unittest.main(argv=sys.argv[:1], verbosity=2)

#!/usr/bin/env python3
"""Two hosts in two network namespaces, joined by a cable: everything between them goes over a real network.

    two_hosts.py IOHOST [TEST...]

Ends with 77 where namespaces can't be made.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

OWN_NETWORK = str(pathlib.Path(__file__).resolve().parents[2] / "scripts" / "own_network")
IN_OWN_NETWORK = "HOSTS_IN_OWN_NETWORK"

NODE_TYPE = "{{8164BB40-6B6A-4707-88B7-386BCB0D1B{}}}"
NET_SEND, NET_RECEIVE, BROADCAST_SEND, BROADCAST_RECEIVE = (NODE_TYPE.format(byte) for byte in ("04", "05", "06", "0D"))

ADDRESS_A, ADDRESS_B = "10.77.0.1", "10.77.0.2"
CONTROL_PORT = 9001


def run(*command):
    subprocess.run(command, check=True)


def until(condition, what):
    """Wait until there is something; what there is."""
    end = time.monotonic() + 60
    while time.monotonic() < end:
        if result := condition():
            return result
        time.sleep(0.01)
    raise AssertionError(f"in a minute it never was that {what}")


class Namespace:
    """A network namespace that exists as long as a process in it."""

    def __init__(self):
        self.process = subprocess.Popen(["unshare", "-n", "sleep", "600"])
        own = os.readlink("/proc/self/ns/net")
        until(lambda: os.readlink(f"/proc/{self.process.pid}/ns/net") != own, "the namespace is there")

    def inside(self, *command):
        return ["nsenter", "-t", str(self.process.pid), "-n", *command]

    def close(self):
        self.process.kill()
        self.process.wait()


class Host:
    """An iohost in an application folder of its own, which does nothing unless it's asked to."""

    def __init__(self, prefix=()):
        self.folder = tempfile.TemporaryDirectory()
        config = pathlib.Path(self.folder.name, "Config")
        config.mkdir()
        config.joinpath("PortConfig.ini").write_text("[iFable]\nBroadcastPort=8060\n")
        self.process = subprocess.Popen(
            [*prefix, os.path.abspath(sys.argv[1]), "--stdio", "--texts", "keys", "--app", self.folder.name],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def ask(self, op, **fields):
        self.process.stdin.write(json.dumps({"op": op, **fields}) + "\n")
        self.process.stdin.flush()
        reply = json.loads(self.process.stdout.readline())
        assert reply["ok"], (op, fields, reply)
        return reply

    def create(self, node, node_type, **texts):
        self.ask("create", node=node, type=node_type, clip="Clip", graph=node)
        for param, value in texts.items():
            self.set_text(node, int(param[1:]), value)
        self.ask("process", node=node)

    def set_text(self, node, param, text):
        self.ask("set", node=node, param=param, string=text)

    def send(self, node, param):
        self.ask("trigger", node=node, param=param)
        return self.ask("process", node=node)

    def output(self, node, output):
        groups = self.ask("inspect", node=node)["outputs"]
        return next(pin["string"] for group in groups for pin in group["params"] if pin["id"] == output)

    def is_connected(self):
        return self.ask("network")["devices"][0]["state"] == "connected"

    def await_dispatched(self):
        """What was dispatched in the wait that something was dispatched in."""
        return until(lambda: self.ask("wait", ms=100)["dispatched"], "something is dispatched")

    def close(self):
        self.ask("quit")
        assert self.process.wait(60) == 0
        self.process.stdin.close()
        self.process.stdout.close()
        self.folder.cleanup()


class TwoHosts(unittest.TestCase):
    """Host "a" is here, host "b" in the other namespace."""

    @classmethod
    def setUpClass(cls):
        cls.far = Namespace()
        cls.addClassCleanup(cls.far.close)
        run(*cls.far.inside("ip", "link", "set", "lo", "up"))
        run("ip", "link", "add", "cable-a", "type", "veth", "peer", "name", "cable-b", "netns", str(cls.far.process.pid))
        run("ip", "addr", "add", f"{ADDRESS_A}/24", "dev", "cable-a")
        run("ip", "link", "set", "cable-a", "up")
        run(*cls.far.inside("ip", "addr", "add", f"{ADDRESS_B}/24", "dev", "cable-b"))
        run(*cls.far.inside("ip", "link", "set", "cable-b", "up"))
        run("ip", "route", "replace", "default", "dev", "cable-a")  # where broadcasts go

    def setUp(self):
        self.a = Host()
        self.addCleanup(self.a.close)
        self.b = Host(self.far.inside())
        self.addCleanup(self.b.close)

    def test_broadcast_changes_the_other_hosts_outputs(self):
        data = "<12|7> & \"é€\"\r\n"
        self.a.create("send", BROADCAST_SEND, p602="1", p603="Intro", p604="score", p605="too early")
        self.b.create("receive", BROADCAST_RECEIVE, p1302="1")
        self.b.ask("listen")
        self.a.ask("listen_only", on=True)
        self.assertIn("held back", self.a.send("send", 606)["log"][-1]["text"])
        self.a.ask("listen_only", on=False)
        self.a.set_text("send", 605, data)
        self.a.send("send", 606)
        self.assertEqual([item["from"] for item in self.b.await_dispatched()], ["broadcast"])
        self.assertEqual(self.b.ask("network")["broadcast"]["received"], 1)
        self.assertEqual(self.b.output("receive", 1352), "score")
        self.assertEqual(self.b.output("receive", 1353), data)

    def test_cable_pulled_and_put_back(self):
        self.a.create("send", NET_SEND, p402="3", p404="Clip", p406="key", p408="first")
        self.b.create("receive", NET_RECEIVE, p503="key")
        self.b.ask("listen", address="0.0.0.0", broadcast=None, control=CONTROL_PORT)
        self.a.ask("devices", list=[
            {"id": 3, "name": "Far", "parser": "framed", "address": f"{ADDRESS_B}:{CONTROL_PORT}"}])
        until(self.a.is_connected, "the device is connected")
        self.a.send("send", 410)
        self.b.await_dispatched()
        for is_given_up in (False, True):
            with self.subTest(is_given_up=is_given_up):
                run(*self.far.inside("ip", "link", "set", "cable-b", "down"))
                for _ in range(20):  # each send is answered, though nothing goes out
                    self.a.send("send", 410)
                if is_given_up:
                    until(lambda: self.a.ask("wait", ms=50) and not self.a.is_connected(), "the connection is given up")
                run(*self.far.inside("ip", "link", "set", "cable-b", "up"))
                value = f"after it was given up: {is_given_up}"
                self.a.set_text("send", 408, value)

                def arrives():
                    self.a.send("send", 410)
                    self.a.ask("wait", ms=50)
                    self.b.ask("wait", ms=10)  # what was sent meanwhile comes first
                    return self.b.output("receive", 552) == value

                until(arrives, "what is sent then arrives")


def main():
    """Runs the tests in a network of their own."""
    if IN_OWN_NETWORK not in os.environ:
        os.environ[IN_OWN_NETWORK] = "1"
        os.execv(OWN_NETWORK, [OWN_NETWORK, sys.executable, "-B", *sys.argv])
    tests = unittest.main(argv=sys.argv[:1] + sys.argv[2:], exit=False, verbosity=2)
    return 0 if tests.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())

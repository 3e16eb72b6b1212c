#!/usr/bin/env python3
"""Two hosts in two network namespaces, joined by a cable: everything between them goes over a real network.

    two_hosts.py IOHOST [TEST...]

Ends with 77 where namespaces can't be made.
"""

import subprocess
import sys
import time
import unittest

import hosts
from hosts import BROADCAST_RECEIVE, BROADCAST_SEND, NET_RECEIVE, NET_SEND, STRING_SEND, Host, Namespace, RunningHost, run

ADDRESS_A, ADDRESS_B = "10.77.0.1", "10.77.0.2"
CONTROL_PORT, DEVICE_PORT = 9001, 9002
MOST_QUEUED = 4 << 20

LISTENER = """
import socket, sys
server = socket.create_server(("0.0.0.0", int(sys.argv[1])))
print("listening", flush=True)
connection, _ = server.accept()
while data := connection.recv(65536):
    print(data.hex(), flush=True)
"""

SINK = """
import socket, sys
server = socket.create_server(("0.0.0.0", int(sys.argv[1])))
print("listening", flush=True)
connection, _ = server.accept()
while connection.recv(65536):
    pass
"""


class OverACable(unittest.TestCase):
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
        self.b = Host(self.far.inside())
        self.addCleanup(self.b.close)
        self.addCleanup(self.a.close)

    def far_program(self, *command):
        program = subprocess.Popen(self.far.inside(*command), stdout=subprocess.PIPE, text=True)
        self.addCleanup(program.stdout.close)
        self.addCleanup(program.wait)
        self.addCleanup(program.terminate)
        self.assertIn("listening", program.stdout.readline())
        return program

    def connect(self, host, parser="framed", port=CONTROL_PORT):
        address = f"{ADDRESS_B}:{port}"
        host.ask("devices", list=[{"id": 3, "name": "Far", "parser": parser, "address": address}])
        end = time.monotonic() + 5
        while host.device()["state"] != "connected" and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual(host.device()["state"], "connected", host.device())


class TwoHosts(OverACable):
    def create_record_nodes(self):
        self.a.create("send", NET_SEND, p402="3", p404="Clip", p406="key", p408="first")
        self.b.create("receive", NET_RECEIVE, p503="key")
        self.b.ask("listen", address="0.0.0.0", broadcast=None, control=CONTROL_PORT)
        self.connect(self.a)

    def test_broadcast_changes_the_other_hosts_outputs(self):
        data = "<12|7> & \"é€\"\r\n"
        self.a.create("send", BROADCAST_SEND, p602="1", p603="Intro", p604="score", p605=data)
        self.b.create("receive", BROADCAST_RECEIVE, p1302="1")
        self.b.ask("listen")
        self.a.send("send", 606)
        self.assertEqual([item["from"] for item in self.b.await_dispatched(5)["dispatched"]], ["broadcast"])
        self.assertEqual(self.b.output("receive", 1352), "score")
        self.assertEqual(self.b.output("receive", 1353), data)

    def test_record_fires_the_other_hosts_receive_node(self):
        self.create_record_nodes()
        self.a.send("send", 410)
        reply = self.b.await_dispatched(5)
        self.assertEqual([(item["from"], item["device"], item["results"]["receive"]) for item in reply["dispatched"]],
                         [("control", 4, 1)])
        self.assertEqual([(event["node"], event["output"]) for event in reply["posted"]], [("receive", 554)])
        self.assertEqual(self.b.output("receive", 552), "first")

    def test_string_reaches_a_plain_listener_byte_for_byte(self):
        listener = self.far_program(sys.executable, "-c", LISTENER, str(DEVICE_PORT))
        self.connect(self.a, "direct", DEVICE_PORT)
        self.a.create("send", STRING_SEND, p1505="GO é\n")
        self.a.ask("set", node="send", param=1503, int=3)
        for choice, sent in ((0, "GO é\n".encode("cp1252") + b"\0"), (1, "GO é\n".encode() + b"\0")):
            self.a.ask("set", node="send", param=1506, choice=choice)
            self.a.send("send", 1507)
            self.assertEqual(listener.stdout.readline().strip(), sent.hex())
        self.a.ask("devices", list=None)

    def pull_cable(self, seconds):
        """Take the link down, go on sending, put it back. The longest evaluation, and whether the connection was lost."""
        longest, lost = 0, False
        run(*self.far.inside("ip", "link", "set", "cable-b", "down"))
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            started = time.monotonic()
            self.a.send("send", 410)
            longest = max(longest, time.monotonic() - started)
            self.a.ask("wait", ms=50)
            lost = lost or self.a.device()["state"] != "connected"
        run(*self.far.inside("ip", "link", "set", "cable-b", "up"))
        return longest, lost

    def test_cable_pulled_and_put_back(self):
        self.create_record_nodes()
        self.a.send("send", 410)
        self.b.await_dispatched(5)
        for seconds, is_lost in ((2, False), (13, True)):  # shorter and longer than it takes to give a connection up
            with self.subTest(seconds=seconds):
                longest, was_lost = self.pull_cable(seconds)
                self.assertLess(longest, 0.5)
                self.assertEqual(was_lost, is_lost)
                self.a.ask("set", node="send", param=408, string=f"after {seconds}")
                end = time.monotonic() + 30
                while self.b.output("receive", 552) != f"after {seconds}" and time.monotonic() < end:
                    self.a.send("send", 410)
                    self.a.ask("wait", ms=50)
                    for _ in range(20):  # what was sent meanwhile comes first
                        if not self.b.ask("wait", ms=10)["dispatched"]:
                            break
                self.assertEqual(self.b.output("receive", 552), f"after {seconds}", self.a.device())


class FrameTimes(OverACable):
    def test_a_device_that_stops_reading_costs_no_time_and_no_memory(self):
        self.far_program(hosts.iohost(), "--device", f"0.0.0.0:{DEVICE_PORT}", "--stall")
        idle = Host()
        self.addCleanup(idle.close)
        for host in (self.a, idle):
            host.create("send", NET_SEND, p402="3", p404="Clip", p406="key", p408="x" * 10_000)
        idle.ask("devices", list=[{"id": 3, "name": "None", "parser": "framed"}])
        self.connect(self.a, port=DEVICE_PORT)

        def p99s():
            """How long the slowest sends but one in a hundred take with the device and without. The two hosts take turns,
            so that whatever else the machine does slows both down."""
            times = {self.a: [], idle: []}
            for _ in range(100):
                for host, took in times.items():
                    started = time.perf_counter()
                    host.send("send", 410)
                    took.append(time.perf_counter() - started)
            return [sorted(took)[98] for took in times.values()]

        while self.a.device()["refused"] == 0:  # until the network's buffers and the queue are full
            self.a.send("send", 410)
        memory = self.a.memory()
        # Other programs may get in between: the best of the tries is what the hosts themselves take. On a busy machine
        # it takes more of them.
        best = p99s()
        for tries in range(60):
            if tries >= 3 and best[0] - best[1] < 0.001:
                break
            best = list(map(min, best, p99s()))
        self.assertLess(best[0] - best[1], 0.001)
        state = self.a.device()
        self.assertGreater(state["refused"], 300, state)  # all of the sends after the first that was
        self.assertLessEqual(state["queued_bytes"], MOST_QUEUED)
        self.assertLess(self.a.memory() - memory, 2 << 20)

    def running_host(self, text):
        """A host with frames of its own, which sends the text to device 3 in every frame."""
        host = RunningHost()
        self.addCleanup(host.close)
        host.create("send", NET_SEND, p402="3", p404="Clip", p406="key", p408=text)
        host.ask("set", node="send", param=410, int=1)
        host.ask("devices", list=[{"id": 3, "name": "None", "parser": "framed"}])
        return host

    @staticmethod
    def frames(host):
        """How many frames there were in half a second, and how long the slowest one took to come."""
        came = [(at, push["frame"]) for at, push in host.take_pushes(0.5) if push.get("push") == "happened"]
        return came[-1][1] - came[0][1], max(later[0] - earlier[0] for earlier, later in zip(came, came[1:]))

    def assert_as_fast(self, tries, before):
        """Other programs may get in between: the best of the tries is what the host itself does."""
        self.assertGreaterEqual(max(count for count, _ in tries), max(count for count, _ in before) - 1)
        self.assertLess(min(longest for _, longest in tries), 0.1)

    def test_a_device_that_stops_reading_leaves_the_frames_their_rate(self):
        self.far_program(hosts.iohost(), "--device", f"0.0.0.0:{DEVICE_PORT}", "--stall")
        host = self.running_host("x" * 10_000)
        before = [self.frames(host) for _ in range(3)]
        self.connect(host, port=DEVICE_PORT)
        host.ask("set", node="send", param=408, string="x" * 60_000)
        while host.device()["refused"] == 0:  # until the network's buffers and the queue are full
            time.sleep(0.1)
        host.ask("set", node="send", param=408, string="x" * 10_000)
        self.assert_as_fast([self.frames(host) for _ in range(3)], before)

    def test_a_pulled_cable_leaves_the_frames_their_rate(self):
        self.far_program(sys.executable, "-c", SINK, str(DEVICE_PORT))
        host = self.running_host("first")
        self.connect(host, port=DEVICE_PORT)
        before = [self.frames(host) for _ in range(3)]
        run(*self.far.inside("ip", "link", "set", "cable-b", "down"))
        self.addCleanup(run, *self.far.inside("ip", "link", "set", "cable-b", "up"))
        pulled = self.frames(host)
        self.assert_as_fast([pulled, self.frames(host), self.frames(host)], before)
        self.assertLess(pulled[1], 0.5)  # not in the moment of the pull either


if __name__ == "__main__":
    sys.exit(hosts.main())

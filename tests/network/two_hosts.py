#!/usr/bin/env python3
"""Two hosts in two network namespaces, joined by a cable: everything between them goes over a real network.

    two_hosts.py IOHOST [TEST...]

Ends with 77 where namespaces can't be made.
"""

import subprocess
import sys
import unittest

import hosts
from hosts import BROADCAST_RECEIVE, BROADCAST_SEND, NET_RECEIVE, NET_SEND, STRING_SEND, Host, Namespace, run, until

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
        until(lambda: host.device()["state"] == "connected", "the device is connected")

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
        self.assertEqual([item["from"] for item in self.b.await_dispatched()["dispatched"]], ["broadcast"])
        self.assertEqual(self.b.output("receive", 1352), "score")
        self.assertEqual(self.b.output("receive", 1353), data)

    def test_broadcasts_are_held_back_while_only_listening(self):
        self.a.create("send", BROADCAST_SEND, p602="1", p605="held back")
        self.b.create("receive", BROADCAST_RECEIVE, p1302="1")
        self.b.ask("listen")
        self.a.ask("listen_only", on=True)
        self.assertIn("held back", self.a.send("send", 606)["log"][-1]["text"])
        self.a.ask("listen_only", on=False)
        self.a.ask("set", node="send", param=605, string="sent")
        self.a.send("send", 606)
        self.b.await_dispatched()
        self.assertEqual(self.b.ask("network")["broadcast"]["received"], 1)
        self.assertEqual(self.b.output("receive", 1353), "sent")

    def test_record_fires_the_other_hosts_receive_node(self):
        self.create_record_nodes()
        self.a.send("send", 410)
        reply = self.b.await_dispatched()
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

    def test_cable_pulled_and_put_back(self):
        self.create_record_nodes()
        self.a.send("send", 410)
        self.b.await_dispatched()
        for is_given_up in (False, True):
            with self.subTest(is_given_up=is_given_up):
                run(*self.far.inside("ip", "link", "set", "cable-b", "down"))
                for _ in range(20):  # each send is answered, though nothing goes out
                    self.a.send("send", 410)
                if is_given_up:
                    until(lambda: self.a.ask("wait", ms=50) and self.a.device()["state"] != "connected",
                          "the connection is given up")
                self.assertEqual(self.a.device()["state"] == "connected", not is_given_up)
                run(*self.far.inside("ip", "link", "set", "cable-b", "up"))
                value = f"after it was given up: {is_given_up}"
                self.a.ask("set", node="send", param=408, string=value)

                def arrives():
                    self.a.send("send", 410)
                    self.a.ask("wait", ms=50)
                    while self.b.ask("wait", ms=10)["dispatched"]:
                        pass  # what was sent meanwhile comes first
                    return self.b.output("receive", 552) == value

                until(arrives, "what is sent then arrives")

    def test_a_device_that_stops_reading_costs_no_waiting_and_no_memory(self):
        self.far_program(hosts.iohost(), "--device", f"0.0.0.0:{DEVICE_PORT}", "--stall")
        self.a.create("send", NET_SEND, p402="3", p404="Clip", p406="key", p408="x" * 10_000)
        self.connect(self.a, port=DEVICE_PORT)
        until(lambda: self.a.send("send", 410) and self.a.device()["refused"] > 0, "buffers and queue are full")
        memory = self.a.memory()
        for _ in range(300):  # each is answered, though nothing goes out
            self.a.send("send", 410)
        state = self.a.device()
        self.assertGreater(state["refused"], 300, state)
        self.assertLessEqual(state["queued_bytes"], MOST_QUEUED)
        self.assertLess(self.a.memory() - memory, 2 << 20)


if __name__ == "__main__":
    sys.exit(hosts.main())

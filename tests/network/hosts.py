"""Hosts in network namespaces, driven by requests: what the tests over a real network share."""

import base64
import json
import os
import pathlib
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

SKIPPED = 77
IN_NAMESPACE = "HOSTS_IN_NAMESPACE"
BROADCAST_PORT = 8060

NODE_TYPE = "{{8164BB40-6B6A-4707-88B7-386BCB0D1B{}}}"
NET_SEND, NET_RECEIVE, BROADCAST_SEND, BROADCAST_RECEIVE, STRING_SEND = (
    NODE_TYPE.format(byte) for byte in ("04", "05", "06", "0D", "0F")
)

# Memory that the address sanitizer keeps back would hide what the host itself keeps.
ENVIRONMENT = {**os.environ, "ASAN_OPTIONS": "quarantine_size_mb=1:" + os.environ.get("ASAN_OPTIONS", "")}


def iohost():
    return os.path.abspath(sys.argv[1])


def run(*command):
    subprocess.run(command, check=True)


class Namespace:
    """A network namespace that exists as long as a process in it."""

    def __init__(self):
        self.process = subprocess.Popen(["unshare", "-n", "sleep", "600"])
        own = os.readlink("/proc/self/ns/net")
        while os.readlink(f"/proc/{self.process.pid}/ns/net") == own:
            time.sleep(0.01)

    def inside(self, *command):
        return ["nsenter", "-t", str(self.process.pid), "-n", *command]

    def close(self):
        self.process.kill()
        self.process.wait()


class AnyHost:
    """An iohost in an application folder of its own."""

    def __init__(self, prefix, *front):
        self.folder = tempfile.TemporaryDirectory()
        config = pathlib.Path(self.folder.name, "Config")
        config.mkdir()
        config.joinpath("PortConfig.ini").write_text(f"[iFable]\nBroadcastPort={BROADCAST_PORT}\n")
        self.process = subprocess.Popen([*prefix, iohost(), *front, "--texts", "keys", "--app", self.folder.name],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=ENVIRONMENT)

    def ask(self, op, **fields):
        reply = self.exchange({"op": op, **fields})
        assert reply["ok"], (op, fields, reply)
        return reply

    def create(self, node, node_type, **texts):
        self.ask("create", node=node, type=node_type, clip="Clip", graph=node)
        for param, value in texts.items():
            self.ask("set", node=node, param=int(param[1:]), string=value)
        self.ask("process", node=node)

    def send(self, node, param):
        self.ask("trigger", node=node, param=param)
        return self.ask("process", node=node)

    def output(self, node, output):
        groups = self.ask("inspect", node=node)["outputs"]
        return next(pin["string"] for group in groups for pin in group["params"] if pin["id"] == output)

    def device(self):
        return self.ask("network")["devices"][0]

    def memory(self):
        """What the process has in memory, in bytes."""
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return next(int(line.split()[1]) * 1024 for line in status.splitlines() if line.startswith("VmRSS"))

    def close(self):
        self.ask("quit")
        assert self.process.wait(10) == 0
        self.process.stdin.close()
        self.process.stdout.close()
        self.folder.cleanup()


class Host(AnyHost):
    """A host that does nothing unless it's asked to."""

    def __init__(self, prefix=()):
        super().__init__(prefix, "--stdio")

    def exchange(self, request):
        self.process.stdin.write(json.dumps(request) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def await_dispatched(self, seconds):
        """The reply of the wait that something was dispatched in; the last one when nothing was."""
        end = time.monotonic() + seconds
        while True:
            reply = self.ask("wait", ms=100)
            if reply["dispatched"] or time.monotonic() > end:
                return reply


class RunningHost(AnyHost):
    """A host that runs by itself, frame after frame, with this script at its WebSocket in place of a page."""

    def __init__(self, *options):
        super().__init__((), "--listen", "127.0.0.1:0", *options)
        address = self.process.stdout.readline().split("http://")[1].rstrip("/\n")
        self.pushes = []  # (time of arrival, push)
        self.socket = socket.create_connection(address.split(":"), timeout=20)
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall(f"GET /session HTTP/1.1\r\nHost: {address}\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                            f"Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n".encode())
        self.stream = self.socket.makefile("rb")
        assert b" 101 " in self.stream.readline()
        while self.stream.readline() != b"\r\n":
            pass

    def _send(self, opcode, payload):
        size = len(payload)
        length = struct.pack("!B", 128 | size) if size < 126 else struct.pack("!BH", 128 | 126, size)
        self.socket.sendall(bytes([128 | opcode]) + length + bytes(4) + payload)  # masked with zeros

    def _receive(self):
        """The next message of the host, as an object."""
        message = b""
        while True:
            first, size = self.stream.read(2)
            if size == 126:
                size, = struct.unpack("!H", self.stream.read(2))
            elif size == 127:
                size, = struct.unpack("!Q", self.stream.read(8))
            payload = self.stream.read(size)
            if first & 15 == 9:  # ping
                self._send(10, payload)
                continue
            message += payload
            if first & 128:
                return json.loads(message)

    def exchange(self, request):
        self._send(1, json.dumps(request).encode())
        while "push" in (message := self._receive()):
            self.pushes.append((time.monotonic(), message))
        return message

    def take_pushes(self, seconds):
        """What the host pushes in that time."""
        self.pushes.clear()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.pushes.append((time.monotonic(), self._receive()))
        return list(self.pushes)

    def close(self):
        super().close()
        self.stream.close()
        self.socket.close()


def main():
    """Runs the tests of the calling script in a network namespace of their own, where broadcasts reach nobody else."""
    if IN_NAMESPACE not in os.environ:
        unshare = ["unshare", "-n"] if os.geteuid() == 0 else ["unshare", "-Urn"]
        needed = all(shutil.which(tool) for tool in ("unshare", "nsenter", "ip"))
        if not needed or subprocess.run([*unshare, "true"], stderr=subprocess.DEVNULL).returncode != 0:
            print("skipped: network namespaces can't be made here (they need unshare, nsenter, ip and the right to)")
            return SKIPPED
        os.environ[IN_NAMESPACE] = "1"
        os.execvp("unshare", [*unshare, sys.executable, "-B", *sys.argv])
    run("ip", "link", "set", "lo", "up")
    tests = unittest.main("__main__", argv=sys.argv[:1] + sys.argv[2:], exit=False, verbosity=2)
    return 0 if tests.result.wasSuccessful() else 1

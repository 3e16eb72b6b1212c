"""Hosts in network namespaces, driven by requests: what the tests over a real network share."""

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


def until(condition, what):
    """Wait until there is something; what there is."""
    end = time.monotonic() + 60
    while time.monotonic() < end:
        if result := condition():
            return result
    raise AssertionError(f"in a minute it never was that {what}")


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


class Host:
    """An iohost in an application folder of its own, which does nothing unless it's asked to."""

    def __init__(self, prefix=()):
        self.folder = tempfile.TemporaryDirectory()
        config = pathlib.Path(self.folder.name, "Config")
        config.mkdir()
        config.joinpath("PortConfig.ini").write_text(f"[iFable]\nBroadcastPort={BROADCAST_PORT}\n")
        self.process = subprocess.Popen([*prefix, iohost(), "--stdio", "--texts", "keys", "--app", self.folder.name],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=ENVIRONMENT)

    def ask(self, op, **fields):
        self.process.stdin.write(json.dumps({"op": op, **fields}) + "\n")
        self.process.stdin.flush()
        reply = json.loads(self.process.stdout.readline())
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

    def await_dispatched(self):
        """The reply of the wait that something was dispatched in."""
        return until(lambda: (reply := self.ask("wait", ms=100))["dispatched"] and reply, "something is dispatched")

    def memory(self):
        """What the process has in memory, in bytes."""
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return next(int(line.split()[1]) * 1024 for line in status.splitlines() if line.startswith("VmRSS"))

    def close(self):
        self.ask("quit")
        assert self.process.wait(60) == 0
        self.process.stdin.close()
        self.process.stdout.close()
        self.folder.cleanup()


def main():
    """Runs the tests of the calling script in a network of their own; where there can be none, the script ends with 77."""
    if IN_OWN_NETWORK not in os.environ:
        os.environ[IN_OWN_NETWORK] = "1"
        os.execv(OWN_NETWORK, [OWN_NETWORK, sys.executable, "-B", *sys.argv])
    tests = unittest.main("__main__", argv=sys.argv[:1] + sys.argv[2:], exit=False, verbosity=2)
    return 0 if tests.result.wasSuccessful() else 1

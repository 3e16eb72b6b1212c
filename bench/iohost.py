"""What the measurements of a running iohost share: its scenes, the program as a child, and a page's connection."""

import base64
import json
import pathlib
import select
import socket
import struct
import subprocess
import time

BUILD = pathlib.Path("build")
RELEASE = BUILD / "release" / "bin"
LONGEST_WAIT = 60  # seconds
TEXT = b'{"device":"wall","reading":%d,"unit":"mm","state":"ok","at":"2026-01-01T00:00"}'


def node(name, last_byte, **more):
    guid = "{8164BB40-6B6A-4707-88B7-386BCB0D1B%s}" % last_byte
    return {"node": name, "type": guid, "clip": "Clip", "graph": name, **more}


def scene_file(nodes, links=(), devices=()):
    file = BUILD / "bench-scene.json"
    scene = {"format": "iohost scene", "version": 1, "nodes": nodes, "links": links, "devices": devices}
    file.write_text(json.dumps(scene))
    return file


def json_device(port):
    return {"id": 1, "name": "Peer", "parser": "json", "address": f"127.0.0.1:{port}"}


def expect_done(replies):
    """Refused requests measure nothing."""
    refusal = replies.find(b'{"ok":false')
    if refusal >= 0:
        raise ValueError("the host refuses: " + replies[refusal : refusal + 200].decode())


class Child:
    """A program that is ended with the block."""

    def __init__(self, command, **streams):
        self.process = subprocess.Popen(command, **streams)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.communicate()

    def processor_seconds(self):
        return time.clock_gettime((~self.process.pid << 3) | 2)  # the clock of that process


class Stdio(Child):
    """iohost --stdio."""

    def __init__(self, folder, scene):
        command = [folder / "iohost", "--stdio", "--scene", scene]
        super().__init__(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)

    def send(self, request):
        self.process.stdin.write(request.encode() + b"\n")

    def replies(self, seconds):
        """How many replies came; waits for the first one that long."""
        if not select.select([self.process.stdout], [], [], max(0, seconds))[0]:
            return 0
        piece = self.process.stdout.read(1 << 20)
        if not piece:
            raise EOFError("the host ended")
        expect_done(piece)
        return piece.count(b"\n")


class Server(Child):
    """iohost --listen, without the page's files."""

    PORT = 8040

    def __init__(self, folder, scene, *options):
        web = BUILD / "bench-web"
        web.mkdir(exist_ok=True)
        (web / "index.html").touch()
        command = [folder / "iohost", "--listen", f"127.0.0.1:{self.PORT}", "--web", web, "--scene", scene, *options]
        super().__init__(command, stdout=subprocess.DEVNULL)

    def __enter__(self):
        try:
            self.wait()
        except BaseException:
            self.__exit__()
            raise
        return self

    def wait(self):
        end = time.monotonic() + LONGEST_WAIT
        while True:
            try:
                socket.create_connection(("127.0.0.1", self.PORT)).close()
                return
            except ConnectionRefusedError:
                if self.process.poll() is not None or time.monotonic() > end:
                    raise
                time.sleep(0.05)


class Page:
    """A page's connection to a Server."""

    def __init__(self):
        self.socket = socket.create_connection(("127.0.0.1", Server.PORT), LONGEST_WAIT)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        key = base64.b64encode(bytes(16)).decode()
        self.socket.sendall(
            f"GET /session HTTP/1.1\r\nHost: 127.0.0.1:{Server.PORT}\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
            f"Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n".encode()
        )
        self.bytes = bytearray()
        while b"\r\n\r\n" not in self.bytes:
            byte = self.socket.recv(1)
            if not byte:
                raise ConnectionResetError("the host closed the connection")
            self.bytes += byte
        self.bytes.clear()
        self.message = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def send(self, request):
        """A request of at most 65535 bytes, masked by zeros."""
        text = request.encode()
        length = struct.pack("!B", 0x80 | len(text)) if len(text) < 126 else struct.pack("!BH", 0xFE, len(text))
        self.socket.sendall(b"\x81" + length + bytes(4) + text)

    def messages(self, seconds):
        """The messages that came; waits for the first bytes that long."""
        if not select.select([self.socket], [], [], max(0, seconds))[0]:
            return []
        piece = self.socket.recv(1 << 20)
        if not piece:
            raise ConnectionResetError("the host closed the connection")
        self.bytes += piece
        found = []
        begin = 0
        while len(self.bytes) >= begin + 10 or len(self.bytes) >= begin + 2 and self.bytes[begin + 1] < 126:
            length, header = self.bytes[begin + 1], 2
            if length == 126:
                length, header = struct.unpack_from("!H", self.bytes, begin + 2)[0], 4
            elif length == 127:
                length, header = struct.unpack_from("!Q", self.bytes, begin + 2)[0], 10
            if len(self.bytes) < begin + header + length:
                break
            if self.bytes[begin] == 0x89:
                self.socket.sendall(b"\x8a\x80" + bytes(4))  # a pong for the ping
            else:
                self.message += self.bytes[begin + header : begin + header + length]
                if self.bytes[begin] & 0x80:
                    found.append(self.message)
                    self.message = b""
            begin += header + length
        del self.bytes[:begin]
        return found

    def replies(self, seconds):
        replies = [message for message in self.messages(seconds) if b'{"push"' not in message[:10]]
        for reply in replies:
            expect_done(reply)
        return len(replies)

    def next(self, beginning, seconds):
        """The next message that begins so; None when none comes for so long."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            for message in self.messages(end - time.monotonic()):
                if message.startswith(beginning):
                    return json.loads(message)
        return None

    def ask(self, request):
        self.send(request)
        return self.next(b'{"ok"', LONGEST_WAIT)

    def frame(self):
        """The number of the frame that is told next and when; None for a host that tells none."""
        push = self.next(b'{"push":"frame"', 3)
        return push and (push["frame"], time.monotonic())

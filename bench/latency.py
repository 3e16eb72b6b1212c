"""Measures what bench/latency says. Each peer connects to a server here, which sends a text, waits for the answer, and sends
the next: a closed loop. Peers take turns; the figures are of all rounds, ratios to the last peer's."""

import argparse
import json
import random
import socket
import statistics
import subprocess
import time

from iohost import BUILD, LONGEST_WAIT, RELEASE, TEXT, Child, json_device, node, scene_file

WARM_UP = 100

# The same work for a peer without nodes: what comes goes back, followed by a zero.
ECHO = """
import socket, sys
peer = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
peer.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
while text := peer.recv(65536):
    peer.sendall(text[:-1] + b"\\0")
"""


def iohost(*options):
    def command(port):
        send = [{"id": 1502, "int": 1}, {"id": 1503, "int": 1}, {"id": 1505}, {"id": 1506, "int": 1},
                {"id": 1507, "type": 26}]  # to device 1, as bytes
        nodes = [node("in", "0E"), node("out", "0F", inputs=[{"id": 1501, "params": send}])]
        pins = ((1452, 1505), (1453, 1507))
        links = [{"from": "in", "to": "out", "output": output, "input": pin} for output, pin in pins]
        scene = scene_file(nodes, links, [json_device(port)])
        return [RELEASE / "iohost", "--listen", "127.0.0.1:0", "--scene", scene, *options]

    return command


def node_red(port):
    """The same in Node-RED: what comes, as a JSON object, goes back as a text followed by a zero."""
    folder = BUILD / "node-red" / "user"
    folder.mkdir(parents=True, exist_ok=True)
    tcp_in = {"id": "in", "type": "tcp in", "z": "t", "server": "client", "host": "127.0.0.1", "port": str(port),
              "datamode": "stream", "datatype": "utf8", "newline": "\\n", "topic": "", "trim": True, "wires": [["parse"]]}
    parse = {"id": "parse", "type": "json", "z": "t", "property": "payload", "action": "obj", "wires": [["back"]]}
    back = {"id": "back", "type": "function", "z": "t", "outputs": 1, "wires": [["out"]],
            "func": "msg.payload = JSON.stringify(msg.payload) + '\\0'; return msg;"}
    tcp_out = {"id": "out", "type": "tcp out", "z": "t", "beserver": "reply", "base64": False, "end": False, "wires": []}
    (folder / "flows.json").write_text(json.dumps([{"id": "t", "type": "tab"}, tcp_in, parse, back, tcp_out]))
    (folder / "settings.js").write_text(
        'module.exports = { uiHost: "127.0.0.1", uiPort: %d, httpAdminRoot: false, flowFile: "flows.json",'
        ' logging: { console: { level: "error" } }, telemetry: { enabled: false } };' % (port + 1))
    return ["node", "build/node-red/node_modules/node-red/red.js", "--userDir", folder]


def measure(command, texts):
    """Milliseconds from each text to its answer."""
    times = []
    with socket.create_server(("127.0.0.1", 0)) as server:
        server.settimeout(LONGEST_WAIT)
        with Child(command(server.getsockname()[1]), stdout=subprocess.DEVNULL), server.accept()[0] as peer:
            peer.settimeout(LONGEST_WAIT)
            peer.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            time.sleep(0.5)  # nodes take texts once they have been evaluated
            for number in range(WARM_UP + texts):
                text = TEXT % number
                begin = time.perf_counter_ns()
                peer.sendall(text + b"\n")
                answer = b""
                while not answer.endswith(b"\0"):
                    piece = peer.recv(65536)
                    if not piece:
                        raise SystemExit("the peer closed the connection")
                    answer += piece
                if answer != text + b"\0":
                    raise SystemExit(f"the peer answered {answer!r}")
                if number >= WARM_UP:
                    times.append((time.perf_counter_ns() - begin) / 1e6)
                time.sleep(random.uniform(0, 1 / 60))  # at any moment of a frame
    return times


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--node-red", action="store_true")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--texts", type=int, default=1000)
    options = parser.parse_args()
    peers = {"a bare echo": lambda port: ["python3", "-c", ECHO, str(port)], "iohost": iohost(),
             "iohost --fps 1000": iohost("--fps", "1000"), "iohost --evaluate frame": iohost("--evaluate", "frame")}
    if options.node_red:
        peers["Node-RED"] = node_red
    rounds = {name: [] for name in peers}
    for _ in range(options.rounds):
        for name, command in peers.items():
            rounds[name].append(measure(command, options.texts))
    print(f"{options.rounds} rounds of {options.texts} texts, milliseconds")
    print(f"{'':26}{'median':>8}{'ratio':>7}{'rounds':>18}{'p99':>8}{'ratio':>7}")
    base = None
    for name, figures in reversed(rounds.items()):
        together = sorted(sum(figures, []))
        median, p99 = statistics.median(together), together[len(together) * 99 // 100]
        base = base or (median, p99)
        medians = sorted(statistics.median(one) for one in figures)
        print(f"{name:26}{median:8.3f}{median / base[0]:7.2f}{medians[0]:9.3f} to{medians[-1]:6.3f}{p99:8.3f}"
              f"{p99 / base[1]:7.2f}")


main()

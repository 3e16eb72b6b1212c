"""Measures what bench/host says. Each row starts a host of its own; with --against, both programs take turns in it."""

import argparse
import json
import os
import pathlib
import socket
import statistics
import threading
import time

from iohost import LONGEST_WAIT, RELEASE, TEXT, Page, Server, Stdio, json_device, node, scene_file

DEMO = json.loads(pathlib.Path("app/scenes/demo.json").read_text())
for node in DEMO["nodes"]:
    del node["place"]  # copies would lie on each other
EVENTS_PER_SECOND = 1000
KEY = '{"op":"event","device":0,"event":%d,"payload":{"is":"key","text":"A"}}'
POINTER = '"is":"pointer","rx":0,"ry":0,"x":%d,"y":8,"pointer":0,"relative":0'
SAMPLE = '{"op":"event","device":1,"event":3013,"payload":{' + POINTER + "}}"
EVENTS = [KEY % 2002, SAMPLE % 7, KEY % 2003, SAMPLE % 9]
REQUESTS = {"event": KEY % 2002, "process": '{"op":"process"}', "inspect": '{"op":"inspect","node":"mouse0"}'}


def demo(nodes, linked):
    """The demo's thirteen nodes so many times over, without devices."""
    copies = range(nodes // len(DEMO["nodes"]))
    nodes = [{**one, "node": f"{one['node']}{i}"} for i in copies for one in DEMO["nodes"]]
    links = [{**one, "from": f"{one['from']}{i}", "to": f"{one['to']}{i}"} for i in copies for one in DEMO["links"]]
    return scene_file(nodes, links if linked else [])


def share(host, begin, seconds):
    return 100 * (host.processor_seconds() - begin) / seconds


def idle(folder, nodes, seconds):
    """A scene that nobody watches: the frames are counted by a page before and after."""
    with Server(folder, demo(nodes, True)) as host:
        with Page() as page:
            begin = page.frame()
        time.sleep(0.5)
        busy, start = host.processor_seconds(), time.monotonic()
        time.sleep(seconds)
        busy = share(host, busy, time.monotonic() - start)
        with Page() as page:
            end = page.frame()
    figures = {"% of a core": busy}
    return figures | ({"frames a second": (end[0] - begin[0]) / (end[1] - begin[1])} if begin and end else {})


def paced(host, front, seconds):
    """Events by the clock. Each is late from the moment when it's due to that of its reply."""
    late = []
    ended = threading.Event()
    busy, start = host.processor_seconds(), time.monotonic()

    def write():
        for number in range(seconds * EVENTS_PER_SECOND):
            time.sleep(max(0, start + number / EVENTS_PER_SECOND - time.monotonic()))
            if ended.is_set():
                return
            try:
                front.send(EVENTS[number % len(EVENTS)])
            except OSError:
                return  # the host was ended while it had no room for more

    writer = threading.Thread(target=write)
    writer.start()
    end = start + seconds + 0.1
    try:
        while time.monotonic() < end and len(late) < seconds * EVENTS_PER_SECOND:
            replies = front.replies(end - time.monotonic())
            now = time.monotonic()
            dues = (start + number / EVENTS_PER_SECOND for number in range(len(late), len(late) + replies))
            late += [1000 * (now - due) for due in dues]
    except ConnectionResetError:
        pass  # more waited for the page than the host keeps
    finally:
        took = time.monotonic() - start
        busy = share(host, busy, took)
        ended.set()
        host.process.kill()
        writer.join()
    figures = {"% of a core": busy, "events a second": len(late) / took}
    return figures | ({"ms late": statistics.median(late)} if late else {})


def events(folder, nodes, linked, seconds):
    with Stdio(folder, demo(nodes, linked)) as host:
        answer(host, '{"op":"process"}')  # nodes take events once they have been evaluated
        return paced(host, host, seconds)


def page_events(folder, nodes, seconds):
    with Server(folder, demo(nodes, True)) as host, Page() as page:
        page.ask('{"op":"network"}')
        return paced(host, page, seconds)


def answer(host, request):
    host.send(request)
    end = time.monotonic() + LONGEST_WAIT
    while not host.replies(end - time.monotonic()):
        if time.monotonic() > end:
            raise TimeoutError("the host doesn't answer")


def requests(folder, name, nodes, linked, seconds):
    with Stdio(folder, demo(nodes, linked)) as host:
        answer(host, '{"op":"process"}')
        count, start = 0, time.monotonic()
        while time.monotonic() < start + seconds:
            answer(host, REQUESTS[name])
            count += 1
        return {"requests a second": count / (time.monotonic() - start)}


def texts(folder, seconds):
    """As many texts as a node takes, from a device that sends without a pause."""
    with socket.create_server(("127.0.0.1", 0)) as server:
        server.settimeout(LONGEST_WAIT)
        inputs = [{"id": 1401, "params": [{"id": 1402, "int": 1}]}]
        scene = scene_file([node("in", "0E", inputs=inputs)], devices=[json_device(server.getsockname()[1])])
        with Server(folder, scene) as host, server.accept()[0] as peer:

            def flood():
                block = b"".join(TEXT % number + b"\n" for number in range(100, 1000))
                try:
                    while True:
                        peer.sendall(block)
                except OSError:
                    pass  # the host was ended

            def received():
                with Page() as page:
                    device = page.ask('{"op":"network"}')["devices"][0]
                    return device["matched"], host.processor_seconds(), time.monotonic()

            sender = threading.Thread(target=flood)
            sender.start()
            time.sleep(0.5)
            begin = received()
            time.sleep(seconds)
            count, busy, took = (after - before for before, after in zip(begin, received()))
            host.process.kill()
            sender.join()
            return {"texts a second": count / took, "µs of processor time each": busy / count * 1e6}


def rows(seconds):
    for nodes in (130, 1300, 13000):
        yield f"{nodes} nodes, idle", idle, (nodes, seconds)
    for nodes in (13, 130, 1300, 13000):
        yield f"{nodes} nodes, {EVENTS_PER_SECOND} events a second", events, (nodes, False, seconds)
        yield f"{nodes} nodes with links, the same", events, (nodes, True, seconds)
        yield f"{nodes} nodes with links, frames and a page, the same", page_events, (nodes, seconds)
    for nodes in (13, 1300):
        for name in REQUESTS:
            yield f"{nodes} nodes, request {name}", requests, (name, nodes, False, seconds)
    yield "1300 nodes with links, request event", requests, ("event", 1300, True, seconds)
    yield "a device's texts of 79 bytes", texts, (seconds,)


def spread(values):
    """Median, and in brackets the least and the most."""
    if not values:
        return ""
    figures = (statistics.median(values), min(values), max(values))
    median, least, most = (f"{figure:.3g}" if figure < 100 else f"{figure:.0f}" for figure in figures)
    return f"{median} ({least} to {most})"


def main():
    parser = argparse.ArgumentParser(description="Measures the release build's host, and another one beside it.")
    parser.add_argument("--against", help="folder of another iohost and its module")
    parser.add_argument("--rows", default="", help="only rows whose name contains this")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--seconds", type=int, default=3, help="that each row takes")
    options = parser.parse_args()
    # bench/host has changed the folder.
    folders = [pathlib.Path(os.environ["OLDPWD"], options.against), RELEASE] if options.against else [RELEASE]
    columns = ["before", "now", "ratio"] if options.against else ["now"]
    print(f"| {options.rounds} rounds, medians | | {' | '.join(columns)} |")
    print("|---|---|" + "---|" * len(columns), flush=True)
    for name, measure, arguments in rows(options.seconds):
        if options.rows not in name:
            continue
        found = [[] for _ in folders]
        for _ in range(options.rounds):
            for folder, figures in zip(folders, found):
                figures.append(measure(folder, *arguments))
        for figure in max((one for figures in found for one in figures), key=len):
            values = [[one[figure] for one in figures if figure in one] for figures in found]
            cells = [spread(one) for one in values]
            if len(folders) == 2:
                ends = [statistics.median(one) for one in values if one]
                cells.append(f"{ends[1] / ends[0]:.2g}" if len(ends) == 2 and ends[0] else "")
            print(f"| {name} | {figure} | {' | '.join(cells)} |", flush=True)
            name = ""


main()

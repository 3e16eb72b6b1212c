#!/usr/bin/env python3
"""The XML that hosts exchange, against Python's parser and writer: each side reads what the other one wrote.

    xml_read_back.py IOHOST [TEST...]

XML 1.0 has no control characters but tab, line feed and carriage return. The host writes the others as numeric
references all the same, so that they come back; for Python's parser such references are moved into the private use area.
Ends with 77 where namespaces can't be made.
"""

import re
import socket
import struct
import sys
import unittest
import xml.etree.ElementTree

import hosts
from hosts import BROADCAST_PORT, BROADCAST_RECEIVE, BROADCAST_SEND, NET_SEND, Host

# Code page 1252; the bytes that it leaves undefined stand for the control characters of their values.
CHARACTERS = [bytes([byte]).decode("cp1252", "ignore") or chr(byte) for byte in range(1, 256)]
TO_BYTE = {character: byte for byte, character in enumerate(CHARACTERS, 1)}
ONLY_AS_REFERENCE = set(range(1, 32)) - {9, 10, 13}
PRIVATE_USE = 0xE000


def texts():
    """Texts with every character, alone and between those that mean something in XML."""
    for character in CHARACTERS:
        yield character
        yield f"<{character}&{character}\"{character}'>"
    yield "".join(CHARACTERS)
    for name in ("Flag", "ClipName", "Name", "Data", "DevID", "DevName", "GroupName", "KeyName", "KeyNumber", "KeyValue",
                 "HelpParameter", "Layer"):
        yield f"what ends like an attribute {name}="
    yield "&amp;&#13;&#x41;&lt;![CDATA[<x a=\"1\"/>]]><!-- --><?x?>"


def read_xml(text):
    def moved(match):
        number = int(match[1])
        return f"&#{number + PRIVATE_USE};" if number in ONLY_AS_REFERENCE else match[0]

    element = xml.etree.ElementTree.fromstring(re.sub("&#([0-9]+);", moved, text))
    back = {PRIVATE_USE + number: number for number in ONLY_AS_REFERENCE}
    return element.tag, len(element), element.text, {name: value.translate(back) for name, value in element.items()}


class XmlReadBack(unittest.TestCase):
    def setUp(self):
        self.host = Host()
        self.addCleanup(self.host.close)

    def set_texts(self, values):
        for param, text in values.items():
            self.host.ask("set", node="send", param=param, string=text)

    def test_records(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            address = f"127.0.0.1:{server.getsockname()[1]}"
            self.host.create("send", NET_SEND)
            self.host.ask("set", node="send", param=412, int=0)  # to all
            connection = None
            for text in texts():
                if len(text) > 1 or connection is None:  # a device of another name is another connection
                    name = text
                    self.host.ask("devices", list=[{"id": -7, "name": name, "parser": "framed", "address": address}])
                    connection, _ = server.accept()
                    self.addCleanup(connection.close)
                    frames = connection.makefile("rb")
                    self.addCleanup(frames.close)
                fields = {404: "clip " + text, 405: "group " + text, 406: text + " key", 408: text, 409: text + text}
                self.set_texts(fields)
                self.host.ask("set", node="send", param=407, int=-5)
                self.host.send("send", 410)
                magic, version, clip_size, body_size, command = struct.unpack("!4sHHII", frames.read(16))
                self.assertEqual((magic, version, command), (b"QPCF", 1, 50))
                body = frames.read(body_size)
                self.assertEqual(body[:clip_size], b"Clip")
                self.assertEqual(read_xml(body[clip_size:].decode()), ("PanelRemoteCtrl", 0, None, {
                    "DevID": "-7", "DevName": name, "ClipName": fields[404], "GroupName": fields[405],
                    "KeyName": fields[406], "KeyNumber": "-5", "HelpParameter": fields[409], "KeyValue": fields[408],
                    "Layer": "0"}))

    def test_broadcasts(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as receiver:
            receiver.settimeout(60)
            receiver.bind(("0.0.0.0", BROADCAST_PORT))
            self.host.create("send", BROADCAST_SEND)
            for text in texts():
                fields = {602: text, 603: "clip " + text, 604: text + " name", 605: text + text}
                self.set_texts(fields)
                self.host.send("send", 606)
                datagram = receiver.recv(65536)
                self.assertEqual((datagram[:3], datagram[-4:]), (b"[.{", b"}.]\0"))
                document = "".join(CHARACTERS[byte - 1] for byte in datagram[3:-4])
                self.assertEqual(read_xml(document), ("Broadcast", 0, None, {
                    "Flag": fields[602], "ClipName": fields[603], "Name": fields[604], "Data": fields[605]}))

    def test_broadcasts_that_python_wrote(self):
        self.host.create("receive", BROADCAST_RECEIVE)
        self.host.ask("listen")
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            for text in texts():
                if any(ord(character) in ONLY_AS_REFERENCE for character in text):
                    continue  # Python would write them as they are
                element = xml.etree.ElementTree.Element("Broadcast", Flag="", ClipName=text, Name=text, Data="1" + text)
                document = xml.etree.ElementTree.tostring(element, encoding="unicode")
                datagram = b"[.{" + bytes(TO_BYTE[character] for character in document) + b"}.]\0"
                sender.sendto(datagram, ("127.0.0.1", BROADCAST_PORT))
                self.assertEqual(len(self.host.await_dispatched()["dispatched"]), 1, datagram)
                self.assertEqual(self.host.output("receive", 1352), text)
                self.assertEqual(self.host.output("receive", 1353), "1" + text)


if __name__ == "__main__":
    sys.exit(hosts.main())

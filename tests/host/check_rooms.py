#!/usr/bin/env python3
"""Check that the reference host's rooms include one another in one direction only.

    check_rooms.py IOHOST_FOLDER
"""

import pathlib
import re
import sys

# What each room may include beside itself. Rooms stand behind all that they may include, so there is no way round.
ROOMS = {
    "base": [],
    "scene": ["base"],
    "engine": ["base", "scene"],
    "network": ["base"],
    "session": ["base", "scene", "engine", "network"],
    "protocol": ["base", "scene", "engine", "network", "session"],
    "standin": ["base", "protocol"],
    "fronts/describe": ["base", "scene", "session", "protocol"],
    "fronts/recording": ["base", "session", "protocol"],
    "fronts/stdio": ["base", "session", "protocol"],
    "fronts/terminal": ["base", "scene", "session"],
    "fronts/page": ["base", "scene", "network", "session", "protocol", "fronts/terminal"],
    "fronts/window": ["base", "network", "session", "fronts/terminal"],
}


def main(folder):
    wrong = []
    before = []
    for room, allowed in ROOMS.items():
        wrong += [f"{room} may include {other}, which doesn't stand before it" for other in allowed if other not in before]
        before.append(room)
    rooms = {path.parent.relative_to(folder).as_posix() for path in folder.rglob("*.h") if "web" not in path.parts}
    wrong += [f"{room} isn't known here" for room in sorted(rooms - set(ROOMS) - {"."})]
    for room, allowed in ROOMS.items():
        for source in sorted((folder / room).glob("*.[ch]*")):
            for included in re.findall(r'^#include "(.+)/[^/"]+"', source.read_text(encoding="utf-8"), re.MULTILINE):
                if included in ROOMS and included != room and included not in allowed:
                    wrong.append(f"{source.relative_to(folder)} includes {included}")
    if wrong:
        sys.exit("\n".join(wrong))


main(pathlib.Path(sys.argv[1]))

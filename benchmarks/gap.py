#!/usr/bin/env python3
"""Measures the longest gap between two polls of a module with and without a box on the screen.

usage: gap.py BUILD [PROGRAM] [SECONDS]

BUILD is a build folder; PROGRAM, by default its own, is the program that is measured. A module of
this script's own stands at the far end of a pseudo-terminal. For the first half of SECONDS, 20 by
default, nothing happens; then the module reports an event with a code that nobody knows, whose box
nobody answers, and the second half begins a second later. The module goes on reporting events, and
the script tells how many of them the history has.
"""
import json
import os
import pathlib
import pty
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import tty

ADDRESS = 1
UNKNOWN = 0xF3E0  # the panel as a whole, qualifier 3, code 14
ACTIVE, NORMAL = 0x1010, 0x1000  # channel 1


def with_crc(frame):
    crc = 0xFFFF
    for byte in frame:
        crc ^= byte
        for _ in range(8):
            crc = (crc >> 1) ^ 0xA001 if crc & 1 else crc >> 1
    return frame + bytes([crc & 0xFF, crc >> 8])


class Module:
    """A Q7100: its family, its states and its event memory."""

    def __init__(self):
        self.events = []
        self.polls = []

    def read(self, register, count):
        memory = [word for event in self.events for word in (event, 0)]
        words = {132: 1, 133: 0, 144: len(self.events)}
        if register == 144:
            self.polls.append(time.monotonic())
        if register == 146:
            return (memory + [0] * count)[:count]
        return [words.get(register + i, 0) for i in range(count)]

    def answer(self, frame):
        register = int.from_bytes(frame[2:4], "big")
        value = int.from_bytes(frame[4:6], "big")
        if frame[1] == 3:
            words = self.read(register, value)
            body = b"".join(word.to_bytes(2, "big") for word in words)
            return with_crc(frame[:2] + bytes([len(body)]) + body)
        if register == 288:
            del self.events[:value]
        return with_crc(frame[:6])


def serve(master, module, until):
    pending = b""
    while time.monotonic() < until:
        if not select.select([master], [], [], 0.02)[0]:
            pending = b""
            continue
        pending += os.read(master, 512)
        length = 9 + pending[6] if len(pending) > 6 and pending[1] == 16 else 8
        if len(pending) >= length:
            if pending[0] == ADDRESS:
                os.write(master, module.answer(pending[:length]))
            pending = b""


def longest(polls, start, end):
    inside = [start] + [at for at in polls if start <= at <= end] + [end]
    return max(later - earlier for earlier, later in zip(inside, inside[1:]))


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    program = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else build / "src/korvanelle").resolve()
    half = float(sys.argv[3]) / 2 if len(sys.argv) > 3 else 10.0
    folder = pathlib.Path(tempfile.mkdtemp())
    master, slave = pty.openpty()
    tty.setraw(slave)
    shutil.copy(program, folder / "korvanelle")
    shutil.copy(build / "korvanelle.cfg", folder)
    channels = [{"number": n, "text": f"Channel {n}"} for n in range(1, 13)]
    site = {"busSettings": "COM1:9600,N,8,1", "autoStart": True, "inactivityMinutes": 10,
            "sounds": {}, "biblio": [], "consignes": [], "mirrors": [],
            "panels": [{"address": ADDRESS, "model": "Q7100", "title": "Box", "channels": channels}]}
    (folder / "site.json").write_text(json.dumps(site))
    subprocess.run([build / "tools/mksite/korvanelle-mksite", folder / "site.json",
                    folder / "korvanelle.cfg", folder / "korvanelle.dat"], check=True)
    (folder / "korvanelle.ini").write_text(f"[Ports]\r\nCOM1={os.ttyname(slave)}\r\n")
    process = subprocess.Popen([folder / "korvanelle"], stderr=subprocess.DEVNULL,
                               env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
    module = Module()
    try:
        begin = time.monotonic()
        while len(module.polls) < 20 and time.monotonic() - begin < 60:
            serve(master, module, time.monotonic() + 0.5)
        start = time.monotonic()
        serve(master, module, start + half)
        module.events.append(UNKNOWN)
        serve(master, module, start + half + 1)
        for i in range(10):
            module.events.append(NORMAL if i % 2 else ACTIVE)
            serve(master, module, start + half + 1 + half * (i + 1) / 10)
        end = time.monotonic()
    finally:
        process.send_signal(signal.SIGTERM)
        process.wait(30)
    lines = sum(text.count("P01-C01") for text in
                (path.read_text("cp1252") for path in folder.glob("*.his")))
    print(f"longest gap without a box {1000 * longest(module.polls, start, start + half):.0f} ms, "
          f"with one {1000 * longest(module.polls, start + half, end):.0f} ms; "
          f"{lines} of 10 events behind it in the history")
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())

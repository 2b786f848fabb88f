#!/usr/bin/env python3
"""Measures how long an alarm takes to the trace, with a printer that prints and with one that is stuck.

usage: printer.py BUILD [COUNT]

BUILD is a build folder with program and simulator. COUNT times, by default 5, twenty alarms come on
one panel, all of them printed, and right behind them one on another panel. The line of the trace is
written behind the row of the console: its time is an upper bound. The printer is a pipe that is read,
or not.
"""
import fcntl
import json
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

SETTLED = 3.0
CHANNELS = 20
PIPE_SIZE = 4096


def wait_for(condition, seconds=60):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return time.monotonic()
        time.sleep(0.002)
    sys.exit("what was waited for didn't come")


def drain(pipe, ended):
    while not ended.is_set():
        try:
            os.read(pipe, PIPE_SIZE)
        except BlockingIOError:
            time.sleep(0.002)


def run(build, count, stuck):
    folder = pathlib.Path(tempfile.mkdtemp())
    bus, printer = folder / "bus", folder / "printer"
    os.mkfifo(printer)
    pipe = os.open(printer, os.O_RDWR | os.O_NONBLOCK)
    fcntl.fcntl(pipe, fcntl.F_SETPIPE_SZ, PIPE_SIZE)
    ended = threading.Event()
    if stuck:
        os.write(pipe, bytes(PIPE_SIZE))
    else:
        threading.Thread(target=drain, args=(pipe, ended), daemon=True).start()
    shutil.copy(build / "src/korvanelle", folder)
    shutil.copy(build / "korvanelle.cfg", folder)
    channels = [{"number": n, "text": f"Channel {n}"} for n in range(1, CHANNELS + 1)]
    site = {"busSettings": "COM1:9600,N,8,1", "printer": "LPT1:", "autoStart": True,
            "inactivityMinutes": 10, "sounds": {}, "biblio": [], "consignes": [], "mirrors": [],
            "panels": [{"address": n, "model": "Q7000", "title": f"Panel {n}", "channels": channels}
                       for n in (1, 2)]}
    (folder / "site.json").write_text(json.dumps(site))
    (folder / "korvanelle.ini").write_text(f"[Ports]\r\nCOM1={bus}\r\nLPT1={printer}\r\n", newline="")
    subprocess.run([build / "tools/mksite/korvanelle-mksite", folder / "site.json",
                    folder / "korvanelle.cfg", folder / "korvanelle.dat"], check=True)
    simulator = subprocess.Popen(
        [build / "simulator/korvanelle-sim", "--quiet", "--link", bus, "--model", "1=Q7000",
         "--model", "2=Q7000"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    wait_for(bus.exists)
    program = subprocess.Popen([folder / "korvanelle"], stderr=subprocess.DEVNULL,
                               env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})

    def traced(words):
        return sum(path.read_bytes().count(words) for path in folder.glob("Trace/*.log"))

    times = []
    try:
        wait_for(lambda: traced(b"SYNCHR") > 0)
        time.sleep(SETTLED)
        for number in range(count):
            word = b"active" if number % 2 == 0 else b"normal"
            before = traced(b"P02-C01")
            simulator.stdin.write(b"".join(b"%s 1 %d\n" % (word, n) for n in range(1, CHANNELS + 1)) +
                                  b"%s 2 1\n" % word)
            simulator.stdin.flush()
            start = time.monotonic()
            times.append(wait_for(lambda seen=before: traced(b"P02-C01") > seen) - start)
            time.sleep(SETTLED)
        failed = traced(b"FAULT BEGINS PRINTER NOT REACHED")
    finally:
        program.send_signal(signal.SIGTERM)
        program.wait(60)
        simulator.terminate()
        simulator.wait(60)
        ended.set()
        shutil.rmtree(folder)
    return times, failed


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    for stuck in (False, True):
        times, failed = run(build, count, stuck)
        print(f"printer {'stuck' if stuck else 'prints'}: median {1000 * statistics.median(times):.0f} ms, "
              f"longest {1000 * max(times):.0f} ms; told {failed} times", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())

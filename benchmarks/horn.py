#!/usr/bin/env python3
"""Disturbs the sound of the program and tells how long its horn was silent without saying so.

usage: horn.py BUILD [COUNT] [SECONDS] [PROGRAM]

BUILD is a build folder with program and simulator, COUNT the number of disturbances, by default 100,
SECONDS the time for each, by default 24, PROGRAM another program to be put to the test. A PulseAudio
server of its own plays into a null sink whose monitor is recorded; alarms come all the time. The
server is killed, ended, stopped and started again, its sink is unloaded, suspended and muted, and
files are damaged, in random order.

Silence counts while an alarm should sound, nothing is recorded and no "NO HORN" stands in the trace.
Ends with 0 when there were at most 2 s of it at a time and the horn sounded again after each
disturbance.
"""
import array
import json
import os
import pathlib
import random
import shutil
import signal
import struct
import math
import subprocess
import sys
import tempfile
import threading
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
RATE = 8000
BLOCK = RATE // 50  # frames of 20 ms
LOUD = 500
MOST_SILENCE = 2.0
LONGEST_RETURN = 5.0
CHANNELS = 12
# Of those of the base one without a pause.
SOUND = 8


def tone(seconds=1.0, rate=22050):
    """A steady one: what is silent in the record is no pause of the sound."""
    samples = [int(16000 * math.sin(2 * math.pi * 440 * i / rate)) for i in range(int(seconds * rate))]
    data = struct.pack(f"<{len(samples)}h", *samples)
    return (b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " +
            struct.pack("<IHHIIHH", 16, 1, 1, rate, rate * 2, 2, 16) + b"data" + struct.pack("<I", len(data)) + data)


class Server:
    """A sound server with one null sink, that clients find by PULSE_SERVER."""

    def __init__(self, folder):
        self.socket = folder / "pulse.socket"
        self.environment = {**os.environ, "PULSE_SERVER": f"unix:{self.socket}", "HOME": str(folder),
                            "PULSE_RUNTIME_PATH": str(folder / "pulse"), "XDG_RUNTIME_DIR": str(folder)}
        self.log = open(folder / "pulse.log", "ab")
        self.process = None
        self.start()

    def start(self):
        self.socket.unlink(missing_ok=True)
        self.process = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
             f"module-native-protocol-unix auth-anonymous=1 socket={self.socket}", "-L",
             "module-null-sink sink_name=horn"], env=self.environment, stdout=self.log, stderr=self.log)

    def signal(self, number):
        self.process.send_signal(number)
        if number in (signal.SIGKILL, signal.SIGTERM):
            self.process.wait()

    def control(self, *words):
        subprocess.run(["pactl", *words], env=self.environment, stdout=self.log, stderr=self.log, timeout=20,
                       check=False)


class Timeline:
    """Times at which a state began and ended, as seen by several threads."""

    def __init__(self):
        self.spans = []
        self.lock = threading.Lock()

    def set(self, state, now=None):
        with self.lock:
            open_span = bool(self.spans) and self.spans[-1][1] is None
            if state and not open_span:
                self.spans.append([now or time.monotonic(), None])
            elif not state and open_span:
                self.spans[-1][1] = now or time.monotonic()

    def closed(self, end):
        with self.lock:
            return [(start, stop or end) for start, stop in self.spans]

    def holds(self):
        with self.lock:
            return bool(self.spans) and self.spans[-1][1] is None


class Meter(threading.Thread):
    """Records the monitor and notes when it is loud."""

    def __init__(self, server):
        super().__init__(daemon=True)
        self.server = server
        self.last_loud = 0.0
        self.loud = Timeline()
        threading.Thread(target=self.watch, daemon=True).start()

    def watch(self):
        while True:
            time.sleep(0.02)
            if time.monotonic() - self.last_loud > 0.15:
                self.loud.set(False, self.last_loud)

    def run(self):
        while True:
            recorder = subprocess.Popen(
                ["parec", "-d", "horn.monitor", "--raw", f"--rate={RATE}", "--channels=1", "--format=s16le",
                 "--latency-msec=20"], env=self.server.environment, stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL)
            while block := recorder.stdout.read(2 * BLOCK):
                samples = array.array("h", block[:len(block) // 2 * 2])
                if max(samples, default=0) > LOUD:
                    self.last_loud = time.monotonic()
                    self.loud.set(True, self.last_loud)
            recorder.wait()
            time.sleep(0.05)


class Trace(threading.Thread):
    """Follows the trace as it is written."""

    def __init__(self, folder):
        super().__init__(daemon=True)
        self.folder = folder
        self.lines = []
        self.told = Timeline()

    def run(self):
        read = {}
        while True:
            for path in sorted(self.folder.glob("Trace/*.log")):
                with open(path, "rb") as file:
                    file.seek(read.get(path, 0))
                    text = file.read()
                whole = text[:text.rfind(b"\n") + 1]
                read[path] = read.get(path, 0) + len(whole)
                for line in whole.decode("cp1252").splitlines():
                    self.lines.append(line)
                    if "NO HORN" in line:
                        self.told.set("FAULT BEGINS" in line)
            time.sleep(0.02)

    def count(self, words):
        return sum(words in line for line in self.lines)


def wait_until(condition, seconds):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.02)
    return False


class Plant:
    """Program and simulator, and the alarms that they are given."""

    def __init__(self, build, folder, program, environment):
        bus = folder / "bus"
        shutil.copy(program, folder / "korvanelle")
        shutil.copy(build / "korvanelle.cfg", folder)
        demo = json.loads((SOURCE / "data/demo/site.json").read_text())
        channels = [{"number": number, "text": f"Pump {number}", "biblio": 1, "priority": number * 8}
                    for number in range(1, CHANNELS + 1)]
        site = {**demo, "sounds": {str(number * 8): SOUND for number in range(1, CHANNELS + 1)}, "mirrors": [],
                "panels": [{"address": 1, "model": "Q7100", "title": "Pumps", "channels": channels}]}
        (folder / "site.json").write_text(json.dumps(site))
        (folder / "korvanelle.ini").write_text(f"[Ports]\r\nCOM1={bus}\r\n", newline="")
        subprocess.run([build / "tools/mksite/korvanelle-mksite", folder / "site.json", folder / "korvanelle.cfg",
                        folder / "korvanelle.dat"], check=True)
        self.sound = folder / f"AlarmSound{SOUND}.wav"
        self.sound.write_bytes(tone())
        self.simulator = subprocess.Popen(
            [build / "simulator/korvanelle-sim", "--quiet", "--link", bus, "--model", "1=Q7100"],
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        wait_until(bus.exists, 10)
        with open(folder / "program.log", "wb") as log:
            self.program = subprocess.Popen([folder / "korvanelle"], stderr=log,
                                            env={**environment, "QT_QPA_PLATFORM": "offscreen"})
        self.trace = Trace(folder)
        self.trace.start()
        self.wanted = Timeline()
        self.active = set()

    def do(self, command):
        self.simulator.stdin.write(command.encode() + b"\n")
        self.simulator.stdin.flush()

    def alarm(self, rng):
        """One contact changes."""
        channel = rng.randint(1, CHANNELS)
        if channel in self.active:
            self.active.discard(channel)
            self.do(f"normal 1 {channel}")
        else:
            self.active.add(channel)
            self.do(f"active 1 {channel}")

    def acknowledge(self):
        """The horn key of the panel silences it, and a new alarm starts it again."""
        before = self.trace.count("P01:0120")
        self.wanted.set(False)
        self.do("horn 1")
        wait_until(lambda: self.trace.count("P01:0120") > before, 5)
        time.sleep(0.5)
        for channel in sorted(self.active):
            self.do(f"normal 1 {channel}")
        self.active = {1}
        before = self.trace.count("P01-C01 State  ACTIVE")
        self.do("active 1 1")
        if wait_until(lambda: self.trace.count("P01-C01 State  ACTIVE") > before, 10):
            self.wanted.set(True)

    def end(self):
        self.program.send_signal(signal.SIGTERM)
        status = self.program.wait(30)
        self.simulator.terminate()
        return status


class Disturbances:
    def __init__(self, server, plant, rng):
        self.server, self.plant, self.rng = server, plant, rng
        self.kinds = {"server killed": self.kill, "server ended": self.finish, "server stopped": self.stop,
                      "sink unloaded": self.unload, "sink suspended": self.suspend, "sink muted": self.mute,
                      "file damaged": self.damage}

    def kill(self, seconds):
        self.server.signal(signal.SIGKILL)
        time.sleep(seconds)
        self.server.start()

    def finish(self, seconds):
        self.server.signal(signal.SIGTERM)
        time.sleep(seconds)
        self.server.start()

    def stop(self, seconds):
        self.server.signal(signal.SIGSTOP)
        time.sleep(seconds)
        self.server.signal(signal.SIGCONT)

    def unload(self, seconds):
        self.server.control("unload-module", "module-null-sink")
        time.sleep(seconds)
        self.server.control("load-module", "module-null-sink", "sink_name=horn")

    def suspend(self, seconds):
        self.server.control("suspend-sink", "horn", "1")
        time.sleep(seconds)
        self.server.control("suspend-sink", "horn", "0")

    def mute(self, seconds):
        self.server.control("set-sink-mute", "horn", "1")
        time.sleep(seconds)
        self.server.control("set-sink-mute", "horn", "0")

    def damage(self, _):
        whole = tone()
        path = self.plant.sound
        path.write_bytes(self.rng.choice([b"", whole[:30], whole[:len(whole) // 2], b"no wave" * 500,
                                          bytes(len(whole)), whole[:44] + bytes(len(whole) - 44)]))
        if self.rng.random() < 0.2:
            path.unlink()
        self.plant.acknowledge()
        time.sleep(3)
        path.write_bytes(whole)
        self.plant.acknowledge()


def untold(plant, meter, end):
    """Silences of what should sound that nothing tells: (start, length)."""
    covered = sorted(meter.loud.closed(end) + plant.trace.told.closed(end))
    silences = []
    for start, stop in plant.wanted.closed(end):
        at = start
        for begin, finish in covered:
            if finish <= at or begin >= stop:
                continue
            if begin > at:
                silences.append((at, begin - at))
            at = max(at, finish)
        if at < stop:
            silences.append((at, stop - at))
    return silences


def run(build, count, seconds, program, folder):
    rng = random.Random(3)
    server = Server(folder)
    plant = Plant(build, folder, program, server.environment)
    meter = Meter(server)
    meter.start()
    try:
        time.sleep(6)
        plant.acknowledge()
        if not wait_until(meter.loud.holds, 10):
            print("the horn was never heard")
        disturbances = Disturbances(server, plant, rng)
        order = [kind for _ in range(count // len(disturbances.kinds) + 1) for kind in disturbances.kinds][:count]
        rng.shuffle(order)
        spans = []
        for number, kind in enumerate(order, 1):
            begin = time.monotonic()
            for _ in range(rng.randint(1, 3)):
                plant.alarm(rng)
            if rng.random() < 0.3:
                plant.acknowledge()
            time.sleep(rng.random())
            disturbances.kinds[kind](rng.choice([0.1, 0.3, 0.7, 1.5, 3, 6]))
            mended = time.monotonic()
            back = wait_until(meter.loud.holds, LONGEST_RETURN * 2)
            spans.append((kind, begin, mended, time.monotonic() - mended if back else None))
            print(f"{number:3} {kind:15} sounds {spans[-1][3]:.2f} s after" if back else
                  f"{number:3} {kind:15} STAYS SILENT", flush=True)
            time.sleep(max(0.0, begin + seconds - time.monotonic()))
        return tell(spans, untold(plant, meter, time.monotonic()), plant)
    finally:
        server.signal(signal.SIGCONT)
        server.signal(signal.SIGKILL)
        print(f"program ended with {plant.end()}")


def tell(spans, silences, plant):
    ends = [begin for _, begin, _, _ in spans[1:]] + [float("inf")]
    print(f"\n{'disturbance':16}{'count':>6}{'not back':>10}{'longest return':>16}{'longest untold silence':>24}")
    for kind in sorted({span[0] for span in spans}):
        mine = [(span, end) for span, end in zip(spans, ends) if span[0] == kind]
        longest = max((length for start, length in silences for span, end in mine if span[1] <= start < end),
                      default=0)
        returns = [span[3] for span, _ in mine if span[3] is not None]
        print(f"{kind:16}{len(mine):6}{len(mine) - len(returns):10}{max(returns, default=0):15.2f}s{longest:23.2f}s")
    worst = max((length for _, length in silences), default=0)
    missing = sum(span[3] is None or span[3] > LONGEST_RETURN for span in spans)
    print(f"longest untold silence {worst:.2f} s; told {plant.trace.count('FAULT BEGINS NO HORN')} times; "
          f"{plant.trace.count('NOT PLAYABLE')} times by another sound; {missing} of {len(spans)} not back")
    return worst <= MOST_SILENCE and missing == 0


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    build = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 100
    seconds = float(sys.argv[3]) if len(sys.argv) > 3 else 24
    program = pathlib.Path(sys.argv[4]).resolve() if len(sys.argv) > 4 else build / "src/korvanelle"
    with tempfile.TemporaryDirectory() as folder:
        good = run(build, count, seconds, program, pathlib.Path(folder))
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()

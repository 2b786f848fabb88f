#!/usr/bin/env python3
"""Runs the program for long on a simulated plant with faults and tells whether it stays the same.

usage: plant.py BUILD [MINUTES] [FOLDER]

BUILD is a build folder with program and simulator. Sixteen modules of all models report about 50
events a minute; modules fall silent and come back, replies come late, spoiled, cut, too long or from
another address. FOLDER, by default a temporary one, keeps the files of the run and a picture of the
screen at its end: a dialog that an error has left would stand on it.

Ends with 0 when handles and threads are as many as they were, memory has not grown by more than
2 MB and the program ran to its orderly end.
"""
import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
MODELS = ["Q7100"] * 6 + ["Q7000"] * 4 + ["P5000"] * 3 + ["P5500"] * 2 + ["Q6200XT"]
CHANNELS = 12
EVENTS_A_MINUTE = 50
# A change of a contact makes more than one event, a fault of the line makes some as well.
COMMANDS_A_MINUTE = 38
FAULTS_A_MINUTE = 3
SETTLED_MINUTES = 3
PORT = 5911
MOST_GROWTH_KB = 2048


def scenario(minutes, rng):
    """Contacts come and go, now and then a key is pressed; each fault of the line ends."""
    timeline = []
    active = set()

    def add(at, command):
        timeline.append({"at": round(at, 3), "do": command})

    wired = [address for address, model in enumerate(MODELS, 1) if model != "Q6200XT"]
    for _ in range(int(minutes * COMMANDS_A_MINUTE)):
        at = 10 + rng.random() * minutes * 60
        timeline.append({"at": round(at, 3), "do": None})
    timeline.sort(key=lambda entry: entry["at"])
    for entry in timeline:
        address, channel = rng.choice(wired), rng.randint(1, CHANNELS)
        if rng.random() < 0.15:
            entry["do"] = f"ack {rng.choice(wired)}"
        elif (address, channel) in active:
            active.discard((address, channel))
            entry["do"] = f"normal {address} {channel}"
        else:
            active.add((address, channel))
            kind = rng.choice(["active", "active", "fault first", "fault second", "fault cable"])
            verb, _, contact = kind.partition(" ")
            entry["do"] = f"{verb} {address} {channel} {contact}".strip()
    for _ in range(int(minutes * FAULTS_A_MINUTE)):
        at = 10 + rng.random() * minutes * 60
        address = rng.randint(1, len(MODELS))
        fault = rng.choice(["mute", "corrupt", "delay", "surplus", "short", "alien"])
        if fault == "mute":
            add(at, f"mute {address}")
            add(at + rng.uniform(1, 20), f"unmute {address}")
        elif fault == "corrupt":
            add(at, f"corrupt {address} {rng.randint(1, 3)}")
        elif fault == "delay":
            add(at, f"delay {address} {rng.choice([20, 60, 300])}")
            add(at + rng.uniform(1, 10), f"delay {address} 0")
        else:
            add(at, f"{fault} {address}")
    timeline.sort(key=lambda entry: entry["at"])
    modules = [{"address": address, "model": model, "title": f"Plant {address}"}
               for address, model in enumerate(MODELS, 1)]
    return {"modules": modules, "timeline": timeline}


def site():
    panels = []
    for address, model in enumerate(MODELS, 1):
        count = 0 if model == "Q6200XT" else CHANNELS
        panels.append({"address": address, "model": model, "title": f"Plant {address}", "channels": [
            {"number": number, "text": f"Unit {address}.{number}", "biblio": number % 10 + 1,
             "priority": 10 * (number % 5) + 1} for number in range(1, count + 1)]})
    mirrors = [{"from": f"{address}:{channel}", "to": f"{len(MODELS)}:{address}", "type": 1 + channel % 2}
               for address in range(1, 11) for channel in (1, 2)]
    demo = json.loads((SOURCE / "data/demo/site.json").read_text())
    return {**demo, "panels": panels, "mirrors": mirrors}


def lay_out(build, folder, minutes):
    bus = folder / "bus"
    (folder / "scenario.json").write_text(json.dumps(scenario(minutes, random.Random(1))))
    (folder / "site.json").write_text(json.dumps(site()))
    for name in ("src/korvanelle", "korvanelle.cfg"):
        shutil.copy(build / name, folder)
    (folder / "korvanelle.ini").write_text(f"[Ports]\r\nCOM1={bus}\r\n", newline="")
    subprocess.run([build / "tools/mksite/korvanelle-mksite", folder / "site.json",
                    folder / "korvanelle.cfg", folder / "korvanelle.dat"], check=True)
    loopback = folder / "loopback.so"
    subprocess.run(["cc", "-shared", "-fPIC", "-O1", "-o", loopback, SOURCE / "scripts/loopback.c", "-ldl"],
                   check=True)
    return bus, loopback


def sample(process):
    """Handles, threads, resident kB and seconds of CPU of a process."""
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    fields = dict(line.split(":", 1) for line in status.splitlines())
    times = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return {"handles": len(os.listdir(f"/proc/{process.pid}/fd")), "threads": int(fields["Threads"]),
            "kB": int(fields["VmRSS"].split()[0]),
            "cpu": (int(times[11]) + int(times[12])) / os.sysconf("SC_CLK_TCK")}


def lines_of(folder, pattern):
    return [line for path in sorted(folder.glob(pattern))
            for line in path.read_bytes().decode("cp1252").split("\r\n") if line]


def watch(program, minutes, folder):
    samples = []
    end = time.monotonic() + minutes * 60
    while time.monotonic() < end and program.poll() is None:
        time.sleep(min(10, max(0.0, end - time.monotonic())))
        if program.poll() is None:
            samples.append(sample(program))
    if program.poll() is None:
        subprocess.run([sys.executable, SOURCE / "scripts/screenshot.py", folder / "end.png", str(PORT)],
                       check=False)
    return samples


def tell(samples, folder, minutes, status):
    history = lines_of(folder, "Histo*.his")
    numbers = sorted(int(line[20:26]) for line in lines_of(folder, "Trace/*.log") if line[20:26].strip().isdigit())
    # Threads of the start end after half a minute of rest: peaks are compared.
    settled = min(len(samples) - 1, int(SETTLED_MINUTES * 6))
    first = {name: max(entry[name] for entry in samples[:settled + 1]) for name in samples[0]}
    later = {name: max(entry[name] for entry in samples[settled:]) for name in samples[0]}
    print(f"{minutes:g} minutes: {len(numbers)} events, {len(numbers) / minutes:.1f} a minute, "
          f"{len(history)} lines of history")
    print(f"event numbers: {numbers[0]} to {numbers[-1]}, {numbers[-1] - numbers[0] + 1 - len(numbers)} missing")
    for name in ("handles", "threads", "kB"):
        print(f"{name}: at most {first[name]} in the first {SETTLED_MINUTES} minutes, {later[name]} later")
    print(f"CPU: {100 * later['cpu'] / (minutes * 60):.1f} % of one core; ended with {status}")
    return (status == 0 and later["handles"] <= first["handles"] and later["threads"] <= first["threads"] and
            later["kB"] <= first["kB"] + MOST_GROWTH_KB)


def run(build, minutes, folder):
    bus, loopback = lay_out(build, folder, minutes)
    with open(folder / "simulator.log", "wb") as log, open(folder / "program.log", "wb") as err:
        simulator = subprocess.Popen([build / "simulator/korvanelle-sim", "--quiet", "--link", bus, "--scenario",
                                      folder / "scenario.json"], stdin=subprocess.PIPE, stdout=log)
        try:
            while not bus.exists():
                time.sleep(0.05)
            environment = {**os.environ, "QT_QPA_PLATFORM": f"vnc:size=800x600:port={PORT}",
                           "LD_PRELOAD": str(loopback)}
            program = subprocess.Popen([folder / "korvanelle"], env=environment, stderr=err)
            samples = watch(program, minutes, folder)
            if program.poll() is None:
                program.send_signal(signal.SIGTERM)
            return tell(samples, folder, minutes, program.wait(30))
        finally:
            simulator.terminate()


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    minutes = float(sys.argv[2]) if len(sys.argv) > 2 else 60
    build = pathlib.Path(sys.argv[1]).resolve()
    if len(sys.argv) > 3:
        folder = pathlib.Path(sys.argv[3]).resolve()
        folder.mkdir(parents=True)
        good = run(build, minutes, folder)
    else:
        with tempfile.TemporaryDirectory() as temporary:
            good = run(build, minutes, pathlib.Path(temporary))
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()

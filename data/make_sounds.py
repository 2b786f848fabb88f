#!/usr/bin/env python3
"""Writes the factory horn sounds, sounds/<number>.wav, 16-bit mono at 22050 Hz.

The horn plays a sound in a loop until it is silenced, so each one starts and ends in silence:
every tone has an envelope that is zero at both its ends, and the seam of the loop can't click.
Urgency grows with the number; number 0 is silence. The output depends on nothing but this file.
"""

import array
import math
import pathlib
import sys
import wave

RATE = 22050  # samples per second
EDGE = 0.006  # seconds of rise and fall of a plain tone, short enough to sound abrupt
PEAK = 26000  # loudest sample, under the 16-bit limit so that cheap speakers don't clip

SINE = (1.0,)
CHIME = (1.0, 0.5, 0.0, 0.25)
REED = (1.0, 0.0, 0.33, 0.0, 0.2, 0.0, 0.14)
HORN = (1.0, 0.7, 0.5, 0.35, 0.25, 0.15)


def rest(seconds):
    return [0.0] * round(seconds * RATE)


def edges(position, count):
    """Raised-cosine rise and fall, 0 at the first and the last sample."""
    ramp = EDGE * RATE
    distance = min(position, count - 1 - position)
    return 1.0 if distance >= ramp else 0.5 - 0.5 * math.cos(math.pi * distance / ramp)


def sweep(seconds, frequency, partials=SINE, level=1.0, fade=0.0):
    """A tone whose frequency in Hz is a function of the time's fraction, 0 to 1.

    `fade` is the number of e-folds by which a struck tone dies away.
    """
    count = round(seconds * RATE)
    scale = level / sum(partials)
    phase = 0.0
    samples = []
    for i in range(count):
        value = sum(a * math.sin(phase * (n + 1)) for n, a in enumerate(partials) if a)
        samples.append(value * scale * edges(i, count) * math.exp(-fade * i / count))
        phase += 2.0 * math.pi * frequency(i / count) / RATE
    return samples


def tone(seconds, hertz, partials=SINE, level=1.0, fade=0.0):
    return sweep(seconds, lambda _: hertz, partials, level, fade)


def rise_and_fall(low, high):
    return lambda t: low * (high / low) ** (0.5 - 0.5 * math.cos(2.0 * math.pi * t))


def rising(low, high):
    return lambda t: low * (high / low) ** t


def sounds():
    """The samples by sound number, -1 to 1."""
    return {
        # 0: silence, for priorities that shall not sound.
        0: rest(1.0),
        # 1 to 3: notices. One chime, two falling, three rising.
        1: tone(1.4, 660, CHIME, 0.6, 5) + rest(1.0),
        2: tone(0.6, 784, CHIME, 0.7, 3) + tone(0.9, 622, CHIME, 0.7, 4) + rest(0.7),
        3: tone(0.3, 523, CHIME, 0.7, 2) + tone(0.3, 659, CHIME, 0.7, 2)
        + tone(0.7, 784, CHIME, 0.7, 4) + rest(0.7),
        # 4 to 7: alarms. Slow beeps, pairs of beeps, a pulsed horn, fast beeps.
        4: tone(0.4, 800, REED, 0.8) + rest(0.6),
        5: tone(0.15, 950, REED, 0.8) + rest(0.1) + tone(0.15, 950, REED, 0.8) + rest(0.6),
        6: (tone(0.4, 311, HORN, 0.9) + rest(0.2)) * 2,
        7: (tone(0.1, 1250, REED, 0.9) + rest(0.1)) * 5,
        # 8 to 12: urgent. Slow and fast two-tone, siren, yelp, and a horn that hardly pauses.
        8: tone(0.5, 587, REED) + tone(0.5, 440, REED),
        9: (tone(0.12, 988, REED) + tone(0.12, 740, REED)) * 5,
        10: sweep(1.6, rise_and_fall(450, 1300), REED),
        11: sweep(0.2, rising(600, 1600), REED) * 6,
        12: tone(1.9, 392, HORN) + rest(0.1),
    }


def write(path, samples):
    data = array.array("h", (round(PEAK * s) for s in samples))
    if sys.byteorder == "big":
        data.byteswap()
    with wave.open(str(path), "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(data.tobytes())


def main():
    default = pathlib.Path(__file__).resolve().parent / "sounds"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default
    folder.mkdir(parents=True, exist_ok=True)
    for number, samples in sounds().items():
        write(folder / f"{number}.wav", samples)


if __name__ == "__main__":
    main()

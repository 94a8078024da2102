#!/usr/bin/env python3
"""Makes the built-in expansion sounds beside this script, from sine waves and noise alone.

Mono, 16 bits, 22.05 kHz, each shorter than half a second. Running it again gives the same bytes.
"""

import math
import random
import struct
import wave
from pathlib import Path

RATE = 22050
PEAK = 0.5  # of full scale: a sound at every expansion must not startle


def render(seconds, voice):
    return [voice(index / RATE) for index in range(int(seconds * RATE))]


def mix(seconds, *voices):
    """Voices are (start in seconds, function of the time since that start)."""
    return render(seconds, lambda t: sum(voice(t - start) for start, voice in voices if t >= start))


def bell(frequency, decay, partials=((1, 1.0), (2.76, 0.4), (5.4, 0.15))):
    """A struck bar: inharmonic partials, the higher ones fading faster."""
    return lambda t: sum(
        level * math.exp(-t * decay * ratio) * math.sin(math.tau * frequency * ratio * t)
        for ratio, level in partials
    )


def glide(start, end, seconds, decay):
    """A sine whose pitch moves from start to end."""

    def voice(t):
        turns = end * t + (start - end) * seconds / 3 * (1 - math.exp(-3 * t / seconds))
        return math.exp(-t * decay) * math.sin(math.tau * turns)

    return voice


def knock(decay, seed):
    """A burst of noise, dulled by a running mean."""
    noise = random.Random(seed)
    state = [0.0]

    def voice(t):
        state[0] += 0.35 * (noise.uniform(-1, 1) - state[0])
        return 2 * math.exp(-t * decay) * state[0]

    return voice


def wobble(carrier, modulator, depth, decay):
    """Frequency modulation with a depth that fades along."""
    return lambda t: math.exp(-t * decay) * math.sin(
        math.tau * carrier * t + depth * math.exp(-t * 6) * math.sin(math.tau * modulator * t)
    )


SOUNDS = {
    # Two metal parts that snap together.
    "Magnet": mix(0.3, (0, knock(180, 1)), (0, glide(500, 1400, 0.05, 30)),
                  (0.055, knock(140, 2)), (0.055, bell(1250, 22))),
    # A raised eyebrow.
    "Brow": mix(0.28, (0, glide(260, 620, 0.16, 12))),
    # Dust from a wand.
    "Fairy": mix(0.48, *((0.05 * step, bell(pitch, 9)) for step, pitch in
                         enumerate((1047, 1319, 1568, 2093, 2637)))),
    # A door on a space ship.
    "SiFi": mix(0.42, (0, wobble(420, 97, 7, 8)), (0.05, glide(1800, 300, 0.3, 9))),
    # A finger on wood.
    "Tap": mix(0.12, (0, knock(90, 3)), (0, glide(420, 180, 0.04, 55))),
}


def save(path, samples):
    top = max(abs(sample) for sample in samples)
    fade = int(0.01 * RATE)  # an abrupt end would click
    frames = []
    for index, sample in enumerate(samples):
        level = PEAK / top * min(1, (len(samples) - index) / fade)
        frames.append(round(sample * level * 32767))
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(struct.pack(f"<{len(frames)}h", *frames))


for name, samples in SOUNDS.items():
    save(Path(__file__).resolve().parent / f"{name}.wav", samples)

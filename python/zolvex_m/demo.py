"""zolvex demo: writes a generated two-channel capture, as an oscilloscope
would record it, and runs every analysis of the tool on it."""
from __future__ import annotations

import os

import numpy as np

import zolvex_m as z
from . import cli

RATE = 1e6
SCALE = 10.0 / 32768  # volts per code: +-10 V full scale in int16


def generate(path: str, frames: int) -> None:
    """Channel 0: a 1 kHz logic signal (0 to 5 V) with 50 mV of noise.
    Channel 1: 1 V at 50 kHz plus 0.25 V at 120 kHz, with 20 mV of noise."""
    volts = 1 / SCALE
    clock = z.waveform("square", frames, 1e3 / RATE, 2.5 * volts, 2.5 * volts, dtype="int16")
    z.add_noise(clock, 0.05 * volts, -32768, 32767, seed=1)
    tones = z.add(z.waveform("cosine", frames, 50e3 / RATE, 1.0 * volts),
                  z.waveform("cosine", frames, 120e3 / RATE, 0.25 * volts, phase=0.1))
    tones = np.round(tones).astype(np.int16)
    z.add_noise(tones, 0.02 * volts, -32768, 32767, seed=2)
    interleaved = np.empty(2 * frames, dtype=np.int16)
    interleaved[0::2], interleaved[1::2] = clock, tones
    interleaved.tofile(path)


def run(directory: str, frames: int = 1 << 20) -> None:
    os.makedirs(directory, exist_ok=True)
    capture = os.path.join(directory, "capture.i16")
    generate(capture, frames)
    raw = [capture, "--dtype", "i16", "--channels", "2", "--rate", f"{RATE:g}", "--scale", repr(SCALE)]
    out = lambda name: os.path.join(directory, name)
    steps = [
        ("statistics and histograms", ["info", *raw, "--plot", out("histogram.png")]),
        ("rising edges of channel 0 (arm 1 V, fire 2.5 V)",
         ["trigger", *raw, "--volts", "--level", "1.0", "2.5", "--show", "5", "--plot", out("trigger.png")]),
        ("spectrum of channel 1", ["spectrum", *raw, "--channel", "1", "--plot", out("spectrum.png")]),
        ("80 kHz low-pass on both channels",
         ["filter", *raw, "--kind", "butter", "--order", "6", "--freq", "80e3", "-o", out("filtered.npy"),
          "--plot", out("filter.png")]),
        ("spectrum of channel 1 after the low-pass",
         ["spectrum", out("filtered.npy"), "--rate", f"{RATE:g}", "--channel", "1", "--plot", out("spectrum-filtered.png")]),
    ]
    print(f"zolvex demo: {frames} frames of 2 channels at {RATE:g} Hz in {capture}")
    for title, argv in steps:
        print(f"\n== {title}: zolvex {' '.join(argv)}")
        if cli.main(argv) != 0:
            raise SystemExit(f"zolvex demo: step '{title}' failed")
    print(f"\nplots written to {directory}/: histogram.png trigger.png spectrum.png filter.png spectrum-filtered.png")

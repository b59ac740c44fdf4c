#!/usr/bin/python3
"""Draws the flagship's harmonics against the level at the input jack.

A 1 kHz sine at rising level goes through the built-in preset 2 in build/bin/tarvek-render, all knobs of the
normal channel at panel 5, the vibrato channel off. The line feed without a cabinet is the amp's output over
its full-power voltage, so that times 101 it is volts; the speaker curve is in it.

    /usr/bin/python3 tools/pictures/flagship_harmonics.py docs/pictures/flagship_harmonics.png
"""

import pathlib
import subprocess
import sys
import tempfile

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
import scipy.io.wavfile as wav

RATE_HZ = 44100
FUNDAMENTAL_HZ = 1000.0
FULL_SCALE_VOLTS = 1.0  # handed to the renderer, so that a sample is a volt at the jack
FULL_POWER_VOLTS = 101.0
KNOB = 4.0 / 9.0  # panel 5
HARMONICS = 5


def render(millivolts, folder):
    t = np.arange(RATE_HZ) / RATE_HZ
    source, target = folder / "in.wav", folder / "out.wav"
    wav.write(source, RATE_HZ, (1e-3 * millivolts * np.sin(2 * np.pi * FUNDAMENTAL_HZ * t)).astype(np.float32))
    knobs = [f"idNormal{name}={KNOB}" for name in ("Vol", "Bass", "Mid", "Treb")] + ["idVibratoVol=0"]
    command = ["build/bin/tarvek-render", "--slot", "2", "--input-voltage", str(FULL_SCALE_VOLTS)]
    for knob in knobs:
        command += ["--set", knob]
    subprocess.run(command + ["--in", source, "--out", target], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    return wav.read(target)[1][:, 1].astype(float) * FULL_POWER_VOLTS


def harmonics(signal):
    """Peak volts of the harmonics over the last half second, a whole number of periods."""
    tail = signal[-RATE_HZ // 2:]
    t = np.arange(len(tail)) / RATE_HZ
    return [2 * abs(np.mean(tail * np.exp(-2j * np.pi * k * FUNDAMENTAL_HZ * t))) for k in range(1, HARMONICS + 1)]


def main():
    levels = np.geomspace(1.0, 600.0, 26)
    with tempfile.TemporaryDirectory() as name:
        table = np.array([harmonics(render(level, pathlib.Path(name))) for level in levels])
    figure, axes = plt.subplots(figsize=(7, 4.2))
    for k in range(HARMONICS):
        axes.loglog(levels, table[:, k], label="fundamental" if k == 0 else f"harmonic {k + 1}")
    axes.set(xlabel="input, mV peak at the jack", ylabel="amp output, V peak", ylim=(1e-4, 100),
             title="Normal channel, all knobs at 5, 1 kHz")
    axes.grid(True, which="both", alpha=0.25)
    axes.legend()
    figure.tight_layout()
    figure.savefig(sys.argv[1], dpi=110)
    for level, row in zip(levels, table):
        thd = 100 * np.sqrt(np.sum(row[1:] ** 2)) / row[0]
        print(f"{level:7.1f} mV  {row[0]:7.3f} V  THD {thd:5.2f} %  " + " ".join(f"{v:.2e}" for v in row[1:]))


if __name__ == "__main__":
    main()

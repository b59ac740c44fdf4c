#!/usr/bin/python3
"""Draws the gain of the flagship's vibrato against time at three speeds, measured and by its law.

A 1 kHz sine of 1 mV, so quiet that the amp is linear, goes through the vibrato channel of the built-in preset 2
in build/bin/tarvek-render, once with the vibrato at full intensity and once with it muted. The ratio of the two
line feeds' envelopes is the cell's gain. The law is computed beside it in double precision.

    /usr/bin/python3 tools/pictures/flagship_vibrato.py docs/pictures/flagship_vibrato.png
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
import scipy.signal

RATE_HZ = 44100
TONE_HZ = 1000.0
JACK_VOLTS = 1e-3
SECONDS = 2.5
SHOWN = (1.0, 2.0)  # s, behind the amp's start
SPEEDS = (0.0, 0.5, 1.0)


def render(folder, controls):
    t = np.arange(int(SECONDS * RATE_HZ)) / RATE_HZ
    source, target = folder / "in.wav", folder / "out.wav"
    wav.write(source, RATE_HZ, (JACK_VOLTS * np.sin(2 * np.pi * TONE_HZ * t)).astype(np.float32))
    command = ["build/bin/tarvek-render", "--slot", "2", "--input-voltage", "1", "--settle", "0"]
    for control in ("idNormalVol=0", "idVibratoVol=0.444", "idReverb=0", "idCabinet=none") + controls:
        command += ["--set", control]
    subprocess.run(command + ["--in", source, "--out", target], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    line = wav.read(target)[1][:, 1].astype(float)
    band = scipy.signal.butter(2, (700, 1400), "bandpass", fs=RATE_HZ, output="sos")
    return np.abs(scipy.signal.hilbert(scipy.signal.sosfiltfilt(band, line)))


def law(speed):
    """The cell's gain from the first sample on, by its formulas."""
    hz = 3.22 + (9.9 - 3.22) * speed
    threshold = 0.86 - 0.06 * (81**speed - 1) / 80
    slope = -12.6 - 5.4 * np.log(1 + speed * 1012.99) / np.log(1013.99)
    lamp_floor = 0.14125374 + (0.19054608 - 0.14125374) * speed
    rise, fall = 1 / (RATE_HZ * 0.0238), 1 / (RATE_HZ * (0.0732 - 0.02 * speed))
    lit = np.sin(2 * np.pi * hz * np.arange(1, int(SECONDS * RATE_HZ) + 1) / RATE_HZ) > threshold
    envelope = np.empty(len(lit))
    e = 0.0
    for n, is_lit in enumerate(lit):
        e = min(max(e + (rise if is_lit else -fall), 0.0), 1.0)
        envelope[n] = e
    z = np.where(lit, 0.5 - envelope, envelope - 0.5) * slope
    r = 1.04 / (1 + np.exp(z)) ** (1 / 2.4) - 0.019
    return hz, 1 - np.clip(np.where(lit, 1 - r, r) * (1 - lamp_floor), 0, 1)


def main():
    first, last = (int(s * RATE_HZ) for s in SHOWN)
    t = np.arange(first, last) / RATE_HZ
    figure, axes = plt.subplots(len(SPEEDS), figsize=(8, 6.4), sharex=True, sharey=True)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        muted = render(folder, ("idTremoloMute=true",))
        for axis, speed in zip(axes, SPEEDS):
            measured = render(folder, (f"idSpeed={speed}", "idIntensity=1")) / muted
            hz, expected = law(speed)
            axis.plot(t, expected[first:last], color="0.7", linewidth=4, label="law")
            axis.plot(t, measured[first:last], linewidth=1.2, label="measured through the amp")
            axis.set(ylabel="gain", ylim=(0, 1.1), title=f"speed {speed:g}: {hz:.2f} Hz")
            axis.grid(True, alpha=0.25)
            span = slice(first, last)
            print(f"speed {speed:g}: {hz:.2f} Hz, gain {measured[span].min():.3f} to {measured[span].max():.3f}, "
                  f"law {expected[span].min():.3f} to {expected[span].max():.3f}, mean difference "
                  f"{np.mean(np.abs(measured - expected)[span]):.4f}")
    figure.legend(*axes[0].get_legend_handles_labels(), loc="upper center", ncol=2)
    axes[-1].set(xlabel="time, s")
    figure.tight_layout(rect=(0, 0, 1, 0.95))
    figure.savefig(sys.argv[1], dpi=110)


if __name__ == "__main__":
    main()

"""Pictures of the tank's response: the samples, the chirps as a spectrogram, the decay per band."""

import numpy as np
from scipy.signal import spectrogram

import spring_tank_measures as measures
from valve_pictures import pyplot_without_screen

RATE_HZ = measures.RATE_HZ
BANDS_HZ = (250.0, 500.0, 1000.0, 2000.0, 4000.0)


def draw(directory, h):
    pyplot = pyplot_without_screen()
    draw_response(pyplot, directory / "spring-tank-response.png", h)
    draw_chirps(pyplot, directory / "spring-tank-chirps.png", h)
    draw_decay(pyplot, directory / "spring-tank-decay.png", h)


def draw_response(pyplot, path, h):
    figure, axes = pyplot.subplots(2, 1, figsize=(9.0, 5.0))
    for axis, seconds in zip(axes, (0.25, 3.0)):
        count = int(seconds * RATE_HZ)
        axis.plot(np.arange(count) / RATE_HZ, h[:count] / np.abs(h).max(), linewidth=0.4)
        axis.set(xlim=(0.0, seconds), ylabel="of the peak")
        axis.grid(alpha=0.3)
    axes[1].set_xlabel("s")
    figure.tight_layout()
    figure.savefig(path, dpi=75)
    pyplot.close(figure)


def draw_chirps(pyplot, path, h):
    count = int(0.4 * RATE_HZ)
    f, t, power = spectrogram(h[:count], RATE_HZ, "hann", nperseg=256, noverlap=244, nfft=1024)
    level = 10.0 * np.log10(np.maximum(power, 1e-20))
    figure, axis = pyplot.subplots(figsize=(9.0, 4.5))
    mesh = axis.pcolormesh(1e3 * t, f / 1e3, level, vmin=level.max() - 60.0, vmax=level.max(), cmap="magma", shading="auto")
    marks = (500.0, 1000.0, 2000.0, 3000.0, 3600.0)
    arrivals = [1e3 * measures.arrival_seconds(h, hz) for hz in marks]
    axis.plot(arrivals, np.array(marks) / 1e3, "o", color="cyan", markersize=4)
    axis.set(xlabel="ms", ylabel="kHz", ylim=(0.0, 6.0))
    figure.colorbar(mesh, label="dB")
    figure.tight_layout()
    figure.savefig(path, dpi=75)
    pyplot.close(figure)


def draw_decay(pyplot, path, h):
    figure, axis = pyplot.subplots(figsize=(9.0, 4.5))
    for hz in BANDS_HZ:
        decay = measures.decay_db(h, hz)[:: RATE_HZ // 100]
        label = f"{hz:.0f} Hz: T60 {measures.t60_seconds(h, hz):.2f} s"
        axis.plot(np.arange(len(decay)) / 100.0, decay, label=label)
    axis.set(xlim=(0.0, 4.0), ylim=(-90.0, 3.0), xlabel="s", ylabel="energy to come, dB")
    axis.grid(alpha=0.3)
    axis.legend()
    figure.tight_layout()
    figure.savefig(path, dpi=75)
    pyplot.close(figure)

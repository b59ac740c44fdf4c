"""What is measured on a tank's response: first echo, arrival and decay by band, echo density.

The echo density is that of J. S. Abel, P. Huang, "A simple, robust measure of reverberation echo density", AES 121,
2006: the share of samples beyond one standard deviation in a window, over the share that a Gaussian has, 0.3173.
"""

import numpy as np

RATE_HZ = 44100
GAUSSIAN_OUTSIDE = 0.3173105
FIRST_CROSSINGS_SECONDS = 0.080  # all springs have been crossed once, none three times


def band(h, centre_hz, octaves):
    """The response within a band, as an analytic signal; raised-cosine edges, no phase."""
    size = 1 << int(np.ceil(np.log2(len(h))) + 1)
    f = np.fft.fftfreq(size, 1.0 / RATE_HZ)
    distance = np.full(size, np.inf)
    distance[f > 0.0] = np.abs(np.log2(f[f > 0.0] / centre_hz)) / (0.5 * octaves)
    weight = np.where(distance < 2.0, np.cos(0.25 * np.pi * np.minimum(distance, 2.0)) ** 2, 0.0)
    return np.fft.ifft(2.0 * weight * np.fft.fft(h, size))[: len(h)]


def first_echo_seconds(h):
    """The first sample within 20 dB of the largest."""
    return np.nonzero(np.abs(h) >= 0.1 * np.abs(h).max())[0][0] / RATE_HZ


def arrival_seconds(h, hz):
    """Where the envelope of a third of an octave is largest in the first crossing of the shortest spring."""
    envelope = np.abs(band(h[: int(FIRST_CROSSINGS_SECONDS * RATE_HZ)], hz, 1.0 / 3.0))
    return np.argmax(envelope) / RATE_HZ


def decay_db(h, hz):
    """Energy still to come in an octave, in dB of all of it (M. R. Schroeder, J. Acoust. Soc. Am. 37, 1965)."""
    energy = np.cumsum(np.abs(band(h, hz, 1.0)[::-1]) ** 2)[::-1]
    return 10.0 * np.log10(np.maximum(energy / energy[0], 1e-20))


def t60_seconds(h, hz):
    """From the slope between -5 and -35 dB."""
    decay = decay_db(h, hz)
    from_sample, to_sample = (int(np.argmax(decay <= level)) for level in (-5.0, -35.0))
    slope = np.polyfit(np.arange(from_sample, to_sample) / RATE_HZ, decay[from_sample:to_sample], 1)[0]
    return -60.0 / slope


def echo_density(h, seconds, window_seconds=0.030):
    half = int(0.5 * window_seconds * RATE_HZ)
    at = int(seconds * RATE_HZ)
    x = h[at - half : at + half + 1]
    weight = np.hanning(len(x))
    weight /= weight.sum()
    deviation = np.sqrt(np.sum(weight * x**2))
    return np.sum(weight * (np.abs(x) > deviation)) / GAUSSIAN_OUTSIDE

"""An electric guitar's strings, pick and pickup, as the cable would carry them.

Model, an extended plucked string
  K. Karplus, A. Strong, "Digital synthesis of plucked-string and drum timbres", Computer Music Journal 7(2), 1983
  D. Jaffe, J. O. Smith, "Extensions of the Karplus-Strong plucked-string algorithm", Computer Music Journal 7(2), 1983
Each string is a loop of one period with third-order Lagrange interpolation, so that its length may move (bends,
vibrato), and a symmetric three-tap loss filter of zero phase, so that it stays in tune. It vibrates in two
polarisations a little apart in pitch and decay, whose beating is what a held note lives from. The wave is the
velocity that a magnetic pickup senses: a pick at the fraction p of the length starts a rectangle of p periods, whose
harmonics are sin(pi k p) / k; the pickup at the fraction q hears it minus its echo of q periods. Coil and cable make
a two-pole low-pass.
"""

import dataclasses

import numpy as np
from scipy.signal import lfilter

RATE_HZ = 44100
BLOCK = 32  # samples computed at once: less than the shortest period
HIGHEST_HZ = RATE_HZ / (BLOCK + 6.0)

# Two polarisations: share of the pluck, cents apart, share of the decay time.
POLARISATIONS = ((0.72, 0.0, 1.0), (0.28, 1.1, 1.7))
RELEASE_SECONDS = 0.12  # T60 once the hand damps the string


@dataclasses.dataclass(frozen=True)
class Guitar:
    """The instrument and how it is picked. Positions as fractions of the string's length, from the bridge."""

    pick_position: float
    pickup_position: float
    pick_width_seconds: float  # of the plectrum's edge on the string: the wider, the duller
    pick_noise: float  # of the pluck, while the plectrum scrapes
    resonance_hz: float = 4100.0
    resonance_q: float = 2.2


@dataclasses.dataclass(frozen=True)
class Note:
    """One plucked note. bend is ((seconds from the pluck, semitones), ...), joined by smooth steps."""

    start: float
    seconds: float
    midi: float
    level: float = 1.0
    sustain: float = 1.0  # 1 rings freely; 0.06 is a palm on the bridge
    bend: tuple = ((0.0, 0.0),)
    vibrato: tuple = (0.0, 0.0, 0.0)  # Hz, semitones, seconds until it begins


def frequency(midi):
    return 440.0 * 2.0 ** ((np.asarray(midi) - 69.0) / 12.0)


def decay_seconds(hz):
    """T60 of the fundamental, and of what lies near 5 kHz: wound strings ring longer."""
    return 7.5 * (110.0 / hz) ** 0.45, 1.3 * (110.0 / hz) ** 0.25


def pitch(note, seconds):
    """Semitones above the fretted pitch at each moment."""
    times, steps = np.array(note.bend).T
    out = np.full_like(seconds, steps[0])
    for t0, t1, s0, s1 in zip(times, times[1:], steps, steps[1:]):
        u = np.clip((seconds - t0) / (t1 - t0), 0.0, 1.0)
        out += (s1 - s0) * u * u * (3.0 - 2.0 * u)
    hz, depth, wait = note.vibrato
    if depth:
        fade = np.clip((seconds - wait) / 0.25, 0.0, 1.0)
        out += depth * fade * 0.5 * (1.0 - np.cos(2.0 * np.pi * hz * np.maximum(seconds - wait, 0.0)))
    return out


def pluck(guitar, period, level, sustain, noise):
    """One excitation, longer than a period: the rectangle of the pick, softened, and the plectrum's scrape."""
    wide = guitar.pick_position * period
    edge = np.arange(int(3.0 * period))
    wave = np.clip(edge + 0.5, 0.0, 1.0) * np.clip(wide - edge, 0.0, 1.0)
    wave[edge < period] -= wave.sum() / np.ceil(period)
    # A light stroke is duller than a strong one, a palm duller still.
    seconds = guitar.pick_width_seconds * (1.6 - 0.6 * level) * (1.0 + 0.5 * (sustain < 0.5))
    window = np.hanning(max(3, int(seconds * RATE_HZ) + 2))
    wave = np.convolve(wave, window / window.sum())
    scrape = noise.standard_normal(int(0.006 * RATE_HZ)) * np.hanning(int(0.006 * RATE_HZ))
    scrape = lfilter([0.35], [1.0, -0.65], scrape)
    wave[: len(scrape)] += guitar.pick_noise * scrape[: len(wave)]
    return level * wave


def lagrange(fraction):
    """Four-point weights for a delay of 1 + fraction samples, 0 <= fraction < 1."""
    d = 1.0 + fraction
    return np.stack(
        [
            -(d - 1.0) * (d - 2.0) * (d - 3.0) / 6.0,
            d * (d - 2.0) * (d - 3.0) / 2.0,
            -d * (d - 1.0) * (d - 3.0) / 2.0,
            d * (d - 1.0) * (d - 2.0) / 6.0,
        ],
        axis=-1,
    )


def read(history, position, taps):
    """Interpolated samples at real positions; taps are lagrange weights of the fractions ceil(position) - position."""
    base = np.ceil(position).astype(int)
    return sum(taps[..., k] * history[base + 1 - k] for k in range(4))


def vibrate(excitation, periods, gain, damping):
    """The loop. periods in samples, gain per period and the loss filter's damping, each one value a sample."""
    lead = int(periods.max()) + 8
    wave = np.zeros(lead + len(periods))
    wave[lead : lead + len(excitation)] = excitation[: len(periods)]
    for start in range(0, len(periods), BLOCK):
        n = np.arange(start, min(start + BLOCK, len(periods)))
        position = lead + n - periods[n]
        base = np.ceil(position).astype(int)
        taps = lagrange(base - position)
        # Loss filter and interpolation in one: b/2, 1 - b, b/2 around the period, six points in all.
        near = np.stack([wave[base + 2 - k] for k in range(6)], axis=-1)
        b = damping[n, None]
        smooth = (1.0 - b) * near[:, 1:5] + 0.5 * b * (near[:, 0:4] + near[:, 2:6])
        wave[lead + n] += gain[n] * (taps * smooth).sum(axis=-1)
    return wave, lead


def sound(guitar, note, noise):
    """One note at the pickup, from its pluck until it is damped."""
    seconds = np.arange(int((note.seconds + 2.0 * RELEASE_SECONDS) * RATE_HZ)) / RATE_HZ
    held = seconds < note.seconds
    out = np.zeros(len(seconds))
    for share, cents, longer in POLARISATIONS:
        hz = frequency(note.midi + pitch(note, seconds) + cents / 100.0)
        if hz.max() > HIGHEST_HZ:
            raise ValueError(f"{hz.max():.0f} Hz is above the {HIGHEST_HZ:.0f} Hz that the block allows")
        low, high = decay_seconds(hz)
        low, high = low * longer * note.sustain, high * max(note.sustain, 0.12)
        gain = 10.0 ** (-3.0 / (hz * np.where(held, low, np.minimum(low, RELEASE_SECONDS))))
        at_5k = np.minimum(10.0 ** (-3.0 / (hz * high)), gain)
        damping = np.clip((1.0 - at_5k / gain) / (1.0 - np.cos(2.0 * np.pi * 5000.0 / RATE_HZ)), 0.0, 0.5)
        periods = RATE_HZ / hz
        start = pluck(guitar, periods[0], note.level, note.sustain, noise)
        wave, lead = vibrate(share * start, periods, gain, damping)
        there = lead + np.arange(len(seconds)) - guitar.pickup_position * periods
        echo = read(wave, there, lagrange(np.ceil(there) - there))
        out += wave[lead:] - echo
    return out


def pickup(guitar, x):
    """Coil and cable: a two-pole low-pass at the resonance, by the bilinear transform."""
    w = np.tan(np.pi * guitar.resonance_hz / RATE_HZ)
    norm = 1.0 + w / guitar.resonance_q + w * w
    b = w * w / norm
    return lfilter([b, 2 * b, b], [1.0, 2 * (w * w - 1.0) / norm, (1.0 - w / guitar.resonance_q + w * w) / norm], x)


def perform(guitar, strings, seconds, seed):
    """All notes of all strings through the pickup. strings: one list of notes a string, in order of time."""
    noise = np.random.Generator(np.random.PCG64(seed))
    out = np.zeros(int(seconds * RATE_HZ))
    for notes in strings:
        for note in notes:
            start = int(round(note.start * RATE_HZ))
            wave = sound(guitar, note, noise)[: len(out) - start]
            out[start : start + len(wave)] += wave
    return pickup(guitar, out)

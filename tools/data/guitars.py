"""Three demonstration guitars, as they come out of the jack: data/guitars/*.wav, 44100 Hz, mono, 24 bit.

The instrument is plucked_string.py; below is what it plays. All three peak at -12 dBFS, about 300 mV at the jack with
the product profile's input voltage mapping.

    clean_chords  a picked and strummed chord pattern, neck pickup
    lead_line     a single-note line with bends and vibrato, bridge pickup
    hard_riff     hard-strummed fifths with palm mutes, bridge pickup
"""

import numpy as np
from scipy.signal import lfilter

import generated
import wav24
from plucked_string import RATE_HZ, Guitar, Note, perform

PEAK_DBFS = -12.0
SECONDS = 9.5
OPEN_STRINGS = (40, 45, 50, 55, 59, 64)
# How far from equal temperament each string was tuned, in cents.
TUNING_CENTS = (1.5, -1.0, 0.8, -1.8, 1.2, -0.6)

NECK = Guitar(pick_position=0.18, pickup_position=0.24, pick_width_seconds=0.00016, pick_noise=0.030)
BRIDGE = Guitar(
    pick_position=0.16, pickup_position=0.13, pick_width_seconds=0.00014, pick_noise=0.045, resonance_hz=3700.0
)


class Strings:
    """Collects notes a string; a new note ends the one before it."""

    def __init__(self):
        self.notes = [[] for _ in OPEN_STRINGS]

    def play(self, string, start, seconds, fret, **details):
        notes = self.notes[string]
        if notes and notes[-1].start + notes[-1].seconds > start:
            last = notes.pop()
            notes.append(Note(**{**vars(last), "seconds": start - last.start}))
        midi = OPEN_STRINGS[string] + fret + TUNING_CENTS[string] / 100.0
        notes.append(Note(start=start, seconds=seconds, midi=midi, **details))

    def strum(self, start, seconds, frets, level, spread, up=False, **details):
        """frets: one a string from the lowest, None where it is not struck. spread: seconds across all strings."""
        order = [s for s, fret in enumerate(frets) if fret is not None]
        order = order[::-1] if up else order
        for place, string in enumerate(order):
            late = spread * place / len(OPEN_STRINGS)
            weaker = 1.0 - 0.04 * place
            self.play(string, start + late, seconds, frets[string], level=level * weaker, **details)


E_MINOR = (0, 2, 2, 0, 0, 0)
C_MAJOR_7 = (None, 3, 2, 0, 0, 0)
G_MAJOR = (3, 2, 0, 0, 0, 3)
D_SUS = (None, None, 0, 2, 3, 0)


def clean_chords():
    """Each chord: its bass, an arpeggio in quavers, and two strums; at 120 beats a minute."""
    strings, quaver = Strings(), 60.0 / 120.0 / 2.0
    for bar, chord in enumerate((E_MINOR, C_MAJOR_7, G_MAJOR, D_SUS)):
        start = 0.1 + 8 * bar * quaver
        sounding = [s for s, fret in enumerate(chord) if fret is not None]
        picked = [sounding[0], 3, 4, 5, 4]
        for step, string in enumerate(picked):
            level = 0.85 if step == 0 else 0.55 + 0.05 * (step % 2)
            strings.play(string, start + step * quaver, 3.0, chord[string], level=level)
        strings.strum(start + 5 * quaver, 2.5, chord, level=0.62, spread=0.045)
        strings.strum(start + 6.5 * quaver, 0.42, chord, level=0.45, spread=0.03, up=True)
    strings.strum(0.1 + 32 * quaver, 1.15, E_MINOR, level=0.8, spread=0.09)
    return NECK, strings


def lead_line():
    """A minor pentatonic around the fifth and eighth fret, at 92 beats a minute."""
    strings, beat = Strings(), 60.0 / 92.0
    up_two = ((0.0, 0.0), (0.06, 0.0), (0.24, 2.0))
    up_and_back = ((0.0, 0.0), (0.05, 0.0), (0.2, 2.0), (0.55, 2.0), (0.75, 0.0))
    from_bent = ((0.0, 2.0), (0.3, 2.0), (0.5, 0.0))
    slow = (5.2, 0.35, 0.35)
    # beat, string, fret, length in beats, level, bend, vibrato
    line = (
        (0.0, 3, 7, 1.45, 0.9, up_two, (5.0, 0.25, 0.5)),
        (1.5, 4, 5, 0.5, 0.75, None, None),
        (2.0, 4, 8, 0.5, 0.8, None, None),
        (2.5, 4, 5, 0.5, 0.7, None, None),
        (3.0, 3, 7, 0.5, 0.75, None, None),
        (3.5, 3, 5, 1.5, 0.85, None, slow),
        (5.25, 2, 7, 0.25, 0.7, None, None),
        (5.5, 3, 5, 0.5, 0.75, None, None),
        (6.0, 3, 7, 1.4, 0.95, up_and_back, None),
        (7.5, 4, 8, 0.95, 0.9, from_bent, None),
        (8.5, 5, 5, 0.5, 0.8, None, None),
        (9.0, 5, 8, 0.95, 0.95, up_two, None),
        (10.0, 5, 5, 0.5, 0.75, None, None),
        (10.5, 4, 8, 0.5, 0.75, None, None),
        (11.0, 4, 5, 0.45, 0.8, None, None),
        (11.5, 3, 7, 2.4, 1.0, None, slow),
    )
    for at, string, fret, beats, level, bend, vibrato in line:
        details = {"level": level}
        if bend:
            details["bend"] = bend
        if vibrato:
            details["vibrato"] = vibrato
        strings.play(string, 0.1 + at * beat, beats * beat * 0.97, fret, **details)
    return BRIDGE, strings


def fifth(fret, low=0):
    """Root, fifth and octave from the given string."""
    frets = [None] * 6
    frets[low], frets[low + 1], frets[low + 2] = fret, fret + 2, fret + 2
    return tuple(frets)


def hard_riff():
    """E, G, A and D fifths over a palm-muted low E, at 126 beats a minute; an open chord to end."""
    strings, quaver = Strings(), 60.0 / 126.0 / 2.0
    mute = {"sustain": 0.06}
    bar = ("E", "e", "e", "G", "e", "A", "A", "e")
    turn = ("E", "e", "G", "e", "D", "D", "A", "G")
    chords = {"E": fifth(0), "G": fifth(3), "A": fifth(0, low=1), "D": fifth(5, low=1)}
    for n, what in enumerate(bar + turn + bar + turn):
        start = 0.1 + n * quaver
        if what == "e":
            strings.strum(start, 0.9 * quaver, (0, 2, None, None, None, None), level=0.85, spread=0.012, **mute)
        else:
            strings.strum(start, 0.97 * quaver, chords[what], level=1.0, spread=0.014)
    strings.strum(0.1 + 32 * quaver, 1.35, (0, 2, 2, 1, 0, 0), level=1.0, spread=0.05)
    return BRIDGE, strings


PIECES = {"clean_chords": clean_chords, "lead_line": lead_line, "hard_riff": hard_riff}


def recording(name):
    """Samples from -1 to 1, rounded to 24 bits."""
    guitar, strings = PIECES[name]()
    x = perform(guitar, strings.notes, SECONDS, seed=1000 + list(PIECES).index(name))
    # The amp's input never sees DC: two poles at 15 Hz, and the last 20 ms fade out.
    c = np.exp(-2.0 * np.pi * 15.0 / RATE_HZ)
    x = lfilter([c, -c], [1.0, -c], lfilter([c, -c], [1.0, -c], x))
    fade = int(0.02 * RATE_HZ)
    x[-fade:] *= 0.5 * (1.0 + np.cos(np.pi * np.arange(fade) / fade))
    x *= 10.0 ** (PEAK_DBFS / 20.0) / np.abs(x).max()
    return wav24.rounded(x)


def path(name):
    return generated.GUITARS / f"{name}.wav"


def write():
    for name in PIECES:
        x = recording(name)
        wav24.write(path(name), x)
        rms = 10.0 * np.log10(np.mean(x**2))
        print(f"{name}: {len(x) / RATE_HZ:.2f} s, peak {20 * np.log10(np.abs(x).max()):.2f} dBFS, {rms:.1f} dBFS rms")


def check():
    return [
        wav24.difference(name, wav24.read(path(name)), recording(name), generated.AUDIO_TOLERANCE_DB) for name in PIECES
    ]


def plot(directory):
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, axes = pyplot.subplots(3, 1, figsize=(9, 9))
    for axis, name in zip(axes, PIECES):
        with np.errstate(divide="ignore"):  # digital silence
            axis.specgram(wav24.read(path(name)), NFFT=2048, noverlap=1536, Fs=RATE_HZ, vmin=-160, vmax=-55)
        axis.set(ylim=(0, 10000), ylabel="Hz", title=name)
    for axis in axes:
        axis.set(xlim=(0.0, SECONDS))
    axes[-1].set(xlabel="s")
    figure.tight_layout()
    figure.savefig(directory / "demonstration-guitars.png", dpi=75)


if __name__ == "__main__":
    generated.main("The demonstration guitars.", write, check, plot)

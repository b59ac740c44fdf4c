"""Mono WAV files of 24 bits at 44100 Hz, as all sound in the product's data is."""

import wave

import numpy as np

RATE_HZ = 44100


def rounded(x):
    """Samples as such a file holds them."""
    return np.round(x * 2.0**23) / 2.0**23


def read(file):
    with wave.open(str(file), "rb") as source:
        if (source.getframerate(), source.getnchannels(), source.getsampwidth()) != (RATE_HZ, 1, 3):
            raise ValueError(f"{file} is not 44100 Hz, mono, 24 bit")
        data = np.frombuffer(source.readframes(source.getnframes()), np.uint8).reshape(-1, 3).astype(np.int32)
    return ((data[:, 0] | data[:, 1] << 8 | data[:, 2] << 16) ^ 0x800000) / 2.0**23 - 1.0


def write(file, x):
    words = np.round(x * 2.0**23).astype("<i4")
    file.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(file), "wb") as sink:
        sink.setnchannels(1)
        sink.setsampwidth(3)
        sink.setframerate(RATE_HZ)
        sink.writeframes(words.view(np.uint8).reshape(-1, 4)[:, :3].tobytes())


def difference(name, old, new, tolerance_db):
    """A complaint when two recordings differ by more than the tolerance in dB of full scale, else None."""
    if len(old) != len(new):
        return f"{name}: {len(old)} samples are committed, {len(new)} were made"
    worst = 20.0 * np.log10(max(np.abs(old - new).max(), 1e-12))
    print(f"{name}: largest difference {worst:.0f} dBFS")
    return f"{name}: differs by {worst:.1f} dBFS" if worst > tolerance_db else None

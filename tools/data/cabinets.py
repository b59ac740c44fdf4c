"""The factory cabinets and the test cabinets: impulse responses of 4096 samples, 44100 Hz, mono, 24 bit, below
data/root/home/root.

    factoryIRs/Arvel-SlatePanel-IRs/    two 12-inch speakers, open back
    factoryIRs/Corvin-SlatePanel-IRs/   one 12-inch speaker, open back
    factoryIRs/Lisko-SlatePanel-IRs/    one 10-inch speaker, small open back
    factoryIRs/Sorrel-SlatePanel-IRs/   two 10-inch speakers, closed back

each at four places of the microphone: NAME-Near-Center, -Near-Edge, -Off-Axis, -Far. The physics is that of
speaker_cabinet.py; below are the boxes, the drivers and the places.

    IRs/TestCabinet1, IRs/TestCabinet2

tell the two outer positions of the cabinet switch apart by ear: all below 1 kHz, and all above.

    factoryIRs*.json             the catalogue of each amplifier: its four responses, by name
    userCabsimDefaults*.json     what the three positions of its cabinet switch start with
"""

import json

import numpy as np

import generated
import wav24
from speaker_cabinet import Box, Driver, Microphone, frequencies, high_pass, impulse_response, low_pass, magnitude

HOME = generated.ROOT / "data" / "root" / "home" / "root"
SAMPLES = 4096
PEAK_DB = -0.3  # of the magnitude response

TWELVE_BRIGHT = Driver(
    radius=0.128,
    resonance_hz=78.0,
    q=0.85,
    vas=0.055,
    roll_off_hz=5600.0,
    roll_off_qs=(1.1, 0.65),
    modes=(
        (430.0, 3.7, -0.30),
        (720.0, 6.0, 0.28),
        (1120.0, 7.6, -0.30),
        (1630.0, 8.5, 0.55),
        (2150.0, 9.3, 0.75),
        (2720.0, 8.5, 0.95),
        (3400.0, 10.2, 0.85),
        (4250.0, 11.9, 0.65),
    ),
)
TWELVE_WARM = Driver(
    radius=0.128,
    resonance_hz=72.0,
    q=0.80,
    vas=0.070,
    roll_off_hz=5100.0,
    roll_off_qs=(1.0, 0.65),
    modes=(
        (380.0, 3.4, -0.25),
        (640.0, 5.1, 0.30),
        (980.0, 6.8, -0.38),
        (1420.0, 7.6, 0.60),
        (1960.0, 9.3, 0.60),
        (2480.0, 8.5, 0.80),
        (3150.0, 11.0, 0.70),
        (3900.0, 11.9, 0.50),
        (4700.0, 13.6, 0.40),
    ),
)
TEN_SMALL = Driver(
    radius=0.104,
    resonance_hz=98.0,
    q=0.90,
    vas=0.028,
    roll_off_hz=6000.0,
    roll_off_qs=(1.0, 0.65),
    modes=(
        (560.0, 4.2, -0.32),
        (930.0, 6.8, 0.30),
        (1450.0, 8.5, -0.28),
        (2080.0, 8.5, 0.60),
        (2850.0, 8.5, 0.95),
        (3650.0, 10.2, 0.80),
        (4600.0, 12.8, 0.60),
    ),
)
TEN_STIFF = Driver(
    radius=0.104,
    resonance_hz=88.0,
    q=0.55,
    vas=0.024,
    roll_off_hz=5800.0,
    roll_off_qs=(1.15, 0.60),
    modes=(
        (500.0, 4.2, -0.22),
        (860.0, 6.0, 0.32),
        (1310.0, 8.5, -0.34),
        (1840.0, 9.3, 0.50),
        (2440.0, 9.3, 0.85),
        (3080.0, 9.3, 1.00),
        (3820.0, 11.9, 0.70),
        (4680.0, 13.6, 0.50),
    ),
)

CABINETS = {
    "Arvel": (TWELVE_BRIGHT, Box(width=0.67, height=0.50, depth=0.24, is_open=True, spacing=0.31)),
    "Corvin": (TWELVE_WARM, Box(width=0.61, height=0.44, depth=0.24, is_open=True)),
    "Lisko": (TEN_SMALL, Box(width=0.45, height=0.40, depth=0.20, is_open=True)),
    "Sorrel": (TEN_STIFF, Box(width=0.62, height=0.38, depth=0.27, is_open=False, spacing=0.26)),
}

PLACES = {
    "Near-Center": Microphone(distance=0.05, offset=0.0, angle_degrees=0.0, gradient=0.5),
    "Near-Edge": Microphone(distance=0.05, offset=0.85, angle_degrees=0.0, gradient=0.5, presence_db=1.0),
    "Off-Axis": Microphone(distance=0.12, offset=0.45, angle_degrees=40.0, gradient=0.5),
    "Far": Microphone(distance=0.60, offset=0.0, angle_degrees=22.0, gradient=0.0, low_cut_hz=40.0, presence_db=0.0),
}

# What stands behind an amplifier's name in the names of its two files.
FILE_NAMES = {"Arvel": "ArvelSlate", "Corvin": "CorvinSlate", "Lisko": "Lisko", "Sorrel": "Sorrel"}

# The three positions of the switch, from the brightest to the roomiest: place, high-pass and low-pass in Hz. The
# places on the cone keep their whole range; the far one loses the rumble that its omnidirectional microphone adds.
DEFAULT_SLOTS = (("Near-Edge", 20.0, 20000.0), ("Off-Axis", 20.0, 20000.0), ("Far", 60.0, 20000.0))
DEFAULT_LEVEL_DB = -5.0


def test_cabinets():
    f = frequencies()
    return {
        "TestCabinet1": np.abs(low_pass(f, 1000.0, 0.54) * low_pass(f, 1000.0, 1.31) * high_pass(f, 60.0, 0.7071)),
        "TestCabinet2": np.abs(high_pass(f, 1000.0, 0.54) * high_pass(f, 1000.0, 1.31) * low_pass(f, 9000.0, 0.7071)),
    }


def responses():
    """Path below the product's home and samples, of every cabinet."""
    made = {}
    for name, (driver, box) in CABINETS.items():
        for place, microphone in PLACES.items():
            gains = magnitude(frequencies(), driver, box, microphone)
            path = f"factoryIRs/{name}-SlatePanel-IRs/{name}-{place}.wav"
            made[path] = impulse_response(gains, SAMPLES, PEAK_DB)
    for name, gains in test_cabinets().items():
        made[f"IRs/{name}.wav"] = impulse_response(gains, SAMPLES, PEAK_DB)
    return made


def slot(name, hpf, lpf):
    return {"isFactory": True, "irName": name, "isDirty": False, "hpf": hpf, "lpf": lpf, "level": DEFAULT_LEVEL_DB}


def texts():
    """Name below the product's home and text, of every catalogue and every file of defaults."""
    made = {}
    for name, file_name in FILE_NAMES.items():
        catalogue = {"factoryIRs": [{"name": f"{name}-{place}"} for place in PLACES]}
        defaults = {"cabsimIRs": [slot(f"{name}-{place}", hpf, lpf) for place, hpf, lpf in DEFAULT_SLOTS]}
        made[f"factoryIRs{file_name}.json"] = json.dumps(catalogue, indent=4) + "\n"
        made[f"userCabsimDefaults{file_name}.json"] = json.dumps(defaults, indent=4) + "\n"
    return made


def write():
    for path, x in responses().items():
        wav24.write(HOME / path, x)
        print(f"{path}: {len(x)} samples, loudest {np.abs(x).max():.3f}, sum {x.sum():.4f}")
    for path, text in texts().items():
        (HOME / path).write_text(text)
        print(path)


def check():
    sounds = [
        wav24.difference(path, wav24.read(HOME / path), x, generated.AUDIO_TOLERANCE_DB)
        for path, x in responses().items()
    ]
    return sounds + [f"{path}: differs" for path, text in texts().items() if (HOME / path).read_text() != text]


def gains_db(x):
    with np.errstate(divide="ignore"):
        return 20.0 * np.log10(np.abs(np.fft.rfft(x, 1 << 15)))


def plot_responses(pyplot, directory):
    f = np.fft.rfftfreq(1 << 15, 1.0 / wav24.RATE_HZ)
    figure, axes = pyplot.subplots(2, 2, figsize=(11, 7.5), sharex=True, sharey=True)
    for axis, name in zip(axes.flat, CABINETS):
        for place in PLACES:
            x = wav24.read(HOME / f"factoryIRs/{name}-SlatePanel-IRs/{name}-{place}.wav")
            axis.semilogx(f, gains_db(x), label=place, linewidth=1.0)
        axis.set(title=name, xlim=(40, 16000), ylim=(-45, 3))
        axis.grid(which="both", alpha=0.3)
    axes[0, 0].legend(fontsize=8)
    for axis in axes[1]:
        axis.set_xlabel("Hz")
    for axis in axes[:, 0]:
        axis.set_ylabel("dB")
    figure.tight_layout()
    figure.savefig(directory / "cabinet-responses.png", dpi=75)


def plot_decay(pyplot, directory):
    """Backward-integrated energy by octave (Schroeder 1965) of each cabinet's first place."""
    from scipy.signal import butter, sosfilt

    milliseconds = 1000.0 * np.arange(SAMPLES) / wav24.RATE_HZ
    figure, axes = pyplot.subplots(2, 2, figsize=(11, 7.5), sharex=True, sharey=True)
    for axis, name in zip(axes.flat, CABINETS):
        x = wav24.read(HOME / f"factoryIRs/{name}-SlatePanel-IRs/{name}-Near-Center.wav")
        for hz in (125.0, 500.0, 1000.0, 2000.0, 4000.0):
            band = sosfilt(butter(2, (hz / 2**0.5, hz * 2**0.5), "band", fs=wav24.RATE_HZ, output="sos"), x)
            energy = np.cumsum(band[::-1] ** 2)[::-1]
            axis.plot(milliseconds, 10.0 * np.log10(np.maximum(energy / energy[0], 1e-12)), label=f"{hz:.0f} Hz")
        axis.set(title=f"{name}, Near-Center", xlim=(0, 60), ylim=(-80, 2))
        axis.grid(alpha=0.3)
    axes[0, 0].legend(fontsize=8, title="octave")
    for axis in axes[1]:
        axis.set_xlabel("ms")
    for axis in axes[:, 0]:
        axis.set_ylabel("dB")
    figure.tight_layout()
    figure.savefig(directory / "cabinet-decay.png", dpi=75)


def plot(directory):
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    plot_responses(pyplot, directory)
    plot_decay(pyplot, directory)


if __name__ == "__main__":
    generated.main("The factory cabinets and the test cabinets.", write, check, plot)

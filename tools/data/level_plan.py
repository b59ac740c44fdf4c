"""The amp's dry chain in double precision, and the level plan that the curves are chosen for.

At 1 kHz, every knob at panel 5 (knob position 4/9), bright off, one channel alone, at the power amp's output before
the speaker's impedance curve:

    10 mV peak at the jack   clean: under 2 % harmonic distortion, 1 to 2 V
    100 mV                   warm: 2 to 25 %, 10 to 20 V
    300 mV                   the power amp's limit, near 26 V

Prints both channels. Ends with status 1 where the plan does not hold.
"""

import sys

import numpy as np
from scipy.signal import lfilter

import oversampling_firs
import valve_curves

RATE_HZ = 44100.0
TONE_HZ = 1000.0
SECONDS = 0.7
MEASURED_SECONDS = 0.2  # 200 whole periods and 8820 whole samples, at the end

# Knob tables at panel 5, the fifth of their ten points.
NORMAL_KNOBS = {"bass": 0.086, "middle": 0.083, "treble": 0.223, "volume": 0.189}
VIBRATO_KNOBS = {"bass": 0.098, "middle": 0.083, "treble": 0.158, "volume": 0.161}


def high_pass(x, corner_hz, rate_hz=RATE_HZ):
    c = 1.0 - np.exp(-2.0 * np.pi * corner_hz / rate_hz)
    low = lfilter([c], [1.0, c - 1.0], x)
    return x - low


class Chain:
    def __init__(self):
        self.models = valve_curves.models()
        self.tables = valve_curves.tables()
        self.up, self.down = oversampling_firs.filters()[(3, 10)]

    def rise(self, x):
        return lfilter(self.up, 1.0, np.repeat(x, 3))

    def fall(self, x):
        return lfilter(self.down, 1.0, x)[::3]

    def curve(self, name, x, at_rest_zero=True):
        limits, table = self.models[name].limits, self.tables[name]
        rest = table.volts(limits, 0.0) if at_rest_zero else 0.0
        return table.volts(limits, x) - rest

    def stage(self, name, x):
        return high_pass(self.fall(self.curve(name, self.rise(x))), 5.0)

    def power_amp(self, x):
        driven = 0.37800714 * self.rise(x)
        legs = []
        for side, gain, source_ohms in (("A", 1.2445146, 9620.0), ("B", 1.2119927, 9820.0)):
            leg = gain * high_pass(self.curve(f"PhaseInverter{side}", driven), 5.0, 3.0 * RATE_HZ)
            leg = 0.53088444 * (leg - bias_shift(leg, source_ohms))
            legs.append(self.curve(f"OutputValve{side}", leg, at_rest_zero=False))
        return high_pass(1.3489629 * self.fall(legs[0] + legs[1] + 0.42840672), 5.0)

    def normal_preamp(self, x):
        x = 1.276865 * self.stage("NormalStage1", x)
        x = 1.2589254 * tone_circuit(x, **NORMAL_KNOBS)
        return 1.1220184 * 0.50699067 * self.stage("NormalStage2", x)

    def vibrato_preamp(self, x):
        x = 1.2589254 * self.stage("VibratoStage1", x)
        x = 1.2735031 * tone_circuit(x, **VIBRATO_KNOBS)
        x = 0.04050419 * 1.1168633 * self.stage("VibratoStage2", x)
        x = first_order_shelf(x, 5.0, 5000.0)
        return 1.0839269 * 0.51582217 * self.stage("VibratoStage3", x)

    def output(self, channel, x):
        if channel == "normal":
            x = high_pass(self.normal_preamp(x), 30.0)
        else:
            x = high_pass(self.vibrato_preamp(x), 55.0)
        return self.power_amp(high_shelf(x, 6.0, 9000.0, 4.0 / 4.0))


def bias_shift(x, source_ohms, grid_ohms=1500.0, leak_ohms=220e3, farads=1e-7, threshold=50.0):
    """The voltage on the coupling capacitor: charged fast where the grid conducts, drained slowly."""
    rate = 3.0 * RATE_HZ
    charge = np.exp(-1.0 / ((grid_ohms * leak_ohms / (grid_ohms + leak_ohms) + source_ohms) * farads * rate))
    drain = np.exp(-1.0 / ((leak_ohms + source_ohms) * farads * rate))
    out, state = np.empty_like(x), 0.0
    for n, sample in enumerate(x):
        v = sample - state
        state = charge * state + (1.0 - charge) * (v - threshold) if v > threshold else drain * state
        out[n] = state
    return out


def first_order_shelf(x, high_gain_db, corner_hz):
    """Low gain 0 dB."""
    ratio = 10.0 ** (high_gain_db * 0.05)
    t, q = np.tan(np.pi * corner_hz / RATE_HZ), np.sqrt(ratio)
    a1 = (q * t - 1.0) / (q * t + 1.0)
    b0 = (q + t) * np.sqrt(ratio) / (q * t + 1.0)
    u = t / q
    return lfilter([b0, b0 * (u - 1.0) / (u + 1.0)], [1.0, a1], x)


def high_shelf(x, gain_db, frequency_hz, slope):
    """R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad filter coefficients"; a negative radicand is 0.

    The amp states its shelf slopes times four.
    """
    a = 10.0 ** (gain_db / 40.0)
    w = 2.0 * np.pi * frequency_hz / RATE_HZ
    radicand = (a + 1.0 / a) * (1.0 / slope - 1.0) + 2.0
    beta = 2.0 * np.sqrt(a) * 0.5 * np.sin(w) * np.sqrt(max(radicand, 0.0))
    c = np.cos(w)
    numerator = [a * (a + 1 + (a - 1) * c + beta), -2 * a * (a - 1 + (a + 1) * c), a * (a + 1 + (a - 1) * c - beta)]
    return lfilter(numerator, [a + 1 - (a - 1) * c + beta, 2 * (a - 1 - (a + 1) * c), a + 1 - (a - 1) * c - beta], x)


def tone_circuit(x, bass, middle, treble, volume):
    """The tone circuit and its volume pot by nodal analysis, bilinear transform at 2 * rate.

    Source 38.46 k; C1 250 pF to the treble pot's top, slope resistor 100 k to C2 100 nF (treble pot's foot and bass
    pot) and C3 47 nF (bass pot's foot and middle pot); treble 250 k, bass 250 k, middle 10 k; the volume pot of 1 M
    hangs on the treble wiper, its own wiper is loaded by 10 M parallel 165 pF.
    """
    hz = np.fft.rfftfreq(len(x) * 2, 1.0 / RATE_HZ)
    s = 2j * RATE_HZ * np.tan(np.pi * np.minimum(hz, 0.49999 * RATE_HZ) / RATE_HZ)
    spectrum = np.fft.rfft(x, 2 * len(x)) * tone_response(s, bass, middle, treble, volume)
    return np.fft.irfft(spectrum)[: len(x)]


def tone_response(s, b, m, t, v):
    """Transfer from the source's open-circuit voltage to the volume wiper."""
    nodes = ["in", "top", "slope", "foot", "low", "wiper", "out"]
    index = {name: i for i, name in enumerate(nodes)}
    matrix = np.zeros((len(s), len(nodes), len(nodes)), complex)
    drive = np.zeros(len(nodes), complex)

    def join(one, other, admittance):
        i = index[one]
        matrix[:, i, i] += admittance
        if other is not None:
            j = index[other]
            matrix[:, j, j] += admittance
            matrix[:, i, j] -= admittance
            matrix[:, j, i] -= admittance

    join("in", None, 1.0 / 38.46e3)
    drive[index["in"]] = 1.0 / 38.46e3
    join("in", "top", s * 250e-12)
    join("in", "slope", 1.0 / 100e3)
    join("slope", "foot", s * 100e-9)
    join("slope", "low", s * 47e-9)
    join("top", "wiper", 1.0 / ((1.0 - t) * 250e3))
    join("wiper", "foot", 1.0 / (t * 250e3))
    join("foot", "low", 1.0 / (b * 250e3))
    join("low", None, 1.0 / (m * 10e3))
    join("wiper", "out", 1.0 / ((1.0 - v) * 1e6))
    join("out", None, 1.0 / (v * 1e6) + 1.0 / 10e6 + s * 165e-12)
    return np.linalg.solve(matrix, np.broadcast_to(drive[:, None], (len(s), len(nodes), 1)))[:, index["out"], 0]


def measure(y):
    """(peak volts, harmonic distortion, amplitudes of the harmonics) over the last whole periods."""
    y = y[-int(MEASURED_SECONDS * RATE_HZ) :]
    spectrum = np.abs(np.fft.rfft(y)) / (len(y) / 2)
    harmonics = spectrum[int(round(MEASURED_SECONDS * TONE_HZ)) :: int(round(MEASURED_SECONDS * TONE_HZ))][:20]
    return np.abs(y).max(), np.sqrt((harmonics[1:] ** 2).sum()) / harmonics[0], harmonics


# volts at the jack: lowest and highest peak at the output, lowest and highest distortion
PLAN = {
    0.010: (1.0, 2.0, 0.0, 0.02),
    0.100: (10.0, 20.0, 0.02, 0.25),
    0.300: (23.0, 27.0, 0.0, 1.0),
}


def main():
    chain = Chain()
    time = np.arange(int(SECONDS * RATE_HZ)) / RATE_HZ
    held = True
    for channel in ("normal", "vibrato"):
        for volts, (least, most, cleanest, dirtiest) in PLAN.items():
            peak, distortion, harmonics = measure(
                chain.output(channel, volts * np.sin(2.0 * np.pi * TONE_HZ * time))
            )
            good = least <= peak <= most and cleanest <= distortion <= dirtiest
            held = held and good
            print(
                f"{channel:8} {1000 * volts:4.0f} mV: {peak:6.2f} V peak, {harmonics[0]:6.2f} V fundamental, "
                f"{100 * distortion:6.2f} % (2nd {100 * harmonics[1] / harmonics[0]:.2f} %, "
                f"3rd {100 * harmonics[2] / harmonics[0]:.2f} %){'' if good else '  OUTSIDE THE PLAN'}"
            )
    sys.exit(0 if held else 1)


if __name__ == "__main__":
    main()

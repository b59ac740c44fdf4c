"""The response of the reverb tank: data/root/home/root/tank/SpringTank.wav, 44100 Hz, mono, 24 bit, 551250 samples.

Three springs between one pair of transducers. Each is a lossy dispersive line that a wave crosses in tau(f) seconds and
that reflects it at both ends; the far end is heard, so echoes come after 1, 3, 5 ... crossings:

    H(f) = transducers(f) * sum over springs of g T / (1 + T^2),   T = loss(f) exp(-j phase(f))

    tau(f)   = the crossing of a line with stretched allpasses in it: slow growth, then a steep rise towards the
               transition frequency, beyond which next to nothing comes through
    phase(f) = 2 pi * integral of tau from 0 to f, so that tau is the group delay
    loss(f)  = 10^(-3 tau / T60(f))

Sources
  J. S. Abel, D. P. Berners, S. Costello, J. O. Smith, "Spring reverb emulation using dispersive allpass filters in a
    waveguide structure", AES 121, 2006: dispersive waveguide, chirped echoes, two or three springs in parallel.
  S. Bilbao, J. Parker, "A virtual model of spring reverberation", IEEE Trans. Audio Speech Lang. Process. 18(4), 2010:
    the transition frequency, and that echoes blur from crossing to crossing.
  V. Valimaki, J. Parker, J. S. Abel, "Parametric spring reverberation effect", J. Audio Eng. Soc. 58(7/8), 2010: the
    stretched allpass as the law of the delay, random irregularity of the wire as the cause of the blur.

The level is set so that wet and dry are equal at 1 kHz in the vibrato channel of the amp with the reverb knob at 1:
see small_signal().
"""

import dataclasses

import numpy as np
from scipy.signal import lfilter

import generated
import spring_tank_curves
import wav24

COMMAND = "tools/data/spring_tank.py"
PATH = generated.ROOT / "data" / "root" / "home" / "root" / "tank" / "SpringTank.wav"

RATE_HZ = 44100
SAMPLES = 551250
TRANSFORM = 1 << 20  # 23.8 s: what wraps around is 400 dB down

# The crossing time of the first spring: a plain delay, and a share of a stretched allpass of coefficient a.
#   tau(f) = PLAIN + ALLPASS (1 - a^2) / (1 + a^2 + 2 a cos(pi f / TRANSITION))
PLAIN_SECONDS = 32.56e-3
ALLPASS_SECONDS = 4.626e-3
ALLPASS_COEFFICIENT = 0.5
TRANSITION_HZ = 4100.0

# T60(f) = LOW / (1 + (f / CORNER)^2)
T60_LOW_SECONDS = 2.85
T60_CORNER_HZ = 3500.0

# The transducers: coil and magnet below, the coil's inductance and the springs' transition above.
LOW_CUT_HZ, LOW_CUT_ORDER = 110.0, 2
HIGH_CUT_HZ, HIGH_CUT_ORDER = 4300.0, 8

# How much the phase of one crossing strays because the wire is uneven, in radians rms, and over which width in Hz.
UNEVENNESS_RADIANS = 0.30
UNEVENNESS_HZ = 40.0


@dataclasses.dataclass(frozen=True)
class Spring:
    length: float  # of the first one's
    gain: float
    seed: int


SPRINGS = (Spring(1.0, 1.0, 52), Spring(1.034, -0.59, 15), Spring(1.0686, -0.77, 84))

QUIET_BEFORE_SECONDS = 0.030
FADE_SECONDS = 0.003


def frequencies():
    return np.fft.rfftfreq(TRANSFORM, 1.0 / RATE_HZ)


def crossing_seconds(f):
    """tau of the first spring; constant beyond the transition."""
    a = ALLPASS_COEFFICIENT
    angle = np.pi * np.minimum(f, TRANSITION_HZ) / TRANSITION_HZ
    return PLAIN_SECONDS + ALLPASS_SECONDS * (1.0 - a * a) / (1.0 + a * a + 2.0 * a * np.cos(angle))


def t60_seconds(f):
    return T60_LOW_SECONDS / (1.0 + (f / T60_CORNER_HZ) ** 2)


def unevenness(f, seed):
    """A smooth random phase of zero mean."""
    width = UNEVENNESS_HZ / f[1]
    noise = np.random.default_rng(seed).standard_normal(len(f))
    pole = np.exp(-1.0 / width)
    smooth = lfilter([1.0 - pole], [1.0, -pole], lfilter([1.0 - pole], [1.0, -pole], noise)[::-1])[::-1]
    return UNEVENNESS_RADIANS * smooth / smooth.std()


def butterworth(f, corner_hz, order, is_high_pass):
    """An analogue Butterworth response."""
    s = 1j * (f / corner_hz)
    poles = np.exp(1j * np.pi * (2.0 * np.arange(order) + order + 1.0) / (2.0 * order))
    denominator = np.prod(s[:, None] - poles, axis=1)
    return (s**order if is_high_pass else 1.0) / denominator


def spectrum():
    f = frequencies()
    tau = crossing_seconds(f)
    phase = 2.0 * np.pi * np.concatenate([[0.0], np.cumsum(0.5 * (tau[1:] + tau[:-1]) * np.diff(f))])
    total = np.zeros(len(f), complex)
    for spring in SPRINGS:
        loss = 10.0 ** (-3.0 * spring.length * tau / t60_seconds(f))
        crossing = loss * np.exp(-1j * (spring.length * phase + unevenness(f, spring.seed)))
        total += spring.gain * crossing / (1.0 + crossing**2)
    total *= butterworth(f, LOW_CUT_HZ, LOW_CUT_ORDER, True)
    return total * butterworth(f, HIGH_CUT_HZ, HIGH_CUT_ORDER, False)


def shape():
    """The response before its level is set."""
    h = np.fft.irfft(spectrum())[:SAMPLES]
    # Nothing has crossed a spring yet: what lies there is the ripple of a band-limited onset.
    quiet, fade = int(QUIET_BEFORE_SECONDS * RATE_HZ), int(FADE_SECONDS * RATE_HZ)
    h[:quiet] = 0.0
    h[quiet : quiet + fade] *= np.sin(0.5 * np.pi * np.arange(fade) / fade) ** 2
    h[-fade:] *= np.cos(0.5 * np.pi * np.arange(fade) / fade) ** 2
    return h


def small_signal(f):
    """(wet without the response, dry) gains of the vibrato channel from its second valve to the third's input.

    Reverb knob at 1. Wet: 180 Hz high-pass, driver, x 1.4272498, [response], x 0.00039810708, 370 Hz high-pass,
    1000 Hz low-pass, recovery stage, 10 kHz low-pass. Dry: x 0.04050419 and the shelf of 5 dB at 5 kHz.
    """
    z = np.exp(2j * np.pi * np.asarray(f, float) / RATE_HZ)
    pole = lambda hz: np.exp(-2.0 * np.pi * hz / RATE_HZ)
    high_pass = lambda hz: (1.0 - 1.0 / z) / (1.0 - pole(hz) / z)
    low_pass = lambda hz: (1.0 - pole(hz)) / (1.0 - pole(hz) / z)
    gain = 1.0
    tables = spring_tank_curves.tables()
    for name, model in spring_tank_curves.models().items():
        rest = list(tables[name].breakpoints).index(0.0)
        gain *= float(tables[name].segments[rest][2]) * model.limits.half / model.limits.input_range
    wet = gain * 1.4272498 * 0.00039810708 * high_pass(180.0) * high_pass(370.0) * low_pass(1000.0) * low_pass(10000.0)
    ratio, t = 10.0 ** (5.0 / 20.0), np.tan(np.pi * 5000.0 / RATE_HZ)
    q = np.sqrt(ratio)
    b0, u = (q + t) * q / (q * t + 1.0), t / q
    shelf = b0 * (1.0 + (u - 1.0) / (u + 1.0) / z) / (1.0 + (q * t - 1.0) / (q * t + 1.0) / z)
    return wet, 0.04050419 * shelf


def wet_over_dry(h):
    """(power ratio over the third of an octave at 1 kHz, ratio of a 1 kHz sine)."""
    f = frequencies()
    band = (f >= 1000.0 * 2.0 ** (-1.0 / 6.0)) & (f <= 1000.0 * 2.0 ** (1.0 / 6.0))
    at = np.fft.rfft(h, TRANSFORM)
    wet, dry = small_signal(f[band])
    power = np.sqrt(np.sum(np.abs(wet * at[band]) ** 2) / np.sum(np.abs(dry) ** 2))
    wet, dry = small_signal([1000.0])
    sine = np.sum(h * np.exp(-2j * np.pi * 1000.0 / RATE_HZ * np.arange(len(h))))
    return power, float(np.abs(wet[0] * sine / dry[0]))


def response():
    h = shape()
    return h / wet_over_dry(h)[0]


def write():
    h = response()
    if np.abs(h).max() >= 1.0:
        raise ValueError("the response does not fit full scale")
    wav24.write(PATH, h)
    report(h)


def report(h):
    import spring_tank_measures as measures

    power, sine = wet_over_dry(h)
    print(f"peak {np.abs(h).max():.4f}, energy {np.sum(h**2):.3f}")
    print(f"wet over dry at 1 kHz: {20 * np.log10(power):+.2f} dB in a third of an octave, {20 * np.log10(sine):+.2f} dB sine")
    print(f"first echo {1e3 * measures.first_echo_seconds(h):.2f} ms")
    for hz in (500.0, 1000.0, 2000.0, 3000.0, 3600.0):
        print(f"  arrival at {hz:.0f} Hz: {1e3 * measures.arrival_seconds(h, hz):.2f} ms")
    for hz in (250.0, 500.0, 1000.0, 2000.0, 4000.0):
        print(f"  T60 at {hz:.0f} Hz: {measures.t60_seconds(h, hz):.3f} s")
    for seconds in (0.05, 0.1, 0.2, 0.3, 0.5, 1.0):
        print(f"  echo density at {seconds} s: {measures.echo_density(h, seconds):.3f}")
    last = np.nonzero(np.abs(h) > 10.0 ** (-90.0 / 20.0) * np.abs(h).max())[0][-1]
    print(f"below -90 dB after {last / RATE_HZ:.2f} s of {len(h) / RATE_HZ:.2f} s")


def check():
    made, kept = response(), wav24.read(PATH)
    if len(made) != len(kept):
        return [f"{PATH.name}: {len(kept)} samples are committed, {len(made)} were made"]
    worst = 20.0 * np.log10(max(np.abs(made - kept).max(), 1e-12))
    print(f"{PATH.name}: largest difference {worst:.1f} dBFS")
    return [f"{PATH.name}: differs by {worst:.1f} dBFS"] if worst > generated.AUDIO_TOLERANCE_DB else []


def plot(directory):
    import spring_tank_pictures

    spring_tank_pictures.draw(directory, wav24.read(PATH))


if __name__ == "__main__":
    generated.main("The response of the reverb tank.", write, check, plot)

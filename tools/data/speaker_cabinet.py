"""What a microphone hears of a guitar loudspeaker in its box, as a magnitude response and as the impulse response of
minimum phase that goes with it.

    H(f) = sum over speakers of
             low end      closed box: second-order high-pass of the driver on the box's air (Thiele, Small);
                          open back: the driver's own high-pass, less the wave from behind, which goes around the box
           * cone         1 + modes, each a resonance; what a microphone near the cone hears of one follows its shape,
                          J0(z r / R) for rings and J2(z r / R) for bells, so that its sign depends on the place
           * roll-off     fourth order: the cone lets go of the voice coil, its rim first
           * directivity  a piston 2 J1(x) / x, x = k a sin(angle), that shrinks towards the voice coil as f rises
           * distance     1 / r, and the delay of the path difference to the nearest speaker
         * edges          the baffle's edges answer with less, later and inverted
         * box            standing waves across the box, heard through the cone
         * microphone     a pressure gradient's rise near a source, its own low cut and presence

Sources
  A. N. Thiele, "Loudspeakers in vented boxes", J. Audio Eng. Soc. 19(5/6), 1971; R. H. Small, "Closed-box loudspeaker
    systems", J. Audio Eng. Soc. 20(10), 1972: low end of driver and box.
  L. L. Beranek, Acoustics, 1954: the piston's directivity, the path around an open baffle, the pressure gradient.
  N. H. Fletcher, T. D. Rossing, The Physics of Musical Instruments, 2nd ed. 1998: shapes of circular modes.
  H. F. Olson, "Direct radiator loudspeaker enclosures", J. Audio Eng. Soc. 2(4), 1954: the answer of the edges.
  A. V. Oppenheim, R. W. Schafer, Discrete-Time Signal Processing, 1989: minimum phase by the cepstrum.
"""

import dataclasses

import numpy as np
from scipy.special import j0, j1, jn_zeros, jv

import wav24

SOUND = 343.0  # m/s
TRANSFORM = 1 << 17

# Beside each ring mode stands one with two nodal diameters, silent at the centre.
BELL_SHARE = 1.7
BELL_PITCH = 0.89

# How much of the farther speaker adds up: two cones never move alike.
COHERENCE = 0.75


@dataclasses.dataclass(frozen=True)
class Driver:
    radius: float  # of the cone, m
    resonance_hz: float  # free air
    q: float  # total
    vas: float  # m^3, the air as stiff as its suspension
    roll_off_hz: float
    roll_off_qs: tuple  # of the two sections
    modes: tuple  # (Hz, q, gain at the cone's centre), rising


@dataclasses.dataclass(frozen=True)
class Box:
    width: float  # m
    height: float
    depth: float
    is_open: bool
    spacing: float = 0.0  # between the centres of two speakers, 0 for one
    standing_wave: float = 0.12  # how much of it comes through the cone


@dataclasses.dataclass(frozen=True)
class Microphone:
    distance: float  # m, from the cone
    offset: float  # of its aim from the cone's centre, in cone radii
    angle_degrees: float  # off the axis
    gradient: float  # share of the pressure gradient: 0 omni, 0.5 cardioid
    low_cut_hz: float = 80.0
    presence_db: float = 2.0  # at 5 kHz


def high_pass(f, corner_hz, q):
    s = 1j * f / corner_hz
    return s**2 / (s**2 + s / q + 1.0)


def low_pass(f, corner_hz, q):
    s = 1j * f / corner_hz
    return 1.0 / (s**2 + s / q + 1.0)


def resonance(f, hz, q):
    """1 at hz, 0 far from it."""
    s = 1j * f / hz
    return s / q / (s**2 + s / q + 1.0)


def bell(f, hz, q, db):
    return 1.0 + (10.0 ** (db / 20.0) - 1.0) * resonance(f, hz, q)


def low_end(f, driver, box, distance):
    if not box.is_open:
        volume = box.width * box.height * box.depth * (0.5 if box.spacing else 1.0)
        stiffer = np.sqrt(1.0 + driver.vas / volume)
        return high_pass(f, driver.resonance_hz * stiffer, driver.q * stiffer)
    around = 0.5 * min(box.width, box.height) + box.depth
    from_behind = distance / (distance + around) * np.exp(-2j * np.pi * f * around / SOUND)
    # High tones do not bend around the box.
    from_behind *= low_pass(f, SOUND / (np.pi * around), 0.5)
    return high_pass(f, driver.resonance_hz, driver.q) * (1.0 - 0.8 * from_behind)


def place_on_cone(driver, microphone):
    """Cone radii from the centre; from afar all of the cone is heard, whatever the aim."""
    return min(microphone.offset, 1.0) * driver.radius / (driver.radius + 0.5 * microphone.distance)


def cone(f, driver, place):
    total = 1.0
    count = len(driver.modes)
    for (hz, q, gain), ring, bell_zero in zip(driver.modes, jn_zeros(0, count), jn_zeros(2, count)):
        total = total + gain * j0(ring * place) * resonance(f, hz, q)
        total = total + BELL_SHARE * gain * jv(2, bell_zero * place) * resonance(f, BELL_PITCH * hz, q)
    return total


def roll_off(f, driver, place):
    """The centre follows the voice coil longest."""
    total = 1.0
    for q in driver.roll_off_qs:
        total = total * low_pass(f, driver.roll_off_hz * (1.0 - 0.3 * place), q)
    return total


def directivity(f, driver, angle):
    effective = driver.radius / np.sqrt(1.0 + (f / 1800.0) ** 2)
    x = 2.0 * np.pi * f / SOUND * effective * np.sin(angle)
    return np.where(x > 1e-6, 2.0 * j1(np.maximum(x, 1e-6)) / np.maximum(x, 1e-6), 1.0)


def edges(f, box, distance):
    total = 1.0
    for edge in (0.5 * box.width, 0.5 * box.width * 1.15, 0.5 * box.height, 0.5 * box.height * 0.9):
        extra = edge + np.hypot(edge, distance) - distance
        total = total - 0.18 * distance / (distance + edge) * np.exp(-2j * np.pi * f * extra / SOUND)
    return total


def standing_waves(f, box):
    total = 1.0
    share = box.standing_wave * (0.5 if box.is_open else 1.0)
    for length, sign in ((box.height, -1.0), (box.width, 1.0), (box.depth, -1.0)):
        total = total + sign * share * resonance(f, 0.5 * SOUND / length, 9.0)
    return total


def hears(f, microphone):
    near = microphone.gradient * SOUND / (2j * np.pi * np.maximum(f, 1.0) * microphone.distance)
    # The makers of such microphones take most of the rise away again.
    near = near / (1.0 + 2.0 * np.abs(near))
    return (1.0 + near) * high_pass(f, microphone.low_cut_hz, 0.6) * bell(f, 5000.0, 1.0, microphone.presence_db)


def magnitude(f, driver, box, microphone):
    """|H| at the frequencies f in Hz, the nearest speaker at distance 1 counting 1."""
    angle = np.radians(microphone.angle_degrees)
    total = directivity(f, driver, angle) + 0j
    if box.spacing:
        farther = np.hypot(microphone.distance, box.spacing)
        other = directivity(f, driver, np.arctan2(box.spacing, microphone.distance))
        path = np.exp(-2j * np.pi * f * (farther - microphone.distance) / SOUND)
        total = total + COHERENCE * microphone.distance / farther * other * path
    place = place_on_cone(driver, microphone)
    total = total * low_end(f, driver, box, microphone.distance)
    total = total * cone(f, driver, place) * roll_off(f, driver, place)
    total = total * edges(f, box, microphone.distance) * standing_waves(f, box) * hears(f, microphone)
    return np.abs(total)


def minimum_phase(gains, samples):
    """The impulse response of minimum phase with these gains at the frequencies of a real transform."""
    floor = gains.max() * 1e-5
    cepstrum = np.fft.irfft(np.log(np.maximum(gains, floor)))
    fold = np.zeros_like(cepstrum)
    half = len(cepstrum) // 2
    fold[0], fold[half] = 1.0, 1.0
    fold[1:half] = 2.0
    return np.fft.irfft(np.exp(np.fft.rfft(cepstrum * fold)))[:samples]


def frequencies():
    return np.fft.rfftfreq(TRANSFORM, 1.0 / wav24.RATE_HZ)


def faded(response, fade):
    response = response.copy()
    response[-fade:] *= 0.5 * (1.0 + np.cos(np.pi * np.arange(1, fade + 1) / fade))
    return response


def impulse_response(gains, samples, peak_db):
    """samples of it, faded over the last quarter, the greatest gain at peak_db."""
    response = faded(minimum_phase(gains, samples), samples // 4)
    loudest = np.abs(np.fft.rfft(response, TRANSFORM)).max()
    return wav24.rounded(response * 10.0 ** (peak_db / 20.0) / loudest)

"""The circuits behind the valve curves: which parts they have, and the stored curve each of them gives.

A curve is stored over x = input volts / input range, as y with output volts = middle + half * y. `solve` functions
find the parts that the given output limits decide: the supply from what the cut-off plate shows, the source
resistance from how far the conducting grid lets the plate down.
"""

import dataclasses
import functools

import numpy as np
from scipy.optimize import brentq

import valves

SLOPE_STEP = 1e-4  # of x, for the slope at rest


@dataclasses.dataclass(frozen=True)
class Limits:
    """Output volts at y = -1 and y = 1, and the input volts at x = 1."""

    input_range: float
    minimum: float
    maximum: float

    @property
    def middle(self):
        return 0.5 * (self.minimum + self.maximum)

    @property
    def half(self):
        return 0.5 * (self.maximum - self.minimum)

    def normalised(self, volts):
        return (volts - self.middle) / self.half


@dataclasses.dataclass(frozen=True)
class CommonCathode:
    """A triode with plate resistor, fixed cathode voltage, and a source resistance ahead of the grid."""

    limits: Limits
    plate_ohms: float
    cathode_volts: float
    breakpoints: tuple
    falls = True

    @functools.cached_property
    def parts(self):
        """(supply volts, source ohms) that meet the limits."""
        plate = functools.partial(
            valves.common_cathode,
            valves.ECC83,
            plate_ohms=self.plate_ohms,
            cathode_volts=self.cathode_volts,
        )
        cut_off = lambda supply: plate(
            [-self.limits.input_range], supply_volts=supply, source_ohms=0.0
        )[0] - self.limits.maximum
        supply = brentq(cut_off, self.limits.maximum, 1.1 * self.limits.maximum, xtol=1e-10)
        driven = lambda log_ohms: plate(
            [self.limits.input_range], supply_volts=supply, source_ohms=np.exp(log_ohms)
        )[0] - self.limits.minimum
        return supply, float(np.exp(brentq(driven, np.log(10.0), np.log(1e7), xtol=1e-12)))

    def curve(self, x):
        supply, source = self.parts
        volts = valves.common_cathode(
            valves.ECC83,
            np.asarray(x) * self.limits.input_range,
            supply,
            self.plate_ohms,
            self.cathode_volts,
            source,
        )
        return self.limits.normalised(volts)

    def describe(self):
        supply, source = self.parts
        return (
            f"supply {supply:.4f} V, plate {self.plate_ohms:.0f} ohms, cathode {self.cathode_volts} V, "
            f"source {source:.1f} ohms"
        )


@dataclasses.dataclass(frozen=True)
class LongTailedPair:
    """The phase inverter's two outputs.

    `drive` is grid volts per input volt: the amp's gains ahead of this stage are given, and with it the small-signal
    gains from there to the plates come to about -33 and 39. A valve of mu 60 alone gives a pair less than 30.
    """

    supply_volts: float = 385.0
    plate_ohms: tuple = (82e3, 100e3)
    cathode_ohms: float = 470.0
    tail_ohms: float = 22e3
    source_ohms: float = 47e3
    drive: float = 1.6

    @functools.lru_cache(maxsize=8)
    def sampled(self, input_range):
        x = np.linspace(-1.0, 1.0, 4001)
        a, b = valves.long_tailed_pair(
            valves.ECC81,
            x * input_range * self.drive,
            self.supply_volts,
            self.plate_ohms,
            self.cathode_ohms,
            self.tail_ohms,
            self.source_ohms,
        )
        return x, (a, b)

    def describe(self):
        return (
            f"supply {self.supply_volts} V, plates {self.plate_ohms[0] / 1e3:.0f} k and {self.plate_ohms[1] / 1e3:.0f} k, "
            f"cathode {self.cathode_ohms:.0f}, tail {self.tail_ohms / 1e3:.0f} k, "
            f"source {self.source_ohms / 1e3:.0f} k, drive {self.drive}"
        )


@dataclasses.dataclass(frozen=True)
class PairOutput:
    """One plate of the pair; its swing is laid onto the limits, a few per cent of stretch."""

    limits: Limits
    pair: LongTailedPair
    side: int  # 0: A, driven at its own grid; 1: B
    breakpoints: tuple

    @property
    def falls(self):
        return self.side == 0

    def curve(self, x):
        grid, plates = self.pair.sampled(self.limits.input_range)
        volts = plates[self.side]
        low, high = sorted((volts[0], volts[-1]))
        return np.interp(x, grid, 2.0 * (volts - low) / (high - low) - 1.0)

    def stretch(self):
        volts = self.pair.sampled(self.limits.input_range)[1][self.side]
        return 2.0 * self.limits.half / abs(volts[-1] - volts[0])

    def describe(self):
        return f"{self.pair.describe()}; stretched by {self.stretch():.4f}"


@dataclasses.dataclass(frozen=True)
class OutputValve:
    """One output valve's current, as volts at the speaker side between the limits."""

    limits: Limits
    bias_volts: float
    falls: bool
    breakpoints: tuple
    supply_volts: float = 450.0
    screen_volts: float = 440.0
    plate_to_plate_ohms: float = 4000.0

    def current(self, x):
        return valves.push_pull_half(
            valves.BEAM_6L6,
            np.asarray(x, float) * self.limits.input_range,
            self.bias_volts,
            self.supply_volts,
            self.screen_volts,
            self.plate_to_plate_ohms / 4.0,
        )

    def curve(self, x):
        low, high = self.current(np.array([-1.0, 1.0]))
        y = 2.0 * (self.current(x) - low) / (high - low) - 1.0
        return -y if self.falls else y

    def rest_volts(self):
        return self.limits.middle + self.limits.half * float(self.curve(np.zeros(1))[0])

    def describe(self):
        return (
            f"bias {self.bias_volts:.6f} V, supply {self.supply_volts} V, screen {self.screen_volts} V, "
            f"load {self.plate_to_plate_ohms / 4.0:.0f} ohms"
        )

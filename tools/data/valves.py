"""Valves in double precision: what a triode and a beam pentode conduct, and the voltages of the circuits around them.

Sources
  N. Koren, "Improved vacuum tube models for SPICE simulations", Glass Audio 8(5), 1996: plate current.
  K. Dempwolf, U. Zoelzer, "A physically-motivated triode model for circuit simulations", DAFx 2011: that the grid
  takes current from somewhat below 0 V on, in a smooth bend; here as softplus in front of a resistance.
Volts, amperes, ohms. Every circuit is solved by bisection over whole arrays: the functions are monotone.
"""

import dataclasses

import numpy as np

BISECTIONS = 56  # the last halving is below 1e-13 V


def softplus(x):
    return np.logaddexp(0.0, x)


def bisect(function, low, high):
    """Zero of a rising function between two bounds, element by element."""
    for _ in range(BISECTIONS):
        middle = 0.5 * (low + high)
        above = function(middle) > 0.0
        low, high = np.where(above, low, middle), np.where(above, middle, high)
    return 0.5 * (low + high)


@dataclasses.dataclass(frozen=True)
class Triode:
    mu: float
    ex: float
    kg1: float
    kp: float
    kvb: float
    grid_ohms: float = 2000.0  # slope of the conducting grid
    grid_knee_volts: float = 0.12  # width of the bend where it begins

    def plate_current(self, grid, plate):
        """Both voltages against the cathode; no current where the plate is below it."""
        plate = np.maximum(plate, 0.0)
        drive = plate / self.kp * softplus(self.kp * (1.0 / self.mu + grid / np.sqrt(self.kvb + plate**2)))
        return 2.0 * drive**self.ex / self.kg1

    def grid_current(self, grid):
        return self.grid_knee_volts * softplus(grid / self.grid_knee_volts) / self.grid_ohms


@dataclasses.dataclass(frozen=True)
class BeamPentode:
    mu: float
    ex: float
    kg1: float
    kp: float
    kvb: float

    def plate_current(self, grid, screen, plate):
        drive = screen / self.kp * softplus(self.kp * (1.0 / self.mu + grid / screen))
        return 2.0 * drive**self.ex / self.kg1 * np.arctan(np.maximum(plate, 0.0) / self.kvb)


ECC83 = Triode(mu=100.0, ex=1.4, kg1=1060.0, kp=600.0, kvb=300.0)  # 12AX7 class
ECC81 = Triode(mu=60.0, ex=1.35, kg1=460.0, kp=300.0, kvb=300.0)  # 12AT7 class
BEAM_6L6 = BeamPentode(mu=8.7, ex=1.35, kg1=1460.0, kp=48.0, kvb=12.0)


def clamped_grid(triode, source_volts, source_ohms):
    """Grid voltage behind a source resistance, all against the cathode."""
    excess = lambda grid: grid + source_ohms * triode.grid_current(grid) - source_volts
    return bisect(excess, np.minimum(source_volts, 0.0) - 50.0, np.maximum(source_volts, 0.0))


def common_cathode(triode, input_volts, supply_volts, plate_ohms, cathode_volts, source_ohms):
    """Plate voltage against ground, with the cathode held at a fixed voltage."""
    grid = clamped_grid(triode, np.asarray(input_volts, float) - cathode_volts, source_ohms)

    def excess(plate):
        return plate - supply_volts + plate_ohms * triode.plate_current(grid, plate - cathode_volts)

    return bisect(excess, np.zeros_like(grid), np.full_like(grid, supply_volts))


def push_pull_half(valve, input_volts, bias_volts, supply_volts, screen_volts, load_ohms):
    """Plate current of one output valve. load_ohms is what it sees: a quarter of the plate-to-plate load."""
    grid = np.asarray(input_volts, float) + bias_volts

    def excess(current):
        return current - valve.plate_current(grid, screen_volts, supply_volts - load_ohms * current)

    return bisect(excess, np.zeros_like(grid), np.full_like(grid, supply_volts / load_ohms))


def long_tailed_pair(triode, input_volts, supply_volts, plate_ohms, cathode_ohms, tail_ohms, source_ohms):
    """Plate voltages (A, B) of a pair driven at grid A, with grid B at rest.

    The grids idle at the joint of cathode and tail resistor, which biases them, and keep that voltage: the coupling
    capacitor holds it at A, a capacitor to ground at B.
    """
    input_volts = np.asarray(input_volts, float)

    def plate(grid, cathode, ohms):
        excess = lambda volts: volts - supply_volts + ohms * triode.plate_current(grid - cathode, volts - cathode)
        return bisect(excess, np.zeros_like(cathode), np.full_like(cathode, supply_volts))

    def solve(volts, grid_of):
        def excess(cathode):
            grid_a = cathode + clamped_grid(triode, grid_of(cathode) + volts - cathode, source_ohms)
            currents = [
                (supply_volts - plate(grid, cathode, ohms)) / ohms
                for grid, ohms in ((grid_a, plate_ohms[0]), (grid_of(cathode), plate_ohms[1]))
            ]
            return cathode / (cathode_ohms + tail_ohms) - sum(currents)

        cathode = bisect(excess, np.zeros_like(volts), np.full_like(volts, 0.8 * supply_volts))
        grid_a = cathode + clamped_grid(triode, grid_of(cathode) + volts - cathode, source_ohms)
        return cathode, plate(grid_a, cathode, plate_ohms[0]), plate(grid_of(cathode), cathode, plate_ohms[1])

    joint = tail_ohms / (cathode_ohms + tail_ohms)
    idle = joint * solve(np.zeros(1), lambda cathode: joint * cathode)[0][0]
    return solve(input_volts, lambda cathode: np.full_like(cathode, idle))[1:]

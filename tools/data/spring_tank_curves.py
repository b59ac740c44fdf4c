"""The two valve curves of the spring tank, as eight cubic segments each: the driver and the recovery stage.

Models: curve_models.py on valves.py (Koren 1996; load lines), fitted by spline.py. The driver is a 12AT7-class valve with
both halves parallel in front of a transformer, so its load line runs through its rest point and the tank sees no rest
voltage; the recovery stage is a plain 12AX7-class stage. Volts and ohms; breakpoints in x = input volts / input range.
"""

import dataclasses
import functools

import numpy as np
from scipy.optimize import brentq

import generated
import valve_curves
import valves
from curve_models import CommonCathode, Limits

COMMAND = "tools/data/spring_tank_curves.py"
PATH = generated.TABLES / "SpringTankCurves.cpp"

DRIVE = Limits(input_range=18.95668, minimum=-2.747685, maximum=4.608292)
RECOVERY = Limits(input_range=10.0, minimum=70.13475, maximum=207.2241)


@dataclasses.dataclass(frozen=True)
class TransformerDriver:
    """Parallel triodes with a transformer for their plate load; volts at the secondary.

    The current may fall by all of its rest value and rise until the grid conducts; the load is solved so that the two
    swings stand in the ratio of the limits, and the transformer's ratio so that they are the limits.
    """

    limits: Limits
    cathode_volts: float
    supply_volts: float
    source_ohms: float
    breakpoints: tuple
    triodes: int = 2
    falls = False

    @property
    def rest_current(self):
        plate = np.array([self.supply_volts - self.cathode_volts])
        return self.triodes * float(valves.ECC81.plate_current(np.array([-self.cathode_volts]), plate)[0])

    def current(self, input_volts, load_ohms):
        grid = valves.clamped_grid(valves.ECC81, np.asarray(input_volts, float) - self.cathode_volts, self.source_ohms)
        rest_plate = self.supply_volts - self.cathode_volts

        def excess(current):
            plate = rest_plate - load_ohms * (current - self.rest_current)
            return current - self.triodes * valves.ECC81.plate_current(grid, plate)

        most = self.rest_current + rest_plate / load_ohms
        return valves.bisect(excess, np.zeros_like(grid), np.full_like(grid, most))

    @functools.cached_property
    def load_ohms(self):
        def excess(log_ohms):
            low, high = self.current(np.array([-1.0, 1.0]) * self.limits.input_range, np.exp(log_ohms))
            rest = self.rest_current
            return (high - rest) / (rest - low) + self.limits.maximum / self.limits.minimum

        return float(np.exp(brentq(excess, np.log(1e3), np.log(3e6), xtol=1e-13)))

    @functools.cached_property
    def volts_per_ampere(self):
        driven = self.current(np.array([self.limits.input_range]), self.load_ohms)[0]
        return self.limits.maximum / (driven - self.rest_current)

    def curve(self, x):
        current = self.current(np.asarray(x, float) * self.limits.input_range, self.load_ohms)
        return self.limits.normalised((current - self.rest_current) * self.volts_per_ampere)

    def describe(self):
        return (
            f"supply {self.supply_volts} V, cathode {self.cathode_volts} V, source {self.source_ohms:.0f} ohms, "
            f"load {self.load_ohms:.1f} ohms, {self.volts_per_ampere:.4f} V at the tank for an ampere"
        )


def models():
    """{name: model}, in the order of the header."""
    return {
        "Drive": TransformerDriver(DRIVE, 8.5, 440.0, 100e3, (-0.7, -0.45, 0.0, 0.25, 0.4, 0.46, 0.5)),
        "Recovery": CommonCathode(RECOVERY, 100e3, 0.7, (-0.3, -0.2, -0.07, 0.0, 0.06, 0.12, 0.25)),
    }


def tables():
    return {name: valve_curves.fitted(model) for name, model in models().items()}


def render():
    parts = [
        generated.head(COMMAND, "Koren's valves on their load lines, fitted by eight monotone cubic segments."),
        '#include "tables/SpringTankCurves.h"\n',
        "namespace tables {\n",
    ]
    for name, model in models().items():
        parts.append(valve_curves.entry(f"kSpringTank{name}", valve_curves.fitted(model), [model.describe()]))
    parts.append("}  // namespace tables\n")
    return "\n".join(parts)


def write():
    PATH.write_text(render())
    valve_curves.report(models())


def check():
    return [generated.table_difference(PATH, render(), 2.0)]


def plot(directory):
    import valve_pictures

    valve_pictures.draw_curves(directory / "spring-tank-curves.png", models(), tables())


if __name__ == "__main__":
    generated.main("The spring tank's driver and recovery stage.", write, check, plot)

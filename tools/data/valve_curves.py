"""The valve curves of the two-channel reverb amp, and the output soft clip, as eight cubic segments each.

Models: curve_models.py on valves.py (Koren 1996; load lines), fitted by spline.py. The parameters are below: volts and
ohms; breakpoints in x = input volts / input range. The soft clip has no model: the line y = x to the outer breakpoints,
then the cubic that goes on in value, slope and curvature and is flat at the end, at 11/12.
"""

import dataclasses

import numpy as np
from scipy.optimize import brentq

import generated
import spline
from curve_models import SLOPE_STEP, CommonCathode, Limits, LongTailedPair, OutputValve, PairOutput

COMMAND = "tools/data/valve_curves.py"
PATH = generated.TABLES / "ArvelReverb65Curves.cpp"

STAGE_1 = Limits(input_range=10.0, minimum=100.1697, maximum=300.4954)
STAGE_2 = Limits(input_range=5.0, minimum=120.0555, maximum=367.8339)
STAGE_3 = Limits(input_range=5.0, minimum=14.91965, maximum=222.9328)
INVERTER_A = Limits(input_range=10.0, minimum=119.4794, maximum=366.59479)
INVERTER_B = Limits(input_range=10.0, minimum=106.0296, maximum=358.5621)
OUTPUT_A = Limits(input_range=50.0, minimum=-18.85376, maximum=-0.09345604)
OUTPUT_B = Limits(input_range=50.0, minimum=0.08957769, maximum=18.84547)

REST_CURRENT_VOLTS = -0.42840672  # what the power amp takes out of the sum of its two halves
BIAS_DIFFERENCE_VOLTS = 3.0
OUTPUT_BREAKPOINTS = (-0.5, -0.25, -0.1, 0.0, 0.2, 0.5, 0.75)
INVERTER_BREAKPOINTS = (-0.6, -0.4, -0.15, 0.0, 0.15, 0.3, 0.5)


def output_valves():
    """The pair of output valves, biased so that their rest values sum to the rest current."""

    def pair(middle):
        bias_a, bias_b = middle + 0.5 * BIAS_DIFFERENCE_VOLTS, middle - 0.5 * BIAS_DIFFERENCE_VOLTS
        return (
            OutputValve(OUTPUT_A, bias_a, True, OUTPUT_BREAKPOINTS),
            OutputValve(OUTPUT_B, bias_b, False, OUTPUT_BREAKPOINTS),
        )

    excess = lambda middle: sum(valve.rest_volts() for valve in pair(middle)) - REST_CURRENT_VOLTS
    return pair(brentq(excess, -50.0, -45.0, xtol=1e-13))


def models():
    """{name: model}, in the order of the header."""
    # With the coupled load of the mixing network behind it, the third stage sees 100 k parallel 220 k.
    loaded_plate_ohms = 100e3 * 220e3 / (100e3 + 220e3)
    inverter = LongTailedPair()
    output_a, output_b = output_valves()
    return {
        "NormalStage1": CommonCathode(STAGE_1, 100e3, 1.7, (-0.25, -0.1, 0.0, 0.15, 0.2, 0.3, 0.5)),
        "NormalStage2": CommonCathode(STAGE_2, 100e3, 1.45, (-0.33, 0.0, 0.25, 0.4, 0.45, 0.5, 0.6)),
        "VibratoStage1": CommonCathode(STAGE_1, 100e3, 1.5, (-0.35, -0.2, 0.0, 0.12, 0.18, 0.25, 0.5)),
        "VibratoStage2": CommonCathode(STAGE_2, 100e3, 2.0, (-0.6, -0.35, 0.0, 0.3, 0.4, 0.5, 0.65)),
        "VibratoStage3": CommonCathode(STAGE_3, loaded_plate_ohms, 0.65, (-0.5, -0.3, -0.15, 0.0, 0.12, 0.3, 0.6)),
        "PhaseInverterA": PairOutput(INVERTER_A, inverter, 0, INVERTER_BREAKPOINTS),
        "PhaseInverterB": PairOutput(INVERTER_B, inverter, 1, INVERTER_BREAKPOINTS),
        "OutputValveA": output_a,
        "OutputValveB": output_b,
    }


@dataclasses.dataclass(frozen=True)
class Table:
    breakpoints: np.ndarray
    segments: np.ndarray

    def volts(self, limits, input_volts):
        """Output volts as at run time, at the plate: nothing is taken out for rest."""
        y = spline.evaluate(self.breakpoints, self.segments, np.asarray(input_volts) / limits.input_range)
        return limits.middle + limits.half * y


def fitted(model):
    at_rest = model.curve(np.array([-SLOPE_STEP, 0.0, SLOPE_STEP]))
    node_values = spline.fit(
        model.curve,
        np.array(model.breakpoints),
        at_rest[1],
        (at_rest[2] - at_rest[0]) / (2.0 * SLOPE_STEP),
        (1.0, -1.0) if model.falls else (-1.0, 1.0),
    )
    return Table(*spline.to_float(model.breakpoints, spline.segments(*node_values)))


def soft_clip():
    """Above 0.75: y = x - 16/3 (x - 0.75)^3, expanded; mirrored below."""
    knee, line = [-16.0 / 3.0, 12.0, -8.0, 2.25], [0.0, 0.0, 1.0, 0.0]
    mirrored = [knee[0], -knee[1], knee[2], -knee[3]]
    return Table(
        np.array([-0.75, -0.5, -0.25, 0.0, 0.25, 0.5, 0.75], np.float32),
        np.array([mirrored] + [line] * 6 + [knee], np.float32),
    )


def tables():
    return {name: fitted(model) for name, model in models().items()}


def entry(name, table, comment):
    comment = "\n".join(f"// {line}" for line in comment)
    segments = "\n".join(
        "        {" + ", ".join(generated.number(v) for v in row) + "}," for row in table.segments
    )
    breakpoints = ", ".join(generated.number(v) for v in table.breakpoints)
    return f"{comment}\nconst ValveCurve {name} = {{\n    {{{breakpoints}}},\n    {{\n{segments}\n    }},\n}};\n"


def render():
    parts = [
        generated.head(
            COMMAND,
            "Koren's valves on their load lines, fitted by eight monotone cubic segments.",
        ),
        '#include "tables/ArvelReverb65Curves.h"\n',
        "namespace tables {\n",
    ]
    for name, model in models().items():
        parts.append(entry(f"kArvelReverb65{name}", fitted(model), [model.describe()]))
    parts.append(entry("kOutputSoftClip", soft_clip(), ["y = x, then y = x - 16/3 (x - 3/4)^3"]))
    parts.append("}  // namespace tables\n")
    return "\n".join(parts)


def write():
    PATH.write_text(render())
    report(models())


def report(of):
    """Prints what the acceptance asks of each curve. of: {name: model}."""
    x = np.linspace(-1.0, 1.0, 40001)
    for name, model in of.items():
        table = fitted(model)
        error = np.abs(spline.evaluate(table.breakpoints, table.segments, x) - model.curve(x))
        rest = float(table.segments[list(table.breakpoints).index(0.0)][3])
        slope = float(table.segments[list(table.breakpoints).index(0.0)][2])
        limits = model.limits
        print(
            f"{name}: rest {rest:+.4f} ({limits.middle + limits.half * rest:.3f} V), "
            f"gain {slope * limits.half / limits.input_range:.2f}, "
            f"largest error {100.0 * error.max():.2f} % at {x[error.argmax()]:+.3f}; {model.describe()}"
        )


def check():
    # The smallest range of a curve is that of y, from -1 to 1.
    return [generated.table_difference(PATH, render(), 2.0)]


def plot(directory):
    import valve_pictures

    valve_pictures.draw(directory, models(), {name: fitted(model) for name, model in models().items()}, soft_clip())


if __name__ == "__main__":
    generated.main("The valve curves and the output soft clip.", write, check, plot)

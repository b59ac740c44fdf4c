"""Pictures of the valve curves: transfer and fit error."""

import numpy as np

import spline

GROUPS = {
    "preamp-curves.png": ["NormalStage1", "NormalStage2", "VibratoStage1", "VibratoStage2", "VibratoStage3"],
    "power-amp-curves.png": ["PhaseInverterA", "PhaseInverterB", "OutputValveA", "OutputValveB"],
}


def pyplot_without_screen():
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    return pyplot


def draw_curves(path, models, tables):
    """One column a curve: transfer above, fit error below. models, tables: {name: ...} in the same order."""
    pyplot = pyplot_without_screen()
    x = np.linspace(-1.0, 1.0, 2001)
    figure, axes = pyplot.subplots(2, len(models), figsize=(3.0 * len(models), 5.2), squeeze=False)
    for column, (name, model) in zip(axes.T, models.items()):
        table = tables[name]
        fitted, exact = spline.evaluate(table.breakpoints, table.segments, x), model.curve(x)
        volts_in = x * model.limits.input_range
        column[0].plot(volts_in, model.limits.middle + model.limits.half * exact, color="0.6", linewidth=3)
        column[0].plot(volts_in, model.limits.middle + model.limits.half * fitted, color="C3", linewidth=1)
        knots = np.asarray(table.breakpoints, float)
        column[0].plot(
            knots * model.limits.input_range,
            table.volts(model.limits, knots * model.limits.input_range),
            ".",
            color="C3",
        )
        first = name == next(iter(models))
        column[0].set(title=name, ylabel="V out" if first else "")
        column[1].plot(volts_in, 100.0 * (fitted - exact), color="C0", linewidth=1)
        column[1].set(xlabel="V in", ylabel="fit error, % of half range" if first else "")
        for axis in column:
            axis.grid(alpha=0.3)
    figure.tight_layout()
    figure.savefig(path, dpi=75)
    pyplot.close(figure)


def draw(directory, models, tables, clip):
    for file, names in GROUPS.items():
        draw_curves(directory / file, {name: models[name] for name in names}, tables)

    pyplot = pyplot_without_screen()
    figure, axis = pyplot.subplots(figsize=(5, 4))
    wide = np.linspace(-1.3, 1.3, 1001)
    axis.plot(wide, np.clip(wide, -1.3, 1.3), color="0.7", linewidth=1)
    axis.plot(wide, spline.evaluate(clip.breakpoints, clip.segments, wide), color="C3")
    axis.set(xlabel="in", ylabel="out", title="Output soft clip")
    axis.grid(alpha=0.3)
    figure.tight_layout()
    figure.savefig(directory / "output-soft-clip.png", dpi=75)
    pyplot.close(figure)

"""The low-pass pairs of the oversampler, one pair for each rate and length.

Model: type II linear-phase FIRs (even length, symmetric) of rate * length taps at rate * 44100 Hz. The up filter
follows a zero-order hold (each sample repeated `rate` times), whose droop sin(pi f rate / F) / (rate sin(pi f / F))
it undoes in the pass band; the down filter is flat there. Both are equiripple, found as the minimax solution of a
linear programme: J. H. McClellan and T. W. Parks, "A unified approach to the design of optimum FIR linear-phase
digital filters", 1973; L. Rabiner, "Linear program design of finite impulse response digital filters", 1972.

Parameters: the pass band's edge in Hz for each length (taps per phase); the stop band begins at 44100 Hz minus the
edge, so that what folds lands above the edge. The stop band's attenuation is given for each length, and the pass
band's relative error is made as small as it allows.

The taps are rounded to multiples of 2^-23 with the sum kept at 1, so that a constant passes exactly in 32-bit
arithmetic, in whatever order the taps are added.
"""

import numpy as np
from scipy.optimize import linprog

import generated

COMMAND = "tools/data/oversampling_firs.py"
OUTER_RATE_HZ = 44100.0
EDGE_HZ = {6: 11000.0, 8: 13000.0, 10: 15000.0, 12: 16000.0}
STOP_DB = {6: 60.2, 8: 66.0, 10: 61.5, 12: 63.5}
PAIRS = [(2, 8), (2, 12), (3, 6), (3, 10), (4, 6), (4, 10), (4, 12), (5, 6), (5, 10)]
GRID = 2.0**-23
PATH = generated.TABLES / "OversamplingFirs.cpp"


def hold_response(frequency_hz, rate):
    """Magnitude of the zero-order hold over `rate` samples, 1 at DC."""
    x = np.pi * np.asarray(frequency_hz) / (rate * OUTER_RATE_HZ)
    with np.errstate(invalid="ignore", divide="ignore"):
        return np.where(x == 0.0, 1.0, np.sin(rate * x) / (rate * np.sin(x)))


def amplitude(taps, frequency_hz, rate):
    """The zero-phase response of symmetric taps at rate * 44100 Hz."""
    half = np.asarray(taps)[len(taps) // 2 :]
    k = np.arange(len(half)) + 0.5
    return np.cos(2.0 * np.pi * np.outer(frequency_hz, k) / (rate * OUTER_RATE_HZ)) @ (2.0 * half)


def design(rate, length, follows_hold):
    """Taps of one filter, in double precision."""
    inner_rate_hz, edge = rate * OUTER_RATE_HZ, EDGE_HZ[length]
    pass_hz = np.linspace(0.0, edge, 400)
    stop_hz = np.linspace(OUTER_RATE_HZ - edge, inner_rate_hz / 2.0, 1200)
    wanted = 1.0 / hold_response(pass_hz, rate) if follows_hold else np.ones_like(pass_hz)

    # Unknowns: one half of the taps, then the pass band's largest relative error, which is made smallest.
    k = np.arange(rate * length // 2) + 0.5
    basis = lambda hz: 2.0 * np.cos(2.0 * np.pi * np.outer(hz, k) / inner_rate_hz)
    in_pass = lambda sign: np.hstack([sign * basis(pass_hz), -wanted[:, None]])
    in_stop = lambda sign: np.hstack([sign * basis(stop_hz), np.zeros((len(stop_hz), 1))])
    floor = np.full(len(stop_hz), 10.0 ** (-STOP_DB[length] / 20.0))
    solution = linprog(
        np.append(np.zeros(len(k)), 1.0),
        A_ub=np.vstack([in_pass(1.0), in_pass(-1.0), in_stop(1.0), in_stop(-1.0)]),
        b_ub=np.concatenate([wanted, -wanted, floor, floor]),
        A_eq=np.append(np.full(len(k), 2.0), 0.0)[None, :],
        b_eq=[1.0],
        bounds=[(None, None)] * len(k) + [(0.0, None)],
        method="highs",
    )
    half = solution.x[:-1]
    return np.concatenate([half[::-1], half])


def rounded(taps):
    """The taps on the grid; the largest one takes what is missing from a sum of exactly 1."""
    half = np.round(taps[len(taps) // 2 :] / GRID)
    half[0] += 0.5 / GRID - half.sum()
    return np.concatenate([half[::-1], half]) * GRID


def filters():
    """{(rate, length): (up, down)}"""
    return {p: (rounded(design(*p, True)), rounded(design(*p, False))) for p in PAIRS}


def render(pairs):
    parts = [
        generated.head(
            COMMAND,
            "Equiripple low-passes at rate times 44100 Hz, rate * length taps each, on a grid of 2^-23.",
            "Pass band to 11, 13, 15, 16 kHz for length 6, 8, 10, 12; stop band from 44.1 kHz minus that.",
        ),
        '#include "tables/OversamplingFirs.h"\n\n// clang-format off\n',
        "namespace tables {\n\nnamespace {\n",
    ]
    for (rate, length), pair in pairs.items():
        for word, taps in zip(("Up", "Down"), pair):
            parts.append(f"const float k{word}{rate}x{length}[{rate * length}] = {{\n{generated.rows(taps)}\n}};\n")
    parts.append("}  // namespace\n")
    entries = "\n".join(f"    {{{r}, {n}, kUp{r}x{n}, kDown{r}x{n}}}," for r, n in pairs)
    parts.append(f"const OversamplingFirPair kOversamplingFirs[kOversamplingFirPairs] = {{\n{entries}\n}};\n")
    parts.append("}  // namespace tables\n")
    return "\n".join(parts)


def figures(rate, length, up, down):
    """Ripple of up and down in series in dB, and the smaller stop-band attenuation of the two."""
    edge = EDGE_HZ[length]
    pass_hz = np.linspace(0.0, edge, 4001)
    stop_hz = np.linspace(OUTER_RATE_HZ - edge, rate * OUTER_RATE_HZ / 2.0, 8001)
    series = hold_response(pass_hz, rate) * amplitude(up, pass_hz, rate) * amplitude(down, pass_hz, rate)
    stop = max(np.abs(amplitude(taps, stop_hz, rate)).max() for taps in (up, down))
    return np.abs(20.0 * np.log10(series)).max(), -20.0 * np.log10(stop)


def write():
    pairs = filters()
    PATH.write_text(render(pairs))
    for pair, taps in pairs.items():
        print(pair, "ripple %.4f dB, stop band %.1f dB" % figures(*pair, *taps))


def check():
    # The taps' range is that of the pass band: a filter's gain of 1.
    return [generated.table_difference(PATH, render(filters()), 1.0)]


def plot(directory):
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, axes = pyplot.subplots(2, 1, figsize=(8, 7))
    for (rate, length), (up, down) in filters().items():
        hz = np.linspace(0.0, rate * OUTER_RATE_HZ / 2.0, 3000)
        series = hold_response(hz, rate) * amplitude(up, hz, rate) * amplitude(down, hz, rate)
        level = 20.0 * np.log10(np.maximum(np.abs(series), 1e-9))
        for axis in axes:
            axis.plot(hz / 1000.0, level, label=f"{rate}x, {length}", linewidth=0.9)
    axes[0].set(ylim=(-170, 5), xlim=(0, 110), ylabel="dB", title="Hold, up and down filter in series")
    axes[1].set(ylim=(-0.15, 0.15), xlim=(0, 17), xlabel="kHz", ylabel="dB", title="The pass band")
    axes[0].legend(ncol=3, fontsize=8)
    for axis in axes:
        axis.grid(alpha=0.3)
    figure.tight_layout()
    figure.savefig(directory / "oversampling-firs.png", dpi=90)


if __name__ == "__main__":
    generated.main("The low-pass pairs of the oversampler.", write, check, plot)

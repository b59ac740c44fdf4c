"""Eight cubic segments over -1 to 1 that follow a curve: monotone, with value and slope continuous in 32-bit floats.

The unknowns are value and slope at -1, at the seven breakpoints and at 1 (cubic Hermite form). They are found by
least squares under linear conditions:
  - both ends, and value and slope at rest (x = 0), are as told;
  - the curve is monotone: each slope lies between 0 and three times the chord's on either side
    (F. N. Fritsch, R. E. Carlson, "Monotone piecewise cubic interpolation", SIAM J. Numer. Anal. 17, 1980).
The quadratic programme is solved as a least distance problem (C. L. Lawson, R. J. Hanson, "Solving least squares
problems", 1974, chapter 23).
"""

import numpy as np
from scipy.linalg import null_space
from scipy.optimize import nnls

REST_INDEX_TOLERANCE = 1e-12


def hermite_rows(x, nodes):
    """Matrix from (values, slopes at the nodes) to the curve's values at x."""
    i = np.clip(np.searchsorted(nodes, x, side="left") - 1, 0, len(nodes) - 2)
    h = nodes[i + 1] - nodes[i]
    t = (x - nodes[i]) / h
    rows = np.zeros((len(x), 2 * len(nodes)))
    r, n = np.arange(len(x)), len(nodes)
    rows[r, i] = (1.0 + 2.0 * t) * (1.0 - t) ** 2
    rows[r, i + 1] = t**2 * (3.0 - 2.0 * t)
    rows[r, n + i] = h * t * (1.0 - t) ** 2
    rows[r, n + i + 1] = h * t**2 * (t - 1.0)
    return rows


def constrained_least_squares(matrix, target, equal, equal_to, at_least_zero):
    """min |matrix u - target| where equal u = equal_to and at_least_zero u >= 0."""
    start = np.linalg.lstsq(equal, equal_to, rcond=None)[0]
    free = null_space(equal)  # u = start + free w
    q, r = np.linalg.qr(matrix @ free)
    wanted = q.T @ (target - matrix @ start)  # minimise |r w - wanted|, with z = r w - wanted
    conditions = np.linalg.solve(r.T, (at_least_zero @ free).T).T
    bounds = -(at_least_zero @ start) - conditions @ wanted
    stacked = np.vstack([conditions.T, bounds])
    unit = np.zeros(len(stacked))
    unit[-1] = 1.0
    dual = nnls(stacked, unit, maxiter=1000)[0]
    residual = stacked @ dual - unit
    z = -residual[:-1] / residual[-1]
    return start + free @ np.linalg.solve(r, z + wanted)


def fit(curve, breakpoints, rest_value, rest_slope, ends):
    """Values and slopes at the nodes -1, breakpoints, 1. curve is a function of x; 0 is a breakpoint."""
    nodes = np.concatenate([[-1.0], breakpoints, [1.0]])
    n = len(nodes)
    rest = int(np.argmin(np.abs(nodes)))
    if abs(nodes[rest]) > REST_INDEX_TOLERANCE:
        raise ValueError("the rest point has to be a breakpoint")

    x = np.linspace(-1.0, 1.0, 4001)
    equal = np.zeros((4, 2 * n))
    equal[0, 0] = equal[1, n - 1] = equal[2, rest] = equal[3, n + rest] = 1.0
    direction = np.sign(ends[1] - ends[0])
    conditions = []
    for i in range(n - 1):
        chord = np.zeros(2 * n)
        chord[i + 1], chord[i] = 1.0 / (nodes[i + 1] - nodes[i]), -1.0 / (nodes[i + 1] - nodes[i])
        for node in (i, i + 1):
            slope = np.zeros(2 * n)
            slope[n + node] = 1.0
            conditions += [direction * slope, direction * (3.0 * chord - slope)]
    solution = constrained_least_squares(
        hermite_rows(x, nodes),
        curve(x),
        equal,
        np.array([ends[0], ends[1], rest_value, rest_slope]),
        np.array(conditions),
    )
    return nodes, solution[:n], solution[n:]


def segments(nodes, values, slopes):
    """a, b, c, d of each segment as polynomials in x itself, in double precision."""
    table = []
    for x0, x1, y0, y1, m0, m1 in zip(nodes, nodes[1:], values, values[1:], slopes, slopes[1:]):
        h = x1 - x0
        chord = (y1 - y0) / h
        a = (m0 + m1 - 2.0 * chord) / h**2
        b = (3.0 * chord - 2.0 * m0 - m1) / h  # a t^3 + b t^2 + m0 t + y0 with t = x - x0, expanded below
        table.append(
            [
                a,
                b - 3.0 * a * x0,
                m0 - 2.0 * b * x0 + 3.0 * a * x0**2,
                y0 - m0 * x0 + b * x0**2 - a * x0**3,
            ]
        )
    return np.array(table)


def evaluate(breakpoints, table, x):
    """The stored curve as it is evaluated at run time, in double precision."""
    x = np.clip(np.asarray(x, float), -1.0, 1.0)
    a, b, c, d = np.asarray(table, float)[np.searchsorted(np.asarray(breakpoints, float), x, side="left")].T
    return ((a * x + b) * x + c) * x + d


def evaluate_slope(table, segment, x):
    a, b, c, _ = np.asarray(table, float)[segment]
    return (3.0 * a * x + 2.0 * b) * x + c


def to_float(breakpoints, table):
    """Rounds to 32-bit floats segment by segment, from the rest point outwards.

    Rounding a and b moves value and slope at the knots. c and then d make up for it where the segment meets its
    inner neighbour, so that errors of one segment do not open a gap to the next.
    """
    breakpoints = np.asarray(breakpoints, np.float32)
    x = breakpoints.astype(float)
    out = np.zeros((8, 4), np.float32)
    rest = int(np.argmin(np.abs(x)))

    def settle(segment, knot, value, slope):
        a, b = (np.float32(v) for v in table[segment][:2])
        c = np.float32(slope - (3.0 * float(a) * knot + 2.0 * float(b)) * knot)
        d = np.float32(value - ((float(a) * knot + float(b)) * knot + float(c)) * knot)
        out[segment] = a, b, c, d

    order = [(s, s - 1) for s in range(rest + 1, 8)] + [(s, s) for s in range(rest, -1, -1)]
    for segment, knot in order:
        inner = segment - 1 if segment > rest else segment + 1
        if inner in (rest, rest + 1) and (segment == rest or segment == rest + 1):
            value, slope = table[segment][3], table[segment][2]
        else:
            a, b, c, d = out[inner].astype(float)
            value = ((a * x[knot] + b) * x[knot] + c) * x[knot] + d
            slope = (3.0 * a * x[knot] + 2.0 * b) * x[knot] + c
        settle(segment, x[knot], value, slope)
    return breakpoints, out

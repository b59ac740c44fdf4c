"""Fits the polynomials of lib/math/include/math/FastPower.h and prints them with their largest errors.

Lawson's algorithm (Lawson 1961, reweighted least squares) on a dense Chebyshev grid:

    2^f          ~ 1 + f * p(f),  f in -1/2 .. 1/2,              error relative to 2^f
    log2(1 + f)  ~ f * q(f),      1 + f in 1/sqrt 2 .. sqrt 2,   error absolute

Needs Debian's python3-numpy. Usage: python3 tools/data/power_polynomials.py
"""

import numpy as np

GRID = 4000
ROUNDS = 200


def fit(function, lowest, highest, degree, weight):
    """Coefficients from the constant up, and the largest weighted error."""
    x = 0.5 * (lowest + highest) + 0.5 * (highest - lowest) * np.cos(np.pi * (np.arange(GRID) + 0.5) / GRID)
    y = function(x)
    powers = np.vander(x, degree + 1, increasing=True)
    share = np.ones(GRID)
    for _ in range(ROUNDS):
        scale = np.sqrt(share) * weight(x)
        coefficients = np.linalg.lstsq(powers * scale[:, None], y * scale, rcond=None)[0]
        error = np.abs((powers @ coefficients - y) * weight(x))
        share *= error / error.max() + 1e-3
        share /= share.mean()
    return coefficients, error.max()


def show(name, coefficients, error):
    print(name, ", ".join(f"{c:.8g}f" for c in coefficients), f"error {error:.1e}")


if __name__ == "__main__":
    show("p:", *fit(lambda f: (2.0**f - 1.0) / f, -0.5, 0.5, 4, lambda f: np.abs(f) * 2.0**-f))
    show("q:", *fit(lambda f: np.log2(1.0 + f) / f, 0.5**0.5 - 1.0, 2.0**0.5 - 1.0, 5, np.abs))

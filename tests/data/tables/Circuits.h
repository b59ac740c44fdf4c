// The valve equations and the circuits around them, solved anew in double precision: what the curves are held
// against. Plate currents after N. Koren, "Improved vacuum tube models for SPICE simulations", Glass Audio
// 8(5), 1996. Volts, amperes and ohms.
#pragma once

#include <cmath>
#include <functional>

namespace circuits {

inline double softplus(double x) {
    return x > 30.0 ? x : std::log1p(std::exp(x));
}

// Zero of a rising function.
inline double solve(const std::function<double(double)>& rising, double low, double high) {
    for (int i = 0; i < 52; ++i) {
        const double middle = 0.5 * (low + high);
        (rising(middle) > 0.0 ? high : low) = middle;
    }
    return 0.5 * (low + high);
}

struct Triode {
    double mu, ex, kg1, kp, kvb;

    double plateCurrent(double grid, double plate) const {
        if (plate <= 0.0) return 0.0;
        const double e1 = plate / kp * softplus(kp * (1.0 / mu + grid / std::sqrt(kvb + plate * plate)));
        return std::pow(e1, ex) / kg1 * 2.0;
    }

    // A bend of 0.12 V into 2 k.
    static double gridCurrent(double grid) { return 0.12 * softplus(grid / 0.12) / 2000.0; }

    // Grid behind a source resistance, against the cathode.
    static double gridBehind(double sourceOhms, double open) {
        return solve([&](double grid) { return grid + sourceOhms * gridCurrent(grid) - open; },
                     std::fmin(open, 0.0) - 50.0, std::fmax(open, 0.0));
    }

    // Plate against ground, through plateOhms from the supply.
    double plateOnLoadLine(double grid, double cathode, double supply, double plateOhms) const {
        return solve(
            [&](double plate) {
                return plate + plateOhms * plateCurrent(grid - cathode, plate - cathode) - supply;
            },
            0.0, supply);
    }
};

inline constexpr Triode k12AX7{100.0, 1.4, 1060.0, 600.0, 300.0};
inline constexpr Triode k12AT7{60.0, 1.35, 460.0, 300.0, 300.0};

struct CommonCathode {
    double supply, plateOhms, cathodeVolts, sourceOhms;

    double plate(double input) const {
        const double grid = Triode::gridBehind(sourceOhms, input - cathodeVolts);
        return k12AX7.plateOnLoadLine(grid + cathodeVolts, cathodeVolts, supply, plateOhms);
    }
};

struct LongTailedPair {
    double supply, plateOhmsA, plateOhmsB, cathodeOhms, tailOhms, sourceOhms;

    struct Plates {
        double cathode, a, b;
    };

    Plates plates(double inputA, double idleGrid) const {
        return at(solve(
                      [&](double cathode) {
                          return cathode / (cathodeOhms + tailOhms) - current(at(cathode, inputA, idleGrid));
                      },
                      0.0, supply),
                  inputA, idleGrid);
    }

    // The voltage of the joint of cathode and tail resistor at rest, which both grids idle at.
    double idleGrid() const {
        const double joint = tailOhms / (cathodeOhms + tailOhms);
        return joint * solve(
                           [&](double cathode) {
                               return cathode / (cathodeOhms + tailOhms) -
                                      current(at(cathode, 0.0, joint * cathode));
                           },
                           0.0, supply);
    }

private:
    Plates at(double cathode, double inputA, double idle) const {
        const double gridA = cathode + Triode::gridBehind(sourceOhms, idle + inputA - cathode);
        return {cathode, k12AT7.plateOnLoadLine(gridA, cathode, supply, plateOhmsA),
                k12AT7.plateOnLoadLine(idle, cathode, supply, plateOhmsB)};
    }

    double current(const Plates& p) const {
        return (supply - p.a) / plateOhmsA + (supply - p.b) / plateOhmsB;
    }
};

// One output valve of a push-pull pair: mu 8.7, ex 1.35, kg1 1460, kp 48, kvb 12.
struct BeamPentode {
    double biasVolts, supply, screen, loadOhms;

    double current(double input) const {
        const double e1 = screen / 48.0 * softplus(48.0 * (1.0 / 8.7 + (input + biasVolts) / screen));
        const double saturated = std::pow(e1, 1.35) / 1460.0 * 2.0;
        return solve(
            [&](double i) { return i - saturated * std::atan(std::fmax(supply - loadOhms * i, 0.0) / 12.0); },
            0.0, supply / loadOhms);
    }
};

}  // namespace circuits

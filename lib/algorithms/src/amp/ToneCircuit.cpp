#include "algorithms/amp/ToneCircuit.h"

#include <algorithm>

#include "utility/Multiversion.h"

namespace {

constexpr float kRampSeconds = 0.0032f;

// A polynomial that is bilinear in bass b and middle m: c + cb b + cm m + cbm b m.
struct Bilinear {
    double c, cb, cm, cbm;
};

// One term of the denominator: the bilinear factors of 1, v, v^2, t, t v, t^2 and t^2 v.
struct Term {
    Bilinear one, v, vv, t, tv, tt, ttv;
};

constexpr Term kD0 = {{1e13, 2.5e12, 1e11, 0},
                      {1e12, 2.5e11, 1e10, 0},
                      {-1e12, 0, 0, 0},
                      {2.5e12, 0, 0, 0},
                      {2.5e11, 0, 0, 0},
                      {0, 0, 0, 0},
                      {0, 0, 0, 0}};
constexpr Term kD1 = {{2.0425735e11, 301689337500, 16767573500, 1.175e9},
                      {2.2075735e10, 30581433750, 1693257350, 1.175e8},
                      {-2.2075735e10, -2.50625e10, -1.4725e9, 0},
                      {51064337500, 6.234375e10, 3.66875e9, 0},
                      {5518933750, 6.234375e9, 3.66875e8, 0},
                      {-1.5625e8, 0, 0, 0},
                      {-1.5625e7, 0, 0, 0}};
constexpr Term kD2 = {{14134417.5, 1656380866.875, 1427594.175, 134147535.125},
                      {35115904.5, 215416827.375, 2909409.045, 13608628.5125},
                      {-35115904.5, -206637851.25, -2558250, -11779375},
                      {3533604.375, 408053184.375, 137812.5, 29301562.5},
                      {8778976.125, 51092037.1875, 619125, 2930156.25},
                      {-3180253.125, -3906250, -229687.5, 0},
                      {-343806.5625, -390625, -22968.75, 0}};
constexpr Term kD3 = {{0, 112979.1875, 0, 11411.041875},
                      {2332.1788875, 284600.761784375, 235.553038875, 23275.447483125},
                      {-2332.1788875, -284017.7170625, -212.23125, -20464.09375},
                      {0, 28244.796875, 0, 1101.5625},
                      {583.044721875, 70153.255109375, 22.7390625, 4944.9140625},
                      {0, -25420.390625, 0, -1835.9375},
                      {-524.741765625, -3186.5703125, -37.8984375, -183.59375}};
constexpr Term kD4 = {{0, 0, 0, 0},
                      {0, 18.6415659375, 0, 1.882821909375},
                      {0, -18.6415659375, 0, -1.69640625},
                      {0, 0, 0, 0},
                      {0, 4.660391484375, 0, 0.1817578125},
                      {0, 0, 0, 0},
                      {0, -4.194364453125, 0, -0.3029296875}};

// Factors known to be zero cost nothing.
template <const Term& T, Bilinear Term::*Part>
[[gnu::always_inline]] inline double bilinear(double b, double m) {
    constexpr Bilinear p = T.*Part;
    double atMidZero = p.c;
    if constexpr (p.cb != 0) atMidZero += p.cb * b;
    if constexpr (p.cbm != 0) {
        return atMidZero + m * (p.cm + p.cbm * b);
    } else if constexpr (p.cm != 0) {
        return atMidZero + m * p.cm;
    } else {
        return atMidZero;
    }
}

template <const Term& T>
[[gnu::always_inline]] inline double denominator(double b, double m, double t, double v) {
    const double one =
        bilinear<T, &Term::one>(b, m) + t * (bilinear<T, &Term::t>(b, m) + t * bilinear<T, &Term::tt>(b, m));
    const double first =
        bilinear<T, &Term::v>(b, m) + t * (bilinear<T, &Term::tv>(b, m) + t * bilinear<T, &Term::ttv>(b, m));
    return one + v * (first + v * bilinear<T, &Term::vv>(b, m));
}

// Nested in the four positions, so that each of the 93 factors costs one multiplication and addition.
[[gnu::always_inline]] inline ToneCircuitPolynomials polynomials(double b, double m, double t, double v) {
    ToneCircuitPolynomials p{};
    p.n1 = v * (14725000000. * m + 250625000000. * b + 625000000. * t);
    p.n2 = v * (m * (1286250. + 117793750. * b) + 24812500. * b + 9187500. * t);
    p.n3 = v * b * (73437.5 * t + 10281.25 * m);
    p.d0 = denominator<kD0>(b, m, t, v);
    p.d1 = denominator<kD1>(b, m, t, v);
    p.d2 = denominator<kD2>(b, m, t, v);
    p.d3 = denominator<kD3>(b, m, t, v);
    p.d4 = denominator<kD4>(b, m, t, v);
    return p;
}

using Run = ToneCircuit::Run;
constexpr int kRun = ToneCircuit::kRun;

// Bilinear transform of the polynomials at every position of the run.
TARVEK_MULTIVERSION
void design(const Run::Positions& at, double k, Run::Coefficients& out) {
    for (int n = 0; n < kRun; ++n) {
        const ToneCircuitPolynomials s = polynomials(at.bass[n], at.mid[n], at.treble[n], at.volume[n]);
        const double n1 = s.n1 * k;
        const double n2 = s.n2 * (k * k);
        const double n3 = s.n3 * (k * k * k);
        const double d1 = s.d1 * k;
        const double d2 = s.d2 * (k * k);
        const double d3 = s.d3 * (k * k * k);
        const double d4 = s.d4 * (k * k * k * k);
        const double ends = s.d0 + d4;
        const double middle = 4.0 * (s.d0 - d4);
        const double odd = 2.0 * (d1 - d3);
        const double inverse = 1.0 / (ends + d1 + d2 + d3);
        out.f[0][n] = (n1 + n2 + n3) * inverse;
        out.f[1][n] = 2.0 * (n1 - n3) * inverse;
        out.f[2][n] = -2.0 * n2 * inverse;
        out.f[3][n] = 2.0 * (n3 - n1) * inverse;
        out.f[4][n] = (n2 - n1 - n3) * inverse;
        out.g[0][n] = (middle + odd) * inverse;
        out.g[1][n] = (6.0 * ends - 2.0 * d2) * inverse;
        out.g[2][n] = (middle - odd) * inverse;
        out.g[3][n] = (ends - d1 + d2 - d3) * inverse;
    }
}

// The part that looks at the input: forward[n] = sum of f[j][n] x[n - j]. x has four earlier samples before
// it.
TARVEK_MULTIVERSION
void filterForward(const Run::Coefficients& c, const double* x, double* forward) {
    for (int n = 0; n < kRun; ++n) {
        forward[n] = c.f[0][n] * x[n] + c.f[1][n] * x[n - 1] + c.f[2][n] * x[n - 2] + c.f[3][n] * x[n - 3] +
                     c.f[4][n] * x[n - 4];
    }
}

// The recursion. Only y[n - 1] is younger than the sample before: it enters last.
TARVEK_MULTIVERSION
void filterBack(const Run::Coefficients& c, const double* forward, double (&last)[4], float* out,
                int length) {
    double y1 = last[0];
    double y2 = last[1];
    double y3 = last[2];
    double y4 = last[3];
    for (int n = 0; n < length; ++n) {
        const double earlier = forward[n] - c.g[3][n] * y4 - c.g[2][n] * y3 - c.g[1][n] * y2;
        const double y = earlier - c.g[0][n] * y1;
        out[n] = static_cast<float>(y);
        y4 = y3;
        y3 = y2;
        y2 = y1;
        y1 = y;
    }
    last[0] = y1;
    last[1] = y2;
    last[2] = y3;
    last[3] = y4;
}

// One pot over the run. A ramp at rest would tick to the value that it has.
void fillPositions(OnePoleRamp& ramp, bool isAtRest, float* positions, int length) {
    if (isAtRest) {
        std::fill_n(positions, kRun, ramp.current());
    } else {
        ramp.process(positions, length);
    }
}

}  // namespace

ToneCircuitPolynomials toneCircuitPolynomials(double bass, double mid, double treble, double volume) {
    return polynomials(bass, mid, treble, volume);
}

ToneCircuit::ToneCircuit(float sampleRateHz)
    : bass_(kRampSeconds, sampleRateHz),
      mid_(kRampSeconds, sampleRateHz),
      treble_(kRampSeconds, sampleRateHz),
      volume_(kRampSeconds, sampleRateHz),
      k_(2.0 * sampleRateHz) {
    setBass(0.5f, true);
    setMid(0.5f, true);
    setTreble(0.5f, true);
    setVolume(0.5f, true);
    std::fill_n(run_.positions.bass, kRun, 0.5f);
    std::fill_n(run_.positions.mid, kRun, 0.5f);
    std::fill_n(run_.positions.treble, kRun, 0.5f);
    std::fill_n(run_.positions.volume, kRun, 0.5f);
    design(run_.positions, k_, run_.coefficients);
}

void ToneCircuit::process(float* buffer, int length) {
    for (int start = 0; start < length; start += kRun) {
        processRun(buffer + start, std::min(kRun, length - start));
    }
}

void ToneCircuit::processRun(float* buffer, int length) {
    moveRamps(length);

    double* const x = inputs_ + kOrder;
    std::copy_n(buffer, length, x);
    alignas(64) double forward[kRun];
    filterForward(run_.coefficients, x, forward);
    filterBack(run_.coefficients, forward, lastOutputs_, buffer, length);
    std::copy_n(inputs_ + length, kOrder, inputs_);
}

void ToneCircuit::moveRamps(int length) {
    const bool bassRests = bass_.isAtRest();
    const bool midRests = mid_.isAtRest();
    const bool trebleRests = treble_.isAtRest();
    const bool volumeRests = volume_.isAtRest();
    const bool allRest = bassRests && midRests && trebleRests && volumeRests;
    if (allRest && isDesignedAtRest_) return;
    fillPositions(bass_, bassRests, run_.positions.bass, length);
    fillPositions(mid_, midRests, run_.positions.mid, length);
    fillPositions(treble_, trebleRests, run_.positions.treble, length);
    fillPositions(volume_, volumeRests, run_.positions.volume, length);
    design(run_.positions, k_, run_.coefficients);
    isDesignedAtRest_ = allRest;
}

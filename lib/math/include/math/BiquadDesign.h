// Second-order sections: the coefficient record and the formulas from physical units to coefficients.
//
//   H(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2)
//
// Formulas: R. Bristow-Johnson, Audio EQ Cookbook, with four departures: low-pass, high-pass and band-pass
// carry a gain; the peak of proportional q narrows as its gain grows; the shelf slope is a quarter of the q
// that was asked for; and the second peak form keeps its bandwidth whatever its gain (S. K. Mitra's allpass
// form).
//
// All designs run in double precision and are rounded once, into the record: near DC a float 1 - cos(w0)
// would lose most of its bits. Control side; nothing here touches a running filter.
#pragma once

// Normalised coefficients (a0 = 1), in the order that tables of them use.
template <typename T>
struct BiquadCoefficients {
    T a1{};
    T a2{};
    T b2{};
    T b1{};
    T b0{};

    template <typename U>
    BiquadCoefficients<U> rounded() const {
        return {static_cast<U>(a1), static_cast<U>(a2), static_cast<U>(b2), static_cast<U>(b1),
                static_cast<U>(b0)};
    }
};

// How one kind of filter turns its parameters into coefficients.
struct BiquadLaw {
    const char* name;  // the class, for messages
    double
        decibelScale;  // linear gain = 10^(dB * decibelScale): 0.05 for an amplitude G, 0.025 for its root A
    double qScale;     // what a given q is multiplied with before it is stored
    BiquadCoefficients<double> (*design)(double gain, double w0, double q);
};

// gain: linear, by the law's decibelScale, above 0. w0: radians per sample, 0 to below pi.
// q: the stored one, above 0 (for the shelves the slope S; a negative radicand under its root counts as 0).
namespace biquad {

extern const BiquadLaw lowPass;
extern const BiquadLaw highPass;
extern const BiquadLaw bandPass;
extern const BiquadLaw peak;
extern const BiquadLaw peakProportionalQ;
extern const BiquadLaw peak2;
extern const BiquadLaw lowShelf;
extern const BiquadLaw highShelf;
extern const BiquadLaw peakDouble;
extern const BiquadLaw peak2Double;
extern const BiquadLaw lowShelfDouble;

}  // namespace biquad

// Five values out of a table by one control, interpolated linearly between rows: three coefficients as they
// stand, then two corner frequencies (Hz) that come out as pole gains 1 - exp(-2 pi f / sampleRate). The pole
// gains are mixed, not the frequencies.
//
// The control runs over 0 to 1; outside of it a warning, and the nearer end.
//
// Control side only: it logs.
#pragma once

#include <array>

class OneDli {
public:
    static constexpr int kRows = 5;

    // table: five rows, not copied.
    OneDli(const float (*table)[5], float sampleRate) : table_(table), sampleRate_(sampleRate) {}

    std::array<float, 5> calc(float control) const;

private:
    const float (*table_)[5];
    float sampleRate_;
};

// The same in double precision over any number of rows.
class OneDliN {
public:
    // table: rows of them, 2 or more, not copied.
    OneDliN(const double (*table)[5], int rows, double sampleRate)
        : table_(table), rows_(rows), sampleRate_(sampleRate) {}

    std::array<double, 5> calc(double control) const;

private:
    const double (*table_)[5];
    int rows_;
    double sampleRate_;
};

// The laws behind the names that StandardTaper knows.
//
// The sums run in double precision, so that the ends come out as exactly 0 and 1.
#pragma once

#include "math/ITaper.h"

class TaperLinear : public ITaper {
public:
    float calc(float x) const override { return x; }
    float inverse(float y) const override { return y; }
};

// (base^x - 1) / (base - 1): slow at first. base = (100/N - 1)^2 gives N per cent at mid-travel.
class TaperExponential : public ITaper {
public:
    // base: above 0, not 1.
    explicit TaperExponential(double base);
    float calc(float x) const override;
    float inverse(float y) const override;

private:
    double base_;
    double logScale_;  // 1 / ln(base)
    double scale_;     // 1 / (base - 1)
};

// ln(1 + x (base - 1)) / ln(base): the exponential law turned about the diagonal.
class TaperLogarithmic : public ITaper {
public:
    // base: above 0, not 1.
    explicit TaperLogarithmic(double base) : mirrored_(base) {}
    float calc(float x) const override { return mirrored_.inverse(x); }
    float inverse(float y) const override { return mirrored_.calc(y); }

private:
    TaperExponential mirrored_;
};

// Two halves of a law T back to back, point-symmetrical about (0.5, 0.5).
template <typename T>
class TaperSCurve : public ITaper {
public:
    explicit TaperSCurve(double base) : half_(base) {}

    float calc(float x) const override {
        return x >= 0.5f ? 0.5f + 0.5f * half_.calc(2.0f * x - 1.0f)
                         : 0.5f * (1.0f - half_.calc(1.0f - 2.0f * x));
    }
    float inverse(float y) const override {
        return y >= 0.5f ? 0.5f + 0.5f * half_.inverse(2.0f * y - 1.0f)
                         : 0.5f * (1.0f - half_.inverse(1.0f - 2.0f * y));
    }

private:
    T half_;
};

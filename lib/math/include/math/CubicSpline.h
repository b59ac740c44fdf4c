// A curve in pieces of third order, over a uniform grid.
//
//   y = (((c0 x + c1) x + c2) x + c3) gain,   c of the section that x lies in
//
// x is the absolute one, not the distance from the section's start. Beyond the grid the polynomials of two
// chosen sections go on: an x out of range is not clamped.
//
// Any thread; no state.
#pragma once

template <typename T>
class ICubicSpline {
public:
    virtual ~ICubicSpline() = default;
    virtual T eval(T x) const = 0;
    // count samples; in and out may be the same.
    virtual void eval(const T* in, T* out, int count) const = 0;
};

// N points, N - 1 sections.
template <int N, typename T>
class CubicSpline : public ICubicSpline<T> {
    static_assert(N >= 2, "a section lies between two points");

public:
    static constexpr int kSections = N - 1;

    // table: kSections rows c0..c3, not copied. belowSection, aboveSection: the rows used below xMin and
    // above xMax.
    CubicSpline(const T (*table)[4], T gain, T xMin, T xMax, int belowSection, int aboveSection)
        : table_(table),
          gain_(gain),
          xMin_(xMin),
          xMax_(xMax),
          belowSection_(belowSection),
          aboveSection_(aboveSection),
          xRange_(xMax - xMin) {}

    T eval(T x) const override {
        const T* const c = table_[section(x)];
        return (((c[0] * x + c[1]) * x + c[2]) * x + c[3]) * gain_;
    }

    void eval(const T* in, T* out, int count) const override {
        for (int i = 0; i < count; ++i)
            out[i] = CubicSpline::eval(in[i]);
    }

private:
    int section(T x) const {
        if (x > xMax_) return aboveSection_;
        if (!(x >= xMin_)) return belowSection_;  // a not-a-number too
        const int index = static_cast<int>(static_cast<T>(kSections) / xRange_ * (x - xMin_));
        return index < kSections ? index : kSections - 1;
    }

    const T (*table_)[4];
    T gain_;
    T xMin_;
    T xMax_;
    int belowSection_;
    int aboveSection_;
    T xRange_;
};

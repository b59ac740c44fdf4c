#include "algorithms/reverb/SpringShelf.h"

#include <cmath>
#include <numbers>

#include "math/OnePoleScan.h"

namespace rvb {

SpringShelf::SpringShelf(float sampleRate, float lowDb, float highDb, float frequencyHz)
    : sampleRate_(sampleRate), lowDb_(lowDb), highDb_(highDb), frequencyHz_(frequencyHz) {
    design();
}

void SpringShelf::design() {
    const double low = std::pow(10.0, lowDb_ / 20.0);
    const double high = std::pow(10.0, highDb_ / 20.0);
    if (low == high) {
        b0_ = static_cast<float>(low);
        return;
    }
    const double x = (high * high - low * low) / (high * high + low * low - 2.0 * low * high);
    const double p = x - std::copysign(std::sqrt(x * x - 1.0), x);
    const double half = 0.5 * std::numbers::pi * frequencyHz_ / sampleRate_;
    const double quarterTurn = 0.25 * std::numbers::pi;
    const double t = std::sin(half - quarterTurn) / std::sin(half + quarterTurn);
    const double n = 1.0 / (1.0 + p * t);
    const double u = 0.5 * (low + high + p * (low - high));
    const double v = 0.5 * (low - high + p * (low + high));
    b0_ = static_cast<float>((u + v * t) * n);
    b1_ = static_cast<float>((v + u * t) * n);
    a1_ = static_cast<float>((p + t) * n);
}

void SpringShelf::process(float* buffer, int n) {
    const OnePoleScan scan(-a1_);
    float x1 = x1_;
    float y1 = y1_;
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const OnePoleScan::Lanes x = OnePoleScan::load(buffer + i);
        const OnePoleScan::Lanes y = scan.step(b0_ * x + b1_ * OnePoleScan::delayed(x, x1), y1);
        OnePoleScan::store(buffer + i, y);
        x1 = x[3];
        y1 = y[3];
    }
    for (; i < n; ++i) {
        const float x = buffer[i];
        buffer[i] = y1 = b0_ * x + b1_ * x1 - a1_ * y1;
        x1 = x;
    }
    x1_ = x1;
    y1_ = y1;
}

}  // namespace rvb

#include "math/BqTonestack.h"

#include <cmath>

#include "utility/Log.h"

namespace {

// The ramps of this filter are given by their corner, 49.735916 Hz.
constexpr float kRampSeconds = 0.15915494f / 49.735916f;

float linear(float db) {
    return static_cast<float>(std::pow(10.0, db * 0.05));
}

float truncatedCorner(const char* name, float freqHz, float sampleRate) {
    if (sampleRate * 0.5f > freqHz) return freqHz;
    const float limit = static_cast<float>(sampleRate * 0.495);
    TVK_WARN("truncating %s=%fHz to %fHz", name, freqHz, limit);
    return limit;
}

}  // namespace

BiquadCoefficients<float> designBqTonestack(const BqTonestackValues& values, float sampleRate) {
    const auto [gl, gm, gh, f1, f2] = values;
    const float p1 = std::exp(-6.2831855f * f1 / sampleRate);
    const float p2 = std::exp(-6.2831855f * f2 / sampleRate);
    const float u = 1.0f - p1;
    const float v = 1.0f - p2;
    const float t = (gm - gh) * v;
    BiquadCoefficients<float> c;
    c.a1 = u + v - 2.0f;
    c.a2 = p1 * p2;
    c.b2 = gh * p1 * p2;
    c.b1 = gh * c.a1 + (gm - gl) * u * p2 - p1 * t;
    c.b0 = t + (gl - gm) * u + gh;
    return c;
}

BqTonestack::BqTonestack(float lowDb, float midDb, float highDb, float f1Hz, float f2Hz, float sampleRate)
    : BqTonestack({linear(lowDb), linear(midDb), linear(highDb), f1Hz, f2Hz}, sampleRate) {}

BqTonestack::BqTonestack(const BqTonestackValues& values, float sampleRate)
    : sampleRate_(sampleRate),
      gl_(kRampSeconds, sampleRate),
      gm_(kRampSeconds, sampleRate),
      gh_(kRampSeconds, sampleRate),
      f1_(kRampSeconds, sampleRate),
      f2_(kRampSeconds, sampleRate) {
    set(values, true);
    // From here on the coefficients are those of the ramps' last outputs.
    designedFor_ = tick();
    coefficients_ = designBqTonestack(designedFor_, sampleRate_);
}

void BqTonestack::setDb(float lowDb, float midDb, float highDb, float f1Hz, float f2Hz, bool isInit) {
    set({linear(lowDb), linear(midDb), linear(highDb), f1Hz, f2Hz}, isInit);
}

void BqTonestack::set(const BqTonestackValues& values, bool isInit) {
    const float f1 = truncatedCorner("f1", values.f1, sampleRate_);
    const float f2 = truncatedCorner("f2", values.f2, sampleRate_);
    tvk::log::debug("BqTonestack", "gl gm gh f1 f2 = %f %f %f %f %f", values.gl, values.gm, values.gh, f1,
                    f2);
    const auto move = [isInit](OnePoleRamp& ramp, float value) {
        ramp.setTarget(value);
        if (isInit) ramp.snap(value);
    };
    move(gl_, values.gl);
    move(gm_, values.gm);
    move(gh_, values.gh);
    move(f1_, f1);
    move(f2_, f2);
}

void BqTonestack::process(float* buffer, int n) {
    if (isAtRest()) {
        processBiquad(coefficients_, state_, buffer, n);
        return;
    }
    for (int i = 0; i < n; ++i) {
        const BqTonestackValues values = tick();
        if (values != designedFor_) {
            coefficients_ = designBqTonestack(values, sampleRate_);
            designedFor_ = values;
        }
        processBiquad(coefficients_, state_, buffer + i, 1);
    }
}

void BqTonestack::clear() {
    state_ = {};
    for (OnePoleRamp* ramp : {&gl_, &gm_, &gh_, &f1_, &f2_})
        ramp->snap(ramp->current());
}

bool BqTonestack::isAtRest() const {
    return gl_.isAtRest() && gm_.isAtRest() && gh_.isAtRest() && f1_.isAtRest() && f2_.isAtRest();
}

BqTonestackValues BqTonestack::tick() {
    return {gl_.tick(), gm_.tick(), gh_.tick(), f1_.tick(), f2_.tick()};
}

#include "math/FirstOrderShelf.h"

#include <cmath>
#include <numbers>

#include "FrequencyLimit.h"
#include "math/OnePoleScan.h"
#include "utility/Log.h"

FirstOrderShelf::FirstOrderShelf(int length, float sampleRate, float lowGainDb, float highGainDb,
                                 float cornerHz)
    : length_(length), sampleRate_(sampleRate), coefficients_(Coefficients{0.0f, 1.0f, 0.0f}) {
    setAllParameters(lowGainDb, highGainDb, cornerHz);
}

void FirstOrderShelf::process(float* buffer) {
    const Coefficients c = coefficients_.read();
    const OnePoleScan scan(-c.a1);
    float lastInput = lastInput_;
    float lastOutput = lastOutput_;
    int i = 0;
    for (; i + 4 <= length_; i += 4) {
        const OnePoleScan::Lanes x = OnePoleScan::load(buffer + i);
        const OnePoleScan::Lanes y =
            scan.step(x * c.b0 + OnePoleScan::delayed(x, lastInput) * c.b1, lastOutput);
        OnePoleScan::store(buffer + i, y);
        lastInput = x[3];
        lastOutput = y[3];
    }
    for (; i < length_; ++i) {
        lastOutput = (buffer[i] * c.b0 + lastInput * c.b1) - lastOutput * c.a1;
        lastInput = buffer[i];
        buffer[i] = lastOutput;
    }
    lastInput_ = lastInput;
    lastOutput_ = lastOutput;
}

void FirstOrderShelf::setHighGainDb(float highGainDb) {
    setAllParameters(lowGainDb_, highGainDb, cornerHz_);
}

void FirstOrderShelf::setCornerHz(float cornerHz) {
    setAllParameters(lowGainDb_, highGainDb_, cornerHz);
}

void FirstOrderShelf::setAllParameters(float lowGainDb, float highGainDb, float cornerHz) {
    lowGainDb_ = lowGainDb;
    highGainDb_ = highGainDb;
    cornerHz_ = static_cast<float>(truncatedFrequencyHz(cornerHz, sampleRate_));
    tvk::log::debug("FirstOrderShelf", "setAllParameters(%0.1f, %0.1f, %0.1f)", lowGainDb_, highGainDb_,
                    cornerHz_);
    const Coefficients designed = design();
    tvk::log::debug("FirstOrderShelf", "b0,b1=%f %f, a0 a1=%f %f", designed.b0, designed.b1, 1.0,
                    designed.a1);
    coefficients_.publish(designed);
}

FirstOrderShelf::Coefficients FirstOrderShelf::design() const {
    const double gl = std::pow(10.0, lowGainDb_ * 0.05);
    const double gh = std::pow(10.0, highGainDb_ * 0.05);
    const double normalisedFreq = 2.0 * cornerHz_ / sampleRate_;
    const double t = std::tan(normalisedFreq * std::numbers::pi / 2.0);
    const double q = std::sqrt(gh / gl);
    const double u = t / q;
    const double b0 = (q + t) * std::sqrt(gl * gh) / (q * t + 1.0);
    return {static_cast<float>((q * t - 1.0) / (q * t + 1.0)), static_cast<float>(b0),
            static_cast<float>(b0 * (u - 1.0) / (u + 1.0))};
}

void FirstOrderShelf::clear() {
    lastInput_ = 0.0f;
    lastOutput_ = 0.0f;
}

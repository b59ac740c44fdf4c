// Units with an algorithm that a test gives, and the ramp of their gains worked out in double precision.
#pragma once

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"
#include "core/System/DspArchive.h"

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;

// The one-pole ramp: y <- target * (1 - p) + p * y, p = exp(-2 pi f / fs), f = 1 / (2 pi tc).
struct ReferenceRamp {
    explicit ReferenceRamp(double timeConstantSeconds) : p(std::exp(-1.0 / (timeConstantSeconds * kRate))) {}
    double tick() { return y = target * (1.0 - p) + p * y; }
    double p;
    double target = 1.0;
    double y = 0.0;
};

class PlainUnit : public DspUnit {
public:
    PlainUnit(int inputs = 2, int outputs = 2) : DspUnit("DU_Plain", inputs, outputs, kBlock) {}
    void reset() override {}
    void process() override {}
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};

using Algorithm = std::function<void(float* inLeft, float* inRight, float* outLeft, float* outRight)>;

inline void copyThrough(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    for (int n = 0; n < kBlock; ++n) {
        outLeft[n] = inLeft[n];
        outRight[n] = inRight[n];
    }
}

template <typename Base>
class UnitWith : public Base {
public:
    explicit UnitWith(Algorithm a = copyThrough)
        : Base("DUBS_Test", kBlock, kRate), algorithm(std::move(a)) {}

    using Base::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override {
        algorithm(inLeft, inRight, outLeft, outRight);
    }
    void initDerived(DspArchive& archive) override { archive.get("own", own); }
    void getArchiveDerived(DspArchive& archive) override { archive.set("own", own); }

    template <typename T>
    Parameter<T>& parameter(const std::string& name) {
        return dynamic_cast<Parameter<T>&>(*this->getParameter(name));
    }

    // Runs one block with both inputs filled from a function of the sample's index since the start.
    template <typename Signal>
    void run(Signal signal) {
        for (int n = 0; n < kBlock; ++n) {
            left[n] = signal(sample + n);
            right[n] = -0.5f * left[n];
        }
        sample += kBlock;
        this->connectInput(0, left, 1);
        this->connectInput(1, right, 2);
        this->process();
    }
    void run(float constant) {
        run([=](int) { return constant; });
    }
    float out(int n) { return this->getOutputAddr(0)[n]; }
    // Runs until every ramp stands still.
    void settle() {
        for (int block = 0; block < 60; ++block)
            run(0.0f);
    }

    Algorithm algorithm;
    int own = 0;
    float left[kBlock], right[kBlock];
    int sample = 0;
};

using StereoUnit = UnitWith<DspUnitStereo>;
using BypassUnit = UnitWith<DspUnitBypassStereo>;

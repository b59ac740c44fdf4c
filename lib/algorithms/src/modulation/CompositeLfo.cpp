#include "algorithms/modulation/CompositeLfo.h"

#include <algorithm>

namespace {

constexpr float kFirstHz = 100.0f;

constexpr float cycles(float degrees) {
    return degrees / 360.0f;
}

float mainPhase(float duty) {
    return cycles(-90.0f) + cycles(60.0f) * duty;
}

}  // namespace

CompositeLfo::CompositeLfo(float sampleRateHz)
    : main_(kFirstHz, sampleRateHz),
      duty_(kFirstHz, sampleRateHz),
      triangle_(kFirstHz, sampleRateHz),
      sine_(kFirstHz, sampleRateHz) {
    setDuty(0.5f);
    setDist(0.5f);
    sine_.setPhase(cycles(-90.0f));
}

float CompositeLfo::tick() {
    main_.setPhase(mainPhase(duty_.tick()));
    const float main = main_.tick();
    const float triangle = triangle_.tick();
    const float sine = sine_.tick();
    return shapeMix_ * (isTriangle_ ? triangle : sine) + (1.0f - shapeMix_) * main;
}

void CompositeLfo::tick(float* out, int count) {
    constexpr int kRun = 64;
    float phases[kRun];
    float triangles[kRun];
    float sines[kRun];
    for (int start = 0; start < count; start += kRun) {
        const int length = std::min(kRun, count - start);
        float* const run = out + start;
        duty_.tick(phases, length);
        for (int n = 0; n < length; ++n)
            phases[n] = mainPhase(phases[n]);
        main_.tickModulated(phases, run, length);
        triangle_.tick(triangles, length);
        sine_.tick(sines, length);
        const float* const other = isTriangle_ ? triangles : sines;
        for (int n = 0; n < length; ++n)
            run[n] = shapeMix_ * other[n] + (1.0f - shapeMix_) * run[n];
    }
}

void CompositeLfo::setRate(float hz) {
    for (Lfo* oscillator : {static_cast<Lfo*>(&main_), static_cast<Lfo*>(&duty_),
                            static_cast<Lfo*>(&triangle_), static_cast<Lfo*>(&sine_)})
        oscillator->setFrequency(hz);
}

void CompositeLfo::setAmplitude(float amplitude) {
    main_.setAmplitude(amplitude);
    triangle_.setAmplitude(amplitude);
    sine_.setAmplitude(amplitude);
}

void CompositeLfo::setOffset(float offset) {
    main_.setOffset(offset);
    triangle_.setOffset(offset);
    sine_.setOffset(offset);
}

void CompositeLfo::setDuty(float duty) {
    duty_.setOffset(2.0f * duty - 1.0f);
}

void CompositeLfo::setDist(float dist) {
    duty_.setPhase(cycles(90.0f) + cycles(-45.0f + 90.0f * dist));
}

void CompositeLfo::reset() {
    main_.setPhase(0.0f);  // its offset is the modulation of the last sample
    main_.reset();
    duty_.reset();
    triangle_.reset();
    sine_.reset();
}

#include "math/LfoSine.h"

#include "math/ParabolicSine.h"
#include "utility/Multiversion.h"

namespace {

TARVEK_MULTIVERSION
void sines(uint32_t phase, uint32_t increment, float amplitude, float offset, float* out, int count) {
    for (int n = 0; n < count; ++n) {
        const uint32_t here = phase + increment * static_cast<uint32_t>(n + 1);
        out[n] = offset + parabolicSine(SinePhase::radians(here)) * amplitude;
    }
}

TARVEK_MULTIVERSION
void modulatedSines(uint32_t phase, uint32_t increment, const float* offsets, float amplitude, float offset,
                    float* out, int count) {
    for (int n = 0; n < count; ++n) {
        const uint32_t here =
            phase + SinePhase::fromCycles(offsets[n]) + increment * static_cast<uint32_t>(n + 1);
        out[n] = offset + parabolicSine(SinePhase::radians(here)) * amplitude;
    }
}

}  // namespace

LfoSine::LfoSine(float frequencyHz, float sampleRateHz) : Lfo(frequencyHz, sampleRateHz) {
    phase_.setFrequency(frequency_, sampleRate_);
}

float LfoSine::tick() {
    return offset_ + parabolicSine(SinePhase::radians(phase_.next())) * amplitude_;
}

void LfoSine::tick(float* out, int count) {
    sines(phase_.phase(), phase_.increment(), amplitude_, offset_, out, count);
    phase_.skip(count);
}

void LfoSine::setFrequency(float hz) {
    frequency_ = limited(hz, sampleRate_);
    phase_.setFrequency(frequency_, sampleRate_);
}

void LfoSine::tickModulated(const float* offsets, float* out, int count) {
    if (count < 1) return;
    const float lastOffset = offsets[count - 1];
    modulatedSines(phase_.phase() - phase_.lastOffset(), phase_.increment(), offsets, amplitude_, offset_,
                   out, count);
    phase_.setOffset(lastOffset);
    phase_.skip(count);
}

#include "math/OnePoleHighPass.h"

#include <cmath>

OnePoleHighPass::OnePoleHighPass(float freqHz, float sampleRate)
    : scan_(static_cast<float>(std::exp(-6.283185307179586 * freqHz / sampleRate))) {}

void OnePoleHighPass::process(float* buffer, int n) {
    const OnePoleScan scan = scan_;
    const float p = scan.pole();
    float lastInput = lastInput_;
    float lastOutput = lastOutput_;
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const OnePoleScan::Lanes x = OnePoleScan::load(buffer + i);
        const OnePoleScan::Lanes y = scan.step(p * (x - OnePoleScan::delayed(x, lastInput)), lastOutput);
        OnePoleScan::store(buffer + i, y);
        lastInput = x[3];
        lastOutput = y[3];
    }
    lastInput_ = lastInput;
    lastOutput_ = lastOutput;
    for (; i < n; ++i)
        buffer[i] = process(buffer[i]);
}

void OnePoleHighPass::reset() {
    lastInput_ = 0.0f;
    lastOutput_ = 0.0f;
}

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
        float* const x = buffer + i;
        float v[4] = {p * (x[0] - lastInput), p * (x[1] - x[0]), p * (x[2] - x[1]), p * (x[3] - x[2])};
        lastInput = x[3];
        scan.step(v, lastOutput);
        lastOutput = v[3];
        for (int k = 0; k < 4; ++k)
            x[k] = v[k];
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

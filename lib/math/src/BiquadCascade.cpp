#include "math/BiquadCascade.h"

#include <algorithm>

BiquadCascade::BiquadCascade(const BiquadCoefficients<float>* rows, int sections)
    : kernels_(&fft::vectorKernels()) {
    lanes_.sections = std::clamp(sections, 1, fft::BiquadLanes::kMaxSections);
    for (int j = 0; j < lanes_.sections; ++j) {
        lanes_.a1[j] = rows[j].a1;
        lanes_.a2[j] = rows[j].a2;
        lanes_.b2[j] = rows[j].b2;
        lanes_.b1[j] = rows[j].b1;
        lanes_.b0[j] = rows[j].b0;
    }
}

void BiquadCascade::clear() {
    for (float* row : {lanes_.t1, lanes_.t2, lanes_.y})
        std::fill_n(row, fft::BiquadLanes::kMaxSections, 0.0f);
}

#include "math/ThreeDliBiquad.h"

#include <algorithm>

namespace {

constexpr int kLast = 4;  // five points an axis
constexpr int kStrides[3] = {125, 25, 5};

float limited(float control) {
    return control > 0.0f ? std::min(control, 1.0f) : 0.0f;
}

BqTonestackValues interpolated(const float* table, const float (&controls)[3]) {
    const float* origin = table;
    float fractions[3];
    for (int axis = 0; axis < 3; ++axis) {
        const float position = controls[axis] * kLast;
        const int index = std::min(static_cast<int>(position), kLast - 1);
        fractions[axis] = position - static_cast<float>(index);
        origin += index * kStrides[axis];
    }
    float mix[5] = {};
    for (int corner = 0; corner < 8; ++corner) {
        float weight = 1.0f;
        const float* point = origin;
        for (int axis = 0; axis < 3; ++axis) {
            const bool isUpper = (corner >> axis) & 1;
            weight *= isUpper ? fractions[axis] : 1.0f - fractions[axis];
            if (isUpper) point += kStrides[axis];
        }
        for (int k = 0; k < 5; ++k)
            mix[k] += weight * point[k];
    }
    return {mix[0], mix[1], mix[2], mix[3], mix[4]};
}

}  // namespace

ThreeDliBiquad::ThreeDliBiquad(const float* table, float sampleRate, float first, float second, float third)
    : table_(table),
      controls_{limited(first), limited(second), limited(third)},
      values_(interpolated(table, controls_)),
      tonestack_(values_, sampleRate) {}

void ThreeDliBiquad::set(int control, float value, bool isInit) {
    controls_[control] = limited(value);
    values_ = interpolated(table_, controls_);
    tonestack_.set(values_, isInit);
}

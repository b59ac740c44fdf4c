#include "math/OneDli.h"

#include <cmath>

#include "utility/Log.h"

namespace {

template <typename T>
std::array<T, 5> interpolated(const T (*table)[5], int rows, T sampleRate, T control) {
    int index = 0;
    T fraction = T(0);
    if (control > T(1)) {
        TVK_WARN("ctrl has invalid value = %f", static_cast<double>(control));
        index = rows - 2;
        fraction = T(0.9999);
    } else if (control >= T(0)) {
        const T position = control * static_cast<T>(rows - 1.0001);
        index = static_cast<int>(position);
        fraction = position - static_cast<T>(index);
    } else {
        TVK_WARN("ctrl has invalid value = %f", static_cast<double>(control));
    }
    const T* const lower = table[index];
    const T* const upper = table[index + 1];
    const auto mix = [fraction](T a, T b) { return a + (b - a) * fraction; };
    const auto poleGain = [sampleRate](T freqHz) {
        return T(1) - std::exp(T(-6.2831855) * freqHz / sampleRate);
    };
    return {mix(lower[0], upper[0]), mix(lower[1], upper[1]), mix(lower[2], upper[2]),
            mix(poleGain(lower[3]), poleGain(upper[3])), mix(poleGain(lower[4]), poleGain(upper[4]))};
}

}  // namespace

std::array<float, 5> OneDli::calc(float control) const {
    return interpolated(table_, kRows, sampleRate_, control);
}

std::array<double, 5> OneDliN::calc(double control) const {
    return interpolated(table_, rows_, sampleRate_, control);
}

#include "proj/models/audio/SampleConversion.h"

#include <cstring>
#include <limits>

namespace {

constexpr std::size_t kLanes = 4;
using Floats = float __attribute__((vector_size(kLanes * sizeof(float))));
using Words = std::int32_t __attribute__((vector_size(kLanes * sizeof(std::int32_t))));
using UnsignedWords = std::uint32_t __attribute__((vector_size(kLanes * sizeof(std::uint32_t))));

constexpr float kFullScale = 2147483648.0f;  // 2^31

template <typename Vector, typename Element>
Vector load(const Element* address) {
    Vector v;
    std::memcpy(&v, address, sizeof v);
    return v;
}

template <typename Vector, typename Element>
void store(Element* address, const Vector& v) {
    std::memcpy(address, &v, sizeof v);
}

Words truncateSaturated(Floats x) {
    const Floats highest = kFullScale - Floats{};
    const Floats lowest = -highest;
    // Not-a-number fails both comparisons and stays 0.
    const Words isInside = (x >= lowest) & (x < highest);
    const Words inside = __builtin_convertvector(isInside ? x : Floats{}, Words);
    const Words above = (x >= highest) & std::numeric_limits<std::int32_t>::max();
    const Words below = (x < lowest) & std::numeric_limits<std::int32_t>::min();
    return inside | above | below;
}

}  // namespace

void convertRawToFloat(const std::int32_t* raw, float* samples, std::size_t count) {
    for (std::size_t i = 0; i + kLanes <= count; i += kLanes) {
        const UnsignedWords shifted = load<UnsignedWords>(raw + i) << 8;
        Words words;
        std::memcpy(&words, &shifted, sizeof words);
        store(samples + i, __builtin_convertvector(words, Floats) * (1.0f / kFullScale));
    }
}

void convertFloatToRaw(const float* samples, std::int32_t* raw, std::size_t count, int bitDepth) {
    const int shift = 32 - bitDepth;
    for (std::size_t i = 0; i + kLanes <= count; i += kLanes)
        store(raw + i, truncateSaturated(load<Floats>(samples + i) * kFullScale) >> shift);
}

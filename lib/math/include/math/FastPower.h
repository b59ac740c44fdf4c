// 2^x and log2(x) as polynomials: for loops over samples, which the compiler turns into vector code.
//
// The fits are made by tools/data/power_polynomials.py.
#pragma once

#include <bit>
#include <cstdint>

// x from -64 to 64; relative error below 3e-7.
inline float fastExp2(float x) {
    const int32_t nearest = static_cast<int32_t>(x + 64.5f) - 64;
    const float f = x - static_cast<float>(nearest);
    const float power =
        1.0f +
        f * (0.69314698f + f * (0.24022242f + f * (0.055507337f + f * (0.0096715127f + f * 0.0013264727f))));
    return power * std::bit_cast<float>((nearest + 127) << 23);
}

// x a normal number above 0; error below 3e-6 of an octave.
inline float fastLog2(float x) {
    constexpr int32_t kRootOfHalf = 0x3f3504f3;  // the bits of sqrt(1/2)
    const int32_t bits = std::bit_cast<int32_t>(x);
    const int32_t octave = (bits - kRootOfHalf) >> 23;
    const float f = std::bit_cast<float>(bits - (octave << 23)) - 1.0f;
    const float fraction =
        f * (1.4427135f + f * (-0.72113186f +
                               f * (0.47934802f + f * (-0.36748999f + f * (0.32215478f - f * 0.20659164f)))));
    return static_cast<float>(octave) + fraction;
}

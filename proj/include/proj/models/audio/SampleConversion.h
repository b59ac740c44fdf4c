// Between the words of the sound device and floats in which 1.0 is full scale.
//
// Four samples at a time; a remainder below a multiple of four is left alone. Buffers of any alignment of
// their type, which may not overlap. Audio thread.
#pragma once

#include <cstddef>
#include <cstdint>

// sample = (raw << 8) * 2^-31: the low 24 bits of each word are the sample, whatever lies above them.
void convertRawToFloat(const std::int32_t* raw, float* samples, std::size_t count);

// raw = int(sample * 2^31) >> (32 - bitDepth), truncated towards zero and saturated before the shift;
// bitDepth is 24 or 32. Not-a-number becomes 0.
void convertFloatToRaw(const float* samples, std::int32_t* raw, std::size_t count, int bitDepth);

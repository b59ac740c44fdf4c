// One page: a recording before and after the amplifier.
//
//   waveform before | a close look at it      (rows on one time axis)
//   waveform after  | the same moment
//   both spectra, from 40 Hz to 20 kHz
#pragma once

#include <string>
#include <vector>

namespace tvk::picture {

struct Recording {
    std::string name;
    std::vector<float> samples;  // 1.0 = full scale
};

// The SVG text. after starts at the same moment as before, and may be longer.
std::string drawBeforeAfter(const Recording& before, const Recording& after, int rateHz);

}  // namespace tvk::picture

// Peak and rms of the two feeds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "desk/soundcard/FrameRing.h"

namespace tvk::desk {

class LevelMeter {
public:
    void add(const FrameRing::Frame* frames, std::size_t count);

    std::uint64_t frames() const { return frames_; }

    // Of feed 0 (speaker) or 1 (line): 1.0 = full scale, and dB of it; silence reads -200 dB.
    double peak(std::size_t feed) const { return peak_[feed]; }
    double rmsDbfs(std::size_t feed) const;

private:
    std::uint64_t frames_ = 0;
    std::array<double, 2> peak_{};
    std::array<double, 2> squares_{};
};

}  // namespace tvk::desk

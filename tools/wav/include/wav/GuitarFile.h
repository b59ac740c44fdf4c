// A guitar recording as the tools take it: WAV, 16, 24 or 32 bit integer or 32-bit float, one or two
// channels, at the engine's rate. One channel feeds both graph inputs; of two the first feeds input 0 (the
// flagship's normal channel) and the second input 1 (its vibrato channel).
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace tvk {

class GuitarFile {
public:
    static constexpr int kGraphInputs = 2;

    // Reads the whole file. rateHz is the engine's sample rate, which the file's must equal.
    // Throws tvk::Exception with one clear line when the file is missing, no such WAV, at another rate, or
    // holds a sample that is not a finite number.
    GuitarFile(const std::string& path, int rateHz);

    std::size_t frames() const { return inputs_[0].size(); }

    // Planar samples of graph input 0 or 1, 1.0 = full scale.
    const std::vector<float>& input(int index) const { return inputs_.at(static_cast<std::size_t>(index)); }

private:
    std::array<std::vector<float>, kGraphInputs> inputs_;
};

}  // namespace tvk

// The part of the audio engine that knows no sound card: the system device with its inputs wired, run block
// by block on the caller's thread.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"

namespace tvk::render {

class OfflineEngine {
public:
    static constexpr int kChannels = 2;

    // blockLength in samples, rateHz the sample rate. The database outlives the engine. One engine at a time:
    // it offers the dry guitar to the units of the whole process.
    OfflineEngine(const DspUnitDatabase& database, int blockLength, int rateHz,
                  const std::string& processorUtilizationFilename);
    ~OfflineEngine();

    SFAD_LoadPresetCabsim& device() { return device_; }

    // Where the caller puts the next block of each graph input, blockLength samples of full scale 1.0.
    float* input(int channel) { return inputs_[static_cast<std::size_t>(channel)].data(); }
    // What the last block gave.
    const float* output(int channel) { return device_.getOutputAddr(channel); }

    // One block, under the rules of the audio thread. Returns the seconds it took.
    double process();

private:
    std::array<std::vector<float>, kChannels> inputs_;
    std::vector<float> dryGuitar_;
    SFAD_LoadPresetCabsim device_;
};

}  // namespace tvk::render

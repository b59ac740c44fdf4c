// The settings that hold for the whole amplifier.
#pragma once

#include <cstdint>

namespace tvk {

struct GlobalSettings {
    static constexpr int kCurrentSchema = 1;

    int schemaVersion = kCurrentSchema;  // of the file
    std::uint32_t reverbTaperType = 0;   // index of the reverb knob's curve
    bool vibratoChannelBright = false;
};

}  // namespace tvk

// The system device that loads presets: mute, wait, swap the graph, unmute. There is no crossfade and there
// are no two running graphs; the gap is 5 ms and the time that the load takes, and audio never stops.
#pragma once

#include "core/DspUnitSystem/SystemFixedAudioDevice.h"

class SFAD_LoadPreset : public SystemFixedAudioDevice {
public:
    using SystemFixedAudioDevice::SystemFixedAudioDevice;

    void connectInput(int channel, float* address, int connectionId) override;
    float* getOutputAddr(int channel) override;
    void process() override;
    void setMuteOutput(bool muted) override;
    void loadArchive(DspArchive& archive) override;
    void setGlobalFxBypass(bool bypassed) override;

    // Loads a preset from its JSON text. A text that does not parse throws the parser's error, and nothing
    // has been touched; other failures are loadArchive's.
    void loadPreset(const std::string& text);
};

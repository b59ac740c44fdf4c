// The one façade to the audio engine: it owns the engine and its thread, keeps the panel's state, and loads
// the built-in presets.
//
// Threads: every function may be called from any control thread; those that reach the engine take turns
// inside it. None may be called from the audio thread.
#pragma once

#include <memory>
#include <string>

#include "proj/models/PanelState.h"

class AudioProcessor;
class AudioProcessorThread;
class IRProcessor;
class ProductProfile;
enum class AmpControl;

namespace tvk {
struct Platform;
}

class Model {
public:
    // Opens the sound devices, starts the audio thread, and returns when its first block has run. A device
    // that never delivers keeps it waiting. Throws tvk::Exception when the devices cannot be set up.
    explicit Model(const tvk::Platform& platform);
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    PanelState& panel() { return panel_; }
    const PanelState& panel() const { return panel_; }

    // Built-in preset 0 to 4: test mode, Corvin, Arvel, Lisko, Sorrel. Any other slot is an error in the log
    // and leaves the running preset. Blocks for the mute (at least 5 ms) and the build of the graph.
    void setAudioProcessingPreset(int slot);

    // Each forwards one control to the amplifier of the running preset, and does nothing without one. Knobs
    // are normalised positions, 0 to 1.
    void setNormalVolume(float position);
    void setNormalTreble(float position);
    void setNormalMiddle(float position);
    void setNormalBass(float position);
    void setNormalBrightSwitch(bool on);
    void setVibratoVolume(float position);
    void setVibratoTreble(float position);
    void setVibratoMiddle(float position);
    void setVibratoBass(float position);
    void setVibratoReverb(float position);
    void setVibratoReverbMute(bool muted);
    void setVibratoSpeed(float position);
    void setVibratoIntensity(float position);
    void setVibratoBrightSwitch(bool on);
    void setVibratoTremoloMute(bool muted);

    // Standby is a stored value of the panel; the engine knows none.
    void setStandbySwitch(bool on);

    // The cabinet by file or name, its filters in Hz, its level in dB.
    void setCabsim(const std::string& name);
    void setCabsimHPF(float frequencyHz);
    void setCabsimLPF(float frequencyHz);
    void setCabsimLevel(float levelDb);

    // Cabinet switch in test mode: 0 the first test cabinet, 1 none, 2 the second; else an error in the log.
    void setCabsimTestMode(int position);

    // Index of the reverb knob's curve.
    void setReverbTaper(int type);

    // Stored in the engine, without effect on the sound.
    void setMasterVolume(float value);

    // The convolver that the cabinet units share, null until there is one.
    std::shared_ptr<IRProcessor> getIrProcessor() const;

    float getSampleRate() const;

    // Of the product profile as it was read at construction.
    const std::string& getProductFamily() const;

    // Failed PCM reads and writes since the start.
    long getXrunCount() const;

private:
    void setKnob(const char* name, AmpControl control, float position);
    void setSwitch(const char* name, AmpControl control, bool on);

    PanelState panel_;
    std::unique_ptr<ProductProfile> productProfile_;
    std::unique_ptr<AudioProcessor> audioProcessor_;
    std::unique_ptr<AudioProcessorThread> audioProcessorThread_;
};

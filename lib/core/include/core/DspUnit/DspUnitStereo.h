// A unit of two inputs and two outputs with mutes at both ends, a clip latch and the calls of a tap tempo.
//
//   in --x mute in--> process(in, out) --x mute out--> out --> clip detector
//
// The input mute is applied in place, in the memory of the unit upstream. Mutes fade with a one-pole shape of
// 1 ms. Whatever was initialised fades in from silence, muted or not, so that a preset starts without a
// click.
//
// A derived class overrides the four-pointer process; it then needs `using DspUnitStereo::process;`, or that
// of its nearest base, to keep the block call visible.
#pragma once

#include <atomic>

#include "core/DspUnit/DspUnit.h"
#include "core/Parameter/Parameter.h"
#include "math/OnePoleRamp.h"

class DspUnitStereo : public DspUnit {
public:
    // blockLength in samples, sampleRate in Hz.
    DspUnitStereo(std::string tarvekId, int blockLength, float sampleRate);

    void reset() override {}
    void process() override;
    void init(DspArchive& archive) override { initDerived(archive); }
    void getArchive(DspArchive& archive) override { getArchiveDerived(archive); }

    // Tap time in seconds, tap tempo in beats per minute; kept or ignored here, units with a tempo override.
    virtual void setTapTime(float seconds);
    virtual void initTapTime(float seconds);
    virtual float getTapTime() const;
    virtual void setTapTimeBPM(float beatsPerMinute);
    virtual void initTapTimeBPM(float beatsPerMinute);
    virtual float getTapTimeBPM() const;

    // The algorithm, one block, on the audio thread. Output arrays may be the input arrays.
    virtual void process(float* inLeft, float* inRight, float* outLeft, float* outRight) = 0;
    // The unit's own parameters from and to the object at the archive's cursor.
    virtual void initDerived(DspArchive& archive) = 0;
    virtual void getArchiveDerived(DspArchive& archive) = 0;

protected:
    float getSampleRate() const { return sampleRate_; }

    // The stages around the algorithm. Work arrays of a block: gains.
    void applyInputMute(float* left, float* right);
    void applyOutputMute(float* left, float* right);
    void detectOutputClip(const float* left, const float* right);

private:
    bool readAndClearClipState();
    void setClipState(bool state);
    void initClipState(bool state);
    void setMuteInput(bool muted);
    void initMuteInput(bool muted);
    bool getMuteInput() const;
    void setMuteOutput(bool muted);
    void initMuteOutput(bool muted);
    bool getMuteOutput() const;

    const float sampleRate_;
    std::atomic<float> tapValue_{0.0f};

    Parameter<float> tapTime_;
    Parameter<float> tapTimeBPM_;
    Parameter<bool> clipState_;
    Parameter<bool> muteInput_;
    Parameter<bool> muteOutput_;

    std::atomic<bool> clipFlag_{false};
    std::atomic<bool> muteInputState_{false};
    std::atomic<bool> muteOutputState_{false};
    OnePoleRamp muteInputRamp_;
    OnePoleRamp muteOutputRamp_;
    std::vector<float> gains_;
};

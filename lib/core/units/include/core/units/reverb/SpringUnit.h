// The base of the spring reverb units: one tank and its five knobs, each 0 to 1.
//
//   level     20 log10(knob), -60 to 0 dB: the wet level; down all the way is -60 dB and not silence
//   decay     corner of the combs' low-passes, between the ends of the voicing's range by their poles
//   dwell     v = dwellMin + (dwellMax - dwellMin) knob, which the tank takes for a factor within that range
//   diffuse   likewise with the diffuse range; that the mapping is applied twice is meant
//   tone      corner of the output's low-pass, as decay within its own range
//
// The dry level is fixed at -0.1 dB.
#pragma once

#include <string>
#include <utility>

#include "algorithms/reverb/SpringBase.h"
#include "core/units/control/ControlledUnit.h"
#include "core/units/reverb/SpringKnobs.h"

// Tank: rvb::SpringBase or a class on it.
template <typename Tank>
class SpringUnit : public ControlledUnit {
public:
    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override {
        tank_.process(inLeft, inRight, outLeft, outRight, getBlockLength());
    }
    void reset() override { tank_.reset(); }

    const Tank& tank() const { return tank_; }

protected:
    struct Knobs {
        const char* levelName;  // the level's parameter
        float level;
        float decay;
        float dwell;
        float diffuse;
        float tone;
    };

    // blockLength in samples, sampleRate in Hz. tag: of the log lines, a literal. voicing: the tank's record,
    // outlives the unit.
    template <typename Voicing>
    SpringUnit(std::string tarvekId, int blockLength, float sampleRate, const char* tag,
               const Voicing& voicing, const Knobs& knobs)
        : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, tag),
          tank_(voicing, blockLength, sampleRate) {
        tank_.setDryLevelDb(spring::kDryLevelDb, true);
        level_ = &addControl(knobs.levelName, "Level", knobs.level,
                             [this](float knob, bool isInit) { setLevel(knob, isInit); });
        addControl("decay", "Decay", knobs.decay, [this](float knob, bool) {
            const auto& ranges = tank_.voicing();
            tank_.setDecayHz(spring::cutoffHz(knob, ranges.decayMinHz, ranges.decayMaxHz, getSampleRate()));
        });
        addControl("dwell", "Dwell", knobs.dwell, [this](float knob, bool) {
            const auto& ranges = tank_.voicing();
            tank_.setDwell(spring::lerp(knob, ranges.dwellMin, ranges.dwellMax));
        });
        addControl("diffuse", "Diffuse", knobs.diffuse, [this](float knob, bool) {
            const auto& ranges = tank_.voicing();
            tank_.setDiffuse(spring::lerp(knob, ranges.diffuseMin, ranges.diffuseMax));
        });
        addControl("tone", "Tone", knobs.tone, [this](float knob, bool) {
            const auto& ranges = tank_.voicing();
            tank_.setToneHz(spring::cutoffHz(knob, ranges.toneMinHz, ranges.toneMaxHz, getSampleRate()));
        });
    }

    Tank tank_;

private:
    void setLevel(float knob, bool isInit) {
        tank_.setWetLevelDb(spring::levelDb(knob), isInit);
        if (knob <= 0.0f && level_) level_->adopt(spring::kLevelKnobAtZero);
    }

    ModelControl<float>* level_ = nullptr;
};

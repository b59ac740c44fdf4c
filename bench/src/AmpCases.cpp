#include <stdexcept>
#include <string>

#include "InPlaceCase.h"
#include "algorithms/amp/ArvelReverb65ImpedanceCurve.h"
#include "algorithms/amp/ArvelReverb65NormalPreamp.h"
#include "algorithms/amp/ArvelReverb65PowerAmp.h"
#include "algorithms/amp/ArvelReverb65PowerSupply.h"
#include "algorithms/amp/ArvelReverb65Tonestack.h"
#include "algorithms/amp/BiasShiftAcCouplingCap.h"
#include "algorithms/amp/OutputSoftClipper.h"
#include "algorithms/amp/ToneCircuit.h"
#include "algorithms/amp/ValveStage.h"
#include "core/Parameter/Parameter.h"
#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"
#include "tables/ArvelReverb65Curves.h"

namespace bench {
namespace {

constexpr int kBlock = kBlockLength;
constexpr float kRate = kSampleRateHz;

// Volts of a loud guitar's full scale at the tone circuit, the power amp and the speaker.
constexpr float kToneVolts = 60.0f;
constexpr float kPowerVolts = 20.0f;
constexpr float kSpeakerVolts = 80.0f;

// A knob that is always on its way to another place.
float movingKnob(int turn, int knob) {
    return 0.2f + 0.6f * static_cast<float>((turn * (knob + 3) % 7)) / 6.0f;
}

std::unique_ptr<Case> valveStage() {
    return block(std::make_unique<ValveStage>(kBlock, kRate, 10.0f, 100.1697f, 300.4954f,
                                              tables::kArvelReverb65NormalStage1),
                 kFullScaleVolts);
}

std::unique_ptr<Case> toneCircuit(bool isMoving) {
    return inPlace(
        std::make_unique<ToneCircuit>(kRate), kToneVolts,
        [](ToneCircuit& circuit, float* samples) { circuit.process(samples, kBlock); },
        [isMoving](ToneCircuit& circuit, int turn) {
            if (!isMoving) return;
            circuit.setBass(movingKnob(turn, 0), false);
            circuit.setMid(movingKnob(turn, 1), false);
            circuit.setTreble(movingKnob(turn, 2), false);
            circuit.setVolume(movingKnob(turn, 3), false);
        });
}

std::unique_ptr<Case> coupling() {
    auto cap = std::make_unique<BiasShiftAcCouplingCap>(1.0f, kBlock, 1.0f, 1.0f, 1e-7f, 9620.0f, 1500.0f,
                                                        220000.0f, 50.0f, kRate);
    return inPlace(std::move(cap), kSpeakerVolts,
                   [](BiasShiftAcCouplingCap& c, float* samples) { c.process(samples, samples); });
}

// The flagship as a unit, the guitar in both channels, all volumes up. The reverb, the vibrato and the
// cabinet are off.
class Flagship : public Case {
public:
    explicit Flagship(bool isMoving)
        : isMoving_(isMoving), unit_("DUBS_NorvaneArvelReverb65", kBlock, kRate, kFullScaleVolts) {
        for (const char* volume : {"idNormalVol", "idVibratoVol"})
            set(volume, 0.6f);
    }

    void process(const float* in) override {
        for (int n = 0; n < kBlock; ++n)
            normal_[n] = vibrato_[n] = in[n];
        unit_.process(normal_, vibrato_, speaker_, line_);
    }

    void control(int turn) override {
        if (!isMoving_) return;
        int knob = 0;
        for (const char* channel : {"Normal", "Vibrato"}) {
            for (const char* name : {"Vol", "Treb", "Mid", "Bass"})
                set(std::string("id") + channel + name, movingKnob(turn, knob++));
        }
    }

private:
    void set(const std::string& name, float value) {
        auto* parameter = dynamic_cast<Parameter<float>*>(unit_.getParameter(name));
        if (!parameter) throw std::logic_error("the flagship has no parameter " + name);
        parameter->set(value);
    }

    bool isMoving_;
    DUBS_NorvaneArvelReverb65 unit_;
    alignas(64) float normal_[kBlock];
    alignas(64) float vibrato_[kBlock];
    alignas(64) float speaker_[kBlock];
    alignas(64) float line_[kBlock];
};

}  // namespace

std::vector<NamedCase> ampCases() {
    return {
        {"valve_stage", valveStage},
        {"tone_circuit", [] { return toneCircuit(false); }},
        {"tone_circuit_moving", [] { return toneCircuit(true); }},
        {"power_amp",
         [] { return block(std::make_unique<ArvelReverb65PowerAmp>(kBlock, kRate), kPowerVolts); }},
        {"output_clipper",
         [] { return block(std::make_unique<OutputSoftClipper>(kBlock, 0.0f, kRate), 2.0f); }},
        {"flagship_dry", [] { return std::make_unique<Flagship>(false); }},
        {"flagship_dry_moving", [] { return std::make_unique<Flagship>(true); }},
        {"normal_preamp",
         [] { return block(std::make_unique<ArvelReverb65NormalPreamp>(kBlock, kRate), 1.0f); }},
        {"tonestack",
         [] { return block(std::make_unique<ArvelReverb65NormalTonestack>(kBlock, kRate), kToneVolts); }},
        {"power_supply",
         [] {
             return block(std::make_unique<ArvelReverb65PowerSupply>(kBlock, 101.0f, kRate), kSpeakerVolts);
         }},
        {"impedance_curve",
         [] { return block(std::make_unique<ArvelReverb65ImpedanceCurve>(kBlock, kRate), kSpeakerVolts); }},
        {"bias_shift_coupling", coupling},
    };
}

}  // namespace bench

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
#include "algorithms/cabsim/IRProcessorPool.h"
#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"
#include "core/Parameter/Parameter.h"
#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"
#include "tables/ArvelReverb65Curves.h"
#include "utility/BackgroundJobs.h"

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

// The flagship as a unit, the guitar in both channels, all volumes up. What its helper threads do between
// two blocks is not timed: it is what the audio thread pays, without waiting.
class Flagship : public Case {
public:
    enum class Effects { Off, On };

    Flagship(Effects effects, bool isMoving)
        : isMoving_(isMoving), unit_("DUBS_NorvaneArvelReverb65", kBlock, kRate, kFullScaleVolts) {
        for (const char* volume : {"idNormalVol", "idVibratoVol"})
            set(volume, 0.6f);
        if (effects == Effects::On) {
            for (const char* effect : {"idReverb", "idSpeed", "idIntensity"})
                set(effect, 0.5f);
            parameter<std::string>("idCabinet").set(TARVEK_BENCH_CABINET);
        }
    }

    bool hasBackground() const override { return true; }
    void background() override { tvk::BackgroundJobs::waitUntilIdle(); }

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
    template <typename T>
    Parameter<T>& parameter(const std::string& name) {
        auto* const found = dynamic_cast<Parameter<T>*>(unit_.getParameter(name));
        if (!found) throw std::logic_error("the flagship has no parameter " + name);
        return *found;
    }
    void set(const std::string& name, float value) { parameter<float>(name).set(value); }

    // The unit takes its cabinet's convolver from the pool; each case has one of its own.
    struct Pool {
        Pool() { IRProcessorPool::fill({makeCabSim(kBlock, kRate)}); }
        ~Pool() { IRProcessorPool::clear(); }
    };

    bool isMoving_;
    Pool pool_;
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
        {"flagship_dry", [] { return std::make_unique<Flagship>(Flagship::Effects::Off, false); }},
        {"flagship_dry_moving", [] { return std::make_unique<Flagship>(Flagship::Effects::Off, true); }},
        {"flagship_audio_thread", [] { return std::make_unique<Flagship>(Flagship::Effects::On, false); }},
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

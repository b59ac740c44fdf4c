#include <memory>
#include <utility>

#include "InPlaceCase.h"
#include "algorithms/modulation/OpticalTremoloCell.h"
#include "algorithms/modulation/TremoloHarmonic.h"
#include "algorithms/modulation/TremoloSine.h"
#include "algorithms/modulation/TremoloVintage.h"
#include "algorithms/modulation/TwoVoiceModulation.h"

namespace bench {
namespace {

std::unique_ptr<Case> opticalCell() {
    return inPlace(
        std::make_unique<OpticalTremoloCell>(kBlockLength, kSampleRateHz,
                                             OpticalTremoloCell::kArvelReverb65Ranges),
        1.0f, [](OpticalTremoloCell& cell, float* samples) { cell.process(samples); },
        [](OpticalTremoloCell& cell, int turn) {
            cell.setSpeed(static_cast<float>(turn % 5) / 4.0f, false);
            cell.setIntensity(static_cast<float>(turn % 3) / 2.0f, false);
        });
}

// Cores of two channels, the guitar in both.
template <typename Core>
std::unique_ptr<Case> twoChannels(std::unique_ptr<Core> core) {
    return inPlace(std::move(core), 1.0f, [](Core& c, float* samples) {
        alignas(64) float right[kBlockLength];
        c.process(samples, samples, right, right);
    });
}

std::unique_ptr<Case> sineTremolo() {
    auto core = std::make_unique<TremoloSine>(kBlockLength, kSampleRateHz);
    core->setLevel(0.86f, true);
    return twoChannels(std::move(core));
}

std::unique_ptr<Case> vintageTremolo() {
    auto core = std::make_unique<TremoloVintage>(kBlockLength, kSampleRateHz);
    core->setLevel(0.86f, true);
    return twoChannels(std::move(core));
}

std::unique_ptr<Case> harmonicTremolo(const char* mode) {
    auto core = std::make_unique<TremoloHarmonic>(kBlockLength, kSampleRateHz);
    core->setIntensity(0.78f, true);
    core->setMode(mode);
    return twoChannels(std::move(core));
}

}  // namespace

std::vector<NamedCase> modulationCases() {
    return {
        {"optical_cell", opticalCell},
        {"tremolo_sine", sineTremolo},
        {"tremolo_vintage", vintageTremolo},
        {"tremolo_harmonic_6g4", [] { return harmonicTremolo("6G4"); }},
        {"tremolo_harmonic_6g4a", [] { return harmonicTremolo("6G4A"); }},
        {"two_voice_modulation",
         [] { return twoChannels(std::make_unique<TwoVoiceModulation>(kBlockLength, kSampleRateHz)); }},
    };
}

}  // namespace bench

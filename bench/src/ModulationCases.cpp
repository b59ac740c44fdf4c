#include "InPlaceCase.h"
#include "algorithms/modulation/OpticalTremoloCell.h"

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

}  // namespace

std::vector<NamedCase> modulationCases() {
    return {
        {"optical_cell", opticalCell},
    };
}

}  // namespace bench

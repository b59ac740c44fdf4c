#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"

namespace {

constexpr int kCapacitySamples = 4096;
constexpr int kFirstBlock = 128;
constexpr int kMiddleBlock = 64;
constexpr int kCpu = 3;
constexpr int kPriority = 49;

}  // namespace

std::shared_ptr<IRProcessor> makeCabSim(int blockLength, float sampleRate) {
    return std::make_shared<IRProcessor>(blockLength, kCapacitySamples, kFirstBlock, kMiddleBlock,
                                         kLongestCabinetBlock, kCpu, "cabSim", kPriority, sampleRate);
}

SFAD_LoadPresetCabsim::SFAD_LoadPresetCabsim(int numInputs, int numOutputs, const DspUnitDatabase* database,
                                             int blockLength, const std::string& processorUtilizationFilename,
                                             std::shared_ptr<IRProcessor> cabSim, float sampleRate)
    : SFAD_LoadPreset(numInputs, numOutputs, database, blockLength, processorUtilizationFilename, sampleRate),
      cabSim_(std::move(cabSim)),
      cabSimQueue_{cabSim_} {
    IRProcessorPool::fill(cabSimQueue_);
}

SFAD_LoadPresetCabsim::~SFAD_LoadPresetCabsim() {
    IRProcessorPool::clear();
}

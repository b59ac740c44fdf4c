#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"

#include "algorithms/cabsim/IRProcessorPool.h"

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

// The system device of the product: it also hands the engine's cabinet convolver to the units that will use
// it, through the process-wide pool that their constructors read.
#pragma once

#include <deque>
#include <memory>

#include "core/DspUnitSystem/SFAD_LoadPreset.h"

class IRProcessor;

// The one convolver that all cabinets share: responses of 4096 samples, 128 of them direct, the tail on the
// thread "cabSim". blockLength: at most kLongestCabinetBlock; sampleRate: Hz.
constexpr int kLongestCabinetBlock = 128;
std::shared_ptr<IRProcessor> makeCabSim(int blockLength, float sampleRate);

class SFAD_LoadPresetCabsim : public SFAD_LoadPreset {
public:
    // As SystemFixedAudioDevice; cabSim may be null, then cabinets pass their input through.
    SFAD_LoadPresetCabsim(int numInputs, int numOutputs, const DspUnitDatabase* database, int blockLength,
                          const std::string& processorUtilizationFilename,
                          std::shared_ptr<IRProcessor> cabSim, float sampleRate);

    // Clears the pool; the units give their shares back when the hosts go.
    ~SFAD_LoadPresetCabsim() override;

private:
    const std::shared_ptr<IRProcessor> cabSim_;
    const std::deque<std::shared_ptr<IRProcessor>> cabSimQueue_;
};

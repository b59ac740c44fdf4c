#include <memory>

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"

extern const DspUnitDatabaseEntry dbDUBS_NorvaneArvelReverb65;

static std::unique_ptr<IDspUnit> createDUBS_NorvaneArvelReverb65(const std::string& tarvekId, int blockLength,
                                                                 float sampleRate) {
    return std::make_unique<DUBS_NorvaneArvelReverb65>(tarvekId, blockLength, sampleRate,
                                                       DspUnitInputVoltageMappingConfig::get());
}

const DspUnitDatabaseEntry dbDUBS_NorvaneArvelReverb65{
    "DUBS_NorvaneArvelReverb65",
    createDUBS_NorvaneArvelReverb65,
#include "DUBS_NorvaneArvelReverb65.json.h"
};

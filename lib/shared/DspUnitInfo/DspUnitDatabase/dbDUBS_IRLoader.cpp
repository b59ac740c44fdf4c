#include <memory>

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/filter/DUBS_IRLoader.h"

extern const DspUnitDatabaseEntry dbDUBS_IRLoader;

static std::unique_ptr<IDspUnit> createDUBS_IRLoader(const std::string& tarvekId, int blockLength,
                                                     float sampleRate) {
    return std::make_unique<DUBS_IRLoader>(tarvekId, blockLength, sampleRate);
}

const DspUnitDatabaseEntry dbDUBS_IRLoader{
    "DUBS_IRLoader",
    createDUBS_IRLoader,
#include "DUBS_IRLoader.json.h"
};

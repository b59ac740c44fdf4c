#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_Spring65.h"

extern const DspUnitDatabaseEntry dbDUBS_Spring65;

const DspUnitDatabaseEntry dbDUBS_Spring65{
    "DUBS_Spring65",
    createUnit<DUBS_Spring65>,
#include "DUBS_Spring65.json.h"
};

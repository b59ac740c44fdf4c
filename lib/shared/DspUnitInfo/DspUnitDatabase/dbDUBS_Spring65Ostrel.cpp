#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_Spring65Ostrel.h"

extern const DspUnitDatabaseEntry dbDUBS_Spring65Ostrel;

const DspUnitDatabaseEntry dbDUBS_Spring65Ostrel{
    "DUBS_Spring65Ostrel",
    createUnit<DUBS_Spring65Ostrel>,
#include "DUBS_Spring65Ostrel.json.h"
};

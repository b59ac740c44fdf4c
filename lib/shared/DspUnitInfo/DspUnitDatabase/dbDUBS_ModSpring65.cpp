#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_ModSpring65.h"

extern const DspUnitDatabaseEntry dbDUBS_ModSpring65;

const DspUnitDatabaseEntry dbDUBS_ModSpring65{
    "DUBS_ModSpring65",
    createUnit<DUBS_ModSpring65>,
#include "DUBS_ModSpring65.json.h"
};

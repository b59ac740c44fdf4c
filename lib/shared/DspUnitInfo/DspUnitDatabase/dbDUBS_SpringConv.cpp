#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_SpringConv.h"

extern const DspUnitDatabaseEntry dbDUBS_SpringConv;

const DspUnitDatabaseEntry dbDUBS_SpringConv{
    "DUBS_SpringConv",
    createUnit<DUBS_SpringConv>,
#include "DUBS_SpringConv.json.h"
};

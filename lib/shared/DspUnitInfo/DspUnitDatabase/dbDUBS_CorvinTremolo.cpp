#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_CorvinTremolo.h"

extern const DspUnitDatabaseEntry dbDUBS_CorvinTremolo;

const DspUnitDatabaseEntry dbDUBS_CorvinTremolo{
    "DUBS_CorvinTremolo",
    createUnit<DUBS_CorvinTremolo>,
#include "DUBS_CorvinTremolo.json.h"
};

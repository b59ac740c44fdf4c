#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_VintageTremolo.h"

extern const DspUnitDatabaseEntry dbDUBS_VintageTremolo;

const DspUnitDatabaseEntry dbDUBS_VintageTremolo{
    "DUBS_VintageTremolo",
    createUnit<DUBS_VintageTremolo>,
#include "DUBS_VintageTremolo.json.h"
};

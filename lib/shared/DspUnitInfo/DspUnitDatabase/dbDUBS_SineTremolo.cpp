#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_SineTremolo.h"

extern const DspUnitDatabaseEntry dbDUBS_SineTremolo;

const DspUnitDatabaseEntry dbDUBS_SineTremolo{
    "DUBS_SineTremolo",
    createUnit<DUBS_SineTremolo>,
#include "DUBS_SineTremolo.json.h"
};

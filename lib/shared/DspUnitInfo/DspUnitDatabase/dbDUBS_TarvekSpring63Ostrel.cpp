#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_TarvekSpring63Ostrel.h"

extern const DspUnitDatabaseEntry dbDUBS_TarvekSpring63Ostrel;

const DspUnitDatabaseEntry dbDUBS_TarvekSpring63Ostrel{
    "DUBS_TarvekSpring63Ostrel",
    createUnit<DUBS_TarvekSpring63Ostrel>,
#include "DUBS_TarvekSpring63Ostrel.json.h"
};

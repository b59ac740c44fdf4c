#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_TarvekSpring63.h"

extern const DspUnitDatabaseEntry dbDUBS_TarvekSpring63;

const DspUnitDatabaseEntry dbDUBS_TarvekSpring63{
    "DUBS_TarvekSpring63",
    createUnit<DUBS_TarvekSpring63>,
#include "DUBS_TarvekSpring63.json.h"
};

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/reverb/DUBS_Moren15Reverb.h"

extern const DspUnitDatabaseEntry dbDUBS_Moren15Reverb;

const DspUnitDatabaseEntry dbDUBS_Moren15Reverb{
    "DUBS_Moren15Reverb",
    createUnit<DUBS_Moren15Reverb>,
#include "DUBS_Moren15Reverb.json.h"
};

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DUBS_Passthru.h"

extern const DspUnitDatabaseEntry dbDUBS_Passthru;

const DspUnitDatabaseEntry dbDUBS_Passthru{
    "DUBS_Passthru",
    createUnit<DUBS_Passthru>,
#include "DUBS_Passthru.json.h"
};

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_TremoloOptical.h"

extern const DspUnitDatabaseEntry dbDUBS_TremoloOptical;

const DspUnitDatabaseEntry dbDUBS_TremoloOptical{
    "DUBS_TremoloOptical",
    createUnit<DUBS_TremoloOptical>,
#include "DUBS_TremoloOptical.json.h"
};

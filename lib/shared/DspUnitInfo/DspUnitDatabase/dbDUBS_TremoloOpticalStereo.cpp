#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_TremoloOpticalStereo.h"

extern const DspUnitDatabaseEntry dbDUBS_TremoloOpticalStereo;

const DspUnitDatabaseEntry dbDUBS_TremoloOpticalStereo{
    "DUBS_TremoloOpticalStereo",
    createUnit<DUBS_TremoloOpticalStereo>,
#include "DUBS_TremoloOpticalStereo.json.h"
};

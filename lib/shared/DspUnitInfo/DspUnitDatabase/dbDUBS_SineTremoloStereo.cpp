#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_SineTremoloStereo.h"

extern const DspUnitDatabaseEntry dbDUBS_SineTremoloStereo;

const DspUnitDatabaseEntry dbDUBS_SineTremoloStereo{
    "DUBS_SineTremoloStereo",
    createUnit<DUBS_SineTremoloStereo>,
#include "DUBS_SineTremoloStereo.json.h"
};

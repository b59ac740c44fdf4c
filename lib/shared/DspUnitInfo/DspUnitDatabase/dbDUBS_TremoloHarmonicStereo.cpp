#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_TremoloHarmonicStereo.h"

extern const DspUnitDatabaseEntry dbDUBS_TremoloHarmonicStereo;

const DspUnitDatabaseEntry dbDUBS_TremoloHarmonicStereo{
    "DUBS_TremoloHarmonicStereo",
    createUnit<DUBS_TremoloHarmonicStereo>,
#include "DUBS_TremoloHarmonicStereo.json.h"
};

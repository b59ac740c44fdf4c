#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_PassthruStereo.h"

extern const DspUnitDatabaseEntry dbPassthruStereo;

const DspUnitDatabaseEntry dbPassthruStereo{
    "PassthruStereo",
    createTimelessUnit<DU_PassthruStereo>,
#include "PassthruStereo.json.h"
};

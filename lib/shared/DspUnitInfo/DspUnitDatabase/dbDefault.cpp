#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_PassthruStereo.h"

extern const DspUnitDatabaseEntry dbDefault;

const DspUnitDatabaseEntry dbDefault{
    "Default",
    createTimelessUnit<DU_PassthruStereo>,
#include "Default.json.h"
};

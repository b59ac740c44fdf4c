#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_PassthruMono.h"

extern const DspUnitDatabaseEntry dbPassthruMono;

const DspUnitDatabaseEntry dbPassthruMono{
    "PassthruMono",
    createTimelessUnit<DU_PassthruMono>,
#include "PassthruMono.json.h"
};

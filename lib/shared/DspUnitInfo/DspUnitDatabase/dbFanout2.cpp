#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_Fanout2.h"

extern const DspUnitDatabaseEntry dbFanout2;

const DspUnitDatabaseEntry dbFanout2{
    "Fanout2",
    createTimelessUnit<DU_Fanout2>,
#include "Fanout2.json.h"
};

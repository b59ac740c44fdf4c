#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_Sum2.h"

extern const DspUnitDatabaseEntry dbSum2;

const DspUnitDatabaseEntry dbSum2{
    "Sum2",
    createTimelessUnit<DU_Sum2>,
#include "Sum2.json.h"
};

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_StereoAdder.h"

extern const DspUnitDatabaseEntry dbDU_StereoAdder;

const DspUnitDatabaseEntry dbDU_StereoAdder{
    "DU_StereoAdder",
    createTimelessUnit<DU_StereoAdder>,
#include "DU_StereoAdder.json.h"
};

#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/utility/DU_StereoMixer.h"

extern const DspUnitDatabaseEntry dbDU_StereoMixer;

const DspUnitDatabaseEntry dbDU_StereoMixer{
    "DU_StereoMixer",
    createUnit<DU_StereoMixer>,
#include "DU_StereoMixer.json.h"
};

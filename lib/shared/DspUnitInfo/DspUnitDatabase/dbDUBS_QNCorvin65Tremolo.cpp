#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_QNCorvin65Tremolo.h"

extern const DspUnitDatabaseEntry dbDUBS_QNCorvin65Tremolo;

const DspUnitDatabaseEntry dbDUBS_QNCorvin65Tremolo{
    "DUBS_QNCorvin65Tremolo",
    createUnit<DUBS_QNCorvin65Tremolo>,
#include "DUBS_QNCorvin65Tremolo.json.h"
};

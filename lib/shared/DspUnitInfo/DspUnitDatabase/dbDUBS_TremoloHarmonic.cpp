#include "core/System/DspUnitDatabaseEntry.h"
#include "core/units/modulation/DUBS_TremoloHarmonic.h"

extern const DspUnitDatabaseEntry dbDUBS_TremoloHarmonic;

const DspUnitDatabaseEntry dbDUBS_TremoloHarmonic{
    "DUBS_TremoloHarmonic",
    createUnit<DUBS_TremoloHarmonic>,
#include "DUBS_TremoloHarmonic.json.h"
};

#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"

extern const DspUnitDatabaseEntry dbDefault;

#define ENTRY(id) extern const DspUnitDatabaseEntry db##id;
#include "Entries.def"
#undef ENTRY

DefaultDspUnitDatabase::DefaultDspUnitDatabase() : DspUnitDatabase(dbDefault) {
#define ENTRY(id) add(db##id);
#include "Entries.def"
#undef ENTRY
}

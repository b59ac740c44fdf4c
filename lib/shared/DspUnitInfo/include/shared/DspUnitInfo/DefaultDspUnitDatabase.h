// The catalogue of this library: every unit type that it can build.
//
// To add a type ID:
//   1. the unit itself, a file pair in lib/core/units/<family>;
//   2. its definition, lib/shared/DspUnitInfo/DspUnitDatabase/ID.json;
//   3. its entry beside it, dbID.cpp, which names the factory and includes the definition;
//   4. one line ENTRY(ID) in src/Entries.def.
// Definitions are embedded at build. The renderer and the contract tests then reach the type by themselves.
//
// Built once and passed by pointer; read-only, from any thread.
#pragma once

#include "core/System/DspUnitDatabase.h"

class DefaultDspUnitDatabase : public DspUnitDatabase {
public:
    DefaultDspUnitDatabase();
};

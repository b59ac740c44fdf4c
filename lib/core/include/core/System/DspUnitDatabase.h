// The catalogue of unit types: by type id, how to build a unit and the definition that presents it.
//
// Filled at construction, then read-only, from any thread.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/System/DspUnitDatabaseEntry.h"

class DspUnitDatabase {
public:
    // The entry that stands in for every id that is not in the catalogue. Entries are not owned.
    explicit DspUnitDatabase(const DspUnitDatabaseEntry& defaultEntry);
    virtual ~DspUnitDatabase() = default;
    DspUnitDatabase(const DspUnitDatabase&) = delete;
    DspUnitDatabase& operator=(const DspUnitDatabase&) = delete;

    // Nothing happens when the entry's id is present.
    virtual void add(const DspUnitDatabaseEntry& entry);

    // A new unit. An unknown id warns and gives a unit of the default entry.
    virtual std::unique_ptr<IDspUnit> createDspUnit(const std::string& id, int blockLength,
                                                    float sampleRate) const;

    // The definition text, JSON. An unknown id warns and gives that of the default entry.
    virtual const char* getDefinition(const std::string& id) const;

    bool contains(const std::string& id) const { return entries_.count(id) != 0; }

    // Type ids in order of first addition, the default's first.
    const std::vector<std::string>& getIds() const { return ids_; }

private:
    const DspUnitDatabaseEntry& find(const std::string& id) const;

    std::map<std::string, const DspUnitDatabaseEntry*> entries_;
    std::string defaultId_;
    std::vector<std::string> ids_;
};

#include "core/System/DspUnitDatabase.h"

#include "utility/Log.h"

DspUnitDatabase::DspUnitDatabase(const DspUnitDatabaseEntry& defaultEntry)
    : entries_{{defaultEntry.tarvekId, &defaultEntry}},
      defaultId_(defaultEntry.tarvekId),
      ids_{defaultEntry.tarvekId} {}

void DspUnitDatabase::add(const DspUnitDatabaseEntry& entry) {
    if (entries_.emplace(entry.tarvekId, &entry).second) ids_.push_back(entry.tarvekId);
}

const DspUnitDatabaseEntry& DspUnitDatabase::find(const std::string& id) const {
    const auto found = entries_.find(id);
    if (found != entries_.end()) return *found->second;
    TVK_WARN("can't find %s in database", id.c_str());
    return *entries_.at(defaultId_);
}

std::unique_ptr<IDspUnit> DspUnitDatabase::createDspUnit(const std::string& id, int blockLength,
                                                         float sampleRate) const {
    const DspUnitDatabaseEntry& entry = find(id);
    return entry.create(entry.tarvekId, blockLength, sampleRate);
}

const char* DspUnitDatabase::getDefinition(const std::string& id) const {
    return find(id).definition;
}

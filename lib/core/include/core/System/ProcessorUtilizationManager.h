// The running sum of what a graph's units cost against the budget. It warns; it refuses nothing.
//
// All figures are percentage points of one processor. Control thread only.
#pragma once

#include "core/System/ProcessorUtilizationData.h"

class ProcessorUtilizationManager : public ProcessorUtilizationData {
public:
    using ProcessorUtilizationData::ProcessorUtilizationData;

    // 20 for a type that is not in the table: an unknown unit is assumed to be expensive.
    float getCost(const std::string& tarvekId) const;
    float getBudget() const { return utilizationBudget; }
    float getUsed() const { return used; }
    // Budget less used, at least 0.
    float getRemaining() const;

    void add(const std::string& tarvekId) { used += getCost(tarvekId); }
    void remove(const std::string& tarvekId) { used -= getCost(tarvekId); }
    // Adds the cost if the sum, rounded to a whole number, is within the budget; tells whether it did.
    bool tryAdd(const std::string& tarvekId);
    void clear() { used = 0.0f; }

    // Sums the costs of a preset, whose object is at the archive's cursor: its nodes, and the first node of
    // each of its guitar and microphone groups. Used becomes that sum; tells whether it is within the budget.
    bool checkPreset(DspArchive& archive);

private:
    bool fits(float sum) const;
    float sumNodes(DspArchive& archive) const;
    float sumGroups(DspArchive& archive, const char* key, const char* emptyGroupText) const;

    float used = 0.0f;
};

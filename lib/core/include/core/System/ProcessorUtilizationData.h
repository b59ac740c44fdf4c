// What each unit type costs of one processor, and how much a graph may cost: percentage points, measured on
// the target hardware and read from a file.
//
//   {"utilizationBudget": 95, "modules": [{"tarvekId": "DUBS_Boost", "utilizationPercentage": 1.5}, ...]}
//
// A fault in the file is a log line: it leaves a budget of 0 or a type that is not in the table.
#pragma once

#include <map>
#include <string>

class DspArchive;

class ProcessorUtilizationData {
public:
    // No table and a budget of 0.
    ProcessorUtilizationData() = default;
    explicit ProcessorUtilizationData(const std::string& filename);
    // Reads from the root of the archive.
    explicit ProcessorUtilizationData(const DspArchive& archive);

protected:
    std::map<std::string, float> modules;
    float utilizationBudget = 0.0f;

private:
    void read(DspArchive& archive);
    void readModules(DspArchive& archive);
};

// Everything that the models write or delete, each on the disk that it finds.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Amplifier.h"
#include "DiskModel.h"

struct Scenario {
    std::string name;
    DiskContents before;
    bool isAtTheStart;                    // the power goes while the program starts, not in what it does then
    std::function<bool(Amplifier&)> act;  // what the client is told; an exception is a refusal
    std::vector<std::string> promised;    // files that are durable, or gone for good, when act has succeeded
    bool saves = true;                    // it writes files; else it only deletes
};

// engine: for the session that leaves the disk that most scenarios begin with.
std::vector<Scenario> scenarios(Model& engine);

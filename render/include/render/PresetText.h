// The preset that a run loads: where it comes from, and with which parameters.
//
// Every fault of the caller's is a tvk::Exception with one clear line.
#pragma once

#include <string>
#include <vector>

#include "core/System/DspUnitDatabase.h"
#include "render/ParameterSetting.h"

namespace tvk::render {

// A built-in preset, slot 0 to 4.
std::string presetOfSlot(int slot);

// A preset file.
std::string presetOfFile(const std::string& path);

// A graph of one unit with the defaults of its definition. Graph input i feeds channel i, inputs past the
// second repeat 0 and 1; a single output feeds both outputs of the graph. The node's id is the type id.
std::string presetOfUnit(const DspUnitDatabase& database, const std::string& tarvekId);

// The preset with parameters set, so that a load initialises the units with them. Checks that the node
// exists, that its unit has the parameter and that a preset stores it, and that the value is of its type.
std::string withSettings(const std::string& presetText, const std::vector<ParameterSetting>& settings,
                         const DspUnitDatabase& database);

}  // namespace tvk::render

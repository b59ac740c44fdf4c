// The text of "userCabsimConfig.json", and of the factory's defaults: one key with three slots.
//
//   {"cabsimIRs": [{"isFactory": true, "irName": "Arvel-Far", "isDirty": false,
//                   "hpf": 20.0, "lpf": 20000.0, "level": -5.0}, ...]}
#pragma once

#include <string>

#include "proj/models/CabsimModel.h"

namespace tvk {

// Throws what is wrong with the text: the JSON library's exceptions, and std::invalid_argument unless there
// are three slots. Values are clamped to CabsimLimits; a slot whose name may not be is empty instead.
CabsimModel::Slots parseCabsimConfig(const std::string& text);

std::string cabsimConfigText(const CabsimModel::Slots& slots);

}  // namespace tvk

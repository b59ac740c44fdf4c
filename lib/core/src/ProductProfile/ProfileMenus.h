// The arrays of a product profile. An item without its leading key is a warning and left out.
#pragma once

#include <string>
#include <vector>

#include "core/ProductProfile/ProductProfile.h"

struct Menu {
    bool isPresent = false;
    std::vector<MenuEntry> entries;
};

// The array at the key, objects with idKey and "menuName18Max".
Menu readMenu(DspArchive& archive, const std::string& key, const std::string& idKey, const char* itemFault);

// The array at the key, objects with the first numSlots of the keys "first" to "fifth" and, if it has a name
// in the menu, "menuName18Max".
std::vector<ExternalControlsData> readAssignments(DspArchive& archive, const std::string& key, int numSlots,
                                                  const char* itemFault);

// The texts of the two catalogues. Both are lists below one key:
//
//   {"factoryIRs": [{"name": "Arvel-Far"}, ...]}
//   {"userIRs": [{"name": "Room", "exists": true}, ...]}
//
// Records whose name may not be (IRName.h), and repetitions of a name, are left out with a warning.
#pragma once

#include <string>
#include <vector>

#include "proj/models/UserIRModel.h"

namespace tvk {

// Both throw what is wrong with the text: the JSON library's exceptions.
std::vector<std::string> parseFactoryCatalogue(const std::string& text);
std::vector<UserIR> parseUserCatalogue(const std::string& text);

std::string userCatalogueText(const std::vector<UserIR>& records);

}  // namespace tvk

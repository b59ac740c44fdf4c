// Which of the factory's files belong to an amplifier.
#pragma once

#include <string>

namespace tvk {

struct AmplifierFiles {
    int amplifier;  // 0 Arvel, 1 Corvin, 2 Lisko, 3 Sorrel
    const char* catalogue;
    const char* directory;       // of the responses, ending in "/"
    const char* cabsimDefaults;  // for the three cabinet slots
};

enum class ProductFamily { SlatePanel, Fawn, Unknown };

ProductFamily productFamilyOf(const std::string& name);

// Null for an amplifier that the family does not have.
const AmplifierFiles* amplifierFiles(ProductFamily family, int amplifier);

}  // namespace tvk

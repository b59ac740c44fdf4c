#include "AmplifierFiles.h"

#include <algorithm>
#include <span>

namespace tvk {

namespace {

constexpr AmplifierFiles kSlatePanel[] = {
    {0, "/home/root/factoryIRsArvelSlate.json", "/home/root/factoryIRs/Arvel-SlatePanel-IRs/",
     "/home/root/userCabsimDefaultsArvelSlate.json"},
    {1, "/home/root/factoryIRsCorvinSlate.json", "/home/root/factoryIRs/Corvin-SlatePanel-IRs/",
     "/home/root/userCabsimDefaultsCorvinSlate.json"},
    {2, "/home/root/factoryIRsLisko.json", "/home/root/factoryIRs/Lisko-SlatePanel-IRs/",
     "/home/root/userCabsimDefaultsLisko.json"},
    {3, "/home/root/factoryIRsSorrel.json", "/home/root/factoryIRs/Sorrel-SlatePanel-IRs/",
     "/home/root/userCabsimDefaultsSorrel.json"},
};

constexpr AmplifierFiles kFawn[] = {
    {0, "/home/root/factoryIRsArvelFawn.json", "/home/root/factoryIRs/Arvel-Fawn-IRs/",
     "/home/root/userCabsimDefaultsArvelFawn.json"},
    {1, "/home/root/factoryIRsCorvinFawn.json", "/home/root/factoryIRs/Corvin-Fawn-IRs/",
     "/home/root/userCabsimDefaultsCorvinFawn.json"},
};

std::span<const AmplifierFiles> filesOf(ProductFamily family) {
    switch (family) {
        case ProductFamily::SlatePanel:
            return kSlatePanel;
        case ProductFamily::Fawn:
            return kFawn;
        case ProductFamily::Unknown:
            break;
    }
    return {};
}

}  // namespace

ProductFamily productFamilyOf(const std::string& name) {
    if (name == "slatePanel") return ProductFamily::SlatePanel;
    if (name == "fawn") return ProductFamily::Fawn;
    return ProductFamily::Unknown;
}

const AmplifierFiles* amplifierFiles(ProductFamily family, int amplifier) {
    const auto files = filesOf(family);
    const auto found = std::find_if(files.begin(), files.end(), [amplifier](const AmplifierFiles& candidate) {
        return candidate.amplifier == amplifier;
    });
    return found == files.end() ? nullptr : &*found;
}

}  // namespace tvk

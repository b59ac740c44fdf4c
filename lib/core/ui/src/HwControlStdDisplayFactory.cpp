#include "core/ui/HwControlStdDisplayFactory.h"

#include <utility>

#include "core/System/ArchiveKey.h"
#include "core/ui/HwControlStdDisplayContinuous.h"
#include "core/ui/HwControlStdDisplayDiscrete.h"
#include "core/ui/HwControlStdDisplayList.h"
#include "core/ui/HwControlStdDisplayListBool.h"
#include "utility/Log.h"

namespace {

template <typename Class>
std::unique_ptr<IHwControlStdDisplay> make(DspArchive& archive) {
    return std::make_unique<Class>(archive);
}

}  // namespace

void HwControlStdDisplayFactory::init() {
    tvk::log::debug("HwControlStdDisplayFactory", "Using default HwControlStdDisplayFactory init");
    add("continuous", make<HwControlStdDisplayContinuous>);
    add("discrete", make<HwControlStdDisplayDiscrete>);
    add("list", make<HwControlStdDisplayList>);
    add("listBool", make<HwControlStdDisplayListBool>);
}

void HwControlStdDisplayFactory::add(const std::string& controlType, Create create) {
    createFunctions_[controlType] = std::move(create);
}

std::unique_ptr<IHwControlStdDisplay> HwControlStdDisplayFactory::create(DspArchive& archive) const {
    if (!hasKey(archive, "controlType")) {
        TVK_ERROR("archive missing controlType node");
        return nullptr;
    }
    const auto found = createFunctions_.find(getRequired<std::string>(archive, "controlType", ""));
    if (found == createFunctions_.end()) {
        TVK_ERROR("type not found in createFunctionList");
        return nullptr;
    }
    std::unique_ptr<IHwControlStdDisplay> control = found->second ? found->second(archive) : nullptr;
    if (!control) TVK_ERROR("null function returned");
    return control;
}

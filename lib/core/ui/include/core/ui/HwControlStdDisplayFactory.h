// Makes the control that an item of a definition's uiParameters asks for.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "core/System/DspArchive.h"
#include "core/ui/IHwControlStdDisplay.h"

class HwControlStdDisplayFactory {
public:
    using Create = std::function<std::unique_ptr<IHwControlStdDisplay>(DspArchive&)>;

    virtual ~HwControlStdDisplayFactory() = default;

    // Registers continuous, discrete, list and listBool.
    virtual void init();
    // Registers a controlType, in place of one of that name.
    void add(const std::string& controlType, Create create);
    // From the item at the archive's cursor; null, with an error line, if it has no known controlType.
    std::unique_ptr<IHwControlStdDisplay> create(DspArchive& archive) const;

private:
    std::map<std::string, Create> createFunctions_;
};

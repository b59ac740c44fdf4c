// What the controls of all value types have in common: the texts of their definition, and the tie to a
// parameter, which they set as a control and follow as an observer.
#pragma once

#include <string>

#include "core/Parameter/Control.h"
#include "core/Parameter/IParameter.h"
#include "core/Parameter/Observer.h"
#include "core/System/ArchiveKey.h"
#include "core/ui/IHwControlStdDisplay.h"

// Texts of one item of a definition's uiParameters.
struct HwControlTexts {
    explicit HwControlTexts(DspArchive& archive)
        : controlId(getRequired<std::string>(archive, "controlId", "???")),
          displayName(getRequired<std::string>(archive, "displayName", "???")),
          displayType(getRequired<std::string>(archive, "displayType", "knob")),
          units(getOptional<std::string>(archive, "units", "")),
          nameMinimized(getRequired<std::string>(archive, "paramGuiObjectNameMinimized", "???")),
          nameMaximized(getRequired<std::string>(archive, "paramGuiObjectNameMaximized", "???")) {}

    std::string controlId, displayName, displayType, units, nameMinimized, nameMaximized;
};

template <typename T>
class HwControlStdDisplay : public IHwControlStdDisplay, public Control<T>, public Observer<T> {
public:
    // Reads the item at the archive's cursor.
    explicit HwControlStdDisplay(DspArchive& archive) : texts_(archive) {}

    const std::type_info& getType() const override { return typeid(T); }

    void attach(IParameter& parameter) override {
        parameter.connectControl(this);
        parameter.addObserver(this);
    }
    void detach(IParameter& parameter) override {
        parameter.disconnectControl(this);
        parameter.removeObserver(this);
    }

    const std::string& getControlId() const override { return texts_.controlId; }
    const std::string& getDisplayName() const override { return texts_.displayName; }
    const std::string& getDisplayType() const override { return texts_.displayType; }
    const std::string& getUnits() const override { return texts_.units; }
    const std::string& getNameMinimized() const override { return texts_.nameMinimized; }
    const std::string& getNameMaximized() const override { return texts_.nameMaximized; }

    // Nothing to redraw on an amplifier without a screen; a product with one overrides it.
    void onDisplayUpdate() override {}

private:
    HwControlTexts texts_;
};

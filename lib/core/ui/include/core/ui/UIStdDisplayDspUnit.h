// The binding of a unit to a panel, made from the unit's definition: one control a knob, in the order that
// the definition's orderBMT gives, or else as they stand in uiParameters.
//
// A knob turn is position -> taper -> Parameter<T>::set -> the unit's setter; the parameter then tells the
// control, so that the knob follows whoever else sets the parameter. The unit must outlive the binding, whose
// destructor unties every control. Control threads only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/ui/HwControlStdDisplayFactory.h"
#include "core/ui/IUIStdDisplayDspUnit.h"

class IDspUnit;
class IParameter;
template <typename T>
class UnitControl;

class UIStdDisplayDspUnit final : public IUIStdDisplayDspUnit {
public:
    // knobClass names the panel's kind of knobs, "QNB" for this product. Throws the parser's error for a text
    // that is no JSON; every other fault of the definition is a line in the log.
    UIStdDisplayDspUnit(IDspUnit& unit, const std::string& definitionText, std::string knobClass);
    ~UIStdDisplayDspUnit() override;
    UIStdDisplayDspUnit(const UIStdDisplayDspUnit&) = delete;
    UIStdDisplayDspUnit& operator=(const UIStdDisplayDspUnit&) = delete;

    void printStatus() const override;
    void setKnob(int index, float position) override;
    void setKnob(int index, const std::string& value) override;
    void incrementKnob(int index, int ticks) override;
    int getNumKnobs() const override { return static_cast<int>(controls_.size()); }
    float getKnob(int index) const override;
    std::string getParameterName(int index) const override;
    std::string getParameterNameMinimized(int index) const override;
    std::string getParameterUnits(int index) const override;
    std::string getParameterValue(int index) const override;
    bool hasBypass() const override { return hasBypass_; }

    void setSwitch(int index, bool on);
    std::string getParameterDisplayType(int index) const;
    // The parameter's name.
    std::string getParameterId(int index) const;

    // A unit without the parameter ignores the call; getBypass and getClipState answer false then.
    bool getBypass() const;
    void setBypass(bool bypassed);
    void setBypassType(const std::string& type);
    void setTapTime(float seconds);
    void setTapTimeBPM(float beatsPerMinute);
    void initTapTimeBPM(float beatsPerMinute);
    void setNoteDivision(const std::string& division);
    // True once after the unit has clipped: the reading clears it.
    bool getClipState();

    const std::string& getKnobClass() const { return knobClass_; }
    // The unit's name in menus, for a small display and for a large one.
    const std::string& getUnitNameMinimized() const { return audioGuiObjectNameMinimized_; }
    const std::string& getUnitNameMaximized() const { return audioGuiObjectNameMaximized_; }

private:
    void readInfo(DspArchive& definition);
    void readUi(DspArchive& definition);
    void makeControls(DspArchive& definition, const std::vector<int>& order);
    void makeExtraControls();
    template <typename T>
    std::unique_ptr<UnitControl<T>> makeExtraControl(const std::string& name, const char* missingFormat);
    // Null, with a debug line of this format, for an index out of range.
    IHwControlStdDisplay* controlAt(int index, const char* invalidFormat) const;

    struct Tie {
        std::unique_ptr<IHwControlStdDisplay> control;
        IParameter* parameter;
    };

    IDspUnit& unit_;
    const std::string knobClass_;
    std::string selectedDspModule_, category_, subCategory_;
    std::string audioGuiObjectNameMinimized_, audioGuiObjectNameMaximized_;
    bool hasBypass_ = false;
    bool hasTap_ = false;
    HwControlStdDisplayFactory factory_;
    std::vector<Tie> controls_;  // in knob order

    std::unique_ptr<UnitControl<bool>> bypass_;
    std::unique_ptr<UnitControl<std::string>> bypassType_;
    std::unique_ptr<UnitControl<float>> tapTime_;
    std::unique_ptr<UnitControl<float>> tapTimeBPM_;
    std::unique_ptr<UnitControl<std::string>> noteDivision_;
    std::unique_ptr<UnitControl<bool>> clipState_;
};

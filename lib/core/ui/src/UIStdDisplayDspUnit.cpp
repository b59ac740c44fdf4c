#include "core/ui/UIStdDisplayDspUnit.h"

#include <cstdio>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "UnitControl.h"
#include "core/DspUnit/IDspUnit.h"
#include "core/System/ArchiveKey.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "UIStdDisplayDspUnit";

// Indices into uiParameters in knob order. The cursor is at the definition's ui.
std::vector<int> readKnobOrder(DspArchive& ui) {
    std::vector<int> order;
    if (ui.enterObject("orderBMT")) {
        tvk::log::debug(kTag, "found orderBMT node");
        const int count = ui.getArraySize();
        tvk::log::debug(kTag, "orderBMT controlCount is %d", count);
        for (int i = 0; i < count; ++i) {
            constexpr int unread = std::numeric_limits<int>::min();
            int entry = unread;
            ui.getArrayItem(i, entry);
            if (entry == unread) {
                TVK_ERROR("problem with orderBMT array, index %d", i);
            } else {
                order.push_back(entry);
            }
        }
        ui.leaveObject();
        return order;
    }
    tvk::log::debug(kTag, "orderBMT node missing");
    if (ui.enterObject("uiParameters")) {
        order.resize(static_cast<std::size_t>(ui.getArraySize()));
        std::iota(order.begin(), order.end(), 0);
        ui.leaveObject();
    }
    return order;
}

}  // namespace

UIStdDisplayDspUnit::UIStdDisplayDspUnit(IDspUnit& unit, const std::string& definitionText,
                                         std::string knobClass)
    : unit_(unit), knobClass_(std::move(knobClass)) {
    DspArchive definition(definitionText);
    factory_.init();
    readInfo(definition);
    readUi(definition);
    makeExtraControls();
}

UIStdDisplayDspUnit::~UIStdDisplayDspUnit() {
    for (Tie& tie : controls_)
        tie.control->detach(*tie.parameter);
}

void UIStdDisplayDspUnit::readInfo(DspArchive& definition) {
    if (!definition.enterObject("info")) {
        TVK_ERROR("info node missing");
        return;
    }
    definition.get("displayName", selectedDspModule_);
    definition.get("audioGuiObjectNameMinimized", audioGuiObjectNameMinimized_);
    definition.get("audioGuiObjectNameMaximized", audioGuiObjectNameMaximized_);
    definition.get("category", category_);
    subCategory_ = getOptional(definition, "subCategory", subCategory_);
    definition.leaveObject();
}

void UIStdDisplayDspUnit::readUi(DspArchive& definition) {
    if (!definition.enterObject("ui")) {
        TVK_ERROR("ui node missing");
        return;
    }
    hasBypass_ = getOptional(definition, "hasBypass", false);
    hasTap_ = getOptional(definition, "hasTap", false);
    const std::vector<int> order = readKnobOrder(definition);
    if (definition.enterObject("uiParameters")) {
        makeControls(definition, order);
        definition.leaveObject();
    } else {
        TVK_ERROR("uiParameters node missing");
    }
    definition.leaveObject();
}

void UIStdDisplayDspUnit::makeControls(DspArchive& definition, const std::vector<int>& order) {
    tvk::log::debug(kTag, "numKnobs is %d", static_cast<int>(order.size()));
    for (std::size_t k = 0; k < order.size(); ++k) {
        tvk::log::debug(kTag, "looking for knob %d", static_cast<int>(k));
        if (!definition.enterArrayItem(order[k])) {
            TVK_ERROR("missing requested parameter array object, index %d, check orderBMT contents",
                      order[k]);
            continue;
        }
        std::unique_ptr<IHwControlStdDisplay> control = factory_.create(definition);
        definition.leaveObject();
        if (!control) {
            TVK_ERROR("problem with parameter array object");
            continue;
        }
        try {
            IParameter* parameter = unit_.getParameter(control->getControlId());
            control->attach(*parameter);
            controls_.push_back({std::move(control), parameter});
        } catch (const std::runtime_error& error) {  // no such parameter, or one of another type
            TVK_ERROR("%s", error.what());
        }
    }
}

template <typename T>
std::unique_ptr<UnitControl<T>> UIStdDisplayDspUnit::makeExtraControl(const std::string& name,
                                                                      const char* missingFormat) {
    for (const auto& [candidate, parameter] : unit_.getParameters()) {
        auto* typed = candidate == name ? dynamic_cast<Parameter<T>*>(parameter) : nullptr;
        if (typed) return std::make_unique<UnitControl<T>>(*typed);
    }
    if (missingFormat) TVK_WARN(missingFormat, unit_.getTarvekId().c_str());
    return nullptr;
}

void UIStdDisplayDspUnit::makeExtraControls() {
    bypass_ = makeExtraControl<bool>("bypass", "%s does not support bypass");
    // Comes and goes with bypass, whose absence is told already.
    bypassType_ = makeExtraControl<std::string>("bypassType", nullptr);
    tapTime_ = makeExtraControl<float>("tapTime", "%s does not support tap");
    tapTimeBPM_ = makeExtraControl<float>("tapTimeBPM", "%s does not support tap bpm");
    if (!tapTimeBPM_) TVK_WARN("%s does not support init tap bpm", unit_.getTarvekId().c_str());
    noteDivision_ = makeExtraControl<std::string>("noteDivision", "%s does not support noteDivision");
    clipState_ = makeExtraControl<bool>("clipState", "clipState not implemented in %s");
}

IHwControlStdDisplay* UIStdDisplayDspUnit::controlAt(int index, const char* invalidFormat) const {
    if (index < 0 || index >= getNumKnobs()) {
        tvk::log::debug(kTag, invalidFormat, index);
        return nullptr;
    }
    return controls_[static_cast<std::size_t>(index)].control.get();
}

void UIStdDisplayDspUnit::setKnob(int index, float position) {
    tvk::log::debug(kTag, "setKnob(%d, %f)", index, static_cast<double>(position));
    if (auto* control = controlAt(index, "Ignoring invalid setKnob index: %d"))
        control->setFromPosition(position);
}

void UIStdDisplayDspUnit::setKnob(int index, const std::string& value) {
    tvk::log::debug(kTag, "setKnob(%d, %s)", index, value.c_str());
    if (auto* control = controlAt(index, "Ignoring invalid setKnob index: %d")) control->setFromString(value);
}

void UIStdDisplayDspUnit::setSwitch(int index, bool on) {
    tvk::log::debug(kTag, "setSwitch(%d, %d)", index, on);
    if (auto* control = controlAt(index, "Ignoring invalid setSwitch index: %d")) control->setFromBool(on);
}

void UIStdDisplayDspUnit::incrementKnob(int index, int ticks) {
    if (auto* control = controlAt(index, "Ignoring invalid incrementKnob index: %d"))
        control->setFromEncoder(ticks);
}

float UIStdDisplayDspUnit::getKnob(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getKnob index: %d");
    return control ? control->getPosition() : 0.0f;
}

std::string UIStdDisplayDspUnit::getParameterName(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterName index: %d");
    return control ? control->getNameMaximized() : "";
}

std::string UIStdDisplayDspUnit::getParameterNameMinimized(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterName index: %d");
    return control ? control->getNameMinimized() : "";
}

std::string UIStdDisplayDspUnit::getParameterUnits(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterUnits index: %d");
    return control ? control->getUnits() : "";
}

std::string UIStdDisplayDspUnit::getParameterValue(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterValue index: %d");
    return control ? control->getDisplayText() : "";
}

std::string UIStdDisplayDspUnit::getParameterDisplayType(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterDisplayType index: %d");
    return control ? control->getDisplayType() : "";
}

std::string UIStdDisplayDspUnit::getParameterId(int index) const {
    const auto* control = controlAt(index, "Ignoring invalid getParameterId index: %d");
    return control ? control->getControlId() : "";
}

bool UIStdDisplayDspUnit::getBypass() const {
    return bypass_ && bypass_->get();
}
bool UIStdDisplayDspUnit::getClipState() {
    return clipState_ && clipState_->get();
}

void UIStdDisplayDspUnit::setBypass(bool bypassed) {
    if (bypass_) bypass_->send(bypassed);
}

void UIStdDisplayDspUnit::setBypassType(const std::string& type) {
    if (bypassType_) bypassType_->send(type);
}

void UIStdDisplayDspUnit::setTapTime(float seconds) {
    if (tapTime_) tapTime_->send(seconds);
}

void UIStdDisplayDspUnit::setTapTimeBPM(float beatsPerMinute) {
    if (tapTimeBPM_) tapTimeBPM_->send(beatsPerMinute);
}

void UIStdDisplayDspUnit::initTapTimeBPM(float beatsPerMinute) {
    if (tapTimeBPM_) tapTimeBPM_->init(beatsPerMinute);
}

void UIStdDisplayDspUnit::setNoteDivision(const std::string& division) {
    if (noteDivision_) noteDivision_->send(division);
}

void UIStdDisplayDspUnit::printStatus() const {
    std::printf("--- User Interface Status ---------------------------------\n");
    std::printf("selected dsp module: %s\n", selectedDspModule_.c_str());
    std::printf("           category: %s\n", category_.c_str());
    std::printf("        subCategory: %s\n", subCategory_.c_str());
    std::printf("          hasBypass: %d\n", hasBypass_);
    std::printf("             hasTap: %d\n", hasTap_);
    std::printf(" number of controls: %d\n", getNumKnobs());
    for (const Tie& tie : controls_) {
        const IHwControlStdDisplay& control = *tie.control;
        std::printf("%12s, %12f, %s%s, %s%s\n", control.getDisplayName().c_str(),
                    static_cast<double>(control.getPosition()), control.getDisplayText().c_str(),
                    control.getUnits().c_str(), control.getDisplayTextMinimized().c_str(),
                    control.getUnits().c_str());
    }
}

// The base of units whose parameters are a list of controls: they are stored, loaded and logged alike.
//
//   addControl("level", "Level", 0.86f, [this](float v, bool init) { core_.setLevel(v, init); });
//
// in the derived constructor makes a parameter "level", sends 0.86 to the core and logs "Level set, %f" and
// "Level init, %f" from then on; an amp's units log in the other style of ControlLog.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"
#include "core/units/control/ModelControl.h"

class ControlledUnit : public DspUnitBypassStereo {
public:
    using DspUnitBypassStereo::process;
    // The controls in the order in which they were added.
    void initDerived(DspArchive& archive) override;
    void getArchiveDerived(DspArchive& archive) override;

protected:
    // blockLength in samples, sampleRate in Hz. tag: of the log lines, a literal.
    ControlledUnit(std::string tarvekId, int blockLength, float sampleRate, const char* tag,
                   ControlLog style = ControlLog::Sentence)
        : DspUnitBypassStereo(std::move(tarvekId), blockLength, sampleRate), tag_(tag), style_(style) {}

    // T is one of float, int, bool and std::string, Apply a call (value, isInit). Names are literals. The
    // control lives as long as the unit.
    template <typename T, typename Apply>
    ModelControl<T>& addControl(const char* parameterName, const char* logName, const T& initial,
                                Apply apply) {
        auto control = std::make_unique<ModelControl<T>>(tag_, parameterName, logName, initial,
                                                         std::move(apply), style_);
        ModelControl<T>& added = *control;
        addParameter(added.parameter());
        controls_.push_back(std::move(control));
        return added;
    }

    const char* tag() const { return tag_; }

private:
    const char* const tag_;
    const ControlLog style_;
    std::vector<std::unique_ptr<IModelControl>> controls_;
};

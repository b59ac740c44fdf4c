// A knob over a range of floats.
//
//   value    = min + (max - min) * taper.calc(position)
//   position = taper.inverse((value - min) / (max - min)),  limited to 0 to 1
//   tick     = int(0.5 + (numTicks - 1) * position)
//
// What a display shows goes from the position through the taper of remap, between its min and max; without a
// remap it is the value itself. A range of one tick or of one value stands at position 0.
#pragma once

#include <string>

#include "core/ui/HwControlStdDisplay.h"
#include "math/StandardTaper.h"

class HwControlStdDisplayContinuous final : public HwControlStdDisplay<float> {
public:
    explicit HwControlStdDisplayContinuous(DspArchive& archive);

    void setFromBool(bool on) override;  // false sends min, true max
    void setFromPosition(float position) override;
    void setFromString(const std::string& value) override;
    void setFromEncoder(int ticks) override;
    void update(const float& value) override;

    const std::string& getUnits() const override { return remap_.units; }
    float getPosition() const override { return currentPosition_; }
    std::string getDisplayText() const override;
    std::string getDisplayTextMinimized() const override;

    int getTick() const { return currentTick_; }
    float getValue() const { return currentValue_; }

private:
    // A range of values along the knob's travel.
    struct Scale {
        float min, max;
        std::string taperName;
        StandardTaper taper;
        std::string format;
        std::string units;

        float valueAt(float position) const { return min + (max - min) * taper.calc(position); }
        float positionOf(float value) const;
        std::string textAt(float position) const;
    };
    // Reads the scale at the cursor; what is missing comes from the fallback.
    static Scale readScale(DspArchive& archive, const Scale* fallback);
    // The same from the object at a key, if there is one.
    static Scale readRemap(DspArchive& archive, const std::string& key, const Scale& fallback);
    void logDefinition() const;

    const Scale scale_;
    const Scale remap_;
    const Scale remapMinimized_;
    const int numTicks_;
    float currentPosition_ = 0.0f;
    int currentTick_ = 0;
    float currentValue_ = 0.0f;
};

// A knob over integers from min to max in steps of inc. A value beyond the range is refused with "range
// error".
#pragma once

#include <cstdint>
#include <string>

#include "core/ui/HwControlStdDisplay.h"

class HwControlStdDisplayDiscrete final : public HwControlStdDisplay<int> {
public:
    explicit HwControlStdDisplayDiscrete(DspArchive& archive);

    void setFromBool(bool on) override;             // false sends min, true max
    void setFromPosition(float position) override;  // the nearest step, counted from min
    void setFromString(const std::string& value) override;
    void setFromEncoder(int ticks) override;
    void update(const int& value) override;

    float getPosition() const override;
    std::string getDisplayText() const override { return std::to_string(current_); }
    std::string getDisplayTextMinimized() const override { return getDisplayText(); }

private:
    bool isInRange(std::int64_t value) const { return value >= min_ && value <= max_; }
    void sendInRange(std::int64_t value);

    const int min_;
    const int max_;
    const int inc_;
    int current_;
};

// A switch: a list of two items, the first for false and the second for true, named "false" and "true" unless
// the definition says otherwise.
#pragma once

#include <string>

#include "core/ui/HwControlStdDisplay.h"
#include "core/ui/ListSelection.h"

class HwControlStdDisplayListBool final : public HwControlStdDisplay<bool> {
public:
    explicit HwControlStdDisplayListBool(DspArchive& archive);

    void setFromBool(bool on) override;
    void setFromPosition(float position) override;          // true from 0.5
    void setFromString(const std::string& value) override;  // an item, or "false" or "true"
    void setFromEncoder(int ticks) override;
    void update(const bool& value) override;

    float getPosition() const override { return selection_.position(); }
    std::string getDisplayText() const override { return selection_.shown(); }
    std::string getDisplayTextMinimized() const override { return selection_.shownMinimized(); }

private:
    ListSelection selection_;
};

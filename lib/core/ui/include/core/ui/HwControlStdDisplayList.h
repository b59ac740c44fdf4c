// A choice among texts. The parameter's value is the text of an item.
//
// index = position * (count - 1), rounded. A value that is not in the list leaves the index; "empty" is
// shown.
#pragma once

#include <string>

#include "core/ui/HwControlStdDisplay.h"
#include "core/ui/ListSelection.h"

class HwControlStdDisplayList final : public HwControlStdDisplay<std::string> {
public:
    explicit HwControlStdDisplayList(DspArchive& archive);

    void setFromBool(bool on) override;  // false sends the first item, true the last
    void setFromPosition(float position) override;
    void setFromString(const std::string& value) override;
    void setFromEncoder(int ticks) override;
    void update(const std::string& value) override;

    float getPosition() const override { return selection_.position(); }
    std::string getDisplayText() const override { return selection_.shown(); }
    std::string getDisplayTextMinimized() const override { return selection_.shownMinimized(); }

    int getIndex() const { return selection_.index(); }

private:
    void sendIndex(int index);

    ListSelection selection_;
};

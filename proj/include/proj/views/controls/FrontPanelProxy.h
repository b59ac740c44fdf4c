// The front panel as the rest of the program sees it: whoever reads a control from the hardware tells the
// proxy, which emits the control's signal.
//
// An exception from a slot ends at the proxy, as an error in the log: a control that cannot be applied does
// not end the thread that reads the panel.
//
// Any thread; the signals outlive the proxy.
#pragma once

#include "proj/views/controls/FrontPanelSignals.h"

class FrontPanelProxy {
public:
    explicit FrontPanelProxy(FrontPanelSignals& signals) : signals_(signals) {}

    // position: 0 to 1.
    void updatePot(Pot pot, float position) const;
    void updateOnOffSwitch(OnOffSwitch onOff, bool on) const;
    void updateMultiPositionSwitch(MultiPositionSwitch multi, int position) const;
    void pressButton(Button button) const;

private:
    FrontPanelSignals& signals_;
};

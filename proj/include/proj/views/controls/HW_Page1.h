// Page 1 of a panel without a screen: the hardware's controls.
#pragma once

#include "proj/views/controls/Page.h"

class Controller;
class FrontPanelSignals;

class HW_Page1 final : public Page {
public:
    // Both outlive the page.
    HW_Page1(Controller& controller, FrontPanelSignals& signals);

    // There is no screen: only says so in the log.
    void render() override;
};

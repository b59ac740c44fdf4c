#include "proj/views/controls/HW_Page1.h"

#include "proj/views/controls/HwBaseLayer.h"
#include "utility/Log.h"

HW_Page1::HW_Page1(Controller& controller, FrontPanelSignals& signals) {
    add(std::make_unique<HwBaseLayer>(controller, signals));
}

void HW_Page1::render() {
    tvk::log::debug("HW_Page1", "undefined render call");
}

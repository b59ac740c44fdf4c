#include "proj/views/controls/HW_Page2.h"

#include "proj/views/controls/HwBaseLayer.h"
#include "utility/Log.h"

HW_Page2::HW_Page2(Controller& controller, FrontPanelSignals& signals) {
    add(std::make_unique<HwBaseLayer>(controller, signals));
}

void HW_Page2::render() {
    tvk::log::debug("HW_Page2", "undefined render call");
}

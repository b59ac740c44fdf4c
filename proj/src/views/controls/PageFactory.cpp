#include "proj/views/controls/PageFactory.h"

#include "proj/views/controls/HW_Page1.h"
#include "proj/views/controls/HW_Page2.h"

std::unique_ptr<Page> PageFactory::makePage(int number, Controller& controller,
                                            FrontPanelSignals& signals) const {
    if (number == 2) return std::make_unique<HW_Page2>(controller, signals);
    return std::make_unique<HW_Page1>(controller, signals);
}

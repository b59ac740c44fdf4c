// Pages by number.
#pragma once

#include <memory>

#include "proj/views/controls/Page.h"

class Controller;
class FrontPanelSignals;

class PageFactory {
public:
    // Page 1 or 2; any other number gives page 1. Controller and signals outlive the page.
    std::unique_ptr<Page> makePage(int number, Controller& controller, FrontPanelSignals& signals) const;
};

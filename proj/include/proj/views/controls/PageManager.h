// Holds the page that is in force.
#pragma once

#include <memory>

#include "proj/views/controls/PageFactory.h"

class PageManager {
public:
    // Makes the page and binds its controls. Both objects outlive the manager.
    PageManager(int pageNumber, Controller& controller, FrontPanelSignals& signals);

    int getPageNumber() const { return pageNumber_; }
    Page& currentPage() { return *currentPage_; }

    // What a page does by itself as time passes: nothing, on a panel without a screen.
    void update() {}

private:
    const int pageNumber_;
    Controller& controller_;
    PageFactory pageFactory_;
    const std::unique_ptr<Page> currentPage_;
};

// "PageMgrThread": updates the page every 10 ms, for products with a screen.
#pragma once

#include "utility/TarvekThread.h"

class PageManager;

class PageManagerThread final : public TarvekThread {
public:
    // Priority 45 on processor 1. The manager outlives the thread. Does not start it.
    explicit PageManagerThread(PageManager& pageManager);
    ~PageManagerThread() override;

protected:
    void init() override;
    void loop() override;

private:
    PageManager* const pageManager_;
};

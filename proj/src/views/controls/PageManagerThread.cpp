#include "proj/views/controls/PageManagerThread.h"

#include <chrono>

#include "proj/views/controls/PageManager.h"
#include "utility/Clock.h"

namespace {

constexpr int kPriority = 45;
constexpr int kCpu = 1;
constexpr std::chrono::milliseconds kBetweenUpdates{10};

}  // namespace

PageManagerThread::PageManagerThread(PageManager& pageManager)
    : TarvekThread(kPriority, kCpu), pageManager_(&pageManager) {}

PageManagerThread::~PageManagerThread() {
    stop();
    join();
}

void PageManagerThread::init() {
    setName("PageMgrThread");
}

void PageManagerThread::loop() {
    pageManager_->update();
    tvk::Clock::current().sleepFor(kBetweenUpdates);
}

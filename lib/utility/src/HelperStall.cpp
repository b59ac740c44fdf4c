#include "utility/HelperStall.h"

#include <atomic>
#include <cstring>

namespace tvk {
namespace {

std::atomic<const char*> stalledName{nullptr};
std::atomic<int> passingHelpers{0};  // may be reading the name
std::atomic<int> heldHelpers{0};

void waitForZero(std::atomic<int>& count) {
    for (int value = count.load(); value != 0; value = count.load())
        count.wait(value);
}

}  // namespace

HelperStall::HelperStall(const char* name) {
    stalledName.store(name);
}

HelperStall::~HelperStall() {
    stalledName.store(nullptr);
    stalledName.notify_all();
    waitForZero(passingHelpers);
}

void HelperStall::waitUntilHeld() {
    while (heldHelpers.load() == 0)
        heldHelpers.wait(0);
}

void HelperStall::pass(const char* name) {
    if (!stalledName.load()) return;
    passingHelpers.fetch_add(1);
    const char* held = stalledName.load();
    if (held && std::strcmp(held, name) == 0) {
        heldHelpers.fetch_add(1);
        heldHelpers.notify_all();
        for (; held && std::strcmp(held, name) == 0; held = stalledName.load())
            stalledName.wait(held);
        heldHelpers.fetch_sub(1);
    }
    passingHelpers.fetch_sub(1);
    passingHelpers.notify_all();
}

}  // namespace tvk

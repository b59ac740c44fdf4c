#include "desk/Peers.h"

#include <limits>
#include <pthread.h>
#include <utility>

#include "utility/Clock.h"

namespace tvk::desk {

namespace {

constexpr auto kNotStarted = std::numeric_limits<std::chrono::nanoseconds::rep>::max();

}  // namespace

Peers::Peers(const Endpoints& endpoints, VirtualTime* time, Setting setting)
    : endpoints_(endpoints),
      time_(time),
      script_(std::move(setting.script)),
      panel_(std::move(setting.controlProcessor)),
      usb_(endpoints.hidDevice(), endpoints.hid(), script_.hasReports()),
      scriptStart_(kNotStarted) {
    std::filesystem::create_symlink(panel_.programPath(), endpoints.uart());
    if (setting.isHostPlugged) usb_.plug();
    if (time_) {
        time_->setTick([this] { return tick(); });
    } else {
        thread_ = std::thread([this] { run(); });
        pthread_setname_np(thread_.native_handle(), "DeskPeers");
    }
}

Peers::~Peers() {
    isEnding_.store(true, std::memory_order_relaxed);
    if (time_)
        time_->setTick({});
    else
        thread_.join();
}

void Peers::startScript() {
    scriptStart_.store(now().count(), std::memory_order_relaxed);
}

void Peers::run() {
    while (!isEnding_.load(std::memory_order_relaxed)) {
        tick();
        Clock::current().sleepFor(VirtualTime::kTick);
    }
}

std::chrono::nanoseconds Peers::now() const {
    return time_ ? time_->now() : Clock::current().now();
}

bool Peers::tick() {
    bool isMoved = false;
    const auto start = scriptStart_.load(std::memory_order_relaxed);
    if (start != kNotStarted)
        while (const ScriptEvent* const event = script_.take(now() - std::chrono::nanoseconds(start))) {
            play(*event);
            isMoved = true;
        }
    isMoved |= panel_.exchange();
    isMoved |= usb_.exchange();
    return isMoved;
}

void Peers::play(const ScriptEvent& event) {
    switch (event.kind) {
        case ScriptEvent::Kind::Pin:
            return panel_.move(*event.frame);
        case ScriptEvent::Kind::Button:
            return endpoints_.press(event.isDown);
        case ScriptEvent::Kind::Report:
            return usb_.send(event.report);
        case ScriptEvent::Kind::Unplug:
            return usb_.unplug();
        case ScriptEvent::Kind::Plug:
            return usb_.plug();
    }
}

}  // namespace tvk::desk

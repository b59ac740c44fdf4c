// Signals: a sender that does not know its receivers.
//
//   nod::signal_type<float> turned;
//   nod::connection c = turned.connect([](float position) { ... });
//   turned(0.5f);
//
// An emission calls the slots in the order in which they were connected, on the emitter's thread, outside the
// signal's mutex: connecting, disconnecting and emitting may overlap on any threads. A signal without slots
// does nothing.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "utility/CallList.h"

namespace nod {

// One slot on a signal; its end disconnects the slot. After disconnect has returned no other thread is in the
// slot, and none enters it. It may outlive the signal.
class connection {
public:
    connection() = default;
    connection(std::weak_ptr<tvk::ICallList> slots, std::shared_ptr<tvk::CallGate> slot)
        : slots_(std::move(slots)), slot_(std::move(slot)) {}
    ~connection() { disconnect(); }
    connection(connection&&) = default;
    connection& operator=(connection&& other) noexcept {
        disconnect();
        slots_ = std::move(other.slots_);
        slot_ = std::move(other.slot_);
        return *this;
    }
    connection(const connection&) = delete;
    connection& operator=(const connection&) = delete;

    bool connected() const { return slot_ && !slots_.expired(); }

    void disconnect() {
        const std::shared_ptr<tvk::CallGate> slot = std::move(slot_);
        if (!slot) return;
        if (const auto slots = slots_.lock())
            slots->remove(slot);
        else
            slot->close();
    }

private:
    std::weak_ptr<tvk::ICallList> slots_;
    std::shared_ptr<tvk::CallGate> slot_;
};

template <typename... Args>
class signal_type {
public:
    signal_type() : slots_(std::make_shared<Slots>()) {}
    signal_type(const signal_type&) = delete;
    signal_type& operator=(const signal_type&) = delete;

    [[nodiscard]] connection connect(std::function<void(Args...)> slot) {
        return connection(slots_, slots_->add(std::move(slot)));
    }

    void operator()(Args... values) const {
        slots_->forEach([&](const std::function<void(Args...)>& slot) { slot(values...); });
    }

private:
    using Slots = tvk::CallList<std::function<void(Args...)>>;
    std::shared_ptr<Slots> slots_;
};

}  // namespace nod

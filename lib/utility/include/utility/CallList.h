// Who is to be told of an event: a list that may change while it is being told.
//
// A round of calls copies the list under its mutex and makes the calls outside it, on the caller's thread. An
// entry that is removed is called no more: remove waits for the calls of it that other threads are in, so
// that what it points to may go afterwards. A call that its own thread is in is not waited for, so an entry
// may remove itself. Whoever removes holds no lock that such a call takes.
#pragma once

#include <algorithm>
#include <concepts>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tvk {

// The calls of one entry that are under way.
class CallGate {
public:
    // False once it is closed: the call is not to be made. Each true is followed by one leave on its thread.
    bool enter();
    void leave();

    // Lets nobody in from now on, and waits for those who are in on other threads.
    void close();

private:
    bool isOnlyOwnThreadIn() const;

    std::mutex mutex_;
    std::condition_variable left_;
    std::vector<std::thread::id> inside_;
    bool isClosed_ = false;
};

class ICallList {
public:
    virtual ~ICallList() = default;
    virtual void remove(const std::shared_ptr<CallGate>& entry) = 0;
};

template <typename Callee>
class CallList final : public ICallList {
public:
    // Added last. The result stands for the entry in remove.
    std::shared_ptr<CallGate> add(Callee callee) {
        const auto entry = std::make_shared<Entry>(std::move(callee));
        const std::lock_guard lock(mutex_);
        entries_.push_back(entry);
        return entry;
    }

    // An entry that is not in the list any more is only waited for.
    void remove(const std::shared_ptr<CallGate>& entry) override {
        {
            const std::lock_guard lock(mutex_);
            std::erase(entries_, entry);
        }
        entry->close();
    }

    // Removes every entry of this callee.
    void removeCallee(const Callee& callee) requires std::equality_comparable<Callee> {
        for (const auto& entry : copy())
            if (entry->callee == callee) remove(entry);
    }

    // call(callee) for each, in the order in which they were added.
    template <typename Call>
    void forEach(Call call) {
        for (const auto& entry : copy()) {
            if (!entry->enter()) continue;
            const Leaving leaving{*entry};
            call(entry->callee);
        }
    }

private:
    struct Entry : CallGate {
        explicit Entry(Callee c) : callee(std::move(c)) {}
        Callee callee;
    };

    struct Leaving {
        CallGate& gate;
        ~Leaving() { gate.leave(); }
    };

    std::vector<std::shared_ptr<Entry>> copy() const {
        const std::lock_guard lock(mutex_);
        return entries_;
    }

    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<Entry>> entries_;
};

}  // namespace tvk

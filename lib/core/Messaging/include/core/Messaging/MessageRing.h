// First in, first out, in a fixed number of slots of which one stays empty. One thread at a time.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace tvk {

template <typename Item>
class MessageRing {
public:
    explicit MessageRing(std::size_t slots) : slots_(slots) {}

    std::size_t size() const { return (tail_ + slots_.size() - head_) % slots_.size(); }

    // False when it is full.
    bool push(Item item) {
        const std::size_t next = (tail_ + 1) % slots_.size();
        if (next == head_) return false;
        slots_[tail_] = std::move(item);
        tail_ = next;
        return true;
    }

    // False when it is empty.
    bool pop(Item& item) {
        if (head_ == tail_) return false;
        item = std::exchange(slots_[head_], Item());
        head_ = (head_ + 1) % slots_.size();
        return true;
    }

    void clear() {
        Item item;
        while (pop(item)) {
        }
    }

private:
    std::vector<Item> slots_;
    std::size_t head_ = 0;
    std::size_t tail_ = 0;
};

}  // namespace tvk

// First in, first out between two threads without a lock: one pushes, one pops.
//
// A ring of blocks that grows while it is full: each new block is twice the size of the last, up to 512
// items. The consumer empties a block before it goes on to the next; the producer goes on into blocks that
// lie empty, and adds one where there is none. Blocks are reused, and freed with the queue.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <utility>
#include <vector>

namespace tvk {

template <typename Item>
class SpscQueue {
public:
    SpscQueue() : head_(new Block(kFirstBlockItems)), tail_(head_.load()) {
        head_.load()->next = head_.load();
    }

    ~SpscQueue() {
        Block* block = head_.load()->next;
        head_.load()->next = nullptr;
        while (block)
            delete std::exchange(block, block->next.load());
    }
    SpscQueue(const SpscQueue&) = delete;
    SpscQueue& operator=(const SpscQueue&) = delete;

    // Producer. Allocates when there is no room.
    void push(Item item) {
        Block* block = tail_.load(std::memory_order_relaxed);
        if (block->isFull()) block = blockBehind(block);
        block->push(std::move(item));
        tail_.store(block, std::memory_order_release);
    }

    // Consumer. False when it is empty.
    bool pop(Item& item) {
        Block* block = head_.load(std::memory_order_relaxed);
        if (block->isEmpty()) {
            if (block == tail_.load(std::memory_order_acquire)) return false;
            // The producer has left this block; what it wrote into it before that counts.
            if (block->isEmpty()) {
                block = block->next.load(std::memory_order_acquire);
                head_.store(block, std::memory_order_release);
            }
        }
        block->pop(item);
        return true;
    }

private:
    static constexpr std::size_t kFirstBlockItems = 16;
    static constexpr std::size_t kLargestBlockItems = 512;

    // Counters only grow; the slot is the rest of the division by the size, a power of two.
    struct Block {
        explicit Block(std::size_t size) : items(size) {}

        bool isFull() const {
            return back.load(std::memory_order_relaxed) - front.load(std::memory_order_acquire) ==
                   items.size();
        }
        bool isEmpty() const {
            return back.load(std::memory_order_acquire) == front.load(std::memory_order_relaxed);
        }
        void push(Item item) {
            const std::size_t index = back.load(std::memory_order_relaxed);
            items[index % items.size()] = std::move(item);
            back.store(index + 1, std::memory_order_release);
        }
        void pop(Item& item) {
            const std::size_t index = front.load(std::memory_order_relaxed);
            item = std::exchange(items[index % items.size()], Item());
            front.store(index + 1, std::memory_order_release);
        }

        std::vector<Item> items;
        std::atomic<std::size_t> front{0};  // written by the consumer
        std::atomic<std::size_t> back{0};   // written by the producer
        std::atomic<Block*> next{nullptr};
    };

    // An empty block behind a full one. The consumer has left every block up to its own.
    Block* blockBehind(Block* block) {
        Block* const next = block->next.load(std::memory_order_relaxed);
        if (next != head_.load(std::memory_order_acquire)) return next;
        Block* const added = new Block(std::min(2 * block->items.size(), kLargestBlockItems));
        added->next.store(next, std::memory_order_relaxed);
        block->next.store(added, std::memory_order_release);
        return added;
    }

    std::atomic<Block*> head_;  // the consumer's
    std::atomic<Block*> tail_;  // the producer's
};

}  // namespace tvk

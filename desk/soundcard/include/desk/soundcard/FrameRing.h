// Stereo frames from the audio thread to one other thread, wait-free on both sides.
#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

namespace tvk::desk {

class FrameRing {
public:
    struct Frame {
        float speaker;
        float line;
    };

    // Room for `capacity` frames.
    explicit FrameRing(std::size_t capacity) : frames_(capacity) {}

    // False when the ring is full; then nothing was written. Producer.
    bool push(Frame frame) {
        const std::size_t head = head_.load(std::memory_order_relaxed);
        if (head - tail_.load(std::memory_order_acquire) == frames_.size()) return false;
        frames_[head % frames_.size()] = frame;
        head_.store(head + 1, std::memory_order_release);
        return true;
    }

    // Takes up to `most` frames, oldest first; returns how many. Consumer.
    std::size_t take(Frame* to, std::size_t most) {
        const std::size_t tail = tail_.load(std::memory_order_relaxed);
        const std::size_t there = head_.load(std::memory_order_acquire) - tail;
        const std::size_t count = there < most ? there : most;
        for (std::size_t i = 0; i < count; ++i)
            to[i] = frames_[(tail + i) % frames_.size()];
        tail_.store(tail + count, std::memory_order_release);
        return count;
    }

    // Forgets everything. Neither side may be active.
    void clear() {
        head_.store(0, std::memory_order_relaxed);
        tail_.store(0, std::memory_order_relaxed);
    }

private:
    std::vector<Frame> frames_;
    std::atomic<std::size_t> head_{0};
    std::atomic<std::size_t> tail_{0};
};

}  // namespace tvk::desk

// The ring of samples behind the delay lines: a vector of fixed size, shared by the heads that read and write
// it.
//
// Indexes wrap by repeated addition or subtraction of the size, not by a mask or a modulus: any size will do,
// and an index that is a turn too low or too high is legal.
#pragma once

#include <cstddef>
#include <vector>

template <typename T>
class CircularBuffer {
public:
    // size: samples, at least 1. Starts as zeros.
    explicit CircularBuffer(int size) : samples_(static_cast<std::size_t>(size > 1 ? size : 1)) {}

    int size() const { return static_cast<int>(samples_.size()); }

    int wrapped(int index) const {
        while (index < 0)
            index += size();
        while (index >= size())
            index -= size();
        return index;
    }

    T& operator[](int index) { return samples_[static_cast<std::size_t>(wrapped(index))]; }
    const T& operator[](int index) const { return samples_[static_cast<std::size_t>(wrapped(index))]; }

    // Back to zeros.
    void clear() { samples_.assign(samples_.size(), T{}); }

private:
    std::vector<T> samples_;
};

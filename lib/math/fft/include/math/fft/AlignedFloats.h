// Float buffers that start on a cache line, as the vector kernels and the transforms like them.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace fft {

template <typename T>
struct CacheLineAllocator {
    using value_type = T;
    static constexpr std::align_val_t kAlignment{64};

    CacheLineAllocator() = default;
    template <typename U>
    CacheLineAllocator(const CacheLineAllocator<U>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), kAlignment)); }
    void deallocate(T* memory, std::size_t) { ::operator delete(memory, kAlignment); }

    bool operator==(const CacheLineAllocator&) const { return true; }
};

using AlignedFloats = std::vector<float, CacheLineAllocator<float>>;

// The length of a row of count floats that ends on a whole vector.
constexpr int paddedToVector(int count) {
    return (count + 7) & ~7;
}

}  // namespace fft

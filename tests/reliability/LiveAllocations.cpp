#include "reliability/LiveAllocations.h"

#include <atomic>
#include <cerrno>
#include <malloc.h>

// The allocator's own entries, which glibc exports for the purpose.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* memory);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<long> livePieces{0};
std::atomic<long> liveBytes{0};

void* taken(void* memory) {
    if (memory) {
        livePieces.fetch_add(1, std::memory_order_relaxed);
        liveBytes.fetch_add(static_cast<long>(malloc_usable_size(memory)), std::memory_order_relaxed);
    }
    return memory;
}

void given(void* memory) {
    if (!memory) return;
    livePieces.fetch_sub(1, std::memory_order_relaxed);
    liveBytes.fetch_sub(static_cast<long>(malloc_usable_size(memory)), std::memory_order_relaxed);
}

}  // namespace

LiveAllocations LiveAllocations::now() {
    return {livePieces.load(std::memory_order_relaxed), liveBytes.load(std::memory_order_relaxed)};
}

extern "C" {

void* malloc(size_t size) {
    return taken(__libc_malloc(size));
}

void* calloc(size_t count, size_t size) {
    return taken(__libc_calloc(count, size));
}

void* realloc(void* memory, size_t size) {
    given(memory);
    void* const moved = __libc_realloc(memory, size);
    // Where it fails the old piece stays.
    return moved ? taken(moved) : (size == 0 ? nullptr : (taken(memory), nullptr));
}

void* memalign(size_t alignment, size_t size) {
    return taken(__libc_memalign(alignment, size));
}

void* aligned_alloc(size_t alignment, size_t size) {
    return taken(__libc_memalign(alignment, size));
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    void* const got = taken(__libc_memalign(alignment, size));
    if (!got) return ENOMEM;
    *memory = got;
    return 0;
}

void free(void* memory) {
    given(memory);
    __libc_free(memory);
}

}  // extern "C"

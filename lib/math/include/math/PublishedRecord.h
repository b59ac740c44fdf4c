// A record of several words that one thread rewrites whole while another reads it: coefficients, tables.
//
// Three copies and an index. The writer fills the copy nobody looks at and swaps it with the waiting one; the
// reader, when it finds the waiting copy fresh, swaps it with its own. Neither side ever waits or retries,
// and the reader never sees half of a change. Unchanged, a read costs one relaxed load.
//
// A plain pair of records and an index would do for one change a block only: the second change would rewrite
// the copy that the reader is still in.
//
// Threads: publish and latest on the writing side, one thread at a time (callers hold their own lock); read
// on one reading thread. Both sides may be the same thread.
#pragma once

#include <atomic>
#include <type_traits>

template <typename T>
class PublishedRecord {
    static_assert(std::is_trivially_copyable_v<T>, "a record is copied word by word");

public:
    explicit PublishedRecord(const T& initial) : slots_{initial, initial, initial} {}

    // The reader's next read gives this record, or a later one.
    void publish(const T& record) {
        slots_[spare_] = record;
        latest_ = spare_;
        spare_ = waiting_.exchange(spare_ | kFresh, std::memory_order_acq_rel) & kIndex;
    }

    // What publish wrote last, for the writing side.
    const T& latest() const { return slots_[latest_]; }

    // The newest record; the reference holds until the next read.
    const T& read() {
        if (waiting_.load(std::memory_order_relaxed) & kFresh) {
            reading_ = waiting_.exchange(reading_, std::memory_order_acq_rel) & kIndex;
        }
        return slots_[reading_];
    }

private:
    static constexpr unsigned kFresh = 4;
    static constexpr unsigned kIndex = 3;

    T slots_[3];
    std::atomic<unsigned> waiting_{1};
    unsigned reading_ = 0;  // reading side only
    unsigned spare_ = 2;    // writing side only
    unsigned latest_ = 2;   // writing side only
};

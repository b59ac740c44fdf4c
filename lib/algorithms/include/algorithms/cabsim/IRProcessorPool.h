// The process-wide pool of cabinet convolvers.
//
// A cabinet is built deep inside a unit, by a factory that knows nothing but a type id, the block length and
// the sample rate; here it finds its convolver. The system device fills the pool before any preset is loaded.
//
// Convolvers are shared, not lent: a new preset is built before the old one goes, and both hold the same one
// (IRStreamOwner says which of them runs it). Control threads only, one at a time.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>

class IRProcessor;

class IRProcessorPool {
public:
    // Replaces what is in the pool. Null pointers are left out.
    static void fill(const std::deque<std::shared_ptr<IRProcessor>>& processors);

    // Back to a pool that nobody filled. Units keep their shares.
    static void clear();

    // False until the first fill, and after clear.
    static bool isThere();

    // A share of the place-th convolver; null when there are not so many.
    static std::shared_ptr<IRProcessor> take(std::size_t place = 0);

    // Ends a share.
    static void giveBack(std::shared_ptr<IRProcessor> processor);

    // Convolvers in the pool.
    static std::size_t size();
};

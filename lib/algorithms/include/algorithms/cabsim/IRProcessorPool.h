// The process-wide pool of cabinet convolvers.
//
// A cabinet is built deep inside a unit, by a factory that knows nothing but a type id, the block length and
// the sample rate; here it finds its convolver. The system device fills the pool before any preset is loaded.
// Control threads only, one at a time.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>

class IRProcessor;

class IRProcessorPool {
public:
    // Replaces what is in the pool.
    static void fill(const std::deque<std::shared_ptr<IRProcessor>>& processors);
    // The next convolver, which leaves the pool; null when there is none.
    static std::shared_ptr<IRProcessor> take();
    // Puts a convolver back in.
    static void giveBack(std::shared_ptr<IRProcessor> processor);
    static std::size_t size();
};

#include "algorithms/cabsim/IRStream.h"

#include "algorithms/cabsim/IRProcessor.h"
#include "utility/Log.h"

bool IRStream::load(const std::string& path) {
    IRProcessor* const processor = irProcessor_.load(std::memory_order_relaxed);
    processor->streamOwner().claim(this);
    return processor->load(path);
}

void IRStream::load(std::span<const float> response) {
    IRProcessor* const processor = irProcessor_.load(std::memory_order_relaxed);
    processor->streamOwner().claim(this);
    processor->load(response);
}

void IRStream::release() {
    if (IRProcessor* const processor = irProcessor_.load(std::memory_order_relaxed))
        processor->streamOwner().release(this);
}

void IRStream::detach() {
    release();
    irProcessor_.store(nullptr, std::memory_order_release);
}

bool IRStream::process(const float* in, float* out, int count) {
    IRProcessor* const processor = irProcessor_.load(std::memory_order_acquire);
    const bool isOwn = processor && processor->streamOwner().isOwner(this);
    if (!isOwn && !warned_)
        TVK_WARN("IRStream: another unit plays through the IRProcessor, passing the dry signal");
    warned_ = !isOwn;
    if (isOwn) processor->process(in, out, count);
    return isOwn;
}

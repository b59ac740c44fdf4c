#include "algorithms/cabsim/IRProcessorPool.h"

#include <optional>

namespace {

using Processors = std::deque<std::shared_ptr<IRProcessor>>;

std::optional<Processors>& pool() {
    static std::optional<Processors> processors;
    return processors;
}

}  // namespace

void IRProcessorPool::fill(const Processors& processors) {
    Processors present;
    for (const std::shared_ptr<IRProcessor>& processor : processors)
        if (processor) present.push_back(processor);
    pool() = std::move(present);
}

void IRProcessorPool::clear() {
    pool().reset();
}

bool IRProcessorPool::isThere() {
    return pool().has_value();
}

std::shared_ptr<IRProcessor> IRProcessorPool::take(std::size_t place) {
    return place < size() ? (*pool())[place] : nullptr;
}

void IRProcessorPool::giveBack(std::shared_ptr<IRProcessor> processor) {
    processor.reset();
}

std::size_t IRProcessorPool::size() {
    return pool() ? pool()->size() : 0;
}

#include "algorithms/cabsim/IRProcessorPool.h"

#include <utility>

namespace {

std::deque<std::shared_ptr<IRProcessor>>& pool() {
    static std::deque<std::shared_ptr<IRProcessor>> processors;
    return processors;
}

}  // namespace

void IRProcessorPool::fill(const std::deque<std::shared_ptr<IRProcessor>>& processors) {
    pool() = processors;
}

std::shared_ptr<IRProcessor> IRProcessorPool::take() {
    if (pool().empty()) return nullptr;
    std::shared_ptr<IRProcessor> processor = std::move(pool().front());
    pool().pop_front();
    return processor;
}

void IRProcessorPool::giveBack(std::shared_ptr<IRProcessor> processor) {
    pool().push_back(std::move(processor));
}

std::size_t IRProcessorPool::size() {
    return pool().size();
}

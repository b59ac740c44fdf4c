#include "math/TailExchange.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "math/FFTConv2.h"
#include "utility/BackgroundJobs.h"
#include "utility/HelperStall.h"
#include "utility/JobTimer.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"

TailExchange::TailExchange(int blockLength, const std::string& name)
    : blockLength_(blockLength),
      name_(name),
      tailOut_(static_cast<std::size_t>(blockLength)),
      tailNext_(static_cast<std::size_t>(blockLength)) {
    for (Block& block : ring_)
        block.input.resize(static_cast<std::size_t>(blockLength));
}

TailExchange::~TailExchange() {
    tvk::BackgroundJobs::end(static_cast<int>(written_.load() - run_.load()));
}

void TailExchange::connect(FFTConv2* tail) {
    tail_ = tail;
    if (tail)
        deadline_ = std::chrono::nanoseconds(std::llround(1e9 * blockLength_ / double(tail->sampleRate())));
    std::fill(tailOut_.begin(), tailOut_.end(), 0.0f);
    std::fill(tailNext_.begin(), tailNext_.end(), 0.0f);
    hasLostInput_ = false;
}

// Request first: when it is seen clear, the helper's clearing of done came before it.
bool TailExchange::isIdle() const {
    return tailRequest_.load(std::memory_order_acquire) == 0 &&
           tailDone_.load(std::memory_order_acquire) != 0;
}

void TailExchange::turn(const float* input) {
    if (isIdle())
        std::swap(tailOut_, tailNext_);
    else
        TVK_WARN("Convolution background thread overruning");
    handOver(input);
}

void TailExchange::handOver(const float* input) {
    const std::uint32_t written = written_.load(std::memory_order_relaxed);
    if (written - run_.load(std::memory_order_acquire) == kRingBlocks) {
        hasLostInput_ = true;
        return;
    }
    Block& block = ring_[written % kRingBlocks];
    std::copy_n(input, blockLength_, block.input.begin());
    block.isAfterLoss = std::exchange(hasLostInput_, false);
    tvk::BackgroundJobs::begin();
    written_.store(written + 1, std::memory_order_release);
    tailDone_.store(0, std::memory_order_release);
    tailRequest_.store(1, std::memory_order_release);
    bell_.ring();
}

// Done is cleared again because the audio side may have set its flags while the helper was finishing.
bool TailExchange::takeRequest() {
    if (tailRequest_.load(std::memory_order_acquire) == 0) return false;
    tailDone_.store(0, std::memory_order_release);
    tailRequest_.exchange(0, std::memory_order_acq_rel);
    return true;
}

// Jobs count as done when the flags say so too: whoever waits for the count finds the exchange idle.
void TailExchange::runPending() {
    const tvk::RealtimeThreadScope denormalsFlushed;
    int jobs = 0;
    while (takeRequest()) {
        std::uint32_t next = run_.load(std::memory_order_relaxed);
        for (; next != written_.load(std::memory_order_acquire); ++next, ++jobs) {
            tvk::HelperStall::pass(name_.c_str());
            const tvk::JobTimer timer(name_.c_str(), deadline_);
            const Block& block = ring_[next % kRingBlocks];
            if (block.isAfterLoss) tail_->reset();
            std::fill(tailNext_.begin(), tailNext_.end(), 0.0f);
            tail_->process(block.input.data(), tailNext_.data(), blockLength_);
            run_.store(next + 1, std::memory_order_release);
        }
        tailDone_.store(1, std::memory_order_release);
    }
    tvk::BackgroundJobs::end(jobs);
}
